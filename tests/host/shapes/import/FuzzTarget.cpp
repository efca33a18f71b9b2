#include "system/shapes/import/ImportPolyLines.h"

#include <cstdlib>

using namespace Marlox;

/// One reader for each program: MARLOX_FUZZED is its format.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    ImportContext context;
    context.width = 200.0;
    context.height = 100.0;
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    ImportedShapes result;
    const bool isTaken = ImportPolyLines(bytes, QStringLiteral("file"),
                                         ShapeFileFormat::MARLOX_FUZZED, context, result);
    if (isTaken == result.error.has_value())
        std::abort();
    for (const ImportedShape& shape : result.shapes) {
        for (const ImportedKey& key : shape.keys) {
            if (key.points.empty() || key.points.size() != shape.keys.front().points.size())
                std::abort();
        }
    }
    return 0;
}
