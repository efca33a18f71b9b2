#include "host/Rows.h"
#include "workbench/tools/MaskShape.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <numeric>
#include <random>

#include <QtTest>

Q_DECLARE_METATYPE(Marlox::PixelPlace)

using namespace Marlox;

namespace {

constexpr MxRect window{-2, -1, 22, 17};

struct Plane {
    MxRect window;
    std::vector<float> values;

    float At(int x, int y) const
    {
        return values[std::size_t(y - window.top) * std::size_t(window.Width()) +
                      std::size_t(x - window.left)];
    }
    double Total() const { return std::accumulate(values.begin(), values.end(), 0.0); }
};

/// The rows as several threads may take them.
Plane drawn(const MaskOutlines& outlines, FillRule rule, const MxRect& window, int rowsAtOnce = 7,
            Falloff falloff = Falloff::Linear)
{
    Plane plane{window, std::vector<float>(std::size_t(window.Width() * window.Height()), -1.0f)};
    const MaskRaster raster(outlines, rule, falloff, window);
    const RenderContext context;
    for (int row = 0; row < window.Height(); row += rowsAtOnce)
        raster.Rows(row, std::min(row + rowsAtOnce, window.Height()),
                    plane.values.data() + std::ptrdiff_t(row) * window.Width(), window.Width(),
                    context);
    return plane;
}

Plane drawn(const Outline& outline, FillRule rule, const MxRect& in = window, int rowsAtOnce = 7)
{
    return drawn(MaskOutlines{outline, {}, {}}, rule, in, rowsAtOnce);
}

/// The same by lines, many in each row of pixels, exact along each.
Plane sampled(const Outline& outline, FillRule rule, int lines)
{
    Plane plane{window, std::vector<float>(std::size_t(window.Width() * window.Height()))};
    for (int line = 0; line < window.Height() * lines; ++line) {
        const double y = window.top + (line + 0.5) / lines;
        std::vector<std::pair<double, int>> crossings;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const PixelPlace a = outline[i];
            const PixelPlace b = outline[(i + 1) % outline.size()];
            if ((a.y <= y) != (b.y <= y))
                crossings.emplace_back(a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y),
                                       a.y <= y ? 1 : -1);
        }
        std::sort(crossings.begin(), crossings.end());
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].second;
            if (rule == FillRule::NonZero ? winding == 0 : winding % 2 == 0)
                continue;
            for (int x = window.left; x < window.right; ++x) {
                const double part = std::min(x + 1.0, crossings[i + 1].first) -
                                    std::max(double(x), crossings[i].first);
                plane.values[std::size_t(line / lines * window.Width() + x - window.left)] +=
                    float(std::max(part, 0.0) / lines);
            }
        }
    }
    return plane;
}

double largestDifference(const Plane& a, const Plane& b)
{
    double most = 0.0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        most = std::max(most, std::abs(double(a.values[i]) - double(b.values[i])));
    return most;
}

double largestStep(const Plane& plane)
{
    double most = 0.0;
    for (int y = plane.window.top + 1; y < plane.window.bottom; ++y) {
        for (int x = plane.window.left + 1; x < plane.window.right; ++x) {
            const auto step = [&](int toX, int toY) {
                return std::abs(double(plane.At(x, y)) - double(plane.At(toX, toY)));
            };
            most = std::max({most, step(x - 1, y), step(x, y - 1)});
        }
    }
    return most;
}

Outline around(PixelPlace middle, int count, const std::function<double(double)>& radius)
{
    Outline outline;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / count;
        outline.push_back({middle.x + radius(angle) * std::cos(angle),
                           middle.y + radius(angle) * std::sin(angle)});
    }
    return outline;
}

/// With places in between, as shapes have them.
MaskOutlines soft(const Outline& inner, const Outline& outer)
{
    constexpr int pieces = 32;
    MaskOutlines outlines;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const std::size_t next = (i + 1) % inner.size();
        for (int k = 0; k < pieces; ++k) {
            const auto between = [k](PixelPlace a, PixelPlace b) {
                return PixelPlace(a.x + (b.x - a.x) * k / pieces, a.y + (b.y - a.y) * k / pieces);
            };
            outlines.inner.push_back(between(inner[i], inner[next]));
            outlines.outer.push_back(between(outer[i], outer[next]));
        }
    }
    outlines.rungs.resize(outlines.inner.size());
    std::iota(outlines.rungs.begin(), outlines.rungs.end(), 0);
    return outlines;
}

} // namespace

