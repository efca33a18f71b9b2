#pragma once

#include "system/base/MxGeometry.h"
#include "system/base/Ref.h"
#include "system/base/Reuser.h"
#include "system/base/ScriptInfo.h"
#include "system/base/ScriptVal.h"
#include "system/base/TagList.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

struct lua_State;

namespace Marlox {

class MarloxDoc;
class Menu;
class RemoteApp;

/// Anything that can be handed to the script interpreter. First in every host object, so that a
/// pointer to a control is a pointer to its ScriptObject unchanged.
class MARLOXSYSTEM_EXPORT LuaClass {
public:
    virtual ~LuaClass();
    /// Pushes the object on the interpreter's stack; returns the number of values pushed.
    virtual int lw_push(lua_State* state);
};

class MARLOXSYSTEM_EXPORT ScriptObject : public LuaClass {
public:
    /// Runs a script operation by name. False: there is none of that name, or it failed.
    virtual bool _Do(const MxID& operation, const ScriptVal& arguments, ScriptVal& result);
};

/// Reference-counted: born with one reference that belongs to its maker, deleted when the last one
/// goes. Counting is thread-safe.
class MARLOXSYSTEM_EXPORT RefObject : public ScriptObject {
public:
    RefObject() = default;
    RefObject(const RefObject&) : RefObject() {} // the count is not part of the value
    RefObject& operator=(const RefObject&) { return *this; }

    virtual int32 IncRef();
    virtual int32 DecRef();
    int32 RefCount() const { return references_.load(); }

private:
    std::atomic<int32> references_{1};
};

/// Base of all host objects: reference-counted, scriptable, with attributes by tag, listeners and a
/// place in the document. The order of the virtual operations is the binary contract with plug-ins;
/// new ones go to the end of subclasses, never in between.
class MARLOXSYSTEM_EXPORT Object : public RefObject, public Reuser {
public:
    Object();
    ~Object() override;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// Default functions of a class record: called when the class is registered (false refuses it)
    /// and when it is unregistered.
    static bool RegInit(Registry* record);
    static void RegCleanup(Registry* record);

    virtual const ScriptInfo* GetScriptInfo() const;
    virtual void SetScriptInfo(const ScriptInfo* info);
    /// Describes the object by tags (class id, name).
    virtual void GetObjectInfo(TagList& out) const;
    virtual bool DoInfo(unsigned int request, TagList& tags);
    /// Appends lines on what the object holds in memory.
    virtual void DoDumpMem(std::string& out) const;
    virtual std::size_t SizeOf() const;
    virtual bool SetAttrsTagList(const TagList& tags);
    /// Answers the attribute `tag` in `out`: an int64 for integer tags, a double, a const char*
    /// (owned by the object), an Object* (no reference added), a const void* (for class-id tags the
    /// address of an MxID). False: no such attribute.
    virtual bool CopyAttr(u64 tag, void* out);

    /// `listener`'s HandleEvent is called for `event` (the empty id: for all) of this object until
    /// it is removed. Either object may go first.
    virtual void AddNotify(Object* listener, const MxID& event);
    virtual void RemoveNotify(Object* listener, const MxID& event);
    virtual void RemoveNotify(Object* listener);
    virtual void Notify(const MxID& event, TagList& tags);
    virtual bool Call(const MxID& operation, TagList& tags);
    virtual void Use();
    virtual void Recycle();

    /// Runs a command; 0: there is none of that number, or it failed.
    virtual u64 DoTagList(unsigned int command, TagList& tags);
    /// Command of DoTagList: `tags` holds one pair, whose tag names an attribute that stands once
    /// for each of its values; all of them, in order, take its place. Texts are copied.
    static constexpr unsigned int CommandGetRepeated = 1;
    virtual bool DoTable(const MxID& call, ScriptVal& table);
    virtual void OnAddToList(Object* list);
    virtual void OnRemoveFromList(Object* list);
    virtual bool Load(const ScriptVal& from);
    virtual bool Save(ScriptVal& to) const;
    virtual void Dump(std::string& out) const;
    virtual bool GetHelpText(std::string& out) const;
    virtual void EndUndo(bool keep);
    virtual void StartUndo(const char* text);
    virtual bool RestoreState(const ScriptVal& state);
    virtual bool SaveState(ScriptVal& state) const;
    virtual void CleanupState(ScriptVal& state) const;
    virtual MarloxDoc* GetDoc() const;

    virtual void AddToMenu(Menu* menu, TagList& tags);
    virtual bool HandleMenu(const ScriptVal& entry, const ScriptVal& data, TagList& tags);
    virtual bool HandleMenu(unsigned int id, u64* data, TagList& tags);

    virtual void GetAvailableEvents(std::vector<MxID>& out) const;
    virtual bool HandleEvent(Object* sender, const MxID& event, TagList& tags);
    virtual void OnConnect(RemoteApp* application);
    virtual void OnDisconnect(RemoteApp* application);
    virtual void OnConnectFailed(RemoteApp* application);
    virtual void GetTargetsTagList(TagList& out) const;
    virtual bool _IsValid() const;

    // Attributes by tag, with a default for those the object lacks and, as in a TagList, for those
    // of another sort.
    int64 GetAttr(u32 tag, int64 missing = 0) const;
    bool GetAttrB(u32 tag, bool missing = false) const;
    double GetAttrD(u32 tag, double missing = 0.0) const;
    const char* GetAttrS(u32 tag, const char* missing = "") const;
    MxID GetAttrID(u32 tag, const MxID& missing = MxID()) const;
    const void* GetAttrPtr(u32 tag, const void* missing = nullptr) const;

private:
    friend class ClassRegistry;
    struct Links;
    Links& OwnLinks();
    void ForgetListener(Object* listener);
    bool Ask(TagPair& attribute) const;
    void CountIn(std::shared_ptr<std::atomic<int>> counter);

    const ScriptInfo* scriptInfo_ = nullptr;
    std::unique_ptr<Links> links_; // made when first needed: values by the thousand have none
};

} // namespace Marlox
