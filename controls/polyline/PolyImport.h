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
/// others become further tools of the same class, named after the shapes as this one is, each with
/// a path modifier for its centre. They give masks alone, lie one on the other in the file's order,
/// this one on top, and stand where no picture flows through them: at the beginning of the flow.
/// Tools that have no base to lie on are disabled. Points are moved out of `file`.
bool PlaceShapes(PolyLineControl& control, ImportedShapes& file, const ImportShapeChoice& choice,
                 const char* undoText, QString& problem, QStringList& remarks);

/// The path becomes an animation of the overlay's centre by a path modifier: the one that moves it
/// already, if that moves nothing else. The overlay of such a modifier, which has no centre, gets
/// the path itself.
bool PlaceMotion(PolyLineControl& control, const ImportedPath& path, const char* undoText,
                 QString& problem);

} // namespace Marlox
