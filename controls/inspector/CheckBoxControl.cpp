#include "controls/inspector/CheckBoxControl.h"

#include "framework/ControlClass.h"
#include "system/widgets/CustomCheckBox.h"

namespace Marlox {

namespace {

constexpr char layoutName[] = "Controls.CheckBox.Layout";

Qt::CheckState stateOf(double value)
{
    return value == 0.0 ? Qt::Unchecked : value == 1.0 ? Qt::Checked : Qt::PartiallyChecked;
}

} // namespace

CheckBoxControl::CheckBoxControl(const Registry* record, const ScriptVal& creator,
                                 const TagList& attributes)
    : OneInputControl(record, creator, attributes), box_(new CustomCheckBox(this))
{
    box_->setObjectName(QStringLiteral("checkbox"));
    connect(box_, &QCheckBox::clicked, this, &CheckBoxControl::OnClicked);
    ReadTags(CreationTags());
}

CheckBoxControl::~CheckBoxControl()
{
    box_->disconnect(this);
}

bool CheckBoxControl::Takes(const Input& input) const
{
    return input.GetDataType() == MxID(CLSID_DataType_Number);
}

const char* CheckBoxControl::LayoutName() const
{
    return layoutName;
}

void CheckBoxControl::ReadTags(const TagList& tags)
{
    nameHidden_ = tags.GetBool(IC_NoLabel);
    editDisabled_ = tags.GetBool(IC_EditDisabled);
}

void CheckBoxControl::Show()
{
    const QString name = InputName();
    box_->setText(nameHidden_ ? QString() : QString(name).replace(u'&', QLatin1String("&&")));
    if (box_->accessibleName() != name)
        box_->setAccessibleName(name); // tells screen readers each time
    box_->setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    box_->setEnabled(!editDisabled_);
    const Qt::CheckState state = stateOf(NumberOf(ShownValue().Get()));
    box_->setTristate(state == Qt::PartiallyChecked);
    box_->setCheckState(state);
    const Motion motion = InputMotion();
    box_->SetStateColor(ColorOf(motion), motion == Motion::Expression);
}

void CheckBoxControl::OnClicked(bool on)
{
    Write(MakeRef<Number>(on ? 1.0 : 0.0), false);
}

namespace {

struct CheckBoxFacts : InspectorFacts {
    using Class = CheckBoxControl;
    static constexpr char name[] = "CheckBoxControl";
    static constexpr RecordFacts records[] = {{CLSID_InputControl_Checkbox, "CheckboxControl"}};
    struct Resources {
        ResColor expression{"Controls.ExpressionColour", {230, 215, 135}, {9, 9, 9}};
        ResData layout{layoutName};
    };
};

} // namespace

template <>
ControlClass<CheckBoxFacts> controlClass<CheckBoxFacts>{};
MARLOX_SCRIPT_CASTS(CheckBoxControl)

} // namespace Marlox
