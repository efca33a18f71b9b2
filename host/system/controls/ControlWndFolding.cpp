// How the headings of an inspector page fold the rows below them, and how rows come when they are
// first unfolded.

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputControl_p.h"

#include <algorithm>

#include <QScrollArea>
#include <QScrollBar>

namespace Marlox {

namespace {

/// Whether the keyboard is in `widget` or below it; `focus` may be null.
bool Holds(const QWidget* widget, const QWidget* focus)
{
    return widget && focus && (widget == focus || widget->isAncestorOf(focus));
}

/// The last widget that takes the keyboard in the order of tabbing, of `root` and what is in it, or
/// null. (These need not stand together in that order.)
QWidget* LastFocusable(QWidget* root)
{
    QWidget* last = root->focusPolicy() != Qt::NoFocus ? root : nullptr;
    for (QWidget* next = root->nextInFocusChain(); next != root; next = next->nextInFocusChain()) {
        if (next->focusPolicy() != Qt::NoFocus && root->isAncestorOf(next))
            last = next;
    }
    return last;
}

QScrollArea* AreaOf(QWidget& page)
{
    QWidget* viewport = page.parentWidget();
    auto* area = viewport ? qobject_cast<QScrollArea*>(viewport->parentWidget()) : nullptr;
    return area && area->widget() == &page ? area : nullptr;
}

} // namespace

// Which rows are folded --------------------------------------------------------------------------

/// Returns the controls of the rows that are folded now and were not before.
std::vector<Ref<InputControl>> ControlWnd::Private::FindFolded()
{
    struct Nest {
        Row* row; // of the heading
        bool counts;
        std::size_t left; // inputs that it still reaches
    };
    std::vector<Nest> nests; // those that the row stands in, outermost first
    std::vector<Ref<InputControl>> gone;
    std::size_t index = 0;
    const auto endFrom = [&nests, &index](std::vector<Nest>::iterator first) {
        std::for_each(first, nests.end(), [index](Nest& nest) { nest.row->end = index; });
        nests.erase(first, nests.end());
    };
    for (Row& row : rows) {
        endFrom(std::find_if(nests.begin(), nests.end(),
                             [](const Nest& nest) { return nest.counts && nest.left == 0; }));
        if (row.heading && !nests.empty() && !nests.back().counts)
            endFrom(std::prev(nests.end()));
        row.level = int(nests.size());
        const bool folded = std::any_of(nests.begin(), nests.end(),
                                        [](const Nest& nest) { return !nest.row->heading->open; });
        if (!std::exchange(row.folded, folded) && folded && row.control)
            gone.push_back(Ref<InputControl>::Share(row.control));
        for (Nest& nest : nests)
            nest.left -= std::min(nest.left, row.group.inputs.size());
        if (row.heading) {
            const int inputs = std::max(row.heading->inputs, 0);
            nests.push_back({&row, inputs > 0, std::size_t(inputs)});
        }
        ++index;
    }
    endFrom(nests.begin());
    return gone;
}

void ControlWnd::Private::Refold(InputControl& changed)
{
    const std::vector<Ref<InputControl>> gone = FindFolded();
    if (opening)
        return;
    const auto alive = Ref<InputControl>::Share(&changed);
    const QPointer<ControlWnd> shown(&page);
    for (const Ref<InputControl>& control : gone) {
        Leave(*control, changed);
        if (!shown)
            return; // the end of a gesture took the page with it
    }
    page.update();
    PostLayout();
}

/// A row gets folded: whatever the user was doing in it ends, as when they went elsewhere.
void ControlWnd::Private::Leave(InputControl& control, InputControl& heading)
{
    const QPointer<ControlWnd> shown(&page);
    const Row* row = RowOf(control);
    QWidget* focus = page.window()->focusWidget();
    if (row && (Holds(&control, focus) || Holds(row->keys, focus) || Holds(row->below, focus))) {
        heading.setFocus(Qt::OtherFocusReason);
        if (shown && page.window()->focusWidget() == focus)
            focus->clearFocus(); // the heading takes none
    }
    control.EndGesture();
    row = shown ? RowOf(control) : nullptr;
    if (row)
        ApplyShown(*row);
}

// Rows that were never unfolded ------------------------------------------------------------------

ControlWnd::Private::Row* ControlWnd::Private::RowFor(const Input& input)
{
    const auto found = std::find_if(rows.begin(), rows.end(), [&input](const Row& row) {
        const auto& inputs = row.group.inputs;
        return std::find(inputs.begin(), inputs.end(), &input) != inputs.end();
    });
    return found != rows.end() ? &*found : nullptr;
}

void ControlWnd::Private::OpenUnfolded()
{
    for (std::size_t i = 0; i < rows.size(); ++i) { // opening one may clear them
        if (!rows[i].folded && rows[i].IsWaiting())
            Open(rows[i]);
    }
}

/// Puts the widgets of a row that was opened later behind those of the rows above. They are the
/// last of the window, one behind the other.
void ControlWnd::Private::AdoptTabOrder(const Row& row)
{
    QWidget* before = nullptr;
    for (const Row* above = &row; !before && above != rows.data();) {
        --above;
        before = above->keys      ? above->keys
                 : above->control ? LastFocusable(above->control)
                                  : nullptr;
    }
    if (!before)
        return;
    std::vector<QWidget*> widgets;
    for (QWidget* next = row.control; row.control && Holds(row.control, next);
         next = next->nextInFocusChain())
        widgets.push_back(next);
    if (row.keys)
        widgets.push_back(row.keys);
    for (QWidget* widget : widgets) {
        if (widget->focusPolicy() == Qt::NoFocus)
            continue;
        QWidget::setTabOrder(before, widget);
        before = widget;
    }
}

// Scrolling --------------------------------------------------------------------------------------

void ControlWnd::Private::Reveal()
{
    const InputControl* control = std::exchange(revealed, nullptr);
    const Row* heading = control ? RowOf(*control) : nullptr;
    QScrollArea* area = AreaOf(page);
    if (!heading || !heading->heading || !IsShown(*heading) || !area)
        return;
    int bottom = heading->place.bottom();
    for (const Row* row = heading + 1; row < rows.data() + heading->end; ++row) {
        if (IsShown(*row))
            bottom = std::max(bottom,
                              row->below ? row->below->geometry().bottom() : row->place.bottom());
    }
    QScrollBar& bar = *area->verticalScrollBar();
    const int wanted = std::max(bar.value(), bottom + rowGap - area->viewport()->height());
    bar.setValue(std::min(wanted, heading->place.top() - rowGap));
}

// Of the page ------------------------------------------------------------------------------------

void ControlWnd::SetHeading(InputControl& control, int inputs, bool open)
{
    Private::Row* row = d_->RowOf(control);
    const Private::Heading heading{inputs, open};
    if (!row || row->heading == heading)
        return;
    row->heading = heading;
    d_->Refold(control);
}

bool ControlWnd::IsFolded(const InputControl& control) const
{
    const Private::Row* row = d_->RowOf(control);
    return row && row->folded;
}

void ControlWnd::Reveal(const InputControl& heading)
{
    d_->revealed = &heading;
    d_->PostLayout();
}

} // namespace Marlox
