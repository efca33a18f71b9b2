#pragma once

#include "system/widgets/CustomButton.h"

namespace Marlox {

/// Chooses how much of a picture a pick takes: the pixel under the pointer, or the mean of 3 x 3 or
/// 5 x 5 pixels around it. It shows these as squares, and opens a menu. The choice is one for all
/// such buttons: the preference PREF_ColorSampleSize.
class SampleButton final : public CustomButton {
    Q_OBJECT
    Q_PROPERTY(int sampleSize READ SampleSize WRITE SetSampleSize NOTIFY SampleSizeChanged)
public:
    explicit SampleButton(QWidget* parent = nullptr);

    int SampleSize() const { return size_; } // pixels across and down: 1, 3 or 5
    void SetSampleSize(int size);            // stores the preference; none of these: does nothing

signals:
    void SampleSizeChanged(int size);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void ReadPreference();
    void ShowChoice();
    void OpenMenu();

    int size_ = 1;
};

} // namespace Marlox
