#include "controls/inspector/ButtonControl.h"

namespace Marlox {

std::size_t ButtonControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ButtonFacts : GenericInspectorFacts {
    using Class = ButtonControl;
    static constexpr char name[] = "ButtonControl";
    static constexpr RecordFacts records[] = {{"ButtonControl", "ButtonControl"}};
    struct Resources {
        ResData layout{"Controls.Button.Layout"};
    };
};

} // namespace

template <>
ControlClass<ButtonFacts> controlClass<ButtonFacts>{};
MARLOX_SCRIPT_CASTS(ButtonControl)

} // namespace Marlox
