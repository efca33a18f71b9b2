// The inputs that come to a tool later: points of its shapes.

#include "system/document/PublishedInputs.h"

#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>

namespace Marlox {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Document", text);
}

/// As scripts can write it; empty if they can't.
std::string asScriptName(const QString& name)
{
    std::string text;
    for (const QChar c : name.simplified()) {
        const bool plain = c.unicode() < 0x80 && (c.isLetterOrNumber() || c == '_');
        text += plain ? char(c.unicode()) : '_';
    }
    return !text.empty() && text[0] >= '0' && text[0] <= '9' ? "_" + text : text;
}

} // namespace

ScriptVal WritePublished(const Operator& tool)
{
    ScriptVal list;
    for (const Ref<Input>& input : tool.Inputs()) {
        if (!input->GetAttrB(IA_Published))
            continue;
        ScriptVal entry;
        entry.Append(input->GetID().c_str());
        entry.Append(input->GetName().toStdString());
        entry.Append(input->Attributes().GetDouble(IAD_DefaultX));
        entry.Append(input->Attributes().GetDouble(IAD_DefaultY));
        list.Append(entry);
    }
    return list;
}

MxID Operator::FreeInputID(const QString& name) const
{
    const auto isFree = [this](const std::string& id) { return !FindInput(MxID(id.c_str())); };
    const std::string wanted = asScriptName(name);
    if (!wanted.empty() && isFree(wanted))
        return MxID(wanted.c_str());
    const std::string stem = wanted.empty() ? "Point" : wanted;
    for (int number = wanted.empty() ? 0 : 1;; ++number) {
        if (const std::string id = stem + std::to_string(number); isFree(id))
            return MxID(id.c_str());
    }
}

Ref<Input> Operator::MakePublished(const MxID& id, const QString& name, double x, double y)
{
    const QByteArray shown = name.toUtf8();
    const TagList tags{{IAS_Name, shown.constData()},
                       {IAS_Help, "A point of the tool's shape"},
                       {IAS_Control, CLSID_InputControl_Offset},
                       {IAS_DataType, CLSID_DataType_Point},
                       {IAD_DefaultX, x},
                       {IAD_DefaultY, y},
                       {IA_Published, true}};
    return MakeRef<Input>(*this, id, tags);
}

Input* Operator::AddPublishedInput(const QString& name, double x, double y)
{
    if (locked_)
        return nullptr;
    const MxID id = FreeInputID(name);
    const bool renamed = id.ToString() != QString::fromStdString(asScriptName(name));
    const QString shown = renamed ? id.ToString() : name.simplified();
    const Ref<Input> input = MakePublished(id, shown, x, y);
    Adopt(input, tr("Publish %1"));
    return input.Get();
}

void Operator::AddPublishedInputsOf(const Operator& other)
{
    for (const Ref<Input>& input : other.inputs_) {
        if (input->GetAttrB(IA_Published) && !FindInput(input->GetID()))
            Adopt(MakePublished(input->GetID(), input->GetName(),
                                input->Attributes().GetDouble(IAD_DefaultX),
                                input->Attributes().GetDouble(IAD_DefaultY)),
                  tr("Publish %1"));
    }
}

/// Puts a new input behind the others, as an undo step.
void Operator::Adopt(const Ref<Input>& input, const QString& text)
{
    const std::size_t at = inputs_.size();
    InsertInput(input, at);
    if (document_)
        document_->PushStep(
            [self = Ref<Operator>::Share(this), input] { self->TakeInput(*input); },
            [self = Ref<Operator>::Share(this), input, at] { self->InsertInput(input, at); },
            text.isEmpty() ? text : text.arg(input->GetName()));
}

bool Operator::RemovePublishedInput(Input& input)
{
    const auto found = std::find_if(inputs_.begin(), inputs_.end(),
                                    [&input](const auto& own) { return own.Get() == &input; });
    if (locked_ || found == inputs_.end() || !input.GetAttrB(IA_Published))
        return false;
    const auto held = *found;
    const auto at = std::size_t(found - inputs_.begin());
    TakeInput(input);
    if (document_)
        document_->PushStep(
            [self = Ref<Operator>::Share(this), held, at] { self->InsertInput(held, at); },
            [self = Ref<Operator>::Share(this), held] { self->TakeInput(*held); },
            tr("Unpublish %1").arg(held->GetName()));
    return true;
}

void Operator::InsertInput(const Ref<Input>& input, std::size_t at)
{
    inputs_.insert(inputs_.begin() + std::ptrdiff_t(std::min(at, inputs_.size())), input);
    if (!document_)
        return;
    emit document_->InputAdded(input.Get());
    document_->TellExpressions(nullptr);
}

void Operator::TakeInput(Input& input)
{
    const auto held = Ref<Input>::Share(&input);
    if (document_)
        emit document_->InputAboutToBeRemoved(&input);
    std::erase(inputs_, held);
    if (!document_)
        return;
    emit document_->InputRemoved(&input);
    document_->TellExpressions(nullptr);
}

/// The published inputs that a table of settings lists: those of that id that there are, and new
/// ones.
bool Operator::ReadPublished(const ScriptVal& list, Settings& out, QString& error)
{
    const auto isPlace = [](const ScriptVal& value) {
        return value.IsNil() || (value.IsNumber() && std::isfinite(value.ToNumber()));
    };
    bool fits = list.IsNil() || (list.IsTable() && list.Fields().empty());
    for (const ScriptVal& entry : list.Elements()) {
        const std::string name = entry.At(1).ToString();
        const MxID id(name.c_str());
        Input* present = FindInput(id);
        const bool isTaken =
            (present && !present->GetAttrB(IA_Published)) ||
            std::any_of(out.published.begin(), out.published.end(),
                        [&](const Ref<Input>& input) { return input->GetID() == id; });
        fits = fits && !name.empty() && isPlace(entry.At(3)) && isPlace(entry.At(4)) && !isTaken;
        if (!fits)
            break;
        out.published.push_back(
            present ? Ref<Input>::Share(present)
                    : MakePublished(id, QString::fromStdString(entry.At(2).ToString(name)),
                                    entry.At(3).ToNumber(0.5), entry.At(4).ToNumber(0.5)));
    }
    if (!fits)
        error = tr("the field %1 has the wrong form").arg(QLatin1String("Published"));
    return fits;
}

} // namespace Marlox
