#include "controls/polyline/PolyValuesDlg.h"

#include "system/resources/Resources.h"
#include "system/widgets/CustomCheckBox.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

#include <cmath>

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>

namespace Marlox {

namespace {

const ResData layoutResources[] = {
    ResData("Dialogs.CreateShape.Layout"),  ResData("Dialogs.CreateSpiral.Layout"),
    ResData("Dialogs.EasePoints.Layout"),   ResData("Dialogs.ReducePoints.Layout"),
    ResData("Dialogs.SmoothPoints.Layout"),
};

constexpr int decimals = 3;

/// What is typed into a plain number field as an expression is no number.
bool holdsNumber(TimeCodeEdit& edit)
{
    if (edit.IsExpressionText())
        edit.MarkUnreadable(PolyValuesDlg::tr("A number is wanted here."));
    return !edit.IsUnreadable();
}

} // namespace

PolyValuesDlg::PolyValuesDlg(const QString& title, const char* layout,
                             const std::vector<PolyValueField>& fields, Preview preview)
    : MxDialog(QApplication::activeWindow()), preview_(std::move(preview))
{
    setObjectName("PolyValuesDlg");
    setWindowTitle(title);
    for (const PolyValueField& field : fields)
        parts_.push_back(field.kind == PolyValueField::Check ? MakeCheck(field)
                                                             : MakeNumber(field));
    note_ = new QLabel(this);
    note_->setObjectName("m_Note");
    note_->setTextFormat(Qt::PlainText);
    MakeOKCancel("m_OKCancel");
    LoadLayout(layout);
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    connect(&soon_, &QTimer::timeout, this, &PolyValuesDlg::ShowPreview);
    ShowPreview();
    if (!parts_.empty() && parts_.front().edit)
        parts_.front().edit->setFocus();
}

PolyValuesDlg::Part PolyValuesDlg::MakeNumber(const PolyValueField& field)
{
    const QString name = QString::fromLatin1(field.name);
    QLabel* label = nullptr;
    if (!field.label.isEmpty()) {
        label = new QLabel(field.label, this);
        label->setObjectName("m_Label" + name);
    }
    auto* edit = new TimeCodeEdit(this);
    if (field.kind == PolyValueField::Slider)
        JoinSlider(*edit, field);
    edit->setObjectName("m_Edit" + name);
    edit->setAccessibleName(label ? QString(field.label).remove(u':') : field.help);
    edit->setToolTip(field.help);
    edit->SetInteger(field.whole);
    edit->SetRange(field.minimum, field.maximum);
    edit->SetStep(field.step);
    edit->SetShownDecimals(decimals);
    edit->SetValue(field.value);
    if (label)
        label->setBuddy(edit);
    connect(edit, &TimeCodeEdit::editingFinished, this, [this, edit] {
        if (holdsNumber(*edit))
            soon_.start();
    });
    return {edit, nullptr};
}

PolyValuesDlg::Part PolyValuesDlg::MakeCheck(const PolyValueField& field)
{
    auto* check = new CustomCheckBox(field.label, this);
    check->setObjectName("m_Check" + QString::fromLatin1(field.name));
    check->setToolTip(field.help);
    check->setChecked(field.value != 0.0);
    connect(check, &CustomCheckBox::CheckChanged, this, [this] { soon_.start(); });
    return {nullptr, check};
}

void PolyValuesDlg::JoinSlider(TimeCodeEdit& edit, const PolyValueField& field)
{
    auto* slider = new CustomSlider(this);
    slider->setObjectName("m_Slider" + QString::fromLatin1(field.name));
    slider->setAccessibleName(QString(field.label).remove(u':'));
    slider->SetHelp(field.help);
    slider->SetRange(field.minimum, field.sliderEnd, false);
    slider->SetSteps(field.step / 10.0, field.step);
    slider->SetTickFreq(0);
    slider->SetCentred(false);
    slider->ShowValue(field.value);
    const double fine = field.step / 10.0;
    connect(slider, &CustomSlider::ValueChanged, this, [this, &edit, fine](double value) {
        edit.SetValue(std::round(value / fine) * fine, decimals);
        soon_.start();
    });
    connect(&edit, &TimeCodeEdit::editingFinished, slider,
            [slider, &edit] { slider->ShowValue(edit.GetValue()); });
}

PolyValuesDlg::Values PolyValuesDlg::GetValues() const
{
    Values values;
    for (const Part& part : parts_)
        values.push_back(part.edit ? part.edit->GetValue() : double(part.check->isChecked()));
    return values;
}

void PolyValuesDlg::ShowPreview()
{
    if (preview_)
        note_->setText(preview_(GetValues()));
}

void PolyValuesDlg::accept()
{
    for (const Part& part : parts_) {
        if (part.edit && (!part.edit->Commit() || !holdsNumber(*part.edit)))
            return part.edit->setFocus();
    }
    QDialog::accept();
}

} // namespace Marlox
