#include "plugin/OverlayRig.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr u32 XYOCP_AxisInput = 0x60058000;

/// A tool with an offset "x", "y" and a point "axis" that has an overlay of its own.
struct Rig : OverlayRig {
    Rig()
        : OverlayRig({{"x",
                       CLSID_DataType_Number,
                       {{IAS_Overlay, "XYOffsetControl"}, {IA_OverlayIndex, 0}}},
                      {"y", CLSID_DataType_Number, {{IAS_OverlayWith, "x"}, {IA_OverlayIndex, 1}}},
                      {"axis",
                       CLSID_DataType_Point,
                       {{IAS_Overlay, "PointControl"}, {IA_OverlayIndex, 0}}}})
    {
        InputOf("x").SetAttrsTagList({{XYOCP_AxisInput, &InputOf("axis")}});
        stage->View().drawMode = DrawIdle;
    }

    void SetOffset(double x, double y) const
    {
        InputOf("x").SetValue(Number(x), document->CurrentTime());
        InputOf("y").SetValue(Number(y), document->CurrentTime());
        document->Undo().Clear();
    }
    PreviewControl& Offset() const { return OverlayOf("x"); }
    /// What the offset alone draws.
    std::string DrawnByOffset()
    {
        OverlayRecorder recorder;
        recorder.SetView(View());
        View().painter = &recorder;
        Offset().GLDrawControls(&View(), nullptr);
        View().painter = nullptr;
        return recorder.Text();
    }
};

} // namespace

class OverlayXYOffsetTest : public QObject {
    Q_OBJECT

private slots:
    void Draws();
    void TakenByWholePixels();
    void OffsetsHaveSinglePrecision();
    void DragIsOneUndoEntry();
    void DragSetsKeysOfBoth();
    void SmallMovesAreNotSent();
    void SmallChangesAreNotShown();
    void OriginIsDragged();
    void OneOfTheTwoByExpression();
    void HardValues();
    void ViewOfNoSize();
    void ToolsThatGo();
    void DragOffset();
};

void OverlayXYOffsetTest::Draws()
{
    Rig rig;
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    rig.SetOffset(0.25, -0.25);
    const std::string drawn = "normal dashed lines: (400, 100) (300, 150)\n"
                              "normal lines: (395, 105) (405, 95)\n"
                              "normal lines: (395, 95) (405, 105)\n";
    QCOMPARE(rig.DrawnByOffset(), drawn);
    rig.View().controlScale = 2.0; // is not for these
    QCOMPARE(rig.DrawnByOffset(), drawn);
    rig.View().drawMode = DrawDragging;
    QCOMPARE(rig.DrawnByOffset(), drawn);
    rig.View().drawMode = DrawHidden;
    QCOMPARE(rig.DrawnByOffset(), std::string());

    rig.View().drawMode = DrawIdle;
    rig.SetPoint("axis", 0.0, 1.0);
    QCOMPARE(rig.DrawnByOffset(), std::string("normal dashed lines: (200, 200) (100, 250)\n"
                                              "normal lines: (195, 205) (205, 195)\n"
                                              "normal lines: (195, 195) (205, 205)\n"));
}

void OverlayXYOffsetTest::TakenByWholePixels()
{
    Rig rig;
    rig.SetOffset(0.25225, 0.0); // at 400.9
    struct {
        MxPoint at;
        bool taken;
    } const places[] = {{{395, 150}, true},  {{394, 150}, false}, {{406, 150}, true},
                        {{407, 150}, false}, {{400, 155}, true},  {{400, 156}, false}};
    for (const auto& [at, taken] : places) {
        const QByteArray where =
            QByteArray::number(at.x) + QByteArray(", ") + QByteArray::number(at.y);
        rig.stage->Move(at, 0);
        QVERIFY2(rig.View().currentControl == (taken ? &rig.Offset() : nullptr), where);
        QVERIFY2(rig.stage->Press(at, 0) == taken, where);
        rig.stage->Release(at, 0);
    }
    QCOMPARE(rig.UndoEntries(), 0);
    // The way from the cursor to the mark loses its fraction, and the offset with it.
    rig.Drag({{398, 150}, {398, 151}});
    QCOMPARE(rig.NumberOf("x"), 0.25);
    QCOMPARE(rig.NumberOf("y"), double(0.005f));
}

void OverlayXYOffsetTest::OffsetsHaveSinglePrecision()
{
    Rig rig;
    rig.SetPoint("axis", 0.1, 0.5);
    rig.SetOffset(0.4, 0.0);
    rig.Drag({{300, 150}, {301, 150}});
    QCOMPARE(rig.NumberOf("x"), double(float(201.0 / 400.0 - 0.1)));
    QVERIFY(rig.NumberOf("x") != 201.0 / 400.0 - 0.1);
}

