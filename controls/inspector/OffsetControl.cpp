#include "controls/inspector/OffsetControl.h"

namespace Marlox {

std::size_t OffsetControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct OffsetFacts : GenericInspectorFacts {
    using Class = OffsetControl;
    static constexpr char name[] = "OffsetControl";
    static constexpr RecordFacts records[] = {{"OffsetControl", "OffsetControl"}};
    struct Resources {
        ResData layout{"Controls.Offset.Layout"};
    };
};

} // namespace

template <>
ControlClass<OffsetFacts> controlClass<OffsetFacts>{};
MARLOX_SCRIPT_CASTS(OffsetControl)

} // namespace Marlox
