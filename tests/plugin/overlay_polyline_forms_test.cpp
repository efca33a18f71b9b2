// Regular forms, other kinds of curves, operations on points, the point editor.

#include "plugin/PolyRig.h"
#include "script/ScriptSystem.h"
#include "system/base/Registry.h"
#include "system/controls/Menu.h"
#include "system/shapes/PathAnimation.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace Marlox;

namespace {

enum { Done, ClickAppend, DrawAppend, InsertAndModify, ModifyOnly };
constexpr u32 PLCID_Center = 0x80058000;

Object* MakePath(const Registry* record, const ScriptVal&, const TagList&)
{
    return new PathModifier(record);
}

const TagPair pathTags[] = {
    {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakePath)}, {}};
const Registry pathRecord(CLSID_Tool_Path, pathTags);

const Menu::Entry* Find(const std::vector<Menu::Entry>& entries, const QString& text)
{
    for (const Menu::Entry& entry : entries) {
        if (entry.text.section('\t', 0, 0) == text && entry.children.empty())
            return &entry;
        if (const Menu::Entry* found = Find(entry.children, text))
            return found;
    }
    return nullptr;
}

/// Whether there is such an entry, and it was enabled and did something.
bool Run(const PolyRig& rig, const char* text)
{
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    const Menu::Entry* entry = Find(menu.Entries(), QString::fromUtf8(text));
    return entry && entry->enabled && rig.Poly().HandleMenu(entry->id, nullptr, tags);
}

void Type(QWidget& dialog, const char* field, const char* text)
{
    auto* edit = dialog.findChild<TimeCodeEdit*>(field);
    QVERIFY2(edit, field);
    edit->setText(text);
    edit->Commit();
}

/// Runs an entry whose dialog `answer` has the turn in; it is cancelled where that leaves it open.
bool RunDialog(const PolyRig& rig, const char* text, const std::function<void(QDialog&)>& answer)
{
    bool seen = false;
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen = true;
        answer(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    return Run(rig, text) && seen;
}

void Accept(QDialog& dialog)
{
    dialog.accept();
}

/// A square, at time 0 and, moved to the right, at time 10, with undo behind it.
void SetMoving(const PolyRig& rig, const char* id = "Polyline")
{
    rig.SetSquare(id);
    Animation animation;
    animation.SetKey(0.0, rig.Shape(id), Interpolation::Linear);
    const Ref<PolyLine> moved = rig.Shape(id)->CopyShape();
    moved->MovePoints(SelMask(4, true), {0.2, 0.0});
    animation.SetKey(10.0, moved, Interpolation::Linear);
    rig.InputOf(id).SetAnimation(animation);
    rig.document->Undo().Clear();
}

std::vector<Ref<PolyLine>> Keys(const PolyRig& rig, const char* id = "Polyline")
{
    std::vector<Ref<PolyLine>> shapes;
    for (const auto& [time, key] : rig.InputOf(id).GetAnimation().Keys())
        shapes.push_back(Ref<PolyLine>::Share(dynamic_cast<PolyLine*>(key.value.Get())));
    return shapes;
}

std::vector<u32> Ids(const PolyLine& shape)
{
    std::vector<u32> ids;
    for (const PolyPoint& point : shape.Points())
        ids.push_back(point.id);
    return ids;
}

/// The one entry that there is has this text, and takes all back when it is undone.
void VerifyOneEntry(const PolyRig& rig, const char* text, const Input::State& before,
                    const char* id = "Polyline")
{
    QCOMPARE(rig.UndoTexts(), QStringList(text));
    QVERIFY(!(rig.InputOf(id).GetState() == before));
    rig.document->Undo().Undo();
    QVERIFY(rig.InputOf(id).GetState() == before);
    rig.document->Undo().Redo();
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
    void SmoothsAndAverages();
    void SmoothsMotion();
    void EasesMotion();
    void ConvertsPaths();
    void PointEditorEdits();
    void PointEditorFollows();
    void PointEditorCloses();
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
    QVERIFY(Run(rig, "Subdivide…"));
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
    QVERIFY(Run(rig, "Subdivide…"));
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
    Run(rig, "Subdivide…");
    QCOMPARE(dialogs.said, QStringList("There is no segment between selected points."));
    rig.SetSquare();
    dialogs.said.clear();
    dialogs.texts = {"99999999999"};
    Run(rig, "Subdivide…");
    QCOMPARE(dialogs.said.last(), QString("A shape can have 1000000 points at most."));
    Run(rig, "Subdivide…"); // cancelled
    QCOMPARE(rig.UndoEntries(), 0);
    rig.tool->SetLocked(true);
    QVERIFY(!Run(rig, "Subdivide…"));
    QVERIFY(!Run(rig, "Ellipse…"));
}

void OverlayPolylineFormsTest::ReducesWhatWasDivided()
{
    PolyRig rig("Polyline", true);
    AnsweringDialogs dialogs;
    SetMoving(rig);
    rig.SetSquare("Polyline2", 0.4);
    rig.Key(Qt::Key_A);
    dialogs.texts = {"5"};
    QVERIFY(Run(rig, "Subdivide…"));
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
    QVERIFY(!Run(rig, "Cardinal to Bezier"));
    QVERIFY(Run(rig, "B-Spline to Bezier"));
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
    QVERIFY(Run(rig, "Bezier to B-Spline"));
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
    Run(rig, "Bezier to B-Spline");
    QCOMPARE(dialogs.said.size(), 1);
    QVERIFY(dialogs.said[0].startsWith("The shape can't be converted"));
    QCOMPARE(rig.UndoEntries(), 0);
    QVERIFY(!Run(rig, "Convert to XYPath")); // no path, no entry
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    QVERIFY(Run(rig, "Convert to XYPath"));
    QCOMPARE(dialogs.said.last(), QString("No point is moved by a path here."));
}

void OverlayPolylineFormsTest::SmoothsAndAverages()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    const Input::State before = rig.InputOf("Polyline").GetState();
    rig.Click({200, 100});
    QVERIFY(Run(rig, "Default"));
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("250 125, 400 100")); // half the way
    VerifyOneEntry(rig, "Smooth points", before);
    rig.document->Undo().Undo();
    rig.document->Undo().Clear();
    QVERIFY(RunDialog(rig, "Dialog…", [](QDialog& dialog) {
        Type(dialog, "m_EditStrength", "100");
        dialog.accept();
    }));
    QCOMPARE(rig.Place(0), std::string("300 150"));
    rig.document->Undo().Undo();
    rig.document->Undo().Clear();
    rig.Click({400, 200}, KeyShift);
    QVERIFY(Run(rig, "Average"));
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1) + ", " + rig.Place(2),
             std::string("300 150, 400 100, 300 150"));
    VerifyOneEntry(rig, "Average points", before);
}

