#include "script/FFI.h"
#include "system/base/HostClassIds.h"
#include "system/base/HostTags.h"
#include "system/base/Object.h"
#include "system/base/Registry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <set>

namespace Marlox {

namespace {

/// Host-wide tags by the names that creation tables use. Overlays are bound to the same inputs as
/// inspector controls, so both shared maps know all of them.
constexpr TagMapEntry hostTags[] = {
    {"IA_ControlIndex", IA_ControlIndex},
    {"IA_OverlayIndex", IA_OverlayIndex},
    {"IA_Integer", IA_Integer},
    {"IA_Passive", IA_Passive},
    {"IA_Animatable", IA_Animatable},
    {"IA_ReadOnly", IA_ReadOnly},
    {"IA_OverlayStays", IA_OverlayStays},
    {"IA_Stepped", IA_Stepped},
    {"IA_Computed", IA_Computed},
    {"IA_Published", IA_Published},
    {"IA_Channel", IA_Channel},
    {"IA_Range", IA_Range},
    {"IAD_Minimum", IAD_Minimum},
    {"IAD_Maximum", IAD_Maximum},
    {"IAD_LowScale", IAD_LowScale},
    {"IAD_HighScale", IAD_HighScale},
    {"IAD_Default", IAD_Default},
    {"IAD_DefaultX", IAD_DefaultX},
    {"IAD_DefaultY", IAD_DefaultY},
    {"IAS_Default", IAS_Default},
    {"IAS_Name", IAS_Name},
    {"IAS_Help", IAS_Help},
    {"IAS_Control", IAS_Control},
    {"IAS_Overlay", IAS_Overlay},
    {"IAS_DataType", IAS_DataType},
    {"IAS_SharedWith", IAS_SharedWith},
    {"IAS_OverlayWith", IAS_OverlayWith},
    {"IAS_OverlayOffset", IAS_OverlayOffset},
    {"IC_EditDisabled", IC_EditDisabled},
    {"IC_Time", IC_Time},
    {"IC_Centred", IC_Centred},
    {"IC_KnobStyle", IC_KnobStyle},
    {"IC_TabStop", IC_TabStop},
    {"IC_Disabled", IC_Disabled},
    {"IC_Hidden", IC_Hidden},
    {"IC_NoLabel", IC_NoLabel},
    {"ICD_Gamma", ICD_Gamma},
    {"ICD_Centre", ICD_Centre},
    {"ICD_Step", ICD_Step},
    {"ICD_Snap", ICD_Snap},
    {},
};

/// Tags of class ids hold the address of an id, which must stay when the tag list is gone.
const MxID* LastingID(const std::string& text)
{
    static auto* ids = new std::set<MxID>;
    return &*ids->insert(MxID(std::string_view(text))).first;
}

std::optional<int64> ToInteger(const ScriptVal& value)
{
    if (value.GetType() == ScriptVal::Type::Boolean)
        return value.ToBool() ? 1 : 0;
    if (!value.IsNumber())
        return {};
    const double number = value.ToNumber();
    // 2^63 itself does not fit; NaN fails both comparisons.
    if (!(number >= -0x1p63 && number < 0x1p63) || number != std::trunc(number))
        return {};
    return int64(number);
}

/// The number of a name in the entry's enumeration.
std::optional<int64> NumberOfName(const TagMapEntry& entry, const std::string& name)
{
    const char* const* values = entry.enumeration ? entry.enumeration->values : nullptr;
    for (int64 number = 0; values && values[number]; ++number) {
        if (name == values[number])
            return number;
    }
    return {};
}

/// A list of strings, one pair for each. An empty one would be no pair: it says nothing.
bool ToRepeatedTag(const TagMapEntry& entry, const ScriptVal& list, TagList& tags)
{
    const auto& texts = list.Elements();
    const bool fits = !texts.empty() && list.Fields().empty() &&
                      std::all_of(texts.begin(), texts.end(),
                                  [](const ScriptVal& text) { return text.IsString(); });
    if (!fits)
        return false;
    tags.Remove(entry.tag);
    for (const ScriptVal& text : texts)
        tags.AddCopy(entry.tag, text.ToString());
    return true;
}

bool ToTag(const TagMapEntry& entry, const ScriptVal& value, TagList& tags)
{
    if (entry.repeated && value.IsTable())
        return ToRepeatedTag(entry, value, tags);
    switch (entry.ValueType()) {
    case TagType::Integer:
        if (const std::optional<int64> integer =
                value.IsString() ? NumberOfName(entry, value.ToString()) : ToInteger(value)) {
            tags.Set(entry.tag, long(*integer));
            return true;
        }
        return false;
    case TagType::Double:
        if (!value.IsNumber())
            return false;
        tags.Set(entry.tag, value.ToNumber());
        return true;
    case TagType::String:
    case TagType::InputID:
        if (!value.IsString())
            return false;
        if (entry.repeated)
            tags.Remove(entry.tag); // all that stand there
        tags.SetCopy(entry.tag, value.ToString());
        return true;
    case TagType::Pointer:
        if (!value.IsString())
            return false;
        tags.Set(entry.tag, static_cast<const void*>(LastingID(value.ToString())));
        return true;
    case TagType::Object:
        if (const auto* object = dynamic_cast<const Object*>(value.ToObject())) {
            tags.Set(entry.tag, object);
            return true;
        }
        return false;
    }
    return false;
}

ScriptVal FromTag(TagType type, const TagPair& pair)
{
    switch (type) {
    case TagType::Integer:
        return ScriptVal(int64(pair.Bits()));
    case TagType::Double:
        return ScriptVal(std::bit_cast<double>(pair.Bits()));
    case TagType::String:
    case TagType::InputID:
        return pair.value.text ? ScriptVal(pair.value.text) : ScriptVal();
    case TagType::Pointer:
        return pair.value.pointer ? ScriptVal(static_cast<const MxID*>(pair.value.pointer)->c_str())
                                  : ScriptVal();
    case TagType::Object:
        return pair.value.pointer
                   ? ScriptVal(static_cast<Object*>(const_cast<void*>(pair.value.pointer)))
                   : ScriptVal();
    }
    return ScriptVal();
}

ScriptVal FromRepeatedTag(const TagList& tags, const TagPair& first)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const TagPair* pair = &first; pair; pair = tags.FindNext(pair))
        list.Append(FromTag(TagType::String, *pair));
    return list;
}

} // namespace

TagType TagMapEntry::ValueType() const
{
    if (type != TagType(0))
        return type;
    return tag == REG_ParentName ? TagType::String : TypeOfTag(tag);
}

bool scriptval_maptags(const TagMapEntry* table, bool toScript, ScriptVal& values, TagList& tags)
{
    bool allFit = true;
    for (const TagMapEntry* entry = table; entry && entry->name; ++entry) {
        if (toScript) {
            if (const TagPair* pair = tags.Find(entry->tag))
                values.Set(entry->name, entry->repeated ? FromRepeatedTag(tags, *pair)
                                                        : FromTag(entry->ValueType(), *pair));
        } else if (const ScriptVal& value = values.Get(entry->name); !value.IsNil()) {
            allFit = ToTag(*entry, value, tags) && allFit;
        }
    }
    return allFit;
}

const TagMapEntry* SharedCreationMap(const char* name)
{
    const bool known = name && (std::strcmp(name, CreationMap_InputControl) == 0 ||
                                std::strcmp(name, CreationMap_PreviewControl) == 0);
    return known ? hostTags : nullptr;
}

} // namespace Marlox
