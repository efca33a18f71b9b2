#include "controls/inspector/ScrewControl.h"

namespace Marlox {

std::size_t ScrewControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ScrewFacts : GenericInspectorFacts {
    using Class = ScrewControl;
    static constexpr char name[] = "ScrewControl";
    static constexpr RecordFacts records[] = {{"ScrewControl", "ScrewControl"}};
    struct Resources {
        ResDIB frame{"Controls.Screw.Frame", 0};
        ResDIB grip{"Controls.Screw.Grip", 0};
        ResDIB reset{"Controls.Screw.Reset", 0};
        ResData layout{"Controls.Screw.Layout"};
        ResData data{"Controls.Screw.Data"};
    };
    struct ScriptVals {
        ScriptVal data;
    };
};

} // namespace

template <>
ControlClass<ScrewFacts> controlClass<ScrewFacts>{};
MARLOX_SCRIPT_CASTS(ScrewControl)

} // namespace Marlox
