#include "system/base/Object.h"

#include "system/base/ScriptServices.h"

#include <algorithm>
#include <cstring>

namespace Marlox {

LuaClass::~LuaClass() = default;

int LuaClass::lw_push(lua_State* state)
{
    ScriptServices* services = ScriptServices::Installed();
    return services ? services->PushObject(state, *this) : 0;
}

bool ScriptObject::_Do(const MxID&, const ScriptVal&, ScriptVal&)
{
    return false;
}

int32 RefObject::IncRef()
{
    return references_.fetch_add(1, std::memory_order_relaxed) + 1;
}

int32 RefObject::DecRef()
{
    const int32 left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0)
        delete this;
    return left;
}

Object::Object() = default;

Object::~Object()
{
    for (const Link& link : listeners_)
        std::erase(link.listener->heardObjects_, this);
    // A listener that heard several events of one object stands in its list several times.
    const std::vector<Object*> heard = std::move(heardObjects_);
    for (Object* object : heard)
        object->ForgetListener(this);
}

bool Object::RegInit(Registry*)
{
    return true;
}

void Object::RegCleanup(Registry*) {}

const ScriptInfo* Object::GetScriptInfo() const
{
    return scriptInfo_;
}

void Object::SetScriptInfo(const ScriptInfo* info)
{
    scriptInfo_ = info;
}

void Object::GetObjectInfo(TagList&) const {}

bool Object::DoInfo(unsigned int, TagList&)
{
    return false;
}

void Object::DoDumpMem(std::string& out) const
{
    out += std::string(scriptInfo_ ? scriptInfo_->name : "object") + ": " +
           std::to_string(SizeOf()) + " bytes, " + std::to_string(RefCount()) + " references\n";
}

std::size_t Object::SizeOf() const
{
    return sizeof(*this);
}

bool Object::SetAttrsTagList(const TagList&)
{
    return true;
}

bool Object::CopyAttr(u64, void*)
{
    return false;
}

void Object::AddNotify(Object* listener, const MxID& event)
{
    listeners_.push_back({listener, event});
    listener->heardObjects_.push_back(this);
}

void Object::RemoveNotify(Object* listener, const MxID& event)
{
    const auto found = std::find_if(listeners_.begin(), listeners_.end(), [&](const Link& link) {
        return link.listener == listener && link.event == event;
    });
    if (found == listeners_.end())
        return;
    listeners_.erase(found);
    auto& heard = listener->heardObjects_;
    heard.erase(std::find(heard.begin(), heard.end(), this));
}

void Object::RemoveNotify(Object* listener)
{
    ForgetListener(listener);
    std::erase(listener->heardObjects_, this);
}

void Object::ForgetListener(Object* listener)
{
    std::erase_if(listeners_, [listener](const Link& link) { return link.listener == listener; });
}

void Object::Notify(const MxID& event, TagList& tags)
{
    // A listener may add or remove listeners, itself among them, while it is told.
    const std::vector<Link> told = listeners_;
    for (const Link& link : told) {
        const bool stillListening =
            std::any_of(listeners_.begin(), listeners_.end(), [&link](const Link& now) {
                return now.listener == link.listener && now.event == link.event;
            });
        if (stillListening && (link.event.IsEmpty() || link.event == event))
            link.listener->HandleEvent(this, event, tags);
    }
}

bool Object::Call(const MxID& operation, TagList&)
{
    ScriptVal result;
    return _Do(operation, ScriptVal(), result);
}

void Object::Use() {}
void Object::Recycle() {}

u64 Object::DoTagList(unsigned int, TagList&)
{
    return 0;
}

bool Object::DoTable(const MxID&, ScriptVal&)
{
    return false;
}

void Object::OnAddToList(Object*) {}
void Object::OnRemoveFromList(Object*) {}

bool Object::Load(const ScriptVal& from)
{
    return RestoreState(from);
}

bool Object::Save(ScriptVal& to) const
{
    return SaveState(to);
}

void Object::Dump(std::string& out) const
{
    DoDumpMem(out);
}

bool Object::GetHelpText(std::string&) const
{
    return false;
}

void Object::EndUndo(bool) {}
void Object::StartUndo(const char*) {}

bool Object::RestoreState(const ScriptVal&)
{
    return false;
}

bool Object::SaveState(ScriptVal&) const
{
    return false;
}

void Object::CleanupState(ScriptVal&) const {}

MarloxDoc* Object::GetDoc() const
{
    return nullptr;
}

void Object::AddToMenu(Menu*, TagList&) {}

bool Object::HandleMenu(const ScriptVal&, const ScriptVal&, TagList&)
{
    return false;
}

bool Object::HandleMenu(unsigned int, u64*, TagList&)
{
    return false;
}

void Object::GetAvailableEvents(std::vector<MxID>&) const {}

bool Object::HandleEvent(Object*, const MxID&, TagList&)
{
    return false;
}

void Object::OnConnect(RemoteApp*) {}
void Object::OnDisconnect(RemoteApp*) {}
void Object::OnConnectFailed(RemoteApp*) {}
void Object::GetTargetsTagList(TagList&) const {}

bool Object::_IsValid() const
{
    return true;
}

// Reading attributes changes nothing, but the contract's CopyAttr is not const.

int64 Object::GetAttr(u32 tag, int64 missing) const
{
    int64 value = 0;
    return const_cast<Object*>(this)->CopyAttr(tag, &value) ? value : missing;
}

bool Object::GetAttrB(u32 tag, bool missing) const
{
    return GetAttr(tag, missing ? 1 : 0) != 0;
}

double Object::GetAttrD(u32 tag, double missing) const
{
    double value = 0.0;
    return const_cast<Object*>(this)->CopyAttr(tag, &value) ? value : missing;
}

const char* Object::GetAttrS(u32 tag, const char* missing) const
{
    const char* value = nullptr;
    return const_cast<Object*>(this)->CopyAttr(tag, &value) ? value : missing;
}

MxID Object::GetAttrID(u32 tag, const MxID& missing) const
{
    const void* value = nullptr;
    if (!const_cast<Object*>(this)->CopyAttr(tag, &value) || !value)
        return missing;
    return TypeOfTag(tag) == TagType::Pointer ? *static_cast<const MxID*>(value)
                                              : MxID(static_cast<const char*>(value));
}

const void* Object::GetAttrPtr(u32 tag, const void* missing) const
{
    const void* value = nullptr;
    return const_cast<Object*>(this)->CopyAttr(tag, &value) ? value : missing;
}

} // namespace Marlox
