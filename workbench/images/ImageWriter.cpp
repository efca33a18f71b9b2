// The adapter that writes image files through OpenImageIO.

#include "workbench/images/ColorConfig.h"
#include "workbench/images/ImageFile.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <exception>
#include <filesystem>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Marlox {

namespace {

bool fail(QString* error, const QString& path, const QString& reason)
{
    if (error)
        *error = QString("%1: %2").arg(path, reason.simplified());
    return false;
}

/// What a file format takes.
struct Target {
    OIIO::TypeDesc type;
    int channels;
    bool isStraight; // alpha is stored beside the colours instead of multiplied into them
    bool keepsDataWindow;
};

Target targetOf(const OIIO::ImageOutput& output, const ImageWriteOptions& options)
{
    const std::string format = output.format_name();
    const int channels = output.supports("alpha") ? 4 : 3;
    if (format == "openexr")
        return {options.halfFloat ? OIIO::TypeHalf : OIIO::TypeFloat, channels, false, true};
    if (format == "hdr" || format == "pfm" || format == "pnm")
        return {format == "pnm" ? OIIO::TypeUInt8 : OIIO::TypeFloat, 3, false, false};
    if (format == "tiff")
        return {OIIO::TypeUInt16, channels, true, false};
    if (format == "dpx")
        return {OIIO::TypeUInt16, 3, false, false};
    return {OIIO::TypeUInt8, channels, true, false};
}

OIIO::ImageSpec specOf(const Image& image, const Target& target, const std::string& format)
{
    const Image::Format& picture = image.GetFormat();
    const MxRect window = target.keepsDataWindow ? picture.dataWindow : picture.displayWindow;
    const MxRect display = picture.displayWindow;
    OIIO::ImageSpec spec(window.Width(), window.Height(), target.channels, target.type);
    if (target.keepsDataWindow) {
        spec.x = window.left;
        spec.y = window.top;
        spec.full_x = display.left;
        spec.full_y = display.top;
        spec.full_width = display.Width();
        spec.full_height = display.Height();
        spec.attribute("compression", "zip");
    }
    if (picture.pixelAspect != 1.0)
        spec.attribute("PixelAspectRatio", float(picture.pixelAspect));
    if (format == "dpx")
        spec.attribute("oiio:BitsPerSample", 10);
    if (format == "jpeg") {
        spec.attribute("Compression", "jpeg:95");
        spec.attribute("jpeg:subsampling", "4:4:4");
    }
    const bool isInteger = !target.type.is_floating_point();
    spec.attribute("oiio:ColorSpace", isInteger ? "sRGB" : "Linear");
    if (isInteger && target.channels == 4)
        spec.attribute("oiio:UnassociatedAlpha", 1);
    spec.attribute("Software", QCoreApplication::applicationName().toStdString());
    return spec;
}

/// Not-a-numbers would become arbitrary codes.
float finite(float value)
{
    return value == value ? value : 0.0f;
}

/// One row of the file's window, cut out of the image; transparent where the image has no pixels.
void fillRow(const Image& image, const MxRect& window, int y, std::vector<float>& row)
{
    std::fill(row.begin(), row.end(), 0.0f);
    const MxRect data = image.GetFormat().dataWindow;
    const int left = std::max(window.left, data.left);
    const int right = std::min(window.right, data.right);
    if (y < data.top || y >= data.bottom || left >= right)
        return;
    std::copy_n(image.Row(y - data.top) + std::ptrdiff_t(left - data.left) * 4,
                std::size_t(right - left) * 4,
                row.begin() + std::ptrdiff_t(left - window.left) * 4);
}

/// Makes display-coded values for a file of integers.
void encodeRow(std::vector<float>& row, bool straight)
{
    for (std::size_t i = 0; i < row.size(); i += 4) {
        const float alpha = finite(row[i + 3]);
        const float by = straight && alpha > 0.0f ? 1.0f / alpha : 1.0f;
        for (std::size_t channel = 0; channel < 3; ++channel)
            row[i + channel] = finite(row[i + channel]) * by;
        row[i + 3] = alpha;
    }
    EncodeColors(ColorEncoding::Srgb, row.data(), row.size() / 4);
}

/// The file's pixels, `channels` floats each.
std::vector<float> pixelsFor(const Image& image, const MxRect& window, const Target& target)
{
    const auto width = std::size_t(window.Width());
    const auto channels = std::size_t(target.channels);
    std::vector<float> pixels(width * std::size_t(window.Height()) * channels);
    RenderContext context;
    context.ForRows(window.Height(), [&](int first, int last) {
        std::vector<float> row(width * 4);
        for (int y = first; y < last; ++y) {
            fillRow(image, window, window.top + y, row);
            if (!target.type.is_floating_point())
                encodeRow(row, target.isStraight && target.channels == 4);
            float* to = pixels.data() + std::size_t(y) * width * channels;
            for (std::size_t x = 0; x < width; ++x, to += channels)
                std::copy_n(row.data() + x * 4, channels, to);
        }
    });
    return pixels;
}

/// EXR files cannot be empty: an image without pixels is written as one transparent pixel.
Ref<Image> onePixel(Image::Format format)
{
    const MxRect display = format.displayWindow;
    format.dataWindow = {display.left, display.top, display.left + 1, display.top + 1};
    return MakeRef<Image>(format);
}

bool writeFile(const Image& image, const QString& path, QString* error,
               const ImageWriteOptions& options)
{
    if (image.GetFormat().displayWindow.IsEmpty())
        return fail(error, path, "the picture is empty");
    auto output = OIIO::ImageOutput::create(path.toStdString());
    if (!output) {
        OIIO::geterror(); // taken away, or a later failure would tell it
        return fail(error, path,
                    QString("pictures cannot be written as \"%1\"; a name may end in %2")
                        .arg(QFileInfo(path).suffix(), WritableImageEndings().join(", ")));
    }
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return fail(error, path, "its folder cannot be made");

    const Target target = targetOf(*output, options);
    const OIIO::ImageSpec spec = specOf(image, target, output->format_name());
    const MxRect window =
        target.keepsDataWindow ? image.GetFormat().dataWindow : image.GetFormat().displayWindow;
    const std::vector<float> pixels = pixelsFor(image, window, target);

    const QString part = QString("%1/.%2.%3.part")
                             .arg(folder, QFileInfo(path).fileName())
                             .arg(QCoreApplication::applicationPid());
    const bool written = output->open(part.toStdString(), spec) &&
                         output->write_image(OIIO::TypeFloat, pixels.data());
    const bool closed = output->close() && written;
    if (!closed) {
        QString reason = QString::fromStdString(output->geterror());
        reason.remove('"' + part + '"').remove(part);
        QFile::remove(part);
        return fail(error, path, "it cannot be written: " + reason);
    }
    std::error_code fault; // QFile::rename refuses to replace a file
    std::filesystem::rename(part.toStdString(), path.toStdString(), fault);
    if (fault) {
        QFile::remove(part);
        return fail(error, path, QString::fromStdString(fault.message()));
    }
    return true;
}

QStringList endings(const char* listName)
{
    // "exr:exr,sxr,mxr;dpx:dpx;...": for each format its endings.
    QStringList result;
    const QString all = QString::fromStdString(OIIO::get_string_attribute(listName));
    for (const QString& format : all.split(';', Qt::SkipEmptyParts))
        result += format.section(':', 1).split(',', Qt::SkipEmptyParts);
    result.removeDuplicates();
    return result;
}

} // namespace

bool WriteImage(const Image& image, const QString& path, QString* error,
                const ImageWriteOptions& options)
{
    try {
        if (image.GetFormat().dataWindow.IsEmpty())
            return writeFile(*onePixel(image.GetFormat()), path, error, options);
        return writeFile(image, path, error, options);
    } catch (const std::exception& fault) {
        return fail(error, path, QString::fromUtf8(fault.what()));
    }
}

QStringList ReadableImageEndings()
{
    QStringList result;
    // Films are no sequences of frames in files; they are left to other tools.
    const QStringList films{"avi", "mov", "qt",   "mp4", "m4a", "3gp",  "3g2", "mj2",
                            "m4v", "mpg", "mpeg", "wmv", "mkv", "webm", "mjp"};
    for (const QString& ending : endings("extension_list")) {
        if (!films.contains(ending))
            result += ending;
    }
    return result;
}

QStringList WritableImageEndings()
{
    return {"exr", "dpx", "tif", "tiff", "png", "jpg", "jpeg", "tga", "bmp", "hdr", "jp2", "webp"};
}

} // namespace Marlox
