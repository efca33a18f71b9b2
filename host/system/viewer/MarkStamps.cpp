#include "system/viewer/MarkStamps.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

#include <GL/gl.h>

namespace Marlox {

namespace {

constexpr double largest = 30.0;    // of a picture's sides, in units
constexpr int longestRow = 2048;    // pixels
constexpr double casingWidth = 3.0; // lines
constexpr std::size_t fewest = 16;  // copies in a row that are worth a texture of their own

using Form = OverlayPainter::Shape;

struct Vertex {
    float x;
    float y;
    float s;
    float t;
};

/// The square of the distance to a segment.
double SquareTo(OverlayPoint at, OverlayPoint from, OverlayPoint to)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double square = dx * dx + dy * dy;
    double along = (at.x - from.x) * dx + (at.y - from.y) * dy;
    along = square > 0.0 ? std::clamp(along / square, 0.0, 1.0) : 0.0;
    const double x = at.x - from.x - dx * along;
    const double y = at.y - from.y - dy * along;
    return x * x + y * y;
}

/// To the lines of a shape; 0 within a filled one.
double DistanceTo(Form form, std::span<const OverlayPoint> points, OverlayPoint at)
{
    double nearest = HUGE_VAL; // squared
    bool inside = false;       // by the number of edges to the right
    const bool closed = form == Form::Loop || form == Form::Fill;
    const std::size_t step = form == Form::Lines ? 2 : 1;
    for (std::size_t i = 0; i + (closed ? 0 : 1) < points.size(); i += step) {
        const OverlayPoint from = points[i];
        const OverlayPoint to = points[(i + 1) % points.size()];
        nearest = std::min(nearest, SquareTo(at, from, to));
        if ((from.y > at.y) != (to.y > at.y) &&
            at.x < from.x + (at.y - from.y) / (to.y - from.y) * (to.x - from.x))
            inside = !inside;
    }
    return form == Form::Fill && inside ? 0.0 : std::sqrt(nearest);
}

/// The distance from which on a pixel is not touched by the casing.
double Reach(double unit)
{
    return (casingWidth * unit + 1.0) / 2.0;
}

/// How much of a pixel in this distance a line of this width covers.
double Coverage(double distance, double width)
{
    return std::clamp(width / 2.0 + 0.5 - distance, 0.0, 1.0);
}

/// `above` over `below`, both as far as they cover the pixel; premultiplied.
MxColor Over(const MxColor& above, double coverage, const MxColor& below, double coverageBelow)
{
    const double a = above.Alpha() * coverage;
    const double b = below.Alpha() * coverageBelow * (1.0 - a);
    const auto mix = [&](double x, double y) { return x * a + y * b; };
    return MxColor::FromDoubles(mix(above.Red(), below.Red()), mix(above.Green(), below.Green()),
                                mix(above.Blue(), below.Blue()), a + b);
}

/// The side of the largest point sprite. They, and textures of any size, came with OpenGL 2.
int LargestSprite()
{
    const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    if (!version || std::atoi(version) < 2)
        return 0;
    float sizes[2] = {};
    glGetFloatv(GL_ALIASED_POINT_SIZE_RANGE, sizes);
    return int(sizes[1]);
}

} // namespace

MarkStamps::MarkStamps(double unit, const MxColor& casing) : unit_(unit), casing_(casing) {}

/// Of the first pixel, from the origin.
double MarkStamps::PixelMiddle() const
{
    return int(unit_) % 2 == 1 ? 0.0 : 0.5;
}

bool MarkStamps::Add(const Shape& shape, const MxPoint& origin)
{
    points_.clear();
    // Lines of one mark are one shape.
    const Kind* last = copies_.empty() ? nullptr : &kinds_[std::size_t(copies_.back().kind)];
    const bool joins = last && shape.form == Form::Lines && last->form == Form::Lines &&
                       last->color == shape.color && copies_.back().origin == origin;
    if (joins)
        points_ = last->points;
    for (const OverlayPoint& point : shape.points)
        points_.push_back({point.x * shape.scale, point.y * shape.scale});
    const int kind = FindKind(shape);
    if (kind < 0)
        return false;
    if (joins)
        copies_.back().kind = kind;
    else
        AddCopy({kind, origin});
    return true;
}

bool MarkStamps::Add(const Shape& shape, std::span<const MxPoint> origins)
{
    points_.clear();
    for (const OverlayPoint& point : shape.points)
        points_.push_back({point.x * shape.scale, point.y * shape.scale});
    const int kind = FindKind(shape);
    if (kind < 0)
        return false;
    for (const MxPoint& origin : origins)
        AddCopy({kind, origin});
    return true;
}

