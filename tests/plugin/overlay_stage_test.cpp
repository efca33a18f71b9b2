// Picking, drags, focus and drawing of overlays on a stage, with the library's points and
// crosshairs.

#include "plugin/OverlayRig.h"
#include "script/ScriptSystem.h"
#include "system/document/BulkChange.h"

#include <cmath>
#include <limits>
#include <random>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QSignalSpy>
#include <QTest>

using namespace Marlox;

namespace {

RigInput point(const char* id, std::vector<TagPair> more = {})
{
    more.insert(more.begin(), {IAS_Overlay, "PointControl"});
    return {id, CLSID_DataType_Point, more};
}

/// Two points on the same place and one at (500, 200).
std::vector<RigInput> threePoints()
{
    return {point("a"), point("b"), point("far", {{IAD_DefaultX, 1.0}, {IAD_DefaultY, 0.75}})};
}

constexpr MxPoint middle{300, 150};

// The overlays' own tags, as their references have them.
constexpr u32 PCID_PrevPoint = 0x80058000;
constexpr u32 ACID_Center = 0x80058000;

/// What a closure draws, as OpenGL leaves it; transparent where nothing is drawn.
template <class Paint>
QImage drawnByGL(const PreviewInfo& view, Paint paint)
{
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QOffscreenSurface surface;
    surface.setFormat(format);
    surface.create();
    QOpenGLContext context;
    context.setFormat(format);
    if (!context.create() || !context.makeCurrent(&surface))
        return {};
    QOpenGLFramebufferObject target(view.viewWidth, view.viewHeight);
    target.bind();
    glViewport(0, 0, view.viewWidth, view.viewHeight);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, view.viewWidth, 0.0, view.viewHeight, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    {
        GLOverlayPainter painter(view, 1.0);
        paint(painter);
    }
    return target.toImage().convertToFormat(QImage::Format_RGBA8888);
}

} // namespace

class OverlayStageTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        InstallScripting();
        QVERIFY2(PluginLibrary().IsLoaded(), PluginLibrary().Error().constData());
    }

    void picksTheFirstInputAndThenTheFocused()
    {
        OverlayRig rig(threePoints());
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(3));
        rig.stage->Move({302, 152}, 0);
        QCOMPARE(rig.View().currentControl, &rig.OverlayOf("a"));
        QCOMPARE(rig.View().cursorShape, ViewCursor::Move);
        rig.Drawn(); // the hovered one last: a point has one colour, which the view makes another
        QVERIFY(rig.View().Color(OverlayColor::Normal) ==
                rig.View().Color(OverlayColor::Highlight));
        rig.Drag({middle, {340, 150}});
        QCOMPARE(rig.PointOf("a"), std::string("0.6 0.5"));
        QCOMPARE(rig.PointOf("b"), std::string("0.5 0.5"));
        rig.document->Undo().Undo();
        rig.stage->SetFocus(&rig.OverlayOf("b"));
        rig.Drag({middle, {300, 170}});
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
        QCOMPARE(rig.PointOf("b"), std::string("0.5 0.6"));
        QVERIFY(!rig.stage->Press({30, 30}, 0)); // beside all of them
        rig.stage->Leave();
        QVERIFY(!rig.View().currentControl);
    }

    void secondClickGoesToTheMarkBelow()
    {
        OverlayRig rig(threePoints());
        QVERIFY(rig.stage->Tip().isEmpty());
        rig.Drag({middle});
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("a"));
        QVERIFY(rig.stage->Tip().contains("Also here: " + rig.InputOf("b").GetName()));
        rig.Drag({{302, 149}});
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("b"));
        rig.Drag({middle, {340, 150}});
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
        QCOMPARE(rig.PointOf("b"), std::string("0.6 0.5"));
        rig.document->Undo().Undo();
        rig.Drag({middle}); // after a drag it is the first click again
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("b"));
        rig.Drag({middle});
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("a"));
        rig.stage->Move({200, 100}, 0); // so it is when the pointer was away
        rig.Drag({middle});
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("a"));
        rig.InputOf("a").SetExpression("{0.5, 0.5}");
        rig.Drag({middle});
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("b"));
        QVERIFY(rig.stage->Press(middle, 0)); // keys leave a drag alone
        QVERIFY(rig.stage->FocusNext(true));
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("b"));
    }

    void dragIsOneEntryAtProxyResolution()
    {
        OverlayRig rig(threePoints());
        QSignalSpy renders(rig.document.get(), &MarloxDoc::SyncRenderRequested);
        rig.stage->Press({303, 152}, 0); // a click, beside the middle of the mark
        rig.stage->PlacementChanged();   // a picture arrived, at the same place
        rig.stage->Release({303, 152}, 0);
        QCOMPARE(rig.UndoEntries(), 0);
        QCOMPARE(renders.count(), 0);
        QVERIFY(rig.stage->Press(middle, 0));
        QVERIFY(!rig.document->IsAutoProxy());
        for (int x = 301; x < 340; ++x)
            rig.stage->Move({x, 150}, 0);
        QVERIFY(rig.document->IsAutoProxy());
        QCOMPARE(rig.View().drawMode, int(DrawDragging));
        QCOMPARE(rig.OverlayOf("a").DragState(), DragType::Dragged);
        rig.stage->Release({340, 150}, 0);
        QVERIFY(!rig.document->IsAutoProxy());
        QCOMPARE(renders.count(), 1);
        QCOMPARE(rig.UndoEntries(), 1);
        QCOMPARE(rig.UndoText(), QString("Adjust a"));
        rig.document->Undo().Undo();
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
    }

    void escapeGivesUp()
    {
        OverlayRig rig(threePoints());
        rig.stage->Press(middle, 0);
        rig.stage->Move({350, 180}, 0);
        rig.stage->CancelDrag();
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
        QCOMPARE(rig.UndoEntries(), 0);
        QCOMPARE(rig.document->Undo().Depth(), 0);
        rig.stage->Release({350, 180}, 0); // the button comes up later
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
    }

    // However a drag ends without its release, the history and the proxy are as after one.
    void lostDragsEnd_data()
    {
        QTest::addColumn<QByteArray>("how");
        for (const char* how : {"hidden", "tool removed", "cleared", "another tool", "unloading",
                                "undo", "view closed"})
            QTest::newRow(how) << QByteArray(how);
    }
    void lostDragsEnd();

    void whatCantBeChangedIsNotDragged()
    {
        OverlayRig rig(threePoints());
        rig.InputOf("a").SetExpression("{0.5, 0.5}");
        QCOMPARE(rig.OverlayOf("a").Condition(), OverlayCondition::Expression);
        const int entries = rig.UndoEntries();
        rig.stage->Move({301, 150}, 0);
        QCOMPARE(rig.View().cursorShape, ViewCursor::Forbidden);
        QVERIFY(rig.stage->Tip().contains("expression"));
        QVERIFY(rig.stage->Press(middle, 0)); // taken, so that nothing below it moves instead
        rig.stage->Move({350, 150}, 0);
        rig.stage->Release({350, 150}, 0);
        QCOMPARE(rig.PointOf("b"), std::string("0.5 0.5"));
        rig.tool->SetLocked(true);
        rig.Drag({{500, 200}, {400, 200}});
        QCOMPARE(rig.PointOf("far"), std::string("1 0.75"));
        QVERIFY(!rig.stage->KeyDown(Qt::Key_Left, 0));
        QCOMPARE(rig.UndoEntries(), entries + 1); // locking
    }

    void animatedPointsGetKeysAndAPath()
    {
        OverlayRig rig({point("a")});
        Input& input = rig.InputOf("a");
        QVERIFY(input.AddKey(0.0));
        rig.document->SetCurrentTime(10.0);
        QCOMPARE(rig.OverlayOf("a").Condition(), OverlayCondition::Animated);
        rig.Drag({middle, {340, 150}});
        QVERIFY(input.IsKeyAt(10.0));
        QCOMPARE(rig.OverlayOf("a").Condition(), OverlayCondition::Keyed);
        const std::string drawn = rig.Drawn();
        QVERIFY(drawn.find("path strip: (300, 150)") != std::string::npos);
        QVERIFY(drawn.find("pathkey loop at (340, 150)") != std::string::npos);
        rig.TakeRedraws();
        rig.document->SetCurrentTime(5.0);
        QVERIFY(rig.TakeRedraws() > 0);
    }

    void keysAreOneEntryUntilTheyAreUp()
    {
        OverlayRig rig(threePoints());
        QVERIFY(rig.stage->FocusNext(true));
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("a"));
        for (int i = 0; i < 4; ++i)
            QVERIFY(rig.stage->KeyDown(Qt::Key_Right, 0));
        QVERIFY(!rig.stage->KeyDown(Qt::Key_F, 0));
        QCOMPARE(rig.PointOf("a"), std::string("0.51 0.5"));
        QCOMPARE(rig.UndoEntries(), 0);
        rig.stage->KeyUpAll();
        QCOMPARE(rig.UndoEntries(), 1);
        QVERIFY(rig.stage->FocusNext(false) == false); // before the first
        QVERIFY(!rig.stage->Focus());
        QVERIFY(rig.stage->FocusNext(false));
        QCOMPARE(rig.stage->Focus(), &rig.OverlayOf("far"));
    }

    void showsTheSelectedToolsAndThoseThatStay()
    {
        OverlayRig rig({point("a"), point("b", {{IA_OverlayStays, true}})});
        Operator* other = rig.document->AddTool("ProbeTool");
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(3)); // the other tool's "b"
        rig.stage->SetOperator(nullptr);
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(2));
        QVERIFY(!rig.OverlayOf("b").IsActive());
        rig.stage->SetOperator(other);
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(3));
        other->FindInput("b")->SetAttrsTagList(TagList({{IA_OverlayStays, false}}));
        rig.stage->SetOperator(rig.tool);
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(2));
        Operator* third = rig.document->AddTool("ProbeTool");
        other->FindInput("b")->SetAttrsTagList(TagList({{IA_OverlayStays, true}}));
        QTRY_COMPARE(rig.stage->Overlays().size(), std::size_t(4));
        QCOMPARE(rig.stage->Overlays().back(), rig.stage->OverlayOf(*third->FindInput("b")));
        rig.document->MoveTool(*other, 2);
        QCOMPARE(rig.stage->Overlays().back(), rig.stage->OverlayOf(*other->FindInput("b")));
    }

    /// Overlays of many new tools are made once, with what comes at the end of the bulk; afterwards
    /// all goes on as ever, also for tools that come back.
    void bulksRebuildOnce()
    {
        OverlayRig rig({point("a"), point("b", {{IA_OverlayStays, true}})});
        QSignalSpy rebuilt(rig.stage.get(), &OverlayStage::OverlaysChanged);
        UndoHistory& history = rig.document->Undo();
        history.Begin("Add");
        {
            const BulkChange bulk(history);
            for (int i = 0; i < 5; ++i)
                rig.document->AddTool("ProbeTool");
            const BulkChange inner(history); // its end is none
        }
        QCOMPARE(rebuilt.count(), 1);
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(7));
        Operator* const last = rig.document->AddTool("ProbeTool");
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(8));
        history.End();
        history.Undo();
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(2));
        rebuilt.clear();
        history.Redo();
        QCOMPARE(rebuilt.count(), 1);
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(8));
        last->FindInput("b")->SetAttrsTagList(TagList({{IA_OverlayStays, false}}));
        QTRY_COMPARE(rig.stage->Overlays().size(), std::size_t(7));
    }

    void inputsJoinAndLeaveAnOverlay()
    {
        OverlayRig rig({{"left",
                         CLSID_DataType_Number,
                         {{IAS_Overlay, CLSID_PreviewControl_Crop}, {IA_OverlayIndex, 0}}},
                        {"right", CLSID_DataType_Number, {{IA_OverlayIndex, 2}}}});
        const auto inputs = [&rig] { return rig.OverlayOf("left").Inputs().size(); };
        QCOMPARE(inputs(), std::size_t(1));
        for (const auto& [partner, joined] : {std::pair("left", 2), {"", 1}}) {
            rig.InputOf("right").SetAttrsTagList(TagList({{IAS_OverlayWith, partner}}));
            QTRY_COMPARE(int(inputs()), joined);
        }
    }

    void twoViewsShowOneTool()
    {
        OverlayRig rig(threePoints());
        OverlayStage second(*rig.document);
        second.View() = rig.View();
        second.SetOperator(rig.tool);
        QSignalSpy redraws(&second, &OverlayStage::Changed);
        rig.Drag({middle, {340, 150}});
        QVERIFY(redraws.count() > 0);
        second.Move({340, 150}, 0);
        QCOMPARE(second.View().currentControl, second.OverlayOf(rig.InputOf("a")));
        QVERIFY(rig.stage->OverlayOf(rig.InputOf("a")) != second.OverlayOf(rig.InputOf("a")));
    }

    void baseOffsetFollowsItsInput()
    {
        OverlayRig rig({{"centre", CLSID_DataType_Point, {}},
                        {"pivot",
                         CLSID_DataType_Point,
                         {{IAS_Overlay, "CrosshairControl"}, {IAS_OverlayOffset, "centre"}}}});
        rig.SetPoint("centre", 0.75, 0.5);
        rig.Drag({{400, 150}, {400, 170}});
        QCOMPARE(rig.PointOf("pivot"), std::string("0.5 0.6"));
    }

    // Whatever is done in whatever order, nothing stays open and every value can be undone.
    void soak();

    void linesHaveACasing()
    {
        OverlayRig rig({});
        const QImage drawn = drawnByGL(rig.View(), [](OverlayPainter& painter) {
            painter.SetColor(MxColor(255, 200, 100));
            const double none = std::numeric_limits<double>::quiet_NaN();
            painter.Line({none, 10.0}, {20.0, 10.0});
            painter.Line({-1e300, 1e300}, {1e300, 1e300});
            painter.Line({-1e300, 100.5}, {1e300, 100.5});
            painter.Fill({{400, 200}, {440, 200}, {440, 240}, {400, 240}});
            const OverlayPainter::Mark mark(painter, {50.2, 50.7}, 1.0);
            painter.Fill({{-4, -4}, {4, -4}, {4, 4}, {-4, 4}});
        });
        QVERIFY(!drawn.isNull());
        const auto pixel = [&drawn](int x, int y) { return drawn.pixelColor(x, 299 - y); };
        QCOMPARE(pixel(300, 100), QColor(255, 200, 100));
        for (const int beside : {99, 101})
            QVERIFY(pixel(300, beside).value() == 0 && pixel(300, beside).alpha() > 100);
        QCOMPARE(pixel(300, 103).alpha(), 0);
        QCOMPARE(pixel(50, 50), QColor(255, 200, 100));
        QCOMPARE(pixel(10, 10).alpha(), 0);
        for (const int edge : {400, 440}) // half of the outline lies outside
            QCOMPARE(pixel(edge, 220), QColor(255, 200, 100));
        QCOMPARE(pixel(441, 220).value(), 0);
    }
};

