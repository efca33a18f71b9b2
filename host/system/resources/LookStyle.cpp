#include "system/resources/LookStyle.h"

#include "system/resources/LookStyle_p.h"
#include "system/resources/Resources.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int fontPixels = 12;
constexpr int rowHeight = 24; // of everything that holds one line of text

struct Role {
    const char* name;
    QColor LookColors::*color;
    MxColor fallback;
};

const Role roles[] = {
    {"System.BorderColour", &LookColors::border, {20, 20, 20}},
    {"System.FieldColour", &LookColors::field, {29, 29, 29}},
    {"System.FieldAlternateColour", &LookColors::fieldAlternate, {33, 33, 33}},
    {"System.WindowColour", &LookColors::window, {41, 41, 41}},
    {"System.HeaderColour", &LookColors::header, {48, 48, 48}},
    {"System.ButtonColour", &LookColors::button, {62, 62, 62}},
    {"System.ButtonHoverColour", &LookColors::buttonHover, {74, 74, 74}},
    {"System.ButtonPressedColour", &LookColors::buttonPressed, {34, 34, 34}},
    {"System.PopupColour", &LookColors::popup, {34, 34, 34}},
    {"System.TooltipColour", &LookColors::tooltip, {62, 62, 62}},
    {"System.LineColour", &LookColors::line, {72, 72, 72}},
    {"System.ScrollColour", &LookColors::scroll, {88, 88, 88}},
    {"System.ScrollHoverColour", &LookColors::scrollHover, {116, 116, 116}},
    {"System.TextColour", &LookColors::text, {190, 190, 190}},
    {"System.BrightTextColour", &LookColors::brightText, {228, 228, 228}},
    {"System.FieldTextColour", &LookColors::fieldText, {216, 216, 216}},
    {"System.PlaceholderTextColour", &LookColors::placeholderText, {138, 138, 138}},
    {"System.DisabledTextColour", &LookColors::disabledText, {110, 110, 110}},
    {"System.LinkTextColour", &LookColors::linkText, {132, 184, 236}},
    {"System.AccentColour", &LookColors::accent, {92, 158, 220}},
    {"System.AccentTextColour", &LookColors::accentText, {12, 16, 20}},
    {"System.SelectionColour", &LookColors::selection, {44, 84, 122}},
    {"System.SelectionTextColour", &LookColors::selectionText, {255, 255, 255}},
};

struct Metric {
    QStyle::PixelMetric metric;
    int pixels;
};

constexpr Metric metrics[] = {
    {QStyle::PM_DefaultFrameWidth, 1},
    {QStyle::PM_ComboBoxFrameWidth, 1},
    {QStyle::PM_SpinBoxFrameWidth, 1},
    {QStyle::PM_ButtonMargin, 8},
    {QStyle::PM_ButtonDefaultIndicator, 0},
    {QStyle::PM_ButtonShiftHorizontal, 0},
    {QStyle::PM_ButtonShiftVertical, 0},
    {QStyle::PM_ButtonIconSize, 16},
    {QStyle::PM_MessageBoxIconSize, 32},
    {QStyle::PM_SmallIconSize, 16},
    {QStyle::PM_ToolBarIconSize, 16},
    {QStyle::PM_ListViewIconSize, 16},
    {QStyle::PM_TabBarIconSize, 16},
    {QStyle::PM_IndicatorWidth, 14},
    {QStyle::PM_IndicatorHeight, 14},
    {QStyle::PM_ExclusiveIndicatorWidth, 14},
    {QStyle::PM_ExclusiveIndicatorHeight, 14},
    {QStyle::PM_CheckBoxLabelSpacing, 8},
    {QStyle::PM_RadioButtonLabelSpacing, 8},
    {QStyle::PM_ScrollBarExtent, 10},
    {QStyle::PM_ScrollBarSliderMin, 24},
    {QStyle::PM_ScrollView_ScrollBarSpacing, 0},
    {QStyle::PM_SplitterWidth, 5},
    {QStyle::PM_DockWidgetSeparatorExtent, 5},
    {QStyle::PM_DockWidgetTitleMargin, 4},
    {QStyle::PM_DockWidgetTitleBarButtonMargin, 4},
    {QStyle::PM_MenuPanelWidth, 1},
    {QStyle::PM_MenuHMargin, 0},
    {QStyle::PM_MenuVMargin, 4},
    {QStyle::PM_MenuBarItemSpacing, 0},
    {QStyle::PM_MenuBarPanelWidth, 0},
    {QStyle::PM_MenuBarHMargin, 4},
    {QStyle::PM_MenuBarVMargin, 0},
    {QStyle::PM_ToolTipLabelFrameWidth, 5},
    {QStyle::PM_ToolBarItemSpacing, 4},
    {QStyle::PM_ToolBarItemMargin, 4},
    {QStyle::PM_ToolBarFrameWidth, 0},
    {QStyle::PM_ToolBarSeparatorExtent, 9},
    {QStyle::PM_ToolBarHandleExtent, 8},
    {QStyle::PM_TabBarTabHSpace, 24},
    {QStyle::PM_TabBarTabVSpace, 8},
    {QStyle::PM_TabBarTabOverlap, 0},
    {QStyle::PM_TabBarBaseOverlap, 0},
    {QStyle::PM_TabBarBaseHeight, 1},
    {QStyle::PM_TabBarTabShiftHorizontal, 0},
    {QStyle::PM_TabBarTabShiftVertical, 0},
    {QStyle::PM_HeaderMargin, 4},
    {QStyle::PM_HeaderMarkSize, 8},
    {QStyle::PM_SliderThickness, 16},
    {QStyle::PM_SliderControlThickness, 15},
    {QStyle::PM_SliderLength, 9},
    {QStyle::PM_FocusFrameHMargin, 2},
    {QStyle::PM_FocusFrameVMargin, 1},
    {QStyle::PM_LayoutLeftMargin, 8},
    {QStyle::PM_LayoutTopMargin, 8},
    {QStyle::PM_LayoutRightMargin, 8},
    {QStyle::PM_LayoutBottomMargin, 8},
    {QStyle::PM_LayoutHorizontalSpacing, 8},
    {QStyle::PM_LayoutVerticalSpacing, 8},
    {QStyle::PM_TreeViewIndentation, 16},
    {QStyle::PM_MaximumDragDistance, -1}, // a drag never snaps back
};

