#pragma once

#include "system/base/ScriptVal.h"
#include "system/base/Types.h"

#include <vector>

#include <QString>

class QMenu;

namespace Marlox {

/// A context menu while it is being put together: entries with the numbers that HandleMenu gets.
/// It can be shown as a QMenu or listed and run by a script.
class MARLOXSYSTEM_EXPORT Menu {
public:
    struct Entry {
        /// "&" marks the letter, a tab separates a shortcut that is only shown; empty: a separator.
        QString text;
        QString tip; // what it does, or why it can't; empty: none
        unsigned int id = 0;
        bool enabled = true;
        bool checkable = false;
        bool checked = false;
        bool radio = false;          // checked instead of those that follow one another beside it
        std::vector<Entry> children; // a submenu when not empty
    };

    void Add(unsigned int id, const QString& text, bool enabled = true);
    void AddCheck(unsigned int id, const QString& text, bool checked, bool enabled = true);
    void AddRadio(unsigned int id, const QString& text, bool checked, bool enabled = true);
    void SetTip(const QString& tip);      // of the entry added last
    void AddSeparator();                  // none at the start or behind another
    Menu AddSubmenu(const QString& text); // writes into this menu; valid until the next Add
    void Clear() { entries_->clear(); }   // for controls that what was added says nothing to
    const std::vector<Entry>& Entries() const { return *entries_; }

    /// Fills a QMenu; the data() of its actions is the entry's id.
    void Fill(QMenu& menu) const;

    Menu() : entries_(&own_) {}
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

private:
    explicit Menu(std::vector<Entry>& entries) : entries_(&entries) {}
    std::vector<Entry> own_;
    std::vector<Entry>* entries_;
};

} // namespace Marlox
