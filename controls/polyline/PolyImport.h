#pragma once

#include "controls/polyline/ImportShapeDlg.h"
#include "system/shapes/import/ImportedShapes.h"

#include <QStringList>

namespace Marlox {

class PolyLineControl;

// Placing what a file held into the document: one undo entry, or, when something refuses, none and
// everything as it was. Both return false with `problem` then, a sentence for the user. `remarks`
// get what the file tells and can't be had here.

/// The chosen shape becomes that of this overlay, its keys those of the input. With `all` the
/// others become further tools of the same class behind this one, named after the shapes, each with
/// a path modifier for its centre. Those are disabled: masks cut one after the other, so that
/// together they would leave only what lies in all of them. Points are moved out of `file`.
bool PlaceShapes(PolyLineControl& control, ImportedShapes& file, const ImportShapeChoice& choice,
                 const char* undoText, QString& problem, QStringList& remarks);

/// The path becomes an animation of the overlay's centre by a path modifier. The overlay of such a
/// modifier, which has no centre, gets the path itself.
bool PlaceMotion(PolyLineControl& control, const ImportedPath& path, const char* undoText,
                 QString& problem);

} // namespace Marlox
