#include "plugin/ExpectedRecords.h"
#include "plugin/PluginLibrary.h"
#include "script/FFI.h"
#include "system/controls/InputControl.h"
#include "system/viewer/PreviewControl.h"

#include <set>

#include <QDate>
#include <QDirIterator>
#include <QLocale>
#include <QRegularExpression>
#include <QtTest>

using namespace Marlox;

namespace {

using CastFunction = void*(void* object);

Registry* recordOf(const Expected::Record& row)
{
    return ClassRegistry::Global().Find(row.id);
}

/// An instance made as the host makes it, with a reference that the test owns.
Ref<Object> make(const char* id)
{
    return Ref<Object>(ClassRegistry::Global().Create(id));
}

bool hasOperation(const ScriptInfo& info, std::string_view name)
{
    for (const ScriptOperation* operation = info.operations; operation->name; ++operation) {
        if (operation->name == name)
            return true;
    }
    return false;
}

} // namespace

/// What the host learns of the control classes while their library is loaded.
class RegistrationTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void OrderIsThatOfTheFiles();
    void Records_data();
    void Records();
    void BuildStamp();
    void ScriptTypes_data() { Records_data(); }
    void ScriptTypes();
    void NoOtherScriptTypes();
    void UncastsShareOneBody();
    void Create_data() { Records_data(); }
    void Create();
    void Casts();
    void TagMapperKnowsFourCalls();
    void GenericClassesSaySo();

private:
    std::size_t before_ = ClassRegistry::Global().Records().size();
    PluginLibrary plugin_;
};

void RegistrationTest::initTestCase()
{
    QVERIFY2(plugin_.IsLoaded(), plugin_.Error().constData());
    const std::vector<std::string> problems = ClassRegistry::Global().TakeProblems();
    QVERIFY2(problems.empty(), problems.empty() ? "" : problems.front().c_str());
    QCOMPARE(std::size(Expected::records), std::size_t(54));
}

void RegistrationTest::OrderIsThatOfTheFiles()
{
    QStringList files;
    QDirIterator sources(MARLOX_SOURCE_DIR "/controls", {"*.cpp"}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        QVERIFY(source.open(QIODevice::ReadOnly));
        if (source.readAll().contains("\nControlClass<")) // large controls have further sources
            files += sources.fileInfo().completeBaseName();
    }
    files.sort();

    QStringList classes;
    for (Registry* record : ClassRegistry::Global().Records().subspan(before_)) {
        const auto* row = std::find_if(
            std::begin(Expected::records), std::end(Expected::records),
            [record](const Expected::Record& r) { return record->ClassID() == MxID(r.id); });
        QVERIFY2(row != std::end(Expected::records), record->ClassID().c_str());
        if (classes.isEmpty() || classes.last() != row->cls)
            classes += row->cls;
    }
    QCOMPARE(classes, files);
}

void RegistrationTest::Records_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(Expected::records)); ++i)
        QTest::newRow(Expected::records[i].id) << i;
}

void RegistrationTest::Records()
{
    QFETCH(int, index);
    const Expected::Record& row = Expected::records[index];
    const auto records = ClassRegistry::Global().Records();
    QVERIFY(before_ + std::size_t(index) < records.size());
    const Registry& record = *records[before_ + std::size_t(index)];
    QCOMPARE(record.ClassID().c_str(), MxID(row.id).c_str());
    QCOMPARE(record.Parent().c_str(), MxID(row.parent).c_str());

    const TagPair* pair = record.Tags();
    QCOMPARE(pair->tag, u64(0x60000001));
    QCOMPARE(pair->value.regInit == &Object::RegInit, !row.ownInit);
    QCOMPARE((++pair)->tag, u64(0x60000002));
    QCOMPARE(pair->value.regCleanup == &Object::RegCleanup, !row.ownCleanup);
    QCOMPARE((++pair)->tag, u64(0x10000000));
    QCOMPARE(pair->Bits(), u64(row.family == Expected::Inspector ? 0x1a0000 : 0x1b0000));
    QCOMPARE((++pair)->tag, u64(0x30000008));
    QVERIFY(QByteArray(pair->value.text).startsWith("Built: "));
    QCOMPARE((++pair)->tag, u64(0x60000010));
    QCOMPARE((++pair)->tag, u64(0x60000005));
    QCOMPARE((++pair)->tag, u64(0x60000000));
    QVERIFY(pair->value.create);
    if (row.HasMapper()) {
        QCOMPARE((++pair)->tag, u64(0x60000014));
        QVERIFY(pair->value.tagMap);
    }
    for (const Expected::FurtherTag& further : row.further) {
        if (further.tag == 0)
            break;
        QCOMPARE((++pair)->tag, u64(further.tag));
        if (further.text)
            QCOMPARE(pair->value.text, further.text);
        else
            QCOMPARE(pair->Bits(), u64(further.number));
    }
    QCOMPARE((++pair)->tag, u64(0));
    QCOMPARE(pair->Bits(), u64(0));
}

