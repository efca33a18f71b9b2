#include "controls/tone/SplineControl.h"

namespace Marlox {

bool SplineControl::RegInit(Registry* record)
{
    return Object::RegInit(record);
}

void SplineControl::RegCleanup(Registry* record)
{
    Object::RegCleanup(record);
}

std::size_t SplineControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct SplineFacts : GenericInspectorFacts {
    using Class = SplineControl;
    static constexpr char name[] = "SplineControl";
    static constexpr RecordFacts records[] = {{"SplineControl", "SplineControl"}};
    static constexpr FurtherTag furtherTags[] = {
        {0x10000051, 1}, {REG_DisplayName, "Spline Control"}, {REG_Category, "Controls\\Spline"}};
    struct Resources {
        ResDIB pickButton[2]{{"Controls.LUT.PickButton.1", 0}, {"Controls.LUT.PickButton.2", 0}};
        ResData layout{"Controls.LUT.Layout"};
    };
};

} // namespace

template <>
ControlClass<SplineFacts> controlClass<SplineFacts>{};
MARLOX_SCRIPT_CASTS(SplineControl)

} // namespace Marlox