void MarkStamps::AddCopy(const Copy& copy)
{
    if (copies_.empty() || copies_.back().kind != copy.kind ||
        !(copies_.back().origin == copy.origin))
        copies_.push_back(copy);
}

/// That of points_; -1: there can't be one.
int MarkStamps::FindKind(const Shape& shape)
{
    const auto isIt = [&](const Kind& kind) {
        return kind.form == shape.form && kind.color == shape.color &&
               std::equal(points_.begin(), points_.end(), kind.points.begin(), kind.points.end(),
                          [](OverlayPoint a, OverlayPoint b) { return a.x == b.x && a.y == b.y; });
    };
    const auto found = std::find_if(kinds_.begin(), kinds_.end(), isIt);
    if (found != kinds_.end())
        return int(found - kinds_.begin());
    Kind made = MakeKind(shape);
    const int longest = int(largest * unit_);
    const bool fits = made.size.x > 0 && made.size.x <= longest && made.size.y > 0 &&
                      made.size.y <= longest && columns_ + made.size.x <= longestRow;
    if (!fits)
        return -1;
    columns_ += made.size.x;
    kinds_.push_back(std::move(made));
    return int(kinds_.size()) - 1;
}

MarkStamps::Kind MarkStamps::MakeKind(const Shape& shape) const
{
    Kind kind{shape.form, points_, shape.color, {}, {}, columns_};
    double left = HUGE_VAL;
    double bottom = HUGE_VAL;
    double right = -HUGE_VAL;
    double top = -HUGE_VAL;
    for (const OverlayPoint& at : points_) {
        left = std::min(left, at.x);
        bottom = std::min(bottom, at.y);
        right = std::max(right, at.x);
        top = std::max(top, at.y);
    }
    // All pixels that the casing covers. What is far away or no number stays as large as it seems.
    const double reach = Reach(unit_);
    const auto pixel = [](double at) { return int(std::clamp(at, -1e6, 1e6)); };
    const double middle = PixelMiddle();
    kind.corner = {pixel(std::floor(left - reach - middle)) + 1,
                   pixel(std::floor(bottom - reach - middle)) + 1};
    kind.size = {pixel(std::ceil(right + reach - middle)) - kind.corner.x,
                 pixel(std::ceil(top + reach - middle)) - kind.corner.y};
    return kind;
}

/// Of a pixel of the picture, counted from its bottom left; premultiplied.
MxColor MarkStamps::ColorAt(const Kind& kind, int x, int y) const
{
    const double middle = PixelMiddle();
    const OverlayPoint at{kind.corner.x + x + middle, kind.corner.y + y + middle};
    const double distance = DistanceTo(kind.form, kind.points, at);
    if (distance >= Reach(unit_))
        return {0, 0, 0, 0};
    return Over(kind.color, Coverage(distance, unit_), casing_,
                Coverage(distance, casingWidth * unit_) * kind.color.alpha / 255.0);
}

/// Makes a texture of the row of pictures; returns its size.
MxPoint MarkStamps::LoadPictures() const
{
    int height = 1;
    for (const Kind& kind : kinds_)
        height = std::max(height, kind.size.y);
    const MxPoint size(int(std::bit_ceil(unsigned(columns_))),
                       int(std::bit_ceil(unsigned(height))));
    std::vector<MxColor> row(std::size_t(size.x) * std::size_t(size.y));
    for (const Kind& kind : kinds_) {
        if (!kind.shown)
            continue;
        for (int y = 0; y < kind.size.y; ++y) {
            for (int x = 0; x < kind.size.x; ++x)
                row[std::size_t(y * size.x + kind.column + x)] = ColorAt(kind, x, y);
        }
    }
    LoadTexture(row, size);
    return size;
}

