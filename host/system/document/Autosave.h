#pragma once

#include "system/document/MarloxDoc.h"

#include <QTimer>

namespace Marlox {

/// Keeps a copy of a modified document in a folder, under a name that tells which process it
/// belongs to. The copy goes with this object, when the document is saved, and when it is modified
/// no more; a process that dies leaves it behind.
class MarloxDoc::Autosave {
public:
    Autosave(MarloxDoc& document, const QString& folder, int intervalSeconds);
    ~Autosave();
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    /// The document has changed: write within the interval.
    void Schedule();
    void RemoveCopy();
    /// The leftover file that the document was recovered from: removed with the copy, or once there
    /// is one.
    void AdoptLeftover(const QString& path) { leftover_ = path; }

    /// Copies in `folder` whose processes are gone, newest first.
    static QStringList Leftovers(const QString& folder);

private:
    void Write();

    MarloxDoc& document_;
    QString path_;
    QString leftover_;
    QTimer timer_;
};

} // namespace Marlox
