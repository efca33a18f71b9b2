#pragma once

#include "system/base/Types.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace Marlox {

class RefObject;

/// The host's script value: nil, boolean, number, string, table or host object. It carries layout
/// descriptions, attribute tables and the arguments of script calls, and knows no interpreter.
/// Tables are shared by reference, as scripts have them: a copy of a value refers to the same
/// table; Clone() makes an independent one. A table has a list part (positions from 1) and named
/// fields in the order of their first assignment.
class MARLOXSYSTEM_EXPORT ScriptVal {
public:
    enum class Type { Nil, Boolean, Number, String, Table, Object };
    struct Table;
    using Field = std::pair<std::string, ScriptVal>;

    ScriptVal() noexcept = default;
    ScriptVal(bool value) : value_(value) {}
    ScriptVal(double value) : value_(value) {}
    ScriptVal(int value) : value_(double(value)) {}
    ScriptVal(int64 value) : value_(double(value)) {}
    ScriptVal(const char* value) // null makes nil
    {
        if (value)
            value_ = std::string(value);
    }
    ScriptVal(std::string value) : value_(std::move(value)) {}
    /// Not owned: whoever stores the value keeps the object alive.
    explicit ScriptVal(RefObject* object) : value_(object) {}
    static ScriptVal MakeTable();

    Type GetType() const { return Type(value_.index()); }
    bool IsNil() const { return GetType() == Type::Nil; }
    bool IsNumber() const { return GetType() == Type::Number; }
    bool IsString() const { return GetType() == Type::String; }
    bool IsTable() const { return GetType() == Type::Table; }

    // Reading, with a default for a value of another type. Numbers and booleans convert into each
    // other; nothing else does.
    bool ToBool(bool otherwise = false) const;
    double ToNumber(double otherwise = 0.0) const;
    std::string ToString(std::string otherwise = {}) const;
    RefObject* ToObject() const;

    /// A field of a table; nil if it is missing or this is no table.
    const ScriptVal& Get(std::string_view name) const;
    /// An element of the list part, from 1; nil outside it.
    const ScriptVal& At(std::size_t position) const;
    std::size_t Length() const;
    const std::vector<ScriptVal>& Elements() const;
    const std::vector<Field>& Fields() const;

    /// Makes this a table first if it is none. Setting nil removes the field.
    void Set(std::string_view name, ScriptVal value);
    void Append(ScriptVal value);

    ScriptVal Clone() const;
    /// Compares tables by content.
    friend MARLOXSYSTEM_EXPORT bool operator==(const ScriptVal& a, const ScriptVal& b);

private:
    Table& Own();

    std::variant<std::monostate, bool, double, std::string, std::shared_ptr<Table>, RefObject*>
        value_;
};

struct ScriptVal::Table {
    std::vector<ScriptVal> elements;
    std::vector<Field> fields;
};

} // namespace Marlox
