#include "widgets/SliderDrag.h"

#include <cmath>
#include <optional>
#include <random>

#include <QtTest>

using namespace Marlox;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

SliderScale scaleOf(double low, double high, double gamma = 1.0)
{
    SliderScale scale;
    scale.minValue = low;
    scale.maxValue = high;
    scale.gamma = gamma;
    scale.pixelLow = 10.0;
    scale.pixelHigh = 210.0;
    return scale;
}

SliderScale centredScale(double low, double high, double centre)
{
    SliderScale scale = scaleOf(low, high);
    scale.centred = true;
    scale.centre = centre;
    return scale;
}

SliderModel modelOf(double low, double high, double value)
{
    SliderModel model;
    model.SetTrack(10.0, 210.0);
    model.SetRange(low, high);
    model.value = value;
    return model;
}

/// With steps and counted ticks; 0 ticks are automatic ones.
SliderModel tickedModel(double low, double high, double value, double ticks, double plain = 0.01)
{
    SliderModel model = modelOf(low, high, value);
    model.SetSteps(plain / 10, plain);
    model.SetTickFreq(ticks);
    return model;
}

bool near(double a, double b, double tolerance = 1e-9)
{
    return std::abs(a - b) <= tolerance * std::max({1.0, std::abs(a), std::abs(b)});
}

/// Moves a drag, each value told becoming the model's; where that is not as wanted, says so.
QString follow(SliderDrag& drag, SliderModel& model, bool fine,
               std::initializer_list<std::pair<double, double>> moves)
{
    for (const auto& [pixel, wanted] : moves) {
        const std::optional<double> value = drag.MoveTo(model, pixel, fine);
        if (!value || !near(*value, wanted))
            return QStringLiteral("%1 at %2").arg(value.value_or(NAN)).arg(pixel);
        model.value = *value;
    }
    return {};
}

/// The steps of a level below and above the value.
bool hasSteps(const SliderModel& model, double below, double above)
{
    return near(model.StepBelow(2), below) && near(model.StepAbove(2), above);
}

} // namespace

class SliderModelTest : public QObject {
    Q_OBJECT
private slots:
    void Maps();
    void MapsBothWaysAlike();
    void KeepsPrecision();
    void TakesRanges();
    void SpacesTicks();
    void Centres();
    void Steps();
    void TakesWholeNumbers();
    void MarksTicks();
    void HitsParts();
    void GrabsWithoutMoving();
    void FineDragsKeepTheirPlace();
    void Snaps();
    void DragsRelatively();
    void RandomDragsStayInBounds();
};

void SliderModelTest::Maps()
{
    const SliderScale linear = scaleOf(-2.0, 6.0);
    const SliderScale equal = scaleOf(3.0, 3.0);
    const SliderScale curved = scaleOf(-4.0, 4.0, 2.0); // through zero with its sign
    SliderScale halves = centredScale(-1.0, 9.0, 0.0);
    halves.gamma = 3.0; // rests while centred
    const SliderScale lowCentre = centredScale(0.0, 1.0, 0.0);
    const SliderScale highCentre = centredScale(0.0, 1.0, 1.0);
    const auto maps = [](const SliderScale& scale, double value, double pixel) {
        return near(scale.ValueToPixel(value), pixel) && near(scale.PixelToValue(pixel), value);
    };
    QVERIFY(maps(linear, -2, 10) && maps(linear, 0, 60) && maps(linear, 6, 210));
    QVERIFY(maps(curved, -1, 60) && maps(curved, 0, 110) && maps(curved, 1, 160));
    QVERIFY(maps(halves, -0.5, 60) && maps(halves, 0, 110) && maps(halves, 4.5, 160));
    QVERIFY(maps(lowCentre, 0, 110) && maps(highCentre, 1, 110));
    // Beyond the ends, and where all values are one.
    for (const double beyond : {-100.0, 100.0})
        QCOMPARE(linear.ValueToPixel(beyond), beyond < 0 ? 10.0 : 210.0);
    QCOMPARE(linear.PixelToValue(260), 8.0);
    QVERIFY(equal.ValueToPixel(-1) == 10.0 && equal.ValueToPixel(7) == 10.0);
    QCOMPARE(equal.PixelToValue(100), 3.0);
    QVERIFY(lowCentre.ValueToPixel(-1) == 10.0 && highCentre.ValueToPixel(1.5) == 210.0);
    QCOMPARE(lowCentre.PixelToValue(50), 0.0);
}

