// What the polyline overlay draws, as the painter is told.

#include "plugin/PolyRig.h"

#include <QtTest>

using namespace Marlox;

class OverlayPolylineDrawTest : public QObject {
    Q_OBJECT
private slots:
    void ClicksAreForeseen();
    void SplinesAreForeseen();
    void MarksLieAboveLines();
    void TheBoxGoesAroundThePoints();
    void PolygonsAreLinkedWhereEdited();
    void PivotAndReachedPlaceAreMarked();
    void LockedPointsAreCrossedOutAboveAll();
};

namespace {

bool Has(const PolyRig& rig, const char* text)
{
    return rig.Drawn().find(text) != std::string::npos;
}

} // namespace

void OverlayPolylineDrawTest::ClicksAreForeseen()
{
    PolyRig rig;
    rig.stage->Move({250, 150}, 0);
    QVERIFY(!Has(rig, "dashed")); // there is nothing to go on from
    rig.Click({200, 100});
    rig.stage->Move({310, 150}, 0);
    rig.TakeRedraws();
    rig.stage->Move({300, 150}, 0);
    QCOMPARE(rig.TakeRedraws(), 1);
    QVERIFY(Has(rig, "dashed strip: (200, 100) (300, 150)"));
    rig.stage->Leave();
    QVERIFY(!Has(rig, "dashed"));
    rig.Click({300, 100});
    rig.Click({300, 200});
    rig.stage->Move({200, 101}, 0); // would close it
    QVERIFY(Has(rig, "dashed strip: (300, 200) (200, 100)"));
    rig.stage->Move({300, 101}, 0); // would move that point
    QVERIFY(!Has(rig, "dashed"));
    rig.stage->Press({400, 150}, 0);
    rig.stage->Move({420, 150}, 0); // the curve itself
    QVERIFY(!Has(rig, "dashed"));
    rig.stage->Release({420, 150}, 0);
    rig.SetMode(ModifyOnly);
    rig.stage->Move({440, 150}, 0);
    QVERIFY(!Has(rig, "dashed"));
}

/// What would be drawn is what is drawn then.
void OverlayPolylineDrawTest::SplinesAreForeseen()
{
    PolyRig rig("BSplinePolyline");
    for (int i = 0; i < 12; ++i)
        rig.Click({120 + 30 * i, i % 2 ? 100 : 200});
    rig.stage->Move({500, 60}, 0);
    const auto strip = [&rig](const std::string& after) { // its last places
        const std::string drawn = rig.Drawn();
        const std::size_t line = drawn.find(after);
        const std::string text = drawn.substr(line, drawn.find('\n', line) - line);
        return text.substr(text.size() > 120 ? text.size() - 120 : 0);
    };
    const std::string foreseen = strip(" 217) dashed strip");
    QVERIFY(foreseen.ends_with("(500, 60)"));
    rig.Click({500, 60});
    rig.stage->Leave();
    QCOMPARE(strip("normal strip"), foreseen);
}

void OverlayPolylineDrawTest::MarksLieAboveLines()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetSquare("Polyline2", 0.4);
    rig.SetMode(ModifyOnly);
    rig.Drag({{200, 100}, {230, 120}}, KeyAlt); // with handles
    rig.Key(Qt::Key_B);
    rig.stage->Move({400, 100}, 0);
    const std::string drawn = rig.Drawn();
    const std::size_t marks = drawn.find(" at (");
    QVERIFY(marks != std::string::npos);
    for (const char* line : {" strip: (", " lines: (", " loop: ("})
        QVERIFY2(drawn.find(line, marks) == std::string::npos, drawn.c_str());
}

void OverlayPolylineDrawTest::TheBoxGoesAroundThePoints()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_B);
    QVERIFY(Has(rig, " loop: (190, 90) (410, 90) (410, 210) (190, 210)"));
    rig.View().controlScale = 2.0;
    QVERIFY(Has(rig, " loop: (180, 80) (420, 80) (420, 220) (180, 220)"));
    rig.View().controlScale = 1.0;
    rig.stage->Press({300, 232}, 0); // the knob
    rig.stage->Move({382, 150}, 0);  // a quarter clockwise: the box turns along
    QVERIFY2(Has(rig, " loop: (240, 260) (240, 40) (360, 40) (360, 260)"), rig.Drawn().c_str());
    rig.stage->Release({382, 150}, 0); // and stands upright about where they are then
    QVERIFY(Has(rig, " loop: (240, 40) (360, 40) (360, 260) (240, 260)"));
}

void OverlayPolylineDrawTest::PolygonsAreLinkedWhereEdited()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetSquare("Polyline2", 0.4);
    rig.SetMode(ModifyOnly);
    QVERIFY(!Has(rig, " lines: ("));
    rig.stage->Move({400, 200}, 0);
    QVERIFY(Has(rig, " lines: (400, 200) (460, 230)"));
}

void OverlayPolylineDrawTest::PivotAndReachedPlaceAreMarked()
{
    constexpr u32 PLCID_Center = 0x80058000;
    constexpr u32 PLCID_Size = 0x80058002;
    constexpr u32 PLCID_Displacement = 0x80058003;
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Poly().SetAttrsTagList(TagList({{PLCID_Displacement, "Size"}}));
    rig.InputOf("Size").SetValue(Number(0.25), TimeNone); // of 600 pixels
    QVERIFY2(Has(rig, "pathkey fill at (350, 100) x 1: (7, 0)"), rig.Drawn().c_str());
    rig.InputOf("Size").SetValue(Number(1.0), TimeNone);
    rig.Poly().SetAttrsTagList(TagList({{PLCID_Center, "Center"}, {PLCID_Size, "Size"}}));
    rig.SetPoint("Center", 0.6, 0.4);
    QVERIFY(Has(rig, "normal lines at (340, 130) x 1"));
}

void OverlayPolylineDrawTest::LockedPointsAreCrossedOutAboveAll()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Click({200, 100});
    QVERIFY(RunEntry(rig, "Lock Points"));
    rig.stage->Move({200, 101}, 0); // makes it grow
    const std::string drawn = rig.Drawn();
    const std::size_t cross = drawn.find("lines at (200, 100) x 1: (-5, -5)");
    QVERIFY2(cross != std::string::npos, drawn.c_str());
    QVERIFY(drawn.find("fill at (200, 100) x 1.5") < cross);
    QCOMPARE(drawn.find("fill at (200, 100)", cross), std::string::npos);
}

QTEST_MAIN(OverlayPolylineDrawTest)
#include "overlay_polyline_draw_test.moc"
