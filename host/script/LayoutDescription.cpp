#include "script/LayoutDescription.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>

namespace Marlox {

namespace {

using Type = LayoutDescription::Type;
using Align = LayoutBox::Align;

constexpr int maximumDepth = 50;

struct TypeRow {
    const char* name;
    Type type;
    LayoutBox::Kind kind;
    double weight; // unless the description gives one
};
constexpr TypeRow types[] = {
    {"HGroup", Type::HGroup, LayoutBox::Kind::Row, 1.0},
    {"VGroup", Type::VGroup, LayoutBox::Kind::Column, 1.0},
    {"Item", Type::Item, LayoutBox::Kind::Leaf, 1.0},
    {"Container", Type::Container, LayoutBox::Kind::Leaf, 1.0},
    {"Spacer", Type::Spacer, LayoutBox::Kind::Spacer, 1.0},
    {"Label", Type::Label, LayoutBox::Kind::Leaf, 0.0},
};

struct AlignRow {
    std::string_view word;
    std::optional<Align> horizontal;
    std::optional<Align> vertical;
};
constexpr AlignRow alignments[] = {
    {"left", Align::Start, {}},
    {"right", Align::End, {}},
    {"hcentre", Align::Centre, {}},
    {"hcenter", Align::Centre, {}},
    {"top", {}, Align::Start},
    {"bottom", {}, Align::End},
    {"vcentre", {}, Align::Centre},
    {"vcenter", {}, Align::Centre},
    {"centre", Align::Centre, Align::Centre},
    {"center", Align::Centre, Align::Centre},
    {"fill", Align::Fill, Align::Fill},
};

/// What a field asks for and why it can't be had; null: all is well.
using Refusal = const char*;

bool EqualIgnoringCase(std::string_view text, std::string_view lower)
{
    return text.size() == lower.size() &&
           std::equal(text.begin(), text.end(), lower.begin(), [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? char(a - 'A' + 'a') : a) == b;
           });
}

Refusal ReadPixels(const ScriptVal& value, int& pixels)
{
    const double number = value.ToNumber(-1.0);
    if (!value.IsNumber() || !(number >= 0.0 && number <= 100000.0))
        return "a number of pixels from 0 to 100000 expected";
    pixels = int(std::lround(number));
    return nullptr;
}

Refusal ReadName(const ScriptVal& value, LayoutDescription& out)
{
    if (!value.IsString())
        return "a text expected";
    const std::string name = value.ToString();
    out.name = MxID(std::string_view(name));
    return nullptr;
}

Refusal ReadText(const ScriptVal& value, LayoutDescription& out)
{
    if (!value.IsString())
        return out.type == Type::Label ? "a text expected" : nullptr;
    out.text = value.ToString();
    return nullptr;
}

Refusal ReadWeight(const ScriptVal& value, LayoutDescription& out)
{
    const double weight = value.ToNumber(-1.0);
    if (!value.IsNumber() || !(weight >= 0.0 && weight <= 1e6))
        return "a number from 0 to 1000000 expected";
    out.box.weight = weight;
    return nullptr;
}

Refusal ReadSpacing(const ScriptVal& value, LayoutDescription& out)
{
    return ReadPixels(value, out.box.spacing);
}

Refusal ReadMargin(const ScriptVal& value, LayoutDescription& out)
{
    auto& margins = out.box.margins;
    if (!value.IsTable()) {
        const Refusal refusal = ReadPixels(value, margins[0]);
        margins.fill(margins[0]);
        return refusal;
    }
    if (value.Length() != margins.size())
        return "a number of pixels or {left, top, right, bottom} expected";
    for (std::size_t i = 0; i < margins.size(); ++i) {
        if (const Refusal refusal = ReadPixels(value.At(i + 1), margins[i]))
            return refusal;
    }
    return nullptr;
}

template <int axis, int LayoutExtent::*member>
Refusal ReadLimit(const ScriptVal& value, LayoutDescription& out)
{
    return ReadPixels(value, out.box.limits[axis].*member);
}

Refusal ReadAlign(const ScriptVal& value, LayoutDescription& out)
{
    constexpr Refusal expected = "\"left\", \"right\", \"top\", \"bottom\", \"centre\" or \"fill\" "
                                 "expected";
    if (!value.IsString())
        return expected;
    const std::string text = value.ToString();
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        if (word.empty())
            continue;
        const auto row =
            std::find_if(std::begin(alignments), std::end(alignments), [&](const AlignRow& known) {
                return EqualIgnoringCase(word, known.word);
            });
        if (row == std::end(alignments))
            return expected;
        out.box.align[0] = row->horizontal.value_or(out.box.align[0]);
        out.box.align[1] = row->vertical.value_or(out.box.align[1]);
    }
    return nullptr;
}

