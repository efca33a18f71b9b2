#include "workbench/ui/ViewerBar.h"

#include "system/widgets/TimeCodeEdit.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>

namespace Marlox {

namespace {

TimeCodeEdit* valueEdit(const char* name, const QString& tip)
{
    auto* edit = new TimeCodeEdit;
    edit->setObjectName(name);
    edit->setToolTip(tip);
    edit->setAccessibleName(tip);
    edit->setFixedWidth(56);
    return edit;
}

} // namespace

ViewerBar::ViewerBar(ViewerWidget& viewer, QWidget* parent)
    : QWidget(parent), viewer_(viewer), channels_(new QComboBox),
      exposure_(valueEdit("exposure", tr("Exposure of the view in stops"))),
      gamma_(valueEdit("gamma", tr("Gamma of the view"))), zoom_(new QLabel), readout_(new QLabel)
{
    setObjectName("viewerbar");
    channels_->setObjectName("channels");
    channels_->setToolTip(tr("Channels on show"));
    channels_->addItems(
        {tr("Colour"), tr("Red"), tr("Green"), tr("Blue"), tr("Alpha"), tr("Luminance")});
    channels_->setFocusPolicy(Qt::TabFocus);
    gamma_->SetRange(0.05, 20.0);
    exposure_->SetRange(-20.0, 20.0);
    zoom_->setObjectName("zoom");
    readout_->setObjectName("readout");
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(11);
    readout_->setFont(font);
    // Wide enough for every value, so that the strip does not move under the cursor.
    readout_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(8);
    row->addWidget(channels_);
    row->addWidget(new QLabel(tr("Exposure")));
    row->addWidget(exposure_);
    row->addWidget(new QLabel(tr("Gamma")));
    row->addWidget(gamma_);
    row->addWidget(zoom_);
    row->addWidget(readout_, 1);

    connect(channels_, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { viewer_.SetChannelView(ChannelView(index)); });
    connect(exposure_, &TimeCodeEdit::editingFinished, this,
            [this] { viewer_.SetExposure(exposure_->GetValue()); });
    connect(gamma_, &TimeCodeEdit::editingFinished, this,
            [this] { viewer_.SetGamma(gamma_->GetValue()); });
    connect(&viewer_, &ViewerWidget::SettingsChanged, this, &ViewerBar::ShowSettings);
    connect(&viewer_, &ViewerWidget::ViewChanged, this, &ViewerBar::ShowSettings);
    connect(&viewer_, &ViewerWidget::ProbeChanged, this, &ViewerBar::ShowProbe);
    ShowSettings();
}

void ViewerBar::ShowSettings()
{
    channels_->setCurrentIndex(int(viewer_.Channels()));
    exposure_->SetValue(viewer_.Exposure(), 2);
    gamma_->SetValue(viewer_.Gamma(), 2);
    zoom_->setText(tr("%1 %").arg(viewer_.Zoom() * 100.0, 0, 'f', viewer_.Zoom() < 0.1 ? 1 : 0));
}

void ViewerBar::ShowProbe(const Probe& probe)
{
    if (!probe.inView) {
        readout_->clear();
        return;
    }
    const QString at = QString("x %1  y %2").arg(probe.x, 5).arg(probe.y, 5);
    const auto part = [&probe](int i) { return QString::number(double(probe.rgba[i]), 'f', 4); };
    readout_->setText(
        probe.hasPixel
            ? QString("%1   R %2  G %3  B %4  A %5").arg(at, part(0), part(1), part(2), part(3))
            : at);
}

} // namespace Marlox
