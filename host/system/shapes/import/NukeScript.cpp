#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace Marlox {

namespace {

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\v';
}

/// The length of a text up to the quote that ends it; npos: there is none.
std::size_t QuotedLength(std::string_view text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\')
            ++at;
        else if (text[at] == '"')
            return at;
    }
    return std::string_view::npos;
}

/// The length of a list up to the brace that ends it, which belongs to the one before the text.
std::size_t ListLength(std::string_view text)
{
    std::size_t depth = 1;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\')
            ++at;
        else if (text[at] == '{')
            ++depth;
        else if (text[at] == '}' && --depth == 0)
            return at;
    }
    return std::string_view::npos;
}

std::size_t WordLength(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && !IsBlank(text[at]) && text[at] != '{' && text[at] != '}')
        at += text[at] == '\\' ? 2 : 1;
    return std::min(at, text.size());
}

} // namespace

void NukeList::Fail(const char* at, const char* reason)
{
    throw ImportFailure{job_->LineOf(at), reason, true};
}

void NukeList::SkipLine()
{
    const std::size_t end = rest_.find('\n');
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end);
}

bool NukeList::Next(NukeItem& item)
{
    while (!rest_.empty() && IsBlank(rest_.front()))
        rest_.remove_prefix(1);
    if (rest_.empty())
        return false;
    const char first = rest_.front();
    if (first == '}')
        Fail(rest_.data(), "a closing brace has no partner");
    item.isList = first == '{';
    item.isQuoted = first == '"';
    if (!item.isList && !item.isQuoted) {
        item.text = rest_.substr(0, WordLength(rest_));
        rest_.remove_prefix(item.text.size());
        return true;
    }
    const std::string_view inside = rest_.substr(1);
    const std::size_t length = item.isList ? ListLength(inside) : QuotedLength(inside);
    if (length == std::string_view::npos)
        Fail(rest_.data(), item.isList ? "the file ends within braces that begin here"
                                       : "the file ends within a text that begins here");
    item.text = inside.substr(0, length);
    rest_.remove_prefix(length + 2);
    return true;
}

std::vector<NukeItem> NukeItems(ImportJob& job, std::string_view text)
{
    constexpr std::size_t longest = 100'000;
    std::vector<NukeItem> items;
    NukeList list(job, text);
    NukeItem item;
    while (list.Next(item)) {
        if (items.size() == longest)
            throw ImportFailure{job.LineOf(text.data()), "a list is too long"};
        items.push_back(item);
    }
    return items;
}

std::string NukeText(const NukeItem& item)
{
    std::string text;
    for (std::size_t at = 0; at < item.text.size(); ++at) {
        at += item.text[at] == '\\' && at + 1 < item.text.size();
        text += item.text[at];
    }
    return text;
}

std::string_view NukeFirstWord(ImportJob& job, std::string_view text)
{
    NukeList list(job, text);
    NukeItem item;
    return list.Next(item) && !item.isList ? item.text : std::string_view();
}

std::optional<double> ToNukeNumber(std::string_view word)
{
    std::string_view digits = word;
    if (digits.starts_with("0x"))
        digits.remove_prefix(1);
    if (!digits.starts_with('x'))
        return ToNumber(word);
    digits.remove_prefix(1);
    std::uint32_t bits = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
    constexpr std::size_t most = 8;
    if (digits.empty() || digits.size() > most || failure != std::errc() ||
        end != digits.data() + digits.size())
        return std::nullopt;
    const float value = std::bit_cast<float>(bits);
    if (!std::isfinite(value))
        return std::nullopt;
    return double(value);
}

void SetNukeSlopes(ImportJob& job, AnimatedNumber::Key& key, std::span<const double> numbers)
{
    constexpr double hold = 257.0;
    key.interpolation = Interpolation::Smooth;
    if (numbers.size() >= 4) {
        key.slopeIn = numbers[0];
        key.slopeOut = numbers[2];
        if (numbers[1] != 1.0 || numbers[3] != 1.0)
            job.LeaveAside(0, "the lengths of the handles of animation curves are not used");
    }
    if (numbers.size() >= 5 && numbers[4] == hold)
        key.interpolation = Interpolation::Step;
}

AnimatedNumber MadeNukeNumber(std::vector<AnimatedNumber::Key> keys)
{
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        const AnimatedNumber::Key& next = keys[i + 1];
        const double rise = next.value - keys[i].value;
        const double span = next.time - keys[i].time;
        const double tolerance = 1e-6 * std::max(1.0, std::abs(rise));
        const bool isLine = std::abs(keys[i].slopeOut * span - rise) <= tolerance &&
                            std::abs(next.slopeIn * span - rise) <= tolerance;
        if (isLine && keys[i].interpolation == Interpolation::Smooth)
            keys[i].interpolation = Interpolation::Linear;
    }
    return AnimatedNumber(std::move(keys));
}

} // namespace Marlox
