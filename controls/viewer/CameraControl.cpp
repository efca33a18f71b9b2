#include "controls/viewer/CameraControl.h"

namespace Marlox {

std::size_t CameraControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct CameraFacts : GenericOverlayFacts {
    using Class = CameraControl;
    static constexpr char name[] = "CameraControl";
    static constexpr char scriptBase[] = "TransformControl";
    static constexpr RecordFacts records[] = {
        {"CameraControl", "CameraControl", "TransformControl"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000064, 1}, {0x10000065, 1}};
};

} // namespace

template <>
ControlClass<CameraFacts> controlClass<CameraFacts>{};
MARLOX_SCRIPT_CASTS(CameraControl)

} // namespace Marlox
