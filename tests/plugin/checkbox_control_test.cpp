#include "plugin/InspectorStage.h"
#include "system/widgets/CustomCheckBox.h"

#include <cmath>

#include <QAccessible>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

struct BoxStage : InspectorStage {
    explicit BoxStage(const char* id = "Clip", const std::vector<TagPair>& attributes = {})
        : InspectorStage({{id, attributes, CLSID_InputControl_Checkbox}}),
          box(*PartOf<CustomCheckBox>("checkbox")), inside(8, box.height() / 2.0)
    {
    }
    CustomCheckBox& box;
    const QPointF inside; // the box itself; its name is to the right
};

} // namespace

/// Check boxes on an inspector page.
class CheckBoxControlTest : public QObject {
    Q_OBJECT
private slots:
    void Toggles();
    void ShowsOtherValues();
    void KeepsItsNameForReaders();
    void FollowsItsInput();
    void SurvivesTheEndOfThePage();
};

void CheckBoxControlTest::Toggles()
{
    const BoxStage stage("Clip & keep");
    QCOMPARE(stage.box.text(), QString("Clip && keep"));
    Pointer::Click(stage.box, stage.inside);
    QCOMPARE(stage.Outcome(), QString("1 (1)"));
    Pointer::Click(stage.box, {60, stage.inside.y()}); // the name
    QCOMPARE(stage.Outcome(), QString("0 (2)"));
    QTest::keyClick(&stage.box, Qt::Key_Space);
    QCOMPARE(stage.Outcome(), QString("1 (3)"));
    QCOMPARE(stage.UndoTexts().last(), QString("Adjust Clip & keep"));
    stage.document->Undo().Undo();
    QVERIFY(!stage.box.isChecked());
    Pointer::Press(stage.box, stage.inside);
    Pointer::Move(stage.box, {8, 200});
    QVERIFY(!stage.box.isDown());
    Pointer::Release(stage.box, {8, 200});                                  // thought better of it
    Pointer::Click(stage.box, {stage.box.width() - 2.0, stage.inside.y()}); // beside the name
    QCOMPARE(stage.ValueOf(), 0.0);
}

void CheckBoxControlTest::ShowsOtherValues()
{
    const BoxStage stage;
    for (const double value : {0.5, -1.0, 2.0, double(NAN)}) {
        stage.InputOf().SetValue(Number(value), 0.0);
        QCOMPARE(stage.box.checkState(), Qt::PartiallyChecked);
        QVERIFY(QAccessible::queryAccessibleInterface(&stage.box)->state().checkStateMixed);
        for (const Qt::CheckState state : {Qt::Checked, Qt::Unchecked}) {
            stage.box.click();
            QCOMPARE(stage.box.checkState(), state);
            QCOMPARE(stage.ValueOf(), state == Qt::Checked ? 1.0 : 0.0);
        }
    }
}

void CheckBoxControlTest::KeepsItsNameForReaders()
{
    const BoxStage stage("Clip", {{IC_NoLabel, 1}});
    QVERIFY(stage.box.text().isEmpty() && stage.box.isVisible());
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&stage.box);
    QCOMPARE(access->role(), QAccessible::CheckBox);
    QCOMPARE(access->text(QAccessible::Name), QString("Clip"));
    Pointer::Click(stage.box, stage.inside);
    QCOMPARE(stage.ValueOf(), 1.0);
    const QByteArray wide(80, 'w');
    const BoxStage elided(wide, {{IAS_Help, "What it does."}});
    QCOMPARE(ToolTipOf(elided.box), wide + "\nWhat it does.");
}

void CheckBoxControlTest::FollowsItsInput()
{
    const BoxStage stage;
    Input& input = stage.InputOf();
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    input.SetExpression("time > 5 and 1 or 0");
    const int before = stage.UndoEntries();
    QVERIFY(PixelsOf(stage.box, LookColor("Controls.ExpressionColour")) > 20);
    stage.box.click();
    QVERIFY(!stage.box.isChecked() && problems.count() == 1);
    stage.document->SetCurrentTime(6.0);
    QVERIFY(stage.box.isChecked());
    QCOMPARE(stage.UndoEntries(), before);
    input.SetExpression("");
    QCOMPARE(PixelsOf(stage.box, LookColor("Controls.ExpressionColour")), 0);
    input.AddKey(6.0);
    QVERIFY(PixelsOf(stage.box, LookColor("System.KeyColour")) > 20);
    stage.document->SetCurrentTime(9.0);
    stage.box.click();
    QVERIFY(input.IsKeyAt(9.0) && input.IsKeyAt(6.0));
    stage.tool->SetLocked(true);
    QVERIFY(!stage.box.isEnabled());
}

void CheckBoxControlTest::SurvivesTheEndOfThePage()
{
    const BoxStage stage;
    connect(&stage.document->Undo().Stack(), &QUndoStack::indexChanged, stage.page,
            [&stage] { stage.page->SetOperator(nullptr); });
    stage.box.click();
    QVERIFY(stage.page->Controls().empty());
    QCOMPARE(stage.UndoEntries(), 1);
    QVERIFY(stage.IsIdle());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(CheckBoxControlTest)
#include "checkbox_control_test.moc"
