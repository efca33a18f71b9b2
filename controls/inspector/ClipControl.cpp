#include "controls/inspector/ClipControl.h"

namespace Marlox {

std::size_t ClipControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ClipFacts : GenericInspectorFacts {
    using Class = ClipControl;
    static constexpr char name[] = "ClipControl";
    static constexpr RecordFacts records[] = {{"ClipControl", "ClipControl"}};
    struct Resources {
        ResColor errorTextColour{"System.ErrorTextColour", {255, 140, 140}};
        ResColor warningTextColour{"System.WarningTextColour", {223, 213, 122}};
        ResData layout{"Controls.Clip.Layout"};
    };
};

} // namespace

template <>
ControlClass<ClipFacts> controlClass<ClipFacts>{};
MARLOX_SCRIPT_CASTS(ClipControl)

} // namespace Marlox
