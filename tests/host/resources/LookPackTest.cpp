#include "ResourceNames.h"
#include "host/Rows.h"

#include "script/ScriptSystem.h"
#include "system/base/ScriptServices.h"
#include "system/controls/Layout.h"
#include "system/resources/Resources.h"

#include <cstdio>
#include <memory>

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace Marlox;

namespace {

const char lookFolder[] = MARLOX_SOURCE_DIR "/host/look";

QString Joined(const std::vector<QString>& problems)
{
    QString text;
    for (const QString& problem : problems) {
        text += problem + QLatin1Char('\n');
    }
    return text;
}

bool HasVisiblePixel(const QPixmap& pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 64) {
                return true;
            }
        }
    }
    return false;
}

/// A look pack with the files given as path and text.
class Pack {
public:
    void Write(const QString& path, const QByteArray& text)
    {
        QDir(dir_.path()).mkpath(QFileInfo(path).path());
        QFile file(dir_.filePath(path));
        if (file.open(QIODevice::WriteOnly)) {
            file.write(text);
        }
    }
    bool Use() { return LookPack::Global().Use(dir_.path()); }
    QString Path() const { return dir_.path(); }

private:
    QTemporaryDir dir_;
};

} // namespace

class LookPackTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { InstallScripting(); }
    void init() { QVERIFY(LookPack::Global().Use(QString::fromUtf8(lookFolder))); }

    void DeclarationsLinkAndLeave();
    void EveryBitmapIsDrawn();
    void EveryLayoutBuilds();
    void EveryDataBlockReads();
    void StretchedBitmapsKeepTheirEdges();
    void ColorsFallBackToTheirDeclaration();
    void BrokenFilesAreToldAndReplaced_data();
    void BrokenFilesAreToldAndReplaced();
    void WrongFoldersAreRefused();
    void EnvironmentThenInstalledFolder_data();
    void EnvironmentThenInstalledFolder();
};

void LookPackTest::DeclarationsLinkAndLeave()
{
    const auto before = Resource::Declared();
    std::unique_ptr<ResColor> middle;
    {
        const ResDIB first("A", 0);
        middle = std::make_unique<ResColor>("B", MxColor(1, 2, 3));
        const ResData last("C");
        auto declared = Resource::Declared();
        QCOMPARE(declared.size(), before.size() + 3);
        QCOMPARE(declared[before.size()], static_cast<const Resource*>(&first));
        QCOMPARE(declared.back(), static_cast<const Resource*>(&last));
        middle.reset();
        declared = Resource::Declared();
        QCOMPARE(declared.size(), before.size() + 2);
        QCOMPARE(declared[before.size()]->Name(), "A");
        QCOMPARE(declared.back()->Name(), "C");
    }
    QVERIFY(Resource::Declared() == before);
}

void LookPackTest::EveryBitmapIsDrawn()
{
    for (const QByteArray& name : ResourceNames::BitmapNames()) {
        QVERIFY2(LookPack::Global().Has(Resource::Kind::Bitmap, name), name);
        const QSize size = ResDIB::SizeOf(name);
        QVERIFY2(!size.isEmpty(), name);
        for (const double ratio : {1.0, 1.5, 2.0}) {
            const QPixmap& pixmap = ResDIB::PixmapOf(name, ratio);
            QCOMPARE(pixmap.devicePixelRatioF(), ratio);
            QVERIFY2(std::abs(pixmap.width() - size.width() * ratio) <= 0.5, name);
            QVERIFY2(std::abs(pixmap.height() - size.height() * ratio) <= 0.5, name);
            QVERIFY2(HasVisiblePixel(pixmap), name);
            QCOMPARE(&ResDIB::PixmapOf(name, ratio), &pixmap); // made once
        }
    }
    QCOMPARE(Joined(LookPack::Global().TakeProblems()), QString());
    // The four states of a button can be told apart.
    QVector<QImage> states;
    for (const char* name : {"Controls.Nest.Button.1.1", "Controls.Nest.Button.1.2",
                             "Controls.Nest.Button.1.3", "Controls.Nest.Button.1.4"}) {
        const QImage image = ResDIB::PixmapOf(name, 1.0).toImage();
        QVERIFY2(!states.contains(image), name);
        states << image;
    }
}

