#include "widgets/CustomCombo.h"

#include "widgets/ComboPopup.h"
#include "widgets/CustomComboAccessible.h"
#include "widgets/DrawnLook.h"

#include <algorithm>
#include <utility>

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int usualWidth = 160;
constexpr int smallestWidth = 48;
constexpr int lineHeight = 24;
constexpr int textInset = 4; // beyond what the style leaves

bool opensList(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
    switch (event.key()) {
    case Qt::Key_Space:
    case Qt::Key_F4:
        return held == Qt::NoModifier;
    case Qt::Key_Down:
    case Qt::Key_Up:
        return held == Qt::AltModifier;
    default:
        return false;
    }
}

} // namespace

CustomCombo::CustomCombo(QWidget* parent) : CustomController(parent)
{
    MakeCombosAccessible();
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

CustomCombo::~CustomCombo()
{
    if (popup_)
        popup_->disconnect(this);
}

void CustomCombo::SetEntries(std::vector<ComboEntry> entries)
{
    const auto same = [](const ComboEntry& a, const ComboEntry& b) {
        return a.text == b.text && a.id == b.id;
    };
    const auto& present = model_.Entries();
    if (std::equal(entries.begin(), entries.end(), present.begin(), present.end(), same))
        return;
    CloseList();
    model_ = ComboModel(std::move(entries));
    update();
}

QStringList CustomCombo::EntryTexts() const
{
    QStringList texts;
    for (const ComboEntry& entry : model_.Entries())
        texts += entry.text;
    return texts;
}

QString CustomCombo::Text() const
{
    return index_ == none ? tr("Unknown: %1").arg(stranger_) : model_.TextOf(index_);
}

void CustomCombo::SetIndex(int index)
{
    if (index == index_ || !model_.Has(index))
        return;
    Store(index, {});
    emit IndexChanged(index);
}

void CustomCombo::ShowIndex(int index)
{
    if (index != index_ && model_.Has(index))
        Store(index, {});
}

void CustomCombo::ShowStranger(const QString& value)
{
    if (index_ != none || value != stranger_)
        Store(none, value);
}

void CustomCombo::Store(int index, const QString& stranger)
{
    index_ = index;
    stranger_ = stranger;
    if (popup_)
        popup_->SetChosen(index);
    update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent told(this, Text());
        QAccessible::updateAccessibility(&told);
    }
}

void CustomCombo::SetStateColors(const QColor& line, const QColor& text, const QColor& ground)
{
    if (line == stateLine_ && text == stateText_ && ground == stateGround_)
        return;
    stateLine_ = line;
    stateText_ = text;
    stateGround_ = ground;
    update();
}

// The list ---------------------------------------------------------------------------------------

void CustomCombo::OpenList()
{
    if (popup_ || IsLocked() || !isEnabled() || !isVisible() || model_.Count() == 0)
        return;
    popup_ = new ComboPopup(*this, model_, index_);
    popup_->setAccessibleName(accessibleName());
    connect(popup_, &ComboPopup::Closed, this, &CustomCombo::CloseList);
    connect(popup_, &ComboPopup::EntryChosen, this, &CustomCombo::SetIndex);
    popup_->show();
    update();
    TellListState(*this);
}

void CustomCombo::CloseList()
{
    ComboPopup* popup = std::exchange(popup_, nullptr);
    if (!popup)
        return;
    popup->close();
    popup->deleteLater(); // perhaps from within one of its own handlers
    update();
    TellListState(*this);
}

void CustomCombo::LoseGesture()
{
    CloseList();
    CustomController::LoseGesture();
}

// Steps ------------------------------------------------------------------------------------------

std::optional<CustomCombo::Way> CustomCombo::WayOf(int key) const
{
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        return Way::Up;
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        return Way::Down;
    case Qt::Key_Home:
        return Way::Low;
    case Qt::Key_End:
        return Way::High;
    default:
        return std::nullopt;
    }
}

int CustomCombo::LevelOf(int key, Qt::KeyboardModifiers) const
{
    return key == Qt::Key_PageUp || key == Qt::Key_PageDown ? 2 : 1;
}

void CustomCombo::StepBy(Way way, int level)
{
    const int steps = level == 2 ? ComboModel::pageSteps : 1;
    switch (way) {
    case Way::Up:
        return SetIndex(model_.Stepped(index_, -steps));
    case Way::Down:
        return SetIndex(model_.Stepped(index_, steps));
    case Way::Low:
        return SetIndex(0);
    case Way::High:
        return SetIndex(model_.Count() - 1);
    }
}

