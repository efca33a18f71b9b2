#pragma once

#include "system/shapes/import/ImportText_p.h"

#include <map>

namespace Marlox {

/// A text with tracks: what its readers share. They begin with the first filled line read.
class PathTextJob {
public:
    explicit PathTextJob(ImportJob& job) : PathTextJob(job, job.Text()) {}
    /// Reads another text in place of the file's own, with as many lines.
    PathTextJob(ImportJob& job, std::string_view text) : job(job), lines(text) {}

    /// The next line that is neither blank nor a comment.
    bool NextRow();
    void RequireRow(const char* what);          // throws where the file ends "before `what`"
    void RequireCount(std::size_t least);       // of fields; throws
    ImportedPath& Begin(std::string_view name); // the one returned before is no longer valid
    ImportedPath& Named(std::string_view name); // begun when first asked for
    void Add(ImportedPath& path, double frame, ShapePlace place);
    void Finish();

    ImportJob& job;
    TextLines lines;
    std::vector<ImportedPath> paths;

private:
    std::map<std::string, std::size_t> byName_;
};

void ReadBoujouTracks(PathTextJob& text);
void ReadBoujouCamera(PathTextJob& text);
void ReadKeyframeData(PathTextJob& text);
void Read3deTracks(PathTextJob& text);
void Read3deOldTracks(PathTextJob& text);
void ReadQuotedTracks(PathTextJob& text);
void ReadNamedTracks(PathTextJob& text);
void ReadNamedRows(PathTextJob& text);
void ReadPlainRows(PathTextJob& text);

} // namespace Marlox
