#include "ToolBench.h"
#include "host/Rows.h"
#include "system/evaluation/Renderer.h"
#include "workbench/tools/OverlayTags.h"
#include "workbench/tools/PictureFitted.h"

#include <algorithm>
#include <array>
#include <limits>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

bool isFinite(const Image& image)
{
    for (int y = 0; y < image.Height(); ++y) {
        const float* row = image.Row(y);
        if (!std::all_of(row, row + std::ptrdiff_t(image.Width()) * 4,
                         [](float value) { return std::isfinite(value); }))
            return false;
    }
    return true;
}

} // namespace

/// The tools whose values are dragged in the viewer.
class OverlayToolsTest : public QObject {
    Q_OBJECT

    const Workbench workbench_;

private slots:
    void transformMovesWholePixelsExactly()
    {
        Bench bench("Transform");
        bench.Set("Centre", 0.5 + 0.25, 0.5 + 0.5); // 2 to the right, 2 up
        const auto image = places(8, 4);
        for (const int filter : {0, 1, 2}) {
            const auto moved = bench.Set("Filter", filter).Run(image);
            for (int i = 0; i < 8 * 4; ++i)
                QVERIFY(isNear(At(*moved, i % 8, i / 8), At(*image, i % 8 - 2, i / 8 + 2)));
            QVERIFY(isNear(At(*moved, 9, 1), At(*image, 7, 3))); // beyond the display window
        }
    }

    void transformTurnsAndScales()
    {
        const auto image = places(8, 8);
        Bench bench("Transform");
        bench.Set("Angle", 90.0);
        // Counterclockwise: what was at the right comes to the top.
        QVERIFY(isNear(At(*bench.Run(image), 2, 0), {7, 2, -1, 1}, 1e-4f));
        bench.Set("Angle", 360.0);
        QVERIFY(bench.Run(image) == image);
        bench.Set("Angle", 0.0).Set("Size", 0.5);
        QVERIFY(isNear(At(*bench.Run(image), 4, 4), {4.5f, 4.5f, -1, 1}, 1e-4f));
        QVERIFY(isNear(At(*bench.Run(image), 0, 4), {}));
        bench.Set("Size", 1.0).Set("Aspect", 2.0);
        QVERIFY(isNear(At(*bench.Run(image), 4, 1), {3.75f, 1.0f, -1, 1}, 1e-4f));
        bench.Set("Aspect", 1.0).Set("Size", 0.0);
        QVERIFY(isNear(At(*bench.Run(image), 4, 4), {}));
        bench.Set("Size", 1000.0);
        const auto window = bench.Run(image)->GetFormat().dataWindow;
        QCOMPARE(window, MxRect(-4, -4, 12, 12));
    }

    void transformTurnsAboutItsPivot()
    {
        // The corner pixel's middle is the pivot: it stays there however the picture turns.
        Image::Format format;
        format.pixelAspect = 2.0;
        format.dataWindow = {-1, 0, 7, 9};
        const auto image = places(8, 8, format);
        Bench bench("Transform");
        bench.Set("Pivot", 6.5 / 8.0, 1.0 - 1.5 / 8.0);
        const std::string still = bench.Key();
        QVERIFY(bench.Run(image) == image);
        bench.Set("Size", 0.5).Set("Angle", 123.0).Set("Filter", 0.0);
        QVERIFY(bench.Key() != still);
        QCOMPARE(At(*bench.Run(image), 6, 1), (Rgba{6, 1, -1, 1}));
        // The centre moves it away from there by as much as the centre is off the middle.
        bench.Set("Centre", 0.5 - 3.0 / 8.0, 0.5 - 4.0 / 8.0);
        QCOMPARE(At(*bench.Run(image), 3, 5), (Rgba{6, 1, -1, 1}));
        // Turned by a quarter, one pixel to the right is two pixel heights up.
        bench.Set("Size", 1.0).Set("Angle", 90.0).Set("Centre", 0.5, 0.5);
        QCOMPARE(At(*bench.Run(image), 6, 3), (Rgba{5, 1, -1, 1}));
    }

