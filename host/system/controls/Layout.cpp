#include "system/controls/Layout.h"

namespace Marlox {

LayoutObj::~LayoutObj() = default;

LayoutObj* LayoutObj::Find(const MxID& name)
{
    if (Name() == name)
        return this;
    for (LayoutObj* child : Children()) {
        if (LayoutObj* found = child->Find(name))
            return found;
    }
    return nullptr;
}

} // namespace Marlox
