// Regular forms, more points or fewer, other kinds of curves.

#include "plugin/PolyCommandsRig.h"
#include "plugin/PolyTools.h"
#include "script/ScriptSystem.h"
#include "system/shapes/PathAnimation.h"

#include <QLabel>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr u32 PLCID_Center = 0x80058000;

const Registry pathRecord(CLSID_Tool_Path, ToolTags<PathModifier>());

std::vector<u32> Ids(const PolyLine& shape)
{
    std::vector<u32> ids;
    for (const PolyPoint& point : shape.Points())
        ids.push_back(point.id);
    return ids;
}

} // namespace

class OverlayPolylineFormsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void FormsReplaceTheShape_data();
    void FormsReplaceTheShape();
    void FormsTakeWhatIsTyped();
    void FormsLieWhereTheyShow();
    void SubdividesBothPolygons();
    void SubdivisionIsRefused();
    void ReducesWhatWasDivided();
    void ConvertsAllKeys();
    void ConversionIsRefused();
    void ConvertsPaths();
};

void OverlayPolylineFormsTest::FormsReplaceTheShape_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("undo");
    QTest::addColumn<int>("points");
    QTest::addColumn<bool>("closed");
    const auto add = [](const char* kind, const char* entry, const char* undo, int points,
                        bool closed) {
        QTest::addRow("%s %s", kind, undo)
            << QByteArray(kind) << QByteArray(entry) << QByteArray(undo) << points << closed;
    };
    add("Polyline", "Ellipse…", "Create ellipse", 4, true);
    add("BSplinePolyline", "Ellipse…", "Create ellipse", 8, true);
    add("Polyline", "Rectangle…", "Create rectangle", 4, true);
    add("Polyline", "Spiral…", "Create spiral", 25, false);
}

void OverlayPolylineFormsTest::FormsReplaceTheShape()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, entry);
    QFETCH(QByteArray, undo);
    QFETCH(int, points);
    QFETCH(bool, closed);
    PolyRig rig(kind.constData(), true);
    SetMoving(rig);
    rig.SetMode(ClickAppend);
    const Input::State before = rig.InputOf("Polyline").GetState();
    QString shown;
    QVERIFY(RunDialog(rig, entry.constData(), [&](QDialog& dialog) {
        shown = dialog.findChild<QLabel*>("m_Note")->text();
        QVERIFY(rig.InputOf("Polyline").GetState() == before); // what shows is not written
    }));
    QCOMPARE(shown, QStringLiteral("%1 points").arg(points));
    QCOMPARE(rig.UndoEntries(), 0); // cancelled
    QCOMPARE(rig.Mode(), int(ClickAppend));
    QVERIFY(RunDialog(rig, entry.constData(), Accept));
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    const auto keys = Keys(rig);
    QCOMPARE(keys.size(), std::size_t(2));
    QVERIFY(keys[0]->IsEqual(*keys[1]));
    QCOMPARE(keys[0]->GetCount(), points);
    QCOMPARE(keys[0]->IsClosed(), closed);
    VerifyOneEntry(rig, undo.constData(), before);
}

void OverlayPolylineFormsTest::FormsTakeWhatIsTyped()
{
    PolyRig rig;
    QVERIFY(RunDialog(rig, "Ellipse…", [](QDialog& dialog) {
        Type(dialog, "m_EditX", "400/4");
        Type(dialog, "m_EditY", "50");
        Type(dialog, "m_EditWidth", "80");
        Type(dialog, "m_EditHeight", "1 2"); // is no number: OK does nothing
        dialog.accept();
        QVERIFY(dialog.isVisible());
        Type(dialog, "m_EditHeight", "40");
        Type(dialog, "m_EditAngle", "90");
        dialog.accept();
    }));
    // From the right end on, turned: up first. View pixels are 100 and 50 more than the image's.
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("200 140, 180 100"));
    QVERIFY(RunDialog(rig, "Spiral…", [](QDialog& dialog) {
        Type(dialog, "m_EditTurns", "1");
        Type(dialog, "m_EditPoints", "4");
        Type(dialog, "m_EditFrom", "10");
        Type(dialog, "m_EditTo", "50");
        dialog.accept();
    }));
    QCOMPARE(rig.Count(), 5);
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1) + ", " + rig.Place(4),
             std::string("310 150, 300 170, 350 150"));
}

