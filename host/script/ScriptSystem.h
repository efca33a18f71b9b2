#pragma once

#include "script/FFI.h"

namespace Marlox {

/// Makes this library the one that the system library asks for layouts, script values and
/// expressions. Once, before the first control is made; a second call does nothing.
MARLOXSCRIPT_EXPORT void InstallScripting();
/// Ends that and frees the interpreter of expressions.
MARLOXSCRIPT_EXPORT void UninstallScripting();

} // namespace Marlox
