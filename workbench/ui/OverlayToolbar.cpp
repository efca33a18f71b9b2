#include "workbench/ui/OverlayToolbar.h"

#include "system/controls/Menu.h"
#include "system/resources/Resources.h"
#include "system/viewer/OverlayStage.h"

#include <algorithm>

#include <QActionGroup>
#include <QLayout>
#include <QMenu>
#include <QToolButton>

namespace Marlox {

namespace {

constexpr int iconPixels = 20;
constexpr int redrawPause = 40; // ms: what the pointer lights up changes the buttons rarely

/// Its first state off, the second on; none if the look has no such bitmap.
QIcon iconOf(const QString& name)
{
    QIcon icon;
    const auto add = [&icon, &name](const char* number, QIcon::State state) {
        const QByteArray full = name.toUtf8() + number;
        if (!LookPack::Global().Has(Resource::Kind::Bitmap, full.constData()))
            return;
        for (const double ratio : {1.0, 2.0})
            icon.addPixmap(ResDIB::PixmapOf(full.constData(), ratio), QIcon::Normal, state);
    };
    if (!name.isEmpty()) {
        add(".1", QIcon::Off);
        add(".2", QIcon::On);
    }
    return icon;
}

/// Whether both can be one button in different states.
bool isSameButton(const ToolbarButton& a, const ToolbarButton& b)
{
    return a.event == b.event && a.icon == b.icon && a.text == b.text && a.group == b.group &&
           a.checkable == b.checkable && a.popDown == b.popDown && a.clicks == b.clicks;
}

} // namespace

OverlayToolbar::OverlayToolbar(OverlayStage& stage, QWidget* parent)
    : QToolBar(parent), stage_(stage)
{
    setObjectName("overlaytoolbar");
    setAccessibleName(tr("Buttons of the overlay"));
    setIconSize(QSize(iconPixels, iconPixels));
    layout()->setSpacing(0); // the buttons of a shape are many
    setMovable(false);
    refresh_.setSingleShot(true);
    connect(&refresh_, &QTimer::timeout, this, &OverlayToolbar::Refresh);
    connect(&stage_, &OverlayStage::ToolbarChanged, this, [this] { RefreshSoon(0); });
    connect(&stage_, &OverlayStage::Changed, this, [this] { RefreshSoon(redrawPause); });
    Refresh();
}

void OverlayToolbar::RefreshSoon(int milliseconds)
{
    if (!stage_.IsPressed() && (!refresh_.isActive() || milliseconds < refresh_.remainingTime()))
        refresh_.start(milliseconds);
}

void OverlayToolbar::Refresh()
{
    PreviewControl* owner = stage_.ToolbarOwner();
    std::vector<ToolbarButton> now = owner ? ToolbarOf(*owner) : std::vector<ToolbarButton>();
    const bool same =
        std::equal(now.begin(), now.end(), buttons_.begin(), buttons_.end(), isSameButton);
    buttons_ = std::move(now);
    if (!same)
        Rebuild();
    for (std::size_t i = 0; i < buttons_.size(); ++i)
        ShowState(*shown_[i], buttons_[i]);
    setVisible(!buttons_.empty());
    ShowTipsOfMore();
}

void OverlayToolbar::Rebuild()
{
    shown_.clear();
    qDeleteAll(actions()); // with their pop-downs
    const QString* group = nullptr;
    for (const ToolbarButton& button : buttons_) {
        if (group && *group != button.group)
            addSeparator();
        group = &button.group;
        AddButton(button);
    }
}

void OverlayToolbar::resizeEvent(QResizeEvent* event)
{
    QToolBar::resizeEvent(event);
    ShowTipsOfMore();
}

/// Qt makes the menu of what does not fit when it is first needed.
void OverlayToolbar::ShowTipsOfMore()
{
    const auto* more = findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"));
    if (more && more->menu())
        more->menu()->setToolTipsVisible(true);
}

void OverlayToolbar::AddButton(const ToolbarButton& button)
{
    auto* action = new QAction(iconOf(button.icon), button.text, this);
    action->setCheckable(button.checkable);
    const u32 event = button.event;
    if (button.popDown)
        action->setMenu(MakePopDown(*action, button));
    if (!button.popDown || button.clicks)
        connect(action, &QAction::triggered, this, [this, event] { stage_.ClickButton(event); });
    if (button.popDown)
        connect(action, &QObject::destroyed, action->menu(), &QObject::deleteLater);
    addAction(action);
    shown_.push_back(action);
    auto* shown = static_cast<QToolButton*>(widgetForAction(action));
    shown->setObjectName("overlaytoolbar." + button.text);
    shown->setAccessibleName(button.text);
    if (button.popDown)
        shown->setPopupMode(button.clicks ? QToolButton::MenuButtonPopup
                                          : QToolButton::InstantPopup);
}

/// Its entries are asked for each time it opens. Of a button that does not fit, it is a submenu,
/// which can't be clicked: there the button is its first entry.
QMenu* OverlayToolbar::MakePopDown(QAction& action, const ToolbarButton& button)
{
    auto* menu = new QMenu(this);
    const u32 event = button.event;
    connect(menu, &QMenu::aboutToShow, this, [this, menu, event, &action, clicks = button.clicks] {
        menu->clear();
        qDeleteAll(menu->findChildren<QActionGroup*>(QString(), Qt::FindDirectChildrenOnly));
        qDeleteAll(menu->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
        if (clicks && !widgetForAction(&action)->isVisible()) {
            QAction* itself = menu->addAction(action.text(), &action, &QAction::trigger);
            itself->setCheckable(action.isCheckable());
            itself->setChecked(action.isChecked());
            itself->setToolTip(action.toolTip());
            menu->addSeparator();
        }
        Menu entries;
        if (stage_.FillMenu(entries, event))
            entries.Fill(*menu);
    });
    connect(menu, &QMenu::triggered, this, [this](QAction* chosen) {
        if (chosen->data().isValid()) // not the button itself
            stage_.RunMenu(chosen->data().toUInt());
    });
    return menu;
}

void OverlayToolbar::ShowState(QAction& action, const ToolbarButton& button) const
{
    action.setToolTip(button.reason.isEmpty() ? button.tip : button.tip + '\n' + button.reason);
    action.setEnabled(button.enabled);
    action.setChecked(button.checked); // a click has turned it over already
}

} // namespace Marlox
