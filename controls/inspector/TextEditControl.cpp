#include "controls/inspector/TextEditControl.h"

namespace Marlox {

std::size_t TextEditControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct TextEditFacts : GenericInspectorFacts {
    using Class = TextEditControl;
    static constexpr char name[] = "TextEditControl";
    static constexpr RecordFacts records[] = {{"TextEditControl", "TextEditControl"}};
    struct Resources {
        ResData layout{"Controls.TextEdit.Layout"};
    };
};

} // namespace

template <>
ControlClass<TextEditFacts> controlClass<TextEditFacts>{};
MARLOX_SCRIPT_CASTS(TextEditControl)

} // namespace Marlox
