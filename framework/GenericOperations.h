#pragma once

#include "system/base/Object.h"
#include "system/values/Input.h"

namespace Marlox {

/// Script operation of classes without a behaviour of their own: answers true. A host that wants to
/// know without an instance looks for the name "IsGeneric" in the class's ScriptInfo.
inline bool AnswerGeneric(Object&, const ScriptVal&, ScriptVal& result)
{
    result = true;
    return true;
}

/// The input's index within its control, by IA_ControlIndex or IA_OverlayIndex; 0 unless it is
/// told.
inline unsigned int IndexOf(const Input& input, u32 indexTag)
{
    return static_cast<unsigned int>(input.GetAttr(indexTag));
}

} // namespace Marlox