void SliderModelTest::MapsBothWaysAlike()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 60; ++round) {
        const double size = std::pow(10.0, std::floor(unit(random) * 12.0) - 6.0);
        const double low = (unit(random) - 0.5) * 4.0 * size;
        const double high = low + (0.01 + unit(random)) * size;
        const double gamma = round % 3 == 0 ? 1.0 : 0.3 + 4.0 * unit(random);
        SliderScale scale = scaleOf(low, high, gamma);
        scale.centred = round % 4 == 3;
        scale.centre = low + (high - low) * (0.05 + 0.9 * unit(random));
        double lastValue = -inf;
        for (double pixel = scale.pixelLow; pixel <= scale.pixelHigh; pixel += 0.5) {
            const double value = scale.PixelToValue(pixel);
            QVERIFY(std::exchange(lastValue, value) < value);
            QVERIFY(near(scale.ValueToPixel(value), pixel, 1e-7));
            // What is kept tells neighbouring pixels apart; steep power laws are not that fine.
            const double kept = scale.Rounded(value, false);
            QVERIFY(gamma != 1.0 || std::abs(scale.ValueToPixel(kept) - pixel) <= 1.0);
        }
    }
}

void SliderModelTest::KeepsPrecision()
{
    QCOMPARE(scaleOf(0, 1).GetPrecision(0.5), 1e3);
    QCOMPARE(scaleOf(0, 9.5).GetPrecision(0.5), 1e3);
    QCOMPARE(scaleOf(0, 10).GetPrecision(0.5), 1e2);
    QCOMPARE(scaleOf(0, 1e5).GetPrecision(0.5), 1e-2);
    QCOMPARE(scaleOf(0, 0.004).GetPrecision(0.001), 1e6);
    QCOMPARE(scaleOf(3, 3).GetPrecision(3), 1.0);
    const SliderScale halves = centredScale(-1, 10, 0); // of 100 pixels: two digits
    QCOMPARE(halves.GetPrecision(-0.5), 1e2);
    QCOMPARE(halves.GetPrecision(0.5), 1e1);
    for (const auto& [scale, value] :
         {std::pair{halves, 0.0}, {centredScale(0, 1, 0), -1.0}, {centredScale(0, 1, 1), 2.0}})
        QCOMPARE(scale.GetPrecision(value), 1.0); // at the centre, and in an empty half
    // Gamma 2 of 0 to 1: the first pixel is (1/200)^2, wanting five digits; the last is 2/200.
    QCOMPARE(scaleOf(0, 1, 2).GetPrecision(0), 1e5);
    QCOMPARE(scaleOf(0, 1, 2).GetPrecision(1), 1e3);
    QCOMPARE(scaleOf(0, 1, 8).GetPrecision(0), 1e5); // at most two digits more
    // Halves are rounded away from zero.
    QCOMPARE(scaleOf(-4, 4).Rounded(0.0625 * 0.1, false), 0.006);
    const SliderScale hundreds = scaleOf(-4e5, 4e5); // kept to hundreds
    QCOMPARE(hundreds.Rounded(12350.0, false), 12400.0);
    QCOMPARE(hundreds.Rounded(-12350.0, false), -12400.0);
    QCOMPARE(hundreds.Rounded(12345.0, true), 12350.0);
    const SliderScale odd = centredScale(0.0, 1.0, 0.3333333);
    QCOMPARE(odd.Rounded(0.3333333, false), 0.3333333); // exact already
    QCOMPARE(odd.Rounded(0.3333, false), 0.333);
}

