#pragma once

#include "system/shapes/import/ImportPolyLines.h"

#include <string_view>

namespace Marlox {

/// Thrown by readers: what is being read (the file; a shape, where the reader goes on with the next
/// one) can't be taken.
struct ImportFailure {
    int line = 0;
    std::string reason;
    bool isFatal = false; // goes for the file, wherever it was met
};

/// The size of the image that pixels refer to.
struct ImageFrame {
    double width = 0.0;
    double height = 0.0;
    double pixelAspect = 1.0;

    ShapePlace FromPixels(double x, double y) const { return {x / width, y / height}; } // y upwards
    double HeightsPerWidth() const { return height / (width * pixelAspect); }
};

/// One file on its way in: its text, what is known about the image, and what was taken so far.
class ImportJob {
public:
    ImportJob(const QByteArray& bytes, const ImportContext& context, ImportedShapes& result)
        : bytes_(bytes), context_(context), result_(result)
    {
    }

    const QByteArray& Bytes() const { return bytes_; }
    /// As UTF-8 with "\n" between lines, whatever the file has. Throws for binary data.
    std::string_view Text();
    /// Of a place within Text(), from 1.
    int LineOf(const char* place);

    const ImportContext& Context() const { return context_; }
    /// The image of the file's own size, if it tells one (0: it does not), or else of the
    /// context's. Throws when there is neither.
    ImageFrame Image(double width = 0.0, double height = 0.0);
    /// The context's, for its proportions alone: which are nothing to ask for where they are known.
    ImageFrame ShownImage();
    // What the result asks for.
    void AskForImage(double width, double height);
    void AskForPlainUnit(bool isNormalised)
    {
        result_.asksPlainUnit = true;
        result_.isNormalised = isNormalised;
    }
    void AskForFirstFrame() { result_.asksFirstFrame = true; }

    void LeaveAside(int line, std::string text) { Note(ImportNote::Kind::LeftAside, line, text); }
    /// The same of a whole shape or path, which then is missing. The first one is what is told
    /// where nothing was taken.
    void Drop(int line, std::string text)
    {
        if (!dropped_)
            dropped_ = ImportFailure{line, text, true};
        LeaveAside(line, std::move(text));
    }
    const std::optional<ImportFailure>& Dropped() const { return dropped_; }
    void Assume(int line, std::string text) { Note(ImportNote::Kind::Assumed, line, text); }
    /// A shape or path as read, its keys in any order: what is wrong with it is left aside. Which
    /// points are corners is seen from their handles unless the file tells.
    void Take(ImportedShape shape, bool cornersAreTold = false);
    void Take(ImportedPath path);
    /// Throws when there come to be too many, before they use up the memory.
    void CountPoints(std::size_t count, int line);
    const ImportedShapes& Result() const { return result_; }

private:
    void Note(ImportNote::Kind kind, int line, const std::string& text);
    void Tidy(std::vector<ImportedKey>& keys, const ImportedShape& shape);
    void TakeName(std::string& name, const char* kind, std::size_t number);

    const QByteArray& bytes_;
    const ImportContext& context_;
    ImportedShapes& result_;
    std::string text_;
    std::optional<ImportFailure> dropped_;
    std::size_t keyPoints_ = 0;
    const char* counted_ = nullptr; // up to here lines were counted
    int countedLines_ = 1;
    bool isDecoded_ = false;
};

// The readers ------------------------------------------------------------------------------------

void ReadLightWaveMotion(ImportJob& job);
void ReadNativeMotion(ImportJob& job);
void ReadNativeShape(ImportJob& job);
void ReadSsfShapes(ImportJob& job);
void ReadFxsShapes(ImportJob& job);
void ReadNukeShapes(ImportJob& job);
void ReadPathText(ImportJob& job);

} // namespace Marlox