struct Hint {
    QStyle::StyleHint hint;
    int value;
};

constexpr Hint hints[] = {
    {QStyle::SH_EtchDisabledText, 0},
    {QStyle::SH_DialogButtonBox_ButtonsHaveIcons, 0},
    {QStyle::SH_ScrollBar_Transient, 0},
    {QStyle::SH_ScrollBar_MiddleClickAbsolutePosition, 1},
    {QStyle::SH_ComboBox_Popup, 0},
    {QStyle::SH_ItemView_ShowDecorationSelected, 1},
    {QStyle::SH_ItemView_ActivateItemOnSingleClick, 0},
    {QStyle::SH_Menu_SloppySubMenus, 1},
    {QStyle::SH_Menu_SupportsSections, 1},
    {QStyle::SH_MenuBar_MouseTracking, 1},
    {QStyle::SH_TabBar_ElideMode, Qt::ElideRight},
    {QStyle::SH_TitleBar_NoBorder, 1},
    {QStyle::SH_ToolTipLabel_Opacity, 255},
    {QStyle::SH_UnderlineShortcut, 1},
    {QStyle::SH_Widget_Animate, 0}, // nothing moves by itself beside an image that is judged
};

struct StandardIcon {
    QStyle::StandardPixmap icon;
    const char* name;
};

constexpr StandardIcon standardIcons[] = {
    {QStyle::SP_ArrowBack, "Icons.System.Back"},
    {QStyle::SP_ArrowForward, "Icons.System.Forward"},
    {QStyle::SP_ArrowLeft, "Icons.System.Back"},
    {QStyle::SP_ArrowRight, "Icons.System.Forward"},
    {QStyle::SP_DirClosedIcon, "Icons.System.Folder"},
    {QStyle::SP_DirHomeIcon, "Icons.System.Folder"},
    {QStyle::SP_DirIcon, "Icons.System.Folder"},
    {QStyle::SP_DirLinkIcon, "Icons.System.Folder"},
    {QStyle::SP_DirOpenIcon, "Icons.System.Folder"},
    {QStyle::SP_DockWidgetCloseButton, "Icons.System.Close"},
    {QStyle::SP_DriveHDIcon, "Icons.System.Drive"},
    {QStyle::SP_ComputerIcon, "Icons.System.Drive"},
    {QStyle::SP_FileDialogDetailedView, "Icons.System.Details"},
    {QStyle::SP_FileDialogListView, "Icons.System.List"},
    {QStyle::SP_FileDialogNewFolder, "Icons.System.NewFolder"},
    {QStyle::SP_FileDialogToParent, "Icons.System.Parent"},
    {QStyle::SP_FileIcon, "Icons.System.File"},
    {QStyle::SP_FileLinkIcon, "Icons.System.File"},
    {QStyle::SP_LineEditClearButton, "Icons.System.Close"},
    {QStyle::SP_MessageBoxCritical, "Icons.System.Error"},
    {QStyle::SP_MessageBoxInformation, "Icons.System.Information"},
    {QStyle::SP_MessageBoxQuestion, "Icons.System.Question"},
    {QStyle::SP_MessageBoxWarning, "Icons.System.Warning"},
    {QStyle::SP_TitleBarCloseButton, "Icons.System.Close"},
    {QStyle::SP_TitleBarNormalButton, "Icons.System.Float"},
    {QStyle::SP_ToolBarHorizontalExtensionButton, "Icons.System.More"},
    {QStyle::SP_ToolBarVerticalExtensionButton, "Icons.System.More"},
};

const char* StandardIconName(QStyle::StandardPixmap icon)
{
    for (const StandardIcon& row : standardIcons) {
        if (row.icon == icon) {
            return row.name;
        }
    }
    return nullptr;
}

} // namespace

