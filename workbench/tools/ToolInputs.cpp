#include "workbench/tools/ToolInputs.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace Marlox {

Input& AddSlider(Operator& tool, const SliderSpec& spec, const TagList& further)
{
    TagList tags{
        {IAS_Name, spec.name},
        {IAS_Help, spec.help},
        {IAS_Control, CLSID_InputControl_Slider},
        {IAS_DataType, CLSID_DataType_Number},
        {IAD_LowScale, spec.low},
        {IAD_HighScale, spec.high},
        {IAD_Default, spec.normal},
    };
    for (const TagPair* pair = further.First(); pair; pair = further.Next(pair))
        tags.Add(u32(pair->tag), pair->value);
    return tool.AddInput(spec.id, tags);
}

Input& AddChoice(Operator& tool, const char* id, const char* name, const char* help,
                 std::initializer_list<const char*> names, int normal)
{
    TagList tags{{IAS_Name, name},
                 {IAS_Help, help},
                 {IAS_Control, CLSID_InputControl_Combo},
                 {IAS_DataType, CLSID_DataType_Number},
                 {IA_Integer, true},
                 {IA_Stepped, true},
                 {IAD_Minimum, 0.0},
                 {IAD_Maximum, double(names.size() - 1)},
                 {IAD_Default, double(normal)}};
    for (const char* entry : names)
        tags.Add(CMBS_Entry, entry);
    return tool.AddInput(id, tags);
}

Input& AddFlag(Operator& tool, const char* id, const char* name, const char* help, bool normal)
{
    return tool.AddInput(id, {{IAS_Name, name},
                              {IAS_Help, help},
                              {IAS_Control, CLSID_InputControl_Checkbox},
                              {IAS_DataType, CLSID_DataType_Number},
                              {IA_Integer, true},
                              {IA_Stepped, true},
                              {IAD_Minimum, 0.0},
                              {IAD_Maximum, 1.0},
                              {IAD_LowScale, 0.0},
                              {IAD_HighScale, 1.0},
                              {IAD_Default, normal ? 1.0 : 0.0}});
}

Input& AddNest(Operator& tool, const char* id, const char* name, int rows, bool open,
               const char* help)
{
    return tool.AddInput(id, {{IAS_Name, name},
                              {IAS_Help, help},
                              {IAS_Control, CLSID_InputControl_Nest},
                              {IAS_DataType, CLSID_DataType_Number},
                              {IA_Integer, true},
                              {IA_Passive, true},
                              {IA_Animatable, false},
                              {IAD_Minimum, 0.0},
                              {IAD_Maximum, 1.0},
                              {IAD_Default, open ? 1.0 : 0.0},
                              {LBL_Rows, rows}});
}

Input& AddImageInput(Operator& tool)
{
    return tool.AddInput("Input", {{IAS_Name, "Input"}, {IAS_DataType, CLSID_DataType_Image}});
}

Input& AddMaskInput(Operator& tool)
{
    return tool.AddInput("EffectMask",
                         {{IAS_Name, "Effect Mask"},
                          {IAS_Help, "The tool whose alpha limits what this one does"},
                          {IAS_Control, CLSID_InputControl_Image},
                          {IAS_DataType, CLSID_DataType_Mask}});
}

double NumberAt(const Operator& tool, const char* id, double time)
{
    const Input* input = tool.FindInput(id);
    return input ? input->GetNumber(time) : 0.0;
}

int WholeAt(const Operator& tool, const char* id, double time)
{
    return int(std::lround(NumberAt(tool, id, time)));
}

QString NoInputText()
{
    return "there is no image to work on; put an image source in front of it";
}

std::string KeyOf(std::initializer_list<double> values)
{
    std::string key;
    for (const double value : values) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.17g ", value);
        key += text.data();
    }
    return key;
}

} // namespace Marlox
