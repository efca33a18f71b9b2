#pragma once

#include "system/base/Types.h"

#include <QMessageBox>

namespace Marlox {

/// A message with what it is about in bright letters and the rest below, wide enough for a path or
/// a sentence on one line. Of many lines the first ones show, and all when asked for. Its title is the application's name, its texts are plain.
class MARLOXSYSTEM_EXPORT MessageBox : public QMessageBox {
    Q_OBJECT
public:
    /// `name` is the object's, by which scripts tell messages apart.
    MessageBox(QWidget* parent, const char* name, Icon icon, const QString& text,
               const QString& details = {});
};

} // namespace Marlox
