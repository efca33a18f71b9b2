#include "widgets/SliderSettings.h"

#include "system/base/HostTags.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double stepDecades = 2.0; // a key step below the power of ten of the range
constexpr double fineShare = 0.1;
constexpr double displayDecades = 6.0;
constexpr double fewestDecimals = 4.0;
constexpr double mostDecimals = 12.0;
constexpr double fewestShown = 2.0;
constexpr int64 mostTicks = 1000000;

} // namespace

SliderSettings::SliderSettings(const TagList& tags)
    : defaultValue(tags.GetDouble(IAD_Default, SliderModel::none)),
      snapValue(tags.GetDouble(ICD_Snap, SliderModel::none)), gamma(tags.GetDouble(ICD_Gamma, 1.0)),
      tickFreq(int(std::clamp<int64>(tags.GetLong(IC_TickFreq), 0, mostTicks))),
      knobStyle(int(tags.GetLong(IC_KnobStyle))), integer(tags.GetBool(IA_Integer)),
      time(tags.GetBool(IC_Time)), editDisabled(tags.GetBool(IC_EditDisabled)),
      centred(tags.GetBool(IC_Centred)), nameHidden(tags.GetBool(IC_NoLabel)),
      lowName(tags.GetString(SLCS_LowName, "")), midName(tags.GetString(SLCS_MidName, "")),
      highName(tags.GetString(SLCS_HighName, "")), help(tags.GetString(IAS_Help, ""))
{
    ReadRange(tags);
    DeriveSteps(tags);
}

SliderSettings SliderSettings::Shared(const TagList& tags)
{
    TagList common(tags);
    for (const u32 own : {IC_TickFreq, SLCS_LowName, SLCS_MidName, SLCS_HighName})
        common.Remove(own);
    return SliderSettings(common);
}

void SliderSettings::ReadRange(const TagList& tags)
{
    allowed = {tags.GetDouble(IAD_Minimum, -unbounded), tags.GetDouble(IAD_Maximum, unbounded)};
    if (allowed.high < allowed.low)
        std::swap(allowed.low, allowed.high);
    double low = tags.GetDouble(IAD_LowScale, tags.GetDouble(IAD_Minimum, 0.0));
    double high =
        tags.GetDouble(IAD_HighScale, tags.GetDouble(IAD_Maximum, std::max(low + 1.0, 1.0)));
    if (!std::isfinite(high - low)) {
        low = 0.0;
        high = 1.0;
    }
    if (high < low)
        std::swap(low, high);
    range = {std::clamp(low, allowed.low, allowed.high),
             std::clamp(high, allowed.low, allowed.high)};
    const bool spansZero = range.low < 0.0 && 0.0 < range.high;
    const double middle = spansZero ? 0.0 : 0.5 * (range.low + range.high);
    centre = std::clamp(tags.GetDouble(ICD_Centre, middle), range.low, range.high);
}

void SliderSettings::DeriveSteps(const TagList& tags)
{
    const double decade = DecadeOf(range.high - range.low);
    plainStep = tags.GetDouble(ICD_Step);
    if (!(plainStep > 0.0))
        plainStep = std::pow(10.0, decade - stepDecades);
    if (IsWhole()) // so that Shift, which always moves further, is measured against what moves
        plainStep = std::max(plainStep, 1.0);
    fineStep = plainStep * fineShare;
    precision =
        IsWhole() ? 0 : int(std::clamp(displayDecades - decade, fewestDecimals, mostDecimals));
    displayStep = std::pow(10.0, -precision);
    const double fineDecimals = std::ceil(-std::log10(fineStep) - 1e-9);
    shownDecimals = int(std::clamp(fineDecimals + 1.0, std::min(fewestShown, double(precision)),
                                   double(precision)));
}

double SliderSettings::OnGrid(double v) const
{
    const double steps = std::floor((v + displayStep * 0.5) / displayStep);
    // The inverse of a decimal step is whole and exact, so that 0.3 stays 0.3.
    return steps / std::round(1.0 / displayStep);
}

} // namespace Marlox
