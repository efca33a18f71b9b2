#include "controls/viewer/CropControl.h"

namespace Marlox {

std::size_t CropControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct CropFacts : GenericOverlayFacts {
    using Class = CropControl;
    static constexpr char name[] = "CropControl";
    static constexpr RecordFacts records[] = {{CLSID_PreviewControl_Crop}};
};

} // namespace

template <>
ControlClass<CropFacts> controlClass<CropFacts>{};

} // namespace Marlox
