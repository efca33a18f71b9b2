#pragma once

#include "controls/color/ColorControl.h"
#include "plugin/InspectorStage.h"
#include "system/document/Preferences.h"
#include "widgets/CustomColorField.h"

#include <cmath>

namespace Marlox {

struct ChannelInput {
    const char* id;
    int channel;
    double value;
};

inline const std::vector<ChannelInput> rgba{
    {"Red", 0, 0.5}, {"Green", 1, 0.25}, {"Blue", 2, 0.125}, {"Alpha", 3, 1.0}};

/// A page with one colour control, whose inputs join the first.
inline std::vector<StagedInput> staged(const std::vector<ChannelInput>& channels,
                                       const std::vector<TagPair>& tags = {})
{
    std::vector<StagedInput> inputs;
    for (const ChannelInput& channel : channels) {
        std::vector<TagPair> attributes{{IA_Channel, channel.channel},
                                        {IAD_Default, channel.value}};
        if (inputs.empty())
            attributes.insert(attributes.end(), tags.begin(), tags.end());
        else
            attributes.push_back({IAS_SharedWith, channels.front().id});
        inputs.push_back({channel.id, attributes, "ColorControl"});
    }
    return inputs;
}

struct ColorStage : InspectorStage {
    explicit ColorStage(const std::vector<ChannelInput>& channels = rgba,
                        const std::vector<TagPair>& tags = {{CLRC_ShowWheel, 1}}, int width = 380)
        : InspectorStage(staged(channels, tags), width)
    {
    }
    ColorControl& Control() const { return ControlOf<ColorControl>(); }
    CustomColorField& Field() const { return *PartOf<CustomColorField>("field"); }
    TimeCodeEdit& Edit(const char* name) const { return *PartOf<TimeCodeEdit>(name); }
    void Set(double r, double g, double b)
    {
        InputOf("Red").SetValue(Number(r), 0.0);
        InputOf("Green").SetValue(Number(g), 0.0);
        InputOf("Blue").SetValue(Number(b), 0.0);
        document->Undo().Clear();
    }
    QString Rgb() const
    {
        return QStringLiteral("%1 %2 %3")
            .arg(ValueOf("Red"), 0, 'g', 6)
            .arg(ValueOf("Green"), 0, 'g', 6)
            .arg(ValueOf("Blue"), 0, 'g', 6);
    }
    bool HasUndo(const QStringList& texts) const { return UndoTexts() == texts && IsIdle(); }
};

inline void type(TimeCodeEdit& edit, const QString& text)
{
    edit.setFocus();
    edit.setText(text);
    edit.Commit();
}

/// In the square, from its left and lower edge, 0 to 1.
inline QPoint inSquare(const CustomColorField& field, double s, double v)
{
    const QRect r = field.rect();
    const int a = field.ShowsAlpha() ? 17 : 0;
    const double width = (r.right() - 1 - a - 18) - 3 - 1;
    return {int(std::lround(3 + s * width)),
            int(std::lround((r.bottom() - 2) - v * (r.bottom() - 2 - 3 - 1)))};
}

/// On the hue strip, from its top.
inline QPoint onHue(const CustomColorField& field, double hue)
{
    const QRect r = field.rect();
    const int a = field.ShowsAlpha() ? 17 : 0;
    return {r.right() - 1 - a - 6, int(std::lround(4 + hue * (r.bottom() - 3 - 4 - 1)))};
}

struct PreferenceGuard {
    PreferenceGuard(const char* name, const QVariant& value) : name(name)
    {
        Preferences::Global().Set(name, value);
    }
    ~PreferenceGuard() { Preferences::Global().Remove(name); }
    const char* name;
};

} // namespace Marlox
