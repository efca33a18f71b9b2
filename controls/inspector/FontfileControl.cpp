#include "controls/inspector/FontfileControl.h"

namespace Marlox {

void FontfileControl::RegCleanup(Registry* record)
{
    Object::RegCleanup(record);
}

std::size_t FontfileControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct FontfileFacts : GenericInspectorFacts {
    using Class = FontfileControl;
    static constexpr char name[] = "FontfileControl";
    static constexpr RecordFacts records[] = {{"FontFileControl", "FontFileControl"}};
    struct Resources {
        ResData layout{"Controls.Fontfile.Layout"};
    };
};

} // namespace

template <>
ControlClass<FontfileFacts> controlClass<FontfileFacts>{};
MARLOX_SCRIPT_CASTS(FontfileControl)

} // namespace Marlox