void OverlayXYOffsetTest::DragIsOneUndoEntry()
{
    Rig rig;
    rig.SetOffset(0.25, 0.25);
    rig.stage->Press({402, 198}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 0); // nothing has changed yet
    rig.stage->Move({422, 198}, 0);
    QCOMPARE(rig.NumberOf("x"), double(0.3f));
    QCOMPARE(rig.UndoEntries(), 0);
    rig.stage->Move({442, 178}, 0);
    rig.stage->Move({442, 158}, 0);
    rig.stage->Release({442, 158}, 0);
    QCOMPARE(rig.NumberOf("x"), double(0.35f));
    QCOMPARE(rig.NumberOf("y"), double(0.05f));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.NumberOf("x"), 0.25);
    QCOMPARE(rig.NumberOf("y"), 0.25);

    rig.Drag({{400, 200}, {420, 200}}); // the next drag has a nest of its own
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    rig.document->Undo().Undo();
    rig.stage->Press({400, 200}, 0);
    rig.stage->Move({420, 200}, 0);
    rig.stage->CancelDrag();
    QCOMPARE(rig.NumberOf("x"), 0.25);
    QVERIFY(!rig.document->Undo().CanUndo());
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayXYOffsetTest::DragSetsKeysOfBoth()
{
    Rig rig;
    rig.SetOffset(0.25, 0.25);
    rig.InputOf("x").AddKey(0.0);
    rig.document->SetCurrentTime(10.0);
    rig.Drag({{400, 200}, {420, 220}});
    QVERIFY(rig.InputOf("x").IsKeyAt(10.0));
    QCOMPARE(rig.InputOf("x").GetNumber(0.0), 0.25);
    QCOMPARE(rig.InputOf("x").GetNumber(10.0), double(0.3f));
    QCOMPARE(rig.InputOf("y").GetNumber(0.0), double(0.35f)); // not animated
    QVERIFY(rig.DrawnByOffset().find("(420, 220) (300, 150)") != std::string::npos);
    rig.document->SetCurrentTime(0.0);
    QVERIFY(rig.DrawnByOffset().find("(400, 220) (300, 150)") != std::string::npos);
}

void OverlayXYOffsetTest::SmallMovesAreNotSent()
{
    Rig rig;
    rig.SetOffset(0.25, 0.0);
    rig.View().imageWidth = 1e6;
    rig.View().imageLeft = 300.0 - 0.75e6;
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({309, 150}, 0); // nine millionths
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.NumberOf("x"), 0.25);
    rig.stage->Move({312, 150}, 0);
    QCOMPARE(rig.NumberOf("x"), double(0.250012f));
    rig.stage->Release({312, 150}, 0);
}

void OverlayXYOffsetTest::SmallChangesAreNotShown()
{
    Rig rig;
    const std::pair<const char*, Ref<Parameter>> small[] = {
        {"x", MakeRef<Number>(0.000009)},
        {"y", MakeRef<Number>(-0.000009)},
        {"axis", MakeRef<Point>(0.500009, 0.500009)}};
    const std::pair<const char*, Ref<Parameter>> large[] = {{"x", MakeRef<Number>(0.25)},
                                                            {"y", MakeRef<Number>(0.5)},
                                                            {"axis", MakeRef<Point>(0.25, 0.5)}};
    const auto redraws = [&rig](const std::pair<const char*, Ref<Parameter>>& change) {
        rig.TakeRedraws();
        rig.Offset().NotifyChanged(&rig.InputOf(change.first), change.second.Get(), nullptr);
        rig.Offset().UpdateDisplay(&rig.InputOf(change.first), nullptr);
        return rig.TakeRedraws();
    };
    for (const auto& change : small)
        QVERIFY2(redraws(change) == 0, change.first);
    for (const auto& change : large)
        QVERIFY2(redraws(change) == 1, change.first);
}

void OverlayXYOffsetTest::OriginIsDragged()
{
    Rig rig;
    rig.SetOffset(0.25, 0.0);
    rig.stage->Press({300, 150}, 0); // the axis' own overlay
    QCOMPARE(rig.Offset().DragState(), DragType::Driven);
    rig.stage->Move({320, 150}, 0);
    QVERIFY(rig.DrawnByOffset().find("(420, 150) (320, 150)") != std::string::npos);
    rig.stage->Release({320, 150}, 0);
    QCOMPARE(rig.Offset().DragState(), DragType::None);
    QCOMPARE(rig.NumberOf("x"), 0.25);
    QCOMPARE(rig.PointOf("axis"), std::string("0.55 0.5"));

    QVERIFY(rig.Offset().RemoveInput(&rig.InputOf("axis"), nullptr));
    rig.SetPoint("axis", 0.0, 0.0);
    QVERIFY(rig.DrawnByOffset().find("(420, 150) (320, 150)") != std::string::npos);
}

