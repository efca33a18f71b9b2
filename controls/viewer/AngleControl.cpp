#include "controls/viewer/AngleControl.h"

namespace Marlox {

void AngleControl::RegCleanup(Registry* record)
{
    Object::RegCleanup(record);
}

std::size_t AngleControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct AngleFacts : GenericOverlayFacts {
    using Class = AngleControl;
    static constexpr char name[] = "AngleControl";
    static constexpr RecordFacts records[] = {{"AngleControl", "AngleControl"}};
};

} // namespace

template <>
ControlClass<AngleFacts> controlClass<AngleFacts>{};
MARLOX_SCRIPT_CASTS(AngleControl)

} // namespace Marlox
