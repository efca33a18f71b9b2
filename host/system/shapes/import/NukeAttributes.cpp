// What a shape has beside its curve.

#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <algorithm>

namespace Marlox {

namespace {

std::optional<double> FirstValue(const NukeShape& shape, const char* name)
{
    const auto found = shape.attributes.find(name);
    if (found == shape.attributes.end())
        return std::nullopt;
    const AnimatedNumber& number = found->second;
    return number.Keys().empty() ? number.At(0.0) : number.Keys().front().value;
}

/// What is set beside the curve and has no like here.
void NoteAttributes(ImportJob& job, const NukeShape& shape, const std::string& name)
{
    for (const char* feather : {"fx", "fy"}) {
        const auto found = shape.attributes.find(feather);
        if (found != shape.attributes.end() && !found->second.Is(0.0)) {
            job.LeaveAside(shape.line, Quoted(name) + ": its even feather is not taken");
            break;
        }
    }
    for (const auto& [attribute, number] : shape.attributes) {
        if (!IsKnownNukeAttribute(attribute))
            job.LeaveAside(0, "the attribute " + Quoted(attribute) + " is not understood");
    }
    if (FirstValue(shape, "ltt").value_or(0.0) != 0.0)
        job.LeaveAside(shape.line, Quoted(name) + ": its lifetime is not taken");
    for (const char* attribute : {"vis", "inv", "bm"}) {
        const auto found = shape.attributes.find(attribute);
        if (found != shape.attributes.end() && found->second.IsAnimated())
            job.LeaveAside(shape.line, Quoted(name) + ": of its attribute \"" + attribute +
                                           "\" the first key is taken alone");
    }
}

} // namespace

bool IsKnownNukeAttribute(std::string_view name)
{
    constexpr std::string_view known[] = {"opc", "inv", "vis", "bm",  "fx", "fy",
                                          "ltn", "ltm", "ltt", "spx", "spy"};
    return std::find(std::begin(known), std::end(known), name) != std::end(known);
}

void NoteNukeLayer(ImportJob& job, int line, const std::string& name,
                   const std::map<std::string, AnimatedNumber>& attributes)
{
    struct Effect {
        const char* id;
        double idle; // does nothing as this number
        const char* name;
    };
    constexpr Effect effects[] = {{"opc", 1.0, "opacity"}, {"inv", 0.0, "inversion"},
                                  {"bm", 0.0, "blending"}, {"fx", 0.0, "feather"},
                                  {"fy", 0.0, "feather"},  {"ltt", 0.0, "lifetime"}};
    for (const Effect& effect : effects) {
        const auto found = attributes.find(effect.id);
        if (found != attributes.end() && !found->second.Is(effect.idle)) {
            job.LeaveAside(line, "the " + std::string(effect.name) + " of the layer " +
                                     Quoted(name) + " is not taken");
        }
    }
    for (const auto& [attribute, number] : attributes) {
        if (!IsKnownNukeAttribute(attribute))
            job.LeaveAside(0, "the attribute " + Quoted(attribute) + " is not understood");
    }
}

void SetNukeAttributes(ImportJob& job, const NukeShape& shape, bool isVisible, ImportedShape& out)
{
    struct Blend {
        int number;
        const char* name;
    };
    constexpr Blend blends[] = {{0, "add"}, {4, "max"}, {12, "subtract"}, {13, "difference"}};
    out.visible = isVisible && FirstValue(shape, "vis").value_or(1.0) != 0.0;
    out.locked = (shape.flags & NF_Locked) != 0;
    out.inverted = FirstValue(shape, "inv").value_or(0.0) != 0.0;
    if (const std::optional<double> number = FirstValue(shape, "bm")) {
        for (const Blend& blend : blends) {
            if (blend.number == *number)
                out.combine = blend.name;
        }
        if (out.combine.empty())
            job.LeaveAside(shape.line, Quoted(out.name) + ": how it blends is not understood");
    }
    const auto opacity = shape.attributes.find("opc");
    if (opacity != shape.attributes.end()) {
        for (const AnimatedNumber::Key& key : opacity->second.Keys())
            out.opacity.push_back({key.time, key.value, key.interpolation});
        if (opacity->second.Keys().empty())
            out.opacity.push_back({0.0, opacity->second.At(0.0)});
    }
    NoteAttributes(job, shape, out.name);
}

} // namespace Marlox
