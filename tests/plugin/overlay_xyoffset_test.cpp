#include "plugin/OverlayRig.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr u32 XYOCP_AxisInput = 0x60058000;

/// A tool with an offset "x", "y" and a point "axis" that has an overlay of its own.
struct Rig : OverlayRig {
    Rig(double x, double y)
        : OverlayRig({{"x", "Number", {{IAS_Overlay, "XYOffsetControl"}, {IA_OverlayIndex, 0}}},
                      {"y", "Number", {{IAS_OverlayWith, "x"}, {IA_OverlayIndex, 1}}},
                      {"axis", "Point", {{IAS_Overlay, "PointControl"}, {IA_OverlayIndex, 0}}}})
    {
        InputOf("x").SetAttrsTagList({{XYOCP_AxisInput, &InputOf("axis")}});
        Set(x, y);
    }

    void Set(double x, double y) const
    {
        InputOf("x").SetValue(Number(x), document->CurrentTime());
        InputOf("y").SetValue(Number(y), document->CurrentTime());
        document->Undo().Clear();
    }
    std::pair<double, double> Get() const { return {NumberOf("x"), NumberOf("y")}; }
    PreviewControl& Offset() const { return OverlayOf("x"); }
    /// What the offset alone draws.
    std::string DrawnByOffset()
    {
        OverlayRecorder recorder;
        View().painter = &recorder;
        Offset().GLDrawControls(&View(), nullptr);
        View().painter = nullptr;
        return recorder.Text();
    }
    bool LineRuns(const char* fromTo)
    {
        return DrawnByOffset().starts_with(std::string("normal dashed lines: ") + fromTo + '\n');
    }
};

std::pair<double, double> Single(float x, float y)
{
    return {x, y};
}

} // namespace

class OverlayXYOffsetTest : public QObject {
    Q_OBJECT

private slots:
    void Draws();
    void TakenByWholePixels();
    void DragIsOneUndoEntry();
    void OnlyRealChangesCount();
    void OriginIsDragged();
    void OneOfTheTwoByExpression();
    void DragOffset();
    void BadValues();
    void ToolsThatGo();
};

void OverlayXYOffsetTest::Draws()
{
    Rig rig(0.25, -0.25);
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    const std::string drawn = "normal dashed lines: (400, 100) (300, 150)\n"
                              "normal lines: (395, 105) (405, 95)\n"
                              "normal lines: (395, 95) (405, 105)\n";
    rig.View().controlScale = 2.0; // is not for these
    QCOMPARE(rig.DrawnByOffset(), drawn);
    rig.View().drawMode = DrawDragging;
    QCOMPARE(rig.DrawnByOffset(), drawn);
    rig.View().drawMode = DrawHidden;
    QCOMPARE(rig.DrawnByOffset(), std::string());
    rig.View().drawMode = DrawIdle;
    rig.SetPoint("axis", 0.0, 1.0);
    QVERIFY(rig.LineRuns("(200, 200) (100, 250)"));
}

void OverlayXYOffsetTest::TakenByWholePixels()
{
    Rig rig(0.25225, 0.0); // at 400.9
    struct {
        MxPoint at;
        bool taken;
    } const places[] = {{{395, 155}, true},
                        {{394, 150}, false},
                        {{406, 150}, true},
                        {{407, 150}, false},
                        {{400, 156}, false}};
    for (const auto& [at, taken] : places) {
        const QByteArray where = QByteArray::number(at.x) + ' ' + QByteArray::number(at.y);
        rig.stage->Move(at, 0);
        QVERIFY2(rig.View().currentControl == (taken ? &rig.Offset() : nullptr), where);
        QVERIFY2(rig.stage->Press(at, 0) == taken, where);
        rig.stage->Release(at, 0);
    }
    QCOMPARE(rig.UndoEntries(), 0);
    // The way from the cursor to the mark loses its fraction, and the offset with it.
    rig.Drag({{398, 150}, {398, 151}});
    QVERIFY(rig.Get() == Single(0.25f, 0.005f));
}

