#include "controls/inspector/ImageControl.h"

namespace Marlox {

std::size_t ImageControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ImageFacts : GenericInspectorFacts {
    using Class = ImageControl;
    static constexpr char name[] = "ImageControl";
    static constexpr RecordFacts records[] = {{"ImageControl", "ImageControl"}};
    struct Resources {
        ResData layout{"Controls.Image.Layout"};
    };
};

} // namespace

template <>
ControlClass<ImageFacts> controlClass<ImageFacts>{};
MARLOX_SCRIPT_CASTS(ImageControl)

} // namespace Marlox
