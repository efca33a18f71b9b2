#include "controls/color/ColorRangesControl.h"

namespace Marlox {

std::size_t ColorRangesControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ColorRangesFacts : GenericInspectorFacts {
    using Class = ColorRangesControl;
    static constexpr char name[] = "ColorRangesControl";
    static constexpr RecordFacts records[] = {{"ColorRangesControl", "ColorRangesControl"}};
    struct Resources {
        ResDIB node{"Controls.ColorRanges.Node", 0};
        ResColor baseColour{"Controls.ColorRanges.BaseColour", {80, 80, 80}};
        ResColor handleColour{"Controls.ColorRanges.HandleColour", {51, 153, 179}};
        ResData layout{"Controls.ColorRanges.Layout"};
    };
};

} // namespace

template <>
ControlClass<ColorRangesFacts> controlClass<ColorRangesFacts>{};
MARLOX_SCRIPT_CASTS(ColorRangesControl)

} // namespace Marlox
