#include "ToolBench.h"
#include "system/color/DisplayColors.h"
#include "workbench/viewer/ColorSampling.h"
#include "workbench/viewer/ControlColors.h"
#include "workbench/viewer/ViewerWidget.h"

#include <limits>

#include <QOpenGLContext>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

/// The number of pixels and their mean; empty: there is none.
QList<double> meanOf(const Image& image, const MxRect& pixels)
{
    ColorSource::Sample sample;
    if (!ColorSampling::MeanOf(image, pixels, sample))
        return {};
    const auto& [red, green, blue, alpha] = sample.rgba;
    return {double(sample.pixels), red, green, blue, alpha};
}

/// A viewer of a picture that nothing rendered, at a zoom of 10.
struct Shown {
    explicit Shown(const Ref<Image>& picture) : viewer(document)
    {
        viewer.ShowWindows(false);
        viewer.resize(200, 160);
        viewer.show();
        Show(picture);
        viewer.SetZoom(10.0);
    }
    void Show(const Ref<Image>& picture)
    {
        RenderResult result;
        result.image = picture;
        emit document.GetRenderer().Finished(result);
        QTRY_VERIFY(viewer.ShownImage() == picture);
    }
    /// A place of the picture, in its pixels with y down.
    QPointF At(double x, double y) const
    {
        return viewer.View().ToView(QPointF(x, y)) / viewer.devicePixelRatioF();
    }
    /// Red, green and alpha; empty: there are none.
    QList<double> Sample(const ColorSource::Footprint& footprint)
    {
        ColorSource::Sample sample;
        if (!viewer.SampleColor(footprint, sample))
            return {};
        return {sample.rgba[0], sample.rgba[1], sample.rgba[3]};
    }

    MarloxDoc document;
    ViewerWidget viewer;
};

} // namespace

/// Colours picked from the viewer, and those of controls shown as it shows them.
class ColorsTest : public QObject {
    Q_OBJECT

    Workbench workbench_;

private slots:
    void meansAreOfAllThatIsThere()
    {
        Image::Format format;
        format.dataWindow = {2, -1, 8, 3}; // also beyond the display window, not all of it
        const auto image = places(6, 4, format);
        QCOMPARE(meanOf(*image, {3, 0, 6, 3}), QList<double>({9, 4, 1, -1, 1}));
        QCOMPARE(meanOf(*image, {7, -1, 9, 1}), QList<double>({2, 7, -0.5, -1, 1}));
        QCOMPARE(meanOf(*image, {0, 0, 1, 1}), QList<double>({1, 0, 0, 0, 0}));
        QCOMPARE(meanOf(*image, {1, 2, 3, 4}), QList<double>({4, 0.5, 0.5, -0.25, 0.25}));
        QVERIFY(meanOf(*image, {0, -1, 2, 0}).isEmpty()); // beside both
        QCOMPARE(ColorSampling::PixelsIn(*image, {-5, 2, 3, 40}), MxRect(0, 2, 3, 4));
        // Ten million and one, shared among cores: in single precision the ones would be lost.
        const auto large = Picture(1024, 512, [](int x, int y) {
            return Rgba{x % 2 == 0 ? 1e7f : 1.0f, float(y), -float(x), 0.5f};
        });
        QCOMPARE(meanOf(*large, {0, 0, 1024, 512}),
                 QList<double>({1024 * 512, 5000000.5, 255.5, -511.5, 0.5}));
    }

