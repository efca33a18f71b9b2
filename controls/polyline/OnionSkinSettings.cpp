#include "controls/polyline/OnionSkinSettings.h"

#include "controls/polyline/PolyPreferences.h"
#include "system/document/Preferences.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Marlox {

namespace {

constexpr double sameFrame = 1e-6; // as animations tell keys apart
constexpr double smallestStep = 0.01;

struct FlagPreference {
    const char* name;
    OnionSkinSettings::Flag flag;
};
constexpr FlagPreference flagPreferences[] = {
    {PREF_OnionSkinKeySkin, OnionSkinSettings::KeySkin},
    {PREF_OnionSkinPointPlot, OnionSkinSettings::PointPlot},
    {PREF_OnionSkinShowHull, OnionSkinSettings::ShowHull},
};

bool isSame(double a, double b)
{
    return std::abs(a - b) < sameFrame;
}

/// The nearest `count` keys on one side of the centre.
void addKeys(std::vector<double>& times, std::span<const double> keys, double center, bool next,
             unsigned count)
{
    std::vector<double> side;
    for (const double key : keys) {
        if (!isSame(key, center) && (key > center) == next)
            side.push_back(key);
    }
    if (!next)
        std::reverse(side.begin(), side.end());
    side.resize(std::min<std::size_t>(side.size(), count));
    times.insert(times.end(), side.begin(), side.end());
}

void addSteps(std::vector<double>& times, double center, double step, unsigned count)
{
    for (unsigned i = 1; i <= count; ++i)
        times.push_back(center + i * step);
}

} // namespace

OnionSkinSettings::Range OnionSkinSettings::SkinRange() const
{
    const int range = flags & rangeMask;
    return range == Prev || range == Next ? Range(range) : All;
}

OnionSkinSettings OnionSkinSettings::FromPreferences()
{
    const Preferences& preferences = Preferences::Global();
    OnionSkinSettings settings;
    const int count = preferences.Get(PREF_DefOnionSkinCount, settings.count).toInt();
    settings.count = unsigned(std::clamp(count, 0, int(maxCount)));
    const float step = preferences.Get(PREF_DefOnionSkinStep, settings.step).toFloat();
    if (std::isfinite(step) && step >= float(smallestStep))
        settings.step = step;
    const int range = preferences.Get(PREF_DefOnionSkinRange, int(All)).toInt();
    settings.SetRange(range == Prev || range == Next ? Range(range) : All);
    for (const FlagPreference& row : flagPreferences)
        settings.Set(row.flag, preferences.Get(row.name, false).toBool());
    settings.anchor = preferences.Get(PREF_OnionSkinAnchor, false).toBool();
    settings.clickSetsTime = preferences.Get(PREF_OnionSkinClickSetCT, false).toBool();
    return settings;
}

void OnionSkinSettings::ToPreferences() const
{
    Preferences& preferences = Preferences::Global();
    preferences.Set(PREF_DefOnionSkinCount, count);
    // As the dialog shows it: files know no single precision.
    preferences.Set(PREF_DefOnionSkinStep, QString::number(double(step), 'g', 7).toDouble());
    preferences.Set(PREF_DefOnionSkinRange, int(SkinRange()));
    for (const FlagPreference& row : flagPreferences)
        preferences.Set(row.name, Has(row.flag));
    preferences.Set(PREF_OnionSkinAnchor, anchor);
    preferences.Set(PREF_OnionSkinClickSetCT, clickSetsTime);
}

OnionSkinTimes OnionSkinsAt(const OnionSkinSettings& settings, double current, double anchor,
                            std::span<const double> keys, double first, double last)
{
    const double center = settings.anchor ? anchor : current;
    const unsigned count = std::min(settings.count, OnionSkinSettings::maxCount);
    const double step = std::isfinite(settings.step)
                            ? std::max(std::abs(double(settings.step)), smallestStep)
                            : 1.0;
    std::vector<double> times{center};
    for (const bool next : {false, true}) {
        if (!(settings.SkinRange() & (next ? OnionSkinSettings::Next : OnionSkinSettings::Prev)))
            continue;
        if (settings.Has(OnionSkinSettings::KeySkin))
            addKeys(times, keys, center, next, count);
        else
            addSteps(times, center, next ? step : -step, count);
    }
    std::sort(times.begin(), times.end());
    OnionSkinTimes skins;
    for (const double time : times) {
        if (time < first || time > last || isSame(time, current))
            continue;
        (time < current ? skins.before : skins.after).push_back(time);
    }
    std::reverse(skins.before.begin(), skins.before.end());
    return skins;
}

} // namespace Marlox
