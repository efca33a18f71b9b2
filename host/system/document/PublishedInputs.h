#pragma once

#include "system/base/ScriptVal.h"

namespace Marlox {

class Operator;

/// The published inputs of a tool as documents hold them: a list of { id, name, x, y } with the
/// place that a reset leads to. Nil: it has none.
ScriptVal WritePublished(const Operator& tool);

} // namespace Marlox
