#include "controls/inspector/SliderControl.h"

#include "framework/ControlClass.h"
#include "framework/SliderParts.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

#include <cmath>
#include <optional>
#include <utility>

namespace Marlox {

namespace {

/// What all sliders share, filled when the first is made (and when another look is in use since)
/// and kept by the declaration below.
struct SharedValues {
    ScriptVal layout;
    std::optional<MxPoint> resetPosition;
    unsigned generation = 0; // of the look they come from
};
SharedValues& shared();

constexpr char layoutName[] = "Controls.Slider.Layout";

constexpr int elided = 1;
constexpr int notElided = 3;

void fillShared()
{
    SharedValues& values = shared();
    const unsigned generation = LookPack::Global().Generation();
    if (values.resetPosition && values.generation == generation)
        return;
    values.generation = generation;
    values.layout = ResData::LayoutOf(layoutName);
    const ScriptVal reset = ResData::ValueOf("Controls.Slider.Data").Get("Reset");
    values.resetPosition.emplace(int(std::lround(reset.At(1).ToNumber())),
                                 int(std::lround(reset.At(2).ToNumber())));
}

void attachWidget(void*, LayoutObj& object, const ScriptVal&, void* control)
{
    // The widgets bear the names of their places.
    const QString name = object.Name().ToString();
    if (name.isEmpty() || object.IsContainer())
        return;
    if (auto* widget = static_cast<SliderControl*>(control)->findChild<QWidget*>(
            name, Qt::FindDirectChildrenOnly))
        object.SetWidget(widget);
}

template <class Widget, class... Arguments>
Widget* makeNamed(const char* name, Arguments... arguments)
{
    auto* widget = new Widget(arguments...);
    widget->setObjectName(QLatin1String(name));
    // The layout sizes it: showing it need not work out a size of its own, which costs a measured
    // text for each widget of each control that opens.
    widget->setAttribute(Qt::WA_Resized);
    return widget;
}

} // namespace

SliderControl::SliderControl(const Registry* record, const ScriptVal& creator,
                             const TagList& attributes)
    : InputControl(record, creator, attributes),
      label_(makeNamed<ElideLabel>("label", this, elided)),
      lowLabel_(makeNamed<ElideLabel>("minlabel", this, notElided)),
      midLabel_(makeNamed<ElideLabel>("midlabel", this, notElided)),
      highLabel_(makeNamed<ElideLabel>("maxlabel", this, notElided)),
      slider_(makeNamed<CustomSlider>("slider", this)), edit_(makeNamed<TimeCodeEdit>("edit", this))
{
    fillShared();
    lowLabel_->SetAlignment(Qt::AlignLeft | Qt::AlignTop);
    midLabel_->SetAlignment(Qt::AlignHCenter | Qt::AlignTop);
    highLabel_->SetAlignment(Qt::AlignRight | Qt::AlignTop);
    for (ElideLabel* label : {lowLabel_, midLabel_, highLabel_})
        label->hide();
    connect(slider_, SIGNAL(ValueChanged(float64)), this, SLOT(OnValueChanged(float64)));
    connect(edit_, SIGNAL(editingFinished()), this, SLOT(OnValueEdit()));
    connect(edit_, &TimeCodeEdit::StartDrag, this, &SliderControl::OnEditStartDrag);
    connect(edit_, &TimeCodeEdit::EndDrag, this, &SliderControl::OnEditEndDrag);
    creation_.Merge(attributes);
    ReadTags(creation_);
}

SliderControl::~SliderControl()
{
    slider_->SetOwner(nullptr);
    edit_->disconnect(this);
}

std::size_t SliderControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes -------------------------------------------------------------------------------------

bool SliderControl::CopyAttr(u64 tag, void* out)
{
    // Without an input the base knows better: what was set since is not read before one comes.
    if (Inputs().empty() && InputControl::CopyAttr(tag, out))
        return true;
    const auto text = [out](const std::string& value) {
        *static_cast<const char**>(out) = value.c_str();
        return true;
    };
    switch (tag) {
    case IC_TickFreq:
        *static_cast<int64*>(out) = settings_.tickFreq;
        return true;
    case SLCS_LowName:
        return text(settings_.lowName);
    case SLCS_MidName:
        return text(settings_.midName);
    case SLCS_HighName:
        return text(settings_.highName);
    default:
        return InputControl::CopyAttr(tag, out);
    }
}

bool SliderControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    if (!InputControl::SetAttrsTagList(input, tags))
        return false;
    if (!Inputs().empty() && input != Inputs().front())
        return true; // another one joins: what is shown stays the first's
    TagList all(creation_);
    all.Merge(tags);
    ReadTags(all);
    if (IsOpen()) {
        ApplyToSlider();
        ApplyToEdit();
    }
    return true;
}

