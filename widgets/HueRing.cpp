#include "widgets/HueRing.h"

#include "system/color/DisplayColors.h"
#include "widgets/WheelPicture.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr int turn = 1 << 16;
constexpr int placeBits = 4; // of a place, that are too fine to be told apart as hues
constexpr int hues = turn >> placeBits;

} // namespace

HueRing::HueRing(int diameter, double devicePixelRatio, double inner, double outer, double most)
{
    const int size = std::max(1, int(std::lround(diameter * devicePixelRatio)));
    picture_ = QImage(size, size, QImage::Format_ARGB32_Premultiplied);
    picture_.setDevicePixelRatio(devicePixelRatio);
    picture_.fill(Qt::transparent);
    for (int row = 0; row < size; ++row)
        AddRow(row, 0.5 * size * inner, 0.5 * size * outer);
    std::vector<float> light;
    for (int i = 0; i < hues; ++i) {
        for (const double component : MutedHue((i + 0.5) / hues, 1.0, most))
            light.push_back(float(component));
    }
    codes_.resize(hues);
    DisplayColors::Global().Show(light.data(), hues, codes_.data());
}

/// Lengths in pixels of the screen.
void HueRing::AddRow(int row, double inner, double outer)
{
    const double radius = 0.5 * picture_.width();
    const double up = radius - row - 0.5;
    bool goesOn = false;
    for (int x = 0; x < picture_.width(); ++x) {
        const double right = x + 0.5 - radius;
        const double cover = RingCover(std::sqrt(right * right + up * up), inner, outer);
        if (cover > 0.0) {
            if (!goesOn)
                runs_.push_back({row, x, 0});
            ++runs_.back().count;
            const double around = std::atan2(up, right) / (2.0 * M_PI);
            places_.push_back(std::uint16_t(int(std::lround(around * turn)) & (turn - 1)));
            covers_.push_back(std::uint8_t(std::lround(cover * 255.0)));
        }
        goesOn = cover > 0.0;
    }
}

const QImage& HueRing::Turned(double turns)
{
    const double part = std::isfinite(turns) ? turns - std::floor(turns) : 0.0;
    const int turned = int(std::lround(part * turn)) & (turn - 1);
    if (shown_ == turned)
        return picture_;
    shown_ = turned;
    const auto* place = places_.data();
    const auto* cover = covers_.data();
    for (const Run& run : runs_) {
        auto* pixel = reinterpret_cast<QRgb*>(picture_.scanLine(run.row)) + run.first;
        for (const QRgb* end = pixel + run.count; pixel != end; ++pixel, ++place, ++cover) {
            const QRgb code = codes_[std::size_t((*place - turned) & (turn - 1)) >> placeBits];
            *pixel = *cover == 255 ? code : Covering(code, *cover);
        }
    }
    return picture_;
}

} // namespace Marlox
