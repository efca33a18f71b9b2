// The adapter that reads image files through OpenImageIO.

#include "workbench/images/ColorConfig.h"
#include "workbench/images/ImageFile.h"

#include <OpenImageIO/imageio.h>

#include <array>
#include <exception>

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace Marlox {

namespace {

constexpr int64 mostPixels = int64(1) << 28; // 4 GiB as RGBA floats
constexpr int largestSide = 1 << 17;

enum : std::size_t { Red, Green, Blue, Alpha };

/// Channel of the file for each of R, G, B and A; -1: none.
using ChannelMap = std::array<int, 4>;

bool fail(QString* error, const QString& path, const QString& reason)
{
    if (error)
        *error = QString("%1: %2").arg(path, reason);
    return false;
}

QString libraryReason(const std::string& text, const QString& path)
{
    QString reason = QString::fromStdString(text).trimmed();
    reason.remove('"' + path + '"').remove(path);
    reason = reason.simplified();
    if (reason.contains("could not find a format reader"))
        return "it is no picture, or of an unknown kind";
    return reason.isEmpty() ? QString("the file is damaged or of an unknown kind") : reason;
}

std::unique_ptr<OIIO::ImageInput> openFile(const QString& path, QString* error)
{
    const QFileInfo file(path);
    if (!file.exists())
        return fail(error, path, "there is no such file"), nullptr;
    if (!file.isFile() || !file.isReadable())
        return fail(error, path, "it is no readable file"), nullptr;
    OIIO::ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1); // multiplied in after decoding, not before
    auto input = OIIO::ImageInput::open(path.toStdString(), &wishes);
    if (!input)
        fail(error, path, libraryReason(OIIO::geterror(), path));
    return input;
}

bool checkSpec(const OIIO::ImageSpec& spec, const QString& path, QString* error)
{
    const bool sane = spec.width > 0 && spec.height > 0 && spec.depth == 1 && spec.nchannels > 0 &&
                      spec.full_width >= 0 && spec.full_height >= 0;
    if (!sane)
        return fail(error, path, "the header is damaged");
    if (spec.deep)
        return fail(error, path, "deep pictures cannot be read");
    const bool tooLarge =
        std::max({spec.width, spec.height, spec.full_width, spec.full_height}) > largestSide ||
        int64(spec.width) * spec.height > mostPixels ||
        std::max({std::abs(int64(spec.x)), std::abs(int64(spec.y)), std::abs(int64(spec.full_x)),
                  std::abs(int64(spec.full_y))}) > int64(largestSide) * 8;
    if (tooLarge)
        return fail(error, path,
                    QString("%1 x %2 pixels are too many").arg(spec.width).arg(spec.height));
    return true;
}

Image::Format formatOf(const OIIO::ImageSpec& spec)
{
    Image::Format format;
    format.dataWindow = {spec.x, spec.y, spec.x + spec.width, spec.y + spec.height};
    format.displayWindow = spec.full_width > 0 && spec.full_height > 0
                               ? MxRect(spec.full_x, spec.full_y, spec.full_x + spec.full_width,
                                        spec.full_y + spec.full_height)
                               : format.dataWindow;
    const double aspect = spec.get_float_attribute("PixelAspectRatio", 1.0f);
    format.pixelAspect = aspect > 0.01 && aspect < 100.0 ? aspect : 1.0;
    return format;
}

ChannelMap channelsOf(const OIIO::ImageSpec& spec)
{
    const auto named = [&spec](const char* name) { return spec.channelindex(name); };
    if (named("R") >= 0 && named("G") >= 0 && named("B") >= 0)
        return {named("R"), named("G"), named("B"), named("A")};
    const int alpha = spec.alpha_channel;
    if (spec.nchannels >= 3 && !(spec.nchannels == 3 && alpha >= 0))
        return {0, 1, 2, alpha > 2 ? alpha : -1};
    const int grey = std::max(named("Y"), 0);
    return {grey, grey, grey, spec.nchannels > 1 ? std::max(alpha, 1) : alpha};
}

bool hearProgress(void* context, float done)
{
    auto& render = *static_cast<RenderContext*>(context);
    render.SetProgress(done);
    return render.IsCancelled();
}

bool readChannels(OIIO::ImageInput& input, int first, int count, float* target, int width,
                  RenderContext& context)
{
    const OIIO::stride_t pixel = 4 * sizeof(float);
    return input.read_image(0, 0, first, first + count, OIIO::TypeFloat, target, pixel,
                            pixel * width, OIIO::AutoStride, hearProgress, &context);
}

/// Fills the pixels, in one pass where the channels lie side by side.
bool readPixels(OIIO::ImageInput& input, const ChannelMap& map, Image& image,
                RenderContext& context)
{
    float* pixels = image.Row(0);
    const auto sideBySide = [&map](int count) {
        for (int i = 1; i < count; ++i) {
            if (map[std::size_t(i)] != map[Red] + i)
                return false;
        }
        return true;
    };
    const int together = sideBySide(4) ? 4 : sideBySide(3) ? 3 : 1;
    if (!readChannels(input, map[Red], together, pixels, image.Width(), context))
        return false;
    for (std::size_t channel = std::size_t(together); channel < map.size(); ++channel) {
        const bool isCopy = channel != Alpha && map[channel] == map[Red];
        if (map[channel] >= 0 && !isCopy &&
            !readChannels(input, map[channel], 1, pixels + channel, image.Width(), context))
            return false;
    }
    return true;
}

ColorEncoding encodingOf(const OIIO::ImageSpec& spec)
{
    if (spec.format.is_floating_point())
        return ColorEncoding::SceneLinear;
    const std::string told(spec.get_string_attribute("oiio:ColorSpace"));
    if (told == "Linear" || told == "linear")
        return ColorEncoding::SceneLinear;
    return told == "KodakLog" ? ColorEncoding::FilmLog : ColorEncoding::Srgb;
}

/// What becomes of the pixels after reading: grey spread out, colours decoded, alpha multiplied in.
struct Finish {
    bool spreadGrey;
    bool hasAlpha;
    bool isStraight; // alpha is not multiplied in yet
    ColorEncoding encoding;

    void Row(float* row, int width) const
    {
        for (float* pixel = row; pixel < row + std::ptrdiff_t(width) * 4; pixel += 4) {
            if (spreadGrey)
                pixel[Green] = pixel[Blue] = pixel[Red];
            if (!hasAlpha)
                pixel[Alpha] = 1.0f;
        }
        const bool decodes = encoding != ColorEncoding::SceneLinear;
        if (hasAlpha && !isStraight && decodes)
            Scale(row, width, [](float alpha) { return alpha > 0.0f ? 1.0f / alpha : 1.0f; });
        if (decodes)
            DecodeColors(encoding, row, std::size_t(width));
        if (hasAlpha && (isStraight || decodes))
            Scale(row, width, [](float alpha) { return alpha; });
    }

    template <class Factor>
    static void Scale(float* row, int width, Factor factor)
    {
        for (float* pixel = row; pixel < row + std::ptrdiff_t(width) * 4; pixel += 4) {
            const float by = factor(pixel[Alpha]);
            for (std::size_t channel = 0; channel < Alpha; ++channel)
                pixel[channel] *= by;
        }
    }
};

/// Turns the picture of a camera that was held sideways upright; orientations as in Exif, 1 to 8.
Ref<Image> oriented(const Ref<Image>& image, int orientation)
{
    const int width = image->Width();
    const int height = image->Height();
    const bool swaps = orientation >= 5;
    Image::Format format = image->GetFormat();
    format.dataWindow = format.displayWindow =
        swaps ? MxRect(0, 0, height, width) : MxRect(0, 0, width, height);
    format.pixelAspect = swaps ? 1.0 / format.pixelAspect : format.pixelAspect;
    const bool flipX = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool flipY = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    auto upright = MakeRef<Image>(format);
    for (int y = 0; y < upright->Height(); ++y) {
        float* target = upright->Row(y);
        for (int x = 0; x < upright->Width(); ++x, target += 4) {
            const int fromX = swaps ? y : x;
            const int fromY = swaps ? x : y;
            const float* source = image->Row(flipY ? height - 1 - fromY : fromY) +
                                  std::ptrdiff_t(flipX ? width - 1 - fromX : fromX) * 4;
            std::copy_n(source, 4, target);
        }
    }
    return upright;
}

/// Whether a JPEG file lacks its end mark.
bool lacksEnd(QFile& file)
{
    const qint64 tail = std::min<qint64>(file.size(), 65536);
    file.seek(file.size() - tail);
    return !file.read(tail).contains("\xff\xd9");
}

/// Whether a DPX file is smaller than its header tells; all bits set mean that it does not tell.
bool isSmallerThanTold(QFile& file)
{
    const QByteArray header = file.read(20);
    const bool isBigEndian = header.startsWith("SDPX");
    const char* field = header.constData() + 16;
    const quint32 told =
        isBigEndian ? qFromBigEndian<quint32>(field) : qFromLittleEndian<quint32>(field);
    return header.size() < 20 || (told != 0xffffffffu && qint64(told) > file.size());
}

/// The decoders of some formats fill up a file that breaks off and call it a picture.
bool isCutOff(const QString& path, const char* format)
{
    const bool isJpeg = qstrcmp(format, "jpeg") == 0;
    if (!isJpeg && qstrcmp(format, "dpx") != 0)
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    return isJpeg ? lacksEnd(file) : isSmallerThanTold(file);
}

Ref<Image> readFile(const QString& path, QString* error, RenderContext* context)
{
    const auto input = openFile(path, error);
    if (!input || !checkSpec(input->spec(), path, error))
        return {};
    if (isCutOff(path, input->format_name()))
        return fail(error, path, "the file breaks off"), nullptr;
    const OIIO::ImageSpec spec = input->spec();
    const ChannelMap map = channelsOf(spec);
    auto image = MakeRef<Image>(formatOf(spec));
    RenderContext alone;
    RenderContext& work = context ? *context : alone;
    work.SetPart(0.0, 0.8);
    const bool read = readPixels(*input, map, *image, work);
    const std::string reason = input->geterror();
    if (work.IsCancelled())
        return {};
    if (!read)
        return fail(error, path, libraryReason(reason, path)), nullptr;

    const Finish finish{map[Green] == map[Red], map[Alpha] >= 0,
                        spec.get_int_attribute("oiio:UnassociatedAlpha") != 0, encodingOf(spec)};
    work.SetPart(0.8, 1.0);
    work.ForRows(image->Height(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            finish.Row(image->Row(y), image->Width());
    });
    if (work.IsCancelled())
        return {};
    const int orientation = spec.get_int_attribute("Orientation", 1);
    return orientation > 1 && orientation <= 8 ? oriented(image, orientation) : image;
}

} // namespace

bool ReadImageInfo(const QString& path, ImageFileInfo& info, QString* error)
{
    try {
        const auto input = openFile(path, error);
        if (!input || !checkSpec(input->spec(), path, error))
            return false;
        info.format = formatOf(input->spec());
        info.channels = input->spec().nchannels;
        info.fileFormat = input->format_name();
        info.sampleType = input->spec().format.c_str();
        return true;
    } catch (const std::exception& fault) {
        return fail(error, path, QString::fromUtf8(fault.what()));
    }
}

Ref<Image> ReadImage(const QString& path, QString* error, RenderContext* context)
{
    try {
        return readFile(path, error, context);
    } catch (const std::bad_alloc&) {
        fail(error, path, "there is not enough memory for the picture");
    } catch (const std::exception& fault) {
        fail(error, path, QString::fromUtf8(fault.what()));
    }
    return {};
}

} // namespace Marlox
