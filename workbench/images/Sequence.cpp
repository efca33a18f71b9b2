#include "workbench/images/Sequence.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace Marlox {

namespace {

constexpr int mostPlaces = 12;

/// Start of the file's name within the path.
int nameStart(const QString& path)
{
    return path.lastIndexOf('/') + 1;
}

} // namespace

Sequence Sequence::FromPattern(const QString& path)
{
    Sequence made;
    made.before_ = path;
    const int name = nameStart(path);
    static const QRegularExpression printfPlace("%(?:0([0-9]{1,2}))?d");
    QRegularExpressionMatch place;
    const int percent = path.lastIndexOf(printfPlace, -1, &place);
    if (percent >= name) {
        made.places_ = std::clamp(place.captured(1).toInt(), 1, mostPlaces);
        made.before_ = path.left(percent);
        made.behind_ = path.mid(place.capturedEnd());
        return made;
    }
    const int last = path.lastIndexOf('#');
    if (last < name)
        return made;
    int first = last;
    while (first > name && path[first - 1] == '#')
        --first;
    made.places_ = std::min(last - first + 1, mostPlaces);
    made.before_ = path.left(first);
    made.behind_ = path.mid(last + 1);
    return made;
}

Sequence Sequence::FromPath(const QString& path)
{
    // A file that is really called "C#.png" is meant as it stands.
    Sequence made = QFileInfo(path).isFile() ? Sequence() : FromPattern(path);
    if (made.IsSequence()) {
        made.FindFrames();
        return made;
    }
    Sequence plain;
    plain.before_ = path;
    static const QRegularExpression member("^(.*?)([0-9]{1,9})(\\.[^.0-9][^.]*)$");
    const int name = nameStart(path);
    const QRegularExpressionMatch match = member.match(path.mid(name));
    if (!match.hasMatch())
        return plain;
    made.before_ = path.left(name) + match.captured(1);
    made.behind_ = match.captured(3);
    // "9" and "10" belong together as much as "09" and "10": without leading zero there is no
    // width.
    const QString digits = match.captured(2);
    made.places_ = digits.startsWith('0') ? digits.size() : 1;
    made.FindFrames();
    if (made.frames_.size() < 2 && digits.size() > 1) {
        made.places_ = digits.size();
        made.FindFrames();
    }
    return made.frames_.size() > 1 ? made : plain;
}

void Sequence::FindFrames()
{
    frames_.clear();
    const int name = nameStart(before_);
    const QString stem = before_.mid(name);
    const QDir folder(name > 0 ? before_.left(name) : QString("."));
    for (const QString& file : folder.entryList(QDir::Files | QDir::Hidden, QDir::Unsorted)) {
        if (file.size() <= stem.size() + behind_.size() || !file.startsWith(stem) ||
            !file.endsWith(behind_))
            continue;
        const QString digits = file.mid(stem.size(), file.size() - stem.size() - behind_.size());
        bool isNumber = false;
        const int frame = digits.toInt(&isNumber);
        if (isNumber && digits == Numbered(frame)) // no "+1", no other number of zeros
            frames_.push_back(frame);
    }
    std::sort(frames_.begin(), frames_.end());
}

QString Sequence::Numbered(int frame) const
{
    return QString::asprintf("%0*d", places_, frame);
}

QString Sequence::Pattern() const
{
    return IsSequence() ? before_ + QString(places_, '#') + behind_ : before_;
}

QString Sequence::FramePath(int frame) const
{
    return IsSequence() ? before_ + Numbered(frame) + behind_ : before_;
}

int Sequence::Nearest(int frame) const
{
    if (frames_.empty())
        return frame;
    const auto after = std::upper_bound(frames_.begin(), frames_.end(), frame);
    return after == frames_.begin() ? *after : *std::prev(after);
}

} // namespace Marlox
