#include "workbench/scripting/MenuTable.h"

#include "script/ScriptCall.h"

namespace Marlox {

namespace {

const Menu::Entry* findEntry(const std::vector<Menu::Entry>& entries, const QString& path)
{
    for (const Menu::Entry& entry : entries) {
        const QString text = MenuEntryText(entry.text);
        if (text == path && !text.isEmpty() && entry.children.empty())
            return &entry;
        if (!entry.children.empty() && path.startsWith(text + '/')) {
            if (const Menu::Entry* found = findEntry(entry.children, path.mid(text.size() + 1)))
                return found;
        }
    }
    return nullptr;
}

} // namespace

QString MenuEntryText(QString text)
{
    return text.section('\t', 0, 0).remove('&');
}

ScriptVal MenuTable(const std::vector<Menu::Entry>& entries)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const Menu::Entry& entry : entries) {
        if (entry.text.isEmpty())
            continue;
        ScriptVal row = ScriptVal::MakeTable();
        row.Set("text", MenuEntryText(entry.text).toStdString());
        if (const QString keys = entry.text.section('\t', 1); !keys.isEmpty())
            row.Set("shortcut", keys.toStdString());
        if (!entry.tip.isEmpty())
            row.Set("tip", entry.tip.toStdString());
        row.Set("id", int(entry.id));
        row.Set("enabled", entry.enabled);
        row.Set("checked", entry.checked);
        if (!entry.children.empty())
            row.Set("children", MenuTable(entry.children));
        list.Append(row);
    }
    return list;
}

QString MenuOutline(const std::vector<Menu::Entry>& entries)
{
    QString text;
    for (const Menu::Entry& entry : entries) {
        if (entry.text.isEmpty())
            continue;
        text += MenuEntryText(entry.text) + '\n';
        if (entry.children.empty())
            continue;
        const QString inner = MenuOutline(entry.children);
        for (const QString& line : inner.split('\n', Qt::SkipEmptyParts))
            text += "  " + line + '\n';
    }
    return text;
}

const Menu::Entry& MenuEntryAt(const std::vector<Menu::Entry>& entries, const QString& path)
{
    const Menu::Entry* entry = findEntry(entries, path);
    if (!entry)
        throw ScriptError(QString("the menu has no entry \"%1\"").arg(path));
    if (!entry->enabled)
        throw ScriptError(QString("the menu entry \"%1\" is disabled").arg(path));
    return *entry;
}

} // namespace Marlox
