#pragma once

#include "script/ScriptSystem.h"
#include "system/base/Registry.h"
#include "system/document/MarloxDoc.h"
#include "system/evaluation/RenderJob.h"
#include "system/shapes/PathModifier.h"
#include "system/shapes/ShapeLinks.h"

#include <QTest>

namespace Marlox {

/// A source with shapes: "Polyline", "Polyline2" and "Soft" (a B-spline). Its picture is one pixel,
/// the x of the first shape's first point. Its shapes lie `shift` to the right in the picture.
class ShapeTool final : public Operator {
public:
    explicit ShapeTool(const Registry* record) : Operator(record)
    {
        AddInput("Polyline", {{IAS_DataType, CLSID_DataType_Polyline}});
        AddInput("Polyline2", {{IAS_DataType, CLSID_DataType_Polyline}});
        AddInput("Soft", {{IAS_DataType, CLSID_DataType_BSplinePolyline}});
    }
    std::unique_ptr<ToolProcess> Prepare(double time) const override
    {
        class Process final : public ToolProcess {
        public:
            explicit Process(double level) : level_(level) {}
            Ref<Image> Run(const Ref<Image>&, RenderContext&, QString&) override
            {
                Image::Format format;
                format.dataWindow = format.displayWindow = {0, 0, 1, 1};
                auto image = MakeRef<Image>(format);
                image->Row(0)[0] = float(level_);
                return image;
            }

        private:
            double level_;
        };
        const Ref<PolyLine> shape = ResolvedShape(*FindInput("Polyline"), time);
        return std::make_unique<Process>(shape->GetCount() ? shape->First()->x : -1.0);
    }
    ShapePlacement PlacementOf(const Input&, double) const override
    {
        ShapePlacement placement;
        placement.center.x += shift;
        return placement;
    }

    double shift = 0.0;
};

/// A document with shapes, made anew for each test.
class ShapeBench : public QObject {
    Q_OBJECT

    template <class Tool>
    static Object* create(const Registry* record, const ScriptVal&, const TagList&)
    {
        return new Tool(record);
    }
    template <class Tool>
    static constexpr TagPair tags[] = {
        {REG_Kind, u32(ClassKind::Tool)}, {REG_Create, &create<Tool>}, {0, 0}};
    Registry shapeClass_{"Shape", tags<ShapeTool>};
    Registry pathClass_{CLSID_Tool_Path, tags<PathModifier>};
    Registry trackerClass_{CLSID_Tool_Tracker, tags<TrackerModifier>};

protected:
    std::unique_ptr<MarloxDoc> document_;
    Operator* tool_ = nullptr; // "Shape1"

    UndoHistory& history() { return document_->Undo(); }
    Input& shape() { return *tool_->FindInput("Polyline"); }
    static SelMask mask(int count, std::initializer_list<int> items)
    {
        SelMask made(count);
        for (const int item : items)
            made.DoSet(item, SelMask::Select);
        return made;
    }
    static Ref<PolyLine> line(std::vector<ShapePlace> places,
                              const char* type = CLSID_DataType_Polyline)
    {
        const Ref<PolyLine> made = PolyLine::Create(type);
        for (const ShapePlace& place : places) {
            PolyPoint point;
            point.x = place.x;
            point.y = place.y;
            point.Set(PPF_Linear, true);
            made->Append(point);
        }
        return made;
    }
    Operator* add(std::vector<ShapePlace> places)
    {
        Operator* tool = document_->AddTool("Shape");
        tool->FindInput("Polyline")->SetValue(*line(std::move(places)), 0);
        return tool;
    }
    /// Where a point of an input's shape is at a time.
    static ShapePlace at(const Input& input, int index, double time = 0.0)
    {
        return std::as_const(*ResolvedShape(input, time)).GetPoint(index)->Place();
    }
    static ShapePlace placeOf(const Input& point, double time = 0.0)
    {
        const Ref<Parameter> value = point.GetValue(time); // whose components these are
        const auto components = value->Components();
        return {components[0], components[1]};
    }

private slots:
    void initTestCase() { InstallScripting(); }
    void init()
    {
        document_ = std::make_unique<MarloxDoc>();
        tool_ = add({{0.25, 0.5}, {0.5, 0.75}, {0.75, 0.5}});
        history().Clear();
    }
    void cleanup() { document_.reset(); }
};

/// Places that are the same but for rounding.
inline bool near(ShapePlace a, ShapePlace b, double within = 1e-9)
{
    return std::abs(a.x - b.x) < within && std::abs(a.y - b.y) < within;
}

} // namespace Marlox
