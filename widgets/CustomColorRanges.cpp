#include "widgets/CustomColorRanges.h"

#include "system/color/DisplayColors.h"
#include "system/controls/InputControl.h"
#include "system/resources/Resources.h"
#include "widgets/PartsAccessible.h"

#include <utility>

#include <QEvent>

namespace Marlox {

namespace {

constexpr char adjustText[] = "Adjust Ranges";
constexpr char resetText[] = "Reset Ranges";

Ref<ColorCurves> copyOf(const ColorCurves& curves)
{
    return MakeRef<ColorCurves>(curves.Components());
}

/// `from` with one node elsewhere.
Ref<ColorCurves> moved(const ColorCurves& from, int node, QPointF to, bool takeHandle)
{
    Ref<ColorCurves> curves = copyOf(from);
    curves->SetNodePosition(node, {to.x(), to.y()}, takeHandle);
    return curves;
}

/// What a node is, by its place in its curve.
constexpr const char* nodeNames[] = {
    QT_TRANSLATE_NOOP("Marlox::CustomColorRanges", "%1 start"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorRanges", "%1 handle of start"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorRanges", "%1 handle of end"),
    QT_TRANSLATE_NOOP("Marlox::CustomColorRanges", "%1 end")};

} // namespace

CustomColorRanges::CustomColorRanges(QWidget* parent)
    : CustomControl(parent), curves_(MakeRef<ColorCurves>()), defaults_(curves_)
{
    MakePartsAccessible();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    SetUse(tr("Drag a node, with Ctrl finely, with Shift along one axis. Page Up and Page Down "
              "choose one, arrow keys move it, with Shift coarsely, with Ctrl finely. Alt+click "
              "resets it."));
    connect(&DisplayColors::Global(), &DisplayColors::Changed, this, [this] { update(); });
    FollowSize();
}

// What is shown ----------------------------------------------------------------------------------

void CustomColorRanges::ShowCurves(const ColorCurves& curves)
{
    if (!curves.IsEqual(*curves_))
        Store(copyOf(curves));
}

void CustomColorRanges::Store(Ref<ColorCurves> curves)
{
    curves_ = std::move(curves);
    RepaintPlot();
}

void CustomColorRanges::SetDefaultCurves(const ColorCurves& curves)
{
    defaults_ = copyOf(curves);
}

void CustomColorRanges::SetShowMidtones(bool on)
{
    if (std::exchange(showMidtones_, on) != on)
        update();
}

void CustomColorRanges::SetNames(const Names& names)
{
    if (std::exchange(names_, names) != names)
        update();
}

void CustomColorRanges::SetStateColor(const QColor& color)
{
    if (std::exchange(stateColor_, color) != color)
        update();
}

QString CustomColorRanges::DescribePart(int part) const
{
    const QString& curve = names_[part < ColorCurves::nodeCount / 2 ? 0 : 2];
    const QPointF position = PositionOf(part);
    return QStringLiteral("%1 %2, %3")
        .arg(tr(nodeNames[part % 4]).arg(curve))
        .arg(position.x(), 0, 'g', 4)
        .arg(position.y(), 0, 'g', 4);
}

// Places -----------------------------------------------------------------------------------------

QPointF CustomColorRanges::PositionIn(const ColorCurves& curves, int node)
{
    const ColorCurves::Node position = curves.NodeAt(node);
    return {position.x, position.y};
}

QPoint CustomColorRanges::NodePixel(int node) const
{
    return model_.NodePixel(PositionOf(node));
}

int CustomColorRanges::NodeAt(QPoint at) const
{
    ColorRangesModel::Positions positions;
    for (int node = 0; node < ColorCurves::nodeCount; ++node)
        positions[std::size_t(node)] = PositionOf(node);
    return model_.HitTest(positions, at);
}

void CustomColorRanges::RepaintPlot()
{
    const int around = ResDIB::SizeOf(nodeBitmap).width();
    update(Plot().adjusted(-around, -around, around, around));
}

// Drags ------------------------------------------------------------------------------------------

bool CustomColorRanges::Grab(QPoint at)
{
    node_ = NodeAt(at);
    if (node_ == none)
        return false;
    held_ = copyOf(*curves_);
    return true;
}

void CustomColorRanges::PressOn(const PointerDrag::Step&)
{
    if (Owner())
        Owner()->StartUndo(adjustText); // which is no change yet
    SetActivePart(node_);
    Store(copyOf(*held_));
}

bool CustomColorRanges::DragTo(const PointerDrag::Step& step)
{
    if (node_ == none)
        return false;
    const QPointF to = model_.Dragged(step, PositionIn(*held_, node_));
    Change(node_, moved(*held_, node_, to, takesHandles_), adjustText);
    return true;
}

void CustomColorRanges::BringBack()
{
    Change(node_, copyOf(*held_), adjustText);
}

void CustomColorRanges::Drop()
{
    held_ = {};
    node_ = none;
}

/// The user made a change, of one node.
void CustomColorRanges::Change(int node, const Ref<ColorCurves>& curves, const char* undoText)
{
    if (curves->IsEqual(*curves_))
        return;
    OpenUndo(undoText);
    Store(curves);
    emit dragNode(node);
}

void CustomColorRanges::HoverAt(std::optional<QPoint> at)
{
    const int hovered = at && !IsLocked() ? NodeAt(*at) : none;
    if (std::exchange(hovered_, hovered) != hovered)
        RepaintPlot();
}

void CustomColorRanges::Nudge(int part, QPoint way, int level)
{
    const QPointF to = ColorRangesModel::Nudged(PositionOf(part), way, level);
    Change(part, moved(*curves_, part, to, takesHandles_), adjustText);
}

bool CustomColorRanges::ResetAt(QPoint at)
{
    ResetNode(NodeAt(at));
    return true;
}

void CustomColorRanges::ResetNode(int node)
{
    if (node == none)
        return;
    const QPointer<CustomColorRanges> alive(this);
    SetActivePart(node);
    BeginGesture(false);
    Change(node, moved(*curves_, node, PositionIn(*defaults_, node), false), resetText);
    if (alive)
        FinishGesture();
}

void CustomColorRanges::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        FollowSize();
    CustomControl::changeEvent(event);
}

void CustomColorRanges::resizeEvent(QResizeEvent* event)
{
    FollowSize();
    CustomControl::resizeEvent(event);
}

} // namespace Marlox