void OverlayPolylineFormsTest::FormsLieWhereTheyShow()
{
    PolyRig rig;
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    rig.SetPoint("Center", 0.75, 0.5);
    QVERIFY(RunDialog(rig, "Rectangle…", Accept));
    QCOMPARE(rig.Place(0), std::string("100 100")); // and 100 more to the right as it is placed
}

void OverlayPolylineFormsTest::SubdividesBothPolygons()
{
    PolyRig rig("Polyline", true);
    AnsweringDialogs dialogs;
    SetMoving(rig);
    rig.SetSquare("Polyline2", 0.4);
    rig.SetMode(ModifyOnly);
    const Input::State before = rig.InputOf("Polyline").GetState();
    dialogs.texts = {"none", "1", "-4", "3 parts"};
    QVERIFY(RunEntry(rig, "Subdivide…"));
    QCOMPARE(dialogs.said,
             QStringList({"Subdivide=2", "Subdivide=none", "Subdivide=1", "Subdivide=-4"}));
    for (const Ref<PolyLine>& key : Keys(rig))
        QCOMPARE(key->GetCount(), 12);
    QCOMPARE(Ids(*Keys(rig)[0]), Ids(*Keys(rig)[1]));
    QCOMPARE(rig.Count("Polyline2"), 12);
    VerifyOneEntry(rig, "Subdivide", before);
    // Only between selected points, the same ones of the other polygon.
    rig.document->Undo().Undo();
    rig.document->Undo().Clear();
    rig.Click({200, 100});
    rig.Click({400, 100}, KeyShift);
    dialogs.texts = {"2"};
    QVERIFY(RunEntry(rig, "Subdivide…"));
    QCOMPARE(rig.Count(), 5);
    QCOMPARE(rig.Place(1), std::string("300 100"));
    QCOMPARE(rig.Count("Polyline2"), 5);
}

void OverlayPolylineFormsTest::SubdivisionIsRefused()
{
    PolyRig rig;
    AnsweringDialogs dialogs;
    rig.SetShape({{0.5, 0.5}});
    dialogs.texts = {"2"};
    RunEntry(rig, "Subdivide…");
    QCOMPARE(dialogs.said, QStringList("There is no segment between selected points."));
    rig.SetSquare();
    dialogs.said.clear();
    dialogs.texts = {"99999999999"};
    RunEntry(rig, "Subdivide…");
    QCOMPARE(dialogs.said.last(), QString("A shape can have 1000000 points at most."));
    RunEntry(rig, "Subdivide…"); // cancelled
    QCOMPARE(rig.UndoEntries(), 0);
    rig.tool->SetLocked(true);
    QVERIFY(!RunEntry(rig, "Subdivide…"));
    QVERIFY(!RunEntry(rig, "Ellipse…"));
}

void OverlayPolylineFormsTest::ReducesWhatWasDivided()
{
    PolyRig rig("Polyline", true);
    AnsweringDialogs dialogs;
    SetMoving(rig);
    rig.SetSquare("Polyline2", 0.4);
    rig.Key(Qt::Key_A);
    dialogs.texts = {"5"};
    QVERIFY(RunEntry(rig, "Subdivide…"));
    rig.Key(Qt::Key_A); // the new ones too
    rig.document->Undo().Clear();
    const Input::State before = rig.InputOf("Polyline").GetState();
    QStringList notes;
    QVERIFY(RunDialog(rig, "Reduce Points…", [&](QDialog& dialog) {
        auto* note = dialog.findChild<QLabel*>("m_Note");
        notes << note->text();
        (void)rig.Drawn(); // what shows has fewer points than are selected
        dialog.accept();
    }));
    QCOMPARE(notes, QStringList("8 of 40 points are left"));
    for (const Ref<PolyLine>& key : Keys(rig))
        QCOMPARE(key->GetCount(), 4);
    QCOMPARE(rig.Count("Polyline2"), 4);
    QCOMPARE(rig.Place(2), std::string("400 200"));
    VerifyOneEntry(rig, "Reduce points", before);
    QVERIFY(RunDialog(rig, "Reduce Points…", Accept)); // nothing more to go
    QCOMPARE(rig.UndoEntries(), 1);
}

