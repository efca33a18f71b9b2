// Points drawn, hit, selected and dragged.

#include "plugin/PolyRig.h"

#include <QtTest>

using namespace Marlox;

class OverlayPolylineDragsTest : public QObject {
    Q_OBJECT
private slots:
    void ClicksAppendAndClose();
    void TooFewPointsDoNotClose();
    void PointsAreHitWithinTheTolerance();
    void SegmentsTakePoints();
    void DragsMoveSelectedPoints();
    void DragsWithModifiers();
    void HandlesGoTogetherUntilBroken();
    void TensionOfSplines();
    void RubberBandSelects();
    void FreehandMakesFewPoints();
    void ShapeBoxScalesAndTurns();
    void CancelledAndLostDrags();
    void UndoBringsTheSelectionBack();
    void StopRenderingWritesAtTheEnd_data();
    void StopRenderingWritesAtTheEnd();
};

void OverlayPolylineDragsTest::ClicksAppendAndClose()
{
    PolyRig rig;
    QCOMPARE(rig.Mode(), int(ClickAppend)); // there is nothing else to do with an empty shape
    rig.Click(rig.At(0.25, 0.25));
    rig.Click(rig.At(0.75, 0.25));
    rig.Drag({rig.At(0.5, 0.75), rig.At(0.6, 0.75)}); // pulls handles
    QCOMPARE(rig.Count(), 3);
    QVERIFY(rig.Shape()->GetPoint(0)->Has(PPF_Linear));
    QCOMPARE(rig.Shape()->GetPoint(2)->outX, 0.1);
    QCOMPARE(rig.Shape()->GetPoint(2)->inX, -0.1);
    rig.Click(rig.At(0.25, 0.25)); // on the first one
    QVERIFY(rig.Shape()->IsClosed());
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    QCOMPARE(rig.UndoTexts(),
             QStringList({"Add Point", "Add Point", "Add Point", "Close polygon"}));
    rig.document->Undo().Undo(); // and goes on drawing
    QCOMPARE(rig.Mode(), int(ClickAppend));
    rig.document->Undo().Redo();
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    rig.Key(Qt::Key_O);
    QVERIFY(!rig.Shape()->IsClosed());
    QCOMPARE(rig.UndoText(), QString("Open polygon"));
    rig.SetMode(ClickAppend);
    rig.Click(rig.At(0.9, 0.9));
    QVERIFY(rig.Key(Qt::Key_Backspace, 0)); // takes the last one back
    QCOMPARE(rig.Count(), 3);
}

void OverlayPolylineDragsTest::TooFewPointsDoNotClose()
{
    PolyRig rig;
    rig.Click(rig.At(0.25, 0.25));
    rig.Key(Qt::Key_O);
    QVERIFY(!rig.Shape()->IsClosed());
    QCOMPARE(rig.UndoEntries(), 1);
    rig.Click(rig.At(0.75, 0.25));
    rig.Key(Qt::Key_O);
    QVERIFY(rig.Shape()->IsClosed());
}

void OverlayPolylineDragsTest::PointsAreHitWithinTheTolerance()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{200 - 5, 100 + 5}, {205, 115}}); // point 0 lies at (200, 100): a square counts
    QCOMPARE(rig.Place(0), std::string("210 110"));
    rig.document->Undo().Undo();
    rig.Drag({{200 - 6, 100 - 6}, {190, 90}}); // exactly one tolerance away
    QCOMPARE(rig.Place(0), std::string("200 100"));
    // Zoomed in, six view pixels are three of the image.
    rig.View().imageWidth *= 2.0;
    rig.View().imageHeight *= 2.0;
    rig.Drag({{300 + 5, 150}, {325, 150}});
    QCOMPARE(rig.Place(0), std::string("210 100"));
    rig.Drag({{320, 150 - 6}, {320, 170}});
    QCOMPARE(rig.Place(0), std::string("210 100"));
}

