#include "controls/viewer/CrosshairControl.h"
#include "plugin/OverlayRig.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

RigInput Crosshair(const char* id, std::vector<TagPair> more = {})
{
    more.insert(more.begin(), {{IAS_Overlay, "CrosshairControl"}, {IA_OverlayIndex, 0}});
    return {id, CLSID_DataType_Point, more};
}

double ReadBack(PreviewControl& overlay, u32 tag)
{
    double value = std::numeric_limits<double>::quiet_NaN();
    overlay.CopyAttr(tag, &value);
    return value;
}

/// What is drawn, with the colours' and shapes' words alone.
std::string Kinds(const std::string& drawn)
{
    std::string kinds;
    for (std::size_t at = 0; at < drawn.size(); at = drawn.find('\n', at) + 1)
        kinds += drawn.substr(at, drawn.find(" at ", at) - at) + "; ";
    return kinds;
}

/// Removes a tool as soon as one of its values changes.
class Remover : public Object {
public:
    explicit Remover(MarloxDoc& document) : document_(document) {}
    bool HandleEvent(Object* sender, const MxID&, TagList&) override
    {
        return document_.RemoveTool(dynamic_cast<Input&>(*sender).Owner());
    }

private:
    MarloxDoc& document_;
};

constexpr char idleCross[] = "normal*0.8 loop at (300, 150) x 1: (-3, 3) (3, 3) (3, -3) (-3, -3)\n"
                             "normal*0.8 lines at (300, 150) x 1: (3, 0) (16, 0)\n"
                             "normal*0.8 fill at (300, 150) x 1: (16, 3) (23, 0) (16, -3)\n"
                             "normal*0.8 lines at (300, 150) x 1: (0, 3) (0, 16)\n"
                             "normal*0.8 fill at (300, 150) x 1: (-3, 16) (0, 23) (3, 16)\n";
constexpr char bothOrigin[] = "origin fill at (300, 150) x 1: (-2, -2) (2, -2) (2, 2) (-2, 2)\n"
                              "origin lines at (300, 150) x 1: (2, 0) (17, 0)\n"
                              "origin fill at (300, 150) x 1: (15, -1) (17, -1) (17, 1) (15, 1)\n"
                              "origin lines at (300, 150) x 1: (0, 15) (0, 0)\n"
                              "origin fill at (300, 150) x 1: (-1, 15) (1, 15) (1, 17) (-1, 17)\n";

} // namespace

class CrosshairOverlayTest : public QObject {
    Q_OBJECT
private slots:
    void DrawsTheNormalCross();
    void DrawsTheOtherStyles_data();
    void DrawsTheOtherStyles();
    void FadesWhenThePointerLeaves();
    void IsTakenWhere();
    void StaysOnItsAxis();
    void DragIsOneEntry();
    void SmallChangesAreNone();
    void KeysNudge();
    void BaseOffsetDisplaces();
    void AttributesReadBack();
    void FollowsAnotherOverlay();
    void BearsAnyValue();
    void BearsTheLossOfItsTool();
};

void CrosshairOverlayTest::DrawsTheNormalCross()
{
    OverlayRig rig({Crosshair("pos")});
    QCOMPARE(rig.Drawn(), std::string(idleCross));
    rig.stage->Move({320, 150}, 0);
    QCOMPARE(rig.View().cursorShape, ViewCursor::MoveX);
    QCOMPARE(Kinds(rig.Drawn()), std::string("highlight loop; highlight lines; highlight fill; "
                                             "normal lines; normal fill; "));
    rig.TakeRedraws();
    rig.stage->Move({300, 170}, 0); // still on the cross, but on the other arm
    QVERIFY(rig.TakeRedraws() > 0);
    QCOMPARE(rig.View().cursorShape, ViewCursor::MoveY);
    QCOMPARE(Kinds(rig.Drawn()), std::string("highlight loop; normal lines; normal fill; "
                                             "highlight lines; highlight fill; "));

    rig.stage->Press({300, 170}, 0);
    rig.stage->Move({310, 200}, 0);
    QCOMPARE(rig.Drawn(),
             std::string("highlight loop at (300, 180) x 1: (-3, 3) (3, 3) (3, -3) (-3, -3)\n"
                         "highlight lines at (300, 180) x 1: (0, 3) (0, 16)\n"
                         "highlight fill at (300, 180) x 1: (-3, 16) (0, 23) (3, 16)\n"
                         "origin fill at (300, 150) x 1: (-2, -2) (2, -2) (2, 2) (-2, 2)\n"
                         "origin lines at (300, 150) x 1: (0, 15) (0, 0)\n"
                         "origin fill at (300, 150) x 1: (-1, 15) (1, 15) (1, 17) (-1, 17)\n"));
    rig.stage->CancelDrag();

    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({340, 170}, 0);
    QCOMPARE(rig.Drawn(),
             std::string("highlight loop at (340, 170) x 1: (-3, 3) (3, 3) (3, -3) (-3, -3)\n"
                         "highlight lines at (340, 170) x 1: (3, 0) (16, 0)\n"
                         "highlight lines at (340, 170) x 1: (0, 3) (0, 16)\n") +
                 bothOrigin);
    rig.stage->CancelDrag();
    rig.stage->SetShown(false);
    QCOMPARE(rig.Drawn(), std::string());
}

