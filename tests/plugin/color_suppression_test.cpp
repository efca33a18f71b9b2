#include "controls/color/ColorSuppressionControl.h"

#include "plugin/InspectorStage.h"
#include "system/color/DisplayColors.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomColorSuppression.h"
#include "widgets/RangeSelector.h"

#include <cmath>
#include <limits>
#include <random>

#include <QAccessible>
#include <QtTest>

using namespace Marlox;

namespace {

using Record = ColorSuppressionModel::Record;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const std::vector<const char*> hues{"Red", "Yellow", "Green", "Cyan", "Blue", "Magenta"};
constexpr const char* lowHues[] = {"Low Red",  "Low Yellow", "Low Green",
                                   "Low Cyan", "Low Blue",   "Low Magenta"};

/// Six inputs of the master range, joined; with `low` the low range's too.
std::vector<StagedInput> staged(const std::vector<TagPair>& tags, bool low)
{
    std::vector<StagedInput> inputs;
    const auto add = [&](const char* id, int range, int channel) {
        std::vector<TagPair> attributes{{IA_Range, range},
                                        {IA_Channel, channel},
                                        {IAD_Default, 0.5},
                                        {IAD_Minimum, 0.0},
                                        {IAD_Maximum, 1.0}};
        if (inputs.empty())
            attributes.insert(attributes.end(), tags.begin(), tags.end());
        else
            attributes.push_back({IAS_SharedWith, "Red"});
        inputs.push_back({id, attributes, "ColorSuppressionControl"});
    };
    for (int i = 0; i < 6; ++i)
        add(hues[std::size_t(i)], 0, i);
    for (int i = 0; low && i < 6; ++i)
        add(lowHues[i], 1, i);
    return inputs;
}

struct SuppressionStage : InspectorStage {
    explicit SuppressionStage(const std::vector<TagPair>& tags = {}, bool low = false,
                              int width = 380)
        : InspectorStage(staged(tags, low), width), wheel(*PartOf<CustomColorSuppression>("wheel"))
    {
    }
    ColorSuppressionControl& Control() const { return ControlOf<ColorSuppressionControl>(); }
    TimeCodeEdit& Edit(const char* name) const { return *PartOf<TimeCodeEdit>(name); }
    RangeSelector& Ranges() const { return *PartOf<RangeSelector>("ranges"); }
    QPoint Knob(int knob) const { return wheel.Model().KnobPixel(knob); }
    /// At a length (1: the rim) of a spoke.
    QPoint On(int knob, double length) const
    {
        const ColorSuppressionModel& model = wheel.Model();
        const double angle = model.TurnOf(knob) * 2.0 * M_PI;
        const QPointF way(std::cos(angle), -std::sin(angle));
        return (model.Centre() + way * (length * model.Radius())).toPoint();
    }
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        Pointer::Press(wheel, from, modifiers);
        Pointer::Move(wheel, to, modifiers);
        Pointer::Release(wheel, to, modifiers);
    }
    CustomColorSuppression& wheel;
};

void type(TimeCodeEdit& edit, const QString& text)
{
    edit.setFocus();
    edit.setText(text);
    edit.Commit();
}

} // namespace

/// The wheel of six colour amounts, and its control on an inspector page.
class ColorSuppressionTest : public QObject {
    Q_OBJECT
private slots:
    void AmountsBetweenTheSix();
    void PlacesKnobs();
    void DragsAlongTheSpoke();
    void BearsAnyNumbers();
    void PressPicksTheLastKnob();
    void DragIsOneUndoEntry();
    void FineModeIsFiner();
    void GesturesEnd();
    void KeysMoveTheActiveKnob();
    void ResetsAKnob();
    void TakesTypedNumbersAndExpressions();
    void ShowsOneRange();
    void SelectsRanges();
    void FitsNarrowPages();
    void InputsVanish();
    void RepaintsTheWheel();
};

