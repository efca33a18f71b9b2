#include "host/Rows.h"
#include "host/shapes/import/ShapeFixtures.h"

#include <QTest>

using namespace Marlox;

namespace {

ImportedShapes read(const QByteArray& bytes, const ImportContext& context = smallImage())
{
    ImportedShapes result;
    ImportPolyLines(bytes, QStringLiteral("file"), ShapeFileFormat::Any, context, result);
    return result;
}

/// A version 1 motion of rows "x frame way", at the middle of the height.
QByteArray motion(const QByteArrayList& rows)
{
    QByteArray out = "LWMO\n1\n9\n" + QByteArray::number(rows.size()) + '\n';
    for (const QByteArray& row : rows) {
        const QByteArrayList parts = row.split(' ');
        out += parts[0] + " 0 0 0 0 0 1 1 1\n" + parts[1] + ' ' + parts[2] + " 0 0 0\n";
    }
    return out;
}

/// A shape of two vertices with its lines between their number and their data.
QByteArray ssf(const QByteArray& lines,
               const QByteArray& data = "20 20 20 20 20 20 40 20 40 20 40 20")
{
    return "shake_shape_data 4.0\nnum_shapes 1\nshape_name A\nnum_vertices 2\nnum_key_times 1\n" +
           lines + "vertex_data " + data + '\n';
}

/// A layer with properties around a shape of keys "frame x y way".
QByteArray fxs(const QByteArray& properties, const QByteArrayList& keys,
               const QByteArray& attributes = {})
{
    QByteArray out = "<Silhouette width='200' height='100' sessionStartFrame='0'>"
                     "<Layer label='L'" +
                     attributes + "><Properties>" + properties +
                     "<Property id='objects'><Object type='Shape' label='S'><Properties>"
                     "<Property id='path'>";
    for (const QByteArray& key : keys) {
        const QByteArrayList parts = key.split(' ');
        out += "<Key frame='" + parts[0] + "' interp='" + parts[3] +
               "'><Path type='Bspline'><Point>(" + parts[1] + ',' + parts[2] +
               ")</Point></Path></Key>";
    }
    return out + "</Property></Properties></Object></Property></Properties></Layer></Silhouette>";
}

QByteArray constant(const QByteArray& id, const QByteArray& value)
{
    return "<Property id='" + id + "' constant='True'><Value>" + value + "</Value></Property>";
}

} // namespace

/// What else files tell, and how they leave others guessing.
class ImportDetailsTest : public QObject {
    Q_OBJECT

private slots:
    void leavesLastKeysAsTheOnesBefore_data();
    void leavesLastKeysAsTheOnesBefore();
    void tellsWhatLayersDo();
    void followsCurvesBetweenKeys();
    void tellsWhyNothingWasTaken_data();
    void tellsWhyNothingWasTaken();
    void takesOddFiles();
    void guessesThePlainUnit();
};

void ImportDetailsTest::leavesLastKeysAsTheOnesBefore_data()
{
    const Rows<QByteArray, QString> row("bytes", "path");
    row("linear", motion({"-0.1 0 1", "0.2 12 1", "0.2 24 1"}),
        "0 0.4,0.5 linear; 12 0.7,0.5 linear; 24 0.7,0.5 linear;");
    row("mixed", motion({"-0.1 0 0", "0.2 12 1", "0.2 24 0"}),
        "0 0.4,0.5 linear; 12 0.7,0.5 smooth; 24 0.7,0.5 smooth;");
    row("one", motion({"-0.1 3 1"}), "3 0.4,0.5 smooth;");
    row("held", "LWMO\n3\nNumChannels 1\nChannel 0\n{Envelope\n2\nKey 0 0 0\nKey 0.5 1 4\n}\n",
        "0 0.5,0.5 step; 24 1,0.5 step;");
}

void ImportDetailsTest::leavesLastKeysAsTheOnesBefore()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, path);
    QCOMPARE(resultLines(read(bytes)).first(), "path \"Path 1\", line 0: " + path);
}

void ImportDetailsTest::tellsWhatLayersDo()
{
    const QStringList told =
        resultLines(read(fxs(constant("opacity", "50") + constant("invert", "True") +
                                 constant("mode", "Add") + constant("feather", "0"),
                             {"0 0 0 linear"}, " locked='True'")));
    QCOMPARE(told.mid(2),
             (QStringList{"aside file, line 1: the opacity of the layer \"L\" is not taken",
                          "aside file, line 1: the invert of the layer \"L\" is not taken"}));
    QVERIFY(told[0].contains("locked 1"));
    QCOMPARE(resultLines(read(fxs(constant("opacity", "100") + constant("invert", "false"),
                                  {"0 0 0 linear"})))
                 .size(),
             2);

    const auto script = [](const QByteArray& layer) {
        return "Root {\n format \"200 100 0 0 200 100 1 a\"\n}\nRoto {\n curves {{{v x3f99999a} "
               "{n\n"
               "{layer Root " +
               layer +
               " {curvegroup M 512 bspline {{cc {f 8192} {p {1 2} {3 4}}} "
               "idem} {a}}}}}}\n}\n";
    };
    const QStringList nuke = resultLines(read(script("{f 1024} {a opc 0.5 inv 1 bm 0 vis 1}")));
    QVERIFY(nuke[0].contains("locked 1"));
    QCOMPARE(nuke.mid(2),
             (QStringList{"aside file, line 6: the opacity of the layer \"Root\" is not taken",
                          "aside file, line 6: the inversion of the layer \"Root\" is not taken"}));
    QCOMPARE(resultLines(read(script("{f 0} {a opc 1 inv 0}"))).size(), 2);
}

