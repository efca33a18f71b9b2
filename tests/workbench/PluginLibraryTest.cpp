#include "system/base/PluginLibrary.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <dlfcn.h>

using namespace Marlox;

class PluginLibraryTest : public QObject {
    Q_OBJECT

private slots:
    void unusableLibrariesAreToldApart_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << folder_.filePath("no.so") << "no such file";
        QTest::newRow("text") << Written("text.so", "not a library at all") << "not a library";
        QTest::newRow("empty") << Written("empty.so", {}) << "not a library";
        QFile working(TEST_PLUGIN_WORKING);
        QVERIFY(working.open(QIODevice::ReadOnly));
        const QByteArray whole = working.readAll();
        for (const int kept : {10, 600, int(whole.size()) / 2, int(whole.size()) - 1})
            QTest::addRow("cut to %d", kept)
                << Written(QString("cut%1.so").arg(kept), whole.left(kept)) << "breaks off";
        QTest::newRow("unresolved")
            << TEST_PLUGIN_UNRESOLVED << "unresolved symbol Marlox::FunctionOfALaterHost(double)";
        Dl_info linked{};
        QVERIFY(dladdr(reinterpret_cast<const void*>(&qVersion), &linked));
        QTest::newRow("linked") << QString(linked.dli_fname) << "registers no classes";
        QTest::newRow("silent") << TEST_PLUGIN_SILENT << "registers no classes";
    }
    void unusableLibrariesAreToldApart()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        const std::size_t before = ClassRegistry::Global().Records().size();
        std::string error;
        QVERIFY(!PluginLibrary::Load(path.toStdString(), &error));
        QVERIFY2(error.find(reason.toStdString()) != std::string::npos, error.c_str());
        QVERIFY2(error.find(path.toStdString()) == 0, error.c_str());
        QCOMPARE(ClassRegistry::Global().Records().size(), before);
    }

    void librariesComeAndGo()
    {
        const MxID id("WorkingTestClass");
        for (int round = 0; round < 2; ++round) {
            std::string error;
            const auto library = PluginLibrary::Load(TEST_PLUGIN_WORKING, &error);
            QVERIFY2(library, error.c_str());
            QCOMPARE(library->Records().size(), std::size_t(1));
            QVERIFY(!PluginLibrary::Load(TEST_PLUGIN_WORKING, &error));
            QVERIFY(error.find("loaded already") != std::string::npos);

            Ref<Object> object(ClassRegistry::Global().Create(id));
            QVERIFY(object);
            QVERIFY(!library->Unload(&error));
            QVERIFY(error.find("in use: 1 of the class WorkingTestClass") != std::string::npos);
            QVERIFY(ClassRegistry::Global().Find(id));
            object = nullptr;
            QVERIFY2(library->Unload(&error), error.c_str());
            QVERIFY(!ClassRegistry::Global().Find(id));
            QVERIFY(library->Records().empty());
        }
    }

    void classesTakenAlreadyAreAProblem()
    {
        static const TagPair tags[] = {{REG_Kind, u32(ClassKind::Parameter)}, {}};
        const Registry taken("WorkingTestClass", tags);
        std::string error;
        QVERIFY(!PluginLibrary::Load(TEST_PLUGIN_WORKING, &error));
        QVERIFY2(error.find("registered already") != std::string::npos, error.c_str());
    }

private:
    QString Written(const QString& name, const QByteArray& content)
    {
        QFile file(folder_.filePath(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(content);
        return file.fileName();
    }

    QTemporaryDir folder_;
};

QTEST_GUILESS_MAIN(PluginLibraryTest)
#include "PluginLibraryTest.moc"