    void transformIsTheSameOnProxies()
    {
        const auto image = Picture(64, 48, [](int x, int y) {
            return Rgba{float(x) / 64.0f, float(y) / 48.0f, 0.5f, 1.0f};
        });
        Bench bench("Transform");
        bench.Set("Pivot", 0.25, 0.75).Set("Centre", 0.6, 0.4).Set("Angle", 30.0).Set("Size", 0.8);
        compareProxy(bench, image, {0, 0, 16, 12}, 0.02f, false);
    }

    void transformKeepsWildPixelsApart()
    {
        // A third of the width is no number of the computer's: whole pixels all the same.
        const auto image = Picture(60, 8, [](int x, int y) {
            const bool wild = x == 30 && y == 4;
            return Rgba{wild ? float(notANumber) : 1.0f, wild ? INFINITY : 1.0f, 1.0f, 1.0f};
        });
        Bench bench("Transform");
        for (const int filter : {0, 1, 2}) {
            bench.Set("Filter", filter).Set("Centre", 0.5 + 20.0 / 60.0, 0.5);
            const auto moved = bench.Run(image);
            QVERIFY(std::isnan(At(*moved, 50, 4)[0]));
            for (const auto& [x, y] : {std::pair(49, 4), {51, 4}, {50, 3}, {50, 5}})
                QCOMPARE(At(*moved, x, y), (Rgba{1, 1, 1, 1}));
        }
    }

    void cropsKeepWholePixels_data()
    {
        // Left, bottom, then right and top or the size; what is kept has y down.
        const Rows<QString, QList<double>, QRect> row("tool", "values", "kept");
        row("inside", "Crop", {2, 1, 7, 4}, {2, 2, 5, 3});
        row("fractions", "Crop", {1.5, 0.4, 6.6, 3.5}, {2, 2, 5, 4});
        row("crossed", "Crop", {7, 4, 2, 1}, {2, 2, 5, 3});
        row("beyond", "Crop", {-5, -5, 3, 3}, {-1, 3, 4, 4});
        row("size", "CropRegion", {2, 1, 5, 3}, {2, 2, 5, 3});
        row("size beyond", "CropRegion", {5, 3, 100, 100}, {5, 0, 4, 3});
    }
    void cropsKeepWholePixels()
    {
        QFETCH(QString, tool);
        QFETCH(QList<double>, values);
        QFETCH(QRect, kept);
        Image::Format format;
        format.dataWindow = {-1, 0, 9, 7}; // wider than the picture, which is 8 x 6
        const auto image = places(8, 6, format);
        Bench bench(qPrintable(tool));
        const bool bySize = tool == "CropRegion";
        bench.Set("Left", values[0]).Set("Bottom", values[1]);
        bench.Set(bySize ? "Width" : "Right", values[2]);
        bench.Set(bySize ? "Height" : "Top", values[3]);
        const auto cropped = bench.Run(image);
        QCOMPARE(cropped->GetFormat().dataWindow, ToMxRect(kept));
        QCOMPARE(cropped->GetFormat().displayWindow, MxRect(0, 0, 8, 6));
        for (const QPoint at : {kept.topLeft(), kept.bottomRight()})
            QCOMPARE(At(*cropped, at.x(), at.y()), At(*image, at.x(), at.y()));
    }

    void cropsBecomeTheWholePicture()
    {
        const auto image = places(8, 6);
        Bench bench("Crop");
        bench.Set("Left", 2).Set("Bottom", 1).Set("Right", 10).Set("Top", 4).Set("Reformat", 1);
        const auto cropped = bench.Run(image);
        QCOMPARE(cropped->GetFormat().displayWindow, MxRect(0, 0, 8, 3));
        QCOMPARE(cropped->GetFormat().dataWindow, MxRect(0, 0, 6, 3));
        QCOMPARE(At(*cropped, 0, 0), At(*image, 2, 2));
        QCOMPARE(At(*cropped, 5, 2), At(*image, 7, 4));
        const std::string key = bench.Key();
        bench.Set("Right", 2); // nothing left
        QVERIFY(bench.Key() != key);
        QCOMPARE(bench.Run(image)->GetFormat().displayWindow, MxRect(0, 0, 1, 3));
        bench.Set("Left", 0).Set("Bottom", 0).Set("Right", 8).Set("Top", 6);
        QVERIFY(bench.Run(image) == image);
    }

