#include "system/controls/InputMenu.h"

#include "system/controls/Connections.h"
#include "system/controls/InputControl_p.h"

#include <algorithm>
#include <array>

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>

namespace Marlox::InputMenu {

namespace {

constexpr unsigned int commandsPerInput = 0x100;
constexpr std::size_t maximumInputs = InputControl::FirstOwnMenuId / commandsPerInput;
constexpr unsigned int firstConnection = 0x40; // plus the place among ConnectionsOf

struct Context {
    InputControl& control;
    Input& input;
    MarloxDoc* document;
    double time;

    QString Undo(const char* verb) const { return QString::fromLatin1(verb).arg(input.GetName()); }
};

bool IsEditable(const Context& at)
{
    return !at.control.ControlDisabled() && at.input.IsChangeable();
}

bool CanAnimate(const Context& at)
{
    return IsEditable(at) && at.input.GetAttrB(IA_Animatable, true);
}

bool TakesImage(const Context& at)
{
    const MxID type = at.input.GetDataType();
    return type == CLSID_DataType_Image || type == CLSID_DataType_Mask;
}

bool IsConnected(const Context& at)
{
    return !at.input.GetState().source.empty();
}

// Keys -------------------------------------------------------------------------------------------

bool SetKey(const Context& at)
{
    const UndoGroup group(at.document, at.Undo("Set Key of %1"));
    return at.input.AddKey(at.time);
}

bool RemoveKey(const Context& at)
{
    const UndoGroup group(at.document, at.Undo("Remove Key of %1"));
    return at.input.RemoveKey(at.time);
}

bool GoTo(const Context& at, std::optional<double> time)
{
    if (!time || !at.document)
        return false;
    at.document->SetCurrentTime(*time);
    return true;
}

/// The key that rules the current time: the last one up to it, else the first.
const std::pair<const double, Animation::Key>* RulingKey(const Context& at)
{
    const auto& keys = at.input.GetAnimation().Keys();
    if (keys.empty())
        return nullptr;
    auto behind = keys.upper_bound(at.time);
    return &*(behind == keys.begin() ? behind : std::prev(behind));
}

bool Interpolates(const Context& at, Interpolation how)
{
    const auto* key = RulingKey(at);
    return key && key->second.interpolation == how;
}

bool Interpolate(const Context& at, Interpolation how)
{
    const auto* key = RulingKey(at);
    if (!key)
        return false;
    Animation changed = at.input.GetAnimation();
    changed.SetKey(key->first, key->second.value, how);
    const UndoGroup group(at.document, at.Undo("Interpolation of %1"));
    return at.input.SetAnimation(std::move(changed));
}

// Copy, paste, default ---------------------------------------------------------------------------

bool Reset(const Context& at)
{
    const UndoGroup group(at.document, at.Undo("Reset %1"));
    return at.input.SetDefault();
}

bool CopyValue(const Context& at)
{
    const Ref<Parameter> value = at.input.GetValue(at.time);
    const ScriptVal script = value ? value->ToScriptVal() : ScriptVal();
    QString text;
    if (script.IsNumber())
        text = QString::number(script.ToNumber(), 'g', QLocale::FloatingPointShortest);
    else if (script.IsString())
        text = QString::fromStdString(script.ToString());
    else if (ScriptServices* services = ScriptServices::Installed(); services && !script.IsNil())
        text = QString::fromStdString(services->FormatValue(script, false));
    if (text.isNull())
        return false;
    QGuiApplication::clipboard()->setText(text);
    return true;
}

/// What the clipboard holds as a value of the input's kind, or null.
Ref<Parameter> ClipboardValue(const Context& at)
{
    const QString text = QGuiApplication::clipboard()->text();
    const MxID type = at.input.GetDataType();
    if (text.isEmpty())
        return nullptr;
    if (type == CLSID_DataType_Text)
        return MakeRef<Text>(text.toStdString());
    if (type == CLSID_DataType_Number) {
        bool readable = false;
        const double number = QLocale::c().toDouble(
            text.trimmed().replace(QLatin1Char(','), QLatin1Char('.')), &readable);
        return readable ? Ref<Parameter>(MakeRef<Number>(number)) : nullptr;
    }
    ScriptVal script;
    ScriptServices* services = ScriptServices::Installed();
    if (!services || !services->ParseValue(text.toStdString(), script, nullptr))
        return nullptr;
    return Parameter::FromScriptVal(type, script);
}

bool Paste(const Context& at)
{
    const Ref<Parameter> value = ClipboardValue(at);
    if (!value)
        return false;
    const UndoGroup group(at.document, at.Undo("Paste %1"));
    return at.control.SetInputs(value.Get(), at.time, unsigned(at.input.GetAttr(IA_ControlIndex)),
                                true, nullptr);
}

bool Disconnect(const Context& at)
{
    const UndoGroup group(at.document, at.Undo("Disconnect %1"));
    return at.input.Connect(nullptr);
}

// The table --------------------------------------------------------------------------------------

using Test = bool (*)(const Context&);

struct Command {
    unsigned int id; // 0: a separator
    const char* text = "";
    Test enabled = nullptr; // the run is refused, too, where it says no
    Test run = nullptr;
    Test visible = nullptr;     // null: always
    Test checked = nullptr;     // null: has no mark
    bool interpolation = false; // in the submenu
};

const auto isAnimated = [](const Context& at) { return at.input.IsAnimated(); };
const auto isNotAnimated = [](const Context& at) { return !at.input.IsAnimated(); };
const auto hasNoImage = [](const Context& at) { return !TakesImage(at); };

template <Interpolation how>
constexpr Command InterpolationCommand(unsigned int id, const char* text)
{
    return {id,
            text,
            [](const Context& at) { return IsEditable(at) && at.input.IsAnimated(); },
            [](const Context& at) { return Interpolate(at, how); },
            hasNoImage,
            [](const Context& at) { return Interpolates(at, how); },
            true};
}

const Command commands[] = {
    {0x01, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Animate"), CanAnimate,
     [](const Context& at) { return at.control.AddModifier(&at.input); },
     [](const Context& at) { return isNotAnimated(at) && hasNoImage(at); }},
    {0x02, QT_TRANSLATE_NOOP("Marlox::InputControl", "Remove &Animation"), IsEditable,
     [](const Context& at) { return at.control.RemoveModifier(&at.input); }, isAnimated},
    {0x03, QT_TRANSLATE_NOOP("Marlox::InputControl", "Set &Key"), CanAnimate, SetKey, hasNoImage},
    {0x04, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Remove Key"),
     [](const Context& at) { return IsEditable(at) && at.input.IsKeyAt(at.time); }, RemoveKey,
     hasNoImage},
    {0x05, QT_TRANSLATE_NOOP("Marlox::InputControl", "Pre&vious Key"),
     [](const Context& at) { return at.input.GetAnimation().KeyBefore(at.time).has_value(); },
     [](const Context& at) { return GoTo(at, at.input.GetAnimation().KeyBefore(at.time)); },
     hasNoImage},
    {0x06, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Next Key"),
     [](const Context& at) { return at.input.GetAnimation().KeyAfter(at.time).has_value(); },
     [](const Context& at) { return GoTo(at, at.input.GetAnimation().KeyAfter(at.time)); },
     hasNoImage},
    InterpolationCommand<Interpolation::Step>(0x08,
                                              QT_TRANSLATE_NOOP("Marlox::InputControl", "S&tep")),
    InterpolationCommand<Interpolation::Linear>(
        0x09, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Linear")),
    InterpolationCommand<Interpolation::Smooth>(
        0x0a, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Smooth")),
    {0},
    {0x10, QT_TRANSLATE_NOOP("Marlox::InputControl", "Add &Expression"), IsEditable,
     [](const Context& at) { return at.control.AddExpression(&at.input); },
     [](const Context& at) { return hasNoImage(at) && !at.input.HasExpression(); }},
    {0x11, QT_TRANSLATE_NOOP("Marlox::InputControl", "Remove &Expression"), IsEditable,
     [](const Context& at) { return at.control.RemoveExpression(&at.input); },
     [](const Context& at) { return at.input.HasExpression(); }},
    {0x12, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Disconnect"),
     [](const Context& at) { return IsEditable(at) && IsConnected(at); }, Disconnect,
     [](const Context& at) { return TakesImage(at) || IsConnected(at); }},
    {0},
    {0x18, QT_TRANSLATE_NOOP("Marlox::InputControl", "Reset to &Default"), IsEditable, Reset,
     hasNoImage},
    {0x19, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Copy Value"),
     [](const Context&) { return true; }, CopyValue, hasNoImage},
    {0x1a, QT_TRANSLATE_NOOP("Marlox::InputControl", "&Paste Value"),
     [](const Context& at) { return IsEditable(at) && ClipboardValue(at); }, Paste, hasNoImage},
};

std::optional<Context> ContextOf(InputControl& control, std::size_t position)
{
    const InputList& inputs = control.Inputs();
    if (position >= std::min(inputs.size(), maximumInputs))
        return {};
    return Context{control, *inputs[position], control.GetDoc(), control.CurrentTime()};
}

void AddCommand(Menu& menu, const Context& at, const Command& command, unsigned int base)
{
    const QString text = InputControl::tr(command.text);
    const bool enabled = command.enabled(at);
    if (command.checked)
        menu.AddCheck(base + command.id, text, command.checked(at), enabled);
    else
        menu.Add(base + command.id, text, enabled);
}

void AddSources(Menu& menu, const Context& at, unsigned int base)
{
    if (!TakesImage(at) || !at.document)
        return;
    Menu tools = menu.AddSubmenu(InputControl::tr("Connect &To"));
    AddConnections(tools, at.input, base + firstConnection, commandsPerInput - firstConnection);
}

void AddEntries(Menu& menu, const Context& at, unsigned int base)
{
    for (const Command* command = std::begin(commands); command != std::end(commands); ++command) {
        if (command->id == 0) {
            menu.AddSeparator();
        } else if (command->interpolation) {
            if (!command->visible(at))
                continue;
            Menu kinds = menu.AddSubmenu(InputControl::tr("&Interpolation"));
            for (; command->interpolation; ++command)
                AddCommand(kinds, at, *command, base);
            --command;
        } else if (!command->visible || command->visible(at)) {
            AddCommand(menu, at, *command, base);
        }
    }
    AddSources(menu, at, base);
}

} // namespace

void Build(InputControl& control, Menu& menu, const InputList& only)
{
    const InputList& inputs = control.Inputs();
    const InputList& wanted = only.empty() ? inputs : only;
    const std::size_t count = std::min(inputs.size(), maximumInputs);
    for (std::size_t i = 0; i < count; ++i) {
        const auto base = unsigned(i) * commandsPerInput;
        if (std::find(wanted.begin(), wanted.end(), inputs[i]) == wanted.end())
            continue;
        if (wanted.size() == 1) {
            AddEntries(menu, *ContextOf(control, i), base);
        } else {
            Menu submenu = menu.AddSubmenu(inputs[i]->GetName());
            AddEntries(submenu, *ContextOf(control, i), base);
        }
    }
}

bool Run(InputControl& control, unsigned int id)
{
    const std::optional<Context> at = ContextOf(control, id / commandsPerInput);
    const unsigned int number = id % commandsPerInput;
    if (!at || number == 0)
        return false;
    if (number >= firstConnection)
        return IsEditable(*at) && RunConnection(at->input, number - firstConnection);
    const auto* found = std::find_if(std::begin(commands), std::end(commands),
                                     [number](const Command& c) { return c.id == number; });
    return found != std::end(commands) && (!found->visible || found->visible(*at)) &&
           found->enabled(*at) && found->run(*at);
}

bool ToggleKeys(InputControl& control)
{
    std::vector<Context> keyable;
    for (Input* input : control.ShownInputs()) {
        const Context at{control, *input, control.GetDoc(), control.CurrentTime()};
        if (CanAnimate(at) && !input->HasExpression())
            keyable.push_back(at);
    }
    if (keyable.size() <= 1)
        return !keyable.empty() &&
               (keyable[0].input.IsKeyAt(keyable[0].time) ? RemoveKey(keyable[0])
                                                          : SetKey(keyable[0]));
    const bool all = std::all_of(keyable.begin(), keyable.end(),
                                 [](const Context& at) { return at.input.IsKeyAt(at.time); });
    const UndoGroup group(keyable[0].document,
                          all ? QStringLiteral("Remove Keys") : QStringLiteral("Set Keys"));
    bool done = false;
    for (const Context& at : keyable) {
        if (all || !at.input.IsKeyAt(at.time))
            done = (all ? at.input.RemoveKey(at.time) : at.input.AddKey(at.time)) || done;
    }
    return done;
}

} // namespace Marlox::InputMenu