void SliderModelTest::TakesRanges()
{
    SliderModel model = modelOf(0.0, 1.0, 0.7);
    QVERIFY(model.SetRange(2.0, 5.0));
    QVERIFY(model.value == 2.0 && model.Scale().centre == 2.0);
    // A bound that creeps is not followed, but remembered.
    QVERIFY(!model.SetRange(2.0 + 1e-7, 5.0));
    QCOMPARE(model.RequestedLow(), 2.0 + 1e-7);
    QVERIFY(!model.SetRange(2.0 + 2e-7, 5.0) && model.Scale().minValue == 2.0);
    QVERIFY(model.SetRange(2.0 + 4e-7, 5.0) && model.Scale().minValue == 2.0 + 4e-7);
    // Turned round; hopeless ones are ignored.
    QVERIFY(model.SetRange(9.0, -3.0));
    QVERIFY(!model.SetRange(NAN, 1.0) && !model.SetRange(0.0, inf) &&
            !model.SetRange(-1e308, 1e308));
    QVERIFY(model.Scale().minValue == -3.0 && model.Scale().maxValue == 9.0);
    // Shown rounded outward where that costs less than a tenth, exactly that is not enough.
    const auto shows = [](double low, double high, double shownLow, double shownHigh) {
        const SliderModel other = modelOf(low, high, low);
        return other.DisplayLow() == shownLow && other.DisplayHigh() == shownHigh;
    };
    QVERIFY(shows(0.3, 9.8, 0.0, 10.0) && shows(0.3, 2.8, 0.3, 3.0));
    QVERIFY(shows(0.0, 0.5, 0.0, 0.5) && shows(-0.05, 0.95, -0.05, 1.0));
    QVERIFY(shows(0.5, 5.5, 0.5, 5.5));
}

void SliderModelTest::SpacesTicks()
{
    const double rows[][3] = {{0, 1, 0.1},  {0, 2, 0.2},    {0, 4, 0.5},        {0, 8, 1},
                              {0, 100, 10}, {0, 255, 20.0}, {0, 0.003, 0.0002}, {5, 5, 1}};
    for (const auto& [low, high, step] : rows) {
        SliderModel model = tickedModel(low, high, low, 0, 1e-5);
        model.SetTickFreq(0); // again changes nothing
        QVERIFY2(hasSteps(model, step, step), qPrintable(QString::number(high)));
        QCOMPARE(model.TickCount(), 0.0);
    }
    SliderModel model = tickedModel(0.0, 10.0, 0.0, 5, 0.1);
    QVERIFY(model.TickCount() == 5.0 && hasSteps(model, 2.5, 2.5));
    for (const double few : {1.0, -3.0}) { // at least the two ends
        model.SetTickFreq(few);
        QVERIFY(model.TickCount() == 2.0 && hasSteps(model, 10.0, 10.0));
    }
    model.SetTickFreq(5);
    QVERIFY(model.SetCentre(2.0));
    QVERIFY(hasSteps(model, 0.5, 2.0));
    model.SetRange(0.0, 6.0); // the steps follow the range
    QVERIFY(hasSteps(model, 0.5, 1.0));
    // As large as the tick step: Shift moves further, the marks are not moved by it.
    const SliderModel large = tickedModel(0.0, 1.0, 0.5, 0, 0.1);
    QVERIFY(hasSteps(large, 0.2, 0.2));
    QCOMPARE(large.TickPixels(4.0).size(), std::size_t(11));
    QVERIFY(hasSteps(tickedModel(-1.0, 10.0, 0.0, 0, 0.1), 0.2, 1.0));
}