void OverlayPolylineFormsTest::SmoothsMotion()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    QVERIFY(!Run(rig, "Smooth Animation")); // nothing between two keys
    Animation animation = rig.InputOf("Polyline").GetAnimation();
    const Ref<PolyLine> jump = rig.Shape()->CopyShape();
    jump->MovePoints(SelMask(4, true), {0.1, 0.2});
    animation.SetKey(5.0, jump);
    rig.InputOf("Polyline").SetAnimation(animation);
    rig.document->Undo().Clear();
    const Input::State before = rig.InputOf("Polyline").GetState();
    QVERIFY(Run(rig, "Smooth Animation"));
    QCOMPARE(Keys(rig)[1]->GetPoint(0)->y, 0.35); // half way to the line
    QVERIFY(Keys(rig)[0]->IsEqual(*before.animation.Evaluate(0.0)));
    VerifyOneEntry(rig, "Smooth animation", before);
}

void OverlayPolylineFormsTest::EasesMotion()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100});
    const Input::State before = rig.InputOf("Polyline").GetState();
    QString note;
    QVERIFY(RunDialog(rig, "Ease In / Out…", [&](QDialog& dialog) {
        Type(dialog, "m_EditIn", "100");
        Type(dialog, "m_EditOut", "0");
        QCoreApplication::processEvents();
        note = dialog.findChild<QLabel*>("m_Note")->text();
        dialog.accept();
    }));
    QCOMPARE(note, QString("7 keys are added on the way"));
    const auto xAt = [&](int index, double time) {
        return ShapeOf(rig.InputOf("Polyline"), time)->GetPoint(index)->x;
    };
    QCOMPARE(xAt(0, 0.0), 0.25);
    QVERIFY(xAt(0, 3.0) < 0.25 + 0.04); // it would be 0.06 on
    QVERIFY(std::abs(xAt(0, 10.0) - 0.45) < 1e-9);
    for (const double time : {1.0, 3.0, 5.0, 8.0})
        QVERIFY(std::abs(xAt(1, time) - (0.75 + 0.02 * time)) < 1e-9); // was not selected
    VerifyOneEntry(rig, "Ease Control Points", before);
    rig.document->Undo().Undo();
    rig.document->Undo().Clear();
    QVERIFY(RunDialog(rig, "Ease In / Out…", [&](QDialog& dialog) {
        Type(dialog, "m_EditIn", "0");
        Type(dialog, "m_EditOut", "0");
        dialog.accept();
    }));
    QCOMPARE(rig.UndoEntries(), 0);
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
    QVERIFY(Run(rig, "Convert to XYPath"));
    QCOMPARE(rig.UndoTexts(), QStringList("Convert to XYPath"));
    QVERIFY(!rig.InputOf("Center").HasExpression());
    QVERIFY(rig.InputOf("Center").GetAnimation().Keys().size() >= 11);
    QVERIFY(dialogs.said.isEmpty());
}

namespace {

QDialog* Editor()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "PolyPointDlg" && window->isVisible())
            return qobject_cast<QDialog*>(window);
    }
    return nullptr;
}

