#include "widgets/SliderDrag.h"

#include <cmath>
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

SliderGeometry geometry()
{
    SliderGeometry made;
    made.knobSize = {9, 16};
    made.knobTop = 2;
    made.resetSize = {7, 7};
    made.resetOffset = {-3, 7};
    made.trackTop = 4;
    made.trackBottom = 17;
    return made;
}

bool near(double a, double b, double tolerance = 1e-9)
{
    return std::abs(a - b) <= tolerance * std::max({1.0, std::abs(a), std::abs(b)});
}

} // namespace

class SliderModelTest : public QObject {
    Q_OBJECT
private slots:
    void Maps();
    void MapsBothWaysAlike();
    void KeepsPrecision();
    void RoundsHalvesAwayFromZero();
    void TakesRanges();
    void SpacesTicks();
    void CountsTicks();
    void CentresByRange();
    void CentresByHand();
    void Steps();
    void ShiftMovesFurther();
    void TakesWholeSteps();
    void MarksTicks();
    void HitsParts();
    void GrabsWithoutMoving();
    void FineDragsKeepTheirPlace();
    void Snaps();
    void DragsWholeNumbers();
    void DragsRelatively();
    void RandomDragsStayInBounds();
};

void SliderModelTest::Maps()
{
    enum Way { Both, ToPixel, ToValue };
    const SliderScale linear = scaleOf(-2.0, 6.0);
    const SliderScale equal = scaleOf(3.0, 3.0);
    const SliderScale curved = scaleOf(-4.0, 4.0, 2.0); // through zero with its sign
    SliderScale halves = centredScale(-1.0, 9.0, 0.0);
    halves.gamma = 3.0; // rests while centred
    const SliderScale lowCentre = centredScale(0.0, 1.0, 0.0);
    const SliderScale highCentre = centredScale(0.0, 1.0, 1.0);
    const struct {
        const SliderScale& scale;
        double value, pixel;
        Way way = Both;
    } rows[] = {
        {linear, -2.0, 10.0},
        {linear, 0.0, 60.0},
        {linear, 6.0, 210.0},
        {linear, -100.0, 10.0, ToPixel},
        {linear, 100.0, 210.0, ToPixel},
        {linear, 8.0, 260.0, ToValue},
        {equal, -1.0, 10.0, ToPixel},
        {equal, 7.0, 10.0, ToPixel},
        {equal, 3.0, 100.0, ToValue},
        {curved, -1.0, 60.0},
        {curved, 0.0, 110.0},
        {curved, 1.0, 160.0},
        {halves, -0.5, 60.0},
        {halves, 0.0, 110.0},
        {halves, 4.5, 160.0},
        {lowCentre, -1.0, 10.0, ToPixel},
        {lowCentre, 0.0, 110.0},
        {lowCentre, 0.0, 50.0, ToValue},
        {highCentre, 1.5, 210.0, ToPixel},
        {highCentre, 1.0, 110.0},
    };
    for (const auto& row : rows) {
        const QByteArray what =
            QByteArray::number(row.value) + " at " + QByteArray::number(row.pixel);
        QVERIFY2(row.way == ToValue || near(row.scale.ValueToPixel(row.value), row.pixel), what);
        QVERIFY2(row.way == ToPixel || near(row.scale.PixelToValue(row.pixel), row.value), what);
    }
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
            QVERIFY2(value > lastValue, qPrintable(QString::number(round)));
            QVERIFY(near(scale.ValueToPixel(value), pixel, 1e-7));
            // What is kept tells neighbouring pixels apart; steep power laws are not that fine.
            const double kept = scale.Rounded(value, false);
            QVERIFY(gamma != 1.0 || std::abs(scale.ValueToPixel(kept) - pixel) <= 1.0);
            lastValue = value;
        }
    }
}

