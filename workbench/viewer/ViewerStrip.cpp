#include "workbench/viewer/ViewerStrip.h"

#include "workbench/viewer/ViewerWidget.h"

#include <cmath>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QToolButton>

namespace Marlox {

namespace {

/// The colour under the cursor as the viewer shows it.
class Swatch : public QWidget {
public:
    Swatch() { setFixedSize(16, 16); }
    void SetColor(const QColor& color)
    {
        color_ = color;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Dark));
        if (color_.isValid())
            painter.fillRect(rect().adjusted(1, 1, -1, -1), color_);
    }

private:
    QColor color_;
};

QString valueText(float value)
{
    if (std::isnan(value))
        return "nan";
    return QString::number(double(value), 'f', std::abs(value) < 100.0f ? 4 : 1);
}

QDoubleSpinBox* makeBox(const char* name, const QString& title, double low, double high,
                        double step)
{
    auto* box = new QDoubleSpinBox;
    box->setObjectName(name);
    box->setLocale(QLocale::c());
    box->setRange(low, high);
    box->setSingleStep(step);
    box->setToolTip(title);
    box->setAccessibleName(title);
    box->setFocusPolicy(Qt::ClickFocus);
    box->setKeyboardTracking(false);
    return box;
}

} // namespace

ViewerStrip::ViewerStrip(ViewerWidget& viewer, QWidget* parent)
    : QWidget(parent), viewer_(viewer), channels_(new QComboBox),
      exposure_(makeBox("exposure", tr("Exposure of the view in stops"), -30.0, 30.0, 0.5)),
      gamma_(makeBox("gamma", tr("Gamma of the view"), 0.05, 20.0, 0.1)), displays_(new QComboBox),
      checker_(new QToolButton), zoom_(new QToolButton), position_(new QLabel), values_(new QLabel),
      swatch_(new Swatch)
{
    setObjectName("viewerstrip");
    BuildSettings();
    BuildDisplays();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(8);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{channels_, exposure_, gamma_, displays_, checker_, zoom_})
        layout->addWidget(widget);
    layout->addStretch(1);
    for (QWidget* widget : std::initializer_list<QWidget*>{position_, values_, swatch_})
        layout->addWidget(widget);
    position_->setObjectName("position");
    values_->setObjectName("values");

    connect(&viewer, &ViewerWidget::SettingsChanged, this, &ViewerStrip::ShowSettings);
    connect(&viewer, &ViewerWidget::ViewChanged, this, &ViewerStrip::ShowZoom);
    connect(&viewer, &ViewerWidget::ProbeChanged, this, &ViewerStrip::ShowProbe);
    ShowSettings();
    ShowZoom();
    ShowProbe({});
}

void ViewerStrip::BuildSettings()
{
    channels_->setObjectName("channels");
    channels_->setToolTip(tr("Channels shown"));
    channels_->setAccessibleName(channels_->toolTip());
    channels_->setFocusPolicy(Qt::ClickFocus);
    channels_->addItems(
        {tr("Colour"), tr("Red"), tr("Green"), tr("Blue"), tr("Alpha"), tr("Luminance")});
    connect(channels_, qOverload<int>(&QComboBox::activated), &viewer_,
            [this](int index) { viewer_.SetChannelView(ChannelView(index)); });
    exposure_->setSuffix(tr(" stops"));
    connect(exposure_, qOverload<double>(&QDoubleSpinBox::valueChanged), &viewer_,
            &ViewerWidget::SetExposure);
    gamma_->setPrefix(tr("Gamma "));
    connect(gamma_, qOverload<double>(&QDoubleSpinBox::valueChanged), &viewer_,
            &ViewerWidget::SetGamma);

    checker_->setObjectName("checker");
    checker_->setText(tr("Chequer"));
    checker_->setToolTip(tr("Chequer behind transparent parts"));
    checker_->setCheckable(true);
    checker_->setAutoRaise(true);
    connect(checker_, &QToolButton::toggled, &viewer_, &ViewerWidget::ShowChecker);

    zoom_->setObjectName("zoom");
    zoom_->setAutoRaise(true);
    zoom_->setToolTip(tr("Zoom (F fits, 1 shows actual pixels)"));
    zoom_->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(zoom_);
    menu->addAction(tr("Fit"), &viewer_, &ViewerWidget::Fit);
    for (const int percent : {12, 25, 50, 100, 200, 400, 800})
        menu->addAction(
            QString("%1 %").arg(percent == 12 ? "12.5" : QString::number(percent)), &viewer_,
            [this, percent] { viewer_.SetZoom(percent == 12 ? 0.125 : percent / 100.0); });
    zoom_->setMenu(menu);
}

void ViewerStrip::BuildDisplays()
{
    displays_->setObjectName("displays");
    displays_->setToolTip(tr("Display and view of the colour configuration"));
    displays_->setAccessibleName(displays_->toolTip());
    displays_->setFocusPolicy(Qt::ClickFocus);
    for (const QString& display : viewer_.Transform().Displays()) {
        for (const QString& view : viewer_.Transform().Views(display))
            displays_->addItem(QString("%1 / %2").arg(display, view), QStringList{display, view});
    }
    displays_->setVisible(displays_->count() > 1); // nothing to choose otherwise
    connect(displays_, qOverload<int>(&QComboBox::activated), &viewer_, [this](int index) {
        const QStringList names = displays_->itemData(index).toStringList();
        DisplaySettings settings = viewer_.Settings();
        settings.display = names.value(0);
        settings.view = names.value(1);
        viewer_.SetSettings(settings);
    });
}

void ViewerStrip::ShowSettings()
{
    channels_->setCurrentIndex(int(viewer_.Channels()));
    exposure_->setValue(viewer_.Exposure());
    gamma_->setValue(viewer_.Gamma());
    checker_->setChecked(viewer_.IsCheckerShown());
}

void ViewerStrip::ShowZoom()
{
    const double percent = viewer_.Zoom() * 100.0;
    zoom_->setText(QString("%1 %").arg(percent, 0, 'f', percent < 10.0 ? 1 : 0));
}

void ViewerStrip::ShowProbe(const Probe& probe)
{
    auto* swatch = static_cast<Swatch*>(swatch_);
    position_->setText(probe.inView ? QString("%1, %2").arg(probe.x).arg(probe.y) : QString());
    swatch->SetColor({});
    if (!probe.hasPixel) {
        values_->clear();
        return;
    }
    values_->setText(QString("R %1   G %2   B %3   A %4")
                         .arg(valueText(probe.rgba[0]), valueText(probe.rgba[1]),
                              valueText(probe.rgba[2]), valueText(probe.rgba[3])));
    swatch->SetColor(probe.shown);
}

} // namespace Marlox
