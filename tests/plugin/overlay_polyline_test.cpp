#include "plugin/PolyRig.h"
#include "system/controls/Menu.h"
#include "system/viewer/ToolbarEvents.h"

#include <cstring>

#include <QFile>
#include <QtTest>

using namespace Marlox;

namespace {

enum { Done, ClickAppend, DrawAppend, InsertAndModify, ModifyOnly };

struct Services final : ViewServices {
    void PressEvent(u32 number) override { pressed.push_back(number); }
    void TakeFocus(PreviewControl&) override { ++focused; }
    std::vector<u32> pressed;
    int focused = 0;
};

QString TipOf(const PolyRig& rig, const MxPoint& at)
{
    rig.stage->Move(at, 0);
    return rig.stage->Tip();
}

void RunEntry(const PolyRig& rig, const QString& text)
{
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    const std::function<const Menu::Entry*(const std::vector<Menu::Entry>&)> find =
        [&](const std::vector<Menu::Entry>& entries) -> const Menu::Entry* {
        for (const Menu::Entry& entry : entries) {
            if (entry.text.section('\t', 0, 0) == text && entry.children.empty())
                return &entry;
            if (const Menu::Entry* found = find(entry.children))
                return found;
        }
        return nullptr;
    };
    const Menu::Entry* entry = find(menu.Entries());
    QVERIFY2(entry, qPrintable(text));
    rig.Poly().HandleMenu(entry->id, nullptr, tags);
}

void Write(const std::vector<Menu::Entry>& entries, int depth, QString& text)
{
    for (const Menu::Entry& entry : entries) {
        if (entry.text.isEmpty())
            continue;
        text += QString(depth * 2, ' ') + entry.text + '\n';
        Write(entry.children, depth + 1, text);
    }
}

} // namespace

class OverlayPolylineTest : public QObject {
    Q_OBJECT
private slots:
    void DrawModeKeepsItsHighHalf();
    void ModesTellTheView();
    void MenuAndToolbarInOrder();
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
    void DoublePolygons();
    void OnePointOfTwoThatCoincide();
    void KeysEditAllAlike();
    void MultiFrameEditing();
    void KeysOfTheKeyboard();
    void ArrowKeysShift();
    void LockedToolsTakeNothing();
    void CancelledAndLostDrags();
    void UndoBringsTheSelectionBack();
    void StopRenderingWritesAtTheEnd();
    void TipsNamePolygons();
    void SkinsGoToTheirTime();
    void RotoSettingsAreAsked();
    void StateComesBack();
    void PlacedByItsTool();
    void WhatIsSetOutlivesTheSelection();
    void HiddenPolygonsKeepTheirMatch();
};

void OverlayPolylineTest::DrawModeKeepsItsHighHalf()
{
    PolyRig rig;
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    ScriptVal state = ScriptVal::MakeTable();
    state.Set("ExportOption", 5);
    QVERIFY(rig.Poly().RestoreState(state));
    rig.SetMode(ModifyOnly);
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x54));
    rig.SetMode(0x71); // the tag's low half counts
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x51));
    rig.SetMode(9); // there is no such mode
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x51));
}

void OverlayPolylineTest::ModesTellTheView()
{
    PolyRig rig;
    rig.SetSquare();
    Services services;
    rig.View().services = &services;
    rig.SetMode(ModifyOnly);
    rig.SetMode(InsertAndModify);
    rig.Key(Qt::Key_N);
    QCOMPARE(services.pressed, (std::vector<u32>{0x20011, 0x20010, 0x20012}));
    QCOMPARE(rig.InputOf("Polyline").GetAttr(PLC_DrawMode), int64(Done)); // stored with the input
    QCOMPARE(services.focused, 0);
    rig.Key(Qt::Key_C);
    rig.Key(Qt::Key_N);
    rig.Key(Qt::Key_D);
    QCOMPARE(services.focused, 1); // once
    rig.View().services = nullptr;
}

void OverlayPolylineTest::MenuAndToolbarInOrder()
{
    PolyRig rig;
    rig.SetSquare();
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    QString text;
    Write(menu.Entries(), 0, text);
    for (const ToolbarButton& button : ToolbarOf(rig.Poly())) {
        text += QStringLiteral("[%1] %2 %3\n").arg(button.text, button.tip, button.icon);
        if (!button.popDown)
            continue;
        Menu popDown;
        TagList event{{TB_Event, button.event}};
        rig.Poly().AddToMenu(&popDown, event);
        Write(popDown.Entries(), 1, text);
    }
    QFile golden(QStringLiteral(MARLOX_SOURCE_DIR "/tests/golden/polyline_menus.txt"));
    QVERIFY(golden.open(QIODevice::ReadOnly));
    QCOMPARE(text, QString::fromUtf8(golden.readAll()));
}

