#include "workbench/ui/ViewerBar.h"

#include "system/widgets/TimeCodeEdit.h"
#include "workbench/ui/Icons.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

namespace Marlox {

namespace {

TimeCodeEdit* valueEdit(const char* name, const QString& tip)
{
    auto* edit = new TimeCodeEdit;
    edit->setObjectName(name);
    edit->setToolTip(tip);
    edit->setAccessibleName(tip);
    edit->setFixedWidth(48);
    return edit;
}

QToolButton* iconButton(const char* icon, const char* name, const QString& tip)
{
    auto* button = new QToolButton;
    button->setIcon(WorkbenchIcon(icon));
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

QComboBox* choice(const char* name, const QString& tip)
{
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setToolTip(tip);
    box->setAccessibleName(tip);
    box->setFocusPolicy(Qt::TabFocus); // keys stay with what was worked on
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    box->setMinimumWidth(64); // in a narrow window
    box->view()->setTextElideMode(Qt::ElideNone);
    return box;
}

} // namespace

ViewerBar::ViewerBar(ViewerWidget& viewer, QWidget* parent)
    : QWidget(parent), viewer_(viewer), channels_(choice("channels", tr("Channels on show"))),
      views_(choice("views", tr("View of the colour configuration"))),
      exposure_(valueEdit("exposure", tr("Exposure of the view in stops"))),
      gamma_(valueEdit("gamma", tr("Gamma of the view"))),
      normalExposure_(iconButton("Exposure", "normalexposure", tr("Normal exposure (Ctrl+\\)"))),
      normalGamma_(iconButton("Gamma", "normalgamma", tr("Normal gamma"))),
      overlays_(iconButton("Overlays", "overlaysbutton", tr("Overlays of the selected tool (H)"))),
      checker_(
          iconButton("Checker", "checkerbutton", tr("Chequerboard behind transparent parts (K)"))),
      zoom_(new QToolButton)
{
    setObjectName("viewerbar");
    channels_->addItems(
        {tr("Colour"), tr("Red"), tr("Green"), tr("Blue"), tr("Alpha"), tr("Luminance")});
    gamma_->SetRange(0.05, 20.0);
    exposure_->SetRange(-20.0, 20.0);
    exposure_->SetStep(0.1);
    gamma_->SetStep(0.05);
    checker_->setCheckable(true);
    overlays_->setCheckable(true);
    FillViews();
    FillZoomMenu();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(4);
    row->addWidget(channels_);
    row->addSpacing(4);
    row->addWidget(views_);
    row->addStretch();
    row->addWidget(normalExposure_);
    row->addWidget(exposure_);
    row->addSpacing(4);
    row->addWidget(normalGamma_);
    row->addWidget(gamma_);
    row->addStretch();
    row->addWidget(overlays_);
    row->addWidget(checker_);
    row->addWidget(zoom_);
    Connect();
    ShowSettings();
}

/// With several displays each view is named with its own.
void ViewerBar::FillViews()
{
    const DisplayTransform& transform = viewer_.Transform();
    const QStringList displays = transform.Displays();
    for (const QString& display : displays) {
        for (const QString& view : transform.Views(display))
            views_->addItem(displays.size() > 1 ? tr("%1: %2").arg(display, view) : view,
                            QStringList{display, view});
    }
}

void ViewerBar::FillZoomMenu()
{
    zoom_->setObjectName("zoom");
    zoom_->setToolTip(tr("Zoom: F fits, 1 shows actual pixels, the wheel zooms at the pointer"));
    zoom_->setPopupMode(QToolButton::InstantPopup);
    zoom_->setAutoRaise(true);
    zoom_->setFixedWidth(72);
    auto* menu = new QMenu(zoom_);
    menu->addAction(tr("Fit"), &viewer_, &ViewerWidget::Fit);
    menu->addSeparator();
    for (const int percent : {25, 50, 100, 200, 400, 800})
        menu->addAction(tr("%1 %").arg(percent), &viewer_,
                        [this, percent] { viewer_.SetZoom(percent / 100.0); });
    zoom_->setMenu(menu);
}

void ViewerBar::Connect()
{
    connect(channels_, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { viewer_.SetChannelView(ChannelView(index)); });
    connect(views_, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        const QStringList chosen = views_->itemData(index).toStringList();
        DisplaySettings settings = viewer_.Settings();
        settings.display = chosen.value(0);
        settings.view = chosen.value(1);
        viewer_.SetSettings(settings);
    });
    connect(exposure_, &TimeCodeEdit::editingFinished, this,
            [this] { viewer_.SetExposure(exposure_->GetValue()); });
    connect(gamma_, &TimeCodeEdit::editingFinished, this,
            [this] { viewer_.SetGamma(gamma_->GetValue()); });
    connect(normalExposure_, &QToolButton::clicked, this, [this] { viewer_.SetExposure(0.0); });
    connect(normalGamma_, &QToolButton::clicked, this, [this] { viewer_.SetGamma(1.0); });
    connect(checker_, &QToolButton::clicked, &viewer_, &ViewerWidget::ShowChecker);
    connect(overlays_, &QToolButton::clicked, &viewer_, &ViewerWidget::ShowOverlays);
    connect(&viewer_, &ViewerWidget::SettingsChanged, this, &ViewerBar::ShowSettings);
    connect(&viewer_, &ViewerWidget::ViewChanged, this, &ViewerBar::ShowSettings);
}

void ViewerBar::ShowSettings()
{
    const DisplaySettings& settings = viewer_.Settings();
    channels_->setCurrentIndex(int(settings.channels));
    const DisplayTransform& transform = viewer_.Transform();
    const QString display =
        settings.display.isEmpty() ? transform.DefaultDisplay() : settings.display;
    const QString view = settings.view.isEmpty() ? transform.DefaultView(display) : settings.view;
    views_->setCurrentIndex(views_->findData(QStringList{display, view}));
    exposure_->SetValue(settings.exposure, 2);
    gamma_->SetValue(settings.gamma, 2);
    normalExposure_->setEnabled(settings.exposure != 0.0);
    normalGamma_->setEnabled(settings.gamma != 1.0);
    checker_->setChecked(viewer_.IsCheckerShown());
    overlays_->setChecked(viewer_.AreOverlaysShown());
    zoom_->setText(tr("%1 %").arg(viewer_.Zoom() * 100.0, 0, 'f', viewer_.Zoom() < 0.1 ? 1 : 0));
}

} // namespace Marlox
