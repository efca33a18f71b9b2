#pragma once

#include "system/base/MxID.h"
#include "system/base/TagPair.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Marlox {

/// An ordered list of (tag id, value) pairs, ended in memory by a pair whose tag is 0. It is how
/// the host passes optional arguments and how a control's creation attributes arrive. The same tag
/// may stand in it more than once; getters take the first. Strings and objects are not owned,
/// except those added by AddCopy.
class MARLOXSYSTEM_EXPORT TagList {
public:
    TagList();
    /// Copies the pairs up to the one whose tag is 0; null makes an empty list.
    explicit TagList(const TagPair* pairs);
    TagList(std::initializer_list<TagPair> pairs);
    TagList(const TagList& other);
    TagList(TagList&& other) noexcept;
    TagList& operator=(const TagList& other);
    TagList& operator=(TagList&& other) noexcept;
    ~TagList();

    void Init(const TagPair* pairs);
    void Clear();
    void Add(u32 tag, TagValue value); // the tag 0 is none and adds nothing
    /// Adds a string that the list keeps a copy of.
    void AddCopy(u32 tag, std::string text);
    /// Replaces the first value of the tag, or adds it.
    void Set(u32 tag, TagValue value);
    void SetCopy(u32 tag, std::string text);
    void Remove(u32 tag);
    /// Takes over the pairs of `from` in place of those with the same tags. Texts are copied.
    void Merge(const TagList& from);

    /// False, and `out` untouched, if the tag is missing.
    bool Get(u32 tag, u64& out) const;
    const TagPair* Find(u32 tag) const;
    /// The next pair with the same tag behind `previous`, or null.
    const TagPair* FindNext(const TagPair* previous) const;
    bool FindQuery(u32 tag) const { return Find(tag) != nullptr; }
    /// Iteration in order; Next returns null behind the last pair.
    const TagPair* First() const;
    const TagPair* Next(const TagPair* previous) const;
    std::size_t Count() const { return pairs_.size(); }

    // A missing tag yields the default, and so does one whose type (the top digit of its id) holds
    // another sort of value: a number for a text, a text for a number. Integers and doubles convert
    // into each other.
    int64 GetLong(u32 tag, int64 missing = 0) const;
    bool GetBool(u32 tag, bool missing = false) const;
    double GetDouble(u32 tag, double missing = 0.0) const;
    const char* GetString(u32 tag, const char* missing = nullptr) const;
    /// Reads a class or input id: a pointer tag holds the address of an MxID, a string or input-id
    /// tag its text.
    MxID GetID(u32 tag, const MxID& missing = MxID()) const;
    const void* GetPtr(u32 tag, const void* missing = nullptr) const;
    Object* GetObject(u32 tag, Object* missing = nullptr) const;

    /// For lists that several threads read and change. Recursive.
    void ObtainLock() const;
    void ReleaseLock() const;

private:
    const TagPair* FindNumber(u32 tag) const;
    const TagPair* FindAddress(u32 tag) const;
    const char* Keep(std::string text);
    void CopyFrom(const TagList& other);

    std::vector<TagPair> pairs_;
    std::unique_ptr<std::deque<std::string>> ownTexts_;
    mutable std::atomic<std::recursive_mutex*> mutex_{nullptr}; // made at the first lock
};

} // namespace Marlox
