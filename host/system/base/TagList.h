#pragma once

#include "system/base/MxID.h"
#include "system/base/Types.h"

#include <atomic>
#include <bit>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Marlox {

class Object;
class Registry;
class ScriptVal;
class TagList;

/// The type of a tag's value, from the top hexadecimal digit of its id.
enum class TagType : u32 {
    Integer = 1, // also booleans and flags
    Double = 2,
    String = 3, // narrow, owned by the caller
    Object = 4,
    Pointer = 6, // a function, a record, a class id
    InputID = 8,
};

constexpr TagType TypeOfTag(u32 tag)
{
    return TagType(tag >> 28);
}
constexpr u32 GroupOfTag(u32 tag)
{
    return (tag >> 16) & 0xfffu;
}

using RegInitFunction = bool (*)(Registry*);
using RegCleanupFunction = void (*)(Registry*);
using CreateFunction = Object* (*)(const Registry*, const ScriptVal&, const TagList&);
/// Translates between a script table and a tag list for the script calls "Create", "GetAttrs",
/// "SetAttrs" and "UserControl". `toScript` is the direction. False: the call is not one of them,
/// or a value did not fit.
using TagMapFunction = bool (*)(const MxID& call, bool toScript, ScriptVal& values, TagList& tags);

/// The 64 bits of a tag's value. Every form is a constant expression, so that whole tables of pairs
/// can lie in a library's constant data.
union TagValue {
    u64 bits;
    const char* text;
    const void* pointer;
    RegInitFunction regInit;
    RegCleanupFunction regCleanup;
    CreateFunction create;
    TagMapFunction tagMap;

    constexpr TagValue() : bits(0) {}
    constexpr TagValue(bool v) : bits(v ? 1 : 0) {}
    constexpr TagValue(int v) : bits(u64(int64(v))) {}
    constexpr TagValue(unsigned v) : bits(v) {}
    constexpr TagValue(long v) : bits(u64(v)) {}
    constexpr TagValue(unsigned long v) : bits(v) {}
    constexpr TagValue(double v) : bits(std::bit_cast<u64>(v)) {}
    constexpr TagValue(const char* v) : text(v) {}
    constexpr TagValue(const void* v) : pointer(v) {}
    constexpr TagValue(const Object* v) : pointer(v) {} // wherever Object lies within the class
    constexpr TagValue(RegInitFunction v) : regInit(v) {}
    constexpr TagValue(RegCleanupFunction v) : regCleanup(v) {}
    constexpr TagValue(CreateFunction v) : create(v) {}
    constexpr TagValue(TagMapFunction v) : tagMap(v) {}
};
static_assert(sizeof(TagValue) == 8);

struct TagPair {
    u64 tag = 0;
    TagValue value;

    u64 Bits() const { return std::bit_cast<u64>(value); }
    // By the tag's type; a double that no integer holds becomes the nearest, a NaN 0.
    MARLOXSYSTEM_EXPORT int64 AsLong() const;
    MARLOXSYSTEM_EXPORT double AsDouble() const;
    MARLOXSYSTEM_EXPORT bool AsBool() const;
};

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
    void Add(u32 tag, TagValue value);
    /// Adds a string that the list keeps a copy of.
    void AddCopy(u32 tag, std::string text);
    /// Replaces the first value of the tag, or adds it.
    void Set(u32 tag, TagValue value);
    void SetCopy(u32 tag, std::string text);
    void Remove(u32 tag);

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

    // A missing tag yields the default; integers and doubles convert into each other.
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
    const char* Keep(std::string text);
    void CopyFrom(const TagList& other);

    std::vector<TagPair> pairs_;
    std::unique_ptr<std::deque<std::string>> ownTexts_;
    mutable std::atomic<std::recursive_mutex*> mutex_{nullptr}; // made at the first lock
};

} // namespace Marlox
