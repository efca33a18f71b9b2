#include "controls/viewer/RectangleControl.h"

namespace Marlox {

std::size_t RectangleControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct RectangleFacts : GenericOverlayFacts {
    using Class = RectangleControl;
    static constexpr char name[] = "RectangleControl";
    static constexpr RecordFacts records[] = {{"RectangleControl", "RectangleControl"}};
};

} // namespace

template <>
ControlClass<RectangleFacts> controlClass<RectangleFacts>{};
MARLOX_SCRIPT_CASTS(RectangleControl)

} // namespace Marlox
