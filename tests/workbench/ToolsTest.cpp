#include "ToolBench.h"
#include "host/Rows.h"
#include "workbench/images/ImageFile.h"

#include <limits>

#include <QTemporaryDir>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Variance across of what one bright pixel became.
double variance(const Image& image, double middle)
{
    double sum = 0.0;
    const MxRect window = image.GetFormat().dataWindow;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int x = window.left; x < window.right; ++x)
            sum += double(At(image, x, y)[0]) * (x - middle) * (x - middle);
    }
    return sum / total(image, 0);
}

Ref<Image> dot(int size)
{
    return Picture(size, size, [size](int x, int y) {
        const bool hit = x == size / 2 && y == size / 2;
        return hit ? Rgba{8.0f, 4.0f, 2.0f, 1.0f} : Rgba{};
    });
}

} // namespace

class ToolsTest : public QObject {
    Q_OBJECT

    const Workbench workbench_;
    QTemporaryDir folder_;

private slots:
    void newToolsPassPicturesThrough()
    {
        for (const char* tool : {"BrightnessContrast", "Transform"}) {
            Bench bench(tool);
            const auto image = Plain(3, 2, {-1.0f, notANumber, 70000.0f, 0.0f});
            QVERIFY(bench.Run(image) == image);
            QVERIFY(!bench.Run());
            QVERIFY(bench.error.contains("no image"));
        }
    }

    void slidersSayWhatTheyAre()
    {
        for (const char* type : {"ImageSource", "ColorGradient", "BrightnessContrast", "Blur",
                                 "DropShadow", "Crop", "CropRegion", "Transform"}) {
            Bench bench(type);
            for (const Ref<Input>& input : bench.Tool().Inputs()) {
                QVERIFY2(input->IsImage() || *input->GetAttrS(IAS_Help, ""),
                         input->GetID().c_str());
                if (input->GetAttrS(IAS_Control, "") != std::string_view(CLSID_InputControl_Slider))
                    continue;
                const double low = input->GetAttrD(IAD_LowScale);
                const double high = input->GetAttrD(IAD_HighScale);
                const double normal = input->GetNumber(0.0, -1e9);
                QVERIFY2(low < high && normal >= low && normal <= high, input->GetID().c_str());
                if (input->GetAttrB(IC_Centred)) {
                    const double centre = input->GetAttrD(ICD_Centre, 1e9);
                    QVERIFY(centre > low && centre < high);
                }
            }
        }
    }

    void grades_data()
    {
        // Expected of 0.5, 0.25, -0.5 with alpha 1.
        using List = QList<double>;
        const Rows<QStringList, List, List> row("inputs", "values", "expected");
        row("gain", {"Gain"}, {3}, {1.5, 0.75, -1.5});
        row("lift", {"Lift"}, {0.2}, {0.6, 0.4, -0.2});
        row("gamma", {"Gamma"}, {2}, {std::sqrt(0.5), 0.5, -0.5});
        row("contrast", {"Contrast", "Pivot"}, {1, 0.25}, {0.75, 0.25, -1.25});
        const double luma = 0.2126 * 0.5 + 0.7152 * 0.25 - 0.0722 * 0.5;
        row("grey", {"Saturation"}, {0}, {luma, luma, luma});
        row("posterise", {"Posterise"}, {4}, {2.0 / 3.0, 1.0 / 3.0, -2.0 / 3.0});
        row("clips", {"Gain", "ClipBlack", "ClipWhite"}, {3, 1, 1}, {1, 0.75, 0});
        row("order", {"Gain", "Gamma", "Contrast", "Pivot"}, {2, 2, 1, 0}, {2, std::sqrt(2.0), -2});
    }
    void grades()
    {
        QFETCH(QStringList, inputs);
        QFETCH(QList<double>, values);
        QFETCH(QList<double>, expected);
        Bench bench("BrightnessContrast");
        const std::string before = bench.Key();
        for (int i = 0; i < inputs.size(); ++i)
            bench.Set(qPrintable(inputs[i]), values[i]);
        QVERIFY(bench.Key() != before);
        const Rgba wanted{float(expected[0]), float(expected[1]), float(expected[2]), 1.0f};
        QVERIFY(isNear(At(*bench.Run(Plain(5, 3, {0.5f, 0.25f, -0.5f, 1.0f})), 4, 2), wanted));
        // The same colour under half the cover.
        const Rgba half = At(*bench.Run(Plain(5, 3, {0.25f, 0.125f, -0.25f, 0.5f})), 0, 0);
        QVERIFY(isNear(half, {wanted[0] / 2, wanted[1] / 2, wanted[2] / 2, 0.5f}));
    }

    void gradingLeavesEmptyPartsEmpty()
    {
        Bench bench("BrightnessContrast");
        bench.Set("Lift", 0.5).Set("Gain", 2.0).Set("ClipWhite", 1.0);
        QCOMPARE(At(*bench.Run(Plain(1, 1, {0, 0, 0, 0})), 0, 0), (Rgba{0, 0, 0, 0}));
        QVERIFY(std::isnan(At(*bench.Run(Plain(1, 1, {notANumber, 0, 0, 1})), 0, 0)[0]));
    }

