// What OpenGL leaves of small marks, pixel by pixel.

#include "system/viewer/OverlayPainter.h"

#include <cmath>
#include <functional>
#include <limits>

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QTest>

using namespace Marlox;

namespace {

constexpr MxColor gold{255, 200, 100};
const QColor line(255, 200, 100);
constexpr int side = 200; // of the view

} // namespace

class OverlayPainterTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase() { target_.reset(); }
    void marksAreCrispWhereverTheyAre_data();
    void marksAreCrispWhereverTheyAre();
    void linesOfOneMarkCross();
    void allKindsAreDrawn();
    void marksReachIntoTheView();
    void manyMarksLookLikeOneByOne();
    void crowdedMarksLookLikeOneByOne();
    void linesCoverNoPixelTwice();
    void linesAlongAxesAreCrisp();
    void dashesStayAsTheViewMoves();
    void nonsenseIsLeftOut();
    void stateStaysAsItWas();

private:
    using Paint = std::function<void(OverlayPainter& painter)>;
    /// With y downwards, transparent where nothing is drawn, or else on white.
    QImage Drawn(const Paint& paint, double unit = 1.0, bool onWhite = false);
    static void DrawSquare(OverlayPainter& painter, OverlayPoint at, double scale = 1.0)
    {
        const OverlayPainter::Mark mark(painter, at, scale);
        painter.Loop({{-2, -2}, {2, -2}, {2, 2}, {-2, 2}});
    }
    /// The pixel of a view position, y upwards.
    static QColor At(const QImage& image, int x, int y)
    {
        return image.pixelColor(x, side - 1 - y);
    }

    QOffscreenSurface surface_;
    QOpenGLContext context_;
    std::unique_ptr<QOpenGLFramebufferObject> target_;
};

void OverlayPainterTest::initTestCase()
{
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    surface_.setFormat(format);
    surface_.create();
    context_.setFormat(format);
    QVERIFY(context_.create() && context_.makeCurrent(&surface_));
    target_ = std::make_unique<QOpenGLFramebufferObject>(side, side);
    target_->bind();
    glViewport(0, 0, side, side);
    glMatrixMode(GL_PROJECTION);
    glOrtho(0.0, side, 0.0, side, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
}

QImage OverlayPainterTest::Drawn(const Paint& paint, double unit, bool onWhite)
{
    const float ground = onWhite ? 1.0f : 0.0f;
    glClearColor(ground, ground, ground, ground);
    glClear(GL_COLOR_BUFFER_BIT);
    PreviewInfo view;
    view.viewWidth = view.viewHeight = side;
    GLOverlayPainter painter(view, unit);
    painter.SetColor(gold);
    paint(painter);
    painter.Flush();
    const QImage image = target_->toImage();
    if (onWhite) // where the alpha tells nothing
        return QImage(image.constBits(), side, side, image.bytesPerLine(), QImage::Format_RGB32)
            .copy();
    return image.convertToFormat(QImage::Format_ARGB32);
}

void OverlayPainterTest::marksAreCrispWhereverTheyAre_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("whole") << 50.0 << 60.0;
    QTest::newRow("between") << 50.7 << 60.2;
    QTest::newRow("at the end") << 50.999 << 60.999;
}

void OverlayPainterTest::marksAreCrispWhereverTheyAre()
{
    QFETCH(double, x);
    QFETCH(double, y);
    const QImage image = Drawn([&](OverlayPainter& painter) { DrawSquare(painter, {x, y}); });
    for (const int sign : {-1, 1}) {
        QCOMPARE(At(image, 50 + 2 * sign, 60), line);
        QCOMPARE(At(image, 50 + 2 * sign, 60 - 2 * sign), line);
        for (const int casing : {1, 3}) {
            const QColor beside = At(image, 50 + casing * sign, 60);
            QVERIFY(beside.value() == 0 && beside.alpha() > 100 && beside.alpha() < 255);
        }
        QCOMPARE(At(image, 50, 60 + 4 * sign).alpha(), 0);
    }
    QCOMPARE(At(image, 50, 60).alpha(), 0);

    // Two pixels for each of before, from the pixel's corner.
    const QImage dense = Drawn(
        [&](OverlayPainter& painter) {
            DrawSquare(painter, {x, y}, 2.0);
        },
        2.0);
    for (const int on : {-5, -4, 3, 4})
        QCOMPARE(At(dense, 50 + on, 60), line);
    for (const int casing : {-7, -6, -3, 2, 5, 6})
        QVERIFY(At(dense, 50, 60 + casing).value() == 0 &&
                At(dense, 50, 60 + casing).alpha() > 100);
    for (const int beside : {-8, -1, 0, 7})
        QCOMPARE(At(dense, 50 + beside, 60).alpha(), 0);
}

