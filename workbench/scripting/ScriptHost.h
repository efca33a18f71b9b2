#pragma once

#include <memory>

#include <QObject>
#include <QStringList>

namespace Marlox {

class MainWindow;

/// Runs Lua against the open application: the console's lines and `--script` files. The reference
/// of what scripts can do is docs/script-the-workbench.md. User-interface thread; a script that
/// waits (for a render, for time) runs the event loop meanwhile, and no second script starts then.
class ScriptHost : public QObject {
    Q_OBJECT
public:
    explicit ScriptHost(MainWindow& window);
    ~ScriptHost() override;

    /// False and `error` (file, line, reason) when it fails. `arguments` are the global `arg`.
    bool RunFile(const QString& path, const QStringList& arguments, QString* error);
    /// One line or block; an expression's value is printed.
    bool RunText(const QString& text, QString* error);
    /// The status that the last file ended with: its own (os.exit), or 0 or 1.
    int ExitCode() const { return exitCode_; }
    bool IsRunning() const;
    /// Ends the running script with an error at its next instruction.
    void Interrupt();

signals:
    /// What `print` and values of console lines write; one call a line.
    void Printed(const QString& line);

private:
    class Private;
    std::unique_ptr<Private> d_;
    int exitCode_ = 0;
};

} // namespace Marlox
