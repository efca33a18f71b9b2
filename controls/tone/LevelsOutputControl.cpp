#include "controls/tone/LevelsOutputControl.h"

namespace Marlox {

std::size_t LevelsOutputControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct LevelsOutputFacts : GenericInspectorFacts {
    using Class = LevelsOutputControl;
    static constexpr char name[] = "LevelsOutputControl";
    static constexpr RecordFacts records[] = {{"LevelsOutputControl", "LevelsOutputControl"}};
    struct Resources {
        ResDIB gradient{"Controls.LevelsOutput.Gradient", 0};
        ResDIB high{"Controls.LevelsOutput.High", 0};
        ResDIB low{"Controls.LevelsOutput.Low", 0};
        ResData layout{"Controls.LevelsOutput.Layout"};
    };
};

} // namespace

template <>
ControlClass<LevelsOutputFacts> controlClass<LevelsOutputFacts>{};
MARLOX_SCRIPT_CASTS(LevelsOutputControl)

} // namespace Marlox