void OverlayPainterTest::linesOfOneMarkCross()
{
    const QImage image = Drawn([](OverlayPainter& painter) {
        const OverlayPainter::Mark mark(painter, {50, 60}, 1.0);
        painter.Line({-11, 11}, {11, -11});
        painter.Line({-11, -11}, {11, 11});
        painter.SetColor({10, 20, 30});
        painter.Fill({{16, 3}, {23, 0}, {16, -3}});
    });
    for (const int along : {-11, -1, 0, 1, 11}) { // no casing of the other line over it
        QCOMPARE(At(image, 50 + along, 60 + along), line);
        QCOMPARE(At(image, 50 + along, 60 - along), line);
    }
    QCOMPARE(At(image, 50 + 17, 60), QColor(10, 20, 30));
    QCOMPARE(At(image, 50 + 23, 60), QColor(10, 20, 30)); // the outline belongs to it
    QCOMPARE(At(image, 50 + 22, 60 + 4).alpha(), 0);
}

void OverlayPainterTest::allKindsAreDrawn()
{
    // More than have room side by side, and one that is too large for it.
    const QImage image = Drawn([](OverlayPainter& painter) {
        for (int kind = 0; kind < 400; ++kind) {
            painter.SetColor({kind % 200, 255 - kind % 200, 50 + kind / 200});
            DrawSquare(painter, {10.0 * (kind % 20) + 5.0, 10.0 * (kind / 20) + 5.0});
        }
        const OverlayPainter::Mark mark(painter, {100, 100}, 10.0);
        painter.Loop({{-9, -9}, {9, -9}, {9, 9}, {-9, 9}});
    });
    for (int kind = 0; kind < 400; ++kind) {
        if (kind % 20 != 1 && kind % 20 != 19 && kind / 20 != 1 && kind / 20 != 19) {
            QCOMPARE(At(image, 10 * (kind % 20) + 5, 10 * (kind / 20) + 7),
                     QColor(kind % 200, 255 - kind % 200, 50 + kind / 200));
        }
    }
    QCOMPARE(At(image, 10, 99), QColor(199, 56, 51));
}

void OverlayPainterTest::marksReachIntoTheView()
{
    const QImage image = Drawn([](OverlayPainter& painter) {
        DrawSquare(painter, {-1.0, 60.0});
        const OverlayPainter::Mark mark(painter, {-20.0, 90.0}, 1.0);
        painter.Fill({{16, 3}, {23, 0}, {16, -3}});
    });
    QCOMPARE(At(image, 1, 60), line);
    QCOMPARE(At(image, 1, 90), line);
}

