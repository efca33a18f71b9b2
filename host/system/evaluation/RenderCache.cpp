#include "system/evaluation/RenderCache.h"

#include <algorithm>

#include <unistd.h>

namespace Marlox {

std::size_t RenderCache::DefaultLimit()
{
    constexpr std::size_t most = std::size_t(2) << 30;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return most / 4;
    return std::min(most, std::size_t(pages) * std::size_t(pageSize) / 4);
}

Ref<Image> RenderCache::Find(const std::string& key)
{
    std::lock_guard lock(mutex_);
    const auto found = byKey_.find(key);
    if (found == byKey_.end())
        return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->image;
}

void RenderCache::Insert(const std::string& key, Ref<Image> image)
{
    std::lock_guard lock(mutex_);
    if (key.empty() || !image || byKey_.contains(key))
        return;
    const std::size_t bytes =
        image->IsEmpty() ? 0 : std::size_t(image->Width()) * std::size_t(image->Height()) * 16;
    entries_.push_front({key, std::move(image), bytes});
    byKey_[key] = entries_.begin();
    size_ += bytes;
    Trim();
}

void RenderCache::SetLimit(std::size_t bytes)
{
    std::lock_guard lock(mutex_);
    limit_ = bytes;
    Trim();
}

std::size_t RenderCache::Size() const
{
    std::lock_guard lock(mutex_);
    return size_;
}

void RenderCache::Trim()
{
    while (size_ > limit_) {
        size_ -= entries_.back().bytes;
        byKey_.erase(entries_.back().key);
        entries_.pop_back();
    }
}

} // namespace Marlox
