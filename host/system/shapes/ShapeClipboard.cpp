#include "system/shapes/ShapeClipboard.h"

#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeLinks.h"
#include "system/shapes/ShapePublish.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

using Points = std::vector<PolyPoint>;

const PolyLine* shapeIn(const Ref<Parameter>& value)
{
    return dynamic_cast<const PolyLine*>(value.Get());
}

Ref<PolyLine> withoutLinks(const PolyLine& shape)
{
    const Ref<PolyLine> copy = shape.CopyShape();
    for (const PointLink& link : shape.Links())
        copy->RemoveLink(link.point);
    return copy;
}

/// The shapes of an input over time, each as `made` makes it of the resolved one.
template <class Made>
std::optional<ShapeClip> copyOf(const Input& input, ShapeClip::Kind kind, Made made)
{
    if (!ShapeOf(input, input.Owner().CurrentTime()))
        return {};
    ShapeClip clip{kind, made(*ResolvedShape(input, input.Owner().CurrentTime())), {}};
    if (!input.HasExpression()) {
        for (const auto& [time, key] : input.GetAnimation().Keys())
            clip.animation.SetKey(time, made(*ResolvedShape(input, time)), key.interpolation);
    }
    return clip;
}

/// Neighbours from `first` on, going over the end of a closed shape.
Points segmentOf(const PolyLine& shape, int first, int length)
{
    Points points;
    for (int i = 0; i < length; ++i)
        points.push_back(*shape.GetPoint((first + i) % shape.GetCount()));
    return points;
}

std::optional<ShapeClip> copyKeys(const Input& point, const SelMask& mask)
{
    ShapeClip clip{ShapeClip::Kind::XYPath, point.GetValue(point.Owner().CurrentTime()), {}};
    int index = 0;
    for (const auto& [time, key] : point.GetAnimation().Keys()) {
        if (!mask.IsAnySet() || mask.GetSetItem(index))
            clip.animation.SetKey(time, key.value, key.interpolation);
        ++index;
    }
    return clip;
}

ShapePlace placeOf(const Parameter& point)
{
    const auto components = point.Components();
    return {components[0], components[1]};
}

// Pasting ----------------------------------------------------------------------------------------

/// The clip's value at a time of the destination (TimeNone: the current one).
const Ref<Parameter> valueAt(const ShapeClip& clip, double time, const Input& to)
{
    if (clip.animation.IsEmpty())
        return clip.value;
    return clip.animation.Evaluate(time == TimeNone ? to.Owner().CurrentTime() : time);
}

/// A clip of a point's keys as one of path points: the curve through them.
ShapeClip asPath(const ShapeClip& clip)
{
    Points points;
    const auto add = [&points](const Parameter& value) {
        PolyPoint point;
        point.x = placeOf(value).x;
        point.y = placeOf(value).y;
        points.push_back(point);
    };
    for (const auto& [time, key] : clip.animation.Keys())
        add(*key.value);
    if (points.empty())
        add(*clip.value);
    const auto path = MakeRef<PolyLine>();
    const std::vector<u8> all(points.size(), 1);
    path->SetPoints(std::move(points));
    path->Smooth({}, all);
    return {ShapeClip::Kind::PathPoints, path, {}};
}

Ref<PolyLine> moved(const PolyLine& shape, ShapePlace offset)
{
    const Ref<PolyLine> copy = shape.CopyShape();
    Points points(shape.Points().begin(), shape.Points().end());
    for (PolyPoint& point : points) {
        point.x += offset.x;
        point.y += offset.y;
    }
    copy->SetPoints(std::move(points));
    return copy;
}

