#include "workbench/tools/ColorInputs.h"

#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::array<const char*, 4> channels{"Red", "Green", "Blue", "Alpha"};
constexpr std::size_t alpha = 3;
constexpr double brightest = 1e9; // sums of such values stay finite in 32 bits

} // namespace

void AddColor(Operator& tool, const ColorSpec& spec)
{
    const std::size_t count = spec.hasAlpha ? channels.size() : alpha;
    AddNest(tool, (std::string(spec.id) + "Colour").c_str(),
            (std::string(spec.name) + "Colour").c_str(), int(count), true,
            "Red, green and blue in linear light");
    for (std::size_t i = 0; i < count; ++i) {
        const std::string id = std::string(spec.id) + channels[i];
        const std::string name = std::string(spec.name) + channels[i];
        if (i == alpha)
            AddSlider(tool,
                      {id.c_str(), name.c_str(), 0.0, 1.0, spec.normal[i],
                       "Cover: 0 leaves the picture as it is, 1 hides it"},
                      {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
        else
            AddSlider(tool, {id.c_str(), name.c_str(), 0.0, 1.0, spec.normal[i],
                             "Linear light; 1 is white, more is brighter"});
    }
}

Color ColorAt(const Operator& tool, const std::string& id, double time)
{
    Color color{0.0, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const Input* input = tool.FindInput((id + channels[i]).c_str());
        const double value = input ? input->GetNumber(time) : color[i];
        const double low = i == alpha ? 0.0 : -brightest;
        const double high = i == alpha ? 1.0 : brightest;
        color[i] = std::isnan(value) ? 0.0 : std::clamp(value, low, high);
    }
    return color;
}

} // namespace Marlox
