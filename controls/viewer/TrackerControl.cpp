#include "controls/viewer/TrackerControl.h"

namespace Marlox {

std::size_t TrackerControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct TrackerFacts : GenericOverlayFacts {
    using Class = TrackerControl;
    static constexpr char name[] = "TrackerControl";
    static constexpr RecordFacts records[] = {{"TrackerControl", "TrackerControl"}};
};

} // namespace

template <>
ControlClass<TrackerFacts> controlClass<TrackerFacts>{};
MARLOX_SCRIPT_CASTS(TrackerControl)

} // namespace Marlox
