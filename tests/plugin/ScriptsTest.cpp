#include "plugin/ExpectedRecords.h"
#include "plugin/PluginLibrary.h"
#include "script/ScriptEngine.h"
#include "script/ScriptSystem.h"

#include <QtTest>

using namespace Marlox;

/// What scripts can do with the registered classes through the script engine.
class ScriptsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void CreatesAndCasts_data();
    void CreatesAndCasts();
    void AttributesByName();
    void ListsAsAttributes();
    void UnknownNamesAreRefused();
    void UnloadsBehindTheScript();

private:
    /// Runs an expression or statements; a failure stops the test with the script's message.
    ScriptVal Run(const QString& text)
    {
        const ScriptResult result = engine_->RunText(text);
        if (!result.ok)
            QTest::qFail(qPrintable(result.Error()), __FILE__, __LINE__);
        return result.values.empty() ? ScriptVal() : result.values.front();
    }

    PluginLibrary plugin_;
    std::unique_ptr<ScriptEngine> engine_;
};

void ScriptsTest::initTestCase()
{
    InstallScripting();
    QVERIFY2(plugin_.IsLoaded(), plugin_.Error().constData());
    engine_ = std::make_unique<ScriptEngine>();
}

void ScriptsTest::CreatesAndCasts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(Expected::records)); ++i)
        QTest::newRow(Expected::records[i].id) << i;
}

void ScriptsTest::CreatesAndCasts()
{
    QFETCH(int, index);
    const Expected::Record& row = Expected::records[index];
    const bool inspector = row.family == Expected::Inspector;
    Run(QString("made = create('%1', {%2 = 3})")
            .arg(row.id, inspector ? "IA_ControlIndex" : "IA_OverlayIndex"));
    if (!row.scriptType)
        return;
    Run(QString("typed = create('%1')").arg(row.scriptType));
    QVERIFY(Run(QString("uncast(cast(made, '%1')) == made").arg(row.scriptType)).ToBool());
    QVERIFY(Run(QString("uncast(cast(typed, '%1')) == typed").arg(row.scriptType)).ToBool());
    const char* foreign = inspector ? "PointControl" : "ScrewControl";
    QVERIFY(Run(QString("cast(made, '%1') == nil").arg(foreign)).ToBool());
}

void ScriptsTest::AttributesByName()
{
    Run("slider = create('SliderControl', {IC_TickFreq = 7, SLCS_LowName = 'dark', "
        "IC_Disabled = true})");
    ScriptVal attributes = Run("slider:GetAttrs{'IC_TickFreq', 'SLCS_LowName', 'IC_Disabled'}");
    QCOMPARE(attributes.Get("IC_TickFreq").ToNumber(), 7.0);
    QCOMPARE(attributes.Get("SLCS_LowName").ToString(), std::string("dark"));
    Run("slider:SetAttrs{SLCS_LowName = 'black', SLCS_HighName = 'white'}");
    attributes = Run("slider:GetAttrs{'SLCS_LowName', 'SLCS_HighName', 'IC_TickFreq'}");
    QCOMPARE(attributes.Get("SLCS_LowName").ToString(), std::string("black"));
    QCOMPARE(attributes.Get("SLCS_HighName").ToString(), std::string("white"));
    QCOMPARE(attributes.Get("IC_TickFreq").ToNumber(), 7.0);

    Run("user = usercontrol{Control = 'SliderControl', Name = 'Mine', SLCS_MidName = 'grey'}");
    QCOMPARE(Run("user:GetAttrs{'SLCS_MidName'}").Get("SLCS_MidName").ToString(),
             std::string("grey"));
}

void ScriptsTest::ListsAsAttributes()
{
    for (const char* id : {"ComboControl", "ComboIDControl"}) {
        Run(QString("combo = create('%1', {CMBS_Entry = {'Nearest', 'Bilinear'}, "
                    "CMBS_EntryID = {'near'}, CMB_Vertical = true})")
                .arg(id));
        ScriptVal read = Run("combo:GetAttrs()");
        QCOMPARE(read.Get("CMBS_Entry").Length(), std::size_t(2));
        QCOMPARE(read.Get("CMBS_Entry").At(2).ToString(), std::string("Bilinear"));
        QCOMPARE(read.Get("CMBS_EntryID").At(1).ToString(), std::string("near"));
        QCOMPARE(read.Get("CMBS_EntryID").At(2).ToString(), std::string("Bilinear"));
        QCOMPARE(read.Get("CMB_Vertical").ToNumber(), 1.0);
        Run("combo:SetAttrs{CMBS_Entry = {'a', 'b', 'c'}}");
        QCOMPARE(Run("combo:GetAttrs{'CMBS_Entry'}").Get("CMBS_Entry").Length(), std::size_t(3));
    }
    QVERIFY(!engine_->RunText("create('ComboControl', {CMBS_Entry = {1, 2}})").ok);
    QVERIFY(!engine_->RunText("create('SliderControl', {SLCS_LowName = {'a', 'b'}})").ok);
}

void ScriptsTest::UnknownNamesAreRefused()
{
    // A tag of the slider's is none of the thumbwheel's.
    QVERIFY(!engine_->RunText("create('ScrewControl', {SLCS_LowName = 'dark'})").ok);
    QVERIFY(!engine_->RunText("create('SliderControl', {IC_TickFreq = 'many'})").ok);
    QVERIFY(!engine_->RunText("create('NoControl')").ok);
    QVERIFY(!engine_->RunText("cast(create('ScrewControl'), 'NoControl')").ok);
    QVERIFY(Run("cast(nil, 'ScrewControl') == nil").ToBool());
}

void ScriptsTest::UnloadsBehindTheScript()
{
    Run("kept = create('SliderControl')");
    engine_->ReleaseObjects();
    plugin_.Unload();
    QVERIFY(!PluginLibrary::IsMapped());
    QVERIFY(!engine_->RunText("kept:GetAttrs{'IC_TickFreq'}").ok);
    QVERIFY(!engine_->RunText("create('SliderControl')").ok);
    QVERIFY(plugin_.Load());
    Run("again = create('SliderControl', {IC_TickFreq = 2})");
    QCOMPARE(Run("again:GetAttrs{'IC_TickFreq'}").Get("IC_TickFreq").ToNumber(), 2.0);
    engine_.reset();
}

QTEST_MAIN(ScriptsTest)
#include "ScriptsTest.moc"
