#include "system/base/ScriptVal.h"

#include <algorithm>

namespace Marlox {

namespace {

const ScriptVal nil;
const ScriptVal::Table emptyTable;

} // namespace

ScriptVal ScriptVal::MakeTable()
{
    ScriptVal made;
    made.value_ = std::make_shared<Table>();
    return made;
}

bool ScriptVal::ToBool(bool otherwise) const
{
    if (const bool* value = std::get_if<bool>(&value_))
        return *value;
    if (const double* value = std::get_if<double>(&value_))
        return *value != 0.0;
    return otherwise;
}

double ScriptVal::ToNumber(double otherwise) const
{
    if (const double* value = std::get_if<double>(&value_))
        return *value;
    if (const bool* value = std::get_if<bool>(&value_))
        return *value ? 1.0 : 0.0;
    return otherwise;
}

std::string ScriptVal::ToString(std::string otherwise) const
{
    const std::string* value = std::get_if<std::string>(&value_);
    return value ? *value : std::move(otherwise);
}

RefObject* ScriptVal::ToObject() const
{
    RefObject* const* value = std::get_if<RefObject*>(&value_);
    return value ? *value : nullptr;
}

const ScriptVal& ScriptVal::Get(std::string_view name) const
{
    for (const Field& field : Fields()) {
        if (field.first == name)
            return field.second;
    }
    return nil;
}

const ScriptVal& ScriptVal::At(std::size_t position) const
{
    const auto& elements = Elements();
    return position >= 1 && position <= elements.size() ? elements[position - 1] : nil;
}

std::size_t ScriptVal::Length() const
{
    return Elements().size();
}

const std::vector<ScriptVal>& ScriptVal::Elements() const
{
    const auto* table = std::get_if<std::shared_ptr<Table>>(&value_);
    return table ? (*table)->elements : emptyTable.elements;
}

const std::vector<ScriptVal::Field>& ScriptVal::Fields() const
{
    const auto* table = std::get_if<std::shared_ptr<Table>>(&value_);
    return table ? (*table)->fields : emptyTable.fields;
}

ScriptVal::Table& ScriptVal::Own()
{
    if (!IsTable())
        value_ = std::make_shared<Table>();
    return *std::get<std::shared_ptr<Table>>(value_);
}

void ScriptVal::Set(std::string_view name, ScriptVal value)
{
    auto& fields = Own().fields;
    auto found = std::find_if(fields.begin(), fields.end(),
                              [name](const Field& field) { return field.first == name; });
    if (value.IsNil()) {
        if (found != fields.end())
            fields.erase(found);
    } else if (found != fields.end()) {
        found->second = std::move(value);
    } else {
        fields.emplace_back(std::string(name), std::move(value));
    }
}

void ScriptVal::Append(ScriptVal value)
{
    Own().elements.push_back(std::move(value));
}

ScriptVal ScriptVal::Clone() const
{
    if (!IsTable())
        return *this;
    ScriptVal made = MakeTable();
    for (const ScriptVal& element : Elements())
        made.Append(element.Clone());
    for (const auto& [name, value] : Fields())
        made.Set(name, value.Clone());
    return made;
}

bool operator==(const ScriptVal& a, const ScriptVal& b)
{
    if (a.GetType() != b.GetType())
        return false;
    if (a.value_ == b.value_) // tables: the same one
        return true;
    if (!a.IsTable())
        return false;
    return a.Elements() == b.Elements() && a.Fields().size() == b.Fields().size() &&
           std::all_of(a.Fields().begin(), a.Fields().end(), [&b](const ScriptVal::Field& field) {
               return field.second == b.Get(field.first);
           });
}

} // namespace Marlox
