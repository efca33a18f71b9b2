#include "controls/color/ColorRangesControl.h"
#include "plugin/InspectorStage.h"
#include "system/color/DisplayColors.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomColorRanges.h"

#include <cmath>

#include <QAccessible>
#include <QScopeGuard>
#include <QtTest>

using namespace Marlox;

namespace {

using Node = ColorCurves::Node;

constexpr char control[] = "ColorRangesControl";

StagedInput rangesInput(std::vector<TagPair> attributes)
{
    attributes.push_back({IAS_DataType, CLSID_DataType_ColorCurves});
    return {"Tones", attributes, control};
}

struct RangesStage : InspectorStage {
    explicit RangesStage(const std::vector<TagPair>& attributes = {}, int width = 380)
        : InspectorStage({rangesInput(attributes)}, width),
          ranges(*PartOf<CustomColorRanges>("ranges"))
    {
    }
    Ref<Parameter> Value() const { return InputOf().GetValue(document->CurrentTime()); }
    Node NodeOf(int node) const { return static_cast<ColorCurves&>(*Value()).NodeAt(node); }
    void Drag(int node, QPoint way, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint from = ranges.NodePixel(node);
        Pointer::Press(ranges, from, modifiers);
        Pointer::Move(ranges, from + way, modifiers);
        Pointer::Release(ranges, from + way, modifiers);
    }
    CustomColorRanges& ranges;
};

bool isOnGrid(double value, double steps)
{
    return std::abs(value * steps - std::round(value * steps)) < 1e-9;
}

} // namespace

/// Tonal ranges: their plot, and their control on an inspector page.
class ColorRangesTest : public QObject {
    Q_OBJECT
private slots:
    void PlotsNodes();
    void HitsHandlesFirst();
    void PressPicksAndMovesNothing();
    void DragMovesOneNode();
    void FineAndAlongOneAxis();
    void StepsStartFromThePress();
    void GesturesEnd();
    void KeysMoveTheActiveNode();
    void AltClickResetsANode();
    void RepaintsThePlot();
    void TakesNamesAndMidtones();
    void FollowsItsInput();
    void SurvivesTheEndOfThePage();
};

void ColorRangesTest::PlotsNodes()
{
    ColorRangesModel model;
    model.SetPlot({10, 20, 301, 101});
    QCOMPARE(model.ToPixel({0.0, 0.0}), QPointF(10, 120));
    QCOMPARE(model.ToPixel({1.0, 1.0}), QPointF(310, 20));
    const auto isKept = [&](QPointF pixel, bool fine, double steps) {
        const QPointF at = model.ToPosition(pixel, fine);
        return isOnGrid(at.x(), steps) && isOnGrid(at.y(), steps);
    };
    for (int x = 0; x < 320; x += 7) {
        QVERIFY(isKept(QPointF(x, 33), false, 1e3)); // 300 x 100: three decimals
        QVERIFY(isKept(QPointF(x + 0.3, 33.7), true, 1e4));
    }
    QCOMPARE(model.ToPosition({110, 70}, false), QPointF(0.333, 0.5));
    QCOMPARE(model.ToPosition({110, 70}, true), QPointF(0.3333, 0.5));
    model.SetPlot({0, 0, 10, 31});
    QVERIFY(isKept({3, 11}, false, 1e2));
    model.SetPlot({5, 5, 1, 1}); // of no extent
    QCOMPARE(model.ToPosition({50, 50}, false), QPointF(0, 1));
    QCOMPARE(ColorRangesModel::Nudged({0.1, 0.995}, {1, 1}, 1), QPointF(0.11, 1.0));
    QCOMPARE(ColorRangesModel::Nudged({0.1, 0.5}, {-1, 0}, 2), QPointF(0.0, 0.5));
    QCOMPARE(ColorRangesModel::Nudged({0.123456, 0.5}, {0, -1}, 0), QPointF(0.123456, 0.499));
}

void ColorRangesTest::HitsHandlesFirst()
{
    ColorRangesModel model;
    model.SetPlot({0, 0, 101, 101});
    ColorRangesModel::Positions nodes;
    nodes.fill({0.5, 0.5});
    std::vector<int> hits; // each is taken out of the way once it was hit
    for (int i = 0; i < ColorRangesModel::nodeCount; ++i) {
        hits.push_back(model.HitTest(nodes, {50, 50}));
        nodes[std::size_t(hits.back())] = {0.0, 0.0};
    }
    QCOMPARE(hits, (std::vector<int>{1, 2, 5, 6, 0, 3, 4, 7}));
    nodes.fill({0.0, 0.0});
    nodes[3] = {0.504, 0.5}; // rounds down
    for (const auto& [pointer, hit] : {std::pair(QPoint(54, 46), 3),
                                       {QPoint(46, 54), 3},
                                       {QPoint(55, 50), -1},
                                       {QPoint(50, 45), -1},
                                       {QPoint(45, 50), -1}})
        QCOMPARE(model.HitTest(nodes, pointer), hit);
}