void ColorSuppressionTest::AmountsBetweenTheSix()
{
    Record record;
    record.amounts = {0.2, 0.0, 0.0, 0.0, 0.0, 0.6};
    QVERIFY(std::abs(ColorSuppressionModel::AmountAt(record, 11.0 / 12.0) - 0.4) < 1e-12);
    record.offset = 0.25; // what lay at the hue 0 lies there
    QVERIFY(std::abs(ColorSuppressionModel::AmountAt(record, 0.25) - 0.2) < 1e-12);
    std::mt19937 dice(7);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (int i = 0; i < 20000; ++i) {
        for (double& amount : record.amounts)
            amount = share(dice);
        record.offset = i % 3 == 0 ? 0.0 : 4.0 * share(dice) - 2.0;
        const double hue = share(dice);
        // Hats over the six places, instead of a search for the sector.
        double expected = 0.0;
        for (int k = 0; k < 6; ++k) {
            const double away = std::abs(std::remainder(hue - record.offset - k / 6.0, 1.0));
            expected += std::max(0.0, 1.0 - 6.0 * away) * record.amounts[std::size_t(k)];
        }
        QVERIFY(std::abs(ColorSuppressionModel::AmountAt(record, hue) - expected) < 1e-9);
    }
}

void ColorSuppressionTest::PlacesKnobs()
{
    ColorSuppressionModel model;
    model.SetPlace(180, {201, 190});
    QCOMPARE(model.Square(), QRect(10, 5, 180, 180));
    QCOMPARE(model.Centre(), QPointF(99.5, 94.5));
    model.SetPlace(180, {175, 180}); // floors below 0, too
    QCOMPARE(model.Square().topLeft(), QPoint(-3, 0));
    model.SetPlace(180, {180, 180});
    for (int knob = 0; knob < 6; ++knob)
        QCOMPARE(model.KnobPosition(knob), model.Centre());
    model.SetAmount(0, 1.0);
    QCOMPARE(model.KnobPosition(0), model.Centre() + QPointF(70, 0));
    model.SetAmount(2, 0.5); // a third of a turn counter-clockwise
    QVERIFY(QLineF(model.KnobPosition(2), model.Centre() + QPointF(-17.5, -17.5 * std::sqrt(3.0)))
                .length() < 1e-9);
    model.SetRotation(0, 0.25);
    QVERIFY(QLineF(model.KnobPosition(0), model.Centre() + QPointF(0, -70)).length() < 1e-9);
    const QPoint knob = model.KnobPixel(0);
    QVERIFY(model.Hits(0, knob + QPoint(9, -9)) && model.Hits(0, knob - QPoint(9, -9)));
    QVERIFY(!model.Hits(0, knob + QPoint(10, 0)) && !model.Hits(0, knob - QPoint(0, 10)));
    model.SetMode(2); // with a record and a rotation of its own
    QCOMPARE(model.Amount(0), 0.0);
    QCOMPARE(model.TurnOf(0), 0.0);
}

void ColorSuppressionTest::DragsAlongTheSpoke()
{
    ColorSuppressionModel model;
    model.SetPlace(180, {180, 180});
    const QPointF centre = model.Centre();
    QCOMPARE(model.AmountFor(0, centre + QPointF(35, 50), false), 0.5);  // what is beside it is
    QCOMPARE(model.AmountFor(3, centre + QPointF(-35, -9), false), 0.5); // left out
    QCOMPARE(model.AmountFor(0, centre + QPointF(-1, 0), false), 0.0);
    QCOMPARE(model.AmountFor(0, centre + QPointF(71, 0), false), 1.0);
    QCOMPARE(model.AmountFor(0, centre + QPointF(10, 0), false), 0.14); // 90 pixels: two decimals
    QCOMPARE(model.AmountFor(0, centre + QPointF(10, 0), true), 0.143);
    model.SetPlace(202, {202, 202}); // 101 pixels: three
    QCOMPARE(model.AmountFor(0, model.Centre() + QPointF(10, 0), false), 0.127);
    QCOMPARE(model.Nudged(0, -1, 2), 0.0);
    model.SetAmount(0, 0.3);
    QCOMPARE(model.Nudged(0, 1, 2), 0.4);
    QCOMPARE(model.Nudged(0, 1, 0), 0.301);
}

