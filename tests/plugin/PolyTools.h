#pragma once

#include "system/base/Registry.h"
#include "system/shapes/PathModifier.h"

namespace Marlox {

// For records of the tools that shapes are moved by, which hosts register.

template <class Tool>
Object* MakeTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new Tool(record);
}

template <class Tool>
const TagPair* ToolTags()
{
    static const TagPair tags[] = {
        {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakeTool<Tool>)}, {}};
    return tags;
}

} // namespace Marlox
