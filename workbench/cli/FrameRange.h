#pragma once

#include <optional>
#include <vector>

#include <QString>

namespace Marlox {

/// Frames to render: "7", "1-48" or "1-48x2" (every second); negative numbers may be used
/// ("-5--1"). A value type.
struct FrameRange {
    int first = 0;
    int last = 0;
    int step = 1;

    /// Null if the text is no range, runs backwards, has a step below 1 or over a million frames.
    static std::optional<FrameRange> Parse(const QString& text);
    std::vector<int> Frames() const;

    friend bool operator==(const FrameRange&, const FrameRange&) = default;
};

} // namespace Marlox