    void cropsKeepWhatTheyTouchOfProxies()
    {
        Image::Format format;
        format.scale = 0.25;
        const auto proxy = places(16, 10, format); // of 64 x 40, or a little less
        Bench bench("Crop");
        bench.Set("Left", 6).Set("Bottom", 4).Set("Right", 41).Set("Top", 33);
        QCOMPARE(bench.Run(proxy)->GetFormat().dataWindow, MxRect(1, 1, 11, 9));
        bench.Set("Left", 0).Set("Bottom", 0).Set("Right", 61).Set("Top", 37);
        QVERIFY(bench.Run(proxy) == proxy);
    }

    void freshCropsAreTheWholePicture()
    {
        Image::Format format;
        format.scale = 0.5;
        const auto proxy = places(2000, 1000, format);
        for (const auto& [tool, width] : {std::pair("Crop", "Right"), {"CropRegion", "Width"}}) {
            Bench bench(tool);
            dynamic_cast<PictureFitted&>(bench.Tool()).FitTo(proxy->GetFormat());
            bench.Set("Reformat", 1);
            QVERIFY(bench.Run(proxy) == proxy);
            QCOMPARE(bench.Tool().FindInput(width)->GetNumber(0.0), 4000.0);
        }
    }

    void shadowsFallUnderThePicture()
    {
        // A square of 4 x 4 pixels, half seen through.
        const auto image = Picture(20, 10, [](int x, int y) {
            const bool inside = x >= 4 && x < 8 && y >= 3 && y < 7;
            return inside ? Rgba{0.5f, 0, 0, 0.5f} : Rgba{};
        });
        Bench bench("DropShadow");
        bench.Set("OffsetX", 2.0 / 20.0).Set("OffsetY", -3.0 / 10.0).Set("Softness", 0);
        bench.Set("Opacity", 0.5).Set("Green", 2.0);
        auto shadowed = bench.Run(image);
        QVERIFY(isNear(At(*shadowed, 9, 9), {0, 0.5f, 0, 0.25f}));      // shadow alone
        QVERIFY(isNear(At(*shadowed, 6, 6), {0.5f, 0.25f, 0, 0.625f})); // picture over it
        QVERIFY(isNear(At(*shadowed, 5, 4), {0.5f, 0, 0, 0.5f}));       // picture alone
        QVERIFY(isNear(At(*shadowed, 10, 9), {}));
        QCOMPARE(shadowed->GetFormat().displayWindow, MxRect(0, 0, 20, 10));

        // Twice as large about the picture's left bottom: pixels 10 to 18 across, -1 to 7 down.
        bench.Set("Origin", 0.0, 0.0).Set("Size", 2.0);
        shadowed = bench.Run(image);
        QVERIFY(isNear(At(*shadowed, 10, 1), {0, 0.5f, 0, 0.25f}, 0.2f));
        QVERIFY(isNear(At(*shadowed, 14, 5), {0, 0.5f, 0, 0.25f}));
        QVERIFY(isNear(At(*shadowed, 19, 5), {}));
        QVERIFY(isNear(At(*shadowed, 14, 0), {0, 0.5f, 0, 0.25f}));
        QVERIFY(isNear(At(*shadowed, 14, 8), {}));

        const std::string key = bench.Key();
        bench.Set("Opacity", 0);
        QVERIFY(bench.Key() != key);
        QVERIFY(bench.Run(image) == image);
    }

