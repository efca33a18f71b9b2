#pragma once

#include "system/base/Types.h"

#include <functional>
#include <string>

#include <QString>

namespace Marlox {

/// The expression with references to the tool `from` made into references to `to`: the name before
/// a field (`Blur1.Size`; characters that a name in a script can't have stand as "_") and the one
/// in tool("Blur 1"). Texts and comments stay. `isOwnName` tells names that mean something nearer
/// than a tool.
MARLOXSYSTEM_EXPORT std::string
RenameToolInExpression(const std::string& expression, const QString& from, const QString& to,
                       const std::function<bool(const std::string&)>& isOwnName);

} // namespace Marlox
