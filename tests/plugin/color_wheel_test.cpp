#include "controls/color/ColorWheelControl.h"

#include "plugin/InspectorStage.h"
#include "widgets/CustomColorWheel.h"
#include "widgets/RangeSelector.h"

#include <cmath>
#include <limits>

#include <QLineEdit>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr double turn = 2.0 * M_PI;
using Part = ColorWheelModel::Part;

ColorWheelModel modelOf(int side = 208)
{
    ColorWheelModel model;
    model.widget = QRect(0, 0, side, side);
    model.diameter = 200;
    model.disc = 0.6;
    model.tintKnob = QSize(13, 13);
    return model;
}

PointerDrag::Step stepTo(const ColorWheelModel& model, double angle, double length, QPoint press)
{
    return {model.PlaceOf(angle, length), press, false, false};
}

std::vector<StagedInput> staged(int ranges, int first = 0)
{
    struct Row {
        const char* id;
        double value;
    };
    static const Row rows[] = {{"Hue", 0.0}, {"Saturation", 1.0}, {"Angle", 0.0}, {"Length", 0.0}};
    static std::vector<std::string> ids;
    ids.clear();
    ids.reserve(16);
    std::vector<StagedInput> inputs;
    for (int range = first; range < first + ranges; ++range) {
        for (int channel = 0; channel < 4; ++channel) {
            ids.push_back(std::string(rows[channel].id) + (range ? std::to_string(range) : ""));
            std::vector<TagPair> tags{
                {IA_Channel, channel}, {IA_Range, range}, {IAD_Default, rows[channel].value}};
            if (ids.size() > 1)
                tags.push_back({IAS_SharedWith, ids.front().c_str()});
            inputs.push_back({ids.back().c_str(), tags, "ColorWheelControl"});
        }
    }
    return inputs;
}

struct WheelStage : InspectorStage {
    explicit WheelStage(int ranges = 1, int first = 0) : InspectorStage(staged(ranges, first), 420)
    {
    }
    QStringList ExpressionLines() const
    {
        QStringList texts;
        for (const QLineEdit* line : window->findChildren<QLineEdit*>("expression")) {
            if (line->isVisible())
                texts += line->text() + (ControlOf().isAncestorOf(line) ? "" : " below");
        }
        return texts;
    }
    CustomColorWheel& Wheel() const { return *PartOf<CustomColorWheel>("wheel"); }
    TimeCodeEdit& Edit(const char* name) const { return *PartOf<TimeCodeEdit>(name); }
    QPointF At(double angle, double length) const { return Wheel().Model().PlaceOf(angle, length); }
    bool HasUndo(const QStringList& texts) const { return UndoTexts() == texts && IsIdle(); }
};

} // namespace

/// The colour wheel: places and drags without a window, then the control on an inspector page.
class ColorWheelTest : public QObject {
    Q_OBJECT
private slots:
    void FindsPlaces();
    void TurnsAround();
    void PlacesTheTint();
    void KeepsToOneOfTwo();
    void ShowsWhatHuesBecome();
    void WritesItsInputs();
    void ChoosesRanges();
    void ChangesRangesInPlace();
    void SurvivesBadInput();
};

