#pragma once

#include "system/base/Types.h"

#include <functional>
#include <string_view>

#include <QString>

namespace Marlox {

/// An interned identifier: a narrow (UTF-8) string compared by value. Class ids, resource names,
/// script call names and event names are MxIDs. Two ids with the same text share one address, so
/// comparing costs one pointer; making one from text costs a table lookup. Ids live until the
/// process ends. Thread-safe.
class MARLOXSYSTEM_EXPORT MxID {
public:
    MxID() noexcept;
    MxID(const char* text); // null gives the empty id
    explicit MxID(std::string_view text);
    explicit MxID(const QString& text);

    const char* c_str() const noexcept { return text_; }
    std::string_view View() const noexcept { return text_; }
    QString ToString() const { return QString::fromUtf8(text_); }
    bool IsEmpty() const noexcept { return *text_ == '\0'; }

    friend bool operator==(const MxID& a, const MxID& b) noexcept { return a.text_ == b.text_; }
    friend bool operator!=(const MxID& a, const MxID& b) noexcept { return a.text_ != b.text_; }
    /// Alphabetical order of the texts, byte by byte.
    friend bool operator<(const MxID& a, const MxID& b) noexcept { return a.View() < b.View(); }

private:
    const char* text_; // never null; owned by the table of ids
};

} // namespace Marlox

template <>
struct std::hash<Marlox::MxID> {
    std::size_t operator()(const Marlox::MxID& id) const noexcept
    {
        return std::hash<const void*>()(id.c_str());
    }
};