void SliderModelTest::KeepsPrecision()
{
    const struct {
        const char* what;
        SliderScale scale;
        double value, precision;
    } rows[] = {
        {"200 pixels of 0 to 1", scaleOf(0, 1), 0.5, 1e3},
        {"of 0 to 9.5", scaleOf(0, 9.5), 0.5, 1e3},
        {"of 0 to 10", scaleOf(0, 10), 0.5, 1e2},
        {"of 0 to 100000", scaleOf(0, 1e5), 0.5, 1e-2},
        {"of 0 to 0.004", scaleOf(0, 0.004), 0.001, 1e6},
        {"equal bounds", scaleOf(3, 3), 3.0, 1.0},
        // Halves of 100 pixels: two digits.
        {"below the centre", centredScale(-1, 10, 0), -0.5, 1e2},
        {"above the centre", centredScale(-1, 10, 0), 0.5, 1e1},
        {"at the centre", centredScale(-1, 10, 0), 0.0, 1.0},
        {"below a centre at the low end", centredScale(0, 1, 0), -1.0, 1.0},
        {"above a centre at the high end", centredScale(0, 1, 1), 2.0, 1.0},
        // Gamma 2 of 0 to 1: the first pixel is (1/200)^2, wanting five digits; the last is 2/200.
        {"flat part of a power law", scaleOf(0, 1, 2), 0.0, 1e5},
        {"steep part of a power law", scaleOf(0, 1, 2), 1.0, 1e3},
        {"at most two digits more", scaleOf(0, 1, 8), 0.0, 1e5},
    };
    for (const auto& row : rows)
        QVERIFY2(near(row.scale.GetPrecision(row.value), row.precision), row.what);
}

void SliderModelTest::RoundsHalvesAwayFromZero()
{
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
    QCOMPARE(model.value, 2.0);
    QCOMPARE(model.Scale().centre, 2.0);
    // A bound that creeps is not followed, but remembered.
    QVERIFY(!model.SetRange(2.0 + 1e-7, 5.0));
    QCOMPARE(model.Scale().minValue, 2.0);
    QCOMPARE(model.RequestedLow(), 2.0 + 1e-7);
    QVERIFY(!model.SetRange(2.0 + 2e-7, 5.0));
    QCOMPARE(model.Scale().minValue, 2.0);
    QVERIFY(model.SetRange(2.0 + 4e-7, 5.0));
    QCOMPARE(model.Scale().minValue, 2.0 + 4e-7);
    // Turned round; hopeless ones are ignored.
    QVERIFY(model.SetRange(9.0, -3.0));
    QCOMPARE(model.Scale().minValue, -3.0);
    QCOMPARE(model.Scale().maxValue, 9.0);
    QVERIFY(!model.SetRange(NAN, 1.0) && !model.SetRange(0.0, inf) &&
            !model.SetRange(-1e308, 1e308));
    QCOMPARE(model.Scale().minValue, -3.0);

    // Shown rounded outward where that costs less than a tenth.
    const auto shown = [](double low, double high) {
        const SliderModel other = modelOf(low, high, low);
        return std::pair(other.DisplayLow(), other.DisplayHigh());
    };
    QCOMPARE(shown(0.3, 9.8), std::pair(0.0, 10.0));
    QCOMPARE(shown(0.3, 2.8), std::pair(0.3, 3.0)); // 2.5 is less than ten times 0.3
    QCOMPARE(shown(-0.05, 0.95), std::pair(-0.05, 1.0));
    QCOMPARE(shown(0.0, 0.5), std::pair(0.0, 0.5));
    // Not "at least": exactly ten times is not enough.
    QCOMPARE(shown(0.5, 5.5), std::pair(0.5, 5.5));
}

void SliderModelTest::SpacesTicks()
{
    const struct {
        double low, high, step;
    } rows[] = {{0, 1, 0.1},  {0, 2, 0.2},    {0, 4, 0.5},        {0, 8, 1},
                {0, 100, 10}, {0, 255, 20.0}, {0, 0.003, 0.0002}, {5, 5, 1}};
    for (const auto& [low, high, step] : rows) {
        SliderModel model = modelOf(low, high, low);
        model.SetSteps(1e-6, 1e-5);
        for (int i = 0; i < 2; ++i) { // again changes nothing
            model.SetTickFreq(0);
            QVERIFY2(near(model.StepBelow(2), step), qPrintable(QString::number(high)));
            QCOMPARE(model.TickCount(), 0.0);
        }
    }
}