void ColorWheelTest::FindsPlaces()
{
    const ColorWheelModel model = modelOf();
    QCOMPARE(model.Centre(), QPointF(103.5, 103.5));
    QCOMPARE(modelOf(209).Centre(), QPointF(103.5, 103.5));
    QCOMPARE(modelOf(150).Centre(), QPointF(74.5, 74.5)); // wider than its widget
    const struct {
        QPointF from; // the centre, y downwards
        double angle, length;
    } rows[] = {{{100, 0}, 0.0, 1.0},
                {{-50, 0}, M_PI, 0.5},
                {{0, -25}, M_PI / 2, 0.25},
                {{0, 25}, 3 * M_PI / 2, 0.25},
                {{0, 0}, 3 * M_PI / 2, 0.0},
                {{50, 50}, -M_PI / 4, std::sqrt(0.5)},
                {{-50, 50}, 5 * M_PI / 4, std::sqrt(0.5)}};
    for (const auto& row : rows) {
        const auto polar = model.PolarOf(model.Centre() + row.from);
        QVERIFY(std::abs(polar.angle - row.angle) < 1e-12);
        QVERIFY(std::abs(polar.length - row.length) < 1e-12);
    }
    // The disc with four pixels around it, its knob beyond, the ring, nothing outside.
    const WheelRecord neutral;
    const WheelRecord tinted{0.0, 1.0, 0.25, 1.0, 1.0};
    QCOMPARE(model.HitTest({103, 103}, neutral), Part::Tint);
    QCOMPARE(model.HitTest({103, 103 - 61}, neutral), Part::Tint);
    QCOMPARE(model.HitTest({103, 103 - 62}, neutral), Part::Ring);
    QCOMPARE(model.HitTest({103, 103 - 65}, tinted), Part::Tint);
    QCOMPARE(model.HitTest({103, 103 - 68}, tinted), Part::Ring);
    QCOMPARE(model.HitTest({103, 4}, neutral), Part::Ring);
    QCOMPARE(model.HitTest({4, 4}, neutral), Part::None);
    QCOMPARE(ColorWheelModel().HitTest({0, 0}, neutral), Part::None);
}

void ColorWheelTest::TurnsAround()
{
    const ColorWheelModel model = modelOf();
    for (const int way : {1, -1}) {
        const QPoint press = model.PlaceOf(0.3, 0.8).toPoint();
        const double from = model.PolarOf(press).angle;
        const ColorWheelModel::Drag drag{Part::Ring, {0.1, 1.5, 0.0, 0.0, 1.0}};
        WheelRecord present = drag.start;
        double last = present.hue;
        for (int i = 1; i <= 720; ++i) { // two turns
            const double angle = from + way * i * turn / 360.0;
            present = model.DragTo(drag, present, stepTo(model, angle, 0.8, press)).record;
            QVERIFY(std::abs(present.hue - last + way / 360.0) < 1e-9);
            last = present.hue;
        }
        QVERIFY(std::abs(present.hue - (0.1 - way * 2.0)) < 1e-9);
        QVERIFY(std::abs(present.saturation - 1.5 * 0.8 / model.PolarOf(press).length) < 1e-9);
    }
    const QPoint press = model.PlaceOf(0.0, 0.7).toPoint();
    const double length = model.PolarOf(press).length;
    const ColorWheelModel::Drag drag{Part::Ring, {0.0, 2.0, 0.3, 0.4, 1.0}};
    const WheelRecord dragged =
        model.DragTo(drag, drag.start, stepTo(model, 0.0, length / 2.0, press)).record;
    QVERIFY(std::abs(dragged.saturation - 1.0) < 1e-9);
    QVERIFY(dragged.tintAngle == 0.3 && dragged.tintLength == 0.4);
    // Whatever the other one is, what is not moved stays.
    const WheelRecord odd{0.0, -0.5, 0.0, 1.5, 1.0};
    QCOMPARE(model.Nudged(Part::Ring, odd, {1, 0}, 1).saturation, -0.5);
    QCOMPARE(model.Nudged(Part::Tint, odd, {1, 0}, 1).tintLength, 1.5);
    QCOMPARE(NearestTurn(0.25, 7.1), 7.25);
    QCOMPARE(NearestTurn(0.5, 0.0), 0.5); // as near as -0.5
    QCOMPARE(NearestTurn(0.25, 1e300), 1e300);
    QVERIFY(NearestTurn(0.25, std::numeric_limits<double>::infinity()) == 0.25);
}

