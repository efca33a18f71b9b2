#pragma once

#include "system/shapes/import/ImportJob_p.h"

namespace Marlox {

/// A number in the C locale; none: it is no finite number.
std::optional<double> ToNumber(std::string_view word);
/// A number; throws and tells what is wrong with it, also when no picture is that large.
double Number(std::string_view word, int line);
/// A whole number from `low` to `high`; throws. `what` names it: "the number of keys".
int WholeNumber(std::string_view word, int line, int low, int high, const char* what);

std::string_view Trimmed(std::string_view text);
/// As part of a message: in quotes, shortened.
std::string Quoted(std::string_view text);
/// What stands between blanks; reuses `fields`.
void SplitFields(std::string_view line, std::vector<std::string_view>& fields);

/// The lines of a text one after the other, each cut into its fields.
class TextLines {
public:
    explicit TextLines(std::string_view text) : rest_(text) {}

    bool Next();
    /// The next line that is not blank; throws where the text ends: "it ends before `what`".
    void Require(const char* what);
    bool NextFilled();
    /// The next call of Next gives this line again.
    void PutBack() { isPutBack_ = true; }

    std::string_view Line() const { return line_; }
    int LineNumber() const { return number_; } // from 1
    const std::vector<std::string_view>& Fields() const { return fields_; }
    std::string_view Field(std::size_t index) const { return fields_[index]; }
    std::size_t Count() const { return fields_.size(); }
    double NumberAt(std::size_t index) const { return Number(fields_[index], number_); }
    /// The line from this field on.
    std::string_view RestFrom(std::size_t index) const;
    /// The only field of the next filled line, as a whole number.
    int RequireWhole(int low, int high, const char* what);

private:
    std::string_view rest_;
    std::string_view line_;
    std::vector<std::string_view> fields_;
    int number_ = 0;
    bool isPutBack_ = false;
    bool isAtEnd_ = false;
};

/// A point from places: itself and the ends of its handles.
PolyPoint PointFromPlaces(ShapePlace at, ShapePlace in, ShapePlace out);

} // namespace Marlox
