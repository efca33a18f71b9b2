#pragma once

#include "system/base/ScriptVal.h"
#include "system/controls/Menu.h"

#include <QString>

namespace Marlox {

// Menus as scripts see them: the text of an entry has neither its "&" nor its shortcut.

QString MenuEntryText(QString text);
/// A list of {text=, shortcut=, tip=, id=, enabled=, checked=, children=}; what is empty is left
/// out, and so are separators.
ScriptVal MenuTable(const std::vector<Menu::Entry>& entries);
/// A line for each entry, those of submenus indented by two blanks each.
QString MenuOutline(const std::vector<Menu::Entry>& entries);
/// An entry by its texts from the outermost menu on, joined by "/". Throws ScriptError if there is
/// none, or if it is disabled.
const Menu::Entry& MenuEntryAt(const std::vector<Menu::Entry>& entries, const QString& path);

} // namespace Marlox
