#pragma once

struct lua_State;

namespace Marlox {

/// Pushes a table with everything that expressions may call besides time and inputs:
///
/// - of numbers: abs, acos, asin, atan, atan2, ceil, cos, deg, exp, floor, frac, log, log10, max,
///   min, mod (of the sign of the divisor), pow, rad, round (halves away from zero), sign, sin,
///   sqrt, tan, and the numbers pi and huge;
/// - clamp(v, low, high), lerp(a, b, t), smoothstep(low, high, v), iif(condition, a, b), where 0
///   counts as false;
/// - rand(seed [, low, high]): evenly spread in [low, high), 0 to 1 unless given, the same for the
///   same seed everywhere; noise(t [, seed]): smooth, from -1 to 1, one bump per whole number;
/// - of texts: format, len, lower, sub, upper, tostring, tonumber.
void PushExpressionLibrary(lua_State* state);

} // namespace Marlox
