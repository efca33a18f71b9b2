#include "system/shapes/import/FxsFile_p.h"

#include <algorithm>
#include <array>

#include <zlib.h>

namespace Marlox {

namespace {

/// The bytes of packed data, whose first four tell how many they are. Throws.
QByteArray Unpacked(const QByteArray& bytes)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        throw ImportFailure{0, "it can't be unpacked", true};
    constexpr int lengthSize = 4;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.constData())) + lengthSize;
    stream.avail_in = uInt(bytes.size() - lengthSize);
    QByteArray out;
    std::array<char, 65536> part;
    int state = Z_OK;
    while (state == Z_OK && out.size() <= maxImportFileSize) {
        stream.next_out = reinterpret_cast<Bytef*>(part.data());
        stream.avail_out = uInt(part.size());
        state = inflate(&stream, Z_NO_FLUSH);
        out.append(part.data(), int(part.size() - stream.avail_out));
    }
    inflateEnd(&stream);
    if (out.size() > maxImportFileSize)
        throw ImportFailure{0, "it is larger than 64 MB when it is unpacked", true};
    if (state != Z_STREAM_END)
        throw ImportFailure{0, "its packed data are damaged or cut off", true};
    return out;
}

/// An element's attributes are compared with each other by the reader: they must not be many.
void RefuseLongTags(const QByteArray& xml)
{
    constexpr int longest = 8192; // bytes, also of UTF-16
    int begin = -1;               // of the tag, outside: -1
    char quote = 0;
    for (int at = 0; at < xml.size(); ++at) {
        const char c = xml[at];
        if (begin < 0) {
            const auto isAt = [&](int place) {
                return place < xml.size() && (xml[place] == '!' || xml[place] == '?');
            };
            const bool isMarkup =
                isAt(at + 1) || (at + 1 < xml.size() && !xml[at + 1] && isAt(at + 2));
            if (c == '<' && !isMarkup)
                begin = at;
        } else if (quote != 0) {
            quote = c == quote ? 0 : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            begin = -1;
        }
        if (begin >= 0 && at - begin > longest)
            throw ImportFailure{1 + int(std::count(xml.begin(), xml.begin() + begin, '\n')),
                                "an element has too many attributes", true};
    }
}

} // namespace

bool IsPackedFxs(const QByteArray& bytes)
{
    constexpr char zlibMark = 0x78;
    return bytes.size() > 6 && bytes[4] == zlibMark &&
           (uchar(bytes[4]) * 256 + uchar(bytes[5])) % 31 == 0;
}

QByteArray FxsXml(const QByteArray& bytes)
{
    const QByteArray xml = IsPackedFxs(bytes) ? Unpacked(bytes) : bytes;
    RefuseLongTags(xml);
    return xml;
}

} // namespace Marlox
