#include "script/ValueText.h"

#include <charconv>
#include <limits>
#include <optional>
#include <vector>

namespace Marlox {

namespace {

constexpr int maximumDepth = 100;
constexpr std::size_t maximumFields = 10000; // of one table

/// Recursive descent over the text of one literal, by the lexical rules of Lua 5.1.
class LiteralReader {
public:
    explicit LiteralReader(std::string_view text) : text_(text) {}

    bool ReadAll(ScriptVal& value);
    std::string Error() const { return "line " + std::to_string(line_) + ": " + reason_; }

private:
    bool Fail(const char* reason);
    char Peek(std::size_t ahead = 0) const
    {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }
    bool AtEnd() const { return at_ >= text_.size(); }
    void Advance(std::size_t count);
    bool Take(char c);
    bool TakeWord(std::string_view word);
    bool SkipBlanks();
    std::optional<std::size_t> LongBracket() const;
    bool ReadLong(std::size_t level, std::string& out);
    bool ReadQuoted(std::string& out);
    bool ReadEscape(std::string& out);
    bool ReadString(std::string& out);
    bool ReadNumber(double& out);
    bool ReadWord(ScriptVal& value);
    bool ReadValue(ScriptVal& value);

    struct TableParts {
        std::vector<ScriptVal> elements;
        std::size_t nextPosition = 0; // of the next entry without a key
        ScriptVal fields = ScriptVal::MakeTable();
    };
    bool ReadTable(ScriptVal& value);
    bool ReadEntry(TableParts& parts);
    bool ReadBracketed(TableParts& parts);
    bool SetField(TableParts& parts, std::string name);
    bool SetElement(TableParts& parts, std::size_t position);

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
    int depth_ = 0;
    const char* reason_ = "";
};

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool LiteralReader::Fail(const char* reason)
{
    reason_ = reason;
    return false;
}

void LiteralReader::Advance(std::size_t count)
{
    for (; count > 0 && !AtEnd(); --count) {
        if (text_[at_++] == '\n')
            ++line_;
    }
}

bool LiteralReader::Take(char c)
{
    if (AtEnd() || Peek() != c)
        return false;
    Advance(1);
    return true;
}

bool LiteralReader::TakeWord(std::string_view word)
{
    const char behind = Peek(word.size());
    if (text_.substr(at_, word.size()) != word || IsLetter(behind) || IsDigit(behind))
        return false;
    Advance(word.size());
    return true;
}

/// Skips white space and comments. False for a comment that does not end.
bool LiteralReader::SkipBlanks()
{
    for (;;) {
        const char c = Peek();
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            Advance(1);
        } else if (c == '-' && Peek(1) == '-') {
            Advance(2);
            if (const auto level = LongBracket()) {
                std::string ignored;
                if (!ReadLong(*level, ignored))
                    return false;
            } else {
                while (!AtEnd() && Peek() != '\n')
                    Advance(1);
            }
        } else {
            return true;
        }
    }
}

/// The number of "=" in a long bracket that opens here.
std::optional<std::size_t> LiteralReader::LongBracket() const
{
    if (Peek() != '[')
        return {};
    std::size_t level = 0;
    while (Peek(1 + level) == '=')
        ++level;
    return Peek(1 + level) == '[' ? std::optional(level) : std::nullopt;
}

bool LiteralReader::ReadLong(std::size_t level, std::string& out)
{
    Advance(level + 2);
    if (Peek() == '\r')
        Advance(1);
    if (Peek() == '\n') // the first line break is not part of the text
        Advance(1);
    const std::string close = "]" + std::string(level, '=') + "]";
    const std::size_t end = text_.find(close, at_);
    if (end == std::string_view::npos)
        return Fail("a text or comment in long brackets does not end");
    out = text_.substr(at_, end - at_);
    Advance(end - at_ + close.size());
    return true;
}

bool LiteralReader::ReadQuoted(std::string& out)
{
    const char quote = Peek();
    Advance(1);
    while (!Take(quote)) {
        if (AtEnd() || Peek() == '\n')
            return Fail("a text does not end on its line");
        if (Peek() == '\\') {
            Advance(1);
            if (!ReadEscape(out))
                return false;
        } else {
            out += Peek();
            Advance(1);
        }
    }
    return true;
}

bool LiteralReader::ReadEscape(std::string& out)
{
    if (AtEnd())
        return Fail("a text does not end on its line");
    if (IsDigit(Peek())) {
        int code = 0;
        for (int i = 0; i < 3 && IsDigit(Peek()); ++i) {
            code = code * 10 + (Peek() - '0');
            Advance(1);
        }
        if (code > 255)
            return Fail("a character code in a text is above 255");
        out += char(code);
        return true;
    }
    constexpr std::string_view letters = "abfnrtv";
    constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
    const std::size_t known = letters.find(Peek());
    out += known != std::string_view::npos ? meanings[known] : Peek();
    Advance(1);
    return true;
}

bool LiteralReader::ReadString(std::string& out)
{
    if (const auto level = LongBracket())
        return ReadLong(*level, out);
    return ReadQuoted(out);
}

bool LiteralReader::ReadNumber(double& out)
{
    const char* begin = text_.data() + at_;
    const char* end = text_.data() + text_.size();
    const char* behind = nullptr;
    if (Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X')) {
        unsigned long long whole = 0;
        const auto read = std::from_chars(begin + 2, end, whole, 16);
        if (read.ec != std::errc())
            return Fail("malformed number");
        out = double(whole);
        behind = read.ptr;
    } else {
        const auto read = std::from_chars(begin, end, out);
        if (read.ec == std::errc::invalid_argument || (!IsDigit(*begin) && *begin != '.'))
            return Fail("malformed number");
        if (read.ec == std::errc::result_out_of_range) // to 0 or infinity, as strtod has it
            return Fail("a number is out of range");
        behind = read.ptr;
    }
    Advance(std::size_t(behind - begin));
    if (IsLetter(Peek()) || IsDigit(Peek()) || Peek() == '.')
        return Fail("malformed number");
    return true;
}

bool LiteralReader::ReadWord(ScriptVal& value)
{
    if (TakeWord("true"))
        value = ScriptVal(true);
    else if (TakeWord("false"))
        value = ScriptVal(false);
    else if (TakeWord("nil"))
        value = ScriptVal();
    else if (TakeWord("math.huge"))
        value = ScriptVal(std::numeric_limits<double>::infinity());
    else
        return Fail("a table, text, number, true, false or nil expected");
    return true;
}

bool LiteralReader::ReadValue(ScriptVal& value)
{
    if (!SkipBlanks())
        return false;
    const char c = Peek();
    if (c == '{')
        return ReadTable(value);
    if (c == '"' || c == '\'' || LongBracket()) {
        std::string text;
        const bool read = ReadString(text);
        value = ScriptVal(std::move(text));
        return read;
    }
    if (text_.substr(at_, 5) == "(0/0)") {
        Advance(5);
        value = ScriptVal(std::numeric_limits<double>::quiet_NaN());
        return true;
    }
    if (c == '-') {
        if (depth_ >= maximumDepth)
            return Fail("too many signs");
        Advance(1);
        ++depth_;
        const bool read = ReadValue(value);
        --depth_;
        if (!read)
            return false;
        if (!value.IsNumber())
            return Fail("a number expected behind the minus");
        value = ScriptVal(-value.ToNumber());
        return true;
    }
    if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
        double number = 0.0;
        const bool read = ReadNumber(number);
        value = ScriptVal(number);
        return read;
    }
    return ReadWord(value);
}

