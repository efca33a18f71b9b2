// The square of hue, saturation and value where light is shown as it is.

#include "widgets/ColorSquare.h"

#include <algorithm>
#include <cmath>

#include <QColor>

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#include <sys/platform/x86.h>
#define MARLOX_HAS_WIDE_ROWS
#endif

namespace Marlox {

namespace {

// A code is a row's number times a column's, in fixed point. QColor keeps 16 bits of each component
// before it makes a code of 8 (of which 257 steps are one), which comes to rounding the exact
// product. Single precision is close enough for all but the few products next to a half, which are
// found below and left to QColor.
//
// Codes have 16 binary places. A number of a row is QColor's 16 bits of the value, exact. With
// those, the column's rounding, the product's and the sum's are off by half a unit of the last
// place each at most, and the truncation by 1; `slack` puts all of it on one side of the half.
constexpr float half = 32768.0f;
constexpr float slack = 2.5f;
constexpr quint32 doubtful = 4; // units above a half

constexpr double sixteenBits = 65535.0;
constexpr int turn = 36000; // QColor's hues

constexpr int block = 64; // pixels that are checked together
constexpr int group = 8;  // the same once there is a doubt

/// The components of a row: the full one is the same in all columns, the others are products.
struct Row {
    float value;
    QRgb full; // with the alpha
};

struct ColumnNumbers {
    const float* middle;
    const float* least;

    ColumnNumbers From(int column) const { return {middle + column, least + column}; }
};

/// Where a component stands in a pixel, by how far its code is shifted down from bit 16.
enum Place { Red = 0, Green = 8, Blue = 16 };

[[gnu::always_inline]] inline quint32 product(float value, float column)
{
    return quint32(qint32(value * column + (half + slack)));
}

template <Place place>
[[gnu::always_inline]] inline QRgb codeOf(quint32 product)
{
    return place == Blue ? product >> Blue : (product >> place) & (0xff0000u >> place);
}

/// Whether any of the pixels is doubtful.
template <Place middlePlace, Place leastPlace>
[[gnu::always_inline]] inline bool shade(QRgb* pixels, ColumnNumbers columns, int count, Row row)
{
    quint32 closest = ~0u;
    for (int i = 0; i < count; ++i) {
        const quint32 middle = product(row.value, columns.middle[i]);
        const quint32 least = product(row.value, columns.least[i]);
        const quint32 closer = std::min(middle << 16, least << 16);
        closest = std::min(closest, closer);
        pixels[i] = row.full | codeOf<middlePlace>(middle) | codeOf<leastPlace>(least);
    }
    return closest < doubtful << 16;
}

/// Writes a row, and the first columns of its doubtful groups to `doubts`.
using ShadeRow = void (*)(QRgb* pixels, ColumnNumbers columns, int count, Row row,
                          std::vector<int>& doubts);

template <Place middle, Place least>
[[gnu::always_inline]] inline void shadeBlocks(QRgb* pixels, ColumnNumbers columns, int count,
                                               Row row, std::vector<int>& doubts)
{
    const auto shadeGroups = [&](int from, int to) {
        for (; from < to; from += group) {
            const int size = std::min(group, to - from);
            if (shade<middle, least>(pixels + from, columns.From(from), size, row))
                doubts.push_back(from);
        }
    };
    int x = 0;
    for (; x + block <= count; x += block) {
        if (shade<middle, least>(pixels + x, columns.From(x), block, row))
            shadeGroups(x, x + block);
    }
    shadeGroups(x, count);
}

template <Place middle, Place least>
void shadePlainly(QRgb* pixels, ColumnNumbers columns, int count, Row row, std::vector<int>& doubts)
{
    shadeBlocks<middle, least>(pixels, columns, count, row, doubts);
}

#ifdef MARLOX_HAS_WIDE_ROWS
/// Eight pixels at a time.
template <Place middle, Place least>
[[gnu::target("avx2,fma")]] void shadeWidely(QRgb* pixels, ColumnNumbers columns, int count,
                                             Row row, std::vector<int>& doubts)
{
    shadeBlocks<middle, least>(pixels, columns, count, row, doubts);
}

/// As the C library found out when the program started. The compiler's own way asks the processor
/// with each load of the library, which costs more than all registrations where it is a virtual
/// one.
bool isWide()
{
    return CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(FMA);
}
#else
template <Place middle, Place least>
constexpr ShadeRow shadeWidely = shadePlainly<middle, least>;

bool isWide()
{
    return false;
}
#endif

/// A sixth of the turn: where its full component stands, and how its rows are written.
struct Sector {
    Place full;
    ShadeRow plainly;
    ShadeRow widely;
};

template <Place full, Place middle, Place least>
constexpr Sector sector{full, shadePlainly<middle, least>, shadeWidely<middle, least>};

constexpr Sector sectors[] = {sector<Red, Green, Blue>, sector<Green, Red, Blue>,
                              sector<Green, Blue, Red>, sector<Blue, Green, Red>,
                              sector<Blue, Red, Green>, sector<Red, Blue, Green>};

/// Has QColor tell the doubtful pixels of a group; those that are hardly so as well.
template <class ExactColor>
void settle(QRgb* pixels, ColumnNumbers columns, int count, float value, ExactColor exactColor)
{
    for (int i = 0; i < count; ++i) {
        const quint32 closest = std::min(product(value, columns.middle[i]) & 0xffff,
                                         product(value, columns.least[i]) & 0xffff);
        if (closest <= doubtful)
            pixels[i] = exactColor(i).rgba64().toArgb32();
    }
}

/// The numbers of all columns: those of the middle component, then those of the least. `share`: of
/// the saturation, that the middle one loses.
std::vector<float> columnsOf(const std::vector<double>& saturations, double share)
{
    constexpr double unit = 255.0 * 65536.0 / sixteenBits;
    const std::size_t count = saturations.size();
    std::vector<float> numbers(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        const double saturation = std::lround(saturations[i] * sixteenBits) / sixteenBits;
        numbers[i] = float(unit * (1.0 - saturation * share));
        numbers[count + i] = float(unit * (1.0 - saturation));
    }
    return numbers;
}

} // namespace

void ColorSquare::PaintHsv(QImage& image, double hue) const
{
    const int wrapped =
        std::isfinite(hue) ? int(std::lround((hue - std::floor(hue)) * turn)) % turn : 0;
    const int sixth = wrapped / (turn / 6);
    const double along = double(wrapped % (turn / 6)) / (turn / 6);
    const std::vector<float> numbers = columnsOf(saturations_, sixth % 2 ? along : 1.0 - along);
    const ColumnNumbers columns{numbers.data(), numbers.data() + Columns()};

    static const bool wide = isWide();
    const Sector& sector = sectors[sixth];
    const ShadeRow shadeRow = wide ? sector.widely : sector.plainly;
    std::vector<int> doubts;
    uchar* line = image.bits();
    for (int y = 0; y < Rows(); ++y, line += image.bytesPerLine()) {
        auto* pixels = reinterpret_cast<QRgb*>(line);
        const double value = values_[std::size_t(y)];
        const auto level = quint32(value * sixteenBits + 0.5);
        const QRgb full = (level + 128) / 257;
        const Row row{float(level), 0xff000000u | full << (Blue - sector.full)};
        doubts.clear();
        shadeRow(pixels, columns, Columns(), row, doubts);
        for (const int first : doubts)
            settle(pixels + first, columns.From(first), std::min(group, Columns() - first),
                   row.value, [&](int x) {
                       return QColor::fromHsvF(double(wrapped) / turn,
                                               saturations_[std::size_t(first + x)], value);
                   });
    }
}

} // namespace Marlox
