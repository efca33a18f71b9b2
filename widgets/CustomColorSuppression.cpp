#include "widgets/CustomColorSuppression.h"

#include "widgets/PartsAccessible.h"

#include <utility>

namespace Marlox {

namespace {

constexpr std::array<const char*, CustomColorSuppression::knobs> names{
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Red"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Yellow"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Green"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Cyan"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Blue"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Magenta")};

} // namespace

CustomColorSuppression::CustomColorSuppression(QWidget* parent)
    : CustomWheel(parent, "Controls.ColorSuppression.Wheel",
                  tr("Drag a knob along its spoke, with Ctrl finely. Page Up and Page Down choose "
                     "one, arrow keys move it, with Shift coarsely, with Ctrl finely. Alt+click "
                     "resets it."))
{
    Arrange();
}

void CustomColorSuppression::Arrange()
{
    model_.SetPlace(Diameter(), size());
}

QString CustomColorSuppression::NameOf(int knob)
{
    return tr(names[std::size_t(knob)]);
}

// What is shown ----------------------------------------------------------------------------------

void CustomColorSuppression::FollowMode()
{
    const double before = model_.RotationOf(model_.Mode());
    model_.SetMode(Mode());
    hovered_ = none;
    if (model_.RotationOf(Mode()) != before)
        DiscardPicture();
}

void CustomColorSuppression::SetRecord(int mode, const Record& record)
{
    if (mode < 0 || mode >= modes || model_.RecordOf(mode) == record)
        return;
    model_.SetRecord(mode, record);
    if (mode == Mode())
        Repaint();
}

void CustomColorSuppression::SetRotation(int mode, double turns)
{
    if (mode < 0 || mode >= modes)
        return;
    const double before = model_.RotationOf(mode);
    model_.SetRotation(mode, turns);
    if (mode != Mode() || model_.RotationOf(mode) == before)
        return;
    DiscardPicture();
    update();
}

void CustomColorSuppression::SetKnob(int knob, const Knob& state)
{
    const Knob before = std::exchange(knobs_[std::size_t(knob)], state);
    if (before == state)
        return;
    if (knob == dragged_ && !(state.shown && state.movable))
        dragged_ = none; // the next move ends the drag
    if (before.shown != state.shown)
        DiscardPicture(); // with its spoke
    update();
}

QString CustomColorSuppression::DescribePart(int knob) const
{
    return QStringLiteral("%1 %2").arg(NameOf(knob)).arg(Amount(knob), 0, 'g', 4);
}

void CustomColorSuppression::Repaint()
{
    update(Square());
}

// What the user does -----------------------------------------------------------------------------

int CustomColorSuppression::KnobAt(QPoint at) const
{
    int found = none;
    if (!model_.Square().contains(at))
        return found;
    bool movable = false;
    for (int knob = 0; knob < knobs; ++knob) {
        const Knob& state = knobs_[std::size_t(knob)];
        if (!state.shown || !model_.Hits(knob, at) || (movable && !state.movable))
            continue;
        found = knob; // of several the last, but one that moves before one that does not
        movable = state.movable;
    }
    return found;
}

bool CustomColorSuppression::Grab(QPoint at)
{
    const int knob = KnobAt(at);
    if (knob == none)
        return false;
    SetActivePart(knob);
    if (!knobs_[std::size_t(knob)].movable)
        return false;
    dragged_ = knob;
    start_ = Amount(knob);
    Repaint();
    return true;
}

bool CustomColorSuppression::DragTo(const PointerDrag::Step& step)
{
    if (dragged_ == none)
        return false;
    Change(dragged_, model_.AmountFor(dragged_, step.at, step.fine));
    return true;
}

void CustomColorSuppression::BringBack()
{
    Change(dragged_, start_);
}

void CustomColorSuppression::Drop()
{
    dragged_ = none;
    Repaint();
}

void CustomColorSuppression::Change(int knob, double amount)
{
    if (amount == Amount(knob))
        return;
    model_.SetAmount(knob, amount);
    Repaint();
    MarkChanged();
    const QPointer<CustomColorSuppression> alive(this);
    emit dragWheel(knob);
    if (alive && knob == ActivePart())
        TellActivePart(*this);
}

void CustomColorSuppression::Nudge(int knob, QPoint way, int level)
{
    const Knob& state = knobs_[std::size_t(knob)];
    if (state.shown && state.movable)
        Change(knob, model_.Nudged(knob, way.x() + way.y(), level));
}

void CustomColorSuppression::HoverAt(std::optional<QPoint> at)
{
    const int knob = at && !IsLocked() ? KnobAt(*at) : none;
    if (std::exchange(hovered_, knob) != knob)
        Repaint();
}

bool CustomColorSuppression::ResetAt(QPoint at)
{
    if (const int knob = KnobAt(at); knob != none) {
        SetActivePart(knob);
        emit resetKnob(knob);
    }
    return true;
}

} // namespace Marlox
