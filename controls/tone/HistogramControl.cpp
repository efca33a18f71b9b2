#include "controls/tone/HistogramControl.h"

namespace Marlox {

std::size_t HistogramControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct HistogramFacts : GenericInspectorFacts {
    using Class = HistogramControl;
    static constexpr char name[] = "HistogramControl";
    static constexpr RecordFacts records[] = {{"HistogramControl", "HistogramControl"}};
    struct Resources {
        ResColor backgroundColour{"Controls.Histogram.BackgroundColour", {64, 64, 64}};
        ResColor gridColour{"Controls.Histogram.GridColour", {9, 9, 9, 102}};
        ResColor guidesColour{"Controls.Histogram.GuidesColour", {71, 71, 71, 178}};
        ResColor inputBlueColour{"Controls.Histogram.InputBlueColour", {0, 121, 255, 102}};
        ResColor inputColour{"Controls.Histogram.InputColour", {146, 146, 146, 102}};
        ResColor inputGreenColour{"Controls.Histogram.InputGreenColour", {0, 255, 0, 102}};
        ResColor inputRedColour{"Controls.Histogram.InputRedColour", {255, 0, 0, 102}};
        ResColor outputColour{"Controls.Histogram.OutputColour", {0, 0, 0, 127}};
        ResData layout{"Controls.Histogram.Layout"};
    };
};

} // namespace

template <>
ControlClass<HistogramFacts> controlClass<HistogramFacts>{};
MARLOX_SCRIPT_CASTS(HistogramControl)

} // namespace Marlox
