#include "system/document/Preferences.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace Marlox {

namespace {

QString settingsFile()
{
    QString folder = qEnvironmentVariable("MARLOX_CONFIG");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                 QStringLiteral("/marlox");
    return QDir(folder).filePath(QStringLiteral("preferences.ini"));
}

} // namespace

class Preferences::Private {
public:
    QSettings settings{settingsFile(), QSettings::IniFormat};
};

Preferences& Preferences::Global()
{
    static Preferences preferences;
    return preferences;
}

Preferences::Preferences() : d_(std::make_unique<Private>())
{
    d_->settings.setIniCodec("UTF-8");
}

Preferences::~Preferences() = default;

QVariant Preferences::Get(const QString& name, const QVariant& missing) const
{
    return d_->settings.value(name, missing);
}

void Preferences::Set(const QString& name, const QVariant& value)
{
    if (name.isEmpty() || (d_->settings.contains(name) && d_->settings.value(name) == value))
        return;
    d_->settings.setValue(name, value);
    emit Changed(name);
}

void Preferences::Remove(const QString& name)
{
    if (name.isEmpty() || !d_->settings.contains(name)) // the empty name would remove everything
        return;
    d_->settings.remove(name);
    emit Changed(name);
}

QStringList Preferences::Names() const
{
    QStringList names = d_->settings.allKeys();
    names.sort();
    return names;
}

QString Preferences::FilePath() const
{
    return d_->settings.fileName();
}

bool Preferences::Flush()
{
    d_->settings.sync();
    return d_->settings.status() == QSettings::NoError;
}

} // namespace Marlox
