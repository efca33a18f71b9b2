#include "system/shapes/import/FxsFile_p.h"
#include "system/shapes/import/ImportText_p.h"

#include <algorithm>
#include <cmath>
#include <set>

#include <QXmlStreamReader>

namespace Marlox {

namespace {

constexpr int maxDepth = 64; // of elements within each other
constexpr std::size_t maxObjects = 20'000;
constexpr int maxPairs = 4; // of numbers in a point

/// Properties that shapes and layers are made of here.
const std::set<std::string> usedProperties = {"path",
                                              "opacity",
                                              "feather",
                                              "mode",
                                              "invert",
                                              "objects",
                                              "transform.matrix",
                                              "transform.scale",
                                              "transform.anchor",
                                              "transform.rotate",
                                              "transform.position"};
/// Those that are known and change nothing here.
const std::set<std::string> idleProperties = {"strokeWidth", "motionBlur", "outlineColor"};

bool IsTrue(const QString& text)
{
    return text.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0;
}

/// The last thing that is wrong within an element, kept until the reader stands behind that. What
/// is wrong with the file as a whole is thrown at once.
class Problem {
public:
    template <class Read>
    void Of(Read read)
    {
        try {
            read();
        } catch (const ImportFailure& failure) {
            if (failure.isFatal)
                throw;
            kept_ = failure;
        }
    }
    void ThrowIfAny() const
    {
        if (kept_)
            throw *kept_;
    }

private:
    std::optional<ImportFailure> kept_;
};

/// Numbers in brackets: "(1,2)", "(1,2),(3,4)", "1". Brackets and commas only part them.
std::vector<double> NumbersOf(const std::string& text, int line)
{
    std::string plain = text;
    for (char& c : plain) {
        if (c == '(' || c == ')' || c == ',')
            c = ' ';
    }
    std::vector<std::string_view> words;
    SplitFields(plain, words);
    std::vector<double> numbers;
    for (const std::string_view word : words)
        numbers.push_back(Number(word, line));
    return numbers;
}

class FxsReader {
public:
    FxsReader(ImportJob& job, const QByteArray& xml) : job_(job), xml_(xml) {}
    FxsFile Read();

private:
    int Line() const { return int(xml_.lineNumber()); }
    bool NextChild();
    void Skip();
    void CheckDocument();
    void ReadRoot();
    void ReadInto(FxsObject& object, int depth);
    void ReadChild(FxsObject& parent, int depth);
    void ReadProperty(FxsObject& object, int depth);
    void ReadValues(FxsProperty& property);
    void ReadKey(FxsProperty& property, FxsKey key);
    void ReadPath(FxsKey& key);
    void ReadPoint(FxsKey& key);
    QString Attribute(const char* name) const
    {
        return xml_.attributes().value(QLatin1String(name)).toString();
    }

