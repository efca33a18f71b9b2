#include "workbench/tools/ShapeRaster.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <tuple>
#include <utility>

namespace Marlox {

namespace {

constexpr double closeToWhole = 1e-6;    // coverage that differs less from 0 or 1 is that
constexpr double closeHeight = 1e-9;     // rows
constexpr double exactWork = 250'000.0;  // pairs of lines looked at in one group of a row
constexpr std::size_t fewSorted = 32;    // below it sorting by insertion is quicker
constexpr double sampleWork = 100'000.0; // crossings in a row that is sampled
constexpr int mostSamples = 32;

template <class Join>
void joinSpan(float* from, float* to, float value, Join join)
{
    for (float* at = from; at < to; ++at)
        *at = join(*at, value);
}

float larger(float a, float b)
{
    return a < b ? b : a;
}

float smaller(float a, float b)
{
    return b < a ? b : a;
}

void joinSpan(float* from, float* to, float value, RasterJoin join)
{
    if (join == RasterJoin::Clear)
        std::fill(from, value == 1.0f ? to : from, 0.0f);
    else if (join == RasterJoin::Replace || (join == RasterJoin::Maximum && value == 1.0f) ||
             (join == RasterJoin::Minimum && value == 0.0f))
        std::fill(from, to, value);
    else if (join == RasterJoin::Maximum && value > 0.0f)
        joinSpan(from, to, value, larger);
    else if (join == RasterJoin::Minimum && value < 1.0f)
        joinSpan(from, to, value, smaller);
}

} // namespace

// RowCoverage ------------------------------------------------------------------------------------

RowCoverage::RowCoverage(int width)
    : width_(width), changes_(std::size_t(width) + 2), touched_(std::size_t(width) / 64 + 1)
{
}

void RowCoverage::Touch(int column)
{
    touched_[std::size_t(column) / 64] |= u64(1) << (column % 64);
}

void RowCoverage::Add(double x0, double x1, double height)
{
    if (x1 < x0)
        std::swap(x0, x1);
    if (x0 >= width_)
        return;
    if (x0 < 0.0) {
        const double left = x1 <= 0.0 ? height : height * -x0 / (x1 - x0);
        changes_[0] += left;
        Touch(0);
        if (x1 <= 0.0)
            return;
        height -= left;
        x0 = 0.0;
    }
    if (x1 > width_) {
        height *= (width_ - x0) / (x1 - x0);
        x1 = width_;
    }
    AddWithin(x0, x1, height);
}

void RowCoverage::AddWithin(double x0, double x1, double height)
{
    const int first = int(x0);
    const int last = int(x1);
    const auto add = [this](int column, double part, double middle) {
        // What the line leaves of its own pixel; all of the next one.
        const double spill = part * (middle - column);
        changes_[std::size_t(column)] += part - spill;
        changes_[std::size_t(column) + 1] += spill;
        Touch(column);
    };
    if (first == last) {
        add(first, height, (x0 + x1) * 0.5);
    } else {
        const double each = height / (x1 - x0);
        for (int column = first; column <= last; ++column) {
            const double from = std::max(x0, double(column));
            const double to = std::min(x1, column + 1.0);
            add(column, (to - from) * each, (from + to) * 0.5);
        }
    }
    if (last + 1 < width_)
        Touch(last + 1);
}

float RowCoverage::Take(int column)
{
    sum_ += std::exchange(changes_[std::size_t(column)], 0.0);
    if (std::abs(sum_) < closeToWhole)
        return 0.0f;
    return std::abs(sum_ - 1.0) < closeToWhole ? 1.0f : float(std::clamp(sum_, 0.0, 1.0));
}

void RowCoverage::WriteTo(float* to, RasterJoin join)
{
    int done = 0;
    float value = 0.0f;
    for (std::size_t word = 0; word < touched_.size(); ++word) {
        for (u64 bits = std::exchange(touched_[word], 0); bits; bits &= bits - 1) {
            const int column = int(word) * 64 + std::countr_zero(bits);
            if (column >= width_)
                break;
            joinSpan(to + done, to + column, value, join);
            value = Take(column);
            done = column;
        }
    }
    joinSpan(to + done, to + width_, value, join);
    changes_[std::size_t(width_)] = changes_[std::size_t(width_) + 1] = 0.0;
    sum_ = 0.0;
}

// ShapeRaster ------------------------------------------------------------------------------------

ShapeRaster::ShapeRaster(const Outline& outline, FillRule rule, const MxRect& window)
    : rule_(rule), window_(window)
{
    edges_.reserve(outline.size());
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const PixelPlace& from = outline[i];
        const PixelPlace& to = outline[i + 1 < outline.size() ? i + 1 : 0];
        const bool down = from.y < to.y || (from.y == to.y && from.x < to.x);
        const PixelPlace& high = down ? from : to;
        const PixelPlace& low = down ? to : from;
        // What lies wholly to the right changes nothing; lines to the left count for what is there.
        if (from == to || low.y <= window.top || high.y >= window.bottom ||
            std::min(from.x, to.x) >= window.right)
            continue;
        edges_.push_back({high.x - window.left, high.y - window.top, low.x - window.left,
                          low.y - window.top, down ? 1 : -1});
    }
    order_ = OrderByRow(edges_, window.Height(), [](const Edge& edge) { return edge.y0; });
}