void OverlayXYOffsetTest::DragIsOneUndoEntry()
{
    Rig rig(0.25, 0.25);
    rig.stage->Press({402, 198}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 0); // nothing has changed yet
    rig.stage->Move({422, 198}, 0);
    QVERIFY(rig.Get() == Single(0.3f, 0.25f));
    rig.stage->Move({442, 178}, 0);
    rig.stage->Move({442, 158}, 0);
    QCOMPARE(rig.UndoEntries(), 0);
    rig.stage->Release({442, 158}, 0);
    QVERIFY(rig.Get() == Single(0.35f, 0.05f));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    rig.document->Undo().Undo();
    QVERIFY(rig.Get() == Single(0.25f, 0.25f));

    rig.Drag({{400, 200}, {420, 200}}); // the next drag has a nest of its own
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    rig.document->Undo().Undo();
    rig.stage->Press({400, 200}, 0);
    rig.stage->Move({420, 200}, 0);
    rig.stage->CancelDrag();
    QVERIFY(rig.Get() == Single(0.25f, 0.25f));
    QVERIFY(!rig.document->Undo().CanUndo());
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayXYOffsetTest::OnlyRealChangesCount()
{
    Rig rig(0.25, 0.0);
    rig.InputOf("axis").RemoveNotify(&rig.OverlayOf("axis")); // the point's redraws don't count
    const auto redraws = [&rig](const char* id, const Parameter& value) {
        rig.TakeRedraws();
        rig.InputOf(id).SetValue(value, 0.0);
        return rig.TakeRedraws();
    };
    QCOMPARE(redraws("x", Number(0.250009)), 0);
    QCOMPARE(redraws("x", Number(0.250011)), 1);
    QCOMPARE(redraws("y", Number(-0.000009)), 0);
    QCOMPARE(redraws("y", Number(-0.000011)), 1);
    QCOMPARE(redraws("axis", Point(0.500009, 0.499991)), 0);
    QCOMPARE(redraws("axis", Point(0.500011, 0.5)), 1);

    rig.SetPoint("axis", 0.5, 0.5);
    rig.Set(0.25, 0.0);
    rig.View().imageWidth = 1e6;
    rig.View().imageLeft = 300.0 - 0.75e6;
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({309, 150}, 0); // nine millionths
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.stage->Move({312, 150}, 0);
    QVERIFY(rig.Get() == Single(0.250012f, 0.0f));
}

void OverlayXYOffsetTest::OriginIsDragged()
{
    Rig rig(0.25, 0.0);
    rig.stage->Press({300, 150}, 0);
    QCOMPARE(rig.Offset().DragState(), DragType::Driven);
    rig.stage->Move({320, 150}, 0);
    QVERIFY(rig.LineRuns("(420, 150) (320, 150)"));
    rig.stage->Release({320, 150}, 0);
    QCOMPARE(rig.Offset().DragState(), DragType::None);
    QVERIFY(rig.Get() == Single(0.25f, 0.0f));

    QVERIFY(rig.Offset().RemoveInput(&rig.InputOf("axis"), nullptr));
    rig.SetPoint("axis", 0.0, 0.0);
    QVERIFY(rig.LineRuns("(420, 150) (320, 150)"));
}

void OverlayXYOffsetTest::OneOfTheTwoByExpression()
{
    Rig rig(0.25, 0.0);
    rig.InputOf("x").SetExpression("0.25");
    rig.Drag({{400, 150}, {420, 160}});
    QVERIFY(rig.Get() == Single(0.25f, 0.05f));
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    rig.document->Undo().Undo();
    QVERIFY(rig.Get() == Single(0.25f, 0.0f));
}

void OverlayXYOffsetTest::DragOffset()
{
    Rig rig(0.25, 0.0);
    rig.stage->Press({397, 152}, 0);
    double x = 0.0;
    double y = 0.0;
    QVERIFY(rig.Offset().CopyAttr(PCD_DragOffsetX, &x));
    QVERIFY(rig.Offset().CopyAttr(PCD_DragOffsetY, &y));
    QCOMPARE(x, 3.0);
    QCOMPARE(y, -2.0);
    rig.Offset().SetAttrsTagList({{PCD_DragOffsetX, 13.0}});
    rig.stage->Move({397, 151}, 0);
    QVERIFY(rig.Get() == Single(0.275f, -0.005f));
}

void OverlayXYOffsetTest::BadValues()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Rig rig(0.25, 0.0);
    rig.Set(nan, nan);
    rig.SetPoint("axis", nan, 0.5);
    QVERIFY(rig.LineRuns("(400, 150) (300, 150)")); // stays where it was
    rig.Set(1e300, 0.0);
    QVERIFY(rig.LineRuns("(huge, 150) (300, 150)"));
    QVERIFY(!rig.stage->Press({400, 150}, 0));
    // No number of single precision takes this offset back to the picture.
    rig.SetPoint("axis", 1e300, 0.5);
    rig.Set(-1e300, 0.0);
    rig.Drag({{100, 150}, {110, 150}});
    QCOMPARE(rig.NumberOf("x"), -1e300);

    rig.SetPoint("axis", 0.5, 0.5);
    rig.Set(0.25, 0.0);
    rig.View().imageWidth = rig.View().imageHeight = 0.0;
    rig.stage->Move({500, 90}, 0);
    QVERIFY(!rig.View().currentControl);
    rig.Drag({{103, 52}, {120, 60}});
    QVERIFY(rig.Get() == Single(0.25f, 0.0f));
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayXYOffsetTest::ToolsThatGo()
{
    Rig rig(0.25, 0.0);
    Operator* other = rig.document->AddTool("ProbeTool");
    rig.InputOf("x").SetAttrsTagList({{XYOCP_AxisInput, other->FindInput("axis")}});
    rig.stage->Press({400, 150}, 0);
    rig.stage->Move({410, 150}, 0);
    rig.document->RemoveTool(*other); // ends the drag
    rig.stage->Move({420, 150}, 0);
    QVERIFY(rig.Get() == Single(0.275f, 0.0f));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.document->Undo().Clear(); // it is gone; the attribute keeps its address
    rig.InputOf("x").SetAttrsTagList({{IAS_Help, "how far"}});
    QVERIFY(rig.LineRuns("(410, 150) (300, 150)"));

    rig.stage->Press({410, 150}, 0);
    rig.stage->Move({420, 150}, 0);
    rig.document->RemoveTool(*rig.tool);
    rig.stage->Move({430, 150}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.UndoEntries(), 2); // the drag, and the removal that ended it
    rig.document->Undo().Undo();
    rig.document->Undo().Undo();
    QVERIFY(rig.Get() == Single(0.275f, 0.0f));
}

QTEST_MAIN(OverlayXYOffsetTest)
#include "overlay_xyoffset_test.moc"
