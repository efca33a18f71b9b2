#include "system/shapes/ShapePublish.h"

#include "system/document/MarloxDoc.h"
#include "system/shapes/PathAnimation.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

/// An undo group, if there is a document.
class Group {
public:
    Group(const Input& input, const char* text) : document_(input.GetDoc())
    {
        if (document_)
            document_->StartUndo(text);
    }
    ~Group()
    {
        if (document_)
            document_->EndUndo(true);
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

private:
    MarloxDoc* document_;
};

double timeOf(const Input& shape, double keyTime)
{
    return keyTime == TimeNone ? shape.Owner().CurrentTime() : keyTime;
}

/// Selected points of the shape at the current time that `belongs`.
template <class Belongs>
std::vector<PolyPoint> pointsOf(const Input& shape, const SelMask& mask, Belongs belongs)
{
    std::vector<PolyPoint> points;
    const Ref<PolyLine> value = ShapeOf(shape, shape.Owner().CurrentTime());
    for (const int index : value ? mask.Items() : std::vector<int>()) {
        const PolyPoint* const point = value->GetPoint(index);
        if (point && belongs(*value, index))
            points.push_back(*point);
    }
    return points;
}

bool isPublished(const Input& shape, const PolyLine& value, int index)
{
    return PublishedInputOf(shape, value, index) != nullptr;
}

/// What the input of a point begins with: its places, with the keys of its shape.
Input::State publishedState(const Input& shape, u32 id, const Input& input)
{
    const auto placeAt = [&](double time) -> Ref<Parameter> {
        const Ref<PolyLine> value = ResolvedShape(shape, time);
        const PolyPoint* const point = std::as_const(*value).GetPoint(value->GetIndex(id));
        return point ? MakeRef<Point>(point->x, point->y) : Ref<Parameter>();
    };
    Input::State state = input.GetState();
    for (const auto& [time, key] : shape.GetAnimation().Keys()) {
        if (const Ref<Parameter> place = placeAt(time))
            state.animation.SetKey(time, place, key.interpolation);
    }
    return state;
}

/// Writes where linked points are into every key and changes the links of some.
template <class Change>
bool relink(Input& shape, const std::vector<PolyPoint>& points, ShapeKeys& keys, Change change)
{
    keys.ForEach([&](PolyLine& value, double keyTime) {
        PlaceLinkedPoints(shape, timeOf(shape, keyTime), value);
        for (const PolyPoint& point : points)
            change(value, point);
    });
    return keys.Commit();
}

int unlink(Input& shape, const std::vector<PolyPoint>& points, const std::vector<double>& times)
{
    ShapeKeys keys(shape);
    for (const double time : times)
        keys.MakeKey(time);
    const bool done = relink(shape, points, keys, [](PolyLine& value, const PolyPoint& point) {
        value.RemoveLink(point.id);
    });
    return done ? int(points.size()) : 0;
}

std::vector<double> keyTimesOf(const std::vector<Input*>& inputs)
{
    std::vector<double> times;
    for (const Input* input : inputs) {
        for (const auto& [time, key] : input->GetAnimation().Keys())
            times.push_back(time);
    }
    return times;
}

/// A published point of some other shape.
struct Candidate {
    PointLink link; // as the follower has it
    ShapePlace at;
};

std::vector<Candidate> candidatesFor(const Input& shape, double time)
{
    std::vector<Candidate> candidates;
    for (const Ref<Operator>& tool : shape.GetDoc()->Tools()) {
        for (const Ref<Input>& input : tool->Inputs()) {
            const Ref<PolyLine> value =
                input.Get() != &shape ? ResolvedShape(*input, time) : Ref<PolyLine>();
            const ShapePlacement placement = tool->PlacementOf(*input, time);
            for (int i = 0; value && i < value->GetCount(); ++i) {
                if (!isPublished(*input, *value, i))
                    continue;
                const bool isOwn = tool.Get() == &shape.Owner();
                const PolyPoint& point = *std::as_const(*value).GetPoint(i);
                candidates.push_back(
                    {{PointLink::Kind::Follows, 0, input->GetID().c_str(),
                      isOwn ? std::string() : tool->GetName().toStdString(), point.id},
                     placement.Out(point.Place())});
            }
        }
    }
    return candidates;
}

const Candidate* nearest(const std::vector<Candidate>& candidates, ShapePlace at,
                         ShapePlace tolerance)
{
    const Candidate* best = nullptr;
    double least = HUGE_VAL;
    for (const Candidate& candidate : candidates) {
        const double x = std::abs(candidate.at.x - at.x) / tolerance.x;
        const double y = std::abs(candidate.at.y - at.y) / tolerance.y;
        if (x < 1.0 && y < 1.0 && std::hypot(x, y) < least) {
            best = &candidate;
            least = std::hypot(x, y);
        }
    }
    return best;
}

} // namespace

