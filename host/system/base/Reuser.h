#pragma once

#include "system/base/Types.h"

namespace Marlox {

/// Base that places objects in the host's pooled allocator: controls, values and the like come and
/// go by the thousand while an inspector is rebuilt. Thread-safe. Under the address sanitizer the
/// pool steps aside, so that every object stays a block of its own.
class MARLOXSYSTEM_EXPORT Reuser {
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

    // Placement and array forms keep their usual meaning.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}
};

} // namespace Marlox
