#include "controls/viewer/ImgOverlayControl.h"

namespace Marlox {

std::size_t ImgOverlayControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ImgOverlayFacts : GenericOverlayFacts {
    using Class = ImgOverlayControl;
    static constexpr char name[] = "ImgOverlayControl";
    static constexpr RecordFacts records[] = {{"ImgOverlayControl", "ImageOverlayControl"}};
    static constexpr FurtherTag furtherTags[] = {{0x10000064, 1}};
};

} // namespace

template <>
ControlClass<ImgOverlayFacts> controlClass<ImgOverlayFacts>{};
MARLOX_SCRIPT_CASTS(ImgOverlayControl)

} // namespace Marlox
