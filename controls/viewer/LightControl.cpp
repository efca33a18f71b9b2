#include "controls/viewer/LightControl.h"

namespace Marlox {

std::size_t LightControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct LightFacts : GenericOverlayFacts {
    using Class = LightControl;
    static constexpr char name[] = "LightControl";
    static constexpr char scriptBase[] = "TransformControl";
    static constexpr RecordFacts records[] = {{"LightControl", "LightControl", "TransformControl"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000065, 1}};
};

} // namespace

template <>
ControlClass<LightFacts> controlClass<LightFacts>{};
MARLOX_SCRIPT_CASTS(LightControl)

} // namespace Marlox
