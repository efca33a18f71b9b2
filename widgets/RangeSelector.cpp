#include "widgets/RangeSelector.h"

#include "widgets/AccessibleFactory.h"
#include "widgets/DrawnLook.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

namespace Marlox {

namespace {

constexpr int usualHeight = 24;
constexpr int padding = 8; // beside a name, where there is room
constexpr int smallestPadding = 3;
constexpr int smallestWidth = 24; // of a segment
constexpr double corner = 3.0;

/// The choice as screen readers and test tools have it. What they choose, the user chose.
class SelectorAccessible final : public QAccessibleWidget {
public:
    explicit SelectorAccessible(RangeSelector* selector)
        : QAccessibleWidget(selector, QAccessible::ComboBox)
    {
    }

    QString text(QAccessible::Text what) const override
    {
        if (what == QAccessible::Name && widget()->accessibleName().isEmpty())
            return RangeSelector::tr("Range");
        return what == QAccessible::Value ? Selector().NameOf(Selector().Range())
                                          : QAccessibleWidget::text(what);
    }

    QStringList actionNames() const override
    {
        return QStringList{increaseAction(), decreaseAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (name == increaseAction())
            Selector().ChooseNext(1);
        else if (name == decreaseAction())
            Selector().ChooseNext(-1);
        else
            QAccessibleWidget::doAction(name);
    }

private:
    RangeSelector& Selector() const { return *static_cast<RangeSelector*>(widget()); }
};

} // namespace

RangeSelector::RangeSelector(QWidget* parent) : QWidget(parent)
{
    static const AccessibleFactory<MakeAccessible<RangeSelector, SelectorAccessible>>
        factory; // until the library is unloaded
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void RangeSelector::SetNames(const QStringList& fourNames)
{
    for (int range = 0; range < std::min(int(fourNames.size()), count); ++range)
        names_[std::size_t(range)] = fourNames.at(range);
    updateGeometry();
    update();
}

void RangeSelector::SetOffered(const std::array<bool, 4>& offered)
{
    if (std::exchange(offered_, offered) == offered)
        return;
    hovered_.reset();
    pressed_.reset();
    updateGeometry();
    update();
}

void RangeSelector::SetRange(int range)
{
    if (range < 0 || range >= count || std::exchange(range_, range) == range)
        return;
    update();
    TellRange();
}

void RangeSelector::Choose(int range)
{
    if (range == range_)
        return;
    SetRange(range);
    emit RangeChanged(range);
}

void RangeSelector::ChooseNext(int by)
{
    if (isEnabled())
        Choose(NextOffered(range_, by));
}

void RangeSelector::TellRange()
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent told(this, NameOf(range_));
    QAccessible::updateAccessibility(&told);
}

// Places -----------------------------------------------------------------------------------------

/// With all of its name and the usual room beside it.
int RangeSelector::WidthFor(int range) const
{
    return fontMetrics().horizontalAdvance(NameOf(range)) + 1 + 2 * padding; // as it is rounded
}

/// Room that is left over is shared evenly. Where there is too little, first the room beside the
/// names goes, then the longest of them are cut, all to the same width.
std::array<double, RangeSelector::count> RangeSelector::Widths() const
{
    std::vector<double*> byWidth;
    std::array<double, count> widths{};
    double left = width() - 2;
    for (int range = 0; range < count; ++range) {
        if (IsOffered(range)) {
            widths[std::size_t(range)] = WidthFor(range);
            byWidth.push_back(&widths[std::size_t(range)]);
            left -= WidthFor(range);
        }
    }
    const double share = left / double(std::max<std::size_t>(byWidth.size(), 1));
    const double padded = 2.0 * (padding - smallestPadding);
    if (-share <= padded) {
        for (double* own : byWidth)
            *own += share;
        return widths;
    }
    const auto narrower = [](const double* a, const double* b) { return *a < *b; };
    std::sort(byWidth.begin(), byWidth.end(), narrower);
    double room = width() - 2;
    for (std::size_t i = 0; i < byWidth.size(); ++i) {
        double& own = *byWidth[i];
        own = std::min(own - padded, room / double(byWidth.size() - i));
        room -= own;
    }
    return widths;
}

QRect RangeSelector::SegmentOf(int range) const
{
    if (range < 0 || range >= count || !IsOffered(range))
        return {};
    const std::array<double, count> widths = Widths();
    const double start = std::accumulate(widths.begin(), widths.begin() + range, 1.0);
    const int left = int(std::lround(start));
    const int end = int(std::lround(start + widths[std::size_t(range)]));
    return {left, 1, end - left, height() - 2};
}

std::optional<int> RangeSelector::RangeAt(QPoint at) const
{
    for (int range = 0; range < count; ++range) {
        if (SegmentOf(range).contains(at))
            return range;
    }
    return {};
}

/// `from` itself where there is none that way.
int RangeSelector::NextOffered(int from, int by) const
{
    for (int range = from + by; range >= 0 && range < count; range += by) {
        if (IsOffered(range))
            return range;
    }
    return from;
}

QSize RangeSelector::sizeHint() const
{
    int width = 2;
    for (int range = 0; range < count; ++range)
        width += IsOffered(range) ? WidthFor(range) : 0;
    return {width, usualHeight};
}

QSize RangeSelector::minimumSizeHint() const
{
    const auto offered = std::count(offered_.begin(), offered_.end(), true);
    return {2 + int(offered) * smallestWidth, usualHeight};
}

// Events -----------------------------------------------------------------------------------------

bool RangeSelector::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto& asked = static_cast<const QHelpEvent&>(*event);
        const std::optional<int> range = RangeAt(asked.pos());
        const QString help =
            range ? tr("%1\nLeft and Right choose a range").arg(NameOf(*range)) : QString();
        QToolTip::showText(asked.globalPos(), help, this);
        return true;
    }
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::EnabledChange:
    case QEvent::PaletteChange:
        pressed_.reset();
        update();
        break;
    case QEvent::FontChange:
        updateGeometry();
        update();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void RangeSelector::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    pressed_ = RangeAt(event->pos());
    update();
}

