// Curves fitted to strokes, and operations that keep the form of a shape.

#include "system/shapes/BSplinePolyLine.h"
#include "system/shapes/ShapeFit.h"
#include "system/shapes/ShapeIndex.h"
#include "system/shapes/ShapeOps.h"

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include <QElapsedTimer>
#include <QTest>

using namespace Marlox;

namespace {

constexpr double turn = 2.0 * std::numbers::pi;

using Form = std::function<ShapePlace(double)>; // from 0 to 1, pixels

ShapePlace Circle(double t)
{
    return {400.0 + 200.0 * std::cos(turn * t), 300.0 + 200.0 * std::sin(turn * t)};
}
ShapePlace Square(double t)
{
    const int side = std::min(int(t * 4.0), 3);
    const double part = t * 4.0 - side;
    const double corners[5][2] = {{200, 150}, {600, 150}, {600, 450}, {200, 450}, {200, 150}};
    return {std::lerp(corners[side][0], corners[side + 1][0], part),
            std::lerp(corners[side][1], corners[side + 1][1], part)};
}
ShapePlace Wave(double t)
{
    return {60.0 + 680.0 * t, 300.0 + 120.0 * std::sin(14.0 * t) * (1.0 - 0.5 * t)};
}

std::vector<StrokeSample> Stroke(const Form& form, int count, double shake, bool uneven)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> any(-shake, shake);
    std::vector<StrokeSample> samples;
    for (int i = 0; i < count; ++i) {
        double t = double(i) / (count - 1);
        if (uneven)
            t += 0.02 * std::sin(turn * 5.0 * t);
        StrokeSample sample;
        sample.at = form(std::clamp(t, 0.0, 1.0)) + ShapePlace(any(random), any(random));
        sample.pen.time = float(i);
        samples.push_back(sample);
    }
    if (form(0.0) == form(1.0) || std::abs(form(0.0).x - form(1.0).x) < 1e-9)
        samples.back().at = samples.front().at;
    return samples;
}

PolyPoint PointOf(double x, double y)
{
    PolyPoint point;
    point.x = x;
    point.y = y;
    return point;
}

enum class Kind { Bezier, BSpline, Cardinal };

Ref<PolyLine> Made(Kind kind, std::vector<PolyPoint> points, bool closed)
{
    Ref<PolyLine> shape = kind == Kind::Bezier    ? MakeRef<PolyLine>()
                          : kind == Kind::BSpline ? Ref<PolyLine>(MakeRef<BSplinePolyLine>())
                                                  : Ref<PolyLine>(MakeRef<CardinalPolyLine>());
    shape->SetPoints(std::move(points));
    if (closed)
        shape->Close();
    return shape;
}

Ref<PolyLine> Fitted(Kind kind, const std::vector<StrokeSample>& stroke, const FitOptions& options)
{
    std::vector<PolyPoint> points = kind == Kind::Bezier    ? FitBezier(stroke, options)
                                    : kind == Kind::BSpline ? FitBSpline(stroke, options)
                                                            : FitCardinal(stroke, options);
    return Made(kind, std::move(points), options.closed);
}

/// How far places of one curve lie from the other.
double Apart(const PolyLine& a, const PolyLine& b, ShapePlace scale = {1.0, 1.0})
{
    double most = 0.0;
    const PolyLine* shapes[] = {&a, &b};
    for (int k = 0; k < 2; ++k) {
        const ShapeIndex index(*shapes[1 - k]);
        const int segments = shapes[k]->GetSegmentsCount();
        for (int i = 0; i < segments * 16; ++i) {
            const ShapePlace at = shapes[k]->ValueAt(i / 16.0);
            most = std::max(most, index.NearestOnCurve(at, scale).distance);
        }
    }
    return most;
}

/// Uneven points around a ring; the second key is turned and larger.
ShapeList Keys(Kind kind, int count, bool closed, double tension = 0.0)
{
    ShapeList keys;
    for (const double size : {1.0, 1.3}) {
        std::vector<PolyPoint> points;
        for (int i = 0; i < count; ++i) {
            const double angle = turn * (i + 0.3 * std::sin(i * 2.0)) / count + size;
            const double radius = size * (180.0 + 30.0 * std::sin(3.0 * angle));
            PolyPoint point =
                PointOf(400.0 + radius * std::cos(angle), 300.0 + radius * std::sin(angle));
            point.tension = i % 3 ? 0.0 : tension;
            points.push_back(point);
        }
        keys.push_back(Made(kind, std::move(points), closed));
        if (kind == Kind::Bezier)
            keys.back()->Smooth({}, SelMask(count, true).Bytes());
    }
    return keys;
}

} // namespace

