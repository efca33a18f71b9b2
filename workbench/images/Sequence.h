#pragma once

#include <vector>

#include <QString>

namespace Marlox {

/// A numbered sequence of image files, or one plain file. A sequence is written with a place for
/// the frame number in the file's name: "shot.####.exr" (zeros up to that many places) or
/// "shot.%04d.exr"; frame numbers may be negative. A value type.
class Sequence {
public:
    Sequence() = default;
    /// Reads the place for the number out of `path` without looking at the disk. A path without one
    /// is a plain file.
    static Sequence FromPattern(const QString& path);
    /// The same, and finds the frames on disk. A path that names one file with a number behind its
    /// name ("shot.0012.exr") becomes the sequence of all files that differ in the number alone, if
    /// there is more than one.
    static Sequence FromPath(const QString& path);

    bool IsSequence() const { return places_ > 0; }
    /// With "#" for the number, or the path of a plain file.
    QString Pattern() const;
    /// The file of a frame; the path of a plain file whatever the frame.
    QString FramePath(int frame) const;

    /// Frames found on disk by FromPath, in order.
    const std::vector<int>& Frames() const { return frames_; }
    int First() const { return frames_.empty() ? 0 : frames_.front(); }
    int Last() const { return frames_.empty() ? 0 : frames_.back(); }
    /// The frame on disk that stands in for a missing one: the nearest before it, or else the
    /// first. `frame` itself if there are none.
    int Nearest(int frame) const;

private:
    void FindFrames();
    QString Numbered(int frame) const;

    QString before_; // path up to the number; the whole path of a plain file
    QString behind_;
    int places_ = 0; // least width of the number, a minus sign included
    std::vector<int> frames_;
};

} // namespace Marlox
