#pragma once

#include "system/evaluation/Process.h"
#include "system/values/Image.h"

#include <QString>
#include <QStringList>

/// Image files as the workbench sees them: pictures of floats, scene-linear, premultiplied. Files
/// of integers hold display-coded values: sRGB is assumed unless the file says that it is linear or
/// a film scan; they are decoded when read and coded again when written. Files of floats are
/// scene-linear as they are. Thread-safe.
namespace Marlox {

/// What a file's header tells.
struct ImageFileInfo {
    Image::Format format;
    int channels = 0;
    QString fileFormat; // "openexr", "png", ...
    QString sampleType; // "half", "uint8", ...
};

/// False and `error`, naming the file: it is missing, of an unknown kind, damaged or too large.
bool ReadImageInfo(const QString& path, ImageFileInfo& info, QString* error);

/// Reads a picture, whatever its channels: RGB(A) by their names; one channel becomes grey, with a
/// second one as alpha; a missing alpha is 1. `context`, if there is one, hears of the progress and
/// may cancel. Null and `error`, naming the file, on failure; null without an error when cancelled.
Ref<Image> ReadImage(const QString& path, QString* error, RenderContext* context = nullptr);

/// How a picture is written. Formats without floats ignore `halfFloat`.
struct ImageWriteOptions {
    bool halfFloat = false; // 16-bit floats: half the size, 11 bits of mantissa, at most 65504
};

/// Writes a picture in the format that the path's ending names: floats where the format has them,
/// else 16 bits for TIFF, 10 for DPX and 8 for the others. EXR keeps the data window; other formats
/// get the display window. The file appears whole or not at all; its folder is made if need be.
bool WriteImage(const Image& image, const QString& path, QString* error,
                const ImageWriteOptions& options = {});

/// Endings of files that can be read and written, without the point, for file dialogs.
QStringList ReadableImageEndings();
QStringList WritableImageEndings();

} // namespace Marlox