void ColorRangesTest::PressPicksAndMovesNothing()
{
    RangesStage stage;
    const QPoint handle = stage.ranges.NodePixel(1);
    Pointer::Press(stage.ranges, handle + QPoint(4, -4));
    QCOMPARE(stage.ranges.DraggedNode(), 1);
    QVERIFY(stage.ranges.hasFocus());
    QVERIFY(stage.document->Undo().Depth() > 0 && stage.document->IsAutoProxy());
    QVERIFY(stage.Value()->IsEqual(ColorCurves()));
    Pointer::Release(stage.ranges, handle);
    QVERIFY(stage.IsIdle());
    QCOMPARE(stage.ranges.DraggedNode(), CustomColorRanges::none);
    QCOMPARE(stage.UndoEntries(), 0);
    Pointer::Press(stage.ranges, handle + QPoint(5, 0)); // beside it
    QVERIFY(stage.IsIdle());
    Pointer::Move(stage.ranges, handle);
    Pointer::Release(stage.ranges, handle);
    Pointer::Press(stage.ranges, handle, Qt::NoModifier, Qt::RightButton);
    QVERIFY(stage.IsIdle() && stage.Value()->IsEqual(ColorCurves()));
    // Between keys, too: the press sets none.
    stage.InputOf().AddKey(0.0);
    stage.document->SetCurrentTime(5.0);
    Pointer::Click(stage.ranges, handle);
    QVERIFY(!stage.InputOf().IsKeyAt(5.0));
}

void ColorRangesTest::DragMovesOneNode()
{
    RangesStage stage;
    const Ref<Parameter> before = stage.Value();
    stage.Drag(6, {13, 21});
    const QRect plot = stage.ranges.Plot();
    const QPointF to = QPointF(13.0 / (plot.width() - 1), -21.0 / (plot.height() - 1));
    QVERIFY(std::abs(stage.NodeOf(6).x - 0.75 - to.x()) < 2e-3);
    QVERIFY(std::abs(stage.NodeOf(6).y - 1.0 - to.y()) < 2e-3);
    QVERIFY(isOnGrid(stage.NodeOf(6).x, 1e3) && isOnGrid(stage.NodeOf(6).y, 1e3));
    QCOMPARE(stage.NodeOf(5), ColorCurves().NodeAt(5));
    QVERIFY(before->IsEqual(ColorCurves())); // what others hold stays
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Ranges"));
    QVERIFY(stage.IsIdle());
    stage.document->Undo().Undo();
    QVERIFY(stage.ranges.Curves().IsEqual(ColorCurves()));
    stage.ranges.SetTakesHandles(false);
    stage.Drag(3, {20, 0});
    QCOMPARE(stage.NodeOf(2).x, 0.25);
    QVERIFY(stage.NodeOf(3).x > 0.5);
    stage.Drag(1, {-5000, 5000});
    QCOMPARE(stage.NodeOf(1), (Node{0.0, 0.0}));
    stage.Drag(7, {100000, 40});
    QCOMPARE(stage.NodeOf(7), (Node{1.0, 1.0}));
}

void ColorRangesTest::FineAndAlongOneAxis()
{
    RangesStage stage({}, 520);
    stage.Drag(2, {47, 0}, Qt::ControlModifier);
    const double moved = 4.7 / (stage.ranges.Plot().width() - 1);
    QVERIFY(std::abs(stage.NodeOf(2).x - 0.25 - moved) < 1e-3);
    QVERIFY(isOnGrid(stage.NodeOf(2).x, 1e4) && !isOnGrid(stage.NodeOf(2).x, 1e3));
    const Node before = stage.NodeOf(5);
    stage.Drag(5, {6, -11}, Qt::ShiftModifier);
    QVERIFY(stage.NodeOf(5).x == before.x && stage.NodeOf(5).y > before.y);
}

void ColorRangesTest::StepsStartFromThePress()
{
    // What a start pushes ahead of itself falls back into place when it returns.
    RangesStage stage;
    const QPoint from = stage.ranges.NodePixel(0);
    const int width = stage.ranges.Plot().width();
    Pointer::Press(stage.ranges, from);
    Pointer::Move(stage.ranges, from + QPoint(width, 0));
    QCOMPARE(stage.NodeOf(2).x, 0.5);
    Pointer::Move(stage.ranges, from);
    Pointer::Release(stage.ranges, from);
    QVERIFY(stage.Value()->IsEqual(ColorCurves()));
}

