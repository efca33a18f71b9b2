#include "controls/polyline/PolyImport.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/PathAnimation.h"
#include "system/shapes/ShapePublish.h"

#include <algorithm>

namespace Marlox {

namespace {

const char* TypeOf(ImportedShape::Kind kind)
{
    switch (kind) {
    case ImportedShape::Kind::BSpline:
        return CLSID_DataType_BSplinePolyline;
    case ImportedShape::Kind::Cardinal:
        return CLSID_DataType_CardinalSplinePolyline;
    default:
        return CLSID_DataType_Polyline;
    }
}

/// An input's state with the shape of these keys. A single key is the shape at all times; where
/// edits make keys it stays a key, so that the first edit at another time does not replace it.
Input::State StateOf(const ImportedShape& shape, std::vector<ImportedKey>& keys, bool makesKeys)
{
    Input::State state;
    const bool keyed = makesKeys || keys.size() > 1;
    for (ImportedKey& key : keys) {
        const Ref<PolyLine> made = PolyLine::Create(TypeOf(shape.kind));
        made->SetPoints(std::move(key.points));
        if (shape.closed)
            made->Close();
        made->SetEnabled(shape.visible.value_or(true));
        if (!state.value)
            state.value = made;
        if (keyed)
            state.animation.SetKey(key.time, made, key.interpolation);
    }
    return state;
}

/// Puts what one shape's file tells into one tool.
class ShapePlacer {
public:
    ShapePlacer(ImportedShape& shape, bool makesKeys, QStringList& remarks)
        : shape_(shape), makesKeys_(makesKeys), remarks_(remarks)
    {
    }

    using Writer = std::function<bool(int polygon, Input::State state)>;
    bool PlaceOutlines(const Writer& write, bool hasOuter)
    {
        if (!write(InnerPolygon, StateOf(shape_, shape_.keys, makesKeys_)))
            return false;
        if (shape_.outerKeys.empty())
            return true;
        if (!hasOuter || !write(OuterPolygon, StateOf(shape_, shape_.outerKeys, makesKeys_)))
            Remark(QStringLiteral("its outer polygon has no place here"));
        return true;
    }

    /// By the names that masks have for such inputs.
    void PlaceLook(const Operator& tool)
    {
        PlaceLevel(tool.FindInput("Level"));
        Input* const invert = tool.FindInput("Invert");
        if (shape_.inverted.value_or(false) &&
            !(invert && invert->SetValue(Number(1.0), TimeNone, Input::ReplaceAll)))
            Remark(QStringLiteral("it is inverted in the file"));
        if (!shape_.visible.value_or(true))
            Remark(QStringLiteral("it is hidden, as in the file; \"Enable Polyline\" shows it"));
        if (!shape_.combine.empty() && shape_.combine != "add")
            Remark(QStringLiteral("how it joins the shapes below it (%1) is not taken over")
                       .arg(QString::fromStdString(shape_.combine)));
    }

private:
    void PlaceLevel(Input* level)
    {
        const std::vector<ImportedNumber>& opacity = shape_.opacity;
        const bool isFull = std::all_of(opacity.begin(), opacity.end(),
                                        [](const ImportedNumber& key) { return key.value == 1.0; });
        if (isFull)
            return;
        Input::State state;
        for (const ImportedNumber& key : opacity) {
            const Ref<Parameter> value =
                level ? level->Accepted(Number(key.value)) : Ref<Parameter>();
            if (!state.value)
                state.value = value;
            if (opacity.size() > 1)
                state.animation.SetKey(key.time, value, key.interpolation);
        }
        if (!level || !level->ChangeTo(std::move(state)))
            Remark(QStringLiteral("its opacity has no place here"));
    }

    void Remark(const QString& text)
    {
        remarks_ += QStringLiteral("\"%1\": %2").arg(QString::fromStdString(shape_.name), text);
    }

    ImportedShape& shape_;
    bool makesKeys_;
    QStringList& remarks_;
};

bool PlaceHere(PolyLineControl& control, ImportedShape& shape, QStringList& remarks)
{
    PolyEditor& editor = control.Editor();
    const bool hadOuter = editor.HasPoints(OuterPolygon);
    const bool hasNewOuter = !shape.outerKeys.empty();
    Operator& owner = control.ShapeInput(InnerPolygon)->Owner();
    ShapePlacer placer(shape, control.Settings().animated, remarks);
    const auto write = [&editor](int polygon, Input::State state) {
        return editor.Write(polygon, std::move(state));
    };
    if (!placer.PlaceOutlines(write, editor.InputOf(OuterPolygon) != nullptr))
        return false;
    if (hadOuter && !hasNewOuter) { // it belonged to the shape that is replaced
        Input::State none;
        none.value = editor.InputOf(OuterPolygon)->DefaultValue();
        editor.Write(OuterPolygon, std::move(none));
    }
    placer.PlaceLook(owner);
    RemoveUnusedPublishedInputs(owner);
    editor.SetActivePolygon(InnerPolygon);
    editor.ClearSelection();
    return true;
}

/// Makes tools like the overlay's own behind it, one after the other.
class FurtherTools {
public:
    explicit FurtherTools(const PolyLineControl& control)
        : control_(control), owner_(control.ShapeInput(InnerPolygon)->Owner()),
          document_(*control.GetDoc()), last_(&owner_)
    {
    }

