#include "widgets/SliderDrag.h"

#include <cmath>
#include <random>

#include <QtTest>

using namespace Marlox;

Q_DECLARE_METATYPE(Marlox::SliderScale)

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
    void MapsLinearly();
    void MapsByPowerLaw();
    void MapsEachHalfAlone();
    void MapsBothWaysAlike_data();
    void MapsBothWaysAlike();
    void KeepsPrecision_data();
    void KeepsPrecision();
    void RoundsHalvesAwayFromZero();
    void TakesRanges();
    void ShowsRangesRoundedOutward();
    void SpacesTicks_data();
    void SpacesTicks();
    void CountsTicks();
    void CentresByRange();
    void CentresByHand();
    void Steps();
    void ShiftMovesFurther();
    void IntegerTicksAndSteps();
    void MarksTicks();
    void HitsParts();
    void GrabsWithoutMoving();
    void DragsByPixels();
    void FineDragsKeepTheirPlace();
    void Snaps();
    void DragsWholeNumbers();
    void RepeatsOnTheTrack();
    void DragsRelatively();
    void RandomDragsStayInBounds();
};

void SliderModelTest::MapsLinearly()
{
    const SliderScale scale = scaleOf(-2.0, 6.0);
    QCOMPARE(scale.ValueToPixel(-2.0), 10.0);
    QCOMPARE(scale.ValueToPixel(0.0), 60.0);
    QCOMPARE(scale.ValueToPixel(6.0), 210.0);
    QCOMPARE(scale.ValueToPixel(-100.0), 10.0);
    QCOMPARE(scale.ValueToPixel(100.0), 210.0);
    QCOMPARE(scale.PixelToValue(110.0), 2.0);
    QCOMPARE(scale.PixelToValue(260.0), 8.0); // goes on beyond the track
    QCOMPARE(scale.PixelCentre(), 110.0);

    const SliderScale equal = scaleOf(3.0, 3.0);
    for (const double value : {-1.0, 3.0, 7.0})
        QCOMPARE(equal.ValueToPixel(value), 10.0);
    QCOMPARE(equal.PixelToValue(100.0), 3.0);
    QCOMPARE(equal.GetPrecision(3.0), 1.0);
}

void SliderModelTest::MapsByPowerLaw()
{
    const SliderScale scale = scaleOf(0.0, 4.0, 2.0);
    QVERIFY(near(scale.ValueToPixel(1.0), 110.0)); // the root of 1 is half that of 4
    QVERIFY(near(scale.PixelToValue(60.0), 0.25));
    // Through zero with its sign.
    const SliderScale both = scaleOf(-4.0, 4.0, 2.0);
    QVERIFY(near(both.ValueToPixel(-1.0), 60.0));
    QVERIFY(near(both.PixelToValue(60.0), -1.0));
    QVERIFY(near(both.PixelToValue(110.0), 0.0));
}

void SliderModelTest::MapsEachHalfAlone()
{
    const SliderScale scale = centredScale(-1.0, 9.0, 0.0);
    QCOMPARE(scale.ValueToPixel(-0.5), 60.0);
    QCOMPARE(scale.ValueToPixel(0.0), 110.0);
    QCOMPARE(scale.ValueToPixel(4.5), 160.0);
    QCOMPARE(scale.PixelToValue(60.0), -0.5);
    QCOMPARE(scale.PixelToValue(110.0), 0.0);
    QCOMPARE(scale.PixelToValue(160.0), 4.5);

    SliderScale atEnd = centredScale(0.0, 1.0, 0.0);
    QCOMPARE(atEnd.ValueToPixel(-1.0), 10.0);
    QCOMPARE(atEnd.ValueToPixel(0.0), 110.0);
    QCOMPARE(atEnd.PixelToValue(50.0), 0.0);
    atEnd.centre = 1.0;
    QCOMPARE(atEnd.ValueToPixel(1.5), 210.0);
    QCOMPARE(atEnd.ValueToPixel(1.0), 110.0);
    // The power law rests while centred.
    SliderScale curved = centredScale(-1.0, 1.0, 0.0);
    curved.gamma = 3.0;
    QCOMPARE(curved.ValueToPixel(0.5), 160.0);
}

