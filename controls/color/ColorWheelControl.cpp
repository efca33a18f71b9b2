#include "controls/color/ColorWheelControl.h"

namespace Marlox {

std::size_t ColorWheelControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ColorWheelFacts : GenericInspectorFacts {
    using Class = ColorWheelControl;
    static constexpr char name[] = "ColorWheelControl";
    static constexpr RecordFacts records[] = {{"ColorWheelControl", "ColorWheelControl"}};
    struct Resources {
        ResDIB knobs[5]{{"Controls.ColorWheel.Knob.1", 0},
                        {"Controls.ColorWheel.Knob.2", 0},
                        {"Controls.ColorWheel.Knob.3", 0},
                        {"Controls.ColorWheel.Knob.4", 0},
                        {"Controls.ColorWheel.Knob.5", 0}};
        ResDIB wheels[2]{{"Controls.ColorWheel.Wheel.1", 0}, {"Controls.ColorWheel.Wheel.2", 0}};
        ResData layout{"Controls.ColorWheel.Layout"};
    };
};

} // namespace

template <>
ControlClass<ColorWheelFacts> controlClass<ColorWheelFacts>{};
MARLOX_SCRIPT_CASTS(ColorWheelControl)

} // namespace Marlox
