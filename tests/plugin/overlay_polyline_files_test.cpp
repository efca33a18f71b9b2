#include "controls/polyline/PolyActions.h"
#include "host/controls/Probe.h"
#include "host/shapes/import/ShapeFixtures.h"
#include "plugin/PolyRig.h"
#include "plugin/PolyTools.h"
#include "script/ScriptSystem.h"

#include <map>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr u32 centerTag = 0x80058000;
const Registry pathRecord(CLSID_Tool_Path, ToolTags<PathModifier>());

/// With a centre that the shape goes by, and a folder for files.
struct FilesRig : PolyRig {
    explicit FilesRig(const char* kind = "Polyline", bool animated = false)
        : PolyRig(kind, animated)
    {
        Poly().SetAttrsTagList(TagList({{centerTag, "Center"}}));
        tool->SetName("Head: left");
        document->Undo().Clear();
    }

    /// A corner, a point with handles, and an end; open.
    Ref<PolyLine> Line(double by = 0.0) const
    {
        std::vector<PolyPoint> points(3);
        points[0].flags = points[2].flags = PPF_Linear;
        points[0].x = points[0].y = 0.25 + by;
        points[1].x = 0.75;
        points[1].y = 0.25;
        points[1].inX = points[1].inY = -0.125;
        points[1].outX = points[1].outY = 0.125;
        points[2].x = 0.5;
        points[2].y = 0.75 - by;
        const auto line = MakeRef<PolyLine>();
        line->SetPoints(std::move(points));
        return line;
    }
    /// Keys at 3.5 and 5.
    void SetMovingLine() const
    {
        Animation keys;
        keys.SetKey(3.5, Line(), Interpolation::Smooth);
        keys.SetKey(5.0, Line(0.125), Interpolation::Smooth);
        InputOf("Polyline").SetAnimation(keys);
        document->Undo().Clear();
    }
    void SetExportOption(int option) const
    {
        ScriptVal state = ScriptVal::MakeTable();
        state.Set("ExportOption", option);
        Poly().RestoreState(state);
    }
    void MoveCenter() const
    {
        Animation keys;
        keys.SetKey(3.0, MakeRef<Point>(0.5, 0.5), Interpolation::Linear);
        keys.SetKey(5.0, MakeRef<Point>(0.75, 0.25), Interpolation::Linear);
        InputOf("Center").SetAnimation(keys);
        document->Undo().Clear();
    }
    QString File(const char* name) const { return folder.filePath(name); }
    void Run(PolyAction action, const QString& file)
    {
        dialogs.texts.push_front(file);
        Run(action);
    }
    void Run(PolyAction action) const
    {
        TagList tags;
        Poly().HandleMenu(u32(action), nullptr, tags);
    }
    /// What a file holds after an export to it.
    QString Exported(const char* name)
    {
        Run(PolyAction::Export, File(name));
        return QString::fromUtf8(fileBytes(File(name)));
    }
    QString CenterAt(double time) const
    {
        document->SetCurrentTime(time);
        return QString::fromStdString(PointOf("Center"));
    }

    AnsweringDialogs dialogs;
    QTemporaryDir folder;
};

QString Fixture(const char* name)
{
    return shapeFixtureFolder() + QLatin1String(name);
}

/// Answers the dialog that asks which shapes to import.
void AnswerShapes(int index, bool all, bool accept)
{
    QTimer::singleShot(0, [=] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->findChild<QComboBox*>("m_ImportIndexCombo")->setCurrentIndex(index);
        dialog->findChild<QWidget*>("m_ImportAllCheck")->setProperty("checked", all);
        accept ? dialog->accept() : dialog->reject();
    });
}

} // namespace

class OverlayPolylineFilesTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void exportsShapes();
    void exportsMotions();
    void exportsWhereItIsTold();
    void exportsTheDebugDrawing();
    void importsItsOwnShapes();
    void importsMotions();
    void importsOneOfSeveral();
    void importsAll();
    void importsAllOntoEachOther();
    void refusesWholly_data();
    void refusesWholly();
    void asksForTheImageSize();
};

