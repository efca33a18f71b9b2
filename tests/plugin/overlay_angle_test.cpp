#include "controls/viewer/AngleControl.h"
#include "plugin/OverlayRig.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// An angle about the input "pivot", in the middle of the picture, at the radius "size": its handle
/// is at (400, 150).
std::vector<RigInput> AngleInputs(std::vector<TagPair> more = {})
{
    more.insert(more.begin(), {{IAS_Overlay, "AngleControl"},
                               {IA_OverlayIndex, 0},
                               {ACID_Center, "pivot"},
                               {ACID_Radius, "size"}});
    return {{"angle", CLSID_DataType_Number, more},
            {"pivot", CLSID_DataType_Point, {}},
            {"size", CLSID_DataType_Number, {{IAD_Default, 0.25}}}};
}

/// Of the recorder.
std::string Ring(const char* color, const char* at)
{
    return std::string(color) + " loop at " + at +
           " x 1: (0, -3) (1.5, -2.598) (2.598, -1.5) (3, 0) (2.598, 1.5) (1.5, 2.598) (0, 3) "
           "(-1.5, 2.598) (-2.598, 1.5) (-3, 0) (-2.598, -1.5) (-1.5, -2.598)\n";
}

std::string RingAt(const char* at)
{
    return std::string("normal*0.8 dashed lines: (300, 150) ") + at + '\n' + Ring("normal*0.8", at);
}

double ReadBack(PreviewControl& overlay, u32 tag)
{
    double value = notANumber;
    overlay.CopyAttr(tag, &value);
    return value;
}

void SetNumber(const OverlayRig& rig, const char* id, double value)
{
    rig.InputOf(id).SetValue(*MakeRef<Number>(value), rig.document->CurrentTime());
}

} // namespace

class AngleOverlayTest : public QObject {
    Q_OBJECT
private slots:
    void StepsFromThePresentAngle_data();
    void StepsFromThePresentAngle();
    void HeldBesideTheLever();
    void DrawsTheRing();
    void RunsOnATrueCircle();
    void DrawsTheLever();
    void IsTakenWithinACircle();
    void AltTakesTheLeversTip();
    void NeverWraps();
    void RadiusAndCentre();
    void SecondInputsComeAndGo();
    void IsDrivenByItsCentre();
    void FollowsAnotherAngle();
    void AttributesReadBack();
    void BearsAnyValue();
};

void AngleOverlayTest::StepsFromThePresentAngle_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<double>("angle");
    QTest::addColumn<double>("turned"); // NaN: none
    QTest::newRow("through the X axis")
        << std::cos(1 / degreesOfRadian) << std::sin(1 / degreesOfRadian) << 359.0 << 361.0;
    QTest::newRow("and back") << std::cos(1 / degreesOfRadian) << -std::sin(1 / degreesOfRadian)
                              << 361.0 << 359.0;
    QTest::newRow("left") << -1.0 << 0.0 << 90.0 << 180.0;
    QTest::newRow("below left") << -1.0 << -1.0 << 0.0 << -135.0;
    QTest::newRow("above") << 0.0005 << 0.2 << 0.0 << 90.0;
    QTest::newRow("beside above") << 0.000501 << 0.0 << 10.0 << 0.0;
    QTest::newRow("below") << -0.0005 << -0.2 << 0.0 << -90.0;
    QTest::newRow("on the centre") << 0.0 << 0.0 << 100.0 << 90.0;
    QTest::newRow("far below zero") << 1.0 << 1.0 << -359990.0 << -359955.0;
    QTest::newRow("two turns ahead") << 1.0 << 1.0 << 730.0 << 765.0;
    QTest::newRow("too little") << 1.0 << 0.0 << -0.0099 << notANumber;
    QTest::newRow("no number") << notANumber << 1.0 << 0.0 << notANumber;
    QTest::newRow("endless") << 1.0 << HUGE_VAL << 0.0 << notANumber;
}

void AngleOverlayTest::StepsFromThePresentAngle()
{
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(double, angle);
    QFETCH(double, turned);
    const double result = TurnedAngle({x, y}, angle, 0.0).value_or(notANumber);
    if (std::isnan(turned))
        QVERIFY(std::isnan(result));
    else
        QVERIFY2(std::abs(result - turned) < 1e-9, QByteArray::number(result));
    const double led = TurnedAngle({x, y}, angle - 30.0, 30.0).value_or(notANumber) + 30.0;
    QVERIFY(std::isnan(turned) ? std::isnan(led) : std::abs(led - turned) < 1e-9);
}

