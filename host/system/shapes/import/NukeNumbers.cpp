#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <cmath>

namespace Marlox {

using Key = AnimatedNumber::Key;

void NukeNumbers::Misunderstood(std::string_view text)
{
    throw ImportFailure{job_.LineOf(text.data()), Quoted(text) + " is not understood"};
}

double NukeNumbers::Value(std::string_view word)
{
    const std::optional<double> value = ToNukeNumber(word);
    constexpr double largest = 1e9; // far beyond any image
    if (!value || std::abs(*value) > largest)
        throw ImportFailure{job_.LineOf(word.data()), Quoted(word) + " is no number"};
    return *value;
}

/// "v -", "v ls lw rs rw kind", and the same behind a time unless that is given.
AnimatedNumber::Key NukeNumbers::ReadKey(std::string_view text, const double* time)
{
    std::vector<double> numbers;
    NukeList list(job_, text);
    NukeItem item;
    constexpr std::size_t most = 8;
    while (list.Next(item) && numbers.size() < most) {
        if (item.isList)
            Misunderstood(text);
        if (item.text != "-")
            numbers.push_back(Value(item.text));
    }
    const std::size_t first = time ? 0 : 1;
    if (numbers.size() <= first)
        Misunderstood(text);
    Key key{time ? *time : numbers[0], numbers[first], 0.0, 0.0, Interpolation::Smooth};
    SetNukeSlopes(job_, key, std::span(numbers).subspan(first + 1));
    return key;
}

/// Takes "x N {key}" apart: how often it is there, and the key in `item`.
double NukeNumbers::TakeRepeat(NukeItem& item)
{
    const std::string_view text = item.text;
    NukeList list(job_, text);
    if (!list.Next(item) || item.isList || item.text != "x") {
        item.text = text;
        item.isList = true;
        return 1.0;
    }
    if (!list.Next(item))
        Misunderstood(text);
    const double repeat = Value(item.text);
    if (!list.Next(item) || !item.isList)
        Misunderstood(text);
    return repeat;
}

/// A list of keys, some of them "{x N {key}}": the key N times.
AnimatedNumber NukeNumbers::ReadKeys(std::string_view text, const std::vector<double>* times)
{
    std::vector<Key> keys;
    NukeList list(job_, text);
    NukeItem item;
    while (list.Next(item)) {
        if (!item.isList)
            Misunderstood(text);
        const double repeat = TakeRepeat(item);
        const double most = times ? double(times->size() - keys.size()) : 1.0;
        if (!(repeat >= 1.0) || repeat > most)
            Misunderstood(text);
        job_.CountPoints(1 + std::size_t(repeat) / 3, job_.LineOf(text.data()));
        for (int i = 0; i < int(repeat); ++i)
            keys.push_back(ReadKey(item.text, times ? &(*times)[keys.size()] : nullptr));
    }
    if (times && keys.size() == 1 && times->size() > 1)
        return AnimatedNumber(keys.front().value);
    if (keys.empty() || (times && keys.size() != times->size()))
        throw ImportFailure{job_.LineOf(text.data()),
                            "a curve has not as many keys as there are key times"};
    return MadeNukeNumber(std::move(keys));
}

/// A number, a list of keys, or an expression with what stands for it. `times` are the keys' own if
/// they do not tell them.
AnimatedNumber NukeNumbers::Read(const NukeItem& item, const std::vector<double>* times)
{
    if (!item.isList)
        return AnimatedNumber(Value(item.text));
    NukeList list(job_, item.text);
    NukeItem first;
    if (!list.Next(first))
        return AnimatedNumber();
    if (first.isList)
        return ReadKeys(item.text, times);
    NukeItem second;
    const bool isOnly = !list.Next(second);
    if (!first.text.starts_with('='))
        return isOnly ? AnimatedNumber(Value(first.text))
                      : MadeNukeNumber({ReadKey(item.text, times ? times->data() : nullptr)});
    if (isOnly)
        Misunderstood(item.text);
    job_.LeaveAside(job_.LineOf(item.text.data()),
                    "an expression is replaced by the value beside it");
    while (list.Next(second)) // the words of the expression
        continue;
    if (second.isList && NukeFirstWord(job_, second.text).starts_with('='))
        Misunderstood(item.text);
    return Read(second, times);
}

std::vector<double> NukeNumbers::Times(const NukeItem& item)
{
    std::vector<double> times;
    if (!item.isList) {
        times.push_back(Value(item.text));
        return times;
    }
    for (const NukeItem& time : NukeItems(job_, item.text))
        times.push_back(Value(time.text));
    job_.CountPoints(times.size() / 10, job_.LineOf(item.text.data()));
    return times;
}

} // namespace Marlox
