#pragma once

#include "system/controls/HostDialogs.h"
#include "system/shapes/ShapeKeys.h"

#include <cmath>
#include <iterator>
#include <random>
#include <set>

#include <QStringList>
#include <QTemporaryDir>

namespace Marlox {

// What random tests of shapes need: chance by a seed, dialogs that answer by it, and what a sound
// shape is.

class Dice {
public:
    explicit Dice(unsigned seed) : random_(seed) {}
    int Below(int limit) { return int(random_() % unsigned(limit)); }
    bool OneIn(int count) { return Below(count) == 0; }
    template <class Items>
    const auto& Of(const Items& items)
    {
        return items[std::size_t(Below(int(std::size(items))))];
    }
    QString Text()
    {
        static const char* const texts[] = {"2",  "3",   "1",     "0",   "-1",  "7.5",
                                            "",   "abc", "1e308", "nan", "inf", "50%",
                                            "*2", "-40", "12",    "1,5", "100", "0.25"};
        return QString::fromLatin1(Of(texts));
    }

private:
    std::mt19937 random_;
};

/// Answers at random; files lie in a folder.
class DiceDialogs final : public HostDialogs {
public:
    explicit DiceDialogs(Dice& dice) : dice_(dice), before_(Install(this)) {}
    ~DiceDialogs() override { Install(before_); }

    void Message(Kind, const QString&, const QString&) override {}
    Answer Ask(const QString&, const QString&, bool) override { return Answer(dice_.Below(3)); }
    std::optional<QString> AskText(const TextRequest&) override
    {
        if (++asked_ % 4 == 0) // questions are asked again until they are answered well
            return {};
        return dice_.Text();
    }
    std::optional<double> AskNumber(const NumberRequest& request) override
    {
        const double low = std::max(request.minimum, -100.0);
        const double high = std::min(request.maximum, 100.0);
        return dice_.OneIn(4)
                   ? std::nullopt
                   : std::optional(std::floor(low + (high - low) * dice_.Below(11) / 10));
    }
    QString OpenFile(const FileRequest&) override { return File(); }
    QString SaveFile(const FileRequest&) override { return File(); }
    std::optional<MxColor> ChooseColor(const ColorRequest&) override
    {
        return dice_.OneIn(2) ? std::optional(MxColor(u8(dice_.Below(256)), 40, 90)) : std::nullopt;
    }

private:
    QString File()
    {
        static const char* const names[] = {"a.dfsh", "b.dfsh", "a.dfmo", "b.dfmo", "a.mot"};
        return dice_.OneIn(4) ? QString() : folder_.filePath(QString::fromLatin1(dice_.Of(names)));
    }

    Dice& dice_;
    HostDialogs* before_;
    QTemporaryDir folder_;
    int asked_ = 0;
};

/// What is wrong with the shapes of an input; empty: nothing.
inline QString FaultOf(const Input& input)
{
    std::vector<const PolyLine*> shapes;
    if (const auto* plain = dynamic_cast<const PolyLine*>(input.GetState().value.Get());
        plain && !input.IsAnimated())
        shapes.push_back(plain);
    for (const auto& [time, key] : input.GetAnimation().Keys())
        shapes.push_back(dynamic_cast<const PolyLine*>(key.value.Get()));
    for (const PolyLine* shape : shapes) {
        if (!shape)
            return QStringLiteral("a key without a shape");
        const PolyLine& first = *shapes.front();
        if (shape->GetCount() != first.GetCount() || shape->IsClosed() != first.IsClosed() ||
            shape->IsEnabled() != first.IsEnabled() || shape->GetDataType() != first.GetDataType())
            return QStringLiteral("keys differ in points, end, kind or whether they are enabled");
        std::set<u32> ids;
        for (int i = 0; i < shape->GetCount(); ++i) {
            const PolyPoint& point = *shape->GetPoint(i);
            const PolyPoint& other = *first.GetPoint(i);
            if (point.id == 0 || !ids.insert(point.id).second)
                return QStringLiteral("point %1 has the id %2 of another").arg(i).arg(point.id);
            if (point.id != other.id || point.flags != other.flags)
                return QStringLiteral("point %1: ids %2 and %3, flags %4 and %5")
                    .arg(i)
                    .arg(other.id)
                    .arg(point.id)
                    .arg(other.flags)
                    .arg(point.flags);
            for (const double each :
                 {point.x, point.y, point.inX, point.inY, point.outX, point.outY, point.tension}) {
                if (!std::isfinite(each))
                    return QStringLiteral("point %1 is nowhere").arg(i);
            }
        }
        for (const PointLink& link : shape->Links()) {
            if (shape->GetIndex(link.point) < 0)
                return QStringLiteral("a link of point %1, which is not there").arg(link.point);
        }
    }
    return {};
}

/// Where two texts begin to differ.
inline QString Difference(const std::string& is, const std::string& was)
{
    const QStringList now = QString::fromStdString(is).split('\n');
    const QStringList before = QString::fromStdString(was).split('\n');
    int line = 0;
    while (line < now.size() && line < before.size() && now[line] == before[line])
        ++line;
    return QStringLiteral("line %1 is\n%2\ninstead of\n%3")
        .arg(line)
        .arg(now.mid(std::max(0, line - 3), 12).join('\n'),
             before.mid(std::max(0, line - 3), 12).join('\n'));
}

} // namespace Marlox
