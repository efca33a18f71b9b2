#include "ToolBench.h"
#include "host/Rows.h"
#include "system/color/ColorCurves.h"

#include <limits>
#include <random>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr const char* ranges[] = {"Master", "Shadows", "Midtones", "Highlights"};
constexpr const char* sectors[] = {"KeepRed",  "KeepYellow", "KeepGreen",
                                   "KeepCyan", "KeepBlue",   "KeepMagenta"};

double luminance(const Rgba& c)
{
    return 0.2126 * double(c[0]) + 0.7152 * double(c[1]) + 0.0722 * double(c[2]);
}

/// Of the hexcone, 0 to 6.
double hue(const Rgba& c)
{
    const double most = double(std::max({c[0], c[1], c[2]}));
    const double spread = most - double(std::min({c[0], c[1], c[2]}));
    const auto part = [&](std::size_t a, std::size_t b) { return double(c[a] - c[b]) / spread; };
    const double h = most == double(c[0])   ? part(1, 2)
                     : most == double(c[1]) ? part(2, 0) + 2.0
                                            : part(0, 1) + 4.0;
    return h < 0.0 ? h + 6.0 : h;
}

/// A pure colour of that hue.
Rgba pure(double h)
{
    const auto component = [h](double of) {
        const double away = std::abs(std::remainder(h - of, 6.0));
        return float(std::clamp(2.0 - away, 0.0, 1.0));
    };
    return {component(0.0), component(2.0), component(4.0), 1.0f};
}

Rgba correctedBy(Bench& bench, const Rgba& color)
{
    return At(*bench.Run(Plain(3, 2, color)), 2, 1);
}

/// Colours of all kinds, beyond black and white too, and some that are none.
Ref<Image> wildPicture(int width, int height)
{
    return Picture(width, height, [](int x, int y) {
        std::mt19937 dice(unsigned(x * 7919 + y));
        std::uniform_real_distribution<float> any(-2.0f, 9.0f);
        const float alpha = x % 3 == 0 ? 1.0f : float(x % 5) / 5.0f;
        return Rgba{x % 17 == 3 ? notANumber : any(dice), y % 13 == 5 ? infinite : any(dice),
                    x % 11 == 4 ? 1e30f : any(dice), x % 19 == 7 ? notANumber : alpha};
    });
}

Bench& fullCorrection(Bench& bench)
{
    for (int i = 0; i < 4; ++i) {
        const std::string range = ranges[i];
        bench.Set((range + "Hue").c_str(), 0.1 * (i + 1));
        bench.Set((range + "Saturation").c_str(), 1.5 - 0.3 * i);
        bench.Set((range + "TintAngle").c_str(), 0.2 * i);
        bench.Set((range + "TintLength").c_str(), 0.1 * i);
        bench.Set((range + sectors[i]).c_str(), 0.25);
    }
    return bench;
}

} // namespace

class ColorToolsTest : public QObject {
    Q_OBJECT

    const Workbench workbench_;

private slots:
    void inputsSayWhatTheyAre()
    {
        for (const char* type : {"Background", "ColorCorrector", "ColorGain", "ColorGradient"}) {
            Bench bench(type);
            QSet<QString> names;
            for (const Ref<Input>& input : bench.Tool().Inputs()) {
                QVERIFY2(input->IsImage() || *input->GetAttrS(IAS_Help, ""),
                         input->GetID().c_str());
                QVERIFY2(!names.contains(input->GetName()), input->GetID().c_str());
                names.insert(input->GetName());
                const char* with = input->GetAttrS(IAS_SharedWith);
                if (!*with)
                    continue;
                const Input* first = bench.Tool().FindInput(with);
                QVERIFY(first && first != input.Get() && !*first->GetAttrS(IAS_SharedWith));
                QCOMPARE(input->GetAttrS(IAS_Control), first->GetAttrS(IAS_Control));
            }
        }
    }

