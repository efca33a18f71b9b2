#pragma once

#include "system/base/MxColor.h"
#include "system/base/MxGeometry.h"

#include <array>

class QWidget;

namespace Marlox {

class Input;
class OverlayPainter;
class PreviewControl;

/// What a viewer shows of its overlays.
enum DrawMode : int {
    DrawIdle = 1,     // everything, nothing is being dragged
    DrawDragging = 2, // everything, during a drag
    DrawHidden = 3,   // nothing
};

/// Colours of overlays by what they say. `Normal` is the view's own colour for the overlay that is
/// being drawn: it tells whether that one is animated, has a key, is driven by an expression, is
/// locked, or has the keyboard focus.
enum class OverlayColor { Normal, Highlight, Origin, Ghost, Path, PathKey };
using OverlayColors = std::array<MxColor, 6>;

/// Shapes of the pointer over a view.
enum class ViewCursor { Arrow, Move, MoveX, MoveY, Turn, Hand, Forbidden, Cross, Pen };

/// What lies under the pointer: an overlay and which of its inputs. Null: nothing. Not owned.
struct ControlHit {
    PreviewControl* control = nullptr;
    Input* input = nullptr;
};

/// What an overlay may ask of the view it is shown in.
class ViewServices {
public:
    /// The toolbar shows this button (a number of ToolbarEvents.h) as pressed: its overlay's
    /// buttons are asked for their state anew.
    virtual void PressEvent(u32 number) = 0;
    /// Gives the overlay the keys: it gets the focus among the overlays, and the view that of the
    /// keyboard.
    virtual void TakeFocus(PreviewControl& overlay) = 0;

protected:
    ~ViewServices() = default;
};

/// A view's context, handed to the overlays in it: where the image lies, what the pointer is on, in
/// which colours and with what to draw. Image coordinates are normalised to the display window: 0
/// to 1 across width and height, y upwards. View coordinates are device pixels of the view, x to
/// the right, y upwards, with the origin at its bottom left. Plain data plus arithmetic: it belongs
/// to the view, which keeps it up to date.
class MARLOXSYSTEM_EXPORT PreviewInfo {
public:
    /// Placement of the image: its display window covers [left, left + width) x [bottom, bottom +
    /// height) in view pixels (pixel aspect, zoom and pan folded in). The width and height are the
    /// displayed image's size.
    double imageLeft = 0.0;
    double imageBottom = 0.0;
    double imageWidth = 1.0;
    double imageHeight = 1.0;
    /// Size of the picture in its own pixels (full resolution) and the shape of these (width to
    /// height). Without a picture 0.
    int pixelWidth = 0;
    int pixelHeight = 0;
    double pixelAspect = 1.0;
    int viewWidth = 1; // view pixels
    int viewHeight = 1;
    double controlScale = 1.0; // multiplies the sizes of marks; includes the device pixel ratio
    double pixelRatio = 1.0;   // that ratio: marks without the control's scale follow it alone
    int pickRadius = 6;        // view pixels
    int drawMode = DrawIdle;
    bool showGhosts = true; // marks of where a drag began

    /// What the press took hold of, from then to the end of the drag; while overlays are asked for
    /// what is under the pointer, the one further up that is.
    ControlHit hit;
    /// The overlay that is being dragged or that the pointer is on.
    PreviewControl* currentControl = nullptr;
    /// The logical cursor, image coordinates: what the view shows as the pointer's position and
    /// what overlays read. A drag with an axis held rewrites it; the system's cursor never moves.
    double cursorX = 0.0;
    double cursorY = 0.0;
    ViewCursor cursorShape = ViewCursor::Arrow;
    void SetCursor(ViewCursor shape) { cursorShape = shape; }
    bool keysHeld = false; // keys went down over the view and are not up yet
    /// An overlay that fades sets it while it draws: it is hit-tested and drawn again soon.
    bool isFading = false;

    ViewServices* services = nullptr;  // null: a view without a window
    OverlayPainter* painter = nullptr; // while overlays are drawn
    /// The view's own, whose window the windows of overlays stay above and go with; null: none.
    QWidget* widget = nullptr;
    OverlayColors colors{MxColor(228, 228, 228),      MxColor(255, 255, 255),
                         MxColor(160, 160, 160),      MxColor(160, 160, 160, 160),
                         MxColor(150, 150, 150, 200), MxColor(228, 228, 228)};
    const MxColor& Color(OverlayColor role) const { return colors[std::size_t(role)]; }

    // Points between image and view.
    void TransformOut(double x, double y, double& viewX, double& viewY) const;
    void TransformIn(double viewX, double viewY, double& x, double& y) const;
    /// The homogeneous form: (x / w, y / w) is the point.
    void TransformOut(double x, double y, double w, double& viewX, double& viewY,
                      double& viewW) const;
    void TransformIn(double viewX, double viewY, double viewW, double& x, double& y,
                     double& w) const;
    double TransformXOut(double x) const;
    double TransformYOut(double y) const;
    double TransformXIn(double viewX) const;
    double TransformYIn(double viewY) const;

    // Lengths along one axis between fractions of the image's width as seen and image coordinates,
    // so that a radius draws a true circle on the screen: x is the reference and stays; one unit of
    // y is width * pixelAspect / height of the image's height. Signs stay. A picture of no size
    // leaves lengths as they are.
    double AspectScaleXOut(double length) const;
    double AspectScaleYOut(double length) const;
    double AspectScaleXIn(double length) const;
    double AspectScaleYIn(double length) const;

    // The current colour of the GL context, components from 0 to 255; only while one is current,
    // for overlays that call OpenGL themselves. With a painter, its colour too.
    void Color4ub(u32 red, u32 green, u32 blue, u32 alpha) const;
    void Color4ubv(const unsigned char* rgba) const;
    void ColorFu(const MxColor& color) const;

private:
    double HeightsPerWidth() const;
};

} // namespace Marlox
