// A plug-in with one small class, to load and unload.
#include "system/base/Registry.h"

namespace {

Marlox::Object* create(const Marlox::Registry*, const Marlox::ScriptVal&, const Marlox::TagList&)
{
    return new Marlox::Object;
}

const Marlox::TagPair tags[] = {{Marlox::REG_Kind, Marlox::u32(Marlox::ClassKind::Parameter)},
                                {Marlox::REG_Create, &create},
                                {}};
const Marlox::Registry record("WorkingTestClass", tags);

} // namespace
