#include "controls/polyline/PolyImport.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/BulkChange.h"
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
        for (PolyPoint& point : key.points)
            point.Set(PPF_Locked, shape.locked.value_or(false));
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
    /// `lies`: on another mask, which it joins as the file tells.
    ShapePlacer(ImportedShape& shape, bool makesKeys, bool lies, QStringList& remarks)
        : shape_(shape), makesKeys_(makesKeys), lies_(lies), remarks_(remarks)
    {
    }

    using Writer = std::function<bool(int polygon, Input::State state)>;
    bool PlaceOutlines(const Writer& write, const Input& inner, bool hasOuter)
    {
        if (inner.GetDataType() != MxID(TypeOf(shape_.kind)))
            Remark(QStringLiteral("its points are of another kind than the mask draws (%1)")
                       .arg(QLatin1String(TypeOf(shape_.kind))));
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
        if (shape_.locked.value_or(false))
            Remark(QStringLiteral("its points are locked, as in the file"));
        const bool isOpaque =
            std::all_of(shape_.opacity.begin(), shape_.opacity.end(),
                        [](const ImportedNumber& key) { return key.value == 1.0; });
        if (lies_ && (!isOpaque || shape_.inverted.value_or(false)))
            Remark(QStringLiteral("its opacity and inversion hold for what it lies on as well"));
        if (!PlaceCombine(tool) && !shape_.combine.empty() && shape_.combine != "add")
            Remark(QStringLiteral("how it joins the shapes below it (%1) is not taken over")
                       .arg(QString::fromStdString(shape_.combine)));
    }

private:
    /// How it joins the mask it lies on; false: none, or it can't be had.
    bool PlaceCombine(const Operator& tool) const
    {
        constexpr std::pair<const char*, double> ways[] = {
            {"add", 0.0}, {"max", 0.0}, {"subtract", 1.0}, {"inside", 2.0}, {"difference", 3.0}};
        Input* const combine = tool.FindInput("Combine");
        const auto way = std::find_if(std::begin(ways), std::end(ways), [this](const auto& each) {
            return shape_.combine == each.first;
        });
        return lies_ && combine && way != std::end(ways) &&
               combine->SetValue(Number(way->second), TimeNone, Input::ReplaceAll);
    }

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
    bool lies_;
    QStringList& remarks_;
};

