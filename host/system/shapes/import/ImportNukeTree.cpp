#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

// The older form of the knob "curves", "AnimTree": names with colons, then their values. The
// grammar was seen in real files; that its flags and attributes mean what they do in the present
// form is taken from there. Which of a point's attributes is the tension, and how it counts, is not
// known.

namespace {

constexpr int maxNodes = 64; // within each other
constexpr int maxBlocks = 8; // braces within one node
constexpr int maxKeys = 100'000;

using Key = AnimatedNumber::Key;

/// What one node tells, its children and curves not read yet.
struct TreeNode {
    std::string name;
    NukeTransform transform;
    std::map<std::string, AnimatedNumber> attributes;
    std::vector<std::string_view> groups;
    std::vector<std::string_view> children;
};

class TreeReader {
public:
    TreeReader(ImportJob& job, NukeFormat format) : job_(job), format_(format) {}
    void Read(std::string_view text);

private:
    using Entry = void (TreeReader::*)(NukeList& list, TreeNode& node);
    struct Keyword {
        const char* name;
        Entry read;
    };
    static const Keyword keywords[];

    NukeItem Next(NukeList& list, const char* what);
    double Value(NukeList& list, const char* what);
    int Count(NukeList& list, int most, const char* what);
    AnimatedNumber ReadNumber(NukeList& list);
    AnimatedNumber ReadPlainKeys(NukeList& list);
    AnimatedNumber ReadCurveKeys(NukeList& list);
    void ReadBlock(std::string_view text, TreeNode& node, int depth);
    void ReadNode(std::string_view text, NukeChain chain, bool isVisible, int depth);
    void ReadGroup(const TreeNode& node, std::string_view text, const NukeChain& chain,
                   bool isVisible);
    void ReadCubicCurve(std::string_view text, NukeShape& shape, NukeCurve& curve);
    void ReadPoints(NukeList& list, int count, int dimensions, NukeCurve& curve);

    void OnName(NukeList& list, TreeNode& node);
    void OnTransform(NukeList& list, TreeNode& node);
    void OnAttributes(NukeList& list, TreeNode& node);
    void OnGroup(NukeList& list, TreeNode& node);
    void OnNode(NukeList& list, TreeNode& node);
    void OnType(NukeList& list, TreeNode& node);
    void OnNumber(NukeList& list, TreeNode&) { Value(list, "a number"); } // of no use here

