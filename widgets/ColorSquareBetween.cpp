// The square under a display that mixes components: a grid of colours, and what lies between.

#include "widgets/ColorSquare.h"
#include "widgets/ColorSquareRows.h"

#include <algorithm>

#include <QColor>

namespace Marlox {

namespace {

constexpr int acrossCells = 64;
constexpr int upCells = 64;

using Nodes = std::vector<double>; // rising from 0 to 1

/// Where the display is asked along an axis. Displays are steep where light is little: that is at
/// the low end of the value axis, and at the pure end of the saturation axis. In the colour space
/// without such ends, evenly.
struct Spacing {
    Nodes across;
    Nodes up;
};

template <class Place>
Nodes nodesOf(int cells, Place place)
{
    Nodes nodes;
    for (int i = 0; i <= cells; ++i)
        nodes.push_back(place(double(i) / cells));
    return nodes;
}

/// The halves of the axis apart: lightness has a bend in the middle.
double denseAtEnds(double way)
{
    return way < 0.5 ? 2.0 * way * way : 1.0 - 2.0 * (1.0 - way) * (1.0 - way);
}

const Spacing& spacingOf(const ColorAxes& axes)
{
    static const auto evenly = [](double way) { return way; };
    static const Spacing even{nodesOf(acrossCells, evenly), nodesOf(upCells, evenly)};
    static const Spacing dense{
        nodesOf(acrossCells, [](double way) { return 1.0 - (1.0 - way) * (1.0 - way); }),
        nodesOf(upCells, denseAtEnds)};
    return axes.ValueAxis().zero == 0.0 ? dense : even;
}

/// Where a position lies between two nodes.
struct Between {
    Between(const Nodes& nodes, double position)
    {
        const auto above = std::upper_bound(nodes.begin() + 1, nodes.end() - 1, position);
        cell = int(above - nodes.begin()) - 1;
        share = float((position - *(above - 1)) / (*above - *(above - 1)));
    }
    int cell;
    float share; // of the node above
};

/// The codes of one row of nodes, spread over the square's columns: red, then green, then blue.
using Codes = std::vector<float>;

class NodeRows {
public:
    NodeRows(const Spacing& spacing, const std::vector<double>& saturations, const ColorAxes& axes,
             double hue, const DisplayColors& display)
        : spacing_(spacing), axes_(axes), hue_(hue), display_(display)
    {
        for (const double saturation : saturations)
            columns_.emplace_back(spacing.across, saturation);
    }

    Codes Row(int node) const
    {
        const ColorSquareRow row(axes_, hue_, spacing_.up[std::size_t(node)]);
        std::array<float, 3 * (acrossCells + 1)> light;
        std::array<QRgb, acrossCells + 1> shown;
        for (std::size_t i = 0; i < light.size(); ++i)
            light[i] = row.first[i % 3] + row.way[i % 3] * float(spacing_.across[i / 3]);
        display_.Show(light.data(), int(shown.size()), shown.data());
        Codes codes;
        codes.reserve(3 * columns_.size());
        for (const int shift : {16, 8, 0}) {
            const auto codeOf = [&](int i) { return float(shown[std::size_t(i)] >> shift & 0xff); };
            for (const Between& column : columns_) {
                const float low = codeOf(column.cell);
                codes.push_back(low + column.share * (codeOf(column.cell + 1) - low));
            }
        }
        return codes;
    }

private:
    const Spacing& spacing_;
    const ColorAxes& axes_;
    double hue_;
    const DisplayColors& display_;
    std::vector<Between> columns_;
};

void blendRow(QRgb* pixels, const Codes& low, const Codes& high, float share)
{
    const std::size_t count = low.size() / 3;
    const float* lows[] = {&low[0], &low[count], &low[2 * count]};
    const float* highs[] = {&high[0], &high[count], &high[2 * count]};
    const auto code = [&](int channel, std::size_t i) {
        const float from = lows[channel][i];
        return QRgb(int(from + share * (highs[channel][i] - from) + 0.5f));
    };
    for (std::size_t i = 0; i < count; ++i)
        pixels[i] = 0xff000000u | code(0, i) << 16 | code(1, i) << 8 | code(2, i);
}

} // namespace

void ColorSquare::PaintBetween(QImage& image, const ColorAxes& axes, double hue,
                               const DisplayColors& display) const
{
    const Spacing& spacing = spacingOf(axes);
    const NodeRows rows(spacing, saturations_, axes, hue, display);
    int cell = -1; // whose rows of nodes are there
    Codes low;
    Codes high;
    for (int y = 0; y < Rows(); ++y) {
        const Between place(spacing.up, values_[std::size_t(y)]);
        if (place.cell != cell) {
            high = place.cell + 1 == cell ? std::move(low) : rows.Row(place.cell + 1);
            low = rows.Row(place.cell);
            cell = place.cell;
        }
        blendRow(reinterpret_cast<QRgb*>(image.scanLine(y)), low, high, place.share);
    }
}

} // namespace Marlox