    void softShadowsKeepTheirDensity()
    {
        Image::Format wide;
        wide.pixelAspect = 2.0;
        const auto image = Picture(
            21, 21,
            [](int x, int y) {
                return x == 10 && y == 10 ? Rgba{0, 0, 0, 3.0f} : Rgba{};
            },
            wide);
        Bench bench("DropShadow");
        bench.Set("OffsetX", 5.0 / 21.0).Set("OffsetY", 0).Set("Opacity", 1).Set("Softness", 2);
        bench.Set("Red", 1.0);
        const auto soft = bench.Run(image);
        // The picture's cover counts as 1, though its alpha is more.
        QVERIFY(std::abs(total(*soft, 0) - 1.0) < 0.01);
        QVERIFY(soft->GetFormat().dataWindow.right > 21 || soft->GetFormat().dataWindow.top < 0);
        // Round where pixels are square: as light two pixels above as one pixel beside.
        QVERIFY(std::abs(At(*soft, 16, 10)[0] - At(*soft, 15, 8)[0]) < 0.01);
        QVERIFY(At(*soft, 16, 10)[0] > 0.01);
    }

    void gradientsRunBetweenTheirPoints()
    {
        Image::Format format;
        format.pixelAspect = 2.0;
        format.dataWindow = {2, 2, 10, 6}; // beyond the picture, which is 8 x 8, and within
        const auto image = Picture(
            8, 8,
            [](int, int) {
                return Rgba{4, 4, 4, 1};
            },
            format);
        Bench bench("ColorGradient");
        // From the middle of the pixel (1, 6) four pixels right and eight pixel heights up: a
        // diagonal where pixels are square.
        bench.Set("Start", 1.5 / 8, 1.5 / 8).Set("End", 5.5 / 8, 9.5 / 8);
        bench.Set("EndRed", 3.0);
        const auto linear = bench.Run(image);
        QCOMPARE(linear->GetFormat().dataWindow, MxRect(0, 0, 10, 8));
        QCOMPARE(linear->GetFormat().displayWindow, MxRect(0, 0, 8, 8));
        QVERIFY(isNear(At(*linear, 1, 6), {0, 0, 0, 1}));
        QVERIFY(isNear(At(*linear, 0, 7), {0, 0, 0, 1}));
        QVERIFY(isNear(At(*linear, 3, 6), {0.75f, 0.25f, 0.25f, 1})); // 4 of 16 on the way
        QVERIFY(isNear(At(*linear, 1, 2), {0.75f, 0.25f, 0.25f, 1}));
        QVERIFY(isNear(At(*linear, 9, 0), {3, 1, 1, 1}));

        bench.Set("Shape", 1).Set("End", 5.5 / 8, 1.5 / 8); // a radius of 8 pixel heights
        const auto radial = bench.Run(image);
        QVERIFY(isNear(At(*radial, 1, 6), {0, 0, 0, 1}));
        QVERIFY(isNear(At(*radial, 3, 6), {1.5f, 0.5f, 0.5f, 1}));
        QVERIFY(isNear(At(*radial, 1, 2), {1.5f, 0.5f, 0.5f, 1}));
        QVERIFY(isNear(At(*radial, 7, 6), {3, 1, 1, 1}));

        // Half of it over the picture, and through what is itself seen through.
        bench.Set("Mix", 0.5);
        const Rgba below = At(*radial, 3, 4);
        QVERIFY(isNear(At(*bench.Run(image), 3, 4),
                       {2 + below[0] / 2, 2 + below[1] / 2, 2 + below[2] / 2, 1}));
        bench.Set("Mix", 1).Set("StartAlpha", 0).Set("EndAlpha", 0.5);
        QVERIFY(isNear(At(*bench.Run(image), 9, 3), {3.5f, 2.5f, 2.5f, 1}));
        QVERIFY(isNear(At(*bench.Run(image), 7, 6), {1.5f, 0.5f, 0.5f, 0.5f}));
        bench.Set("Behind", 1);
        QVERIFY(isNear(At(*bench.Run(image), 9, 3), {4, 4, 4, 1}));
        QVERIFY(isNear(At(*bench.Run(image), 7, 6), {1.5f, 0.5f, 0.5f, 0.5f}));
        bench.Set("Mix", 0);
        QVERIFY(bench.Run(image) == image);
    }