void OverlayXYOffsetTest::OneOfTheTwoByExpression()
{
    Rig rig;
    rig.SetOffset(0.25, 0.0);
    rig.InputOf("x").SetExpression("0.25");
    rig.document->Undo().Clear();
    rig.Drag({{400, 150}, {420, 160}});
    QCOMPARE(rig.InputOf("x").GetPlainValue(0.0)->IsEqual(Number(0.25)), true);
    QCOMPARE(rig.NumberOf("y"), double(0.05f));
    QCOMPARE(rig.UndoText(), QString("Control Change"));
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayXYOffsetTest::HardValues()
{
    Rig rig;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    rig.SetOffset(nan, nan);
    rig.SetPoint("axis", nan, 0.5);
    QVERIFY(rig.DrawnByOffset().find("nan") == std::string::npos); // stays where it was
    rig.SetOffset(1e300, 0.0);
    rig.SetPoint("axis", 0.5, 0.5);
    QVERIFY(rig.DrawnByOffset().find("huge") != std::string::npos);
    QVERIFY(!rig.stage->Press({400, 150}, 0));
    // No single-precision number takes the offset back to the picture.
    rig.SetOffset(-1e300, 0.0);
    rig.SetPoint("axis", 1e300, 0.5);
    rig.document->Undo().Clear();
    rig.Drag({{100, 150}, {110, 150}});
    QCOMPARE(rig.NumberOf("x"), -1e300);
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayXYOffsetTest::ViewOfNoSize()
{
    Rig rig;
    rig.View().imageWidth = rig.View().imageHeight = 0.0;
    rig.stage->Move({500, 90}, 0);
    QVERIFY(!rig.View().currentControl);
    QVERIFY(!rig.DrawnByOffset().empty());
    rig.Drag({{103, 52}, {120, 60}});
    QCOMPARE(rig.NumberOf("x"), 0.0);
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayXYOffsetTest::ToolsThatGo()
{
    Rig rig;
    rig.SetOffset(0.25, 0.0);
    Operator* other = rig.document->AddTool("ProbeTool");
    rig.InputOf("x").SetAttrsTagList({{XYOCP_AxisInput, other->FindInput("axis")}});
    rig.document->Undo().Clear();
    rig.stage->Press({400, 150}, 0);
    rig.stage->Move({410, 150}, 0);
    rig.document->RemoveTool(*other); // ends the drag
    rig.stage->Move({420, 150}, 0);
    rig.stage->Release({420, 150}, 0);
    QCOMPARE(rig.NumberOf("x"), double(0.275f));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.document->Undo().Clear(); // the tool with it
    rig.InputOf("x").SetAttrsTagList({{IAS_Help, "how far"}});
    QVERIFY(rig.DrawnByOffset().find("(410, 150) (300, 150)") != std::string::npos);

    rig.stage->Press({410, 150}, 0);
    rig.stage->Move({420, 150}, 0);
    rig.document->RemoveTool(*rig.tool);
    rig.stage->Move({430, 150}, 0);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.UndoEntries(), 1); // the drag with the removal that ended it
    rig.document->Undo().Undo();
    QCOMPARE(rig.NumberOf("x"), double(0.275f));
}

void OverlayXYOffsetTest::DragOffset()
{
    Rig rig;
    rig.SetOffset(0.25, 0.0);
    PreviewControl& overlay = rig.Offset();
    rig.stage->Press({397, 152}, 0);
    double x = 0.0;
    double y = 0.0;
    QVERIFY(overlay.CopyAttr(PCD_DragOffsetX, &x) && overlay.CopyAttr(PCD_DragOffsetY, &y));
    QCOMPARE(x, 3.0);
    QCOMPARE(y, -2.0);
    overlay.SetAttrsTagList({{PCD_DragOffsetX, 13.0}});
    rig.stage->Move({397, 151}, 0);
    QCOMPARE(rig.NumberOf("x"), double(0.275f));
    rig.stage->Release({397, 151}, 0);

    TagList tags{{XYOCP_AxisInput, &rig.InputOf("axis")}};
    ScriptVal table = ScriptVal::MakeTable();
    QVERIFY(overlay.GetRegistry()->TagMapper()("GetAttrs", true, table, tags));
    QVERIFY(!table.Get("XYOCP_AxisInput").IsNil());
}

QTEST_MAIN(OverlayXYOffsetTest)
#include "overlay_xyoffset_test.moc"