    ImportJob& job_;
    NukeFormat format_;
    std::optional<ImageFrame> image_;
};

const TreeReader::Keyword TreeReader::keywords[] = {
    {"NodeName:", &TreeReader::OnName},
    {"Transform:", &TreeReader::OnTransform},
    {"NumOfAttributes:", &TreeReader::OnAttributes},
    {"CurveGroup:", &TreeReader::OnGroup},
    {"Node:", &TreeReader::OnNode},
    {"NodeType:", &TreeReader::OnType},
    {"Version:", &TreeReader::OnNumber},
    {"Flag:", &TreeReader::OnNumber},
    {"RootNode:", &TreeReader::OnNumber},
    {"NumOfChildren:", &TreeReader::OnNumber},
};

NukeItem TreeReader::Next(NukeList& list, const char* what)
{
    NukeItem item;
    if (!list.Next(item))
        throw ImportFailure{job_.LineOf(list.Place()), std::string(what) + " is missing"};
    return item;
}

double TreeReader::Value(NukeList& list, const char* what)
{
    const NukeItem item = Next(list, what);
    const std::optional<double> value = item.isList ? std::nullopt : ToNukeNumber(item.text);
    constexpr double largest = 1e9; // far beyond any image
    if (!value || std::abs(*value) > largest) {
        throw ImportFailure{job_.LineOf(item.text.data()),
                            Quoted(item.text) + " stands for " + what};
    }
    return *value;
}

int TreeReader::Count(NukeList& list, int most, const char* what)
{
    const char* place = list.Place();
    const double value = Value(list, what);
    if (value < 0.0 || value > most || value != int(value))
        throw ImportFailure{job_.LineOf(place), std::string(what) + " is not understood"};
    return int(value);
}

/// "S 0 v", "S 1 t v", or "S n t v ... t v last".
AnimatedNumber TreeReader::ReadPlainKeys(NukeList& list)
{
    const int count = Count(list, maxKeys, "the number of keys");
    if (count == 0)
        return AnimatedNumber(Value(list, "a value"));
    std::vector<Key> keys;
    for (int i = 0; i < count; ++i) {
        job_.CountPoints(1, 0);
        const double time = Value(list, "the time of a key");
        keys.push_back({time, Value(list, "the value of a key"), 0.0, 0.0, Interpolation::Linear});
    }
    if (count > 1)
        Value(list, "a value");
    return AnimatedNumber(std::move(keys));
}

/// "L", eight settings, then n keys and a value.
AnimatedNumber TreeReader::ReadCurveKeys(NukeList& list)
{
    constexpr int settings = 8;
    for (int i = 0; i < settings; ++i)
        Next(list, "a setting of a curve");
    const int count = Count(list, maxKeys, "the number of keys");
    std::vector<Key> keys;
    for (int i = 0; i < count; ++i) {
        job_.CountPoints(1, 0);
        Next(list, "the name of a key");
        Key key;
        key.time = Value(list, "the time of a key");
        key.value = Value(list, "the value of a key");
        std::array<double, 5> slopes{};
        for (double& slope : slopes)
            slope = Value(list, "a slope of a key");
        Value(list, "the flag of a key");
        SetNukeSlopes(job_, key, slopes);
        keys.push_back(key);
    }
    const double last = Value(list, "a value");
    return keys.empty() ? AnimatedNumber(last) : MadeNukeNumber(std::move(keys));
}

AnimatedNumber TreeReader::ReadNumber(NukeList& list)
{
    const NukeItem kind = Next(list, "a value");
    if (!kind.isList && kind.text == "S")
        return ReadPlainKeys(list);
    if (!kind.isList && kind.text == "L")
        return ReadCurveKeys(list);
    throw ImportFailure{job_.LineOf(kind.text.data()), Quoted(kind.text) + " stands for a value"};
}

void TreeReader::OnName(NukeList& list, TreeNode& node)
{
    node.name = NukeText(Next(list, "the name of a node"));
}

/// Two orders, then Tx Ty Rz Sx Sy Skew PivotX PivotY.
void TreeReader::OnTransform(NukeList& list, TreeNode& node)
{
    const char* place = list.Place();
    Value(list, "the order of a transform");
    Value(list, "the order of a rotation");
    NukeTransform& transform = node.transform;
    AnimatedNumber skew;
    for (AnimatedNumber* number :
         {&transform.move[0], &transform.move[1], &transform.turn, &transform.scale[0],
          &transform.scale[1], &skew, &transform.pivot[0], &transform.pivot[1]})
        *number = ReadNumber(list);
    if (!skew.Is(0.0))
        job_.LeaveAside(job_.LineOf(place), "skews are not taken");
}

void TreeReader::OnAttributes(NukeList& list, TreeNode& node)
{
    constexpr int most = 1000;
    const int count = Count(list, most, "the number of attributes");
    for (int i = 0; i < count; ++i) {
        const NukeItem name = Next(list, "the name of an attribute");
        node.attributes[std::string(name.text)] = ReadNumber(list);
    }
}

void TreeReader::OnGroup(NukeList& list, TreeNode& node)
{
    Next(list, "the name of a group");
    node.groups.push_back(Next(list, "a group").text);
}

void TreeReader::OnNode(NukeList& list, TreeNode& node)
{
    node.children.push_back(Next(list, "a node").text);
}

void TreeReader::OnType(NukeList& list, TreeNode& node)
{
    constexpr double stroke = 5.0;
    const char* place = list.Place();
    if (Value(list, "the type of a node") == stroke)
        job_.LeaveAside(job_.LineOf(place), "the stroke " + Quoted(node.name) + " is not read");
}

void TreeReader::ReadBlock(std::string_view text, TreeNode& node, int depth)
{
    if (depth > maxBlocks)
        throw ImportFailure{job_.LineOf(text.data()), "its blocks are nested too deeply"};
    NukeList list(job_, text);
    NukeItem item;
    while (list.Next(item)) {
        if (item.isList) {
            ReadBlock(item.text, node, depth + 1);
            continue;
        }
        const auto found =
            std::find_if(std::begin(keywords), std::end(keywords),
                         [&](const Keyword& keyword) { return item.text == keyword.name; });
        if (found != std::end(keywords))
            (this->*found->read)(list, node);
        else if (item.text.ends_with(':') && !item.isQuoted)
            job_.LeaveAside(job_.LineOf(item.text.data()),
                            Quoted(item.text) + " is not understood");
    }
}

/// A flag, a value for each dimension, and attributes that are of no use here.
void TreeReader::ReadPoints(NukeList& list, int count, int dimensions, NukeCurve& curve)
{
    constexpr int mostAttributes = 100;
    for (int i = 0; i < count; ++i) {
        job_.CountPoints(1, 0);
        Value(list, "the flag of a point");
        NukePlace place;
        for (int axis = 0; axis < dimensions; ++axis) {
            AnimatedNumber number = ReadNumber(list);
            if (axis < 2)
                place[std::size_t(axis)] = std::move(number);
        }
        curve.places.push_back(std::move(place));
        const int attributes = Count(list, mostAttributes, "the number of a point's attributes");
        for (int k = 0; k < attributes; ++k) {
            Next(list, "the name of a point's attribute");
            ReadNumber(list);
        }
    }
}

void TreeReader::ReadCubicCurve(std::string_view text, NukeShape& shape, NukeCurve& curve)
{
    constexpr double bezier = 0.0;
    constexpr double bspline = 2.0;
    NukeList list(job_, text);
    NukeItem item;
    int dimensions = 2;
    while (list.Next(item)) {
        if (item.text == "Type:") {
            const double type = Value(list, "the type of a curve");
            if (type != bezier && type != bspline) {
                throw ImportFailure{job_.LineOf(item.text.data()),
                                    "its curve is neither bezier nor bspline"};
            }
            shape.isBSpline = type == bspline;
        } else if (item.text == "Flag:") {
            curve.flags = u32(std::clamp(Value(list, "the flag of a curve"), 0.0, 1e9));
        } else if (item.text == "Dim:") {
            dimensions = Count(list, 4, "the number of dimensions");
        } else if (item.text == "NumOfPoints:") {
            constexpr int most = 3 * maxImportedPoints;
            const int count = Count(list, most, "the number of points");
            ReadPoints(list, count, dimensions, curve);
        } else {
            job_.LeaveAside(job_.LineOf(item.text.data()),
                            Quoted(item.text) + " is not understood");
        }
    }
}

/// The first curve is the shape, the second its feather.
void TreeReader::ReadGroup(const TreeNode& node, std::string_view text, const NukeChain& chain,
                           bool isVisible)
{
    NukeShape shape;
    shape.name = node.name;
    shape.line = job_.LineOf(text.data());
    shape.attributes = node.attributes;
    TreeNode own;
    NukeList list(job_, text);
    NukeItem item;
    int curves = 0;
    while (list.Next(item)) {
        if (item.text == "Transform:") {
            OnTransform(list, own);
        } else if (item.text == "Flag:") {
            shape.flags = u32(std::clamp(Value(list, "the flag of a group"), 0.0, 1e9));
        } else if (item.text == "NumOfCubicCurves:") {
            Value(list, "the number of curves");
        } else if (item.text == "NumOfAttributes:") {
            OnAttributes(list, own);
        } else if (item.text == "CubicCurve:") {
            Next(list, "the name of a curve");
            const NukeItem block = Next(list, "a curve");
            if (++curves <= 2)
                ReadCubicCurve(block.text, shape, curves == 1 ? shape.curve : shape.feather);
        } else if (!item.isList) {
            job_.LeaveAside(job_.LineOf(item.text.data()),
                            Quoted(item.text) + " is not understood");
        }
    }
    shape.transform = std::move(own.transform);
    shape.attributes.merge(own.attributes);
    if (!image_)
        image_ = job_.Image(format_.width, format_.height);
    TakeNukeShape(job_, *image_, shape, chain, isVisible);
}

void TreeReader::ReadNode(std::string_view text, NukeChain chain, bool isVisible, int depth)
{
    if (depth > maxNodes)
        throw ImportFailure{job_.LineOf(text.data()), "its nodes are nested too deeply", true};
    TreeNode node;
    try {
        ReadBlock(text, node, 0);
    } catch (const ImportFailure& failure) {
        if (failure.isFatal)
            throw;
        job_.Drop(failure.line, Quoted(node.name) + " and what is in it: " + failure.reason);
        return;
    }
    chain.push_back(&node.transform);
    const auto visible = node.attributes.find("vis");
    isVisible = isVisible && (visible == node.attributes.end() || !visible->second.Is(0.0));
    if (node.groups.empty()) // else they are those of the shape
        NoteNukeLayer(job_, job_.LineOf(text.data()), node.name, node.attributes);
    for (const std::string_view group : node.groups) {
        try {
            ReadGroup(node, group, chain, isVisible);
        } catch (const ImportFailure& failure) {
            if (failure.isFatal)
                throw;
            job_.Drop(failure.line, Quoted(node.name) + ": " + failure.reason);
        }
    }
    for (const std::string_view child : node.children)
        ReadNode(child, chain, isVisible, depth + 1);
}

void TreeReader::Read(std::string_view text)
{
    NukeList list(job_, text);
    NukeItem item;
    while (list.Next(item)) {
        if (item.isList)
            ReadNode(item.text, {}, true, 0);
    }
}

} // namespace

void ReadNukeAnimTree(ImportJob& job, std::string_view curves, NukeFormat format)
{
    TreeReader(job, format).Read(curves);
}

} // namespace Marlox
