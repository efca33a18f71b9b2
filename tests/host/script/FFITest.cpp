#include "script/FFI.h"
#include "system/base/HostClassIds.h"
#include "system/base/HostTags.h"
#include "system/base/Object.h"
#include "system/base/Registry.h"

#include <bit>
#include <cmath>

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

using namespace Marlox;

extern "C" Q_DECL_EXPORT void* ffi_Probe_cast(void* obj)
{
    return obj;
}

namespace {

struct Base {
    virtual ~Base() = default;
};
struct Derived : Base {};

constexpr u32 longTag = 0x10050000;
constexpr u32 doubleTag = 0x20050000;
constexpr u32 textTag = 0x30050000;
constexpr u32 objectTag = 0x40050000;
constexpr u32 classTag = 0x60050000;
constexpr u32 inputTag = 0x80050000;
constexpr u32 listTag = 0x30050001;
constexpr u32 oddTag = 0x20050009; // says double, carries an integer

constexpr TagMapEntry table[] = {
    {"Long", longTag},          {"Double", doubleTag},
    {"Text", textTag},          {"List", listTag, {}, true},
    {"Object", objectTag},      {"Class", classTag},
    {"Input", inputTag},        {"Odd", oddTag, TagType::Integer},
    {"Parent", REG_ParentName}, {},
};

bool ToTags(const char* name, const ScriptVal& value, TagList& tags)
{
    ScriptVal values = ScriptVal::MakeTable();
    values.Set(name, value);
    return scriptval_maptags(table, false, values, tags);
}

} // namespace

class FFITest : public QObject {
    Q_OBJECT
private slots:
    void RecordsComeAndGo();
    void FindsFunctionsOfItsOwnLibrary();
    void TellsBasesOfClasses();
    void MapsBothWays();
    void ListsAreRepeatedTags();
    void KeepsTextsOfItsOwn();
    void RefusesMisfits_data();
    void RefusesMisfits();
    void SharedMapsNameAllHostTags();
};

void FFITest::RecordsComeAndGo()
{
    QVERIFY(!FFIType::First() && !FFIFunc::First() && !FFITagMap::First());
    {
        // A function may stand before the type that it is on.
        alignas(FFIType) static char place[sizeof(FFIType)];
        auto* late = reinterpret_cast<FFIType*>(place);
        const FFIFunc cast(late, "_cast", "ffi_Probe_cast", "Probe * ffi_Probe_cast(void * obj)");
        new (late) FFIType("Probe", "CProbe", "InputControl", -1, 0, nullptr);
        const FFIType other("Other", "COther", "InputControl", -1, 0, nullptr);
        const FFITagMap map(late, "Create", table, CreationMap_InputControl);
        QCOMPARE(FFIType::First(), late);
        QCOMPARE(late->next, &other);
        QCOMPARE(FFIType::Find("Other"), &other);
        QVERIFY(!FFIType::Find("CProbe"));
        QCOMPARE(FFIFunc::Find(late, "_cast"), &cast);
        QVERIFY(!FFIFunc::Find(&other, "_cast") && !FFIFunc::Find(late, "_uncast"));
        QCOMPARE(FFITagMap::Find(late, "Create"), &map);
        SetFFIType(typeid(Derived), late);
        QCOMPARE(FFIType::Find(typeid(Derived)), late);
        QVERIFY(!FFIType::Find(typeid(Base)));
        late->~FFIType(); // the first of several
        QCOMPARE(FFIType::First(), &other);
        const FFIType third("Third", "CThird", "InputControl", -1, 0, nullptr);
        QCOMPARE(FFIType::Find("Third"), &third);
    }
    QVERIFY(!FFIType::First() && !FFIFunc::First() && !FFITagMap::First());
}

