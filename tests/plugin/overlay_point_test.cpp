#include "controls/viewer/PointRules.h"
#include "plugin/OverlayRig.h"

#include <cmath>
#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr u32 PCD_SetPrevPointX = 0x20058000;
constexpr u32 PCD_SetPrevPointY = 0x20058001;
constexpr u32 PCID_PrevPoint = 0x80058000;
constexpr u32 PCP_PrevPoint = 0x60058000;

RigInput PointInput(const char* id, std::vector<TagPair> more = {})
{
    more.insert(more.begin(), {{IAS_Overlay, "PointControl"}, {IA_OverlayIndex, 0}});
    return {id, CLSID_DataType_Point, more};
}

constexpr char squareAtCentre[] =
    "normal loop at (300, 150) x 1: (-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n";

double AttributeOf(Object& object, u32 tag)
{
    double value = std::numeric_limits<double>::quiet_NaN();
    object.CopyAttr(tag, &value);
    return value;
}

} // namespace

class OverlayPointTest : public QObject {
    Q_OBJECT

private slots:
    void Nudging_data();
    void Nudging();
    void Draws();
    void DrawsTheLineToThePreviousPoint();
    void TakenWithinThePickRadius();
    void TakenByWholePixels();
    void DragIsOneUndoEntry();
    void SmallMovesAreNotSent();
    void SmallChangesAreNotShown();
    void KeysMoveIt();
    void PreviousPointByTags();
    void PreviousPointById();
    void PreviousPointIsDragged();
    void ActivatesWhatItIsJoinedTo();
    void DragOffsetIsOfOneDrag();
    void HardValues();
    void ViewOfNoSize();
    void ToolsThatGo();
    void TagNames();
};

void OverlayPointTest::Nudging_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<unsigned>("modifiers");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("left") << int(Qt::Key_Left) << 0u << -1.0 << 0.0;
    QTest::newRow("up") << int(Qt::Key_Up) << 0u << 0.0 << 1.0;
    QTest::newRow("right") << int(Qt::Key_Right) << 0u << 1.0 << 0.0;
    QTest::newRow("down") << int(Qt::Key_Down) << 0u << 0.0 << -1.0;
    QTest::newRow("coarse") << int(Qt::Key_Right) << unsigned(KeyShift) << 10.0 << 0.0;
    QTest::newRow("fine") << int(Qt::Key_Down) << unsigned(KeyControl) << 0.0 << -0.1;
    QTest::newRow("both") << int(Qt::Key_Up) << unsigned(KeyShift | KeyControl) << 0.0 << 1.0;
    QTest::newRow("alt") << int(Qt::Key_Up) << unsigned(KeyAlt) << 0.0 << 1.0;
}

void OverlayPointTest::Nudging()
{
    QFETCH(int, key);
    QFETCH(unsigned, modifiers);
    QFETCH(double, x);
    QFETCH(double, y);
    const auto place = Nudged({0.25, 0.75}, u64(key), modifiers, 200);
    QVERIFY(place);
    QCOMPARE(place->x, 0.25 + x / 200.0); // pixels of the width, for y too
    QCOMPARE(place->y, 0.75 + y / 200.0);
    QVERIFY(!Nudged({0.25, 0.75}, Qt::Key_A, modifiers, 200));
    QVERIFY(!Nudged({0.25, 0.75}, u64(key), modifiers, 0));
}

void OverlayPointTest::Draws()
{
    OverlayRig rig({PointInput("pos", {{PCD_SetPrevPointX, 0.25}})});
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    QCOMPARE(rig.Drawn(), std::string(squareAtCentre)); // no line: no input supplies its end
    rig.SetPoint("pos", 0.25, 0.75);
    rig.View().controlScale = 2.0;
    QCOMPARE(rig.Drawn(), std::string("normal loop at (200, 200) x 2: "
                                      "(-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n"));
    rig.View().drawMode = DrawHidden;
    OverlayRecorder recorder;
    rig.View().painter = &recorder;
    rig.OverlayOf("pos").GLDrawControls(&rig.View(), nullptr);
    QCOMPARE(recorder.Text(), std::string());
    rig.View().drawMode = DrawDragging;
    rig.OverlayOf("pos").GLDrawControls(&rig.View(), nullptr);
    QVERIFY(!recorder.Text().empty());
}

