#pragma once

#include "controls/color/RangedControl.h"

namespace Marlox {

class CustomColorWheel;

// Creation tags of the colour wheel control's own: names of the tonal ranges.
inline constexpr u32 CWCCS_LowName = 0x30050000;
inline constexpr u32 CWCCS_MidName = 0x30050001;
inline constexpr u32 CWCCS_HighName = 0x30050002;

/// The inspector control of a colour correction, on a drawn wheel with four edits. Its channels: 0
/// the turn of all hues (in turns), 1 the saturation (a factor), 2 the angle of a tint (in turns)
/// and 3 its length (0 to 1).
class ColorWheelControl final : public RangedControl {
    Q_OBJECT
public:
    enum Channel { Hue, Saturation, TintAngle, TintLength };
    static constexpr int channels = 4;

    ColorWheelControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    std::size_t SizeOf() const override;

public slots:
    void OnWheel();             // the wheel's record was dragged
    void OnResetPart(int part); // of the wheel

protected:
    const char* LayoutName() const override;
    void ShowWheel(int range) override;
    void SetMode(int range) override;

private:
    static std::span<const Place> Places();

    CustomColorWheel* wheel_;
};

} // namespace Marlox
