// The expression lines of an InputControl: made when an input first has an expression, hidden when
// it has none.

#include "system/controls/ControlWnd.h"
#include "system/controls/InputControl_p.h"

#include <functional>

namespace Marlox {

namespace {

/// The last widget of `parent` in the order of tabbing.
QWidget* LastInTabOrder(QWidget* parent)
{
    QWidget* last = parent;
    QWidget* next = parent->nextInFocusChain();
    for (; parent->isAncestorOf(next); next = next->nextInFocusChain())
        last = next;
    if (last->focusPolicy() != Qt::NoFocus)
        return last;
    // In a row that was unfolded later those that take the keyboard stand elsewhere.
    for (; next != parent; next = next->nextInFocusChain()) {
        if (next->focusPolicy() != Qt::NoFocus && parent->isAncestorOf(next))
            last = next;
    }
    return last;
}

using Test = std::function<bool(const MxLineEdit& line, const Input& input)>;

void ShowState(MxLineEdit& line, const Input& input)
{
    const QString text = QString::fromStdString(input.GetExpression());
    const bool typing = line.hasFocus() && line.isModified() && line.text() != text;
    if (typing)
        return;
    if (line.text() != text)
        line.setText(text);
    line.SetError(input.ExpressionError());
}

} // namespace

bool InputControl::CreateExpressionEdit(int index, Container* container, TagList*)
{
    return container && d_->AddPlace(*this, {.index = unsigned(index), .container = container});
}

bool InputControl::CreateExpressionEdit(int index, MxRect& rect, TagList*)
{
    return !rect.IsEmpty() && d_->AddPlace(*this, {.index = unsigned(index), .rect = rect});
}

bool InputControl::CreateExpressionEdit(int index, LayoutObj* place, TagList*)
{
    return place && place->IsContainer() &&
           d_->AddPlace(*this, {.index = unsigned(index), .object = place});
}

bool InputControl::Private::AddPlace(InputControl& self, ExpressionPlace place)
{
    Input* input = self.FindInputByIndex(place.index);
    if (!input || PlaceOf(place.index))
        return false;
    places.push_back(std::move(place));
    if (input->HasExpression())
        self.AddExpressionEdit(input, nullptr);
    return true;
}

/// The place of an input that the control named, or one found for it.
InputControl::Private::ExpressionPlace* InputControl::Private::PlaceFor(InputControl& self,
                                                                        unsigned int index)
{
    if (!PlaceOf(index)) {
        LayoutObj* object = self.FindLayoutObj("expression");
        if (object && object->IsContainer())
            places.push_back({.index = index, .object = object});
        else
            places.push_back({.index = index, .container = self.window_->PlaceBelow(self)});
    }
    ExpressionPlace* place = PlaceOf(index);
    if (place->object && !place->container)
        place->container = qobject_cast<Container*>(place->object->Widget());
    return place;
}

MxLineEdit* InputControl::MakeExpressionLine(const Input& input)
{
    const auto index = unsigned(input.GetAttr(IA_ControlIndex));
    auto* line = new MxLineEdit(QString::fromStdString(input.GetExpression()));
    line->setObjectName(QStringLiteral("expression"));
    line->setAccessibleName(tr("Expression of %1").arg(input.GetName()));
    if (inputs_.list.size() > 1)
        line->SetCaption(input.GetName()); // lines of several may stand together
    const auto showTrue = [this, index](const Test& isShown) {
        const Input* shown = FindInputByIndex(index);
        const auto* place = d_->PlaceOf(index);
        if (shown && place && place->line && isShown(*place->line, *shown))
            ShowState(*place->line, *shown);
    };
    connect(line, &MxLineEdit::Committed, this, [this, index, showTrue](const QString& text) {
        SetExpressions(index, text.toUtf8().data());
        showTrue([](const auto&, const auto&) { return true; }); // what was refused does not stay
    });
    // Escape brought the committed text back, and with it what is wrong with it.
    connect(line, &QLineEdit::textChanged, this, [showTrue] {
        showTrue([](const MxLineEdit& edit, const Input& shown) {
            return edit.text() == QString::fromStdString(shown.GetExpression());
        });
    });
    return line;
}

void InputControl::AddExpressionEdit(Input* input, TagList*)
{
    if (!input || !window_)
        return;
    Private::ExpressionPlace& place =
        *d_->PlaceFor(*this, unsigned(input->GetAttr(IA_ControlIndex)));
    if (!place.line) {
        QWidget* last = LastInTabOrder(this);
        place.line = MakeExpressionLine(*input);
        if (place.container) {
            place.container->AddWidget(place.line);
        } else {
            place.line->setParent(this);
            place.line->setGeometry(ToQRect(place.rect));
        }
        QWidget::setTabOrder(last, place.line);
    } else if (!place.line->isHidden()) {
        return;
    }
    if (place.container)
        place.container->show();
    place.line->show();
    RecalcControlSize();
}

void InputControl::ExpressionChanged(Input* input, TagList*)
{
    if (!input || !window_)
        return;
    if (input->HasExpression())
        AddExpressionEdit(input, nullptr);
    const Private::ExpressionPlace* place = d_->PlaceOf(unsigned(input->GetAttr(IA_ControlIndex)));
    if (!place || !place->line)
        return;
    if (input->HasExpression()) {
        ShowState(*place->line, *input);
    } else if (!place->line->isHidden()) {
        place->line->hide();
        RecalcControlSize();
    }
}

void* InputControl::GetExpressionData(int index, TagList*)
{
    const Private::ExpressionPlace* place = d_->PlaceOf(unsigned(index));
    return place ? static_cast<QWidget*>(place->line) : nullptr;
}

MxRect InputControl::GetExpressionRect(int index, TagList*)
{
    const Private::ExpressionPlace* place = d_->PlaceOf(unsigned(index));
    if (!place || !place->line || place->line->isHidden())
        return {};
    return ToMxRect({place->line->mapTo(window(), {}) - mapTo(window(), {}), place->line->size()});
}

void InputControl::OnOK()
{
    for (const Private::ExpressionPlace& place : d_->places) {
        if (const QPointer<MxLineEdit> line = place.line; line && !line->isHidden())
            line->Commit();
    }
}

void InputControl::OnCancel()
{
    for (const Private::ExpressionPlace& place : d_->places) {
        if (const QPointer<MxLineEdit> line = place.line; line && !line->isHidden())
            line->Restore();
    }
}

} // namespace Marlox
