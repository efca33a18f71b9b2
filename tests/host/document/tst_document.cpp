#include "DocumentBench.h"
#include "host/Rows.h"
#include "system/document/ExpressionNames.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"

#include <QSettings>

using namespace Marlox;

/// Tools, names, time and settings of a document.
class TestDocument : public DocumentBench {
    Q_OBJECT

    QStringList names() const
    {
        QStringList all;
        for (const auto& tool : document_->Tools())
            all += tool->GetName();
        return all;
    }

private slots:
    void toolsComeBackAsTheyWere()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = addGain();
        Input* level = source->FindInput("Level");
        level->SetValue(Number(4), 0);
        QSignalSpy removed(document_.get(), &MarloxDoc::ToolRemoved);
        QVERIFY(document_->RemoveTool(*source));
        QCOMPARE(removed.count(), 1);
        QVERIFY(!source->GetDoc());
        QVERIFY(level->SetValue(Number(9), 0)); // loose: no step
        level->SetValue(Number(4), 0);
        QCOMPARE(history().UndoText(), QString("Remove TestSource1"));

        undo();
        QCOMPARE(document_->Tools()[0].Get(), source);
        QCOMPARE(source->FindInput("Level"), level);
        QCOMPARE(source->GetDoc(), document_.get());
        undo();
        QCOMPARE(level->GetNumber(0), 0.5);
        undo(2);
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
        Operator* first = addGain();
        Operator* second = addGain();
        QSignalSpy changed(document_.get(), &MarloxDoc::ToolChanged);
        QVERIFY(document_->MoveTool(*second, 0));
        QCOMPARE(names(), (QStringList{"TestGain2", "TestSource1", "TestGain1"}));
        QVERIFY(document_->MoveTool(*second, 99));
        QCOMPARE(document_->IndexOf(*second), 2);
        QVERIFY(first->DisableTool(true) && first->SetLocked(true));
        QVERIFY(!first->DisableTool(false) && !first->SetName("Other"));
        QVERIFY(!document_->RemoveTool(*first) && !document_->MoveTool(*first, 0));
        QCOMPARE(changed.count(), 2);
        undo(); // unlocks
        undo();
        QVERIFY(!first->IsLocked() && !first->IsDisabled());
        undo(2);
        QCOMPARE(names(), (QStringList{"TestSource1", "TestGain1", "TestGain2"}));
        history().Redo();
        QCOMPARE(document_->IndexOf(*second), 0);
    }

    void namesAreUniqueAndReferencesFollow()
    {
        Operator* source = add(TestTools::sourceClass);
        Operator* gain = addGain();
        Operator* other = addGain();
        QVERIFY(gain->SetName("Glow") && other->SetName("  Glow\n"));
        QCOMPARE(names(), (QStringList{"TestSource1", "Glow", "Glow1"}));
        QVERIFY(gain->SetName("Glow1"));
        QCOMPARE(gain->GetName(), QString("Glow2"));
        QVERIFY(gain->SetName("Glow2") && !gain->SetName("  "));

        Input* count = gain->FindInput("Count");
        gain->FindInput("Mask")->Connect(source);
        count->SetExpression("TestSource1.Level * 10");
        QVERIFY(source->SetName("Sky 2"));
        QCOMPARE(history().UndoText(), QString("Rename TestSource1"));
        for (const bool undone : {false, true}) {
            if (undone)
                undo();
            QCOMPARE(gain->FindInput("Mask")->GetSource(), source);
            QCOMPARE(count->GetExpression() == "TestSource1.Level * 10", undone);
            QCOMPARE(count->GetNumber(0), 5.0);
            QVERIFY2(count->ExpressionError().isEmpty(), qPrintable(count->ExpressionError()));
        }
    }

    void expressionsAreRenamed_data()
    {
        const Rows<QString, QString, QString, QString> row("before", "from", "to", "after");
        const auto kept = [&row](const char* name, const char* from, const char* text) {
            row(name, text, from, "B", text);
        };
        row("names", "Blur1.X+Blur1 . Y+Blur12.X+a.Blur1.X+Blur1", "Blur1", "B",
            "B.X+B . Y+Blur12.X+a.Blur1.X+Blur1");
        kept("texts", "Blur1", "'Blur1.X' .. \"Blur1.\\\"Blur1.X\" .. [=[Blur1.X]]]=] -- Blur1.X");
        row("calls", "tool(\"Blur 1\").X + tool 'Blur 1'.X + f('Blur 1') + Blur_1.X", "Blur 1",
            "a\"b", "tool(\"a\\\"b\").X + tool \"a\\\"b\".X + f('Blur 1') + a_b.X");
        row("no name", "Blur1.X*1e5", "Blur1", "2nd", "tool(\"2nd\").X*1e5");
        kept("own input", "Own", "Own.X");
        kept("unended", "Blur1", "\"Blur1.X");
    }
    void expressionsAreRenamed()
    {
        QFETCH(QString, before);
        QFETCH(QString, from);
        QFETCH(QString, to);
        const std::string renamed = RenameToolInExpression(
            before.toStdString(), from, to, [](const std::string& name) { return name == "Own"; });
        QTEST(QString::fromStdString(renamed), "after");
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
        Input* count = addGain()->FindInput("Count");
        count->SetExpression("fps / 10");
        QSignalSpy rendered(&document_->GetRenderer(), &Renderer::Finished);
        QVERIFY(document_->GetRenderer().WaitUntilIdle(5000));
        QVERIFY(document_->SetFrameRate(50));
        QVERIFY(document_->GetRenderer().WaitUntilIdle(5000));
        QCOMPARE(rendered.count(), 2); // expressions may use the rate
        undo(4);
        QCOMPARE(document_->LastFrame(), 20.0);
        undo();
        QCOMPARE(document_->LastFrame(), 100.0);
    }
    void modifiedFollowsUndo()
    {
        QSignalSpy changed(document_.get(), &MarloxDoc::ModifiedChanged);
        addGain();
        document_->Save(pathOf("clean.marlox"), nullptr);
        undo();
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
        undo();
        QVERIFY(document_->IsModified());
        document_->Clear();
        QVERIFY(!document_->IsModified() && document_->Tools().empty());
        QVERIFY(document_->FilePath().isEmpty() && !history().CanUndo());
    }

    void settingsAreRestoredAsOneStep()
    {
        Operator* one = addGain();
        Operator* two = addGain();
        one->FindInput("Gain")->SetValue(Number(6), 0);
        one->FindInput("Caption")->SetValue(Text("same"), 0);
        ScriptVal state;
        QVERIFY(one->SaveState(state));
        const int count = history().Stack().count();
        QVERIFY(two->RestoreState(state));
        QCOMPARE(history().Stack().count(), count + 1);
        QCOMPARE(two->FindInput("Gain")->GetNumber(0), 6.0);
        QCOMPARE(two->GetName(), QString("TestGain2"));
        undo();
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
        undo();
        QVERIFY(document_->ToText().find("Sparkle") == std::string::npos);
        QVERIFY(!add(TestTools::sourceClass)->RestoreState(state));
        two->SetLocked(true);
        QVERIFY(!two->RestoreState(state));
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
