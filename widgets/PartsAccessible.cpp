#include "widgets/PartsAccessible.h"

#include "widgets/AccessibleFactory.h"
#include "widgets/CustomControl.h"

#include <array>

#include <QAccessibleWidget>

namespace Marlox {

namespace {

/// What moves the active part, by the names of the actions.
struct PartAction {
    QString name;
    const char* help;
    QPoint way; // y upwards
};

const std::array<PartAction, 4>& partActions()
{
    static const std::array<PartAction, 4> actions{
        {{QAccessibleActionInterface::increaseAction(), "Moves the part to the right", {1, 0}},
         {QAccessibleActionInterface::decreaseAction(), "Moves the part to the left", {-1, 0}},
         {QStringLiteral("Up"), "Moves the part upwards", {0, 1}},
         {QStringLiteral("Down"), "Moves the part downwards", {0, -1}}}};
    return actions;
}

/// What screen readers and test tools see of a control with parts. Changes made through it are the
/// user's.
class PartsAccessible final : public QAccessibleWidget {
public:
    explicit PartsAccessible(CustomControl* control)
        : QAccessibleWidget(control, QAccessible::ColorChooser)
    {
    }

    QString text(QAccessible::Text what) const override
    {
        switch (what) {
        case QAccessible::Value:
            return Control().DescribePart(Control().ActivePart());
        case QAccessible::Description:
            return AllParts();
        case QAccessible::Help:
            return widget()->toolTip();
        default:
            return QAccessibleWidget::text(what);
        }
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = Control().IsLocked();
        return state;
    }

    QStringList actionNames() const override
    {
        QStringList names{nextPageAction(), previousPageAction()};
        for (const PartAction& action : partActions())
            names += action.name;
        return names + QAccessibleWidget::actionNames();
    }

    QString localizedActionDescription(const QString& name) const override
    {
        if (name == nextPageAction())
            return CustomControl::tr("Goes to the next part");
        if (name == previousPageAction())
            return CustomControl::tr("Goes to the previous part");
        const PartAction* action = ActionNamed(name);
        return action ? CustomControl::tr(action->help)
                      : QAccessibleWidget::localizedActionDescription(name);
    }

    void doAction(const QString& name) override
    {
        if (name == nextPageAction())
            Control().StepActivePart(1);
        else if (name == previousPageAction())
            Control().StepActivePart(-1);
        else if (const PartAction* action = ActionNamed(name))
            Control().NudgeActivePart(action->way);
        else
            QAccessibleWidget::doAction(name);
    }

private:
    CustomControl& Control() const { return *static_cast<CustomControl*>(widget()); }

    QString AllParts() const
    {
        QStringList parts;
        for (int part = 0; part < Control().PartCount(); ++part)
            parts += Control().DescribePart(part);
        return parts.join(QStringLiteral("; "));
    }

    static const PartAction* ActionNamed(const QString& name)
    {
        for (const PartAction& action : partActions()) {
            if (action.name == name)
                return &action;
        }
        return nullptr;
    }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* control = qobject_cast<CustomControl*>(object);
    return control && control->PartCount() > 0 ? new PartsAccessible(control) : nullptr;
}

} // namespace

void MakePartsAccessible()
{
    static const AccessibleFactory<makeAccessible> factory;
}

void TellActivePart(CustomControl& control)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent told(&control, control.DescribePart(control.ActivePart()));
    QAccessible::updateAccessibility(&told);
}

} // namespace Marlox
