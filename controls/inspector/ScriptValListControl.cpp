#include "controls/inspector/ScriptValListControl.h"

namespace Marlox {

std::size_t ScriptValListControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ScriptValListFacts : GenericInspectorFacts {
    using Class = ScriptValListControl;
    static constexpr char name[] = "ScriptValListControl";
    static constexpr RecordFacts records[] = {{"ScriptValListControl", "ScriptValListControl"}};
    struct Resources {
        ResColor selectedItemColour{"System.SelectedItemColour", {255, 255, 255}, {24, 24, 24}};
        ResColor textColour{"System.TextColour", {146, 146, 146}};
        ResData layout{"Controls.ScriptValList.Layout"};
        ResData data{"Controls.ScriptValList.Data"};
    };
    struct ScriptVals {
        ScriptVal data;
    };
};

} // namespace

template <>
ControlClass<ScriptValListFacts> controlClass<ScriptValListFacts>{};
MARLOX_SCRIPT_CASTS(ScriptValListControl)

} // namespace Marlox