void SliderControl::ReadTags(const TagList& tags)
{
    const SliderSettings before = std::exchange(settings_, SliderSettings(tags));
    knobStyleDirty_ = knobStyleDirty_ || before.knobStyle != settings_.knobStyle;
    labelsDirty_ = true; // the input's name may be another too
}

// Life cycle -------------------------------------------------------------------------------------

bool SliderControl::AddInput(Input* input, TagList* tags)
{
    if (!InputControl::AddInput(input, tags))
        return false;
    if (input != Inputs().front())
        return true;
    inputId_ = unsigned(input->GetAttr(IA_ControlIndex));
    label_->SetText(input->GetName());
    labelsDirty_ = true;
    if (const Ref<Parameter> value = input->GetValue(CurrentTime())) {
        NotifyChanged(input, value.Get(), nullptr);
        hasValue_ = true;
    }
    return true;
}

bool SliderControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!InputControl::Open(window, rect, tags))
        return false;
    slider_->SetOwner(this);
    ApplyToSlider();
    ApplyKnobStyle();
    ReadShownValue();
    ApplyLabels();
    label_->setFocusProxy(slider_);
    slider_->ShowValue(shown_);
    slider_->SetResetPosition(*shared().resetPosition);
    slider_->show();
    ApplyToEdit();
    edit_->SetValue(shown_, settings_.precision);
    edit_->show();
    edit_->setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    SliderParts::DragThrough(*edit_, *slider_);
    const ScriptVal& layout = shared().layout;
    const bool built = layout.IsTable() ? CreateLayout(layout, false, attachWidget, this)
                                        : LoadLayout(layoutName, false, attachWidget, this);
    if (!built) {
        for (QWidget* widget : std::initializer_list<QWidget*>{label_, slider_, edit_, lowLabel_,
                                                               midLabel_, highLabel_})
            widget->hide(); // the line that tells the fault has the place
        return true;
    }
    if (LayoutObj* place = FindLayoutObj("expression"))
        CreateExpressionEdit(int(inputId_), place, nullptr);
    ShowInputState();
    return true;
}

void SliderControl::Close(TagList* tags)
{
    edit_->CancelDrag();
    slider_->SetOwner(nullptr); // ends a gesture
    InputControl::Close(tags);
}

/// The value of the input shown, found under the inputs' read lock.
void SliderControl::ReadShownValue()
{
    const auto find = [this]() -> Input* {
        const ReadLock lock(InputsLock());
        for (Input* input : Inputs()) {
            if (unsigned(input->GetAttr(IA_ControlIndex)) == inputId_)
                return input;
        }
        return nullptr;
    };
    const Input* input = find();
    const Ref<Parameter> value = input ? input->GetValue(CurrentTime()) : nullptr;
    if (!value)
        return;
    shown_ = NumberOf(value.Get(), shown_);
    hasValue_ = true;
}

// Values in --------------------------------------------------------------------------------------

void SliderControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (!value)
        return InputControl::NotifyChanged(input, value, tags);
    bool told = false;
    const bool shown = input && unsigned(input->GetAttr(IA_ControlIndex)) == inputId_;
    const double v = NumberOf(value, shown_);
    if (shown && HasValueChanged(settings_.IsWhole(), v, shown_, settings_.Tolerance())) {
        shown_ = v;
        hasValue_ = true;
        InputControl::NotifyChanged(input, value, tags);
        told = true;
    }
    if (settings_.range != seenRange_ && !told)
        InputControl::NotifyChanged(input, value, tags);
    seenRange_ = settings_.range;
}

void SliderControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (!IsOpen())
        return;
    edit_->SetValue(shown_, settings_.precision);
    slider_->ShowValue(shown_);
    if (knobStyleDirty_)
        ApplyKnobStyle();
    if (labelsDirty_) {
        ApplyLabels();
        slider_->update();
        RecalcControlSize();
    }
    ShowInputState();
    InputControl::UpdateDisplay(input, tags);
}

