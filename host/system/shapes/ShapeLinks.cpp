#include "system/shapes/ShapeLinks.h"

#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <map>

namespace Marlox {

namespace {

/// Finds where linked points are at one time. Points, not shapes, are kept from going round: two
/// shapes may well have points that follow points of each other.
class Resolver {
public:
    explicit Resolver(double time) : time_(time) {}

    void Place(const Input& input, PolyLine& shape)
    {
        for (const PointLink& link : std::vector(shape.Links())) {
            path_.assign(1, {&input, link.point});
            looped_ = false;
            const auto place = LinkedPlace(input, link);
            PolyPoint* const point = place ? shape.GetPoint(shape.GetIndex(link.point)) : nullptr;
            if (!point)
                continue;
            point->x = place->x;
            point->y = place->y;
        }
    }

    static Input* InputOf(const Input& input, const PointLink& link)
    {
        const MxID id(link.input.c_str());
        if (!link.Follows() || link.tool.empty())
            return input.Owner().FindInput(id);
        const MarloxDoc* document = input.GetDoc();
        const Operator* tool =
            document ? document->FindTool(QString::fromStdString(link.tool)) : nullptr;
        return tool ? tool->FindInput(id) : nullptr;
    }

private:
    const PolyLine* ShapeAt(const Input& input)
    {
        const auto [entry, isNew] = shapes_.try_emplace(&input);
        if (isNew)
            entry->second = ShapeOf(input, time_);
        return entry->second.Get();
    }

    ShapePlacement PlacementOf(const Input& input) const
    {
        return input.Owner().PlacementOf(input, time_);
    }

    /// In the coordinates of the input's own shape, as places of points are.
    std::optional<ShapePlace> LinkedPlace(const Input& input, const PointLink& link)
    {
        const Input* other = InputOf(input, link);
        if (!other)
            return {};
        if (link.Follows()) {
            const std::optional<ShapePlace> place = PlaceOf(*other, link.target);
            const ShapePlacement from = PlacementOf(*other);
            const ShapePlacement to = PlacementOf(input);
            return place && !(from == to) ? to.In(from.Out(*place)) : place;
        }
        const Ref<Parameter> value = other->GetValue(time_);
        const auto* point = dynamic_cast<const Point*>(value.Get());
        return point ? std::optional(ShapePlace(point->X(), point->Y())) : std::nullopt;
    }

    std::optional<ShapePlace> PlaceOf(const Input& input, u32 id)
    {
        const std::pair<const Input*, u32> here(&input, id);
        if (std::find(path_.begin(), path_.end(), here) != path_.end()) {
            looped_ = true;
            return {};
        }
        const PolyLine* const shape = ShapeAt(input);
        const PolyPoint* const point = shape ? shape->GetPoint(shape->GetIndex(id)) : nullptr;
        if (!point)
            return {};
        std::optional<ShapePlace> place;
        if (const PointLink* link = shape->LinkOf(id)) {
            path_.push_back(here);
            place = LinkedPlace(input, *link);
            path_.pop_back();
        }
        if (looped_)
            return {};
        return place ? place : point->Place();
    }