void OverlayPointTest::DrawsTheLineToThePreviousPoint()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}),
                    {"from", CLSID_DataType_Point, {{IAD_DefaultX, 0.0}, {IAD_DefaultY, 1.0}}}});
    rig.View().controlScale = 3.0; // of marks, not of lines
    const std::string square = "normal loop at (300, 150) x 3: "
                               "(-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n";
    QCOMPARE(rig.Drawn(), square + "normal lines: (300, 150) (100, 250)\n");

    // While it is dragged with its attribute for that, nothing hides the picture.
    rig.OverlayOf("pos").SetAttrsTagList({{PC_HideWhileDragging, true}});
    QVERIFY(rig.stage->Press({300, 150}, 0));
    QCOMPARE(rig.Drawn(), std::string());
    rig.stage->Release({300, 150}, 0);
    QVERIFY(!rig.Drawn().empty());

    rig.TakeRedraws();
    QVERIFY(rig.OverlayOf("pos").RemoveInput(&rig.InputOf("from"), nullptr));
    QVERIFY(rig.TakeRedraws() > 0);
    QCOMPARE(rig.Drawn(), square);
    rig.SetPoint("from", 0.25, 0.25);
    QCOMPARE(rig.TakeRedraws(), 0); // no longer listens
    QVERIFY(!rig.OverlayOf("pos").RemoveInput(&rig.InputOf("from"), nullptr));
}

