#include "system/base/Reuser.h"

#include <memory_resource>

namespace Marlox {

#if defined(__SANITIZE_ADDRESS__)

void* Reuser::operator new(std::size_t size)
{
    return ::operator new(size);
}

void Reuser::operator delete(void* block, std::size_t size) noexcept
{
    ::operator delete(block, size);
}

#else

namespace {

// Never destroyed: objects with static storage in plug-ins may outlive every static of this
// library.
std::pmr::synchronized_pool_resource& pool()
{
    static auto* resource = new std::pmr::synchronized_pool_resource;
    return *resource;
}

} // namespace

void* Reuser::operator new(std::size_t size)
{
    return pool().allocate(size, alignof(std::max_align_t));
}

void Reuser::operator delete(void* block, std::size_t size) noexcept
{
    if (block)
        pool().deallocate(block, size, alignof(std::max_align_t));
}

#endif

} // namespace Marlox