void OverlayStageTest::lostDragsEnd()
{
    QFETCH(QByteArray, how);
    OverlayRig rig(threePoints());
    rig.stage->Press(middle, 0);
    rig.stage->Move({340, 150}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 1);
    if (how == "hidden")
        rig.stage->SetShown(false);
    else if (how == "tool removed")
        rig.document->RemoveTool(*rig.tool);
    else if (how == "cleared")
        rig.document->Clear();
    else if (how == "another tool")
        rig.stage->SetOperator(nullptr);
    else if (how == "unloading")
        OverlayStage::ReleaseAll();
    else if (how == "undo")
        rig.document->Undo().Undo();
    else
        rig.stage = nullptr;
    QCOMPARE(rig.document->Undo().Depth(), 0);
    if (how == "tool removed") {
        QCOMPARE(rig.UndoEntries(), 2);
        QCOMPARE(rig.UndoText(), QString("Remove ProbeTool1"));
    }
    if (how == "undo") { // gives the drag up: the hand may go on, nothing follows it
        rig.stage->Move({360, 150}, 0);
        rig.stage->Release({360, 150}, 0);
        QCOMPARE(rig.PointOf("a"), std::string("0.5 0.5"));
        QCOMPARE(rig.document->Undo().Depth(), 0);
        QVERIFY(rig.document->Undo().CanRedo()); // what it had done
    }
    QVERIFY(!rig.document->IsAutoProxy());
    if (rig.stage) {
        QVERIFY(!rig.stage->IsPressed());
        OverlayStage::ReopenAll();
    }
}