void OverlayPolylineDragsTest::SegmentsTakePoints()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Click({300, 100});
    QCOMPARE(rig.Count(), 4);
    QCOMPARE(rig.UndoEntries(), 0);
    rig.Drag({{300, 100}, {300, 90}}); // moves the ends of the segment
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("200 90, 400 90"));
    rig.document->Undo().Undo();
    rig.SetMode(InsertAndModify);
    rig.Drag({{300, 102}, {310, 92}}); // into the curve, and on
    QCOMPARE(rig.Count(), 5);
    QCOMPARE(rig.Place(1), std::string("310 90"));
    QCOMPARE(rig.UndoTexts(), QStringList("Add Point"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.Count(), 4);
}

void OverlayPolylineDragsTest::DragsMoveSelectedPoints()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{200, 100}, {203, 104}, {220, 110}});
    QCOMPARE(rig.UndoTexts(), QStringList("Move Point"));
    rig.Click({400, 100}, KeyShift); // as well
    rig.Drag({{400, 100}, {410, 90}});
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("230 100, 410 90"));
    QCOMPARE(rig.UndoText(), QString("Move Points"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("220 110, 400 100"));
    rig.Click({400, 100}); // one of two: a click alone selects it
    rig.Drag({{400, 100}, {401, 100}});
    QCOMPARE(rig.UndoText(), QString("Move Point"));
}

void OverlayPolylineDragsTest::DragsWithModifiers()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.stage->Press({200, 100}, 0);
    rig.stage->Move({230, 110}, KeyShift); // held along the longer way
    QCOMPARE(rig.Place(0), std::string("230 100"));
    rig.stage->Move({230, 110}, 0);
    rig.stage->Move({240, 120}, 0);
    rig.stage->Move({250, 130}, KeyControl);
    rig.stage->Move({260, 140}, KeyControl); // a tenth, from where Ctrl went down
    QCOMPARE(rig.Place(0), std::string("251 131"));
    rig.stage->Release({260, 140}, KeyControl);
    QCOMPARE(rig.UndoEntries(), 1);
    rig.Drag({{400, 100}, {430, 110}}, KeyShift); // from the press on, with what was selected
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("281 131, 430 100"));
    rig.Drag({{430, 100}, {430, 150}}, KeyControl);
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("281 136, 430 105"));
    rig.Click({430, 105}, KeyShift); // a click alone takes it out
    rig.Drag({{281, 136}, {281, 140}});
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("281 140, 430 105"));
}

void OverlayPolylineDragsTest::HandlesGoTogetherUntilBroken()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{200, 100}, {220, 100}}, KeyAlt); // pulls both out: (+20, 0), (-20, 0)
    const auto handles = [&rig] {
        const PolyPoint& p = *rig.Shape()->GetPoint(0);
        return QStringLiteral("%1 %2, %3 %4")
            .arg(std::round(p.outX * 400))
            .arg(std::round(p.outY * 200))
            .arg(std::round(p.inX * 400))
            .arg(std::round(p.inY * 200));
    };
    QCOMPARE(handles(), QString("20 0, -20 0"));
    rig.Drag({{220, 100}, {200, 140}}); // out, up: the other one keeps its length
    QCOMPARE(handles(), QString("0 40, 0 -20"));
    rig.Drag({{200, 140}, {230, 140}}, KeyAlt); // breaks them
    QCOMPARE(handles(), QString("30 40, 0 -20"));
    rig.Drag({{200, 80}, {190, 80}});
    QCOMPARE(handles(), QString("30 40, -10 -20"));
    rig.Drag({{190, 80}, {180, 70}}, KeyShift); // alike again
    QCOMPARE(handles(), QString("20 30, -20 -30"));
    QCOMPARE(rig.UndoEntries(), 5);
}

void OverlayPolylineDragsTest::TensionOfSplines()
{
    PolyRig rig("BSplinePolyline");
    rig.Click(rig.At(0.25, 0.25));
    QVERIFY(!rig.Shape()->GetPoint(0)->Has(PPF_Linear)); // would be a corner
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{200, 100}, {250, 100}}, KeyAlt);
    QCOMPARE(rig.Shape()->GetPoint(0)->tension, 0.5);
    QCOMPARE(rig.UndoText(), QString("Tensioning"));
    rig.Drag({{200, 100}, {500, 100}}, KeyAlt);
    QCOMPARE(rig.Shape()->GetPoint(0)->tension, 1.0);
}