void AngleOverlayTest::HeldBesideTheLever()
{
    QCOMPARE(AngleAhead({10.0, 10.0}, 20.0), 25.0);
    QCOMPARE(AngleAhead({-10.0, 10.0}, 20.0), 115.0);
    QCOMPARE(AngleAhead({-10.0, -10.0}, 20.0), 205.0);
    QCOMPARE(AngleAhead({0.0, -10.0}, 20.0), 70.0);
}

void AngleOverlayTest::DrawsTheRing()
{
    OverlayRig rig(AngleInputs());
    rig.View().controlScale = 2.0; // not of the ring
    QCOMPARE(rig.Drawn(), RingAt("(400, 150)"));
    rig.stage->Move({402, 151}, 0);
    QCOMPARE(rig.View().cursorShape, ViewCursor::Turn);
    const std::string line = "normal dashed lines: (300, 150) ";
    QCOMPARE(rig.Drawn(), line + "(400, 150)\n" + Ring("highlight", "(400, 150)"));
    rig.stage->Press({400, 150}, 0);
    rig.stage->Move({300, 200}, 0);
    const std::string dragged = line + "(300, 250)\n" + Ring("highlight", "(300, 250)");
    QCOMPARE(rig.Drawn(), dragged + Ring("ghost", "(400, 150)"));
    rig.View().imageLeft = 0.0; // the ghost stays on the picture
    QVERIFY(rig.Drawn().ends_with(Ring("ghost", "(300, 150)")));
    rig.View().imageLeft = 100.0;
    rig.View().showGhosts = false;
    QCOMPARE(rig.Drawn(), dragged);
    rig.stage->Release({300, 200}, 0);
    rig.stage->Move({300, 250}, 0);
    QCOMPARE(rig.Drawn(), dragged);
    rig.stage->SetShown(false);
    QCOMPARE(rig.Drawn(), std::string());
}

void AngleOverlayTest::RunsOnATrueCircle()
{
    auto inputs = AngleInputs({{IAS_OverlayOffset, "base"}});
    inputs.push_back({"base", CLSID_DataType_Point, {{IAD_DefaultX, 0.6}, {IAD_DefaultY, 0.3}}});
    OverlayRig rig(inputs);       // displaced by 40 pixels to the right and 20 down
    rig.View().pixelAspect = 2.0; // 400 x 200 pixels as wide as 800
    rig.View().imageHeight = 100.0;
    rig.stage->Press({440, 80}, 0);
    rig.stage->Move({390, 130}, 0);
    QCOMPARE(rig.NumberOf("angle"), 45.0);
    rig.stage->Move({340, 230}, 0);
    QVERIFY(rig.Drawn().starts_with("normal dashed lines: (340, 80) (340, 180)\n"));
}

void AngleOverlayTest::DrawsTheLever()
{
    OverlayRig rig(AngleInputs({{AC_HandleStyle, 1}}));
    SetNumber(rig, "angle", 90.0);
    rig.View().controlScale = 2.0;
    const std::string idle = rig.Drawn();
    QVERIFY(idle.starts_with("normal*0.8 lines: (300, 150) (300, 244)\n"
                             "normal*0.8 loop at (300, 250) x 2: (0, -3)"));
    rig.stage->Press({300, 250}, 0);
    rig.stage->Move({400, 150}, 0);
    const std::string dragged = rig.Drawn();
    QVERIFY(dragged.starts_with("highlight lines: (300, 150) (394, 150)\n"
                                "highlight loop at (400, 150) x 2: (0, -3)"));
    QVERIFY(dragged.find("ghost lines: (300, 150) (300, 244)\n"
                         "ghost loop at (300, 250) x 2: (0, -3)") != std::string::npos);
}

void AngleOverlayTest::IsTakenWithinACircle()
{
    OverlayRig rig(AngleInputs());
    struct {
        MxPoint from; // the handle
        double scale;
        bool taken;
    } const places[] = {{{6, 0}, 1.0, true},   {{4, 4}, 1.0, true},  {{5, 5}, 1.0, false},
                        {{0, -7}, 1.0, false}, {{0, 7}, 1.99, true}, {{0, 8}, 1.99, false},
                        {{0, 8}, 2.0, true},   {{9, 0}, 2.0, false}};
    for (const auto& [from, scale, taken] : places) {
        rig.View().controlScale = scale;
        const MxPoint at(400 + from.x, 150 + from.y);
        const QByteArray place = QByteArray::number(from.x) + ", " + QByteArray::number(from.y);
        rig.stage->Leave();
        rig.stage->Move(at, 0);
        QVERIFY2((rig.View().currentControl != nullptr) == taken, place);
        QVERIFY2(rig.stage->Press(at, 0) == taken, place);
        rig.stage->Release(at, 0);
    }
    QCOMPARE(rig.UndoEntries(), 0);
}

