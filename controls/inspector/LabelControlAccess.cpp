#include "controls/inspector/LabelControlAccess.h"

#include "controls/inspector/LabelControl.h"
#include "widgets/AccessibleFactory.h"

#include <QAccessibleWidget>

namespace Marlox {

namespace {

class NestAccessible final : public QAccessibleWidget {
public:
    explicit NestAccessible(LabelControl* nest) : QAccessibleWidget(nest, QAccessible::Button) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = Nest().IsNestOpen();
        state.collapsed = !Nest().IsNestOpen();
        return state;
    }

    /// The parts are the heading's: nothing to go to.
    int childCount() const override { return 0; }

    QStringList actionNames() const override
    {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (name != pressAction())
            QAccessibleWidget::doAction(name);
        else if (widget()->isEnabled())
            Nest().SetNestOpen(!Nest().IsNestOpen());
    }

private:
    LabelControl& Nest() const { return *static_cast<LabelControl*>(widget()); }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* label = qobject_cast<LabelControl*>(object);
    if (!label)
        return nullptr;
    switch (label->GetVariant()) {
    case LabelControl::Variant::Nest:
        return new NestAccessible(label);
    case LabelControl::Variant::Separator:
        return new QAccessibleWidget(label, QAccessible::Separator);
    default:
        return nullptr;
    }
}

} // namespace

void MakeLabelsAccessible()
{
    static const AccessibleFactory<makeAccessible> factory;
}

} // namespace Marlox
