#pragma once

#include <QWidget>

namespace Marlox {

/// A horizontal line across the middle of the widget: whole device pixels, as many as are nearest
/// to one pixel at the screen's ratio, so that it is crisp on any screen.
class CustomSeparator final : public QWidget {
    Q_OBJECT
public:
    explicit CustomSeparator(QWidget* parent = nullptr) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Marlox
