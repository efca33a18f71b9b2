#pragma once

#include "system/shapes/PolyPoint.h"

// Our own shape and motion files, as the polyline control writes them and the importer reads them.
// Text, "\n" at the end of each line, numbers with six decimals and a decimal point whatever the
// locale. Places are normalised image coordinates (0 to 1, y upwards), handles the places of their
// ends, times frames.
//
// Shape (.dfsh), one shape at one time:
//
//     DFSH
//     <header>
//     <point>             one line for each, in order
//
//     #Edge shape:        with the empty line before it: only if there is an outer polygon
//     <point>             of the outer polygon
//
// <header> is five numbers: image width and height in pixels, pixel aspect (width of a pixel over
// its height), image aspect factor (see HeightsPerWidth) and frames a second. A <point> that is
// linear (PPF_Linear) is "x y", another one "x y inx iny outx outy". " EP" behind the numbers marks
// the end points, where the writer was told to: of an open shape the first and the last one, of a
// closed one the last alone, from which it goes back to the first; where that is the same point
// there is none. Without any mark it is not told whether the shape is closed, and readers take it
// as closed. The outer polygon has as many points.
//
// Motion (.dfmo), a shape over time:
//
//     DFMO
//     <header>                       where the writer was told to
//     time x y                       the shape's centre, one line for each whole frame from the
//                                    first key to the last
//     time x y inx iny outx outy     for each key by time, for each point in order
//
// A linear point has both handles at its place. The number of fields tells the lines apart. Whether
// the shape is closed, its kind and its outer polygon are not told.

namespace Marlox {

inline constexpr char nativeShapeMagic[] = "DFSH";
inline constexpr char nativeMotionMagic[] = "DFMO";
inline constexpr char nativeEdgeMark[] = "#Edge shape:";
inline constexpr char nativeEndMark[] = "EP";

/// The five numbers of the header line.
struct NativeFileHeader {
    double width = 0.0; // of the image, pixels
    double height = 0.0;
    double pixelAspect = 1.0;
    double heightsPerWidth = 1.0; // the image aspect factor
    double frameRate = 24.0;

    friend bool operator==(const NativeFileHeader&, const NativeFileHeader&) = default;
};

/// The image aspect factor: the height of the image as it is shown, over its width.
inline double HeightsPerWidth(double width, double height, double pixelAspect)
{
    return height / (width * pixelAspect);
}

} // namespace Marlox