void OverlayPolylineDragsTest::RubberBandSelects()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{180, 80}, {420, 120}});            // points 0 and 1
    rig.Drag({{180, 180}, {220, 220}}, KeyShift); // and 3
    QCOMPARE(rig.UndoEntries(), 0);
    rig.Key(Qt::Key_Delete, 0);
    QCOMPARE(rig.Place(0), std::string("400 200"));
    QCOMPARE(rig.Count(), 1);
    QCOMPARE(rig.UndoTexts(), QStringList("Delete Points"));
}

void OverlayPolylineDragsTest::FreehandMakesFewPoints()
{
    PolyRig rig;
    rig.SetMode(DrawAppend);
    rig.stage->Press({200, 150}, 0);
    for (int i = 1; i <= 100; ++i) { // a circle, back to its beginning
        const double angle = i * 2.0 * M_PI / 100.0;
        rig.stage->Move({int(std::lround(250 - 50 * std::cos(angle))),
                         int(std::lround(150 + 50 * std::sin(angle)))},
                        0);
    }
    rig.stage->Release({200, 150}, 0);
    QVERIFY(rig.Shape()->IsClosed());
    QVERIFY2(rig.Count() >= 4 && rig.Count() <= 10, qPrintable(QString::number(rig.Count())));
    QCOMPARE(rig.UndoTexts(), QStringList("Freehand Add Points"));
    for (const ShapePlace& place : rig.Shape()->GetSamplePoints(1e-4)) {
        const double away = std::hypot(place.x * 400 - 150, place.y * 200 - 100) - 50;
        QVERIFY2(std::abs(away) < 3.0, qPrintable(QString::number(away)));
    }
}

void OverlayPolylineDragsTest::ShapeBoxScalesAndTurns()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_B);
    QCOMPARE(rig.UndoTexts(), QStringList("Show Shape Box"));
    rig.Drag({{410, 150}, {510, 150}}); // the right side, which is 10 pixels beside the points
    QCOMPARE(rig.Place(2), std::string("500 200"));
    QCOMPARE(rig.Place(0), std::string("200 100"));
    QCOMPARE(rig.UndoText(), QString("Shape PolyLine"));
    rig.Drag({{300, 160}, {310, 150}}); // its inside
    QCOMPARE(rig.Place(0), std::string("210 90"));
    QCOMPARE(rig.UndoText(), QString("Dragging Shaping Box"));
    rig.Drag({{210, 90}, {200, 90}}); // inside, but the point there wins
    QCOMPARE(rig.UndoText(), QString("Move Point"));
    rig.SetSquare();                               // one point selected: all of them still
    rig.Drag({{190, 210}, {90, 260}}, KeyControl); // the top left corner, about the middle
    QCOMPARE(rig.Place(3), std::string("100 250"));
    QCOMPARE(rig.Place(1), std::string("500 50"));
    rig.SetSquare();
    rig.Drag({{300, 232}, {382, 150}}); // the knob, a quarter clockwise
    QCOMPARE(rig.Place(0), std::string("250 250"));
    QCOMPARE(rig.Place(1), std::string("250 50"));
    rig.SetSquare();
    rig.SetSquare("Polyline2", 0.4);
    rig.Drag({{300, 150}, {310, 150}}); // the outer polygon goes along
    QCOMPARE(rig.Place(0) + ", " + rig.Place(0, "Polyline2"), std::string("210 100, 150 70"));
    rig.Click({210, 100});
    QVERIFY(RunEntry(rig, "Lock Points"));
    rig.Drag({{300, 150}, {310, 150}}); // all of them but that one
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1), std::string("210 100, 420 100"));
    rig.Key(Qt::Key_A);
    QVERIFY(RunEntry(rig, "Lock Point Pairs")); // then the box stays as well
    const std::string frame = " loop: (200, 90) (430, 90) (430, 210) (200, 210)";
    rig.stage->Press({300, 160}, 0);
    QVERIFY2(rig.Drawn().find(frame) != std::string::npos, rig.Drawn().c_str());
    rig.stage->Move({340, 160}, 0);
    QVERIFY(rig.Drawn().find(frame) != std::string::npos);
    rig.stage->Release({340, 160}, 0);
}

