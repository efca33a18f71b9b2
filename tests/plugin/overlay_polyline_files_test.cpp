// Shapes and motions out to files, and its own ones back.

#include "plugin/PolyFilesRig.h"
#include "plugin/PolyTools.h"
#include "script/ScriptSystem.h"

#include <QtTest>

using namespace Marlox;

namespace {

const Registry pathRecord(CLSID_Tool_Path, ToolTags<PathModifier>());

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
    std::vector<PolyPoint> bent(rig.Shape()->Points().begin(), rig.Shape()->Points().end());
    bent[1].flags = bent[2].flags = PPF_Broken;
    bent[1].outX = bent[2].inX = 0.1; // the curve goes three quarters as far
    const Ref<PolyLine> curve = rig.Shape();
    curve->SetPoints(bent);
    rig.InputOf("Polyline").SetValue(*curve, TimeNone);
    rig.SetSquare("Polyline2", 0.4); // is edited, and no part of it
    rig.Click(PolyRig::At(0.1, 0.1));
    QVERIFY(rig.Key(Qt::Key_D, KeyControl | KeyShift));
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
    const QByteArray drawing = fileBytes(rig.File("My Papers/path.dxf"));
    QVERIFY(drawing.contains("$EXTMIN\n10\n0.250000\n20\n0.250000\n30\n"));
    QVERIFY(drawing.contains("$EXTMAX\n10\n0.825000\n20\n0.750000\n30\n"));
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

    // Straight and held: the same path again.
    QFile held(to.File("held.mot"));
    QVERIFY(held.open(QIODevice::WriteOnly));
    held.write("LWMO\n1\n9\n4\n-0.1 0 0 0 0 0 1 1 1\n0 1 0 0 0\n0.2 0 0 0 0 0 1 1 1\n12 1 0 0 0\n"
               "0.2 -0.2 0 0 0 0 1 1 1\n24 1 0 0 0\n0 0 0 0 0 0 1 1 1\n36 0 0 0 0\n");
    held.close();
    to.Run(PolyAction::ImportMotionPath, held.fileName());
    QCOMPARE(to.document->Tools().size(), std::size_t(2));
    QCOMPARE(to.CenterAt(6.0), QString("0.55 0.5"));
    QCOMPARE(to.CenterAt(18.0).section(' ', 0, 0), QString("0.7"));
    QVERIFY(to.CenterAt(30.0) != QString("0.6 0.3")); // the last part is smooth
    to.document->Undo().Undo();
    QCOMPARE(to.CenterAt(2.0), QString("0.75 0.25"));
    to.InputOf("Size").SetExpression("Path1.Heading"); // it is read by another one: a new path
    to.Run(PolyAction::ImportMotionPath, held.fileName());
    QCOMPARE(to.document->Tools().size(), std::size_t(3));
    to.document->Undo().Undo();
    to.document->Undo().Undo();
    to.document->Undo().Undo();
    QCOMPARE(to.document->Tools().size(), std::size_t(1));
    QVERIFY(!to.InputOf("Center").HasExpression());

    AnswerSize(400, 200);
    to.dialogs.texts = {"0", "2"}; // frames, the second of two tracks
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

QTEST_MAIN(OverlayPolylineFilesTest)
#include "overlay_polyline_files_test.moc"
