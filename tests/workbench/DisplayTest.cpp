#include "TestPictures.h"
#include "script/ScriptSystem.h"
#include "system/document/MarloxDoc.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/ImageScale.h"
#include "workbench/tools/Tools.h"
#include "workbench/viewer/DisplayConverter.h"
#include "workbench/viewer/ViewerWidget.h"

#include <cmath>
#include <limits>

#include <QOpenGLContext>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

QRgb shownAs(Rgba color, const DisplaySettings& settings)
{
    const QImage picture = DisplayTransform(QString()).Apply(*Plain(3, 2, color), settings);
    return picture.format() == QImage::Format_RGBA8888_Premultiplied
               ? qRgba(picture.constScanLine(1)[8], picture.constScanLine(1)[9],
                       picture.constScanLine(1)[10], picture.constScanLine(1)[11])
               : 0;
}

int srgbCode(double linear)
{
    return int(std::lround((1.055 * std::pow(linear, 1.0 / 2.4) - 0.055) * 255.0));
}

} // namespace

class DisplayTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        InstallScripting();
        RegisterTools();
    }
    void cleanupTestCase() { UninstallScripting(); }

    void lightBecomesCodes()
    {
        DisplaySettings settings;
        const int grey = srgbCode(0.18);
        QCOMPARE(shownAs({0.18f, 1.0f, 4.0f, 1.0f}, settings), qRgba(grey, 255, 255, 255));
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float infinite = std::numeric_limits<float>::infinity();
        QCOMPARE(shownAs({nan, -3.0f, infinite, 0.5f}, settings), qRgba(0, 0, 255, 128));
        settings.exposure = 2.0;
        QCOMPARE(shownAs({0.045f, 0.0f, 0.0f, 1.0f}, settings), qRgba(grey, 0, 0, 255));
        settings.exposure = 0.0;
        settings.gamma = 2.0;
        const int brighter = int(std::lround(std::sqrt(grey / 255.0) * 255.0));
        QVERIFY(std::abs(qRed(shownAs({0.18f, 0, 0, 1}, settings)) - brighter) <= 1);
    }

    void channelsStandAlone()
    {
        DisplaySettings settings;
        const Rgba color{0.1f, 0.2f, 0.4f, 0.25f};
        const double luma = 0.2126 * 0.1 + 0.7152 * 0.2 + 0.0722 * 0.4;
        for (const auto& [view, light] : {std::pair(ChannelView::Red, 0.1),
                                          {ChannelView::Green, 0.2},
                                          {ChannelView::Blue, 0.4},
                                          {ChannelView::Luminance, luma}}) {
            settings.channels = view;
            const int code = srgbCode(light);
            const QRgb shown = shownAs(color, settings);
            QVERIFY(std::abs(qRed(shown) - code) <= 1);
            QCOMPARE(shown, qRgba(qRed(shown), qRed(shown), qRed(shown), 255));
        }
        settings.channels = ChannelView::Alpha;
        settings.exposure = 3.0;
        QCOMPARE(shownAs(color, settings), qRgba(64, 64, 64, 255));
    }

    void proxiesAreACodeOffAtMost()
    {
        float scale = 1.0f;
        const auto paint = [&scale](int x, int y) {
            const float light = std::exp2(float(x) / 64.0f - 12.0f) * scale;
            return Rgba{light, y ? -light : 1e30f, std::numeric_limits<float>::quiet_NaN(),
                        float(x) / 1023.0f};
        };
        Image::Format proxy;
        proxy.scale = 0.25;
        const DisplayTransform transform{QString()};
        for (const double exposure : {0.0, -6.0, 3.0, 25.0, -25.0}) {
            scale = std::abs(exposure) > 20.0 ? float(std::exp2(-exposure)) : 1.0f;
            DisplaySettings settings;
            settings.exposure = exposure;
            settings.gamma = exposure < 0.0 ? 1.3 : 1.0;
            const QImage exact = transform.Apply(*Picture(1024, 2, paint), settings);
            const QImage quick = transform.Apply(*Picture(1024, 2, paint, proxy), settings);
            QCOMPARE(quick.size(), exact.size());
            for (int y = 0; y < 2; ++y) {
                for (int byte = 0; byte < 4096; ++byte) {
                    const int off = quick.constScanLine(y)[byte] - exact.constScanLine(y)[byte];
                    QVERIFY(std::abs(off) <= (byte % 4 == 3 ? 0 : 1));
                }
            }
        }
    }

    void brokenConfigurationsFallBack()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("config.ocio"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("ocio_profile_version: 2\nroles: [broken");
        file.close();
        const DisplayTransform broken(file.fileName());
        QVERIFY(broken.Problem().contains(file.fileName()));
        QCOMPARE(broken.Displays(), QStringList{"sRGB"});
        QVERIFY(!broken.Apply(*Plain(1, 1, {1, 1, 1, 1}), {}).isNull());
        QVERIFY(DisplayTransform(QString()).Problem().isEmpty());
        QString error;
        DisplaySettings unknown;
        unknown.display = "no such display";
        QVERIFY(broken.Apply(*Plain(1, 1, {1, 1, 1, 1}), unknown, nullptr, &error).isNull());
        QVERIFY(error.contains("no such display"));
    }

    void viewsFitZoomAndPan()
    {
        ViewTransform view;
        view.SetView(1000, 500);
        view.SetImage({0, 0, 400, 100}, 1.0);
        QCOMPARE(view.Zoom(), 2.5);
        QCOMPARE(view.ToView(MxRect(0, 0, 400, 100)), QRectF(0, 125, 1000, 250));
        view.SetImage({0, 0, 200, 100}, 2.0); // the same shape from wide pixels
        QCOMPARE(view.ToView(MxRect(0, 0, 200, 100)), QRectF(0, 125, 1000, 250));
        QCOMPARE(view.ToImage(view.ToView(QPointF(30, 60))), QPointF(30, 60));

        const QPointF anchor(300, 200);
        const QPointF under = view.ToImage(anchor);
        view.ZoomTo(8.0, anchor);
        const QPointF moved = view.ToView(under) - anchor;
        QVERIFY(std::abs(moved.x()) <= 0.5 && std::abs(moved.y()) <= 0.5);
        QVERIFY(!view.IsFitted());
        const QPointF middle = view.ToImage(view.Middle());
        view.SetView(601, 701);
        QVERIFY((view.ToImage(view.Middle()) - middle).manhattanLength() < 0.2);
        for (int step = 0; step < 700; ++step) { // across zero, too
            const QPointF before = view.ToView(QPointF(0, 0));
            view.PanBy({-1, 1});
            QCOMPARE(view.ToView(QPointF(0, 0)) - before, QPointF(-1, 1));
        }
        QCOMPARE(view.ToView(QPointF(0, 0)), view.ToView(QPointF(0, 0)).toPoint()); // crisp
        view.ZoomTo(1e9, anchor);
        QCOMPARE(view.Zoom(), ViewTransform::maximumZoom);

        const QPointF held = view.ToImage(anchor);
        for (const double factor : {0.8, 1.25}) { // the roundings of many steps don't add up
            for (int step = 0; step < 30; ++step)
                view.ZoomTo(view.Zoom() * factor, anchor);
        }
        QVERIFY((view.ToImage(anchor) - held).manhattanLength() < 1.0 / 128.0);
        view.SetView(600, 700, 50);
        view.Fit();
        QCOMPARE(view.ToView(MxRect(0, 0, 200, 100)), QRectF(50, 288, 500, 125));

        view.SetView(600, 700);
        PreviewInfo info;
        view.Place(info, 2.0);
        double x = 0.0;
        double y = 0.0;
        info.TransformOut(0.0, 1.0, x, y);
        QCOMPARE(QPointF(x, 700.0 - y), view.ToView(QPointF(0, 0))); // overlays count upwards
        QCOMPARE(info.controlScale, 2.0);
    }

    void onlyWhatIsStillWantedIsDelivered()
    {
        DisplayConverter converter;
        QStringList delivered;
        connect(&converter, &DisplayConverter::Failed, this,
                [&](const QString&) { delivered << "failure"; });
        connect(&converter, &DisplayConverter::Converted, this, [&](const DisplayedImage& shown) {
            delivered << QString::number(shown.picture.width());
        });
        DisplaySettings unknown;
        unknown.display = "nowhere";
        for (const DisplaySettings& settings : {DisplaySettings(), unknown}) {
            converter.Request(Plain(800, 600, {}), settings); // runs
            converter.Request(Plain(40, 30, {}), settings);   // waits
            converter.Cancel();
            converter.Request(Plain(4, 3, {}), settings);
            QTRY_VERIFY(!converter.IsBusy());
            QCoreApplication::processEvents();
        }
        QCOMPARE(delivered, QStringList({"4", "failure"}));
    }

    void proxiesKeepTheFrame()
    {
        for (const int width : {1277, 1278, 1279, 1280}) {
            Image::Format full;
            full.displayWindow = {0, 0, width, 719};
            const Image::Format proxy = ReducedFormat(full, 4);
            QCOMPARE(FullDisplayWindow(proxy, full.displayWindow), full.displayWindow);
            QCOMPARE(FullDisplayWindow(proxy, {0, 0, 10, 10}), MxRect(0, 0, 1280, 720));
            QCOMPARE(FullDisplayWindow(full, {0, 0, 10, 10}), full.displayWindow);
        }
    }

    void viewerShowsTheDocument()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath("picture.exr");
        QString error;
        const auto image = Picture(8, 4, [](int x, int y) {
            return Rgba{x == 2 && y == 1 ? 5.0f : 0.0f, 0.0f, x >= 4 ? 1.0f : 0.0f, 1.0f};
        });
        QVERIFY(WriteImage(*image, path, &error));
        MarloxDoc document;
        Operator* source = document.AddTool("ImageSource");
        source->FindInput("File")->SetValue(Text(path.toStdString()), TimeNone, Input::ReplaceAll);

        ViewerWidget viewer(document);
        viewer.ShowWindows(false);
        viewer.resize(160, 120);
        viewer.show();
        document.GetRenderer().Request();
        QTRY_VERIFY(viewer.ShownImage() && viewer.IsSettled());
        QVERIFY(viewer.Message().isEmpty());
        viewer.SetZoom(10.0);
        const QPointF hot = viewer.ImageToWidget({2.5 / 8.0, 1.0 - 1.5 / 4.0});
        QCOMPARE(viewer.WidgetToImage(hot), QPointF(2.5 / 8.0, 1.0 - 1.5 / 4.0));

        QSignalSpy probes(&viewer, &ViewerWidget::ProbeChanged);
        QTest::mouseMove(&viewer, hot.toPoint());
        QTRY_VERIFY(!probes.isEmpty());
        const Probe probe = viewer.ProbeAt(hot);
        QVERIFY(probe.hasPixel);
        QCOMPARE(QPoint(probe.x, probe.y), QPoint(2, 2)); // y up
        QCOMPARE(probe.rgba[0], 5.0f);
        QVERIFY(!viewer.ProbeAt(viewer.ImageToWidget({1.2, 0.5})).hasPixel);

        QWheelEvent wheel(hot, viewer.mapToGlobal(hot.toPoint()), {}, {0, 240}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&viewer, &wheel);
        QCOMPARE(viewer.Zoom(), 10.0 * 1.25 * 1.25);
        QVERIFY((viewer.ImageToWidget({2.5 / 8.0, 1.0 - 1.5 / 4.0}) - hot).manhattanLength() < 1.5);
        QTest::keyClick(&viewer, Qt::Key_F);
        QVERIFY(viewer.View().IsFitted());

        // A failure leaves the last good picture and names the file.
        source->FindInput("File")->SetValue(Text("gone.exr"), TimeNone, Input::ReplaceAll);
        QTRY_VERIFY(viewer.Message().contains("gone.exr"));
        QVERIFY(viewer.ShownImage());
        QCOMPARE(viewer.ProbeAt(viewer.ImageToWidget({0.75, 0.5})).rgba[2], 1.0f);
    }

    void viewerDrawsPixelsExactly()
    {
        QOpenGLContext trial;
        if (!trial.create())
            QSKIP("no OpenGL here");
        MarloxDoc document;
        ViewerWidget viewer(document);
        viewer.ShowWindows(false);
        viewer.ShowChecker(false);
        viewer.resize(64, 64);
        viewer.show();
        // Wider than a texture tile, with a different colour in each column.
        const auto image = Picture(4200, 2, [](int x, int) {
            return Rgba{x % 2 ? 1.0f : 0.0f, x % 3 ? 1.0f : 0.0f, 0.0f, 1.0f};
        });
        RenderResult result;
        result.image = image;
        emit document.GetRenderer().Finished(result);
        QTRY_VERIFY(viewer.ShownImage() == image);
        for (const auto& [zoom, column] :
             {std::pair(1.0, 20.0), {1.0, 2046.0}, {1.0, 4180.0}, {1.5, 20.0}, {1.5, 2046.0}}) {
            viewer.SetZoom(zoom);
            const QPointF at = viewer.ImageToWidget({column / 4200.0, 0.5});
            QTest::mousePress(&viewer, Qt::MiddleButton, {}, QPoint(32, 32));
            QMouseEvent move(QEvent::MouseMove, QPointF(32, 32) + QPointF(32, 32) - at,
                             Qt::NoButton, Qt::MiddleButton, {});
            QApplication::sendEvent(&viewer, &move);
            QTest::mouseRelease(&viewer, Qt::MiddleButton, {}, QPoint(32, 32));
            const QImage shot = viewer.Screenshot();
            const QPointF left = viewer.View().ToView(QPointF(0, 0));
            for (int x = 20; x < 44; ++x) {
                const int pixel = int(std::floor((x + 0.5 - left.x()) / zoom + 0.001));
                if (pixel < 0 || pixel >= 4200)
                    continue;
                const QColor color = shot.pixelColor(x, 32);
                QCOMPARE(color, QColor(pixel % 2 ? 255 : 0, pixel % 3 ? 255 : 0, 0));
            }
        }
    }

    void opaquePartsLeaveNothingOut()
    {
        QImage picture(97, 71, QImage::Format_RGBA8888_Premultiplied);
        picture.fill(Qt::white);
        QCOMPARE(OpaqueParts(picture).Region(5), QRegion(picture.rect()));
        QVERIFY(OpaqueParts().Region(1).isEmpty());
        const QPoint holes[] = {{3, 40}, {90, 10}, {96, 70}};
        for (const QPoint& hole : holes)
            picture.setPixelColor(hole, QColor(0, 0, 0, 254));
        for (const int margin : {0, 1, 9, 40}) {
            const QRegion region = OpaqueParts(picture).Region(margin);
            for (const QPoint& hole : holes)
                QVERIFY(!region.intersects(
                    QRect(hole, hole).adjusted(-margin, -margin, margin, margin)));
            QVERIFY(region.contains(QPoint(45, 69)) || margin == 40); // and not too little
        }
    }

    void groundShowsThroughHolesOnly()
    {
        QOpenGLContext trial;
        if (!trial.create())
            QSKIP("no OpenGL here");
        MarloxDoc document;
        ViewerWidget viewer(document);
        viewer.ShowWindows(false);
        viewer.resize(240, 200);
        viewer.show();
        const auto isHole = [](int x, int y) { return x + y / 2 < 60 || (x > 90 && y > 70); };
        RenderResult result;
        Image::Format format;
        format.dataWindow = {10, 0, 130, 110}; // less than the display window
        result.image = Picture(
            120, 100,
            [&](int x, int y) {
                return isHole(x, y) ? Rgba{} : Rgba{1, 1, 1, 1};
            },
            format);
        emit document.GetRenderer().Finished(result);
        QTRY_VERIFY(viewer.ShownImage() == result.image);
        for (const double zoom : {0.3, 0.7, 1.0, 1.5, 3.0}) {
            viewer.SetZoom(zoom);
            const QImage shot = viewer.Screenshot();
            const int reach = zoom < 1.0 ? 1 + int(4.0 / zoom) : 0;
            for (int y = 0; y < 100; ++y) {
                for (int x = 0; x < 120; ++x) {
                    const QPointF at = viewer.View().ToView(QPointF(x + 0.5, y + 0.5));
                    const auto isHidden = [&](int column, int row) {
                        return column >= 10 && !isHole(column, row);
                    };
                    const bool hidden = isHidden(x, y);
                    bool isAlone = shot.rect().contains(at.toPoint());
                    for (const int dx : {-reach, 0, reach}) {
                        for (const int dy : {-reach, 0, reach})
                            isAlone = isAlone && hidden == isHidden(x + dx, y + dy);
                    }
                    if (!isAlone)
                        continue; // the filter mixes
                    const int shown = shot.pixelColor(int(at.x()), int(at.y())).red();
                    QVERIFY2(
                        hidden ? shown >= 253 : shown == 52 || shown == 68,
                        qPrintable(
                            QString("%1 at %2, %3, zoom %4").arg(shown).arg(x).arg(y).arg(zoom)));
                }
            }
        }
    }
};

QTEST_MAIN(DisplayTest)
#include "DisplayTest.moc"
