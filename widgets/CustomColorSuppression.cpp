#include "widgets/CustomColorSuppression.h"

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/PartsAccessible.h"

#include <utility>

#include <QEvent>

namespace Marlox {

namespace {

constexpr int margin = 4; // around the wheel

constexpr std::array<const char*, CustomColorSuppression::knobs> names{
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Red"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Yellow"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Green"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Cyan"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Blue"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorSuppression", "Magenta")};

} // namespace

CustomColorSuppression::CustomColorSuppression(QWidget* parent) : CustomControl(parent)
{
    MakePartsAccessible();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    SetHelp({});
    FollowLook();
    connect(&DisplayColors::Global(), &DisplayColors::Changed, this, [this] {
        wheel_ = QImage();
        update();
    });
}

void CustomColorSuppression::FollowLook()
{
    look_ = LookPack::Global().Generation();
    model_.SetPlace(ResDIB::SizeOf("Controls.ColorSuppression.Wheel").width(), size());
    wheel_ = QImage();
}

QString CustomColorSuppression::NameOf(int knob)
{
    return tr(names[std::size_t(knob)]);
}

// What is shown ----------------------------------------------------------------------------------

void CustomColorSuppression::SetMode(int mode)
{
    if (mode == Mode() || mode < 0 || mode >= modes)
        return;
    const QPointer<CustomColorSuppression> alive(this);
    LoseGesture();
    if (!alive)
        return;
    const double before = model_.RotationOf(Mode());
    model_.SetMode(mode);
    hovered_ = none;
    if (model_.RotationOf(mode) != before)
        wheel_ = QImage();
    update();
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
    wheel_ = QImage();
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
        wheel_ = QImage(); // with its spoke
    update();
}

void CustomColorSuppression::SetHelp(const QString& help)
{
    const QString use =
        tr("Drag a knob along its spoke, with Ctrl finely. Page Up and Page Down choose one, arrow "
           "keys move it, with Shift coarsely, with Ctrl finely. Alt+click resets it.");
    setToolTip(help.isEmpty() ? use : help + QLatin1Char('\n') + use);
}

QString CustomColorSuppression::DescribePart(int knob) const
{
    return QStringLiteral("%1 %2").arg(NameOf(knob)).arg(Amount(knob), 0, 'g', 4);
}

void CustomColorSuppression::Repaint()
{
    update(model_.Square().adjusted(-margin, -margin, margin, margin));
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

// Layout -----------------------------------------------------------------------------------------

void CustomColorSuppression::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange || event->type() == QEvent::StyleChange)
        update();
    else if (event->type() == QEvent::FontChange)
        FollowLook();
    CustomControl::changeEvent(event);
}

void CustomColorSuppression::resizeEvent(QResizeEvent* event)
{
    model_.SetPlace(model_.Square().width(), size());
    CustomControl::resizeEvent(event);
}

QSize CustomColorSuppression::sizeHint() const
{
    return minimumSizeHint();
}

QSize CustomColorSuppression::minimumSizeHint() const
{
    const int side = model_.Square().width() + 2 * margin;
    return {side, side};
}

} // namespace Marlox
