#pragma once

#include "system/controls/Layout.h"

#include <QWidget>

namespace Marlox {

class CustomButton;
class CustomSlider;
class ElideLabel;
class Input;
class TimeCodeEdit;
struct SliderSettings;

/// The row of one channel in a colour control: name, slider, button to the default, and edit, in a
/// layout of its own. Widgets and their places have the number of the channel behind their names,
/// from 0 ("slidercolor2").
class ColorChannelRow : public QWidget {
    Q_OBJECT
public:
    ColorChannelRow(int channel, QWidget* parent);

    /// Builds the layout "Controls.Color.Layout.Slider"; false if it is missing or broken.
    bool Build();
    /// Range and knob, from the tags of the channel's input; locked while that can't be changed.
    void Apply(const SliderSettings& settings, const Input& input);

    int Channel() const { return channel_; }
    LayoutObj* Layout() const { return layout_; } // null before Build
    ElideLabel& Label() const { return *label_; }
    CustomSlider& Slider() const { return *slider_; }
    TimeCodeEdit& Edit() const { return *edit_; }
    CustomButton& Reset() const { return *reset_; }

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    template <class Widget>
    Widget* Make(const char* place);

    int channel_;
    ElideLabel* label_;
    CustomSlider* slider_;
    TimeCodeEdit* edit_;
    CustomButton* reset_;
    LayoutObj* layout_ = nullptr; // owned as a child
};

} // namespace Marlox
