#include "ToolBench.h"
#include "host/Rows.h"
#include "workbench/cli/FrameRange.h"
#include "workbench/cli/Options.h"
#include "workbench/images/ImageFile.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

struct Outcome {
    int status = -1;
    QString output;
    QString errors;
};

/// Runs the built program, unless told otherwise as a user without a display would.
Outcome run(const QStringList& arguments, bool display = false)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!display)
            environment.remove(name);
    }
    process.setProcessEnvironment(environment);
    process.start(MARLOX_BINARY_DIR "/bin/marlox-workbench", arguments);
    Outcome outcome;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return outcome;
    outcome.status = process.exitCode();
    outcome.output = QString::fromUtf8(process.readAllStandardOutput());
    outcome.errors = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

} // namespace

class CommandLineTest : public QObject {
    Q_OBJECT

    const Workbench workbench_;
    QTemporaryDir folder_;

    QString Document() const { return folder_.filePath("test.marlox"); }

private slots:
    void initTestCase()
    {
        QString error;
        for (int frame = 1; frame <= 6; ++frame) {
            const QString path = folder_.filePath(QString("in.000%1.exr").arg(frame));
            QVERIFY(WriteImage(*Plain(4, 3, {float(frame), 0.5f, 0.25f, 1.0f}), path, &error));
        }
        MarloxDoc document;
        Operator* source = document.AddTool("ImageSource");
        source->FindInput("File")->SetValue(Text("in.####.exr"), TimeNone, Input::ReplaceAll);
        Operator* grade = document.AddTool("BrightnessContrast");
        grade->FindInput("Gain")->AddKey(1.0);
        grade->FindInput("Gain")->SetValue(Number(2.0), 5.0);
        document.SetFrameRange(1, 5);
        QVERIFY2(document.Save(Document(), &error), qPrintable(error));
    }

    void rangesAreRead_data()
    {
        const Rows<QString, QVector<int>> row("text", "frames"); // none: refused
        row("one", "7", {7});
        row("several", "1-3", {1, 2, 3});
        row("steps", "1-8x3", {1, 4, 7});
        row("negative", "-2--1", {-2, -1});
        row("across zero", "-1-1", {-1, 0, 1});
        for (const char* bad :
             {"", "x", "3-1", "1-3x0", "1-", "1-2-3", "1.5", "1x2", "1-99999999", "99999999999"})
            row(bad, bad, {});
    }
    void rangesAreRead()
    {
        QFETCH(QString, text);
        QFETCH(QVector<int>, frames);
        const auto range = FrameRange::Parse(text);
        QCOMPARE(range.has_value(), !frames.isEmpty());
        if (range)
            QCOMPARE(range->Frames(), std::vector<int>(frames.begin(), frames.end()));
    }

    void argumentsAreRead()
    {
        QString error;
        const auto options = Options::Parse({"w", "--plugin", "x.so", "picture.exr", "--plugin",
                                             "y.so", "--script", "a.lua", "--plugin", "more"},
                                            &error);
        QVERIFY2(options, qPrintable(error));
        QVERIFY(options->action == Options::Action::Interface);
        QCOMPARE(options->script, QString("a.lua"));
        QCOMPARE(options->plugins, (QStringList{"x.so", "y.so"}));
        QCOMPARE(options->files, QStringList{"picture.exr"});
        QCOMPARE(options->scriptArguments, (QStringList{"--plugin", "more"}));
        const QList<QStringList> bad{{"--nonsense"},
                                     {"--render", "d"},
                                     {"--render", "d", "--output", "o", "--frames", "5-1"},
                                     {"--render", "d", "--output", "o", "extra"},
                                     {"--frames", "1"},
                                     {"--list-controls", "--render", "d", "--output", "o"},
                                     {"--list-controls", "extra"},
                                     {"one.exr", "two.exr"},
                                     {"--plugin", ""},
                                     {"--render", "", "--output", "o"},
                                     {"--script"}};
        for (const QStringList& arguments : bad) {
            error.clear();
            QVERIFY(!Options::Parse(QStringList{"w"} + arguments, &error));
            QVERIFY(!error.isEmpty());
        }
    }

    void programAnswersWithoutDisplay()
    {
        QCOMPARE(run({"--version"}).status, 0);
        const Outcome help = run({"--help"});
        QCOMPARE(help.status, 0);
        for (const char* option : {"--list-controls", "--list-resources", "--script", "--plugin",
                                   "--render", "--frames", "--output", "--help", "--version"})
            QVERIFY2(help.output.contains(option), option);
        const Outcome bad = run({"--nonsense"});
        QCOMPARE(bad.status, 2);
        QVERIFY(bad.errors.contains("nonsense"));
        QCOMPARE(run({}).status, 1); // no display for a window: said, not crashed
    }

