#include "controls/color/ColorGamutControl.h"

namespace Marlox {

std::size_t ColorGamutControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ColorGamutFacts : GenericInspectorFacts {
    using Class = ColorGamutControl;
    static constexpr char name[] = "ColorGamutControl";
    static constexpr RecordFacts records[] = {{"ColorGamutControl", "ColorGamutControl"}};
    struct Resources {
        ResData layout{"Controls.Gamut.Layout"};
    };
};

} // namespace

template <>
ControlClass<ColorGamutFacts> controlClass<ColorGamutFacts>{};
MARLOX_SCRIPT_CASTS(ColorGamutControl)

} // namespace Marlox