void SliderModelTest::Centres()
{
    SliderModel model = modelOf(-1.0, 20.0, 0.0);
    // Nothing comes by itself until ticks are asked for.
    for (const int level : {0, 1, 2})
        QVERIFY(model.StepBelow(level) == 1.0 && model.StepAbove(level) == 1.0);
    QVERIFY(!model.Scale().centred && model.TickPixels(4.0).empty());
    model.SetSteps(0.001, 0.01);
    for (int i = 0; i < 2; ++i) { // again changes nothing
        model.SetTickFreq(0);
        QVERIFY(model.Scale().centred && model.Scale().centre == 0.0);
        QVERIFY(hasSteps(model, 0.1, 2.0));
    }
    // Goes with the range and comes back with it.
    model.SetRange(1.0, 20.0);
    QVERIFY(!model.Scale().centred);
    model.SetRange(-2.0, 2.0);
    QVERIFY(model.Scale().centred && model.Scale().centre == 0.0);
    model.SetTickFreq(11);
    QVERIFY(!model.Scale().centred);
    // Set by hand it stays.
    QVERIFY(model.SetCentre(1.5));
    model.SetRange(1.0, 5.0);
    QVERIFY(model.Scale().centred && model.Scale().centre == 1.5);
    QVERIFY(!model.SetCentre(1.0));
    // With ticks counted the bounds decide, without the shown ones do.
    SliderModel rounded = modelOf(0.3, 9.8, 1.0);
    QVERIFY(rounded.SetCentre(0.3) && !rounded.SetCentre(0.0));
    rounded.SetTickFreq(4);
    QVERIFY(!rounded.SetCentre(0.3) && !rounded.SetCentre(NAN));
}

void SliderModelTest::Steps()
{
    const struct {
        double low, high, value;
        int level; // negative: down, from -1
        double stepped;
    } rows[] = {{0, 1, 0.5, -1, 0.499},   {0, 1, 0.5, 1, 0.51},
                {0, 1, 0.5, 2, 0.6},      {0, 1, 0.005, -2, 0},
                {0, 1, 0.95, 2, 1},       {0, 1, 7, 1, 1},
                {0, 1, 7, -2, 0.99},                             // typed, beyond the end
                {-1, 10, 0.5, -3, 0},     {-1, 10, -0.05, 2, 0}, // stops at the centre
                {-1, 10, 0, -3, -0.1},    {-1, 10, 0, 2, 1},
                {-1, 10, 1e-10, -3, -0.1}}; // as good as the centre: the step below counts
    for (const auto& [low, high, value, level, stepped] : rows) {
        const SliderModel model = tickedModel(low, high, value, 0);
        const double reached = level < 0 ? model.SteppedDown(-1 - level) : model.SteppedUp(level);
        QVERIFY2(near(reached, stepped, 1e-8), qPrintable(QString("%1 %2").arg(value).arg(level)));
    }
}

void SliderModelTest::TakesWholeNumbers()
{
    SliderModel model = tickedModel(0.0, 3.0, 1.0, 10);
    model.SetInteger(true);
    for (const auto& [ticks, step, count] :
         {std::tuple{10.0, 1.0, 4.0}, {2.0, 3.0, 2.0}, {0.0, 1.0, 0.0}}) {
        model.SetTickFreq(ticks);
        QVERIFY(model.StepBelow(2) == step && model.TickCount() == count);
    }
    QVERIFY(model.SteppedUp(1) == 2.0 && model.SteppedDown(0) == 0.0); // never less than one
    // Counted from the centre, if there is one. The plain step is one already: Shift takes two.
    SliderModel centred = modelOf(-6.0, 3.0, 0.0);
    centred.SetInteger(true);
    centred.SetTickFreq(9);
    QVERIFY(centred.SetCentre(0.0));
    QVERIFY(centred.TickCount() == 4.0 && hasSteps(centred, 2.0, 2.0));

    SliderModel dragged = modelOf(0.5, 10.5, 3.0);
    dragged.SetInteger(true);
    SliderDrag drag;
    drag.GrabKnob(dragged, 60.0, false);
    QCOMPARE(follow(drag, dragged, false, {{69, 3}, {71, 4}}), QString());
    QCOMPARE(follow(drag, dragged, true, {{75, 4}}), QString());
    QCOMPARE(follow(drag, dragged, false, {{900, 10}, {-900, 1}}), QString());
    SliderModel::RelativeDrag state;
    QCOMPARE(dragged.Dragged(3.0, 160.0, state), 5.0); // hundredths for a range of ten
}

