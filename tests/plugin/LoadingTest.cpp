#include "plugin/ExpectedRecords.h"
#include "plugin/PluginLibrary.h"
#include "script/FFI.h"
#include "system/base/Registry.h"
#include "system/resources/Resources.h"

#include <QProcess>
#include <QtTest>

using namespace Marlox;

namespace {

/// How much the host knows of classes, resources and script types.
struct Known {
    std::size_t records = ClassRegistry::Global().Records().size();
    std::size_t resources = Resource::Declared().size();
    std::size_t types = Count(FFIType::First());
    std::size_t functions = Count(FFIFunc::First());
    std::size_t tagMaps = Count(FFITagMap::First());

    template <class Record>
    static std::size_t Count(const Record* first)
    {
        std::size_t count = 0;
        for (; first; first = first->next)
            ++count;
        return count;
    }
    friend bool operator==(const Known&, const Known&) = default;
};

} // namespace

/// The library as a file: what it exports, and that it comes and goes without a trace.
class LoadingTest : public QObject {
    Q_OBJECT

private slots:
    void ExportsTheScriptCastsOnly();
    void LoadsAndUnloadsAgainAndAgain();
    void UnloadsAfterUse();
    void ForgetsTheBaseOfItsClasses();
};

void LoadingTest::ExportsTheScriptCastsOnly()
{
    QProcess nm;
    nm.start("nm", {"-D", "--defined-only", PluginLibrary::Path()});
    QVERIFY2(nm.waitForFinished(), "nm (binutils) is needed");
    QStringList exported;
    for (const QByteArray& line : nm.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            exported += line.mid(line.indexOf(' ') + 1);
    }
    QStringList expected;
    for (const Expected::Record& row : Expected::records) {
        if (row.HasMapper()) {
            expected += QString("T ffi_%1_cast").arg(row.cls);
            expected += QString("T ffi_%1_uncast").arg(row.cls);
        }
    }
    exported.sort();
    expected.sort();
    QCOMPARE(expected.size(), 92);
    QCOMPARE(exported, expected);
}

void LoadingTest::LoadsAndUnloadsAgainAndAgain()
{
    const Known before;
    QCOMPARE(before.records, std::size_t(0));
    for (int round = 0; round < 3; ++round) {
        PluginLibrary plugin;
        QVERIFY2(plugin.IsLoaded(), plugin.Error().constData());
        QVERIFY(PluginLibrary::IsMapped());
        const Known loaded;
        QCOMPARE(loaded.records, std::size(Expected::records));
        QCOMPARE(loaded.types, std::size_t(49));
        QCOMPARE(loaded.functions, std::size_t(98));
        QCOMPARE(loaded.tagMaps, std::size_t(49));
        QVERIFY(loaded.resources > 180);
        plugin.Unload();
        QVERIFY(Known() == before);
        QVERIFY(!dlopen(PluginLibrary::Path().constData(), RTLD_NOW | RTLD_NOLOAD));
        QVERIFY(!PluginLibrary::IsMapped());
    }
    QVERIFY(ClassRegistry::Global().TakeProblems().empty());
}

void LoadingTest::UnloadsAfterUse()
{
    const Known before;
    PluginLibrary plugin;
    QVERIFY(plugin.IsLoaded());
    for (Registry* record : ClassRegistry::Global().Records())
        Ref<Object>(ClassRegistry::Global().Create(record->ClassID()));
    FFIFunc::First()->Address();
    plugin.Unload();
    QVERIFY(!PluginLibrary::IsMapped());
    QVERIFY(Known() == before);
}

void LoadingTest::ForgetsTheBaseOfItsClasses()
{
    // The type information goes with the library, so that its name is all that can be kept.
    struct Name : std::type_info {
        explicit Name(const char* name) : std::type_info(name) {}
    };
    PluginLibrary plugin;
    const Name slider("N6Marlox13SliderControlE");
    QVERIFY(BaseTypeInfo(slider));
    plugin.Unload();
    QVERIFY(!BaseTypeInfo(slider));
}

QTEST_MAIN(LoadingTest)
#include "LoadingTest.moc"
