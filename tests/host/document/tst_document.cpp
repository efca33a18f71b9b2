#include "host/TestTools.h"
#include "script/ScriptSystem.h"
#include "system/document/ExpressionNames.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"

#include <clocale>
#include <limits>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Marlox;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

} // namespace

class TestDocument : public QObject {
    Q_OBJECT

    TestTools tools_;
    QTemporaryDir folder_;
    std::unique_ptr<MarloxDoc> document_;

    QString pathOf(const char* name) { return folder_.filePath(QString::fromLatin1(name)); }
    Operator* add(const char* toolClass) { return document_->AddTool(toolClass); }
    UndoHistory& history() { return document_->Undo(); }
    QStringList names() const
    {
        QStringList all;
        for (const auto& tool : document_->Tools())
            all += tool->GetName();
        return all;
    }
    /// A document with something of everything.
    void fill()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = add(TestTools::gainClass);
        add(TestTools::gainClass)->DisableTool(true);
        gain->SetName(QStringLiteral("Größe \"1\""));
        gain->FindInput("Gain")->SetValue(Number(0.1 + 0.2), 0);
        gain->FindInput("Center")->SetValue(Point(1.0 / 3.0, -1e-300, 1e300), 0);
        gain->FindInput("Caption")->SetValue(Text("line\n\"]]\" \\ \xc3\xa9\t"), 0);
        gain->FindInput("Count")->SetExpression("time * 2");
        gain->FindInput("Mask")->Connect(source);
        gain->FindInput("Passive")->SetValue(Number(infinite - infinite), 0);
        Input* level = source->FindInput("Level");
        level->AddKey(-2.5, Interpolation::Step);
        level->AddKey(10, Interpolation::Linear);
        level->SetValue(Number(-infinite), 10);
        level->AddKey(20);
        source->SetLocked(true);
        document_->SetFrameRange(-10, 1000.5);
        document_->SetFrameRate(23.976);
        document_->SetCurrentTime(12.25);
    }

