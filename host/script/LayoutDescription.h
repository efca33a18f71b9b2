#pragma once

#include "script/LayoutModel.h"
#include "system/base/MxID.h"
#include "system/base/ScriptVal.h"

#include <string>
#include <vector>

namespace Marlox {

/// A layout description as read from its table, before any widget exists. In a table the type is
/// the first element or the field `type`; the further elements of a group are its children:
///
///     {"VGroup", spacing = 2,
///         {"HGroup", {"Item", name = "label", weight = 0}, {"Item", name = "slider"}},
///         {"Container", name = "expression"}}
///
/// Types: "HGroup", "VGroup", "Item" (a place for one widget), "Container" (widgets one below the
/// other), "Spacer", "Label" (shows its own `text`). Fields, upper or lower case alike: `name`;
/// `weight` (share of the room left over, 1 unless given, 0 for labels); `minwidth`, `minheight`,
/// `maxwidth`, `maxheight` (pixels); `align` ("left", "right", "top", "bottom", "centre",
/// "hcentre", "vcentre", "fill", several with blanks between; "center" too); of groups `spacing`
/// (pixels) and `margin` (pixels, one number or {left, top, right, bottom}); of containers
/// `spacing`. Other fields are for whoever attaches the widgets.
struct LayoutDescription {
    enum class Type { HGroup, VGroup, Item, Container, Spacer, Label };

    Type type = Type::Item;
    MxID name;
    std::string text;
    LayoutBox box; // limits, weight and the like; its children are not set
    std::vector<LayoutDescription> children;
    ScriptVal source; // the table it was read from

    bool IsGroup() const { return type == Type::HGroup || type == Type::VGroup; }
};

/// The type as descriptions write it.
const char* NameOfLayoutType(LayoutDescription::Type type);

/// False and `error`, which starts with the path of the fault: "VGroup[2].HGroup[1]: unknown type
/// \"HGruop\"", where the numbers count the children of a group.
bool ReadLayoutDescription(const ScriptVal& table, LayoutDescription& description,
                           std::string& error);

} // namespace Marlox
