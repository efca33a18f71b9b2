#include "controls/tone/LogControl.h"

namespace Marlox {

std::size_t LogControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct LogFacts : GenericInspectorFacts {
    using Class = LogControl;
    static constexpr char name[] = "LogControl";
    static constexpr RecordFacts records[] = {{"LogControl", "LogControl"}};
    struct Resources {
        ResColor backgroundColour{"Controls.Log.BackgroundColour", {0, 0, 0}};
        ResColor curveColour{"Controls.Log.CurveColour", {224, 224, 224}};
        ResColor dashedColour{"Controls.Log.DashedColour", {148, 148, 148}};
        ResColor majorGridColour{"Controls.Log.MajorGridColour", {93, 93, 93}};
        ResColor minorGridColour{"Controls.Log.MinorGridColour", {54, 54, 54}};
        ResData layout{"Controls.Log.Layout"};
    };
};

} // namespace

template <>
ControlClass<LogFacts> controlClass<LogFacts>{};
MARLOX_SCRIPT_CASTS(LogControl)

} // namespace Marlox
