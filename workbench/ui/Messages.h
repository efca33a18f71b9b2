#pragma once

#include <QString>

class QWidget;

namespace Marlox {

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

} // namespace Marlox