void OverlayPolylineFilesTest::exportsShapes()
{
    FilesRig rig;
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    rig.Exported("none.dfsh");
    QCOMPARE(rig.dialogs.said, QStringList("none.dfsh was written without a shape."));
    rig.dialogs.said.clear();
    rig.InputOf("Polyline").SetValue(*rig.Line(), TimeNone);
    rig.SetExportOption(0);
    const QString plain = "DFSH\n400.000000 200.000000 1.000000 0.500000 24.000000\n"
                          "0.250000 0.250000\n"
                          "0.750000 0.250000 0.625000 0.125000 0.875000 0.375000\n"
                          "0.500000 0.750000\n";
    QCOMPARE(rig.Exported("plain.dfsh"), plain);
    rig.InputOf("Polyline2").SetValue(*rig.Line(), TimeNone);
    rig.SetExportOption(1);
    const QString marked = QString(plain)
                               .replace("0.250000 0.250000\n", "0.250000 0.250000 EP\n")
                               .replace("0.750000\n", "0.750000 EP\n");
    QCOMPARE(rig.Exported("marked.DFSH"),
             marked + "\n#Edge shape:\n" + marked.section('\n', 2)); // the same points
    QVERIFY(rig.dialogs.said.isEmpty());

    FilesRig spline("BSplinePolyline");
    spline.SetSquare();
    QCOMPARE(spline.Exported("spline.dfsh"), plain.section('\n', 0, 1) + '\n');
    QCOMPARE(spline.dialogs.said, QStringList("spline.dfsh was written without a shape."));
}

void OverlayPolylineFilesTest::exportsMotions()
{
    FilesRig rig;
    rig.SetMovingLine();
    const QString still = rig.Exported("still.mot"); // the centre is; the points move it
    QVERIFY(still.section('\n', 4, 4) != still.section('\n', 8, 8));
    rig.MoveCenter();
    rig.SetExportOption(0);
    // The shape's keys at whole frames.
    QCOMPARE(rig.Exported("walk.mot"), QString("LWMO\n1\n9\n3\n"
                                               "0.000000 0.000000 0 0 0 0 1 1 1\n0 0 0 0 0\n"
                                               "0.125000 0.062500 0 0 0 0 1 1 1\n1 0 0 0 0\n"
                                               "0.250000 0.125000 0 0 0 0 1 1 1\n2 0 0 0 0\n"));
    const QString centre = "3.000000 0.500000 0.500000\n4.000000 0.625000 0.375000\n"
                           "5.000000 0.750000 0.250000\n";
    const QString points = "%1 %2 %2 %2 %2 %2 %2\n"
                           "%1 0.750000 0.250000 0.625000 0.125000 0.875000 0.375000\n"
                           "%1 0.500000 %3 0.500000 %3 0.500000 %3\n";
    const QString keys = points.arg("3.500000", "0.250000", "0.750000") +
                         points.arg("5.000000", "0.375000", "0.625000");
    QCOMPARE(rig.Exported("walk.dfmo"), "DFMO\n" + centre + keys);
    rig.SetExportOption(1);
    QCOMPARE(rig.Exported("head.dfmo"),
             "DFMO\n400.000000 200.000000 1.000000 0.500000 24.000000\n" + centre + keys);

    Animation single;
    single.SetKey(7.9, rig.Line());
    rig.InputOf("Polyline").SetAnimation(single);
    QVERIFY(rig.Exported("one.mot").startsWith("LWMO\n1\n9\n1\n0.250000 0.125000 "));
    single.SetKey(1e9, rig.Line());
    rig.InputOf("Polyline").SetAnimation(single);
    QCOMPARE(rig.Exported("long.mot"), QString());
    QCOMPARE(rig.dialogs.said.size(), 1);
}

