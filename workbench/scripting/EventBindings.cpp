// Synthesised mouse, wheel and key events.

#include "workbench/scripting/Bindings.h"
#include "workbench/scripting/Synthesizer.h"

#include <QWidget>

namespace Marlox {

namespace {

Qt::KeyboardModifiers heldIn(const ScriptVal& how)
{
    Qt::KeyboardModifiers held = Qt::NoModifier;
    held.setFlag(Qt::ControlModifier, how.Get("ctrl").ToBool());
    held.setFlag(Qt::ShiftModifier, how.Get("shift").ToBool());
    held.setFlag(Qt::AltModifier, how.Get("alt").ToBool());
    return held;
}

Qt::MouseButton buttonIn(const ScriptVal& how)
{
    const std::string name = how.Get("button").ToString("left");
    if (name == "left")
        return Qt::LeftButton;
    if (name == "middle")
        return Qt::MiddleButton;
    if (name == "right")
        return Qt::RightButton;
    throw ScriptError("a button is \"left\", \"middle\" or \"right\"");
}

std::optional<Synthesizer::Pen> penIn(const ScriptVal& how)
{
    if (!how.Get("pressure").IsNumber())
        return {};
    return Synthesizer::Pen{how.Get("pressure").ToNumber(), int(how.Get("tiltx").ToNumber()),
                            int(how.Get("tilty").ToNumber()), how.Get("rotation").ToNumber()};
}

QPointF positionAt(const ScriptCall& call)
{
    return {call.Number(1), call.Number(2)};
}

/// The optional table behind the other arguments.
ScriptVal howAt(const ScriptCall& call, int index)
{
    return call.Has(index) ? call.Table(index) : ScriptVal();
}

void drag(ScriptContext& context, ScriptCall& call)
{
    QWidget& widget = call.Self<QWidget>();
    const ScriptVal points = call.Table(1);
    const ScriptVal how = howAt(call, 2);
    if (points.Length() < 2)
        throw ScriptError("drag: at least two points {x, y}");
    const auto at = [&points](std::size_t i) {
        const ScriptVal& point = points.At(i);
        if (!point.At(1).IsNumber() || !point.At(2).IsNumber())
            throw ScriptError("drag: a point is {x, y}");
        return QPointF(point.At(1).ToNumber(), point.At(2).ToNumber());
    };
    Synthesizer& events = context.events;
    const auto usePen = [&](std::size_t i) {
        ScriptVal its = how.IsNil() ? ScriptVal::MakeTable() : how.Clone();
        if (points.At(i).Get("pressure").IsNumber())
            its.Set("pressure", points.At(i).Get("pressure"));
        events.UsePen(penIn(its));
    };
    usePen(1);
    events.Press(widget, at(1), buttonIn(how), heldIn(how));
    for (std::size_t i = 2; i <= points.Length(); ++i) {
        usePen(i);
        events.Move(widget, at(i), heldIn(how));
    }
    events.Release(widget, at(points.Length()), buttonIn(how), heldIn(how));
}

void key(ScriptContext& context, ScriptCall& call)
{
    const QString name = call.String(1);
    const std::optional<int> code = Synthesizer::KeyOf(name);
    if (!code)
        throw ScriptError(QString("there is no key \"%1\"").arg(name));
    const ScriptVal how = howAt(call, 2);
    const std::string action = how.Get("action").ToString("click");
    using Action = Synthesizer::KeyAction;
    const Action what = action == "press"     ? Action::Press
                        : action == "release" ? Action::Release
                                              : Action::Click;
    const Qt::KeyboardModifiers held = heldIn(how);
    const bool types = name.size() == 1 && !(held & (Qt::ControlModifier | Qt::AltModifier));
    context.events.Key(call.Self<QWidget>(), *code, types ? name.toLower() : QString(), held, what);
}

} // namespace

void AddEventBindings(ScriptContext& context)
{
    ScriptClass& widget = context.engine.AddClass<QWidget>("Widget");
    // Every event may have opened a dialog that nobody answered, so each looks for that.
    const auto method = [&context, &widget](const char* name, auto run) {
        widget.Method(name, [&context, run](ScriptCall& call) {
            context.events.UsePen(call.IsTable(3) ? penIn(call.Table(3)) : std::nullopt);
            run(context, call);
            RunEvents(context, 0.0);
        });
    };
    method("press", [](ScriptContext& c, ScriptCall& call) {
        const ScriptVal how = howAt(call, 3);
        c.events.Press(call.Self<QWidget>(), positionAt(call), buttonIn(how), heldIn(how));
    });
    method("move", [](ScriptContext& c, ScriptCall& call) {
        c.events.Move(call.Self<QWidget>(), positionAt(call), heldIn(howAt(call, 3)));
    });
    method("release", [](ScriptContext& c, ScriptCall& call) {
        const ScriptVal how = howAt(call, 3);
        c.events.Release(call.Self<QWidget>(), positionAt(call), buttonIn(how), heldIn(how));
    });
    method("click", [](ScriptContext& c, ScriptCall& call) {
        const ScriptVal how = howAt(call, 3);
        QWidget& self = call.Self<QWidget>();
        const QPointer<QWidget> alive(&self);
        c.events.Press(self, positionAt(call), buttonIn(how), heldIn(how));
        if (alive) // the press may have closed it
            c.events.Release(self, positionAt(call), buttonIn(how), heldIn(how));
    });
    method("doubleclick", [](ScriptContext& c, ScriptCall& call) {
        const ScriptVal how = howAt(call, 3);
        c.events.DoubleClick(call.Self<QWidget>(), positionAt(call), buttonIn(how), heldIn(how));
    });
    method("wheel", [](ScriptContext& c, ScriptCall& call) {
        c.events.Wheel(call.Self<QWidget>(), positionAt(call), call.Number(3),
                       heldIn(howAt(call, 4)));
    });
    method("drag", drag);
    method("key", key);
    method("type", [](ScriptContext& c, ScriptCall& call) {
        c.events.Type(call.Self<QWidget>(), call.String(1));
    });
}

} // namespace Marlox