void ColorSuppressionTest::BearsAnyNumbers()
{
    ColorSuppressionModel model;
    model.SetPlace(180, {180, 180});
    for (const double bad : {notANumber, infinity, -infinity, 1e30, -1e30, 1e308, -0.0}) {
        Record record;
        record.offset = bad;
        record.amounts.fill(bad);
        model.SetRecord(0, record);
        model.SetRotation(0, bad);
        for (int knob = 0; knob < 6; ++knob) {
            QVERIFY(model.Square().contains(model.KnobPixel(knob)));
            const double amount = model.AmountFor(knob, {bad, bad}, false);
            QVERIFY(amount >= 0.0 && amount <= 1.0);
        }
        ColorSuppressionModel::AmountAt(record, bad);
        record.amounts.fill(0.5);
        QCOMPARE(ColorSuppressionModel::AmountAt(record, 0.3), 0.5);
    }
    SuppressionStage stage;
    for (const double bad : {notANumber, infinity, 1e30, -5.0}) {
        stage.wheel.SetRecord(0, {bad, {bad, bad, bad, bad, bad, bad}});
        stage.wheel.SetRotation(0, bad);
        QVERIFY(!stage.wheel.grab().isNull());
        QCOMPARE(stage.wheel.DescribePart(0).left(4), QString("Red "));
    }
    ColorSuppressionModel none; // of a look without the bitmap
    QCOMPARE(none.AmountFor(0, {5, 5}, false), 0.0);
}

void ColorSuppressionTest::PressPicksTheLastKnob()
{
    SuppressionStage stage;
    for (const char* hue : hues)
        stage.InputOf(hue).SetValue(Number(0.0), 0.0);
    stage.document->Undo().Clear();
    const QPoint centre = stage.wheel.Model().Centre().toPoint();
    Pointer::Press(stage.wheel, centre + QPoint(3, -3));
    QCOMPARE(stage.wheel.DraggedKnob(), 5);
    QVERIFY(stage.wheel.hasFocus() && stage.document->IsAutoProxy());
    QCOMPARE(stage.wheel.ActivePart(), 5);
    Pointer::Move(stage.wheel, centre + QPoint(3, -3)); // the same pixel
    Pointer::Release(stage.wheel, centre + QPoint(3, -3));
    QCOMPARE(stage.ValueOf("Magenta"), 0.0);
    QVERIFY(stage.IsIdle() && stage.UndoEntries() == 0);
    Pointer::Press(stage.wheel, centre + QPoint(20, 0)); // on no knob
    QVERIFY(stage.IsIdle() && !stage.wheel.IsDragged());
    Pointer::Press(stage.wheel, centre, Qt::NoModifier, Qt::RightButton);
    QVERIFY(stage.IsIdle() && !stage.wheel.IsDragged());
}

void ColorSuppressionTest::DragIsOneUndoEntry()
{
    SuppressionStage stage;
    Pointer::Press(stage.wheel, stage.Knob(1) + QPoint(2, 3));
    for (const double length : {0.5, 0.9, 0.3})
        Pointer::Move(stage.wheel, stage.On(1, length));
    QVERIFY(stage.document->Undo().Depth() > 0);
    Pointer::Release(stage.wheel, stage.On(1, 0.3));
    QVERIFY(std::abs(stage.ValueOf("Yellow") - 0.3 * 9.0 / 7.0) < 0.01);
    QCOMPARE(stage.ValueOf("Yellow"), std::round(stage.ValueOf("Yellow") * 100.0) / 100.0);
    QCOMPARE(stage.Edit("edityellow").GetValue(), stage.ValueOf("Yellow"));
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Yellow"));
    QVERIFY(stage.IsIdle());
    stage.document->Undo().Undo();
    QCOMPARE(stage.wheel.Amount(1), 0.5);
    stage.Drag(stage.Knob(4), stage.On(4, 2.0));
    QCOMPARE(stage.ValueOf("Blue"), 1.0);
    stage.Drag(stage.Knob(4), stage.On(1, 0.4));
    QCOMPARE(stage.ValueOf("Blue"), 0.0);
}

void ColorSuppressionTest::FineModeIsFiner()
{
    SuppressionStage stage;
    const QPoint from = stage.Knob(0); // half a pixel off the spoke's own
    stage.Drag(from, from + QPoint(20, 0), Qt::ControlModifier);
    QVERIFY(std::abs(stage.ValueOf("Red") - 0.5 - 2.0 / 70.0) < 0.5 / 70.0 + 1e-3);
    const double thousandths = stage.ValueOf("Red") * 1000.0;
    QVERIFY(std::abs(thousandths - std::round(thousandths)) < 1e-6);
    QVERIFY(std::abs(thousandths / 10.0 - std::round(thousandths / 10.0)) > 1e-6);
}