    ImportJob& job_;
    QXmlStreamReader xml_;
    FxsFile file_;
    std::size_t objects_ = 0;
};

/// Whether there is a further element within the present one, which is entered then.
bool FxsReader::NextChild()
{
    const bool isOne = xml_.readNextStartElement();
    if (xml_.hasError())
        throw ImportFailure{Line(), xml_.errorString().toStdString(), true};
    return isOne;
}

/// To the end of the present element, whatever is in it.
void FxsReader::Skip()
{
    int depth = 1;
    while (depth > 0 && !xml_.atEnd()) {
        const QXmlStreamReader::TokenType token = xml_.readNext();
        depth += token == QXmlStreamReader::StartElement;
        depth -= token == QXmlStreamReader::EndElement;
        if (depth > maxDepth)
            throw ImportFailure{Line(), "its elements are nested too deeply", true};
    }
}

/// Up to the root element: nothing may be declared there.
void FxsReader::CheckDocument()
{
    while (!xml_.atEnd() && xml_.readNext() != QXmlStreamReader::StartElement) {
        if (xml_.tokenType() == QXmlStreamReader::DTD)
            throw ImportFailure{Line(), "documents with declarations of types are refused", true};
    }
    if (xml_.hasError())
        throw ImportFailure{Line(), xml_.errorString().toStdString(), true};
}

void FxsReader::ReadRoot()
{
    const auto number = [&](const char* name) -> std::optional<double> {
        const std::string text = Attribute(name).toStdString();
        if (text.empty())
            return std::nullopt;
        return Number(text, Line());
    };
    file_.width = number("width").value_or(0.0);
    file_.height = number("height").value_or(0.0);
    file_.startFrame = number("sessionStartFrame");
}

/// Elements that only wrap others are gone through.
void FxsReader::ReadInto(FxsObject& object, int depth)
{
    if (depth > maxDepth)
        throw ImportFailure{Line(), "its elements are nested too deeply", true};
    while (NextChild()) {
        const QStringRef name = xml_.name();
        if (name == QLatin1String("Layer") || name == QLatin1String("Shape") ||
            name == QLatin1String("Object"))
            ReadChild(object, depth + 1);
        else if (name == QLatin1String("Property"))
            ReadProperty(object, depth + 1);
        else
            ReadInto(object, depth + 1);
    }
}

void FxsReader::ReadChild(FxsObject& parent, int depth)
{
    const QString element = xml_.name().toString();
    const QString type = element == QLatin1String("Object") ? Attribute("type") : element;
    const bool isLayer = type == QLatin1String("Layer");
    if (!isLayer && type != QLatin1String("Shape")) {
        job_.LeaveAside(Line(), "an object of type " + Quoted(type.toStdString()) + " is not read");
        Skip();
        return;
    }
    if (++objects_ > maxObjects)
        throw ImportFailure{Line(), "it holds too many objects", true};
    FxsObject object;
    object.isLayer = isLayer;
    object.name = Attribute("label").toStdString();
    object.isHidden = IsTrue(Attribute("hidden"));
    object.isLocked = IsTrue(Attribute("locked"));
    object.line = Line();
    ReadInto(object, depth);
    parent.children.push_back(std::move(object));
}

void FxsReader::ReadProperty(FxsObject& object, int depth)
{
    const std::string id = Attribute("id").toStdString();
    if (id == "objects")
        return ReadInto(object, depth);
    if (!usedProperties.contains(id)) {
        if (!idleProperties.contains(id))
            job_.LeaveAside(0, "properties " + Quoted(id) + " are not read");
        return Skip();
    }
    FxsProperty property;
    try {
        ReadValues(property);
    } catch (const ImportFailure& failure) {
        if (failure.isFatal)
            throw;
        object.problem = failure;
        return; // the reader stands behind the property, see ReadValues
    }
    object.properties[id] = std::move(property);
}

/// Values and keys up to the end of the property, also behind one that is bad.
void FxsReader::ReadValues(FxsProperty& property)
{
    Problem problem;
    while (NextChild()) {
        const bool isKey = xml_.name() == QLatin1String("Key");
        if (!isKey && xml_.name() != QLatin1String("Value")) {
            Skip();
            continue;
        }
        constexpr std::size_t pointsToKey = 4; // in memory
        job_.CountPoints(pointsToKey, Line());
        FxsKey key;
        key.line = Line();
        const std::string frame = Attribute("frame").toStdString();
        const QString interpolation = Attribute("interp");
        if (interpolation == QLatin1String("hold"))
            key.interpolation = Interpolation::Step;
        else if (!interpolation.isEmpty() && interpolation != QLatin1String("linear"))
            key.interpolation = Interpolation::Smooth;
        problem.Of([&] { key.frame = isKey ? Number(frame, key.line) : 0.0; });
        property.isAnimated = property.isAnimated || isKey;
        problem.Of([&] { ReadKey(property, std::move(key)); });
    }
    problem.ThrowIfAny();
    std::stable_sort(property.keys.begin(), property.keys.end(),
                     [](const FxsKey& a, const FxsKey& b) { return a.frame < b.frame; });
}

/// Text, or a path, up to the end of the element.
void FxsReader::ReadKey(FxsProperty& property, FxsKey key)
{
    Problem problem;
    QString text;
    while (!xml_.atEnd() && xml_.readNext() != QXmlStreamReader::EndElement) {
        if (xml_.isCharacters()) {
            text += xml_.text();
        } else if (xml_.isStartElement() && xml_.name() == QLatin1String("Path")) {
            problem.Of([&] { ReadPath(key); });
        } else if (xml_.isStartElement()) {
            Skip();
        }
    }
    if (xml_.hasError())
        throw ImportFailure{Line(), xml_.errorString().toStdString(), true};
    problem.ThrowIfAny();
    key.text = text.trimmed().toStdString();
    const bool isNumbers =
        !key.text.empty() && !std::isalpha(static_cast<unsigned char>(key.text[0]));
    if (isNumbers)
        key.numbers = NumbersOf(key.text, key.line);
    property.keys.push_back(std::move(key));
}

void FxsReader::ReadPath(FxsKey& key)
{
    key.isClosed = !Attribute("closed").isEmpty() ? IsTrue(Attribute("closed")) : true;
    key.pathType = Attribute("type").toStdString();
    Problem problem;
    while (NextChild()) {
        if (xml_.name() != QLatin1String("Point")) {
            Skip();
            continue;
        }
        problem.Of([&] { ReadPoint(key); });
    }
    problem.ThrowIfAny();
}

void FxsReader::ReadPoint(FxsKey& key)
{
    const int line = Line();
    const std::string text =
        xml_.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement).toStdString();
    if (xml_.hasError())
        throw ImportFailure{Line(), xml_.errorString().toStdString(), true};
    const std::vector<double> numbers = NumbersOf(text, line);
    if (numbers.size() < 2 || numbers.size() % 2 != 0 || numbers.size() > 2 * maxPairs)
        throw ImportFailure{line, "a point is made of pairs (x,y), not " + Quoted(text)};
    if (key.path.size() >= std::size_t(maxImportedPoints)) {
        throw ImportFailure{
            line, "a shape has at most " + std::to_string(maxImportedPoints) + " points", true};
    }
    job_.CountPoints(1, line);
    const ShapePlace at{numbers[0], numbers[1]};
    if (key.pathType != "Bezier") {
        key.path.push_back(PointFromPlaces(at, at, at));
        return;
    }
    if (numbers.size() != 6)
        throw ImportFailure{line, "a Bezier point has three pairs, not " + Quoted(text)};
    key.path.push_back(PointFromPlaces(at, {numbers[2], numbers[3]}, {numbers[4], numbers[5]}));
}

FxsFile FxsReader::Read()
{
    CheckDocument();
    if (!xml_.isStartElement())
        throw ImportFailure{0, "it holds no elements", true};
    ReadRoot();
    const QStringRef name = xml_.name();
    if (name == QLatin1String("Layer") || name == QLatin1String("Shape") ||
        name == QLatin1String("Object"))
        ReadChild(file_.root, 0);
    else
        ReadInto(file_.root, 0);
    while (!xml_.atEnd()) // what stands behind the root must be in order, too
        xml_.readNext();
    if (xml_.hasError())
        throw ImportFailure{Line(), xml_.errorString().toStdString(), true};
    return std::move(file_);
}

} // namespace

