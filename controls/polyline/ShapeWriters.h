#pragma once

#include "system/shapes/PolyPoint.h"
#include "system/shapes/import/NativeShapeFiles.h"

#include <optional>
#include <span>
#include <string>

namespace Marlox {

// The text of exported files, from plain values: no document, no files. Numbers have six decimals
// and a decimal point in every locale; lines end with "\n" and are written in text mode. Places are
// normalised image coordinates, y upwards. NativeShapeFiles.h describes .dfsh and .dfmo.

/// A place at a time, frames.
struct PathSample {
    double time = 0.0;
    ShapePlace place;
};

/// A shape at one of its keys.
struct ShapeSample {
    double time = 0.0;
    std::span<const PolyPoint> points;
};

struct ShapeOutline {
    std::span<const PolyPoint> points;
    bool isClosed = true;
};

/// LightWave motion (.mot), version 1: a row for each whole frame, counted from the first one. The
/// centre of the image is the origin and one unit its width. `frames` are the shape's output.
std::string LightWaveMotionText(std::span<const ShapePlace> frames, double heightsPerWidth);

/// Motion (.dfmo): `centre`, one for each whole frame, then all points of `keys`.
std::string MotionText(const std::optional<NativeFileHeader>& header,
                       std::span<const PathSample> centre, std::span<const ShapeSample> keys);

/// Shape (.dfsh). Without `main` (the input holds no polyline) the text ends behind the header.
/// `outer`: null, there is none. `marksEnds`: end points are marked.
std::string ShapeText(const NativeFileHeader& header, const ShapeOutline* main,
                      const ShapeOutline* outer, bool marksEnds);

/// A drawing (.dxf) without entities: header and tables alone. `low` and `high`: the bounds of the
/// shape.
std::string DxfText(ShapePlace low, ShapePlace high);

} // namespace Marlox
