#include "controls/inspector/RangeControl.h"

namespace Marlox {

std::size_t RangeControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct RangeFacts : GenericInspectorFacts {
    using Class = RangeControl;
    static constexpr char name[] = "RangeControl";
    static constexpr RecordFacts records[] = {{"RangeControl", "RangeControl"}};
    struct Resources {
        ResDIB caps[4]{{"Controls.Range.Cap.1.1", 0},
                       {"Controls.Range.Cap.1.2", 0},
                       {"Controls.Range.Cap.2.1", 0},
                       {"Controls.Range.Cap.2.2", 0}};
        ResDIB knobs[4]{{"Controls.Range.Knob.1", 0},
                        {"Controls.Range.Knob.2", 0},
                        {"Controls.Range.Knob.3", 0},
                        {"Controls.Range.Knob.4", 0}};
        ResDIB normal{"Controls.Range.Normal", 0};
        ResDIB track{"Controls.Range.Track", 0};
        ResColor inRangeColour{"Controls.InRangeColour", {146, 146, 146}, {41, 41, 41}};
        ResData layout{"Controls.Range.Layout"};
        ResData data{"Controls.Range.Data"};
    };
    struct ScriptVals {
        ScriptVal data;
    };
};

} // namespace

template <>
ControlClass<RangeFacts> controlClass<RangeFacts>{};
MARLOX_SCRIPT_CASTS(RangeControl)

} // namespace Marlox
