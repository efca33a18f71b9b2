// The index of a shape answers as going over all points and segments does; thinned curves stay
// within half a pixel.

#include "system/shapes/BSplinePolyLine.h"
#include "system/shapes/ShapeDrawing.h"
#include "system/shapes/ShapeIndex.h"

#include <cmath>
#include <limits>
#include <random>

#include <QTest>

using namespace Marlox;

namespace {

constexpr ShapePlace pixels(1920.0, 1080.0);
constexpr double huge = 1e308;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

PolyPoint PointOf(double x, double y)
{
    PolyPoint point;
    point.x = x;
    point.y = y;
    return point;
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    double operator()(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }
    ShapePlace Place() { return {(*this)(0.0, 1.0), (*this)(0.0, 1.0)}; }

private:
    std::mt19937 engine_;
};

/// Wandering points, among them coincident, far and senseless ones, corners and gaps.
Ref<PolyLine> RandomShape(unsigned seed)
{
    Random random(seed);
    Ref<PolyLine> shape = seed % 3 == 0   ? MakeRef<PolyLine>()
                          : seed % 3 == 1 ? Ref<PolyLine>(MakeRef<BSplinePolyLine>())
                                          : Ref<PolyLine>(MakeRef<CardinalPolyLine>());
    const int count = int(random(0.0, 1.0) < 0.2 ? random(0, 4) : random(4, 400));
    std::vector<PolyPoint> points;
    ShapePlace at = random.Place();
    for (int i = 0; i < count; ++i) {
        const double kind = random(0.0, 1.0);
        if (kind > 0.1) // else the same place again
            at = at + ShapePlace(random(-0.02, 0.02), random(-0.02, 0.02));
        PolyPoint point;
        point.x = kind > 0.995 ? noNumber : kind > 0.99 ? huge : at.x;
        point.y = at.y;
        point.outX = random(-0.01, 0.02);
        point.inY = kind > 0.5 ? random(-0.02, 0.02) : 0.0;
        point.tension = kind < 0.3 ? random(0.0, 1.0) : 0.0;
        point.Set(PPF_Linear, kind > 0.8);
        point.Set(PPF_Gap, kind > 0.6 && kind < 0.63);
        points.push_back(point);
    }
    shape->SetPoints(std::move(points));
    if (seed % 2)
        shape->Close();
    return shape;
}

int ScanForPoint(const PolyLine& shape, ShapePlace at, ShapePlace tolerance, int from = 0)
{
    for (int i = from; i < shape.GetCount(); ++i) {
        const PolyPoint& point = shape.Points()[std::size_t(i)];
        if (std::abs(point.x - at.x) < tolerance.x && std::abs(point.y - at.y) < tolerance.y)
            return i;
    }
    return -1;
}

bool IsSame(const CurveFoot& a, const CurveFoot& b)
{
    return a.distance == b.distance && a.segment == b.segment && a.t == b.t &&
           a.nearest == b.nearest && a.foot == b.foot;
}

/// A place near the shape, on one of its points, or anywhere.
ShapePlace SomePlace(const PolyLine& shape, Random& random)
{
    const double kind = random(0.0, 1.0);
    if (shape.GetCount() == 0 || kind < 0.2)
        return random.Place();
    const PolyPoint& point = shape.Points()[std::size_t(random(0.0, 0.999) * shape.GetCount())];
    return kind < 0.4 ? point.Place()
                      : point.Place() + ShapePlace(random(-0.01, 0.01), random(-0.01, 0.01));
}

} // namespace

class ShapeIndexTest : public QObject {
    Q_OBJECT
private slots:
    void answersAsAScanDoes();
    void answersAfterAnUpdate();
    void nearestPlaceIsTheLeastOfAll();
    void toleranceIsStrict();
    void pairsGoInTurn();
    void rubberBands();
    void thinCurvesStayNear();
    void thinCurvesLeaveOut();
};

void ShapeIndexTest::answersAsAScanDoes()
{
    for (unsigned seed = 0; seed < 60; ++seed) {
        const Ref<PolyLine> shape = RandomShape(seed);
        const ShapeIndex index(*shape);
        Random random(seed);
        for (int i = 0; i < 60; ++i) {
            const ShapePlace at = i == 0 ? ShapePlace(huge, 0.5) : SomePlace(*shape, random);
            const ShapePlace tolerance(random(0.0, 0.05), i % 7 ? random(0.0, 0.01) : 2.0);
            const int from = i % 3 ? 0 : int(random(0.0, 50.0));
            QCOMPARE(index.PointAt(at, tolerance, from), ScanForPoint(*shape, at, tolerance, from));
            const CurveFoot foot = index.NearestOnCurve(at, pixels);
            QVERIFY2(IsSame(foot, DistancePointToPolygon(at, *shape, shape->IsClosed(), pixels)),
                     qPrintable(QString("seed %1, place %2").arg(seed).arg(i)));
        }
    }
}

