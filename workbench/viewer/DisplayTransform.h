#pragma once

#include "system/color/DisplayColors.h"
#include "system/values/Image.h"

#include <atomic>
#include <memory>

#include <QImage>
#include <QStringList>

namespace Marlox {

enum class ChannelView { Color, Red, Green, Blue, Alpha, Luminance };

/// How the viewer shows scene-linear light.
struct DisplaySettings {
    double exposure = 0.0; // stops
    double gamma = 1.0;    // applied to display values: v^(1/gamma)
    ChannelView channels = ChannelView::Color;
    QString display; // of the colour configuration; empty: its default
    QString view;    // empty: the display's default

    friend bool operator==(const DisplaySettings&, const DisplaySettings&) = default;
};

/// Turns images into 8-bit pictures for the screen through the colour configuration: the one that
/// the environment variable OCIO names, else the built-in one (sRGB display). Copies share the
/// configuration. Thread-safe.
class DisplayTransform {
public:
    DisplayTransform(); // the user's configuration, or the built-in one
    /// A configuration file; the built-in one, and a Problem, when it cannot be read.
    explicit DisplayTransform(const QString& configFile);

    /// Why the user's configuration is not in use; empty when all is well.
    const QString& Problem() const { return problem_; }
    QStringList Displays() const;
    QString DefaultDisplay() const;
    QString DefaultView(const QString& display) const;
    QStringList Views(const QString& display) const;

    /// The data window of `image` as premultiplied RGBA8888; alpha is kept for the colour view and
    /// opaque for single channels. The alpha view shows coverage as it is: exposure, gamma and
    /// display do not apply to it. Values that are no numbers are black. A proxy's pixels go
    /// through half floats, which is several times as fast, and may be a code off. Runs on all
    /// cores; null when `cancelled` becomes true, or on an error, which `error` tells.
    QImage Apply(const Image& image, const DisplaySettings& settings,
                 const std::atomic<bool>* cancelled = nullptr, QString* error = nullptr) const;

    /// Single colours shown as in the picture; all of them, whatever channels `settings` ask for.
    /// Null on an error, which Apply tells.
    std::shared_ptr<const ColorDisplay> Colors(const DisplaySettings& settings) const;

private:
    struct Config;
    std::shared_ptr<const Config> config_;
    QString problem_;
};

} // namespace Marlox
