#pragma once

#include "script/FFI.h"
#include "system/base/ScriptVal.h"

#include <optional>

#include <QVariant>

class QObject;

namespace Marlox {

/// Values of Qt properties as scripts see them: booleans, numbers and texts as such; points as
/// {x, y}, sizes as {width, height}, rectangles as {x, y, width, height}, colours as
/// {red, green, blue, alpha} from 0 to 255, lists as lists. Nil for anything else.
ScriptVal FromVariant(const QVariant& value);

/// A value as a variant of the Qt type `type` (QMetaType::Type); nothing if it does not fit.
std::optional<QVariant> ToVariant(const ScriptVal& value, int type);

/// The Qt property `name` of an object; nothing if it has none that can be read.
MARLOXSCRIPT_EXPORT std::optional<ScriptVal> ReadQtProperty(const QObject& object,
                                                            const char* name);

/// Why a Qt property can't be set; null when it was.
MARLOXSCRIPT_EXPORT const char* WriteQtProperty(QObject& object, const char* name,
                                                const ScriptVal& value);

} // namespace Marlox
