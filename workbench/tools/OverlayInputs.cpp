#include "workbench/tools/OverlayInputs.h"

namespace Marlox {

Input& AddPoint(Operator& tool, const PointSpec& spec, const TagList& overlay)
{
    TagList tags{
        {IAS_Name, spec.name},          {IAS_Help, spec.help},
        {IAS_Control, "OffsetControl"}, {IAS_DataType, CLSID_DataType_Point},
        {IAD_DefaultX, spec.x},         {IAD_DefaultY, spec.y},
    };
    for (const TagPair* pair = overlay.First(); pair; pair = overlay.Next(pair))
        tags.Add(u32(pair->tag), pair->value);
    return tool.AddInput(spec.id, tags);
}

QPointF PointAt(const Operator& tool, const char* id, double time)
{
    const Input* input = tool.FindInput(id);
    const auto value = input ? input->GetValue(time) : Ref<Parameter>();
    const auto* point = dynamic_cast<const Point*>(value.Get());
    return point ? QPointF(point->X(), point->Y()) : QPointF(0.5, 0.5);
}

} // namespace Marlox