    double time_;
    std::map<const Input*, Ref<PolyLine>> shapes_;
    std::vector<std::pair<const Input*, u32>> path_; // points that wait for one another's places
    bool looped_ = false;
};

const PolyLine* shapeIn(const Ref<Parameter>& value)
{
    return dynamic_cast<const PolyLine*>(value.Get());
}

/// Replaces those shapes of a state for which `changed` gives another one.
template <class Changed>
bool replaceShapes(Input::State& state, Changed changed)
{
    bool any = false;
    const auto replace = [&](const Ref<Parameter>& value, double time) -> Ref<Parameter> {
        const PolyLine* const shape = shapeIn(value);
        const Ref<PolyLine> other = shape ? changed(*shape, time) : Ref<PolyLine>();
        any = any || other;
        return other ? Ref<Parameter>(other) : value;
    };
    state.value = replace(state.value, TimeNone);
    const Animation before = state.animation;
    for (const auto& [time, key] : before.Keys())
        state.animation.SetKey(time, replace(key.value, time));
    return any;
}

bool follows(const PointLink& link, const std::string& tool)
{
    return link.Follows() && link.tool == tool;
}

bool hasFollower(const PolyLine& shape, const std::string& tool)
{
    return std::any_of(shape.Links().begin(), shape.Links().end(),
                       [&tool](const PointLink& link) { return follows(link, tool); });
}

/// Points of the input's shapes whose links `are` of the kind stay where they are and follow no
/// more.
template <class Are>
void release(const MarloxDoc& document, Input& input, Are are)
{
    Input::State state = input.GetState();
    const auto released = [&](const PolyLine& shape, double time) -> Ref<PolyLine> {
        if (std::none_of(shape.Links().begin(), shape.Links().end(), are))
            return {};
        const Ref<PolyLine> copy = shape.CopyShape();
        PlaceLinkedPoints(input, time == TimeNone ? document.CurrentTime() : time, *copy);
        for (const PointLink& link : shape.Links()) {
            if (are(link))
                copy->RemoveLink(link.point);
        }
        return copy;
    };
    if (shapeIn(state.value) && replaceShapes(state, released))
        input.ChangeTo(std::move(state), Input::EvenIfLocked);
}

} // namespace

Ref<PolyLine> ResolvedShape(const Input& shape, double time)
{
    const Ref<PolyLine> value = ShapeOf(shape, time);
    if (!value || value->Links().empty())
        return value;
    const Ref<PolyLine> resolved = value->CopyShape();
    PlaceLinkedPoints(shape, time, *resolved);
    return resolved;
}

void PlaceLinkedPoints(const Input& shape, double time, PolyLine& edited)
{
    Resolver(time).Place(shape, edited);
}

bool UpdatePublishedPointInputs(Input& shape, double time)
{
    const Ref<PolyLine> value = ShapeOf(shape, time);
    bool taken = true;
    for (const PointLink& link : value ? value->Links() : std::vector<PointLink>()) {
        const PolyPoint* const point = value->GetPoint(value->GetIndex(link.point));
        if (link.Follows() || !point)
            continue;
        Input* const input = Resolver::InputOf(shape, link);
        if (!input || input->HasExpression())
            continue;
        const Point next(point->x, point->y);
        if (!input->GetValue(time)->IsEqual(next)) {
            if (shape.IsAnimated() && !input->IsAnimated())
                taken = input->AddKey(time) && taken;
            taken = input->SetValue(next, time) && taken;
        }
    }
    return taken;
}

std::optional<FollowedPoint> FindExternFollowingPoint(const Input& shape, const PolyLine& value,
                                                      const KeyPoint& point)
{
    const PointLink* const link = value.LinkAt(point.index);
    if (!link || !link->Follows())
        return {};
    FollowedPoint followed;
    followed.input = Resolver::InputOf(shape, *link);
    const Ref<PolyLine> other =
        followed.input ? ShapeOf(*followed.input, point.time) : Ref<PolyLine>();
    followed.index = other ? other->GetIndex(link->target) : -1;
    if (followed.index < 0)
        return {};
    const Animation& keys = followed.input->GetAnimation();
    if (keys.HasKeyAt(point.time))
        followed.time = point.time;
    else if (const auto before = keys.KeyBefore(point.time))
        followed.time = *before;
    else if (const auto after = keys.KeyAfter(point.time))
        followed.time = *after;
    return followed;
}

Input* PublishedInputOf(const Input& shape, const PolyLine& value, int index)
{
    const PointLink* const link = value.LinkAt(index);
    return link && !link->Follows() ? Resolver::InputOf(shape, *link) : nullptr;
}

bool HasLinks(const Input::State& state)
{
    const PolyLine* const plain = shapeIn(state.value);
    if (!plain)
        return false;
    const auto& keys = state.animation.Keys();
    return !plain->Links().empty() || std::any_of(keys.begin(), keys.end(), [](const auto& key) {
        const PolyLine* const shape = shapeIn(key.second.value);
        return shape && !shape->Links().empty();
    });
}

void RenameToolInLinks(Input::State& state, const std::string& from, const std::string& to)
{
    if (!shapeIn(state.value))
        return;
    replaceShapes(state, [&](const PolyLine& shape, double) -> Ref<PolyLine> {
        if (!hasFollower(shape, from))
            return {};
        const Ref<PolyLine> renamed = shape.CopyShape();
        for (PointLink link : shape.Links()) {
            if (follows(link, from)) {
                link.tool = to;
                renamed->SetLink(link);
            }
        }
        return renamed;
    });
}

void ReleaseFollowers(const MarloxDoc& document, const Operator& tool)
{
    const std::string name = tool.GetName().toStdString();
    for (const Ref<Operator>& other : document.Tools()) {
        for (const Ref<Input>& input : other->Inputs()) {
            if (other.Get() != &tool)
                release(document, *input,
                        [&](const PointLink& link) { return follows(link, name); });
        }
    }
}

void ReleaseFollowers(const Input& shape, const std::vector<u32>& points)
{
    const MarloxDoc* const document = shape.GetDoc();
    const std::string name = shape.Owner().GetName().toStdString();
    for (const Ref<Operator>& tool : document ? document->Tools() : std::vector<Ref<Operator>>()) {
        const bool isOwn = tool.Get() == &shape.Owner();
        for (const Ref<Input>& input : tool->Inputs()) {
            release(*document, *input, [&](const PointLink& link) {
                const bool isFollower = follows(link, name) || (isOwn && follows(link, {}));
                return isFollower && MxID(link.input.c_str()) == shape.GetID() &&
                       std::find(points.begin(), points.end(), link.target) != points.end();
            });
        }
    }
}

void ReleaseFollowersOfLost(const Input& shape, const Input::State& next)
{
    const Ref<PolyLine> now = ShapeOf(shape, shape.Owner().CurrentTime());
    if (!now || now->Links().empty())
        return;
    const auto& keys = next.animation.Keys();
    const PolyLine* const then = shapeIn(keys.empty() ? next.value : keys.begin()->second.value);
    std::vector<u32> lost;
    for (const PointLink& link : now->Links()) {
        const PointLink* const kept = then ? then->LinkOf(link.point) : nullptr;
        if (!link.Follows() && (!kept || kept->Follows()))
            lost.push_back(link.point);
    }
    if (!lost.empty())
        ReleaseFollowers(shape, lost);
}

} // namespace Marlox
