#include "system/viewer/ToolGroup.h"

#include <algorithm>

namespace Marlox {

namespace {

constinit DeclarationList<ToolGroup> groups;

} // namespace

ToolGroup::ToolGroup(const char* name, const char* overlayClass, const char* label) noexcept
    : name_(name), overlayClass_(overlayClass), label_(label)
{
    groups.Append(*this);
}

ToolGroup::~ToolGroup()
{
    groups.Remove(*this);
}

std::vector<const ToolGroup*> ToolGroup::Declared()
{
    return groups.All();
}

const char* ToolGroup::LabelOf(const MxID& overlayClass)
{
    const std::vector<const ToolGroup*> all = groups.All();
    const auto found = std::find_if(all.begin(), all.end(), [&](const ToolGroup* group) {
        return group->Label() && group->OverlayClass() == overlayClass;
    });
    return found == all.end() ? nullptr : (*found)->Label();
}

} // namespace Marlox
