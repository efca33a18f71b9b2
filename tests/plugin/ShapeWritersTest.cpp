#include "controls/polyline/ShapeWriters.h"
#include "host/script/CommaLocale.h"
#include "host/shapes/import/ShapeFixtures.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

const NativeFileHeader header{1920.0, 1080.0, 1.0, HeightsPerWidth(1920.0, 1080.0, 1.0), 24.0};

PolyPoint curvePoint(double x, double y, double inX, double inY, double outX, double outY)
{
    PolyPoint point;
    point.x = x;
    point.y = y;
    point.inX = inX;
    point.inY = inY;
    point.outX = outX;
    point.outY = outY;
    return point;
}

PolyPoint corner(double x, double y)
{
    PolyPoint point;
    point.x = x;
    point.y = y;
    point.flags = PPF_Linear;
    return point;
}

const std::vector<PolyPoint> inner = {corner(0.25, 0.25),
                                      curvePoint(0.5, 0.75, -0.125, 0.0, 0.125, 0.0),
                                      curvePoint(1.0 / 3.0, -1.5, 0.0, 0.25, 0.5, 0.0)};
const std::vector<PolyPoint> outer = {corner(0.125, 0.125), corner(0.5, 0.875),
                                      corner(0.75, -1.75)};
const std::vector<PolyPoint> later = {corner(0.375, 0.25),
                                      curvePoint(0.5, 0.5, -0.25, 0.125, 0.25, -0.125),
                                      curvePoint(0.25, -1.25, 0.0, 0.25, 0.5, 0.0)};
const std::vector<ShapePlace> frames = {{0.5, 0.5}, {0.75, 0.25}, {-0.1, 1.4}};

std::string shapeText(bool isClosed, bool hasOuter, bool marksEnds)
{
    const ShapeOutline main{inner, isClosed};
    const ShapeOutline edge{outer, isClosed};
    return ShapeText(header, &main, hasOuter ? &edge : nullptr, marksEnds);
}

std::string motionText(bool hasHeader)
{
    const PathSample centre[] = {{3.0, {0.5, 0.5}}, {4.0, {0.55, 0.45}}};
    const ShapeSample keys[] = {{3.0, inner}, {4.5, later}};
    return MotionText(hasHeader ? std::optional(header) : std::nullopt, centre, keys);
}

ImportedShapes readBack(const std::string& text)
{
    ImportContext context;
    context.width = header.width;
    context.height = header.height;
    ImportedShapes result;
    ImportPolyLines(QByteArray::fromStdString(text), QStringLiteral("file"), ShapeFileFormat::Any,
                    context, result);
    return result;
}

/// Places as they can be with six decimals.
bool areNear(const std::vector<PolyPoint>& read, const std::vector<PolyPoint>& written)
{
    if (read.size() != written.size())
        return false;
    for (std::size_t i = 0; i < read.size(); ++i) {
        const auto isNear = [&](double PolyPoint::*member) {
            return std::abs(read[i].*member - written[i].*member) < 1.5e-6;
        };
        if (!isNear(&PolyPoint::x) || !isNear(&PolyPoint::y) || !isNear(&PolyPoint::inX) ||
            !isNear(&PolyPoint::inY) || !isNear(&PolyPoint::outX) || !isNear(&PolyPoint::outY) ||
            read[i].Has(PPF_Linear) != written[i].Has(PPF_Linear))
            return false;
    }
    return true;
}

} // namespace

class ShapeWritersTest : public QObject {
    Q_OBJECT

private slots:
    void writesGoldenFiles_data();
    void writesGoldenFiles();
    void writesPointsWhateverTheLocale();
    void readsShapesBack();
    void readsMotionsBack();
};

void ShapeWritersTest::writesGoldenFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const std::string& text) {
        QTest::newRow(name) << QByteArray::fromStdString(text);
    };
    row("motion.mot", LightWaveMotionText(frames, header.heightsPerWidth));
    row("motion_empty.mot", LightWaveMotionText({}, header.heightsPerWidth));
    row("motion_header.dfmo", motionText(true));
    row("motion_plain.dfmo", motionText(false));
    row("shape_closed.dfsh", shapeText(true, false, true));
    row("shape_open.dfsh", shapeText(false, true, true));
    row("shape_unmarked.dfsh", shapeText(false, true, false));
    row("shape_none.dfsh", ShapeText(header, nullptr, nullptr, true));
    row("bounds.dxf", DxfText({-0.125, 0.25}, {1.0, 0.75}));
}

