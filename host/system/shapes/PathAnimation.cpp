#include "system/shapes/PathAnimation.h"

#include "system/document/MarloxDoc.h"
#include "system/evaluation/Renderer.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double mostFrames = 1'000'000.0; // of one conversion

std::vector<PathKey> keysOf(const Input& point, const MarloxDoc& document)
{
    const auto placeOf = [](const Parameter* value) {
        const auto* place = dynamic_cast<const Point*>(value);
        return place ? ShapePlace(place->X(), place->Y()) : ShapePlace(0.5, 0.5);
    };
    std::vector<PathKey> keys;
    for (const auto& [time, key] : point.GetAnimation().Keys())
        keys.push_back({time, placeOf(key.value.Get()), key.interpolation});
    if (keys.empty())
        keys.push_back(
            {document.FirstFrame(), placeOf(point.GetValue(document.CurrentTime()).Get())});
    return keys;
}

/// The name as expressions may have it, with "_" for what no name in a script can have.
std::string scriptName(const Operator& tool)
{
    QString name = tool.GetName();
    for (QChar& c : name) {
        const bool plain = c.unicode() < 0x80 && (c.isLetterOrNumber() || c == '_');
        c = plain ? c : QChar('_');
    }
    return name.toStdString();
}

std::vector<Input*> readersOf(const Operator& path)
{
    const std::string expressions[] = {ExpressionFor(path, "Position"),
                                       scriptName(path) + ".Position"};
    std::vector<Input*> readers;
    for (const Ref<Operator>& tool : path.GetDoc()->Tools()) {
        for (const Ref<Input>& input : tool->Inputs()) {
            const bool reads = std::find(std::begin(expressions), std::end(expressions),
                                         input->GetExpression()) != std::end(expressions);
            if (reads && input->GetDataType() == MxID(CLSID_DataType_Point))
                readers.push_back(input.Get());
        }
    }
    return readers;
}

/// The frames at which the keys of a converted path stand.
std::vector<double> framesOf(const Operator& path)
{
    double first = HUGE_VAL;
    double last = -HUGE_VAL;
    for (const Ref<Input>& input : path.Inputs()) {
        for (const auto& [time, key] : input->GetAnimation().Keys()) {
            first = std::min(first, time);
            last = std::max(last, time);
        }
    }
    if (!(first <= last))
        return {path.CurrentTime()};
    std::vector<double> frames{first};
    for (double frame = std::floor(first) + 1.0; frame < last && double(frames.size()) < mostFrames;
         frame += 1.0)
        frames.push_back(frame);
    if (last > first)
        frames.push_back(last);
    return frames;
}

} // namespace

std::string ExpressionFor(const Operator& tool, const char* input)
{
    const std::string name = tool.GetName().toStdString();
    const bool startsPlain = !name.empty() && !(name[0] >= '0' && name[0] <= '9');
    if (startsPlain && name == scriptName(tool))
        return name + "." + input;
    std::string quoted;
    for (const char c : name) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return "tool(\"" + quoted + "\")." + input;
}

Operator* AddModifier(const char* toolClass, const Operator& before, QString* error)
{
    MarloxDoc* const document = before.GetDoc();
    return document ? document->AddTool(toolClass, document->IndexOf(before), error) : nullptr;
}

Operator* AnimateWithPath(Input& point, QString* error)
{
    MarloxDoc* const document = point.GetDoc();
    const bool takes =
        document && point.IsChangeable() && point.GetDataType() == MxID(CLSID_DataType_Point);
    if (!takes) {
        if (error)
            *error = MarloxDoc::tr("%1 can't be animated with a path.").arg(point.GetName());
        return nullptr;
    }
    document->StartUndo("Animate with Path");
    Operator* const tool = AddModifier(CLSID_Tool_Path, point.Owner(), error);
    auto* const path = dynamic_cast<PathModifier*>(tool);
    bool done = path != nullptr;
    if (done) {
        if (const Ref<Image> picture = document->GetRenderer().LastResult().image)
            path->TakeAspect(picture->GetFormat());
        const std::vector<PathKey> keys = keysOf(point, *document);
        done = SetPathKeys(*path, keys, PathForm::Smooth);
        if (done && keys.size() == 1) {
            Animation along;
            along.SetKey(document->FirstFrame(), MakeRef<Number>(0.0), Interpolation::Linear);
            along.SetKey(document->LastFrame(), MakeRef<Number>(1.0), Interpolation::Linear);
            path->FindInput("Displacement")->SetAnimation(along);
        }
        done = done && point.SetExpression(ExpressionFor(*path, "Position"));
    }
    document->EndUndo(done);
    return done ? tool : nullptr;
}

bool MovesPoints(const Operator& path)
{
    return path.GetDoc() && path.FindInput("Position") && !readersOf(path).empty();
}

Operator* PathOf(const Input& point)
{
    const MarloxDoc* const document = point.GetDoc();
    if (!document || !point.HasExpression())
        return nullptr;
    for (const Ref<Operator>& tool : document->Tools()) {
        if (dynamic_cast<PathModifier*>(tool.Get()) &&
            ExpressionFor(*tool, "Position") == point.GetExpression())
            return tool.Get();
    }
    return nullptr;
}

bool IsMentioned(const Operator& tool, const Input* except)
{
    const std::string names[] = {tool.GetName().toStdString(), scriptName(tool)};
    const auto mentions = [&](const Ref<Input>& input) {
        const std::string& expression = input->GetExpression();
        return input.Get() != except &&
               std::any_of(std::begin(names), std::end(names), [&](const std::string& name) {
                   return expression.find(name) != std::string::npos;
               });
    };
    const auto& tools = tool.GetDoc()->Tools();
    return std::any_of(tools.begin(), tools.end(), [&](const Ref<Operator>& each) {
        return std::any_of(each->Inputs().begin(), each->Inputs().end(), mentions);
    });
}

bool ConvertToXYPath(Operator& path)
{
    MarloxDoc* const document = path.GetDoc();
    Input* const position = path.FindInput("Position");
    if (!document || !position || path.IsLocked())
        return false;
    const std::vector<Input*> readers = readersOf(path);
    document->StartUndo("Convert to XYPath");
    bool any = false;
    Animation keys;
    for (const double frame : readers.empty() ? std::vector<double>() : framesOf(path))
        keys.SetKey(frame, position->GetValue(frame));
    for (Input* const reader : readers) {
        Input::State state = reader->GetState();
        state.expression.clear();
        state.animation = keys;
        any = reader->ChangeTo(std::move(state)) || any;
    }
    if (any && !IsMentioned(path))
        document->RemoveTool(path);
    document->EndUndo(any);
    return any;
}

} // namespace Marlox
