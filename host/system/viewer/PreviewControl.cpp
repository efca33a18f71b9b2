#include "system/viewer/PreviewControl.h"

#include "system/document/MarloxDoc.h"
#include "system/viewer/MotionPath.h"

#include <algorithm>
#include <cstring>

namespace Marlox {

const MxID PreviewControl::ClassID = "PreviewControl";
const MxID OverlayControl::ClassID = "OverlayControl";

const MxID CCMD_HitTest = "CCMD_HitTest";
const MxID CCMD_GetInputAt = "CCMD_GetInputAt";
const MxID CCMD_KeyDown = "CCMD_KeyDown";
const MxID CCMD_WantsKey = "CCMD_WantsKey";
const MxID CCMD_KeyUpAll = "CCMD_KeyUpAll";

namespace {

const MxID& DisplayChangedEvent()
{
    static const MxID id = "DisplayChanged";
    return id;
}

const MxID& ValueWrittenEvent()
{
    static const MxID id = "ValueWritten";
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
    ReadBaseTags(attributes_);
}

PreviewControl::~PreviewControl()
{
    QObject::disconnect(timeChanges_);
    for (Input* input : inputs_) {
        input->RemoveNotify(this);
        input->RemoveControl(this);
    }
    for (const Listened& each : listened_)
        each.input->RemoveNotify(this);
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
    laterChanges_.Merge(tags);
    ReadBaseTags(tags);
    bool accepted = true;
    for (Input* input : std::vector(inputs_)) {
        TagList all(input->Attributes());
        all.Merge(laterChanges_);
        accepted = SetAttrsTagList(input, all) && accepted;
    }
    if (inputs_.empty())
        SetAttrsTagList(nullptr, tags);
    UpdateDisplay(nullptr, nullptr);
    return accepted;
}

bool PreviewControl::CopyAttr(u64 tag, void* out)
{
    if (tag == PCD_BaseOffsetX || tag == PCD_BaseOffsetY) {
        std::memcpy(out, &baseOffset_[tag == PCD_BaseOffsetY ? 1 : 0], sizeof(double));
        return true;
    }
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
    case PC_FollowEnded:
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
    out.push_back(ValueWrittenEvent());
}

// Values and undo --------------------------------------------------------------------------------

bool PreviewControl::HasGesture() const
{
    return undo_.IsOpen() || dragState_ != DragType::None || (view_ && view_->keysHeld);
}

bool PreviewControl::SetInputs(Parameter* value, double time, unsigned int index, TagList* tags)
{
    Input* input = FindInputByIndex(index);
    if (!value || !IsFree(input))
        return false;
    const Ref<Parameter> accepted = input->Accepted(*value);
    if (!accepted)
        return false;
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    const bool gesture = HasGesture();
    SetUndo(index, tags);
    const bool written = input->SetValue(*accepted, time);
    if (!gesture)
        ResetUndo(tags);
    if (written) {
        TagList what{{PV_Value, accepted.Get()},
                     {PVD_Time, time},
                     {IA_OverlayIndex, index},
                     {PV_Final, !gesture && !value->Tags().GetBool(PA_Dragged)}};
        Notify(ValueWrittenEvent(), what);
    }
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

void PreviewControl::StartUndo(const char* text)
{
    undo_.Begin(GetDoc(), QString::fromUtf8(text));
}

void PreviewControl::EndUndo(bool keep)
{
    undo_.End(keep);
}

void PreviewControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (input && !changed_)
        return;
    changed_ = false;
    TagList none;
    Notify(DisplayChangedEvent(), tags ? *tags : none);
}

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
    axisX_ = axisY_ = false;
    ResetUndo(tags);
    UpdateDisplay(nullptr, tags);
}

void PreviewControl::GLDrawControls(PreviewInfo* view, TagList*)
{
    if (!view || !view->painter)
        return;
    const OverlayPoint offset =
        IsDisplaced() ? OverlayPoint{baseOffset_[0], baseOffset_[1]} : OverlayPoint();
    for (const Input* input : inputs_) {
        if (input->IsAnimated() && input->GetDataType() == MxID(CLSID_DataType_Point))
            DrawMotionPath(*view, *input, offset);
    }
}

DragType PreviewControl::ControlDown(PreviewInfo*, const MxPointT<int>&, TagList*)
{
    return dragState_;
}

void PreviewControl::ControlMove(PreviewInfo*, const MxPointT<int>&, TagList*) {}

void PreviewControl::ControlUp(PreviewInfo*, const MxPointT<int>&, TagList* tags)
{
    dragState_ = DragType::None;
    axisX_ = axisY_ = false;
    ResetUndo(tags);
}

bool PreviewControl::ControlCommand(PreviewInfo*, const MxID& command, u64 data, TagList* tags)
{
    if (command == CCMD_GetInputAt && data && !inputs_.empty()) {
        *reinterpret_cast<Input**>(data) = inputs_.front();
        return true;
    }
    if (command == CCMD_KeyUpAll)
        ResetUndo(tags);
    return command == CCMD_KeyUpAll;
}

bool PreviewControl::ControlGetTip(PreviewInfo* view, char* tip, TagList* tags)
{
    Input* input = inputs_.empty() ? nullptr : inputs_.front();
    ControlCommand(view, CCMD_GetInputAt, u64(reinterpret_cast<std::uintptr_t>(&input)), tags);
    if (!input)
        return false;
    QString text = input->GetName();
    if (const char* help = input->GetAttrS(IAS_Help); *help)
        text += QStringLiteral(": ") + QString::fromUtf8(help);
    if (owner_ && owner_->IsLocked())
        text += QStringLiteral("\n%1 is locked.").arg(owner_->GetName());
    else if (ConditionOf(*input) == OverlayCondition::Expression)
        text += QStringLiteral("\nDriven by %1: not to be dragged.")
                    .arg(input->HasExpression() ? "an expression" : "a connection");
    else if (ConditionOf(*input) == OverlayCondition::Locked)
        text += QStringLiteral("\nNot to be changed.");
    return CopyText(text, tip, 256);
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