void ColorWheelTest::PlacesTheTint()
{
    ColorWheelModel model = modelOf();
    const auto lengthAt = [&](double share, bool fine) {
        PointerDrag::Step step{model.PlaceOf(0.0, share * 0.6), {0, 0}, fine, false};
        return model.DragTo({Part::Tint, {}}, {}, step).record.tintLength;
    };
    // Sixty pixels are told to two decimals, five times as finely with Ctrl.
    QCOMPARE(lengthAt(0.1234, false), 0.12);
    QCOMPARE(lengthAt(0.1234, true), 0.124);
    QCOMPARE(lengthAt(1.7, false), 1.0);
    model.squaredTint = true; // and squared lengths to four
    QCOMPARE(lengthAt(0.5, false), 0.25);
    QCOMPARE(lengthAt(0.1234, false), 0.0152);
    QVERIFY(std::abs(model.PolarOf(model.TintPlace({0.0, 1.0, 0.0, 0.25, 1.0})).length - 0.3) <
            1e-9);
    const PointerDrag::Step centre{model.Centre(), {0, 0}, false, false};
    const WheelRecord dragged = model.DragTo({Part::Tint, {}}, {}, centre).record;
    QVERIFY(dragged.tintLength == 0.0 && dragged.tintAngle == -0.25); // next to 0: three quarters
}

void ColorWheelTest::KeepsToOneOfTwo()
{
    const ColorWheelModel model = modelOf();
    const QPoint press = model.PlaceOf(0.0, 0.8).toPoint();
    const double length = model.PolarOf(press).length;
    const WheelRecord start{0.25, 1.0, 0.1, 0.5, 1.0};
    const auto drag = [&](Part part, double angle, double to) {
        PointerDrag::Step step = stepTo(model, angle, to, press);
        step.oneAxis = true;
        return model.DragTo({part, start}, start, step);
    };
    auto turned = drag(Part::Ring, 1.0, length * 1.01);
    QVERIFY(turned.record.saturation == 1.0 && turned.record.hue < 0.2);
    QVERIFY(turned.axes.first && !turned.axes.second);
    auto scaled = drag(Part::Ring, 0.05, length * 1.2);
    QVERIFY(scaled.record.hue == 0.25 && scaled.record.saturation > 1.1);
    QVERIFY(drag(Part::Tint, 0.1 * turn, 0.06).record.tintAngle == 0.1);
    QVERIFY(drag(Part::Tint, 0.4 * turn, 0.3).record.tintLength == 0.5);
}

void ColorWheelTest::ShowsWhatHuesBecome()
{
    CustomColorWheel wheel;
    wheel.resize(wheel.sizeHint());
    const auto colorAt = [&](double turns, double length) {
        return wheel.grab().toImage().pixelColor(
            wheel.Model().PlaceOf(turns * turn, length).toPoint());
    };
    constexpr double band = 0.655; // the middle of it
    constexpr double ring = 0.9;
    constexpr double first = 0.05; // clear of knobs and marks
    const auto unlike = [](const QColor& a, const QColor& b) {
        return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                         std::abs(a.blue() - b.blue())});
    };
    const QColor hue = colorAt(first, ring);
    const QColor next = colorAt(first + 0.2, band);
    QVERIFY(unlike(hue, colorAt(first, band)) < 4 && unlike(hue, next) > 60);
    wheel.SetRecord(0, {-0.2, 1.0, 0.0, 0.0, 1.0}); // a fifth of a turn counter-clockwise
    QVERIFY(unlike(hue, colorAt(first + 0.2, ring)) < 4);
    QCOMPARE(colorAt(first + 0.2, band), next);
    wheel.SetRecord(0, {-0.2, 0.0, 0.0, 0.0, 1.0});
    QVERIFY(colorAt(first + 0.2, band).saturation() < 4);
    QVERIFY(unlike(hue, colorAt(first + 0.2, ring)) < 4);
}

