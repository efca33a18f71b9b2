#pragma once

#include "system/base/MxColor.h"
#include "system/base/Types.h"

#include <functional>
#include <limits>
#include <optional>

#include <QString>
#include <QStringList>

namespace Marlox {

/// What the host asks and tells on behalf of a control. Unless another service is installed these
/// are modal dialogs in the application's style, over the window that is active; a test installs a
/// service that answers by itself. User-interface thread only.
///
/// A question lets events pass until it is answered: tools, inputs and the control itself may be
/// gone by then. Whoever asks holds a reference to itself, and looks at the document anew.
class MARLOXSYSTEM_EXPORT HostDialogs {
public:
    enum class Kind { Information, Warning, Error };
    enum class Answer { Yes, No, Cancel };

    struct TextRequest {
        QString title;
        QString label; // above the field
        QString preset;
        bool manyLines = false;
        std::function<QString(const QString&)> problem{}; // why a text won't do; empty: it will
    };
    /// The field takes arithmetic and clamps to the range.
    struct NumberRequest {
        QString title;
        QString label;
        double preset = 0.0;
        double minimum = -std::numeric_limits<double>::infinity();
        double maximum = std::numeric_limits<double>::infinity();
        bool integer = false;
    };
    struct FileRequest {
        QString title;
        /// "Polyline Files (*.dfmo)|*.dfmo||": pairs of a description and its patterns, which
        /// semicolons separate; further ones may follow the end. Empty: all files.
        QString filter;
        /// With its dot (".dfmo"); for saving: see WithDefaultExtension. Empty: that of the filter
        /// chosen.
        QString defaultExtension{};
        /// Keeps the folder of the last file chosen under this name; empty: none is kept.
        QString pathId{};
        QString fileName{};          // the name proposed; with a path it names the folder as well
        int* filterChosen = nullptr; // for saving: gets the place of the filter chosen, from 0
    };
    struct ColorRequest {
        QString title;
        MxColor preset;
        bool alpha = false;                            // opacity can be chosen too
        std::function<void(const MxColor&)> preview{}; // while choosing; cancelling gives `preset`
    };

    virtual ~HostDialogs();

    /// The service in use.
    static HostDialogs& Get();
    /// Puts another one in its place (null: the dialogs); it stays its maker's. Returns the one
    /// that was installed before, null for the dialogs.
    static HostDialogs* Install(HostDialogs* service);

    virtual void Message(Kind kind, const QString& text, const QString& details = {}) = 0;
    /// With a button "Cancel" if that is `cancel`; closing the dialog is Cancel, or else No.
    virtual Answer Ask(const QString& text, const QString& details = {}, bool cancel = true) = 0;
    // Nothing, or the empty path: cancelled.
    virtual std::optional<QString> AskText(const TextRequest& request) = 0;
    virtual std::optional<double> AskNumber(const NumberRequest& request) = 0;
    virtual QString OpenFile(const FileRequest& request) = 0; // one that exists
    virtual QString SaveFile(const FileRequest& request) = 0; // asks before it overwrites
    virtual std::optional<MxColor> ChooseColor(const ColorRequest& request) = 0;

    /// The filter of a FileRequest in the form of Qt's file dialogs, one entry each: the
    /// description with the patterns in brackets behind it, in place of those it may have there
    /// already. What is incomplete is left out.
    static QStringList QtFilters(const QString& filter);
    /// `path` with `extension` behind it if its last component has no dot, and none to be empty.
    static QString WithDefaultExtension(const QString& path, const QString& extension);
    /// A text as the name of a file: what no file system takes becomes an underscore.
    static QString ValidFileName(const QString& text);

    /// The folder kept under a path id, in the preference "Paths.<id>". One that is missing or gone
    /// becomes the documents folder, and a missing preference is made.
    static QString FolderOf(const QString& pathId);
    static void KeepFolderOf(const QString& pathId, const QString& file);
};

} // namespace Marlox
