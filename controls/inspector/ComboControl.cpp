#include "controls/inspector/ComboControl.h"

namespace Marlox {

std::size_t ComboControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ComboFacts : GenericInspectorFacts {
    using Class = ComboControl;
    static constexpr char name[] = "ComboControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_Combo, "ComboControl"},
        {CLSID_InputControl_ComboID, "ComboIDControl", CLSID_InputControl_Combo}};
    struct Resources {
        ResData horizontalLayout{"Controls.Combo.Layout.Horizontal"};
        ResData verticalLayout{"Controls.Combo.Layout.Vertical"};
    };
};

} // namespace

template <>
ControlClass<ComboFacts> controlClass<ComboFacts>{};
MARLOX_SCRIPT_CASTS(ComboControl)

} // namespace Marlox