std::array<FxsPart, 4> FxsPartsAt(std::span<const FxsKey> keys, std::size_t next, double frame)
{
    const FxsKey& from = keys[next - 1];
    const FxsKey& to = keys[next];
    const FxsKey& before = next > 1 ? keys[next - 2] : from;
    const FxsKey& behind = next + 1 < keys.size() ? keys[next + 1] : to;
    const double span = to.frame - from.frame;
    const double t = (frame - from.frame) / span;
    const double s = 1.0 - t;
    if (from.interpolation != Interpolation::Smooth)
        return {{{before, 0.0}, {from, s}, {to, t}, {behind, 0.0}}};
    // Cubic Hermite: the slope at a key is that of the line between its neighbours.
    const double slopeIn = span * t * s * s / (to.frame - before.frame);
    const double slopeOut = -span * t * t * s / (behind.frame - from.frame);
    return {{{before, -slopeIn},
             {from, s * s * (1.0 + 2.0 * t) - slopeOut},
             {to, t * t * (3.0 - 2.0 * t) + slopeIn},
             {behind, slopeOut}}};
}

std::vector<double> FxsProperty::At(double frame) const
{
    const auto next =
        std::upper_bound(keys.begin(), keys.end(), frame,
                         [](double wanted, const FxsKey& key) { return wanted < key.frame; });
    if (next == keys.begin())
        return keys.empty() ? std::vector<double>() : next->numbers;
    const FxsKey& last = *(next - 1);
    if (next == keys.end() || last.interpolation == Interpolation::Step || last.frame == frame)
        return last.numbers;
    if (last.numbers.size() != next->numbers.size())
        return {};
    std::vector<double> out(last.numbers.size());
    for (const auto& [key, weight] : FxsPartsAt(keys, std::size_t(next - keys.begin()), frame)) {
        if (key.numbers.size() != out.size())
            return {};
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] += weight * key.numbers[i];
    }
    return out;
}

const FxsProperty* FxsObject::Find(const char* id) const
{
    const auto found = properties.find(id);
    return found != properties.end() && !found->second.keys.empty() ? &found->second : nullptr;
}

FxsFile ReadFxsFile(ImportJob& job)
{
    const QByteArray xml = FxsXml(job.Bytes());
    return FxsReader(job, xml).Read();
}

} // namespace Marlox