void ShapeWritersTest::writesGoldenFiles()
{
    QFETCH(QByteArray, text);
    const QString path = QStringLiteral(MARLOX_SOURCE_DIR "/tests/golden/shapes/");
    const QByteArray golden = fileBytes(path + QLatin1String(QTest::currentDataTag()));
    QVERIFY(!golden.isEmpty());
    QCOMPARE(QString::fromUtf8(text), QString::fromUtf8(golden));
}

void ShapeWritersTest::writesPointsWhateverTheLocale()
{
    const std::string plain = shapeText(false, true, true) + motionText(true);
    const CommaLocale comma;
    if (!comma.IsActive())
        QSKIP("no locale with a decimal comma here");
    QCOMPARE(shapeText(false, true, true) + motionText(true), plain);
    QCOMPARE(readBack(motionText(true)).paths.at(0).keys.at(1).x, 0.55);

    const double largest = std::numeric_limits<double>::max();
    QVERIFY(DxfText({-largest, 0.0}, {largest, 1.0}).size() > 900); // all digits, as "%f" has them
}

void ShapeWritersTest::readsShapesBack()
{
    for (const bool isClosed : {false, true}) {
        for (const bool hasOuter : {false, true}) {
            const ImportedShapes result = readBack(shapeText(isClosed, hasOuter, true));
            QCOMPARE(result.shapes.size(), std::size_t(1));
            QVERIFY(result.notes.empty());
            const ImportedShape& shape = result.shapes[0];
            QCOMPARE(shape.closed, isClosed);
            QVERIFY(areNear(shape.keys.at(0).points, inner));
            QCOMPARE(!shape.outerKeys.empty(), hasOuter);
            QVERIFY(!hasOuter || areNear(shape.outerKeys[0].points, outer));
        }
    }
    QCOMPARE(readBack(shapeText(false, true, false)).shapes.at(0).closed, true); // not told
    const std::vector<PolyPoint> dot = {corner(0.5, 0.5)};
    for (const bool isClosed : {false, true}) { // the only point is the first and the last one
        const ShapeOutline outline{dot, isClosed};
        QCOMPARE(readBack(ShapeText(header, &outline, nullptr, true)).shapes.at(0).closed,
                 isClosed);
    }
    QCOMPARE(readBack(ShapeText(header, nullptr, nullptr, true)).error->text,
             std::string("it holds no points"));
}

void ShapeWritersTest::readsMotionsBack()
{
    for (const bool hasHeader : {false, true}) {
        const ImportedShapes result = readBack(motionText(hasHeader));
        QCOMPARE(result.shapes.size(), std::size_t(1));
        const std::vector<ImportedKey>& keys = result.shapes[0].keys;
        QCOMPARE(keys.size(), std::size_t(2));
        QCOMPARE(keys[1].time, 4.5);
        QVERIFY(areNear(keys[0].points, inner));
        QVERIFY(areNear(keys[1].points, later));
        QCOMPARE(result.paths.at(0).keys.size(), std::size_t(2));
        QCOMPARE(result.paths[0].keys[1].time, 4.0);
        QCOMPARE(result.paths[0].keys[1].y, 0.45);
    }
    PolyPoint straightened = curvePoint(0.5, 0.25, -0.125, 0.0, 0.125, 0.0);
    straightened.flags = PPF_Linear; // what it had as a curve point shows no more
    const ShapeSample sample[] = {{2.0, {&straightened, 1}}};
    QCOMPARE(MotionText({}, {}, sample),
             std::string("DFMO\n2.000000 0.500000 0.250000 0.500000 0.250000 0.500000 0.250000\n"));

    const ImportedShapes motion = readBack(LightWaveMotionText(frames, header.heightsPerWidth));
    QCOMPARE(motion.paths.at(0).keys.size(), frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const ImportedPathKey& key = motion.paths[0].keys[i];
        QCOMPARE(key.time, double(i));
        QVERIFY(std::abs(key.x - frames[i].x) < 2e-6 && std::abs(key.y - frames[i].y) < 2e-6);
    }
}

QTEST_GUILESS_MAIN(ShapeWritersTest)
#include "ShapeWritersTest.moc"
