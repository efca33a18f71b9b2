#pragma once

#include <QByteArray>
#include <QWidget>

namespace Marlox {

/// The mark at the left of a nest's heading: one of the eight bitmaps "Controls.Nest.Button", which
/// tell whether the nest is folded or open and what the pointer does to the heading. It takes no
/// events of its own, for the whole heading is the button.
class CustomNestButton final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QByteArray bitmap READ Bitmap)
public:
    /// Numbered as the bitmaps are.
    enum class State { Normal = 1, Hovered, Pressed, Disabled };

    explicit CustomNestButton(QWidget* parent = nullptr) : QWidget(parent) {}

    void Show(bool open, State state);
    QByteArray Bitmap() const; // resource name of what is shown

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool open_ = true;
    State state_ = State::Normal;
};

} // namespace Marlox