void ShapeIndexTest::answersAfterAnUpdate()
{
    for (unsigned seed = 0; seed < 30; ++seed) {
        Random random(seed + 100);
        const Ref<PolyLine> shape = RandomShape(seed);
        ShapeIndex index(*shape);
        SelMask moved(shape->GetCount());
        for (int i = 0; i < shape->GetCount(); ++i)
            moved.DoSet(i, random(0.0, 1.0) < 0.1 ? SelMask::Select : SelMask::Clear);
        shape->MovePoints(moved, {0.3, -0.2});
        index.Update(*shape, moved);
        for (int i = 0; i < 20; ++i) {
            const ShapePlace at = SomePlace(*shape, random);
            QCOMPARE(index.PointAt(at, {0.01, 0.01}), ScanForPoint(*shape, at, {0.01, 0.01}));
            QVERIFY(IsSame(index.NearestOnCurve(at, pixels),
                           DistancePointToPolygon(at, *shape, shape->IsClosed(), pixels)));
        }
    }
}

/// Against many places of the segment; loops, cusps and points among the segments.
void ShapeIndexTest::nearestPlaceIsTheLeastOfAll()
{
    Random random(5);
    for (int i = 0; i < 600; ++i) {
        CurveSegment s{random.Place(), random.Place(), random.Place(), random.Place()};
        if (i % 5 == 1)
            s.to = s.from;
        if (i % 5 == 2)
            s.control2 = s.control1 = s.from;
        if (i % 25 == 3)
            s.to = s.control2 = s.control1 = s.from;
        const ShapePlace at = i % 2 ? random.Place() : s.At(random(0.0, 1.0));
        const auto distance = [&](double t) {
            const ShapePlace by = s.At(t) - at;
            return std::hypot(by.x * pixels.x, by.y * pixels.y);
        };
        const SegmentFoot foot = NearestOnSegment(s, at, pixels);
        QVERIFY(std::abs(std::sqrt(foot.square) - distance(foot.t)) < 1e-9);
        for (int k = 0; k <= 500; ++k)
            QVERIFY(distance(foot.t) <= distance(k / 500.0) + 1e-9);
        if (i % 2 == 0)
            QVERIFY(distance(foot.t) < 1e-9);
    }
    const CurveSegment none{{noNumber, 0.0}, {0.0, 0.0}, {0.0, 0.0}, {1.0, 1.0}};
    QVERIFY(std::isinf(NearestOnSegment(none, {0.5, 0.5}, pixels).square));
}

void ShapeIndexTest::toleranceIsStrict()
{
    PolyLine shape;
    shape.SetPoints(std::vector<PolyPoint>(3, PointOf(0.5, 0.5)));
    const ShapeIndex index(shape);
    QCOMPARE(index.PointAt({0.75, 0.5}, {0.25, 0.25}), -1);
    QCOMPARE(index.PointAt({0.5, 0.25}, {0.25, 0.25}), -1);
    QCOMPARE(index.PointAt({0.625, 0.625}, {0.25, 0.25}), 0);
    QCOMPARE(index.PointAt({0.5, 0.5}, {0.25, 0.25}, 2), 2);
    QCOMPARE(index.PointAt({0.5, 0.5}, {0.0, 0.25}), -1);
}

void ShapeIndexTest::pairsGoInTurn()
{
    const auto shape = [](std::initializer_list<double> xs) {
        PolyLine made;
        for (const double x : xs)
            made.Append(PointOf(x, 0.5));
        return ShapeIndex(made);
    };
    const ShapeIndex active = shape({0.1, 0.5, 0.9});
    const ShapeIndex other = shape({0.9, 0.5, 0.1});
    const auto hit = [&](double x) { return PointAt(active, &other, {x, 0.5}, {0.01, 0.01}); };
    QVERIFY(hit(0.1).point == 0 && !hit(0.1).isOther);
    QVERIFY(hit(0.9).point == 0 && hit(0.9).isOther); // comes before point 2 of the active one
    QVERIFY(hit(0.5).point == 1 && !hit(0.5).isOther);
    QVERIFY(hit(0.3).point == -1);
}