    bool Add(ImportedShape& shape, QString& problem, QStringList& remarks)
    {
        Operator* const tool =
            document_.AddTool(owner_.GetToolType(), document_.IndexOf(*last_) + 1, &problem);
        if (!tool)
            return false;
        last_ = tool;
        tool->SetName(QString::fromStdString(shape.name));
        const auto write = [this, tool](int polygon, Input::State state) {
            Input* const input = Counterpart(*tool, control_.ShapeInput(polygon));
            return input && input->ChangeTo(std::move(state));
        };
        ShapePlacer placer(shape, control_.Settings().animated, remarks);
        if (!placer.PlaceOutlines(write, control_.ShapeInput(OuterPolygon) != nullptr))
            return false;
        placer.PlaceLook(*tool);
        TakeAspect(*tool);
        Input* const center = Counterpart(*tool, control_.BoundInput(PLCID_Center));
        QString refusal;
        if (center && !AnimateWithPath(*center, &refusal) && !remarks.contains(refusal))
            remarks += refusal;
        tool->DisableTool(true);
        return true;
    }

private:
    static Input* Counterpart(const Operator& tool, const Input* input)
    {
        return input ? tool.FindInput(input->GetID()) : nullptr;
    }

    /// The picture is the same one, so its proportions are.
    void TakeAspect(const Operator& tool) const
    {
        const Input* from = owner_.FindInput("FrameAspect");
        Input* const to = Counterpart(tool, from);
        if (to && from->GetPlainValue(0.0))
            to->SetValue(*from->GetPlainValue(0.0), TimeNone);
    }

    const PolyLineControl& control_;
    Operator& owner_;
    MarloxDoc& document_;
    Operator* last_;
};

bool PlaceAll(PolyLineControl& control, ImportedShapes& file, const ImportShapeChoice& choice,
              QString& problem, QStringList& remarks)
{
    const std::size_t here = choice.shape ? std::size_t(*choice.shape) : file.shapes.size();
    if (here < file.shapes.size() && !PlaceHere(control, file.shapes[here], remarks))
        return false;
    if (!choice.all)
        return true;
    FurtherTools tools(control);
    for (std::size_t i = 0; i < file.shapes.size(); ++i) {
        if (i != here && !tools.Add(file.shapes[i], problem, remarks))
            return false;
    }
    const std::size_t added = file.shapes.size() - (here < file.shapes.size() ? 1 : 0);
    if (added > 0)
        remarks += QStringLiteral("Masks added: %1. They are disabled, for each of them would cut "
                                  "away what lies outside it.")
                       .arg(added);
    return true;
}

} // namespace

bool PlaceShapes(PolyLineControl& control, ImportedShapes& file, const ImportShapeChoice& choice,
                 const char* undoText, QString& problem, QStringList& remarks)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const QPointer<MarloxDoc> document = control.GetDoc();
    if (!document || !control.CanEdit()) {
        problem = QStringLiteral("The shape can't be changed.");
        return false;
    }
    document->StartUndoNest(undoText);
    const bool done = PlaceAll(control, file, choice, problem, remarks);
    if (document)
        document->EndUndo(done);
    if (!done && problem.isEmpty())
        problem = QStringLiteral("The shape can't be changed.");
    return done;
}

bool PlaceMotion(PolyLineControl& control, const ImportedPath& path, const char* undoText,
                 QString& problem)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const QPointer<MarloxDoc> document = control.GetDoc();
    Operator* const owner = control.GetOperator(nullptr);
    Input* const center = control.BoundInput(PLCID_Center);
    if (!document || !owner || (!center && !control.BoundInput(PLCID_Displacement))) {
        problem = QStringLiteral("The shape has no centre that a path could move.");
        return false;
    }
    std::vector<PathKey> keys;
    for (const ImportedPathKey& key : path.keys)
        keys.push_back({key.time, {key.x, key.y}, key.interpolation});
    const bool isSmooth = std::any_of(path.keys.begin(), path.keys.end(), [](const auto& key) {
        return key.interpolation == Interpolation::Smooth;
    });
    document->StartUndoNest(undoText);
    Operator* const tool = center ? AnimateWithPath(*center, &problem) : owner;
    const bool done =
        tool && SetPathKeys(*tool, keys, isSmooth ? PathForm::Smooth : PathForm::Linear);
    if (document)
        document->EndUndo(done);
    if (!done && problem.isEmpty())
        problem = QStringLiteral("The path of %1 can't be changed.").arg(owner->GetName());
    return done;
}

} // namespace Marlox
