#include "system/color/ColorCurves.h"

#include <cmath>
#include <limits>
#include <random>

#include <QTest>

using namespace Marlox;

namespace {

using Node = ColorCurves::Node;

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

bool isNear(double a, double b, double tolerance = 1e-9)
{
    return std::abs(a - b) <= tolerance;
}

/// The point at `t` of one of the curves, by de Casteljau's construction.
Node pointAt(const ColorCurves& curves, int firstNode, double t)
{
    std::array<Node, 4> nodes{};
    for (int i = 0; i < 4; ++i)
        nodes[std::size_t(i)] = curves.NodeAt(firstNode + i);
    for (std::size_t left = 3; left > 0; --left) {
        for (std::size_t i = 0; i < left; ++i) {
            nodes[i].x += (nodes[i + 1].x - nodes[i].x) * t;
            nodes[i].y += (nodes[i + 1].y - nodes[i].y) * t;
        }
    }
    return nodes[0];
}

bool isInOrder(const ColorCurves& curves)
{
    for (int first = 0; first < ColorCurves::nodeCount; first += 4) {
        const Node start = curves.NodeAt(first);
        const Node end = curves.NodeAt(first + 3);
        if (start.y != (first == 0 ? 1.0 : 0.0) || end.y != 1.0 - start.y || start.x > end.x)
            return false;
        for (int i = first; i < first + 4; ++i) {
            const Node node = curves.NodeAt(i);
            if (!(node.x >= start.x && node.x <= end.x && node.y >= 0.0 && node.y <= 1.0))
                return false;
        }
    }
    return true;
}

} // namespace

/// The weights of tonal ranges.
class TestColorCurves : public QObject {
    Q_OBJECT

private slots:
    void newCurvesPartTheTones()
    {
        const ColorCurves curves;
        QVERIFY(isInOrder(curves));
        for (const double x : {-infinite, -1.0, 0.0, notANumber}) {
            QCOMPARE(curves.Low(x), 1.0);
            QCOMPARE(curves.Mid(x), 0.0);
            QCOMPARE(curves.High(x), 0.0);
        }
        for (const double x : {1.0, 1e30, infinite})
            QCOMPARE(curves.High(x), 1.0);
        QCOMPARE(curves.Mid(0.5), 1.0);
        QVERIFY(isNear(curves.Low(0.25), 0.5) && isNear(curves.High(0.75), 0.5));
        for (double x = 0.0; x <= 1.0; x += 1.0 / 64.0)
            QVERIFY(isNear(curves.Low(x) + curves.Mid(x) + curves.High(x), 1.0));
        QVERIFY(isNear(ColorCurves::BrightnessOf(0.18), 0.4587, 1e-4));
        QVERIFY(isNear(ColorCurves::LuminanceOf(ColorCurves::BrightnessOf(5.0)), 5.0));
        QCOMPARE(ColorCurves::BrightnessOf(-0.1), 0.0);
    }

    void weightsLieOnTheCurves()
    {
        std::mt19937 dice(7);
        std::uniform_real_distribution<double> any(-0.2, 1.2);
        for (int round = 0; round < 400; ++round) {
            std::array<double, 16> coordinates{};
            for (double& coordinate : coordinates)
                coordinate = round % 5 == 0 ? std::round(any(dice) * 3.0) / 3.0 : any(dice);
            const ColorCurves curves(coordinates);
            QVERIFY(isInOrder(curves));
            for (double t = 0.0; t <= 1.0; t += 0.0625) {
                const Node low = pointAt(curves, 0, t);
                const Node high = pointAt(curves, 4, t);
                // Where a curve stands upright its weight is any of those there.
                const auto slopes = [&](const Node& node, int first) {
                    const double across =
                        pointAt(curves, first, t + 1e-4).x - pointAt(curves, first, t - 1e-4).x;
                    return node.x > curves.NodeAt(first).x && across > 1e-5;
                };
                if (slopes(low, 0))
                    QVERIFY(isNear(curves.Low(low.x), low.y, 1e-6));
                if (slopes(high, 4))
                    QVERIFY(isNear(curves.High(high.x), high.y, 1e-6));
                QVERIFY(curves.Mid(t) >= 0.0 && curves.Mid(t) <= 1.0);
            }
        }
    }

    void nodesKeepTheirOrder()
    {
        ColorCurves curves;
        curves.SetNodePosition(0, {0.3, 0.2}, false); // pushes both handles along
        QCOMPARE(curves.NodeAt(0), (Node{0.3, 1.0}));
        QCOMPARE(curves.NodeAt(1), (Node{0.3, 1.0}));
        QCOMPARE(curves.NodeAt(2), (Node{0.3, 0.0}));
        curves.SetNodePosition(1, {0.9, 2.0}, false);
        QCOMPARE(curves.NodeAt(1), (Node{0.5, 1.0}));
        curves.SetNodePosition(0, {0.8, 0.0}, false);
        QCOMPARE(curves.NodeAt(0).x, 0.5);
        QCOMPARE(curves.Low(0.5), 1.0); // a step
        QCOMPARE(curves.Low(std::nextafter(0.5, 1.0)), 0.0);

        ColorCurves taking;
        taking.SetNodePosition(7, {0.9, 0.0}, true);
        QCOMPARE(taking.NodeAt(7), (Node{0.9, 1.0}));
        QVERIFY(isNear(taking.NodeAt(6).x, 0.65));
        QCOMPARE(taking.NodeAt(5).x, 0.75); // the other one stays

        const Ref<Parameter> before = taking.Copy();
        for (const Node& wild : {Node{notANumber, 0.0}, Node{0.0, infinite}})
            taking.SetNodePosition(1, wild, true);
        taking.SetNodePosition(-1, {0.5, 0.5}, true);
        taking.SetNodePosition(8, {0.5, 0.5}, true);
        QVERIFY(taking.IsEqual(*before));
        taking.SetNodePosition(2, {1e30, -1e30}, true);
        QVERIFY(isInOrder(taking));
    }

    void documentsHoldThem()
    {
        ColorCurves curves;
        curves.SetNodePosition(3, {0.123456789012345678, 0.0}, true);
        const auto read =
            Parameter::FromScriptVal(CLSID_DataType_ColorCurves, curves.ToScriptVal());
        QVERIFY(read && read->IsEqual(curves) && curves.Copy()->IsEqual(curves));
        QVERIFY(Parameter::CreateDefault(CLSID_DataType_ColorCurves)->IsEqual(ColorCurves()));
        // Between two keys.
        std::array<double, 16> middle{};
        const ColorCurves usual;
        for (std::size_t i = 0; i < middle.size(); ++i)
            middle[i] = 0.5 * (usual.Components()[i] + curves.Components()[i]);
        const auto between = usual.WithComponents(middle);
        QVERIFY(isInOrder(static_cast<const ColorCurves&>(*between)));
    }
};

QTEST_APPLESS_MAIN(TestColorCurves)
#include "tst_colorcurves.moc"