    void backgroundFillsTheFrame()
    {
        Bench bench("Background");
        bench.Set("Red", 3.0).Set("Green", -1.0).Set("Alpha", 0.5);
        const auto image = bench.Run();
        QCOMPARE(image->GetFormat().dataWindow, MxRect(0, 0, 1920, 1080));
        for (const auto& [x, y] : {std::pair(0, 0), {1919, 1079}})
            QCOMPARE(At(*image, x, y), (Rgba{1.5f, -0.5f, 0.0f, 0.5f}));
        const auto proxy = bench.Run({}, 0.0, 0.25);
        QCOMPARE(proxy->GetFormat().dataWindow, MxRect(0, 0, 480, 270));
        QCOMPARE(proxy->GetFormat().displayWindow, proxy->GetFormat().dataWindow);
        const std::string before = bench.Key();
        QVERIFY(bench.Set("Blue", 0.1).Key() != before);
    }

    void newOnesPassPicturesThrough()
    {
        const auto image = Plain(3, 2, {-1.0f, notANumber, 70000.0f, 0.0f});
        for (const char* tool : {"ColorCorrector", "ColorGain"}) {
            Bench bench(tool);
            QVERIFY(bench.Run(image) == image);
            QVERIFY(!bench.Run() && bench.error.contains("no image"));
        }
        Bench bench("ColorCorrector");
        QVERIFY(bench.Set("MasterHue", -3.0).Run(image) == image); // whole turns
        QVERIFY(fullCorrection(bench).Set("Mix", 0.0).Run(image) == image);
    }

    void everyInputCounts()
    {
        Bench bench("ColorCorrector");
        std::string before = bench.Key();
        for (const Ref<Input>& input : bench.Tool().Inputs()) {
            if (input->IsImage() || input->GetAttrB(IA_Passive))
                continue;
            if (input->GetDataType() == MxID(CLSID_DataType_ColorCurves)) {
                ColorCurves curves;
                curves.SetNodePosition(3, {0.7, 0.0}, true);
                input->SetValue(curves, TimeNone);
            } else {
                bench.Set(input->GetID().c_str(), 0.5);
            }
            QVERIFY2(bench.Key() != before, input->GetID().c_str());
            before = bench.Key();
        }
    }

    void hueTurnsKeepLuminance()
    {
        Bench bench("ColorCorrector");
        for (const double turns : {1.0 / 3.0, -1.0 / 3.0, 1.0 / 6.0, 4.0 + 1.0 / 3.0}) {
            bench.Set("MasterHue", turns);
            for (int h = 0; h < 6; ++h) {
                const Rgba color = pure(h);
                const Rgba seen = correctedBy(bench, color);
                const double wanted = h - 6.0 * turns; // clockwise
                QVERIFY(std::abs(std::remainder(hue(seen) - wanted, 6.0)) < 1e-4);
                QVERIFY(std::abs(luminance(seen) - luminance(color)) < 1e-6);
            }
        }
        // Twice by an angle is once by both.
        const Rgba color{0.9f, 0.3f, -0.2f, 1.0f};
        bench.Set("MasterHue", 0.15);
        const Rgba twice = correctedBy(bench, correctedBy(bench, color));
        QVERIFY(isNear(twice, correctedBy(bench.Set("MasterHue", 0.3), color)));
        const Rgba grey{0.4f, 0.4f, 0.4f, 1.0f};
        QVERIFY(isNear(correctedBy(bench, grey), grey, 1e-7f));
    }

    void saturationAndTintKeepLuminance()
    {
        Bench bench("ColorCorrector");
        const Rgba color{3.0f, 0.25f, -0.5f, 1.0f};
        const auto grey = float(luminance(color));
        bench.Set("MasterSaturation", 0.0);
        QVERIFY(isNear(correctedBy(bench, color), {grey, grey, grey, 1.0f}));
        bench.Set("MasterSaturation", 2.0);
        QVERIFY(isNear(correctedBy(bench, color),
                       {2 * 3.0f - grey, 2 * 0.25f - grey, -2 * 0.5f - grey, 1.0f}));
        bench.Set("MasterSaturation", 1.0).Set("MasterTintLength", 0.5);
        for (int h = 0; h < 6; ++h) {
            const Rgba white{2.0f, 2.0f, 2.0f, 1.0f};
            const Rgba tint = pure(h);
            const Rgba seen = correctedBy(bench.Set("MasterTintAngle", h / 6.0), white);
            QVERIFY(std::abs(hue(seen) - h) < 1e-4 || std::abs(hue(seen) - h - 6.0) < 1e-4);
            QVERIFY(std::abs(luminance(seen) - 2.0) < 1e-5);
            const double chroma = double(tint[0]) - luminance(tint);
            QVERIFY(std::abs(double(seen[0]) - 2.0 - chroma) < 1e-5); // 2 times a half of it
        }
    }