private slots:
    void initTestCase()
    {
        qputenv("MARLOX_CONFIG", folder_.filePath("config").toUtf8());
        InstallScripting();
    }
    void init() { document_ = std::make_unique<MarloxDoc>(); }
    void cleanup() { document_.reset(); }

    void toolsComeBackAsTheyWere()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = add(TestTools::gainClass);
        Input* level = source->FindInput("Level");
        level->SetValue(Number(4), 0);
        QSignalSpy removed(document_.get(), &MarloxDoc::ToolRemoved);
        QVERIFY(document_->RemoveTool(*source));
        QCOMPARE(removed.count(), 1);
        QCOMPARE(names(), QStringList("TestGain1"));
        QVERIFY(!source->GetDoc());
        QVERIFY(level->SetValue(Number(9), 0)); // loose: no step
        level->SetValue(Number(4), 0);
        QCOMPARE(history().UndoText(), QString("Remove TestSource1"));

        history().Undo();
        QCOMPARE(document_->Tools()[0].Get(), source);
        QCOMPARE(source->FindInput("Level"), level);
        QCOMPARE(source->GetDoc(), document_.get());
        history().Undo();
        QCOMPARE(level->GetNumber(0), 0.5);
        history().Undo();
        history().Undo();
        QVERIFY(document_->Tools().empty());
        for (int i = 0; i < 3; ++i)
            history().Redo();
        QCOMPARE(document_->Tools()[1].Get(), gain);
        QCOMPARE(level->GetNumber(0), 4.0);
        QString error;
        QVERIFY(!document_->AddTool("NoSuchTool", -1, &error) && error.contains("NoSuchTool"));
    }

    void toolsMoveAndChangeByUndo()
    {
        add(TestTools::sourceClass);
        Operator* first = add(TestTools::gainClass);
        Operator* second = add(TestTools::gainClass);
        QSignalSpy changed(document_.get(), &MarloxDoc::ToolChanged);
        QVERIFY(document_->MoveTool(*second, 0));
        QCOMPARE(names(), (QStringList{"TestGain2", "TestSource1", "TestGain1"}));
        QVERIFY(document_->MoveTool(*second, 99));
        QCOMPARE(document_->IndexOf(*second), 2);
        QVERIFY(first->DisableTool(true) && first->SetLocked(true));
        QVERIFY(!first->DisableTool(false) && !first->SetName("Other"));
        QVERIFY(!document_->RemoveTool(*first) && !document_->MoveTool(*first, 0));
        QCOMPARE(changed.count(), 2);
        history().Undo(); // unlocks
        history().Undo();
        QVERIFY(!first->IsLocked() && !first->IsDisabled());
        history().Undo();
        history().Undo();
        QCOMPARE(names(), (QStringList{"TestSource1", "TestGain1", "TestGain2"}));
        history().Redo();
        QCOMPARE(document_->IndexOf(*second), 0);
    }

    void namesAreUnique()
    {
        Operator* one = add(TestTools::gainClass);
        Operator* two = add(TestTools::gainClass);
        QVERIFY(two->SetName("Glow"));
        QVERIFY(one->SetName("  Glow\n"));
        QCOMPARE(names(), (QStringList{"Glow1", "Glow"}));
        QVERIFY(two->SetName("Glow1"));
        QCOMPARE(two->GetName(), QString("Glow2"));
        QVERIFY(two->SetName("Glow2") && !two->SetName("  "));
        history().Undo();
        QCOMPARE(two->GetName(), QString("Glow"));
    }

    void referencesFollowNames()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = add(TestTools::gainClass);
        Input* count = gain->FindInput("Count");
        gain->FindInput("Mask")->Connect(source);
        count->SetExpression("TestSource1.Level * 10");
        QCOMPARE(count->GetNumber(0), 5.0);
        QVERIFY(source->SetName("Sky 2"));
        QCOMPARE(gain->FindInput("Mask")->GetSource(), source);
        QCOMPARE(count->GetNumber(0), 5.0);
        QVERIFY2(count->ExpressionError().isEmpty(), qPrintable(count->ExpressionError()));
        QCOMPARE(history().UndoText(), QString("Rename TestSource1"));
        history().Undo();
        QCOMPARE(count->GetExpression(), std::string("TestSource1.Level * 10"));
        QCOMPARE(gain->FindInput("Mask")->GetSource(), source);
        QCOMPARE(count->GetNumber(0), 5.0);
        QVERIFY(count->ExpressionError().isEmpty());
    }

    void expressionsAreRenamed_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("after");
        QTest::newRow("names") << "Blur1.X+Blur1 . Y+Blur12.X+a.Blur1.X+Blur1"
                               << "Blur1"
                               << "B"
                               << "B.X+B . Y+Blur12.X+a.Blur1.X+Blur1";
        QTest::newRow("texts")
            << "'Blur1.X' .. \"Blur1.\\\"Blur1.X\" .. [=[Blur1.X]]]=] -- Blur1.X"
            << "Blur1"
            << "B"
            << "'Blur1.X' .. \"Blur1.\\\"Blur1.X\" .. [=[Blur1.X]]]=] -- Blur1.X";
        QTest::newRow("calls") << "tool(\"Blur 1\").X + tool 'Blur 1'.X + f('Blur 1') + Blur_1.X"
                               << "Blur 1"
                               << "a\"b"
                               << "tool(\"a\\\"b\").X + tool \"a\\\"b\".X + f('Blur 1') + a_b.X";
        QTest::newRow("no name") << "Blur1.X*1e5"
                                 << "Blur1"
                                 << "2nd"
                                 << "tool(\"2nd\").X*1e5";
        QTest::newRow("own input") << "Own.X"
                                   << "Own"
                                   << "B"
                                   << "Own.X";
        QTest::newRow("unended") << "\"Blur1.X"
                                 << "Blur1"
                                 << "B"
                                 << "\"Blur1.X";
    }

    void expressionsAreRenamed()
    {
        QFETCH(QString, before);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, after);
        const auto isOwn = [](const std::string& name) { return name == "Own"; };
        QCOMPARE(
            QString::fromStdString(RenameToolInExpression(before.toStdString(), from, to, isOwn)),
            after);
    }

    void timeStaysInRange()
    {
        QSignalSpy timeChanged(document_.get(), &MarloxDoc::CurrentTimeChanged);
        document_->SetCurrentTime(50);
        document_->SetCurrentTime(50);
        document_->SetCurrentTime(infinite - infinite);
        QCOMPARE(timeChanged.count(), 1);
        QVERIFY(document_->SetFrameRange(10, 20));
        QCOMPARE(document_->CurrentTime(), 20.0);
        document_->SetCurrentTime(-infinite);
        QCOMPARE(document_->CurrentTime(), 10.0);
        QVERIFY(!document_->SetFrameRange(5, 4) && !document_->SetFrameRange(0, infinite));
        QVERIFY(document_->SetFrameRange(7, 7) && !document_->SetFrameRate(0));
        Input* count = add(TestTools::gainClass)->FindInput("Count");
        count->SetExpression("fps / 10");
        QSignalSpy rendered(&document_->GetRenderer(), &Renderer::Finished);
        QVERIFY(document_->GetRenderer().WaitUntilIdle(5000));
        QVERIFY(document_->SetFrameRate(50));
        QVERIFY(document_->GetRenderer().WaitUntilIdle(5000));
        QCOMPARE(rendered.count(), 2); // expressions may use the rate
        for (int i = 0; i < 3; ++i)
            history().Undo();
        history().Undo();
        QCOMPARE(document_->LastFrame(), 20.0);
        history().Undo();
        QCOMPARE(document_->LastFrame(), 100.0);
    }

    void filesKeepEverything()
    {
        if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
            std::setlocale(LC_NUMERIC, "de_DE");
        QLocale::setDefault(QLocale(QLocale::German));
        fill();
        QString error;
        QVERIFY(document_->IsModified());
        QVERIFY2(document_->Save(pathOf("all.marlox"), &error), qPrintable(error));
        QVERIFY(!document_->IsModified());
        QCOMPARE(document_->FilePath(), pathOf("all.marlox"));

        MarloxDoc read;
        QSignalSpy cleared(&read, &MarloxDoc::Cleared);
        QVERIFY2(read.Open(pathOf("all.marlox"), &error), qPrintable(error));
        std::setlocale(LC_NUMERIC, "C");
        QLocale::setDefault(QLocale::c());
        QCOMPARE(cleared.count(), 1);
        QVERIFY(!read.IsModified() && !read.Undo().CanUndo() && read.LoadNotes().isEmpty());
        QCOMPARE(read.LastFrame(), 1000.5);
        QCOMPARE(read.FrameRate(), 23.976);
        QCOMPARE(read.CurrentTime(), 12.25);
        QCOMPARE(read.Tools().size(), document_->Tools().size());
        for (std::size_t i = 0; i < read.Tools().size(); ++i) {
            const Operator& expected = *document_->Tools()[i];
            const Operator& tool = *read.Tools()[i];
            QCOMPARE(tool.GetName(), expected.GetName());
            QCOMPARE(tool.IsLocked(), expected.IsLocked());
            QCOMPARE(tool.IsDisabled(), expected.IsDisabled());
            for (std::size_t n = 0; n < expected.Inputs().size(); ++n) {
                const Input& input = *tool.Inputs()[n];
                QVERIFY2(input.GetState() == expected.Inputs()[n]->GetState(),
                         input.GetID().c_str());
            }
        }
        QCOMPARE(read.Tools()[1]->FindInput("Mask")->GetSource(), read.Tools()[0].Get());
        QCOMPARE(read.ToText(), document_->ToText());
    }

    void whatIsNotUsedIsTold()
    {
        add(TestTools::gainClass);
        QString text = QString::fromStdString(document_->ToText());
        const int at = text.indexOf("Gain = ");
        QVERIFY(at > 0);
        text.insert(at, "Sparkle = { Value = { 1, 2, deep = \"x\" }, Shine = 3 },\n");
        text.replace("Value = 1", "Value = 1, Weight = 2, Source = \"TestGain1\"");
        text.replace("Mask = {", "Mask = { Source = \"Gone1\",");
        text.replace("Fixed = {", "Fixed = { Keys = { { 0, 1 } },");
        text.replace("Class =", "Stile = 1, Class =").replace("Tools =", "Pools = 1, Tools =");
        QString error;
        QVERIFY2(document_->FromText(text.toStdString(), &error), qPrintable(error));
        QVERIFY(document_->IsModified());
        const QString notes = document_->LoadNotes().join('\n');
        for (const char* name : {"Sparkle", "Weight", "Source", "Gone1", "Keys", "Stile", "Pools"})
            QVERIFY2(notes.contains(name), qPrintable(notes));
        const Operator& tool = *document_->Tools()[0];
        QVERIFY(tool.FindInput("Gain")->GetState().source.empty());
        QVERIFY(!tool.FindInput("Fixed")->IsAnimated());
        QCOMPARE(tool.FindInput("Mask")->GetState().source, std::string("Gone1"));
        ScriptVal before, after;
        ScriptServices::Installed()->ParseValue(text.toStdString(), before, nullptr);
        ScriptServices::Installed()->ParseValue(document_->ToText(), after, nullptr);
        const auto sparkle = [](const ScriptVal& table) {
            return table.Get("Tools").At(1).Get("Inputs").Get("Sparkle");
        };
        QVERIFY(sparkle(after).IsTable() && sparkle(after) == sparkle(before));
    }

    void brokenDocumentsAreRefused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("told");
        const QString head = "{ Format = \"marlox document\", Version = 1, ";
        const auto tool = [&head](const char* fields) {
            return head + "Tools = { { Class = \"TestGain\", Name = \"A\", " + fields + " } } }";
        };
        const auto input = [&tool](const char* fields) {
            return tool((QByteArray("Inputs = { Gain = ") + fields + " }").constData());
        };
        QTest::newRow("empty") << "  \n"
                               << "empty";
        QTest::newRow("no table") << "hello"
                                  << "";
        QTest::newRow("binary") << QString(200, QChar(1)) << "";
        QTest::newRow("other table") << "{ 1, 2, 3 }"
                                     << "no document";
        QTest::newRow("no version") << "{ Format = \"marlox document\" }"
                                    << "Version";
        QTest::newRow("newer") << "{ Format = \"marlox document\", Version = 2 }"
                               << "newer";
        QTest::newRow("line") << head + "\n\nTools = { ! } }"
                              << "3";
        QTest::newRow("range") << head + "FrameRange = { 5, 1 } }"
                               << "FrameRange";
        QTest::newRow("rate") << head + "FrameRate = \"fast\" }"
                              << "FrameRate";
        QTest::newRow("time") << head + "CurrentTime = {} }"
                              << "CurrentTime";
        QTest::newRow("tools") << head + "Tools = 5 }"
                               << "Tools";
        QTest::newRow("no tools") << head + "Toolz = {} }"
                                  << "Tools";
        QTest::newRow("tool") << head + "Tools = { 5 } }"
                              << "tool 1";
        QTest::newRow("class") << head + "Tools = { { Class = \"Gone\", Name = \"A\" } } }"
                               << "Gone";
        QTest::newRow("no tool class")
            << head + "Tools = { { Class = \"SliderControl\", Name = \"A\" } } }"
            << "SliderControl";
        QTest::newRow("two names") << head + "Tools = { { Class = \"TestGain\", Name = \"A\" }, "
                                             "{ Class = \"TestGain\", Name = \"A\" } } }"
                                   << "\"A\"";
        QTest::newRow("inputs") << tool("Inputs = 7") << "\"A\"";
        QTest::newRow("unnamed inputs") << tool("Inputs = { {} }") << "\"A\"";
        QTest::newRow("flag") << tool("Disabled = 1") << "Disabled";
        QTest::newRow("misspelt") << tool("Disabled = ture") << "ture";
        QTest::newRow("input") << input("7") << "\"Gain\"";
        QTest::newRow("value") << input("{ Value = \"much\" }") << "Value";
        QTest::newRow("keys") << input("{ Keys = { { 0, 1 }, { \"x\", 1 } } }") << "Keys";
        QTest::newRow("interpolation") << input("{ Keys = { { 0, 1, \"Wavy\" } } }") << "Keys";
        QTest::newRow("expression") << input("{ Expression = 5 }") << "Expression";
        QTest::newRow("source") << input("{ Source = {} }") << "Source";
    }

    void brokenDocumentsAreRefused()
    {
        QFETCH(QString, text);
        QFETCH(QString, told);
        fill();
        document_->Save(pathOf("good.marlox"), nullptr);
        document_->Tools()[1]->FindInput("Gain")->SetValue(Number(2), 0);
        const std::string before = document_->ToText();
        const Operator* first = document_->Tools()[0].Get();
        QSignalSpy cleared(document_.get(), &MarloxDoc::Cleared);

        write(pathOf("broken.marlox"), text.toUtf8());
        QString error;
        QVERIFY(!document_->Open(pathOf("broken.marlox"), &error));
        QVERIFY2(error.contains("broken.marlox"), qPrintable(error));
        QVERIFY2(error.contains(told), qPrintable(error));
        QVERIFY(document_->ToText() == before);
        QCOMPARE(document_->Tools()[0].Get(), first);
        QCOMPARE(document_->FilePath(), pathOf("good.marlox"));
        QVERIFY(document_->IsModified() && history().CanUndo() && cleared.isEmpty());
    }

    void truncatedDocumentsAreRefused()
    {
        fill();
        const std::string text = document_->ToText();
        const std::size_t end = text.find_last_not_of(" \n");
        for (std::size_t length = 0; length < end; length += 1 + length % 7) {
            QString error;
            QVERIFY2(!document_->FromText(text.substr(0, length), &error),
                     text.substr(0, length).c_str());
            QVERIFY(!error.isEmpty());
        }
        QVERIFY(document_->ToText() == text);
    }

    void damagedDocumentsDoNoHarm()
    {
        fill();
        const std::string text = document_->ToText();
        int refused = 0;
        for (std::size_t at = 0; at < text.size(); ++at) {
            std::string damaged = text;
            constexpr char others[] = {0, '\xff', '"', '}', '9', '\n'};
            damaged[at] =
                at % 2 ? others[at / 2 % sizeof others] : char(text[at] ^ 1 << at / 2 % 8);
            MarloxDoc read;
            QString error;
            if (!read.FromText(damaged, &error)) {
                ++refused;
                QVERIFY2(!error.isEmpty() && read.Tools().empty(), damaged.c_str());
            } else { // another text: it must come back as it was read
                MarloxDoc again;
                QVERIFY2(again.FromText(read.ToText(), &error), qPrintable(error));
                QVERIFY2(again.ToText() == read.ToText(), damaged.c_str());
            }
        }
        QVERIFY(refused > 0 && refused < int(text.size()));
    }

    void filesThatAreNotThereAreTold()
    {
        QString error;
        QVERIFY(!document_->Open(pathOf("nowhere.marlox"), &error));
        QVERIFY(error.contains("nowhere.marlox"));
        QVERIFY(!document_->Open(folder_.path(), &error));
        QVERIFY(!document_->Open("/dev/zero", &error));
        fill();
        QVERIFY(!document_->Save(pathOf("no/such/folder.marlox"), &error));
        QVERIFY(error.contains("folder.marlox") && document_->IsModified());
        QVERIFY(document_->FilePath().isEmpty());
    }

    void modifiedFollowsUndo()
    {
        QSignalSpy changed(document_.get(), &MarloxDoc::ModifiedChanged);
        add(TestTools::gainClass);
        document_->Save(pathOf("clean.marlox"), nullptr);
        history().Undo();
        QVERIFY(document_->IsModified());
        history().Redo();
        QVERIFY(!document_->IsModified());
        document_->StartUndo("Drag");
        document_->Tools()[0]->FindInput("Gain")->SetValue(Number(3), 0);
        QVERIFY(document_->IsModified()); // before the drag ends
        document_->EndUndo(false);
        QVERIFY(!document_->IsModified());
        QCOMPARE(changed.count(), 4);
        document_->StartUndo("Drag"); // saved in its middle: no entry leads back to the file
        document_->Tools()[0]->FindInput("Gain")->SetValue(Number(3), 0);
        QVERIFY(document_->Save(pathOf("clean.marlox"), nullptr));
        document_->EndUndo(true);
        history().Undo();
        QVERIFY(document_->IsModified());
        document_->Clear();
        QVERIFY(!document_->IsModified() && document_->Tools().empty());
        QVERIFY(document_->FilePath().isEmpty() && !history().CanUndo());
    }

    void settingsAreRestoredAsOneStep()
    {
        Operator* one = add(TestTools::gainClass);
        Operator* two = add(TestTools::gainClass);
        one->FindInput("Gain")->SetValue(Number(6), 0);
        one->FindInput("Caption")->SetValue(Text("same"), 0);
        ScriptVal state;
        QVERIFY(one->SaveState(state));
        const int count = history().Stack().count();
        QVERIFY(two->RestoreState(state));
        QCOMPARE(history().Stack().count(), count + 1);
        QCOMPARE(two->FindInput("Gain")->GetNumber(0), 6.0);
        QCOMPARE(two->GetName(), QString("TestGain2"));
        history().Undo();
        QVERIFY(two->FindInput("Caption")->GetValue(0)->IsEqual(Text("untitled")));
        ScriptVal inputs = state.Get("Inputs");
        inputs.Set("Sparkle", 1);
        ScriptVal connection;
        connection.Set("Source", "TestGain2"); // itself
        inputs.Set("Mask", connection);
        QStringList notes;
        QString error;
        QVERIFY(two->RestoreState(state, error, notes));
        QCOMPARE(notes.size(), 2);
        QVERIFY(notes.join(' ').contains("TestGain2") && !two->FindInput("Mask")->GetSource());
        QVERIFY(document_->ToText().find("Sparkle") != std::string::npos);
        history().Undo();
        QVERIFY(document_->ToText().find("Sparkle") == std::string::npos);
        QVERIFY(!add(TestTools::sourceClass)->RestoreState(state));
        two->SetLocked(true);
        QVERIFY(!two->RestoreState(state));
    }

    void autosaveComesAndGoes()
    {
        const QString copies = pathOf("autosave");
        document_->StartAutosave(copies, 0);
        fill();
        const auto files = [&copies] { return QDir(copies).entryList(QDir::Files); };
        QTRY_COMPARE(files().size(), 1);
        QVERIFY(files()[0].contains(QString::number(QCoreApplication::applicationPid())));
        QVERIFY(MarloxDoc::RecoveryFiles(copies).isEmpty()); // its process lives
        QVERIFY(document_->Save(pathOf("saved.marlox"), nullptr));
        QVERIFY(files().isEmpty());
        document_->SetFrameRate(30);
        QTRY_COMPARE(files().size(), 1);
        document_.reset();
        QVERIFY(files().isEmpty());
    }

    void leftoversAreRecovered()
    {
        const QString copies = pathOf("crashed");
        document_->StartAutosave(copies, 0);
        document_->Save(pathOf("mine.marlox"), nullptr);
        fill();
        QTRY_COMPARE(QDir(copies).entryList(QDir::Files).size(), 1);
        const QString alive = QDir(copies).filePath(QDir(copies).entryList(QDir::Files)[0]);
        const QString pid = QString::number(QCoreApplication::applicationPid());
        QProcess dead; // a process that has been
        dead.start("true", QStringList());
        QVERIFY(dead.waitForStarted());
        const QString deadPid = QString::number(dead.processId());
        QVERIFY(dead.waitForFinished());
        const QString left = QDir(copies).filePath("autosave-" + deadPid + "-00c0ffee-1.marlox");
        const QString earlier = QDir(copies).filePath("autosave-" + pid + "-00c0ffee-1.marlox");
        QVERIFY(QFile::copy(alive, left) && QFile::copy(alive, earlier));
        write(QDir(copies).filePath("notes.txt"), "mine");
        QStringList found = MarloxDoc::RecoveryFiles(copies);
        found.sort();
        QStringList expected{left, earlier};
        expected.sort();
        QCOMPARE(found, expected); // the number of a process alone is no proof of life

        MarloxDoc recovered;
        recovered.StartAutosave(copies, 0);
        QString error;
        QVERIFY2(recovered.Recover(left, &error), qPrintable(error));
        QVERIFY(recovered.ToText() == document_->ToText());
        QCOMPARE(recovered.FilePath(), pathOf("mine.marlox"));
        QVERIFY(recovered.IsModified());
        QTRY_VERIFY(!QFile::exists(left)); // its own copy is there instead
        write(earlier, "{ cut");
        QVERIFY(!recovered.Recover(earlier, &error) && QFile::exists(earlier));
    }

    void preferencesAreKept()
    {
        Preferences& preferences = MarloxDoc::GetPreferences();
        QVERIFY(preferences.FilePath().startsWith(folder_.path()));
        QSignalSpy changed(&preferences, &Preferences::Changed);
        preferences.Set("Dialogs.Import.Position", QPoint(3, 4));
        preferences.Set("Dialogs.Import.Position", QPoint(3, 4));
        preferences.Set("Viewer.Gamma", 2.2);
        QCOMPARE(changed.count(), 2);
        QVERIFY(preferences.Flush());
        const QSettings file(preferences.FilePath(), QSettings::IniFormat);
        QCOMPARE(file.value("Viewer.Gamma").toDouble(), 2.2);
        QCOMPARE(preferences.Get("Dialogs.Import.Position").toPoint(), QPoint(3, 4));
        preferences.Remove("Viewer.Gamma");
        preferences.Remove("");
        QCOMPARE(preferences.Names(), QStringList("Dialogs.Import.Position"));
        QCOMPARE(preferences.Get("Viewer.Gamma", 1).toInt(), 1);
        QVERIFY(preferences.Flush()); // not at exit, when the folder is gone
    }
};

QTEST_GUILESS_MAIN(TestDocument)
#include "tst_document.moc"
