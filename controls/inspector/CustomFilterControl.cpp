#include "controls/inspector/CustomFilterControl.h"

namespace Marlox {

std::size_t CustomFilterControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct CustomFilterFacts : GenericInspectorFacts {
    using Class = CustomFilterControl;
    static constexpr char name[] = "CustomFilterControl";
    static constexpr RecordFacts records[] = {{"CustomFilterControl", "CustomFilterControl"}};
    struct Resources {
        ResData layout{"Controls.Matrix.Layout"};
    };
};

} // namespace

template <>
ControlClass<CustomFilterFacts> controlClass<CustomFilterFacts>{};
MARLOX_SCRIPT_CASTS(CustomFilterControl)

} // namespace Marlox
