#include "TestPictures.h"
#include "host/Rows.h"
#include "workbench/images/ColorConfig.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/ImageScale.h"
#include "workbench/images/Sequence.h"

#include <cmath>
#include <limits>

#include <OpenImageIO/imageio.h>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

double srgbDecoded(double code)
{
    return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
}

void writeChannels(const QString& path, const std::vector<std::string>& names,
                   const std::vector<float>& pixel, OIIO::TypeDesc type)
{
    OIIO::ImageSpec spec(2, 2, int(names.size()), type);
    spec.channelnames = names;
    std::vector<float> pixels;
    for (int i = 0; i < 4; ++i)
        pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    auto output = OIIO::ImageOutput::create(path.toStdString());
    QVERIFY(output && output->open(path.toStdString(), spec));
    QVERIFY(output->write_image(OIIO::TypeFloat, pixels.data()));
    QVERIFY(output->close());
}

void cutFile(const QString& path, double part)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.resize(qint64(double(file.size()) * part)));
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class ImageFilesTest : public QObject {
    Q_OBJECT

private slots:
    void floatsSurvive()
    {
        Image::Format format;
        format.dataWindow = {-3, 2, 9, 14};
        format.pixelAspect = 2.0;
        const auto image = Picture(
            8, 12,
            [](int x, int y) {
                return Rgba{float(x) * 100.0f, -float(y), x == 0 ? notANumber : 1e-5f, 0.5f};
            },
            format);
        QString error;
        const QString path = folder_.filePath("float.exr");
        QVERIFY2(WriteImage(*image, path, &error), qPrintable(error));
        const auto back = ReadImage(path, &error);
        QVERIFY2(back, qPrintable(error));
        QCOMPARE(back->GetFormat(), image->GetFormat());
        for (int y = 2; y < 14; ++y) {
            for (int x = -3; x < 9; ++x) {
                for (std::size_t i = 0; i < 4; ++i) {
                    const float was = At(*image, x, y)[i];
                    const float is = At(*back, x, y)[i];
                    QVERIFY(is == was || (std::isnan(is) && std::isnan(was)));
                }
            }
        }
        QCOMPARE(QDir(folder_.path()).entryList({"*.part"}, QDir::Files | QDir::Hidden).size(), 0);
    }

    void integersComeBackWithinTheirSteps_data()
    {
        const Rows<QString, double> row("name", "tolerance"); // in codes of 0 to 1
        row("png", "a.png", 0.5 / 255.0);
        row("tiff", "a.tif", 0.5 / 65535.0);
        row("dpx", "a.dpx", 0.6 / 1023.0);
        row("jpeg", "a.jpg", 5.0 / 255.0);
    }
    void integersComeBackWithinTheirSteps()
    {
        QFETCH(QString, name);
        QFETCH(double, tolerance);
        const auto image = Picture(33, 16, [](int x, int y) {
            const auto linear = [](double code) { return float(srgbDecoded(code)); };
            return Rgba{linear(x / 32.0), linear(y / 15.0), notANumber, 1.0f};
        });
        const QString path = folder_.filePath(name);
        QString error;
        QVERIFY2(WriteImage(*image, path, &error), qPrintable(error));
        const auto back = ReadImage(path, &error);
        QVERIFY2(back, qPrintable(error));
        for (int x = 0; x < 33; ++x) {
            Rgba pixel = At(*back, x, 8);
            EncodeColors(ColorEncoding::Srgb, pixel.data(), 1);
            QVERIFY(std::abs(double(pixel[0]) - x / 32.0) < tolerance + 1e-5);
            QVERIFY(std::abs(double(pixel[1]) - 8.0 / 15.0) < tolerance + 1e-5);
            QVERIFY(std::abs(double(pixel[2])) < tolerance + 1e-5); // not a number: black
            QCOMPARE(pixel[3], 1.0f);
        }
    }

    void everyCodeOfEightAndSixteenBitsIsKept()
    {
        std::vector<float> codes;
        for (int code = 0; code <= 65535; ++code)
            codes.insert(codes.end(), {float(code) / 65535.0f, 0.0f, 0.0f, 1.0f});
        DecodeColors(ColorEncoding::Srgb, codes.data(), codes.size() / 4);
        QVERIFY(std::abs(double(codes[4 * 32768]) - srgbDecoded(32768.0 / 65535.0)) < 1e-6);
        EncodeColors(ColorEncoding::Srgb, codes.data(), codes.size() / 4);
        for (int code = 0; code <= 65535; ++code)
            QCOMPARE(int(std::lround(double(codes[std::size_t(code) * 4]) * 65535.0)), code);
    }

    void straightAlphaIsMultipliedInAfterDecoding()
    {
        QImage file(2, 1, QImage::Format_RGBA8888);
        file.setPixelColor(0, 0, QColor(188, 0, 255, 128));
        file.setPixelColor(1, 0, QColor(255, 255, 255, 0));
        const QString path = folder_.filePath("alpha.png");
        QVERIFY(file.save(path));
        QString error;
        const auto image = ReadImage(path, &error);
        QVERIFY2(image, qPrintable(error));
        const double alpha = 128.0 / 255.0;
        const Rgba half = At(*image, 0, 0);
        QVERIFY(std::abs(double(half[0]) - srgbDecoded(188.0 / 255.0) * alpha) < 1e-5);
        QVERIFY(std::abs(double(half[2]) - alpha) < 1e-5);
        QCOMPARE(At(*image, 1, 0), (Rgba{0, 0, 0, 0}));

        const QString copy = folder_.filePath("alpha2.png");
        QVERIFY(WriteImage(*image, copy, &error));
        const QColor back = QImage(copy).pixelColor(0, 0);
        QCOMPARE(back, QColor(188, 0, 255, 128));
    }

    void channelsAreFoundByTheirNames_data()
    {
        const Rows<QStringList, QList<float>, QList<float>> row("names", "stored", "expected");
        row("grey", {"Y"}, {4}, {4, 4, 4, 1});
        row("grey and alpha", {"Y", "A"}, {4, 0.5f}, {4, 4, 4, 0.5f});
        row("rgb", {"R", "G", "B"}, {1, 2, 3}, {1, 2, 3, 1});
        row("more", {"A", "Z", "B", "G", "R"}, {0.5f, 99, 3, 2, 1}, {1, 2, 3, 0.5f});
    }
    void channelsAreFoundByTheirNames()
    {
        QFETCH(QStringList, names);
        QFETCH(QList<float>, stored);
        QFETCH(QList<float>, expected);
        std::vector<std::string> texts;
        for (const QString& name : names)
            texts.push_back(name.toStdString());
        const QString path = folder_.filePath("channels.exr");
        writeChannels(path, texts, {stored.begin(), stored.end()}, OIIO::TypeFloat);
        QString error;
        const auto image = ReadImage(path, &error);
        QVERIFY2(image, qPrintable(error));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(At(*image, 1, 1)[std::size_t(i)], expected[i]);
    }

    void brokenFilesAreNamed_data()
    {
        const Rows<QString, double> row("name", "kept"); // part of a good file; -1: other content
        row("missing", "nowhere.exr", -1.0);
        row("folder", "folder.exr", -1.0);
        row("empty", "empty.exr", 0.0);
        row("text", "text.exr", -1.0);
        row("huge", "huge.tga", -1.0);
        for (const char* kind : {"exr", "png", "jpg", "tif", "dpx"}) {
            for (const double part : {0.9, 0.5, 0.02})
                QTest::addRow("%s %g", kind, part) << QString("cut.%1").arg(kind) << part;
        }
    }
    void brokenFilesAreNamed()
    {
        QFETCH(QString, name);
        QFETCH(double, kept);
        const QString path = folder_.filePath("broken/" + name);
        QDir(folder_.path()).mkpath("broken/folder.exr");
        QString error;
        if (kept >= 0.0) {
            // Noise does not compress: what is cut off is pixels.
            const auto noise = Picture(64, 64, [](int x, int y) {
                const float value = float((x * 7919 + y * 104729 + x * y * 31) % 1009) / 1009.0f;
                return Rgba{value, 1.0f - value, value * value, 1.0f};
            });
            QVERIFY2(WriteImage(*noise, path, &error), qPrintable(error));
            cutFile(path, kept);
        } else if (name == "text.exr") {
            writeFile(path, "this is no picture");
        } else if (name == "huge.tga") { // a header that promises 65,535 x 65,535 pixels
            writeFile(path, QByteArray::fromHex("000002000000000000000000ffffffff1800") +
                                QByteArray(1000, 'x'));
        }
        QVERIFY(!ReadImage(path, &error));
        QVERIFY2(error.contains(path), qPrintable(error));
        QVERIFY(error.size() > path.size() + 5);
    }

    void unwritableFilesAreNamedAndLeaveNothing()
    {
        QString error;
        const auto image = Plain(2, 2, {1, 1, 1, 1});
        writeFile(folder_.filePath("plain"), "a file, no folder");
        for (const QString& path :
             {folder_.filePath("a.unknown"), folder_.filePath("plain/a.exr")}) {
            QVERIFY(!WriteImage(*image, path, &error));
            QVERIFY2(error.contains(path), qPrintable(error));
            QVERIFY(!QFileInfo::exists(path));
        }
    }

    void readingCanBeCancelled()
    {
        const QString path = folder_.filePath("cancel.exr");
        QString error;
        QVERIFY(WriteImage(*Plain(64, 512, {1, 1, 1, 1}), path, &error));
        RenderContext context;
        context.Cancel();
        QVERIFY(!ReadImage(path, &error, &context));
        QVERIFY(error.isEmpty());
    }

    void reducedImagesAverage()
    {
        Image::Format format;
        format.dataWindow = {-1, 0, 6, 3}; // 7 x 3: no multiple of 2 to either side
        const auto image = Picture(
            6, 3,
            [](int x, int y) {
                return Rgba{float(x), float(y), 1.0f, 1.0f};
            },
            format);
        RenderContext context;
        QVERIFY(ReducedImage(image, 1, context) == image);
        const auto half = ReducedImage(image, ProxyDivisor(0.5), context);
        QCOMPARE(half->GetFormat().dataWindow, MxRect(-1, 0, 3, 2));
        QCOMPARE(half->GetFormat().displayWindow, MxRect(0, 0, 3, 2));
        QCOMPARE(half->GetFormat().scale, 0.5);
        QCOMPARE(At(*half, 1, 0), (Rgba{2.5f, 0.5f, 1.0f, 1.0f}));
        QCOMPARE(At(*half, -1, 1), (Rgba{-1.0f, 2.0f, 1.0f, 1.0f})); // one pixel there is
        QCOMPARE(ProxyDivisor(1.0), 1);
        QCOMPARE(ProxyDivisor(0.25), 4);
        QCOMPARE(ProxyDivisor(0.0), 1);
    }

    void sequencesAreRecognised()
    {
        QDir folder(folder_.path());
        folder.mkpath("seq");
        for (const char* name : {"shot.0008.exr", "shot.0009.exr", "shot.0012.exr", "shot.0012.png",
                                 "shot.00013.exr", "other9.exr", "other10.exr", "single.0001.exr",
                                 "minus-001.exr", "minus0002.exr", "c#.png", "a.1.b.0007.exr"})
            writeFile(folder.filePath(QString("seq/") + name), "x");
        const auto path = [&folder](const char* name) {
            return folder.filePath(QString("seq/") + name);
        };
        const Sequence member = Sequence::FromPath(path("shot.0012.exr"));
        QVERIFY(member.IsSequence());
        QCOMPARE(member.Pattern(), path("shot.####.exr"));
        QCOMPARE(member.Frames(), (std::vector<int>{8, 9, 12}));
        QCOMPARE(member.Nearest(11), 9);
        QCOMPARE(member.Nearest(3), 8);
        QCOMPARE(member.FramePath(7), path("shot.0007.exr"));
        QCOMPARE(Sequence::FromPath(path("other9.exr")).Frames(), (std::vector<int>{9, 10}));
        QCOMPARE(Sequence::FromPath(path("shot.%04d.exr")).Frames(), member.Frames());
        QCOMPARE(Sequence::FromPath(path("minus####.exr")).Frames(), (std::vector<int>{-1, 2}));
        for (const char* plain : {"single.0001.exr", "c#.png", "a.1.b.0007.exr", "nowhere.exr"}) {
            const Sequence one = Sequence::FromPath(path(plain));
            QVERIFY(!one.IsSequence());
            QCOMPARE(one.FramePath(5), path(plain));
        }
    }

    void patternsNeedNoFiles()
    {
        QCOMPARE(Sequence::FromPattern("/d/a.##.exr").FramePath(123), QString("/d/a.123.exr"));
        QCOMPARE(Sequence::FromPattern("/d/a.%d.exr").FramePath(7), QString("/d/a.7.exr"));
        QCOMPARE(Sequence::FromPattern("/d/a.%04d.exr").FramePath(-7), QString("/d/a.-007.exr"));
        QCOMPARE(Sequence::FromPattern("/d##/a.%04d.exr").Pattern(), QString("/d##/a.####.exr"));
        QVERIFY(!Sequence::FromPattern("/d##/a.exr").IsSequence());
        QVERIFY(!Sequence::FromPattern("").IsSequence());
    }

private:
    QTemporaryDir folder_;
};

QTEST_GUILESS_MAIN(ImageFilesTest)
#include "ImageFilesTest.moc"
