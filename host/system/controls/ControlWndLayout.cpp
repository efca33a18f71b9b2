// Where the rows of an inspector page stand, and what they are told while they are shown.

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputControl_p.h"
#include "system/resources/Resources.h"
#include "system/widgets/WidgetLook_p.h"

#include <algorithm>

#include <QCoreApplication>
#include <QEvent>

namespace Marlox {

// Sizes ------------------------------------------------------------------------------------------

void ControlWnd::Private::PostLayout()
{
    if (std::exchange(layoutPosted, true))
        return;
    QCoreApplication::postEvent(&page, new QEvent(QEvent::LayoutRequest));
}

void ControlWnd::Private::MeasureRow(Row& row) const
{
    row.measured = true;
    row.placed = false;
    row.minimumWidth = 0;
    row.maximumWidth = QWIDGETSIZE_MAX;
    row.height = InspectorLineHeight;
    if (!row.control)
        return;
    int height = 0;
    row.control->GetMinSize(row.minimumWidth, row.height, nullptr);
    row.control->GetMaxSize(row.maximumWidth, height, nullptr);
}

void ControlWnd::Private::Measure()
{
    int width = 0;
    int bottom = marginTop;
    for (Row& row : rows) {
        if (!IsShown(row))
            continue;
        if (!row.measured)
            MeasureRow(row);
        width = std::max(width, row.minimumWidth);
        bottom += row.height + rowGap;
        if (row.below)
            bottom += row.below->sizeHint().height();
    }
    minimumWidth = marginLeft + width + keyColumn;
    height = rows.empty() ? 0 : bottom - rowGap + marginBottom;
}

void ControlWnd::Private::Layout()
{
    layoutPosted = false;
    const QSize before(minimumWidth, height);
    Measure();
    const int available = std::max(page.width(), minimumWidth) - marginLeft - keyColumn;
    int y = marginTop;
    for (Row& row : rows) {
        QWidget* widget = row.control ? static_cast<QWidget*>(row.control) : row.line;
        if (row.control && row.control->isHidden() == IsShown(row) && !row.place.isNull())
            widget->setVisible(IsShown(row));
        if (row.keys)
            row.keys->setVisible(IsShown(row));
        if (!IsShown(row))
            continue;
        int width =
            std::clamp(available, row.minimumWidth, std::max(row.maximumWidth, row.minimumWidth));
        int rowHeight = row.height;
        const QRect place(marginLeft, y, width, rowHeight);
        // Rows that have the size they were given are not told again.
        if (row.control && (!row.placed || place.size() != row.place.size())) {
            widget->move(place.topLeft());
            row.control->SetSize(width, rowHeight, nullptr);
        } else {
            widget->setGeometry(place);
        }
        row.place = place;
        row.placed = true;
        if (row.keys) {
            const QSize size = row.keys->sizeHint();
            row.keys->setGeometry(marginLeft + available + (keyColumn - size.width()) / 2,
                                  y + (std::min(rowHeight, InspectorLineHeight) - size.height()) /
                                          2,
                                  size.width(), size.height());
        }
        y += row.height;
        if (row.below) {
            const int belowHeight = row.below->sizeHint().height();
            row.below->setGeometry(marginLeft, y, available, belowHeight);
            y += belowHeight;
        }
        y += rowGap;
    }
    if (before == QSize(minimumWidth, height))
        return;
    page.updateGeometry();
    page.update();
    if (before.height() != height)
        emit page.HeightChanged(height);
}

QRect ControlWnd::Private::MarkOf(const Row& row) const
{
    if (!row.control || !IsShown(row))
        return {};
    return {(marginLeft - markWidth) / 2, row.place.top(), markWidth, row.place.height()};
}

// Notification -----------------------------------------------------------------------------------

void ControlWnd::Private::UpdateState(Row& row)
{
    const InputList& inputs = row.control->Inputs();
    State state = State::Plain;
    KeyFrameIndicator::State keys = KeyFrameIndicator::State::None;
    const double time = row.control->CurrentTime();
    for (const Input* input : inputs) {
        const bool keyed = input->IsAnimated() && input->IsKeyAt(time);
        const State own = input->HasExpression() ? State::Expression
                          : keyed                ? State::Keyed
                          : input->IsAnimated()  ? State::Animated
                                                 : State::Plain;
        state = std::max(state, own);
        if (input == inputs.front() && own == State::Expression)
            keys = KeyFrameIndicator::State::Expression;
        else if (input == inputs.front() && input->IsAnimated())
            keys = keyed ? KeyFrameIndicator::State::Keyed : KeyFrameIndicator::State::Animated;
    }
    if (row.keys) {
        row.keys->SetState(keys);
        if (row.keys->isEnabled() != row.control->isEnabled())
            row.keys->setEnabled(row.control->isEnabled());
    }
    if (std::exchange(row.state, state) != state)
        page.update(MarkOf(row));
}

QColor ControlWnd::Private::ColorOf(State state) const
{
    switch (state) {
    case State::Plain:
        break;
    case State::Animated:
        return WidgetLook::Mix(page.palette().color(QPalette::Window), WidgetLook::Key(), 0.5);
    case State::Keyed:
        return WidgetLook::Key();
    case State::Expression:
        return LookPack::Global().Color("Controls.ExpressionColour", {230, 215, 135}).ToQColor();
    }
    return Qt::transparent;
}

void ControlWnd::Private::RefreshMoving()
{
    for (const Ref<InputControl>& control : std::vector(page.controls_)) {
        for (Input* input : InputList(control->Inputs())) {
            if ((input->HasExpression() || input->IsAnimated()) && control->IsOpen())
                control->Refresh(*input);
        }
    }
}

} // namespace Marlox
