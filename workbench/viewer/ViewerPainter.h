#pragma once

#include "workbench/viewer/DisplayConverter.h"
#include "workbench/viewer/ViewTransform.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include <QColor>

class QOpenGLFramebufferObject;

namespace Marlox {

/// Draws the viewer's picture with OpenGL 1.x. The picture lies in textures of limited size, each
/// with a border of its neighbours' pixels, so that smooth drawing has no seams. What was drawn is
/// kept for as long as it stays the same: while overlays move over it, it is only copied. Every
/// call needs the viewer's context to be current.
class ViewerPainter {
public:
    ViewerPainter();
    ~ViewerPainter(); // Release has been called

    /// What is drawn besides the picture.
    struct Look {
        QColor background;
        QColor frame;   // of the display window
        QColor outline; // of the data window where it differs
        QColor checkerDark;
        QColor checkerLight;
        bool checker = true;
        bool windows = true;
        double devicePixelRatio = 1.0;

        friend bool operator==(const Look&, const Look&) = default;
    };

    /// Loads the picture up; `dataWindow` is where it lies, in full-resolution pixels. A null
    /// picture is an image without pixels: the display window alone shows.
    void SetPicture(const QImage& picture, const OpaqueParts& opaque, const QRectF& dataWindow);
    /// No image at all: the ground alone shows.
    void Clear();
    void Release();
    /// Covers the view, `size` in device pixels, and leaves it as the viewport, a unit for a device
    /// pixel, y down.
    void Paint(const ViewTransform& view, const QSize& size, const Look& look);
    /// A frame around pixels of the picture that any picture shows, in device pixels of the view.
    /// It covers none of the pixels; around very small ones it leaves some room.
    static void PaintFootprint(const QRectF& pixels, const QSize& size, const QColor& color,
                               double devicePixelRatio);

private:
    struct Tile {
        unsigned int texture = 0;
        QRect pixels; // of the picture, without the border
        QRect loaded; // with it
    };
    struct Frame {
        ViewTransform view;
        QSize size;
        Look look;

        friend bool operator==(const Frame&, const Frame&) = default;
    };
    void PaintAnew(const Frame& frame);
    void DrawGround(const std::vector<QRectF>& areas, const Look& look);
    void LoadChecker(const Look& look);
    void ReleaseTiles();
    void DrawTiles(const ViewTransform& view, const QRegion& opaque);
    void DrawParts(const Tile& tile, const QRegion& parts, const ViewTransform& view) const;
    double Magnification(const ViewTransform& view) const;
    int FilterReach(const ViewTransform& view) const;
    std::vector<QRectF> GroundAreas(const ViewTransform& view, const QRectF& visible,
                                    const QRegion& opaque) const;
    QRectF PlaceOf(const QRect& part, const ViewTransform& view) const;

    unsigned int checker_ = 0;                                    // texture; 0: none yet
    std::array<std::array<unsigned char, 4>, 4> checkerTexels_{}; // as loaded up
    std::vector<Tile> tiles_;
    QSize picture_;
    OpaqueParts opaque_;
    QRectF dataWindow_;
    std::unique_ptr<QOpenGLFramebufferObject> kept_;
    std::optional<Frame> keptFrame_; // what it shows
    bool hasImage_ = false;
    bool hasMipmaps_ = false;
};

} // namespace Marlox