QIcon LookIcon(const char* name)
{
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        icon.addPixmap(ResDIB::PixmapOf(name, ratio));
    }
    return icon;
}

LookColors LookColors::FromPack()
{
    LookColors colors;
    for (const Role& role : roles) {
        colors.*role.color = LookPack::Global().Color(role.name, role.fallback).ToQColor();
    }
    return colors;
}

QPalette LookColors::Palette() const
{
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const QColor& color) {
        palette.setColor(QPalette::All, role, color);
    };
    set(QPalette::Window, window);
    set(QPalette::WindowText, text);
    set(QPalette::Base, field);
    set(QPalette::AlternateBase, fieldAlternate);
    set(QPalette::Text, fieldText);
    set(QPalette::PlaceholderText, placeholderText);
    set(QPalette::Button, button);
    set(QPalette::ButtonText, brightText);
    set(QPalette::BrightText, selectionText);
    set(QPalette::ToolTipBase, tooltip);
    set(QPalette::ToolTipText, brightText);
    set(QPalette::Highlight, selection);
    set(QPalette::HighlightedText, selectionText);
    set(QPalette::Link, linkText);
    set(QPalette::LinkVisited, linkText);
    set(QPalette::Light, buttonHover);
    set(QPalette::Midlight, button);
    set(QPalette::Mid, line);
    set(QPalette::Dark, border);
    set(QPalette::Shadow, border);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, line);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
        palette.setColor(QPalette::Disabled, role, disabledText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, window);
    palette.setColor(QPalette::Disabled, QPalette::Button, window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, button);
    return palette;
}

LookStyle::LookStyle(const LookColors& colors)
    : QProxyStyle(QStringLiteral("fusion")), colors_(colors)
{
}

void LookStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QTabBar*>(widget) || qobject_cast<QLineEdit*>(widget) ||
        qobject_cast<QAbstractSpinBox*>(widget)) {
        widget->setAttribute(Qt::WA_Hover);
    } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        LookPaint::UseRoomyRows(*combo);
    }
}

int LookStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                           const QWidget* widget) const
{
    for (const Metric& row : metrics) {
        if (row.metric == metric) {
            return row.pixels;
        }
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int LookStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const
{
    for (const Hint& row : hints) {
        if (row.hint == hint) {
            return row.value;
        }
    }
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

QSize LookStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                  const QSize& contents, const QWidget* widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    switch (type) {
    case CT_PushButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool wordy = button && !button->text.isEmpty();
        return {std::max(contents.width() + 24, wordy ? 80 : rowHeight), rowHeight};
    }
    case CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (item && item->menuItemType == QStyleOptionMenuItem::Separator && item->text.isEmpty()) {
            return {contents.width(), 9};
        }
        const int shortcut = item && item->text.contains(QLatin1Char('\t')) ? 24 : 0;
        return {contents.width() + 28 + 24 + shortcut, rowHeight};
    }
    case CT_MenuBarItem:
        return {contents.width() + 16, rowHeight};
    case CT_ToolButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        const bool arrow = button && button->features & QStyleOptionToolButton::HasMenu;
        return contents + QSize(arrow ? 24 : 8, 8); // the label stays in the middle
    }
    case CT_HeaderSection:
    case CT_ComboBox:
    case CT_SpinBox:
    case CT_LineEdit:
    case CT_ItemViewItem:
        return {size.width(), std::max(size.height(), rowHeight)};
    case CT_TabBarTab:
        return {size.width(), std::max(size.height(), 28)};
    default:
        return size;
    }
}

QIcon LookStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                              const QWidget* widget) const
{
    const char* name = StandardIconName(icon);
    return name ? LookIcon(name) : QProxyStyle::standardIcon(icon, option, widget);
}

QPixmap LookStyle::standardPixmap(StandardPixmap icon, const QStyleOption* option,
                                  const QWidget* widget) const
{
    const char* name = StandardIconName(icon);
    const double ratio = widget ? widget->devicePixelRatioF() : qApp->devicePixelRatio();
    return name ? ResDIB::PixmapOf(name, ratio) : QProxyStyle::standardPixmap(icon, option, widget);
}

/// No tint of the selection on icons, which would be a hue; disabled ones recede.
QPixmap LookStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                       const QStyleOption*) const
{
    if (mode != QIcon::Disabled) {
        return pixmap;
    }
    QPixmap faded(pixmap.size());
    faded.setDevicePixelRatio(pixmap.devicePixelRatioF());
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(0.35);
    painter.drawPixmap(0, 0, pixmap);
    return faded;
}

void ApplyLook(QApplication& application)
{
    const LookColors colors = LookColors::FromPack();
    application.setStyle(new LookStyle(colors));
    const QPalette palette = colors.Palette();
    application.setPalette(palette);
    QToolTip::setPalette(palette);
    QFont font = QApplication::font();
    font.setPixelSize(fontPixels);
    QApplication::setFont(font);
    QToolTip::setFont(font);
}

} // namespace Marlox