void OverlayStageTest::soak()
{
    const std::vector<RigInput> inputs{
        {"centre", CLSID_DataType_Point, {{IAS_Overlay, "CrosshairControl"}}},
        point("next", {{PCID_PrevPoint, "centre"}, {IAS_OverlayOffset, "centre"}}),
        {"angle", CLSID_DataType_Number, {{IAS_Overlay, "AngleControl"}, {ACID_Center, "centre"}}},
        {"left",
         CLSID_DataType_Number,
         {{IAS_Overlay, CLSID_PreviewControl_Crop}, {IA_OverlayIndex, 0}}},
        {"right",
         CLSID_DataType_Number,
         {{IAS_OverlayWith, "left"}, {IA_OverlayIndex, 2}, {IAD_Default, 400.0}}}};
    for (const unsigned seed : {1u, 20u, 300u}) {
        OverlayRig rig(inputs);
        const std::string fresh = rig.document->ToText();
        OverlayStage second(*rig.document);
        second.View() = rig.View();
        std::mt19937 random(seed);
        const auto below = [&random](int limit) { return int(random() % unsigned(limit)); };
        const auto place = [&below] { return MxPoint(below(620) - 10, below(320) - 10); };
        for (int step = 0; step < 600; ++step) {
            OverlayStage& stage = below(3) == 0 ? second : *rig.stage;
            const u32 held = u32(below(8));
            switch (below(12)) {
            case 0:
                stage.Press(below(2) == 0 ? middle : place(), held);
                break;
            case 1:
                stage.Release(place(), held);
                break;
            case 2:
                stage.KeyDown(Qt::Key_Left + below(4), held);
                break;
            case 3:
                stage.KeyUpAll();
                break;
            case 4:
                stage.CancelDrag();
                break;
            case 5:
                stage.SetOperator(below(2) == 0 ? nullptr : rig.tool);
                break;
            case 6:
                stage.FocusNext(below(2) == 0);
                break;
            case 7:
                below(2) == 0 ? rig.document->Undo().Undo() : rig.document->Undo().Redo();
                break;
            case 8:
                rig.tool->SetLocked(below(4) == 0);
                break;
            case 9:
                stage.SetShown(below(3) != 0);
                break;
            default:
                stage.Move(place(), held);
            }
            OverlayRecorder recorder;
            stage.Draw(recorder);
        }
        for (OverlayStage* stage : {rig.stage.get(), &second}) {
            stage->EndDrag();
            stage->KeyUpAll();
        }
        QCOMPARE(rig.document->Undo().Depth(), 0);
        QVERIFY(!rig.document->IsAutoProxy());
        while (rig.document->Undo().CanUndo())
            rig.document->Undo().Undo();
        QCOMPARE(rig.document->ToText(), fresh);
    }
}

QTEST_MAIN(OverlayStageTest)
#include "overlay_stage_test.moc"