void ColorWheelTest::WritesItsInputs()
{
    const WheelStage stage;
    CustomColorWheel& wheel = stage.Wheel();
    QVERIFY(!stage.PartOf<RangeSelector>("ranges")->isVisible());
    Pointer::Press(wheel, stage.At(0.0, 0.3));
    QVERIFY(stage.document->IsAutoProxy());
    QCOMPARE(stage.ValueOf("Length"), 0.51); // 30.5 of 60 pixels
    Pointer::Move(wheel, stage.At(turn / 4, 0.6));
    Pointer::Release(wheel, stage.At(turn / 4, 0.6));
    QVERIFY(stage.HasUndo({"Adjust Tint"}));
    QVERIFY(std::abs(stage.ValueOf("Angle") - 0.25) < 0.01 && stage.ValueOf("Length") > 0.98);
    // The press on the ring changes nothing yet; a turn of a quarter does.
    Pointer::Press(wheel, stage.At(0.0, 0.8));
    QCOMPARE(stage.UndoEntries(), 1);
    Pointer::Move(wheel, stage.At(turn / 4, 0.8));
    Pointer::Release(wheel, stage.At(turn / 4, 0.8));
    QVERIFY(stage.HasUndo({"Adjust Tint", "Adjust Hue/Saturation"}));
    QVERIFY(std::abs(stage.ValueOf("Hue") + 0.25) < 0.01);
    QCOMPARE(stage.Edit("edithue").GetValue(), stage.ValueOf("Hue"));
    Pointer::Stroke(wheel, Qt::Key_PageUp); // the disc
    Pointer::Stroke(wheel, Qt::Key_Down, Qt::ShiftModifier);
    QVERIFY(std::abs(stage.ValueOf("Length") - 0.9) < 0.02);
    Pointer::Click(wheel, stage.At(1.0, 0.8), Qt::AltModifier);
    QCOMPARE(stage.ValueOf("Hue"), 0.0);
    QCOMPARE(stage.ValueOf("Saturation"), 1.0);
    QVERIFY(stage.HasUndo(
        {"Adjust Tint", "Adjust Hue/Saturation", "Adjust Tint", "Reset Hue/Saturation"}));
    TimeCodeEdit& saturation = stage.Edit("editsaturation");
    saturation.setFocus();
    saturation.setText("1.5");
    saturation.Commit();
    QCOMPARE(wheel.Saturation(), 1.5);
    stage.InputOf("Angle").SetExpression("0.125");
    QCOMPARE(wheel.TintAngle(), 0.125);
    Pointer::Click(wheel, stage.At(2.0, 0.3)); // only the length is free
    QCOMPARE(wheel.TintAngle(), 0.125);
    QCOMPARE(wheel.TintLength(), 0.5);
    stage.InputOf().SetAttrsTagList({{IC_Disabled, 1}});
    QVERIFY(!wheel.isEnabled() && !saturation.isEnabled());
}

void ColorWheelTest::ChoosesRanges()
{
    const WheelStage stage(3);
    auto& control = stage.ControlOf<ColorWheelControl>();
    auto& selector = *stage.PartOf<RangeSelector>("ranges");
    QVERIFY(selector.isVisible() && selector.IsOffered(2) && !selector.IsOffered(3));
    QCOMPARE(selector.NameOf(1), QString("Shadows"));
    Pointer::Click(selector, selector.SegmentOf(2).center());
    QCOMPARE(stage.Wheel().Mode(), 2);
    Pointer::Click(stage.Wheel(), stage.At(0.0, 0.3));
    QCOMPARE(stage.ValueOf("Length2"), 0.51);
    QVERIFY(stage.ValueOf("Length") == 0.0 && stage.ValueOf("Length1") == 0.0);
    stage.InputOf("Saturation2").SetValue(Number(3.0), 0.0);
    QCOMPARE(stage.Edit("editsaturation").GetValue(), 3.0);
    stage.InputOf("Saturation1").SetValue(Number(2.0), 0.0);
    QCOMPARE(stage.Wheel().Record(1).saturation, 2.0);
    QCOMPARE(stage.Wheel().Saturation(), 3.0);
    QCOMPARE(control.GetInputFrom(&stage.Edit("edithue"), nullptr), &stage.InputOf("Hue2"));
    // A locked tool can be looked at, and a page made anew shows what was chosen last.
    stage.tool->SetLocked(true);
    Pointer::Click(selector, selector.SegmentOf(1).center());
    QVERIFY(stage.Wheel().Mode() == 1 && !stage.Wheel().isEnabled());
    stage.page->SetOperator(nullptr);
    stage.page->SetOperator(stage.tool);
    QCOMPARE(stage.Wheel().Mode(), 1);
}

