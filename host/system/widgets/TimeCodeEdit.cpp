#include "system/widgets/TimeCodeEdit.h"

#include <utility>

namespace Marlox {

class TimeCodeEdit::Private {
public:
    double value = 0.0;
    DragTarget target;
};

TimeCodeEdit::TimeCodeEdit(QWidget* parent) : QLineEdit(parent), d_(new Private) {}
TimeCodeEdit::~TimeCodeEdit()
{
    delete d_;
}
double TimeCodeEdit::GetValue() const
{
    return d_->value;
}
void TimeCodeEdit::SetValue(double value, int precision)
{
    d_->value = value;
    setText(QString::number(value, 'g', precision < 0 ? 10 : precision));
}
void TimeCodeEdit::SetInteger(bool) {}
void TimeCodeEdit::SetTimeMode(bool, double) {}
void TimeCodeEdit::SetRange(double, double) {}
void TimeCodeEdit::SetEditDisabled(bool disabled)
{
    setReadOnly(disabled);
}
bool TimeCodeEdit::IsExpressionText() const
{
    return false;
}
QString TimeCodeEdit::ExpressionText() const
{
    return {};
}
bool TimeCodeEdit::IsUnreadable() const
{
    return false;
}
void TimeCodeEdit::MarkUnreadable(const QString&) {}
void TimeCodeEdit::SetDragTarget(DragTarget target)
{
    d_->target = std::move(target);
}
void TimeCodeEdit::CancelDrag() {}

} // namespace Marlox
