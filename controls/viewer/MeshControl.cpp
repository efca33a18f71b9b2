#include "controls/viewer/MeshControl.h"

namespace Marlox {

std::size_t MeshControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct MeshFacts : GenericOverlayFacts {
    using Class = MeshControl;
    static constexpr char name[] = "MeshControl";
    static constexpr RecordFacts records[] = {{"MeshControl", "MeshControl"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000064, 1}};
};

} // namespace

template <>
ControlClass<MeshFacts> controlClass<MeshFacts>{};
MARLOX_SCRIPT_CASTS(MeshControl)

} // namespace Marlox
