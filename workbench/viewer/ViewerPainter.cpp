#include "workbench/viewer/ViewerPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QtGui/qopengl.h>

#ifndef GL_CLAMP_TO_EDGE
#define GL_CLAMP_TO_EDGE 0x812F
#endif

namespace Marlox {

namespace {

constexpr int largestTile = 2048;
constexpr double checkerSize = 12.0; // device-independent pixels
constexpr double mipmapsBelow = 0.5; // view pixels for each of the picture's

void setColor(const QColor& color)
{
    glColor4ub(GLubyte(color.red()), GLubyte(color.green()), GLubyte(color.blue()),
               GLubyte(color.alpha()));
}

void fillRect(double left, double top, double right, double bottom)
{
    glVertex2d(left, top);
    glVertex2d(right, top);
    glVertex2d(right, bottom);
    glVertex2d(left, bottom);
}

/// The rectangle's border, `width` whole pixels wide, outside of it.
void drawFrame(const QRectF& rect, double width)
{
    const double left = std::round(rect.left());
    const double top = std::round(rect.top());
    const double right = std::round(rect.right());
    const double bottom = std::round(rect.bottom());
    glBegin(GL_QUADS);
    fillRect(left - width, top - width, right + width, top);
    fillRect(left - width, bottom, right + width, bottom + width);
    fillRect(left - width, top, left, bottom);
    fillRect(right, top, right + width, bottom);
    glEnd();
}

void drawDashedFrame(const QRectF& rect, double width)
{
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(std::max(1, int(width)), 0xF0F0);
    glLineWidth(float(width));
    glBegin(GL_LINE_LOOP);
    for (const QPointF& corner :
         {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()})
        glVertex2d(std::round(corner.x()) + 0.5, std::round(corner.y()) + 0.5);
    glEnd();
    glDisable(GL_LINE_STIPPLE);
}

void setUpView(const QSize& size)
{
    glViewport(0, 0, size.width(), size.height());
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, size.width(), size.height(), 0.0, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
}

int tileSide()
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    return std::clamp(int(most), 64, largestTile) - 2;
}

} // namespace

ViewerPainter::ViewerPainter() = default;

ViewerPainter::~ViewerPainter() = default;

/// What shows through the picture: squares fixed to the view, two by two texels, repeated; or
/// black.
void ViewerPainter::DrawGround(const std::vector<QRectF>& areas, const Look& look)
{
    const double square = std::max(1.0, std::round(checkerSize * look.devicePixelRatio));
    if (look.checker)
        LoadChecker(look);
    glColor4ub(0, 0, 0, 255);
    glBegin(GL_QUADS);
    for (const QRectF& area : areas) {
        for (const QPointF& corner :
             {area.topLeft(), area.topRight(), area.bottomRight(), area.bottomLeft()}) {
            glTexCoord2d(corner.x() / (2.0 * square), corner.y() / (2.0 * square));
            glVertex2d(corner.x(), corner.y());
        }
    }
    glEnd();
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
}

/// Leaves its texture bound and enabled.
void ViewerPainter::LoadChecker(const Look& look)
{
    const auto texel = [](const QColor& color) {
        return std::array<GLubyte, 4>{GLubyte(color.red()), GLubyte(color.green()),
                                      GLubyte(color.blue()), 255};
    };
    const std::array texels{texel(look.checkerLight), texel(look.checkerDark),
                            texel(look.checkerDark), texel(look.checkerLight)};
    const bool isNew = checker_ == 0;
    if (isNew)
        glGenTextures(1, &checker_);
    glBindTexture(GL_TEXTURE_2D, checker_);
    if (isNew) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
    if (isNew || texels != checkerTexels_)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    checkerTexels_ = texels;
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
}

void ViewerPainter::Release()
{
    if (checker_ != 0)
        glDeleteTextures(1, &checker_);
    checker_ = 0;
    kept_.reset();
    ReleaseTiles();
}

void ViewerPainter::ReleaseTiles()
{
    for (const Tile& tile : tiles_)
        glDeleteTextures(1, &tile.texture);
    tiles_.clear();
    keptFrame_.reset();
}

void ViewerPainter::Clear()
{
    ReleaseTiles();
    hasImage_ = false;
}