void OverlayPolylineFormsTest::ConvertsAllKeys()
{
    PolyRig rig("BSplinePolyline", true);
    AnsweringDialogs dialogs;
    SetMoving(rig);
    rig.SetSquare("Polyline2", 0.4);
    const Input::State before = rig.InputOf("Polyline").GetState();
    const std::vector<ShapePlace> curve = rig.Shape()->GetSamplePoints(1e-4);
    QVERIFY(!RunEntry(rig, "Cardinal to Bezier"));
    QVERIFY(RunEntry(rig, "B-Spline to Bezier"));
    for (const Ref<PolyLine>& key : Keys(rig)) {
        QCOMPARE(key->GetDataType(), MxID("Polyline"));
        QVERIFY(key->IsClosed());
        QCOMPARE(Ids(*key), (std::vector<u32>{1, 2, 3, 4}));
    }
    QCOMPARE(rig.Shape("Polyline2")->GetDataType(), MxID("Polyline"));
    VerifyOneEntry(rig, "Convert to Bezier", before);
    const auto distance = [&] { // of the old curve from the new one, pixels
        double most = 0.0;
        for (const ShapePlace& at : curve)
            most =
                std::max(most, DistancePointToPolygon(at, *rig.Shape(), true, {400, 200}).distance);
        return most;
    };
    QVERIFY(distance() < 1e-3);
    rig.document->Undo().Clear();
    QVERIFY(RunEntry(rig, "Bezier to B-Spline"));
    QCOMPARE(rig.UndoTexts(), QStringList("Convert to B-Spline"));
    QVERIFY2(distance() < 0.55, qPrintable(QString::number(distance())));
    QCOMPARE(Keys(rig)[0]->GetCount(), Keys(rig)[1]->GetCount());
    QCOMPARE(rig.Count(), rig.Count("Polyline2"));
    QVERIFY(dialogs.said.isEmpty());
}

void OverlayPolylineFormsTest::ConversionIsRefused()
{
    PolyRig rig;
    AnsweringDialogs dialogs;
    rig.SetShape({{0.5, 0.5}});
    RunEntry(rig, "Bezier to B-Spline");
    QCOMPARE(dialogs.said.size(), 1);
    QVERIFY(dialogs.said[0].startsWith("The shape can't be converted"));
    QCOMPARE(rig.UndoEntries(), 0);
    QVERIFY(!RunEntry(rig, "Convert to XYPath")); // no path, no entry
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    const auto entry = [&rig] {
        Menu menu;
        TagList tags;
        rig.Poly().AddToMenu(&menu, tags);
        return *FindEntry(menu.Entries(), "Convert to XYPath");
    };
    QVERIFY(!entry().enabled);
    QCOMPARE(entry().tip, QString("No point is moved by a path here."));
    Operator* const path = AnimateWithPath(rig.InputOf("Center"));
    QVERIFY(path && entry().enabled);
    path->SetLocked(true);
    QVERIFY(!entry().enabled);
    QCOMPARE(entry().tip, QString("The path is locked."));
    QCOMPARE(dialogs.said.size(), 1);
}

void OverlayPolylineFormsTest::ConvertsPaths()
{
    PolyRig rig;
    AnsweringDialogs dialogs;
    rig.SetSquare();
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    Animation keys;
    keys.SetKey(0.0, MakeRef<Point>(0.2, 0.5));
    keys.SetKey(10.0, MakeRef<Point>(0.8, 0.5));
    rig.InputOf("Center").SetAnimation(keys);
    QVERIFY(AnimateWithPath(rig.InputOf("Center")));
    rig.document->Undo().Clear();
    QVERIFY(rig.InputOf("Center").HasExpression());
    QVERIFY(RunEntry(rig, "Convert to XYPath"));
    QCOMPARE(rig.UndoTexts(), QStringList("Convert to XYPath"));
    QVERIFY(!rig.InputOf("Center").HasExpression());
    QVERIFY(rig.InputOf("Center").GetAnimation().Keys().size() >= 11);
    QVERIFY(dialogs.said.isEmpty());
}

QTEST_MAIN(OverlayPolylineFormsTest)
#include "overlay_polyline_forms_test.moc"