bool pasteShape(Input& to, const ShapeClip& clip, ShapePlace offset)
{
    Input::State state = to.GetState();
    state.value = moved(*shapeIn(clip.value), offset);
    state.animation = {};
    for (const auto& [time, key] : clip.animation.Keys())
        state.animation.SetKey(time, moved(*shapeIn(key.value), offset), key.interpolation);
    ReleaseFollowersOfLost(to, state);
    if (!to.ChangeTo(std::move(state)))
        return false;
    RemoveUnusedPublishedInputs(to.Owner());
    return true;
}

/// Ids that no key of the shape has, one for each pasted point.
u32 firstFreeID(ShapeKeys& keys)
{
    u32 highest = 0;
    keys.ForEach([&highest](PolyLine& shape, double) {
        for (const PolyPoint& point : shape.Points())
            highest = std::max(highest, point.id);
    });
    return highest + 1;
}

void replacePoints(PolyLine& shape, const SelMask& mask, const PolyLine& from)
{
    int next = 0;
    for (const int index : mask.Items()) {
        const PolyPoint& made = *from.GetPoint(next++);
        PolyPoint* const point = shape.GetPoint(index);
        if (!point || point->Has(PPF_Locked))
            continue;
        const u32 id = point->id;
        *point = made;
        point->id = id;
    }
}

void insertPoints(PolyLine& shape, int behind, const PolyLine& from, u32 firstID)
{
    Points points(shape.Points().begin(), shape.Points().end());
    Points added(from.Points().begin(), from.Points().end());
    for (PolyPoint& point : added)
        point.id = firstID++;
    const int at = behind >= 0 && behind < int(points.size()) ? behind + 1 : int(points.size());
    const bool wasEmpty = points.empty();
    points.insert(points.begin() + at, added.begin(), added.end());
    shape.SetPoints(std::move(points));
    if (wasEmpty && from.IsClosed())
        shape.Close();
}

bool pastePoints(Input& to, const SelMask& mask, const ShapeClip& clip, ShapePlace offset,
                 QString& refusal)
{
    const int count = shapeIn(clip.value)->GetCount();
    const Ref<PolyLine> present = ShapeOf(to, to.Owner().CurrentTime());
    const bool replaces = mask.IsAnySet();
    if (replaces ? mask.SetCount() != count : present->GetCount() + count > PolyLine::maxPoints) {
        refusal = RefusesCount;
        return false;
    }
    if (present->GetCount() == 0 && !to.IsAnimated())
        return pasteShape(to, clip, offset);
    ShapeKeys keys(to);
    const u32 firstID = firstFreeID(keys);
    keys.ForEach([&](PolyLine& shape, double time) {
        const Ref<PolyLine> from = moved(*shapeIn(valueAt(clip, time, to)), offset);
        if (replaces)
            replacePoints(shape, mask, *from);
        else
            insertPoints(shape, mask.Last(), *from, firstID);
    });
    return keys.Commit() &&
           (to.IsAnimated() || UpdatePublishedPointInputs(to, to.Owner().CurrentTime()));
}

bool pasteKeys(Input& to, double time, const ShapeClip& clip, ShapePlace offset)
{
    const auto at = [&offset](const Parameter& value) {
        return MakeRef<Point>(placeOf(value).x + offset.x, placeOf(value).y + offset.y);
    };
    if (clip.animation.IsEmpty())
        return to.SetValue(*at(*clip.value), time);
    Input::State state = to.GetState();
    state.expression.clear();
    for (const auto& [keyTime, key] : clip.animation.Keys())
        state.animation.SetKey(keyTime, at(*key.value), key.interpolation);
    return to.ChangeTo(std::move(state));
}

bool pastePlace(Input& to, const SelMask& mask, double time, ShapePlace place, QString& refusal)
{
    ShapeKeys keys(to);
    PolyLine* const shape = to.IsAnimated() ? keys.MakeKey(time) : keys.At(TimeNone);
    if (shape)
        PlaceLinkedPoints(to, time, *shape);
    const int last = mask.IsLastSet() ? mask.Last() : mask.First();
    const PolyPoint* const point = shape ? std::as_const(*shape).GetPoint(last) : nullptr;
    if (!point) {
        refusal = RefusesCount;
        return false;
    }
    shape->MovePoints(mask, place - point->Place());
    return keys.Commit() && UpdatePublishedPointInputs(to, time);
}

