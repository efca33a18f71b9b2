// Shapes out of files of other programs.

#include "plugin/PolyFilesRig.h"
#include "plugin/PolyTools.h"
#include "script/ScriptSystem.h"

#include <map>

#include <QComboBox>
#include <QtTest>

using namespace Marlox;

namespace {

const Registry pathRecord(CLSID_Tool_Path, ToolTags<PathModifier>());

/// Answers the dialog that asks which shapes to import.
void AnswerShapes(int index, bool all, bool accept)
{
    AnswerDialog("ImportShapeDlg", [=](QDialog& dialog) {
        dialog.findChild<QComboBox*>("m_ImportIndexCombo")->setCurrentIndex(index);
        dialog.findChild<QWidget*>("m_ImportAllCheck")->setProperty("checked", all);
        accept ? dialog.accept() : dialog.reject();
    });
}

} // namespace

class OverlayPolylineImportsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void importsOneOfSeveral();
    void importsAll();
    void importsAllOntoEachOther();
    void refusesWholly_data();
    void refusesWholly();
    void asksForTheImageSize();
};

void OverlayPolylineImportsTest::importsOneOfSeveral()
{
    FilesRig rig;
    rig.SetSquare();
    const auto import = [&rig] {
        AnswerSize(400, 200);
        rig.Run(PolyAction::ImportSsf, Fixture("shapes.ssf"));
    };
    AnswerShapes(0, true, false);
    import();
    AnswerShapes(2, false, true); // "none"
    import();
    QCOMPARE(rig.UndoEntries(), 0);
    QCOMPARE(rig.Count(), 4);
    QCOMPARE(rig.Mode(), int(ClickAppend));
    AnswerShapes(0, false, true);
    import();
    QCOMPARE(rig.UndoTexts(), QStringList("Import ssf shape"));
    QCOMPARE(rig.Count(), 2);
    QCOMPARE(rig.Count("Polyline2"), 2);
    QCOMPARE(rig.InputOf("Polyline2").GetAnimation().Keys().size(), std::size_t(2));
    QCOMPARE(rig.document->Tools().size(), std::size_t(1));
}

void OverlayPolylineImportsTest::importsAll()
{
    FilesRig rig("BSplinePolyline");
    QSignalSpy rebuilt(rig.stage.get(), &OverlayStage::OverlaysChanged);
    AnswerShapes(1, true, true);
    rig.Run(PolyAction::ImportNuke, Fixture("roto.nk"));
    QCOMPARE(rig.UndoTexts(), QStringList("Import nuke shape"));
    QCOMPARE(rebuilt.count(), 1); // however many tools there are
    QCOMPARE(rig.Count(), 3);
    QVERIFY(!rig.Shape()->IsClosed());
    QCOMPARE(rig.Shape()->GetDataType().ToString(), QString("BSplinePolyline"));

    Operator* const mask = rig.document->FindTool("Mask1");
    QVERIFY(mask);
    QCOMPARE(mask->GetToolType().ToString(), QString("ProbeTool"));
    QVERIFY(mask->IsDisabled());
    const Ref<PolyLine> shape = ShapeOf(*mask->FindInput("Polyline"), 1.0);
    QCOMPARE(shape->GetPoint(0)->x, 0.15);
    QCOMPARE(shape->GetDataType().ToString(), QString("Polyline"));
    QCOMPARE(mask->FindInput("Polyline2")->GetAnimation().Keys().size(), std::size_t(2));
    QCOMPARE(mask->FindInput("Center")->GetExpression(), std::string("Path1.Position"));
    QCOMPARE(rig.document->IndexOf(*mask), rig.document->IndexOf(*rig.tool) + 2); // its path first
    rig.document->Undo().Undo();
    QCOMPARE(rig.document->Tools().size(), std::size_t(1));
    QCOMPARE(rig.Count(), 0);
}

