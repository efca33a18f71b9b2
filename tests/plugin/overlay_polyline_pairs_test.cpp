// Two polygons, several keys, onion skins.

#include "plugin/PolyCommandsRig.h"

#include <QCheckBox>
#include <QtTest>

using namespace Marlox;

class OverlayPolylinePairsTest : public QObject {
    Q_OBJECT
private slots:
    void DoublePolygons();
    void OnePointOfTwoThatCoincide();
    void HiddenPolygonsKeepTheirMatch();
    void KeysEditAllAlike();
    void MultiFrameEditing();
    void SkinsGoToTheirTime();
};

void OverlayPolylinePairsTest::DoublePolygons()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(RunEntry(rig, "Make Outer Polyline"));
    QCOMPARE(rig.UndoText(), QString("Add double polygon"));
    QCOMPARE(rig.Count("Polyline2"), 4);
    const std::string outer = rig.Place(2, "Polyline2");
    QVERIFY(outer != rig.Place(2));
    // Outer points go along with the inner ones; not the other way round.
    rig.Drag({{400, 200}, {410, 210}});
    QVERIFY(rig.Place(2, "Polyline2") != outer);
    const std::string inner = rig.Place(2);
    const PolyPoint& at = *rig.Shape("Polyline2")->GetPoint(2);
    rig.Drag({rig.At(at.x, at.y), rig.At(at.x + 0.1, at.y + 0.05)});
    QCOMPARE(rig.Place(2), inner);
    // Points that match come and go together.
    rig.SetMode(InsertAndModify);
    rig.Click({300, 100});
    QCOMPARE(rig.Count(), 5);
    QCOMPARE(rig.Count("Polyline2"), 5);
    rig.Key(Qt::Key_Delete, 0);
    QCOMPARE(rig.Count() * 10 + rig.Count("Polyline2"), 44);
    QVERIFY(RunEntry(rig, "Enable Outer Polyline"));
    QCOMPARE(rig.UndoText(), QString("Disable double polygon"));
    QVERIFY(!rig.Shape("Polyline2")->IsEnabled());
    rig.document->Undo().Undo();
    QVERIFY(RunEntry(rig, "Remove Outer Polyline"));
    QCOMPARE(rig.Count("Polyline2"), 0);
    QCOMPARE(rig.UndoText(), QString("Remove double polygon"));
}

void OverlayPolylinePairsTest::OnePointOfTwoThatCoincide()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetSquare("Polyline2");
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100}); // the active polygon's
    QVERIFY(TipOf(rig, {200, 100}).endsWith(" Inner"));
    QVERIFY(rig.Key(Qt::Key_Period, 0));
    QVERIFY(rig.stage->Tip().endsWith(" Outer"));
    rig.Drag({{200, 100}, {190, 90}});
    QCOMPARE(rig.Place(0) + ", " + rig.Place(0, "Polyline2"), std::string("200 100, 190 90"));
    QVERIFY(!rig.Key(Qt::Key_Period, 0) || rig.Place(0) == "200 100"); // they no longer coincide
}

void OverlayPolylinePairsTest::HiddenPolygonsKeepTheirMatch()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(InsertAndModify);
    QVERIFY(RunEntry(rig, "Make Outer Polyline"));
    QVERIFY(RunEntry(rig, "Enable Outer Polyline")); // off
    rig.Click({300, 100});
    rig.Key(Qt::Key_O);
    QCOMPARE(rig.Count("Polyline2"), 5);
    QVERIFY(!rig.Shape("Polyline2")->IsClosed());
    QVERIFY(RunEntry(rig, "Enable Outer Polyline"));
    QVERIFY(RunEntry(rig, "Enable Polyline")); // the inner one off, then the other one removed
    QVERIFY(RunEntry(rig, "Remove Outer Polyline"));
    QVERIFY(rig.Shape()->IsEnabled());
}