struct FieldRow {
    std::string_view name;
    Refusal (*read)(const ScriptVal& value, LayoutDescription& out);
};
constexpr FieldRow fields[] = {
    {"name", ReadName},
    {"text", ReadText},
    {"weight", ReadWeight},
    {"spacing", ReadSpacing},
    {"margin", ReadMargin},
    {"minwidth", ReadLimit<0, &LayoutExtent::minimum>},
    {"minheight", ReadLimit<1, &LayoutExtent::minimum>},
    {"maxwidth", ReadLimit<0, &LayoutExtent::maximum>},
    {"maxheight", ReadLimit<1, &LayoutExtent::maximum>},
    {"align", ReadAlign},
};

const char* NameOfValueType(const ScriptVal& value)
{
    constexpr const char* names[] = {"nil",    "a boolean", "a number",
                                     "a text", "a table",   "an object"};
    return names[std::size_t(value.GetType())];
}

/// Reads one description after the other and remembers where it is.
class DescriptionReader {
public:
    bool Read(const ScriptVal& table, LayoutDescription& out);
    std::string Error() const;

private:
    bool Refuse(std::string reason);
    bool ReadType(const ScriptVal& table, LayoutDescription& out, std::size_t& firstChild);
    bool ReadFields(const ScriptVal& table, LayoutDescription& out);
    bool ReadChildren(const ScriptVal& table, std::size_t firstChild, LayoutDescription& out);

    std::vector<std::pair<const char*, std::size_t>> path_; // group, child within it
    std::string field_;
    std::string reason_;
};

std::string DescriptionReader::Error() const
{
    std::string where;
    for (const auto& [group, child] : path_)
        where +=
            (where.empty() ? "" : ".") + std::string(group) + "[" + std::to_string(child) + "]";
    if (!field_.empty())
        where += (where.empty() ? "" : ".") + field_;
    return where.empty() ? reason_ : where + ": " + reason_;
}

bool DescriptionReader::Refuse(std::string reason)
{
    reason_ = std::move(reason);
    return false;
}

bool DescriptionReader::ReadType(const ScriptVal& table, LayoutDescription& out,
                                 std::size_t& firstChild)
{
    firstChild = table.At(1).IsString() ? 2 : 1;
    const ScriptVal* type = &table.At(1);
    if (firstChild == 1)
        type = table.Get("type").IsNil() ? &table.Get("Type") : &table.Get("type");
    if (type->IsNil())
        return Refuse("no type given");
    const std::string name = type->ToString();
    const auto row = std::find_if(std::begin(types), std::end(types),
                                  [&](const TypeRow& known) { return name == known.name; });
    if (row == std::end(types))
        return Refuse(type->IsString()
                          ? "unknown type \"" + name + "\""
                          : std::string("the type is ") + NameOfValueType(*type) + ", not a text");
    out.type = row->type;
    out.box.kind = row->kind;
    out.box.weight = row->weight;
    return true;
}

bool DescriptionReader::ReadFields(const ScriptVal& table, LayoutDescription& out)
{
    for (const auto& [name, value] : table.Fields()) {
        for (const FieldRow& field : fields) {
            if (!EqualIgnoringCase(name, field.name))
                continue;
            if (const Refusal refusal = field.read(value, out)) {
                field_ = name;
                return Refuse(refusal);
            }
            break;
        }
    }
    for (LayoutExtent& limit : out.box.limits) {
        if (limit.minimum > limit.maximum)
            return Refuse("its minimum size is above its maximum size");
    }
    return true;
}

bool DescriptionReader::ReadChildren(const ScriptVal& table, std::size_t firstChild,
                                     LayoutDescription& out)
{
    const std::size_t count = table.Length() + 1 - firstChild;
    if (count > 0 && !out.IsGroup())
        return Refuse(std::string("only groups hold others, not ") + NameOfLayoutType(out.type));
    out.children.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        path_.emplace_back(NameOfLayoutType(out.type), i + 1);
        if (!Read(table.At(firstChild + i), out.children.emplace_back()))
            return false;
        path_.pop_back();
    }
    return true;
}

bool DescriptionReader::Read(const ScriptVal& table, LayoutDescription& out)
{
    if (!table.IsTable())
        return Refuse(std::string("a table expected, not ") + NameOfValueType(table));
    if (path_.size() > maximumDepth)
        return Refuse("groups are nested too deep");
    out.source = table;
    std::size_t firstChild = 1;
    return ReadType(table, out, firstChild) && ReadFields(table, out) &&
           ReadChildren(table, firstChild, out);
}

} // namespace

const char* NameOfLayoutType(LayoutDescription::Type type)
{
    return types[std::size_t(type)].name;
}

bool ReadLayoutDescription(const ScriptVal& table, LayoutDescription& description,
                           std::string& error)
{
    DescriptionReader reader;
    if (reader.Read(table, description))
        return true;
    error = reader.Error();
    return false;
}

} // namespace Marlox