int PublishPoints(Input& shape, const SelMask& mask)
{
    Operator& tool = shape.Owner();
    const auto points = pointsOf(shape, mask, [&shape](const PolyLine& value, int index) {
        return !isPublished(shape, value, index);
    });
    if (tool.IsLocked() || points.empty())
        return 0;
    const Group group(shape, "Publish Points");
    const Ref<PolyLine> now = ResolvedShape(shape, tool.CurrentTime());
    std::vector<std::string> inputs;
    for (const PolyPoint& point : points) {
        const PolyPoint& at = *std::as_const(*now).GetPoint(now->GetIndex(point.id));
        Input* const input = tool.AddPublishedInput({}, at.x, at.y);
        input->ChangeTo(publishedState(shape, point.id, *input));
        inputs.push_back(input->GetID().c_str());
    }
    ShapeKeys keys(shape);
    const bool done = relink(shape, points, keys, [&](PolyLine& value, const PolyPoint& point) {
        const auto index = std::size_t(&point - points.data());
        if (value.GetIndex(point.id) >= 0)
            value.SetLink({PointLink::Kind::Published, point.id, inputs[index], {}, 0});
    });
    return done ? int(points.size()) : 0;
}

std::vector<Input*> PublishedInputs(const Input& shape, const SelMask& mask)
{
    std::vector<Input*> inputs;
    const Ref<PolyLine> value = ShapeOf(shape, shape.Owner().CurrentTime());
    for (const int index : value ? mask.Items() : std::vector<int>()) {
        if (Input* const input = PublishedInputOf(shape, *value, index))
            inputs.push_back(input);
    }
    return inputs;
}

int UnpublishPoints(Input& shape, const SelMask& mask)
{
    const auto points = pointsOf(shape, mask, [&shape](const PolyLine& value, int index) {
        return isPublished(shape, value, index);
    });
    const std::vector<Input*> inputs = PublishedInputs(shape, mask);
    if (shape.Owner().IsLocked() || points.empty())
        return 0;
    const Group group(shape, "Unpublishing points");
    std::vector<u32> ids;
    for (const PolyPoint& point : points)
        ids.push_back(point.id);
    ReleaseFollowers(shape, ids);
    // Keys between those of an animated shape would bend the ways of its other points.
    const int count =
        unlink(shape, points, shape.IsAnimated() ? std::vector<double>() : keyTimesOf(inputs));
    RemoveUnusedPublishedInputs(shape.Owner());
    return count;
}

void RemoveUnusedPublishedInputs(Operator& tool)
{
    const auto isUsed = [&tool](const Input& published) {
        const auto links = [&published](const Ref<Parameter>& value) {
            const auto* shape = dynamic_cast<const PolyLine*>(value.Get());
            return shape && shape->GetPublishedPoint(published.GetID().c_str()) >= 0;
        };
        return std::any_of(tool.Inputs().begin(), tool.Inputs().end(), [&](const auto& input) {
            const auto& keys = input->GetAnimation().Keys();
            return links(input->GetState().value) ||
                   std::any_of(keys.begin(), keys.end(),
                               [&](const auto& key) { return links(key.second.value); });
        });
    };
    for (const Ref<Input>& input : std::vector(tool.Inputs())) {
        if (input->GetAttrB(IA_Published) && !isUsed(*input))
            tool.RemovePublishedInput(*input);
    }
}

