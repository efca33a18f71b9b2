#pragma once

#include "system/base/Types.h"

#include <QWidget>

namespace Marlox {

/// One line of text that is shortened with an ellipsis when it does not fit; the whole text is then
/// its tooltip. Lighter than a QLabel: inspectors have hundreds.
class MARLOXSYSTEM_EXPORT ElideLabel : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ Text WRITE SetText)
public:
    /// Numbers of the elide modes, as controls name them: 0 left, 1 right, 2 middle, 3 none.
    explicit ElideLabel(QWidget* parent = nullptr, int elideMode = 1);

    QString Text() const { return text_; }
    void SetText(const QString& text);
    /// The text as it is drawn at the present width.
    QString ShownText() const;
    void SetElideMode(int mode);
    void SetAlignment(Qt::Alignment alignment);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    QString text_;
    int elideMode_;
    Qt::Alignment alignment_ = Qt::AlignLeft | Qt::AlignVCenter;
};

} // namespace Marlox
