#include "system/controls/Menu.h"

#include <QActionGroup>
#include <QMenu>

namespace Marlox {

namespace {

void AddAction(const Menu::Entry& entry, QMenu& menu)
{
    QAction* action = menu.addAction(entry.text);
    action->setData(entry.id);
    action->setEnabled(entry.enabled && entry.id != 0); // 0: a submenu left empty
    action->setCheckable(entry.checkable);
    action->setChecked(entry.checked);
    action->setToolTip(entry.tip);
}

void FillFrom(const std::vector<Menu::Entry>& entries, QMenu& menu)
{
    menu.setToolTipsVisible(true);
    QActionGroup* group = nullptr;
    for (const Menu::Entry& entry : entries) {
        if (!entry.radio)
            group = nullptr;
        if (!entry.children.empty()) {
            FillFrom(entry.children, *menu.addMenu(entry.text));
        } else if (entry.text.isEmpty()) {
            menu.addSeparator();
        } else {
            AddAction(entry, menu);
            if (entry.radio && !group)
                group = new QActionGroup(&menu);
            if (entry.radio)
                group->addAction(menu.actions().last());
        }
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

void Menu::AddRadio(unsigned int id, const QString& text, bool checked, bool enabled)
{
    AddCheck(id, text, checked, enabled);
    entries_->back().radio = true;
}

void Menu::SetTip(const QString& tip)
{
    entries_->back().tip = tip;
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
