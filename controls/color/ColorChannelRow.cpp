#include "controls/color/ColorChannelRow.h"

#include "controls/color/ColorChannels.h"
#include "framework/NamedPlaces.h"
#include "framework/SliderParts.h"
#include "system/base/ScriptServices.h"
#include "system/resources/Resources.h"
#include "system/values/Input.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"
#include "widgets/SliderSettings.h"

#include <QEvent>

namespace Marlox {

namespace {

constexpr char rowLayout[] = "Controls.Color.Layout.Slider";
constexpr int firstColoredKnob = 6; // of red; green, blue and alpha follow

/// The description with a number behind each name.
ScriptVal numbered(const ScriptVal& description, const std::string& number)
{
    if (!description.IsTable())
        return description;
    ScriptVal made = ScriptVal::MakeTable();
    for (const ScriptVal& element : description.Elements())
        made.Append(numbered(element, number));
    for (const auto& [field, value] : description.Fields()) {
        const bool isName = field == "Name" || field == "name";
        made.Set(field, isName ? ScriptVal(value.ToString() + number) : numbered(value, number));
    }
    return made;
}

} // namespace

template <class Widget>
Widget* ColorChannelRow::Make(const char* place)
{
    auto* widget = new Widget(this);
    widget->setObjectName(QLatin1String(place) + QString::number(channel_));
    widget->setAttribute(Qt::WA_Resized); // the layout sizes it
    widget->hide();                       // unless the layout has a place for it
    return widget;
}

ColorChannelRow::ColorChannelRow(int channel, QWidget* parent)
    : QWidget(parent), channel_(channel), label_(Make<ElideLabel>("labelcolor")),
      slider_(Make<CustomSlider>("slidercolor")), edit_(Make<TimeCodeEdit>("editcolor")),
      reset_(Make<CustomButton>("resetcolor"))
{
    setObjectName(QStringLiteral("rowcolor") + QString::number(channel));
    label_->setFocusProxy(slider_);
    reset_->SetBitmaps("Icons.System.Reset");
    reset_->setFocusPolicy(Qt::TabFocus);
    reset_->setToolTip(tr("Back to the default"));
    SliderParts::DragThrough(*edit_, *slider_);
}

bool ColorChannelRow::Build()
{
    ScriptServices* services = ScriptServices::Installed();
    const ScriptVal description = ResData::LayoutOf(rowLayout);
    if (!services || !description.IsTable())
        return false;
    QString error;
    layout_ = services->BuildLayout(numbered(description, std::to_string(channel_)), this,
                                    PlaceNamedChild, static_cast<QWidget*>(this), &error);
    return layout_ != nullptr;
}

void ColorChannelRow::Apply(const SliderSettings& settings, const Input& input)
{
    SliderParts::Apply(settings, *slider_);
    const int component = ColorChannels::ComponentOf(channel_);
    const int style = component >= 0 ? firstColoredKnob + component : 0;
    SliderParts::ApplyKnobStyle(settings.knobStyle != 0 ? settings.knobStyle : style, *slider_);
    slider_->SetHelp(QString::fromStdString(settings.help));
    slider_->SetLocked(!input.IsChangeable());
}

QSize ColorChannelRow::minimumSizeHint() const
{
    int width = 0;
    int height = 0;
    if (layout_)
        layout_->MinimumSize(width, height);
    return {width, height};
}

bool ColorChannelRow::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest && layout_) {
        layout_->Invalidate();
        updateGeometry();
    }
    return QWidget::event(event);
}

void ColorChannelRow::resizeEvent(QResizeEvent* event)
{
    if (layout_)
        layout_->SetGeometry({0, 0, width(), height()});
    QWidget::resizeEvent(event);
}

} // namespace Marlox