class MaskRasterTest : public QObject {
    Q_OBJECT

private slots:
    void areasAreExact_data()
    {
        const Rows<Outline, double, double, double> row("outline", "nonZero", "evenOdd", "middle");
        // The area by either rule and what is covered of the pixel (2, 2).
        row("fractions", {{2.25, 2.5}, {6.5, 2.5}, {6.5, 5.75}, {2.25, 5.75}}, 4.25 * 3.25,
            4.25 * 3.25, 0.375);
        row("triangle", {{0.3, 0.1}, {13.7, 5.2}, {2.9, 11.8}}, 71.76, 71.76, 1.0);
        row("crossing in the pixel", {{1, 1}, {4, 4}, {4, 1}, {1, 4}}, 4.5, 4.5, 0.5);
        row("twice around",
            {{1, 1}, {4.5, 1}, {4.5, 4}, {1, 4}, {1, 1}, {4.5, 1}, {4.5, 4}, {1, 4}}, 10.5, 0.0,
            0.0);
        row("overlapping",
            {{1, 1}, {2.5, 1}, {2.5, 4}, {1, 4}, {1, 1}, {5, 1}, {5, 4}, {1, 4}, {1, 1}}, 12.0, 7.5,
            0.5);
        row("beyond the window", {{-1e7, -1e7}, {1e7, -1e7}, {1e7, 1e7}, {-1e7, 1e7}}, 24.0 * 18.0,
            24.0 * 18.0, 1.0);
        row("half the pixels of a column", {{-30, 2}, {2.5, 2}, {2.5, 40}, {-30, 40}}, 4.5 * 15.0,
            4.5 * 15.0, 0.5);
        row("no area", {{1, 1}, {9, 7}}, 0.0, 0.0, 0.0);
    }
    void areasAreExact()
    {
        QFETCH(Outline, outline);
        QFETCH(double, nonZero);
        QFETCH(double, evenOdd);
        QFETCH(double, middle);
        QVERIFY(std::abs(drawn(outline, FillRule::NonZero).Total() - nonZero) < 1e-4);
        const Plane plane = drawn(outline, FillRule::EvenOdd);
        QVERIFY(std::abs(plane.Total() - evenOdd) < 1e-4);
        QVERIFY(std::abs(double(plane.At(2, 2)) - middle) < 1e-5);
    }

    void randomPolygonsMatchSamples_data()
    {
        const Rows<int, int, double> row("polygons", "corners", "tolerance");
        row("few corners", 150, 9, 0.015);
        row("crossing all over", 12, 45, 0.02);
        row("too many to look at each pair", 3, 900, 0.08);
    }
    void randomPolygonsMatchSamples()
    {
        QFETCH(int, polygons);
        QFETCH(int, corners);
        QFETCH(double, tolerance);
        std::mt19937 random(4);
        const auto between = [&](double low, double high) {
            // Now and then on a line of pixels, or in one with others.
            const double value = std::uniform_real_distribution(low, high)(random);
            return random() % 4 == 0 ? std::round(value) : value;
        };
        for (int i = 0; i < polygons; ++i) {
            Outline outline(2 + random() % std::size_t(corners));
            for (PixelPlace& place : outline)
                place = {between(-9.0, 29.0), between(-8.0, 24.0)};
            for (const FillRule rule : {FillRule::NonZero, FillRule::EvenOdd}) {
                const Plane plane = drawn(outline, rule);
                QVERIFY(largestDifference(plane, sampled(outline, rule, 200)) < tolerance);
                QCOMPARE(drawn(outline, rule, window, 1).values, plane.values);
                Outline other(outline.rbegin(), outline.rend());
                std::rotate(other.begin(), other.begin() + 1, other.end());
                QVERIFY(largestDifference(drawn(other, rule), plane) < 1e-5);
            }
        }
    }

