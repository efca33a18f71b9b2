#pragma once

#include "workbench/cli/FrameRange.h"

#include <optional>

#include <QStringList>

namespace Marlox {

/// What the command line asks for.
struct Options {
    enum class Action { Interface, Help, Version, ListControls, ListResources, Render };

    Action action = Action::Interface;
    QStringList files;           // document, image or sequence to open
    QString script;              // run in the open application; empty: none
    QStringList scriptArguments; // everything behind the script's name, as it stands
    QStringList plugins;         // further ones to load
    bool recovery = true;

    // Action::Render
    QString document;
    std::optional<FrameRange> frames; // none: the document's range
    QString output;                   // image file, or pattern of a sequence

    /// Reads the arguments, the program's name first. Null and `error` when they make no sense.
    static std::optional<Options> Parse(const QStringList& arguments, QString* error);
    static QString HelpText();
};

} // namespace Marlox