void SliderModelTest::MarksTicks()
{
    SliderModel model = modelOf(0.0, 1.0, 0.0);
    model.SetTickFreq(5);
    QCOMPARE(model.TickPixels(4.0), (std::vector<int>{10, 60, 110, 160, 210}));
    SliderModel centred = modelOf(-1.0, 1.0, 0.0);
    centred.SetTickFreq(0);
    const auto marks = centred.TickPixels(4.0);
    QCOMPARE(marks.size(), std::size_t(21));
    QVERIFY(marks.front() == 10 && marks[10] == 110 && marks.back() == 210);
    // Crowded marks are thinned out, evenly.
    model.SetTickFreq(1e7);
    const auto thin = model.TickPixels(4.0);
    QVERIFY(thin.size() > 10 && thin.size() <= 51);
    for (std::size_t i = 2; i < thin.size(); ++i)
        QVERIFY(std::abs(thin[i] - 2 * thin[i - 1] + thin[i - 2]) <= 1);
    // Automatic ones stand at whole multiples.
    SliderModel odd = modelOf(0.37, 1.23, 0.5);
    odd.SetTickFreq(0);
    QCOMPARE(odd.TickPixels(4.0).front(), int(std::lround(odd.Scale().ValueToPixel(0.4))));
    model.SetTrack(5.0, 5.0);
    QVERIFY(model.TickPixels(4.0).empty());
}

void SliderModelTest::HitsParts()
{
    const SliderGeometry parts{.knobSize = {9, 16},
                               .knobTop = 2,
                               .resetSize = {7, 7},
                               .resetOffset = {-3, 7},
                               .trackTop = 4,
                               .trackBottom = 17};
    // The knob's bitmap: columns 106 to 114, rows 2 to 17; the mark: 167 to 173, 7 to 13.
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    model.defaultValue = 0.8;
    const std::pair<SliderPart, std::vector<QPoint>> rows[] = {
        {SliderPart::Knob, {{101, 10}, {119, 10}, {110, -2}, {110, 21}}},
        {SliderPart::TrackBelow, {{100, 10}, {0, 10}}}, // from ten pixels before
        {SliderPart::TrackAbove, {{120, 10}, {161, 10}, {220, 10}}},
        {SliderPart::Reset, {{162, 2}, {178, 18}}},
        {SliderPart::None, {{110, 22}, {100, 3}, {100, 17}, {-1, 10}, {221, 10}, {170, 19}}}};
    for (const auto& [part, points] : rows) {
        for (const QPoint& at : points)
            QCOMPARE(parts.HitTest(at, model), part);
    }
    model.value = 0.8; // the knob comes first, yet the reset mark is under it
    QCOMPARE(parts.HitTest({170, 10}, model), SliderPart::Knob);
    QVERIFY(parts.IsOverReset({170, 10}, model));
    model.defaultValue = SliderModel::none;
    QVERIFY(!parts.IsOverReset({170, 10}, model));
    QCOMPARE(parts.KnobDirtyRect(110), QRect(105, 2, 10, 15));
}

void SliderModelTest::GrabsWithoutMoving()
{
    SliderModel model = modelOf(0.0, 1.0, 0.123456);
    model.defaultValue = 0.1234; // near enough to snap to
    SliderDrag drag;
    QVERIFY(!drag.MoveTo(model, 50.0, false)); // nothing held
    drag.GrabKnob(model, 37.0, false);
    // The first move is told, wherever it goes; later on the way leads back to the very value.
    QCOMPARE(follow(drag, model, false, {{37, 0.123456}}), QString());
    QVERIFY(!drag.MoveTo(model, 37.0, false));
    QCOMPARE(follow(drag, model, false, {{57, 0.223}, {37, 0.123456}}), QString());
    model.value = 0.5; // it follows from the press, whatever was shown meanwhile
    QCOMPARE(follow(drag, model, false, {{57, 0.223}, {1000, 1}, {-1000, 0}}), QString());
    drag.End();
    QVERIFY(!drag.MoveTo(model, 60.0, false));

    SliderModel beyond = modelOf(0.0, 1.0, 5.0);
    drag.GrabKnob(beyond, 212.0, false);
    QCOMPARE(follow(drag, beyond, false, {{212, 5}, {202, 0.95}}), QString());
    QCOMPARE(follow(drag, beyond, true, {{192, 0.945}}), QString()); // a tenth of the way
}

