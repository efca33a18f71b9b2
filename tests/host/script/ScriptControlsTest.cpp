#include "ScriptBench.h"

#include "system/base/HostTags.h"
#include "system/base/Registry.h"
#include "system/controls/InputControl.h"
#include "system/viewer/PreviewControl.h"

using namespace Marlox;

namespace {

constexpr u32 EC_Ticks = 0x10050000;
constexpr u32 ECS_Low = 0x30050002;
constexpr u32 ECS_Name = 0x30050003;
constexpr TagMapEntry editNames[] = {
    {"EC_Ticks", EC_Ticks}, {"ECS_Low", ECS_Low}, {"ECS_Name", ECS_Name, {}, true}, {}};

MxID mappedCall; // the last call that the mapper was asked for

bool MapEdit(const MxID& call, bool toScript, ScriptVal& values, TagList& tags)
{
    mappedCall = call;
    return scriptval_maptags(editNames, toScript, values, tags);
}

/// An inspector control and an overlay as a plug-in has them. The overlay's script type has another
/// name than its class id.
class EditControl : public InputControl {
public:
    EditControl(const Registry* record, const ScriptVal& creator, const TagList& attributes)
        : InputControl(record, creator, attributes)
    {
        made_.Merge(attributes);
    }
    ~EditControl() override { --alive; }
    u64 DoTagList(unsigned int command, TagList& tags) override
    {
        const u32 tag = u32(tags.First()->tag);
        tags.Clear();
        for (const TagPair* pair = made_.Find(tag); pair; pair = made_.FindNext(pair))
            tags.AddCopy(tag, pair->value.text);
        return command == CommandGetRepeated && tags.Count() > 0;
    }
    static inline int alive = 0;

private:
    TagList made_;
};

class MarkControl : public PreviewControl {
public:
    using PreviewControl::PreviewControl;
    ~MarkControl() override { --alive; }
    static inline int alive = 0;
};

template <class Control>
Object* Make(const Registry* record, const ScriptVal& creator, const TagList& attributes)
{
    ++Control::alive;
    return new Control(record, creator, attributes);
}

bool Double(Object&, const ScriptVal& arguments, ScriptVal& result)
{
    result = ScriptVal(arguments.At(1).ToNumber() * 2);
    return arguments.At(1).IsNumber();
}
const ScriptOperation operations[] = {{"Double", Double}, {nullptr, nullptr}};
const ScriptInfo editInfo = {1, "EditControl", "", "", operations};

const TagPair editTags[] = {{REG_Kind, u32(ClassKind::InputControl)},
                            {REG_Parent, static_cast<const void*>(&InputControl::ClassID)},
                            {REG_ScriptInfo, static_cast<const void*>(&editInfo)},
                            {REG_Create, &Make<EditControl>},
                            {REG_TagMapper, &MapEdit},
                            {0, 0}};
const TagPair markTags[] = {{REG_Kind, u32(ClassKind::PreviewControl)},
                            {REG_Parent, static_cast<const void*>(&PreviewControl::ClassID)},
                            {REG_Create, &Make<MarkControl>},
                            {0, 0}};

/// Everything that a plug-in with the two classes registers.
struct Plugin {
    Registry edit{"EditControl", editTags};
    Registry mark{"CubeControl", markTags};
    FFIType editType{"EditControl", "EditControl", "InputControl", -1, 0, nullptr};
    FFIType markType{"MarkControl", "MarkControl", "PreviewControl", -1, 0, nullptr};
    FFIFunc editCast{&editType, "_cast", "ffi_EditControl_cast", ""};
    FFIFunc editUncast{&editType, "_uncast", "ffi_EditControl_uncast", ""};
    FFIFunc markCast{&markType, "_cast", "ffi_MarkControl_cast", ""};
    FFITagMap editMap{&editType, "Create", editNames, "InputControl.Create"};

    Plugin() // in static memory, as a library's: see Load
    {
        SetFFIType(typeid(EditControl), &editType);
        SetFFIType(typeid(MarkControl), &markType);
    }
};

/// The plug-in is loaded while this lives.
class Load {
public:
    Load() { plugin_.emplace(); }
    ~Load() { plugin_.reset(); }

private:
    static inline std::optional<Plugin> plugin_;
};

template <class Control>
void* CastTo(void* object)
{
    return object ? dynamic_cast<Control*>(static_cast<ScriptObject*>(object)) : nullptr;
}

} // namespace