    void suppressesByHue()
    {
        Bench bench("ColorCorrector");
        const std::array<double, 7> amounts{0.9, 0.1, 0.5, 0.75, 0.0, 0.3, 0.9};
        for (std::size_t i = 0; i < 6; ++i)
            bench.Set((std::string("Master") + sectors[i]).c_str(), amounts[i]);
        for (double h = 0.0; h < 6.0; h += 1.0 / 16.0) {
            // Paler, brighter and darker ones of the hue as well; red less its luminance tells.
            for (const double grey : {0.0, 0.5, -0.25}) {
                Rgba color = pure(h);
                for (std::size_t i = 0; i < 3; ++i)
                    color[i] = float(double(color[i]) * 1.5 + grey);
                const Rgba seen = correctedBy(bench, color);
                const auto sector = std::size_t(h);
                const double f = h - double(sector);
                const double amount = (1.0 - f) * amounts[sector] + f * amounts[sector + 1];
                for (std::size_t i = 0; i < 3; ++i) {
                    const double chroma = double(color[i]) - luminance(color);
                    const double left = double(seen[i]) - luminance(color);
                    QVERIFY(std::abs(left - amount * chroma) < 1e-5);
                }
            }
        }
    }

    void rangesFollowTheirCurves()
    {
        ColorCurves curves;
        curves.SetNodePosition(3, {0.8, 0.0}, true);
        curves.SetNodePosition(4, {0.3, 0.0}, true);
        Bench bench("ColorCorrector");
        bench.Tool().FindInput("Ranges")->SetValue(curves, TimeNone);
        bench.Set("ShadowsSaturation", 0.0).Set("MidtonesSaturation", 3.0);
        bench.Set("HighlightsTintLength", 0.5);
        for (const double light : {-0.5, 0.0, 1e-5, 0.001, 0.02, 0.18, 0.5, 0.9, 1.0, 8.0}) {
            for (const float alpha : {1.0f, 0.25f}) {
                const Rgba chroma{0.1f, -0.01f, -0.19533241f, 0.0f}; // without luminance
                Rgba color{};
                for (std::size_t i = 0; i < 3; ++i)
                    color[i] = (float(light) + chroma[i]) * alpha;
                color[3] = alpha;
                const Rgba seen = correctedBy(bench, color);
                const double brightness = ColorCurves::BrightnessOf(light);
                const double left = 1.0 - curves.Low(brightness) + 2.0 * curves.Mid(brightness);
                for (std::size_t i = 0; i < 3; ++i) {
                    const double tint = (i == 0 ? 1.0 : 0.0) - 0.2126;
                    const double wanted = light + left * double(chroma[i]) +
                                          curves.High(brightness) * 0.5 * light * tint;
                    QVERIFY(std::abs(double(seen[i] / alpha) - wanted) < 2e-4);
                }
            }
        }
    }

    void wildPixelsPass()
    {
        Bench bench("ColorCorrector");
        const auto image = wildPicture(300, 9); // wider than a block
        const auto seen = fullCorrection(bench).Run(image);
        int changed = 0;
        for (int y = 0; y < 9; ++y) {
            for (int x = 0; x < 300; ++x) {
                const Rgba before = At(*image, x, y);
                const Rgba after = At(*seen, x, y);
                if (!std::isfinite(before[0] + before[1] + before[2])) {
                    for (std::size_t i = 0; i < 4; ++i)
                        QVERIFY(after[i] == before[i] || std::isnan(before[i]));
                    continue;
                }
                double size = 1.0;
                for (std::size_t i = 0; i < 3; ++i)
                    size += std::abs(double(before[i]));
                QVERIFY(std::abs(luminance(after) - luminance(before)) <= 1e-5 * size);
                changed += after[0] != before[0] ? 1 : 0;
            }
        }
        QVERIFY(changed > 1000);
        // What nothing touches stays to the last bit.
        Bench shadows("ColorCorrector");
        shadows.Set("ShadowsHue", 0.3).Set("MasterKeepBlue", 0.0);
        const Rgba bright{1.1f, 0.7f, 0.3f, 1.0f};
        QCOMPARE(correctedBy(shadows, bright), bright);
    }

