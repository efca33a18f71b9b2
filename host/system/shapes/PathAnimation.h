#pragma once

#include "system/shapes/PathModifier.h"

#include <QString>

namespace Marlox {

/// Makes a "Path" tool and gives the point input the expression "Path1.Position", which reads where
/// it is. The path begins at the point's place and its displacement runs from 0 at the document's
/// first frame to 1 at its last, so that the point moves as soon as the path is drawn on; the path
/// of an animated point runs smoothly through its keys, which it reaches at their times. One undo
/// entry. Null and `error`: the input refuses expressions, or there is no such tool class.
MARLOXSYSTEM_EXPORT Operator* AnimateWithPath(Input& point, QString* error = nullptr);

/// Gives the point inputs that read the path's position keys of their own at every frame between
/// the path's first and last key, and removes the path unless something else still reads it. One
/// undo entry. False: nothing reads its position.
MARLOXSYSTEM_EXPORT bool ConvertToXYPath(Operator& path);
/// Whether a point input reads the path's position.
MARLOXSYSTEM_EXPORT bool MovesPoints(const Operator& path);

/// The path tool whose position the input's expression reads, as AnimateWithPath makes it; null: it
/// reads another thing.
MARLOXSYSTEM_EXPORT Operator* PathOf(const Input& point);
/// Whether an expression of an input other than `except` has the tool's name in it.
MARLOXSYSTEM_EXPORT bool IsMentioned(const Operator& tool, const Input* except = nullptr);

/// How an expression reads a result of a tool.
MARLOXSYSTEM_EXPORT std::string ExpressionFor(const Operator& tool, const char* input);

/// Adds a modifier before the tool that it is for, without touching what is selected.
Operator* AddModifier(const char* toolClass, const Operator& before, QString* error);

} // namespace Marlox