void SliderModelTest::MapsBothWaysAlike_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("gamma");
    QTest::addColumn<double>("centre"); // NaN: not centred
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 60; ++i) {
        const double size = std::pow(10.0, std::floor(unit(random) * 12.0) - 6.0);
        const double low = (unit(random) - 0.5) * 4.0 * size;
        const double high = low + (0.01 + unit(random)) * size;
        const double gamma = i % 3 == 0 ? 1.0 : 0.3 + 4.0 * unit(random);
        const double centre = i % 4 == 3 ? low + (high - low) * (0.05 + 0.9 * unit(random)) : NAN;
        QTest::addRow("%d: %g to %g", i, low, high) << low << high << gamma << centre;
    }
}

void SliderModelTest::MapsBothWaysAlike()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, gamma);
    QFETCH(double, centre);
    const SliderScale scale =
        std::isnan(centre) ? scaleOf(low, high, gamma) : centredScale(low, high, centre);
    double lastValue = -inf;
    for (double pixel = scale.pixelLow; pixel <= scale.pixelHigh; pixel += 0.5) {
        const double value = scale.PixelToValue(pixel);
        QVERIFY2(value > lastValue, qPrintable(QString::number(pixel)));
        QVERIFY(near(scale.ValueToPixel(value), pixel, 1e-7));
        lastValue = value;
    }
    double lastPixel = scale.pixelLow;
    for (int i = 0; i <= 300; ++i) {
        const double value = low + (high - low) * i / 300.0;
        const double pixel = scale.ValueToPixel(value);
        QVERIFY(pixel >= lastPixel && pixel <= scale.pixelHigh);
        QVERIFY(std::abs(scale.PixelToValue(pixel) - value) <= 1e-9 * (high - low) || gamma != 1.0);
        // What is kept tells neighbouring pixels apart.
        const double here = scale.PixelToValue(pixel);
        const double kept = scale.Rounded(here, false);
        QVERIFY(std::abs(scale.ValueToPixel(kept) - pixel) <= 1.0 ||
                gamma != 1.0); // steep places of a power law are not that fine
        lastPixel = pixel;
    }
}

void SliderModelTest::KeepsPrecision_data()
{
    QTest::addColumn<SliderScale>("scale");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("precision");
    QTest::newRow("200 pixels of 0 to 1") << scaleOf(0, 1) << 0.5 << 1e3;
    QTest::newRow("of 0 to 9.5") << scaleOf(0, 9.5) << 0.5 << 1e3;
    QTest::newRow("of 0 to 10") << scaleOf(0, 10) << 0.5 << 1e2;
    QTest::newRow("of 0 to 255") << scaleOf(0, 255) << 0.5 << 1e1;
    QTest::newRow("of 0 to 100000") << scaleOf(0, 1e5) << 0.5 << 1e-2;
    QTest::newRow("of 0 to 0.004") << scaleOf(0, 0.004) << 0.001 << 1e6;
    // Halves of 100 pixels: two digits.
    QTest::newRow("below the centre") << centredScale(-1, 10, 0) << -0.5 << 1e2;
    QTest::newRow("above the centre") << centredScale(-1, 10, 0) << 0.5 << 1e1;
    QTest::newRow("at the centre") << centredScale(-1, 10, 0) << 0.0 << 1.0;
    QTest::newRow("below a centre at the low end") << centredScale(0, 1, 0) << -1.0 << 1.0;
    QTest::newRow("above a centre at the high end") << centredScale(0, 1, 1) << 2.0 << 1.0;
    // Gamma 2 of 0 to 1: the first pixel is (1/200)^2, wanting five digits; the last is 2/200.
    QTest::newRow("flat part of a power law") << scaleOf(0, 1, 2) << 0.0 << 1e5;
    QTest::newRow("steep part of a power law") << scaleOf(0, 1, 2) << 1.0 << 1e3;
    QTest::newRow("at most two digits more") << scaleOf(0, 1, 8) << 0.0 << 1e5;
}

void SliderModelTest::KeepsPrecision()
{
    QFETCH(SliderScale, scale);
    QFETCH(double, value);
    QFETCH(double, precision);
    QVERIFY2(near(scale.GetPrecision(value), precision),
             qPrintable(QString::number(scale.GetPrecision(value))));
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
}

