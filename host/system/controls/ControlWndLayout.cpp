// Where the rows of an inspector page stand, and what they are told while they are shown.

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputControl_p.h"
#include "system/document/BulkChange.h"
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
        width = std::max(width, row.minimumWidth + Indent(row));
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
    OpenUnfolded();
    Measure();
    const int available = std::max(page.width(), minimumWidth) - marginLeft - keyColumn;
    int y = marginTop;
    for (Row& row : rows) {
        if (IsShown(row)) {
            PlaceControl(row, y, available);
            PlaceKeys(row, y, available);
            y += row.height;
            if (row.below) {
                const int belowHeight = row.below->sizeHint().height();
                row.below->setGeometry(marginLeft, y, available, belowHeight);
                y += belowHeight;
            }
            y += rowGap;
        }
        ApplyShown(row);
    }
    // Against the last layout: somebody may have asked for the size since, which measures.
    const QSize before = std::exchange(laidOut, QSize(minimumWidth, height));
    if (before != laidOut) {
        page.updateGeometry();
        page.update();
        if (before.height() != height)
            emit page.HeightChanged(height);
    }
    // The area that the page stands in has been asked for its new size and knows it by then.
    if (revealed)
        QMetaObject::invokeMethod(
            &page, [this] { Reveal(); }, Qt::QueuedConnection);
}

void ControlWnd::Private::PlaceControl(Row& row, int y, int available) const
{
    int width = std::clamp(available - Indent(row), row.minimumWidth,
                           std::max(row.maximumWidth, row.minimumWidth));
    int rowHeight = row.height;
    const QRect place(marginLeft + Indent(row), y, width, rowHeight);
    // Rows that have the size they were given are not told again.
    if (row.control && (!row.placed || place.size() != row.place.size())) {
        row.control->move(place.topLeft());
        row.control->SetSize(width, rowHeight, nullptr);
    } else {
        QWidget* widget = row.control ? static_cast<QWidget*>(row.control) : row.line;
        widget->setGeometry(place);
    }
    row.place = place;
    row.placed = true;
}

void ControlWnd::Private::PlaceKeys(const Row& row, int y, int available) const
{
    if (!row.keys)
        return;
    const QSize size = row.keys->sizeHint();
    row.keys->setGeometry(marginLeft + available + (keyColumn - size.width()) / 2,
                          y + (std::min(row.height, InspectorLineHeight) - size.height()) / 2,
                          size.width(), size.height());
}

void ControlWnd::Private::ApplyShown(const Row& row) const
{
    const bool shown = IsShown(row);
    for (QWidget* widget : {static_cast<QWidget*>(row.control), static_cast<QWidget*>(row.line),
                            static_cast<QWidget*>(row.keys), static_cast<QWidget*>(row.below)}) {
        if (widget && widget->isHidden() == shown)
            widget->setVisible(shown);
    }
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
    State state = State::Plain;
    const double time = row.control->CurrentTime();
    for (const Input* input : row.control->Inputs()) {
        const State own = input->HasExpression() ? State::Expression
                          : !input->IsAnimated() ? State::Plain
                          : input->IsKeyAt(time) ? State::Keyed
                                                 : State::Animated;
        state = std::max(state, own);
    }
    // The keyframe button sets keys of those that are shown and follow no expression.
    const InputList& shown = row.control->ShownInputs();
    bool animated = false;
    bool allKeyed = true;
    bool expressions = false;
    bool allExpressions = true;
    for (const Input* input : shown) {
        if (!input->GetAttrB(IA_Animatable, true))
            continue;
        if (input->HasExpression()) {
            expressions = true;
            continue;
        }
        allExpressions = false;
        animated = animated || input->IsAnimated();
        allKeyed = allKeyed && input->IsAnimated() && input->IsKeyAt(time);
    }
    if (row.keys) {
        using Keys = KeyFrameIndicator::State;
        row.keys->SetState(allExpressions && expressions ? Keys::Expression
                           : !animated                   ? Keys::None
                           : allKeyed                    ? Keys::Keyed
                                                         : Keys::Animated);
        if (row.keys->isEnabled() != row.control->IsUsable())
            row.keys->setEnabled(row.control->IsUsable());
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
    if (!tool || !tool->GetDoc())
        return;
    const BulkChange bulk(tool->GetDoc()->Undo()); // controls of several values show them at once
    for (const Ref<InputControl>& control : std::vector(page.controls_)) {
        for (Input* input : InputList(control->Inputs())) {
            if (input->Moves() && control->IsOpen())
                control->Refresh(*input);
        }
    }
}

} // namespace Marlox
