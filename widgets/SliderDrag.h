#pragma once

#include "widgets/SliderModel.h"

#include <optional>

#include <QPoint>
#include <QRect>
#include <QSize>

namespace Marlox {

/// What of a slider lies under the pointer.
enum class SliderPart { None, Knob, Reset, TrackBelow, TrackAbove };

/// Where the parts of a slider lie. Device-independent pixels of the widget, y downwards; the knob
/// and the reset mark move along x with a value's pixel.
struct SliderGeometry {
    QSize knobSize;
    int knobTop = 0;
    QSize resetSize;    // empty: there is no reset mark
    QPoint resetOffset; // from the default's pixel and the widget's top to the mark's top left
    int trackTop = 0;
    int trackBottom = 0; // one past the track's last row

    QRect KnobRect(int pixel) const;
    /// What a moved knob leaves to repaint: the bitmap's rectangle one pixel wider on the left and
    /// one row shorter at the bottom. (Knob bitmaps have no pixels in their last row.)
    QRect KnobDirtyRect(int pixel) const { return KnobRect(pixel).adjusted(-1, 0, 0, -1); }
    QRect ResetRect(int pixel) const;

    /// The knob's pixel: round(ValueToPixel(value)).
    static int KnobPixel(const SliderModel& model);
    static int ResetPixel(const SliderModel& model);

    SliderPart HitTest(QPoint at, const SliderModel& model) const;
    /// Whether `at` is over the reset mark, wherever the knob is.
    bool IsOverReset(QPoint at, const SliderModel& model) const;
};

/// What the pointer does with a slider between press and release: nothing, holding the knob,
/// holding the track beside it (which steps towards the pointer and repeats), or pressing the reset
/// mark. A knob's value follows from what was captured at the press, or when fine mode was last
/// switched, never from the steps in between.
class SliderDrag {
public:
    enum class Kind { Idle, Knob, Track, Reset };

    /// The repeat of a held track: a tick every 70 milliseconds, of which the first 3 only wait.
    static constexpr int repeatInterval = 70;
    static constexpr int repeatWait = 3;

    Kind GetKind() const { return kind_; }

    void GrabKnob(const SliderModel& model, double x, bool fine);
    void HoldTrack(bool above, QPoint at);
    void PressReset() { kind_ = Kind::Reset; }
    void End() { *this = SliderDrag(); }

    /// The value for the pointer at `x`, or nothing if none follows: the pointer has not moved, or
    /// does not hold the knob. A change of `fine` (Ctrl) re-anchors first.
    std::optional<double> MoveTo(const SliderModel& model, double x, bool fine);
    /// Re-anchors at the present value where the pointer was last and runs that move again, when
    /// `fine` is a change. The value stays what it is.
    std::optional<double> SetFine(const SliderModel& model, bool fine);

    /// The pointer while the track is held.
    void PointTo(QPoint at) { pointer_ = at; }
    bool StepsUp() const { return above_; }
    /// One tick of the repeat; true once the wait is over.
    bool RepeatTick() { return kind_ == Kind::Track && (wait_ == 0 || wait_-- == 0); }
    /// Whether the knob has come to the held pointer or beyond it: the repeat pauses until the
    /// pointer moves on.
    bool HasReachedPointer(const SliderModel& model, const SliderGeometry& geometry) const;

private:
    void Anchor(const SliderModel& model, double x);
    double ValueAt(const SliderModel& model, double x) const;

    Kind kind_ = Kind::Idle;
    bool fine_ = false;
    bool moved_ = false;
    bool above_ = false;
    int wait_ = repeatWait;
    QPoint pointer_;
    double start_ = 0.0;      // the value at the anchor
    double anchor_ = 0.0;     // the pointer's x there
    double grabOffset_ = 0.0; // from the knob's unrounded pixel to the pointer there
    double lastX_ = 0.0;
};

} // namespace Marlox