void SliderModelTest::CountsTicks()
{
    SliderModel model = modelOf(0.0, 10.0, 0.0);
    model.SetSteps(0.01, 0.1);
    model.SetTickFreq(5);
    QCOMPARE(model.TickCount(), 5.0);
    QCOMPARE(model.StepBelow(2), 2.5);
    model.SetTickFreq(1); // at least the two ends
    QCOMPARE(model.TickCount(), 2.0);
    QCOMPARE(model.StepBelow(2), 10.0);
    model.SetTickFreq(-3);
    QCOMPARE(model.TickCount(), 2.0);
    model.SetTickFreq(5);
    QVERIFY(model.SetCentre(2.0));
    QCOMPARE(model.StepBelow(2), 0.5);
    QCOMPARE(model.StepAbove(2), 2.0);
    // The steps follow the range.
    model.SetRange(0.0, 6.0);
    QCOMPARE(model.StepAbove(2), 1.0);
}

void SliderModelTest::CentresByRange()
{
    SliderModel model;
    model.SetTrack(10.0, 210.0);
    model.SetRange(-1.0, 20.0);
    // Nothing comes by itself until ticks are asked for.
    for (const int level : {0, 1, 2})
        QVERIFY(model.StepBelow(level) == 1.0 && model.StepAbove(level) == 1.0);
    QVERIFY(!model.Scale().centred && model.TickPixels(4.0).empty());
    model.SetSteps(0.001, 0.01);
    model.SetTickFreq(0);
    QVERIFY(model.Scale().centred);
    QCOMPARE(model.Scale().centre, 0.0);
    QVERIFY(near(model.StepBelow(2), 0.1));
    QVERIFY(near(model.StepAbove(2), 2.0));
    model.SetTickFreq(0);
    QVERIFY(near(model.StepBelow(2), 0.1) && near(model.StepAbove(2), 2.0));
    // Goes with the range and comes back with it.
    model.SetRange(1.0, 20.0);
    QVERIFY(!model.Scale().centred);
    model.SetRange(-2.0, 2.0);
    QVERIFY(model.Scale().centred);
    QCOMPARE(model.Scale().centre, 0.0);
    model.SetTickFreq(11);
    QVERIFY(!model.Scale().centred);
}

void SliderModelTest::CentresByHand()
{
    SliderModel model = modelOf(0.0, 10.0, 0.0);
    QVERIFY(model.SetCentre(3.0));
    model.SetRange(1.0, 5.0); // stays
    QVERIFY(model.Scale().centred);
    QCOMPARE(model.Scale().centre, 3.0);
    QVERIFY(!model.SetCentre(1.0));
    // With ticks counted the bounds decide, without the shown ones do.
    SliderModel rounded = modelOf(0.3, 9.8, 1.0);
    QVERIFY(rounded.SetCentre(0.3));
    QVERIFY(!rounded.SetCentre(0.0));
    rounded.SetTickFreq(4);
    QVERIFY(!rounded.SetCentre(0.3));
    QVERIFY(!rounded.SetCentre(NAN));
}

void SliderModelTest::Steps()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    model.SetSteps(0.001, 0.01);
    model.SetTickFreq(0);
    QVERIFY(near(model.SteppedDown(0), 0.499));
    QVERIFY(near(model.SteppedUp(1), 0.51));
    QVERIFY(near(model.SteppedUp(2), 0.6));
    model.value = 0.005;
    QCOMPARE(model.SteppedDown(1), 0.0);
    model.value = 0.95;
    QCOMPARE(model.SteppedUp(2), 1.0);
    model.value = 7.0; // typed, beyond the end
    QCOMPARE(model.SteppedUp(1), 1.0);
    QVERIFY(near(model.SteppedDown(1), 0.99));

    SliderModel centred = modelOf(-1.0, 10.0, 0.5);
    centred.SetSteps(0.001, 0.01);
    centred.SetTickFreq(0);
    QCOMPARE(centred.SteppedDown(2), 0.0); // stops at the centre
    centred.value = 0.0;
    QVERIFY(near(centred.SteppedDown(2), -0.1));
    QVERIFY(near(centred.SteppedUp(2), 1.0));
    centred.value = -0.05;
    QCOMPARE(centred.SteppedUp(2), 0.0);
    centred.value = 1e-10; // as good as the centre: the step below counts
    QVERIFY(near(centred.SteppedDown(2), -0.1, 1e-8));
}

