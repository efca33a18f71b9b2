#pragma once

#include "controls/color/RangedControl.h"

namespace Marlox {

class CustomColorSuppression;

// Creation tags of the suppression control's own.
inline constexpr u32 CSCCS_LowName = 0x30050000; // what the low range is called,
inline constexpr u32 CSCCS_MidName = 0x30050001;
inline constexpr u32 CSCCS_HighName = 0x30050002;
inline constexpr u32 CSCCD_AngleMaster = 0x20050000; // how far its wheel is rotated, in turns,
inline constexpr u32 CSCCD_AngleLow = 0x20050001;
inline constexpr u32 CSCCD_AngleMid = 0x20050002;
inline constexpr u32 CSCCD_AngleHigh = 0x20050003;

/// The inspector control of how far each of six hues is suppressed: a drawn wheel with a knob for
/// each, and six edits. Its channels are the hues, 0 red, yellow, green, cyan, blue, 5 magenta;
/// amounts are 0 to 1. The wheel of each range may be rotated.
class ColorSuppressionControl final : public RangedControl {
    Q_OBJECT
public:
    static constexpr int channels = 6;

    ColorSuppressionControl(const Registry* record, const ScriptVal& creator,
                            const TagList& attributes);

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;

public slots:
    void OnWheel(int knob); // the user moved this knob
    void OnResetKnob(int knob);

protected:
    int SlotAt(const QWidget* widget) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void ShowWheel(int range) override;
    void SetMode(int range) override;

private:
    static std::span<const Place> Places();

    CustomColorSuppression* wheel_;
    std::array<double, ranges> angles_{}; // turns
};

} // namespace Marlox
