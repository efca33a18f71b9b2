#include "system/controls/ControlWnd.h"

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputMenu.h"

#include <algorithm>

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QWheelEvent>

namespace Marlox {

namespace {

std::vector<ControlWnd*>& Pages()
{
    static std::vector<ControlWnd*> pages;
    return pages;
}

} // namespace

ControlWnd::ControlWnd(QWidget* parent) : QWidget(parent), d_(std::make_unique<Private>(*this))
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    Pages().push_back(this);
}

ControlWnd::~ControlWnd()
{
    std::erase(Pages(), this);
    d_->Release();
    d_->released.clear();
}

void ControlWnd::SetOperator(Operator* tool)
{
    d_->suspended = nullptr;
    if (tool == operator_)
        return;
    d_->Release();
    d_->Show(tool);
    emit OperatorChanged(tool);
}

InputControl* ControlWnd::ControlOf(const Input& input) const
{
    if (const auto found = d_->byInput.find(&input); found != d_->byInput.end())
        return found->second;
    Private::Row* row = d_->RowFor(input);
    if (!row || !row->IsWaiting())
        return nullptr;
    d_->Open(*row);
    row = d_->RowFor(input);
    if (!row)
        return nullptr;
    d_->ApplyShown(*row);
    return row->control;
}

void ControlWnd::RecalcSizes(const InputControl* changed)
{
    for (Private::Row& row : d_->rows) {
        if (!changed || row.control == changed)
            row.measured = false;
    }
    d_->PostLayout();
}

void ControlWnd::UpdateState(const InputControl& control)
{
    if (Private::Row* row = d_->RowOf(control))
        d_->UpdateState(*row);
}

Container* ControlWnd::PlaceBelow(const InputControl& control)
{
    Private::Row* row = d_->RowOf(control);
    if (!row)
        return nullptr;
    if (!row->below) {
        row->below = new Container(this);
        row->below->setVisible(!row->folded);
        connect(row->below, &Container::HeightChanged, this, [this] { RecalcSizes(); });
    }
    return row->below;
}

void ControlWnd::EndGestures()
{
    // A drag under way inside a drawn widget ends when the widget loses the focus.
    if (QWidget* focus = QApplication::focusWidget(); focus && isAncestorOf(focus))
        focus->clearFocus();
    for (const Ref<InputControl>& control : std::vector(controls_))
        control->EndGesture();
}

MxColor ControlWnd::BackgroundColor() const
{
    const QColor color = palette().color(QPalette::Window);
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

void ControlWnd::ReleaseAll()
{
    for (ControlWnd* page : Pages()) {
        if (page->d_->tool)
            page->d_->suspended = page->d_->tool;
        page->d_->Release();
        page->d_->released.clear();
    }
}

void ControlWnd::ReopenAll()
{
    for (ControlWnd* page : std::vector(Pages())) {
        if (const Ref<Operator> tool = std::exchange(page->d_->suspended, nullptr);
            tool && tool->GetDoc())
            page->SetOperator(tool.Get());
    }
}

QSize ControlWnd::sizeHint() const
{
    d_->Measure();
    return {std::max(d_->minimumWidth, Private::preferredWidth), d_->height};
}

QSize ControlWnd::minimumSizeHint() const
{
    d_->Measure();
    return {d_->minimumWidth, d_->height};
}

bool ControlWnd::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest) {
        d_->Layout();
        return true;
    }
    return QWidget::event(event);
}

void ControlWnd::resizeEvent(QResizeEvent* event)
{
    if (event->oldSize().width() != event->size().width())
        d_->Layout();
}

void ControlWnd::wheelEvent(QWheelEvent* event)
{
    d_->lastScroll.start();
    event->ignore(); // the scroll area's
}

void ControlWnd::hideEvent(QHideEvent* event)
{
    EndGestures();
    QWidget::hideEvent(event);
}

void ControlWnd::paintEvent(QPaintEvent* event)
{
    if (event->rect().left() >= Private::marginLeft)
        return;
    QPainter painter(this);
    for (const Private::Row& row : d_->rows) {
        const QRect mark = d_->MarkOf(row);
        if (row.state != Private::State::Plain && mark.intersects(event->rect()))
            painter.fillRect(mark, d_->ColorOf(row.state));
    }
}

bool ControlWnd::IsScrolling() const
{
    return d_->lastScroll.isValid() && !d_->lastScroll.hasExpired(Private::scrollPause);
}

void ControlWnd::ForgetScrolling()
{
    d_->lastScroll.invalidate();
}

} // namespace Marlox
