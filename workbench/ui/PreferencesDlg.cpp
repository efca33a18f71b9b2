#include "workbench/ui/PreferencesDlg.h"

#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace Marlox {

namespace {

/// A number without idle zeros: 24, 23.976.
class RateBox final : public QDoubleSpinBox {
protected:
    QString textFromValue(double value) const override
    {
        return locale().toString(value, 'f', QLocale::FloatingPointShortest);
    }
};

} // namespace

PreferencesDlg::PreferencesDlg(MarloxDoc& document, QWidget* parent)
    : QDialog(parent), document_(document), frameRate_(new RateBox), timeDisplay_(new QComboBox),
      proxy_(new QComboBox), autosave_(new QCheckBox), autosaveInterval_(new QSpinBox)
{
    setObjectName("preferences");
    setWindowTitle(tr("Preferences"));
    const Preferences& preferences = MarloxDoc::GetPreferences();

    frameRate_->setObjectName("framerate");
    frameRate_->setRange(1.0, 240.0);
    frameRate_->setDecimals(3);
    frameRate_->setValue(document.FrameRate());
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
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDlg::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(16);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void PreferencesDlg::OnOK()
{
    Preferences& preferences = MarloxDoc::GetPreferences();
    preferences.Set(TimeCodeEdit::PreferenceName, timeDisplay_->currentIndex() == 1);
    preferences.Set(PreferenceNames::ProxyDivisor, proxy_->currentData());
    preferences.Set(PreferenceNames::AutosaveOn, autosave_->isChecked());
    preferences.Set(PreferenceNames::AutosaveInterval, autosaveInterval_->value());
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