int PublishToPath(Input& shape, const SelMask& mask, QString* error)
{
    if (shape.Owner().IsLocked())
        return 0;
    const Group group(shape, "Publish Points");
    PublishPoints(shape, mask);
    const std::vector<Input*> inputs = PublishedInputs(shape, mask);
    return int(std::count_if(inputs.begin(), inputs.end(), [error](Input* input) {
        return AnimateWithPath(*input, error) != nullptr;
    }));
}

int PublishToXYPath(Input& shape, const SelMask& mask)
{
    if (shape.Owner().IsLocked())
        return 0;
    const Group group(shape, "Publish Points");
    PublishPoints(shape, mask);
    const std::vector<Input*> inputs = PublishedInputs(shape, mask);
    const double time = shape.Owner().CurrentTime();
    return int(std::count_if(inputs.begin(), inputs.end(), [time](Input* input) {
        return input->IsAnimated() || input->AddKey(time);
    }));
}

int PublishToTracker(Input& shape, const SelMask& mask, QString* error)
{
    if (shape.Owner().IsLocked())
        return 0;
    const Group group(shape, "Publish Points");
    PublishPoints(shape, mask);
    int count = 0;
    for (Input* const input : PublishedInputs(shape, mask)) {
        Operator* const tracker = AddModifier(CLSID_Tool_Tracker, shape.Owner(), error);
        if (!tracker)
            break;
        Input::State state = input->GetState();
        state.expression.clear();
        if (state.animation.IsEmpty())
            state.value = input->GetValue(shape.Owner().CurrentTime());
        tracker->FindInput("PatternCenter")->ChangeTo(std::move(state));
        count += input->SetExpression(ExpressionFor(*tracker, "Position"));
    }
    return count;
}

int SetPointsToFollow(Input& shape, const SelMask& mask, double time, ShapePlace tolerance)
{
    if (!shape.GetDoc() || shape.Owner().IsLocked() || !(tolerance.x > 0.0 && tolerance.y > 0.0))
        return 0;
    const Ref<PolyLine> now = ResolvedShape(shape, time);
    const std::vector<Candidate> candidates = candidatesFor(shape, time);
    const ShapePlacement placement = shape.Owner().PlacementOf(shape, time);
    std::vector<PolyPoint> points;
    std::vector<PointLink> links;
    for (const int index : now ? mask.Items() : std::vector<int>()) {
        const PolyPoint* const point = std::as_const(*now).GetPoint(index);
        if (!point || isPublished(shape, *now, index))
            continue;
        if (const Candidate* found =
                nearest(candidates, placement.Out(point->Place()), tolerance)) {
            points.push_back(*point);
            links.push_back(found->link);
            links.back().point = point->id;
        }
    }
    if (points.empty())
        return 0;
    const Group group(shape, "Set Points to follow");
    ShapeKeys keys(shape);
    const bool done = relink(shape, points, keys, [&](PolyLine& value, const PolyPoint& point) {
        if (value.GetIndex(point.id) >= 0)
            value.SetLink(links[std::size_t(&point - points.data())]);
    });
    return done ? int(points.size()) : 0;
}

int StopFollowing(Input& shape, const SelMask& mask)
{
    const auto points = pointsOf(shape, mask, [](const PolyLine& value, int index) {
        const PointLink* const link = value.LinkAt(index);
        return link && link->Follows();
    });
    if (shape.Owner().IsLocked() || points.empty())
        return 0;
    const Group group(shape, "Set Points to follow");
    return unlink(shape, points, {});
}

} // namespace Marlox
