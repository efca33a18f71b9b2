#include "host/Rows.h"
#include "host/shapes/import/ShapeFixtures.h"

#include <cmath>

#include <QElapsedTimer>
#include <QtEndian>

using namespace Marlox;

namespace {

using Format = ShapeFileFormat;

QString errorOf(const QByteArray& bytes, Format format = Format::Any,
                const ImportContext& context = smallImage())
{
    ImportedShapes result;
    const bool isTaken = ImportPolyLines(bytes, QStringLiteral("file"), format, context, result);
    if (isTaken || !result.shapes.empty() || !result.paths.empty() || !result.error)
        return QStringLiteral("was taken: ") + resultLines(result).join(QStringLiteral(" | "));
    return QString::fromStdString(result.Message(*result.error));
}

ImportedShapes taken(const QByteArray& bytes, const ImportContext& context = smallImage())
{
    ImportedShapes result;
    if (!ImportPolyLines(bytes, QStringLiteral("file"), Format::Any, context, result))
        qWarning("%s", result.Message(*result.error).c_str());
    return result;
}

QByteArray fixture(const char* name)
{
    return fileBytes(shapeFixtureFolder() + QLatin1String(name));
}

QByteArray packed(const QByteArray& bytes)
{
    return qCompress(bytes); // length and zlib stream, as projects have it
}

QByteArray ssf(const QByteArray& vertices, const QByteArray& data)
{
    return "shake_shape_data 4.0\nnum_shapes 1\nshape_name A\nedge_shape 0\nnum_vertices " +
           vertices + "\nnum_key_times 1\nkey_time 1\nvertex_data " + data + "\n";
}

} // namespace

/// What stands in the files is written down beside them, as read by hand.
class ImportShapesTest : public QObject {
    Q_OBJECT

private slots:
    void readsFixtures_data();
    void readsFixtures();
    void readsTheSameInOtherCoatings();
    void refusesBadInput_data();
    void refusesBadInput();
    void boundsMemoryAndTime();
    void ordersKeysAndDropsWhatDoesNotMatch();
    void takesImageAndTimesFromContext();
    void readsFilesFromDisk();
    void staysWholeWhenFilesAreMutated();
};

void ImportShapesTest::readsFixtures_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(shapeFixtureFolder());
    for (const QString& name : folder.entryList(QDir::Files)) {
        if (!name.endsWith(QStringLiteral(".read")))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
}

void ImportShapesTest::readsFixtures()
{
    QFETCH(QString, path);
    ImportedShapes result;
    QVERIFY(ImportPolyLines(path, Format::Any, smallImage(), result));
    const QString expected = QString::fromUtf8(fileBytes(path + QStringLiteral(".read"))).trimmed();
    QCOMPARE(resultLines(result).join('\n'), expected);
}

void ImportShapesTest::readsTheSameInOtherCoatings()
{
    const auto lines = [](const QByteArray& bytes) { return resultLines(taken(bytes)); };
    for (const char* name :
         {"shapes.ssf", "roto.nk", "tracks3.txt", "shape.dfsh", "lightwave3.mot"}) {
        const QByteArray plain = fixture(name);
        const QStringList expected = lines(plain);
        const QString text = QString::fromUtf8(plain);
        QCOMPARE(lines("\xef\xbb\xbf" + plain), expected);
        QCOMPARE(lines(QByteArray(plain).replace("\n", "\r\n")), expected);
        QCOMPARE(lines(QByteArray(plain).replace("\n", "\r")), expected);
        QByteArray big("\xfe\xff");
        QByteArray little("\xff\xfe");
        for (const QChar c : text) {
            big += char(c.row());
            big += char(c.cell());
            little += char(c.cell());
            little += char(c.row());
        }
        QCOMPARE(lines(big), expected);
        QCOMPARE(lines(little), expected);
    }
    const QByteArray xml = fixture("shapes.fxs");
    QCOMPARE(lines(packed(xml)), lines(xml));

    const ImportedShapes latin = taken("TrackName T\xfcr\nhead\n1 20 20 1\n");
    QCOMPARE(QString::fromStdString(latin.paths.at(0).name), QString::fromUtf8("T\xc3\xbcr"));
}

