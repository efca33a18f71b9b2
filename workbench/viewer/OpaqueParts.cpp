#include "workbench/viewer/OpaqueParts.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr int bandHeight = 16; // rows

} // namespace

OpaqueParts::OpaqueParts(const QImage& picture) : size_(picture.size())
{
    for (int row = 0; row < picture.height(); row += bandHeight)
        bands_.push_back(RunOf(picture, row, std::min(row + bandHeight, picture.height())));
}

/// The longest run of columns that are opaque in all of the rows.
OpaqueParts::Run OpaqueParts::RunOf(const QImage& picture, int firstRow, int lastRow)
{
    std::vector<uchar> columns(std::size_t(picture.width()), 255);
    for (int row = firstRow; row < lastRow; ++row) {
        const uchar* alpha = picture.constScanLine(row) + 3;
        for (std::size_t x = 0; x < columns.size(); ++x)
            columns[x] &= alpha[x * 4];
    }
    Run longest;
    auto at = columns.begin();
    while (at != columns.end()) {
        const auto first = std::find(at, columns.end(), 255);
        at = std::find_if(first, columns.end(), [](uchar alpha) { return alpha != 255; });
        if (at - first > longest.last - longest.first)
            longest = {int(first - columns.begin()), int(at - columns.begin())};
    }
    return longest;
}

QRegion OpaqueParts::Region(int margin) const
{
    const int count = int(bands_.size());
    const int reach = (margin + bandHeight - 1) / bandHeight;
    QRegion region;
    for (int band = 0; band < count; ++band) {
        Run run{0, size_.width()};
        for (int near = std::max(0, band - reach); near <= std::min(count - 1, band + reach);
             ++near) {
            run.first = std::max(run.first, bands_[std::size_t(near)].first);
            run.last = std::min(run.last, bands_[std::size_t(near)].last);
        }
        run.first += run.first > 0 ? margin : 0;
        run.last -= run.last < size_.width() ? margin : 0;
        if (run.first < run.last)
            region += QRect(run.first, band * bandHeight, run.last - run.first, bandHeight);
    }
    return region & QRect(QPoint(), size_);
}

} // namespace Marlox
