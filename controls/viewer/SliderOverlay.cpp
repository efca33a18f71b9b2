#include "controls/viewer/SliderOverlay.h"

namespace Marlox {

std::size_t SliderOverlay::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct SliderOverlayFacts : GenericOverlayFacts {
    using Class = SliderOverlay;
    static constexpr char name[] = "SliderOverlay";
    static constexpr const MxID* parent = &OverlayControl::ClassID;
    static constexpr RecordFacts records[] = {{"SliderOverlay"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000064, 1},
                                                 {REG_ParentName, "OverlayControl"}};
};

} // namespace

template <>
ControlClass<SliderOverlayFacts> controlClass<SliderOverlayFacts>{};

} // namespace Marlox
