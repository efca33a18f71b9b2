// What the polyline overlay keeps besides the shape: attributes, modes, selections, the settings of
// roto assist.

#include "plugin/PolyCommandsRig.h"
#include "script/ScriptSystem.h"
#include "system/shapes/ShapePublish.h"

#include <QtTest>

using namespace Marlox;

namespace {

int StoredMode(const PolyRig& rig)
{
    return int(rig.InputOf("Polyline").GetAttr(PLC_DrawMode)) & 0x0f;
}

ScriptVal State(const PolyRig& rig, const char* part)
{
    ScriptVal state;
    rig.Poly().SaveState(state);
    return state.Get(part);
}

} // namespace

class OverlayPolylineStateTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void AttributesAreTheInputs();
    void ModeBelongsToWhatChangedIt();
    void FollowersStayWhenPointsGo();
    void ClosedMeanwhileIsNotDrawnOn();
    void EmptyShapesAreDrawnAnew();
    void LockedSelectionsComeBack();
    void TrackSquaresAreUndone();
    void TrackPointsGoWithTheirPoints();
    void RotoWithoutAChangeIsNoEntry();
    void SkinsOfLockedToolsAreNotHit();
};

void OverlayPolylineStateTest::AttributesAreTheInputs()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly); // told to the overlay alone
    QVERIFY(rig.Key(Qt::Key_N));
    QCOMPARE(rig.Mode(), int(Done));
    QCOMPARE(StoredMode(rig), int(Done));
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLC_DrawMode, int(InsertAndModify)}}));
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    QVERIFY(rig.Key(Qt::Key_N));
    QCOMPARE(StoredMode(rig), int(Done));
}

void OverlayPolylineStateTest::ModeBelongsToWhatChangedIt()
{
    PolyRig rig;
    rig.SetMode(ClickAppend);
    QVERIFY(RunDialog(rig, "Rectangle…", Accept));
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    rig.document->Undo().Undo();
    QCOMPARE(rig.Count(), 0);
    QCOMPARE(rig.Mode(), int(ClickAppend));
    rig.document->Undo().Redo();
    QCOMPARE(rig.Mode(), int(InsertAndModify));
}

void OverlayPolylineStateTest::FollowersStayWhenPointsGo()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetShape({{0.251, 0.251}, {0.9, 0.2}, {0.5, 0.9}}, "Polyline2");
    SelMask first(4);
    first.DoSet(0, SelMask::Select);
    PublishPoints(rig.InputOf("Polyline"), first);
    SelMask other(3);
    other.DoSet(0, SelMask::Select);
    QCOMPARE(SetPointsToFollow(rig.InputOf("Polyline2"), other, 0.0, {0.01, 0.01}), 1);
    rig.SetPoint("Point0", 0.3, 0.3);
    rig.document->Undo().Clear();
    const Input::State before = rig.InputOf("Polyline2").GetState();
    QVERIFY(RunDialog(rig, "Rectangle…", Accept));
    QVERIFY(rig.Shape("Polyline2")->Links().empty());
    QCOMPARE(rig.Place(0, "Polyline2"), std::string("220 110")); // where it was seen
    VerifyOneEntry(rig, "Create rectangle", before, "Polyline2");
}

void OverlayPolylineStateTest::ClosedMeanwhileIsNotDrawnOn()
{
    PolyRig rig;
    rig.SetMode(ClickAppend);
    ScriptVal state;
    rig.Poly().SaveState(state); // while there was nothing yet
    rig.SetSquare();
    QVERIFY(rig.Poly().RestoreState(state));
    QCOMPARE(rig.Mode(), int(InsertAndModify));
    rig.SetMode(ClickAppend); // chosen for a closed shape, it stays
    rig.Poly().SaveState(state);
    QVERIFY(rig.Poly().RestoreState(state));
    QCOMPARE(rig.Mode(), int(ClickAppend));
}

void OverlayPolylineStateTest::EmptyShapesAreDrawnAnew()
{
    PolyRig rig;
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100});
    QCOMPARE(rig.Count(), 0);
    QCOMPARE(rig.UndoEntries(), 0);
    rig.SetMode(InsertAndModify);
    for (const MxPoint& at : {MxPoint{200, 100}, MxPoint{300, 100}, MxPoint{300, 200}})
        rig.Click(at);
    QCOMPARE(rig.Count(), 3);
    QCOMPARE(rig.Mode(), int(ClickAppend));
}

void OverlayPolylineStateTest::LockedSelectionsComeBack()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100});
    QVERIFY(RunEntry(rig, "Lock Point Selection"));
    ScriptVal state;
    rig.Poly().SaveState(state);

    PolyRig other;
    other.SetSquare();
    other.SetMode(ModifyOnly);
    QVERIFY(!RunEntry(other, "Delete Points"));
    QVERIFY(other.Poly().RestoreState(state));
    QVERIFY(RunEntry(other, "Delete Points"));
    QCOMPARE(other.Place(0), std::string("400 100"));
}

