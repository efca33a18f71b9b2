#pragma once

#include "system/viewer/OverlayPainter.h"

#include <span>
#include <vector>

namespace Marlox {

/// Lines through many places with their casings, drawn as bands of triangles whose corners are
/// mitred: no pixel is covered twice where two segments meet, so that lines that the picture shows
/// through look the same all along. Edges are smooth, and lines along the axes lie on whole pixels.
/// Made anew for each picture of the view; positions are view pixels.
class LineBands {
public:
    struct Style {
        MxColor color;
        double casing = 1.0; // of the casing's darkness
        bool dashed = false;
    };

    /// `unit` is the width of a line in pixels, a whole number, `casing` the colour around it,
    /// `width` and `height` the view's size.
    LineBands(double unit, const MxColor& casing, double width, double height);

    /// Positions that are no numbers interrupt the line; what lies far outside the view is cut off.
    void Add(std::span<const OverlayPoint> points, bool closed, const Style& style);
    bool IsEmpty() const { return bands_[0].empty() && bands_[1].empty(); }

    // With OpenGL 1.x into the current context, where blending and the vertex array are on. They
    // leave another texture and other client arrays than they found.
    void DrawCasings() const;
    void DrawLines() const;
    void Clear();

private:
    struct Vertex {
        float x;
        float y;
        float across; // 0 to 1
        float along;  // periods of the dashes
        MxColor color;
        MxColor casing;
    };
    struct Run;
    double OnPixel(double at) const;
    double HalfWidth() const; // of a band
    bool IsNear(OverlayPoint at) const;
    void AddNear(std::span<const OverlayPoint> points, bool closed, double along,
                 const Style& style);
    void AddCut(std::span<const OverlayPoint> points, const Style& style);
    OverlayPoint Mitre(OverlayPoint in, OverlayPoint out, double shorter) const;
    void AddEnd(Run& run, OverlayPoint at, OverlayPoint direction, double further, double along);
    void AddPair(Run& run, OverlayPoint at, OverlayPoint toLeft, double along, double skew);
    void Draw(bool isCasing) const;
    void LoadProfile(bool dashed, bool isCasing) const;

    double unit_;
    MxColor casing_;
    double width_;
    double height_;
    std::vector<Vertex> bands_[2]; // strips of triangles, joined to one: solid, dashed
    std::vector<OverlayPoint> points_;
    std::vector<OverlayPoint> part_;
};

} // namespace Marlox