void CrosshairOverlayTest::DrawsTheOtherStyles_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("shape"); // % for the colour
    QTest::newRow("diagonal") << 1
                              << "% lines at (300, 150) x 2: (-11, 11) (11, -11)\n"
                                 "% lines at (300, 150) x 2: (-11, -11) (11, 11)\n";
    QTest::newRow("rectangle") << 2
                               << "% loop at (300, 150) x 2: (-2, 2) (2, 2) (2, -2) (-2, -2)\n";
    QTest::newRow("circle") << 3
                            << "% loop at (300, 150) x 2: (0, 3) (1, 2) (2, 1) (3, 0) (2, -1) "
                               "(1, -2) (0, -3) (-1, -2) (-2, -1) (-3, 0) (-2, 1) (-1, 2)\n";
}

void CrosshairOverlayTest::DrawsTheOtherStyles()
{
    QFETCH(int, style);
    QFETCH(QString, shape);
    OverlayRig rig({Crosshair("pos", {{CHC_Style, style}})});
    rig.View().controlScale = 2.0;
    const auto in = [&shape](const char* color) {
        return QString(shape).replace('%', color).toStdString();
    };
    QCOMPARE(rig.Drawn(), in("normal*0.8"));
    rig.stage->Move({303, 148}, 0);
    QCOMPARE(rig.Drawn(), in("highlight"));
    rig.stage->Press({303, 148}, 0);
    QCOMPARE(rig.Drawn(), in("normal"));
    rig.OverlayOf("pos").SetAttrsTagList(TagList{{PC_HideWhileDragging, true}});
    QCOMPARE(rig.Drawn(), std::string());
}

void CrosshairOverlayTest::FadesWhenThePointerLeaves()
{
    OverlayRig rig({Crosshair("pos", {{CHC_Style, 2}})});
    const auto color = [&rig] { return Kinds(rig.Drawn()); };
    rig.stage->Move({300, 150}, 0);
    QCOMPARE(color(), std::string("highlight loop; "));
    QVERIFY(!rig.View().isFading);
    rig.stage->Move({400, 200}, 0);
    QCOMPARE(color(), std::string("normal*0.98 loop; "));
    QVERIFY(rig.View().isFading);
    QTRY_VERIFY(rig.Drawn().empty() || !rig.View().isFading); // the stage steps on by itself
    QCOMPARE(color(), std::string("normal*0.8 loop; "));
}

void CrosshairOverlayTest::IsTakenWhere()
{
    struct {
        MxPoint from; // the middle
        int style;
        double scale;
        QByteArray axes;
    } const places[] = {{{5, -5}, 0, 1.0, "xy"}, {{6, -5}, 0, 1.0, "x"},  {{22, 5}, 0, 1.0, "x"},
                        {{23, 0}, 0, 1.0, ""},   {{22, 6}, 0, 1.0, ""},   {{-6, 0}, 0, 1.0, ""},
                        {{5, 6}, 0, 1.0, "y"},   {{-5, 22}, 0, 1.0, "y"}, {{0, 23}, 0, 1.0, ""},
                        {{0, -6}, 0, 1.0, ""},   {{45, 0}, 0, 2.0, "x"},  {{0, 46}, 0, 2.0, ""},
                        {{-5, 5}, 1, 2.0, "xy"}, {{6, 0}, 2, 2.0, ""},    {{0, 12}, 3, 2.0, ""}};
    for (const auto& [from, style, scale, axes] : places) {
        OverlayRig rig({Crosshair("pos", {{CHC_Style, style}})});
        rig.View().controlScale = scale;
        const MxPoint at(300 + from.x, 150 + from.y);
        const QByteArray place = QByteArray::number(from.x) + ", " + QByteArray::number(from.y);
        rig.stage->Move(at, 0);
        QVERIFY2((rig.View().currentControl != nullptr) == !axes.isEmpty(), place);
        rig.Drag({at, {at.x + 40, at.y + 20}});
        const std::string x = axes.contains('x') ? "0.6" : "0.5";
        QVERIFY2(rig.PointOf("pos") == x + (axes.contains('y') ? " 0.6" : " 0.5"), place);
    }
}

