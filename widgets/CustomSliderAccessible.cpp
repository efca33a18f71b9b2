#include "widgets/CustomSliderAccessible.h"

#include "widgets/AccessibleFactory.h"
#include "widgets/CustomSlider.h"

#include <QAccessibleWidget>

namespace Marlox {

namespace {

/// What screen readers and test tools see of a slider. Changes made through it are the user's.
class CustomSliderAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit CustomSliderAccessible(CustomSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text what) const override
    {
        return what == QAccessible::Value ? QString::number(Slider().Value(), 'g', 10)
                                          : QAccessibleWidget::text(what);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = Slider().IsLocked();
        return state;
    }

    QStringList actionNames() const override
    {
        return QStringList{increaseAction(), decreaseAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (!widget()->isEnabled() || Slider().IsLocked())
            return;
        if (name == increaseAction())
            Slider().StepUp(SliderModel::Plain, true);
        else if (name == decreaseAction())
            Slider().StepDown(SliderModel::Plain, true);
        else
            QAccessibleWidget::doAction(name);
    }

    QVariant currentValue() const override { return Slider().Value(); }
    void setCurrentValue(const QVariant& value) override
    {
        if (widget()->isEnabled() && !Slider().IsLocked())
            Slider().SetValue(Slider().Model().Settled(value.toDouble()));
    }
    QVariant minimumValue() const override { return Slider().MinValue(); }
    QVariant maximumValue() const override { return Slider().MaxValue(); }
    QVariant minimumStepSize() const override
    {
        const double step = Slider().Model().StepBelow(SliderModel::Plain);
        return Slider().IsInteger() && step < 1.0 ? 1.0 : step;
    }

private:
    CustomSlider& Slider() const { return *static_cast<CustomSlider*>(widget()); }
};

} // namespace

void MakeSlidersAccessible()
{
    static const AccessibleFactory<MakeAccessible<CustomSlider, CustomSliderAccessible>> factory;
    [[maybe_unused]] static const int ofValueChanged = qRegisterMetaType<float64>("float64");
}

} // namespace Marlox
