#include "widgets/ColorAxes.h"

#include <cmath>
#include <limits>

#include <QtTest>

using namespace Marlox;

namespace {

constexpr int spaces[] = {0, 1, 2};

bool isNear(const RgbColor& a, const RgbColor& b, double least = 1e-12)
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (!(std::abs(a[i] - b[i]) <= least * std::max({1.0, std::abs(a[i]), std::abs(b[i])})))
            return false;
    }
    return true;
}

} // namespace

/// The colour spaces of the colour field, there and back.
class ColorAxesTest : public QObject {
    Q_OBJECT
private slots:
    void ReturnsTheCube();
    void KnowsItsCorners();
    void ContinuesHueAndSaturation();
    void StaysStraightAlongSaturation();
    void TakesAnyNumber();
};

void ColorAxesTest::ReturnsTheCube()
{
    constexpr double levels[] = {0.0, 1e-9, 0.02, 0.18, 1.0 / 3.0, 0.5, 0.75, 1.0, 1.5, 4.0, 100.0};
    const ColorRecord previous{0.3, 0.6, {7.0, -8.0}, 0.2};
    for (const int space : spaces) {
        const ColorAxes& axes = ColorAxes::Of(space);
        for (const double red : levels) {
            for (const double green : levels) {
                for (const double blue : levels) {
                    const RgbColor color{red, green, blue};
                    const ColorRecord record = axes.FromRgb(color, previous);
                    QVERIFY(isNear(axes.ToRgb(record), color, 1e-9));
                    QVERIFY(record.further == previous.further);
                    QVERIFY(space == 2 || (record.hue >= 0.0 && record.hue <= 1.0));
                    QVERIFY(space != 0 || (record.saturation >= 0.0 && record.saturation <= 1.0));
                }
            }
        }
    }
    for (int i = 0; i < 720; ++i) { // and the other way, all around
        const ColorRecord record{i / 720.0, 0.7, {}, 0.4};
        for (const int space : {0, 1}) {
            const ColorAxes& axes = ColorAxes::Of(space);
            const ColorRecord back = axes.FromRgb(axes.ToRgb(record), previous);
            QVERIFY(std::abs(back.hue - record.hue) < 1e-12);
            QVERIFY(std::abs(back.saturation - 0.7) + std::abs(back.value - 0.4) < 1e-12);
        }
    }
}

void ColorAxesTest::KnowsItsCorners()
{
    const struct {
        ColorRecord record;
        RgbColor hsv, hls;
    } rows[] = {{{0.0, 1.0, {}, 0.5}, {0.5, 0.0, 0.0}, {1.0, 0.0, 0.0}},
                {{1.0 / 6.0, 1.0, {}, 0.5}, {0.5, 0.5, 0.0}, {1.0, 1.0, 0.0}},
                {{1.0 / 3.0, 0.5, {}, 0.5}, {0.25, 0.5, 0.25}, {0.25, 0.75, 0.25}},
                {{0.5, 1.0, {}, 1.0}, {0.0, 1.0, 1.0}, {1.0, 1.0, 1.0}},
                {{2.0 / 3.0, 1.0, {}, 0.25}, {0.0, 0.0, 0.25}, {0.0, 0.0, 0.5}},
                {{5.0 / 6.0, 1.0, {}, 0.75}, {0.75, 0.0, 0.75}, {1.0, 0.5, 1.0}},
                {{1.0, 1.0, {}, 1.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 1.0}},
                {{-0.5, 0.0, {}, 0.25}, {0.25, 0.25, 0.25}, {0.25, 0.25, 0.25}}};
    for (const auto& row : rows) {
        QVERIFY(isNear(ColorAxes::Of(0).ToRgb(row.record), row.hsv));
        QVERIFY(isNear(ColorAxes::Of(1).ToRgb(row.record), row.hls));
    }
    QVERIFY(isNear(ColorAxes::Of(2).ToRgb({0.7, 0.5, {}, 0.5}), {0.7, 0.7, 0.7}));
    QVERIFY(std::abs(ColorAxes::Of(2).FromRgb({0.0, 1.0, 0.0}, {}).hue - 0.7152) < 1e-12);
    QCOMPARE(&ColorAxes::Of(17), &ColorAxes::Of(0));
}