void RangeSelector::mouseMoveEvent(QMouseEvent* event)
{
    SetHovered(RangeAt(event->pos()));
}

void RangeSelector::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(event);
    const std::optional<int> pressed = std::exchange(pressed_, std::nullopt);
    update();
    if (pressed && RangeAt(event->pos()) == pressed)
        Choose(*pressed); // the last thing: it may bring other widgets
}

void RangeSelector::leaveEvent(QEvent* event)
{
    SetHovered({});
    QWidget::leaveEvent(event);
}

void RangeSelector::SetHovered(std::optional<int> range)
{
    if (std::exchange(hovered_, range) != range)
        update();
}

void RangeSelector::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        return ChooseNext(-1);
    case Qt::Key_Right:
        return ChooseNext(1);
    case Qt::Key_Home:
        return Choose(std::max(NextOffered(-1, 1), 0));
    case Qt::Key_End:
        return Choose(std::min(NextOffered(count, -1), count - 1));
    default:
        QWidget::keyPressEvent(event);
    }
}

// Painting ---------------------------------------------------------------------------------------

void RangeSelector::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(dimmed);
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = CrispLine(devicePixelRatioF());
    const double half = 0.5 * line;
    const QColor edge = hasFocus() ? AccentColor() : LookColor("System.BorderColour", {20, 20, 20});
    painter.setPen(QPen(edge, line));
    painter.setBrush(LookColor("System.FieldColour", {29, 29, 29}));
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), corner, corner);
    for (int range = 0; range < count; ++range) {
        if (IsOffered(range))
            PaintSegment(painter, range);
    }
}

void RangeSelector::PaintSegment(QPainter& painter, int range) const
{
    const QRect segment = SegmentOf(range);
    const bool chosen = range == range_;
    const bool lit = isEnabled() && hovered_ == range;
    const QRectF plate = QRectF(segment).adjusted(1.0, 1.0, -1.0, -1.0);
    painter.setPen(Qt::NoPen);
    if (chosen || lit || pressed_ == range) {
        painter.setBrush(pressed_ == range ? LookColor("System.ButtonPressedColour", {34, 34, 34})
                         : chosen          ? LookColor("System.ButtonHoverColour", {74, 74, 74})
                                           : LookColor("System.HeaderColour", {48, 48, 48}));
        painter.drawRoundedRect(plate, corner - 1.0, corner - 1.0);
    }
    const int next = NextOffered(range, 1);
    if (!chosen && !lit && next != range && next != range_ && hovered_ != next)
        painter.fillRect(
            QRectF(segment.right() + 0.5, segment.top() + 6.0, 1.0, segment.height() - 12.0),
            LookColor("System.LineColour", {72, 72, 72}));
    painter.setPen(chosen || lit ? LookColor("System.BrightTextColour", {228, 228, 228})
                                 : LookColor("System.TextColour", {190, 190, 190}));
    const QRect room = segment.adjusted(smallestPadding, 0, -smallestPadding, 0);
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(NameOf(range), Qt::ElideRight, room.width()));
}

} // namespace Marlox
