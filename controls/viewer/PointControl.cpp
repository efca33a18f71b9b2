#include "controls/viewer/PointControl.h"

namespace Marlox {

std::size_t PointControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct PointFacts : GenericOverlayFacts {
    using Class = PointControl;
    static constexpr char name[] = "PointControl";
    static constexpr RecordFacts records[] = {{"PointControl", "PointControl"}};
};

} // namespace

template <>
ControlClass<PointFacts> controlClass<PointFacts>{};
MARLOX_SCRIPT_CASTS(PointControl)

} // namespace Marlox