void OverlayPointTest::TakenWithinThePickRadius()
{
    OverlayRig rig({PointInput("pos")});
    struct {
        MxPoint at;
        bool taken;
    } const places[] = {
        {{305, 155}, true},  {{295, 145}, true},  {{306, 150}, false},
        {{294, 150}, false}, {{300, 156}, false}, {{300, 144}, false},
    };
    for (const auto& [at, taken] : places) {
        const QByteArray where =
            QByteArray::number(at.x) + QByteArray(", ") + QByteArray::number(at.y);
        rig.stage->Move(at, 0);
        QVERIFY2(rig.View().currentControl == (taken ? &rig.OverlayOf("pos") : nullptr), where);
        QVERIFY2(rig.stage->Press(at, 0) == taken, where);
        rig.stage->Release(at, 0);
    }
    rig.stage->Move({300, 150}, 0);
    rig.stage->Leave();
    QVERIFY(!rig.View().currentControl);
    QCOMPARE(rig.UndoEntries(), 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
}

void OverlayPointTest::TakenByWholePixels()
{
    OverlayRig rig({PointInput("pos")});
    rig.SetPoint("pos", 0.50225, 0.5); // at 300.9
    QVERIFY(!rig.stage->Press({294, 150}, 0));
    QVERIFY(rig.stage->Press({295, 150}, 0)); // 5.9 pixels away
    rig.stage->EndDrag();
    QVERIFY(rig.stage->Press({306, 150}, 0));
    rig.stage->EndDrag();
    QVERIFY(!rig.stage->Press({307, 150}, 0)); // 6.1
}

void OverlayPointTest::DragIsOneUndoEntry()
{
    OverlayRig rig({PointInput("pos")});
    rig.Drag({{303, 148}, {310, 148}, {313, 158}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.525 0.55")); // the distance is kept
    QCOMPARE(AttributeOf(rig.OverlayOf("pos"), PCD_DragOffsetX), -3.0);
    QCOMPARE(AttributeOf(rig.OverlayOf("pos"), PCD_DragOffsetY), 2.0);
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Adjust pos"));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.document->Undo().Undo();
    QCOMPARE(rig.Drawn(), std::string(squareAtCentre));

    rig.stage->Press({303, 148}, 0);
    rig.stage->Move({343, 148}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
    rig.stage->CancelDrag();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
    QVERIFY(!rig.document->Undo().CanUndo());

    rig.InputOf("pos").AddKey(0.0);
    rig.document->SetCurrentTime(10.0);
    rig.Drag({{300, 150}, {340, 150}});
    QVERIFY(rig.InputOf("pos").IsKeyAt(10.0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
    rig.document->SetCurrentTime(0.0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
}

void OverlayPointTest::SmallMovesAreNotSent()
{
    OverlayRig rig({PointInput("pos")});
    rig.View().imageWidth = 1e6;
    rig.View().imageLeft = 300.0 - 0.5e6;
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({309, 150}, 0); // nine millionths
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
    rig.stage->Move({311, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.500011 0.5"));
    rig.stage->Release({311, 150}, 0);
    QCOMPARE(rig.UndoEntries(), 1);
}

void OverlayPointTest::SmallChangesAreNotShown()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}), PointInput("from")});
    rig.TakeRedraws();
    rig.SetPoint("pos", 0.500009, 0.499991);
    QCOMPARE(rig.TakeRedraws(), 0);
    rig.SetPoint("pos", 0.500011, 0.5);
    QVERIFY(rig.TakeRedraws() > 0);
    rig.SetPoint("pos", 0.500011, 0.500011);
    QVERIFY(rig.TakeRedraws() > 0);

    Input& from = rig.InputOf("from");
    PreviewControl& overlay = rig.OverlayOf("pos");
    const std::string before = rig.Drawn();
    overlay.NotifyChanged(&from, MakeRef<Point>(0.500009, 0.5).Get(), nullptr);
    QCOMPARE(rig.Drawn(), before);
    overlay.NotifyChanged(&from, MakeRef<Point>(0.25, 0.5).Get(), nullptr);
    QVERIFY(rig.Drawn().find("(200, 150)\n") != std::string::npos);
}

void OverlayPointTest::KeysMoveIt()
{
    OverlayRig rig({PointInput("pos")});
    rig.View().pixelWidth = 1000; // of which the view shows fewer
    rig.stage->FocusNext(true);
    QVERIFY(rig.stage->KeyDown(Qt::Key_Right, KeyShift));
    QVERIFY(rig.stage->KeyDown(Qt::Key_Up, 0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.51 0.501"));
    QVERIFY(!rig.stage->KeyDown(Qt::Key_Home, 0));
    rig.stage->KeyUpAll();
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QVERIFY(rig.stage->KeyDown(Qt::Key_Left, KeyControl));
    rig.stage->KeyUpAll();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5099 0.501"));
    QCOMPARE(rig.UndoEntries(), 2);

    Input* at = nullptr;
    QVERIFY(rig.OverlayOf("pos").ControlCommand(
        &rig.View(), CCMD_GetInputAt, u64(reinterpret_cast<std::uintptr_t>(&at)), nullptr));
    QCOMPARE(at, &rig.InputOf("pos"));
}

void OverlayPointTest::PreviousPointByTags()
{
    OverlayRig rig({PointInput("pos"), PointInput("other")});
    PreviewControl& overlay = rig.OverlayOf("pos");
    const auto line = [&rig] {
        const std::string drawn = rig.Drawn();
        const auto at = drawn.find("normal lines");
        return at == std::string::npos ? std::string() : drawn.substr(at);
    };
    rig.SetPoint("other", 1.0, 1.0);
    overlay.SetAttrsTagList({{PCP_PrevPoint, &rig.InputOf("other")}});
    QCOMPARE(line(), std::string("normal lines: (300, 150) (500, 250)\n"));
    overlay.SetAttrsTagList({{PCD_SetPrevPointX, 0.25}, {PCD_SetPrevPointY, 0.25}});
    QCOMPARE(line(), std::string("normal lines: (300, 150) (500, 250)\n")); // the input rules
    // A change of the input's attributes has the overlay read all of them again.
    rig.InputOf("pos").SetAttrsTagList({{IAS_Help, "where it is"}});
    QCOMPARE(line(), std::string("normal lines: (300, 150) (500, 250)\n"));

    // An id wins over the address, even one that names no input.
    overlay.SetAttrsTagList({{PCID_PrevPoint, "none"}});
    QCOMPARE(line(), std::string());
    // Now the tags' point is the previous one; what comes to rule keeps it until its own is known.
    overlay.SetAttrsTagList({{PCD_SetPrevPointY, 0.75}});
    overlay.SetAttrsTagList({{PCID_PrevPoint, "other"}});
    QCOMPARE(line(), std::string("normal lines: (300, 150) (500, 250)\n"));
}

void OverlayPointTest::PreviousPointById()
{
    OverlayRig rig({PointInput("first"), PointInput("second", {{PCID_PrevPoint, "first"}})});
    rig.SetPoint("second", 1.0, 0.5);
    rig.SetPoint("first", 0.0, 0.5);
    const std::string corners = " (-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n";
    QCOMPARE(rig.Drawn(), "normal loop at (500, 150) x 1:" + corners +
                              "normal lines: (500, 150) (100, 150)\n"
                              "normal loop at (100, 150) x 1:" +
                              corners);
}

void OverlayPointTest::PreviousPointIsDragged()
{
    OverlayRig rig({PointInput("first"), PointInput("second", {{PCID_PrevPoint, "first"}})});
    // Both lie at the same place: the first in order takes the press, and drives the other.
    rig.stage->Press({300, 150}, 0);
    QCOMPARE(rig.OverlayOf("first").DragState(), DragType::Dragged);
    QCOMPARE(rig.OverlayOf("second").DragState(), DragType::Driven);
    rig.stage->Move({340, 150}, 0);
    rig.stage->Release({340, 150}, 0);
    QCOMPARE(rig.OverlayOf("second").DragState(), DragType::None);
    QCOMPARE(rig.PointOf("first"), std::string("0.6 0.5"));
    QCOMPARE(rig.PointOf("second"), std::string("0.5 0.5"));
}

void OverlayPointTest::ActivatesWhatItIsJoinedTo()
{
    OverlayRig rig({PointInput("first"), PointInput("second", {{PCID_PrevPoint, "first"}}),
                    PointInput("third", {{PCID_PrevPoint, "second"}}), PointInput("apart")});
    for (PreviewControl* overlay : rig.stage->Overlays())
        overlay->SetInactive(nullptr);
    rig.OverlayOf("first").SetActive(1, nullptr);
    QVERIFY(!rig.OverlayOf("second").IsActive());
    rig.OverlayOf("third").SetActive(1, nullptr);
    QVERIFY(rig.OverlayOf("second").IsActive());
    QVERIFY(!rig.OverlayOf("apart").IsActive());
}

void OverlayPointTest::DragOffsetIsOfOneDrag()
{
    OverlayRig rig({PointInput("pos")});
    PreviewControl& overlay = rig.OverlayOf("pos");
    rig.stage->Press({300, 150}, 0);
    overlay.SetAttrsTagList({{PCD_DragOffsetX, 40.0}, {PCD_DragOffsetY, -20.0}});
    rig.stage->Move({301, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6025 0.4"));
    rig.stage->Release({301, 150}, 0);

    rig.stage->Press({341, 130}, 0);
    rig.InputOf("pos").SetAttrsTagList({{IAS_Help, "where it is"}}); // attributes are read again
    QCOMPARE(AttributeOf(overlay, PCD_DragOffsetX), 0.0);
    rig.stage->Move({341, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6025 0.5"));
}

void OverlayPointTest::HardValues()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}), PointInput("from")});
    rig.SetPoint("from", 1e300, -1e300);
    rig.SetPoint("pos", 1e300, 0.5);
    QVERIFY(rig.Drawn().find("huge") != std::string::npos);
    QVERIFY(!rig.stage->Press({300, 150}, 0));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    rig.SetPoint("pos", nan, nan);
    QVERIFY(rig.Drawn().find("nan") == std::string::npos); // stays where it was
    rig.SetPoint("pos", 0.5, 0.5);
    rig.Drag({{300, 150}, {340, 150}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
}

void OverlayPointTest::ViewOfNoSize()
{
    OverlayRig rig({PointInput("pos")});
    PreviewInfo& view = rig.View();
    view.imageWidth = view.imageHeight = 0.0;
    view.pixelWidth = view.pixelHeight = 0;
    rig.stage->Move({500, 90}, 0);
    QVERIFY(!view.currentControl);
    QVERIFY(!rig.Drawn().empty());
    rig.Drag({{103, 52}, {120, 60}});
    rig.stage->FocusNext(true);
    QVERIFY(!rig.stage->KeyDown(Qt::Key_Left, 0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayPointTest::ToolsThatGo()
{
    OverlayRig rig({PointInput("pos")});
    Operator* other = rig.document->AddTool("ProbeTool");
    Input* from = other->FindInput("pos");
    from->SetValue(Point(0.0, 0.0), 0.0);
    // The input keeps its address when its tool and the history are gone.
    rig.InputOf("pos").SetAttrsTagList({{PCP_PrevPoint, from}});
    const std::string line = "normal lines: (300, 150) (100, 50)\n";
    QCOMPARE(rig.Drawn(), squareAtCentre + line);
    rig.document->RemoveTool(*other);
    rig.document->Undo().Clear();
    QCOMPARE(rig.Drawn(), std::string(squareAtCentre));
    rig.InputOf("pos").SetAttrsTagList({{IAS_Help, "where it is"}});
    QCOMPARE(rig.Drawn(), std::string(squareAtCentre));

    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({340, 150}, 0);
    rig.document->RemoveTool(*rig.tool);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.Drawn(), std::string());
    rig.stage->Move({380, 150}, 0);
    rig.stage->Release({380, 150}, 0);
    QCOMPARE(rig.UndoEntries(), 1); // the drag with the removal that ended it
    rig.document->Undo().Undo();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
}

void OverlayPointTest::TagNames()
{
    const PluginLibrary library;
    TagList tags{{PCD_SetPrevPointX, 0.25}, {PCD_SetPrevPointY, 0.5}, {PCID_PrevPoint, "from"}};
    ScriptVal table = ScriptVal::MakeTable();
    const Registry* record = ClassRegistry::Global().Find("PointControl");
    QVERIFY(record->TagMapper()("GetAttrs", true, table, tags));
    QCOMPARE(table.Get("PCD_SetPrevPointX").ToNumber(), 0.25);
    QCOMPARE(table.Get("PCD_SetPrevPointY").ToNumber(), 0.5);
    QCOMPARE(table.Get("PCID_PrevPoint").ToString(), std::string("from"));
}

QTEST_MAIN(OverlayPointTest)
#include "overlay_point_test.moc"
