// Where a stroke has corners.

#include "system/shapes/FitStroke.h"

#include <algorithm>
#include <numbers>

namespace Marlox {

namespace {

/// The place on the stroke at a length; of a closed one, round and round.
class Walker {
public:
    explicit Walker(const FitStroke& stroke)
        : places_(stroke.places), closed_(stroke.closed), total_(stroke.places.back().along)
    {
    }
    /// False: the stroke does not reach as far. Lengths in ascending order are found at once.
    bool At(double along, ShapePlace& at)
    {
        if (closed_)
            along -= std::floor(along / total_) * total_;
        if (along < 0.0 || along > total_)
            return false;
        if (along < places_[next_ - 1].along)
            next_ = 1;
        while (next_ + 1 < places_.size() && places_[next_].along < along)
            ++next_;
        const FitPlace& to = places_[next_];
        const FitPlace& from = places_[next_ - 1];
        const double step = to.along - from.along;
        const double t = step > 0.0 ? std::clamp((along - from.along) / step, 0.0, 1.0) : 0.0;
        at = from.at + (to.at - from.at) * t;
        return true;
    }

private:
    const std::vector<FitPlace>& places_;
    bool closed_;
    double total_;
    std::size_t next_ = 1;
};

double AngleBetween(ShapePlace a, ShapePlace b)
{
    return std::abs(std::atan2(a.x * b.y - a.y * b.x, Dot(a, b)));
}

} // namespace

/// The angle at a place among others that lie far apart; 0: it turns no more than twice as much as
/// at the places before and after, as a bend does.
double FitStroke::SparseTurn(int place, double least) const
{
    const int count = int(places.size());
    const auto turnAt = [&](int i) {
        const int before = i > 0 ? i - 1 : closed ? i + count - 2 : -1;
        const int after = i + 1 < count ? i + 1 : closed ? 1 : -1;
        if (before < 0 || after < 0)
            return 0.0;
        const ShapePlace at = places[std::size_t(i)].at;
        return AngleBetween(at - places[std::size_t(before)].at,
                            places[std::size_t(after)].at - at);
    };
    const double turn = turnAt(place);
    return turn >= least && turn > 2.0 * std::max(turnAt(place - 1), turnAt(place + 1)) ? turn
                                                                                        : 0.0;
}

/// The place near a corner that is furthest from the line between those before and behind it.
int FitStroke::TipNear(int corner, double reach) const
{
    const int last = int(places.size()) - 1;
    const auto within = [&](int k) {
        return std::abs(places[std::size_t(k)].along - places[std::size_t(corner)].along) <= reach;
    };
    int from = corner;
    int to = corner;
    while (from > 0 && within(from - 1))
        --from;
    while (to < last && within(to + 1))
        ++to;
    const ShapePlace begin = places[std::size_t(from)].at;
    const ShapePlace chord = places[std::size_t(to)].at - begin;
    int tip = corner;
    double most = 0.0;
    for (int k = from + 1; k < to; ++k) {
        const ShapePlace by = places[std::size_t(k)].at - begin;
        const double away = std::abs(chord.x * by.y - chord.y * by.x);
        if (away > most) {
            most = away;
            tip = k;
        }
    }
    return tip;
}

/// A closed stroke begins in the middle of the longest part without corners.
void FitStroke::BeginBetween(std::vector<double>& turns)
{
    std::size_t longest = 0;
    std::size_t begin = 0;
    std::size_t run = 0;
    for (std::size_t i = 0; i < turns.size(); ++i) {
        run = turns[i] > 0.0 ? 0 : run + 1;
        if (run > longest) {
            longest = run;
            begin = i - run / 2;
        }
    }
    if (longest == turns.size())
        return;
    Rotate(int(begin));
    turns.pop_back();
    std::rotate(turns.begin(), turns.begin() + long(begin), turns.end());
    turns.push_back(turns.front());
}

void FitStroke::Rotate(int begin)
{
    places.pop_back(); // the first again
    std::rotate(places.begin(), places.begin() + begin, places.end());
    places.push_back(places.front());
    Measure();
}

/// A corner turns by as much over a short way as over twice of it; a bend turns by less.
void FitStroke::FindCorners(const FitOptions& options)
{
    const int count = int(places.size());
    if (count < 3) {
        for (int i = 0; i < count; ++i)
            corners.push_back(i);
        return;
    }
    const double reach = std::max(4.0 * options.error, 1e-3 * places.back().along);
    const double least = options.cornerAngle * std::numbers::pi / 180.0;
    Walker walkers[4] = {Walker(*this), Walker(*this), Walker(*this), Walker(*this)};
    std::vector<double> turns(places.size(), 0.0);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i + 1 < places.size() && i > 0 &&
            std::max(places[i].along - places[i - 1].along, places[i + 1].along - places[i].along) >
                reach) {
            turns[i] = SparseTurn(int(i), least);
            continue;
        }
        const auto turn = [&](int walker, double way, double& angle) {
            ShapePlace before;
            ShapePlace after;
            if (!walkers[walker].At(places[i].along - way, before) ||
                !walkers[walker + 1].At(places[i].along + way, after))
                return false;
            angle = AngleBetween(places[i].at - before, after - places[i].at);
            return true;
        };
        double near = 0.0;
        double far = 0.0;
        if (turn(0, reach, near) && near >= least &&
            (!turn(2, 2.0 * reach, far) || far < 1.5 * near))
            turns[i] = near;
    }
    if (closed)
        BeginBetween(turns);
    if (!closed)
        corners.push_back(0);
    const int end = closed ? count - 1 : count;
    for (int i = closed ? 0 : 1; i < end - int(!closed); ++i) {
        const std::size_t at = std::size_t(i);
        bool isMost = turns[at] > 0.0;
        for (int step = -1; step <= 1; step += 2) {
            for (int k = i + step; isMost && k >= 0 && k < end; k += step) {
                const std::size_t other = std::size_t(k);
                if (std::abs(places[other].along - places[at].along) > reach)
                    break;
                isMost = turns[other] < turns[at] || (turns[other] == turns[at] && k > i);
            }
        }
        if (isMost)
            corners.push_back(TipNear(i, reach));
    }
    std::sort(corners.begin(), corners.end());
    corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
    if (!closed)
        corners.push_back(count - 1);
}

/// The one that was drawn first.
void FitStroke::BeginAtCorner()
{
    const auto drawn = [this](int corner) { return places[std::size_t(corner)].first; };
    const auto first = std::min_element(corners.begin(), corners.end(),
                                        [&](int a, int b) { return drawn(a) < drawn(b); });
    const int begin = *first;
    const int count = int(places.size()) - 1;
    std::rotate(corners.begin(), first, corners.end());
    for (int& corner : corners)
        corner = (corner - begin + count) % count;
    corners.push_back(count);
    Rotate(begin);
}

} // namespace Marlox