void ViewerPainter::SetPicture(const QImage& picture, const OpaqueParts& opaque,
                               const QRectF& dataWindow)
{
    ReleaseTiles();
    picture_ = picture.size();
    opaque_ = opaque;
    dataWindow_ = dataWindow;
    hasImage_ = true;
    hasMipmaps_ = false;
    const int side = tileSide();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, picture.bytesPerLine() / 4);
    for (int top = 0; top < picture.height(); top += side) {
        for (int left = 0; left < picture.width(); left += side) {
            Tile tile;
            tile.pixels = QRect(left, top, side, side) & picture.rect();
            tile.loaded = tile.pixels.adjusted(-1, -1, 1, 1) & picture.rect();
            glGenTextures(1, &tile.texture);
            glBindTexture(GL_TEXTURE_2D, tile.texture);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, tile.loaded.width(), tile.loaded.height(), 0,
                         GL_RGBA, GL_UNSIGNED_BYTE,
                         picture.constScanLine(tile.loaded.top()) + tile.loaded.left() * 4);
            tiles_.push_back(tile);
        }
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void ViewerPainter::Paint(const ViewTransform& view, const QSize& size, const Look& look)
{
    setUpView(size);
    const Frame frame{view, size, look};
    if (keptFrame_ != frame) {
        if (!kept_ || kept_->size() != size)
            kept_ = std::make_unique<QOpenGLFramebufferObject>(size);
        if (!QOpenGLFramebufferObject::hasOpenGLFramebufferBlit() || !kept_->bind()) {
            keptFrame_.reset();
            PaintAnew(frame);
            return;
        }
        PaintAnew(frame);
        kept_->release();
        keptFrame_ = frame;
    }
    const QRect whole(QPoint(), size);
    QOpenGLFramebufferObject::blitFramebuffer(nullptr, whole, kept_.get(), whole);
}

