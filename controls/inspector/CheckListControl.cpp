#include "controls/inspector/CheckListControl.h"

namespace Marlox {

std::size_t CheckListControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct CheckListFacts : GenericInspectorFacts {
    using Class = CheckListControl;
    static constexpr char name[] = "CheckListControl";
    static constexpr RecordFacts records[] = {{"CheckListControl", "CheckListControl"}};
    struct Resources {
        ResColor selectedItemColour{"System.SelectedItemColour", {255, 255, 255}, {24, 24, 24}};
        ResColor textColour{"System.TextColour", {146, 146, 146}};
        ResData layout{"Controls.CheckList.Layout"};
        ResData data{"Controls.CheckList.Data"};
    };
    struct ScriptVals {
        ScriptVal data;
    };
};

} // namespace

template <>
ControlClass<CheckListFacts> controlClass<CheckListFacts>{};
MARLOX_SCRIPT_CASTS(CheckListControl)

} // namespace Marlox
