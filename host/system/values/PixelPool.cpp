#include "system/values/PixelPool.h"

#include <bit>

namespace Marlox {

namespace {

constexpr std::size_t smallest = std::size_t(1) << 18; // floats; below it the system is as quick
constexpr std::size_t mostKept = std::size_t(1) << 26; // floats, 256 MiB

/// With room for pictures a little larger: those of a drag grow from one to the next. What is not
/// touched costs no memory.
std::size_t WithRoom(std::size_t floats)
{
    const std::size_t step = std::bit_floor(floats) / 8;
    return (floats + step - 1) / step * step;
}

} // namespace

PixelPool::PixelPool()
{
    blocks_.reserve(mostKept / smallest);
}

PixelPool& PixelPool::Global()
{
    static auto* pool = new PixelPool;
    return *pool;
}

std::shared_ptr<std::vector<float>> PixelPool::Take(std::size_t floats)
{
    if (floats < smallest)
        return std::make_shared<std::vector<float>>(floats);
    Block block = Find(floats);
    if (!block) {
        block = std::make_unique<std::vector<float>>();
        block->reserve(floats < mostKept ? WithRoom(floats) : floats);
    }
    block->assign(floats, 0.0f);
    return {block.release(), [this](std::vector<float>* pixels) { Return(Block(pixels)); }};
}

/// A block that holds as much and is not much too large; null: none.
PixelPool::Block PixelPool::Find(std::size_t floats)
{
    std::lock_guard lock(mutex_);
    auto best = blocks_.end();
    for (auto block = blocks_.begin(); block != blocks_.end(); ++block) {
        const std::size_t capacity = (*block)->capacity();
        if (capacity >= floats && capacity - floats <= floats / 2 &&
            (best == blocks_.end() || capacity < (*best)->capacity()))
            best = block;
    }
    if (best == blocks_.end())
        return {};
    Block found = std::move(*best);
    kept_ -= found->capacity();
    blocks_.erase(best);
    return found;
}

void PixelPool::Return(Block block) noexcept
{
    const std::size_t capacity = block->capacity();
    if (capacity > mostKept)
        return;
    std::unique_lock lock(mutex_);
    while (kept_ + capacity > mostKept) {
        Block oldest = std::move(blocks_.front());
        blocks_.erase(blocks_.begin());
        kept_ -= oldest->capacity();
        lock.unlock(); // the system takes its time over many pages
        oldest = nullptr;
        lock.lock();
    }
    blocks_.push_back(std::move(block)); // in the room of the construction: nothing is thrown
    kept_ += capacity;
}

} // namespace Marlox
