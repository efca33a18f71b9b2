#pragma once

#include "system/shapes/import/ImportedShapes.h"

#include <QByteArray>
#include <QString>

namespace Marlox {

enum class ShapeFileFormat {
    Any,       // told by how the file begins
    LightWave, // .mot: motion, versions 1, 2 and 3
    Motion,    // .dfmo: our own (NativeShapeFiles.h)
    Shape,     // .dfsh: our own
    Ssf,       // .ssf: shapes as text
    Fxs,       // .fxs, .sfx: shapes as XML, also packed
    Nuke,      // .nk, .nuke: the roto nodes of a script
    PathText,  // .txt: tracks and motion paths of several programs, and plain columns of numbers
};

/// What a file may leave open.
struct ImportContext {
    /// How plain columns of numbers, which tell nothing about themselves, are meant. ByRange: all
    /// of them between -2 and 3 are normalised, else they are pixels, y upwards.
    enum class PlainUnit { ByRange, Normalised, PixelsUp, PixelsDown };

    double width = 0.0; // of the image, pixels; 0: not known
    double height = 0.0;
    double pixelAspect = 1.0; // width of a pixel over its height
    /// The size above counts even where the file tells its own.
    bool overrideImageSize = false;
    bool isSizeSure = false; // somebody told it for this file: no note about it
    double frameRate = 24.0; // frames a second, for files that count in seconds
    /// The frame at which a file of this system begins that counts from its own beginning, and any
    /// other that tells no time.
    double startFrame = 0.0;
    double stillFrame = 0.0; // of this system's shape files, which hold no time
    double frameOffset = 0.0; // added to all times
    PlainUnit plainUnit = PlainUnit::ByRange;
};

/// Files larger than this (bytes), packed ones also when unpacked, are refused.
inline constexpr qint64 maxImportFileSize = 64 * 1024 * 1024;
inline constexpr int maxImportedPoints = 100'000; // of a shape, and keys of it
/// Points of all keys of all shapes of a file.
inline constexpr int maxImportedKeyPoints = 4'000'000;

/// Reads shapes and motion paths. True: something was taken; `result` then holds whole shapes and
/// paths only, and notes about what was left aside or taken for granted. False: nothing was, and
/// `result.error` tells the line and why. Touches no document and needs no window; any thread.
MARLOXSYSTEM_EXPORT bool ImportPolyLines(const QString& path, ShapeFileFormat format,
                                         const ImportContext& context, ImportedShapes& result);
/// The same from the bytes of a file; `name` is what messages call it.
MARLOXSYSTEM_EXPORT bool ImportPolyLines(const QByteArray& bytes, const QString& name,
                                         ShapeFileFormat format, const ImportContext& context,
                                         ImportedShapes& result);

} // namespace Marlox
