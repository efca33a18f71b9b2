#include "widgets/ComboPopup.h"

#include "widgets/CustomComboAccessible.h"
#include "widgets/DrawnLook.h"

#include <algorithm>

#include <QHelpEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int tickColumn = 24; // left of the texts, pixels
constexpr int textMargin = 12; // right of them
constexpr int mostWidth = 480; // unless the field is wider
constexpr int wheelRow = 40;   // eighths of a degree: three rows a notch

void drawTick(QPainter& painter, const QPoint& centre, const QColor& color)
{
    const QPointF points[] = {centre + QPointF(-4, 0.2), centre + QPointF(-1.2, 3),
                              centre + QPointF(4, -2.8)};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawPolyline(points, 3);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace

ComboPopup::ComboPopup(QWidget& field, ComboModel model, int chosen)
    : QWidget(&field, Qt::Popup), field_(field), model_(std::move(model)),
      place_(ComboPlace::Find(QRect(field.mapToGlobal(QPoint()), field.size()), WantedWidth(),
                              model_.Count(), field.screen()->availableGeometry())),
      list_(model_.Count(), place_.shownRows), chosen_(chosen)
{
    MakeCombosAccessible();
    setObjectName(QStringLiteral("combolist"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setGeometry(place_.rect);
    clock_.start();
    if (list_.Scrolls()) {
        bar_ = new QScrollBar(Qt::Vertical, this);
        bar_->setRange(0, list_.LastFirst());
        bar_->setPageStep(list_.Shown());
        const QRect inner = rect().adjusted(1, 1, -1, -1);
        const int width = bar_->sizeHint().width();
        bar_->setGeometry(QStyle::visualRect(
            layoutDirection(), inner, {inner.right() + 1 - width, 1, width, inner.height()}));
        connect(bar_, &QScrollBar::valueChanged, this, [this](int first) {
            list_.ScrollTo(first);
            update();
        });
    }
    list_.Light(chosen);
    list_.Centre(std::max(chosen, 0));
    ShowLit();
}

ComboPopup::~ComboPopup() = default;

QStringList ComboPopup::EntryTexts() const
{
    QStringList texts;
    for (const ComboEntry& entry : model_.Entries())
        texts += entry.text;
    return texts;
}

int ComboPopup::WantedWidth() const
{
    int widest = 0;
    for (const ComboEntry& entry : model_.Entries())
        widest = std::max(widest, fontMetrics().horizontalAdvance(entry.text));
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    return std::min(widest + 1 + tickColumn + textMargin + bar, mostWidth);
}

QRect ComboPopup::RowRect(int row) const
{
    const int bar = bar_ ? bar_->width() : 0;
    const QRect rect(ComboList::frame, ComboList::frame + list_.TopOf(row),
                     width() - 2 * ComboList::frame - bar, ComboList::rowHeight);
    return QStyle::visualRect(layoutDirection(), this->rect(), rect);
}

void ComboPopup::SetChosen(int place)
{
    chosen_ = place;
    update();
}

void ComboPopup::Light(int row)
{
    list_.Light(row);
    ShowLit();
}

void ComboPopup::LightAt(const QPoint& at)
{
    const int before = list_.Lit();
    const QRect rows = RowRect(list_.First());
    const bool within = at.x() >= rows.left() && at.x() <= rows.right();
    if (within && list_.LightAt(at.y() - ComboList::frame) && list_.Lit() != before)
        ShowLit();
}

void ComboPopup::ShowLit()
{
    if (bar_)
        bar_->setValue(list_.First());
    update();
    if (list_.Lit() != ComboList::none)
        TellLitRow(*this);
}

void ComboPopup::Type(const QString& letters)
{
    Light(search_.Type(letters, clock_.elapsed(), model_, list_.Lit()));
}

void ComboPopup::Choose(int row)
{
    const QPointer<ComboPopup> alive(this);
    close();
    if (alive && model_.Has(row))
        emit EntryChosen(row);
}

// Events -----------------------------------------------------------------------------------------

bool ComboPopup::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept(); // nothing else gets a key meanwhile
        return true;
    }
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int row = list_.RowAt(help->y() - ComboList::frame);
        const bool cut = model_.Has(row) && ShownText(row) != model_.TextOf(row);
        if (cut)
            QToolTip::showText(help->globalPos(), model_.TextOf(row), this, RowRect(row));
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

bool ComboPopup::IsLetters(const QKeyEvent& event)
{
    const bool command =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return !command && !event.text().isEmpty() && event.text().front().isPrint();
}

bool ComboPopup::LightByKey(int key)
{
    const int page = std::max(list_.Shown() - 1, 1);
    const int lit = list_.Lit();
    switch (key) {
    case Qt::Key_Up:
        Light(model_.Stepped(lit, -1));
        return true;
    case Qt::Key_Down:
        Light(model_.Stepped(lit, 1));
        return true;
    case Qt::Key_PageUp:
        Light(model_.Stepped(lit, -page));
        return true;
    case Qt::Key_PageDown:
        Light(model_.Stepped(lit, page));
        return true;
    case Qt::Key_Home:
        Light(0);
        return true;
    case Qt::Key_End:
        Light(model_.Count() - 1);
        return true;
    default:
        return false;
    }
}

void ComboPopup::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool letters = IsLetters(*event);
    if (event->modifiers() & Qt::AltModifier) {
        if (key == Qt::Key_Up || key == Qt::Key_Down)
            close();
    } else if (key == Qt::Key_Escape || key == Qt::Key_F4 || key == Qt::Key_Tab ||
               key == Qt::Key_Backtab) {
        close();
    } else if (key == Qt::Key_Return || key == Qt::Key_Enter ||
               (key == Qt::Key_Space && !search_.IsGoingOn(clock_.elapsed()))) {
        Choose(list_.Lit());
    } else if (!LightByKey(key) && letters) {
        Type(event->text());
    }
}

void ComboPopup::mousePressEvent(QMouseEvent* event)
{
    // A press on the field closes the list; it must not open it again.
    setAttribute(Qt::WA_NoMouseReplay,
                 field_.rect().contains(field_.mapFromGlobal(event->globalPos())));
    QWidget::mousePressEvent(event); // one outside closes
    if (isVisible())
        LightAt(event->pos());
}

void ComboPopup::mouseMoveEvent(QMouseEvent* event)
{
    LightAt(event->pos());
}

void ComboPopup::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !rect().contains(event->pos()))
        return;
    LightAt(event->pos());
    const int row = list_.RowAt(event->y() - ComboList::frame);
    if (row != ComboList::none)
        Choose(row);
}