/// Point sprites against quads: few marks at a time are these. Some lie across the view's edges or
/// outside, and some on each other.
void OverlayPainterTest::manyMarksLookLikeOneByOne()
{
    constexpr OverlayPoint diamond[] = {{-4, 0}, {0, -3}, {4, 1}, {0, 3}};
    std::vector<OverlayPoint> places{{0, 50}, {2.5, 90}, {-3, 20}, {side, side}, {side + 3, 60}};
    for (int i = 0; i < 100; ++i)
        places.push_back({30.0 + i % 10 * 15.3, 20.0 + i / 10 * 16.7});
    places.push_back(places.back());
    for (const double unit : {1.0, 2.0}) {
        for (const auto form : {OverlayPainter::Shape::Loop, OverlayPainter::Shape::Fill}) {
            const QImage many = Drawn(
                [&](OverlayPainter& painter) { painter.Marks(form, diamond, places, unit); }, unit);
            const QImage few = Drawn(
                [&](OverlayPainter& painter) {
                    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
                        painter.Marks(form, diamond, std::span(places).subspan(i, 1), unit);
                        painter.Flush();
                    }
                },
                unit);
            QVERIFY(many == few);
            QVERIFY(At(many, 30, 23) != QColor(0, 0, 0, 0));
        }
    }
    OverlayRecorder recorder;
    recorder.Marks(OverlayPainter::Shape::Lines, std::span(diamond).first(2),
                   std::span(places).first(2), 2.0);
    QCOMPARE(QString::fromStdString(recorder.Text()),
             QString("rgba(255 255 255 255) lines at (0, 50) x 2: (-4, 0) (0, -3)\n"
                     "rgba(255 255 255 255) lines at (2.5, 90) x 2: (-4, 0) (0, -3)\n"));
}

/// Put into one picture first; across the view's edges too.
void OverlayPainterTest::crowdedMarksLookLikeOneByOne()
{
    constexpr OverlayPoint square[] = {{-3, -3}, {3, -3}, {3, 3}, {-3, 3}};
    std::vector<OverlayPoint> places;
    for (int i = 0; i < 600; ++i)
        places.push_back({-6.0 + i * 0.36, 100 + 90 * std::sin(i * 0.02)});
    const auto drawn = [&](bool alone) {
        return Drawn(
            [&](OverlayPainter& painter) {
                painter.SetColor(MxColor(255, 200, 100, 200));
                for (std::size_t i = 0; alone && i < places.size(); ++i) {
                    const MxPoint at{int(std::floor(places[i].x)), int(std::floor(places[i].y))};
                    const OverlayPoint before = places[i > 0 ? i - 1 : places.size() - 1];
                    if (at == MxPoint{int(std::floor(before.x)), int(std::floor(before.y))})
                        continue; // left out right on its like
                    painter.Marks(OverlayPainter::Shape::Loop, square,
                                  std::span(places).subspan(i, 1), 1.0);
                    painter.Flush();
                }
                if (!alone)
                    painter.Marks(OverlayPainter::Shape::Loop, square, places, 1.0);
            },
            1.0, true);
    };
    const QImage crowd = drawn(false);
    const QImage single = drawn(true);
    int marked = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const QColor a = crowd.pixelColor(x, y);
            const QColor b = single.pixelColor(x, y);
            marked += a != QColor(Qt::white);
            // Each of many layers may be rounded by one.
            QVERIFY2(std::abs(a.red() - b.red()) < 8 && std::abs(a.blue() - b.blue()) < 8,
                     qPrintable(QString("%1 %2").arg(a.name(), b.name())));
        }
    }
    QVERIFY(marked > 4000);
}

/// Where segments meet, at corners and all along curves, the picture shows through as elsewhere.
void OverlayPainterTest::linesCoverNoPixelTwice()
{
    std::vector<OverlayPoint> circle;
    for (int i = 0; i < 60; ++i)
        circle.push_back({100 + 80 * std::cos(i * M_PI / 30), 100 + 80 * std::sin(i * M_PI / 30)});
    std::vector<OverlayPoint> dense;
    for (int i = 0; i < 120; ++i)
        dense.push_back({60.0 + 0.7 * i, 100 + 12 * std::sin(i * 0.1)});
    const std::vector<OverlayPoint> corners{{20, 20}, {90, 150}, {160, 20}};
    for (const double unit : {1.0, 2.0}) {
        for (const auto& [points, form] : {std::pair(circle, OverlayPainter::Shape::Loop),
                                           std::pair(dense, OverlayPainter::Shape::Strip),
                                           std::pair(corners, OverlayPainter::Shape::Loop)}) {
            const QImage image = Drawn(
                [&points = points, form = form](OverlayPainter& painter) {
                    painter.SetColor(MxColor(255, 200, 100, 128));
                    if (form == OverlayPainter::Shape::Loop)
                        painter.Loop(points);
                    else
                        painter.Strip(points);
                },
                unit, true);
            int cased = 0;
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x) {
                    // Half as dark as the casing of an opaque line.
                    const int red = image.pixelColor(x, y).red();
                    QVERIFY2(red >= 166, qPrintable(QString::number(red)));
                    cased += red <= 190;
                }
            }
            QVERIFY2(cased > 50, qPrintable(QString::number(cased)));
        }
    }
}

