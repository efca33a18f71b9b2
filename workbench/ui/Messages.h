#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>
#include <QString>

namespace Marlox {

class RenderContext;

/// Shows an error in a dialog and waits for it to be closed. Scripts answer it like any modal
/// dialog.
void ShowError(QWidget* parent, const QString& text);

enum class SaveChoice { Save, Discard, Cancel };
/// Asks what to do with unsaved changes of the document named `name`.
SaveChoice AskToSave(QWidget* parent, const QString& name);

enum class RecoveryChoice { Open, Discard, Later };
/// Asks whether to open the newest of `count` recovery copies, to discard them all, or to be asked
/// again at the next start.
RecoveryChoice AskToRecover(QWidget* parent, int count);
void ShowAbout(QWidget* parent);

/// Progress of a file that takes long to read, with a button to give it up.
class ReadingDlg : public QProgressDialog {
public:
    ReadingDlg(QWidget* parent, const QString& text);

    /// To be called all the while: paints the window, shows itself after half a second and cancels
    /// the reading when asked to.
    void Watch(RenderContext& reading);

private:
    QElapsedTimer since_;
};

} // namespace Marlox
