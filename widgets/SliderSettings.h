#pragma once

#include "system/base/TagList.h"
#include "widgets/SliderModel.h"

#include <string>

namespace Marlox {

// Creation tags of the slider control's own.
inline constexpr u32 IC_TickFreq = 0x10050000;   // number of tick marks; 0: spaced automatically
inline constexpr u32 SLCS_LowName = 0x30050000;  // text under the low end
inline constexpr u32 SLCS_MidName = 0x30050001;  // text under the middle
inline constexpr u32 SLCS_HighName = 0x30050002; // text under the high end

/// What tags tell a slider control, put in order, and what follows from it. Values are the input's.
struct SliderSettings {
    static constexpr double unbounded = std::numeric_limits<double>::max();
    struct Range {
        double low;
        double high;
        friend bool operator==(const Range&, const Range&) = default;
    };

    SliderSettings() = default;
    explicit SliderSettings(const TagList& tags);
    /// The same for a control whose own tags have the numbers of the slider control's own, which
    /// say nothing about its numbers.
    static SliderSettings Shared(const TagList& tags);

    /// The slider's ends: IAD_LowScale and IAD_HighScale, unless given IAD_Minimum and IAD_Maximum,
    /// else 0 and 1; within what can be typed, and in order.
    Range range{0.0, 1.0};
    Range allowed{-unbounded, unbounded}; // what can be typed: IAD_Minimum and IAD_Maximum
    double defaultValue = SliderModel::none;
    double snapValue = SliderModel::none;
    double centre = 0.0; // ICD_Centre, unless given 0 or the middle of a range without it
    double gamma = 1.0;
    /// Key steps: ICD_Step, unless given a hundredth of the range's power of ten (0.01 for 0 to 1);
    /// with Ctrl a tenth of it.
    double plainStep = 0.01;
    double fineStep = 0.001;
    /// The grid that values are kept to, and the decimals shown: six decimals below the range's
    /// power of ten (a millionth for 0 to 1), but at least four and at most twelve; whole numbers
    /// of an integer input.
    double displayStep = 1e-7;
    int precision = -1;
    /// What the value edit draws of these decimals while nobody types: one below the fine key step
    /// (four for 0 to 1), at least two.
    int shownDecimals = -1;
    int tickFreq = 0;
    int knobStyle = 0;
    bool integer = false;
    bool time = false; // values are times, which no grid holds
    bool editDisabled = false;
    bool centred = false;
    bool nameHidden = false;
    std::string lowName;
    std::string midName;
    std::string highName;
    std::string help;

    bool IsWhole() const { return integer && !time; }
    bool HasRangeNames() const { return !lowName.empty() || !midName.empty() || !highName.empty(); }
    /// `v` on the display grid, halves upwards: floor((v + step / 2) / step) * step. (Not the
    /// rounding of a drag, which is to the nearest, halves away from zero.)
    double OnGrid(double v) const;
    /// What changes are measured by: half the display step.
    double Tolerance() const { return displayStep * 0.5; }

private:
    void ReadRange(const TagList& tags);
    void DeriveSteps(const TagList& tags);
};

} // namespace Marlox
