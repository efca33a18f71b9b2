#pragma once

#include "workbench/viewer/DisplayConverter.h"
#include "workbench/viewer/ViewTransform.h"

#include <array>
#include <vector>

#include <QColor>

namespace Marlox {

/// Draws the viewer's picture with OpenGL 1.x. The picture lies in textures of limited size, each
/// with a border of its neighbours' pixels, so that smooth drawing has no seams. Every call needs
/// the viewer's context to be current.
class ViewerPainter {
public:
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
    };

    /// Loads the picture up; `dataWindow` is where it lies, in full-resolution pixels. A null
    /// picture is an image without pixels: the display window alone shows.
    void SetPicture(const QImage& picture, const QRectF& dataWindow);
    /// No image at all: the ground alone shows.
    void Clear();
    void Release();
    void Paint(const ViewTransform& view, const QSize& size, const Look& look);

private:
    struct Tile {
        unsigned int texture = 0;
        QRect pixels; // of the picture, without the border
        QRect loaded; // with it
    };
    void DrawChecker(const QRectF& area, const Look& look);
    void ReleaseTiles();
    void DrawTiles(const ViewTransform& view);
    void DrawTile(const Tile& tile, const QRectF& place) const;

    unsigned int checker_ = 0;                                    // texture; 0: none yet
    std::array<std::array<unsigned char, 4>, 4> checkerTexels_{}; // as loaded up
    std::vector<Tile> tiles_;
    QSize picture_;
    QRectF dataWindow_;
    bool hasImage_ = false;
    bool hasMipmaps_ = false;
};

} // namespace Marlox