void OverlayPolylinePairsTest::KeysEditAllAlike()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.SetMode(InsertAndModify);
    rig.Drag({{200, 100}, {210, 100}}); // the first edit makes a key
    QVERIFY(rig.InputOf("Polyline").IsKeyAt(0.0));
    rig.document->SetCurrentTime(10.0);
    rig.Drag({{210, 100}, {210, 60}});
    QCOMPARE(rig.InputOf("Polyline").GetAnimation().Keys().size(), std::size_t(2));
    rig.document->SetCurrentTime(5.0);
    QCOMPARE(rig.Count(), 4);
    rig.Click({400, 150}); // a point more at each key
    for (const double time : {0.0, 5.0, 10.0}) {
        rig.document->SetCurrentTime(time);
        QCOMPARE(rig.Count(), 5);
        QCOMPARE(rig.Shape()->GetPoint(2)->id, 5u);
    }
    rig.document->Undo().Undo();
    QCOMPARE(rig.InputOf("Polyline").GetAnimation().Keys().size(), std::size_t(2));
}

void OverlayPolylinePairsTest::MultiFrameEditing()
{
    for (const auto& [entry, expected] :
         {std::pair("Prev", "190 110 200"), {"Next", "200 110 190"}, {"All", "190 110 190"}}) {
        PolyRig rig("Polyline", true);
        rig.SetSquare();
        for (const double time : {0.0, 5.0, 10.0})
            rig.InputOf("Polyline").AddKey(time);
        rig.document->SetCurrentTime(5.0);
        rig.SetMode(ModifyOnly);
        QVERIFY(RunEntry(rig, entry));
        rig.Drag({{200, 100}, {190, 110}});
        std::string at;
        for (const double time : {0.0, 10.0}) {
            rig.document->SetCurrentTime(time);
            at += at.empty() ? rig.Place(0).substr(0, 3) + " 110 " : rig.Place(0).substr(0, 3);
        }
        QCOMPARE(at, std::string(expected));
    }
}

void OverlayPolylinePairsTest::SkinsGoToTheirTime()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.InputOf("Polyline").AddKey(0.0);
    rig.document->SetCurrentTime(10.0);
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_A);
    rig.Drag({{200, 100}, {240, 100}}); // 40 pixels in ten frames
    rig.Key(Qt::Key_A);
    QVERIFY(RunEntry(rig, "Onion skin"));
    QVERIFY(RunEntry(rig, "Onion skin click to Set Current Time"));
    const auto skin = [&rig](double time) { // on its left side
        return rig.At(rig.InputOf("Polyline").GetValue(time)->Components()[0], 0.5);
    };
    rig.document->SetCurrentTime(5.0);
    QCOMPARE(TipOf(rig, skin(2.0)), QString("Time : 2.00"));
    rig.Click(skin(2.0));
    QCOMPARE(rig.document->CurrentTime(), 2.0);

    // An anchor is dropped where it is turned on.
    const auto turn = [](QDialog& dialog) {
        dialog.findChild<QCheckBox*>("m_CheckOnionAnchor")->click();
    };
    QVERIFY(RunDialog(rig, "Onion skin settings…", turn)); // and cancel
    rig.document->SetCurrentTime(10.0);
    QVERIFY(!TipOf(rig, skin(3.0)).startsWith("Time"));
    rig.document->SetCurrentTime(2.0);
    QVERIFY(RunDialog(rig, "Onion skin settings…", [&turn](QDialog& dialog) {
        turn(dialog);
        dialog.accept();
    }));
    rig.document->SetCurrentTime(10.0);
    QCOMPARE(TipOf(rig, skin(3.0)), QString("Time : 3.00"));

    // With the preferences that this left, it is where the skins are turned on.
    PolyRig next("Polyline", true);
    next.InputOf("Polyline").ChangeTo(rig.InputOf("Polyline").GetState());
    next.SetMode(ModifyOnly);
    next.document->SetCurrentTime(2.0);
    QVERIFY(RunEntry(next, "Onion skin"));
    next.document->SetCurrentTime(10.0);
    QCOMPARE(TipOf(next, skin(3.0)), QString("Time : 3.00"));
}

QTEST_MAIN(OverlayPolylinePairsTest)
#include "overlay_polyline_pairs_test.moc"