void ImportShapesTest::refusesBadInput_data()
{
    const Rows<QByteArray, int, QString> row("bytes", "format", "message");
    const int any = int(Format::Any);
    const auto cut = [](const char* name, const char* at) {
        const QByteArray whole = fixture(name);
        return whole.left(whole.indexOf(at));
    };
    const auto with = [](const char* name, const char* from, const char* to) {
        return fixture(name).replace(from, to);
    };
    row("empty", "", any, "file: it is empty");
    row("blank", " \n\n", any, "file: it is empty");
    row("binary", QByteArray("LWMO\n\0\1\2", 8), any,
        "file, line 2: it holds binary data, no text");
    row("unknown", "hello\n", any,
        "file, line 1: \"hello\" begins no kind of path file that is known");
    row("another format", fixture("shape.dfsh"), int(Format::Ssf),
        "file, line 1: this is no shape file of the .ssf kind");

    row("motion cut off", cut("lightwave1.mot", "0.25 0.1"), any,
        "file, line 8: the file ends before its last key");
    row("envelope cut off", cut("lightwave3.mot", "  Key 0.1"), any,
        "file, line 15: the file ends before \"}\"");
    row("too few keys", with("lightwave3.mot", "  2\n", "  3\n"), any,
        "file, line 11: the envelope has 2 of 3 keys");
    row("motion, no number", with("lightwave1.mot", "0.2 0.1", "nan 0.1"), any,
        "file, line 7: \"nan\" is no finite number");
    row("motion, decimal comma", with("lightwave1.mot", "0.2 0.1", "0,2 0.1"), any,
        "file, line 7: \"0,2\" is no number: decimals need a point, and blanks part numbers");
    row("motion, huge", with("lightwave1.mot", "0.2 0.1", "1e308 0.1"), any,
        "file, line 7: \"1e308\" is out of range");
    row("motion, beyond all numbers", with("lightwave1.mot", "0.2 0.1", "1e999 0.1"), any,
        "file, line 7: \"1e999\" is no finite number");
    row("key count", with("lightwave1.mot", "9\n3\n", "9\n-3\n"), any,
        "file, line 4: the number of keys can't be -3 (0 to 1000000)");

    row("shape without header", "DFSH\n0.5 0.5\n", any,
        "file, line 2: a header of five numbers was expected");
    row("shape, half a point", with("shape.dfsh", "0.250000 0.250000 EP", "0.25 0.25 0.3"), any,
        "file, line 3: a point has two or six numbers");
    row("shape without points", "DFSH\n200 100 1 0.5 24\n", any, "file: it holds no points");
    row("motion lines mixed up", with("motion.dfmo", "2.000000 0.550000 0.500000", "2 0.5"), any,
        "file, line 4: a line has three numbers for the centre or seven for a point");

    row("ssf cut off in a shape", cut("shapes.ssf", "key_time 10"), any,
        "file, line 23: \"Mask \"one\"\" ends with 1 of its 2 keys");
    row("ssf cut off behind one", cut("shapes.ssf", "shape_name Line"), any,
        "file, line 31: it ends with 1 of its 3 shapes");
    row("ssf data missing", ssf("3", "1 2 3 4 5 6"), any,
        "file, line 8: \"A\": a key has not as many numbers as its vertices need");
    row("ssf out of order", "shake_shape_data 4.0\nclosed 1\n", any,
        "file, line 2: \"closed\" stands before the first shape_name");

    row("xml cut off", cut("shapes.fxs", "</Layer>"), any,
        "file, line 23: Premature end of document.");
    row("xml, bad number",
        "<S width='9' height='9'><Shape label='A'><Property id='path'><Key frame='0'>"
        "<Path type='Bspline'><Point>(0,1e308)</Point></Path></Key></Property></Shape></S>",
        any, "file, line 1: \"A\": \"1e308\" is out of range");
    row("entities",
        "<!DOCTYPE s [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]><s>&b;</s>", any,
        "file, line 1: documents with declarations of types are refused");
    row("packed and damaged", packed(fixture("shapes.fxs")).chopped(9), any,
        "file: its packed data are damaged or cut off");
    row("xml of others", "<html/>", any, "file: it holds no shapes and no paths");

    row("script cut off", cut("roto.nk", "{a opc"), any,
        "file, line 11: the file ends within braces that begin here");
    row("script, stray brace", "Roto {\n}\n}\n", any,
        "file, line 3: a closing brace has no partner");
    row("script without roto", "Root {\n}\nBlur {\n}\n", any, "file: it holds no roto nodes");
    row("old script damaged", with("roto6.nk", "NumOfPoints: 6", "NumOfPoints: 600"), any,
        "file, line 35: \"Bezier1\": the flag of a point is missing");

    row("track cut off", cut("tracks4.txt", "41 51"), any,
        "file, line 5: the file ends before the last row of a track");
    row("row of letters", with("rows.txt", "12 0.75", "12 abc"), any,
        "file, line 3: \"abc\" is no finite number");
    row("rows with commas", "1 2,5 3,5\n", any,
        "file, line 1: \"2,5\" is no number: decimals need a point, and blanks part numbers");
    row("keyframes cut off", cut("keyframes.txt", "End of"), any,
        "file, line 15: the file ends before \"End of Keyframe Data\"");
}