void ColorSuppressionTest::GesturesEnd()
{
    SuppressionStage stage;
    Pointer::Press(stage.wheel, stage.Knob(2));
    Pointer::Move(stage.wheel, stage.On(2, 0.7));
    Pointer::Key(stage.wheel, QEvent::KeyPress, Qt::Key_Escape);
    QCOMPARE(stage.Outcome("Green"), QString("0.5 (0)"));
    QVERIFY(stage.IsIdle());
    Pointer::Press(stage.wheel, stage.Knob(2));
    Pointer::Move(stage.wheel, stage.On(2, 0.7));
    stage.window->hide();
    QVERIFY(stage.IsIdle() && !stage.wheel.IsDragged());
    QCOMPARE(stage.UndoEntries(), 1);

    // A write may close the page.
    SuppressionStage other;
    connect(&other.document->Undo().Stack(), &QUndoStack::indexChanged, other.page,
            [&other] { other.page->SetOperator(nullptr); });
    other.Drag(other.Knob(0), other.On(0, 0.7));
    QVERIFY(other.page->Controls().empty() && other.IsIdle());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ColorSuppressionTest::KeysMoveTheActiveKnob()
{
    SuppressionStage stage;
    stage.wheel.setFocus();
    QCOMPARE(stage.wheel.PartCount(), 6);
    Pointer::Stroke(stage.wheel, Qt::Key_PageUp); // round to the last
    Pointer::Stroke(stage.wheel, Qt::Key_PageUp);
    Pointer::Key(stage.wheel, QEvent::KeyPress, Qt::Key_Up);
    Pointer::Key(stage.wheel, QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, true);
    Pointer::Key(stage.wheel, QEvent::KeyRelease, Qt::Key_Up);
    QCOMPARE(stage.Outcome("Blue"), QString("0.52 (1)"));
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Blue"));
    Pointer::Stroke(stage.wheel, Qt::Key_Left, Qt::ShiftModifier);
    Pointer::Stroke(stage.wheel, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(stage.Outcome("Blue"), QString("0.419 (3)"));
    QCOMPARE(stage.wheel.DescribePart(4), QString("Blue 0.419"));
    const QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&stage.wheel);
    QCOMPARE(told->text(QAccessible::Value), QString("Blue 0.419"));
    QVERIFY(stage.IsIdle());
}

void ColorSuppressionTest::ResetsAKnob()
{
    SuppressionStage stage;
    stage.InputOf("Cyan").SetValue(Number(0.9), 0.0);
    stage.document->Undo().Clear();
    Pointer::Click(stage.wheel, stage.Knob(3), Qt::AltModifier);
    QCOMPARE(stage.Outcome("Cyan"), QString("0.5 (1)"));
    QCOMPARE(stage.UndoTexts(), QStringList("Reset Cyan"));
    Pointer::Click(stage.wheel, stage.Knob(3), Qt::AltModifier); // has it
    Pointer::Click(stage.wheel, stage.Knob(3) + QPoint(0, 20), Qt::AltModifier);
    QCOMPARE(stage.UndoEntries(), 1);
    // The menu over a knob is that of its input.
    Pointer::Move(stage.wheel, stage.Knob(3), Qt::NoModifier, Qt::NoButton);
    const QPoint at = stage.wheel.pos() + stage.Knob(3);
    InputList inputs;
    stage.Control().GetInputsAt(inputs, at.x(), at.y(), nullptr);
    QCOMPARE(inputs, InputList{&stage.InputOf("Cyan")});
}

void ColorSuppressionTest::TakesTypedNumbersAndExpressions()
{
    SuppressionStage stage;
    type(stage.Edit("editgreen"), "0.25+0.5");
    QCOMPARE(stage.Outcome("Green"), QString("0.75 (1)"));
    QCOMPARE(stage.wheel.Amount(2), 0.75);
    type(stage.Edit("editgreen"), "7"); // to its limit
    QCOMPARE(stage.ValueOf("Green"), 1.0);
    stage.InputOf("Red").SetExpression("0.125");
    QCOMPARE(stage.wheel.Amount(0), 0.125);
    QVERIFY(PixelsOf(stage.wheel, LookColor("Controls.ExpressionColour")) > 0);
    const int entries = stage.UndoEntries();
    stage.Drag(stage.Knob(0), stage.On(0, 0.7));
    Pointer::Click(stage.wheel, stage.Knob(0), Qt::AltModifier);
    Pointer::Stroke(stage.wheel, Qt::Key_Up);
    QCOMPARE(stage.wheel.Amount(0), 0.125);
    QCOMPARE(stage.UndoEntries(), entries);
    QVERIFY(stage.IsIdle());
}

void ColorSuppressionTest::ShowsOneRange()
{
    SuppressionStage stage({{CSCCD_AngleMaster, 0.25}});
    QVERIFY(stage.Ranges().isHidden());
    QVERIFY(std::abs(stage.Knob(0).x() - stage.wheel.Model().Centre().x()) <= 0.5); // upwards
    QVERIFY(stage.Knob(0).y() < stage.wheel.Model().Centre().y() - 30.0);
    double angle = 0.0;
    QVERIFY(stage.Control().CopyAttr(CSCCD_AngleMaster, &angle));
    QCOMPARE(angle, 0.25);

    // Without channels the order counts; other channels have no place.
    const char* control = "ColorSuppressionControl";
    InspectorStage loose(
        {{"One", {}, control},
         {"Two", {{IAS_SharedWith, "One"}, {IA_ControlIndex, 1}}, control},
         {"Odd", {{IAS_SharedWith, "One"}, {IA_ControlIndex, 2}, {IA_Channel, 6}}, control}});
    auto& wheel = *loose.PartOf<CustomColorSuppression>("wheel");
    loose.InputOf("Two").SetValue(Number(0.75), 0.0);
    loose.InputOf("Odd").SetValue(Number(0.25), 0.0);
    QCOMPARE(wheel.Amount(1), 0.75);
    QCOMPARE(wheel.Amount(2), 0.0);
    QVERIFY(loose.PartOf<TimeCodeEdit>("editgreen")->isHidden());
    Pointer::Press(wheel, wheel.Model().Centre().toPoint());
    QCOMPARE(wheel.DraggedKnob(), 0); // those that are not there are not hit
}

void ColorSuppressionTest::SelectsRanges()
{
    SuppressionStage stage({{CSCCS_LowName, "Dark"}, {CSCCD_AngleLow, 0.5}}, true);
    RangeSelector& ranges = stage.Ranges();
    QVERIFY(ranges.isVisible());
    QCOMPARE(ranges.NameOf(0), QString("Master"));
    QCOMPARE(ranges.NameOf(1), QString("Dark"));
    QCOMPARE(ranges.NameOf(3), QString("Highlights"));
    QVERIFY(ranges.SegmentOf(2).isEmpty() && ranges.SegmentOf(3).isEmpty());
    stage.InputOf("Low Red").SetValue(Number(0.9), 0.0);
    stage.InputOf("Low Red").SetExpression("0.875");
    QCOMPARE(stage.wheel.Amount(0), 0.5);
    const int before = stage.UndoEntries();
    Pointer::Click(ranges, ranges.SegmentOf(1).center());
    QCOMPARE(stage.wheel.Mode(), 1);
    QCOMPARE(stage.wheel.Amount(0), 0.875);
    QCOMPARE(stage.Edit("editred").GetValue(), 0.875);
    QVERIFY(stage.Knob(0).x() < stage.wheel.Model().Centre().x());
    QCOMPARE(stage.UndoEntries(), before); // a view is no change
    QCoreApplication::processEvents();
    stage.Drag(stage.Knob(3), stage.On(3, 0.1));
    QVERIFY(stage.ValueOf("Low Cyan") < 0.2);
    QCOMPARE(stage.ValueOf("Cyan"), 0.5);
    type(stage.Edit("editblue"), "0.25");
    QCOMPARE(stage.ValueOf("Low Blue"), 0.25);
    ranges.setFocus();
    Pointer::Stroke(ranges, Qt::Key_Right); // there are no others
    QCOMPARE(ranges.Range(), 1);
    Pointer::Stroke(ranges, Qt::Key_Left);
    QCOMPARE(stage.wheel.Mode(), 0);
    QCOMPARE(stage.Edit("editblue").GetValue(), 0.5);

    Pointer::Press(ranges, ranges.SegmentOf(1).center()); // let go elsewhere: nothing chosen
    Pointer::Release(ranges, ranges.SegmentOf(0).center());
    QCOMPARE(ranges.Range(), 0);
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&ranges);
    told->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    QCOMPARE(told->text(QAccessible::Value), QString("Dark"));
    QCOMPARE(stage.wheel.Mode(), 1);

    // Segments fill the row without gaps, however narrow.
    RangeSelector narrow;
    narrow.SetNames({"Master", "Shadows", "Midtones", "Highlights"});
    for (const int width : {90, 150, 217, 400}) {
        narrow.resize(width, 24);
        int left = 1;
        for (int range = 0; range < 4; ++range) {
            QCOMPARE(narrow.SegmentOf(range).left(), left);
            left = narrow.SegmentOf(range).right() + 1;
        }
        QCOMPARE(left, width - 1);
    }
}