void ColorAxesTest::ContinuesHueAndSaturation()
{
    const ColorRecord previous{0.4, 0.6, {}, 0.5};
    const ColorAxes& hsv = ColorAxes::Of(0);
    const auto is = [](const ColorRecord& record, double hue, double saturation, double value) {
        return record.hue == hue && record.saturation == saturation && record.value == value;
    };
    QVERIFY(is(hsv.FromRgb({0.3, 0.3, 0.3}, previous), 0.4, 0.0, 0.3)); // grey has no saturation
    QVERIFY(is(hsv.FromRgb({0.0, 0.0, 0.0}, previous), 0.4, 0.6, 0.0)); // black keeps it too
    QVERIFY(is(hsv.FromRgb({0.5, 0.0, 0.0}, previous), 0.0, 1.0, 0.5));
    // A whole turn stays one, whatever comes between.
    ColorRecord record{1.0, 1.0, {}, 1.0};
    for (const RgbColor& color : {RgbColor{0.5, 0.0, 0.0}, RgbColor{0.0, 0.0, 0.0},
                                  RgbColor{0.2, 0.2, 0.2}, RgbColor{0.9, 0.1, 0.1}}) {
        record = hsv.FromRgb(color, record);
        QCOMPARE(record.hue, 1.0);
    }
    QVERIFY(hsv.FromRgb({0.5, 0.1, 0.0}, record).hue < 0.1);
    // Hues that are kept are brought into one turn.
    QCOMPARE(hsv.FromRgb({0.2, 0.2, 0.2}, {-0.25, 0.5, {}, 1.0}).hue, 0.75);
    QCOMPARE(hsv.FromRgb({0.2, 0.2, 0.2}, {3.5, 0.5, {}, 1.0}).hue, 0.5);
    QCOMPARE(hsv.FromRgb({0.2, 0.2, 0.2}, {double(NAN), 0.5, {}, 1.0}).hue, 0.0);
    // In lightness, white is an end as black is.
    const ColorAxes& hls = ColorAxes::Of(1);
    QVERIFY(is(hls.FromRgb({1.0, 1.0, 1.0}, previous), 0.4, 0.6, 1.0));
    QVERIFY(is(hls.FromRgb({0.0, 0.0, 0.0}, previous), 0.4, 0.6, 0.0));
    QVERIFY(is(hls.FromRgb({0.5, 0.5, 0.5}, previous), 0.4, 0.0, 0.5));
    QVERIFY(isNear(hls.ToRgb({0.3, 1.0, {}, 1.0}), {1.0, 1.0, 1.0})); // a pure one pales to it
}

void ColorAxesTest::StaysStraightAlongSaturation()
{
    for (const int space : spaces) { // the square's rows are painted from their ends
        const ColorAxes& axes = ColorAxes::Of(space);
        for (const double hue : {0.0, 0.21, 0.5, 0.83}) {
            for (const double value : {0.0, 0.3, 0.5, 0.9, 1.0}) {
                const RgbColor low = axes.ToRgb({hue, 0.0, {}, value});
                const RgbColor high = axes.ToRgb({hue, 1.0, {}, value});
                const RgbColor between = axes.ToRgb({hue, 0.25, {}, value});
                for (std::size_t i = 0; i < 3; ++i)
                    QVERIFY(std::abs(between[i] - (0.75 * low[i] + 0.25 * high[i])) < 1e-12);
            }
        }
    }
}

void ColorAxesTest::TakesAnyNumber()
{
    constexpr double endless = std::numeric_limits<double>::infinity();
    constexpr double numbers[] = {NAN, endless, -endless, 1e30, -1e30, -1.0, -0.0, 0.5, 5e-324};
    for (const int space : spaces) {
        const ColorAxes& axes = ColorAxes::Of(space);
        for (const double a : numbers) {
            for (const double b : numbers) {
                for (const double c : numbers) {
                    const ColorRecord record = axes.FromRgb({a, b, c}, {c, 0.5, {}, 0.5});
                    const RgbColor color = axes.ToRgb({a, b, {}, c});
                    for (const double number : {record.hue, record.saturation, record.value,
                                                color[0], color[1], color[2]})
                        QVERIFY(std::isfinite(number));
                }
            }
        }
    }
}

QTEST_APPLESS_MAIN(ColorAxesTest)
#include "color_axes_test.moc"
