#include "workbench/ui/TimeRuler.h"

#include "system/resources/Resources.h"
#include "workbench/ui/Session.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int keyRadius = 4;
constexpr int keyRow = 30; // y of the keys' middle
constexpr int margin = 8;
constexpr int numberHeight = 14;

QColor color(const char* name, MxColor fallback)
{
    return LookPack::Global().Color(name, fallback).ToQColor();
}

QString timeText(double time)
{
    return QString::number(time, 'g', 7);
}

} // namespace

TimeRuler::TimeRuler(Session& session, QWidget* parent) : QWidget(parent), session_(session)
{
    setObjectName("timeruler");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setToolTip(tr("Drag to change the time; drag a key to move it, Delete removes the keys here"));
    setAccessibleName(tr("Time line"));
    MarloxDoc& document = session_.Document();
    const auto redraw = [this] { update(); };
    connect(&document, &MarloxDoc::CurrentTimeChanged, this, redraw);
    connect(&document, &MarloxDoc::FrameRangeChanged, this, redraw);
    connect(&document, &MarloxDoc::InputChanged, this, redraw);
    connect(&document, &MarloxDoc::Cleared, this, redraw);
    connect(&session_, &Session::SelectedToolChanged, this, redraw);
}

double TimeRuler::Time() const
{
    return session_.Document().CurrentTime();
}

TimeScale TimeRuler::Scale() const
{
    const MarloxDoc& document = session_.Document();
    return {document.FirstFrame(), document.LastFrame(), double(margin), double(width() - margin)};
}

void TimeRuler::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const TimeScale scale = Scale();
    painter.fillRect(rect(), color("System.FieldColour", {29, 29, 29}));
    QFont font = this->font();
    font.setPixelSize(10);
    painter.setFont(font);
    PaintMarks(painter, scale);
    PaintCurrentTime(painter, scale);
    PaintKeys(painter, scale);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(color("System.AccentColour", {92, 158, 220}));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void TimeRuler::PaintMarks(QPainter& painter, const TimeScale& scale) const
{
    const QColor line = color("System.LineColour", {72, 72, 72});
    painter.setPen(palette().color(QPalette::WindowText));
    const double step = scale.MarkStep(40.0);
    const double small = scale.MarkStep(6.0);
    const QRect plate = CurrentTimePlate(painter, scale).adjusted(-2, 0, 2, 0);
    for (double f = std::ceil(scale.first / small) * small; f <= scale.last; f += small) {
        const bool numbered = std::fmod(f, step) == 0.0;
        const int x = int(std::floor(scale.ToPixel(f)));
        painter.fillRect(x, numbered ? numberHeight : 18, 1, numbered ? 8 : 4, line);
        if (!numbered)
            continue;
        const QRect place(x - 30, 0, 60, numberHeight);
        const QString number = QString::number(f);
        // Half a number beside the plate would be read as another one.
        if (!painter.boundingRect(place, Qt::AlignCenter, number).intersects(plate))
            painter.drawText(place, Qt::AlignCenter, number);
    }
}

/// Where the number of the current time stands.
QRect TimeRuler::CurrentTimePlate(const QPainter& painter, const TimeScale& scale) const
{
    const int middle = int(std::floor(scale.ToPixel(Time())));
    const int wide = painter.fontMetrics().horizontalAdvance(timeText(Time())) + 8;
    const int left = std::clamp(middle - wide / 2, 0, std::max(width() - wide, 0));
    return {left, 0, wide, numberHeight};
}

/// The frame's cell, a line through its middle, and its number on a plate over the others.
void TimeRuler::PaintCurrentTime(QPainter& painter, const TimeScale& scale) const
{
    const QColor mark = color("System.CurrentTimeColour", {92, 158, 220});
    const double middle = scale.ToPixel(Time());
    const double cell = std::max(scale.CellWidth(), 3.0);
    QColor shade = mark;
    shade.setAlpha(56);
    painter.fillRect(QRectF(middle - cell / 2.0, 0.0, cell, height()), shade);
    painter.fillRect(int(std::floor(middle)), 0, 1, height(), mark);

    const QRect plate = CurrentTimePlate(painter, scale);
    painter.fillRect(plate, mark);
    painter.setPen(color("System.AccentTextColour", {12, 16, 20}));
    painter.drawText(plate, Qt::AlignCenter, timeText(Time()));
}

void TimeRuler::PaintKeys(QPainter& painter, const TimeScale& scale) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color("System.BorderColour", {20, 20, 20}), 1.0));
    painter.setBrush(color("System.KeyColour", {124, 192, 148}));
    for (const double time : session_.KeyTimes()) {
        const QPointF at(std::floor(scale.ToPixel(time)) + 0.5, keyRow + 0.5);
        const double reach = keyRadius + 0.5;
        painter.drawPolygon(QPolygonF({at + QPointF(0, -reach), at + QPointF(reach, 0),
                                       at + QPointF(0, reach), at + QPointF(-reach, 0)}));
    }
}

std::optional<double> TimeRuler::KeyAt(const QPoint& at) const
{
    const Operator* tool = session_.SelectedTool();
    if (!tool || tool->IsLocked() || std::abs(at.y() - keyRow) > keyRadius + 2)
        return {};
    const TimeScale scale = Scale();
    for (const double time : session_.KeyTimes()) {
        if (std::abs(scale.ToPixel(time) - at.x()) <= keyRadius + 2)
            return time;
    }
    return {};
}

void TimeRuler::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || scrubbing_ || draggedKey_)
        return;
    draggedKey_ = KeyAt(event->pos());
    if (draggedKey_) {
        session_.Document().StartUndo("Move Keys");
        return;
    }
    scrubbing_ = true;
    session_.StepTo(Scale().FrameAt(event->pos().x()));
}

void TimeRuler::mouseMoveEvent(QMouseEvent* event)
{
    const double frame = Scale().FrameAt(event->pos().x());
    if (scrubbing_)
        session_.Document().SetCurrentTime(frame);
    else if (draggedKey_ && frame != *draggedKey_)
        MoveKeys(*draggedKey_, frame);
    else if (!draggedKey_)
        setCursor(KeyAt(event->pos()) ? Qt::SizeHorCursor : Qt::ArrowCursor);
}

void TimeRuler::MoveKeys(double from, double to)
{
    const std::vector<double> times = session_.KeyTimes();
    if (std::find(times.begin(), times.end(), to) != times.end())
        return; // another key stands there: nothing is overwritten
    for (const Ref<Input>& input : session_.SelectedTool()->Inputs()) {
        Animation animation = input->GetAnimation();
        if (animation.MoveKey(from, to))
            input->SetAnimation(animation);
    }
    draggedKey_ = to;
}

void TimeRuler::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        EndGesture();
}

void TimeRuler::EndGesture(bool keep)
{
    scrubbing_ = false;
    if (draggedKey_) {
        draggedKey_.reset();
        session_.Document().EndUndo(keep);
    }
}

void TimeRuler::focusOutEvent(QFocusEvent* event)
{
    EndGesture();
    QWidget::focusOutEvent(event);
    update();
}

void TimeRuler::hideEvent(QHideEvent* event)
{
    EndGesture();
    QWidget::hideEvent(event);
}

bool TimeRuler::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete || (key == Qt::Key_Escape && draggedKey_))
            event->accept();
    }
    return QWidget::event(event);
}

void TimeRuler::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete && !draggedKey_)
        session_.RemoveKeys(Time());
    else if (event->key() == Qt::Key_Escape && draggedKey_)
        EndGesture(false);
    else
        QWidget::keyPressEvent(event);
}

void TimeRuler::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

} // namespace Marlox