void LookPackTest::EveryLayoutBuilds()
{
    for (const ResourceNames::Layout& layout : ResourceNames::layouts) {
        const ScriptVal description = ResData::LayoutOf(layout.name);
        QVERIFY2(description.IsTable(), qPrintable(Joined(LookPack::Global().TakeProblems())));
        QWidget host;
        QString error;
        LayoutObj* root =
            ScriptServices::Installed()->BuildLayout(description, &host, nullptr, nullptr, &error);
        QVERIFY2(root, qPrintable(QLatin1String(layout.name) + ": " + error));
        for (const char* object : layout.objects) {
            const LayoutObj* found = root->Find(MxID(object));
            QVERIFY2(found, qPrintable(QLatin1String(layout.name) + ": " + object));
            QCOMPARE(found->IsContainer(), QByteArray(object).startsWith("expression") ||
                                               QByteArray(object) == "sliders");
        }
    }
    // A slider needs little room, and none for range labels that nobody fills.
    QWidget host;
    QWidget label;
    QWidget slider;
    QWidget edit;
    LayoutObj* root = ScriptServices::Installed()->BuildLayout(
        ResData::LayoutOf("Controls.Slider.Layout"), &host, nullptr, nullptr, nullptr);
    root->Find(MxID("label"))->SetWidget(&label);
    root->Find(MxID("slider"))->SetWidget(&slider);
    root->Find(MxID("edit"))->SetWidget(&edit);
    int width = 0;
    int height = 0;
    root->MinimumSize(width, height);
    QVERIFY(width <= 240);
    QCOMPARE(height, 24);
    root->SetGeometry(MxRect(0, 0, 400, height));
    QCOMPARE(edit.geometry().right(), 399);
    QCOMPARE(label.x(), 0);
    QVERIFY(slider.x() > label.geometry().right() && slider.geometry().right() < edit.x());
    for (QWidget* widget : {&label, &slider, &edit}) {
        widget->setParent(nullptr); // they stand on the stack
    }
}

void LookPackTest::EveryDataBlockReads()
{
    for (const char* name : ResourceNames::dataBlocks) {
        QVERIFY2(ResData::ValueOf(name).IsTable(), name);
        QVERIFY2(!ResData(name).Text().empty(), name);
    }
    const ScriptVal data = ResData::ValueOf("Controls.Slider.Data");
    QCOMPARE(data.Get("Reset").Length(), std::size_t(2));
    const QMargins margins = ResDIB::MarginsFrom(data.Get("Margins"));
    const QSize track = ResDIB::SizeOf("Controls.Slider.Track");
    QVERIFY(margins.left() > 0 && margins.left() + margins.right() < track.width());
    QVERIFY(margins.top() + margins.bottom() < track.height());
    // The mark at the default stays within the track.
    const int top = int(data.Get("Reset").At(2).ToNumber(-1));
    QVERIFY(top >= 0 && top + ResDIB::SizeOf("Controls.Slider.Reset").height() <= track.height());
    QCOMPARE(ResDIB::MarginsFrom(ScriptVal("text")), QMargins());
}

void LookPackTest::StretchedBitmapsKeepTheirEdges()
{
    for (const int ratio : {1, 2}) {
        const QPixmap& track = ResDIB::PixmapOf("Controls.Slider.Track", ratio);
        const QSize size = ResDIB::SizeOf("Controls.Slider.Track");
        QImage image(QSize(200, size.height()) * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        ResDIB::DrawStretched(painter, QRect(0, 0, 200, size.height()), track,
                              QMargins(3, 3, 3, 3));
        painter.end();
        const QImage source = track.toImage().convertToFormat(image.format());
        const int edge = 3 * ratio;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < edge; ++x) {
                QCOMPARE(image.pixel(x, y), source.pixel(x, y));
                QCOMPARE(image.pixel(image.width() - 1 - x, y),
                         source.pixel(source.width() - 1 - x, y));
            }
            QCOMPARE(image.pixel(image.width() / 2, y), source.pixel(source.width() / 2, y));
        }
    }
}

void LookPackTest::ColorsFallBackToTheirDeclaration()
{
    for (const ResourceNames::Color& color : ResourceNames::colors) {
        QVERIFY2(LookPack::Global().Has(Resource::Kind::Color, color.name), color.name);
    }
    QCOMPARE(Joined(LookPack::Global().TakeProblems()), QString());

    Pack pack;
    pack.Write("colours.lua", "{ [\"System.TextColour\"] = {1, 2, 3},"
                              " [\"Controls.InRangeColour\"] = {{4, 5, 6, 7}, {8, 9, 10}} }");
    QVERIFY(pack.Use());
    for (const ResourceNames::Color& row : ResourceNames::colors) {
        const ResColor color(row.name, row.color, row.second);
        if (QByteArray(row.name) == "System.TextColour") {
            QCOMPARE(color.Color(), MxColor(1, 2, 3, 255));
            QCOMPARE(color.Second(), MxColor(0, 0, 0, 0)); // one colour leaves the second's default
        } else if (QByteArray(row.name) == "Controls.InRangeColour") {
            QCOMPARE(color.Color(), MxColor(4, 5, 6, 7));
            QCOMPARE(color.Second(), MxColor(8, 9, 10, 255));
        } else {
            QCOMPARE(color.Color(), row.color);
            QCOMPARE(color.Second(), row.second);
        }
    }
    // A look may leave colours out: that is no problem to tell.
    QCOMPARE(Joined(LookPack::Global().TakeProblems()), QString());
}

