#include "controls/color/ColorSuppressionControl.h"

namespace Marlox {

std::size_t ColorSuppressionControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ColorSuppressionFacts : GenericInspectorFacts {
    using Class = ColorSuppressionControl;
    static constexpr char name[] = "ColorSuppressionControl";
    static constexpr RecordFacts records[] = {
        {"ColorSuppressionControl", "ColorSuppressionControl"}};
    struct Resources {
        ResDIB knob{"Controls.ColorSuppression.Knob", 0};
        ResDIB knobCenter{"Controls.ColorSuppression.KnobCenter", 0};
        ResDIB knobSelected{"Controls.ColorSuppression.KnobSelected", 0};
        ResDIB wheel{"Controls.ColorSuppression.Wheel", 0};
        ResColor textColour{"Controls.Other.TextColour", {220, 220, 220}};
        ResData layout{"Controls.ColorSuppression.Layout"};
    };
};

} // namespace

template <>
ControlClass<ColorSuppressionFacts> controlClass<ColorSuppressionFacts>{};
MARLOX_SCRIPT_CASTS(ColorSuppressionControl)

} // namespace Marlox
