// What the user does to the heading of a nest.

#include "controls/inspector/LabelControl.h"

#include "system/controls/ControlWnd.h"
#include "system/controls/Menu.h"
#include "widgets/CustomNestButton.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace Marlox {

namespace {

enum MenuEntry : unsigned int {
    ToggleEntry = InputControl::FirstOwnMenuId,
    FoldAllEntry,
    OpenAllEntry
};

bool endsPress(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::UngrabMouse:
    case QEvent::WindowBlocked:
    case QEvent::WindowDeactivate:
    case QEvent::EnabledChange:
        return true;
    default:
        return false;
    }
}

} // namespace

void LabelControl::Do(Command command, bool all)
{
    const bool open = command == Command::Open || (command == Command::Toggle && !nestOpen_);
    const auto alive = Ref<LabelControl>::Share(this);
    if (all)
        SetAllNestsOpen(open);
    else
        SetNestOpen(open);
    if (open && IsOpen())
        Window()->Reveal(*this);
}

void LabelControl::ApplyButton()
{
    if (!button_)
        return;
    using State = CustomNestButton::State;
    button_->Show(nestOpen_, !isEnabled() ? State::Disabled
                             : !hovered_  ? State::Normal
                             : pressed_   ? State::Pressed
                                          : State::Hovered);
}

// Keyboard ---------------------------------------------------------------------------------------

LabelControl::Command LabelControl::CommandOf(const QKeyEvent& event)
{
    constexpr struct {
        int key;
        Command command;
    } keys[] = {{Qt::Key_Space, Command::Toggle},
                {Qt::Key_Return, Command::Toggle},
                {Qt::Key_Enter, Command::Toggle},
                {Qt::Key_Left, Command::Fold},
                {Qt::Key_Right, Command::Open}};
    for (const auto& [key, command] : keys) {
        const auto others = command == Command::Toggle
                                ? Qt::AltModifier | Qt::MetaModifier
                                : Qt::AltModifier | Qt::MetaModifier | Qt::ControlModifier;
        if (event.key() == key && !(event.modifiers() & others))
            return command;
    }
    return Command::None;
}

void LabelControl::keyPressEvent(QKeyEvent* event)
{
    const Command command = IsNest() ? CommandOf(*event) : Command::None;
    if (command == Command::None)
        return InputControl::keyPressEvent(event);
    if (!event->isAutoRepeat())
        Do(command, event->modifiers() & Qt::ControlModifier);
}

bool LabelControl::event(QEvent* event)
{
    // Before a shortcut of the window gets the key.
    if (event->type() == QEvent::ShortcutOverride && IsNest() &&
        CommandOf(static_cast<QKeyEvent&>(*event)) != Command::None) {
        event->accept();
        return true;
    }
    if (endsPress(*event)) {
        pressed_ = false;
        ApplyButton();
    }
    return InputControl::event(event);
}

// Pointer ----------------------------------------------------------------------------------------

void LabelControl::mousePressEvent(QMouseEvent* event)
{
    if (!IsNest() || event->button() != Qt::LeftButton)
        return InputControl::mousePressEvent(event);
    hovered_ = true;
    pressed_ = true;
    ApplyButton();
}

void LabelControl::mouseMoveEvent(QMouseEvent* event)
{
    if (!pressed_)
        return InputControl::mouseMoveEvent(event);
    hovered_ = rect().contains(event->pos());
    ApplyButton();
}

void LabelControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (!pressed_ || event->button() != Qt::LeftButton)
        return InputControl::mouseReleaseEvent(event);
    pressed_ = false;
    ApplyButton();
    if (rect().contains(event->pos()))
        Do(Command::Toggle, event->modifiers() & Qt::ControlModifier);
}

void LabelControl::enterEvent(QEvent* event)
{
    hovered_ = true;
    ApplyButton();
    InputControl::enterEvent(event);
}

void LabelControl::leaveEvent(QEvent* event)
{
    hovered_ = false;
    ApplyButton();
    InputControl::leaveEvent(event);
}

// Context menu -----------------------------------------------------------------------------------

void LabelControl::contextMenuEvent(QContextMenuEvent* event)
{
    if (IsNest())
        InputControl::contextMenuEvent(event);
    else
        event->ignore(); // nothing to choose
}

void LabelControl::AddToMenu(Menu* menu, TagList&)
{
    menu->Clear(); // there is no value to animate, reset or copy
    if (!IsNest())
        return;
    menu->Add(ToggleEntry, nestOpen_ ? tr("&Fold") : tr("&Open"), isEnabled());
    menu->AddSeparator();
    menu->Add(FoldAllEntry, tr("Fold &All"));
    menu->Add(OpenAllEntry, tr("Open A&ll"));
}

bool LabelControl::HandleMenu(unsigned int id, u64* data, TagList& tags)
{
    switch (IsNest() ? id : 0) {
    case ToggleEntry:
        Do(Command::Toggle, false);
        return true;
    case FoldAllEntry:
        Do(Command::Fold, true);
        return true;
    case OpenAllEntry:
        Do(Command::Open, true);
        return true;
    default:
        return InputControl::HandleMenu(id, data, tags);
    }
}

} // namespace Marlox
