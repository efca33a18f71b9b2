#include "system/viewer/ToolGroup.h"

namespace Marlox {

namespace {

// The declarations made so far, linked through themselves: load time only, so no lock.
constinit ToolGroup* first = nullptr;
constinit ToolGroup* last = nullptr;

} // namespace

ToolGroup::ToolGroup(const char* name, const char* overlayClass, const char* label) noexcept
    : name_(name), overlayClass_(overlayClass), label_(label), previous_(last)
{
    (last ? last->next_ : first) = this;
    last = this;
}

ToolGroup::~ToolGroup()
{
    (previous_ ? previous_->next_ : first) = next_;
    (next_ ? next_->previous_ : last) = previous_;
}

std::vector<const ToolGroup*> ToolGroup::Declared()
{
    std::vector<const ToolGroup*> declared;
    for (const ToolGroup* group = first; group; group = group->next_) {
        declared.push_back(group);
    }
    return declared;
}

const char* ToolGroup::LabelOf(const MxID& overlayClass)
{
    for (const ToolGroup* group = first; group; group = group->next_) {
        if (group->label_ && group->OverlayClass() == overlayClass)
            return group->label_;
    }
    return nullptr;
}

} // namespace Marlox
