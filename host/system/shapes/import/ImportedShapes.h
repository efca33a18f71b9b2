#pragma once

#include "system/shapes/PolyPoint.h"
#include "system/values/Animation.h"

#include <optional>
#include <string>
#include <vector>

namespace Marlox {

// What a shape or path file held, in the terms of this system and not yet in any tool: places are
// normalised image coordinates (0 to 1, y upwards), handles are offsets from their point, times are
// frames, texts are UTF-8. Plain values that whoever asked for them owns.

/// A shape at one time. The interpolation rules the way to the next key.
struct ImportedKey {
    double time = 0.0;
    Interpolation interpolation = Interpolation::Linear;
    std::vector<PolyPoint> points; // without ids
};

struct ImportedNumber {
    double time = 0.0;
    double value = 0.0;
    Interpolation interpolation = Interpolation::Linear;
};

struct ImportedShape {
    enum class Kind { Bezier, BSpline, Cardinal };

    std::string name; // never empty
    Kind kind = Kind::Bezier;
    bool closed = true;
    /// Ascending times, at least one key, as many points in each.
    std::vector<ImportedKey> keys;
    /// The outer end of a soft edge, alike; empty: there is none.
    std::vector<ImportedKey> outerKeys;
    /// 0 to 1; empty: not told; one key: constant.
    std::vector<ImportedNumber> opacity;
    std::optional<bool> inverted; // none: not told
    std::optional<bool> visible;
    std::optional<bool> locked;
    /// How it joins the shapes below it: "add", "subtract", "max", "difference", "inside"; empty:
    /// not told.
    std::string combine;
    int line = 0; // where it begins in the file; 0: the format has no lines
};

struct ImportedPathKey {
    double time = 0.0;
    double x = 0.0;
    double y = 0.0;
    Interpolation interpolation = Interpolation::Linear;
};

/// The motion of one place over time: ascending times, at least one key.
struct ImportedPath {
    std::string name; // never empty
    std::vector<ImportedPathKey> keys;
    int line = 0;
};

/// Something to tell the user about the file.
struct ImportNote {
    enum class Kind {
        LeftAside, // was not understood, or can't be had here: it is missing from the result
        Assumed,   // the file does not tell it
    };
    Kind kind = Kind::LeftAside;
    int line = 0; // from 1; 0: the file as a whole
    std::string text;
};

struct ImportedShapes {
    std::string file; // its name without folders, for messages
    std::vector<ImportedShape> shapes;
    std::vector<ImportedPath> paths;
    std::vector<ImportNote> notes;
    /// Why nothing was taken; no shapes and no paths then.
    std::optional<ImportNote> error;
    bool lacksImageSize = false; // and that is why: it can be told in the context
    // What the file leaves open and its reader took for granted; the user may know better.
    bool asksImageSize = false;
    double imageWidth = 0.0; // as taken, pixels
    double imageHeight = 0.0;
    bool asksPlainUnit = false;
    bool isNormalised = false;   // taken as fractions of the image, else as pixels, y upwards
    bool asksFirstFrame = false; // from which number it counts its frames

    /// A note or the error as a message: "roto.ssf, line 12: ...".
    MARLOXSYSTEM_EXPORT std::string Message(const ImportNote& note) const;
};

} // namespace Marlox
