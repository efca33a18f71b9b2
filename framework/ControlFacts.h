#pragma once

#include "script/FFI.h"
#include "system/base/HostClassIds.h"
#include "system/base/Object.h"
#include "system/base/Registry.h"

#include <algorithm>
#include <array>
#include <string_view>

/// What a control's declaration is written with (see ControlClass.h): constant data, checked while
/// it is compiled.
namespace Marlox {

/// "Built: Mar  5 2020", the date on which this library was compiled.
extern const char buildStamp[];

/// One class id under which a control is registered. The first row of a class is its plain id; the
/// others are variants of the same class, whose constructor compares GetRegistry()->ClassID().
struct RecordFacts {
    const char* id;
    const char* scriptType = nullptr; // null: scripts know no type of that name
    const char* parent = "";          // class id inherited from; empty: that of the facts' base
};

/// A further pair at the end of a record. Compiling fails if the value is of another type than the
/// tag's first digit says; REG_ParentName alone carries a string under a pointer's digit.
struct FurtherTag {
    u32 tag;
    TagValue value;

    consteval FurtherTag(u32 tag, int v) : tag(tag), value(v) { Demand(TagType::Integer); }
    consteval FurtherTag(u32 tag, double v) : tag(tag), value(v) { Demand(TagType::Double); }
    consteval FurtherTag(u32 tag, const char* v) : tag(tag), value(v)
    {
        if (tag != REG_ParentName)
            Demand(TagType::String);
    }

private:
    consteval void Demand(TagType type) const
    {
        if (TypeOfTag(tag) != type)
            throw "the tag's first digit tells another type than the value has";
    }
};

/// The value type that the name of a control's own tag tells by the last letters before the
/// underscore: SLCS_LowName a string, RCD_SetX a double, RCID_Center an input id, RCP_Center a
/// pointer, PLC_DrawMode an integer.
constexpr TagType TypeByName(std::string_view name)
{
    const std::string_view prefix = name.substr(0, name.find('_'));
    if (prefix.ends_with("ID"))
        return TagType::InputID;
    if (prefix.ends_with('D'))
        return TagType::Double;
    if (prefix.ends_with('S'))
        return TagType::String;
    return prefix.ends_with('P') ? TagType::Pointer : TagType::Integer;
}

/// Whether a tag-name table is well formed: ended by an empty entry, tags of group 005 whose first
/// digits agree with their names, no name or tag twice; only strings are repeated.
template <std::size_t size>
consteval bool IsTagNameTable(const TagMapEntry (&table)[size])
{
    if (table[size - 1].name)
        return false;
    for (std::size_t i = 0; i + 1 < size; ++i) {
        if (!table[i].name || GroupOfTag(table[i].tag) != 0x005 ||
            TypeByName(table[i].name) != TypeOfTag(table[i].tag) ||
            (table[i].repeated && TypeOfTag(table[i].tag) != TagType::String))
            return false;
        for (std::size_t k = 0; k < i; ++k) {
            if (table[k].tag == table[i].tag ||
                std::string_view(table[k].name) == std::string_view(table[i].name))
                return false;
        }
    }
    return true;
}

/// Texts of string literals and arrays put together at compile time, ended by a zero.
template <std::size_t... sizes>
consteval auto JoinTexts(const char (&... parts)[sizes])
{
    std::array<char, (sizes + ...) - sizeof...(sizes) + 1> joined{};
    auto end = joined.begin();
    ((end = std::copy_n(parts, sizes - 1, end)), ...);
    return joined;
}

/// Base of all facts: what a control need not say. Each control's facts derive from InspectorFacts
/// or OverlayFacts (framework/ControlClass.h), name at least `Class`, `name` and `records`, and
/// replace whatever else is different for them.
struct CommonFacts {
    /// Pairs behind the common ones of every record, in this order.
    static constexpr std::array<FurtherTag, 0> furtherTags{};
    /// Names of the control's own tags for script tables, ended by an empty entry.
    static constexpr TagMapEntry tagNames[] = {{}};
    /// What scripts can call on an instance, ended by an empty entry.
    static constexpr ScriptOperation operations[] = {{nullptr, nullptr}};
    /// Members: the ResDIB, ResColor and ResData that the control uses.
    struct Resources {};
    /// Members: script values that all instances share, for instance of a data block.
    struct ScriptVals {};
};

} // namespace Marlox
