#pragma once

#include "system/base/Types.h"

#include <QLineEdit>

namespace Marlox {

/// A line of text that is taken as a whole: Enter and leaving the field commit it, Escape brings
/// the last committed text back. `setText` sets the committed text and sends nothing.
class MARLOXSYSTEM_EXPORT MxLineEdit : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(QString error READ Error WRITE SetError)
public:
    explicit MxLineEdit(QWidget* parent = nullptr);
    explicit MxLineEdit(const QString& text, QWidget* parent = nullptr);

    /// The text that Escape restores.
    QString CommittedText() const { return committed_; }
    /// Commits the present text as Enter does.
    void Commit();
    /// Puts the committed text back; true if the text was another.
    bool Restore();

    /// What the text is of, written before it in the field; empty: nothing.
    void SetCaption(const QString& caption);
    QString Caption() const { return caption_; }

    /// Marks the text as wrong; `reason` is shown in the tooltip and to screen readers. An empty
    /// reason, and any change of the text, clears the mark.
    void SetError(const QString& reason);
    QString Error() const { return error_; }

signals:
    /// The user committed a text that differs from the last committed one.
    void Committed(const QString& text);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void OnTextChanged(const QString& text);

    QString committed_;
    QString caption_;
    QString error_;
    QString plainToolTip_;
};

} // namespace Marlox
