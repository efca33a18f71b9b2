#include "widgets/ComboModel.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

int ComboModel::PlaceOf(double number) const
{
    const double nearest = std::floor(number + 0.5);
    // NaN fails the comparison.
    return nearest >= 0.0 && nearest < double(Count()) ? int(nearest) : none;
}

int ComboModel::PlaceOf(const QString& id) const
{
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&id](const ComboEntry& entry) { return entry.id == id; });
    return found != entries_.end() ? int(found - entries_.begin()) : none;
}

int ComboModel::Stepped(int from, int steps) const
{
    if (entries_.empty())
        return none;
    if (!Has(from))
        return steps > 0 ? 0 : Count() - 1;
    return std::clamp(from + steps, 0, Count() - 1);
}

int ComboModel::Starting(const QString& letters, int from) const
{
    for (int i = 0; i < Count(); ++i) {
        const int place = (std::max(from, 0) + i) % Count();
        if (entries_[place].text.startsWith(letters, Qt::CaseInsensitive))
            return place;
    }
    return none;
}

int ComboSearch::Type(const QString& letters, long long now, const ComboModel& model, int present)
{
    const bool again = IsGoingOn(now);
    typed_ = again ? typed_ + letters : letters;
    last_ = now;
    // A search that begins leaves the present entry; one that goes on may stay there.
    int found = model.Starting(typed_, again ? present : present + 1);
    const QChar first = typed_.at(0).toCaseFolded();
    const bool oneLetter = std::all_of(typed_.cbegin(), typed_.cend(), [first](QChar letter) {
        return letter.toCaseFolded() == first;
    });
    if (found == ComboModel::none && oneLetter)
        found = model.Starting(typed_.left(1), present + 1);
    return found == ComboModel::none ? present : found;
}

} // namespace Marlox
