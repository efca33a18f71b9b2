#pragma once

#include "system/base/ScriptVal.h"

#include <string>
#include <string_view>

namespace Marlox {

/// Reads a value written as a script table or literal: "{...}" or "return {...}", with comments.
/// Plain tables and literals are read as they stand, in any size, their fields in the order
/// written. Anything else (arithmetic, locals, tables used twice) runs as a script without any
/// library, under limits of time, steps and memory. False and `error` ("line 3: ...") if it is
/// neither.
bool ParseValueText(const std::string& text, ScriptVal& value, std::string* error);

/// Writes a value so that ParseValueText reads it back equal: numbers by the shortest decimals that
/// do (17 digits at most), fields in their order. Host objects can't be written: nil stands for
/// them. `indented` puts tables that hold tables on several lines; otherwise all is one line.
std::string FormatValueText(const ScriptVal& value, bool indented);

/// Reads plain tables and literals only. False and `error` for anything else.
bool ReadLiteral(std::string_view text, ScriptVal& value, std::string& error);

} // namespace Marlox
