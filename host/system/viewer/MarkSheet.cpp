// Marks that lie close together, put into one picture: where thousands overlap, drawing each costs
// many times what its pixels do.

#include "system/viewer/MarkStamps.h"

#include <algorithm>
#include <bit>

#include <GL/gl.h>

namespace Marlox {

namespace {

constexpr std::size_t fewestInSheet = 256;
constexpr std::int64_t roomOfCopy = 256; // pixels of the sheet that a copy is worth
constexpr int tile = 32;                 // side of the parts of a sheet that are drawn or not

/// A premultiplied colour times `by` / 255, rounded.
std::uint32_t Scaled(std::uint32_t color, std::uint32_t by)
{
    const auto pair = [by](std::uint32_t two) { // the bytes 0 and 2
        const std::uint32_t product = two * by + 0x800080u;
        return (product + (product >> 8 & 0xff00ffu)) >> 8 & 0xff00ffu;
    };
    return pair(color & 0xff00ffu) | pair(color >> 8 & 0xff00ffu) << 8;
}

} // namespace

/// Into the texture that is bound; its pixels are drawn as they are.
void MarkStamps::LoadTexture(const std::vector<MxColor>& pixels, MxPoint size)
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size.x, size.y, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.data());
}

/// Copies of one kind. False: they are too few for the room that they take, or it is too large.
bool MarkStamps::DrawSheet(Run run)
{
    if (run.size() < fewestInSheet || largestSprite_ == 0)
        return false;
    const Kind& kind = kinds_[std::size_t(run.front().kind)];
    MxPoint low = view_;
    MxPoint high;
    for (const Copy& copy : run) {
        const MxPoint at{copy.origin.x + kind.corner.x, copy.origin.y + kind.corner.y};
        low = {std::min(low.x, at.x), std::min(low.y, at.y)};
        high = {std::max(high.x, at.x + kind.size.x), std::max(high.y, at.y + kind.size.y)};
    }
    low = {std::max(low.x, 0), std::max(low.y, 0)};
    high = {std::min(high.x, view_.x), std::min(high.y, view_.y)};
    const MxPoint size{high.x - low.x, high.y - low.y};
    int largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (size.x <= 0 || size.y <= 0)
        return true;
    if (std::max(size.x, size.y) > largest ||
        std::int64_t(size.x) * size.y > roomOfCopy * std::int64_t(run.size()))
        return false;
    FillSheet(run, low, size);
    unsigned texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    LoadTexture(sheet_, size);
    DrawTiles(low, size);
    glDeleteTextures(1, &texture);
    return true;
}

/// Those that have something on them: mostly a band along a curve.
void MarkStamps::DrawTiles(MxPoint low, MxPoint size) const
{
    const int across = (size.x + tile - 1) / tile;
    const auto corner = [&](int x, int y) {
        glTexCoord2d(double(x) / size.x, double(y) / size.y);
        glVertex2i(low.x + x, low.y + y);
    };
    glBegin(GL_QUADS);
    for (int i = 0; i < int(tiles_.size()); ++i) {
        if (!tiles_[std::size_t(i)])
            continue;
        const MxPoint from{i % across * tile, i / across * tile};
        const MxPoint to{std::min(from.x + tile, size.x), std::min(from.y + tile, size.y)};
        corner(from.x, from.y);
        corner(to.x, from.y);
        corner(to.x, to.y);
        corner(from.x, to.y);
    }
    glEnd();
}

/// Copies over each other, as they would be drawn one by one.
void MarkStamps::FillSheet(Run run, MxPoint low, MxPoint size)
{
    const Kind& kind = kinds_[std::size_t(run.front().kind)];
    std::vector<MxColor> picture;
    for (int y = 0; y < kind.size.y; ++y) {
        for (int x = 0; x < kind.size.x; ++x)
            picture.push_back(ColorAt(kind, x, y));
    }
    sheet_.assign(std::size_t(size.x) * std::size_t(size.y), MxColor(0, 0, 0, 0));
    const int across = (size.x + tile - 1) / tile;
    tiles_.assign(std::size_t(across) * std::size_t((size.y + tile - 1) / tile), false);
    for (const Copy& copy : run) {
        const MxPoint at{copy.origin.x + kind.corner.x - low.x,
                         copy.origin.y + kind.corner.y - low.y};
        const int left = std::max(0, -at.x);
        const int right = std::min(kind.size.x, size.x - at.x);
        for (int y = std::max(0, -at.y); y < std::min(kind.size.y, size.y - at.y); ++y) {
            const MxColor* from = &picture[std::size_t(y * kind.size.x)];
            MxColor* to = sheet_.data() + std::ptrdiff_t(at.y + y) * size.x + at.x;
            for (int x = left; x < right; x += tile)
                tiles_[std::size_t((at.y + y) / tile * across + (at.x + x) / tile)] = true;
            if (left < right)
                tiles_[std::size_t((at.y + y) / tile * across + (at.x + right - 1) / tile)] = true;
            for (int x = left; x < right; ++x) {
                const auto over = std::bit_cast<std::uint32_t>(from[x]);
                const auto under = std::bit_cast<std::uint32_t>(to[x]);
                to[x] = std::bit_cast<MxColor>(over + Scaled(under, 255u - from[x].alpha));
            }
        }
    }
}

} // namespace Marlox
