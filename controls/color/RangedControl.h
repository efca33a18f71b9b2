#pragma once

#include "framework/ChannelControl.h"

#include <array>
#include <span>
#include <string>

namespace Marlox {

class CustomControl;
class RangeSelector;

/// Base of the colour controls with a drawn wheel and an edit for each of its channels. Inputs tell
/// by their channel (IA_Channel) which one they hold; an input without goes by its place among the
/// control's, others are ignored.
///
/// Inputs of several tonal ranges (IA_Range: 0 master, 1 low, 2 middle, 3 high) make a set for
/// each; a selector above the wheel then chooses the one that is shown and edited.
///
/// The edits stand beside the wheel where there is room for both, else below it: in layouts that
/// have a second place for the wheel ("wheelabove", and "edits" around the edits).
class RangedControl : public ChannelControl {
    Q_OBJECT
public:
    static constexpr int ranges = 4;

    ~RangedControl() override;

    /// The slot of a channel in a range.
    int SlotFor(int range, int channel) const { return range * channels_ + channel; }
    int ShownRange() const;

    bool CopyAttr(u64 tag, void* out) override;
    void GetInputsAt(InputList& out, int x, int y, TagList* tags) override;
    void Close(TagList* tags) override;
    bool GetMinSize(int& width, int& height, TagList* tags) override;
    bool SetSize(int& width, int& height, TagList* tags) override;
    void AddExpressionEdit(Input* input, TagList* tags) override;

public slots:
    void OnRangeChanged(int range); // another one is to be shown

protected:
    /// Where a channel is in the layout, and what its label says.
    struct Place {
        const char* text;
        const char* label;
        const char* edit;
        const char* expression;
        bool isShare = false; // 0 to 1, whatever its input allows
    };
    /// `places`: one for each channel; `names`: tags with the names of the low, middle and high
    /// range. Both are constant data.
    RangedControl(const Registry* record, const ScriptVal& creator, const TagList& attributes,
                  std::span<const Place> places, const std::array<u32, 3>& names);
    /// For the subclass's constructor; the wheel is the control's child.
    void SetWheel(CustomControl& wheel);
    CustomControl& Wheel() const { return *wheel_; }

    virtual void ShowWheel(int range) = 0; // its values
    virtual void SetMode(int range) = 0;   // of the wheel
    /// Writes the defaults of channels of the shown range, as one undo entry.
    void ResetChannels(std::span<const int> channels, const QString& undoText);

    int SlotOf(const Input& input) const override;
    int SlotAt(const QWidget* widget) const override;
    bool IsViewPart(const QWidget* part) const override;
    void ReadTags(const TagList& tags) override;
    void Populate() override;
    void Show() override;
    void ShowSlot(int slot) override;
    const char* ExpressionPlace(int slot) const override;
    SliderSettings::Range LimitsOf(int slot) const override;

private:
    bool HasRange(int range) const;
    void OfferRanges();
    void ShowRange();
    void ShowLines();
    void Arrange();
    void LockWheel();

    std::span<const Place> places_;
    std::array<u32, ranges> nameTags_; // of the ranges; the master has none
    int channels_;
    CustomControl* wheel_ = nullptr;
    RangeSelector* selector_;
    std::vector<ElideLabel*> labels_;
    std::vector<TimeCodeEdit*> edits_;
    std::array<std::string, ranges> names_; // as the tags tell, or the usual ones
    bool stacked_ = false;                  // the edits stand below
};

} // namespace Marlox
