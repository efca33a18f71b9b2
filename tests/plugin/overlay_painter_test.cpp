// What OpenGL leaves of small marks, pixel by pixel.

#include "system/viewer/OverlayPainter.h"

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
    void nonsenseIsLeftOut();
    void stateStaysAsItWas();

private:
    using Paint = std::function<void(OverlayPainter& painter)>;
    /// With y downwards, transparent where nothing is drawn.
    QImage Drawn(const Paint& paint, double unit = 1.0);
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

QImage OverlayPainterTest::Drawn(const Paint& paint, double unit)
{
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    PreviewInfo view;
    view.viewWidth = view.viewHeight = side;
    GLOverlayPainter painter(view, unit);
    painter.SetColor(gold);
    paint(painter);
    painter.Flush();
    return target_->toImage().convertToFormat(QImage::Format_ARGB32);
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
