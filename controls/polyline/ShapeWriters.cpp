#include "controls/polyline/ShapeWriters.h"

#include <array>
#include <charconv>
#include <initializer_list>

namespace Marlox {

namespace {

/// As "%f" writes it in the C locale.
void AppendFixed(std::string& out, double value)
{
    constexpr int decimals = 6;
    std::array<char, 400> digits; // the largest number has 309 of them before the point
    const auto [end, failure] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                              std::chars_format::fixed, decimals);
    if (failure == std::errc())
        out.append(digits.data(), end);
}

/// Numbers with a blank between them.
void AppendRow(std::string& out, std::initializer_list<double> values)
{
    bool isFirst = true;
    for (const double value : values) {
        if (!isFirst)
            out += ' ';
        isFirst = false;
        AppendFixed(out, value);
    }
}

void AppendHeader(std::string& out, const NativeFileHeader& header)
{
    AppendRow(out, {header.width, header.height, header.pixelAspect, header.heightsPerWidth,
                    header.frameRate});
    out += '\n';
}

void AppendOutline(std::string& out, const ShapeOutline& outline, bool marksEnds)
{
    for (const PolyPoint& point : outline.points) {
        if (point.Has(PPF_Linear)) {
            AppendRow(out, {point.x, point.y});
        } else {
            AppendRow(out,
                      {point.x, point.y, point.In().x, point.In().y, point.Out().x, point.Out().y});
        }
        const bool isFirst = &point == &outline.points.front();
        const bool isLast = &point == &outline.points.back();
        const bool isEnd = outline.isClosed ? isLast && !isFirst : isLast || isFirst;
        if (marksEnds && isEnd)
            out += ' ' + std::string(nativeEndMark);
        out += '\n';
    }
}

/// Group codes and values, a line each.
void AppendLines(std::string& out, std::initializer_list<const char*> lines)
{
    for (const char* line : lines) {
        out += line;
        out += '\n';
    }
}

void AppendExtent(std::string& out, const char* name, ShapePlace place)
{
    AppendLines(out, {"9", name});
    const std::pair<const char*, double> axes[] = {{"10", place.x}, {"20", place.y}, {"30", 0.0}};
    for (const auto& [code, value] : axes) {
        AppendLines(out, {code});
        AppendFixed(out, value);
        out += '\n';
    }
}

} // namespace

std::string LightWaveMotionText(std::span<const ShapePlace> frames, double heightsPerWidth)
{
    std::string out = "LWMO\n1\n9\n" + std::to_string(frames.size()) + '\n';
    for (std::size_t i = 0; i < frames.size(); ++i) {
        AppendRow(out, {frames[i].x - 0.5, (0.5 - frames[i].y) * heightsPerWidth});
        out += " 0 0 0 0 1 1 1\n" + std::to_string(i) + " 0 0 0 0\n";
    }
    return out;
}

std::string MotionText(const std::optional<NativeFileHeader>& header,
                       std::span<const PathSample> centre, std::span<const ShapeSample> keys)
{
    std::string out = std::string(nativeMotionMagic) + '\n';
    if (header)
        AppendHeader(out, *header);
    for (const PathSample& sample : centre) {
        AppendRow(out, {sample.time, sample.place.x, sample.place.y});
        out += '\n';
    }
    for (const ShapeSample& key : keys) {
        for (const PolyPoint& point : key.points) {
            const bool isLinear = point.Has(PPF_Linear);
            const ShapePlace in = isLinear ? point.Place() : point.In();
            const ShapePlace to = isLinear ? point.Place() : point.Out();
            AppendRow(out, {key.time, point.x, point.y, in.x, in.y, to.x, to.y});
            out += '\n';
        }
    }
    return out;
}

std::string ShapeText(const NativeFileHeader& header, const ShapeOutline* main,
                      const ShapeOutline* outer, bool marksEnds)
{
    std::string out = std::string(nativeShapeMagic) + '\n';
    AppendHeader(out, header);
    if (!main)
        return out;
    AppendOutline(out, *main, marksEnds);
    if (outer) {
        out += '\n' + std::string(nativeEdgeMark) + '\n';
        AppendOutline(out, *outer, marksEnds);
    }
    return out;
}

std::string DxfText(ShapePlace low, ShapePlace high)
{
    std::string out;
    AppendLines(out, {"0", "SECTION", "2", "HEADER", "9", "$ACADVER", "1", "AC1008"});
    AppendLines(out, {"9", "$UCSORG", "10", "0.0", "20", "0.0", "30", "0.0"});
    AppendLines(out, {"9", "$UCSXDIR", "10", "1.0", "20", "0.0", "30", "0.0"});
    AppendLines(out, {"9", "$TILEMODE", "70", "1"});
    AppendLines(out, {"9", "$UCSYDIR", "10", "0.0", "20", "1.0", "30", "0.0"});
    AppendExtent(out, "$EXTMIN", low);
    AppendExtent(out, "$EXTMAX", high);
    AppendLines(out, {"0", "ENDSEC", "0", "SECTION", "2", "TABLES"});
    AppendLines(out, {"0",  "TABLE",      "2",  "LTYPE", "70", "1",          "0",  "LTYPE",
                      "2",  "CONTINUOUS", "70", "64",    "3",  "Solid line", "72", "65",
                      "73", "0",          "40", "0.0",   "0",  "ENDTAB"});
    AppendLines(out, {"0", "TABLE", "2", "LAYER", "70", "1", "0", "LAYER", "2", "0", "70", "0",
                      "62", "7", "6", "CONTINUOUS", "0", "ENDTAB"});
    AppendLines(out, {"0",  "TABLE", "2",  "STYLE", "70", "1",   "0",  "STYLE", "2",  "STANDARD",
                      "70", "0",     "40", "0.0",   "41", "1.0", "50", "0.0",   "71", "0",
                      "42", "0.2",   "3",  "txt",   "4",  "",    "0",  "ENDTAB"});
    AppendLines(out, {"0", "TABLE", "2", "UCS", "70", "0", "0", "ENDTAB"});
    AppendLines(out, {"0", "ENDSEC", "0", "SECTION", "2", "ENTITIES", "0", "ENDSEC", "0", "EOF"});
    return out;
}

} // namespace Marlox