void AngleOverlayTest::AltTakesTheLeversTip()
{
    for (const int style : {0, 1}) {
        OverlayRig rig(AngleInputs({{AC_HandleStyle, style}}));
        QCOMPARE(rig.stage->Press({352, 150}, 0), style != 0);
        rig.stage->EndDrag();
        rig.stage->Move({352, 150}, KeyAlt);
        QVERIFY(rig.View().currentControl);
        QVERIFY(rig.stage->Press({352, 150}, KeyAlt));
        rig.stage->Move({302, 200}, KeyAlt);
        QCOMPARE(rig.NumberOf("angle"), 90.0);
        // The ghost: where the pointer was, less the lever.
        const char* ghost = style == 0 ? "ghost loop at (302, 150)" : "ghost lines: (302, 150)";
        QVERIFY(rig.Drawn().find(ghost) != std::string::npos);
    }
    OverlayRig rig(AngleInputs({{AC_HandleStyle, 1}}));
    rig.stage->Press({350, 152}, 0); // ahead by some degrees, which are taken off again
    rig.stage->Move({350, 153}, 0);
    rig.stage->Move({300, 202}, 0);
    QVERIFY(std::abs(rig.NumberOf("angle") - 90.0 + AngleAhead({50.0, 2.0}, 0.0)) < 1e-9);
}

void AngleOverlayTest::NeverWraps()
{
    OverlayRig rig(AngleInputs());
    rig.stage->Press({402, 149}, 0);
    for (const int turn : {1, 2}) {
        for (const MxPoint& to : {MxPoint(302, 249), {202, 149}, {302, 49}, {402, 149}})
            rig.stage->Move(to, 0);
        QCOMPARE(rig.NumberOf("angle"), 360.0 * turn);
    }
    rig.stage->Release({402, 149}, 0);
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Adjust angle"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.NumberOf("angle"), 0.0);
    rig.Drag({{400, 150}, {300, 50}, {200, 150}});
    QCOMPARE(rig.NumberOf("angle"), -180.0);
}

void AngleOverlayTest::RadiusAndCentre()
{
    auto inputs = AngleInputs(
        {{ACD_RadiusScale, 0.5}, {ACD_MinRadius, 0.1}, {ACID_CenterX, "x"}, {ACID_CenterZ, "z"}});
    inputs.push_back({"x", CLSID_DataType_Number, {{IAD_Default, 0.5}}});
    inputs.push_back({"z", CLSID_DataType_Number, {}});
    OverlayRig rig(inputs);
    QCOMPARE(rig.Drawn(), RingAt("(350, 150)"));
    SetNumber(rig, "size", 0.1);
    QCOMPARE(rig.Drawn(), RingAt("(340, 150)"));
    rig.OverlayOf("angle").SetAttrsTagList(TagList{{ACD_MinRadius, 0.2}});
    QCOMPARE(rig.Drawn(), RingAt("(380, 150)"));
    SetNumber(rig, "x", 0.25);
    rig.SetPoint("pivot", 0.75, 0.75); // its X is ruled by the input for that
    QVERIFY(rig.Drawn().starts_with("normal*0.8 dashed lines: (200, 200) (280, 200)\n"));
    rig.TakeRedraws();
    SetNumber(rig, "z", 4.0);
    SetNumber(rig, "x", 0.250009);
    SetNumber(rig, "angle", 0.000009);
    QCOMPARE(rig.TakeRedraws(), 0);
}

void AngleOverlayTest::SecondInputsComeAndGo()
{
    OverlayRig rig(AngleInputs());
    PreviewControl& overlay = rig.OverlayOf("angle");
    Operator* other = rig.document->AddTool("ProbeTool");
    other->FindInput("pivot")->SetValue(Point(0.25, 0.5), 0.0);
    const TagList toOther{{ACP_Center, static_cast<const void*>(other->FindInput("pivot"))}};
    overlay.SetAttrsTagList(toOther);
    QCOMPARE(rig.Drawn(), RingAt("(400, 150)")); // the id has precedence
    overlay.SetAttrsTagList(TagList{{ACID_Center, "nothing"}});
    rig.SetPoint("pivot", 0.75, 0.5);
    QCOMPARE(rig.Drawn(), RingAt("(400, 150)")); // no centre any more: it stays
    QVERIFY(!overlay.RemoveInput(&rig.InputOf("pivot"), nullptr));
    QVERIFY(overlay.RemoveInput(&rig.InputOf("size"), nullptr));
    rig.document->RemoveTool(*other);
    rig.document->Undo().Clear();
    QCOMPARE(rig.Drawn(), RingAt("(400, 150)"));

    OverlayRig plain(
        {{"angle", CLSID_DataType_Number, {{IAS_Overlay, "AngleControl"}, {IA_OverlayIndex, 0}}}});
    QCOMPARE(plain.Drawn(), RingAt("(340, 150)"));
}

