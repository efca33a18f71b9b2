#pragma once

#include "workbench/tools/ShapeRaster.h"

namespace Marlox {

/// The outlines of a mask. With an outer one, as long as the inner, the edge is soft: the place of
/// the same index is where the mask ends that begins to fade at the inner one's.
struct MaskOutlines {
    Outline inner;
    Outline outer; // empty: a hard edge
    /// Indices of the pairs that the band between the two is drawn from; the lines between them may
    /// be off by a quarter of a pixel. As many as there are places, or fewer, ascending.
    std::vector<u32> rungs;

    /// The pixels that they can cover.
    MxRect Bounds() const;
};

/// How a soft edge fades from 1 at the inner outline to 0 at the outer one.
enum class Falloff { Linear, Smooth };

/// The band between two outlines: a strip of quadrilaterals between neighbouring rungs, halved to
/// triangles. Each has its value at the middle of a pixel; where they overlap or fold, the largest
/// counts. Pairs closer than a pixel and a half fade out: so narrow an edge is
/// the antialiasing's.
class SoftBand {
public:
    SoftBand(const MaskOutlines& outlines, const MxRect& window);
    /// Whether the strip folds back on itself anywhere: it may then reach out of the outer outline.
    bool IsFolded() const { return hasLeft_ && hasRight_; }
    /// Of a strip that does not: whether it grows what the inner outline winds round positively,
    /// and so takes from what it winds round negatively; or the other way round.
    bool GrowsPositive() const { return hasLeft_; }

    /// Walks down the rows of the window. Each thread needs its own.
    class Walk {
    public:
        /// From row `first` of the window on.
        Walk(const SoftBand& band, int first) : band_(band), row_(first) {}
        /// Raises the next `count` rows, `stride` values apart, to the band's values.
        void Raise(int count, Falloff falloff, float* to, std::ptrdiff_t stride);

    private:
        const SoftBand& band_;
        int row_;
        std::size_t next_ = 0;
        std::vector<u32> active_; // triangles that begin above and end in these rows or below
    };

private:
    struct Corner {
        double x, y; // pixels of the window
        double value;
    };
    struct Triangle {
        PixelPlace top, middle;
        double bottom;              // y
        double whole, upper, lower; // how far each side goes to the right with each row down
        double value, right, down;  // the value at the top, and how it grows with each pixel
        bool isWholeLeft;           // the side from the top to the bottom
    };

    void Add(Corner a, Corner b, Corner c);
    template <class Shaped>
    void Draw(const Triangle& triangle, int first, int last, float* to, std::ptrdiff_t stride,
              Shaped shaped) const;
    template <class Shaped>
    void DrawHalf(const Triangle& triangle, bool isUpper, int first, int last, float* to,
                  std::ptrdiff_t stride, Shaped shaped) const;

    MxRect window_;
    std::vector<Triangle> triangles_;
    std::vector<u32> order_; // by the rows of their tops
    bool hasLeft_ = false;   // quadrilaterals that turn left, seen from the inner outline
    bool hasRight_ = false;
};

/// The values of a mask, 0 to 1. A hard edge is exact to the area. Of a soft one all inside the
/// inner outline is 1, all outside the outer one 0 (unless it is inside the inner), and the band
/// between fades; as the two come together it becomes the hard edge. Holes that the even-odd rule
/// leaves within the inner outline have hard edges. Thread-safe.
class MaskRaster {
public:
    MaskRaster(const MaskOutlines& outlines, FillRule rule, Falloff falloff, const MxRect& window);
    /// Rows `first` to `last` of the window, `stride` values apart: all of its values. Stops when
    /// cancelled.
    void Rows(int first, int last, float* to, std::ptrdiff_t stride,
              const RenderContext& context) const;

private:
    void SoftRows(int first, int last, float* to, std::ptrdiff_t stride,
                  const RenderContext& context) const;

    MxRect window_;
    MxRect covered_; // the part of it that can be other than 0
    Falloff falloff_;
    bool isSoft_;
    ShapeRaster inner_;
    ShapeRaster core_; // a little further out
    ShapeRaster outer_;
    ShapeRaster filled_; // all that the inner outline winds round
    SoftBand band_;
    FillRule rule_;
    bool isPlain_; // the band lies outside the inner outline and within the outer one, as it should
};

} // namespace Marlox