void ColorWheelTest::ChangesRangesInPlace()
{
    const WheelStage stage(2);
    auto& selector = *stage.PartOf<RangeSelector>("ranges");
    stage.InputOf("Hue1").SetExpression("0.25");
    stage.InputOf("Angle").SetExpression("0.5");
    QCOMPARE(stage.ExpressionLines(), QStringList("0.5"));
    TimeCodeEdit& edit = stage.Edit("editsaturation");
    edit.setFocus();
    edit.setText("1.5"); // of the range that is left
    selector.setFocus();
    Pointer::Stroke(selector, Qt::Key_Right);
    QVERIFY(stage.Wheel().Mode() == 1 && selector.hasFocus());
    QVERIFY(stage.ValueOf("Saturation") == 1.5 && stage.ValueOf("Saturation1") == 1.0);
    QCOMPARE(edit.GetValue(), 1.0);
    QCOMPARE(stage.ExpressionLines(), QStringList("0.25"));
    InputList inputs;
    const QPoint ring = stage.At(0.0, 0.8).toPoint() + stage.Wheel().pos();
    stage.ControlOf().GetInputsAt(inputs, ring.x(), ring.y(), nullptr);
    QVERIFY(inputs.size() == 4 && inputs.front() == &stage.InputOf("Hue1"));
    for (const char* id : {"Hue1", "Saturation1", "Angle1", "Length1"})
        stage.ControlOf().RemoveInput(&stage.InputOf(id), nullptr);
    QVERIFY(stage.Wheel().Mode() == 0 && !selector.isVisible());
    QCOMPARE(stage.ExpressionLines(), QStringList("0.5"));
    QCOMPARE(WheelStage(2, 1).Wheel().Mode(), 1); // the lowest that there is
}

void ColorWheelTest::SurvivesBadInput()
{
    const double bad[] = {std::nan(""), std::numeric_limits<double>::infinity(), -1e30, 1e30};
    for (const double value : bad) {
        const WheelStage stage(2);
        for (const char* id : {"Hue", "Saturation", "Angle", "Length"})
            stage.InputOf(id).SetValue(Number(value), 0.0);
        stage.document->Undo().Clear();
        stage.window->grab();
        for (const double length : {0.0, 0.3, 0.8}) {
            Pointer::Press(stage.Wheel(), stage.At(0.5, length));
            Pointer::Move(stage.Wheel(), stage.At(2.5, length), Qt::ShiftModifier);
            Pointer::Move(stage.Wheel(), stage.At(4.5, length), Qt::ControlModifier);
            Pointer::Release(stage.Wheel(), stage.At(4.5, length));
        }
        QVERIFY(stage.IsIdle());
        stage.window->grab();
    }
    WheelStage stage;
    stage.Edit("edittintlength").setText("2.5");
    stage.Edit("edittintlength").Commit();
    QCOMPARE(stage.ValueOf("Length"), 1.0);
    Pointer::Press(stage.Wheel(), stage.At(0.5, 0.3));
    stage.ControlOf().RemoveInput(&stage.InputOf("Length"), nullptr);
    QVERIFY(stage.IsIdle());
    Pointer::Press(stage.Wheel(), stage.At(0.5, 0.8));
    Pointer::Move(stage.Wheel(), stage.At(0.9, 0.8));
    stage.document->RemoveTool(*stage.tool);
    QVERIFY(stage.document->Undo().Depth() == 0 && !stage.document->IsAutoProxy());
}

QTEST_MAIN(ColorWheelTest)
#include "color_wheel_test.moc"