void OverlayPolylineTest::ClicksAppendAndClose()
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

void OverlayPolylineTest::TooFewPointsDoNotClose()
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

void OverlayPolylineTest::PointsAreHitWithinTheTolerance()
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

void OverlayPolylineTest::SegmentsTakePoints()
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

void OverlayPolylineTest::DragsMoveSelectedPoints()
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

void OverlayPolylineTest::DragsWithModifiers()
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
}

void OverlayPolylineTest::HandlesGoTogetherUntilBroken()
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

void OverlayPolylineTest::TensionOfSplines()
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

void OverlayPolylineTest::RubberBandSelects()
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

void OverlayPolylineTest::FreehandMakesFewPoints()
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

void OverlayPolylineTest::ShapeBoxScalesAndTurns()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_B);
    QCOMPARE(rig.UndoTexts(), QStringList("Show Shape Box"));
    rig.Drag({{400, 150}, {500, 150}}); // the right side
    QCOMPARE(rig.Place(2), std::string("500 200"));
    QCOMPARE(rig.Place(0), std::string("200 100"));
    QCOMPARE(rig.UndoText(), QString("Shape PolyLine"));
    rig.Drag({{300, 160}, {310, 150}}); // its inside
    QCOMPARE(rig.Place(0), std::string("210 90"));
    QCOMPARE(rig.UndoText(), QString("Dragging Shaping Box"));
    rig.Drag({{210, 90}, {200, 90}}); // a corner, but the point there wins
    QCOMPARE(rig.UndoText(), QString("Move Point"));
}

void OverlayPolylineTest::DoublePolygons()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    RunEntry(rig, "Make Outer Polyline");
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
    RunEntry(rig, "Enable Outer Polyline");
    QCOMPARE(rig.UndoText(), QString("Disable double polygon"));
    QVERIFY(!rig.Shape("Polyline2")->IsEnabled());
    rig.document->Undo().Undo();
    RunEntry(rig, "Remove Outer Polyline");
    QCOMPARE(rig.Count("Polyline2"), 0);
    QCOMPARE(rig.UndoText(), QString("Remove double polygon"));
}

void OverlayPolylineTest::OnePointOfTwoThatCoincide()
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

void OverlayPolylineTest::KeysEditAllAlike()
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

void OverlayPolylineTest::MultiFrameEditing()
{
    for (const auto& [entry, expected] :
         {std::pair("Prev", "190 110 200"), {"Next", "200 110 190"}, {"All", "190 110 190"}}) {
        PolyRig rig("Polyline", true);
        rig.SetSquare();
        for (const double time : {0.0, 5.0, 10.0})
            rig.InputOf("Polyline").AddKey(time);
        rig.document->SetCurrentTime(5.0);
        rig.SetMode(ModifyOnly);
        RunEntry(rig, entry);
        rig.Drag({{200, 100}, {190, 110}});
        std::string at;
        for (const double time : {0.0, 10.0}) {
            rig.document->SetCurrentTime(time);
            at += at.empty() ? rig.Place(0).substr(0, 3) + " 110 " : rig.Place(0).substr(0, 3);
        }
        QCOMPARE(at, std::string(expected));
    }
}

void OverlayPolylineTest::KeysOfTheKeyboard()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(rig.Key(Qt::Key_P)); // nothing is selected: the curve goes
    QVERIFY(rig.Drawn().find("strip") == std::string::npos);
    rig.Key(Qt::Key_P, 0); // by the key's code
    QVERIFY(rig.Key(Qt::Key_A));
    QVERIFY(rig.Key(Qt::Key_S));
    QCOMPARE(rig.UndoText(), QString("Smooth Polyline"));
    QVERIFY(rig.Shape()->GetPoint(0)->outX != 0.0);
    QVERIFY(rig.Key(Qt::Key_L));
    QCOMPARE(rig.UndoText(), QString("Linear Polyline"));
    QVERIFY(rig.Key(Qt::Key_Z));
    QCOMPARE(rig.UndoText(), QString("Flip Points"));
    QCOMPARE(rig.Place(0), std::string("200 200"));
    QVERIFY(rig.Key(Qt::Key_T));
    QCOMPARE(rig.UndoText(), QString("Tag Points"));
    QVERIFY(rig.Key(Qt::Key_P));
    QCOMPARE(rig.UndoText(), QString("Publish Points"));
    QCOMPARE(rig.Shape()->Links().size(), std::size_t(4));
    QVERIFY(rig.Key(Qt::Key_P));
    QCOMPARE(rig.UndoText(), QString("Unpublishing points"));
    for (const int key :
         {Qt::Key_G, Qt::Key_J, Qt::Key_Q, Qt::Key_U, Qt::Key_V, Qt::Key_W, Qt::Key_Y})
        QVERIFY(!rig.Key(key));
    QVERIFY(!rig.Key(Qt::Key_F, 0)); // the view's
    const int entries = rig.UndoEntries();
    rig.Key(Qt::Key_N);
    for (const int key : {Qt::Key_X, Qt::Key_T, Qt::Key_P, Qt::Key_E}) // nothing when done
        rig.Key(key);
    QCOMPARE(rig.UndoEntries(), entries);
    rig.SetMode(ModifyOnly);
    QVERIFY(rig.Key(Qt::Key_X));
    QCOMPARE(rig.UndoText(), QString("Cut Points"));
    QCOMPARE(rig.Count(), 0);
}

