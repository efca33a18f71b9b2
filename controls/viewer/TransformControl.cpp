#include "controls/viewer/TransformControl.h"

namespace Marlox {

std::size_t TransformControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct TransformFacts : GenericOverlayFacts {
    using Class = TransformControl;
    static constexpr char name[] = "TransformControl";
    static constexpr RecordFacts records[] = {{"TransformControl", "TransformControl"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000065, 1}};
};

} // namespace

template <>
ControlClass<TransformFacts> controlClass<TransformFacts>{};
MARLOX_SCRIPT_CASTS(TransformControl)

} // namespace Marlox
