#include "controls/inspector/FileControl.h"

namespace Marlox {

std::size_t FileControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct FileFacts : GenericInspectorFacts {
    using Class = FileControl;
    static constexpr char name[] = "FileControl";
    static constexpr RecordFacts records[] = {{"FileControl", "FileControl"}};
    struct Resources {
        ResColor errorTextColour{"System.ErrorTextColour", {255, 140, 140}};
        ResColor warningTextColour{"System.WarningTextColour", {223, 213, 122}};
        ResData layout{"Controls.File.Layout"};
    };
};

} // namespace

template <>
ControlClass<FileFacts> controlClass<FileFacts>{};
MARLOX_SCRIPT_CASTS(FileControl)

} // namespace Marlox