void ColorSuppressionTest::FitsNarrowPages()
{
    SuppressionStage stage({}, true);
    const auto inside = [&stage] {
        const QRect wheel = stage.wheel.geometry();
        bool ok = wheel.size().expandedTo(stage.wheel.minimumSizeHint()) == wheel.size();
        for (const char* name : {"wheel", "ranges", "editred", "editmagenta", "editredlabel"}) {
            const auto* part = stage.PartOf<QWidget>(name);
            ok = ok && stage.Control().rect().contains(part->geometry()) && part->isVisible();
        }
        return ok && stage.Control().geometry().right() < stage.page->width();
    };
    const auto resize = [&stage](int width) {
        stage.window->resize(width, 600);
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    };
    const auto beside = [&stage] {
        return stage.Edit("editred").x() > stage.wheel.geometry().right();
    };
    QVERIFY(inside() && beside());
    resize(240);
    QVERIFY(inside() && !beside());
    QVERIFY(stage.Edit("editred").y() > stage.wheel.geometry().bottom());
    Pointer::Click(stage.Ranges(), stage.Ranges().SegmentOf(1).center());
    QCoreApplication::processEvents();
    QVERIFY(inside() && !beside()); // the layout was made anew
    resize(600);
    QVERIFY(inside() && beside());
}

