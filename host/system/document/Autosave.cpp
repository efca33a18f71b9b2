#include "system/document/Autosave.h"

#include <atomic>
#include <cerrno>
#include <csignal>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

namespace Marlox {

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Tells a process from a later one with the same number: a hash of the boot and of the moment the
/// process started. Empty where the system does not tell.
QString sessionOf(qint64 pid)
{
    const QByteArray boot = contentOf(QStringLiteral("/proc/sys/kernel/random/boot_id"));
    const QByteArray stat = contentOf(QStringLiteral("/proc/%1/stat").arg(pid));
    // The name of the program stands in parentheses and may hold anything; the start time is the
    // 22nd field of the line, the 20th behind the name.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 20)
        return {};
    const QByteArray hash =
        QCryptographicHash::hash(boot + fields[19], QCryptographicHash::Sha256).toHex();
    return QString::fromLatin1(hash.left(12));
}

bool isRunning(qint64 pid, const QString& session)
{
    if (kill(pid_t(pid), 0) != 0 && errno != EPERM)
        return false;
    const QString now = sessionOf(pid);
    return now.isEmpty() || session == QLatin1String("0") || now == session;
}

QString ownFileName()
{
    static std::atomic<int> count{0};
    const qint64 pid = QCoreApplication::applicationPid();
    const QString session = sessionOf(pid);
    return QStringLiteral("autosave-%1-%2-%3.marlox")
        .arg(pid)
        .arg(session.isEmpty() ? QStringLiteral("0") : session)
        .arg(++count);
}

} // namespace

MarloxDoc::Autosave::Autosave(MarloxDoc& document, const QString& folder, int intervalSeconds)
    : document_(document), path_(QDir(folder).filePath(ownFileName()))
{
    timer_.setSingleShot(true);
    timer_.setInterval(intervalSeconds * 1000);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Write(); });
    QObject::connect(&document.Undo().Stack(), &QUndoStack::indexChanged, &timer_,
                     [this] { Schedule(); });
}

MarloxDoc::Autosave::~Autosave()
{
    RemoveCopy();
}

void MarloxDoc::Autosave::Schedule()
{
    if (!timer_.isActive())
        timer_.start();
}

void MarloxDoc::Autosave::RemoveCopy()
{
    timer_.stop();
    QFile::remove(path_);
    if (!leftover_.isEmpty())
        QFile::remove(std::exchange(leftover_, {}));
}

void MarloxDoc::Autosave::Write()
{
    if (!document_.IsModified()) {
        RemoveCopy();
        return;
    }
    const std::string text = document_.TextWithOrigin(document_.FilePath());
    QDir().mkpath(QFileInfo(path_).path());
    QSaveFile file(path_);
    if (text.empty() || !file.open(QIODevice::WriteOnly) ||
        file.write(text.data(), qint64(text.size())) != qint64(text.size()) || !file.commit()) {
        emit document_.AutosaveFailed(
            tr("The autosave copy \"%1\" could not be written: %2")
                .arg(QDir::toNativeSeparators(path_), file.errorString()));
        return;
    }
    if (!leftover_.isEmpty())
        QFile::remove(std::exchange(leftover_, {}));
}

QStringList MarloxDoc::Autosave::Leftovers(const QString& folder)
{
    static const QRegularExpression pattern(
        QStringLiteral("^autosave-([0-9]{1,9})-([0-9a-f]+)-[0-9]+\\.marlox$"));
    QStringList found;
    const QDir directory(folder);
    for (const QString& name : directory.entryList(QDir::Files, QDir::Time)) {
        const auto match = pattern.match(name);
        if (match.hasMatch() && !isRunning(match.captured(1).toLongLong(), match.captured(2)))
            found += directory.filePath(name);
    }
    return found;
}

} // namespace Marlox
