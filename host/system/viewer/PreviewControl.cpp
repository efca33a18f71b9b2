#include "system/viewer/PreviewControl.h"

#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <cstring>

namespace Marlox {

const MxID PreviewControl::ClassID = "PreviewControl";
const MxID OverlayControl::ClassID = "OverlayControl";

namespace {

const MxID& DisplayChangedEvent()
{
    static const MxID id = "DisplayChanged";
    return id;
}

/// Copies UTF-8 text into a buffer of `size` bytes, cut between characters.
bool CopyText(const QString& text, char* out, int size)
{
    if (!out || size <= 0)
        return false;
    QByteArray bytes = text.toUtf8();
    if (bytes.size() >= size) {
        int end = size - 1;
        while (end > 0 && (bytes[end] & 0xc0) == 0x80) // within a character
            --end;
        bytes.truncate(end);
    }
    std::memcpy(out, bytes.constData(), std::size_t(bytes.size()) + 1);
    return true;
}

} // namespace

PreviewControl::PreviewControl(const Registry* record, const ScriptVal&, const TagList& attributes)
    : record_(record)
{
    attributes_.Merge(attributes);
}

PreviewControl::~PreviewControl()
{
    QObject::disconnect(timeChanges_);
    for (Input* input : inputs_) {
        input->RemoveNotify(this);
        input->RemoveControl(this);
    }
}

std::size_t PreviewControl::SizeOf() const
{
    return sizeof(*this);
}

std::size_t OverlayControl::SizeOf() const
{
    return sizeof(*this);
}

MarloxDoc* PreviewControl::GetDoc() const
{
    return owner_ ? owner_->GetDoc() : nullptr;
}

bool PreviewControl::SetAttrsTagList(const TagList& tags)
{
    attributes_.Merge(tags);
    bool accepted = true;
    for (Input* input : std::vector(inputs_)) {
        TagList all(input->Attributes());
        all.Merge(attributes_);
        accepted = SetAttrsTagList(input, all) && accepted;
    }
    UpdateDisplay(nullptr, nullptr);
    return accepted;
}

bool PreviewControl::CopyAttr(u64 tag, void* out)
{
    const TagPair* pair = attributes_.Find(u32(tag));
    if (!pair)
        return Object::CopyAttr(tag, out);
    const u64 bits = pair->Bits();
    std::memcpy(out, &bits, sizeof bits);
    return true;
}

u64 PreviewControl::DoTagList(unsigned int command, TagList& tags)
{
    const auto index = unsigned(tags.GetLong(IA_OverlayIndex));
    switch (command) {
    case Redisplay:
        UpdateDisplay(nullptr, &tags);
        return 1;
    case WriteValue:
        return SetInputs(dynamic_cast<Parameter*>(tags.GetObject(PV_Value)),
                         tags.GetDouble(PVD_Time, CurrentTime()), index, &tags)
                   ? 1
                   : 0;
    case OpenUndo:
        SetUndo(index, &tags);
        return undo_.IsOpen() ? 1 : 0;
    case CloseUndo:
        ResetUndo(&tags);
        return 1;
    default:
        return Object::DoTagList(command, tags);
    }
}

void PreviewControl::AddToMenu(Menu*, TagList&) {}

void PreviewControl::GetAvailableEvents(std::vector<MxID>& out) const
{
    out.push_back(DisplayChangedEvent());
}

// Inputs -----------------------------------------------------------------------------------------

Operator* PreviewControl::GetOperator(TagList*)
{
    return owner_.Get();
}

void PreviewControl::SetView(PreviewInfo* view, TagList*)
{
    view_ = view;
}

bool PreviewControl::SetAttrsTagList(Input* input, const TagList&)
{
    return input != nullptr;
}

bool PreviewControl::AddInput(Input* input, TagList*)
{
    if (!input || (owner_ && &input->Owner() != owner_.Get()))
        return false;
    if (std::find(inputs_.begin(), inputs_.end(), input) != inputs_.end())
        return true;
    SetOperator(&input->Owner());
    inputs_.push_back(input);
    connected_.push_back(!input->GetState().source.empty());
    input->AddControl(this);
    input->AddNotify(this, MxID());
    if (MarloxDoc* document = inputs_.size() == 1 ? GetDoc() : nullptr)
        timeChanges_ = QObject::connect(document, &MarloxDoc::CurrentTimeChanged, document,
                                        [this] { TimeChanged(); });
    return true;
}

bool PreviewControl::RemoveInput(Input* input, TagList*)
{
    const auto found = std::find(inputs_.begin(), inputs_.end(), input);
    if (found == inputs_.end())
        return false;
    connected_.erase(connected_.begin() + (found - inputs_.begin()));
    inputs_.erase(found);
    input->RemoveNotify(this);
    input->RemoveControl(this);
    if (inputs_.empty()) {
        QObject::disconnect(timeChanges_);
        ResetUndo(nullptr);
    }
    return true;
}

Input* PreviewControl::FindInputByIndex(unsigned int index) const
{
    for (Input* input : inputs_) {
        if (input->GetAttr(IA_OverlayIndex, -1) == int64(index))
            return input;
    }
    return nullptr;
}

void PreviewControl::SetOperator(Operator* owner)
{
    owner_ = Ref<Operator>::Share(owner);
}

double PreviewControl::CurrentTime() const
{
    return owner_ ? owner_->CurrentTime() : 0.0;
}

// Values and undo --------------------------------------------------------------------------------

bool PreviewControl::SetInputs(Parameter* value, double time, unsigned int index, TagList* tags)
{
    Input* input = FindInputByIndex(index);
    if (!value || !input || input->HasExpression() || !input->GetState().source.empty())
        return false;
    const Ref<Parameter> accepted = input->Accepted(*value);
    if (!accepted)
        return false;
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    const bool gesture = undo_.IsOpen();
    SetUndo(index, tags);
    const bool written = input->SetValue(*accepted, time);
    if (!gesture)
        ResetUndo(tags);
    return written;
}

void PreviewControl::SetUndo(unsigned int index, TagList*)
{
    const Input* input = FindInputByIndex(index);
    if (MarloxDoc* document = GetDoc())
        undo_.Begin(document,
                    QStringLiteral("Adjust %1").arg(input ? input->GetName() : owner_->GetName()));
}

void PreviewControl::ResetUndo(TagList*)
{
    undo_.End();
}

bool PreviewControl::HandleEvent(Object* sender, const MxID& event, TagList& tags)
{
    const auto found = std::find_if(inputs_.begin(), inputs_.end(), [sender](Input* input) {
        return static_cast<Object*>(input) == sender;
    });
    if (found == inputs_.end())
        return Object::HandleEvent(sender, event, tags);
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    Input& input = **found;
    if (event == MxID("AttrsChanged")) {
        TagList all(input.Attributes());
        all.Merge(attributes_);
        SetAttrsTagList(&input, all);
    } else if (event != MxID("ValueChanged")) {
        return Object::HandleEvent(sender, event, tags);
    }
    Refresh(input);
    return true;
}

void PreviewControl::Refresh(Input& input)
{
    const auto found = std::find(inputs_.begin(), inputs_.end(), &input);
    if (found == inputs_.end())
        return;
    const std::size_t position = found - inputs_.begin();
    const bool connected = !input.GetState().source.empty();
    if (connected != connected_[position]) {
        connected_[position] = connected;
        if (connected)
            OnConnect(&input, nullptr);
        else
            OnDisconnect(&input, nullptr);
    }
    const Ref<Parameter> value = input.GetValue(CurrentTime());
    NotifyChanged(&input, value.Get(), nullptr);
    UpdateDisplay(&input, nullptr);
}

void PreviewControl::TimeChanged()
{
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    for (Input* input : GetDoc() ? std::vector(inputs_) : std::vector<Input*>()) {
        if (input->IsAnimated() || input->HasExpression())
            Refresh(*input);
    }
}

void PreviewControl::NotifyChanged(Input*, Parameter*, TagList*) {}

void PreviewControl::UpdateDisplay(Input*, TagList* tags)
{
    TagList none;
    Notify(DisplayChangedEvent(), tags ? *tags : none);
}

void PreviewControl::OnConnect(Input*, TagList*) {}
void PreviewControl::OnDisconnect(Input*, TagList*) {}

// Drawing and dragging ---------------------------------------------------------------------------

void PreviewControl::SetActive(int, TagList* tags)
{
    active_ = true;
    UpdateDisplay(nullptr, tags);
}

void PreviewControl::SetInactive(TagList* tags)
{
    active_ = false;
    dragState_ = DragType::None;
    ResetUndo(tags);
    UpdateDisplay(nullptr, tags);
}

void PreviewControl::GLDrawControls(PreviewInfo*, TagList*) {}

DragType PreviewControl::ControlDown(PreviewInfo*, const MxPointT<int>&, TagList*)
{
    return DragType::None;
}

void PreviewControl::ControlMove(PreviewInfo*, const MxPointT<int>&, TagList*) {}

void PreviewControl::ControlUp(PreviewInfo*, const MxPointT<int>&, TagList* tags)
{
    dragState_ = DragType::None;
    ResetUndo(tags);
}

bool PreviewControl::ControlCommand(PreviewInfo*, const MxID&, u64, TagList*)
{
    return false;
}

bool PreviewControl::ControlGetTip(PreviewInfo*, char*, TagList*)
{
    return false;
}

bool PreviewControl::GetName(char* name, int size, TagList*)
{
    return !inputs_.empty() && CopyText(inputs_.front()->GetName(), name, size);
}

bool PreviewControl::GetFullName(char* name, int size, Input* input, TagList*)
{
    if (!input && !inputs_.empty())
        input = inputs_.front();
    return input &&
           CopyText(input->Owner().GetName() + QLatin1Char('.') + input->GetName(), name, size);
}

} // namespace Marlox