void SliderModelTest::ShowsRangesRoundedOutward()
{
    const auto shown = [](double low, double high) {
        const SliderModel model = modelOf(low, high, low);
        return std::pair(model.DisplayLow(), model.DisplayHigh());
    };
    QCOMPARE(shown(0.3, 9.8), std::pair(0.0, 10.0));
    QCOMPARE(shown(0.3, 2.8), std::pair(0.3, 3.0)); // 2.5 is less than ten times 0.3
    QCOMPARE(shown(-0.05, 0.95), std::pair(-0.05, 1.0));
    QCOMPARE(shown(0.0, 0.5), std::pair(0.0, 0.5));
    // Not "at least": exactly ten times is not enough.
    QCOMPARE(shown(0.5, 5.5), std::pair(0.5, 5.5));
}

void SliderModelTest::SpacesTicks_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("step");
    QTest::newRow("0 to 1") << 0.0 << 1.0 << 0.1;
    QTest::newRow("0 to 2") << 0.0 << 2.0 << 0.2;
    QTest::newRow("0 to 4") << 0.0 << 4.0 << 0.5;
    QTest::newRow("0 to 8") << 0.0 << 8.0 << 1.0;
    QTest::newRow("0 to 100") << 0.0 << 100.0 << 10.0;
    QTest::newRow("0 to 255") << 0.0 << 255.0 << 20.0;
    QTest::newRow("0 to 0.003") << 0.0 << 0.003 << 0.0002;
    QTest::newRow("equal bounds") << 5.0 << 5.0 << 1.0;
}

void SliderModelTest::SpacesTicks()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, step);
    SliderModel model = modelOf(low, high, low);
    model.SetSteps(1e-6, 1e-5);
    model.SetTickFreq(0);
    QVERIFY2(near(model.StepBelow(2), step), qPrintable(QString::number(model.StepBelow(2))));
    QCOMPARE(model.TickCount(), 0.0);
    const double once = model.StepBelow(2);
    model.SetTickFreq(0); // again changes nothing
    QCOMPARE(model.StepBelow(2), once);
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
    for (const int level : {0, 1, 2}) {
        QCOMPARE(model.StepBelow(level), 1.0);
        QCOMPARE(model.StepAbove(level), 1.0);
    }
    model.SetTrack(10.0, 210.0);
    model.SetSteps(0.001, 0.01);
    model.SetRange(-1.0, 20.0);
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

void SliderModelTest::IntegerTicksAndSteps()
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
    QCOMPARE(model.TickPixels(4.0), (std::vector<double>{10, 60, 110, 160, 210}));
    SliderModel centred = modelOf(-1.0, 1.0, 0.0);
    centred.SetTickFreq(0);
    const auto marks = centred.TickPixels(4.0);
    QCOMPARE(marks.size(), std::size_t(21));
    QVERIFY(near(marks.front(), 10) && near(marks[10], 110) && near(marks.back(), 210));
    // Crowded marks are thinned out, evenly.
    model.SetTickFreq(1e7);
    const auto thin = model.TickPixels(4.0);
    QVERIFY(thin.size() > 10 && thin.size() <= 51);
    QVERIFY(near(thin[2] - thin[1], thin[1] - thin[0]));
    // Automatic ones stand at whole multiples.
    SliderModel odd = modelOf(0.37, 1.23, 0.5);
    odd.SetTickFreq(0);
    QVERIFY(near(odd.TickPixels(4.0).front(), odd.Scale().ValueToPixel(0.4)));
    model.SetTrack(5.0, 5.0);
    QVERIFY(model.TickPixels(4.0).empty());
}