// Events -----------------------------------------------------------------------------------------

bool CustomCombo::IsOurs(const QKeyEvent& event) const
{
    const bool command = event.modifiers() & (Qt::AltModifier | Qt::MetaModifier);
    return opensList(event) || ComboPopup::IsLetters(event) || (WayOf(event.key()) && !command);
}

bool CustomCombo::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (IsListOpen() || IsOurs(static_cast<QKeyEvent&>(*event))) {
            event->accept();
            return true;
        }
        break;
    case QEvent::FocusOut:
    case QEvent::WindowDeactivate:
        // What the list itself does to the keyboard: it comes back.
        if (IsListOpen())
            return QWidget::event(event);
        break;
    case QEvent::ToolTip:
        if (const QString text = ToolTipText(); !text.isEmpty()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, this);
            return true;
        }
        break;
    default:
        break;
    }
    return CustomController::event(event);
}

void CustomCombo::keyPressEvent(QKeyEvent* event)
{
    if (IsLocked()) {
        if (IsOurs(*event))
            emit Refused();
        else
            event->ignore(); // the window's
        return;
    }
    if (opensList(*event)) {
        OpenList();
    } else if (ComboPopup::IsLetters(*event)) {
        OpenList();
        if (popup_)
            popup_->Type(event->text());
    } else {
        CustomController::keyPressEvent(event);
    }
}

void CustomCombo::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return CustomController::mousePressEvent(event);
    const QPointer<CustomCombo> alive(this);
    setFocus(Qt::MouseFocusReason); // what had it may commit a value
    if (alive)
        LoseGesture(); // keys or a wheel not yet at rest
    if (!alive)
        return;
    if (IsLocked())
        emit Refused();
    else
        OpenList();
}

void CustomCombo::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        update();
    CustomController::changeEvent(event);
}

// Painting ---------------------------------------------------------------------------------------

QRect CustomCombo::TextRect() const
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    return style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this)
        .adjusted(textInset, 0, -textInset, 0);
}

QColor CustomCombo::TextColor() const
{
    if (!isEnabled())
        return palette().color(QPalette::Disabled, QPalette::ButtonText);
    if (IsStranger())
        return LookColor("System.ErrorTextColour", {255, 140, 140});
    return stateText_.isValid() ? stateText_
                                : palette().color(QPalette::Active, QPalette::ButtonText);
}

bool CustomCombo::IsTextCut() const
{
    return fontMetrics().horizontalAdvance(Text()) > TextRect().width();
}

QString CustomCombo::ToolTipText() const
{
    QStringList lines;
    if (IsStranger())
        lines += tr("\"%1\" is none of the entries. It stays until another value is chosen.")
                     .arg(stranger_);
    else if (IsTextCut())
        lines += Text();
    if (!Help().isEmpty())
        lines += Help();
    return lines.join(QLatin1Char('\n'));
}

void CustomCombo::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.subControls = QStyle::SC_ComboBoxFrame | QStyle::SC_ComboBoxArrow;
    if (IsLocked())
        option.state &= ~QStyle::State_Enabled; // flat: there is nothing to press
    if (IsListOpen())
        option.state |= QStyle::State_Sunken | QStyle::State_On;
    style()->drawComplexControl(QStyle::CC_ComboBox, &option, &painter, this);
    const QRect inner = rect().adjusted(1, 1, -1, -1);
    if (stateGround_.isValid() && isEnabled())
        painter.fillRect(inner, stateGround_);
    if (stateLine_.isValid()) {
        painter.setOpacity(isEnabled() ? 1.0 : dimmed);
        painter.fillRect(inner.left(), inner.bottom() - 1, inner.width(), 2, stateLine_);
        painter.setOpacity(1.0);
    }
    painter.setPen(TextColor());
    painter.drawText(TextRect(), int(Qt::AlignLeft | Qt::AlignVCenter) | int(Qt::TextSingleLine),
                     fontMetrics().elidedText(Text(), Qt::ElideRight, TextRect().width()));
}

QSize CustomCombo::sizeHint() const
{
    return {usualWidth, lineHeight};
}

QSize CustomCombo::minimumSizeHint() const
{
    return {smallestWidth, lineHeight};
}

} // namespace Marlox
