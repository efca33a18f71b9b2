#include "system/color/DisplayColors.h"

#include <cmath>
#include <functional>
#include <limits>

#include <QSignalSpy>
#include <QTest>

using namespace Marlox;

namespace {

/// A display by a function of one colour.
class Shown final : public ColorDisplay {
public:
    explicit Shown(std::function<void(float* rgb)> show) : show_(std::move(show)) {}
    void Apply(float* rgb, int count) const override
    {
        shown += count;
        for (int i = 0; i < count; ++i)
            show_(rgb + std::ptrdiff_t(i) * 3);
    }
    mutable int shown = 0;

private:
    std::function<void(float* rgb)> show_;
};

void square(float* rgb)
{
    for (int i = 0; i < 3; ++i)
        rgb[i] *= rgb[i];
}

} // namespace

class TestDisplayColors : public QObject {
    Q_OBJECT

    DisplayColors& colors() { return DisplayColors::Global(); }

private slots:
    void cleanup() { colors().SetDisplay(nullptr); }

    void lightIsShownAsItIs()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float infinite = std::numeric_limits<float>::infinity();
        const float light[] = {nan, infinite, -infinite, 7.0f, 0.2f, -1.0f};
        QRgb codes[2];
        colors().Show(light, 2, codes);
        QCOMPARE(codes[0], qRgb(0, 255, 0));
        QCOMPARE(codes[1], qRgb(255, 51, 0));
        QCOMPARE(int(colors().PerChannel()->code[1][8192]), 128);
    }

    void tablesAreMadeWhenAskedFor()
    {
        QSignalSpy changed(&colors(), &DisplayColors::Changed);
        const unsigned before = colors().Generation();
        const auto display = std::make_shared<Shown>(square);
        colors().SetDisplay(display);
        colors().SetDisplay(display);
        QCOMPARE(changed.count(), 1);
        QVERIFY(colors().Generation() != before && display->shown == 0);
        const DisplayColors::Curves* curves = colors().PerChannel();
        const int shown = display->shown;
        QVERIFY(curves && shown > 0);
        QCOMPARE(colors().PerChannel(), curves);
        QCOMPARE(display->shown, shown);
        QCOMPARE(colors().Shown(0.25, 1.0, 0.0), QColor(curves->code[0][4096], 255, 0));
    }

    void mixturesHaveNoTables()
    {
        const std::pair<const char*, std::function<void(float*)>> displays[] = {
            {"a grey picture",
             [](float* rgb) { rgb[0] = rgb[1] = rgb[2] = (rgb[0] + rgb[1] + rgb[2]) / 3.0f; }},
            {"a matrix that keeps greys", [](float* rgb) { rgb[2] += 0.01f * (rgb[0] - rgb[1]); }},
            {"a matrix of what is dark", [](float* rgb) { rgb[1] += 0.1f * rgb[0] * rgb[2]; }},
            {"no number for some", [](float* rgb) { rgb[0] = std::sqrt(rgb[0] - rgb[1]); }}};
        for (const auto& [what, show] : displays) {
            colors().SetDisplay(std::make_shared<Shown>(show));
            QVERIFY2(!colors().PerChannel(), what);
        }
        // Beyond what the screen has nothing shows.
        colors().SetDisplay(std::make_shared<Shown>([](float* rgb) {
            square(rgb);
            rgb[0] = rgb[0] * 1e6f + (rgb[0] > 0.0f ? rgb[1] : 0.0f);
        }));
        QVERIFY(colors().PerChannel());
    }
};

QTEST_GUILESS_MAIN(TestDisplayColors)
#include "tst_displaycolors.moc"
