#include "script/ValueText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::size_t lineWidth = 96; // of an indented table that stays on one line
constexpr std::string_view indent = "    ";

constexpr std::string_view keywords[] = {
    "and",   "break", "do",  "else", "elseif", "end",    "false", "for",  "function", "if",   "in",
    "local", "nil",   "not", "or",   "repeat", "return", "then",  "true", "until",    "while"};

bool IsName(std::string_view text)
{
    const auto letter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    };
    return !text.empty() && letter(text.front()) &&
           std::all_of(text.begin(), text.end(),
                       [&](char c) { return letter(c) || (c >= '0' && c <= '9'); }) &&
           std::find(std::begin(keywords), std::end(keywords), text) == std::end(keywords);
}

void WriteNumber(std::string& out, double value)
{
    if (std::isnan(value)) {
        out += "(0/0)";
    } else if (std::isinf(value)) {
        out += value < 0 ? "-math.huge" : "math.huge";
    } else {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
        out.append(digits, end);
    }
}

void WriteString(std::string& out, std::string_view text)
{
    out += '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            // Three digits, so that a digit behind it is not taken for part of the number.
            std::string code = std::to_string(int(static_cast<unsigned char>(c)));
            out += '\\' + std::string(3 - code.size(), '0') + code;
        } else {
            out += c;
        }
    }
    out += '"';
}

void WriteKey(std::string& out, std::string_view name)
{
    if (IsName(name)) {
        out += name;
    } else {
        out += '[';
        WriteString(out, name);
        out += ']';
    }
    out += " = ";
}

bool HoldsTables(const ScriptVal& table)
{
    return std::any_of(table.Elements().begin(), table.Elements().end(),
                       [](const ScriptVal& element) { return element.IsTable(); }) ||
           std::any_of(table.Fields().begin(), table.Fields().end(),
                       [](const ScriptVal::Field& field) { return field.second.IsTable(); });
}

void Write(std::string& out, const ScriptVal& value, bool indented, std::size_t depth);

/// The entries between the braces, each behind `start` and followed by `separator` (but the last).
void WriteEntries(std::string& out, const ScriptVal& table, bool indented, std::size_t depth,
                  std::string_view start, std::string_view separator)
{
    std::size_t left = table.Elements().size() + table.Fields().size();
    const auto finish = [&] {
        if (--left > 0)
            out += separator;
    };
    for (const ScriptVal& element : table.Elements()) {
        out += start;
        Write(out, element, indented, depth);
        finish();
    }
    for (const auto& [name, field] : table.Fields()) {
        out += start;
        WriteKey(out, name);
        Write(out, field, indented, depth);
        finish();
    }
}

void WriteTable(std::string& out, const ScriptVal& table, bool indented, std::size_t depth)
{
    const std::size_t begin = out.size();
    if (!indented || !HoldsTables(table)) {
        out += '{';
        WriteEntries(out, table, false, depth, {}, ", ");
        out += '}';
        if (!indented || out.size() - begin + depth * indent.size() <= lineWidth)
            return;
        out.resize(begin);
    }
    std::string start = "\n";
    for (std::size_t i = 0; i <= depth; ++i)
        start += indent;
    out += '{';
    WriteEntries(out, table, true, depth + 1, start, ",");
    out += ",";
    out.append(start, 0, start.size() - indent.size());
    out += '}';
}

void Write(std::string& out, const ScriptVal& value, bool indented, std::size_t depth)
{
    switch (value.GetType()) {
    case ScriptVal::Type::Nil:
        out += "nil";
        break;
    case ScriptVal::Type::Boolean:
        out += value.ToBool() ? "true" : "false";
        break;
    case ScriptVal::Type::Number:
        WriteNumber(out, value.ToNumber());
        break;
    case ScriptVal::Type::String:
        WriteString(out, value.ToString());
        break;
    case ScriptVal::Type::Table:
        WriteTable(out, value, indented, depth);
        break;
    case ScriptVal::Type::Object:
        out += "nil --[[object]]";
        break;
    }
}

} // namespace

std::string FormatValueText(const ScriptVal& value, bool indented)
{
    std::string out;
    Write(out, value, indented, 0);
    return out;
}

} // namespace Marlox
