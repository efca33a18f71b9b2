#include "workbench/ui/Messages.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace Marlox {

void ShowError(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), text,
                    QMessageBox::Ok, parent);
    box.setObjectName("error");
    box.exec();
}

SaveChoice AskToSave(QWidget* parent, const QString& name)
{
    QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(),
                    QCoreApplication::translate("Messages", "Save the changes to %1?").arg(name),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setObjectName("asktosave");
    box.setInformativeText(
        QCoreApplication::translate("Messages", "Changes that are not saved are lost."));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return SaveChoice::Save;
    case QMessageBox::Discard:
        return SaveChoice::Discard;
    default:
        return SaveChoice::Cancel;
    }
}

bool AskToRecover(QWidget* parent, int count)
{
    QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(),
                    QCoreApplication::translate(
                        "Messages", "The workbench ended unexpectedly while a document was open."),
                    QMessageBox::Open | QMessageBox::Discard, parent);
    box.setObjectName("asktorecover");
    box.setInformativeText(
        count == 1
            ? QCoreApplication::translate("Messages", "Open the copy that was kept, or discard it?")
            : QCoreApplication::translate("Messages",
                                          "Open the newest of the %1 copies that were kept, or "
                                          "discard them all?")
                  .arg(count));
    return box.exec() == QMessageBox::Open;
}

void ShowAbout(QWidget* parent)
{
    QMessageBox box(QMessageBox::Information, QCoreApplication::applicationName(),
                    QString("%1 %2").arg(QCoreApplication::applicationName(),
                                         QCoreApplication::applicationVersion()),
                    QMessageBox::Ok, parent);
    box.setObjectName("about");
    box.setInformativeText(QCoreApplication::translate(
        "Messages", "A workbench for the standard controls: it loads them like any host and edits "
                    "real pictures with them."));
    box.exec();
}

} // namespace Marlox