void ColorSuppressionTest::InputsVanish()
{
    SuppressionStage stage;
    Pointer::Press(stage.wheel, stage.Knob(5));
    Pointer::Move(stage.wheel, stage.On(5, 0.7));
    stage.Control().RemoveInput(&stage.InputOf("Magenta"), nullptr);
    QVERIFY(stage.IsIdle());
    QVERIFY(stage.Edit("editmagenta").isHidden());
    Pointer::Move(stage.wheel, stage.On(5, 0.2));
    QVERIFY(!stage.wheel.IsDragged() && stage.IsIdle());
    QCOMPARE(stage.UndoEntries(), 1);
    SuppressionStage other;
    Pointer::Press(other.wheel, other.Knob(0));
    Pointer::Move(other.wheel, other.On(0, 0.7));
    other.document->RemoveTool(*other.tool);
    QVERIFY(other.IsIdle());
}

void ColorSuppressionTest::RepaintsTheWheel()
{
    SuppressionStage stage;
    Pointer::Press(stage.wheel, stage.Knob(1));
    PaintWatch watch(stage.wheel);
    Pointer::Move(stage.wheel, stage.On(1, 0.6));
    QVERIFY(!watch.Take().isEmpty());
    Pointer::Move(stage.wheel, stage.On(1, 0.6));
    QVERIFY(watch.Take().isEmpty());
    stage.wheel.SetMode(0); // is in it
    stage.wheel.SetRecord(0, stage.wheel.Model().Shown());
    stage.wheel.SetRecord(3, {0.0, {1, 1, 1, 1, 1, 1}}); // not the one shown
    QVERIFY(watch.Take().isEmpty());
    const QImage plain = stage.wheel.grab().toImage();
    struct Black final : ColorDisplay {
        void Apply(float* rgb, int count) const override { std::fill_n(rgb, 3 * count, 0.0f); }
    };
    DisplayColors::Global().SetDisplay(std::make_shared<Black>());
    QVERIFY(!watch.Take().isEmpty());
    QVERIFY(stage.wheel.grab().toImage() != plain);
    DisplayColors::Global().SetDisplay(nullptr);
    QCOMPARE(stage.wheel.grab().toImage(), plain);
}

QTEST_MAIN(ColorSuppressionTest)
#include "color_suppression_test.moc"