void RegistrationTest::BuildStamp()
{
    const QString stamp = recordOf(Expected::records[0])->Find(REG_BuildStamp)->value.text;
    const QRegularExpression form("^Built: ([A-Z][a-z]{2}) ([ 1-3][0-9]) ([0-9]{4})$");
    const auto match = form.match(stamp);
    QVERIFY2(match.hasMatch(), qPrintable(stamp));
    const QDate date = QLocale::c().toDate(
        match.captured(1) + match.captured(2).trimmed() + match.captured(3), "MMMdyyyy");
    QVERIFY(date.isValid());
    QVERIFY(date <= QDate::currentDate().addDays(1));
}

void RegistrationTest::ScriptTypes()
{
    QFETCH(int, index);
    const Expected::Record& row = Expected::records[index];
    const bool inspector = row.family == Expected::Inspector;

    const ScriptInfo* info = recordOf(row)->GetScriptInfo();
    QVERIFY(info);
    QCOMPARE(info->version, 1);
    QCOMPARE(info->name, row.IsVariant() ? row.parent : row.id);
    QCOMPARE(info->help, "");
    QCOMPARE(info->category, "");
    if (row.IsVariant())
        QCOMPARE(info, ClassRegistry::Global().Find(row.parent)->GetScriptInfo());

    if (!row.scriptType) {
        QVERIFY(!FFIType::Find(row.id));
        return;
    }
    const FFIType* type = FFIType::Find(row.scriptType);
    QVERIFY(type);
    QCOMPARE(type->cName, row.cls);
    const char* family = inspector ? "InputControl" : "PreviewControl";
    QCOMPARE(type->baseName, QByteArray(row.parent) == "TransformControl" ? row.parent : family);
    QCOMPARE(type->size, -1);
    QCOMPARE(type->flags, 0);
    QVERIFY(!type->data);
    QVERIFY(type->typeInfo);
    QVERIFY(QByteArray(type->typeInfo->name()).contains(row.cls));
    const std::type_info* base = BaseTypeInfo(*type->typeInfo);
    QVERIFY(base && *base == (inspector ? typeid(InputControl) : typeid(PreviewControl)));

    const QByteArray cls = row.cls;
    const FFIFunc* cast = FFIFunc::Find(type, "_cast");
    const FFIFunc* uncast = FFIFunc::Find(type, "_uncast");
    QVERIFY(cast && uncast);
    QCOMPARE(QByteArray(cast->function), "ffi_" + cls + "_cast");
    QCOMPARE(QByteArray(cast->declaration), cls + " * ffi_" + cls + "_cast(void * obj)");
    QCOMPARE(QByteArray(uncast->function), "ffi_" + cls + "_uncast");
    QCOMPARE(QByteArray(uncast->declaration),
             "ScriptObject * ffi_" + cls + "_uncast(" + cls + " * self)");
    QVERIFY(cast->Address() && uncast->Address());

    const FFITagMap* map = FFITagMap::Find(type, "Create");
    QVERIFY(map && map->own);
    QCOMPARE(map->sharedMap, inspector ? "InputControl.Create" : "PreviewControl.Create");
}

void RegistrationTest::NoOtherScriptTypes()
{
    std::size_t inspector = 0;
    std::size_t overlay = 0;
    for (const FFIType* type = FFIType::First(); type; type = type->next) {
        const FFITagMap* map = FFITagMap::Find(type, "Create");
        QVERIFY2(map, type->scriptName);
        ++(QByteArray(map->sharedMap) == "InputControl.Create" ? inspector : overlay);
    }
    QCOMPARE(inspector, std::size_t(34));
    QCOMPARE(overlay, std::size_t(15));
}

