#include "controls/viewer/EllipseControl.h"

namespace Marlox {

std::size_t EllipseControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct EllipseFacts : GenericOverlayFacts {
    using Class = EllipseControl;
    static constexpr char name[] = "EllipseControl";
    static constexpr RecordFacts records[] = {{"EllipseControl", "EllipseControl"}};
};

} // namespace

template <>
ControlClass<EllipseFacts> controlClass<EllipseFacts>{};
MARLOX_SCRIPT_CASTS(EllipseControl)

} // namespace Marlox