bool PlaceHere(PolyLineControl& control, ImportedShape& shape, bool lies, QStringList& remarks)
{
    PolyEditor& editor = control.Editor();
    const bool hadOuter = editor.HasPoints(OuterPolygon);
    const bool hasNewOuter = !shape.outerKeys.empty();
    Operator& owner = control.ShapeInput(InnerPolygon)->Owner();
    ShapePlacer placer(shape, control.Settings().animated, lies, remarks);
    const auto write = [&editor](int polygon, Input::State state) {
        return editor.Write(polygon, std::move(state));
    };
    if (!placer.PlaceOutlines(write, *control.ShapeInput(InnerPolygon),
                              editor.InputOf(OuterPolygon) != nullptr))
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

/// Makes tools like the overlay's own. Each gives a mask that lies on that of the next one; the
/// overlay's own lies on the first. They stand before the picture's source, which takes nothing
/// from them, the last one in front: a mask that is switched off so lets the next one through. The
/// frame of the picture reaches the last one by a connection. What the overlay's own lay on is what
/// the last one lies on.
class FurtherTools {
public:
    explicit FurtherTools(const PolyLineControl& control)
        : control_(control), owner_(control.ShapeInput(InnerPolygon)->Owner()),
          document_(*control.GetDoc()), above_(&owner_),
          canLie_(owner_.FindInput("Base") != nullptr)
    {
        if (canLie_)
            base_ = owner_.FindInput("Base")->GetSource();
        if (Input* const image = owner_.ImageInput()) {
            picture_ = document_.FeedOf(*image);
            MakeRoom(*image);
        }
    }

    bool CanLie() const { return canLie_; }

    bool Add(ImportedShape& shape, bool isLast, QString& problem, QStringList& remarks)
    {
        const int position = canLie_ ? position_ : document_.IndexOf(*above_) + 1;
        Operator* const tool = document_.AddTool(owner_.GetToolType(), position, &problem);
        if (!tool)
            return false;
        tool->SetName(QString::fromStdString(shape.name));
        const auto write = [this, tool](int polygon, Input::State state) {
            Input* const input = Counterpart(*tool, control_.ShapeInput(polygon));
            return input && input->ChangeTo(std::move(state));
        };
        ShapePlacer placer(shape, control_.Settings().animated, canLie_ && (!isLast || base_),
                           remarks);
        if (!placer.PlaceOutlines(write, *control_.ShapeInput(InnerPolygon),
                                  control_.ShapeInput(OuterPolygon) != nullptr))
            return false;
        placer.PlaceLook(*tool);
        TakeAspect(*tool);
        if (canLie_) {
            SetMaskOnly(*tool);
            above_->FindInput("Base")->Connect(tool);
            if (isLast && picture_ && tool->ImageInput())
                tool->ImageInput()->Connect(picture_);
            if (isLast && base_ && !tool->FindInput("Base")->Connect(base_))
                remarks +=
                    QStringLiteral("%1 is no part of the masks any more.").arg(base_->GetName());
        } else {
            tool->DisableTool(true);
        }
        Input* const center = Counterpart(*tool, control_.BoundInput(PLCID_Center));
        QString refusal;
        if (center && !AnimateWithPath(*center, &refusal) && !remarks.contains(refusal))
            remarks += refusal;
        above_ = tool;
        return true;
    }

private:
    static Input* Counterpart(const Operator& tool, const Input* input)
    {
        return input ? tool.FindInput(input->GetID()) : nullptr;
    }

    static void SetMaskOnly(const Operator& tool)
    {
        if (Input* const use = tool.FindInput("Apply"))
            use->SetValue(Number(1.0), TimeNone, Input::ReplaceAll);
    }

    /// What comes first in the flow takes nothing from before it unless its picture is to come from
    /// there. Where it would, the masks go before the overlay's tool, which is connected.
    void MakeRoom(Input& image)
    {
        const auto& tools = document_.Tools();
        const auto first = std::find_if(tools.begin(), tools.end(), [](const Ref<Operator>& tool) {
            return !tool->IsModifier();
        });
        if (first == tools.end() || !canLie_)
            return;
        if (!picture_) {
            SetMaskOnly(owner_); // what flows in would be the last mask
        } else if (const Input* of = (*first)->ImageInput(); of && !of->GetSource()) {
            position_ = document_.IndexOf(owner_);
            image.Connect(picture_);
        }
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
    Operator* above_;
    Operator* picture_ = nullptr;
    Operator* base_ = nullptr; // null: none
    bool canLie_;
    int position_ = 0;
};

/// A tool that nobody gave a name is named after the shape.
void NameAfter(Operator& tool, const ImportedShape& shape)
{
    QString number = tool.GetName();
    const QString type = tool.GetToolType().ToString();
    if (!number.startsWith(type))
        return;
    bool isNumber = false;
    number.mid(type.size()).toInt(&isNumber);
    if (isNumber)
        tool.SetName(QString::fromStdString(shape.name));
}

bool PlaceFurther(const PolyLineControl& control, ImportedShapes& file, std::size_t here,
                  QString& problem, QStringList& remarks)
{
    const std::size_t count = file.shapes.size();
    const std::size_t last = here + 1 == count ? count - 2 : count - 1;
    FurtherTools tools(control);
    std::size_t added = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (i == here)
            continue;
        if (!tools.Add(file.shapes[i], i == last, problem, remarks))
            return false;
        ++added;
    }
    remarks += (tools.CanLie()
                    ? QStringLiteral("Masks added: %1. Each lies on the next one, this one on the "
                                     "first of them.")
                    : QStringLiteral("Masks added: %1. They are disabled, for each of them would "
                                     "cut away what lies outside it."))
                   .arg(added);
    return true;
}

bool PlaceAll(PolyLineControl& control, ImportedShapes& file, const ImportShapeChoice& choice,
              QString& problem, QStringList& remarks)
{
    const std::size_t here = choice.shape ? std::size_t(*choice.shape) : file.shapes.size();
    Operator& owner = control.ShapeInput(InnerPolygon)->Owner();
    const bool hasFurther = choice.all && file.shapes.size() > (here < file.shapes.size() ? 1 : 0);
    if (here < file.shapes.size()) {
        const bool lies = hasFurther && owner.FindInput("Base");
        if (!PlaceHere(control, file.shapes[here], lies, remarks))
            return false;
        if (choice.all)
            NameAfter(owner, file.shapes[here]);
    }
    return !hasFurther || PlaceFurther(control, file, here, problem, remarks);
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
    const BulkChange bulk(document->Undo());
    document->StartUndoNest(undoText);
    const bool done = PlaceAll(control, file, choice, problem, remarks);
    if (document)
        document->EndUndo(done);
    if (!done && problem.isEmpty())
        problem = QStringLiteral("The shape can't be changed.");
    return done;
}

} // namespace Marlox