/// Masks that can lie on others do so, in front of the source.
void OverlayPolylineImportsTest::importsAllOntoEachOther()
{
    FilesRig rig;
    const auto addMaskInputs = [](Operator& tool) {
        for (const auto& [id, type] : std::map<const char*, const char*>{
                 {"Input", "Image"}, {"Base", "Image"}, {"Combine", "Number"}, {"Apply", "Number"}})
            tool.AddInput(id, {{IAS_Name, id}, {IAS_DataType, type}});
    };
    addMaskInputs(*rig.tool);
    SetProbeInputs([](Operator&) {});
    Operator* const source = rig.document->AddTool("ProbeTool", 0);
    Operator* const former = rig.document->AddTool("ProbeTool");
    QVERIFY(rig.InputOf("Base").Connect(former));
    SetProbeInputs([addMaskInputs](Operator& made) {
        made.AddInput("Polyline", {{IAS_DataType, "Polyline"}});
        addMaskInputs(made);
    });
    rig.tool->SetName("ProbeTool7");
    rig.document->Undo().Clear();
    AnswerShapes(0, true, true);
    rig.Run(PolyAction::ImportFxs, Fixture("shapes.fxs"));
    QCOMPARE(rig.UndoTexts(), QStringList("Import fxs shape"));
    Operator* const below = rig.document->FindTool("S2");
    QVERIFY(below && !below->IsDisabled());
    QCOMPARE(rig.tool->GetName(), QString("S1"));
    QCOMPARE(rig.InputOf("Base").GetSource(), below);
    QCOMPARE(rig.NumberOf("Combine"), 1.0); // subtracts
    QCOMPARE(rig.NumberOf("Apply"), 0.0);
    QCOMPARE(below->FindInput("Apply")->GetNumber(0.0), 1.0);
    QCOMPARE(below->FindInput("Input")->GetSource(), source);
    QCOMPARE(below->FindInput("Base")->GetSource(), former);
    QVERIFY(rig.Shape()->GetPoint(0)->Has(PPF_Locked));
    QVERIFY(!ShapeOf(*below->FindInput("Polyline"), 0.0)->GetPoint(0)->Has(PPF_Locked));
    QVERIFY(rig.document->IndexOf(*below) < rig.document->IndexOf(*source));
    QCOMPARE(rig.document->FeedOf(rig.InputOf("Input")), source);
    rig.document->Undo().Undo();
    QCOMPARE(rig.document->Tools().size(), std::size_t(3));
    QCOMPARE(rig.InputOf("Base").GetSource(), former);
}

void OverlayPolylineImportsTest::refusesWholly_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    const QByteArray ssf = fileBytes(Fixture("shapes.ssf"));
    QTest::newRow("truncated") << int(PolyAction::ImportSsf)
                               << ssf.left(ssf.indexOf("shape_name L")) << "bad, line ";
    QTest::newRow("other format") << int(PolyAction::ImportFxs) << ssf << "bad";
    QTest::newRow("no path") << int(PolyAction::ImportMotionPath)
                             << fileBytes(Fixture("shape.dfsh")) << "bad holds no motion path.";
    QTest::newRow("no shape") << int(PolyAction::ImportShape) << fileBytes(Fixture("rows.txt"))
                              << "bad holds no shape.";
    QTest::newRow("empty") << int(PolyAction::ImportNuke) << QByteArray() << "bad: it is empty";
}

void OverlayPolylineImportsTest::refusesWholly()
{
    QFETCH(int, action);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    FilesRig rig;
    rig.SetSquare();
    QFile file(rig.File("bad"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    const std::string before = rig.document->ToText();
    rig.Run(PolyAction(action), file.fileName());
    QCOMPARE(rig.dialogs.said.size(), 1);
    QVERIFY2(rig.dialogs.said[0].startsWith(message), qPrintable(rig.dialogs.said[0]));
    QVERIFY(rig.document->ToText() == before);
    QCOMPARE(rig.UndoEntries(), 0);
    rig.tool->SetLocked(true); // not even asked for a file
    rig.Run(PolyAction(action), file.fileName());
    QCOMPARE(rig.dialogs.said.size(), 1);
}

void OverlayPolylineImportsTest::asksForTheImageSize()
{
    FilesRig rig;
    rig.SetSquare();
    rig.View().pixelWidth = rig.View().pixelHeight = 0; // no picture
    rig.Run(PolyAction::ImportShape, Fixture("shape.dfsh"));
    QVERIFY(!rig.dialogs.said.join('\n').contains("pixels"));
    rig.document->Undo().Clear();
    AnswerSize(200, 100, false);
    rig.Run(PolyAction::ImportBoujou, Fixture("boujou.txt"));
    QCOMPARE(rig.UndoEntries(), 0);
    AnswerSize(200, 100);
    rig.dialogs.texts = {"10", "1"};
    rig.dialogs.said.clear();
    rig.Run(PolyAction::ImportBoujou, Fixture("boujou.txt"));
    QCOMPARE(rig.CenterAt(16.0), QString("0.25 0.75"));
    QCOMPARE(rig.dialogs.said.size(), 2); // what was told is no note
    AnswerSize(200, 100);
    rig.dialogs.texts = {"3", "0"}; // pixels from the top
    rig.Run(PolyAction::ImportMotionPath, Fixture("pairs.txt"));
    QVERIFY(rig.CenterAt(rig.document->FirstFrame()).endsWith(" 0.75"));
}

QTEST_MAIN(OverlayPolylineImportsTest)
#include "overlay_polyline_imports_test.moc"
