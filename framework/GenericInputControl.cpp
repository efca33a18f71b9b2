#include "framework/GenericInputControl.h"

#include "framework/GenericOperations.h"
#include "framework/UndoScope.h"
#include "system/widgets/ElideLabel.h"

#include <QGridLayout>

namespace Marlox {

namespace {

bool GetValues(Object& self, const ScriptVal&, ScriptVal& result)
{
    const auto* control = dynamic_cast<GenericInputControl*>(&self);
    if (!control)
        return false;
    result = ScriptVal::MakeTable();
    for (const Input* input : control->Inputs()) {
        const Ref<Parameter> value = control->ShownValue(IndexOf(*input, IA_ControlIndex));
        result.Set(input->GetID().View(), value ? value->ToScriptVal() : ScriptVal());
    }
    return true;
}

} // namespace

const ScriptOperation GenericInspectorFacts::operations[] = {
    {"IsGeneric", AnswerGeneric}, {"GetValues", GetValues}, {nullptr, nullptr}};

GenericInputControl::GenericInputControl(const Registry* record, const ScriptVal& creator,
                                         const TagList& attributes)
    : InputControl(record, creator, attributes)
{
}

GenericInputControl::~GenericInputControl() = default;

Ref<Parameter> GenericInputControl::ShownValue(unsigned int index) const
{
    for (const Row& row : rows_) {
        if (IndexOf(*row.input, IA_ControlIndex) == index)
            return row.value;
    }
    return {};
}

void GenericInputControl::SendValue(Input& input, Parameter& value)
{
    const Row* row = RowOf(&input);
    if (!row || (row->value && row->value->IsEqual(value)))
        return;
    const unsigned int index = IndexOf(input, IA_ControlIndex);
    const UndoScope undo(*this, index);
    SetInputs(&value, CurrentTime(), index, true, nullptr);
    UpdateDisplay(&input, nullptr); // a refused value goes from the editor, too
}

void GenericInputControl::SendExpression(Input& input, const QString& expression)
{
    const unsigned int index = IndexOf(input, IA_ControlIndex);
    const UndoScope undo(*this, index);
    SetExpressions(index, expression.toUtf8().data());
}

bool GenericInputControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    if (!InputControl::SetAttrsTagList(input, tags))
        return false;
    if (const Row* row = RowOf(input))
        ReadAttributes(*row);
    return true;
}

bool GenericInputControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!InputControl::Open(window, rect, tags))
        return false;
    BuildRows();
    return true;
}

void GenericInputControl::Close(TagList* tags)
{
    InputControl::Close(tags);
    RemoveWidgets();
}

bool GenericInputControl::AddInput(Input* input, TagList* tags)
{
    if (!InputControl::AddInput(input, tags))
        return false;
    if (!RowOf(input))
        rows_.push_back({input, input->GetValue(CurrentTime())});
    if (IsOpen())
        BuildRows();
    return true;
}

bool GenericInputControl::RemoveInput(Input* input, TagList* tags)
{
    if (!InputControl::RemoveInput(input, tags))
        return false;
    std::erase_if(rows_, [&](const Row& row) {
        if (row.input == input) {
            delete row.label;
            delete row.editor;
        }
        return row.input == input;
    });
    if (IsOpen())
        BuildRows();
    return true;
}

void GenericInputControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    Row* row = RowOf(input);
    if (row && value && !(row->value && row->value->IsEqual(*value)))
        row->value = Ref<Parameter>::Share(value);
    InputControl::NotifyChanged(input, value, tags);
}

void GenericInputControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (!IsOpen())
        return;
    for (const Row& row : rows_) {
        if (row.editor && row.value && (!input || row.input == input))
            row.editor->ShowValue(*row.value);
    }
    InputControl::UpdateDisplay(input, tags);
}

Input* GenericInputControl::GetInputFrom(QWidget* widget, TagList* tags)
{
    for (const Row& row : rows_) {
        const bool inRow =
            row.editor && widget &&
            (widget == row.label || widget == row.editor || row.editor->isAncestorOf(widget));
        if (inRow)
            return row.input;
    }
    return InputControl::GetInputFrom(widget, tags);
}

GenericEditor* GenericInputControl::MakeEditor(Input& input)
{
    return GenericEditor::Make(*this, input);
}

QString GenericInputControl::Title() const
{
    if (!rows_.empty())
        return rows_.front().input->GetName();
    const char* name = GetAttrS(IAS_Name, GetRegistry() ? GetRegistry()->ClassID().c_str() : "");
    return QString::fromUtf8(name);
}

GenericInputControl::Row* GenericInputControl::RowOf(const Input* input)
{
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [input](const Row& row) { return row.input == input; });
    return found != rows_.end() ? &*found : nullptr;
}

void GenericInputControl::BuildRows()
{
    RemoveWidgets();
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(4);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 2);
    for (Row& row : rows_) {
        row.editor = MakeEditor(*row.input);
        if (!row.editor)
            continue;
        row.label = new ElideLabel(this);
        row.label->setObjectName("label");
        row.label->setFocusProxy(row.editor);
        const int line = grid->rowCount();
        grid->addWidget(row.label, line, 0);
        grid->addWidget(row.editor, line, 1);
        ReadAttributes(row);
    }
    if (grid->count() == 0) {
        title_ = new ElideLabel(this);
        title_->setObjectName("label");
        title_->SetText(Title());
        grid->addWidget(title_, 0, 0, 1, 2);
    }
    UpdateDisplay(nullptr, nullptr);
    RecalcControlSize();
}

void GenericInputControl::ReadAttributes(const Row& row)
{
    if (!row.editor)
        return;
    row.editor->ReadAttributes();
    row.label->SetText(row.input->GetName());
    row.label->setVisible(!GetAttrB(IC_NoLabel, row.input->GetAttrB(IC_NoLabel)));
}

void GenericInputControl::RemoveWidgets()
{
    for (Row& row : rows_) {
        delete std::exchange(row.label, nullptr);
        delete std::exchange(row.editor, nullptr);
    }
    delete std::exchange(title_, nullptr);
    delete layout();
}

} // namespace Marlox
