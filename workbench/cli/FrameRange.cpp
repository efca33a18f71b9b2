#include "workbench/cli/FrameRange.h"

#include <QRegularExpression>

namespace Marlox {

namespace {

constexpr int64_t mostFrames = 1000000;

} // namespace

std::optional<FrameRange> FrameRange::Parse(const QString& text)
{
    static const QRegularExpression form("^(-?[0-9]+)(?:-(-?[0-9]+)(?:x([0-9]+))?)?$");
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return {};
    FrameRange range;
    bool firstFits = true;
    bool lastFits = true;
    bool stepFits = true;
    range.first = range.last = match.captured(1).toInt(&firstFits);
    if (match.capturedLength(2) > 0)
        range.last = match.captured(2).toInt(&lastFits);
    if (match.capturedLength(3) > 0)
        range.step = match.captured(3).toInt(&stepFits);
    if (!firstFits || !lastFits || !stepFits || range.step < 1 || range.last < range.first)
        return {};
    if ((int64_t(range.last) - range.first) / range.step >= mostFrames)
        return {};
    return range;
}

std::vector<int> FrameRange::Frames() const
{
    std::vector<int> frames;
    for (int64_t frame = first; frame <= last; frame += step)
        frames.push_back(int(frame));
    return frames;
}

} // namespace Marlox
