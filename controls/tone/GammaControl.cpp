#include "controls/tone/GammaControl.h"

namespace Marlox {

std::size_t GammaControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct GammaFacts : GenericInspectorFacts {
    using Class = GammaControl;
    static constexpr char name[] = "GammaControl";
    static constexpr RecordFacts records[] = {{"GammaControl", "GammaControl"}};
    struct Resources {
        ResColor backgroundColour{"Controls.Gamma.BackgroundColour", {0, 0, 0}};
        ResColor curveColour{"Controls.Gamma.CurveColour", {224, 224, 224}};
        ResColor dashedColour{"Controls.Gamma.DashedColour", {148, 148, 148}};
        ResColor majorGridColour{"Controls.Gamma.MajorGridColour", {93, 93, 93}};
        ResColor minorGridColour{"Controls.Gamma.MinorGridColour", {54, 54, 54}};
        ResData layout{"Controls.Gamma.Layout"};
    };
};

} // namespace

template <>
ControlClass<GammaFacts> controlClass<GammaFacts>{};
MARLOX_SCRIPT_CASTS(GammaControl)

} // namespace Marlox
