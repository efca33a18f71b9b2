// The expression lines of an InputControl: made when an input first has an expression, hidden when
// it has none.

#include "system/controls/ControlWnd.h"
#include "system/controls/InputControlPrivate.h"

namespace Marlox {

namespace {

/// The last widget of `parent` in the order of tabbing.
QWidget* LastInTabOrder(QWidget* parent)
{
    QWidget* last = parent;
    for (QWidget* next = parent->nextInFocusChain(); parent->isAncestorOf(next);
         next = next->nextInFocusChain())
        last = next;
    return last;
}

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
    Input* input = FindInputByIndex(unsigned(index));
    if (!input || !container || d_->PlaceOf(unsigned(index)))
        return false;
    d_->places.push_back({unsigned(index), container, {}, {}});
    if (input->HasExpression())
        AddExpressionEdit(input, nullptr);
    return true;
}

bool InputControl::CreateExpressionEdit(int index, MxRect& rect, TagList*)
{
    Input* input = FindInputByIndex(unsigned(index));
    if (!input || rect.IsEmpty() || d_->PlaceOf(unsigned(index)))
        return false;
    d_->places.push_back({unsigned(index), {}, rect, {}});
    if (input->HasExpression())
        AddExpressionEdit(input, nullptr);
    return true;
}

void InputControl::AddExpressionEdit(Input* input, TagList*)
{
    if (!input || !window_)
        return;
    const auto index = unsigned(input->GetAttr(IA_ControlIndex));
    Private::ExpressionPlace* place = d_->PlaceOf(index);
    if (!place || (!place->container && place->rect.IsEmpty())) {
        std::erase_if(d_->places, [index](const auto& gone) { return gone.index == index; });
        d_->places.push_back({index, window_->PlaceBelow(*this), {}, {}});
        place = &d_->places.back();
    }
    if (!place->line) {
        auto* line = new MxLineEdit(QString::fromStdString(input->GetExpression()));
        line->setObjectName(QStringLiteral("expression"));
        line->setAccessibleName(tr("Expression of %1").arg(input->GetName()));
        place->line = line;
        QWidget* last = LastInTabOrder(this);
        if (place->container)
            place->container->AddWidget(line);
        else {
            line->setParent(this);
            line->setGeometry(ToQRect(place->rect));
        }
        QWidget::setTabOrder(last, line);
        connect(line, &MxLineEdit::Committed, this, [this, index](const QString& text) {
            SetExpressions(index, text.toUtf8().data());
            // What was refused does not stay.
            if (const Input* shown = FindInputByIndex(index))
                if (const auto* kept = d_->PlaceOf(index); kept && kept->line)
                    ShowState(*kept->line, *shown);
        });
        connect(line, &QLineEdit::textChanged, this, [this, index](const QString& text) {
            // Escape brought the committed text back, and with it what is wrong with it.
            const Input* shown = FindInputByIndex(index);
            const auto* kept = d_->PlaceOf(index);
            if (shown && kept && kept->line &&
                text == QString::fromStdString(shown->GetExpression()))
                kept->line->SetError(shown->ExpressionError());
        });
    }
    if (!place->line->isHidden())
        return;
    if (place->container)
        place->container->show();
    place->line->show();
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
