#pragma once

#include "widgets/SliderScale.h"

#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace Marlox {

/// What a slider knows besides the pointer: its value, bounds, centre, steps and tick marks. No
/// window and no host; values are in the owner's units.
///
/// The value is kept as the owner gave it, which may lie beyond the bounds (typed into an edit);
/// the knob then stands at the end, and whatever the user does with the slider starts from there.
class SliderModel {
public:
    /// Default and snap value: there is none.
    static constexpr double none = std::numeric_limits<double>::max();

    /// Index of a step: with Ctrl held, with no modifier, with Shift held.
    enum Level { Fine = 0, Plain = 1, Tick = 2 };

    double value = 0.0;
    double defaultValue = none;
    double snapValue = none; // a drag snaps to it before it snaps to the default

    const SliderScale& Scale() const { return scale_; }
    double ClampedValue() const;
    double Clamped(double v) const;
    bool HasDefault() const { return defaultValue != none; }

    /// Where the track lies, in pixels.
    void SetTrack(double pixelLow, double pixelHigh);
    /// Sets the bounds, swapped if need be, and clamps value and centre into them. A bound moves
    /// only if it differs from the one last requested by more than the single-precision epsilon.
    /// True if one moved. Bounds that are not finite, or too far apart for it, are ignored.
    bool SetRange(double low, double high);
    /// 0: automatic spacing, which also centres a range that spans zero, for as long as it does.
    /// Until the first call there are no marks, and all steps are 1 unless set.
    void SetTickFreq(double count);
    /// Sets the centre; true if the track is centred from now on. Stays when the range changes.
    bool SetCentre(double c);
    /// Centres by hand, or ends it (automatic centring may set in again).
    void SetCentred(bool on);
    void SetGamma(double gamma); // ignored unless positive and finite
    void SetInteger(bool on);
    /// The Plain and Fine steps, for both sides of the centre; ignored unless positive.
    void SetSteps(double fine, double plain);

    double RequestedLow() const { return requestedLow_; }
    double RequestedHigh() const { return requestedHigh_; }
    /// The bounds as shown: rounded outward to whole numbers where that costs little.
    double DisplayLow() const { return displayLow_; }
    double DisplayHigh() const { return displayHigh_; }
    double TickCount() const { return tickCount_; } // 0: automatic; on a centred track of each half
    bool IsInteger() const { return integer_; }
    double StepBelow(int level) const { return stepBelow_[std::size_t(level)]; }
    double StepAbove(int level) const { return stepAbove_[std::size_t(level)]; }

    /// The value one step away. A step that would cross the centre stops there.
    double SteppedDown(int level) const;
    double SteppedUp(int level) const;

    /// A movement that some other widget tells in units of a thousandth of the range's power of
    /// ten.
    struct RelativeDrag {
        double movement = 0.0;    // units so far, as the caller counts them
        bool accumulates = false; // the caller goes on adding to `movement`
    };
    /// The value `units` away from `start`, within the bounds. Where they stop it, `state.movement`
    /// is corrected, so that moving back changes the value at once.
    double Dragged(double start, double units, RelativeDrag& state) const;

    /// Makes a dragged value whole in integer mode, and keeps it within the bounds.
    double Settled(double v) const;

    /// Pixels of the tick marks from left to right, where the knob stands at their values; thinned
    /// out to at least `apart` pixels, but for the rounding.
    std::vector<int> TickPixels(double apart) const;

private:
    struct Spacing {
        double below;
        double above;
    };
    bool DisplaySpansZero() const { return displayLow_ < 0.0 && 0.0 < displayHigh_; }
    void FollowRange();
    void UpdateSteps();
    Spacing TickSpacing() const;

    SliderScale scale_;
    double requestedLow_ = 0.0;
    double requestedHigh_ = 1.0;
    double displayLow_ = 0.0;
    double displayHigh_ = 1.0;
    double tickCount_ = 0.0;
    std::optional<double> requestedTicks_; // none: not asked for yet
    Spacing spacing_{1.0, 1.0}; // between tick marks; the Tick steps unless those were doubled
    std::array<double, 3> stepBelow_{1.0, 1.0, 1.0};
    std::array<double, 3> stepAbove_{1.0, 1.0, 1.0};
    bool integer_ = false;
    bool centredByRange_ = false;
};

} // namespace Marlox
