#include "system/color/DisplayColors.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Marlox {

namespace {

/// Of the screen, from 0 to 255; what is no number is black.
int codeOf(float shown)
{
    if (!(shown > 0.0f))
        return 0;
    return shown >= 1.0f ? 255 : int(shown * 255.0f + 0.5f);
}

/// Whether no component of the light shows in another one's code.
bool keepsChannelsApart(const ColorDisplay& display)
{
    static constexpr std::array<float, 5> levels{0.0f, 0.02f, 0.18f, 0.6f, 1.0f};
    static constexpr std::array<std::array<float, 2>, 5> companions{
        {{0.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}, {1.0f, 0.0f}, {0.18f, 0.6f}}};
    static constexpr float unseen = 0.25f / 255.0f;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (const float level : levels) {
            std::array<float, 3 * companions.size()> alike{}; // in this component
            for (std::size_t i = 0; i < companions.size(); ++i) {
                alike[i * 3 + channel] = level;
                alike[i * 3 + (channel + 1) % 3] = companions[i][0];
                alike[i * 3 + (channel + 2) % 3] = companions[i][1];
            }
            display.Apply(alike.data(), int(companions.size()));
            const auto shown = [&](std::size_t i) {
                return std::clamp(alike[i * 3 + channel], 0.0f, 1.0f);
            };
            for (std::size_t i = 1; i < companions.size(); ++i) {
                if (!(std::abs(shown(i) - shown(0)) < unseen))
                    return false;
            }
        }
    }
    return true;
}

} // namespace

ColorDisplay::~ColorDisplay() = default;

DisplayColors& DisplayColors::Global()
{
    static DisplayColors colors;
    return colors;
}

void DisplayColors::SetDisplay(std::shared_ptr<const ColorDisplay> display)
{
    if (display == display_)
        return;
    display_ = std::move(display);
    curves_ = nullptr;
    hasCurves_ = false;
    ++generation_;
    emit Changed();
}

const DisplayColors::Curves* DisplayColors::PerChannel() const
{
    if (std::exchange(hasCurves_, true))
        return curves_.get();
    if (display_ && !keepsChannelsApart(*display_))
        return nullptr;
    std::vector<float> greys(std::size_t(Curves::size) * 3);
    for (std::size_t i = 0; i < greys.size(); ++i)
        greys[i] = float(i / 3) / float(Curves::size - 1);
    if (display_)
        display_->Apply(greys.data(), Curves::size);
    auto made = std::make_unique<Curves>();
    for (std::size_t channel = 0; channel < 3; ++channel) {
        auto& codes = made->code[channel];
        codes.reserve(std::size_t(Curves::size));
        for (std::size_t i = channel; i < greys.size(); i += 3)
            codes.push_back(std::uint8_t(codeOf(greys[i])));
    }
    curves_ = std::move(made);
    return curves_.get();
}

void DisplayColors::Show(const float* rgb, int count, QRgb* to) const
{
    std::vector<float> shown(rgb, rgb + std::ptrdiff_t(count) * 3);
    for (float& component : shown) {
        if (std::isnan(component))
            component = 0.0f;
    }
    if (display_ && count > 0) // some will not be asked for nothing
        display_->Apply(shown.data(), count);
    for (std::size_t i = 0; i < shown.size(); i += 3, ++to)
        *to = qRgb(codeOf(shown[i]), codeOf(shown[i + 1]), codeOf(shown[i + 2]));
}

QColor DisplayColors::Shown(double red, double green, double blue) const
{
    const std::array<float, 3> rgb{float(red), float(green), float(blue)};
    QRgb codes = 0;
    Show(rgb.data(), 1, &codes);
    return QColor(codes);
}

} // namespace Marlox
