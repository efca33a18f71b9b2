#include "widgets/ColorSquare.h"
#include "widgets/ImageSlot.h"

#include <cmath>

#include <QtTest>

using namespace Marlox;

namespace {

constexpr int side = 167; // with a rest beside whole blocks

/// Light with a power of 1/2, with a share of red in the other components.
class TestDisplay : public ColorDisplay {
public:
    explicit TestDisplay(float shared) : shared_(shared) {}
    void Apply(float* rgb, int count) const override
    {
        if (count < 1)
            qFatal("asked for nothing"); // which colour libraries refuse
        for (float* end = rgb + 3 * count; rgb != end; rgb += 3) {
            for (int i = 2; i >= 0; --i)
                rgb[i] = std::sqrt(std::max(rgb[i] + shared_ * (rgb[0] - rgb[i]), 0.0f));
        }
    }

private:
    float shared_;
};

std::vector<double> evenly(double from, double to)
{
    std::vector<double> numbers;
    for (int i = 0; i < side; ++i)
        numbers.push_back(from + (to - from) * i / (side - 1));
    return numbers;
}

} // namespace

/// The square of the colour field, beside its pixels set one by one.
class ColorSquareTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { DisplayColors::Global().SetDisplay(nullptr); }
    void HasThePixelsOfQColor();
    void ShowsWhatTheDisplayDoes();
    void MutesWhatNoLightHas();
    void SharesSlotsAmongThreads();

private:
    QImage Painted(int space, double hue) const
    {
        QImage image;
        square_.Paint(image, space, hue, DisplayColors::Global());
        return image;
    }
    int FurthestOff(int space, double hue) const;

    const std::vector<double> across_ = evenly(0.0, 1.0);
    const std::vector<double> up_ = evenly(1.0, 0.0);
    const ColorSquare square_{across_, up_};
};

void ColorSquareTest::HasThePixelsOfQColor()
{
    QImage plain(side, side, QImage::Format_RGB32);
    for (int i = 0; i <= 24; ++i) { // each sixth, and between
        const double hue = i / 24.0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                plain.setPixelColor(
                    x, y, QColor::fromHsvF(hue, across_[std::size_t(x)], up_[std::size_t(y)]));
        }
        QCOMPARE(Painted(0, hue), plain);
    }
}

/// The largest difference in a code, but for the pixels on the border of what light has.
int ColorSquareTest::FurthestOff(int space, double hue) const
{
    const double border = space == 2 ? 0.01 : -1e-9;
    const QImage image = Painted(space, hue);
    int most = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const auto [red, green, blue] =
                ColorAxes::Of(space).ToRgb({hue, across_[std::size_t(x)], {}, up_[std::size_t(y)]});
            if (std::min({red, green, blue}) < border ||
                std::max({red, green, blue}) > 1.0 - border)
                continue;
            const QRgb wanted = DisplayColors::Global().Shown(red, green, blue).rgb();
            const QRgb seen = image.pixel(x, y);
            for (const int shift : {0, 8, 16})
                most =
                    std::max(most, std::abs(int(seen >> shift & 255) - int(wanted >> shift & 255)));
        }
    }
    return most;
}

void ColorSquareTest::ShowsWhatTheDisplayDoes()
{
    DisplayColors& display = DisplayColors::Global();
    for (const int space : {1, 2})
        QVERIFY(FurthestOff(space, 0.4) <= 1);
    display.SetDisplay(std::make_shared<TestDisplay>(0.0f));
    QVERIFY(display.PerChannel());
    for (const int space : {0, 1, 2})
        QVERIFY(FurthestOff(space, 0.4) <= 1);
    for (const float shared : {0.3f, -0.3f}) { // the latter clips what light has
        display.SetDisplay(std::make_shared<TestDisplay>(shared));
        QVERIFY(!display.PerChannel());
        for (const int space : {0, 1, 2})
            QVERIFY(FurthestOff(space, 0.4) <= 2);
    }
}

void ColorSquareTest::MutesWhatNoLightHas()
{
    const QImage image = Painted(2, 0.5);
    const QColor inside = image.pixelColor(side / 2 + 30, side / 2);
    const QColor outside = image.pixelColor(side - 4, side / 2);
    QVERIFY(inside.blue() > 200 && inside.saturation() > 60);
    QVERIFY(outside.value() < 90 && outside.saturation() < 60);
}

void ColorSquareTest::SharesSlotsAmongThreads()
{
    static std::atomic<int> alive = 0;
    struct Picture {
        Picture() { ++alive; }
        Picture(Picture&&) noexcept { ++alive; }
        ~Picture() { --alive; }
    };
    {
        ImageSlot<Picture> slot;
        std::atomic<bool> painting = false;
        std::atomic<int> clashes = 0;
        std::atomic<int> made = 0;
        const auto paint = [&] {
            for (int i = 0; i < 3000; ++i) {
                ImageSlot<Picture>::Hold picture(slot);
                clashes += painting.exchange(true) ? 1 : 0;
                if (!picture) {
                    picture.Set({});
                    ++made;
                }
                std::this_thread::yield(); // in the middle of it
                clashes += alive == 1 ? 0 : 1;
                painting = false;
            }
        };
        const auto discard = [&slot] {
            for (int i = 0; i < 3000; ++i)
                slot.Discard();
        };
        std::thread threads[] = {std::thread(paint), std::thread(discard), std::thread(paint),
                                 std::thread(discard)};
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(clashes.load(), 0);
        QVERIFY(made > 0);
        slot.Discard();
        QCOMPARE(alive.load(), 0);
        ImageSlot<Picture>::Hold(slot).Set({});
        QCOMPARE(alive.load(), 1);
    }
    QCOMPARE(alive.load(), 0); // a slot frees what is in it
}

QTEST_APPLESS_MAIN(ColorSquareTest)
#include "color_square_test.moc"