ShapeRaster::Walk::Walk(const ShapeRaster& raster, int first)
    : raster_(raster), row_(first), coverage_(raster.window_.Width())
{
}

double ShapeRaster::Walk::Piece::At(double y) const
{
    if (y <= y0 || y1 <= y0)
        return x0;
    return y >= y1 ? x1 : std::clamp(x0 + (x1 - x0) * ((y - y0) / (y1 - y0)), low, high);
}

bool ShapeRaster::Walk::IsFilled(int winding) const
{
    return raster_.rule_ == FillRule::NonZero ? winding != 0 : winding % 2 != 0;
}

void ShapeRaster::Walk::Note(int winding)
{
    lowest_ = std::min(lowest_, winding);
    highest_ = std::max(highest_, winding);
}

/// Adds the line where it bounds what is filled; the winding on its right.
int ShapeRaster::Walk::Cross(int winding, const Across& line, double x0, double x1, double height)
{
    const int behind = winding + line.direction;
    const int change = int(IsFilled(behind)) - int(IsFilled(winding));
    if (change != 0)
        coverage_.Add(x0, x1, height * change);
    Note(behind);
    return behind;
}

/// The pieces of all edges in the row. An end that lies in the row is taken as it is, so that the
/// pieces of neighbours meet exactly.
void ShapeRaster::Walk::Gather()
{
    const std::vector<Edge>& edges = raster_.edges_;
    const std::vector<u32>& order = raster_.order_;
    for (; nextEdge_ < order.size() && edges[order[nextEdge_]].y0 < row_ + 1; ++nextEdge_)
        active_.push_back(order[nextEdge_]);
    std::erase_if(active_, [&](u32 edge) { return edges[edge].y1 <= row_; });
    pieces_.clear();
    for (const u32 index : active_) {
        const Edge& edge = edges[index];
        Piece piece{edge.x0, edge.y0 - row_, edge.x1, edge.y1 - row_, 0, 0, index, edge.direction};
        std::tie(piece.low, piece.high) = std::minmax(edge.x0, edge.x1);
        const Piece whole = piece;
        if (piece.y0 < 0.0) {
            piece.x0 = whole.At(0.0);
            piece.y0 = 0.0;
        }
        if (piece.y1 > 1.0) {
            piece.x1 = whole.At(1.0);
            piece.y1 = 1.0;
        }
        std::tie(piece.low, piece.high) = std::minmax(piece.x0, piece.x1);
        pieces_.push_back(piece);
    }
}

/// From left to right; the edges keep the order, which the next row nearly has.
void ShapeRaster::Walk::Sort()
{
    const auto before = [](const Piece& a, const Piece& b) {
        return a.low != b.low ? a.low < b.low : a.edge < b.edge;
    };
    if (pieces_.size() > fewSorted) {
        std::sort(pieces_.begin(), pieces_.end(), before);
    } else {
        for (std::size_t i = 1; i < pieces_.size(); ++i) {
            const Piece piece = pieces_[i];
            std::size_t at = i;
            for (; at > 0 && before(piece, pieces_[at - 1]); --at)
                pieces_[at] = pieces_[at - 1];
            pieces_[at] = piece;
        }
    }
    for (std::size_t i = 0; i < pieces_.size(); ++i)
        active_[i] = pieces_[i].edge;
}

void ShapeRaster::Walk::Next(float* to, RasterJoin join)
{
    Gather();
    Sort();
    // Pieces whose extents touch form a group. No line runs between two groups, so that the winding
    // there is the same all the way down the row.
    int winding = lowest_ = highest_ = 0;
    for (std::size_t first = 0; first < pieces_.size();) {
        std::size_t last = first;
        double high = pieces_[first].high;
        double length = 0.0;
        double turns = 0.0;
        do {
            const Piece& piece = pieces_[last++];
            length += piece.y1 - piece.y0;
            turns += (piece.y1 - piece.y0) * piece.direction;
            high = std::max(high, piece.high);
        } while (last < pieces_.size() && pieces_[last].low <= high);
        const std::span group(pieces_.data() + first, last - first);
        const int behind = winding + int(std::lround(turns));
        // One line that goes through once, in whatever pieces: nothing can cross.
        if (std::abs(std::abs(turns) - 1.0) < closeHeight && length < 1.0 + closeHeight) {
            const int change = int(IsFilled(behind)) - int(IsFilled(winding));
            for (const Piece& piece : group) {
                if (change != 0 && piece.y1 > piece.y0)
                    coverage_.Add(piece.x0, piece.x1, (piece.y1 - piece.y0) * change);
            }
        } else {
            FillCrossing(group, winding);
        }
        winding = behind;
        Note(winding);
        first = last;
    }
    coverage_.WriteTo(to, join);
    ++row_;
}

