#pragma once

#include <vector>

#include <QImage>
#include <QRegion>

namespace Marlox {

/// Where a picture hides what lies below it, so that the viewer neither draws nor blends with the
/// ground there. Found in bands of rows with one opaque run of columns each: never too much,
/// though a picture with holes has opaque pixels beside them that are not told. Positions are the
/// picture's pixels, y down.
class OpaqueParts {
public:
    OpaqueParts() = default; // nothing is opaque
    /// A picture with four bytes a pixel, alpha last. Goes over all of it.
    explicit OpaqueParts(const QImage& picture);

    /// The opaque pixels around which everything within `margin` pixels is opaque too, so that a
    /// filter that reaches so far mixes in no other. There is nothing beyond the picture's edges.
    QRegion Region(int margin) const;

private:
    struct Run {
        int first = 0;
        int last = 0; // exclusive; not above `first`: none
    };
    static Run RunOf(const QImage& picture, int firstRow, int lastRow);

    QSize size_;
    std::vector<Run> bands_;
};

} // namespace Marlox
