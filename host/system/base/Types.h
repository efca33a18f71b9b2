#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <QtGlobal>

#if defined(MARLOXSYSTEM_BUILD)
#define MARLOXSYSTEM_EXPORT Q_DECL_EXPORT
#else
#define MARLOXSYSTEM_EXPORT Q_DECL_IMPORT
#endif

namespace Marlox {

using float64 = double;
using int32 = std::int32_t;
using int64 = std::int64_t;
using uint64 = std::uint64_t;
using u8 = std::uint8_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

} // namespace Marlox
