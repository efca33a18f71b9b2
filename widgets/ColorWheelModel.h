#pragma once

#include "widgets/PointerDrag.h"

#include <array>

#include <QRect>

namespace Marlox {

/// A colour correction as the wheel holds it.
struct WheelRecord {
    double hue = 0.0;        // by which hues are turned, in turns
    double saturation = 1.0; // factor
    double tintAngle = 0.0;  // in turns, counter-clockwise from the right
    double tintLength = 0.0; // 0 to 1, the rim of the disc
    double gain = 1.0;       // carried along; the wheel has no part that moves it

    friend bool operator==(const WheelRecord&, const WheelRecord&) = default;
};

/// The colour wheel without a window: where its ring, its disc and their knobs are, and what a drag
/// makes of a record. The ring turns hues and scales the saturation, the disc places the tint.
/// Pixels of the widget, angles in radians, counter-clockwise from the right.
struct ColorWheelModel {
    enum class Part { None = -1, Tint, Ring }; // in the order of the parts that keys move

    /// A place as seen from the centre: -pi/2 to 3 pi/2, and 1 on the rim.
    struct Polar {
        double angle = 0.0;
        double length = 0.0;
    };
    /// What is held while the pointer drags.
    struct Drag {
        Part part = Part::None;
        WheelRecord start;
    };
    /// Which components follow the pointer; the others of the part are held.
    struct Axes {
        bool first = false;  // hue, or the tint's angle
        bool second = false; // saturation, or the tint's length
    };
    struct Dragged {
        WheelRecord record;
        Axes axes;
    };

    /// Of the pointer's way in fine mode, and of the steps of a tint's length.
    static constexpr double fineShare = 0.2;

    QRect widget;
    int diameter = 0;         // of the ring
    double disc = 0.0;        // the disc's share of it
    QSize tintKnob;           // of the knob's bitmap
    bool squaredTint = false; // lengths are kept as the square of what is shown

    QPointF Centre() const;
    QRectF Square() const; // of the whole wheel
    Polar PolarOf(QPointF at) const;
    QPointF PlaceOf(double angle, double length) const;
    /// The disc with four pixels around it, or the tint's knob where that hangs over; else the
    /// ring.
    Part HitTest(QPoint at, const WheelRecord& record) const;

    /// Where the tint's knob stands.
    QPointF TintPlace(const WheelRecord& record) const;
    /// Where the knob of hue and saturation stands: at the top of the ring for no correction;
    /// turned with the hue; a factor of 0 near the ring's inner edge, 1 in the middle, 2 and more
    /// just inside its outer edge.
    QPointF RingPlace(const WheelRecord& record) const;

    /// What `drag` makes of the `present` record. Angles keep to the whole turn next to the present
    /// one, so that a drag around goes on beyond it.
    Dragged DragTo(const Drag& drag, const WheelRecord& present,
                   const PointerDrag::Step& step) const;
    /// The same for arrow keys (y upwards): of the ring the hue to the right and the saturation
    /// upwards, of the disc the knob's angle and length. By level a thousandth, a hundredth, a
    /// tenth.
    WheelRecord Nudged(Part part, const WheelRecord& record, QPoint way, int level) const;

private:
    Dragged DragRing(const WheelRecord& start, const WheelRecord& present, const Polar& from,
                     const Polar& to, bool oneAxis) const;
    Dragged DragTint(const WheelRecord& start, const WheelRecord& present, const Polar& to,
                     const PointerDrag::Step& step) const;
    double TintReach(double length) const; // of a kept length, from the centre to the disc's rim
};

/// `value` plus as many whole turns as bring it nearest to `present`.
double NearestTurn(double value, double present);

} // namespace Marlox