/// Whether pairs of lines in the slabs between ends of lines would be too many to look at.
bool ShapeRaster::Walk::IsTooMuch(std::span<const Piece> pieces)
{
    if (double(pieces.size()) * double(pieces.size()) * 2.0 * double(pieces.size()) < exactWork)
        return false;
    std::vector<std::pair<double, int>> ends;
    for (const Piece& piece : pieces) {
        ends.emplace_back(piece.y0, 1);
        ends.emplace_back(piece.y1, -1);
    }
    std::sort(ends.begin(), ends.end());
    double work = 0.0;
    double lines = 0.0;
    for (const auto& [y, change] : ends) {
        lines += change;
        work += lines * lines;
    }
    return work > exactWork;
}

/// Lines that may cross: the row is cut into slabs without an end of a line in them.
void ShapeRaster::Walk::FillCrossing(std::span<const Piece> pieces, int winding)
{
    if (IsTooMuch(pieces))
        return FillSampled(pieces, winding);
    levels_.clear();
    waiting_.clear();
    for (const Piece& piece : pieces) {
        levels_.insert(levels_.end(), {piece.y0, piece.y1});
        waiting_.push_back(&piece);
    }
    std::sort(levels_.begin(), levels_.end());
    std::sort(waiting_.begin(), waiting_.end(), [](const Piece* a, const Piece* b) {
        return a->y0 != b->y0 ? a->y0 < b->y0 : a->edge < b->edge;
    });
    slab_.clear();
    std::size_t next = 0;
    for (std::size_t i = 1; i < levels_.size(); ++i) {
        const double top = levels_[i - 1];
        if (!(levels_[i] > top))
            continue;
        std::erase_if(slab_, [top](const Piece* piece) { return piece->y1 <= top; });
        for (; next < waiting_.size() && waiting_[next]->y0 <= top; ++next) {
            if (waiting_[next]->y1 > top)
                slab_.push_back(waiting_[next]);
        }
        FillSlab(winding, top, levels_[i]);
    }
}

/// The slab is cut where lines cross; between the cuts their order holds.
void ShapeRaster::Walk::FillSlab(int winding, double top, double bottom)
{
    across_.clear();
    for (const Piece* piece : slab_)
        across_.push_back({piece->At(top), piece->At(bottom), piece->direction});
    splits_.assign({0.0, 1.0});
    for (std::size_t i = 0; i < across_.size(); ++i) {
        for (std::size_t j = i + 1; j < across_.size(); ++j) {
            const double above = across_[j].top - across_[i].top;
            const double below = across_[j].bottom - across_[i].bottom;
            if ((above < 0.0 && below > 0.0) || (above > 0.0 && below < 0.0))
                splits_.push_back(above / (above - below));
        }
    }
    std::sort(splits_.begin(), splits_.end());
    const auto at = [](const Across& line, double part) {
        return line.top + (line.bottom - line.top) * part;
    };
    for (std::size_t i = 1; i < splits_.size(); ++i) {
        const double from = splits_[i - 1];
        const double to = splits_[i];
        if (!(to > from))
            continue;
        std::sort(across_.begin(), across_.end(), [&](const Across& a, const Across& b) {
            return at(a, from) + at(a, to) < at(b, from) + at(b, to);
        });
        int left = winding;
        for (const Across& line : across_)
            left = Cross(left, line, at(line, from), at(line, to), (bottom - top) * (to - from));
    }
}

/// Too many lines to look at each pair: exact along lines of the row, fewer the more there are.
void ShapeRaster::Walk::FillSampled(std::span<const Piece> pieces, int winding)
{
    const int samples = std::clamp(int(sampleWork / double(pieces.size())), 1, mostSamples);
    for (int sample = 0; sample < samples; ++sample) {
        const double y = (sample + 0.5) / samples;
        across_.clear();
        for (const Piece& piece : pieces) {
            if (piece.y0 <= y && y < piece.y1)
                across_.push_back({piece.At(y), 0.0, piece.direction});
        }
        std::sort(across_.begin(), across_.end(),
                  [](const Across& a, const Across& b) { return a.top < b.top; });
        int left = winding;
        for (const Across& line : across_)
            left = Cross(left, line, line.top, line.top, 1.0 / samples);
    }
}

} // namespace Marlox
