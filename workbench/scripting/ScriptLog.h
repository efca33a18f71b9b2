#pragma once

#include "system/base/ScriptVal.h"

#include <vector>

#include <QObject>
#include <QStringList>

namespace Marlox {

class ControlWnd;
class Input;
class MarloxDoc;
class Parameter;

/// What controls wrote and which undo entries came of it, for scripts that check gestures.
class ScriptLog : public QObject {
    Q_OBJECT
public:
    ScriptLog(MarloxDoc& document, ControlWnd& page);
    void OnValueWritten(Input* input, Parameter* value, double time, bool final);

    /// Each {input, tool, value, time, final}, in order.
    ScriptVal Values() const;
    const QStringList& UndoTexts() const { return undo_; }
    void Clear();

private:
    std::vector<ScriptVal> values_;
    QStringList undo_;
};

} // namespace Marlox