double Shown(const char* field)
{
    return Editor()->findChild<TimeCodeEdit*>(field)->GetValue();
}

} // namespace

void OverlayPolylineFormsTest::PointEditorEdits()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    rig.SetSquare("Polyline2", 0.4);
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100}); // image pixel (100, 50)
    QVERIFY(rig.Key(Qt::Key_E));
    QVERIFY(Editor());
    QCOMPARE(Shown("m_EditX"), 100.0);
    QCOMPARE(Shown("m_EditY"), 50.0);
    const Input::State before = rig.InputOf("Polyline").GetState();
    Type(*Editor(), "m_EditX", "+=20");
    QCOMPARE(rig.Place(0) + ", " + rig.Place(0, "Polyline2"), std::string("220 100, 160 70"));
    VerifyOneEntry(rig, "Edit Points", before);
    Type(*Editor(), "m_EditX", "120"); // it is
    QCOMPARE(rig.UndoEntries(), 1);
    Type(*Editor(), "m_EditOutX", "30");
    Type(*Editor(), "m_EditInX", "-10");
    Type(*Editor(), "m_EditOutY", "40"); // the other handle turns along
    const PolyPoint& point = *rig.Shape()->GetPoint(0);
    QCOMPARE(std::lround(point.outX * 400), 30);
    QCOMPARE(std::lround(point.inX * 400), -6);
    QCOMPARE(std::lround(point.inY * 200), -8);
    QCOMPARE(rig.UndoEntries(), 4);
    Type(*Editor(), "m_EditY", "nonsense(");
    QCOMPARE(rig.UndoEntries(), 4);
    rig.document->SetCurrentTime(10.0); // the other key stayed
    QCOMPARE(rig.Place(0), std::string("280 100"));

    PolyRig spline("BSplinePolyline");
    spline.SetSquare();
    spline.SetMode(ModifyOnly);
    spline.Click({200, 100});
    rig.Key(Qt::Key_E);
    QVERIFY(spline.Key(Qt::Key_E));
    QVERIFY(Editor()->findChild<TimeCodeEdit*>("m_EditInX")->isHidden());
    Type(*Editor(), "m_EditTension", "3/4");
    QCOMPARE(spline.Shape()->GetPoint(0)->tension, 0.75);
    QCOMPARE(spline.UndoText(), QString("Tensioning Points"));
}

void OverlayPolylineFormsTest::PointEditorFollows()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100});
    rig.Key(Qt::Key_E);
    rig.document->SetCurrentTime(10.0);
    QCOMPARE(Shown("m_EditX"), 180.0);
    rig.document->SetCurrentTime(0.0);
    rig.Drag({{200, 100}, {210, 100}});
    QCOMPARE(Shown("m_EditX"), 110.0);
    rig.document->Undo().Undo();
    QCOMPARE(Shown("m_EditX"), 100.0);
    Editor()->findChild<QPushButton*>("m_PreviousButton")->click(); // round to the last one
    QCOMPARE(Shown("m_EditNumber"), 3.0);
    QCOMPARE(Shown("m_EditY"), 150.0);
    Type(*Editor(), "m_EditNumber", "1");
    QCOMPARE(Shown("m_EditX"), 300.0);
    rig.Key(Qt::Key_Delete, 0);
    QVERIFY(!Editor()->findChild<TimeCodeEdit*>("m_EditX")->isEnabled()); // no point selected
    rig.document->Undo().Undo();
    Run(rig, "Lock Points");
    QVERIFY(!Editor()->findChild<TimeCodeEdit*>("m_EditX")->isEnabled());
}

void OverlayPolylineFormsTest::PointEditorCloses()
{
    auto rig = std::make_unique<PolyRig>();
    rig->SetSquare();
    rig->SetMode(Done);
    rig->Key(Qt::Key_A);
    rig->Key(Qt::Key_E);
    QVERIFY(!Editor());
    rig->SetMode(ModifyOnly);
    rig->Key(Qt::Key_E);
    QVERIFY(Editor());
    rig->Click({550, 250}); // selects nothing
    QVERIFY(rig->Key(Qt::Key_E));
    QVERIFY(!Editor());
    rig->Key(Qt::Key_A);
    rig->Key(Qt::Key_E);
    auto* field = Editor()->findChild<TimeCodeEdit*>("m_EditX");
    field->setFocus();
    QTest::keyClick(field, Qt::Key_1);
    QTest::keyClick(field, Qt::Key_E); // belongs to the number
    QVERIFY(Editor());
    QTest::keyClick(field, Qt::Key_Escape); // takes back what was typed
    QVERIFY(Editor());
    QTest::keyClick(field, Qt::Key_E);
    QVERIFY(!Editor());
    QCOMPARE(rig->UndoEntries(), 0);
    rig->Key(Qt::Key_E);
    QVERIFY(Editor());
    rig = nullptr; // goes with its overlay, before the library
    QVERIFY(!Editor());
}

QTEST_MAIN(OverlayPolylineFormsTest)
#include "overlay_polyline_forms_test.moc"