void SliderModelTest::HitsParts()
{
    SliderModel model =
        modelOf(0.0, 1.0, 0.5); // the knob's bitmap: columns 106 to 114, rows 2 to 17
    model.defaultValue = 0.8;   // the mark: columns 167 to 173, rows 7 to 13
    const SliderGeometry parts = geometry();
    const auto hit = [&](int x, int y) { return parts.HitTest({x, y}, model); };
    QCOMPARE(hit(101, 10), SliderPart::Knob);
    QCOMPARE(hit(119, 10), SliderPart::Knob);
    QCOMPARE(hit(110, -2), SliderPart::Knob);
    QCOMPARE(hit(110, 21), SliderPart::Knob);
    QCOMPARE(hit(110, 22), SliderPart::None);
    QCOMPARE(hit(100, 10), SliderPart::TrackBelow);
    QCOMPARE(hit(120, 10), SliderPart::TrackAbove);
    QCOMPARE(hit(100, 3), SliderPart::None);
    QCOMPARE(hit(100, 17), SliderPart::None);
    QCOMPARE(hit(0, 10), SliderPart::TrackBelow); // ten pixels before the start
    QCOMPARE(hit(-1, 10), SliderPart::None);
    QCOMPARE(hit(220, 10), SliderPart::TrackAbove);
    QCOMPARE(hit(221, 10), SliderPart::None);
    QCOMPARE(hit(162, 2), SliderPart::Reset);
    QCOMPARE(hit(178, 18), SliderPart::Reset);
    QCOMPARE(hit(161, 10), SliderPart::TrackAbove);
    QCOMPARE(hit(170, 19), SliderPart::None);
    model.value = 0.8; // the knob comes first, yet the reset mark is under it
    QCOMPARE(hit(170, 10), SliderPart::Knob);
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
    QVERIFY(drag.IsDragging());
    const auto first = drag.MoveTo(model, 37.0, false);
    QVERIFY(first); // the first move is told, wherever it goes
    QCOMPARE(*first, 0.123456);
    QVERIFY(!drag.MoveTo(model, 37.0, false));
    const auto moved = drag.MoveTo(model, 57.0, false);
    QCOMPARE(*moved, 0.223);
    model.value = *moved;
    QCOMPARE(*drag.MoveTo(model, 37.0, false), 0.123456); // and back to the very value
    drag.End();
    QVERIFY(!drag.MoveTo(model, 60.0, false));

    SliderModel beyond = modelOf(0.0, 1.0, 5.0);
    drag.GrabKnob(beyond, 212.0, false);
    QCOMPARE(*drag.MoveTo(beyond, 212.0, false), 5.0);
    QCOMPARE(*drag.MoveTo(beyond, 202.0, false), 0.95);
    beyond.value = 0.95;
    QCOMPARE(*drag.MoveTo(beyond, 192.0, true), 0.945); // a tenth of the way
}

void SliderModelTest::DragsByPixels()
{
    SliderModel model = modelOf(0.0, 1.0, 0.5);
    SliderDrag drag;
    drag.GrabKnob(model, 113.0, false); // 3 pixels beside the knob's middle
    QCOMPARE(*drag.MoveTo(model, 133.0, false), 0.6);
    QCOMPARE(*drag.MoveTo(model, 134.0, false), 0.605);
    QCOMPARE(*drag.MoveTo(model, 1000.0, false), 1.0);
    QCOMPARE(*drag.MoveTo(model, -1000.0, false), 0.0);
    // The value follows from the press, whatever was shown meanwhile.
    model.value = 0.9;
    QCOMPARE(*drag.MoveTo(model, 133.0, false), 0.6);
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

void SliderModelTest::RepeatsOnTheTrack()
{
    SliderModel model = modelOf(0.0, 1.0, 0.0);
    const SliderGeometry parts = geometry();
    SliderDrag drag;
    drag.HoldTrack(true, {60, 10});
    QVERIFY(drag.IsDragging() && drag.StepsUp());
    for (int tick = 0; tick < SliderDrag::repeatWait; ++tick)
        QVERIFY(!drag.RepeatTick());
    QVERIFY(drag.RepeatTick() && drag.RepeatTick());
    QVERIFY(!drag.HasReachedPointer(model, parts));
    model.value = 0.25; // under the pointer
    QVERIFY(drag.HasReachedPointer(model, parts));
    drag.PointTo({80, 10});
    QVERIFY(!drag.HasReachedPointer(model, parts));
    model.value = 0.9; // beyond it: not back
    QVERIFY(drag.HasReachedPointer(model, parts));
    QVERIFY(!drag.MoveTo(model, 90.0, false));
    drag.End();
    QVERIFY(!drag.RepeatTick());
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
