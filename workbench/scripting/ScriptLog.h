#pragma once

#include "system/base/ScriptVal.h"

#include <vector>

#include <QObject>
#include <QStringList>

namespace Marlox {

class ControlWnd;
class MarloxDoc;

/// What controls wrote and which undo entries came of it, for scripts that check gestures.
class ScriptLog : public QObject {
    Q_OBJECT
public:
    ScriptLog(MarloxDoc& document, ControlWnd& page);

    /// Each {input, tool, value, time, final}, in order.
    ScriptVal Values() const;
    const QStringList& UndoTexts() const { return undo_; }
    void Clear();

private:
    std::vector<ScriptVal> values_;
    QStringList undo_;
};

} // namespace Marlox