void ColorRangesTest::GesturesEnd()
{
    RangesStage stage;
    const QPoint from = stage.ranges.NodePixel(2);
    Pointer::Press(stage.ranges, from);
    Pointer::Move(stage.ranges, from + QPoint(9, -9));
    Pointer::Key(stage.ranges, QEvent::KeyPress, Qt::Key_Escape);
    QVERIFY(stage.IsIdle() && stage.Value()->IsEqual(ColorCurves()));
    QCOMPARE(stage.UndoEntries(), 0);
    Pointer::Press(stage.ranges, from);
    Pointer::Move(stage.ranges, from + QPoint(9, -9));
    stage.window->hide();
    QVERIFY(stage.IsIdle());
    QCOMPARE(stage.UndoEntries(), 1);
    QCOMPARE(stage.ranges.DraggedNode(), CustomColorRanges::none);
}

void ColorRangesTest::KeysMoveTheActiveNode()
{
    RangesStage stage;
    stage.ranges.setFocus();
    QCOMPARE(stage.ranges.PartCount(), 8);
    Pointer::Stroke(stage.ranges, Qt::Key_PageDown);
    Pointer::Key(stage.ranges, QEvent::KeyPress, Qt::Key_Right);
    Pointer::Key(stage.ranges, QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, true);
    Pointer::Key(stage.ranges, QEvent::KeyRelease, Qt::Key_Right);
    QCOMPARE(stage.NodeOf(1), (Node{0.27, 1.0}));
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Ranges"));
    Pointer::Stroke(stage.ranges, Qt::Key_Down, Qt::ShiftModifier);
    Pointer::Stroke(stage.ranges, Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(stage.NodeOf(1), (Node{0.269, 0.9}));
    QCOMPARE(stage.ranges.DescribePart(1), QString("Shadows handle of start 0.269, 0.9"));
    Pointer::Click(stage.ranges, stage.ranges.NodePixel(6));
    QCOMPARE(stage.ranges.ActivePart(), 6);
    Pointer::Stroke(stage.ranges, Qt::Key_Up); // is at the top
    QVERIFY(stage.IsIdle());
    QCOMPARE(stage.UndoEntries(), 3);
}

void ColorRangesTest::AltClickResetsANode()
{
    RangesStage stage;
    stage.Drag(1, {10, 30});
    stage.Drag(5, {10, -30});
    Pointer::Click(stage.ranges, stage.ranges.NodePixel(1), Qt::AltModifier);
    QCOMPARE(stage.NodeOf(1), ColorCurves().NodeAt(1));
    QVERIFY(stage.NodeOf(5) != ColorCurves().NodeAt(5));
    QCOMPARE(stage.UndoTexts().last(), QString("Reset Ranges"));
    const int entries = stage.UndoEntries();
    Pointer::Click(stage.ranges, stage.ranges.NodePixel(1), Qt::AltModifier); // is there
    Pointer::Click(stage.ranges, stage.ranges.Plot().center(), Qt::AltModifier);
    QCOMPARE(stage.UndoEntries(), entries);
    QVERIFY(stage.IsIdle());
}

void ColorRangesTest::RepaintsThePlot()
{
    RangesStage stage;
    const QPoint from = stage.ranges.NodePixel(2);
    Pointer::Press(stage.ranges, from);
    PaintWatch watch(stage.ranges);
    Pointer::Move(stage.ranges, from + QPoint(3, -3));
    QCOMPARE(watch.Take(),
             QRegion(stage.ranges.Plot().adjusted(-9, -9, 9, 9) & stage.ranges.rect()));
    Pointer::Move(stage.ranges, from + QPoint(3, -3)); // the same pixel
    QVERIFY(watch.Take().isEmpty());

    // The ramp follows the viewer's display.
    struct Red final : ColorDisplay {
        void Apply(float* rgb, int count) const override
        {
            for (int i = 0; i < 3 * count; ++i)
                rgb[i] = i % 3 == 0 ? 1.0f : 0.0f;
        }
    };
    const auto restore = qScopeGuard([] { DisplayColors::Global().SetDisplay(nullptr); });
    QCOMPARE(PixelsOf(stage.ranges, Qt::red), 0);
    DisplayColors::Global().SetDisplay(std::make_shared<Red>());
    QVERIFY(PixelsOf(stage.ranges, Qt::red) >= stage.ranges.Plot().width());
}

void ColorRangesTest::TakesNamesAndMidtones()
{
    const auto names = [](const RangesStage& stage) {
        const CustomColorRanges::Names& shown = stage.ranges.RangeNames();
        return QStringList{shown[0], shown[1], shown[2]};
    };
    const RangesStage usual;
    QCOMPARE(names(usual), QStringList({"Shadows", "Midtones", "Highlights"}));
    QCOMPARE(usual.PartOf<ElideLabel>("label")->Text(), QString("Tones"));
    const QColor tone = CustomColorRanges::ToneOf(1);
    QVERIFY(usual.ranges.ShowsMidtones() && PixelsOf(usual.ranges, tone) > 20);
    const RangesStage named(
        {{CRCC_ShowMidtones, 0}, {CRCCS_LowName, "Dark"}, {CRCCS_HighName, "Bright"}});
    QCOMPARE(names(named), QStringList({"Dark", "Midtones", "Bright"}));
    QCOMPARE(PixelsOf(named.ranges, tone), 0);
    QVERIFY(!named.ranges.ShowsMidtones());
    QVERIFY(named.ranges.DescribePart(7).startsWith("Bright end"));
    const char* name = nullptr;
    QVERIFY(named.ControlOf().CopyAttr(CRCCS_LowName, &name));
    QCOMPARE(name, "Dark");
    int64 shown = 7;
    QVERIFY(named.ControlOf().CopyAttr(CRCC_ShowMidtones, &shown));
    QCOMPARE(shown, int64(0));
}

void ColorRangesTest::FollowsItsInput()
{
    RangesStage stage;
    ColorCurves other;
    other.SetNodePosition(3, {0.7, 0.0}, true);
    stage.InputOf().SetValue(other, TimeNone);
    QVERIFY(stage.ranges.Curves().IsEqual(other));
    stage.InputOf().AddKey(0.0);
    stage.ranges.clearFocus(); // which the frame tells before anything else
    QVERIFY(PixelsOf(stage.ranges, LookColor("System.KeyColour")) > 100);
    stage.document->SetCurrentTime(10.0);
    stage.Drag(3, {-40, 0});
    QVERIFY(stage.InputOf().IsKeyAt(10.0));
    stage.document->SetCurrentTime(5.0);
    QVERIFY(stage.ranges.Curves().NodeAt(3).x < 0.7);
    stage.tool->SetLocked(true);
    QVERIFY(!stage.ranges.isEnabled());
    stage.tool->SetLocked(false);

    QVERIFY(stage.ControlOf().AddExpression(&stage.InputOf())); // says what they are
    const Ref<Parameter> said = stage.Value();
    QVERIFY(stage.InputOf().ExpressionError().isEmpty() && stage.ranges.Curves().IsEqual(*said));
    stage.InputOf().SetExpression("{0, 1, 2}");
    stage.InputOf().GetValue(5.0);
    QCOMPARE(stage.InputOf().ExpressionError(), QString("the table is no ColorCurves"));
    stage.InputOf().SetExpression("time");
    stage.ranges.clearFocus();
    QVERIFY(PixelsOf(stage.ranges, LookColor("Controls.ExpressionColour")) > 100);
    const Ref<Parameter> ruled = stage.Value();
    const int before = stage.UndoEntries();
    stage.Drag(4, {40, 0});
    QVERIFY(stage.ranges.Curves().IsEqual(*ruled));
    QCOMPARE(stage.UndoEntries(), before);
    QVERIFY(stage.IsIdle());
}

void ColorRangesTest::SurvivesTheEndOfThePage()
{
    RangesStage stage;
    connect(&stage.document->Undo().Stack(), &QUndoStack::indexChanged, stage.page,
            [&stage] { stage.page->SetOperator(nullptr); });
    const QPointer<CustomColorRanges> ranges(&stage.ranges);
    stage.Drag(1, {30, 10});
    QVERIFY(stage.page->Controls().empty());
    QVERIFY(stage.IsIdle());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    RangesStage other;
    const QPoint from = other.ranges.NodePixel(1);
    Pointer::Press(other.ranges, from);
    Pointer::Move(other.ranges, from + QPoint(5, 5));
    other.document->RemoveTool(*other.tool);
    QVERIFY(other.IsIdle());
    RangesStage parted;
    Pointer::Press(parted.ranges, parted.ranges.NodePixel(1));
    parted.ControlOf().RemoveInput(&parted.InputOf(), nullptr);
    QVERIFY(parted.IsIdle());
}

QTEST_MAIN(ColorRangesTest)
#include "color_ranges_test.moc"