void ImportShapesTest::refusesBadInput()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, format);
    QFETCH(QString, message);
    QCOMPARE(errorOf(bytes, Format(format)), message);
}

void ImportShapesTest::boundsMemoryAndTime()
{
    QElapsedTimer timer;
    timer.start();
    const QByteArray large(100 * 1024 * 1024, '1');
    QCOMPARE(errorOf(large), QStringLiteral("file: it is larger than 64 MB"));

    QByteArray zeros(80 * 1024 * 1024, ' ');
    QByteArray bomb = packed(zeros);
    QCOMPARE(errorOf(bomb), QStringLiteral("file: it is larger than 64 MB when it is unpacked"));
    qToBigEndian<quint32>(10, bomb.data()); // the told length does not count
    QCOMPARE(errorOf(bomb), QStringLiteral("file: it is larger than 64 MB when it is unpacked"));
    zeros.clear();

    QByteArray points = "DFSH\n200 100 1 0.5 24\n" + QByteArray("0.5 0.5\n").repeated(1'000'000);
    QCOMPARE(errorOf(points),
             QStringLiteral("file, line 100003: a shape has at most 100000 points"));
    QCOMPARE(errorOf(ssf("1000000", "1")),
             QStringLiteral("file, line 5: the number of vertices can't be 1000000 (0 to 100000)"));
    points = QByteArray("1 0.5 0.5\n").repeated(maxImportedKeyPoints + 1);
    QCOMPARE(errorOf(points),
             QStringLiteral("file, line 4000001: it has more than 4000000 points in all keys"));

    const QByteArray open = QByteArray("{").repeated(500'000);
    const QByteArray close = QByteArray("}").repeated(500'000);
    QVERIFY(errorOf("Roto {\n curves " + open + close + "\n}\n").contains("not understood"));
    const QByteArray layers = QByteArray("{layer A ").repeated(1000);
    QCOMPARE(errorOf("Roto {\n curves {{n " + layers + close.left(1000) + "}}\n}\n"),
             QStringLiteral("file, line 2: its layers are nested too deeply"));
    const QString nested = QStringLiteral("file, line 1: its elements are nested too deeply");
    const QByteArray elements = QByteArray("<a>").repeated(100'000);
    QCOMPARE(errorOf("<s>" + elements), nested);
    QCOMPARE(errorOf("<s><Property id='z'>" + elements), nested);
    QByteArray attributes = "<s";
    for (int i = 0; i < 100'000; ++i)
        attributes += " a" + QByteArray::number(i) + "='>'";
    QCOMPARE(errorOf(attributes + "/>"),
             QStringLiteral("file, line 1: an element has too many attributes"));
    const QByteArray siblings = QByteArray("{layer A\n{a vis {x}}}").repeated(100'000);
    QVERIFY(errorOf("Roto {\n curves {{n {layer Root " + siblings + "}}}\n}\n").startsWith("file"));
    QVERIFY2(timer.elapsed() < 30'000, "refusing takes too long");
}

void ImportShapesTest::ordersKeysAndDropsWhatDoesNotMatch()
{
    const ImportedShapes result = taken("DFMO\n"
                                        "9 0.9 0.9\n3 0.3 0.3\n9 0.8 0.8\n"
                                        "2 0 0 0 0 0 0\n2 1 1 1 1 1 1\n"
                                        "1 0 0 0 0 0 0\n1 1 1 1 1 1 1\n"
                                        "3 0 0 0 0 0 0\n");
    QCOMPARE(
        resultLines(result).mid(0, 6),
        QStringList(
            {"shape bezier \"Shape 1\" closed, line 5", "  key 1 linear: 0,0 corner; 1,1 corner;",
             "  key 2 linear: 0,0 corner; 1,1 corner;",
             "path \"Path 1\", line 2: 3 0.3,0.3 linear; 9 0.8,0.8 linear;",
             "aside file, line 2: \"Path 1\": frame 9 is there twice: the later one counts",
             "assumed file: it tells neither whether the shape is closed nor how its keys go on: "
             "taken as closed, and evenly from key to key"}));
    QCOMPARE(resultLines(result).value(6),
             QStringLiteral(
                 "aside file, line 5: \"Shape 1\": its key at frame 3 has 1 points in place of 2"));
    const ImportedShapes edge = taken(fixture("shape.dfsh").replace("0.500000 0.800000\n", ""));
    QVERIFY(edge.shapes.at(0).outerKeys.empty());
    QCOMPARE(resultLines(edge).last(),
             QStringLiteral("aside file, line 8: the edge shape has another number of points"));
}

void ImportShapesTest::takesImageAndTimesFromContext()
{
    QCOMPARE(errorOf(fixture("boujou.txt"), Format::Any, ImportContext()),
             QStringLiteral("file: it tells no image size, and none was given"));
    ImportContext context = smallImage();
    context.frameOffset = 100.0;
    const QByteArray tracks = fixture("tracks3.txt"); // tells 400 x 200
    QCOMPARE(taken(tracks, context).paths.at(0).keys.at(0).x, 0.25);
    context.overrideImageSize = true;
    QCOMPARE(taken(tracks, context).paths.at(0).keys.at(0).x, 0.5);
    QCOMPARE(taken(tracks, context).paths.at(0).keys.at(0).time, 101.0);

    context = smallImage();
    context.startFrame = 1001.0;
    context.frameRate = 12.0;
    QCOMPARE(taken(fixture("lightwave3.mot"), context).paths.at(0).keys.at(2).time, 12.0);
    const QByteArray ours = "LWMO\n1\n9\n1\n0.250000 0.000000 0 0 0 0 1 1 1\n0 0 0 0 0\n";
    QCOMPARE(taken(ours, context).paths.at(0).keys.at(0).time, 1001.0);
    context.plainUnit = ImportContext::PlainUnit::PixelsDown;
    const ImportedPathKey pair = taken(fixture("pairs.txt"), context).paths.at(0).keys.at(0);
    QCOMPARE(pair.y, 0.75);
    QCOMPARE(pair.time, 1001.0);

    // A binary file is refused, its bytes no letters.
    ImportedShapes binary;
    ImportPolyLines("LWMO\n\xfc\1", QStringLiteral("file"), Format::Any, context, binary);
    QVERIFY(binary.error && binary.notes.empty());

    // A pasted node has no format: its root layer turns about the centre.
    const QByteArray script = fixture("roto.nk");
    const QByteArray pasted = script.mid(script.indexOf("Roto {"));
    QCOMPARE(resultLines(taken(pasted)).at(1), resultLines(taken(script)).at(1));

    // Places of the sixteen by nine image that the format's own writers give.
    context.width = 1920.0;
    context.height = 1080.0;
    const PolyPoint point =
        taken(fixture("shapes.fxs").replace("width=\"400\" height=\"200\"", ""), context)
            .shapes.at(0)
            .keys.at(0)
            .points.at(0);
    QCOMPARE(point.x * 1920.0, 798.0);
    QCOMPARE((1.0 - point.y) * 1080.0, 432.0);
}

void ImportShapesTest::readsFilesFromDisk()
{
    ImportedShapes result;
    QVERIFY(!ImportPolyLines(shapeFixtureFolder() + QStringLiteral("none.ssf"), Format::Ssf,
                             smallImage(), result));
    QVERIFY(QString::fromStdString(result.Message(*result.error))
                .startsWith(QStringLiteral("none.ssf: it can't be read: ")));
    QVERIFY(!ImportPolyLines(shapeFixtureFolder(), Format::Any, smallImage(), result));
    QVERIFY(result.error);
}

/// Bytes go, come, change places and are doubled: whatever is taken is whole.
void ImportShapesTest::staysWholeWhenFilesAreMutated()
{
    const QByteArrayList fragments = {"nan",         "1e308", "-",       "{",  "}",
                                      "\"",          "<a>",   "</Path>", "x",  "0x7f800000",
                                      "99999999999", "\n",    "\xff",    "{}", "&lt;"};
    quint64 seed = 20240611;
    const auto random = [&](int below) {
        seed = seed * 6364136223846793005ull + 1442695040888963407ull;
        return int((seed >> 33) % quint64(std::max(below, 1)));
    };
    const QDir folder(shapeFixtureFolder());
    int takenCount = 0;
    for (const QString& name : folder.entryList(QDir::Files)) {
        const QByteArray whole = fileBytes(folder.filePath(name));
        for (int step = 0; step < 400; ++step) {
            QByteArray bytes = whole;
            for (int i = random(4); i >= 0; --i) {
                const int at = random(bytes.size());
                const int count = random(30);
                switch (random(5)) {
                case 0:
                    bytes.remove(at, count);
                    break;
                case 1:
                    bytes.insert(at, fragments.at(random(fragments.size())));
                    break;
                case 2:
                    bytes.insert(random(bytes.size()), bytes.mid(at, count));
                    break;
                case 3:
                    bytes.replace(at, 3, fragments.at(random(fragments.size())));
                    break;
                default:
                    bytes[at] = char(random(256));
                }
                if (bytes.isEmpty())
                    bytes = "0";
            }
            ImportedShapes result;
            const auto forced = Format(int(Format::LightWave) + step % 7);
            const bool isForced =
                ImportPolyLines(bytes, QStringLiteral("file"), forced, smallImage(), result);
            QCOMPARE(isForced, !result.error.has_value());
            const bool isTaken =
                ImportPolyLines(bytes, QStringLiteral("file"), Format::Any, smallImage(), result);
            takenCount += isTaken;
            QCOMPARE(isTaken, !result.error.has_value());
            QCOMPARE(isTaken, !result.shapes.empty() || !result.paths.empty());
            for (const ImportedShape& shape : result.shapes) {
                QVERIFY(!shape.name.empty() && !shape.keys.empty());
                for (std::size_t k = 0; k < shape.keys.size(); ++k) {
                    QCOMPARE(shape.keys[k].points.size(), shape.keys[0].points.size());
                    QVERIFY(k == 0 || shape.keys[k].time > shape.keys[k - 1].time);
                    for (const PolyPoint& point : shape.keys[k].points)
                        QVERIFY(std::isfinite(point.x + point.y + point.inX + point.outY));
                }
            }
        }
    }
    QVERIFY(takenCount > 500); // mutations reach behind the first lines
}

QTEST_GUILESS_MAIN(ImportShapesTest)
#include "ImportShapesTest.moc"
