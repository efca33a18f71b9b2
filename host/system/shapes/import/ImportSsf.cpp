#include "system/shapes/import/ImportText_p.h"

#include <algorithm>

namespace Marlox {

// SSF, "shake_shape_data": a keyword and its value in each line. How sure the facts are:
// - keywords, their order, twelve absolute numbers for each vertex, y upwards: seen in real files;
// - no soft edge where the edge is all zero or equals the shape, linear keys, frames from 0 where
//   no key_time is told, data on several lines: as other programs read it;
// - six numbers for each vertex: a guess, told from the count.

namespace {

constexpr int maxSsfKeys = 100'000;
constexpr std::size_t numbersWithEdge = 12;
constexpr std::size_t numbersWithoutEdge = 6;

class SsfReader {
public:
    explicit SsfReader(ImportJob& job) : job_(job), lines_(job.Text()) {}
    void Read();

private:
    struct Keyword {
        const char* name;
        void (SsfReader::*read)();
    };
    static const Keyword keywords[];

    void ReadHeader();
    void ReadLine();
    void FinishShape();
    void DropEmptyEdge();
    double Value();
    bool Flag() { return Value() != 0.0; }
    int Whole(int high, const char* what);
    ImportedShape& Shape();

    void OnShapeCount() { shapeCount_ = Whole(10'000, "the number of shapes"); }
    void OnName();
    void OnClosed() { Shape().closed = Flag(); }
    void OnVisible() { Shape().visible = Flag(); }
    void OnLocked() { Shape().locked = Flag(); }
    void OnEdge() { hasEdge_ = Flag(); }
    void OnVertexCount() { vertexCount_ = Whole(maxImportedPoints, "the number of vertices"); }
    void OnKeyCount() { keyCount_ = Whole(maxSsfKeys, "the number of keys"); }
    void OnKeyTime() { keyTime_ = Value(); }
    void OnParent();
    void OnVertices();
    void OnNothing() {} // known, and of no use here

    bool ReadNumbers();
    void AddKey();
    PolyPoint PointAt(const double* six) const;

    ImportJob& job_;
    TextLines lines_;
    ImageFrame image_;
    std::optional<ImportedShape> shape_;   // the one being read
    std::vector<double> numbers_;          // of its present key
    std::optional<ImportFailure> problem_; // why it can't be taken
    std::optional<double> keyTime_;
    bool hasEdge_ = false;
    bool edgeDiffers_ = false;
    bool edgeIsZero_ = true;
    int vertexCount_ = 0;
    int keyCount_ = 0;
    int keysSeen_ = 0;
    int shapeCount_ = 0;
    int shapesSeen_ = 0;
};

const SsfReader::Keyword SsfReader::keywords[] = {
    {"num_shapes", &SsfReader::OnShapeCount},  {"shape_name", &SsfReader::OnName},
    {"parent_name", &SsfReader::OnParent},     {"closed", &SsfReader::OnClosed},
    {"visible", &SsfReader::OnVisible},        {"locked", &SsfReader::OnLocked},
    {"edge_shape", &SsfReader::OnEdge},        {"num_vertices", &SsfReader::OnVertexCount},
    {"num_key_times", &SsfReader::OnKeyCount}, {"key_time", &SsfReader::OnKeyTime},
    {"vertex_data", &SsfReader::OnVertices},   {"motion_blur", &SsfReader::OnNothing},
    {"shutter_timing", &SsfReader::OnNothing}, {"shutter_offset", &SsfReader::OnNothing},
    {"tangents", &SsfReader::OnNothing},       {"center_x", &SsfReader::OnNothing},
    {"center_y", &SsfReader::OnNothing},       {"color_r", &SsfReader::OnNothing},
    {"color_g", &SsfReader::OnNothing},        {"color_b", &SsfReader::OnNothing},
    {"color_a", &SsfReader::OnNothing},
};

double SsfReader::Value()
{
    if (lines_.Count() != 2) {
        throw ImportFailure{lines_.LineNumber(), Quoted(lines_.Field(0)) + " needs one value",
                            true};
    }
    return lines_.NumberAt(1);
}

int SsfReader::Whole(int high, const char* what)
{
    Value();
    return WholeNumber(lines_.Field(1), lines_.LineNumber(), 0, high, what);
}

ImportedShape& SsfReader::Shape()
{
    if (!shape_) {
        throw ImportFailure{lines_.LineNumber(),
                            Quoted(lines_.Field(0)) + " stands before the first shape_name", true};
    }
    return *shape_;
}

void SsfReader::ReadHeader()
{
    lines_.Require("its first line");
    if (lines_.Field(0) != "shake_shape_data")
        throw ImportFailure{lines_.LineNumber(), "this is no shape file of the .ssf kind", true};
    if (lines_.Count() < 2 || lines_.Field(1) != "4.0")
        job_.Assume(lines_.LineNumber(), "its version is read like 4.0");
}

void SsfReader::OnName()
{
    FinishShape();
    shape_.emplace();
    shape_->line = lines_.LineNumber();
    std::string_view name = lines_.RestFrom(1);
    if (name.size() > 1 && name.front() == '"' && name.back() == '"')
        name = name.substr(1, name.size() - 2);
    shape_->name = name;
    problem_.reset();
    keyTime_.reset();
    hasEdge_ = edgeDiffers_ = false;
    edgeIsZero_ = true;
    vertexCount_ = keyCount_ = keysSeen_ = 0;
    ++shapesSeen_;
}

void SsfReader::OnParent()
{
    if (lines_.Count() > 1) {
        job_.LeaveAside(lines_.LineNumber(), Quoted(Shape().name) +
                                                 " has a parent shape: it is not "
                                                 "joined to it here");
    }
}

/// Begins with a letter, and is no number that is not finite.
bool IsWord(std::string_view text)
{
    std::string low;
    for (const char c : text.substr(0, 9))
        low += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    return low[0] >= 'a' && low[0] <= 'z' && !low.starts_with("nan") && low != "inf" &&
           low != "infinity";
}

/// The numbers of one key, also from following lines up to one that begins with a word. False: one
/// of them is none.
bool SsfReader::ReadNumbers()
{
    numbers_.clear();
    const std::size_t most = std::size_t(vertexCount_) * numbersWithEdge;
    std::size_t first = 1;
    bool isFine = true;
    do {
        for (std::size_t i = first; i < lines_.Count(); ++i) {
            double value = 0.0;
            try {
                value = isFine ? lines_.NumberAt(i) : 0.0;
            } catch (const ImportFailure& failure) {
                problem_ = failure;
                isFine = false;
            }
            if (numbers_.size() <= most)
                numbers_.push_back(value);
        }
        first = 0;
        if (!lines_.NextFilled())
            return isFine;
    } while (!IsWord(lines_.Field(0)));
    lines_.PutBack();
    return isFine;
}

PolyPoint SsfReader::PointAt(const double* six) const
{
    return PointFromPlaces(image_.FromPixels(six[0], six[1]), image_.FromPixels(six[2], six[3]),
                           image_.FromPixels(six[4], six[5]));
}

void SsfReader::AddKey()
{
    const std::size_t stride = numbers_.size() / std::size_t(vertexCount_);
    ImportedKey key{*keyTime_, Interpolation::Linear, {}};
    ImportedKey edge = key;
    for (std::size_t at = 0; at < numbers_.size(); at += stride) {
        const double* vertex = numbers_.data() + at;
        key.points.push_back(PointAt(vertex));
        if (stride != numbersWithEdge || !hasEdge_)
            continue;
        edge.points.push_back(PointAt(vertex + numbersWithoutEdge));
        edgeDiffers_ = edgeDiffers_ || !std::equal(vertex, vertex + 6, vertex + 6);
        edgeIsZero_ = edgeIsZero_ && std::count(vertex + 6, vertex + 12, 0.0) == 6;
    }
    shape_->keys.push_back(std::move(key));
    if (!edge.points.empty())
        shape_->outerKeys.push_back(std::move(edge));
}

void SsfReader::OnVertices()
{
    const int line = lines_.LineNumber();
    Shape();
    const bool isFine = ReadNumbers();
    if (!keyTime_) {
        keyTime_ = keysSeen_;
        job_.Assume(line, "keys without key_time follow each other from frame 0 on");
        job_.AskForFirstFrame();
    }
    ++keysSeen_;
    const std::size_t vertices = std::size_t(vertexCount_);
    if (!isFine || problem_) {
        keyTime_.reset();
        return;
    }
    if (vertices == 0 || (numbers_.size() != vertices * numbersWithEdge &&
                          numbers_.size() != vertices * numbersWithoutEdge)) {
        problem_ = ImportFailure{line, "a key has not as many numbers as its vertices need"};
    } else {
        job_.CountPoints(vertices * (hasEdge_ ? 2 : 1), line);
        AddKey();
    }
    keyTime_.reset();
}

void SsfReader::DropEmptyEdge()
{
    const bool isWhole = shape_->outerKeys.size() == shape_->keys.size();
    if (!edgeDiffers_ || edgeIsZero_ || !isWhole)
        shape_->outerKeys.clear();
}

void SsfReader::FinishShape()
{
    if (!shape_)
        return;
    if (keysSeen_ < keyCount_) {
        throw ImportFailure{lines_.LineNumber(),
                            Quoted(shape_->name) + " ends with " + std::to_string(keysSeen_) +
                                " of its " + std::to_string(keyCount_) + " keys",
                            true};
    }
    if (problem_) {
        job_.Drop(problem_->line, Quoted(shape_->name) + ": " + problem_->reason);
    } else {
        DropEmptyEdge();
        job_.Take(std::move(*shape_));
    }
    shape_.reset();
}

void SsfReader::ReadLine()
{
    for (const Keyword& keyword : keywords) {
        if (lines_.Field(0) == keyword.name)
            return (this->*keyword.read)();
    }
    job_.LeaveAside(lines_.LineNumber(), Quoted(lines_.Field(0)) + " is not understood");
}

void SsfReader::Read()
{
    ReadHeader();
    image_ = job_.Image();
    while (lines_.NextFilled())
        ReadLine();
    FinishShape();
    if (shapesSeen_ < shapeCount_) {
        throw ImportFailure{lines_.LineNumber(),
                            "it ends with " + std::to_string(shapesSeen_) + " of its " +
                                std::to_string(shapeCount_) + " shapes",
                            true};
    }
}

} // namespace

void ReadSsfShapes(ImportJob& job)
{
    SsfReader(job).Read();
}

} // namespace Marlox
