#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

namespace Marlox {

// Roto nodes of Nuke scripts. How sure the facts are:
// - lists, numbers, layers, shapes, the four ways to tell keys, feathers as offsets, the order of a
//   transform's numbers, the format's place: seen in real files (972 curves);
// - bits of flags, meanings of attributes: as other programs write them;
// - that rotation counts degrees, the numbers 12 to 34 of a transform, that the image's centre is
//   told by the root layer where no format is: guesses, noted where they are used.
// The older form is read in ImportNukeTree.cpp.

namespace {

NukeFormat FormatOf(ImportJob& job, std::string_view text)
{
    NukeFormat format;
    const std::vector<NukeItem> words = NukeItems(job, text);
    if (words.size() < 2)
        return format;
    const std::optional<double> width = ToNumber(words[0].text);
    const std::optional<double> height = ToNumber(words[1].text);
    constexpr double largest = 1e6;
    if (width && height && *width > 0.0 && *height > 0.0 && *width < largest && *height < largest)
        format = {*width, *height};
    return format;
}

/// The value behind a knob's name; none: the node has no such knob.
std::optional<NukeItem> Knob(ImportJob& job, std::string_view node, std::string_view name)
{
    NukeList list(job, node);
    NukeItem item;
    while (list.Next(item)) {
        const bool isIt = !item.isList && !item.isQuoted && item.text == name;
        if (isIt && list.Next(item))
            return item;
    }
    return std::nullopt;
}

void ReadNode(ImportJob& job, std::string_view node, NukeFormat ofScript)
{
    const std::optional<NukeItem> curves = Knob(job, node, "curves");
    if (!curves)
        return;
    NukeFormat format = ofScript;
    if (const std::optional<NukeItem> own = Knob(job, node, "format")) {
        const NukeFormat told = FormatOf(job, own->text);
        if (told.width > 0.0)
            format = told;
    }
    std::string_view text = curves->text;
    if (NukeFirstWord(job, text) == "AnimTree:")
        ReadNukeAnimTree(job, text, format);
    else
        ReadNukeCurves(job, text, format);
}

/// Calls `found` with the name and the contents of each node. Groups hold theirs between their own
/// braces and an end word, in the same row.
template <class Found>
void ForEachNode(ImportJob& job, Found found)
{
    NukeList script(job, job.Text());
    NukeItem item;
    std::string_view name;
    while (script.Next(item)) {
        const bool isWord = !item.isList && !item.isQuoted;
        if (isWord && item.text.starts_with('#'))
            script.SkipLine();
        else if (item.isList && !name.empty())
            found(name, item.text);
        name = isWord ? item.text : std::string_view();
    }
}

} // namespace

void ReadNukeShapes(ImportJob& job)
{
    NukeFormat format;
    ForEachNode(job, [&](std::string_view name, std::string_view node) {
        if (name != "Root")
            return;
        if (const std::optional<NukeItem> told = Knob(job, node, "format"))
            format = FormatOf(job, told->text);
    });
    int nodes = 0;
    ForEachNode(job, [&](std::string_view name, std::string_view node) {
        if (name != "Roto" && name != "RotoPaint")
            return;
        ++nodes;
        ReadNode(job, node, format);
    });
    if (nodes == 0)
        throw ImportFailure{0, "it holds no roto nodes", true};
}

} // namespace Marlox
