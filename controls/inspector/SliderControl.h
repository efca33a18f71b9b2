#pragma once

#include "system/controls/InputControl.h"
#include "widgets/SliderSettings.h"

namespace Marlox {

class CustomSlider;
class ElideLabel;

/// The inspector control of one number: its name, a drawn slider, a value edit, and up to three
/// names under the slider for its low end, middle and high end.
///
/// Values of the slider and typed ones are kept to the display step (see SliderSettings), times as
/// they are; typing reaches beyond the slider's ends as far as the input allows.
///
/// What one gesture on the slider or in the edit writes is one undo entry ("Adjust Gain"). An
/// expression typed into the edit becomes the input's. Further inputs that join the control are
/// kept, yet it shows the first.
class SliderControl final : public InputControl {
    Q_OBJECT
public:
    SliderControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~SliderControl() override;

    double ShownValue() const { return shown_; }
    bool HasValue() const { return hasValue_; }
    const SliderSettings& Settings() const { return settings_; }

    std::size_t SizeOf() const override;
    bool CopyAttr(u64 tag, void* out) override;
    using InputControl::SetAttrsTagList;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    using InputControl::OnDisconnect;
    void OnDisconnect(Input* input, TagList* tags) override;
    Input* GetInputFrom(QWidget* widget, TagList* tags) override;

public slots:
    void OnEditStartDrag() override;
    void OnEditEndDrag() override;
    /// The user moved the slider, or typed a number.
    void OnValueChanged(float64 v);
    void OnValueEdit();

private:
    void ReadTags(const TagList& tags);
    void ApplyToSlider();
    void ApplyToEdit();
    void ApplyLabels();
    void ApplyKnobStyle();
    void ReadShownValue();
    void ShowInputState();

    ElideLabel* label_;
    ElideLabel* lowLabel_;
    ElideLabel* midLabel_;
    ElideLabel* highLabel_;
    CustomSlider* slider_;
    TimeCodeEdit* edit_;

    TagList creation_; // what the control was made from; its inputs' attributes win over it
    SliderSettings settings_;
    SliderSettings::Range seenRange_{0.0, 1.0}; // the slider's, when a value last arrived
    unsigned int inputId_ = 0;                  // IA_ControlIndex of the input shown
    double shown_ = 0.0;
    bool hasValue_ = false;
    bool knobStyleDirty_ = false;
    bool labelsDirty_ = false;
    bool editDragging_ = false;
};

} // namespace Marlox