    void threadsProxiesAndMixAgree()
    {
        Bench bench("ColorCorrector");
        fullCorrection(bench);
        const auto image = Picture(640, 360, [](int x, int y) {
            return Rgba{float(x) / 200.0f, float(y) / 300.0f, float(x + y) / 900.0f, 1.0f};
        });
        const auto whole = bench.Run(image);
        RenderContext context;
        Ref<Image> alone;
        context.ForRows(1, [&](int, int) { alone = bench.Run(image); });
        for (int y = 0; y < 360; ++y)
            QVERIFY(std::equal(whole->Row(y), whole->Row(y) + 640 * 4, alone->Row(y)));
        compareProxy(bench, image, {0, 0, 160, 90}, 0.01f, true);
        const Rgba before = At(*image, 300, 200);
        const Rgba after = At(*whole, 300, 200);
        const Rgba half = At(*bench.Set("Mix", 0.5).Run(image), 300, 200);
        for (std::size_t i = 0; i < 4; ++i)
            QVERIFY(std::abs(half[i] - 0.5f * (before[i] + after[i])) < 1e-6f);
    }

    void gains_data()
    {
        // What becomes of 0.5, 0.25, -0.5 under alpha 0.5 in the left lower pixel of four.
        using List = QList<double>;
        const Rows<QStringList, List, List> row("inputs", "values", "expected");
        row("colours", {"Red", "Green", "Blue"}, {4, 0, -2}, {2, 0, 1, 0.5});
        row("alpha", {"Alpha"}, {1.5}, {0.75, 0.375, -0.75, 0.75});
        row("all covered", {"Alpha"}, {8}, {1, 0.5, -1, 1});
        row("across", {"U"}, {1}, {0.375, 0.1875, -0.375, 0.5});
        row("up and across", {"U", "V", "Red"}, {-1, 2, 2}, {0.625, 0.15625, -0.3125, 0.5});
        row("covered", {"Red", "Coverage"}, {3, 1}, {1, 0.25, -0.5, 0.5});
        row("half", {"Red", "Coverage"}, {3, 0.5}, {1.25, 0.25, -0.5, 0.5});
    }
    void gains()
    {
        QFETCH(QStringList, inputs);
        QFETCH(QList<double>, values);
        QFETCH(QList<double>, expected);
        Bench bench("ColorGain");
        const std::string before = bench.Key();
        for (int i = 0; i < inputs.size(); ++i)
            bench.Set(qPrintable(inputs[i]), values[i]);
        QVERIFY(bench.Key() != before);
        const auto seen = bench.Run(Plain(2, 2, {0.5f, 0.25f, -0.5f, 0.5f}));
        const Rgba wanted{float(expected[0]), float(expected[1]), float(expected[2]),
                          float(expected[3])};
        QVERIFY(isNear(At(*seen, 0, 1), wanted));
    }

    void gainsKeepWhatTheyCanNotScale()
    {
        Bench bench("ColorGain");
        bench.Set("Red", 2.0).Set("Alpha", 0.5).Set("Coverage", 1.0).Set("U", 2.0);
        QCOMPARE(At(*bench.Run(Plain(1, 1, {3.0f, 1e30f, 0.0f, 0.0f})), 0, 0),
                 (Rgba{3.0f, 1e30f, 0.0f, 0.0f})); // covers nothing
        bench.Set("Alpha", 1.0);
        QCOMPARE(At(*bench.Run(Plain(1, 1, {3.0f, 0.5f, 0.0f, INFINITY})), 0, 0),
                 (Rgba{6.0f, 0.5f, 0.0f, INFINITY}));
        // Beyond the frame the gain falls to nothing, not below.
        Image::Format format;
        format.dataWindow = {-20, 0, 4, 2};
        bench.Set("Coverage", 0.0);
        const auto wide = bench.Run(Picture(
            4, 2,
            [](int, int) {
                return Rgba{1, 1, 1, 1};
            },
            format));
        QCOMPARE(At(*wide, -15, 1)[1], 0.0f);
    }
};

QTEST_MAIN(ColorToolsTest)
#include "ColorToolsTest.moc"
