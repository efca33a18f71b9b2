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

struct Object::Links {
    struct Link {
        Object* listener;
        MxID event;
    };
    std::vector<Link> listeners;               // who hears of this object
    std::vector<Object*> heardObjects;         // whom this object hears; one entry for each link
    std::shared_ptr<std::atomic<int>> counter; // of the objects of its class record; null: none
    bool* gone = nullptr;                      // told when the object dies while it notifies
};

Object::Object() = default;

Object::~Object()
{
    if (!links_)
        return;
    for (const Links::Link& link : links_->listeners)
        std::erase(link.listener->links_->heardObjects, this);
    // A listener that heard several events of one object stands in its list several times.
    const std::vector<Object*> heard = std::move(links_->heardObjects);
    for (Object* object : heard)
        object->ForgetListener(this);
    if (links_->counter)
        --*links_->counter;
    if (links_->gone)
        *links_->gone = true;
}

Object::Links& Object::OwnLinks()
{
    if (!links_)
        links_ = std::make_unique<Links>();
    return *links_;
}

void Object::CountIn(std::shared_ptr<std::atomic<int>> counter)
{
    ++*counter;
    OwnLinks().counter = std::move(counter);
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
    OwnLinks().listeners.push_back({listener, event});
    listener->OwnLinks().heardObjects.push_back(this);
}

void Object::RemoveNotify(Object* listener, const MxID& event)
{
    if (!links_)
        return;
    auto& listeners = links_->listeners;
    const auto found =
        std::find_if(listeners.begin(), listeners.end(), [&](const Links::Link& link) {
            return link.listener == listener && link.event == event;
        });
    if (found == listeners.end())
        return;
    listeners.erase(found);
    auto& heard = listener->links_->heardObjects;
    heard.erase(std::find(heard.begin(), heard.end(), this));
}

void Object::RemoveNotify(Object* listener)
{
    ForgetListener(listener);
    if (listener->links_)
        std::erase(listener->links_->heardObjects, this);
}

void Object::ForgetListener(Object* listener)
{
    if (links_)
        std::erase_if(links_->listeners,
                      [listener](const Links::Link& link) { return link.listener == listener; });
}

void Object::Notify(const MxID& event, TagList& tags)
{
    if (!links_)
        return;
    // A listener may add or remove listeners, itself among them, while it is told, and may end this
    // object.
    bool gone = false;
    bool* const outer = std::exchange(links_->gone, &gone);
    const std::vector<Links::Link> told = links_->listeners;
    for (const Links::Link& link : told) {
        const auto& now = links_->listeners;
        const bool stillListening =
            std::any_of(now.begin(), now.end(), [&link](const Links::Link& other) {
                return other.listener == link.listener && other.event == link.event;
            });
        if (stillListening && (link.event.IsEmpty() || link.event == event))
            link.listener->HandleEvent(this, event, tags);
        if (gone) {
            if (outer)
                *outer = true;
            return;
        }
    }
    links_->gone = outer;
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
bool Object::Ask(TagPair& attribute) const
{
    return const_cast<Object*>(this)->CopyAttr(attribute.tag, &attribute.value);
}

int64 Object::GetAttr(u32 tag, int64 missing) const
{
    TagPair answer{tag, {}};
    return !HoldsAddress(tag) && Ask(answer) ? answer.AsLong() : missing;
}

bool Object::GetAttrB(u32 tag, bool missing) const
{
    TagPair answer{tag, {}};
    return !HoldsAddress(tag) && Ask(answer) ? answer.AsBool() : missing;
}

double Object::GetAttrD(u32 tag, double missing) const
{
    TagPair answer{tag, {}};
    return !HoldsAddress(tag) && Ask(answer) ? answer.AsDouble() : missing;
}

const char* Object::GetAttrS(u32 tag, const char* missing) const
{
    TagPair answer{tag, {}};
    return HoldsAddress(tag) && Ask(answer) && answer.value.text ? answer.value.text : missing;
}

MxID Object::GetAttrID(u32 tag, const MxID& missing) const
{
    TagPair answer{tag, {}};
    if (!HoldsAddress(tag) || !Ask(answer))
        return missing;
    return TagList{answer}.GetID(tag, missing);
}

const void* Object::GetAttrPtr(u32 tag, const void* missing) const
{
    TagPair answer{tag, {}};
    return HoldsAddress(tag) && Ask(answer) ? answer.value.pointer : missing;
}

} // namespace Marlox