bool LiteralReader::ReadTable(ScriptVal& value)
{
    if (depth_ >= maximumDepth)
        return Fail("tables are nested too deep");
    ++depth_;
    Advance(1);
    TableParts parts;
    for (;;) {
        if (!SkipBlanks())
            return false;
        if (Take('}'))
            break;
        if (!ReadEntry(parts) || !SkipBlanks())
            return false;
        if (!Take(',') && !Take(';') && Peek() != '}')
            return Fail("\"}\" expected at the end of the table, or a comma");
    }
    --depth_;
    value = std::move(parts.fields);
    for (ScriptVal& element : parts.elements)
        value.Append(std::move(element));
    return true;
}

bool LiteralReader::ReadEntry(TableParts& parts)
{
    if (Peek() == '[' && !LongBracket())
        return ReadBracketed(parts);
    if (IsLetter(Peek())) {
        std::size_t length = 1;
        while (IsLetter(Peek(length)) || IsDigit(Peek(length)))
            ++length;
        const std::size_t start = at_;
        const int line = line_;
        Advance(length);
        if (!SkipBlanks())
            return false;
        if (Peek() == '=' && Peek(1) != '=') {
            Advance(1);
            return SetField(parts, std::string(text_.substr(start, length)));
        }
        at_ = start; // a value: true, nil, math.huge
        line_ = line;
    }
    return SetElement(parts, ++parts.nextPosition);
}

/// ["name"] = value or [position] = value.
bool LiteralReader::ReadBracketed(TableParts& parts)
{
    Advance(1);
    ScriptVal key;
    if (!ReadValue(key) || !SkipBlanks())
        return false;
    if (!Take(']') || !SkipBlanks() || Peek() != '=')
        return Fail("\"] =\" expected behind a key");
    Advance(1);
    if (key.IsString())
        return SetField(parts, key.ToString());
    const double position = key.ToNumber();
    if (!key.IsNumber() || !(position >= 1.0) || position > double(parts.elements.size()) + 1.0 ||
        position != double(std::size_t(position)))
        return Fail("keys are names, or positions without gaps");
    return SetElement(parts, std::size_t(position));
}

bool LiteralReader::SetField(TableParts& parts, std::string name)
{
    ScriptVal value;
    if (!ReadValue(value))
        return false;
    if (parts.fields.Fields().size() >= maximumFields)
        return Fail("too many named fields in one table");
    parts.fields.Set(name, std::move(value));
    return true;
}

bool LiteralReader::SetElement(TableParts& parts, std::size_t position)
{
    ScriptVal value;
    if (!ReadValue(value))
        return false;
    if (position <= parts.elements.size())
        parts.elements[position - 1] = std::move(value);
    else
        parts.elements.push_back(std::move(value));
    return true;
}

bool LiteralReader::ReadAll(ScriptVal& value)
{
    if (text_.starts_with("\xef\xbb\xbf")) // the mark that some editors put first
        at_ = 3;
    if (!SkipBlanks())
        return false;
    TakeWord("return");
    if (!ReadValue(value) || !SkipBlanks())
        return false;
    if (Take(';') && !SkipBlanks())
        return false;
    return AtEnd() || Fail("the end of the text expected behind the value");
}

} // namespace

bool ReadLiteral(std::string_view text, ScriptVal& value, std::string& error)
{
    LiteralReader reader(text);
    ScriptVal read;
    if (!reader.ReadAll(read)) {
        error = reader.Error();
        return false;
    }
    value = std::move(read);
    return true;
}

} // namespace Marlox