void OverlayPolylineTest::ArrowKeysShift()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(!rig.Key(Qt::Key_Left, 0)); // nothing is selected
    rig.Click({200, 100});
    rig.stage->KeyDown(Qt::Key_Left, 0);
    rig.stage->KeyDown(Qt::Key_Left, 0);
    rig.stage->KeyDown(Qt::Key_Down, KeyShift);
    rig.stage->KeyUpAll();
    QCOMPARE(rig.Place(0), std::string("198 90"));
    QCOMPARE(rig.UndoTexts(), QStringList("Shift points"));
    rig.Key(Qt::Key_PageDown, 0);
    rig.Key(Qt::Key_Up, 0); // ten pixels now
    QCOMPARE(rig.Place(0), std::string("198 100"));
    const double x = rig.Shape()->GetPoint(0)->x;
    rig.Key(Qt::Key_Right, KeyControl); // divided by the factor
    QVERIFY(std::abs(rig.Shape()->GetPoint(0)->x - x - 0.1 / 400) < 1e-12);
}

void OverlayPolylineTest::LockedToolsTakeNothing()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.stage->Press({200, 100}, 0);
    rig.tool->SetLocked(true); // in mid-drag
    rig.document->Undo().Clear();
    rig.stage->Move({250, 120}, 0);
    rig.stage->Release({250, 120}, 0);
    rig.Key(Qt::Key_A);
    rig.Key(Qt::Key_Delete, 0);
    RunEntry(rig, "Linear");
    QCOMPARE(rig.UndoEntries(), 0);
    QCOMPARE(rig.Place(0), std::string("200 100"));
}

void OverlayPolylineTest::CancelledAndLostDrags()
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

void OverlayPolylineTest::UndoBringsTheSelectionBack()
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

void OverlayPolylineTest::StopRenderingWritesAtTheEnd()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_R);
    rig.stage->Press({200, 100}, 0);
    rig.stage->Move({220, 120}, 0);
    QCOMPARE(rig.Place(0), std::string("200 100"));
    QVERIFY(rig.Drawn().find("(220, 120)") != std::string::npos); // shown there already
    rig.stage->Release({220, 120}, 0);
    QCOMPARE(rig.Place(0), std::string("220 120"));
    QCOMPARE(rig.UndoTexts(), QStringList("Drag Points"));
}

void OverlayPolylineTest::TipsNamePolygons()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QCOMPARE(TipOf(rig, {200, 100}), QString("Polyline"));
    rig.SetSquare("Polyline2", 0.4);
    QCOMPARE(TipOf(rig, {200, 100}), QString("Polyline Inner"));
    QCOMPARE(TipOf(rig, rig.At(0.1, 0.1)), QString("Polyline Outer"));
    rig.Click({200, 100});
    rig.Key(Qt::Key_P);
    QVERIFY(TipOf(rig, {200, 100}).startsWith("Polyline Inner Point"));
    std::array<char, 256> tip{};
    tip.fill('x');
    QVERIFY(rig.Poly().ControlGetTip(&rig.View(), tip.data(), nullptr));
    QVERIFY(std::memchr(tip.data(), 0, tip.size()));
}

void OverlayPolylineTest::SkinsGoToTheirTime()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.InputOf("Polyline").AddKey(0.0);
    rig.document->SetCurrentTime(10.0);
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_A);
    rig.Drag({{200, 100}, {240, 100}}); // 40 pixels in ten frames
    rig.Key(Qt::Key_A);
    RunEntry(rig, "Onion skin");
    RunEntry(rig, "Onion skin click to Set Current Time");
    const double left = rig.InputOf("Polyline").GetValue(9.0)->Components()[0];
    const MxPoint skin = rig.At(left, 0.5);
    if (std::abs(skin.x - 240) >= 6)
        QSKIP("the skin lies under the shape");
    rig.document->SetCurrentTime(5.0);
    const double before = rig.InputOf("Polyline").GetValue(2.0)->Components()[0];
    const MxPoint at = rig.At(before, 0.5);
    QCOMPARE(TipOf(rig, at), QString("Time : 2.00"));
    rig.Click(at);
    QCOMPARE(rig.document->CurrentTime(), 2.0);
}