    void oddPixelsDontCount()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float infinite = std::numeric_limits<float>::infinity();
        const double largest = double(std::numeric_limits<float>::max());
        const Rgba row[] = {{1, 2, 3, 1},        {nan, 0, 0, 1},       {3, 2, 1, 1},
                            {infinite, 0, 0, 1}, {-infinite, 0, 0, 1}, {0, 0, nan, infinite}};
        const auto image = Picture(6, 1, [&row](int x, int) { return row[x]; });
        QCOMPARE(meanOf(*image, {0, 0, 6, 1}), QList<double>({2, 2, 2, 2, 1}));
        QVERIFY(meanOf(*image, {1, 0, 2, 1}).isEmpty());
        QCOMPARE(meanOf(*image, {3, 0, 4, 1}), QList<double>({1, largest, 0, 0, 1}));
        QCOMPARE(meanOf(*image, {3, 0, 6, 1}), QList<double>({2, 0, 0, 0, 1}));
    }

    void proxiesGiveTheirLargerPixels()
    {
        Image::Format format;
        format.scale = 0.25;
        format.dataWindow = {-1, 0, 4, 2};
        const auto image = places(4, 2, format);
        QCOMPARE(meanOf(*image, {5, 2, 6, 3}), QList<double>({16, 1, 0, -1, 1}));
        QCOMPARE(meanOf(*image, {3, 3, 5, 5}), QList<double>({64, 0.5, 0.5, -1, 1}));
        QCOMPARE(meanOf(*image, {-3, 0, -1, 1}), QList<double>({16, -1, 0, -1, 1}));
        QCOMPARE(ColorSampling::PixelsIn(*image, {3, 3, 5, 5}), MxRect(0, 0, 8, 8));
    }

    void footprintsTakeWhatTheyTouch()
    {
        Shown shown(places(12, 10));
        QCOMPARE(shown.Sample({shown.At(3.5, 4.5)}), QList<double>({3, 4, 1}));
        QCOMPARE(shown.Sample({shown.At(3.0, 4.97)}), QList<double>({3, 4, 1}));
        QCOMPARE(shown.Sample({shown.At(0.5, 9.5), 3}), QList<double>({0.5, 8.5, 1}));
        const QRectF area(shown.At(2.5, 1.5), shown.At(4.5, 1.5));
        QCOMPARE(shown.Sample({{}, 1, area}), QList<double>({3, 1, 1}));
        QVERIFY(shown.Sample({shown.At(12.5, 4.5)}).isEmpty());
        QVERIFY(shown.Sample({{1e300, -1e300}, 5}).isEmpty());
        shown.viewer.SetExposure(3.0); // as it is, not as it is shown
        QTRY_VERIFY(shown.viewer.IsSettled());
        QCOMPARE(shown.Sample({shown.At(3.5, 4.5)})[0], 3.0);
        shown.viewer.SetZoom(0.25); // also pixels that the screen has none for
        const QRectF all(shown.At(0, 0), shown.At(12, 10));
        QCOMPARE(shown.Sample({{}, 1, all}), QList<double>({5.5, 4.5, 1}));
        shown.document.Clear();
        QVERIFY(shown.Sample({shown.At(3.5, 4.5)}).isEmpty());
    }

    void heldPicturesStay()
    {
        Shown shown(Plain(8, 8, {1, 0, 0, 1}));
        const ColorSource::Footprint middle{shown.At(4, 4)};
        const auto red = [&] { return shown.Sample(middle)[0]; };
        shown.viewer.HoldPicture(true);
        QCOMPARE(red(), 1.0);
        shown.Show(Plain(8, 8, {2, 0, 0, 1}));
        QCOMPARE(red(), 1.0);
        shown.viewer.HoldPicture(false);
        QCOMPARE(red(), 2.0);
        shown.viewer.HoldPicture(true);
        QCOMPARE(red(), 2.0);
        shown.document.Clear(); // of another document
        QVERIFY(shown.document.GetRenderer().WaitUntilIdle(5000));
        shown.Show(Plain(8, 8, {3, 0, 0, 1}));
        QCOMPARE(red(), 3.0);
    }

    void inputsOfToolsAreRead()
    {
        Shown shown(Plain(8, 8, {}));
        Operator* ground = shown.document.AddTool("ColorGradient");
        Operator* grade = shown.document.AddTool("BrightnessContrast");
        const auto set = [&](double light, double gain) {
            for (const char* id : {"StartRed", "EndRed"})
                ground->FindInput(id)->SetValue(Number(light), TimeNone, Input::ReplaceAll);
            grade->FindInput("Gain")->SetValue(Number(gain), TimeNone, Input::ReplaceAll);
            QVERIFY(shown.document.GetRenderer().WaitUntilIdle(5000));
            QTRY_VERIFY(shown.viewer.IsSettled());
        };
        set(0.25, 4.0);
        ColorSource::Footprint footprint{shown.At(4, 4)};
        QCOMPARE(shown.Sample(footprint)[0], 1.0);
        set(0.25, 8.0);
        grade->FindInput("Gain")->SetValue(Number(4.0), TimeNone, Input::ReplaceAll);
        QCOMPARE(shown.Sample(footprint)[0], 2.0); // what is pointed at, though not of these values
        shown.viewer.HoldPicture(true);
        shown.viewer.HoldPicture(false);
        shown.viewer.HoldPicture(true); // what is on view may be of values that a pick tried
        QCOMPARE(shown.Sample(footprint)[0], 1.0);
        footprint.inputOf = grade;
        QCOMPARE(shown.Sample(footprint)[0], 0.25);
        shown.document.GetRenderer().SetCacheLimit(0);
        set(0.5, 2.0);
        QCOMPARE(shown.Sample(footprint)[0], 0.25);
        shown.viewer.HoldPicture(false);
        QCOMPARE(shown.Sample(footprint)[0], 0.5); // rendered for it
        footprint.inputOf = ground;
        QVERIFY(shown.Sample(footprint).isEmpty()); // nothing flows into it
    }

    void footprintsAreDrawn()
    {
        QOpenGLContext trial;
        if (!trial.create())
            QSKIP("no OpenGL here");
        Shown shown(Plain(12, 10, {0.2f, 0.2f, 0.2f, 1}));
        const QImage before = shown.viewer.Screenshot();
        const auto drawn = [&] { // the place of what differs
            const QImage now = shown.viewer.Screenshot();
            QRect changed;
            for (int i = 0; i < now.width() * now.height(); ++i) {
                const QPoint at(i % now.width(), i / now.width());
                if (now.pixel(at) != before.pixel(at))
                    changed |= QRect(at, QSize(1, 1));
            }
            return changed;
        };
        const auto around = [&](const MxRect& pixels) {
            return shown.viewer.View().ToView(pixels).toRect().adjusted(-3, -3, 3, 3);
        };
        ColorSource::Footprint footprint{shown.At(4.5, 4.5), 3};
        QSignalSpy probes(&shown.viewer, &ViewerWidget::ProbeChanged);
        shown.viewer.ShowFootprint(&footprint);
        QCOMPARE(probes.last()[0].value<Probe>().x, 4); // the read-out follows
        QCOMPARE(drawn(), around({3, 3, 6, 6}));
        const QImage shot = shown.viewer.Screenshot();
        const QPoint inside = shown.viewer.View().ToView(QPointF(3, 3)).toPoint();
        QCOMPARE(shot.pixel(inside), before.pixel(inside)); // it hides none of them
        QVERIFY(qGray(shot.pixel(inside - QPoint(2, 2))) > 200);
        footprint.area = QRectF(shown.At(9.5, 8.5), shown.At(40, 9.5));
        shown.viewer.ShowFootprint(&footprint);
        QCOMPARE(drawn(), around({9, 8, 12, 10})); // within the picture
        shown.viewer.ShowFootprint(nullptr);
        QVERIFY(drawn().isEmpty());
    }

    void controlsShowColorsAsTheViewer()
    {
        DisplayColors& colors = DisplayColors::Global();
        {
            MarloxDoc document;
            ViewerWidget viewer(document);
            new ControlColors(viewer);
            QCOMPARE(colors.Shown(0.18, 1.0, 0.0), QColor(118, 255, 0)); // sRGB
            QVERIFY(colors.PerChannel() && colors.PerChannel()->code[2][8192] == 188);
            QSignalSpy changed(&colors, &DisplayColors::Changed);
            viewer.SetChannelView(ChannelView::Red);
            viewer.ShowChecker(false);
            QCOMPARE(changed.count(), 0);
            viewer.SetExposure(1.0);
            QCOMPARE(changed.count(), 1);
            QCOMPARE(colors.Shown(0.09, 0.25, 1e30), QColor(118, 188, 255));
            viewer.SetGamma(2.0);
            QCOMPARE(colors.Shown(0.09, 0.0, 0.0).red(), int(std::lround(std::sqrt(118.0 * 255))));
            viewer.SetExposure(20.0);
            QVERIFY(colors.PerChannel());
            DisplaySettings settings;
            settings.display = "nowhere";
            viewer.SetSettings(settings);
            QVERIFY(colors.IsPlain());
            viewer.SetSettings({});
            QVERIFY(!colors.IsPlain());
        }
        QVERIFY(colors.IsPlain());
    }

    void mixingConfigurationsHaveNoTables()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("config.ocio"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("ocio_profile_version: 2\n"
                   "roles: {default: light, scene_linear: light}\n"
                   "displays:\n"
                   "  screen: [!<View> {name: all, colorspace: wide}]\n"
                   "colorspaces:\n"
                   "  - !<ColorSpace> {name: light}\n"
                   "  - !<ColorSpace>\n"
                   "    name: wide\n"
                   "    from_scene_reference: !<MatrixTransform> {matrix: [0.75, 0.25, 0, 0, 0, 1,"
                   " 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]}\n");
        file.close();
        DisplayColors& colors = DisplayColors::Global();
        colors.SetDisplay(DisplayTransform(file.fileName()).Colors({}));
        QVERIFY(!colors.IsPlain() && !colors.PerChannel());
        QCOMPARE(colors.Shown(0.0, 0.8, 0.4), QColor(51, 204, 102));
        colors.SetDisplay(nullptr);
    }
};

QTEST_MAIN(ColorsTest)
#include "ColorsTest.moc"
