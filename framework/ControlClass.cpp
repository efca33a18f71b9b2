#include "framework/ControlClass.h"

namespace Marlox {

bool MapControlTags(const TagMapEntry* tagNames, const MxID& call, bool toScript, ScriptVal& values,
                    TagList& tags)
{
    constexpr std::string_view calls[] = {"Create", "GetAttrs", "SetAttrs", "UserControl"};
    if (std::find(std::begin(calls), std::end(calls), call.View()) == std::end(calls))
        return false;
    return scriptval_maptags(tagNames, toScript, values, tags);
}

/// Where all exported ffi_<class>_uncast names lead (see controls/CMakeLists.txt); they take over
/// its visibility, while it is itself hidden when the library is linked.
extern "C" Q_DECL_EXPORT ScriptObject* marlox_uncast(ScriptObject* self)
{
    return self;
}

} // namespace Marlox