void LookPackTest::BrokenFilesAreToldAndReplaced_data()
{
    const Rows<QString, QByteArray, QString> row("path", "text", "fault");
    const auto knob = [&row](const char* name, const char* text, const char* fault) {
        row(name, "bitmaps/Controls.Slider.Knob.1.svg", text, fault);
    };
    const auto layout = [&row](const char* name, const char* text, const char* fault) {
        row(name, "layouts/Controls.Slider.Layout.lua", text, fault);
    };
    const auto colours = [&row](const char* name, const char* text, const char* fault) {
        row(name, "colours.lua", text, fault);
    };
    row("no drawing", "bitmaps/Other.svg", "", "Knob.1.svg: ");
    knob("empty drawing", "", "Knob.1.svg: line 1: ");
    knob("cut drawing", "<svg width='9' height='15'>\n<rect width='9'\n", "svg: line 3: ");
    knob("other document", "<html/>", "line 1: the outermost");
    knob("drawing without size", "<svg height='3'/>", "no width");
    knob("drawing far too large", "<svg width='99999' height='9'/>", "from 1 to 4096");
    row("no layout", "layouts/Other.lua", "", "Slider.Layout.lua: ");
    layout("cut layout", "{\"Controls.Slider.Layout\",\n {", "Slider.Layout.lua: line 2");
    layout("layout is a text", "\"VGroup\"", "a table");
    layout("layout of another name", "{\"Controls.Screw.Layout\", {\"VGroup\"}}",
           "{\"Controls.Slider.Layout\", { ... }} is expected");
    colours("cut", "{\n[\"System.TextColour\"] = {1,", "colours.lua: line 2");
    colours("two parts", "{[\"System.TextColour\"] = {1, 2}}", "\"System.TextColour\": {red");
    colours("range", "{[\"System.TextColour\"] = {1, 2, 256}}", "\"System.TextColour\"");
    colours("text", "{[\"System.TextColour\"] = \"red\"}", "\"System.TextColour\"");
}

void LookPackTest::BrokenFilesAreToldAndReplaced()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, text);
    QFETCH(QString, fault);
    Pack pack;
    pack.Write(path, text);
    QVERIFY(pack.Use());
    if (path.startsWith("bitmaps")) {
        const ResDIB knob("Controls.Slider.Knob.1", 0);
        QVERIFY(knob.Size().width() >= 5 && knob.Size().height() >= 9); // can still be grabbed
        for (const double ratio : {1.0, 2.0}) {
            QCOMPARE(knob.Pixmap(ratio).size(), knob.Size() * ratio);
            QVERIFY(HasVisiblePixel(knob.Pixmap(ratio)));
        }
    } else if (path.startsWith("layouts")) {
        QVERIFY(ResData::LayoutOf("Controls.Slider.Layout").IsNil());
        QVERIFY(ResData::LayoutOf("Controls.Slider.Layout").IsNil());
    } else {
        const ResColor color("System.TextColour", MxColor(146, 146, 146));
        QCOMPARE(color.Color(), MxColor(146, 146, 146));
    }
    const QString problems = Joined(LookPack::Global().TakeProblems());
    QVERIFY2(problems.contains(fault), qPrintable(problems));
    QCOMPARE(problems.count(QLatin1Char('\n')), 1); // told once
    QVERIFY2(problems.startsWith(pack.Path()), qPrintable(problems));
    QVERIFY(LookPack::Global().TakeProblems().empty());
}

void LookPackTest::WrongFoldersAreRefused()
{
    const QTemporaryDir empty;
    const unsigned generation = LookPack::Global().Generation();
    for (const QString& path : {QString(), QString("/no/such/folder"), empty.path()}) {
        QString error;
        QVERIFY(!LookPack::Global().Use(path, &error));
        QVERIFY2(error.startsWith(path) && !error.isEmpty(), qPrintable(error));
    }
    QCOMPARE(QFileInfo(LookPack::Global().Folder()), QFileInfo(QString::fromUtf8(lookFolder)));
    QCOMPARE(LookPack::Global().Generation(), generation);
}

void LookPackTest::EnvironmentThenInstalledFolder_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("told");
    QTest::newRow("not set") << QString() << false;
    QTest::newRow("missing") << "/no/such/folder" << true;
    QTest::newRow("the look") << QString::fromUtf8(lookFolder) << false;
}

/// In a process of its own: the pack is looked for once.
void LookPackTest::EnvironmentThenInstalledFolder()
{
    QFETCH(QString, wanted);
    QFETCH(bool, told);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    wanted.isEmpty() ? environment.remove("MARLOX_LOOK")
                     : environment.insert("MARLOX_LOOK", wanted);
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {"--show-look"});
    QVERIFY(process.waitForFinished());
    const QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split('\n');
    QCOMPARE(QFileInfo(lines.value(0)).canonicalFilePath(),
             QFileInfo(QString::fromUtf8(lookFolder)).canonicalFilePath());
    QCOMPARE(!lines.value(1).isEmpty(), told);
    QCOMPARE(lines.value(1).startsWith(wanted + ": "), told);
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], "--show-look") == 0) {
        std::printf("%s\n", qPrintable(LookPack::Global().Folder()));
        std::printf("%s", qPrintable(Joined(LookPack::Global().TakeProblems())));
        return 0;
    }
    LookPackTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LookPackTest.moc"
