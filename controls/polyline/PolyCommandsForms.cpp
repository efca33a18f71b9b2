// Regular forms, other kinds of curves.

#include "controls/polyline/PointTransform.h"
#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyPointDlg.h"
#include "controls/polyline/PolyValuesDlg.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/PathAnimation.h"
#include "system/shapes/ShapePublish.h"

namespace Marlox {

namespace {

using Values = PolyValuesDlg::Values;
using Field = PolyValueField;

constexpr double farthest = 1e6; // pixels
constexpr double smallest = 0.01;
constexpr char pixels[] = "pixels";     // of the image
constexpr double conversionError = 0.5; // pixels

/// What a form is made in: the image as the view shows it.
struct Frame {
    ShapePlace pixels;
    double tall; // height over width, as seen
    ShapePlacement placement;

    ShapePlace Middle() const { return {pixels.x / 2.0, pixels.y / 2.0}; }
    ShapePlace At(double x, double y) const { return {x / pixels.x, y / pixels.y}; }
};

struct Form {
    const char* title;
    const char* undo;
    std::vector<Field> (*fields)(const Frame& frame);
    void (*make)(PolyLine& shape, const Frame& frame, const Values& values);
};

/// An empty label: beside the field before.
Field NumberField(const char* name, const char* label, const char* unit, const char* help,
                  double value, double minimum, double maximum)
{
    Field field{name, QString::fromLatin1(label), QString::fromLatin1(unit),
                QString::fromLatin1(help)};
    field.value = value;
    field.minimum = minimum;
    field.maximum = maximum;
    return field;
}

std::vector<Field> CenterFields(const Frame& frame)
{
    const ShapePlace middle = frame.Middle();
    return {NumberField("X", "Center X, Y:", pixels, "From the image's left edge.", middle.x,
                        -farthest, farthest),
            NumberField("Y", "", pixels, "From the image's lower edge.", middle.y, -farthest,
                        farthest)};
}

Field AngleField(const char* label, const char* help)
{
    constexpr double mostTurned = 36000.0;
    return NumberField("Angle", label, "degrees", help, 0.0, -mostTurned, mostTurned);
}

Field DirectionField()
{
    Field field{"Clockwise",
                QStringLiteral("Clockwise"),
                {},
                QStringLiteral("The order of the points; counter-clockwise without it.")};
    field.kind = Field::Check;
    return field;
}

std::vector<Field> SizedFields(const Frame& frame, double width, double height)
{
    std::vector<Field> fields = CenterFields(frame);
    fields.push_back(NumberField("Width", "Width, Height:", pixels, "Before it is turned.", width,
                                 smallest, farthest));
    fields.push_back(
        NumberField("Height", "", pixels, "Before it is turned.", height, smallest, farthest));
    fields.push_back(AngleField("Angle:", "How far it is turned, counter-clockwise."));
    fields.push_back(DirectionField());
    return fields;
}

/// A circle, as seen.
std::vector<Field> EllipseFields(const Frame& frame)
{
    return SizedFields(frame, frame.tall * frame.pixels.x / 2.0, frame.pixels.y / 2.0);
}

std::vector<Field> RectangleFields(const Frame& frame)
{
    return SizedFields(frame, frame.pixels.x / 2.0, frame.pixels.y / 2.0);
}

std::vector<Field> SpiralFields(const Frame& frame)
{
    constexpr double mostTurns = 1000.0;
    constexpr int mostPoints = 360; // of a turn
    std::vector<Field> fields = CenterFields(frame);
    fields.push_back(NumberField("From", "Start, End Radius:", pixels,
                                 "How far from the center it begins.", 0.0, 0.0, farthest));
    fields.push_back(NumberField("To", "", pixels, "How far from the center it ends.",
                                 frame.tall * frame.pixels.x / 4.0, 0.0, farthest));
    fields.push_back(
        NumberField("Turns", "Turns:", "", "How often it goes round.", 3.0, smallest, mostTurns));
    fields.push_back(
        NumberField("Points", "Points per Turn:", "", "From 3 to 360.", 8.0, 3.0, mostPoints));
    fields.back().whole = true;
    fields.push_back(
        AngleField("Start Angle:", "Where it begins, counter-clockwise from the right."));
    fields.push_back(DirectionField());
    return fields;
}

// Values in the order of the fields above.

void MakeEllipse(PolyLine& shape, const Frame& frame, const Values& v)
{
    shape.MakeEllipse(frame.At(v[0], v[1]), v[2] / frame.pixels.x, v[3] / frame.pixels.y, v[4],
                      frame.tall, v[5] != 0.0);
}

void MakeRectangle(PolyLine& shape, const Frame& frame, const Values& v)
{
    shape.MakeRectangle(frame.At(v[0], v[1]), v[2] / frame.pixels.x, v[3] / frame.pixels.y, v[4],
                        frame.tall, v[5] != 0.0);
}

void MakeSpiral(PolyLine& shape, const Frame& frame, const Values& v)
{
    shape.MakeSpiral(frame.At(v[0], v[1]), v[2] / frame.pixels.x, v[3] / frame.pixels.x, v[4], v[6],
                     int(v[5]), frame.tall, v[7] != 0.0);
}

constexpr Form ellipse{"Create Ellipse", "Create ellipse", EllipseFields, MakeEllipse};
constexpr Form rectangle{"Create Rectangle", "Create rectangle", RectangleFields, MakeRectangle};
constexpr Form spiral{"Create Spiral", "Create spiral", SpiralFields, MakeSpiral};

/// From the image's coordinates to those that the tool's placement takes there.
void Unplace(PolyLine& shape, const ShapePlacement& placement)
{
    for (int i = 0; i < shape.GetCount(); ++i) {
        TransformPoint(
            *shape.GetPoint(i), [&](ShapePlace at) { return placement.In(at); },
            [&](ShapePlace by) { return placement.InVector(by); });
    }
}

/// In place of the active polygon's points, with ids that none of them had.
Ref<PolyLine> Made(const PolyLine& instead, const Form& form, const Frame& frame,
                   const Values& values)
{
    const Ref<PolyLine> made = instead.CopyShape();
    form.make(*made, frame, values);
    Unplace(*made, frame.placement);
    return made;
}

void Replace(PolyLineControl& control, const Form& form, const Frame& frame, const Values& values)
{
    PolyEditor& editor = control.Editor();
    const int polygon = editor.ActivePolygon();
    const PolyNest nest(control, form.undo);
    const Ref<PolyLine> made = Made(*editor.Active(), form, frame, values);
    const std::vector<PolyPoint> points(made->Points().begin(), made->Points().end());
    const bool closed = made->IsClosed();
    editor.Change(polygon, PolyEditor::Scope::Keys, [&](PolyLine& shape) {
        shape.SetPoints(points);
        if (closed)
            shape.Close();
        else
            shape.Open();
    });
    if (Operator* const tool = control.GetOperator(nullptr))
        RemoveUnusedPublishedInputs(*tool);
    control.ChangeModeUndoably(PolyLineControl::ModeAfterClose(), form.undo);
}

void Create(PolyLineControl& control, const Form& form)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    PolyEditor& editor = control.Editor();
    if (!control.View() || !editor.Active())
        return;
    const PolyView view(*control.View(), control.Placement());
    const Frame frame{view.PixelSize(), view.HeightsPerWidth(), view.Placement()};
    if (!(frame.pixels.x > 0.0) || !(frame.pixels.y > 0.0))
        return;
    Values values;
    {
        PolyPreview preview(control);
        const int polygon = editor.ActivePolygon();
        const Ref<PolyLine> before = editor.Active()->CopyShape();
        PolyValuesDlg dialog(QString::fromLatin1(form.title), form.fields(frame),
                             [&](const Values& now) {
                                 const Ref<PolyLine> made = Made(*before, form, frame, now);
                                 preview.Show(polygon, made);
                                 return QStringLiteral("%1 points").arg(made->GetCount());
                             });
        if (dialog.exec() != QDialog::Accepted)
            return;
        values = dialog.GetValues();
    }
    if (!control.IsShapeFree(editor.ActivePolygon()) || !editor.Active())
        return;
    Replace(control, form, frame, values);
}

// Conversions -------------------------------------------------------------------------------------

/// The active polygon, and the other one if it is of the same kind.
void Convert(PolyLineControl& control, const char* text, const KeysOperation& operation)
{
    const PolyLine* active = control.Editor().Active();
    if (!active)
        return;
    const MxID kind = active->GetDataType();
    std::vector<PolygonKeys> all = TakeKeys(control, TakePoints::All);
    std::erase_if(all, [&](const PolygonKeys& keys) {
        return control.Editor().Shape(keys.polygon)->GetDataType() != kind;
    });
    const std::vector<ShapeList> made = OperateOn(all, operation);
    bool any = false;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t k = 0; k < made[i].size(); ++k)
            made[i][k]->SetEnabled(all[i].shapes[k]->IsEnabled());
        any = any || !made[i].empty();
    }
    if (any)
        WriteKeys(control, text, all, made);
    else
        HostDialogs::Get().Message(HostDialogs::Kind::Warning,
                                   QStringLiteral("The shape can't be converted: it needs two "
                                                  "points, and as many in all of its keys."));
}

} // namespace