void OverlayPolylineFilesTest::exportsWhereItIsTold()
{
    FilesRig rig;
    rig.SetSquare();
    rig.Run(PolyAction::Export, rig.File("square"));
    rig.Run(PolyAction::Export, rig.File("square.v2"));
    const QDir folder(rig.folder.path());
    QCOMPARE(folder.entryList(QDir::Files), QStringList({"square.dfsh", "square.v2"}));
    rig.Run(PolyAction::Export); // cancelled
    rig.Run(PolyAction::Export, QString());
    QCOMPARE(folder.entryList(QDir::Files).size(), 2);
    QVERIFY(rig.dialogs.said.isEmpty());
    rig.Run(PolyAction::Export, rig.File("gone/square.dfsh"));
    QCOMPARE(rig.dialogs.said.size(), 1);
    QVERIFY(rig.dialogs.said[0].contains("square.dfsh could not be written: "));
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayPolylineFilesTest::exportsTheDebugDrawing()
{
#ifdef Q_OS_WIN
    QSKIP("It has a fixed place here.");
#endif
    FilesRig rig;
    QFile places(rig.File("user-dirs.dirs"));
    QVERIFY(places.open(QIODevice::WriteOnly));
    places.write("XDG_DOCUMENTS_DIR=\"" + rig.folder.path().toUtf8() + "/My Papers\"\n");
    places.close();
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", rig.folder.path().toUtf8());
    rig.SetSquare();
    QVERIFY(rig.Key(Qt::Key_D, KeyControl | KeyShift));
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
    const QByteArray drawing = fileBytes(rig.File("My Papers/path.dxf"));
    QVERIFY(drawing.contains("$EXTMAX\n10\n0.750000\n20\n0.750000\n30\n"));
    QCOMPARE(rig.dialogs.said, QStringList(rig.File("My Papers/path.dxf") + " was written."));
}

void OverlayPolylineFilesTest::importsItsOwnShapes()
{
    FilesRig from;
    from.SetMovingLine();
    from.InputOf("Polyline2").SetValue(*from.Line(0.1), TimeNone);
    const QString still = from.Exported("line.dfsh");
    const QString moving = from.Exported("line.dfmo");

    FilesRig to("Polyline", true);
    QCOMPARE(to.Mode(), int(ClickAppend));
    to.document->SetCurrentTime(8.0);
    to.Run(PolyAction::ImportShape, from.File("line.dfsh"));
    QCOMPARE(to.UndoTexts(), QStringList("Import shape"));
    QCOMPARE(to.Mode(), int(InsertAndModify));
    QVERIFY(to.InputOf("Polyline").IsKeyAt(8.0)); // as if it were drawn now
    QVERIFY(!to.Shape()->IsClosed());
    QCOMPARE(to.Exported("again.dfsh"), still);

    to.Run(PolyAction::ImportShape, from.File("line.dfmo")); // it has no outer one
    QCOMPARE(to.InputOf("Polyline").GetAnimation().Keys().size(), std::size_t(2));
    QCOMPARE(to.Exported("again.dfmo").section("\n3.500000 ", 1), moving.section("\n3.500000 ", 1));
    QCOMPARE(to.Count("Polyline2"), 0);
    QVERIFY(to.dialogs.said.last().startsWith("line.dfmo was imported, "));
    to.document->Undo().Undo();
    QCOMPARE(to.Count("Polyline2"), 3);
}

void OverlayPolylineFilesTest::importsMotions()
{
    FilesRig from;
    from.SetMovingLine();
    from.MoveCenter();
    from.Exported("walk.mot");
    FilesRig to;
    to.SetSquare();
    to.Run(PolyAction::ImportLightWave, from.File("walk.mot"));
    QCOMPARE(to.UndoTexts(), QStringList("Import motion path"));
    QCOMPARE(to.InputOf("Center").GetExpression(), std::string("Path1.Position"));
    QCOMPARE(to.CenterAt(0.0), QString("0.5 0.5"));
    QCOMPARE(to.CenterAt(2.0), QString("0.75 0.25"));
    QCOMPARE(to.Exported("again.mot").section('\n', 0, 3), QString("LWMO\n1\n9\n3")); // its keys'

    to.Run(PolyAction::ImportMotionPath, from.File("walk.mot"));
    to.document->Undo().Undo();
    to.document->Undo().Undo();
    QCOMPARE(to.document->Tools().size(), std::size_t(1));
    QVERIFY(!to.InputOf("Center").HasExpression());

    to.dialogs.texts = {"400", "200", "0", "2"}; // size, frames, the second of two tracks
    to.Run(PolyAction::ImportBoujou, Fixture("boujou.txt"));
    QVERIFY(
        to.dialogs.said.join('\n').contains("boujou.txt holds 2 paths (1 Target_1, 2 Wall left)"));
    QCOMPARE(to.CenterAt(5.0), QString("0.25 0.5"));

    PolyRig plain; // without a centre
    AnsweringDialogs dialogs;
    dialogs.texts = {from.File("walk.mot")};
    TagList tags;
    plain.Poly().HandleMenu(u32(PolyAction::ImportLightWave), nullptr, tags);
    QCOMPARE(dialogs.said, QStringList("The shape has no centre that a path could move."));
    QCOMPARE(plain.UndoEntries(), 0);
}

void OverlayPolylineFilesTest::importsOneOfSeveral()
{
    FilesRig rig;
    rig.SetSquare();
    const auto import = [&rig] {
        rig.dialogs.texts = {"400", "200"}; // the image's size
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

void OverlayPolylineFilesTest::importsAll()
{
    FilesRig rig("BSplinePolyline");
    AnswerShapes(1, true, true);
    rig.Run(PolyAction::ImportNuke, Fixture("roto.nk"));
    QCOMPARE(rig.UndoTexts(), QStringList("Import nuke shape"));
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
void OverlayPolylineFilesTest::importsAllOntoEachOther()
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
    QVERIFY(rig.document->IndexOf(*below) < rig.document->IndexOf(*source));
    QCOMPARE(rig.document->FeedOf(rig.InputOf("Input")), source);
    rig.document->Undo().Undo();
    QCOMPARE(rig.document->Tools().size(), std::size_t(2));
    QVERIFY(!rig.InputOf("Base").GetSource());
}

void OverlayPolylineFilesTest::refusesWholly_data()
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

void OverlayPolylineFilesTest::refusesWholly()
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

void OverlayPolylineFilesTest::asksForTheImageSize()
{
    FilesRig rig;
    rig.SetSquare();
    rig.View().pixelWidth = rig.View().pixelHeight = 0; // no picture
    rig.Run(PolyAction::ImportShape, Fixture("shape.dfsh"));
    QVERIFY(!rig.dialogs.said.join('\n').contains("pixels"));
    rig.document->Undo().Clear();
    rig.dialogs.texts = {"200"}; // and no height: cancelled
    rig.Run(PolyAction::ImportBoujou, Fixture("boujou.txt"));
    QCOMPARE(rig.UndoEntries(), 0);
    rig.dialogs.texts = {"200", "100", "10", "1"};
    rig.dialogs.said.clear();
    rig.Run(PolyAction::ImportBoujou, Fixture("boujou.txt"));
    QCOMPARE(rig.CenterAt(16.0), QString("0.25 0.75"));
    QCOMPARE(rig.dialogs.said.size(), 4);         // what was told is no note
    rig.dialogs.texts = {"3", "200", "100", "0"}; // pixels from the top
    rig.Run(PolyAction::ImportMotionPath, Fixture("pairs.txt"));
    QVERIFY(rig.CenterAt(rig.document->FirstFrame()).endsWith(" 0.75"));
}

QTEST_MAIN(OverlayPolylineFilesTest)
#include "overlay_polyline_files_test.moc"
