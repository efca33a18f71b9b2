#pragma once

#include "system/document/Operator.h"

#include <string>
#include <vector>

#include <QStringList>

namespace Marlox {

// Documents as files: one script table, UTF-8, numbers in the C locale with 17 digits.
//
//     { Format = "marlox document", Version = 1, FrameRange = { 0, 100 }, FrameRate = 24,
//       CurrentTime = 12, Tools = { { Class = "Blur", Name = "Blur1", Inputs = { ... } } } }

inline constexpr char DocumentFormat[] = "marlox document";
inline constexpr int DocumentVersion = 1;

/// What a file held, complete and checked, before it replaces anything.
struct DocumentContent {
    std::vector<Ref<Operator>> tools;
    double time = 0.0;
    double first = 0.0;
    double last = 100.0;
    double frameRate = 24.0;
    QString origin; // of an autosave copy: the path of the document
    QStringList notes;
};

/// Reads the text of a document. False and `error` (line, or tool and field, and reason): `out` is
/// of no use then.
bool ReadDocument(const std::string& text, DocumentContent& out, QString& error);

/// A tool outside of any document. Null and `error`: there is no such tool class, or it failed.
Ref<Operator> CreateTool(const MxID& toolType, QString* error);

} // namespace Marlox
