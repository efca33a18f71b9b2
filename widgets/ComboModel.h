#pragma once

#include <vector>

#include <QString>

namespace Marlox {

struct ComboEntry {
    QString text; // shown
    QString id;   // what a combo box that keeps ids has as its value
};

/// The entries of a combo box and the ways to find one: by a value, from another by steps, by
/// typed letters. Places are counted from 0.
class ComboModel {
public:
    static constexpr int none = -1;
    static constexpr int pageSteps = 8; // of a page key while the list is not open

    ComboModel() = default;
    explicit ComboModel(std::vector<ComboEntry> entries) : entries_(std::move(entries)) {}

    const std::vector<ComboEntry>& Entries() const { return entries_; }
    int Count() const { return int(entries_.size()); }
    bool Has(int place) const { return place >= 0 && place < Count(); }
    QString TextOf(int place) const { return Has(place) ? entries_[place].text : QString(); }

    /// The entry nearest to a number, halves upwards; none for a number that is no entry's (or
    /// NaN).
    int PlaceOf(double number) const;
    /// The first entry with this id, letter by letter; none if no entry has it.
    int PlaceOf(const QString& id) const;
    /// `steps` entries further (negative: back), at most to the end. From no entry, forwards leads
    /// to the first and backwards to the last.
    int Stepped(int from, int steps) const;
    /// The first entry from `from` on, then from the top, whose text starts with these letters in
    /// either case; none if there is none.
    int Starting(const QString& letters, int from) const;

private:
    std::vector<ComboEntry> entries_;
};

/// Letters typed one after the other that look for an entry. A pause starts anew, and one letter
/// again and again goes through the entries that start with it.
class ComboSearch {
public:
    static constexpr int pause = 1000; // milliseconds

    /// The entry found, or `present` if there is none. `now` counts milliseconds.
    int Type(const QString& letters, long long now, const ComboModel& model, int present);
    /// Whether letters typed now go on with the last ones.
    bool IsGoingOn(long long now) const { return !typed_.isEmpty() && now - last_ < pause; }

private:
    QString typed_;
    long long last_ = 0;
};

} // namespace Marlox
