// Points smoothed and eased, and the point editor.

#include "plugin/PolyCommandsRig.h"
#include "script/ScriptSystem.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace Marlox;

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

class OverlayPolylinePointsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void SmoothsAndAverages();
    void SmoothsMotion();
    void EasesMotion();
    void PointEditorEdits();
    void PointEditorFollows();
    void PointEditorCloses();
};

void OverlayPolylinePointsTest::SmoothsAndAverages()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    const Input::State before = rig.InputOf("Polyline").GetState();
    rig.Click({200, 100});
    QVERIFY(RunEntry(rig, "Default"));
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
    QVERIFY(RunEntry(rig, "Average"));
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1) + ", " + rig.Place(2),
             std::string("300 150, 400 100, 300 150"));
    VerifyOneEntry(rig, "Average points", before);
}

void OverlayPolylinePointsTest::SmoothsMotion()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    QVERIFY(!RunEntry(rig, "Smooth Animation")); // nothing between two keys
    Animation animation = rig.InputOf("Polyline").GetAnimation();
    const Ref<PolyLine> jump = rig.Shape()->CopyShape();
    jump->MovePoints(SelMask(4, true), {0.1, 0.2});
    animation.SetKey(5.0, jump);
    rig.InputOf("Polyline").SetAnimation(animation);
    rig.document->Undo().Clear();
    const Input::State before = rig.InputOf("Polyline").GetState();
    QVERIFY(RunEntry(rig, "Smooth Animation"));
    QCOMPARE(Keys(rig)[1]->GetPoint(0)->y, 0.35); // half way to the line
    QVERIFY(Keys(rig)[0]->IsEqual(*before.animation.Evaluate(0.0)));
    VerifyOneEntry(rig, "Smooth animation", before);
}

void OverlayPolylinePointsTest::EasesMotion()
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

void OverlayPolylinePointsTest::PointEditorEdits()
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

void OverlayPolylinePointsTest::PointEditorFollows()
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
    RunEntry(rig, "Lock Points");
    QVERIFY(!Editor()->findChild<TimeCodeEdit*>("m_EditX")->isEnabled());
    rig.document->Undo().Undo();
    const Ref<PolyLine> following = rig.Shape()->CopyShape();
    following->SetLink({PointLink::Kind::Follows, following->GetPoint(1)->id, "Polyline2", "", 1});
    rig.InputOf("Polyline").SetValue(*following, 0.0);
    QVERIFY(!Editor()->findChild<TimeCodeEdit*>("m_EditX")->isEnabled()); // where the other one is
    QVERIFY(Editor()->findChild<TimeCodeEdit*>("m_EditOutX")->isEnabled());
}

void OverlayPolylinePointsTest::PointEditorCloses()
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

QTEST_MAIN(OverlayPolylinePointsTest)
#include "overlay_polyline_points_test.moc"
