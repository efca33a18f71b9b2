#include "workbench/tools/ColorInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::array<const char*, 4> channels{"Red", "Green", "Blue", "Alpha"};
constexpr std::size_t alpha = 3;
constexpr double brightest = 1e9; // sums of such values stay finite in 32 bits

} // namespace

Input& AddChannel(Operator& tool, const ChannelSpec& channel, const SliderSpec& spec,
                  const TagList& further)
{
    TagList tags{{IAS_Name, spec.name},          {IAS_Help, spec.help},
                 {IAS_Control, channel.control}, {IAS_DataType, CLSID_DataType_Number},
                 {IA_Channel, channel.channel},  {IA_Range, channel.range},
                 {IAD_LowScale, spec.low},       {IAD_HighScale, spec.high},
                 {IAD_Default, spec.normal}};
    if (channel.with)
        tags.Add(IAS_SharedWith, channel.with);
    for (const TagPair* pair = further.First(); pair; pair = further.Next(pair))
        tags.Add(u32(pair->tag), pair->value);
    return tool.AddInput(spec.id, tags);
}

void AddColor(Operator& tool, const ColorSpec& spec)
{
    const std::size_t count = spec.hasAlpha ? channels.size() : alpha;
    const std::string first = std::string(spec.id) + channels[0];
    for (std::size_t i = 0; i < count; ++i) {
        const std::string id = std::string(spec.id) + channels[i];
        const std::string name = std::string(spec.name) + channels[i];
        const ChannelSpec channel{CLSID_InputControl_Color, i > 0 ? first.c_str() : nullptr,
                                  int(i)};
        if (i == alpha)
            AddChannel(tool, channel,
                       {id.c_str(), name.c_str(), 0.0, 1.0, spec.normal[i],
                        "How much the colour covers: 0 nothing, 1 all"},
                       {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
        else
            AddChannel(tool, channel,
                       {id.c_str(), name.c_str(), 0.0, 1.0, spec.normal[i],
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