void CrosshairOverlayTest::StaysOnItsAxis()
{
    OverlayRig rig({Crosshair("pos")});
    rig.stage->Press({320, 152}, 0);
    rig.stage->Move({360, 190}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
    // The cursor: the position and, once more, the offset it was taken with.
    QCOMPARE(rig.View().cursorX, 0.55);
    QCOMPARE(rig.View().cursorY, 0.49);
    rig.stage->Move({360, 40}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
    rig.stage->Release({360, 150}, 0); // the cursor is the pointer again, on the arm
    QCOMPARE(rig.View().cursorX, 0.65);
    QCOMPARE(rig.View().cursorShape, ViewCursor::MoveX);
}

void CrosshairOverlayTest::DragIsOneEntry()
{
    OverlayRig rig({Crosshair("pos", {{IAS_Name, "Centre"}})});
    rig.Drag({{320, 150}, {320, 190}, {320, 90}}); // nothing along the axis
    QCOMPARE(rig.UndoEntries(), 0);
    rig.Drag({{302, 147}, {322, 147}, {342, 167}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.6"));
    QCOMPARE(rig.UndoEntries(), 1);
    rig.document->Undo().Undo();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
}

void CrosshairOverlayTest::SmallChangesAreNone()
{
    OverlayRig rig({Crosshair("pos")});
    rig.TakeRedraws();
    rig.SetPoint("pos", 0.5, 0.500009);
    QCOMPARE(rig.TakeRedraws(), 0);
    rig.SetPoint("pos", 0.5, 0.50002);
    QCOMPARE(rig.TakeRedraws(), 1);
    rig.SetPoint("pos", 0.5, 0.5);
    rig.document->Undo().Clear();
    rig.View().imageWidth = 4e6; // a pixel is 2.5e-7, four hundred make 1e-4
    rig.View().imageLeft = -2e6 + 300;
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({330, 150}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.stage->Move({700, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.5001 0.5"));
}

void CrosshairOverlayTest::KeysNudge()
{
    OverlayRig rig({Crosshair("pos")});
    rig.stage->SetFocus(&rig.OverlayOf("pos"));
    QVERIFY(rig.stage->KeyDown(Qt::Key_Right, KeyShift));
    QVERIFY(rig.stage->KeyDown(Qt::Key_Up, 0));
    QVERIFY(!rig.stage->KeyDown(Qt::Key_X, 0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.525 0.5025"));
    rig.stage->KeyUpAll();
    QCOMPARE(rig.UndoEntries(), 1);
}

void CrosshairOverlayTest::BaseOffsetDisplaces()
{
    OverlayRig rig({Crosshair("pos", {{IAS_OverlayOffset, "base"}, {CHC_Style, 2}}),
                    {"base", CLSID_DataType_Point, {{IAD_DefaultX, 0.6}, {IAD_DefaultY, 0.4}}}});
    const std::string rest = " x 1: (-2, 2) (2, 2) (2, -2) (-2, -2)\n";
    QCOMPARE(rig.Drawn(), "normal*0.8 loop at (340, 130)" + rest);
    rig.TakeRedraws();
    rig.SetPoint("base", 0.7, 0.4);
    QVERIFY(rig.TakeRedraws() > 0);
    QCOMPARE(rig.Drawn(), "normal*0.8 loop at (380, 130)" + rest);
    rig.stage->Press({382, 130}, 0);
    rig.stage->Move({422, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.6"));
    QCOMPARE(rig.View().cursorX, 0.6 - 2 / 400.0 - 0.2);
    QCOMPARE(rig.View().cursorY, 0.6 + 0.1);
}

void CrosshairOverlayTest::AttributesReadBack()
{
    OverlayRig rig({Crosshair("pos", {{CHC_Style, 2}})});
    PreviewControl& overlay = rig.OverlayOf("pos");
    rig.SetPoint("pos", 0.25, 0.75);
    QCOMPARE(ReadBack(overlay, CHCD_CurrentX), 0.5); // as drawn
    rig.Drawn();
    QCOMPARE(ReadBack(overlay, CHCD_CurrentX), 0.25);
    QCOMPARE(ReadBack(overlay, CHCD_CurrentY), 0.75);
    overlay.SetAttrsTagList(TagList{{PCD_DragOffsetX, 9.0}, {CHCD_FollowX, 0.125}});
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetX), 9.0);
    overlay.SetAttrsTagList(&rig.InputOf("pos"), TagList{{CHCD_FollowX, 0.25}});
    QCOMPARE(ReadBack(overlay, CHCD_FollowX), 0.25);
    rig.stage->Press({202, 203}, 0);
    rig.InputOf("pos").SetAttrsTagList(TagList{{CHC_Style, 1}});
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetX), -2.0); // not as it was set once
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetY), -3.0);
    QCOMPARE(Kinds(rig.Drawn()), std::string("normal lines; normal lines; "));
    overlay.SetAttrsTagList(TagList{{CHC_Style, 99}});
    QCOMPARE(Kinds(rig.Drawn()), std::string("normal loop; "));
}

void CrosshairOverlayTest::FollowsAnotherOverlay()
{
    OverlayRig rig({Crosshair("lead"), Crosshair("pos", {{IAD_DefaultX, 0.2}, {PC_Follow, true}})});
    rig.stage->Press({320, 150}, 0); // along X
    rig.stage->Move({340, 150}, 0);
    rig.stage->Move({360, 200}, 0);
    QCOMPARE(rig.OverlayOf("pos").DragState(), DragType::Driven);
    QCOMPARE(rig.PointOf("lead"), std::string("0.6 0.5"));
    QCOMPARE(rig.PointOf("pos"), std::string("0.3 0.5"));
    rig.stage->CancelDrag();
    QCOMPARE(rig.PointOf("lead") + ", " + rig.PointOf("pos"), std::string("0.5 0.5, 0.2 0.5"));
    rig.Drag({{300, 150}, {340, 170}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.3 0.6"));
    QCOMPARE(rig.OverlayOf("pos").DragState(), DragType::None);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.UndoEntries(), 1);
    rig.document->Undo().Undo();
    QCOMPARE(rig.PointOf("lead") + ", " + rig.PointOf("pos"), std::string("0.5 0.5, 0.2 0.5"));
}

void CrosshairOverlayTest::BearsAnyValue()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    OverlayRig rig({Crosshair("pos", {{CHC_Style, 2}})});
    const std::string shown = rig.Drawn();
    rig.SetPoint("pos", nan, 0.75);
    QCOMPARE(rig.Drawn(), shown); // the last place that was one
    rig.SetPoint("pos", 1e300, -1e300);
    QVERIFY(rig.Drawn().find("(huge, -huge)") != std::string::npos);
    QVERIFY(!rig.stage->Press({300, 150}, 0));
    rig.SetPoint("pos", 0.5, 0.5);
    QCOMPARE(rig.Drawn(), shown);

    rig.View().imageWidth = rig.View().imageHeight = 0.0;
    rig.View().pixelWidth = rig.View().pixelHeight = 0;
    rig.document->Undo().Clear();
    rig.stage->Move({101, 51}, 0);
    rig.stage->SetFocus(&rig.OverlayOf("pos"));
    rig.Drag({{100, 50}, {140, 90}});
    rig.stage->KeyDown(Qt::Key_Right, 0);
    rig.stage->KeyUpAll();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
    QCOMPARE(rig.UndoEntries(), 0);
}

void CrosshairOverlayTest::BearsTheLossOfItsTool()
{
    OverlayRig rig({Crosshair("lead"), Crosshair("pos", {{PC_Follow, true}})});
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({320, 150}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 2);
    const auto remover = MakeRef<Remover>(*rig.document);
    rig.InputOf("lead").AddNotify(remover.Get(), "ValueChanged");
    rig.stage->Move({340, 150}, 0);
    QVERIFY(rig.stage->Overlays().empty());
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.stage->Release({340, 150}, 0);
    rig.document->Undo().Clear(); // and the tool is no more
    QCOMPARE(rig.Drawn(), std::string());
}

QTEST_MAIN(CrosshairOverlayTest)
#include "overlay_crosshair_test.moc"