void FFITest::FindsFunctionsOfItsOwnLibrary()
{
    static FFIType type("Probe", "Probe", "InputControl", -1, 0, nullptr);
    static const FFIFunc cast(&type, "_cast", "ffi_Probe_cast", "");
    static const FFIFunc missing(&type, "_uncast", "ffi_Probe_uncast", "");
    static const FFIFunc foreign(&type, "version", "qVersion", ""); // exported, but by Qt
    QCOMPARE(cast.Address(), reinterpret_cast<void*>(&ffi_Probe_cast));
    QCOMPARE(cast.Address(), reinterpret_cast<void*>(&ffi_Probe_cast));
    QVERIFY(!missing.Address());
    QVERIFY(!foreign.Address());
}

void FFITest::TellsBasesOfClasses()
{
    QVERIFY(!BaseTypeInfo(typeid(Derived)));
    SetTypeInfo(typeid(Derived), typeid(Base));
    QVERIFY(BaseTypeInfo(typeid(Derived)) && *BaseTypeInfo(typeid(Derived)) == typeid(Base));
    QVERIFY(!BaseTypeInfo(typeid(Base)));
    ResetTypeInfo(typeid(Derived));
    QVERIFY(!BaseTypeInfo(typeid(Derived)));
}

void FFITest::MapsBothWays()
{
    Object object;
    ScriptVal values = ScriptVal::MakeTable();
    values.Set("Long", ScriptVal(-3));
    values.Set("Double", ScriptVal(0.1));
    values.Set("Text", ScriptVal("low"));
    values.Set("Object", ScriptVal(&object));
    values.Set("Class", ScriptVal("SliderControl"));
    values.Set("Input", ScriptVal("Gain"));
    values.Set("Odd", ScriptVal(7));
    values.Set("Parent", ScriptVal("OverlayControl"));
    values.Set("Stranger", ScriptVal(1)); // left alone
    TagList tags;
    QVERIFY(scriptval_maptags(table, false, values, tags));
    QCOMPARE(tags.Count(), std::size_t(8));
    QCOMPARE(tags.GetLong(longTag), int64(-3));
    QCOMPARE(tags.GetDouble(doubleTag), 0.1);
    QCOMPARE(tags.GetString(textTag), "low");
    QCOMPARE(tags.GetObject(objectTag), &object);
    QCOMPARE(tags.GetID(classTag), MxID("SliderControl"));
    QCOMPARE(tags.GetID(inputTag), MxID("Gain"));
    QCOMPARE(tags.Find(oddTag)->Bits(), u64(7));
    QCOMPARE(tags.GetString(REG_ParentName), "OverlayControl");

    ScriptVal back = ScriptVal::MakeTable();
    back.Set("Long", ScriptVal(99));  // replaced
    back.Set("Own", ScriptVal(true)); // kept
    QVERIFY(scriptval_maptags(table, true, back, tags));
    values.Set("Stranger", ScriptVal());
    values.Set("Own", ScriptVal(true));
    QVERIFY(back == values);

    QVERIFY(ToTags("Long", ScriptVal(true), tags)); // flags are integers
    QCOMPARE(tags.GetLong(longTag), int64(1));
    QCOMPARE(tags.Count(), std::size_t(8));
    QVERIFY(scriptval_maptags(nullptr, false, values, tags));
}

void FFITest::ListsAreRepeatedTags()
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const char* text : {"one", "two", "one"})
        list.Append(text);
    TagList tags({{listTag, "old"}, {textTag, "between"}, {listTag, "older"}});
    QVERIFY(ToTags("List", list, tags));
    QCOMPARE(tags.Count(), std::size_t(4));
    ScriptVal back = ScriptVal::MakeTable();
    TagList merged; // as attributes travel
    merged.Merge(tags);
    QVERIFY(scriptval_maptags(table, true, back, merged));
    QVERIFY(back.Get("List") == list);
    QVERIFY(back.Get("Text").IsString());
    // One text is a list of one.
    QVERIFY(ToTags("List", "alone", tags));
    QCOMPARE(tags.Count(), std::size_t(2));
    QVERIFY(scriptval_maptags(table, true, back, tags));
    QCOMPARE(back.Get("List").Length(), std::size_t(1));

    list.Append(ScriptVal(3));
    QVERIFY(!ToTags("List", list, tags) && !ToTags("List", ScriptVal::MakeTable(), tags));
    QCOMPARE(tags.GetString(listTag), "alone");
    QVERIFY(!ToTags("Text", back.Get("List"), tags)); // only where it says so
}

