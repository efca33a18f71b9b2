#include "system/document/Operator.h"

#include "system/base/Registry.h"
#include "system/document/InputState.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>

#include <QCoreApplication>

namespace Marlox {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Document", text);
}

} // namespace

Operator::Operator(const Registry* record) : toolType_(record ? record->ClassID() : MxID())
{
    if (record)
        SetScriptInfo(record->GetScriptInfo());
}

Operator::~Operator() = default;

MxID Operator::GetToolType() const
{
    return toolType_;
}

bool Operator::SetName(const QString& name)
{
    const QString wanted = name.simplified();
    if (locked_ || wanted.isEmpty())
        return false;
    if (!document_) {
        name_ = wanted;
        return true;
    }
    const QString next = document_->UniqueName(wanted, this);
    if (next == name_)
        return true;
    MarloxDoc* document = document_;
    const QString before = name_;
    const auto self = Ref<Operator>::Share(this);
    document->Undo().Begin(tr("Rename %1").arg(before));
    document->RenameInExpressions(before, next);
    document->Rename(*this, next);
    document->PushStep([=] { document->Rename(*self, before); },
                       [=] { document->Rename(*self, next); }, QString());
    document->Undo().End();
    return true;
}

bool Operator::SetFlag(bool Operator::*flag, bool on, const QString& text)
{
    if (this->*flag == on)
        return true;
    const auto apply = [self = Ref<Operator>::Share(this), flag](bool value) {
        self.Get()->*flag = value;
        if (self->document_)
            emit self->document_->ToolChanged(self.Get());
    };
    apply(on);
    if (document_)
        document_->PushStep([=] { apply(!on); }, [=] { apply(on); }, text.arg(name_));
    return true;
}

bool Operator::SetLocked(bool locked)
{
    return SetFlag(&Operator::locked_, locked, locked ? tr("Lock %1") : tr("Unlock %1"));
}

bool Operator::DisableTool(bool disable)
{
    if (locked_)
        return disabled_ == disable;
    return SetFlag(&Operator::disabled_, disable, disable ? tr("Disable %1") : tr("Enable %1"));
}

Input* Operator::FindInput(const MxID& id) const
{
    const auto found = std::find_if(inputs_.begin(), inputs_.end(), [&id](const Ref<Input>& input) {
        return input->GetID() == id;
    });
    return found != inputs_.end() ? found->Get() : nullptr;
}

Input& Operator::AddInput(const MxID& id, const TagList& attributes)
{
    inputs_.push_back(MakeRef<Input>(*this, id, attributes));
    return *inputs_.back();
}

Input* Operator::ImageInput() const
{
    static const MxID mainInput("Input");
    Input* input = FindInput(mainInput);
    return input && input->IsImage() ? input : nullptr;
}

double Operator::CurrentTime() const
{
    return document_ ? document_->CurrentTime() : 0.0;
}

bool Operator::SaveState(ScriptVal& state) const
{
    state = ScriptVal::MakeTable();
    state.Set("Class", toolType_.c_str());
    state.Set("Name", name_.toStdString());
    if (locked_)
        state.Set("Locked", true);
    if (disabled_)
        state.Set("Disabled", true);
    ScriptVal inputs = ScriptVal::MakeTable();
    for (const Ref<Input>& input : inputs_)
        inputs.Set(input->GetID().View(), WriteInputState(*input));
    for (const auto& [id, value] : unknownInputs_.Fields())
        inputs.Set(id, value.Clone());
    state.Set("Inputs", inputs);
    return true;
}

bool Operator::ReadInputs(const ScriptVal& table, InputStates& out, ScriptVal& unknown,
                          QString& error, QStringList& notes) const
{
    for (const auto& [id, value] : table.Fields()) {
        const QString inputName = QString::fromStdString(id);
        Input* input = FindInput(MxID(std::string_view(id)));
        if (!input) {
            unknown.Set(id, value.Clone());
            notes += tr("The tool \"%1\" has no input \"%2\"; it is kept in the file.")
                         .arg(name_.isEmpty() ? toolType_.ToString() : name_, inputName);
            continue;
        }
        QStringList inputNotes;
        const auto read = ReadInputState(*input, value, error, inputNotes);
        if (!read) {
            error = tr("input \"%1\": %2").arg(inputName, error);
            return false;
        }
        for (const QString& note : inputNotes)
            notes += tr("Tool \"%1\", input \"%2\": %3.").arg(name_, inputName, note);
        out.emplace_back(input, *read);
    }
    return true;
}

bool Operator::RestoreState(const ScriptVal& state)
{
    QString error;
    QStringList notes;
    return RestoreState(state, error, notes);
}

bool Operator::RestoreState(const ScriptVal& state, QString& error, QStringList& notes)
{
    const ScriptVal& toolClass = state.Get("Class");
    const ScriptVal& inputs = state.Get("Inputs");
    if (!state.IsTable() || MxID(toolClass.ToString().c_str()) != toolType_ ||
        !(inputs.IsNil() || inputs.IsTable())) {
        error = tr("not the settings of a %1").arg(toolType_.ToString());
        return false;
    }
    if (locked_) {
        error = tr("the tool \"%1\" is locked").arg(name_);
        return false;
    }
    InputStates states;
    ScriptVal unknown;
    if (!document_)
        name_ = QString::fromStdString(state.Get("Name").ToString()).simplified();
    if (!ReadInputs(inputs, states, unknown, error, notes))
        return false;
    unknownInputs_ = unknown;
    if (!document_) {
        for (const auto& [input, inputState] : states)
            input->RestoreInputState(inputState);
        disabled_ = state.Get("Disabled").ToBool();
        locked_ = state.Get("Locked").ToBool();
        return true;
    }
    document_->Undo().Begin(tr("Change Settings of %1").arg(name_));
    for (auto& [input, inputState] : states)
        input->ChangeTo(std::move(inputState));
    DisableTool(state.Get("Disabled").ToBool());
    document_->Undo().End();
    return true;
}

} // namespace Marlox
