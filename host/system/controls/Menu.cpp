#include "system/controls/Menu.h"

#include <QMenu>

namespace Marlox {

namespace {

void FillFrom(const std::vector<Menu::Entry>& entries, QMenu& menu)
{
    for (const Menu::Entry& entry : entries) {
        if (!entry.children.empty()) {
            FillFrom(entry.children, *menu.addMenu(entry.text));
            continue;
        }
        if (entry.text.isEmpty()) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(entry.text);
        action->setData(entry.id);
        action->setEnabled(entry.enabled && entry.id != 0); // 0: a submenu left empty
        action->setCheckable(entry.checkable);
        action->setChecked(entry.checked);
    }
}

} // namespace

void Menu::Add(unsigned int id, const QString& text, bool enabled)
{
    Entry entry;
    entry.text = text;
    entry.id = id;
    entry.enabled = enabled;
    entries_->push_back(std::move(entry));
}

void Menu::AddCheck(unsigned int id, const QString& text, bool checked, bool enabled)
{
    Add(id, text, enabled);
    entries_->back().checkable = true;
    entries_->back().checked = checked;
}

void Menu::AddSeparator()
{
    if (!entries_->empty() && !entries_->back().text.isEmpty())
        entries_->emplace_back();
}

Menu Menu::AddSubmenu(const QString& text)
{
    Add(0, text);
    return Menu(entries_->back().children);
}

void Menu::Fill(QMenu& menu) const
{
    FillFrom(*entries_, menu);
}

} // namespace Marlox
