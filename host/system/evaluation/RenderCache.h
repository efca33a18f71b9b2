#pragma once

#include "system/values/Image.h"

#include <list>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Marlox {

/// Images by key, up to a limit of memory; the one longest unused goes first. Thread-safe.
class MARLOXSYSTEM_EXPORT RenderCache {
public:
    /// A quarter of the machine's memory, at most 2 GiB.
    static std::size_t DefaultLimit();
    explicit RenderCache(std::size_t limit = DefaultLimit()) : limit_(limit) {}

    Ref<Image> Find(const std::string& key); // null: not here; found: used now
    void Insert(const std::string& key, Ref<Image> image);
    void SetLimit(std::size_t bytes);
    std::size_t Size() const; // bytes of pixels

private:
    struct Entry {
        std::string key;
        Ref<Image> image;
        std::size_t bytes;
    };
    void Trim();

    mutable std::mutex mutex_;
    std::list<Entry> entries_; // the one used last in front
    std::unordered_map<std::string, std::list<Entry>::iterator> byKey_;
    std::size_t limit_;
    std::size_t size_ = 0;
};

} // namespace Marlox