void FFITest::KeepsTextsOfItsOwn()
{
    TagList tags;
    {
        ScriptVal values = ScriptVal::MakeTable();
        values.Set("Text", ScriptVal(std::string(100, 'x')));
        values.Set("Class", ScriptVal(std::string(100, 'y')));
        QVERIFY(scriptval_maptags(table, false, values, tags));
    }
    const TagList copy = tags;
    tags.Clear();
    QCOMPARE(std::string(copy.GetString(textTag)), std::string(100, 'x'));
    QCOMPARE(copy.GetID(classTag).View(), std::string_view(std::string(100, 'y')));
}

void FFITest::RefusesMisfits_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("kind");
    QTest::newRow("text as integer") << QByteArray("Long") << 0;
    QTest::newRow("fraction as integer") << QByteArray("Long") << 1;
    QTest::newRow("too large an integer") << QByteArray("Long") << 2;
    QTest::newRow("no number as integer") << QByteArray("Long") << 3;
    QTest::newRow("fraction as odd integer") << QByteArray("Odd") << 1;
    QTest::newRow("boolean as double") << QByteArray("Double") << 4;
    QTest::newRow("number as text") << QByteArray("Text") << 1;
    QTest::newRow("text as object") << QByteArray("Object") << 0;
    QTest::newRow("number as class") << QByteArray("Class") << 1;
    QTest::newRow("table as input") << QByteArray("Input") << 5;
    QTest::newRow("number as parent") << QByteArray("Parent") << 1;
}

void FFITest::RefusesMisfits()
{
    QFETCH(QByteArray, name);
    QFETCH(int, kind);
    const ScriptVal misfits[] = {ScriptVal("x"), ScriptVal(1.5),  ScriptVal(0x1p63),
                                 ScriptVal(NAN), ScriptVal(true), ScriptVal::MakeTable()};
    ScriptVal values = ScriptVal::MakeTable();
    values.Set(name.constData(), misfits[kind]);
    // The others still go through, whatever stands first in the table.
    values.Set(name == "Double" ? "Long" : "Double", ScriptVal(2));
    TagList tags;
    QVERIFY(!scriptval_maptags(table, false, values, tags));
    QCOMPARE(tags.Count(), std::size_t(1));
}

void FFITest::SharedMapsNameAllHostTags()
{
    QFile header(QStringLiteral(MARLOX_SOURCE_DIR "/host/system/base/HostTags.h"));
    QVERIFY(header.open(QIODevice::ReadOnly));
    // Attributes of inputs and controls: groups 003 and 004.
    const QRegularExpression line(
        QStringLiteral("constexpr u32 (I\\w+) = 0x([0-9a-f])(003|004)([0-9a-f]{4});"));
    auto found = line.globalMatch(QString::fromUtf8(header.readAll()));
    std::map<std::string, u32> expected;
    while (found.hasNext()) {
        const auto match = found.next();
        const QString id = match.captured(2) + match.captured(3) + match.captured(4);
        expected[match.captured(1).toStdString()] = id.toUInt(nullptr, 16);
    }
    QVERIFY(expected.size() > 30);
    for (const char* name : {CreationMap_InputControl, CreationMap_PreviewControl}) {
        std::map<std::string, u32> mapped;
        for (const TagMapEntry* entry = SharedCreationMap(name); entry->name; ++entry)
            mapped[entry->name] = entry->tag;
        QVERIFY(mapped == expected);
    }
    QVERIFY(!SharedCreationMap("Other.Create") && !SharedCreationMap(nullptr));
}

QTEST_GUILESS_MAIN(FFITest)
#include "FFITest.moc"