void SliderModelTest::FineDragsKeepTheirPlace()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    SliderDrag drag;
    drag.GrabKnob(model, 110.0, true);
    QCOMPARE(follow(drag, model, true, {{111, 0.5005}, {112.4, 0.5012}}), QString());
    // Ctrl goes up: nothing moves, and coarse moves start from here.
    QCOMPARE(*drag.SetFine(model, false), 0.5012);
    QVERIFY(!drag.SetFine(model, false) && !drag.MoveTo(model, 112.4, false));
    QCOMPARE(follow(drag, model, false, {{132.4, 0.601}}), QString());
    // Ctrl went down where no key event came: the move before it anchors. Far beyond the end a fine
    // drag goes on.
    QCOMPARE(follow(drag, model, true, {{152.4, 0.611}, {931, 1}}), QString());
}

void SliderModelTest::Snaps()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    model.SetTrack(10.0, 110.0); // a pixel is a hundredth
    SliderDrag drag;
    drag.GrabKnob(model, 60.0, false);
    model.defaultValue = 0.704;
    QCOMPARE(follow(drag, model, false, {{80, 0.7}}), QString()); // then kept to two decimals
    model = modelOf(0.0, 1.0, 0.5);
    model.defaultValue = 0.702;
    drag.GrabKnob(model, 110.0, false);
    QCOMPARE(follow(drag, model, false, {{150, 0.702}, {151, 0.705}}), QString()); // 0.6 pixels off
    model.snapValue = 0.698; // comes before the default
    QCOMPARE(follow(drag, model, false, {{150, 0.698}}), QString());
    model.snapValue = model.defaultValue = SliderModel::none;
    QCOMPARE(follow(drag, model, false, {{210, 1}, {150, 0.7}}), QString());
    // Fine: only where value and pointer still agree, and within a twentieth of a pixel.
    model = modelOf(0.0, 1.0, 0.5);
    model.defaultValue = 0.702;
    drag.GrabKnob(model, 110.0, true);
    QCOMPARE(follow(drag, model, true, {{150, 0.52}}), QString());
}

void SliderModelTest::DragsRelatively()
{
    const SliderModel model = modelOf(0.0, 1.0, 0.5);
    SliderModel::RelativeDrag state{100.0, true};
    QCOMPARE(model.Dragged(0.5, 100.0, state), 0.6);
    QCOMPARE(state.movement, 100.0);
    state = {730.0, true}; // 700 are 200 too many; 30 more have come in since
    QCOMPARE(model.Dragged(0.5, 700.0, state), 1.0);
    QVERIFY(near(state.movement, 530.0));
    state = {730.0, false};
    QCOMPARE(model.Dragged(0.5, -900.0, state), 0.0);
    QVERIFY(near(state.movement, -500.0));
    QCOMPARE(modelOf(0.0, 250.0, 0.0).Dragged(10.0, 3.0, state = {}), 10.3);
}

void SliderModelTest::RandomDragsStayInBounds()
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 200; ++round) {
        const double low = (unit(random) - 0.5) * 200.0;
        SliderModel model = modelOf(low, low + std::pow(10.0, 6.0 * unit(random) - 3.0), low);
        model.SetGamma(0.25 + 4.0 * unit(random));
        model.SetInteger(round % 5 == 0);
        model.SetTickFreq(std::floor(unit(random) * 12.0));
        if (round % 3 == 0)
            model.SetCentre(model.Clamped(low + unit(random)));
        if (round % 2 == 0)
            model.defaultValue = low + unit(random);
        SliderDrag drag;
        drag.GrabKnob(model, model.Scale().ValueToPixel(model.value) + unit(random), false);
        for (int move = 0; move < 100; ++move) {
            const auto value = drag.MoveTo(model, 400.0 * unit(random) - 100.0, unit(random) < 0.3);
            if (!value)
                continue;
            QVERIFY(std::isfinite(*value));
            QCOMPARE(model.Clamped(*value), *value);
            model.value = *value;
        }
    }
}

QTEST_APPLESS_MAIN(SliderModelTest)
#include "slider_model_test.moc"
