#include "controls/inspector/MultiButtonControl.h"

namespace Marlox {

std::size_t MultiButtonControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct MultiButtonFacts : GenericInspectorFacts {
    using Class = MultiButtonControl;
    static constexpr char name[] = "MultiButtonControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_MultiButton, "MultiButtonControl"},
        {CLSID_InputControl_MultiButtonID, "MultiButtonIDControl", CLSID_InputControl_MultiButton}};
    struct Resources {
        ResColor flatColour{"System.FlatColour", {41, 41, 41}};
        ResColor shineColour{"System.ShineColour", {53, 53, 53}};
        ResData layout{"Controls.MultiButton.Layout"};
    };
};

} // namespace

template <>
ControlClass<MultiButtonFacts> controlClass<MultiButtonFacts>{};
MARLOX_SCRIPT_CASTS(MultiButtonControl)

} // namespace Marlox