    void scriptsEndTheProgram_data()
    {
        const Rows<QString, int, QString> row("script", "status", "reason");
        row("end", "assert(#document.tools() == 0)", 0, "");
        row("assert", "\nassert(1 == 2, 'no sum')", 1, "script.lua:2: no sum");
        row("syntax", "\n\nprint((", 1, "script.lua:3: ");
        row("exit", "os.exit(7)", 7, "");
        row("dialog", "answer(function() end)", 1, "did not come");
        // A question within a dialog that was answered: whether to overwrite the file.
        const char overwrite[] =
            "answer(function(d) d:fill('file', script_folder .. '/test.marlox') d:accept() end)\n"
            "document.new() document.add('Blur') action('saveas') print('gone on')";
        row("question", overwrite, 1,
            "nobody answered the dialog \"Save As\" (test.marlox already");
        row("left open", "answer(function() end) document.new() action('saveas')", 1,
            "the answer left the dialog \"Save As\"");
    }
    void scriptsEndTheProgram()
    {
        QFETCH(QString, script);
        QFile file(folder_.filePath("script.lua"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(script.toUtf8()) > 0);
        file.close();
        const Outcome outcome = run({"--no-recovery", "--script", file.fileName()}, true);
        QTEST(outcome.status, "status");
        QFETCH(QString, reason);
        QVERIFY2(outcome.errors.contains(reason), qPrintable(outcome.errors));
        QVERIFY2(!outcome.output.contains("gone on"), qPrintable(outcome.output));
    }

    void controlsAreListed()
    {
        const Outcome outcome = run({"--list-controls"});
        QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
        const QStringList lines = outcome.output.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 54);
        QHash<QString, QStringList> byId;
        for (const QString& line : lines) {
            const QStringList columns = line.split('\t');
            QCOMPARE(columns.size(), 7);
            QVERIFY(columns[6] == "specified" || columns[6] == "generic");
            byId.insert(columns[1], columns);
        }
        QCOMPARE(byId.size(), 54);
        const QStringList rows[] = {
            {"AngleControl", "AngleControl", "PreviewControl", "0x1b0000", "AngleControl", "-"},
            {"SliderControl", "SliderControl", "InputControl", "0x1a0000", "SliderControl", "-"},
            {"ComboControl", "ComboIDControl", "ComboControl", "0x1a0000", "ComboIDControl", "-"},
            {"LabelControl", "NestControl", "LabelControl", "0x1a0000", "none", "-"},
            {"ObloidControl", "CubeControl", "PreviewControl", "0x1b0000", "ObloidControl", "-"},
            {"CropControl", "CropControl", "PreviewControl", "0x1b0000", "none", "-"},
            {"SliderOverlay", "SliderOverlay", "OverlayControl", "0x1b0000", "none",
             "0x10000064=1 0x60000004=OverlayControl"},
            {"SplineControl", "SplineControl", "InputControl", "0x1a0000", "SplineControl",
             "0x10000051=1 0x30000012=Spline Control 0x30000013=Controls\\Spline"},
        };
        for (const QStringList& row : rows)
            QCOMPARE(byId.value(row[1]).mid(0, 6), row);
        QCOMPARE(lines.first().section('\t', 1, 1), QString("AngleControl"));
        QCOMPARE(byId.value("SliderControl").last(), QString("specified"));
        QCOMPARE(byId.value("ScrewControl").last(), QString("generic"));
    }

    void resourcesAreListed()
    {
        const Outcome outcome = run({"--list-resources"});
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.output.contains("bitmap\tControls.Slider.Knob.1\t-\t-\n"));
        QVERIFY(outcome.output.contains(
            "colour\tControls.InRangeColour\t146,146,146,255\t41,41,41,255\n"));
        QVERIFY(outcome.output.contains("data\tControls.Slider.Layout\t-\t-\n"));
        QStringList lines = outcome.output.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.removeDuplicates(), 0);
    }

    void pluginsThatAreNoneAreTold()
    {
        const Outcome outcome = run({"--list-controls", "--plugin", Document()});
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.errors.contains(Document()));
        QVERIFY(outcome.errors.contains("not a library"));
        QVERIFY2(!outcome.errors.contains("spec"), "Qt took the option as its own");
    }

    void aRangeInPiecesIsTheRange()
    {
        const QString whole = folder_.filePath("whole.####.exr");
        const QString pieces = folder_.filePath("made/pieces.%04d.exr");
        QCOMPARE(run({"--render", Document(), "--output", whole}).status, 0);
        for (const char* range : {"1-3x2", "2", "4-5"})
            QCOMPARE(run({"--render", Document(), "--frames", range, "--output", pieces}).status,
                     0);
        QString error;
        for (int frame = 1; frame <= 5; ++frame) {
            const QString name = QString("000%1.exr").arg(frame);
            const auto expected = ReadImage(folder_.filePath("whole." + name), &error);
            const auto piece = ReadImage(folder_.filePath("made/pieces." + name), &error);
            QVERIFY2(expected && piece, qPrintable(error));
            QCOMPARE(piece->GetFormat(), expected->GetFormat());
            for (int y = 0; y < 3; ++y)
                QVERIFY(std::equal(piece->Row(y), piece->Row(y) + 16, expected->Row(y)));
        }
        const auto last = ReadImage(folder_.filePath("whole.0005.exr"), &error);
        QCOMPARE(At(*last, 0, 0), (Rgba{10.0f, 1.0f, 0.5f, 1.0f}));
    }

    void failuresOfFramesAreTold()
    {
        const QString output = folder_.filePath("some.####.exr");
        const Outcome some = run({"--render", Document(), "--frames", "6-8", "--output", output});
        QCOMPARE(some.status, 1);
        QVERIFY(QFileInfo::exists(folder_.filePath("some.0006.exr")));
        QVERIFY(some.output.startsWith("frame 6:"));
        QVERIFY(some.errors.contains("frame 7:"));
        QVERIFY(some.errors.contains(folder_.filePath("in.0008.exr")));
        QVERIFY(!QFileInfo::exists(folder_.filePath("some.0007.exr")));
        const QString single = folder_.filePath("single.exr");
        QCOMPARE(run({"--render", Document(), "--frames", "1-2", "--output", single}).status, 2);
        QCOMPARE(run({"--render", Document(), "--frames", "3", "--output", single}).status, 0);
        const Outcome none = run({"--render", folder_.filePath("no.marlox"), "--output", single});
        QCOMPARE(none.status, 1);
        QVERIFY(none.errors.contains("no.marlox"));
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
