#pragma once

#include "controls/color/ColorChannels.h"
#include "framework/ChannelControl.h"
#include "system/controls/ProxyGesture.h"
#include "widgets/ColorAxes.h"

#include <optional>

namespace Marlox {

class CCPickButton;
class ColorChannelRow;
class CopyColorEvent;
class CustomButton;
class CustomColorField;
class CustomSwatch;
class SampleButton;

// Creation tags of the colour control's own.
inline constexpr u32 CLRC_ColorSpace = 0x10050000; // of the field: 0 HSV, 1 HLS, 2 YUV
inline constexpr u32 CLRC_ShowWheel = 0x10050001;  // the field is shown, until the user folds it
inline constexpr u32 CLRC_NoPick = 0x10050002;     // no pick button
inline constexpr u32 CLRC_NoSwatch = 0x10050003;   // no swatch
inline constexpr u32 CLRC_NoWheel = 0x10050004;    // no field at all
inline constexpr u32 CLRC_NoSliders = 0x10050005;  // no rows of channels

/// The inspector control of a colour, made of up to 32 inputs, each with its channel (IA_Channel;
/// an input without one takes its place among the control's inputs): a swatch, a pick button, a
/// field with the numbers of its three axes, and a row for each channel. Channels beyond 31 are
/// ignored. Red, green and blue are the channels 0, 1 and 2, alpha is 3.
///
/// Values are scene-linear and not clamped, but to each input's own limits. Numbers of colours are
/// written as the preference PREF_ColorMode wants them. What the field shows keeps its hue where
/// the colour has none, and its saturation in black.
class ColorControl final : public ChannelControl {
    Q_OBJECT
public:
    static constexpr char collapsedLayout[] = "Controls.Color.Layout.Collapsed";
    static constexpr char expandedLayout[] = "Controls.Color.Layout.Expanded"; // with the field

    ColorControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~ColorControl() override;

    RgbColor Color() const; // 0 for what is not attached
    /// What the field shows, or would.
    const ColorRecord& Record() const { return record_; }
    bool IsExpanded() const { return expanded_; }
    /// The common beginning of the names of the inputs.
    QString Label() const;

    std::size_t SizeOf() const override;
    bool CopyAttr(u64 tag, void* out) override;
    void AddToMenu(Menu* menu, TagList& tags) override;
    using ChannelControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
    using ChannelControl::SetAttrsTagList;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    void ResetUndo(TagList* tags) override; // gives up a pick, which ends by itself otherwise

public slots:
    void OnField();      // the field's colour was dragged
    void OnFieldAlpha(); // its alpha was
    void OnExpand();
    void OnColorSwatch();
    void OnPickColor(QWidget* viewer, const MxPoint& at);
    void OnColorSlider(float64 v);
    void ValueChanged() override;
    void OnEditStartDrag() override;
    void OnEditEndDrag() override;
    /// Back to the default: a channel, or all with ColorChannels::count.
    void ButtonPressed(uint64 channel);

protected:
    int SlotOf(const Input& input) const override;
    int SlotAt(const QWidget* widget) const override;
    bool IsViewPart(const QWidget* part) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Populate() override;
    void Depopulate() override;
    void Show() override;
    void ShowSlot(int channel) override;
    const char* ExpressionPlace(int channel) const override;
    double ShownScale(int channel) const override;
    void StartTypedUndo(int channel) override;

    void customEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    static constexpr int yuvSpace = 2; // the colour space whose first axis is no hue

    struct Parts {
        int colorSpace = 0;
        bool pick = true;
        bool swatch = true;
        bool field = true;
        bool sliders = true;
        friend bool operator==(const Parts&, const Parts&) = default;
    };
    struct FieldEdit {
        ElideLabel* label;
        TimeCodeEdit* edit;
    };
    static QString SpaceName(int colorSpace);
    void MakeParts();
    void ConvertRecord();
    void ConnectPick();
    void MakeField();
    FieldEdit MakeFieldEdit(const char* label, const char* edit);
    void LabelAxes();
    void PopulateRows();
    void AddRow(int channel, LayoutObj& place);
    void ShowRow(const ColorChannelRow& row);
    void ShowColor();
    void ShowEditable();
    void ShowSampled(const QString& note);
    bool HasColor() const; // red, green or blue is attached
    bool IsFieldShown() const;
    bool IsColorEditable() const; // and one of them can be set
    std::optional<double> Alpha() const;
    bool Describes(const ColorRecord& record) const;
    void ShowRecord();
    void WriteColor(const RgbColor& rgb);
    void TakeRecordEdits();
    void TakeSample(const std::array<double, 4>& rgba);
    void CopyTo(const CopyColorEvent& event);
    bool CopyValueTo(Input& target);
    QString UndoText(const QString& what) const;
    ColorChannelRow* RowOf(const QObject* part) const;
    void OnDragAway();
    void OnPickStarted();
    void OnPickEnded(bool kept);
    void OnPreference(const QString& name);

    Parts parts_;
    bool expanded_ = false;
    ColorRecord record_;
    int recordSpace_ = 0;   // that it is of
    ColorRecord hueRecord_; // on axes with a hue
    struct Settled {
        ColorRecord record;
        RgbColor color{};
    };
    Settled settled_;         // as shown while nothing was dragged
    RgbColor sampledColor_{}; // that the note on the last pick is of
    ProxyGesture pickProxy_;
    bool pickIsDue_ = false;             // the picture is not there at the last place of the pick
    ColorChannelRow* dragged_ = nullptr; // whose edit is being dragged
    std::vector<ColorChannelRow*> rows_; // by channel; children

    // Children; null where a tag leaves one out, or none was needed yet.
    CustomButton* expand_;
    ElideLabel* label_;
    CustomButton* reset_;
    ElideLabel* sampled_;
    CustomSwatch* swatch_ = nullptr;
    CCPickButton* pick_ = nullptr;
    SampleButton* sample_ = nullptr;
    CustomColorField* field_ = nullptr;
    FieldEdit hue_{};
    FieldEdit saturation_{};
    FieldEdit value_{};
};

} // namespace Marlox