void OverlayPolylineStateTest::TrackSquaresAreUndone()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    for (const char* entry :
         {"Create Track Points", "Show Tracker Area", "Track Pattern Edit Mode"})
        QVERIFY(RunEntry(rig, entry));
    rig.document->Undo().Clear();
    const double pattern = State(rig, "RotoAssist").Get("TrackerSize").ToNumber();
    const double area = State(rig, "RotoAssist").Get("SearchSize").ToNumber();
    const auto corner = [](double size) { // of the square round the first point
        return MxPoint{int(200 + 200 * size), int(100 + 200 * size)};
    };
    const MxPoint inner = corner(pattern);
    const MxPoint outer = corner(area);
    rig.Drag({inner, {inner.x + 12, inner.y + 12}});
    QVERIFY(State(rig, "RotoAssist").Get("TrackerSize").ToNumber() > pattern);
    rig.document->Undo().Undo();
    QCOMPARE(State(rig, "RotoAssist").Get("TrackerSize").ToNumber(), pattern);
    QCOMPARE(rig.UndoTexts(), QStringList("Shaping Track Points"));
    rig.Drag({outer, {outer.x + 12, outer.y + 12}});
    QCOMPARE(rig.UndoTexts(), QStringList("Change Tracker Search Size"));
    QVERIFY(State(rig, "RotoAssist").Get("SearchSize").ToNumber() > area);
    rig.document->Undo().Undo();
    rig.Drag({outer, {outer.x + 12, outer.y + 12}, outer}); // there and back
    QCOMPARE(State(rig, "RotoAssist").Get("SearchSize").ToNumber(), area);
}

void OverlayPolylineStateTest::TrackPointsGoWithTheirPoints()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(RunEntry(rig, "Create Track Points"));
    const auto places = [&rig] { return State(rig, "RotoAssist").Get("TrackPoints"); };
    const double last = places().At(7).ToNumber();
    rig.Click({400, 100});
    QVERIFY(RunEntry(rig, "Delete Points"));
    QCOMPARE(places().Length(), std::size_t(6));
    QCOMPARE(places().At(5).ToNumber(), last);
    rig.document->Undo().Undo();
    QCOMPARE(places().Length(), std::size_t(8));
    QCOMPARE(places().At(3).ToNumber(), 0.75);
    QVERIFY(RunEntry(rig, "Track Pattern Edit Mode"));
    rig.Key(Qt::Key_A);
    rig.stage->Press({200, 100}, 0);
    rig.stage->Move({210, 100}, 0);
    const Ref<PolyLine> more = rig.Shape()->CopyShape(); // a script adds a point meanwhile
    more->InsertPoint(0, 0.5);
    rig.InputOf("Polyline").SetValue(*more, 0.0);
    const double carried = places().At(1).ToNumber();
    rig.stage->Move({220, 100}, 0);
    QCOMPARE(places().Length(), std::size_t(10));
    QCOMPARE(places().At(1).ToNumber(), carried);
    rig.stage->CancelDrag();
    QCOMPARE(places().Length(), std::size_t(8));
}

void OverlayPolylineStateTest::RotoWithoutAChangeIsNoEntry()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(RunEntry(rig, "Reset")); // nothing was set
    QVERIFY(RunEntry(rig, "Create Track Points"));
    QVERIFY(RunEntry(rig, "Create Track Points"));
    QCOMPARE(rig.UndoTexts(), QStringList("Create track points"));
    QVERIFY(RunEntry(rig, "Reset"));
    QCOMPARE(State(rig, "RotoAssist").Get("TrackPoints").Length(), std::size_t(0));
    rig.document->Undo().Undo();
    QCOMPARE(State(rig, "RotoAssist").Get("TrackPoints").Length(), std::size_t(8));
}

void OverlayPolylineStateTest::SkinsOfLockedToolsAreNotHit()
{
    PolyRig rig("Polyline", true);
    SetMoving(rig);
    rig.SetMode(Done);
    QVERIFY(RunEntry(rig, "Onion skin") && RunEntry(rig, "Onion skin click to Set Current Time"));
    const double now = rig.document->CurrentTime();
    const auto tips = [&rig] {
        QStringList all;
        for (int x = 100; x < 500; x += 4)
            all << TipOf(rig, {x, 150});
        return all.filter("Time : ").count();
    };
    QVERIFY(tips() > 0);
    rig.tool->SetLocked(true);
    QCOMPARE(tips(), 0);
    QCOMPARE(rig.document->CurrentTime(), now);
}

QTEST_MAIN(OverlayPolylineStateTest)
#include "overlay_polyline_state_test.moc"