void RegistrationTest::UncastsShareOneBody()
{
    std::set<void*> bodies;
    for (const FFIType* type = FFIType::First(); type; type = type->next)
        bodies.insert(FFIFunc::Find(type, "_uncast")->Address());
    QCOMPARE(bodies.size(), std::size_t(1));
    int object = 0;
    QCOMPARE(reinterpret_cast<CastFunction*>(*bodies.begin())(&object),
             static_cast<void*>(&object));
}

void RegistrationTest::Create()
{
    QFETCH(int, index);
    const Expected::Record& row = Expected::records[index];
    const Ref<Object> made = make(row.id);
    QVERIFY(made);
    QCOMPARE(made->RefCount(), 1);
    QCOMPARE(QByteArray(typeid(*made.Get()).name()).contains(row.cls), true);
    const auto* control = dynamic_cast<InputControl*>(made.Get());
    const auto* overlay = dynamic_cast<PreviewControl*>(made.Get());
    QCOMPARE(control != nullptr, row.family == Expected::Inspector);
    QCOMPARE(overlay != nullptr, row.family == Expected::Overlay);
    // The variant that an object is shows in the record it was made from.
    QCOMPARE(control ? control->GetRegistry() : overlay->GetRegistry(), recordOf(row));
    QVERIFY(made->SizeOf() >= (control ? sizeof(InputControl) : sizeof(PreviewControl)));
}

void RegistrationTest::Casts()
{
    for (const Expected::Record& row : Expected::records) {
        if (!row.scriptType)
            continue;
        const QByteArray name = "ffi_" + QByteArray(row.cls) + "_cast";
        auto* cast = plugin_.Find<CastFunction>(name.constData());
        QVERIFY2(cast, name.constData());
        QVERIFY(!cast(nullptr));
        for (const Expected::Record& other : Expected::records) {
            const Ref<Object> made = make(other.id);
            ScriptObject* object = made.Get();
            const bool isSubclass = std::string_view(row.cls) == "TransformControl" &&
                                    std::string_view(other.parent) == "TransformControl";
            const bool fits = std::string_view(row.cls) == other.cls || isSubclass;
            QVERIFY2(cast(object) == (fits ? object : nullptr), other.id);
        }
    }
}

void RegistrationTest::TagMapperKnowsFourCalls()
{
    const TagMapFunction mapper =
        ClassRegistry::Global().Find(CLSID_InputControl_Slider)->TagMapper();
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("SLCS_LowName", "dark");
    table.Set("IC_TickFreq", 5);
    table.Set("Other", 1);
    for (const char* call : {"Create", "GetAttrs", "SetAttrs", "UserControl"}) {
        TagList tags;
        QVERIFY2(mapper(call, false, table, tags), call);
        QCOMPARE(tags.Count(), std::size_t(2));
        QCOMPARE(tags.GetString(0x30050000), "dark");
        QCOMPARE(tags.GetLong(0x10050000), int64(5));
        ScriptVal back = ScriptVal::MakeTable();
        QVERIFY(mapper(call, true, back, tags));
        QCOMPARE(back.Get("SLCS_LowName").ToString(), std::string("dark"));
        QCOMPARE(back.Get("IC_TickFreq").ToNumber(), 5.0);
    }
    TagList untouched;
    QVERIFY(!mapper("create", false, table, untouched));
    QCOMPARE(untouched.Count(), std::size_t(0));
    // Variants map as their plain class does.
    const ClassRegistry& classes = ClassRegistry::Global();
    QVERIFY(classes.Find(CLSID_InputControl_ComboID)->TagMapper() ==
            classes.Find(CLSID_InputControl_Combo)->TagMapper());
    QVERIFY(!classes.Find(CLSID_PreviewControl_Crop)->TagMapper());
}

void RegistrationTest::GenericClassesSaySo()
{
    const std::set<std::string_view> finished{"AngleControl",
                                              "CheckBoxControl",
                                              "ColorControl",
                                              "ColorRangesControl",
                                              "ColorSuppressionControl",
                                              "ColorWheelControl",
                                              "ComboControl",
                                              "CropControl",
                                              "CrosshairControl",
                                              "LabelControl",
                                              "PointControl",
                                              "PolyLineControl",
                                              "SliderControl",
                                              "XYOffsetControl"};
    for (const Expected::Record& row : Expected::records) {
        QVERIFY2(hasOperation(*recordOf(row)->GetScriptInfo(), "IsGeneric") !=
                     finished.contains(row.cls),
                 row.cls);
    }
}

QTEST_MAIN(RegistrationTest)
#include "RegistrationTest.moc"
