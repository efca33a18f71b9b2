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

constexpr int shifts[] = {16, 8, 0}; // of red, green and blue in a pixel

int codeOf(QRgb pixel, int shift)
{
    return int(pixel >> shift & 0xff);
}

/// What the display makes of the nodes, and in which cells it is too bent for straight lines:
/// where it clips, and where it is steep.
class Grid {
public:
    Grid(const Spacing& spacing, const ColorAxes& axes, double hue, const DisplayColors& display)
    {
        std::vector<float> light;
        light.reserve(3 * rowSize * (upCells + 1));
        for (const double value : spacing.up) {
            const ColorSquareRow row(axes, hue, value);
            for (const double saturation : spacing.across) {
                for (std::size_t i = 0; i < 3; ++i)
                    light.push_back(row.first[i] + row.way[i] * float(saturation));
            }
        }
        nodes_.resize(light.size() / 3);
        display.Show(light.data(), int(nodes_.size()), nodes_.data());
        FindBends(1, rowSize);
        FindBends(rowSize, 1);
    }

    const QRgb* Row(int node) const { return &nodes_[std::size_t(node) * rowSize]; }
    bool IsBent(int across, int up) const
    {
        return bent_[std::size_t(up) * rowSize + std::size_t(across)];
    }

private:
    static constexpr std::size_t rowSize = acrossCells + 1;
    /// How far a node may lie off the line between its neighbours, in halves of a code. What lies
    /// between nodes is then off by an eighth of that, or by a fourth where the display has an
    /// edge.
    static constexpr int bend = 4;

    /// Marks the cells around the nodes that lie off the line through those beside them. `along`:
    /// from one node to the next on that line; `aside`: across it.
    void FindBends(std::size_t along, std::size_t aside)
    {
        bent_.resize(nodes_.size());
        const auto isBent = [this, along](std::size_t node) {
            for (const int shift : shifts) {
                const int off = codeOf(nodes_[node - along], shift) +
                                codeOf(nodes_[node + along], shift) -
                                2 * codeOf(nodes_[node], shift);
                if (off > bend || off < -bend)
                    return true;
            }
            return false;
        };
        const std::size_t last = (along == 1 ? acrossCells : upCells) - 1;
        const std::size_t count = (along == 1 ? upCells : acrossCells) + 1;
        for (std::size_t line = 0; line < count; ++line) {
            for (std::size_t i = 1; i <= last; ++i) {
                const std::size_t node = line * aside + i * along;
                if (!isBent(node))
                    continue;
                for (const std::size_t cell : {node, node - along}) {
                    bent_[cell] = true;
                    if (line > 0)
                        bent_[cell - aside] = true;
                }
            }
        }
    }

    std::vector<QRgb> nodes_;
    std::vector<char> bent_; // by the cell's first node
};

/// The codes of one row of nodes, spread over the square's columns: red, then green, then blue.
using Codes = std::vector<float>;

Codes spread(const QRgb* nodes, const std::vector<Between>& columns)
{
    Codes codes;
    codes.reserve(3 * columns.size());
    for (const int shift : shifts) {
        for (const Between& column : columns) {
            const auto low = float(codeOf(nodes[column.cell], shift));
            const auto high = float(codeOf(nodes[column.cell + 1], shift));
            codes.push_back(low + column.share * (high - low));
        }
    }
    return codes;
}

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

/// Pixels that the display is asked for one by one, many at a time.
class Asked {
public:
    explicit Asked(const DisplayColors& display) : display_(display) {}
    ~Asked() { Show(); }

    void Add(QRgb* pixel, const std::array<float, 3>& light)
    {
        pixels_.push_back(pixel);
        light_.insert(light_.end(), light.begin(), light.end());
        if (pixels_.size() == most)
            Show();
    }

private:
    static constexpr std::size_t most = 4096;

    void Show()
    {
        codes_.resize(pixels_.size());
        display_.Show(light_.data(), int(pixels_.size()), codes_.data());
        for (std::size_t i = 0; i < pixels_.size(); ++i)
            *pixels_[i] = codes_[i];
        pixels_.clear();
        light_.clear();
    }

    const DisplayColors& display_;
    std::vector<QRgb*> pixels_;
    std::vector<float> light_;
    std::vector<QRgb> codes_;
};

bool isLight(const std::array<float, 3>& rgb)
{
    static constexpr float rounding = 1e-5f;
    return std::all_of(rgb.begin(), rgb.end(), [](float component) {
        return component >= -rounding && component <= 1.0f + rounding;
    });
}

} // namespace

void ColorSquare::PaintBetween(QImage& image, const ColorAxes& axes, double hue,
                               const DisplayColors& display) const
{
    const Spacing& spacing = spacingOf(axes);
    const Grid grid(spacing, axes, hue, display);
    std::vector<Between> columns;
    columns.reserve(saturations_.size());
    for (const double saturation : saturations_)
        columns.emplace_back(spacing.across, saturation);
    Asked asked(display);
    int cell = -1; // whose rows of nodes are there
    Codes low;
    Codes high;
    for (int y = 0; y < Rows(); ++y) {
        const Between place(spacing.up, values_[std::size_t(y)]);
        if (place.cell != cell) {
            high =
                place.cell + 1 == cell ? std::move(low) : spread(grid.Row(place.cell + 1), columns);
            low = spread(grid.Row(place.cell), columns);
            cell = place.cell;
        }
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        blendRow(pixels, low, high, place.share);
        const ColorSquareRow row(axes, hue, values_[std::size_t(y)]);
        for (std::size_t x = 0; x < columns.size(); ++x) {
            if (!grid.IsBent(columns[x].cell, cell))
                continue;
            std::array<float, 3> light;
            for (std::size_t i = 0; i < 3; ++i)
                light[i] = row.first[i] + row.way[i] * across_[x];
            if (isLight(light))
                asked.Add(pixels + x, light);
        }
    }
}

} // namespace Marlox
