#include "widgets/PixelCopy.h"

#include <algorithm>

namespace Marlox {

namespace {

/// Source over a premultiplied pixel: every component of `under` times (255 - alpha) / 255,
/// rounded, two components at a time.
QRgb over(QRgb pixel, QRgb under)
{
    constexpr QRgb pairs = 0x00ff00ff;
    constexpr QRgb halves = 0x00800080;
    const QRgb rest = 255 - qAlpha(pixel);
    if (rest == 0)
        return pixel;
    QRgb low = (under & pairs) * rest;
    low = ((low + ((low >> 8) & pairs) + halves) >> 8) & pairs;
    QRgb high = ((under >> 8) & pairs) * rest;
    high = (high + ((high >> 8) & pairs) + halves) & ~pairs;
    return pixel + (low | high);
}

template <class WriteRow>
void forRows(QImage& target, QPoint offset, const QImage& picture, QPoint at, QRect part,
             WriteRow writeRow)
{
    const QRect shared = part & QRect(at, picture.size()) & target.rect().translated(-offset);
    if (shared.isEmpty())
        return;
    const QPoint from = shared.topLeft() - at;
    const QPoint to = shared.topLeft() + offset;
    const auto sourceStep = picture.bytesPerLine();
    const auto step = target.bytesPerLine();
    const uchar* source = picture.constBits() + from.y() * sourceStep;
    uchar* line = target.bits() + to.y() * step;
    for (int row = shared.height(); row > 0; --row, source += sourceStep, line += step)
        writeRow(reinterpret_cast<QRgb*>(line) + to.x(),
                 reinterpret_cast<const QRgb*>(source) + from.x(), shared.width());
}

} // namespace

void CopyPixels(QImage& target, QPoint offset, const QImage& picture, QPoint at, QRect part)
{
    forRows(target, offset, picture, at, part,
            [](QRgb* to, const QRgb* from, int count) { std::copy_n(from, count, to); });
}

void BlendPixels(QImage& target, QPoint offset, const QImage& picture, QPoint at, QRect part)
{
    forRows(target, offset, picture, at, part, [](QRgb* to, const QRgb* from, int count) {
        // Most rows of a knob are opaque from end to end.
        if (std::all_of(from, from + count, [](QRgb pixel) { return qAlpha(pixel) == 255; }))
            std::copy_n(from, count, to);
        else
            std::transform(from, from + count, to, to, over);
    });
}

} // namespace Marlox
