#pragma once

#include "system/base/ScriptVal.h"
#include "system/base/Types.h"

#include <memory>

#include <QObject>
#include <QStringList>
#include <QVariant>

namespace Marlox {

/// The named preferences, kept in QSettings (ini format). Names join words with points
/// ("Dialogs.ImportShape.Position"). The file lies in the user's configuration folder, or in the
/// one that the environment variable MARLOX_CONFIG names.
class MARLOXSYSTEM_EXPORT Preferences : public QObject {
    Q_OBJECT
public:
    static Preferences& Global();
    ~Preferences() override;

    QVariant Get(const QString& name, const QVariant& missing = {}) const;
    void Set(const QString& name, const QVariant& value);
    void Remove(const QString& name);
    QStringList Names() const; // alphabetical
    QString FilePath() const;
    /// Writes what has changed now rather than at the next turn of the event loop. False: the file
    /// could not be written.
    bool Flush();

signals:
    void Changed(const QString& name);

private:
    Preferences();
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