bool isPoint(const Input& input)
{
    return input.GetDataType() == MxID(CLSID_DataType_Point);
}

/// Chooses the way by what was copied and where it goes.
bool paste(Input& to, const SelMask& mask, double time, const ShapeClip& clip, ShapePlace offset,
           QString& refusal)
{
    if (clip.kind == ShapeClip::Kind::PathValue && !isPoint(to))
        return pastePlace(to, mask, time, placeOf(*clip.value) + offset, refusal);
    if (!shapeIn(clip.value) && isPoint(to))
        return pasteKeys(to, time, clip, offset);
    const auto& keys = clip.animation.Keys();
    if (clip.kind == ShapeClip::Kind::XYPath &&
        std::any_of(keys.begin(), keys.end(), [](const auto& key) {
            return key.second.interpolation != Interpolation::Smooth;
        })) {
        refusal = RefusesXYPath;
        return false;
    }
    const ShapeClip path = clip.kind == ShapeClip::Kind::XYPath ? asPath(clip) : clip;
    if (path.value->GetDataType() != to.GetDataType()) {
        refusal = RefusesPolyType;
        return false;
    }
    return path.kind == ShapeClip::Kind::Shape ? pasteShape(to, path, offset)
                                               : pastePoints(to, mask, path, offset, refusal);
}

} // namespace

std::optional<ShapeClip> CopyShape(const Input& shape)
{
    return copyOf(shape, ShapeClip::Kind::Shape,
                  [](const PolyLine& value) { return withoutLinks(value); });
}

std::optional<ShapeClip> CopyPathPoints(const Input& input, const SelMask& mask, QString& refusal)
{
    if (isPoint(input))
        return copyKeys(input, mask);
    const Ref<PolyLine> now = ShapeOf(input, input.Owner().CurrentTime());
    if (!now)
        return {};
    auto [first, length] = mask.GetSegment(now->IsClosed());
    if (!mask.IsAnySet())
        std::tie(first, length) = std::pair(0, now->GetCount());
    if (first < 0 || first >= std::max(now->GetCount(), 1)) {
        refusal = RefusesSelection;
        return {};
    }
    return copyOf(input, ShapeClip::Kind::PathPoints, [&](const PolyLine& value) {
        const Ref<PolyLine> part = PolyLine::Create(value.GetDataType());
        part->SetPoints(segmentOf(value, first, std::min(length, value.GetCount())));
        if (value.IsClosed() && length >= value.GetCount()) // nothing but all of it goes round
            part->Close();
        return part;
    });
}

std::optional<ShapeClip> CopyPathValue(const Input& input, const SelMask& mask, double time)
{
    if (isPoint(input))
        return ShapeClip{ShapeClip::Kind::PathValue, input.GetValue(time), {}};
    const Ref<PolyLine> now = ResolvedShape(input, time);
    const int last = mask.IsLastSet() ? mask.Last() : mask.First();
    const PolyPoint* const point = now ? std::as_const(*now).GetPoint(last) : nullptr;
    if (!point)
        return {};
    return ShapeClip{ShapeClip::Kind::PathValue, MakeRef<Point>(point->x, point->y), {}};
}

bool PasteClip(Input& to, const SelMask& mask, double time, const ShapeClip& clip,
               ShapePlace offset, QString& refusal)
{
    refusal.clear();
    if (!clip.value || !to.IsChangeable())
        return false;
    MarloxDoc* const document = to.GetDoc();
    if (document)
        document->StartUndo("Paste Points");
    const bool done = paste(to, mask, time, clip, offset, refusal);
    if (document)
        document->EndUndo(done);
    return done;
}

} // namespace Marlox