void CreateEllipse(PolyLineControl& control)
{
    Create(control, ellipse);
}

void CreateRectangle(PolyLineControl& control)
{
    Create(control, rectangle);
}

void CreateSpiral(PolyLineControl& control)
{
    Create(control, spiral);
}

void ConvertToBezier(PolyLineControl& control)
{
    Convert(control, "Convert to Bezier",
            [](std::span<const Ref<PolyLine>> shapes, const SelMask&) { return ToBezier(shapes); });
}

void ConvertToBSpline(PolyLineControl& control)
{
    const ShapeError error{conversionError, ShapePixels(control)};
    Convert(control, "Convert to B-Spline",
            [&](std::span<const Ref<PolyLine>> shapes, const SelMask&) {
                return ToBSpline(shapes, error);
            });
}

Operator* PathOf(const PolyLineControl& control)
{
    const Input* const shape = control.ShapeInput(InnerPolygon);
    if (!shape || !shape->GetDoc())
        return nullptr;
    if (dynamic_cast<PathModifier*>(&shape->Owner()))
        return &shape->Owner();
    const Input* const center = control.BoundInput(PLCID_Center);
    return center ? PathOf(*center) : nullptr;
}

void ConvertPathToXY(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    Operator* const path = PathOf(control);
    if (!path || !ConvertToXYPath(*path))
        HostDialogs::Get().Message(HostDialogs::Kind::Warning,
                                   QStringLiteral("What the path moves is locked."));
}

void ToggleEditPoint(PolyLineControl& control)
{
    QPointer<PolyPointDlg>& editor = control.PointEditor();
    if (editor && editor->isVisible()) {
        editor->close();
        return;
    }
    if (!editor)
        editor = new PolyPointDlg(control, control.Window());
    editor->show();
    editor->Follow();
    editor->raise();
    editor->activateWindow();
}

} // namespace Marlox
