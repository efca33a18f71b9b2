#pragma once

#include "system/shapes/import/ImportMath_p.h"

#include <array>
#include <map>
#include <span>

namespace Marlox {

/// One item of a list: a word, a text in quotes, or what stands between braces.
struct NukeItem {
    std::string_view text; // without quotes and braces
    bool isList = false;
    bool isQuoted = false;
};

/// The items of a list one after the other. Braces are matched by counting, so nothing is built and
/// nesting costs no memory; a backslash takes its special meaning from what follows.
class NukeList {
public:
    NukeList(ImportJob& job, std::string_view text) : job_(&job), rest_(text) {}

    bool Next(NukeItem& item); // false: there is no more; throws at a brace without a partner
    void SkipLine();
    const char* Place() const { return rest_.data(); } // of what comes next

private:
    [[noreturn]] void Fail(const char* at, const char* reason);

    ImportJob* job_;
    std::string_view rest_;
};

/// All items; for short lists.
std::vector<NukeItem> NukeItems(ImportJob& job, std::string_view text);

/// The text as it is meant: what a backslash stands before, without it.
std::string NukeText(const NukeItem& item);

/// What a list begins with; empty: with a list, or with nothing.
std::string_view NukeFirstWord(ImportJob& job, std::string_view text);

/// "x" or "0x" and the bits of a float in hexadecimal, or a decimal number. None: it is neither.
std::optional<double> ToNukeNumber(std::string_view word);

// The shapes of both forms, as they come out of the script -------------------------------------

/// Bits of the flags of shapes and curves.
enum NukeFlag : u32 {
    NF_Open = 32,
    NF_Locked = 1024,
    NF_RelativeTangents = 8192,
};

/// A place over time, pixels, y upwards.
using NukePlace = std::array<AnimatedNumber, 2>;

struct NukeCurve {
    u32 flags = NF_RelativeTangents; // as all are that tell theirs
    /// Of Bezier curves left tangent, centre, right tangent for each vertex; else one for each.
    std::vector<NukePlace> places;
    std::vector<double> times; // of its keys, where they are told for all places at once
};

/// How the points of a layer or a shape are moved.
struct NukeTransform {
    AnimatedNumber pivot[2];
    AnimatedNumber move[2];
    AnimatedNumber turn; // degrees
    AnimatedNumber scale[2] = {AnimatedNumber(1.0), AnimatedNumber(1.0)};
    std::vector<AnimatedNumber> matrix; // 4 x 4 in rows, for column vectors; empty: none
    std::string problem;                // why it can't be used; empty: it can

    PlaneMap At(double time) const;
    void AddTimes(KeyTimes& times) const;
};

struct NukeShape {
    std::string name;
    int line = 0;
    bool isBSpline = false;
    u32 flags = 0; // of the shape; those of a curve stand there
    NukeCurve curve;
    NukeCurve feather; // offsets from the curve; no places: there is none
    NukeTransform transform;
    std::map<std::string, AnimatedNumber> attributes;
};

using NukeChain = std::vector<const NukeTransform*>; // from the root on

/// An attribute of a shape that is read, or is of no use here.
bool IsKnownNukeAttribute(std::string_view name);
/// Takes them over; what can't be had is noted.
void SetNukeAttributes(ImportJob& job, const NukeShape& shape, bool isVisible, ImportedShape& out);

/// What the attributes of a layer do to all that is in it, beside its visibility, has no like here.
void NoteNukeLayer(ImportJob& job, int line, const std::string& name,
                   const std::map<std::string, AnimatedNumber>& attributes);

/// Into a shape of ours; what can't be had is noted. Throws where the shape is not understood.
void TakeNukeShape(ImportJob& job, const ImageFrame& image, const NukeShape& shape,
                   const NukeChain& layers, bool isVisible);

/// What the tangents, weights and kind of a key mean: "ls lw rs rw [kind]" behind its value, or
/// nothing, or "-".
void SetNukeSlopes(ImportJob& job, AnimatedNumber::Key& key, std::span<const double> numbers);
/// Keys whose slopes point at each other lie on lines.
AnimatedNumber MadeNukeNumber(std::vector<AnimatedNumber::Key> keys);

/// Numbers of the present form of the knob "curves", constant or keyed. Throws what is not
/// understood.
class NukeNumbers {
public:
    explicit NukeNumbers(ImportJob& job) : job_(job) {}

    double Value(std::string_view word);
    /// One time or a list of them.
    std::vector<double> Times(const NukeItem& item);
    /// A number, a list of keys, or an expression with what stands for it. `times` are those of the
    /// keys if they do not tell their own.
    AnimatedNumber Read(const NukeItem& item, const std::vector<double>* times);

private:
    [[noreturn]] void Misunderstood(std::string_view text);
    AnimatedNumber ReadKeys(std::string_view text, const std::vector<double>* times);
    AnimatedNumber::Key ReadKey(std::string_view text, const double* time);
    double TakeRepeat(NukeItem& item);

    ImportJob& job_;
};

/// The size of the image as a script tells it in one of several places.
struct NukeFormat {
    double width = 0.0; // pixels; 0: not told
    double height = 0.0;
};

/// The knob "curves" of one node in its two forms.
void ReadNukeCurves(ImportJob& job, std::string_view curves, NukeFormat format);
void ReadNukeAnimTree(ImportJob& job, std::string_view curves, NukeFormat format);

} // namespace Marlox