void SliderModelTest::ShiftMovesFurther()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    model.SetSteps(0.01, 0.1); // as large as the tick step
    model.SetTickFreq(0);
    QVERIFY(near(model.StepBelow(2), 0.2));
    QVERIFY(near(model.StepAbove(2), 0.2));
    QCOMPARE(model.TickPixels(4.0).size(), std::size_t(11)); // the marks are not moved by it
    SliderModel sides = modelOf(-1.0, 10.0, 0.0);
    sides.SetSteps(0.01, 0.1);
    sides.SetTickFreq(0);
    QVERIFY(near(sides.StepBelow(2), 0.2));
    QVERIFY(near(sides.StepAbove(2), 1.0));
}

void SliderModelTest::TakesWholeSteps()
{
    SliderModel model = modelOf(0.0, 3.0, 1.0);
    model.SetSteps(0.001, 0.01);
    model.SetInteger(true);
    model.SetTickFreq(10);
    QCOMPARE(model.StepBelow(2), 1.0);
    QCOMPARE(model.TickCount(), 4.0);
    QCOMPARE(model.SteppedUp(1), 2.0); // never less than one
    QCOMPARE(model.SteppedDown(0), 0.0);
    model.SetTickFreq(2);
    QCOMPARE(model.StepBelow(2), 3.0);
    QCOMPARE(model.TickCount(), 2.0);
    model.SetTickFreq(0);
    QCOMPARE(model.StepBelow(2), 1.0);
    QCOMPARE(model.TickCount(), 0.0);
    // Counted from the centre, if there is one.
    SliderModel centred = modelOf(-6.0, 3.0, 0.0);
    centred.SetInteger(true);
    centred.SetTickFreq(9);
    QVERIFY(centred.SetCentre(0.0));
    QCOMPARE(centred.TickCount(), 4.0);
    // The plain step is one already: Shift takes two.
    QCOMPARE(centred.StepAbove(2), 2.0);
    QCOMPARE(centred.StepBelow(2), 2.0);
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
    SliderModel model =
        modelOf(0.0, 1.0, 0.5); // the knob's bitmap: columns 106 to 114, rows 2 to 17
    model.defaultValue = 0.8;   // the mark: columns 167 to 173, rows 7 to 13
    const SliderGeometry parts = geometry();
    const struct {
        int x, y;
        SliderPart part;
    } rows[] = {
        {101, 10, SliderPart::Knob},       {119, 10, SliderPart::Knob},
        {110, -2, SliderPart::Knob},       {110, 21, SliderPart::Knob},
        {110, 22, SliderPart::None},       {100, 10, SliderPart::TrackBelow},
        {120, 10, SliderPart::TrackAbove}, {100, 3, SliderPart::None},
        {100, 17, SliderPart::None},       {0, 10, SliderPart::TrackBelow}, // ten pixels before
        {-1, 10, SliderPart::None},        {220, 10, SliderPart::TrackAbove},
        {221, 10, SliderPart::None},       {162, 2, SliderPart::Reset},
        {178, 18, SliderPart::Reset},      {161, 10, SliderPart::TrackAbove},
        {170, 19, SliderPart::None},
    };
    for (const auto& [x, y, part] : rows)
        QVERIFY2(parts.HitTest({x, y}, model) == part, qPrintable(QString("%1 %2").arg(x).arg(y)));
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
    const auto first = drag.MoveTo(model, 37.0, false);
    QVERIFY(first); // the first move is told, wherever it goes
    QCOMPARE(*first, 0.123456);
    QVERIFY(!drag.MoveTo(model, 37.0, false));
    const auto moved = drag.MoveTo(model, 57.0, false);
    QCOMPARE(*moved, 0.223);
    model.value = *moved;
    QCOMPARE(*drag.MoveTo(model, 37.0, false), 0.123456); // and back to the very value
    // It follows from the press, whatever was shown meanwhile.
    QCOMPARE(*drag.MoveTo(model, 57.0, false), 0.223);
    QCOMPARE(*drag.MoveTo(model, 1000.0, false), 1.0);
    QCOMPARE(*drag.MoveTo(model, -1000.0, false), 0.0);
    drag.End();
    QVERIFY(!drag.MoveTo(model, 60.0, false));

    SliderModel beyond = modelOf(0.0, 1.0, 5.0);
    drag.GrabKnob(beyond, 212.0, false);
    QCOMPARE(*drag.MoveTo(beyond, 212.0, false), 5.0);
    QCOMPARE(*drag.MoveTo(beyond, 202.0, false), 0.95);
    beyond.value = 0.95;
    QCOMPARE(*drag.MoveTo(beyond, 192.0, true), 0.945); // a tenth of the way
}

