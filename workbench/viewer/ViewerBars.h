#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

namespace Marlox {

/// A strip over the viewer's top that tells why the picture is not what the document asks for.
class MessageBar : public QWidget {
    Q_OBJECT
public:
    explicit MessageBar(QWidget* parent);

    /// Empty hides the strip.
    void SetText(const QString& text);
    QString Text() const { return text_; }
    int HeightFor(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
};

/// A plate at the viewer's bottom with the progress of a long render and a button to give it up.
class ProgressPlate : public QWidget {
    Q_OBJECT
public:
    explicit ProgressPlate(QWidget* parent);

    void Show(const QString& toolName, double fraction);

signals:
    void Cancelled();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* tool_;
    QProgressBar* bar_;
    QToolButton* cancel_;
};

} // namespace Marlox