void OverlayPolylineTest::RotoSettingsAreAsked()
{
    PolyRig rig;
    rig.SetSquare();
    AnsweringDialogs dialogs;
    dialogs.texts = {"17", "0", "12px"};
    RunEntry(rig, "Distance 4…");
    const QString refusal = "Please choose a number between 1 and 16";
    QCOMPARE(dialogs.said,
             QStringList({"Distance=4", refusal, "Distance=4", refusal, "Distance=4"}));
    QCOMPARE(rig.UndoTexts(), QStringList("Set distance"));
    dialogs.texts = {"12"}; // as it is
    RunEntry(rig, "Distance 12…");
    QCOMPARE(rig.UndoEntries(), 1);
    dialogs.said.clear();
    dialogs.texts = {"11", "x", "10"};
    RunEntry(rig, "Frame Skip");
    QCOMPARE(dialogs.said.filter("between 1 and 10").size(), 2);
    QCOMPARE(rig.UndoText(), QString("Track Frame Skip"));
    TagList tags;
    for (const auto& [event, text] : {std::pair(0x20067u, "Enable auto-roto"),
                                      {0x20067u, "Disable auto-roto"},
                                      {0x2006fu, "Reset auto-roto"}}) {
        QVERIFY(rig.Poly().HandleEvent(nullptr, ViewerEvent(event), tags));
        QCOMPARE(rig.UndoText(), QString(text));
    }
    rig.document->Undo().Undo();
    RunEntry(rig, "Distance 12…"); // undo brought it back
}

void OverlayPolylineTest::StateComesBack()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{180, 80}, {420, 120}});
    RunEntry(rig, "Point Numbers");
    ScriptVal state;
    QVERIFY(rig.Poly().SaveState(state));
    const std::string drawn = rig.Drawn();
    rig.Key(Qt::Key_N);
    RunEntry(rig, "Point Numbers");
    QVERIFY(rig.Drawn() != drawn);
    QVERIFY(rig.Poly().RestoreState(state));
    QCOMPARE(rig.Drawn(), drawn);
    rig.Poly().CleanupState(state);
    QVERIFY(!rig.Poly().RestoreState(state));
}

void OverlayPolylineTest::PlacedByItsTool()
{
    constexpr u32 PLCID_Center = 0x80058000;
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    rig.SetPoint("Center", 0.6, 0.5);
    rig.Drag({{240, 100}, {250, 100}}); // where it is shown
    QCOMPARE(rig.Place(0), std::string("210 100"));
    // A size that leaves nothing of the shape: nothing can be thrown out of the world by it.
    constexpr u32 PLCID_Size = 0x80058002;
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Size, "Size"}}));
    rig.InputOf("Size").SetValue(Number(1e-310), 0.0);
    rig.Key(Qt::Key_A);
    rig.Key(Qt::Key_Right, 0);
    QCOMPARE(rig.Place(0), std::string("210 100"));
}

void OverlayPolylineTest::WhatIsSetOutlivesTheSelection()
{
    PolyRig rig;
    rig.SetSquare();
    RunEntry(rig, "Convex Hull Polygon");
    rig.SetMode(ModifyOnly);
    const std::string drawn = rig.Drawn();
    rig.stage->SetOperator(nullptr);
    rig.stage->SetOperator(rig.tool);
    QCOMPARE(rig.Drawn(), drawn);
    QCOMPARE(rig.Mode(), int(ModifyOnly));
}

void OverlayPolylineTest::HiddenPolygonsKeepTheirMatch()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(InsertAndModify);
    RunEntry(rig, "Make Outer Polyline");
    RunEntry(rig, "Enable Outer Polyline"); // off
    rig.Click({300, 100});
    rig.Key(Qt::Key_O);
    QCOMPARE(rig.Count("Polyline2"), 5);
    QVERIFY(!rig.Shape("Polyline2")->IsClosed());
    RunEntry(rig, "Enable Outer Polyline");
    RunEntry(rig, "Enable Polyline"); // the inner one off, then the other one removed
    RunEntry(rig, "Remove Outer Polyline");
    QVERIFY(rig.Shape()->IsEnabled());
}

QTEST_MAIN(OverlayPolylineTest)
#include "overlay_polyline_test.moc"
