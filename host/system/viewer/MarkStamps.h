#pragma once

#include "system/viewer/OverlayPainter.h"

#include <span>
#include <vector>

namespace Marlox {

/// Small shapes of marks, with their casings, drawn from pictures of them: many marks show the same
/// few shapes, and a copy costs a fraction of the lines it replaces. Made anew for each picture of
/// the view; positions are view pixels. Many copies of one shape in a row are point sprites, where
/// OpenGL has them, and where these lie close together they are put into one picture first. A copy
/// right on its like is left out.
class MarkStamps {
public:
    struct Shape {
        OverlayPainter::Shape form;
        std::span<const OverlayPoint> points; // from the mark's origin
        double scale;                         // pixels for each unit of the points
        MxColor color;
    };

    /// `unit` is the width of a line in pixels, `casing` the colour around it.
    MarkStamps(double unit, const MxColor& casing);

    /// A copy at a whole pixel, whose middle is the origin where the unit is odd, else its bottom
    /// left corner. False: it is too large for this, or there are too many different ones.
    bool Add(const Shape& shape, const MxPoint& origin);
    /// The same shape at many pixels; false: none was added.
    bool Add(const Shape& shape, std::span<const MxPoint> origins);
    /// Draws all with OpenGL 1.x into the current context, where blending is on, and forgets them.
    /// Leaves other states of textures, client arrays and pixel store than it found, and the blend
    /// function of colours that are not premultiplied.
    void Draw();

private:
    /// A shape in its colour. Its picture stands in a row with those of the others.
    struct Kind {
        OverlayPainter::Shape form;
        std::vector<OverlayPoint> points; // pixels from the origin
        MxColor color;
        MxPoint corner; // bottom left of the picture, from the origin
        MxPoint size;
        int column;           // in the row
        bool shown = false;   // lines that others were joined to are not
        unsigned picture = 0; // texture of its sprites
    };
    struct Copy {
        int kind;
        MxPoint origin;
    };
    /// Neighbours among the copies that are drawn at once.
    using Run = std::span<const Copy>;
    double PixelMiddle() const;
    int FindKind(const Shape& shape);
    Kind MakeKind(const Shape& shape) const;
    void AddCopy(const Copy& copy);
    Run NextRun(std::size_t begin, bool sprites) const;
    static int SideOf(const Kind& kind);
    void DrawQuads(Run run, MxPoint row) const;
    void DrawSprites(Run run, std::vector<Copy>& beyond);
    bool DrawSheet(Run run);
    void FillSheet(Run run, MxPoint low, MxPoint size);
    void DrawTiles(MxPoint low, MxPoint size) const;
    static void LoadTexture(const std::vector<MxColor>& pixels, MxPoint size);
    MxColor ColorAt(const Kind& kind, int x, int y) const;
    MxPoint LoadPictures() const;

    double unit_;
    MxColor casing_;
    std::vector<Kind> kinds_;
    std::vector<Copy> copies_;
    MxPoint view_;                     // its size, while copies are drawn
    std::vector<MxColor> sheet_;       // many copies in one picture
    std::vector<u8> tiles_;            // its parts: whether there are any
    int largestSprite_ = 0;            // 0: there are none
    std::vector<OverlayPoint> points_; // of the shape that is being added, in pixels
    int columns_ = 0;                  // of the row, used so far
};

} // namespace Marlox
