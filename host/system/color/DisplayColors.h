#pragma once

#include "system/base/MxColor.h"

#include <array>
#include <memory>
#include <vector>

#include <QObject>

namespace Marlox {

/// How a viewer makes scene-linear light into what its screen shows. Called on the user-interface
/// thread.
class MARLOXSYSTEM_EXPORT ColorDisplay {
public:
    virtual ~ColorDisplay();
    /// `count` colours of three components, red first, in place: from scene-linear light to codes
    /// of the screen, where 0 to 1 is all it has. Results may lie outside.
    virtual void Apply(float* rgb, int count) const = 0;
};

/// The colours of the screen for those of tools: drawn colour controls show swatches, fields and
/// wheels as the viewer would show a picture of that colour. Until a viewer sets its own display,
/// and without a viewer, light is shown as it is: 0 is black and 1 is full. User-interface thread.
class MARLOXSYSTEM_EXPORT DisplayColors : public QObject {
    Q_OBJECT
public:
    static DisplayColors& Global();

    /// Null: light as it is. What shows colours is repainted. Cheap: nothing is computed until it
    /// is asked for.
    void SetDisplay(std::shared_ptr<const ColorDisplay> display);

    /// What `count` colours look like, opaque; what is no number is black.
    void Show(const float* rgb, int count, QRgb* to) const;
    QColor Shown(double red, double green, double blue) const;

    /// A display that treats each component by itself, or none, as a table: the code of red, green
    /// or blue for light from 0 to 1 in equal steps.
    struct Curves {
        static constexpr int size = 16385; // the last is of 1
        std::array<std::vector<std::uint8_t>, 3> code;
    };
    /// Null: components are mixed, and every colour has to go through Show.
    const Curves* PerChannel() const;
    /// Whether light is shown as it is.
    bool IsPlain() const { return !display_; }
    /// Differs whenever what is shown may: pictures kept from before are out of date then.
    unsigned Generation() const { return generation_; }

signals:
    void Changed();

private:
    DisplayColors() = default;

    std::shared_ptr<const ColorDisplay> display_;
    mutable std::unique_ptr<const Curves> curves_;
    mutable bool hasCurves_ = false; // made for this display, unless it mixes components
    unsigned generation_ = 1;
};

} // namespace Marlox
