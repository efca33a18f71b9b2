#include "controls/color/GradientControl.h"

namespace Marlox {

std::size_t GradientControl::SizeOf() const
{
    return sizeof(*this);
}

bool GradientControl::SetSelectedColor(const GradientColor&, double)
{
    return false; // it shows no stops to select
}

namespace {

struct GradientFacts : GenericInspectorFacts {
    using Class = GradientControl;
    static constexpr char name[] = "GradientControl";
    static constexpr RecordFacts records[] = {{"GradientControl", "GradientControl"}};
    struct Resources {
        ResDIB arrows[8]{{"Controls.Gradient.Arrow.1.1", 0}, {"Controls.Gradient.Arrow.1.2", 0},
                         {"Controls.Gradient.Arrow.1.3", 0}, {"Controls.Gradient.Arrow.1.4", 0},
                         {"Controls.Gradient.Arrow.2.1", 0}, {"Controls.Gradient.Arrow.2.2", 0},
                         {"Controls.Gradient.Arrow.2.3", 0}, {"Controls.Gradient.Arrow.2.4", 0}};
        ResDIB arrowNormal{"Controls.Gradient.ArrowNormal", 0};
        ResDIB arrowSelected{"Controls.Gradient.ArrowSelected", 0};
        ResDIB chequer{"Controls.Gradient.Chequer", 0};
        ResDIB deleteButton{"Controls.Gradient.Delete", 0};
        ResDIB knobs[10]{{"Controls.Gradient.Knob.1.1", 0}, {"Controls.Gradient.Knob.1.2", 0},
                         {"Controls.Gradient.Knob.2.1", 0}, {"Controls.Gradient.Knob.2.2", 0},
                         {"Controls.Gradient.Knob.3.1", 0}, {"Controls.Gradient.Knob.3.2", 0},
                         {"Controls.Gradient.Knob.4.1", 0}, {"Controls.Gradient.Knob.4.2", 0},
                         {"Controls.Gradient.Knob.5.1", 0}, {"Controls.Gradient.Knob.5.2", 0}};
        ResDIB nextButton{"Controls.Gradient.Next", 0};
        ResDIB previousButton{"Controls.Gradient.Previous", 0};
        ResColor borderColour{"Controls.Other.BorderColour", {9, 9, 9}};
        ResData collapsedLayout{"Controls.Gradient.Layout.Collapsed"};
        ResData expandedLayout{"Controls.Gradient.Layout.Expanded"};
        ResData sliderLayout{"Controls.Gradient.Layout.Slider"};
    };
};

} // namespace

template <>
ControlClass<GradientFacts> controlClass<GradientFacts>{};
MARLOX_SCRIPT_CASTS(GradientControl)

} // namespace Marlox