void ComboPopup::wheelEvent(QWheelEvent* event)
{
    const int turned = event->angleDelta().y();
    if ((turned > 0) != (wheelRest_ > 0))
        wheelRest_ = 0;
    wheelRest_ += turned;
    list_.ScrollTo(list_.First() - wheelRest_ / wheelRow);
    wheelRest_ %= wheelRow;
    LightAt(event->position().toPoint());
    ShowLit();
    event->accept();
}

void ComboPopup::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        emit Closed();
}

// Painting ---------------------------------------------------------------------------------------

QString ComboPopup::ShownText(int row) const
{
    const int room = RowRect(row).width() - tickColumn - textMargin;
    return fontMetrics().elidedText(model_.TextOf(row), Qt::ElideRight, room);
}

void ComboPopup::PaintRow(QPainter& painter, int row) const
{
    const QRect rect = RowRect(row);
    const bool lit = row == list_.Lit();
    if (lit)
        painter.fillRect(rect, LookColor("System.SelectionColour", {44, 84, 122}));
    const QColor ink = lit ? LookColor("System.SelectionTextColour", {255, 255, 255})
                           : LookColor("System.BrightTextColour", {228, 228, 228});
    const auto part = [&](int x, int width) {
        return QStyle::visualRect(layoutDirection(), rect,
                                  {rect.left() + x, rect.top(), width, rect.height()});
    };
    if (row == chosen_)
        drawTick(painter, part(0, tickColumn).center(), ink);
    painter.setPen(ink);
    painter.drawText(part(tickColumn, rect.width() - tickColumn - textMargin),
                     int(Qt::AlignLeft | Qt::AlignVCenter) | int(Qt::TextSingleLine),
                     ShownText(row));
}

void ComboPopup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), LookColor("System.PopupColour", {34, 34, 34}));
    for (int row = list_.First(); row < list_.First() + list_.Shown(); ++row)
        PaintRow(painter, row);
    PaintCrispFrame(painter, rect(), LookColor("System.LineColour", {72, 72, 72}));
}

} // namespace Marlox
