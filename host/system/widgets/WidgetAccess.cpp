#include "system/widgets/WidgetAccess_p.h"

#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"
#include "system/widgets/TimeCodeEdit.h"

#include <cmath>

#include <QAccessible>
#include <QAccessibleWidget>

namespace Marlox::WidgetAccess {

namespace {

class LabelAccess : public QAccessibleWidget {
public:
    explicit LabelAccess(QWidget* widget) : QAccessibleWidget(widget, QAccessible::StaticText) {}

    QString text(QAccessible::Text kind) const override
    {
        const QString text = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && text.isEmpty()
                   ? static_cast<ElideLabel*>(widget())->Text()
                   : text;
    }
};

class ButtonAccess : public QAccessibleWidget {
public:
    explicit ButtonAccess(QWidget* widget)
        : QAccessibleWidget(widget, Button(widget).isCheckable() ? QAccessible::CheckBox
                                                                 : QAccessible::PushButton)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const auto* indicator = qobject_cast<KeyFrameIndicator*>(widget());
        if (kind == QAccessible::Value && indicator)
            return KeyFrameIndicator::StateText(indicator->GetState());
        QString text = QAccessibleWidget::text(kind);
        if (kind == QAccessible::Name && text.isEmpty())
            text = indicator ? KeyFrameIndicator::tr("Key frame") : Button(widget()).text();
        if (kind == QAccessible::Name && text.isEmpty())
            text = widget()->toolTip();
        return text.remove(u'&');
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const QAbstractButton& button = Button(widget());
        state.checkable = button.isCheckable();
        state.checked = button.isChecked();
        state.pressed = button.isDown();
        return state;
    }

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (widget()->isEnabled())
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& action) override
    {
        if (action == pressAction())
            Button(widget()).click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    static QAbstractButton& Button(QWidget* widget)
    {
        return static_cast<QAbstractButton&>(*widget);
    }
};

class NumberAccess : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit NumberAccess(QWidget* widget) : QAccessibleWidget(widget, QAccessible::SpinBox) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? Field().text() : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.editable = !Field().isReadOnly();
        state.readOnly = Field().isReadOnly();
        return state;
    }

    QVariant currentValue() const override { return Field().GetValue(); }
    QVariant minimumValue() const override { return Bound(Field().Minimum()); }
    QVariant maximumValue() const override { return Bound(Field().Maximum()); }
    QVariant minimumStepSize() const override { return {}; }

    void setCurrentValue(const QVariant& value) override
    {
        if (Field().isReadOnly())
            return;
        Field().setText(value.toString());
        Field().Commit();
    }

private:
    TimeCodeEdit& Field() const { return static_cast<TimeCodeEdit&>(*widget()); }
    static QVariant Bound(double bound)
    {
        return std::isfinite(bound) ? QVariant(bound) : QVariant();
    }
};

QAccessibleInterface* Make(const QString& className, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget)
        return nullptr;
    if (className == QLatin1String("Marlox::TimeCodeEdit"))
        return new NumberAccess(widget);
    if (className == QLatin1String("Marlox::ElideLabel"))
        return new LabelAccess(widget);
    if (className == QLatin1String("Marlox::KeyFrameIndicator") ||
        className == QLatin1String("Marlox::CustomButton"))
        return new ButtonAccess(widget);
    return nullptr;
}

} // namespace

void Install()
{
    static const bool installed = (QAccessible::installFactory(Make), true);
    Q_UNUSED(installed)
}

} // namespace Marlox::WidgetAccess
