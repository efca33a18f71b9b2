#include "controls/viewer/CrosshairControl.h"

namespace Marlox {

std::size_t CrosshairControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct CrosshairFacts : GenericOverlayFacts {
    using Class = CrosshairControl;
    static constexpr char name[] = "CrosshairControl";
    static constexpr RecordFacts records[] = {{"CrosshairControl", "CrosshairControl"}};
};

} // namespace

template <>
ControlClass<CrosshairFacts> controlClass<CrosshairFacts>{};
MARLOX_SCRIPT_CASTS(CrosshairControl)

} // namespace Marlox
