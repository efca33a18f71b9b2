#pragma once

#include "system/base/Types.h"

#include <bit>

namespace Marlox {

class MxID;
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
/// Whether the tag's value is the address of something rather than a number.
constexpr bool HoldsAddress(u32 tag)
{
    const TagType type = TypeOfTag(tag);
    return type == TagType::String || type == TagType::Object || type == TagType::Pointer ||
           type == TagType::InputID;
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

} // namespace Marlox