/// A layer has a key where its shape, on a curve, has none; and the other way round.
void ImportDetailsTest::followsCurvesBetweenKeys()
{
    const QByteArray still = "(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)";
    const QByteArray moved = "(1,0,0,0,0,1,0,0,0,0,1,0,0.4,0,0,1)";
    const auto matrix = [&](const QByteArrayList& keys) {
        QByteArray out = "<Property id='transform.matrix'>";
        for (int i = 0; i < keys.size(); ++i)
            out += "<Key frame='" + keys[i] + "' interp='catmullrom'>" + (i == 1 ? moved : still) +
                   "</Key>";
        return out + "</Property>";
    };
    // A spline through 0, 0.4, 0 at 0, 4, 8: 0.25 at 2; heights of the image, which is 2 wide.
    const ImportedShapes shape =
        read(fxs("<Property id='transform.matrix'><Key frame='2'>" + still + "</Key></Property>",
                 {"0 0 0 catmullrom", "4 0.4 0 catmullrom", "8 0 0 catmullrom"}));
    QCOMPARE(shape.shapes.at(0).keys.at(1).time, 2.0);
    QCOMPARE(shape.shapes.at(0).keys.at(1).points.at(0).x, 0.5 + 0.25 / 2.0);
    const ImportedShapes layer = read(fxs(matrix({"0", "4", "8"}), {"6 0 0 linear"}));
    QCOMPARE(layer.shapes.at(0).keys.at(2).time, 6.0);
    QCOMPARE(layer.shapes.at(0).keys.at(2).points.at(0).x, 0.5 + 0.25 / 2.0);
}

void ImportDetailsTest::tellsWhyNothingWasTaken_data()
{
    const Rows<QByteArray, QString> row("bytes", "message");
    row("behind another note", ssf("frobnicate 1\nkey_time 1\n", "1 2 3"),
        "file, line 8: \"A\": a key has not as many numbers as its vertices need");
    row("a large number", ssf("key_time 1\n", "20 20 20 20 20 20\n40 1e12 40 20 40 20"),
        "file, line 8: \"A\": \"1e12\" is out of range");
    row("no number", ssf("key_time 1\n", "20 20 20 20 20 20\nNaN(1) 20 40 20 40 20"),
        "file, line 8: \"A\": \"NaN(1)\" is no finite number");
    row("layer first", fxs(constant("opacity", "50"), {"0 1e8 0 linear"}),
        "file, line 1: \"S\": a point lies out of range");
}

void ImportDetailsTest::tellsWhyNothingWasTaken()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    const ImportedShapes result = read(bytes);
    QVERIFY(result.error);
    QCOMPARE(QString::fromStdString(result.Message(*result.error)), message);
}

void ImportDetailsTest::takesOddFiles()
{
    const ImportedShapes unknown = read(ssf("key_time 1\n") + "trailer x 1\n");
    QCOMPARE(unknown.shapes.size(), std::size_t(1));
    QCOMPARE(resultLines(unknown).filter("aside"),
             QStringList("aside file, line 8: \"trailer\" is not understood"));

    ImportContext late = smallImage();
    late.startFrame = 1001.0;
    const ImportedShapes timeless = read(ssf({}), late);
    QCOMPARE(timeless.shapes.at(0).keys.at(0).time, 0.0);
    QVERIFY(timeless.asksFirstFrame);
    QVERIFY(!read(ssf("key_time 1\n")).asksFirstFrame);

    const ImportedShapes twice = read(motion({"-0.1 0 1", "0.2 12 1", "0.3 12 1"}));
    QCOMPARE(twice.paths.at(0).keys.size(), std::size_t(2));
    QCOMPARE(twice.paths.at(0).keys.at(1).x, 0.8);
    QCOMPARE(resultLines(twice).filter("twice"),
             QStringList("aside file: a key at 12 is there twice: the later one counts"));

    const ImportedShapes tracks = read("2\n#01\n0\n1\n40 20 20\n// 02\n0\n1\n41 40 20\n");
    QCOMPARE(tracks.paths.size(), std::size_t(2));
    QCOMPARE(tracks.paths.at(0).name, std::string("#01"));
    QCOMPARE(tracks.paths.at(1).keys.at(0).x, 0.2);
}

void ImportDetailsTest::guessesThePlainUnit()
{
    QVERIFY(read("1 0.5 0.5\n2 0.6 0.5\n").isNormalised);
    const ImportedShapes pixels = read("1 0.5 0.5\n2 60 50\n");
    QVERIFY(pixels.asksPlainUnit && !pixels.isNormalised);
}

QTEST_GUILESS_MAIN(ImportDetailsTest)
#include "ImportDetailsTest.moc"
