#pragma once

#include "workbench/viewer/DisplayTransform.h"

#include <optional>

#include <QObject>

namespace Marlox {

class ViewerWidget;

/// Has the drawn colour controls show colours as a viewer shows its picture: with its exposure,
/// gamma, display and view, but not with its channels, for a colour is no channel. It goes with the
/// viewer, and controls show light as it is then.
class ControlColors final : public QObject {
    Q_OBJECT
public:
    explicit ControlColors(ViewerWidget& viewer); // which owns it
    ~ControlColors() override;

private:
    void Follow(const ViewerWidget& viewer);

    std::optional<DisplaySettings> followed_;
};

} // namespace Marlox
