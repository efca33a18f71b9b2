#pragma once

#include "system/values/Input.h"

#include <optional>

#include <QStringList>

namespace Marlox {

/// The state of an input as a script table, as documents hold it:
///
///     { Value = 1.5, Keys = { { 0, 1, "Smooth" }, { 24, 2, "Linear" } },
///       Expression = "time / 10", Source = "Blur1" }
///
/// Fields that say nothing (no keys, no expression, the pixels of an image) are left out.
ScriptVal WriteInputState(const Input& input);

/// The keys alone, and values of a kind back from them; nil: there are none. False: of the wrong
/// form.
ScriptVal WriteKeys(const Animation& animation);
bool ReadKeys(const MxID& dataType, const ScriptVal& list, Animation& out);

/// Reads what WriteInputState wrote, with values as the input accepts them; fields left out mean
/// the default. Nothing and `error`, naming the field, if a field is of the wrong form. Fields that
/// are not known, or that the input takes none of, are named in `notes`.
std::optional<Input::State> ReadInputState(const Input& input, const ScriptVal& table,
                                           QString& error, QStringList& notes);

} // namespace Marlox