extern "C" Q_DECL_EXPORT void* ffi_EditControl_cast(void* object)
{
    return CastTo<EditControl>(object);
}
extern "C" Q_DECL_EXPORT void* ffi_MarkControl_cast(void* object)
{
    return CastTo<MarkControl>(object);
}
extern "C" Q_DECL_EXPORT void* ffi_EditControl_uncast(void* self)
{
    return static_cast<ScriptObject*>(static_cast<EditControl*>(self));
}

/// The controls of a plug-in, as scripts make and ask them.
class ScriptControlsTest : public ScriptBench {
    Q_OBJECT

    std::optional<Load> plugin_;

private slots:
    void init()
    {
        plugin_.emplace();
        engine_ = std::make_unique<ScriptEngine>();
    }
    void cleanup()
    {
        engine_->ReleaseObjects();
        QCOMPARE(EditControl::alive + MarkControl::alive, 0);
        plugin_.reset();
        engine_.reset();
    }

    void Lists()
    {
        const ScriptVal list = Value("classes()");
        QCOMPARE(list.Length(), std::size_t(2));
        QCOMPARE(list.At(1).Get("id").ToString(), std::string("EditControl"));
        QCOMPARE(list.At(1).Get("parent").ToString(), std::string("InputControl"));
        QCOMPARE(list.At(2).Get("kind").ToString(), std::string("PreviewControl"));
        QCOMPARE(list.At(2).Get("type").ToString(), std::string("MarkControl")); // by its class
        QVERIFY(list.At(1).Get("specified").ToBool());
        QCOMPARE(MarkControl::alive, 0);
    }

    void Creates()
    {
        QVERIFY(Run("edit = create('EditControl', {EC_Ticks = 5, ECS_Low = 'low', "
                    "IAD_Minimum = -1, IC_Disabled = true})"));
        QCOMPARE(mappedCall, MxID("Create"));
        const ScriptVal made = Value("edit");
        auto* edit = dynamic_cast<EditControl*>(made.ToObject());
        QVERIFY(edit);
        QCOMPARE(edit->GetAttr(EC_Ticks), int64(5));
        QCOMPARE(std::string(edit->GetAttrS(ECS_Low)), std::string("low"));
        QCOMPARE(edit->GetAttrD(IAD_Minimum), -1.0);
        QCOMPARE(Number("edit:Double(21)"), 42.0); // an operation of the class
        Fails({{"edit:Double()", "Double failed"}});

        QVERIFY(Run("user = usercontrol{Control = 'EditControl', Name = 'Strength',"
                    " EC_Ticks = 3}"));
        QCOMPARE(mappedCall, MxID("UserControl"));
        const auto* user = dynamic_cast<EditControl*>(Value("user").ToObject());
        QVERIFY(user && std::string(user->GetAttrS(IAS_Name)) == "Strength");
        QVERIFY(Error("usercontrol{Name = 'x'}").contains("a control needs Control"));

        for (const char* name : {"CubeControl", "MarkControl"}) // by class id and by script type
            QVERIFY(Value(QStringLiteral("create('%1')").arg(name)).ToObject());
        QCOMPARE(EditControl::alive, 2);
        QVERIFY(Run("edit = nil user = nil collectgarbage()")); // scripts own them
        QCOMPARE(EditControl::alive + MarkControl::alive, 0);
    }

    void RefusesWrongAttributes()
    {
        Fails(
            {{"create('EditControl', {EC_Tick = 5})", "EditControl has no attribute \"EC_Tick\""},
             {"create('EditControl', {EC_Ticks = 1.5})", "the value of \"EC_Ticks\" does not fit"},
             {"create('EditControl', {IAD_Minimum = 'x'})",
              "the value of \"IAD_Minimum\" does not fit"},
             {"create('CubeControl', {EC_Ticks = 5})", "CubeControl has no attribute \"EC_Ticks\""},
             {"create('EditControl', {5})", "attributes are written Name = value"},
             {"create('None')", "there is no control class \"None\""},
             {"create('EditControl'):GetAttrs{'Nothing'}", "there is no attribute \"Nothing\""},
             {"create('EditControl'):SetAttrs{Nothing = 1}",
              "EditControl has no attribute \"Nothing\""},
             {"cast(create('EditControl'), 'None')", "there is no script type \"None\""}});
    }

