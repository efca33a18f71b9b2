#pragma once

#include "framework/ChannelControl.h"
#include "widgets/ColorSuppressionModel.h"

#include <array>
#include <string>

namespace Marlox {

class CustomColorSuppression;
class RangeSelector;

// Creation tags of the suppression control's own.
inline constexpr u32 CSCCS_LowName = 0x30050000; // what the low range is called,
inline constexpr u32 CSCCS_MidName = 0x30050001;
inline constexpr u32 CSCCS_HighName = 0x30050002;
inline constexpr u32 CSCCD_AngleMaster = 0x20050000; // how far its wheel is rotated, in turns,
inline constexpr u32 CSCCD_AngleLow = 0x20050001;
inline constexpr u32 CSCCD_AngleMid = 0x20050002;
inline constexpr u32 CSCCD_AngleHigh = 0x20050003;

/// The inspector control of how far each of six hues is suppressed: a drawn wheel with a knob for
/// each, and six edits. Inputs tell their hue by their channel (IA_Channel), 0 red to 5 magenta, an
/// input without one by its place among the control's; others are ignored.
///
/// Inputs of several tonal ranges (IA_Range) make a set for each; a selector above the wheel then
/// chooses the one that is shown and edited.
///
/// The edits stand beside the wheel where there is room for both, else below it.
class ColorSuppressionControl final : public ChannelControl {
    Q_OBJECT
public:
    static constexpr int channels = ColorSuppressionModel::knobCount;
    static constexpr int ranges = ColorSuppressionModel::modeCount;

    ColorSuppressionControl(const Registry* record, const ScriptVal& creator,
                            const TagList& attributes);
    ~ColorSuppressionControl() override;

    static constexpr int SlotFor(int range, int channel) { return range * channels + channel; }
    int ShownRange() const;

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    bool GetMinSize(int& width, int& height, TagList* tags) override;
    bool SetSize(int& width, int& height, TagList* tags) override;

public slots:
    void OnWheel(int knob); // the user moved this knob
    void OnRangeChanged(int range);
    void OnResetKnob(int knob);

protected:
    int SlotOf(const Input& input) const override;
    int SlotAt(const QWidget* widget) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Populate() override;
    void Show() override;
    void ShowSlot(int slot) override;
    const char* ExpressionPlace(int slot) const override;

private:
    bool HasRange(int range) const;
    ColorSuppressionModel::Record RecordOf(int range) const;
    void ShowWheel(int range);
    void Arrange();

    CustomColorSuppression* wheel_;
    RangeSelector* selector_;
    std::array<ElideLabel*, channels> labels_{};
    std::array<TimeCodeEdit*, channels> edits_{};
    std::array<std::string, ranges> names_; // as the tags tell; empty: the usual ones
    std::array<double, ranges> angles_{};   // turns
    bool stacked_ = false;                  // the edits stand below
};

} // namespace Marlox