void ViewerPainter::PaintAnew(const Frame& frame)
{
    const auto& [view, size, look] = frame;
    glClearColor(float(look.background.redF()), float(look.background.greenF()),
                 float(look.background.blueF()), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    if (!hasImage_)
        return;
    const QRectF window = view.ToView(view.DisplayWindow());
    const QRectF data = dataWindow_.isEmpty() ? window
                                              : QRectF(view.ToView(dataWindow_.topLeft()),
                                                       view.ToView(dataWindow_.bottomRight()));
    const QRectF visible = window.united(data) & QRectF(QPointF(), QSizeF(size));
    const QRegion opaque = opaque_.Region(FilterReach(view));
    DrawGround(GroundAreas(view, visible, opaque), look);
    DrawTiles(view, opaque);
    if (!look.windows)
        return;
    const double line = std::max(1.0, std::round(look.devicePixelRatio));
    setColor(look.frame);
    drawFrame(window, line);
    if (data != window) {
        setColor(look.outline);
        drawDashedFrame(data, line);
    }
}

void ViewerPainter::PaintFootprint(const QRectF& pixels, const QSize& size, const QColor& color,
                                   double devicePixelRatio)
{
    setUpView(size);
    const double line = std::max(1.0, std::round(devicePixelRatio));
    const double least = 5.0 * line;
    QRectF around(QPointF(std::round(pixels.left()), std::round(pixels.top())),
                  QPointF(std::round(pixels.right()), std::round(pixels.bottom())));
    const QPointF room(std::max(0.0, std::ceil((least - around.width()) / 2.0)),
                       std::max(0.0, std::ceil((least - around.height()) / 2.0)));
    around.adjust(-room.x(), -room.y(), room.x(), room.y());
    const QColor casing(16, 16, 16);
    for (const QColor& ring : {casing, color, casing}) {
        setColor(ring);
        drawFrame(around, line);
        around.adjust(-line, -line, line, line);
    }
}

/// View pixels for each of the picture's in height: a proxy's are larger than the image's.
double ViewerPainter::Magnification(const ViewTransform& view) const
{
    return view.Zoom() * dataWindow_.height() / picture_.height();
}

/// How many of the picture's pixels around a place drawing mixes into it.
int ViewerPainter::FilterReach(const ViewTransform& view) const
{
    const double magnified = Magnification(view);
    // A pixel of the mipmap that is too small by up to a half, and its neighbour.
    return magnified < mipmapsBelow ? int(std::ceil(4.0 / magnified)) : 1;
}

/// Where `part` of the picture, in its pixels, lies in the view. All that meets is placed by this,
/// so that edges meet exactly.
QRectF ViewerPainter::PlaceOf(const QRect& part, const ViewTransform& view) const
{
    const auto place = [&](int x, int y) {
        return view.ToView(
            QPointF(dataWindow_.left() + x * (dataWindow_.width() / picture_.width()),
                    dataWindow_.top() + y * (dataWindow_.height() / picture_.height())));
    };
    return {place(part.left(), part.top()), place(part.right() + 1, part.bottom() + 1)};
}

/// The parts of `visible` that the picture doesn't hide, in the view.
std::vector<QRectF> ViewerPainter::GroundAreas(const ViewTransform& view, const QRectF& visible,
                                               const QRegion& opaque) const
{
    if (tiles_.empty())
        return {visible};
    const QRect whole(QPoint(), picture_);
    const QRectF data = PlaceOf(whole, view);
    const double top = std::clamp(data.top(), visible.top(), visible.bottom());
    const double bottom = std::clamp(data.bottom(), visible.top(), visible.bottom());
    std::vector<QRectF> areas{
        {visible.topLeft(), QPointF(visible.right(), top)},
        {QPointF(visible.left(), bottom), visible.bottomRight()},
        {QPointF(visible.left(), top), QPointF(std::max(visible.left(), data.left()), bottom)},
        {QPointF(std::min(visible.right(), data.right()), top), QPointF(visible.right(), bottom)}};
    for (const QRect& part : QRegion(whole) - opaque)
        areas.push_back(PlaceOf(part, view));
    return areas;
}

void ViewerPainter::DrawTiles(const ViewTransform& view, const QRegion& opaque)
{
    const double magnified = Magnification(view);
    const bool shrinksMuch = magnified < mipmapsBelow;
    const GLint smaller = shrinksMuch ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR;
    QOpenGLFunctions* functions = QOpenGLContext::currentContext()->functions();
    glEnable(GL_TEXTURE_2D);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (const Tile& tile : tiles_) {
        glBindTexture(GL_TEXTURE_2D, tile.texture);
        if (shrinksMuch && !hasMipmaps_)
            functions->glGenerateMipmap(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                        magnified >= 1.0 ? GL_NEAREST : smaller);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                        magnified >= 1.0 ? GL_NEAREST : GL_LINEAR);
        DrawParts(tile, QRegion(tile.pixels) & opaque, view);
        glEnable(GL_BLEND);
        DrawParts(tile, QRegion(tile.pixels) - opaque, view);
        glDisable(GL_BLEND);
    }
    hasMipmaps_ = hasMipmaps_ || shrinksMuch;
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
}

void ViewerPainter::DrawParts(const Tile& tile, const QRegion& parts,
                              const ViewTransform& view) const
{
    const double width = tile.loaded.width();
    const double height = tile.loaded.height();
    // Less than is seen, so that at a zoom of 1.5 all parts take the same one of two pixels that a
    // place lies between.
    const double magnified = Magnification(view);
    const double nudge = magnified < 1.0 ? 0.0 : 1.0 / 256.0 / magnified;
    const double originX = tile.loaded.left() - nudge;
    const double originY = tile.loaded.top() - nudge;
    glBegin(GL_QUADS);
    for (const QRect& part : parts) {
        const QRectF place = PlaceOf(part, view);
        const double left = (part.left() - originX) / width;
        const double top = (part.top() - originY) / height;
        const double right = (part.right() + 1 - originX) / width;
        const double bottom = (part.bottom() + 1 - originY) / height;
        glTexCoord2d(left, top);
        glVertex2d(place.left(), place.top());
        glTexCoord2d(right, top);
        glVertex2d(place.right(), place.top());
        glTexCoord2d(right, bottom);
        glVertex2d(place.right(), place.bottom());
        glTexCoord2d(left, bottom);
        glVertex2d(place.left(), place.bottom());
    }
    glEnd();
}

} // namespace Marlox
