#include "system/shapes/import/ImportText_p.h"

#include <charconv>
#include <cmath>

namespace Marlox {

namespace {

/// Far beyond any image, and small enough to be multiplied without becoming infinite.
constexpr double largestNumber = 1e9;
/// Of one line: the numbers of a shape of the largest size, and some.
constexpr std::size_t maxFields = 1'300'000;

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\f' || c == '\v' || c == '\r' || c == '\n';
}

} // namespace

std::optional<double> ToNumber(std::string_view word)
{
    if (word.size() > 1 && word.front() == '+' && word[1] != '-')
        word.remove_prefix(1);
    double value = 0.0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (failure != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

double Number(std::string_view word, int line)
{
    const std::optional<double> value = ToNumber(word);
    if (value && std::abs(*value) <= largestNumber)
        return *value;
    if (value)
        throw ImportFailure{line, Quoted(word) + " is out of range"};
    const bool hasComma = word.find(',') != std::string_view::npos;
    throw ImportFailure{
        line, Quoted(word) + (hasComma ? " is no number: decimals need a point, and blanks part "
                                         "numbers"
                                       : " is no finite number")};
}

int WholeNumber(std::string_view word, int line, int low, int high, const char* what)
{
    const double value = Number(word, line);
    if (value != std::floor(value))
        throw ImportFailure{line, Quoted(word) + " is no whole number"};
    if (value < low || value > high) {
        throw ImportFailure{line, std::string(what) + " can't be " +
                                      std::string(word.substr(0, 20)) + " (" + std::to_string(low) +
                                      " to " + std::to_string(high) + ")"};
    }
    return int(value);
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string Quoted(std::string_view text)
{
    constexpr std::size_t longest = 40;
    std::size_t length = std::min(text.size(), longest);
    while (length < text.size() && length > 0 && (text[length] & 0xc0) == 0x80) // whole letters
        --length;
    std::string out = "\"";
    for (const char c : text.substr(0, length))
        out += IsBlank(c) ? ' ' : c;
    return out + (length < text.size() ? "...\"" : "\"");
}

void SplitFields(std::string_view line, std::vector<std::string_view>& fields)
{
    fields.clear();
    for (std::size_t at = 0; at < line.size() && fields.size() <= maxFields;) {
        if (IsBlank(line[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < line.size() && !IsBlank(line[end]))
            ++end;
        fields.push_back(line.substr(at, end - at));
        at = end;
    }
}

bool TextLines::Next()
{
    if (isPutBack_) {
        isPutBack_ = false;
        return true;
    }
    if (isAtEnd_)
        return false;
    const std::size_t end = rest_.find('\n');
    line_ = rest_.substr(0, end);
    isAtEnd_ = end == std::string_view::npos;
    if (isAtEnd_ && line_.empty())
        return false;
    if (!isAtEnd_)
        rest_.remove_prefix(end + 1);
    ++number_;
    SplitFields(line_, fields_);
    if (fields_.size() > maxFields)
        throw ImportFailure{number_, "the line has too many words", true};
    return true;
}

bool TextLines::NextFilled()
{
    while (Next()) {
        if (!fields_.empty())
            return true;
    }
    return false;
}

void TextLines::Require(const char* what)
{
    if (!NextFilled())
        throw ImportFailure{number_, "the file ends before " + std::string(what), true};
}

std::string_view TextLines::RestFrom(std::size_t index) const
{
    if (index >= fields_.size())
        return {};
    return Trimmed(line_.substr(std::size_t(fields_[index].data() - line_.data())));
}

int TextLines::RequireWhole(int low, int high, const char* what)
{
    Require(what);
    if (Count() != 1)
        throw ImportFailure{number_, std::string(what) + " was expected"};
    return WholeNumber(Field(0), number_, low, high, what);
}

PolyPoint PointFromPlaces(ShapePlace at, ShapePlace in, ShapePlace out)
{
    PolyPoint point;
    point.x = at.x;
    point.y = at.y;
    point.inX = in.x - at.x;
    point.inY = in.y - at.y;
    point.outX = out.x - at.x;
    point.outY = out.y - at.y;
    return point;
}

} // namespace Marlox