class ShapeFitTest : public QObject {
    Q_OBJECT
private slots:
    void fits_data();
    void fits();
    void longStrokesAreFittedInTime();
    void closingJoinsTheEnds();
    void nonsenseIsFitted();
    void subdividingKeepsTheForm();
    void reducingStaysWithinTheError();
    void convertingKeepsTheCurve();
    void animationIsSmoothedAndEased();
    void pointsAreSmoothed();
};

void ShapeFitTest::fits_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("shake");
    QTest::addColumn<int>("most"); // points
    QTest::addColumn<int>("corners");
    QTest::newRow("circle") << 0 << 0 << 0.0 << 4 << 0;
    QTest::newRow("circle, shaken") << 0 << 0 << 0.7 << 5 << 0;
    QTest::newRow("circle as B-spline") << 0 << 1 << 0.5 << 7 << 0;
    QTest::newRow("circle as cardinal") << 0 << 2 << 0.5 << 13 << 0;
    QTest::newRow("square") << 1 << 0 << 0.4 << 6 << 4;
    QTest::newRow("square as B-spline") << 1 << 1 << 0.4 << 10 << 4;
    QTest::newRow("square as cardinal") << 1 << 2 << 0.4 << 10 << 4;
    QTest::newRow("wave") << 2 << 0 << 0.5 << 12 << 0;
    QTest::newRow("wave as B-spline") << 2 << 1 << 0.5 << 22 << 0;
    QTest::newRow("wave as cardinal") << 2 << 2 << 0.5 << 26 << 0;
}

void ShapeFitTest::fits()
{
    QFETCH(int, form);
    QFETCH(int, kind);
    QFETCH(double, shake);
    QFETCH(int, most);
    QFETCH(int, corners);
    const Form forms[] = {Circle, Square, Wave};
    FitOptions options;
    options.closed = form < 2;
    for (const bool uneven : {false, true}) {
        const std::vector<StrokeSample> stroke = Stroke(forms[form], 600, shake, uneven);
        const Ref<PolyLine> shape = Fitted(Kind(kind), stroke, options);
        const ShapeIndex index(*shape);
        for (const StrokeSample& sample : stroke)
            QVERIFY(index.NearestOnCurve(sample.at, {1.0, 1.0}).distance <= options.error);
        QVERIFY2(shape->GetCount() <= most, qPrintable(QString::number(shape->GetCount())));
        const u32 flag = kind == 0 ? PPF_Broken : PPF_Linear;
        QCOMPARE(shape->GetCount(flag), corners);
        QVERIFY(shape->Points().back().pen.time > 300.0f);
        if (!options.closed)
            QVERIFY(std::abs(shape->Points().back().x - stroke.back().at.x) < 1e-6);
    }
}

