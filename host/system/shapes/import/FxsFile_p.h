#pragma once

#include "system/shapes/import/ImportMath_p.h"

#include <array>
#include <map>
#include <span>

namespace Marlox {

/// A property's value at one time, or the constant one.
struct FxsKey {
    double frame = 0.0;
    Interpolation interpolation = Interpolation::Linear;
    std::string text;            // of plain values
    std::vector<double> numbers; // the same, where they are numbers
    std::vector<PolyPoint> path; // of paths: in the file's units
    std::string pathType;
    bool isClosed = true;
    int line = 0;
};

struct FxsProperty {
    std::vector<FxsKey> keys; // by frame; one where it is constant
    bool isAnimated = false;

    /// The numbers at a time, one by one between keys; empty: they are not all as many.
    std::vector<double> At(double frame) const;
};

/// A layer or a shape, as it stands in the file.
struct FxsObject {
    bool isLayer = true;
    std::string name;
    bool isHidden = false;
    bool isLocked = false;
    int line = 0;
    std::map<std::string, FxsProperty> properties; // those that are of use
    std::vector<FxsObject> children;
    std::optional<ImportFailure> problem; // why it can't be taken

    const FxsProperty* Find(const char* id) const;
};

/// A key and how much of it counts.
struct FxsPart {
    const FxsKey& key;
    double weight;
};

/// The keys around a frame that lies between `next` and the one before it: the two before the
/// frame, and the two behind it; where there is one alone it stands for both. Smooth segments are
/// Catmull-Rom splines over the keys' times.
std::array<FxsPart, 4> FxsPartsAt(std::span<const FxsKey> keys, std::size_t next, double frame);

struct FxsFile {
    FxsObject root;     // its children are what the file holds
    double width = 0.0; // pixels; 0: not told
    double height = 0.0;
    std::optional<double> startFrame; // what the frames of keys count from
};

/// Whether it begins as packed data do: with their length and the first bytes of a zlib stream.
bool IsPackedFxs(const QByteArray& bytes);
/// The XML itself, unpacked; throws where it can't be read in bounded memory and time.
QByteArray FxsXml(const QByteArray& bytes);
/// Reads the objects; throws.
FxsFile ReadFxsFile(ImportJob& job);

} // namespace Marlox