    void blurSpreadsExactly()
    {
        Bench bench("Blur");
        for (const auto& [size, passes] :
             {std::pair(0.5, 1), {0.5, 6}, {3.0, 3}, {9.7, 1}, {9.7, 6}}) {
            bench.Set("XSize", size).Set("YSize", 2.0).Set("Passes", passes);
            const auto image = bench.Run(dot(9));
            QVERIFY(std::abs(total(*image, 0) - 8.0) < 1e-4);
            QVERIFY(std::abs(total(*image, 3) - 1.0) < 1e-4);
            QVERIFY(std::abs(variance(*image, 4.0) - size * size / 4.0) < 1e-3 * size * size);
            QCOMPARE(image->GetFormat().displayWindow, MxRect(0, 0, 9, 9));
            QVERIFY(image->GetFormat().dataWindow.left < 0);
            QCOMPARE(At(*image, 4 - 2, 4), At(*image, 4 + 2, 4));
        }
    }

    void blurKeepsEdgesAndSurvivesWildValues()
    {
        Bench bench("Blur");
        bench.Set("RepeatEdges", 1.0);
        const auto even = bench.Run(Plain(12, 7, {2.0f, 1.0f, 0.5f, 1.0f}));
        QCOMPARE(even->GetFormat().dataWindow, MxRect(0, 0, 12, 7));
        QVERIFY(isNear(At(*even, 0, 0), {2.0f, 1.0f, 0.5f, 1.0f}));
        bench.Set("RepeatEdges", 0.0).Set("XSize", 2.0).Set("YSize", 0.0);
        const auto wild = bench.Run(Picture(40, 1, [](int x, int) {
            return Rgba{x == 5 ? notANumber : 1.0f,
                        x == 5 ? std::numeric_limits<float>::infinity() : 1.0f,
                        x == 5 ? 1e30f : 1.0f, 1.0f};
        }));
        QVERIFY(isNear(At(*wild, 25, 0), {1, 1, 1, 1}));
        bench.Set("XSize", 0.0);
        const auto image = dot(5);
        QVERIFY(bench.Run(image) == image);
    }

    void blurIsTheSameOnProxies()
    {
        Bench bench("Blur");
        bench.Set("XSize", 16.0).Set("YSize", 16.0);
        const auto image = Picture(64, 64, [](int x, int y) {
            return x >= 24 && x < 40 && y >= 24 && y < 40 ? Rgba{1, 1, 1, 1} : Rgba{};
        });
        compareProxy(bench, image, {-4, 8, 20, 9}, 0.03f, true);
    }

    void sourcesReadFramesAndProxies()
    {
        for (const int frame : {3, 4, 6}) {
            QString error;
            const QString path = folder_.filePath(QString("in.000%1.exr").arg(frame));
            QVERIFY(WriteImage(*Plain(8, 6, {float(frame), 0, 0, 1}), path, &error));
        }
        Bench bench("ImageSource");
        QVERIFY(!bench.Run());
        QVERIFY(!bench.error.isEmpty());
        bench.Set("File", folder_.filePath("in.####.exr"));
        QCOMPARE(At(*bench.Run({}, 3.0), 0, 0)[0], 3.0f);
        QVERIFY(bench.Key(3.0) != bench.Key(4.0));
        bench.Set("FrameOffset", 2.0);
        const auto proxy = bench.Run({}, 4.0, 0.5);
        QCOMPARE(proxy->GetFormat().displayWindow, MxRect(0, 0, 4, 3));
        QCOMPARE(At(*proxy, 3, 2)[0], 6.0f);

        bench.Set("FrameOffset", 0.0);
        QVERIFY(!bench.Run({}, 5.0));
        QVERIFY(bench.error.contains(folder_.filePath("in.0005.exr")));
        bench.Set("MissingFrames", 1.0);
        QCOMPARE(At(*bench.Run({}, 5.0), 0, 0)[0], 4.0f);
        QCOMPARE(At(*bench.Run({}, 1.0), 0, 0)[0], 3.0f);
        bench.Set("MissingFrames", 2.0);
        const auto black = bench.Run({}, 5.0);
        QCOMPARE(black->GetFormat().displayWindow, MxRect(0, 0, 8, 6));
        QVERIFY(black->GetFormat().dataWindow.IsEmpty());
        bench.Set("File", folder_.filePath("gone.####.exr"));
        QVERIFY(!bench.Run({}, 1.0));
        QVERIFY(bench.error.contains("gone.0001.exr"));
    }

    void sourcesNoticeFilesWrittenAnewAndDocumentsMoved()
    {
        QString error;
        const QString path = folder_.filePath("again.exr");
        QVERIFY(WriteImage(*Plain(2, 2, {1, 0, 0, 1}), path, &error));
        Bench bench("ImageSource");
        bench.Set("File", "again.exr");
        QVERIFY(bench.Document().Save(folder_.filePath("a.marlox"), &error));
        QCOMPARE(At(*bench.Run(), 0, 0)[0], 1.0f);
        const std::string before = bench.Key();
        QVERIFY(WriteImage(*Plain(3, 2, {2, 0, 0, 1}), path, &error));
        QVERIFY(bench.Key() != before);
        QCOMPARE(At(*bench.Run(), 0, 0)[0], 2.0f);
    }
};

QTEST_GUILESS_MAIN(ToolsTest)
#include "ToolsTest.moc"