void ShapeFitTest::longStrokesAreFittedInTime()
{
    const auto spiral = [](double t) {
        return ShapePlace(400.0 + 240.0 * t * std::cos(25.0 * t),
                          300.0 + 240.0 * t * std::sin(25.0 * t));
    };
    const std::vector<StrokeSample> stroke = Stroke(spiral, 100'000, 0.7, true);
    for (const Kind kind : {Kind::Bezier, Kind::BSpline, Kind::Cardinal}) {
        QElapsedTimer timer;
        timer.start();
        const Ref<PolyLine> shape = Fitted(kind, stroke, {});
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY2(shape->GetCount() < 90, qPrintable(QString::number(shape->GetCount())));
        const ShapeIndex index(*shape);
        for (std::size_t i = 0; i < stroke.size(); i += 50)
            QVERIFY(index.NearestOnCurve(stroke[i].at, {1.0, 1.0}).distance <= 1.5);
    }
}

/// One stroke ends too early, one too late: both become circles without a corner.
void ShapeFitTest::closingJoinsTheEnds()
{
    FitOptions options;
    options.closed = true;
    for (const double end : {0.985, 1.03}) {
        const auto open = [end](double t) { return Circle(t * end); };
        const Ref<PolyLine> shape = Fitted(Kind::Bezier, Stroke(open, 500, 0.2, false), options);
        QVERIFY(shape->GetCount() <= 6);
        QCOMPARE(shape->GetCount(PPF_Broken), 0);
        const ShapeIndex index(*shape);
        for (int i = 0; i < 100; ++i)
            QVERIFY(index.NearestOnCurve(Circle(i / 100.0), {1.0, 1.0}).distance < 4.0);
    }
}

void ShapeFitTest::nonsenseIsFitted()
{
    const double nan = std::nan("");
    const std::vector<StrokeSample> strokes[] = {
        {},
        {{{5, 5}, {}}},
        {{{5, 5}, {}}, {{5, 5}, {}}, {{nan, 1}, {}}},
        {{{5, 5}, {}}, {{9, 5}, {}}},
        {{{5, 5}, {}}, {{1e308, 5}, {}}, {{9, 5}, {}}, {{5, 5}, {}}, {{9, 5}, {}}},
    };
    const int counts[] = {0, 1, 1, 2};
    for (const Kind kind : {Kind::Bezier, Kind::BSpline, Kind::Cardinal}) {
        for (const bool closed : {false, true}) {
            FitOptions options;
            options.closed = closed;
            for (std::size_t i = 0; i < std::size(strokes); ++i) {
                const Ref<PolyLine> shape = Fitted(kind, strokes[i], options);
                if (i < std::size(counts))
                    QCOMPARE(shape->GetCount(), counts[i]);
                for (const PolyPoint& point : shape->Points())
                    QVERIFY(std::isfinite(point.x + point.y + point.inX + point.outX) &&
                            std::abs(point.x) < 100.0);
            }
        }
    }
}

void ShapeFitTest::subdividingKeepsTheForm()
{
    for (const bool closed : {false, true}) {
        for (const int count : {1, 2, 5}) {
            const SelMask all(14, true);
            for (const Kind kind : {Kind::Bezier, Kind::BSpline, Kind::Cardinal}) {
                const ShapeList keys = Keys(kind, 14, closed);
                const ShapeList made = Subdivide(keys, all, count, {1.0, 1.0});
                QCOMPARE(int(made.size()), 2);
                for (std::size_t k = 0; k < 2; ++k) {
                    QCOMPARE(made[k]->GetCount(), 14 + keys[k]->GetSegmentsCount() * count);
                    QCOMPARE(made[k]->IsClosed(), closed);
                    QVERIFY(Apart(*made[k], *keys[k]) < (kind == Kind::Cardinal ? 4.0 : 1e-9));
                    QCOMPARE(made[k]->Points()[std::size_t(count) + 1].id, keys[k]->Points()[1].id);
                }
            }
            // Some of the segments, and corners.
            SelMask some(14);
            for (const int i : {3, 4, 5, 9})
                some.DoSet(i, SelMask::Select);
            const ShapeList tense = Keys(Kind::BSpline, 14, closed, 1.0);
            const ShapeList made = Subdivide(tense, some, count, {1.0, 1.0});
            QCOMPARE(made[0]->GetCount(), 14 + 2 * count);
            QVERIFY(Apart(*made[0], *tense[0]) < 6.0);
        }
    }
    QVERIFY(Subdivide(Keys(Kind::Bezier, 5, true), SelMask(5), 1, {1.0, 1.0}).empty());
}

void ShapeFitTest::reducingStaysWithinTheError()
{
    for (const Kind kind : {Kind::Bezier, Kind::BSpline, Kind::Cardinal}) {
        for (const bool closed : {false, true}) {
            ShapeList keys = Keys(kind, 120, closed);
            for (const Ref<PolyLine>& key : keys)
                key->GetPoint(7)->Set(PPF_Locked, true);
            SelMask selected(120, true);
            selected.DoSet(60, SelMask::Clear);
            const ShapeList made = ReducePoints(keys, selected, {1.0, {1.0, 1.0}});
            QCOMPARE(int(made.size()), 2);
            QVERIFY2(made[0]->GetCount() < (kind == Kind::Bezier ? 24 : 60),
                     qPrintable(QString::number(made[0]->GetCount())));
            for (std::size_t k = 0; k < 2; ++k) {
                QVERIFY2(Apart(*made[k], *keys[k]) <= 1.05,
                         qPrintable(QString::number(Apart(*made[k], *keys[k]))));
                for (int i = 0; i < made[0]->GetCount(); ++i)
                    QCOMPARE(made[k]->Points()[std::size_t(i)].id,
                             made[0]->Points()[std::size_t(i)].id);
                for (const std::size_t stays : {7, 60}) {
                    const PolyPoint& old = keys[k]->Points()[stays];
                    const int index = made[k]->GetIndex(old.id);
                    QVERIFY(index >= 0);
                    QVERIFY(made[k]->Points()[std::size_t(index)].Place() == old.Place());
                }
            }
        }
    }
    // Points on the sides of a rectangle go, its corners stay corners.
    PolyLine rectangle;
    rectangle.MakeRectangle({0.5, 0.5}, 0.5, 0.4, 0.0);
    const ShapeList more =
        Subdivide(ShapeList{rectangle.CopyShape()}, SelMask(4, true), 3, {1000.0, 1000.0});
    const ShapeList less = ReducePoints(more, SelMask(16, true), {0.5, {1000.0, 1000.0}});
    QCOMPARE(less.at(0)->GetCount(), 4);
    QCOMPARE(less[0]->GetCount(PPF_Linear), 4);
    QVERIFY(Apart(*less[0], rectangle) < 1e-12);
}

void ShapeFitTest::convertingKeepsTheCurve()
{
    for (const bool closed : {false, true}) {
        for (const Kind kind : {Kind::BSpline, Kind::Cardinal}) {
            for (const double tension : {0.0, 0.4, 1.0}) {
                const ShapeList keys = Keys(kind, 12, closed, tension);
                const ShapeList made = ToBezier(keys);
                for (std::size_t k = 0; k < 2; ++k) {
                    QCOMPARE(made.at(k)->GetSegmentsCount(), keys[k]->GetSegmentsCount());
                    for (int i = 0; i < 12 * 4 - 4; ++i) {
                        const ShapePlace by = made[k]->ValueAt(i / 4.0) - keys[k]->ValueAt(i / 4.0);
                        QVERIFY(std::hypot(by.x, by.y) < 1e-9);
                    }
                }
            }
        }
        ShapeList keys = Keys(Kind::Bezier, 12, closed);
        for (const bool cornered : {false, true}) {
            if (cornered) {
                for (const Ref<PolyLine>& key : keys) {
                    std::vector<u8> mask(12, 0);
                    mask[4] = mask[5] = mask[9] = 1;
                    key->Linear({}, mask);
                }
            }
            const ShapeList made = ToBSpline(keys, {1.0, {1.0, 1.0}});
            QCOMPARE(made.at(0)->GetCount(), made.at(1)->GetCount());
            QVERIFY2(made[0]->GetCount() < 60, qPrintable(QString::number(made[0]->GetCount())));
            for (std::size_t k = 0; k < 2; ++k) {
                QCOMPARE(made[k]->IsClosed(), closed);
                QVERIFY2(Apart(*made[k], *keys[k]) <= 1.0,
                         qPrintable(QString::number(Apart(*made[k], *keys[k]))));
                if (cornered)
                    QVERIFY(made[k]->GetIndex(keys[k]->Points()[4].id) >= 0);
            }
        }
    }
    const ShapeList far = Keys(Kind::Bezier, 4, true);
    far[1]->GetPoint(2)->x = 1e200; // where lengths overflow
    QVERIFY(ToBSpline(far, {1.0, {1.0, 1.0}}).empty());
}

void ShapeFitTest::animationIsSmoothedAndEased()
{
    const double times[] = {0.0, 10.0, 15.0, 40.0};
    const auto keys = [](std::initializer_list<double> xs) {
        ShapeList made;
        for (const double x : xs) {
            made.push_back(MakeRef<PolyLine>());
            made.back()->SetPoints({PointOf(x, 0.5), PointOf(x, 0.5)});
        }
        return made;
    };
    SelMask first(2);
    first.DoSet(0, SelMask::Select);
    ShapeList shaken = keys({0.0, 0.5, 0.1, 1.0});
    SmoothAnimation(shaken, times, first, 1.0);
    QCOMPARE(shaken[1]->Points()[0].x, 0.1 * 10.0 / 15.0);
    QCOMPARE(shaken[2]->Points()[0].x, 0.5 + 0.5 * 5.0 / 30.0);
    QCOMPARE(shaken[1]->Points()[1].x, 0.5);
    QCOMPARE(shaken[3]->Points()[0].x, 1.0);

    ShapeList even = keys({0.0, 0.25, 0.375, 1.0});
    EaseAnimation(even, times, first, 0.0, 0.0);
    QVERIFY(std::abs(even[1]->Points()[0].x - 0.25) < 1e-12);
    EaseAnimation(even, times, first, 1.0, 1.0);
    QVERIFY(std::abs(even[1]->Points()[0].x - 0.25 * 0.25 * 2.5) < 1e-12);
    QCOMPARE(even[1]->Points()[1].x, 0.25);
    QCOMPARE(even[3]->Points()[0].x, 1.0);
}

void ShapeFitTest::pointsAreSmoothed()
{
    const Ref<PolyLine> shape = Keys(Kind::Bezier, 6, false)[0];
    shape->GetPoint(2)->Set(PPF_Locked, true);
    const std::vector<PolyPoint> old(shape->Points().begin(), shape->Points().end());
    SmoothPoints(*shape, SelMask(6, true), 1.0, 1.0);
    for (const std::size_t stays : {0, 2, 5})
        QVERIFY(shape->Points()[stays].Place() == old[stays].Place());
    const PolyPoint& point = shape->Points()[3];
    QCOMPARE(point.x, 0.5 * (old[2].x + old[4].x));
    const double cross = point.outX * (old[4].y - old[2].y) - point.outY * (old[4].x - old[2].x);
    QVERIFY(std::abs(cross) < 1e-6 && point.outX * (old[4].x - old[2].x) >= 0.0);
    AveragePoints(*shape, SelMask(6, true));
    QVERIFY(shape->Points()[0].Place() == shape->Points()[5].Place());
    QVERIFY(shape->Points()[2].Place() == old[2].Place());
}

QTEST_GUILESS_MAIN(ShapeFitTest)
#include "tst_shapefit.moc"
