#include "workbench/ui/TimeRuler.h"

#include "system/resources/Resources.h"
#include "workbench/ui/Session.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace Marlox {

namespace {

constexpr int keyRadius = 4;
constexpr int keyRow = 30; // y of the keys' middle
constexpr int margin = 8;

QColor color(const char* name, MxColor fallback)
{
    return LookPack::Global().Color(name, fallback).ToQColor();
}

} // namespace

TimeRuler::TimeRuler(Session& session, QWidget* parent) : QWidget(parent), session_(session)
{
    setObjectName("timeruler");
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(tr("Drag to change the time; drag a key to move it"));
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
    const QColor line = color("System.LineColour", {70, 70, 70});
    const QColor text = palette().color(QPalette::Text);
    const QColor accent = palette().color(QPalette::Highlight);
    painter.fillRect(rect(), color("System.FieldColour", {30, 30, 30}));

    QFont font = this->font();
    font.setPixelSize(10);
    painter.setFont(font);
    const double step = scale.MarkStep(40.0);
    const double small = scale.MarkStep(6.0);
    for (double f = std::ceil(scale.first / small) * small; f <= scale.last; f += small) {
        const bool numbered = std::fmod(f, step) == 0.0;
        const int x = int(std::floor(scale.ToPixel(f)));
        painter.fillRect(x, numbered ? 12 : 18, 1, numbered ? 10 : 4, line);
        if (numbered) {
            painter.setPen(text);
            painter.drawText(QRect(x - 30, 0, 60, 12), Qt::AlignCenter, QString::number(f));
        }
    }

    const int now = int(std::floor(scale.ToPixel(Time())));
    const double cell = std::max(scale.CellWidth(), 3.0);
    QColor shade = accent;
    shade.setAlpha(60);
    painter.fillRect(QRectF(scale.ToPixel(Time()) - cell / 2.0, 0.0, cell, height()), shade);
    painter.fillRect(now, 0, 1, height(), accent);

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color("System.KeyColour", {223, 213, 122}));
    for (const double time : session_.KeyTimes()) {
        const QPointF at(scale.ToPixel(time), keyRow);
        painter.drawPolygon(QPolygonF({at + QPointF(0, -keyRadius), at + QPointF(keyRadius, 0),
                                       at + QPointF(0, keyRadius), at + QPointF(-keyRadius, 0)}));
    }
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(accent);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

std::optional<double> TimeRuler::KeyAt(const QPoint& at) const
{
    if (std::abs(at.y() - keyRow) > keyRadius + 2)
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
    session_.Play(false);
    session_.Document().SetCurrentTime(Scale().FrameAt(event->pos().x()));
}

void TimeRuler::mouseMoveEvent(QMouseEvent* event)
{
    const double frame = Scale().FrameAt(event->pos().x());
    if (scrubbing_)
        session_.Document().SetCurrentTime(frame);
    else if (draggedKey_ && frame != *draggedKey_)
        MoveKeys(*draggedKey_, frame);
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

void TimeRuler::EndGesture()
{
    scrubbing_ = false;
    if (draggedKey_) {
        draggedKey_.reset();
        session_.Document().EndUndo(true);
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

void TimeRuler::keyPressEvent(QKeyEvent* event)
{
    MarloxDoc& document = session_.Document();
    switch (event->key()) {
    case Qt::Key_Left:
        document.SetCurrentTime(document.CurrentTime() - 1.0);
        break;
    case Qt::Key_Right:
        document.SetCurrentTime(document.CurrentTime() + 1.0);
        break;
    case Qt::Key_Home:
        document.SetCurrentTime(document.FirstFrame());
        break;
    case Qt::Key_End:
        document.SetCurrentTime(document.LastFrame());
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace Marlox
