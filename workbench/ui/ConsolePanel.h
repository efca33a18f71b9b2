#pragma once

#include <QStringList>
#include <QWidget>

class QLineEdit;
class QPlainTextEdit;

namespace Marlox {

class ScriptHost;

/// The script console: what scripts print, and a line to type the next one. Up and Down go through
/// the lines typed before; Escape interrupts a running script.
class ConsolePanel : public QWidget {
    Q_OBJECT
public:
    explicit ConsolePanel(ScriptHost& host, QWidget* parent = nullptr);

    void Append(const QString& line, bool isError = false);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void RunLine();
    void Recall(int direction);

    ScriptHost& host_;
    QPlainTextEdit* output_;
    QLineEdit* line_;
    QStringList history_;
    int recalled_ = 0; // position in the history; its size: the new line
};

} // namespace Marlox
