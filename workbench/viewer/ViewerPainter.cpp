#include "workbench/viewer/ViewerPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QtGui/qopengl.h>

#ifndef GL_CLAMP_TO_EDGE
#define GL_CLAMP_TO_EDGE 0x812F
#endif

namespace Marlox {

namespace {

constexpr int largestTile = 2048;
constexpr double checkerSize = 12.0; // device-independent pixels

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

ViewerPainter::~ViewerPainter() = default;

/// Squares fixed to the view, within `area`: two by two texels, repeated.
void ViewerPainter::DrawChecker(const QRectF& area, const Look& look)
{
    const double step = std::max(1.0, std::round(checkerSize * look.devicePixelRatio));
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
    glBegin(GL_QUADS);
    for (const QPointF& corner :
         {area.topLeft(), area.topRight(), area.bottomRight(), area.bottomLeft()}) {
        glTexCoord2d(corner.x() / (2.0 * step), corner.y() / (2.0 * step));
        glVertex2d(corner.x(), corner.y());
    }
    glEnd();
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void ViewerPainter::Release()
{
    if (checker_ != 0)
        glDeleteTextures(1, &checker_);
    checker_ = 0;
    ReleaseTiles();
}

void ViewerPainter::ReleaseTiles()
{
    for (const Tile& tile : tiles_)
        glDeleteTextures(1, &tile.texture);
    tiles_.clear();
}

void ViewerPainter::Clear()
{
    ReleaseTiles();
    hasImage_ = false;
}

void ViewerPainter::SetPicture(const QImage& picture, const QRectF& dataWindow)
{
    ReleaseTiles();
    picture_ = picture.size();
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
    glClearColor(float(look.background.redF()), float(look.background.greenF()),
                 float(look.background.blueF()), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    if (!hasImage_)
        return;
    const QRectF frame = view.ToView(view.DisplayWindow());
    const QRectF data = dataWindow_.isEmpty() ? frame
                                              : QRectF(view.ToView(dataWindow_.topLeft()),
                                                       view.ToView(dataWindow_.bottomRight()));
    const QRectF visible = frame.united(data) & QRectF(QPointF(), QSizeF(size));
    if (look.checker) {
        DrawChecker(visible, look);
    } else {
        glColor4ub(0, 0, 0, 255);
        glBegin(GL_QUADS);
        fillRect(visible.left(), visible.top(), visible.right(), visible.bottom());
        glEnd();
    }
    if (!tiles_.empty())
        DrawTiles(view);
    if (!look.windows)
        return;
    const double line = std::max(1.0, std::round(look.devicePixelRatio));
    setColor(look.frame);
    drawFrame(frame, line);
    if (data != frame) {
        setColor(look.outline);
        drawDashedFrame(data, line);
    }
}

void ViewerPainter::DrawTiles(const ViewTransform& view)
{
    // View pixels for each pixel of the picture: a proxy's pixels are larger than the image's.
    const double scaleX = dataWindow_.width() / picture_.width();
    const double scaleY = dataWindow_.height() / picture_.height();
    const double magnified = view.Zoom() * scaleY;
    const bool shrinksMuch = magnified < 0.5;
    QOpenGLFunctions* functions = QOpenGLContext::currentContext()->functions();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (const Tile& tile : tiles_) {
        glBindTexture(GL_TEXTURE_2D, tile.texture);
        if (shrinksMuch && !hasMipmaps_)
            functions->glGenerateMipmap(GL_TEXTURE_2D);
        const GLint smaller = shrinksMuch ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR;
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                        magnified >= 1.0 ? GL_NEAREST : smaller);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                        magnified >= 1.0 ? GL_NEAREST : GL_LINEAR);
        const auto corner = [&](int x, int y) {
            return view.ToView(
                QPointF(dataWindow_.left() + x * scaleX, dataWindow_.top() + y * scaleY));
        };
        DrawTile(tile, {corner(tile.pixels.left(), tile.pixels.top()),
                        corner(tile.pixels.right() + 1, tile.pixels.bottom() + 1)});
    }
    hasMipmaps_ = hasMipmaps_ || shrinksMuch;
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

void ViewerPainter::DrawTile(const Tile& tile, const QRectF& place) const
{
    const double width = tile.loaded.width();
    const double height = tile.loaded.height();
    const double left = (tile.pixels.left() - tile.loaded.left()) / width;
    const double top = (tile.pixels.top() - tile.loaded.top()) / height;
    const double right = (tile.pixels.right() + 1 - tile.loaded.left()) / width;
    const double bottom = (tile.pixels.bottom() + 1 - tile.loaded.top()) / height;
    glBegin(GL_QUADS);
    glTexCoord2d(left, top);
    glVertex2d(place.left(), place.top());
    glTexCoord2d(right, top);
    glVertex2d(place.right(), place.top());
    glTexCoord2d(right, bottom);
    glVertex2d(place.right(), place.bottom());
    glTexCoord2d(left, bottom);
    glVertex2d(place.left(), place.bottom());
    glEnd();
}

} // namespace Marlox
