#include "framework/GenericInputControl.h"

#include "framework/GenericOperations.h"
#include "framework/UndoScope.h"
#include "system/controls/Layout.h"
#include "system/widgets/Container.h"
#include "system/widgets/ElideLabel.h"

#include <string>

namespace Marlox {

namespace {

// Pixels; as the look's layouts have them, so that rows of all kinds stand in line.
constexpr int rowSpacing = 2;
constexpr int rowHeight = 24;
constexpr int labelWidth = 110;

ScriptVal Item(const std::string& name)
{
    ScriptVal item = ScriptVal::MakeTable();
    item.Append("Item");
    item.Set("name", name);
    item.Set("minheight", rowHeight);
    return item;
}

/// Adds the description of one row: the label, the editor's parts, and below them the place of the
/// expression line.
void AppendRow(ScriptVal& layout, const std::string& number,
               const std::vector<GenericEditor::Part>& parts)
{
    ScriptVal label = Item("label" + number);
    label.Set("weight", 0);
    label.Set("minwidth", labelWidth);
    label.Set("maxwidth", labelWidth);
    ScriptVal row = ScriptVal::MakeTable();
    row.Append("HGroup");
    row.Set("spacing", 8);
    row.Append(label);
    for (const GenericEditor::Part& part : parts)
        row.Append(Item(part.name + number));
    ScriptVal expression = ScriptVal::MakeTable();
    expression.Append("Container");
    expression.Set("name", "expression" + number);
    layout.Append(row);
    layout.Append(expression);
}

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
    const bool final = UndoDepth() == 0; // else a drag is under way
    const UndoScope undo(*this, index);
    SetInputs(&value, CurrentTime(), index, final, nullptr);
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
        rows_.push_back({input, input->GetValue(CurrentTime()), nullptr, nullptr});
    if (IsOpen())
        BuildRows();
    return true;
}

bool GenericInputControl::RemoveInput(Input* input, TagList* tags)
{
    if (!InputControl::RemoveInput(input, tags))
        return false;
    std::erase_if(rows_, [input](const Row& row) { return row.input == input; });
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
        if (row.editor && widget && (widget == row.label.get() || row.editor->Has(widget)))
            return row.input;
    }
    return InputControl::GetInputFrom(widget, tags);
}

std::unique_ptr<GenericEditor> GenericInputControl::MakeEditor(Input& input)
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
    ScriptVal layout = ScriptVal::MakeTable();
    layout.Append("VGroup");
    layout.Set("spacing", rowSpacing);
    for (Row& row : rows_) {
        // Before its editor: behind it, the label would give Tab back to the editor's first widget.
        row.label = std::make_unique<ElideLabel>(this);
        row.editor = MakeEditor(*row.input);
        if (!row.editor) {
            row.label.reset();
            continue;
        }
        row.label->setFocusProxy(row.editor->Parts().front().widget);
        ReadAttributes(row);
        AppendRow(layout, RowNumber(row), row.editor->Parts());
    }
    if (layout.Length() == 1) {
        title_ = std::make_unique<ElideLabel>(this);
        title_->SetText(Title());
        layout.Append(Item("label"));
    }
    CreateLayout(layout, false, nullptr, nullptr);
    PlaceWidgets();
    UpdateDisplay(nullptr, nullptr);
    RecalcControlSize();
}

void GenericInputControl::PlaceWidgets()
{
    const auto place = [this](const std::string& name, QWidget* widget) {
        widget->setObjectName(QString::fromStdString(name));
        if (LayoutObj* object = FindLayoutObj(MxID(name)))
            object->SetWidget(widget);
    };
    if (title_)
        place("label", title_.get());
    for (const Row& row : rows_) {
        if (!row.editor)
            continue;
        const std::string number = RowNumber(row);
        place("label" + number, row.label.get());
        for (const GenericEditor::Part& part : row.editor->Parts())
            place(part.name + number, part.widget);
        LayoutObj* expression = FindLayoutObj(MxID("expression" + number));
        if (auto* container = expression ? qobject_cast<Container*>(expression->Widget()) : nullptr)
            CreateExpressionEdit(int(IndexOf(*row.input, IA_ControlIndex)), container, nullptr);
    }
}

std::string GenericInputControl::RowNumber(const Row& row) const
{
    std::size_t number = 0;
    for (const Row& each : rows_) {
        number += each.editor ? 1 : 0;
        if (&each == &row)
            break;
    }
    return number > 1 ? std::to_string(number) : std::string();
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
    delete GetLayout();
    for (Row& row : rows_) {
        row.label.reset();
        row.editor.reset();
    }
    title_.reset();
}

} // namespace Marlox
