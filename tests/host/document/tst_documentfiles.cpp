#include "DocumentBench.h"
#include "host/Rows.h"

#include <clocale>

#include <QProcess>

using namespace Marlox;

namespace {

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

} // namespace

/// Documents as files: written, read, damaged, recovered.
class TestDocumentFiles : public DocumentBench {
    Q_OBJECT

    /// A document with something of everything.
    void fill()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = addGain();
        addGain()->DisableTool(true);
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
            for (const Ref<Input>& input : expected.Inputs())
                QVERIFY2(tool.FindInput(input->GetID())->GetState() == input->GetState(),
                         input->GetID().c_str());
        }
        QCOMPARE(read.Tools()[1]->FindInput("Mask")->GetSource(), read.Tools()[0].Get());
        QCOMPARE(read.ToText(), document_->ToText());
    }

    void whatIsNotUsedIsTold()
    {
        addGain();
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
        const Rows<QString, QString> row("text", "told");
        const auto head = [&row](const char* name, const QString& fields, const char* told) {
            row(name, "{ Format = \"marlox document\", Version = 1, " + fields + " }", told);
        };
        const auto tool = [&head](const char* name, const QString& fields, const char* told) {
            head(name, "Tools = { { Class = \"TestGain\", Name = \"A\", " + fields + " } }", told);
        };
        const auto input = [&tool](const char* name, const QString& value, const char* told) {
            tool(name, "Inputs = { Gain = " + value + " }", told);
        };
        row("empty", "  \n", "empty");
        row("no table", "hello", "");
        row("binary", QString(200, QChar(1)), "");
        row("other table", "{ 1, 2, 3 }", "no document");
        row("no version", "{ Format = \"marlox document\" }", "Version");
        row("newer", "{ Format = \"marlox document\", Version = 2 }", "newer");
        head("line", "\n\nTools = { ! }", "3");
        head("range", "FrameRange = { 5, 1 }", "FrameRange");
        head("rate", "FrameRate = \"fast\"", "FrameRate");
        head("time", "CurrentTime = {}", "CurrentTime");
        head("tools", "Tools = 5", "Tools");
        head("no tools", "Toolz = {}", "Tools");
        head("tool", "Tools = { 5 }", "tool 1");
        head("class", "Tools = { { Class = \"Gone\", Name = \"A\" } }", "Gone");
        head("no tool class", "Tools = { { Class = \"SliderControl\", Name = \"A\" } }", "SliderC");
        tool("two names", "}, { Class = \"TestGain\", Name = \"A\"", "\"A\"");
        tool("inputs", "Inputs = 7", "\"A\"");
        tool("unnamed inputs", "Inputs = { {} }", "\"A\"");
        tool("flag", "Disabled = 1", "Disabled");
        tool("misspelt", "Disabled = ture", "ture");
        input("input", "7", "\"Gain\"");
        input("value", "{ Value = \"much\" }", "Value");
        input("keys", "{ Keys = { { 0, 1 }, { \"x\", 1 } } }", "Keys");
        input("interpolation", "{ Keys = { { 0, 1, \"Wavy\" } } }", "Keys");
        input("expression", "{ Expression = 5 }", "Expression");
        input("source", "{ Source = {} }", "Source");
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
        QVERIFY(!document_->Open(folder_.path(), &error) && !document_->Open("/dev/zero", &error));
        fill();
        QVERIFY(!document_->Save(pathOf("no/such/folder.marlox"), &error));
        QVERIFY(error.contains("folder.marlox") && document_->IsModified());
        QVERIFY(document_->FilePath().isEmpty());
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
};

QTEST_GUILESS_MAIN(TestDocumentFiles)
#include "tst_documentfiles.moc"
