#include "system/document/ExpressionNames.h"

#include <algorithm>
#include <string_view>

namespace Marlox {

namespace {

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNameChar(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9');
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// The name as scripts write it; empty if no name in a script can stand for it.
std::string scriptName(const QString& toolName)
{
    std::string name;
    for (const QChar c : toolName)
        name += c.unicode() < 0x80 && isNameChar(char(c.unicode())) ? char(c.unicode()) : '_';
    return !name.empty() && isNameStart(name[0]) ? name : std::string();
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

/// Reads an expression piece by piece: names, texts, comments, blanks, and single characters.
class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) {}

    std::string_view Next()
    {
        const std::size_t start = at_;
        at_ = EndOfPiece();
        return text_.substr(start, at_ - start);
    }
    bool AtEnd() const { return at_ >= text_.size(); }
    /// The next character that is no blank; 0 at the end.
    char Ahead() const
    {
        std::size_t i = at_;
        while (isBlank(At(i)))
            ++i;
        return At(i);
    }

private:
    char At(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

    std::size_t EndOfPiece() const
    {
        const char c = text_[at_];
        if (isNameStart(c))
            return EndOfRun(isNameChar);
        if (c >= '0' && c <= '9') // with what may follow: an exponent is no name
            return EndOfRun([](char n) { return isNameChar(n) || n == '.'; });
        if (isBlank(c))
            return EndOfRun(isBlank);
        if (c == '"' || c == '\'')
            return EndOfText(c);
        if (c == '[' && LongBracketLevel(at_) >= 0)
            return EndOfLong(at_);
        if (c == '-' && At(at_ + 1) == '-')
            return LongBracketLevel(at_ + 2) >= 0 ? EndOfLong(at_ + 2) : EndOfLine();
        return at_ + 1;
    }

    template <class Belongs>
    std::size_t EndOfRun(Belongs belongs) const
    {
        std::size_t end = at_ + 1;
        while (end < text_.size() && belongs(text_[end]))
            ++end;
        return end;
    }

    std::size_t EndOfText(char quote) const
    {
        std::size_t end = at_ + 1;
        while (end < text_.size() && text_[end] != quote)
            end += text_[end] == '\\' ? 2 : 1;
        return std::min(end + 1, text_.size());
    }

    /// The number of "=" in a long bracket that opens here, or -1.
    int LongBracketLevel(std::size_t i) const
    {
        if (At(i) != '[')
            return -1;
        std::size_t end = i + 1;
        while (At(end) == '=')
            ++end;
        return At(end) == '[' ? int(end - i) - 1 : -1;
    }

    std::size_t EndOfLong(std::size_t opening) const
    {
        const std::string closing =
            "]" + std::string(std::size_t(LongBracketLevel(opening)), '=') + "]";
        const std::size_t end = text_.find(closing, opening);
        return end == std::string_view::npos ? text_.size() : end + closing.size();
    }

    std::size_t EndOfLine() const { return std::min(text_.find('\n', at_), text_.size()); }

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace

std::string RenameToolInExpression(const std::string& expression, const QString& from,
                                   const QString& to,
                                   const std::function<bool(const std::string&)>& isOwnName)
{
    const std::string oldName = scriptName(from);
    const std::string newName = scriptName(to);
    const std::string oldText = from.toStdString();
    const std::string newText = quoted(to.toStdString());
    const bool rulesName = !oldName.empty() && !isOwnName(oldName);
    std::string result;
    std::string last;    // the piece before, blanks and comments aside
    bool inCall = false; // behind "tool", or behind "tool ("
    Scanner scanner(expression);
    while (!scanner.AtEnd()) {
        const std::string piece(scanner.Next());
        const bool isField = last == "." || last == ":";
        const char ahead = scanner.Ahead();
        if (isBlank(piece[0]) || piece.starts_with("--")) {
            result += piece;
            continue;
        }
        if (rulesName && piece == oldName && !isField && (ahead == '.' || ahead == '['))
            result += newName.empty() ? "tool(" + newText + ")" : newName;
        else if (inCall && (piece == quoted(oldText) || piece == "'" + oldText + "'"))
            result += newText;
        else
            result += piece;
        inCall = (piece == "tool" && !isField) || (piece == "(" && inCall);
        last = piece;
    }
    return result;
}

} // namespace Marlox
