// What a colour control is made of: its widgets, and what of them is shown.

#include "controls/color/ColorControl.h"

#include "controls/color/ColorChannelRow.h"
#include "controls/color/PickButton.h"
#include "controls/color/SampleButton.h"
#include "system/controls/ControlWnd.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomColorField.h"
#include "widgets/CustomSwatch.h"

#include <utility>

namespace Marlox {

namespace {

constexpr int axisDecimals = 4; // of the field's numbers that are drawn
constexpr double axisStep = 0.01;

constexpr struct {
    const char* normal;
    const char* highlighted;
} arrows[] = {{"Controls.Color.Arrow.1.1", "Controls.Color.Arrow.1.2"},
              {"Controls.Color.Arrow.2.1", "Controls.Color.Arrow.2.2"}}; // closed, open

} // namespace

void ColorControl::MakeParts()
{
    if (parts_.swatch && !swatch_) {
        swatch_ = new CustomSwatch(this);
        swatch_->setObjectName(QStringLiteral("swatch"));
        connect(swatch_, SIGNAL(clicked()), this, SLOT(OnColorSwatch()));
        connect(swatch_, &CustomSwatch::dragAway, this, &ColorControl::OnDragAway);
    }
    if (parts_.pick && !pick_) {
        pick_ = new CCPickButton(this);
        pick_->setObjectName(QStringLiteral("buttonpick"));
        sample_ = new SampleButton(this);
        sample_->setObjectName(QStringLiteral("buttonsample"));
        ConnectPick();
    }
    const auto remove = [](auto*& part) {
        delete part;
        part = nullptr;
    };
    if (!parts_.swatch)
        remove(swatch_);
    if (!parts_.pick) {
        remove(pick_);
        remove(sample_);
    }
    ConvertRecord();
    if (expanded_ && parts_.field)
        MakeField();
}

/// A grey keeps its hue while it is looked at on axes without one.
void ColorControl::ConvertRecord()
{
    const int before = std::exchange(recordSpace_, parts_.colorSpace);
    if (before != yuvSpace)
        hueRecord_ = record_;
    else if (recordSpace_ != yuvSpace)
        record_ = hueRecord_;
    record_ = ColorAxes::Of(recordSpace_).FromRgb(Color(), record_);
}

ColorControl::FieldEdit ColorControl::MakeFieldEdit(const char* label, const char* edit)
{
    const FieldEdit made{new ElideLabel(this), new TimeCodeEdit(this)};
    made.label->setObjectName(QLatin1String(label));
    made.label->setFocusProxy(made.edit);
    made.edit->setObjectName(QLatin1String(edit));
    made.edit->SetStep(axisStep);
    made.edit->SetShownDecimals(axisDecimals);
    connect(made.edit, SIGNAL(valueChanged()), this, SLOT(ValueChanged()));
    connect(made.edit, &TimeCodeEdit::StartDrag, this, &ColorControl::OnEditStartDrag);
    connect(made.edit, &TimeCodeEdit::EndDrag, this, &ColorControl::OnEditEndDrag);
    connect(made.edit, &TimeCodeEdit::editingFinished, this, [made] {
        if (made.edit->IsExpressionText())
            made.edit->MarkUnreadable(tr("Expressions stand in the components, not here."));
    });
    return made;
}

void ColorControl::MakeField()
{
    if (!field_) {
        field_ = new CustomColorField(this);
        field_->setObjectName(QStringLiteral("field"));
        connect(field_, SIGNAL(dragSatVal()), this, SLOT(OnField()));
        connect(field_, SIGNAL(dragHue()), this, SLOT(OnField()));
        connect(field_, SIGNAL(dragAlpha()), this, SLOT(OnFieldAlpha()));
        hue_ = MakeFieldEdit("huelabel", "edithue");
        saturation_ = MakeFieldEdit("saturationlabel", "editsaturation");
        value_ = MakeFieldEdit("valuelabel", "editvalue");
    }
    LabelAxes();
}

void ColorControl::LabelAxes()
{
    const ColorAxes& axes = ColorAxes::Of(parts_.colorSpace);
    const auto name = [this](const FieldEdit& axis, const ColorAxes::Axis& meaning) {
        axis.label->SetText(tr(meaning.label));
        axis.edit->setAccessibleName(Label() + QLatin1Char(' ') + tr(meaning.label));
    };
    name(hue_, axes.HueAxis());
    name(saturation_, axes.SaturationAxis());
    name(value_, axes.ValueAxis());
    const bool isYuv = parts_.colorSpace == yuvSpace;
    saturation_.edit->SetRange(isYuv ? -SliderSettings::unbounded : 0.0,
                               isYuv ? SliderSettings::unbounded : 1.0);
    field_->SetColorSpace(parts_.colorSpace);
    field_->setAccessibleName(Label());
}

bool ColorControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    MakeParts();
    return ChannelControl::Open(window, rect, tags);
}

void ColorControl::Close(TagList* tags)
{
    if (field_)
        field_->SetOwner(nullptr); // ends a gesture
    if (pick_)
        pick_->Cancel();
    ChannelControl::Close(tags);
}

const char* ColorControl::LayoutName() const
{
    return expanded_ && parts_.field ? expandedLayout : collapsedLayout;
}

const char* ColorControl::ExpressionPlace(int) const
{
    return "expressioncolor";
}

void ColorControl::Populate()
{
    const bool shown = IsFieldShown();
    for (const FieldEdit& axis : {hue_, saturation_, value_}) {
        if (axis.edit && !shown) {
            axis.label->hide();
            axis.edit->hide();
        }
    }
    if (field_) {
        field_->setVisible(shown);
        field_->SetOwner(this);
    }
    expand_->setVisible(parts_.field && HasColor());
    const auto& arrow = arrows[expanded_ ? 1 : 0];
    expand_->SetBitmaps(arrow.normal, arrow.highlighted);
    expand_->setToolTip(expanded_ ? tr("Hide the colour field") : tr("Show the colour field"));
    expand_->setAccessibleName(expand_->toolTip());
    label_->SetText(Label());
    label_->setVisible(Inputs().empty() || !Inputs().front()->GetAttrB(IC_NoLabel));
    sampled_->setVisible(shown);
    if (swatch_) {
        swatch_->setVisible(HasColor());
        swatch_->setAccessibleName(Label());
    }
    for (QWidget* part : std::initializer_list<QWidget*>{pick_, sample_}) {
        if (part)
            part->setVisible(HasColor());
    }
    PopulateRows();
}

} // namespace Marlox
