#include "widgets/CustomComboAccessible.h"

#include "widgets/AccessibleFactory.h"
#include "widgets/ComboPopup.h"
#include "widgets/CustomCombo.h"

#include <map>

#include <QAccessibleWidget>

namespace Marlox {

namespace {

/// The closed field.
class ComboAccessible final : public QAccessibleWidget {
public:
    explicit ComboAccessible(CustomCombo* combo) : QAccessibleWidget(combo, QAccessible::ComboBox)
    {
    }

    QString text(QAccessible::Text what) const override
    {
        return what == QAccessible::Value ? Combo().Text() : QAccessibleWidget::text(what);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = Combo().IsLocked();
        state.hasPopup = state.expandable = true;
        state.expanded = Combo().IsListOpen();
        state.collapsed = !state.expanded;
        return state;
    }

    QStringList actionNames() const override
    {
        return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (name != showMenuAction() && name != pressAction())
            QAccessibleWidget::doAction(name);
        else if (Combo().IsListOpen())
            Combo().CloseList();
        else
            Combo().OpenList();
    }

private:
    CustomCombo& Combo() const { return *static_cast<CustomCombo*>(widget()); }
};

class ListAccessible;

/// One row of an open list. Lives as long as the list's interface.
class RowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    RowAccessible(ListAccessible& list, int row) : list_(list), row_(row) {}

    bool isValid() const override { return true; }
    QObject* object() const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}
    QAccessibleInterface* parent() const override;
    QString text(QAccessible::Text what) const override;
    QRect rect() const override;
    QAccessible::State state() const override;

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override;

private:
    ListAccessible& list_;
    int row_;
};

/// The open list.
class ListAccessible final : public QAccessibleWidget {
public:
    explicit ListAccessible(ComboPopup* popup) : QAccessibleWidget(popup, QAccessible::List) {}
    ~ListAccessible() override
    {
        for (const auto& [row, id] : ids_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return Popup().Model().Count(); }
    QAccessibleInterface* child(int index) const override
    {
        if (!Popup().Model().Has(index))
            return nullptr;
        const auto known = ids_.find(index);
        if (known != ids_.end())
            return QAccessible::accessibleInterface(known->second);
        auto* made = new RowAccessible(const_cast<ListAccessible&>(*this), index);
        ids_[index] = QAccessible::registerAccessibleInterface(made);
        return made;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        for (const auto& [row, id] : ids_) {
            if (QAccessible::accessibleInterface(id) == child)
                return row;
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const int row = Popup().List().RowAt(Popup().mapFromGlobal({x, y}).y() - ComboList::frame);
        return rect().contains(x, y) ? child(row) : nullptr;
    }
    QAccessibleInterface* focusChild() const override { return child(Popup().Lit()); }

    ComboPopup& Popup() const { return *static_cast<ComboPopup*>(widget()); }

private:
    mutable std::map<int, QAccessible::Id> ids_; // of the rows that were asked for
};

QAccessibleInterface* RowAccessible::parent() const
{
    return &list_;
}

QString RowAccessible::text(QAccessible::Text what) const
{
    return what == QAccessible::Name ? list_.Popup().Model().TextOf(row_) : QString();
}

QRect RowAccessible::rect() const
{
    const QRect place = list_.Popup().RowRect(row_);
    return {list_.Popup().mapToGlobal(place.topLeft()), place.size()};
}

QAccessible::State RowAccessible::state() const
{
    const ComboPopup& popup = list_.Popup();
    QAccessible::State state;
    state.selectable = state.focusable = true;
    state.focused = state.selected = popup.Lit() == row_;
    state.checkable = true;
    state.checked = popup.Chosen() == row_;
    state.offscreen = !popup.rect().contains(popup.RowRect(row_));
    return state;
}

void RowAccessible::doAction(const QString& name)
{
    if (name == pressAction())
        list_.Popup().Choose(row_);
}

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    if (auto* combo = qobject_cast<CustomCombo*>(object))
        return new ComboAccessible(combo);
    auto* popup = qobject_cast<ComboPopup*>(object);
    return popup ? new ListAccessible(popup) : nullptr;
}

} // namespace

void MakeCombosAccessible()
{
    static const AccessibleFactory<makeAccessible> factory;
}

void TellListState(CustomCombo& combo)
{
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.expanded = true;
    QAccessibleStateChangeEvent told(&combo, changed);
    QAccessible::updateAccessibility(&told);
}

void TellLitRow(ComboPopup& popup)
{
    if (!QAccessible::isActive() || !popup.isVisible())
        return;
    QAccessibleEvent told(&popup, QAccessible::Focus);
    told.setChild(popup.Lit());
    QAccessible::updateAccessibility(&told);
}

} // namespace Marlox
