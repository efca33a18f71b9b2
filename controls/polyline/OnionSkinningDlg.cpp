#include "controls/polyline/OnionSkinningDlg.h"

#include "controls/polyline/PolyNumbers.h"
#include "system/resources/LookStyle.h"
#include "system/resources/Resources.h"
#include "system/widgets/CustomCheckBox.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>

namespace Marlox {

namespace {

const ResData layoutResource("Dialogs.OnionSkin.Layout");

constexpr double smallestStep = 0.01; // frames
constexpr double largestStep = 100000.0;

} // namespace

OnionSkinningDlg::OnionSkinningDlg(const OnionSkinSettings& settings, double framesPerSecond,
                                   QWidget* parent)
    : MxDialog(parent ? parent : QApplication::activeWindow()), settings_(settings)
{
    setObjectName("OnionSkinningDlg");
    setWindowTitle(tr("Onion Skin"));
    // In the order in which the keyboard goes through them.
    count_ = AddEdit("m_LabelSkinCount", "m_EditSkinCount", tr("Skin Count:"),
                     tr("How many skins on each side, 0 to %1.").arg(OnionSkinSettings::maxCount));
    step_ = AddEdit("m_LabelSkinStep", "m_EditSkinStep", tr("Skin Step:"),
                    tr("Frames from one skin to the next."));
    for (TimeCodeEdit* edit : {count_, step_})
        edit->SetTimeMode(true, framesPerSecond);
    keySkin_ = AddCheck("m_CheckKeySkin", tr("Key Skin"),
                        tr("The skins are the shape's keys, whatever the step."),
                        &OnionSkinningDlg::OnClickKeySkin);
    AddRange();
    anchor_ = AddCheck("m_CheckOnionAnchor", tr("Onion Anchor"),
                       tr("The skins stay around the anchor time instead of the current time."),
                       &OnionSkinningDlg::OnClickOnionAnchor);
    pointPlot_ = AddCheck("m_CheckPointPlot", tr("Point Plot"),
                          tr("Draws the skins' points without the curve."),
                          &OnionSkinningDlg::OnClickPointPlot);
    showHull_ =
        AddCheck("m_CheckShowHull", tr("Show Hull"), tr("Draws the polygon of the skins' points."),
                 &OnionSkinningDlg::OnClickShowHull);
    setTime_ = AddCheck("m_CheckSetCurrentTime", tr("Allow Clicking Skin to Set Current Time"),
                        tr("A click on a skin goes to its time."),
                        &OnionSkinningDlg::OnClickSetCurrentTime);
    MakeOKCancel("m_OKCancel");
    SetUp();
    LoadLayout(layoutResource.Name());
    count_->setFocus();
}

TimeCodeEdit* OnionSkinningDlg::AddEdit(const char* label, const char* edit, const QString& text,
                                        const QString& help)
{
    auto* name = new QLabel(text, this);
    name->setObjectName(label);
    name->setIndent(checkRingRoom);
    auto* field = new TimeCodeEdit(this);
    field->setObjectName(edit);
    field->setAccessibleName(QString(text).remove(u':'));
    field->setToolTip(help);
    name->setBuddy(field);
    return field;
}

CustomCheckBox* OnionSkinningDlg::AddCheck(const char* name, const QString& text,
                                           const QString& help, void (OnionSkinningDlg::*slot)())
{
    auto* check = new CustomCheckBox(text, this);
    check->setObjectName(name);
    check->setToolTip(help);
    connect(check, &CustomCheckBox::CheckChanged, this, slot);
    return check;
}

void OnionSkinningDlg::AddRange()
{
    auto* box = new QGroupBox(tr("Skin Range"), this);
    box->setObjectName("m_GroupSkinRange");
    range_ = new QButtonGroup(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(checkRingRoom, 0, 0, 0);
    row->setSpacing(16);
    const auto add = [&](const char* name, const QString& text, const QString& help, int id) {
        auto* radio = new QRadioButton(text, box);
        radio->setObjectName(name);
        radio->setToolTip(help);
        range_->addButton(radio, id);
        row->addWidget(radio);
    };
    add("m_RadioSkinPrev", tr("Prev"), tr("Skins before it alone."), OnionSkinSettings::Prev);
    add("m_RadioSkinNext", tr("Next"), tr("Skins after it alone."), OnionSkinSettings::Next);
    add("m_RadioSkinAll", tr("All"), tr("Skins on both sides."), OnionSkinSettings::All);
    row->addStretch();
    connect(range_, &QButtonGroup::idClicked, this, &OnionSkinningDlg::OnRadioButton);
}

void OnionSkinningDlg::SetUp()
{
    const OnionSkinSettings given = settings_;
    range_->button(given.SkinRange())->setChecked(true);
    anchor_->setChecked(given.anchor);
    setTime_->setChecked(given.clickSetsTime);
    keySkin_->setChecked(given.Has(OnionSkinSettings::KeySkin));
    pointPlot_->setChecked(given.Has(OnionSkinSettings::PointPlot));
    showHull_->setChecked(given.Has(OnionSkinSettings::ShowHull));
    count_->SetInteger(true);
    count_->SetRange(0, OnionSkinSettings::maxCount);
    count_->SetValue(given.count);
    step_->SetRange(smallestStep, largestStep);
    // As many decimals as a number of single precision has.
    step_->SetValue(QString::number(double(given.step), 'g', 7).toDouble());
    connect(count_, &TimeCodeEdit::editingFinished, this, &OnionSkinningDlg::OnChangeEditSkinCount);
    connect(step_, &TimeCodeEdit::editingFinished, this, &OnionSkinningDlg::OnChangeEditSkinStep);
    ShowStepUse();
}

void OnionSkinningDlg::ShowStepUse()
{
    const bool used = !settings_.Has(OnionSkinSettings::KeySkin);
    step_->setEnabled(used);
    findChild<QLabel*>("m_LabelSkinStep")->setEnabled(used);
}

void OnionSkinningDlg::OnChangeEditSkinCount()
{
    if (!HoldsNumber(*count_))
        return;
    settings_.count = unsigned(count_->GetValue());
    emit Changed();
}

void OnionSkinningDlg::OnChangeEditSkinStep()
{
    if (!HoldsNumber(*step_))
        return;
    settings_.step = float(step_->GetValue());
    emit Changed();
}

void OnionSkinningDlg::OnRadioButton(int id)
{
    settings_.SetRange(OnionSkinSettings::Range(id));
    emit Changed();
}

void OnionSkinningDlg::OnClickKeySkin()
{
    settings_.Set(OnionSkinSettings::KeySkin, keySkin_->isChecked());
    ShowStepUse();
    emit Changed();
}

void OnionSkinningDlg::OnClickOnionAnchor()
{
    settings_.anchor = anchor_->isChecked();
    emit Changed();
}

void OnionSkinningDlg::OnClickPointPlot()
{
    settings_.Set(OnionSkinSettings::PointPlot, pointPlot_->isChecked());
    emit Changed();
}

void OnionSkinningDlg::OnClickShowHull()
{
    settings_.Set(OnionSkinSettings::ShowHull, showHull_->isChecked());
    emit Changed();
}

void OnionSkinningDlg::OnClickSetCurrentTime()
{
    settings_.clickSetsTime = setTime_->isChecked();
    emit Changed();
}

void OnionSkinningDlg::accept()
{
    for (TimeCodeEdit* edit : {count_, step_}) {
        if (edit->isEnabled() && !TakesNumber(*edit))
            return;
    }
    QDialog::accept();
}

} // namespace Marlox
