#pragma once

#include "framework/ChannelControl.h"

#include <array>

namespace Marlox {

class CustomColorWheel;
class RangeSelector;
struct WheelRecord;

// Creation tags of the colour wheel control's own: names of the tonal ranges.
inline constexpr u32 CWCCS_LowName = 0x30050000;
inline constexpr u32 CWCCS_MidName = 0x30050001;
inline constexpr u32 CWCCS_HighName = 0x30050002;

/// The inspector control of a colour correction: hue (turns), saturation (factor), angle (turns)
/// and length (0 to 1) of a tint, on a drawn wheel with four edits. Inputs tell which of these they
/// hold by their channel (IA_Channel), 0 to 3; others are ignored.
///
/// Inputs of several tonal ranges (IA_Range) make a set for each; a selector above the wheel then
/// chooses the one that is shown and edited.
class ColorWheelControl final : public ChannelControl {
    Q_OBJECT
public:
    enum Channel { Hue, Saturation, TintAngle, TintLength };
    static constexpr int channels = 4;
    static constexpr int ranges = 4; // master, low, middle, high

    ColorWheelControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~ColorWheelControl() override;

    /// The slot of a channel in a range.
    static constexpr int SlotFor(int range, int channel) { return range * channels + channel; }
    int ShownRange() const;

    std::size_t SizeOf() const override;
    bool CopyAttr(u64 tag, void* out) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;

public slots:
    void OnWheel();                 // the wheel's record was dragged
    void OnRangeChanged(int range); // another one is to be shown
    void OnResetPart(int part);     // of the wheel

protected:
    int SlotOf(const Input& input) const override;
    int SlotAt(const QWidget* widget) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Populate() override;
    void Show() override;
    const char* ExpressionPlace(int slot) const override;

private:
    bool HasRange(int range) const;
    WheelRecord RecordOf(int range) const;

    CustomColorWheel* wheel_;
    RangeSelector* selector_;
    std::array<ElideLabel*, channels> labels_{};
    std::array<TimeCodeEdit*, channels> edits_{};
    std::array<std::string, ranges> names_; // empty: the usual ones
};

} // namespace Marlox
