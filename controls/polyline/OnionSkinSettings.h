#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace Marlox {

/// Which onion skins of a shape show, and how. A value type.
struct OnionSkinSettings {
    /// On which sides of the centre skins are laid.
    enum Range : std::uint16_t { Prev = 1, Next = 2, All = 3 };
    /// Bits of `flags`; the low four are the range, where 0 means All.
    enum Flag : std::uint16_t {
        KeySkin = 0x40,    // the skins are the shape's keys
        ShowHull = 0x80,   // with the polygon of the points
        PointPlot = 0x100, // points alone, without curves
    };
    static constexpr std::uint16_t rangeMask = 0x0f;
    static constexpr unsigned maxCount = 100; // more are drawn as that many

    unsigned count = 3; // on each side
    float step = 1.0f;  // frames from one to the next; not between keys
    std::uint16_t flags = All;
    bool anchor = false;        // they lie around the anchor time rather than the current one
    bool clickSetsTime = false; // a click on a skin goes to its time

    Range SkinRange() const;
    void SetRange(Range range) { flags = std::uint16_t((flags & ~rangeMask) | range); }
    bool Has(Flag flag) const { return flags & flag; }
    void Set(Flag flag, bool on) { flags = std::uint16_t(on ? flags | flag : flags & ~flag); }

    static OnionSkinSettings FromPreferences();
    void ToPreferences() const;

    friend bool operator==(const OnionSkinSettings&, const OnionSkinSettings&) = default;
};

/// The times of skins, in frames, the one nearest to the current time first.
struct OnionSkinTimes {
    std::vector<double> before;
    std::vector<double> after;

    friend bool operator==(const OnionSkinTimes&, const OnionSkinTimes&) = default;
};

/// The skins of a shape whose keys lie at `keys` (ascending). They are laid out around a centre:
/// the current time or, by the settings, the anchor. On each side that the range asks for lie
/// `count` skins, a step apart, or the nearest `count` keys; a skin that would lie outside the
/// frames `first` to `last` is left out. Around an anchor the skins stay where they are while the
/// current time goes through them, and the anchor is one of them.
///
/// Before and after, and so the tint, count from the current time. At the current time itself there
/// is none: the shape is drawn there.
OnionSkinTimes OnionSkinsAt(const OnionSkinSettings& settings, double current, double anchor,
                            std::span<const double> keys,
                            double first = -std::numeric_limits<double>::infinity(),
                            double last = std::numeric_limits<double>::infinity());

} // namespace Marlox