    void softEdgesFadeByDistance()
    {
        const MxRect in{0, 0, 100, 100};
        const auto ring = [](double radius) {
            return around({50.3, 49.8}, 180, [radius](double) { return radius; });
        };
        const MaskOutlines outlines = soft(ring(20.0), ring(40.0));
        const Plane linear = drawn(outlines, FillRule::NonZero, in);
        const Plane smooth = drawn(outlines, FillRule::NonZero, in, 100, Falloff::Smooth);
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 100; ++x) {
                const double radius = std::hypot(x + 0.5 - 50.3, y + 0.5 - 49.8);
                const double value = std::clamp((40.0 - radius) / 20.0, 0.0, 1.0);
                QVERIFY(std::abs(double(linear.At(x, y)) - value) < 0.012);
                QVERIFY(std::abs(double(smooth.At(x, y)) - value * value * (3 - 2 * value)) < 0.02);
            }
        }
        QCOMPARE(drawn(outlines, FillRule::NonZero, in, 3).values, linear.values);
        QVERIFY(largestDifference(drawn(soft(ring(20.0), ring(20.0)), FillRule::NonZero, in),
                                  drawn(ring(20.0), FillRule::NonZero, in)) < 1e-5);
    }

    void narrowSoftEdgesBecomeHardOnes()
    {
        // From a hard edge to one of five pixels no jump, neither in the picture nor in time.
        const auto edge = [](double width) {
            const Outline inner{{10.2, -5}, {12.9, 60}, {-50, 60}, {-50, -5}};
            Outline outer = inner;
            outer[0].x += width;
            outer[1].x += width;
            return drawn(soft(inner, outer), FillRule::NonZero, {0, 0, 30, 40});
        };
        Plane before = edge(0.0);
        for (double width = 0.05; width < 5.0; width += 0.05) {
            const Plane plane = edge(width);
            QVERIFY(largestDifference(plane, before) < 0.07);
            for (int y = 0; y < 40; ++y) {
                for (int x = 1; x < 30; ++x)
                    QVERIFY(plane.At(x, y) <= plane.At(x - 1, y));
            }
            before = plane;
        }
    }

    void foldedSoftEdgesHaveNoCracks_data()
    {
        const Rows<Outline, Outline> row("inner", "outer");
        const auto star = [](double more) {
            return around({60, 60}, 200, [more](double angle) {
                return 30.0 + 12.0 * std::cos(5.0 * angle) + more;
            });
        };
        // The notch is narrower than the edge: the strips of its sides cross.
        const Outline notch{{20, 20}, {60, 20}, {62, 60}, {64, 20}, {100, 20}, {100, 90}, {20, 90}};
        const Outline wide{{5, 5}, {75, 5}, {62, 45}, {50, 5}, {115, 5}, {115, 105}, {5, 105}};
        row("star", star(0.0), star(14.0));
        row("notch", notch, wide);
        row("turned round", Outline(notch.rbegin(), notch.rend()),
            Outline(wide.rbegin(), wide.rend()));
    }
    void foldedSoftEdgesHaveNoCracks()
    {
        QFETCH(Outline, inner);
        QFETCH(Outline, outer);
        const MxRect in{0, 0, 120, 120};
        const MaskOutlines outlines = soft(inner, outer);
        const Plane plane = drawn(outlines, FillRule::NonZero, in);
        const Plane within = drawn(inner, FillRule::NonZero, in);
        const Plane reach = drawn(outer, FillRule::NonZero, in);
        for (std::size_t i = 0; i < plane.values.size(); ++i) {
            QVERIFY(plane.values[i] >= within.values[i] - 1e-5f);
            QVERIFY(plane.values[i] <= std::max(within.values[i], reach.values[i]) + 1e-6f);
        }
        QVERIFY(largestStep(plane) < 0.25);
        QVERIFY(largestStep(plane) > 0.02);
    }

    void innerShapesWinOverOuterOnes()
    {
        // Within the outer, across it, and all around it: two circles that cross, too.
        const MxRect in{0, 0, 80, 60};
        const auto circle = [](double x, double radius) {
            return around({x, 30.1}, 90, [radius](double) { return radius; });
        };
        const Outline eight{{10, 10}, {70, 50}, {70, 10}, {10, 50}};
        Outline shrunk = eight; // grows one half of it, shrinks the other
        for (PixelPlace& place : shrunk)
            place.x += place.x < 40.0 ? -8.0 : -20.0;
        for (const auto& [inner, outer] : {std::pair(circle(40, 20), circle(40, 10)),
                                           {circle(30, 20), circle(45, 20)},
                                           {eight, shrunk}}) {
            const Plane hard = drawn(inner, FillRule::NonZero, in);
            const Plane plane = drawn(soft(inner, outer), FillRule::NonZero, in);
            for (std::size_t i = 0; i < plane.values.size(); ++i)
                QVERIFY(plane.values[i] >= hard.values[i] - 1e-5f);
        }
        // A hole has the hard edge that it has without an outer outline.
        const auto star = [](double radius) {
            Outline outline;
            for (const double angle : {-0.5, 0.3, 1.1, -0.1, 0.7})
                outline.push_back({40.2 + radius * std::cos(angle * std::numbers::pi),
                                   30.4 + radius * std::sin(angle * std::numbers::pi)});
            return outline;
        };
        const MxRect middle{33, 23, 48, 38};
        const Plane hole = drawn(star(28), FillRule::EvenOdd, middle);
        QVERIFY(hole.Total() > 5.0 && hole.Total() < 100.0);
        QVERIFY(largestDifference(drawn(soft(star(28), star(44)), FillRule::EvenOdd, middle),
                                  hole) < 1e-5);
        QVERIFY(
            largestDifference(drawn(soft(circle(40, 20), circle(40, 10)), FillRule::NonZero, in),
                              drawn(circle(40, 20), FillRule::NonZero, in)) < 1e-5);
    }
};

QTEST_GUILESS_MAIN(MaskRasterTest)
#include "MaskRasterTest.moc"