void SliderControl::OnDisconnect(Input* input, TagList* tags)
{
    // What came through the connection stays, as a plain number.
    if (input && input == FindInputByIndex(inputId_))
        input->SetValue(*AutoNumber(new Number(shown_)), TimeNone, Input::ReplaceAll);
    InputControl::OnDisconnect(input, tags);
}

Input* SliderControl::GetInputFrom(QWidget* widget, TagList* tags)
{
    const bool ours = widget && (widget == this || isAncestorOf(widget));
    Input* input = ours ? FindInputByIndex(inputId_) : nullptr;
    return input ? input : InputControl::GetInputFrom(widget, tags);
}

// Values out -------------------------------------------------------------------------------------

void SliderControl::OnValueChanged(float64 v)
{
    const auto alive = Ref<SliderControl>::Share(this); // what follows may close the page
    if (!settings_.time)
        v = settings_.OnGrid(v);
    if (HasValueChanged(settings_.IsWhole(), v, shown_, settings_.Tolerance())) {
        // Within a gesture the undo entry is opened here, at its first real change, and closed by
        // whoever ends the gesture.
        if (slider_->InGesture() || editDragging_)
            SetUndo(inputId_, nullptr);
        SetInputs(AutoNumber(new Number(v)).Get(), CurrentTime(), inputId_, false, nullptr);
    }
    UpdateDisplay(nullptr, nullptr);
}

void SliderControl::OnValueEdit()
{
    const auto alive = Ref<SliderControl>::Share(this);
    if (!edit_->IsExpressionText())
        return OnValueChanged(edit_->GetValue());
    const QString expression = edit_->ExpressionText();
    const QString problem = ExpressionProblem(inputId_, expression);
    if (!problem.isEmpty())
        return edit_->MarkUnreadable(problem); // more likely a slip than an expression
    SetExpressions(inputId_, expression.toUtf8().data());
    UpdateDisplay(nullptr, nullptr);
}

void SliderControl::OnEditStartDrag()
{
    editDragging_ = true;
    InputControl::OnEditStartDrag();
    slider_->StartDrag();
}

void SliderControl::OnEditEndDrag()
{
    const auto alive = Ref<SliderControl>::Share(this);
    editDragging_ = false;
    slider_->EndDrag();
    InputControl::OnEditEndDrag();
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct SliderFacts : InspectorFacts {
    using Class = SliderControl;
    static constexpr char name[] = "SliderControl";
    static constexpr RecordFacts records[] = {{CLSID_InputControl_Slider, "SliderControl"}};
    static constexpr TagMapEntry tagNames[] = {{"IC_TickFreq", IC_TickFreq},
                                               {"SLCS_LowName", SLCS_LowName},
                                               {"SLCS_MidName", SLCS_MidName},
                                               {"SLCS_HighName", SLCS_HighName},
                                               {}};
    struct Resources {
        ResDIB knob{"Controls.Slider.Knob.1", 0};
        ResDIB knobHighlighted{"Controls.Slider.Knob.2", 0};
        ResDIB knob6{"Controls.Color.Knob.2.1", 0};
        ResDIB knob6Highlighted{"Controls.Color.Knob.2.2", 0};
        ResDIB knob7{"Controls.Color.Knob.3.1", 0};
        ResDIB knob7Highlighted{"Controls.Color.Knob.3.2", 0};
        ResDIB knob8{"Controls.Color.Knob.4.1", 0};
        ResDIB knob8Highlighted{"Controls.Color.Knob.4.2", 0};
        ResDIB knob9{"Controls.Color.Knob.5.1", 0};
        ResDIB knob9Highlighted{"Controls.Color.Knob.5.2", 0};
        ResDIB reset{"Controls.Slider.Reset", 0};
        ResDIB track{"Controls.Slider.Track", 0};
        ResColor expression{"Controls.ExpressionColour", {230, 215, 135}, {9, 9, 9}};
        ResData layout{layoutName};
        ResData data{"Controls.Slider.Data"};
    };
    using ScriptVals = SharedValues;
};

} // namespace

template <>
ControlClass<SliderFacts> controlClass<SliderFacts>{};
MARLOX_SCRIPT_CASTS(SliderControl)

namespace {

SharedValues& shared()
{
    return controlClass<SliderFacts>.scriptVals;
}

} // namespace

} // namespace Marlox
