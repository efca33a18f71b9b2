#pragma once

#include "plugin/OverlayRig.h"
#include "system/controls/HostDialogs.h"
#include "system/controls/Menu.h"
#include "system/shapes/ShapeKeys.h"

#include <cmath>
#include <deque>

#include <QStringList>

namespace Marlox {

// The polyline overlay's tags, as its reference has them.
inline constexpr u32 PLC_DrawMode = 0x10058000;
inline constexpr u32 PLC_Animated = 0x1005800c;

enum { Done, ClickAppend, DrawAppend, InsertAndModify, ModifyOnly }; // of PLC_DrawMode

/// A tool with an inner and an outer polygon and a centre, on the stage of OverlayRig.
struct PolyRig : OverlayRig {
    explicit PolyRig(const char* kind = "Polyline", bool animated = false)
        : OverlayRig(
              {{"Polyline",
                kind,
                {{IAS_Overlay, "PolylineControl"}, {IA_OverlayIndex, 0}, {PLC_Animated, animated}}},
               {"Polyline2", kind, {{IAS_OverlayWith, "Polyline"}, {IA_OverlayIndex, 1}}},
               {"Center", "Point", {}},
               {"Size", "Number", {{IAD_Default, 1.0}}}})
    {
    }

    static MxPoint At(double x, double y) // view pixels
    {
        return {int(100.0 + 400.0 * x), int(50.0 + 200.0 * y)};
    }
    PreviewControl& Poly() const { return OverlayOf("Polyline"); }
    Ref<PolyLine> Shape(const char* id = "Polyline") const
    {
        return ShapeOf(InputOf(id), document->CurrentTime());
    }
    int Count(const char* id = "Polyline") const { return Shape(id)->GetCount(); }
    /// A closed shape through these places, as the only value.
    void SetShape(std::initializer_list<ShapePlace> places, const char* id = "Polyline") const
    {
        const Ref<PolyLine> shape = PolyLine::Create(InputOf(id).GetDataType());
        for (const ShapePlace& place : places)
            shape->InsertPoint(shape->GetCount() - 1, place);
        shape->Close();
        InputOf(id).SetValue(*shape, TimeNone);
        document->Undo().Clear();
    }
    void SetSquare(const char* id = "Polyline", double by = 0.25) const
    {
        SetShape({{0.5 - by, 0.5 - by},
                  {0.5 + by, 0.5 - by},
                  {0.5 + by, 0.5 + by},
                  {0.5 - by, 0.5 + by}},
                 id);
    }
    void SetMode(int mode) const { Poly().SetAttrsTagList(TagList({{PLC_DrawMode, mode}})); }
    int Mode() const { return int(Poly().GetAttr(PLC_DrawMode)) & 0x0f; }
    void Click(const MxPoint& at, u32 modifiers = 0) const { Drag({at}, modifiers); }
    bool Key(int key, u32 modifiers = KeyShift) const
    {
        stage->SetFocus(&Poly());
        const bool used = stage->KeyDown(key, modifiers);
        stage->KeyUpAll();
        return used;
    }
    /// "x y" of a point in view pixels, rounded.
    std::string Place(int index, const char* id = "Polyline") const
    {
        const PolyPoint& point = *Shape(id)->GetPoint(index);
        return std::to_string(std::lround(100.0 + 400.0 * point.x)) + ' ' +
               std::to_string(std::lround(50.0 + 200.0 * point.y));
    }
    QStringList UndoTexts() const
    {
        QStringList texts;
        for (int i = 0; i < document->Undo().Stack().count(); ++i)
            texts << document->Undo().Stack().text(i);
        return texts;
    }
};

inline const Menu::Entry* FindEntry(const std::vector<Menu::Entry>& entries, const QString& text)
{
    for (const Menu::Entry& entry : entries) {
        if (entry.text.section('\t', 0, 0) == text && entry.children.empty())
            return &entry;
        if (const Menu::Entry* found = FindEntry(entry.children, text))
            return found;
    }
    return nullptr;
}

/// Whether there is such an entry of the context menu, and it was enabled and did something.
inline bool RunEntry(const PolyRig& rig, const QString& text)
{
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    const Menu::Entry* entry = FindEntry(menu.Entries(), text);
    return entry && entry->enabled && rig.Poly().HandleMenu(entry->id, nullptr, tags);
}

/// What the view tells of the place.
inline QString TipOf(const PolyRig& rig, const MxPoint& at)
{
    rig.stage->Move(at, 0);
    return rig.stage->Tip();
}

/// Answers what controls ask, from a queue, and writes down what they say.
struct AnsweringDialogs : HostDialogs {
    AnsweringDialogs() : before(Install(this)) {}
    ~AnsweringDialogs() override { Install(before); }

    void Message(Kind, const QString& text, const QString&) override { said << text; }
    Answer Ask(const QString& text, const QString&, bool) override
    {
        said << text;
        return answer;
    }
    std::optional<QString> AskText(const TextRequest& request) override
    {
        said << request.title + '=' + request.preset;
        return Take();
    }
    std::optional<double> AskNumber(const NumberRequest& request) override
    {
        said << request.label;
        const auto text = Take();
        return text ? std::optional(text->toDouble()) : std::nullopt;
    }
    QString OpenFile(const FileRequest&) override { return Take().value_or(QString()); }
    QString SaveFile(const FileRequest& request) override
    {
        const auto path = Take();
        return path ? WithDefaultExtension(*path, request.defaultExtension) : QString();
    }
    std::optional<MxColor> ChooseColor(const ColorRequest& request) override
    {
        said << request.title + '=' + request.preset.ToQColor().name();
        if (request.preview)
            request.preview({255, 0, 0}); // looked at
        return color;
    }

    std::optional<QString> Take()
    {
        if (texts.empty())
            return {};
        const QString text = texts.front();
        texts.pop_front();
        return text;
    }

    HostDialogs* before;
    std::deque<QString> texts; // to be answered; with none left, cancelled
    Answer answer = Answer::No;
    std::optional<MxColor> color{}; // none: cancelled
    QStringList said;
};

} // namespace Marlox
