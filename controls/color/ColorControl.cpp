#include "controls/color/ColorControl.h"

namespace Marlox {

std::size_t ColorControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ColorFacts : GenericInspectorFacts {
    using Class = ColorControl;
    static constexpr char name[] = "ColorControl";
    static constexpr RecordFacts records[] = {{"ColorControl", "ColorControl"}};
    struct Resources {
        ResDIB arrows[8]{{"Controls.Color.Arrow.1.1", 0}, {"Controls.Color.Arrow.1.2", 0},
                         {"Controls.Color.Arrow.1.3", 0}, {"Controls.Color.Arrow.1.4", 0},
                         {"Controls.Color.Arrow.2.1", 0}, {"Controls.Color.Arrow.2.2", 0},
                         {"Controls.Color.Arrow.2.3", 0}, {"Controls.Color.Arrow.2.4", 0}};
        ResDIB chequer{"Controls.Color.Chequer", 0};
        ResDIB knobs[10]{{"Controls.Color.Knob.1.1", 0}, {"Controls.Color.Knob.1.2", 0},
                         {"Controls.Color.Knob.2.1", 0}, {"Controls.Color.Knob.2.2", 0},
                         {"Controls.Color.Knob.3.1", 0}, {"Controls.Color.Knob.3.2", 0},
                         {"Controls.Color.Knob.4.1", 0}, {"Controls.Color.Knob.4.2", 0},
                         {"Controls.Color.Knob.5.1", 0}, {"Controls.Color.Knob.5.2", 0}};
        ResDIB pickButton[2]{{"Controls.Color.PickButton.1", 0},
                             {"Controls.Color.PickButton.2", 0}};
        ResDIB fieldAlphaKnob{"Controls.ColorField.AlphaKnob", 0};
        ResDIB fieldChequer{"Controls.ColorField.Chequer", 0};
        ResDIB fieldHueKnob{"Controls.ColorField.HueKnob", 0};
        ResDIB fieldSatValKnob{"Controls.ColorField.SatValKnob", 0};
        ResColor expressionColour{"Controls.ExpressionColour", {230, 215, 135}, {9, 9, 9}};
        ResColor borderColour{"Controls.Other.BorderColour", {9, 9, 9}};
        ResColor textColour{"Controls.Other.TextColour", {220, 220, 220}};
        ResData collapsedLayout{"Controls.Color.Layout.Collapsed"};
        ResData expandedLayout{"Controls.Color.Layout.Expanded"};
        ResData sliderLayout{"Controls.Color.Layout.Slider"};
    };
};

} // namespace

template <>
ControlClass<ColorFacts> controlClass<ColorFacts>{};
MARLOX_SCRIPT_CASTS(ColorControl)

} // namespace Marlox
