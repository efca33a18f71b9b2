#include "controls/viewer/ObloidControl.h"

namespace Marlox {

std::size_t ObloidControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ObloidFacts : GenericOverlayFacts {
    using Class = ObloidControl;
    static constexpr char name[] = "ObloidControl";
    static constexpr RecordFacts records[] = {{"CubeControl", "ObloidControl"}};
};

} // namespace

template <>
ControlClass<ObloidFacts> controlClass<ObloidFacts>{};
MARLOX_SCRIPT_CASTS(ObloidControl)

} // namespace Marlox
