#include "controls/viewer/PositionerControl.h"

namespace Marlox {

std::size_t PositionerControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct PositionerFacts : GenericOverlayFacts {
    using Class = PositionerControl;
    static constexpr char name[] = "PositionerControl";
    static constexpr RecordFacts records[] = {{"PositionerControl", "PositionerControl"}};
};

} // namespace

template <>
ControlClass<PositionerFacts> controlClass<PositionerFacts>{};
MARLOX_SCRIPT_CASTS(PositionerControl)

} // namespace Marlox