void MarkStamps::Draw()
{
    if (copies_.empty())
        return;
    int view[4] = {};
    glGetIntegerv(GL_VIEWPORT, view);
    view_ = {view[2], view[3]};
    largestSprite_ = LargestSprite();
    for (const Copy& copy : copies_)
        kinds_[std::size_t(copy.kind)].shown = true;
    unsigned texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    const MxPoint row = LoadPictures();
    glPushAttrib(GL_POINT_BIT);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_2D);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDisableClientState(GL_COLOR_ARRAY);
    std::vector<Copy> beyond; // of a run of sprites, those whose middles are outside the view
    for (std::size_t i = 0; i < copies_.size();) {
        Run run = NextRun(i, true);
        if (run.size() >= fewest && DrawSheet(run)) {
            i += run.size();
            continue;
        }
        const bool areSprites = run.size() >= fewest;
        if (areSprites)
            DrawSprites(run, beyond);
        else
            run = NextRun(i, false);
        if (!areSprites || !beyond.empty()) {
            glBindTexture(GL_TEXTURE_2D, texture);
            DrawQuads(areSprites ? Run(beyond) : run, row);
        }
        i += run.size();
    }
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_TEXTURE_2D);
    glPopAttrib();
    glDeleteTextures(1, &texture);
    for (const Kind& kind : kinds_)
        glDeleteTextures(1, &kind.picture); // 0 is ignored
    copies_.clear();
    kinds_.clear();
    columns_ = 0;
}

int MarkStamps::SideOf(const Kind& kind)
{
    return std::max(kind.size.x, kind.size.y);
}

/// The copies from `begin` on that are drawn alike: sprites of one kind, as many as there are in a
/// row, or what comes before the next of these.
MarkStamps::Run MarkStamps::NextRun(std::size_t begin, bool sprites) const
{
    const auto spritesFrom = [this](std::size_t first, std::size_t most) {
        if (SideOf(kinds_[std::size_t(copies_[first].kind)]) > largestSprite_)
            return std::size_t(0);
        std::size_t count = 1;
        while (count < most && first + count < copies_.size() &&
               copies_[first + count].kind == copies_[first].kind)
            ++count;
        return count;
    };
    std::size_t count = 0;
    if (sprites) {
        count = spritesFrom(begin, copies_.size());
    } else {
        while (begin + count < copies_.size()) {
            const std::size_t ahead = spritesFrom(begin + count, fewest);
            if (ahead >= fewest)
                break;
            count += std::max<std::size_t>(ahead, 1);
        }
    }
    return Run(copies_).subspan(begin, count);
}

void MarkStamps::DrawQuads(Run run, MxPoint row) const
{
    std::vector<Vertex> corners;
    corners.reserve(4 * run.size());
    for (const Copy& copy : run) {
        const Kind& kind = kinds_[std::size_t(copy.kind)];
        const auto corner = [&](int x, int y) {
            corners.push_back({float(copy.origin.x + kind.corner.x + x),
                               float(copy.origin.y + kind.corner.y + y),
                               float(kind.column + x) / float(row.x), float(y) / float(row.y)});
        };
        corner(0, 0);
        corner(kind.size.x, 0);
        corner(kind.size.x, kind.size.y);
        corner(0, kind.size.y);
    }
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &corners[0].x);
    glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), &corners[0].s);
    glDrawArrays(GL_QUADS, 0, int(corners.size()));
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
}

/// Sprites whose middles lie outside the view would not be drawn at all: they are left to `beyond`.
void MarkStamps::DrawSprites(Run run, std::vector<Copy>& beyond)
{
    Kind& kind = kinds_[std::size_t(run.front().kind)];
    const int side = SideOf(kind);
    if (kind.picture == 0) {
        glGenTextures(1, &kind.picture);
        glBindTexture(GL_TEXTURE_2D, kind.picture);
        std::vector<MxColor> pixels(std::size_t(side * side), MxColor(0, 0, 0, 0));
        for (int y = 0; y < kind.size.y; ++y) { // a sprite's first row is its uppermost
            for (int x = 0; x < kind.size.x; ++x)
                pixels[std::size_t((side - 1 - y) * side + x)] = ColorAt(kind, x, y);
        }
        LoadTexture(pixels, {side, side});
    }
    glBindTexture(GL_TEXTURE_2D, kind.picture);
    std::vector<float> middles;
    middles.reserve(2 * run.size());
    beyond.clear();
    for (const Copy& copy : run) {
        const float x = float(copy.origin.x + kind.corner.x) + float(side) / 2.0f;
        const float y = float(copy.origin.y + kind.corner.y) + float(side) / 2.0f;
        if (x >= 0.0f && x <= float(view_.x) && y >= 0.0f && y <= float(view_.y))
            middles.insert(middles.end(), {x, y});
        else
            beyond.push_back(copy);
    }
    glEnable(GL_POINT_SPRITE);
    glDisable(GL_POINT_SMOOTH);
    glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_TRUE);
    glPointSize(float(side));
    glVertexPointer(2, GL_FLOAT, 0, middles.data());
    glDrawArrays(GL_POINTS, 0, int(middles.size() / 2));
    glDisable(GL_POINT_SPRITE);
}

} // namespace Marlox
