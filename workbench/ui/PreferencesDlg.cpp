#include "workbench/ui/PreferencesDlg.h"

#include "system/color/ColorPreferences.h"
#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace Marlox {

namespace {

/// A number without idle zeros: 24, 23.976.
class PlainBox final : public QDoubleSpinBox {
protected:
    QString textFromValue(double value) const override
    {
        return locale().toString(value, 'f', QLocale::FloatingPointShortest);
    }
};

constexpr int spacing = 16;

/// Fields of several forms one below the other start at the same place.
void alignFields(const QWidget& dialog)
{
    const QList<QLabel*> labels = dialog.findChildren<QLabel*>();
    int widest = 0;
    for (const QLabel* label : labels)
        widest = std::max(widest, label->sizeHint().width());
    for (QLabel* label : labels)
        label->setMinimumWidth(widest);
}

} // namespace

PreferencesDlg::PreferencesDlg(MarloxDoc& document, QWidget* parent)
    : QDialog(parent), document_(document), frameRate_(new PlainBox), timeDisplay_(new QComboBox),
      proxy_(new QComboBox), autosave_(new QCheckBox), autosaveInterval_(new QSpinBox),
      colorMode_(new QComboBox), gammaCorrect_(new QCheckBox), displayGamma_(new PlainBox)
{
    setObjectName("preferences");
    setWindowTitle(tr("Preferences"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDlg::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing, spacing, spacing, spacing);
    layout->setSpacing(spacing);
    layout->addLayout(MakeGeneralForm());
    layout->addWidget(MakeColorGroup());
    layout->addWidget(buttons);
    ensurePolished(); // with the font that it has on the screen
    alignFields(*this);
}

QFormLayout* PreferencesDlg::MakeGeneralForm()
{
    const Preferences& preferences = MarloxDoc::GetPreferences();
    frameRate_->setObjectName("framerate");
    frameRate_->setRange(1.0, 240.0);
    frameRate_->setDecimals(3);
    frameRate_->setValue(document_.FrameRate());
    timeDisplay_->setObjectName("timedisplay");
    timeDisplay_->addItems({tr("Frames"), tr("Hours, minutes, seconds, frames")});
    timeDisplay_->setCurrentIndex(preferences.Get(TimeCodeEdit::PreferenceName).toBool() ? 1 : 0);
    proxy_->setObjectName("proxy");
    proxy_->setToolTip(
        tr("While a value is dragged the picture is rendered as finely as keeps up with "
           "the hand, but not more coarsely than this."));
    for (const int divisor : {1, 2, 4, 8})
        proxy_->addItem(divisor == 1 ? tr("Full resolution") : tr("1/%1").arg(divisor), divisor);
    proxy_->setCurrentIndex(
        proxy_->findData(preferences.Get(PreferenceNames::ProxyDivisor, 4).toInt()));
    autosave_->setObjectName("autosave");
    autosave_->setText(tr("Keep a recovery copy"));
    autosave_->setChecked(preferences.Get(PreferenceNames::AutosaveOn, true).toBool());
    autosaveInterval_->setObjectName("autosaveinterval");
    autosaveInterval_->setRange(5, 3600);
    autosaveInterval_->setSuffix(tr(" s"));
    autosaveInterval_->setValue(preferences.Get(PreferenceNames::AutosaveInterval, 30).toInt());

    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("Frames a second"), frameRate_);
    form->addRow(tr("Show times as"), timeDisplay_);
    form->addRow(tr("Lowest resolution while dragging"), proxy_);
    form->addRow(QString(), autosave_);
    form->addRow(tr("Renew the copy every"), autosaveInterval_);
    autosaveInterval_->setEnabled(autosave_->isChecked());
    connect(autosave_, &QCheckBox::toggled, autosaveInterval_, &QWidget::setEnabled);
    return form;
}

QGroupBox* PreferencesDlg::MakeColorGroup()
{
    const Preferences& preferences = MarloxDoc::GetPreferences();
    colorMode_->setObjectName("colormode");
    colorMode_->addItems({tr("0 to 1"), tr("0 to 255"), tr("0 to 65535")}); // in order of the modes
    const int mode = preferences.Get(PREF_ColorMode).toInt();
    colorMode_->setCurrentIndex(mode == 1 || mode == 2 ? mode : 0);
    gammaCorrect_->setObjectName("gammacorrect");
    gammaCorrect_->setText(tr("Colour dialog uses the display's gamma"));
    gammaCorrect_->setToolTip(tr("The colour dialog shows light as this display does, and what is "
                                 "chosen in it becomes light again."));
    gammaCorrect_->setChecked(preferences.Get(PREF_GammaCorrectControls, false).toBool());
    displayGamma_->setObjectName("displaygamma");
    displayGamma_->setRange(0.1, 10.0);
    displayGamma_->setSingleStep(0.1);
    displayGamma_->setValue(
        preferences.Get(PREF_GammaCorrectDisplayGamma, usualDisplayGamma).toDouble());
    displayGamma_->setEnabled(gammaCorrect_->isChecked());
    connect(gammaCorrect_, &QCheckBox::toggled, displayGamma_, &QWidget::setEnabled);

    auto* group = new QGroupBox(tr("Colour"));
    auto* form = new QFormLayout(group);
    form->setContentsMargins(0, spacing / 2, 0, 0);
    form->setSpacing(spacing);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("Write components from"), colorMode_);
    form->addRow(QString(), gammaCorrect_);
    form->addRow(tr("Gamma of the display"), displayGamma_);
    return group;
}

void PreferencesDlg::OnOK()
{
    Preferences& preferences = MarloxDoc::GetPreferences();
    preferences.Set(TimeCodeEdit::PreferenceName, timeDisplay_->currentIndex() == 1);
    preferences.Set(PreferenceNames::ProxyDivisor, proxy_->currentData());
    preferences.Set(PreferenceNames::AutosaveOn, autosave_->isChecked());
    preferences.Set(PreferenceNames::AutosaveInterval, autosaveInterval_->value());
    preferences.Set(PREF_ColorMode, colorMode_->currentIndex());
    preferences.Set(PREF_GammaCorrectControls, gammaCorrect_->isChecked());
    preferences.Set(PREF_GammaCorrectDisplayGamma, displayGamma_->value());
    if (frameRate_->value() != document_.FrameRate())
        document_.SetFrameRate(frameRate_->value());
    ApplyPreferences(document_);
    accept();
}

QString RecoveryFolder()
{
    const QString own =
        qEnvironmentVariable("MARLOX_CONFIG"); // preferences kept apart: so are copies
    if (!own.isEmpty())
        return own + "/recovery";
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/recovery";
}

void ApplyPreferences(MarloxDoc& document)
{
    const Preferences& preferences = MarloxDoc::GetPreferences();
    document.GetRenderer().SetProxyDivisor(
        preferences.Get(PreferenceNames::ProxyDivisor, 4).toInt());
    if (preferences.Get(PreferenceNames::AutosaveOn, true).toBool())
        document.StartAutosave(RecoveryFolder(),
                               preferences.Get(PreferenceNames::AutosaveInterval, 30).toInt());
    else
        document.StopAutosave();
}

} // namespace Marlox