    void gradientsAreSourcesToo()
    {
        Bench bench("ColorGradient");
        const auto full = bench.Run();
        QCOMPARE(full->GetFormat().displayWindow, MxRect(0, 0, 1920, 1080));
        Renderer& renderer = bench.Document().GetRenderer();
        renderer.Request();
        QVERIFY(renderer.WaitUntilIdle(10000));
        QVERIFY2(renderer.LastResult().image, qPrintable(renderer.LastResult().error));
        const auto proxy = bench.Run({}, 0.0, 0.25);
        QCOMPARE(proxy->GetFormat().dataWindow, MxRect(0, 0, 480, 270));
        QCOMPARE(proxy->GetFormat().scale, 0.25);
        QVERIFY(isNear(At(*full, 961, 500), At(*proxy, 240, 125), 0.002f));
    }

    void colourInputsChangeTheKey()
    {
        for (const char* type : {"DropShadow", "ColorGradient"}) {
            Bench bench(type);
            std::string before = bench.Key();
            for (const Ref<Input>& input : bench.Tool().Inputs()) {
                if (input->IsImage() || input->GetAttrB(IA_Passive))
                    continue;
                bench.Set(*input, input->GetNumber(0.0) > 0.7 ? 0.0 : 1.0);
                QVERIFY2(bench.Key() != before, input->GetID().c_str());
                before = bench.Key();
            }
        }
    }

    void toolsSurviveWildValues_data()
    {
        const Rows<QString> row("tool");
        for (const char* tool : {"ColorGradient", "Crop", "CropRegion", "DropShadow", "Transform"})
            row(tool, tool);
    }
    void toolsSurviveWildValues()
    {
        QFETCH(QString, tool);
        Image::Format empty;
        empty.dataWindow = empty.displayWindow = {};
        const std::array pictures{places(16, 9), MakeRef<Image>(empty), MakeRef<Image>()};
        for (const auto& picture : pictures) {
            for (const double wild : {notANumber, double(INFINITY), 1e300, -1e300, -1.0, 0.0}) {
                Bench bench(qPrintable(tool));
                for (const Ref<Input>& input : bench.Tool().Inputs()) {
                    if (input->IsImage())
                        continue;
                    const Input::State before = input->GetState();
                    const auto image = bench.Set(*input, wild).Run(picture);
                    QVERIFY2(image && isFinite(*image), input->GetID().c_str());
                    QVERIFY2(image->Width() <= 2000 && image->Height() <= 2000,
                             input->GetID().c_str());
                    input->RestoreInputState(before);
                }
            }
        }
    }

    void cancelledToolsGiveNothing_data() { toolsSurviveWildValues_data(); }
    void cancelledToolsGiveNothing()
    {
        QFETCH(QString, tool);
        Bench bench(qPrintable(tool));
        for (const Ref<Input>& input : bench.Tool().Inputs()) {
            if (input->GetDataType() == MxID(CLSID_DataType_Point))
                bench.Set(*input, 0.3);
        }
        RenderContext context;
        context.Cancel();
        QString error;
        QVERIFY(!bench.Tool().Prepare(0.0)->Run(places(2000, 9), context, error));
        QVERIFY(error.isEmpty());
    }

    void overlaysFindTheirInputs_data() { toolsSurviveWildValues_data(); }
    void overlaysFindTheirInputs()
    {
        QFETCH(QString, tool);
        Bench bench(qPrintable(tool));
        int overlays = 0;
        for (const Ref<Input>& input : bench.Tool().Inputs()) {
            const TagList& tags = input->Attributes();
            overlays += tags.FindQuery(IAS_Overlay);
            if (tags.FindQuery(IAS_OverlayWith)) {
                const Input* first = bench.Tool().FindInput(input->GetAttrS(IAS_OverlayWith));
                QVERIFY(first && first->Attributes().FindQuery(IAS_Overlay));
            }
            for (const TagPair* pair = tags.First(); pair; pair = tags.Next(pair)) {
                if (TypeOfTag(u32(pair->tag)) == TagType::InputID || pair->tag == IAS_OverlayOffset)
                    QVERIFY2(bench.Tool().FindInput(pair->value.text), pair->value.text);
            }
        }
        QVERIFY(overlays > 0);
    }
};

QTEST_GUILESS_MAIN(OverlayToolsTest)
#include "OverlayToolsTest.moc"