void OverlayPolylineDragsTest::CancelledAndLostDrags()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(InsertAndModify);
    rig.stage->Press({300, 100}, 0);
    rig.stage->Move({310, 80}, 0);
    QCOMPARE(rig.Count(), 5);
    rig.stage->CancelDrag();
    QCOMPARE(rig.Count(), 4);
    QCOMPARE(rig.UndoEntries(), 0);
    rig.stage->Press({200, 100}, 0);
    rig.stage->Move({210, 100}, 0);
    rig.document->RemoveTool(*rig.tool);
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayPolylineDragsTest::UndoBringsTheSelectionBack()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{180, 80}, {420, 120}}); // 0 and 1
    rig.Key(Qt::Key_Delete, 0);
    rig.Key(Qt::Key_A);
    rig.document->Undo().Undo();
    rig.Drag({{200, 100}, {200, 90}}); // still both
    QCOMPARE(rig.Place(0) + ", " + rig.Place(1) + ", " + rig.Place(2),
             std::string("200 90, 400 90, 400 200"));
}

void OverlayPolylineDragsTest::StopRenderingWritesAtTheEnd_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* kind, int mode, QPoint from, u32 modifiers, const char* text) {
        QTest::addRow("%s, %s", text, kind)
            << QByteArray(kind) << mode << from << int(modifiers) << QString(text);
    };
    row("Polyline", ModifyOnly, {200, 100}, 0, "Drag Points");
    row("BSplinePolyline", ModifyOnly, {200, 100}, KeyAlt, "Tensioning");
    row("Polyline", ModifyOnly, {200, 100}, KeyAlt, "Move Point"); // its handles
    row("Polyline", ModifyOnly, {300, 180}, 0, "Dragging Shaping Box");
    row("Polyline", InsertAndModify, {300, 100}, 0, "Add Points");
    row("Polyline", ClickAppend, {300, 150}, 0, "Add Points");
}

void OverlayPolylineDragsTest::StopRenderingWritesAtTheEnd()
{
    QFETCH(QByteArray, kind);
    QFETCH(int, mode);
    QFETCH(QPoint, from);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    PolyRig rig(kind.constData());
    rig.SetSquare();
    rig.SetMode(mode);
    rig.Key(Qt::Key_R);
    if (text.contains("Box"))
        rig.Key(Qt::Key_B);
    rig.document->Undo().Clear();
    const auto drag = [&](const std::function<void()>& before) {
        rig.stage->Press({from.x(), from.y()}, u32(modifiers));
        rig.stage->Move({from.x() + 20, from.y() + 30}, u32(modifiers));
        before();
    };
    const Input::State start = rig.InputOf("Polyline").GetState();
    const std::string still = rig.Drawn();
    drag([&] {
        QVERIFY(rig.InputOf("Polyline").GetState() == start);
        QVERIFY(rig.Drawn() != still); // shown already
        rig.stage->CancelDrag();
    });
    QVERIFY(rig.InputOf("Polyline").GetState() == start);
    QCOMPARE(rig.UndoTexts(), QStringList());
    rig.InputOf("Size").SetValue(Number(2.0), 0.0);
    drag([&] { // undo gives up what is shown, and takes nothing else back
        QCOMPARE(rig.UndoText(), text);
        rig.document->Undo().Undo();
        rig.stage->Release({from.x() + 25, from.y() + 30}, u32(modifiers));
        QCOMPARE(rig.NumberOf("Size"), 2.0);
        QVERIFY(rig.InputOf("Polyline").GetState() == start);
    });
    rig.document->Undo().Clear();
    drag([&] { rig.stage->Release({from.x() + 20, from.y() + 30}, u32(modifiers)); });
    QVERIFY(rig.InputOf("Polyline").GetState() != start);
    QCOMPARE(rig.UndoTexts(), QStringList(text));
    if (text == "Add Points") // the new point is the selected one
        QVERIFY(RunEntry(rig, "Delete Points") && rig.Count() == 4);
}

QTEST_MAIN(OverlayPolylineDragsTest)
#include "overlay_polyline_drags_test.moc"
