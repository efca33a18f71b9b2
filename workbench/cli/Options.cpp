#include "workbench/cli/Options.h"

#include <algorithm>

#include <QCommandLineParser>

namespace Marlox {

namespace {

const QCommandLineOption helpOption({"h", "help"}, "Tell this and end.");
const QCommandLineOption versionOption({"v", "version"}, "Tell the version and end.");
const QCommandLineOption listControlsOption(
    "list-controls",
    "List the classes of the loaded plug-ins, a line each, columns by tabs: class, "
    "id, parent id, kind, script type, further tags, specified or generic.");
const QCommandLineOption
    listResourcesOption("list-resources", "List the named resources, a line each, columns by tabs: "
                                          "kind, name, default colour, second colour.");
const QCommandLineOption scriptOption("script",
                                      "Run a Lua script in the open application and end with its "
                                      "status; further arguments are the script's.",
                                      "file");
const QCommandLineOption pluginOption("plugin", "Load a further plug-in; may be repeated.", "file");
const QCommandLineOption
    renderOption("render", "Render a document to image files, without a window.", "document");
const QCommandLineOption
    framesOption("frames",
                 "Frames to render: 7, 1-48, or 1-48x2 for every second one; the document's range "
                 "unless given.",
                 "range");
const QCommandLineOption outputOption(
    "output", "Image file to render to; #### or %04d in its name stands for the frame.", "pattern");
const QCommandLineOption noRecoveryOption("no-recovery",
                                          "Do not offer documents that a crash left behind.");

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription("Edits images with the tools and controls of its plug-ins.");
    parser.addOptions({helpOption, versionOption, listControlsOption, listResourcesOption,
                       scriptOption, pluginOption, renderOption, framesOption, outputOption,
                       noRecoveryOption});
    parser.addPositionalArgument("file", "Document, image or sequence (shot.####.exr) to open.",
                                 "[file]");
}

/// Behind "--script FILE" the arguments are the script's own, whatever they look like.
int endOfOurs(const QStringList& arguments)
{
    const int at = arguments.indexOf("--script");
    if (at >= 0)
        return std::min(at + 2, int(arguments.size()));
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments[i].startsWith("--script="))
            return i + 1;
    }
    return arguments.size();
}

bool refuse(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

bool readAction(const QCommandLineParser& parser, Options& options, QString* error)
{
    const struct {
        const QCommandLineOption& option;
        Options::Action action;
    } actions[] = {
        {helpOption, Options::Action::Help},
        {versionOption, Options::Action::Version},
        {listControlsOption, Options::Action::ListControls},
        {listResourcesOption, Options::Action::ListResources},
        {renderOption, Options::Action::Render},
        {scriptOption, Options::Action::Interface},
    };
    QString chosen;
    for (const auto& row : actions) {
        if (!parser.isSet(row.option))
            continue;
        const QString name = "--" + row.option.names().last();
        if (!chosen.isEmpty())
            return refuse(error, QString("%1 and %2 do not go together").arg(chosen, name));
        chosen = name;
        options.action = row.action;
    }
    return true;
}

/// What the rest of the line must not hold.
bool checkRest(const QCommandLineParser& parser, const Options& options, QString* error)
{
    for (const QCommandLineOption* option :
         {&scriptOption, &pluginOption, &renderOption, &framesOption, &outputOption}) {
        if (parser.values(*option).contains(QString()))
            return refuse(
                error, QString("--%1 needs a %2").arg(option->names().last(), option->valueName()));
    }
    const int taken = options.action == Options::Action::Interface ? 1 : 0;
    const bool runs = options.action != Options::Action::Help;
    if (runs && options.files.size() > taken)
        return refuse(error, QString("\"%1\" is one argument too many").arg(options.files[taken]));
    return true;
}

bool readRender(const QCommandLineParser& parser, Options& options, QString* error)
{
    const bool renders = options.action == Options::Action::Render;
    if (!renders && (parser.isSet(framesOption) || parser.isSet(outputOption)))
        return refuse(error, "--frames and --output go with --render");
    if (!renders)
        return true;
    options.document = parser.value(renderOption);
    options.output = parser.value(outputOption);
    if (options.output.isEmpty())
        return refuse(error, "--render needs --output");
    if (parser.isSet(framesOption)) {
        options.frames = FrameRange::Parse(parser.value(framesOption));
        if (!options.frames)
            return refuse(error, QString("\"%1\" is no range of frames: write 7, 1-48 or 1-48x2")
                                     .arg(parser.value(framesOption)));
    }
    return true;
}

} // namespace

std::optional<Options> Options::Parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    describe(parser);
    const int end = endOfOurs(arguments);
    if (!parser.parse(arguments.mid(0, end))) {
        refuse(error, parser.errorText());
        return {};
    }
    Options options;
    options.scriptArguments = arguments.mid(end);
    options.files = parser.positionalArguments();
    options.script = parser.value(scriptOption);
    options.plugins = parser.values(pluginOption);
    options.recovery = !parser.isSet(noRecoveryOption);
    if (!readAction(parser, options, error) || !checkRest(parser, options, error) ||
        !readRender(parser, options, error))
        return {};
    return options;
}

QString Options::HelpText()
{
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}

} // namespace Marlox
