#pragma once

#include "system/base/Types.h"

#include <array>
#include <optional>

#include <QPointF>
#include <QRectF>

class QMouseEvent;
class QWidget;

namespace Marlox {

class Operator;

/// What colours are picked from: a viewer's widget that is a ColorSource besides lets pick buttons
/// read the picture it shows. User-interface thread.
///
/// Positions are device-independent pixels of that widget, and exact: on a dense screen the pointer
/// stands between whole ones. A position means the pixel of the picture that it lies in, whose left
/// and upper edges are its own; it is never rounded before.
class MARLOXSYSTEM_EXPORT ColorSource {
public:
    /// Which pixels are wanted.
    struct Footprint {
        QPointF at;   // the one that this lies in,
        int size = 1; // and as many across and down around it: 1, 3 or 5 pixels of the picture
        /// Instead those that its corners lie in, and all between them.
        std::optional<QRectF> area{};
        /// Read what flows into this tool rather than what is on view; null: what is on view.
        const Operator* inputOf = nullptr;
    };
    struct Sample {
        /// The mean of red, green, blue and alpha: scene-linear floats as the picture has them,
        /// alpha multiplied in.
        std::array<double, 4> rgba{};
        int pixels = 0;     // that it is the mean of, at full resolution
        bool isDue = false; // there is none as yet: its picture is still being rendered
    };

    /// False: no picture there or not yet, or nothing flows into the tool. Pixels that are no
    /// numbers don't count, and if there are no others it is false too.
    virtual bool SampleColor(const Footprint& footprint, Sample& sample) = 0;
    /// Draws the footprint over the picture until another one is shown; null takes it away.
    virtual void ShowFootprint(const Footprint* footprint) = 0;
    /// While held, samples are of the picture that was on show when this was called, or of what
    /// flowed into a tool when that was first asked for: what a pick writes changes the picture,
    /// but not what it picks. It is let go when the pick has ended and its colour stands or is
    /// undone: until the picture has followed that, the next pick has that of the present values.
    /// Such pictures may have to be rendered first; there is no sample until they are there.
    virtual void HoldPicture(bool held) = 0;

    /// The source under a position of the screen, and its widget; null if there is none.
    static ColorSource* At(QPoint global, QWidget** widget = nullptr);
    /// The widget as a source; null if it is none.
    static ColorSource* Of(QWidget* widget);
    /// The exact position of the pointer in the widget that has got the event. Qt rounds the one
    /// that it tells there, but not that in the window.
    static QPointF PositionOf(const QMouseEvent& event);

protected:
    ~ColorSource();
};

} // namespace Marlox
