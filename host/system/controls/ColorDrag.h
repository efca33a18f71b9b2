#pragma once

#include "system/base/Types.h"

#include <vector>

#include <QEvent>

class QMimeData;
class QPixmap;
class QWidget;

namespace Marlox {

class Input;
class InputControl;

/// A colour was dropped on a control: asks the control that it was dragged from to copy its values
/// to these inputs. They are those of the control that it fell on, alive while the event is
/// delivered.
class MARLOXSYSTEM_EXPORT CopyColorEvent : public QEvent {
public:
    static constexpr QEvent::Type EventType = QEvent::Type(5149);

    explicit CopyColorEvent(std::vector<Input*> targets)
        : QEvent(EventType), targets_(std::move(targets))
    {
    }
    ~CopyColorEvent() override;
    const std::vector<Input*>& Targets() const { return targets_; }

private:
    std::vector<Input*> targets_;
};

/// Drag and drop of colours between controls of this process.
namespace ColorDrag {

/// Runs the drag of `source`'s colour from a widget until it is dropped; `swatch` is the picture at
/// the pointer. Events pass meanwhile: the control may be gone afterwards.
MARLOXSYSTEM_EXPORT void Run(InputControl& source, QWidget& from, const QPixmap& swatch);
/// The control that a colour is being dragged from; null if the data is none, or it is gone.
MARLOXSYSTEM_EXPORT InputControl* SourceOf(const QMimeData* data);
/// A drop on `target`: sends the source a CopyColorEvent with all of the target's inputs. False if
/// there is nothing to copy, or it is the source itself.
MARLOXSYSTEM_EXPORT bool Drop(const QMimeData* data, InputControl& target);

} // namespace ColorDrag

} // namespace Marlox
