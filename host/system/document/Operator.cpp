#include "system/document/Operator.h"

#include "system/base/Registry.h"
#include "system/document/ExpressionNames.h"
#include "system/document/InputState.h"
#include "system/document/MarloxDoc.h"
#include "system/document/PublishedInputs.h"

#include <algorithm>

#include <QCoreApplication>

namespace Marlox {

namespace {

constexpr const char* knownFields[] = {"Class",    "Name",      "Locked",
                                       "Disabled", "Published", "Inputs"};

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Document", text);
}

void renameInExpressions(const MarloxDoc& document, const QString& from, const QString& to)
{
    for (const Ref<Operator>& tool : document.Tools()) {
        const auto isOwnName = [&tool](const std::string& name) {
            return tool->FindInput(MxID(std::string_view(name))) != nullptr;
        };
        for (const Ref<Input>& input : tool->Inputs()) {
            if (!input->HasExpression())
                continue;
            Input::State state = input->GetState();
            state.expression = RenameToolInExpression(state.expression, from, to, isOwnName);
            input->ChangeTo(std::move(state), Input::EvenIfLocked);
        }
    }
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
    renameInExpressions(*document, before, next);
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
    if (locked_ || IsModifier())
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

Ref<Parameter> Operator::Compute(const Input&, double) const
{
    return nullptr;
}

ShapePlacement Operator::PlacementOf(const Input&, double) const
{
    return {};
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
    if (const ScriptVal published = WritePublished(*this); !published.IsNil())
        state.Set("Published", published);
    ScriptVal inputs = ScriptVal::MakeTable();
    for (const Ref<Input>& input : inputs_) {
        if (!input->IsComputed())
            inputs.Set(input->GetID().View(), WriteInputState(*input));
    }
    for (const auto& [id, value] : unknownInputs_.Fields())
        inputs.Set(id, value.Clone());
    state.Set("Inputs", inputs);
    return true;
}

bool Operator::ReadInputs(const ScriptVal& table, Settings& out, QString& error,
                          QStringList& notes) const
{
    const auto inputOf = [&](const MxID& id) -> Input* {
        for (const Ref<Input>& input : out.published) {
            if (input->GetID() == id)
                return input.Get();
        }
        Input* own = FindInput(id);
        return own && !own->GetAttrB(IA_Published) ? own : nullptr;
    };
    for (const auto& [id, value] : table.Fields()) {
        const QString inputName = QString::fromStdString(id);
        Input* input = inputOf(MxID(std::string_view(id)));
        if (input && input->IsComputed())
            continue;
        if (!input) {
            out.unknown.Set(id, value.Clone());
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
        out.states.emplace_back(input, *read);
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
    if (!IsOwnState(state, error))
        return false;
    Settings settings;
    settings.disabled = state.Get("Disabled").ToBool() && !IsModifier();
    const QString before = name_;
    if (!document_)
        name_ = QString::fromStdString(state.Get("Name").ToString()).simplified();
    if (!ReadPublished(state.Get("Published"), settings, error) ||
        !ReadInputs(state.Get("Inputs"), settings, error, notes)) {
        name_ = before;
        return false;
    }
    for (const auto& [field, value] : state.Fields()) {
        if (std::find(std::begin(knownFields), std::end(knownFields), field) ==
            std::end(knownFields))
            notes += tr("Tool \"%1\": the field %2 is not known and was left out.")
                         .arg(name_, QString::fromStdString(field));
    }
    if (document_) {
        ChangeTo(std::move(settings), notes);
        return true;
    }
    TakeOver(std::move(settings));
    locked_ = state.Get("Locked").ToBool();
    return true;
}

/// Whether the table holds settings that this tool may take over now.
bool Operator::IsOwnState(const ScriptVal& state, QString& error) const
{
    const ScriptVal& inputs = state.Get("Inputs");
    const auto isFlag = [&state](const char* field) {
        const ScriptVal& value = state.Get(field);
        return value.IsNil() || value.GetType() == ScriptVal::Type::Boolean;
    };
    if (!state.IsTable() || MxID(state.Get("Class").ToString().c_str()) != toolType_ ||
        !(inputs.IsNil() || (inputs.IsTable() && inputs.Elements().empty())))
        error = tr("not the settings of a %1").arg(toolType_.ToString());
    else if (!isFlag("Locked") || !isFlag("Disabled"))
        error = tr("the field %1 has the wrong form")
                    .arg(QLatin1String(isFlag("Locked") ? "Disabled" : "Locked"));
    else if (locked_)
        error = tr("the tool \"%1\" is locked").arg(name_);
    else
        return true;
    return false;
}

/// Outside of a document: nothing is recorded.
void Operator::TakeOver(Settings settings)
{
    std::erase_if(inputs_, [](const Ref<Input>& input) { return input->GetAttrB(IA_Published); });
    inputs_.insert(inputs_.end(), settings.published.begin(), settings.published.end());
    unknownInputs_ = settings.unknown;
    for (const auto& [input, inputState] : settings.states)
        input->RestoreInputState(inputState);
    disabled_ = settings.disabled;
}

/// The change within a document, as one undo step. Connections that can't be made stay as they are.
void Operator::ChangeTo(Settings settings, QStringList& notes)
{
    MarloxDoc& document = *document_;
    document.Undo().Begin(tr("Change Settings of %1").arg(name_));
    for (const Ref<Input>& input : std::vector(inputs_)) {
        const auto& kept = settings.published;
        if (input->GetAttrB(IA_Published) &&
            std::find(kept.begin(), kept.end(), input) == kept.end())
            RemovePublishedInput(*input);
    }
    for (const Ref<Input>& input : settings.published) {
        if (FindInput(input->GetID()) != input.Get())
            Adopt(input, QString());
    }
    if (const ScriptVal& unknown = settings.unknown; !(unknown == unknownInputs_)) {
        const auto take = [self = Ref<Operator>::Share(this)](const ScriptVal& inputs) {
            self->unknownInputs_ = inputs;
        };
        document.PushStep([take, before = unknownInputs_] { take(before); },
                          [take, unknown = unknown] { take(unknown); }, QString());
        unknownInputs_ = unknown;
    }
    for (auto& [input, next] : settings.states) {
        const std::string present = input->GetState().source;
        const Operator* source = document.FindTool(QString::fromStdString(next.source));
        if (next.source != present && !next.source.empty() &&
            (!source || source->IsModifier() || document.IsFedBy(*source, *this))) {
            notes += tr("Tool \"%1\", input \"%2\": it can't be connected to \"%3\".")
                         .arg(name_, input->GetName(), QString::fromStdString(next.source));
            next.source = present;
        }
        input->ChangeTo(std::move(next));
    }
    DisableTool(settings.disabled);
    document.Undo().End();
}

} // namespace Marlox
