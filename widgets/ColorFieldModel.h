#pragma once

#include "widgets/ColorAxes.h"
#include "widgets/PointerDrag.h"

#include <QRect>

namespace Marlox {

/// What the colour field holds.
struct ColorFieldValues {
    ColorRecord record;
    double alpha = 1.0;

    friend bool operator==(const ColorFieldValues&, const ColorFieldValues&) = default;
};

/// The colour field without a window: where its square and its strips are, which values their
/// pixels stand for and where values stand, and what a drag or a key makes of them. The record's
/// saturation and value run to the right and upwards in the square, hue and alpha downwards in the
/// strips. Pixels of the widget; those of a pointer may lie between two whole ones.
///
/// A pixel stands for the value at its middle. The ends of the axes lie on the outermost pixels of
/// the square, but for value 1, which has two rows, and value 0, which is the row below it; each
/// end of a strip has two rows. A field too small for a zone has an empty one, which no press hits.
struct ColorFieldModel {
    enum class Zone { None = -1, Square, Hue, Alpha }; // in the order of the parts that keys move

    /// Which components a drag moves.
    struct Active {
        bool saturation = false;
        bool value = false;
        bool hue = false;
        bool alpha = false;

        friend bool operator==(const Active&, const Active&) = default;
    };
    /// What is held while the pointer drags: which zone was hit, and what was there before.
    struct Drag {
        Zone zone = Zone::None;
        ColorFieldValues start;
    };
    struct Dragged {
        ColorFieldValues values;
        Active active;
    };

    QRect widget;
    bool showsAlpha = false;
    double exponent = 1.0; // of the value axis: the way up the square to this power; positive

    QRect Square() const;
    QRect HueStrip() const;
    QRect AlphaStrip() const; // empty while it is not shown
    QRect ZoneRect(Zone zone) const;
    Zone HitTest(QPoint at) const;

    // From pixels, 0 to 1. Exact: what the zones are painted with.
    double SaturationAt(double x) const;
    double ValueAt(double y) const;
    double StripAt(double y) const; // hue and alpha
    // The same to as many decimals as the zone has pixels to tell; `fine` keeps one more.
    double RoundedSaturationAt(double x, bool fine) const;
    double RoundedValueAt(double y, bool fine) const;
    double RoundedStripAt(double y, bool fine) const;

    // To pixels: where the knobs stand, those of values beyond 0 and 1 at the end.
    double SaturationPixel(double saturation) const;
    double ValuePixel(double value) const;
    double StripPixel(double position) const;

    /// Where a drag has come to: what its zone does not move is as it was at the start. One axis
    /// only: the pointer's way since the press, measured in saturation and in value, tells which.
    /// Where it is the longer one in value, the value is held and the saturation follows; else the
    /// other way round. This is meant so.
    Dragged DragTo(const Drag& drag, const PointerDrag::Step& step) const;
    /// What the arrow keys make of values: by a thousandth, a hundredth or a tenth (level 0, 1, 2),
    /// in the direction in which the knob is to go (y upwards); in the strips to the right is
    /// upwards in number. What is within 0 to 1 stays there, what is beyond goes no further.
    ColorFieldValues Nudged(Zone zone, const ColorFieldValues& values, QPoint way, int level) const;

private:
    double Risen(double way) const;
    double ValueSteps(double y) const;
};

} // namespace Marlox
