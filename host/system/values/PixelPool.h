#pragma once

#include "system/base/Types.h"

#include <memory>
#include <mutex>
#include <vector>

namespace Marlox {

/// The memory of pictures let go, kept for the next ones: a render makes pictures of the same few
/// sizes again and again, and fresh pages cost more than the work that many tools do on them. It
/// keeps at most 256 MiB, those let go last. Thread-safe.
class PixelPool {
public:
    /// The process's; never destroyed, since pictures may be.
    static PixelPool& Global();

    /// Zeroed. Throws std::bad_alloc.
    std::shared_ptr<std::vector<float>> Take(std::size_t floats);

private:
    PixelPool();

    using Block = std::unique_ptr<std::vector<float>>;

    Block Find(std::size_t floats);
    void Return(Block block) noexcept;

    std::mutex mutex_;
    std::vector<Block> blocks_; // the longest kept first
    std::size_t kept_ = 0;      // floats
};

} // namespace Marlox