void OverlayPainterTest::linesAlongAxesAreCrisp()
{
    const QImage image = Drawn(
        [](OverlayPainter& painter) {
            painter.Loop({{20.3, 40.8}, {80.9, 40.8}, {80.9, 90.2}, {20.3, 90.2}});
            painter.SetDashed(true);
            painter.Strip({{20.5, 120.8}, {60.3, 120.8}, {60.3, 160}});
        },
        1.0, true);
    for (const int x : {20, 50, 80}) {
        QCOMPARE(At(image, x, 40), line);
        QCOMPARE(At(image, x, 39), QColor(79, 79, 79));
        QCOMPARE(At(image, x, 38), QColor(255, 255, 255));
    }
    QCOMPARE(At(image, 19, 39), QColor(79, 79, 79)); // round the corner
    for (int i = 0; i < 40; ++i)
        QCOMPARE(At(image, 20 + i, 120) == line, i % 8 < 4);
}

void OverlayPainterTest::dashesStayAsTheViewMoves()
{
    const auto dashes = [this](double from) {
        return Drawn([from](OverlayPainter& painter) {
            painter.SetDashed(true);
            painter.Strip({{from, 50}, {150.5, 50}, {150.5, 5e6}});
        });
    };
    const QImage near = dashes(-79.5);
    QVERIFY(near == dashes(-79.5 - 8 * 5000)); // cut off far outside
    QVERIFY(near != dashes(-79.5 - 8 * 5000 - 4));
    int dots = 0;
    for (int y = 60; y < side; ++y)
        dots += At(near, 150, y) == line;
    QVERIFY(dots >= 60 && dots <= 80); // half of it
}

void OverlayPainterTest::nonsenseIsLeftOut()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double huge = std::numeric_limits<double>::infinity();
    const QImage image = Drawn([&](OverlayPainter& painter) {
        for (const double wild : {nan, huge, -huge, 1e300}) {
            DrawSquare(painter, {wild, 60});
            DrawSquare(painter, {50, wild});
            DrawSquare(painter, {50, 60}, wild);
            const OverlayPainter::Mark mark(painter, {100, 100}, 1.0);
            painter.Fill({{wild, wild}, {wild, wild}, {wild, wild}});
        }
        for (const double wild : {nan, huge, 1e300}) {
            painter.Strip({{wild, wild}, {-wild, wild}, {wild, 1e5}});
            painter.Loop({{nan, 50}, {50, wild}, {wild, nan}});
        }
    });
    QImage nothing(image.size(), image.format());
    nothing.fill(Qt::transparent);
    QCOMPARE(image, nothing);
}

void OverlayPainterTest::stateStaysAsItWas()
{
    unsigned mine = 0;
    glGenTextures(1, &mine);
    glBindTexture(GL_TEXTURE_2D, mine);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 7);
    glEnable(GL_TEXTURE_2D);
    Drawn([](OverlayPainter& painter) { DrawSquare(painter, {50, 60}); });
    const auto get = [](unsigned what) {
        int value = 0;
        glGetIntegerv(what, &value);
        return value;
    };
    QCOMPARE(get(GL_TEXTURE_BINDING_2D), int(mine));
    QCOMPARE(get(GL_UNPACK_ROW_LENGTH), 7);
    QCOMPARE(get(GL_BLEND), 0);
    QCOMPARE(get(GL_TEXTURE_2D), 1);
    for (const unsigned array : {GL_VERTEX_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY})
        QCOMPARE(get(array), 0);
    QCOMPARE(glGetError(), unsigned(GL_NO_ERROR));
    glDisable(GL_TEXTURE_2D);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glDeleteTextures(1, &mine);
}

QTEST_MAIN(OverlayPainterTest)
#include "overlay_painter_test.moc"