void AngleOverlayTest::IsDrivenByItsCentre()
{
    auto inputs = AngleInputs();
    inputs[1].attributes = {{IAS_Overlay, "CrosshairControl"}, {IA_OverlayIndex, 0}};
    OverlayRig rig(inputs);
    rig.stage->Press({300, 150}, 0);
    QCOMPARE(rig.OverlayOf("angle").DragState(), DragType::Driven);
    rig.stage->Move({340, 190}, 0);
    QCOMPARE(rig.NumberOf("angle"), 0.0);
    QVERIFY(rig.Drawn().find("dashed lines: (340, 190) (440, 190)\n" +
                             Ring("highlight*0.8", "(440, 190)")) != std::string::npos);
    rig.stage->Release({340, 190}, 0);
    QCOMPARE(rig.OverlayOf("angle").DragState(), DragType::None);
}

void AngleOverlayTest::FollowsAnotherAngle()
{
    auto inputs = AngleInputs();
    inputs.push_back({"lead",
                      CLSID_DataType_Number,
                      {{IAS_Overlay, "AngleControl"}, {IA_OverlayIndex, 0}, {ACD_MinRadius, 0.1}}});
    inputs[0].attributes.push_back({PC_Follow, true});
    OverlayRig rig(inputs);
    SetNumber(rig, "angle", -20.0);
    SetNumber(rig, "lead", 90.0);
    rig.SetPoint("pivot", 0.9, 0.1); // another centre than the other's
    rig.document->Undo().Clear();
    rig.stage->Press({300, 190}, 0);
    rig.stage->Move({260, 190}, 0);
    QCOMPARE(rig.NumberOf("lead"), 135.0);
    QCOMPARE(rig.NumberOf("angle"), 25.0);
    rig.stage->Release({260, 190}, 0);
    QCOMPARE(rig.UndoEntries(), 1);
    rig.document->Undo().Undo();
    QCOMPARE(rig.NumberOf("angle"), -20.0);
    QCOMPARE(ReadBack(rig.OverlayOf("angle"), ACD_FollowAngle), 110.0);
}

void AngleOverlayTest::AttributesReadBack()
{
    OverlayRig rig(AngleInputs());
    PreviewControl& overlay = rig.OverlayOf("angle");
    overlay.SetAttrsTagList(TagList{{PCD_DragOffsetX, 9.0}});
    overlay.SetAttrsTagList(&rig.InputOf("angle"), TagList{{ACD_FollowX, 0.125}});
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetX), 9.0);
    QCOMPARE(ReadBack(overlay, ACD_FollowX), 0.125);
    rig.stage->Press({403, 148}, 0);
    rig.InputOf("angle").SetAttrsTagList(TagList{{ACD_MinRadius, 0.125}});
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetX), -3.0); // not as it was set once
    QCOMPARE(ReadBack(overlay, PCD_DragOffsetY), 2.0);
    rig.stage->Move({303, 248}, 0);
    QCOMPARE(ReadBack(overlay, ACD_CurrentAngle), 90.0);
    QCOMPARE(overlay.GetAttrS(ACID_Radius), "size");
}

void AngleOverlayTest::BearsAnyValue()
{
    OverlayRig rig(AngleInputs());
    for (const double value : {notANumber, 1e300, HUGE_VAL, -1e300}) {
        SetNumber(rig, "angle", value);
        rig.Drag({{400, 150}, {300, 200}, {250, 100}});
        SetNumber(rig, "size", value);
        rig.SetPoint("pivot", value, value);
        rig.Drag({{400, 150}, {300, 200}, {250, 100}});
        QVERIFY(!rig.Drawn().empty());
        QCOMPARE(rig.document->Undo().Depth(), 0);
    }
    SetNumber(rig, "angle", 0.0);
    SetNumber(rig, "size", 0.25);
    rig.SetPoint("pivot", 0.5, 0.5);
    rig.stage->Leave();
    QVERIFY(rig.Drawn().find(" dashed lines: (300, 150) (400, 150)\n") != std::string::npos);

    rig.stage->Press({400, 150}, 0);
    rig.View().imageWidth = rig.View().imageHeight = 0.0;
    rig.View().pixelWidth = rig.View().pixelHeight = 0;
    rig.stage->Move({300, 200}, 0);
    rig.stage->Release({300, 200}, 0);
    rig.Drag({{100, 50}, {140, 90}});
    QCOMPARE(rig.NumberOf("angle"), 0.0);
}

QTEST_MAIN(AngleOverlayTest)
#include "overlay_angle_test.moc"