    void ReadsAndWritesAttributes()
    {
        // As an application has it: attributes are there whatever it made of controls.
        engine_->AddClass<QWidget>("Widget");
        engine_->AddClass<InputControl>("Control", "Widget");
        QVERIFY(Run("edit = create('EditControl', {ECS_Low = 'low'})"));
        QVERIFY(String("tostring(edit)").startsWith("Control: "));
        QVERIFY(Run("edit:SetAttrs{ECS_Low = 'other', IAD_Maximum = 2.5}"));
        QCOMPARE(mappedCall, MxID("SetAttrs"));
        const ScriptVal read = Value("edit:GetAttrs{'ECS_Low', 'IAD_Maximum', 'EC_Ticks'}");
        QCOMPARE(mappedCall, MxID("GetAttrs"));
        QCOMPARE(read.Fields().size(), std::size_t(2)); // it has no ticks
        QCOMPARE(read.Get("ECS_Low").ToString(), std::string("other"));
        QCOMPARE(read.Get("IAD_Maximum").ToNumber(), 2.5);
        const ScriptVal all = Value("edit:GetAttrs()");
        QCOMPARE(all.Get("ECS_Low").ToString(), std::string("other"));
        QVERIFY(all.Get("IC_TabStop").IsNumber());
        QVERIFY(all.Get("ECS_Name").IsNil());
        QVERIFY(Run("edit = create('EditControl', {ECS_Name = {'one', 'two'}})"));
        const ScriptVal names = Value("edit:GetAttrs{'ECS_Name'}").Get("ECS_Name");
        QCOMPARE(names.Length(), std::size_t(2));
        QCOMPARE(names.At(2).ToString(), std::string("two"));
    }

    void Casts()
    {
        QVERIFY(Run("edit = create('EditControl') mark = create('MarkControl')"));
        QVERIFY(Value("cast(edit, 'MarkControl') == nil and cast(mark, 'EditControl') == nil")
                    .ToBool());
        QVERIFY(Run("pointer = cast(edit, 'EditControl')"));
        QVERIFY(String("tostring(pointer)").startsWith("EditControl: "));
        QCOMPARE(Number("pointer:Double(4)"), 8.0);
        QVERIFY(Value("uncast(pointer) == edit and uncast(edit) == edit").ToBool());
        QVERIFY(Run("edit = nil collectgarbage()"));
        QCOMPARE(EditControl::alive, 0);
        Fails({{"return uncast(pointer)", "argument 1: a host object expected"}});
    }

    /// A control is host object and widget at once: it goes with whoever owns it.
    void AreNotKeptAlive()
    {
        Ref<Object> control(ClassRegistry::Global().Create("EditControl"));
        engine_->SetGlobalObject("control", dynamic_cast<EditControl*>(control.Get()));
        QCOMPARE(control->RefCount(), 1);
        QVERIFY(Value("isvalid(control)").ToBool());
        control = nullptr;
        QCOMPARE(EditControl::alive, 0);
        QVERIFY(!Value("isvalid(control)").ToBool(true));
        QVERIFY(Run("control = nil collectgarbage()"));
    }

    void GoBeforeUnloading()
    {
        QVERIFY(Run("edit = create('EditControl') mark = create('MarkControl')"
                    " pointer = cast(mark, 'MarkControl')"));
        engine_->ReleaseObjects();
        QCOMPARE(EditControl::alive + MarkControl::alive, 0);
        plugin_.reset();
        QVERIFY(!Value("isvalid(edit) or isvalid(mark) or isvalid(pointer)").ToBool(true));
        QVERIFY(Error("mark:GetAttrs()").endsWith("is gone"));
        QCOMPARE(Number("#classes()"), 0.0);
    }
};

QTEST_MAIN(ScriptControlsTest)
#include "ScriptControlsTest.moc"