void SliderModelTest::FineDragsKeepTheirPlace()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    SliderDrag drag;
    drag.GrabKnob(model, 110.0, true);
    QCOMPARE(*drag.MoveTo(model, 111.0, true), 0.5005); // one decimal more
    QCOMPARE(*drag.MoveTo(model, 112.4, true), 0.5012);
    model.value = 0.5012;
    // Ctrl goes up: nothing moves, and coarse moves start from here.
    QCOMPARE(*drag.SetFine(model, false), 0.5012);
    QVERIFY(!drag.SetFine(model, false));
    QVERIFY(!drag.MoveTo(model, 112.4, false));
    QCOMPARE(*drag.MoveTo(model, 132.4, false), 0.601);
    model.value = 0.601;
    // Ctrl went down where no key event came: the move before it anchors.
    QCOMPARE(*drag.MoveTo(model, 152.4, true), 0.611);
    // Far beyond the end a fine drag goes on.
    QCOMPARE(*drag.MoveTo(model, 931.0, true), 1.0);
}

void SliderModelTest::Snaps()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    model.SetTrack(10.0, 110.0); // a pixel is a hundredth
    SliderDrag drag;
    drag.GrabKnob(model, 60.0, false);
    model.defaultValue = 0.704;
    QCOMPARE(*drag.MoveTo(model, 80.0, false), 0.7); // snapped, then kept to two decimals
    model.SetTrack(10.0, 210.0);
    model.defaultValue = 0.702;
    drag.GrabKnob(model, 110.0, false);
    QCOMPARE(*drag.MoveTo(model, 150.0, false), 0.702);
    QCOMPARE(*drag.MoveTo(model, 151.0, false), 0.705); // 0.6 pixels away
    model.snapValue = 0.698;                            // comes before the default
    QCOMPARE(*drag.MoveTo(model, 150.0, false), 0.698);
    model.snapValue = SliderModel::none;
    model.defaultValue = SliderModel::none;
    QCOMPARE(*drag.MoveTo(model, 210.0, false), 1.0);
    QCOMPARE(*drag.MoveTo(model, 150.0, false), 0.7);
    // Fine: only where value and pointer still agree, and within a twentieth of a pixel.
    model.defaultValue = 0.702;
    drag.GrabKnob(model, 110.0, true);
    QCOMPARE(*drag.MoveTo(model, 150.0, true), 0.52);
}

void SliderModelTest::DragsWholeNumbers()
{
    SliderModel model = modelOf(0.5, 10.5, 3.0);
    model.SetInteger(true);
    SliderDrag drag;
    drag.GrabKnob(model, 60.0, false);
    QCOMPARE(*drag.MoveTo(model, 69.0, false), 3.0);
    QCOMPARE(*drag.MoveTo(model, 71.0, false), 4.0);
    model.value = 4.0;
    QCOMPARE(*drag.MoveTo(model, 75.0, true), 4.0);
    QCOMPARE(*drag.MoveTo(model, 900.0, false), 10.0);
    QCOMPARE(*drag.MoveTo(model, -900.0, false), 1.0);
    SliderModel::RelativeDrag state;
    QCOMPARE(model.Dragged(3.0, 160.0, state), 5.0); // hundredths for a range of ten
}

void SliderModelTest::DragsRelatively()
{
    const SliderModel model = modelOf(0.0, 1.0, 0.5);
    SliderModel::RelativeDrag state{100.0, true};
    QCOMPARE(model.Dragged(0.5, 100.0, state), 0.6);
    QCOMPARE(state.movement, 100.0);
    // 700 units are 200 too many; 30 more have come in since.
    state = {730.0, true};
    QCOMPARE(model.Dragged(0.5, 700.0, state), 1.0);
    QVERIFY(near(state.movement, 530.0));
    state = {730.0, false};
    QCOMPARE(model.Dragged(0.5, -900.0, state), 0.0);
    QVERIFY(near(state.movement, -500.0));
    SliderModel::RelativeDrag wide;
    QCOMPARE(modelOf(0.0, 250.0, 0.0).Dragged(10.0, 3.0, wide), 10.3);
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