void ShapeIndexTest::rubberBands()
{
    for (unsigned seed = 0; seed < 12; ++seed) {
        Random random(seed);
        const Ref<PolyLine> shape = RandomShape(seed);
        const ShapeIndex index(*shape);
        const ShapePlace a = SomePlace(*shape, random);
        std::vector<ShapePlace> lasso;
        for (int i = 0; i < int(seed) * 3 + 3; ++i)
            lasso.push_back(a + ShapePlace(random(-0.2, 0.2), random(-0.2, 0.2)));
        const ShapeBounds box = CalcMinMax(lasso);
        std::vector<int> inBox;
        std::vector<int> inLasso;
        for (int i = 0; i < shape->GetCount(); ++i) {
            const ShapePlace at = shape->Points()[std::size_t(i)].Place();
            if (at.x >= box.low.x && at.x <= box.high.x && at.y >= box.low.y && at.y <= box.high.y)
                inBox.push_back(i);
            bool inside = false;
            for (std::size_t k = 0; k < lasso.size(); ++k) {
                const ShapePlace from = lasso[k];
                const ShapePlace to = lasso[(k + 1) % lasso.size()];
                if ((from.y > at.y) != (to.y > at.y) &&
                    at.x < from.x + (at.y - from.y) / (to.y - from.y) * (to.x - from.x))
                    inside = !inside;
            }
            if (inside)
                inLasso.push_back(i);
        }
        QCOMPARE(index.PointsIn(box), inBox);
        QCOMPARE(index.PointsIn(std::span<const ShapePlace>(lasso)), inLasso);
    }
}

/// Each place of the curve lies near the lines, and each place of these near the curve.
void ShapeIndexTest::thinCurvesStayNear()
{
    for (const double zoom : {30.0, 1000.0, 20000.0}) {
        Random random(9);
        Ref<PolyLine> shape = MakeRef<PolyLine>();
        for (int i = 0; i < 300; ++i) {
            const double angle = i * 0.021;
            PolyPoint point = PointOf(0.5 + 0.4 * std::cos(angle) + random(-0.001, 0.001),
                                      0.5 + 0.4 * std::sin(angle));
            point.outX = random(-0.01, 0.01);
            point.inY = random(-0.01, 0.01);
            if (i % 50 == 9) // a spike, and back
                point.x += 0.1;
            shape->Append(point);
        }
        shape->Close();
        CurveView view{{zoom, zoom}, {-0.4 * zoom, -0.4 * zoom}, 1000.0, 700.0};
        view.margin = 0.0;
        ThinCurve thin;
        const ViewStrips& strips = thin.Make(shape, view);
        PolyLine lines;
        for (int i = 0; i < strips.Count(); ++i) {
            for (const OverlayPoint& at : strips.Strip(i)) {
                PolyPoint point = PointOf(at.x, at.y);
                point.Set(PPF_Linear, true);
                point.Set(PPF_Gap, &at == &strips.Strip(i).back());
                lines.Append(point);
            }
        }
        const ShapeIndex drawn(lines);
        for (int i = 0; i < 300 * 64; ++i) {
            const ShapePlace at = view.Out(shape->ValueAt(i / 64.0));
            if (at.x < 0.0 || at.x > 1000.0 || at.y < 0.0 || at.y > 700.0)
                continue;
            QVERIFY(drawn.NearestOnCurve(at, {1.0, 1.0}).distance < 0.5);
        }
        const ShapeIndex curve(*shape);
        for (int i = 0; i + 1 < lines.GetCount(); ++i) {
            if (lines.Points()[std::size_t(i)].Has(PPF_Gap))
                continue;
            const ShapePlace at = lines.ValueAt(i + 0.5);
            const ShapePlace in((at.x - view.offset.x) / zoom, (at.y - view.offset.y) / zoom);
            QVERIFY(curve.NearestOnCurve(in, {zoom, zoom}).distance < 0.5);
        }
    }
}

void ShapeIndexTest::thinCurvesLeaveOut()
{
    Ref<PolyLine> shape = MakeRef<PolyLine>();
    for (int i = 0; i < 20000; ++i)
        shape->Append(PointOf(i / 20000.0, 0.5));
    const CurveView view{{1000.0, 1000.0}, {}, 1000.0, 1000.0};
    ThinCurve thin;
    QCOMPARE(int(thin.Make(shape, view).Points().size()), 2); // a straight line
    Ref<PolyLine> gaps = shape->CopyShape();
    gaps->GetPoint(10000)->Set(PPF_Gap, true);
    QCOMPARE(thin.Make(gaps, view).Count(), 2);
    ViewStrips dashes;
    thin.Make(shape, view).Dash(4.0, 4.0, dashes);
    QCOMPARE(dashes.Count(), 125);
    QCOMPARE(dashes.Strip(3).front().x, 24.0);
    Ref<PolyLine> far = MakeRef<PolyLine>();
    for (const double x : {0.2, huge, 0.4, noNumber, -1e9, 1e9})
        far->Append(PointOf(x, 0.5));
    const ViewStrips& seen = thin.Make(far, view);
    QCOMPARE(seen.Count(), 1);
    for (const OverlayPoint& at : seen.Points())
        QVERIFY(std::abs(at.x) < 1e5);
}

QTEST_GUILESS_MAIN(ShapeIndexTest)
#include "tst_shapeindex.moc"
