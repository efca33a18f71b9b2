#include "controls/viewer/XYOffsetControl.h"

namespace Marlox {

std::size_t XYOffsetControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct XYOffsetFacts : GenericOverlayFacts {
    using Class = XYOffsetControl;
    static constexpr char name[] = "XYOffsetControl";
    static constexpr RecordFacts records[] = {{"XYOffsetControl", "XYOffsetControl"}};
};

} // namespace

template <>
ControlClass<XYOffsetFacts> controlClass<XYOffsetFacts>{};
MARLOX_SCRIPT_CASTS(XYOffsetControl)

} // namespace Marlox
