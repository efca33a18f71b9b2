#include "controls/tone/LevelsControl.h"

namespace Marlox {

std::size_t LevelsControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct LevelsFacts : GenericInspectorFacts {
    using Class = LevelsControl;
    static constexpr char name[] = "LevelsControl";
    static constexpr RecordFacts records[] = {{"LevelsControl", "LevelsControl"}};
    struct Resources {
        ResDIB gamma{"Controls.Levels.Gamma", 0};
        ResDIB high{"Controls.Levels.High", 0};
        ResDIB low{"Controls.Levels.Low", 0};
        ResData layout{"Controls.Levels.Layout"};
    };
};

} // namespace

template <>
ControlClass<LevelsFacts> controlClass<LevelsFacts>{};
MARLOX_SCRIPT_CASTS(LevelsControl)

} // namespace Marlox
