#pragma once

#include "system/viewer/PreviewInfo.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Marlox {

class LineBands;
class MarkStamps;

/// A position in view pixels or, within a mark's frame, in pixels of the mark; y upwards.
struct OverlayPoint {
    double x = 0.0;
    double y = 0.0;
};

/// What overlays draw with: lines and filled shapes in view pixels, in colours by role, dashed or
/// not, and marks in a frame of their own. Two forms: one draws with OpenGL, one writes down what
/// is drawn. Who draws lines under an image of any brightness need not care: every line gets
/// a dark casing.
class MARLOXSYSTEM_EXPORT OverlayPainter {
public:
    /// Lines: pairs; Fill: a convex polygon with its outline.
    enum class Shape { Lines, Strip, Loop, Fill };

    virtual ~OverlayPainter();

    /// Roles are taken from the colours of this view. Not owned.
    void SetView(const PreviewInfo& view) { view_ = &view; }
    const PreviewInfo* View() const { return view_; }

    /// A role's colour with its red, green and blue multiplied by `brightness` (0 to 1).
    void SetColor(OverlayColor role, double brightness = 1.0);
    void SetColor(const MxColor& color);
    /// Dashes of four pixels and as wide gaps (factor 1, pattern 0xF0F0).
    void SetDashed(bool dashed) { state_.dashed = dashed; }
    /// How dark the casings of lines are, 0 to 1: less for what stands back. Those of marks stay.
    void SetCasing(double darkness) { state_.casing = darkness; }

    void Line(OverlayPoint from, OverlayPoint to);
    void Lines(std::span<const OverlayPoint> pairs) { Draw(Shape::Lines, pairs); }
    void Strip(std::span<const OverlayPoint> points) { Draw(Shape::Strip, points); }
    void Loop(std::span<const OverlayPoint> points) { Draw(Shape::Loop, points); }
    void Fill(std::span<const OverlayPoint> points) { Draw(Shape::Fill, points); }
    /// One shape of a mark at many places, each as in a Mark of its own.
    void Marks(Shape shape, std::span<const OverlayPoint> points,
               std::span<const OverlayPoint> places, double scale);
    // The same for points written out.
    void Strip(std::initializer_list<OverlayPoint> points) { Draw(Shape::Strip, AsSpan(points)); }
    void Loop(std::initializer_list<OverlayPoint> points) { Draw(Shape::Loop, AsSpan(points)); }
    void Fill(std::initializer_list<OverlayPoint> points) { Draw(Shape::Fill, AsSpan(points)); }

    /// Before an overlay calls OpenGL itself: what was drawn so far lies below.
    virtual void Flush() {}

    struct State {
        MxColor color{255, 255, 255};
        std::optional<OverlayColor> role; // that the colour was set by
        double brightness = 1.0;
        bool dashed = false;
        double casing = 1.0;
        bool framed = false;
        OverlayPoint origin; // of the frame, view pixels
        double scale = 1.0;  // view pixels for each pixel of the mark
    };

    /// Keeps the painter's state for the length of a scope.
    class Saved {
    public:
        explicit Saved(OverlayPainter& painter) : painter_(painter), state_(painter.state_) {}
        ~Saved() { painter_.state_ = state_; }
        Saved(const Saved&) = delete;
        Saved& operator=(const Saved&) = delete;

    private:
        OverlayPainter& painter_;
        State state_;
    };

    /// A mark's frame for the length of a scope: the origin at `at`, sizes times `scale`. The state
    /// from before comes back with its end.
    class Mark {
    public:
        Mark(OverlayPainter& painter, OverlayPoint at, double scale);

    private:
        Saved saved_;
    };

protected:
    virtual void Emit(Shape shape, std::span<const OverlayPoint> points) = 0;
    /// By Emit, one by one, unless there is a better way.
    virtual void EmitMarks(Shape shape, std::span<const OverlayPoint> points,
                           std::span<const OverlayPoint> places, double scale);
    const State& Current() const { return state_; }

private:
    static std::span<const OverlayPoint> AsSpan(std::initializer_list<OverlayPoint> points)
    {
        return {points.begin(), points.size()};
    }
    void Draw(Shape shape, std::span<const OverlayPoint> points);

    State state_;
    const PreviewInfo* view_ = nullptr;
};

/// Draws with OpenGL 1.x into the current context, whose projection must be the view's pixels, y
/// upwards. What overlays draw is gathered and drawn at once by Flush, or when the painter goes:
/// casings, then small shapes of marks with theirs, then all other shapes. A line through many
/// places covers no pixel twice but where it crosses itself. Positions that are no numbers are left
/// out; what lies far outside the view is cut off.
class MARLOXSYSTEM_EXPORT GLOverlayPainter final : public OverlayPainter {
public:
    /// `unit` is the width of a line in view pixels.
    GLOverlayPainter(const PreviewInfo& view, double unit);
    ~GLOverlayPainter() override;
    void Flush() override;

private:
    struct Vertex {
        float x;
        float y;
        MxColor color;
    };
    /// Pairs of vertices.
    using Vertices = std::vector<Vertex>;
    void Emit(Shape shape, std::span<const OverlayPoint> points) override;
    void EmitMarks(Shape shape, std::span<const OverlayPoint> points,
                   std::span<const OverlayPoint> places, double scale) override;
    bool AddStamp(Shape shape, std::span<const OverlayPoint> points);
    bool IsMarkInView(OverlayPoint at) const;
    OverlayPoint Placed(OverlayPoint point) const;
    double OnPixel(double at) const;
    void AddLine(OverlayPoint from, OverlayPoint to);
    void AddFill(std::span<const OverlayPoint> points);
    void AddCasing(OverlayPoint from, OverlayPoint to, Vertices& casing);
    void DrawVertices(unsigned mode, const Vertices& vertices, bool colored) const;

    double unit_;
    double width_; // the view's, with room for casings
    double height_;
    Vertices crisp_; // along an axis: on whole pixels
    Vertices crispCasing_;
    Vertices smooth_; // oblique
    Vertices smoothCasing_;
    Vertices dashed_;
    Vertices dashedCasing_;
    bool hasThinCasings_ = false;  // not all as dark as each other
    Vertices fills_;               // triangles
    std::vector<MxPoint> origins_; // of the marks that are being added
    std::unique_ptr<MarkStamps> stamps_;
    std::unique_ptr<LineBands> bands_; // lines through more than two places
};

/// Writes down what is drawn, one line for each shape with its state:
///
///     normal loop at (100, 50) x 1: (-2, -2) (2, -2) (2, 2) (-2, 2)
///     highlight dashed lines: (0, 12.5) (100, 50)
///
/// Numbers have at most three decimals.
class MARLOXSYSTEM_EXPORT OverlayRecorder final : public OverlayPainter {
public:
    const std::string& Text() const { return text_; }
    void Clear() { text_.clear(); }
    /// A line of its own, for who records several overlays.
    void Remark(const std::string& text) { text_ += text + '\n'; }

private:
    void Emit(Shape shape, std::span<const OverlayPoint> points) override;
    std::string ColorName() const;

    std::string text_;
};

} // namespace Marlox
