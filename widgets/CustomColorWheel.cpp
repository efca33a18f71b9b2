#include "widgets/CustomColorWheel.h"

#include "system/resources/Resources.h"
#include "widgets/PartsAccessible.h"

#include <utility>

namespace Marlox {

namespace {

constexpr int discNarrower = 48; // than its bitmap

const char* undoTextOf(ColorWheelModel::Part part)
{
    return part == ColorWheelModel::Part::Ring ? "Adjust Hue/Saturation" : "Adjust Tint";
}

} // namespace

CustomColorWheel::CustomColorWheel(QWidget* parent)
    : CustomWheel(
          parent, "Controls.ColorWheel.Wheel.1",
          tr("Drag the ring around to turn hues, away from the centre for more saturation, and the "
             "disc to tint. With Ctrl finely, with Shift along one of the two. Alt+click resets. "
             "Page Up and Page Down go between disc and ring, the arrow keys move, with Shift "
             "coarsely, with Ctrl finely."))
{
    Arrange();
}

CustomColorWheel::~CustomColorWheel() = default;

void CustomColorWheel::Arrange()
{
    model_.widget = rect();
    model_.diameter = Diameter();
    const int inner = ResDIB::SizeOf("Controls.ColorWheel.Wheel.2").width() - discNarrower;
    model_.disc = model_.diameter > 0 ? double(std::max(inner, 0)) / model_.diameter : 0.0;
    model_.tintKnob = ResDIB::SizeOf("Controls.ColorWheel.Knob.1");
}

void CustomColorWheel::SetRecord(int mode, const WheelRecord& record)
{
    if (mode < 0 || mode >= modes || records_[std::size_t(mode)] == record)
        return;
    records_[std::size_t(mode)] = record;
    if (mode == Mode())
        update();
}

void CustomColorWheel::SetSquaredTint(bool on)
{
    if (std::exchange(model_.squaredTint, on) != on)
        update();
}

QString CustomColorWheel::DescribePart(int part) const
{
    const auto number = [](double value) { return QString::number(value, 'g', 4); };
    return part == int(Part::Tint)
               ? tr("Tint angle %1, strength %2").arg(number(TintAngle()), number(TintLength()))
               : tr("Hue %1, saturation %2").arg(number(Hue()), number(Saturation()));
}

// Drags ------------------------------------------------------------------------------------------

bool CustomColorWheel::ResetAt(QPoint at)
{
    if (const Part part = model_.HitTest(at, Shown()); part != Part::None) {
        SetActivePart(int(part));
        emit resetPart(int(part));
    }
    return true;
}

bool CustomColorWheel::Grab(QPoint at)
{
    drag_ = {model_.HitTest(at, Shown()), Shown()};
    if (drag_.part == Part::None)
        return false;
    SetActivePart(int(drag_.part));
    update();
    return true;
}

bool CustomColorWheel::DragTo(const PointerDrag::Step& step)
{
    if (drag_.part == Part::None)
        return false;
    const ColorWheelModel::Dragged dragged = model_.DragTo(drag_, Shown(), step);
    axes_ = dragged.axes;
    Change(drag_.part, dragged.record);
    return true;
}

void CustomColorWheel::BringBack()
{
    Change(drag_.part, drag_.start);
}

void CustomColorWheel::Drop()
{
    drag_ = {};
    axes_ = {};
}

void CustomColorWheel::Change(Part part, const WheelRecord& record)
{
    update();
    if (record == Shown())
        return;
    records_[std::size_t(Mode())] = record;
    OpenUndo(undoTextOf(part));
    const QPointer<CustomColorWheel> alive(this);
    emit dragWheel();
    if (alive && int(part) == ActivePart())
        TellActivePart(*this);
}

void CustomColorWheel::Nudge(int part, QPoint way, int level)
{
    Change(Part(part), model_.Nudged(Part(part), Shown(), way, level));
}

void CustomColorWheel::HoverAt(std::optional<QPoint> at)
{
    const Part part = at && !IsLocked() ? model_.HitTest(*at, Shown()) : Part::None;
    if (std::exchange(hovered_, part) != part)
        update();
}

} // namespace Marlox
