#include "system/resources/LookStyle.h"
#include "script/ScriptSystem.h"
#include "system/resources/Resources.h"

#include <cmath>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr double readable = 4.5;

/// Relative luminance and contrast ratio as in the Web Content Accessibility Guidelines 2.1.
double Luminance(const QColor& color)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double Contrast(const QColor& a, const QColor& b)
{
    const double first = Luminance(a) + 0.05;
    const double second = Luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor Named(const char* name)
{
    // Magenta: a name that the pack lacks fails as a grey and as a text.
    return LookPack::Global().Color(name, MxColor(255, 0, 255)).ToQColor();
}

QImage Picture(QWidget& widget, int ratio)
{
    QImage image(widget.size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Named("System.WindowColour"));
    widget.render(&image);
    return image;
}

QRgb Rgb(const char* name)
{
    return Named(name).rgb();
}

} // namespace

class LookStyleTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        InstallScripting();
        QVERIFY(LookPack::Global().Use(QStringLiteral(MARLOX_SOURCE_DIR "/host/look")));
        ApplyLook(*qApp);
    }

    void TextCanBeRead_data();
    void TextCanBeRead();
    void SecondColorsCanBeRead();
    void GroundsHaveNoHue();
    void PaletteCanBeReadWithoutALook();
    void EdgesAreCrisp();
    void FocusIsVisible();
    void ScrollBarReachesItsEnds();
};

void LookStyleTest::TextCanBeRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("ground");
    const std::pair<const char*, std::vector<const char*>> pairs[] = {
        {"System.TextColour",
         {"System.WindowColour", "System.FlatColour", "System.HeaderColour", "System.ShineColour",
          "System.FieldColour", "System.PopupColour"}},
        {"System.BrightTextColour",
         {"System.WindowColour", "System.HeaderColour", "System.ButtonColour",
          "System.ButtonHoverColour", "System.ButtonPressedColour", "System.PopupColour",
          "System.TooltipColour"}},
        {"System.FieldTextColour",
         {"System.FieldColour", "System.FieldAlternateColour", "System.HeaderColour",
          "System.WindowColour"}},
        {"System.PlaceholderTextColour", {"System.FieldColour", "System.PopupColour"}},
        {"System.ErrorTextColour", {"System.WindowColour", "System.FieldColour"}},
        {"System.WarningTextColour", {"System.WindowColour", "System.FieldColour"}},
        {"System.LinkTextColour", {"System.WindowColour", "System.FieldColour"}},
        {"System.AccentTextColour", {"System.AccentColour"}},
        {"System.SelectionTextColour", {"System.SelectionColour", "System.LineColour"}},
        {"Controls.Nest.TextColour", {"System.WindowColour", "System.ShineColour"}},
        {"Controls.Other.TextColour", {"System.WindowColour", "System.FieldColour"}},
        {"Controls.Other.FocusTextColour", {"System.FieldColour", "System.SelectionColour"}},
        {"Controls.ColorWheel.TextColour", {"System.WindowColour"}},
        {"Controls.ExpressionColour", {"System.WindowColour", "System.FieldColour"}},
    };
    for (const auto& [text, grounds] : pairs) {
        for (const char* ground : grounds) {
            QTest::addRow("%s on %s", text, ground) << QByteArray(text) << QByteArray(ground);
        }
    }
}

void LookStyleTest::TextCanBeRead()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, ground);
    QVERIFY(LookPack::Global().Has(Resource::Kind::Color, text));
    QVERIFY(LookPack::Global().Has(Resource::Kind::Color, ground));
    const double ratio = Contrast(Named(text), Named(ground));
    QVERIFY2(ratio >= readable, qPrintable(QString::number(ratio)));
}

void LookStyleTest::SecondColorsCanBeRead()
{
    const ResColor expression("Controls.ExpressionColour", {});
    const ResColor item("System.SelectedItemColour", {});
    for (const ResColor* color : {&expression, &item}) {
        QVERIFY(Contrast(color->Color().ToQColor(), color->Second().ToQColor()) >= readable);
    }
}

void LookStyleTest::GroundsHaveNoHue()
{
    for (const char* name :
         {"System.ViewerColour", "System.BorderColour", "System.FieldColour",
          "System.FieldAlternateColour", "System.WindowColour", "System.FlatColour",
          "System.HeaderColour", "System.ShineColour", "System.ButtonColour",
          "System.ButtonHoverColour", "System.ButtonPressedColour", "System.PopupColour",
          "System.TooltipColour", "System.LineColour", "System.ScrollColour",
          "System.ScrollHoverColour", "System.TextColour", "System.BrightTextColour"}) {
        QVERIFY2(Named(name).saturation() == 0, name);
    }
}

void LookStyleTest::PaletteCanBeReadWithoutALook()
{
    const auto check = [] {
        const QPalette palette = qApp->palette();
        const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
            {QPalette::WindowText, QPalette::Window},
            {QPalette::Text, QPalette::Base},
            {QPalette::Text, QPalette::AlternateBase},
            {QPalette::PlaceholderText, QPalette::Base},
            {QPalette::ButtonText, QPalette::Button},
            {QPalette::HighlightedText, QPalette::Highlight},
            {QPalette::ToolTipText, QPalette::ToolTipBase},
            {QPalette::Link, QPalette::Base},
        };
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            for (const auto& [text, ground] : pairs) {
                const double ratio =
                    Contrast(palette.color(group, text), palette.color(group, ground));
                QVERIFY2(ratio >= readable,
                         qPrintable(
                             QStringLiteral("role %1 on %2: %3").arg(text).arg(ground).arg(ratio)));
            }
        }
    };
    check();
    const QString look = LookPack::Global().Folder();
    QTemporaryDir bare;
    QVERIFY(QDir(bare.path()).mkdir("bitmaps"));
    QVERIFY(LookPack::Global().Use(bare.path()));
    ApplyLook(*qApp);
    check();
    QVERIFY(LookPack::Global().Use(look));
    ApplyLook(*qApp);
}

/// The one-pixel edge of a field is one colour, and the next pixel is the field.
void LookStyleTest::EdgesAreCrisp()
{
    QLineEdit field;
    field.resize(120, 24);
    for (const int ratio : {1, 2}) {
        const QImage image = Picture(field, ratio);
        const int middle = image.height() / 2;
        const int right = image.width() - 1;
        for (int i = 0; i < ratio; ++i) {
            QCOMPARE(image.pixel(i, middle), Rgb("System.BorderColour"));
            QCOMPARE(image.pixel(right - i, middle), Rgb("System.BorderColour"));
            QCOMPARE(image.pixel(image.width() / 2, i), Rgb("System.BorderColour"));
        }
        QCOMPARE(image.pixel(ratio, middle), Rgb("System.FieldColour"));
        QCOMPARE(image.pixel(right - ratio, middle), Rgb("System.FieldColour"));
        QCOMPARE(image.pixel(image.width() / 2, ratio), Rgb("System.FieldColour"));
    }
}

void LookStyleTest::FocusIsVisible()
{
    QWidget window;
    QPushButton button("Button", &window);
    QLineEdit field(&window);
    field.move(0, 40);
    QPushButton other("Other", &window);
    other.move(0, 80);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    for (QWidget* widget : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&field)}) {
        const int middle = widget->height() / 2;
        other.setFocus();
        QVERIFY(Picture(*widget, 1).pixel(0, middle) != Rgb("System.AccentColour"));
        widget->setFocus();
        QCOMPARE(Picture(*widget, 1).pixel(0, middle), Rgb("System.AccentColour"));
    }
    QVERIFY(Contrast(Named("System.AccentColour"), Named("System.WindowColour")) >= 3.0);
}

void LookStyleTest::ScrollBarReachesItsEnds()
{
    QStyleOptionSlider bar;
    bar.orientation = Qt::Vertical;
    bar.rect = QRect(0, 0, 10, 200);
    bar.maximum = 100000;
    bar.pageStep = 10;
    const auto part = [&bar](QStyle::SubControl control) {
        return QApplication::style()->subControlRect(QStyle::CC_ScrollBar, &bar, control);
    };
    for (const int position : {0, 37000, 100000}) {
        bar.sliderPosition = bar.sliderValue = position;
        const QRect knob = part(QStyle::SC_ScrollBarSlider);
        QVERIFY(knob.height() >= 24); // can be grabbed, however long the page
        QCOMPARE(knob.top() == 0, position == 0);
        QCOMPARE(knob.bottom() == 199, position == 100000);
        // Before, knob and behind fill the bar, and no arrows take room.
        QCOMPARE(part(QStyle::SC_ScrollBarSubPage).height() + knob.height() +
                     part(QStyle::SC_ScrollBarAddPage).height(),
                 200);
        QVERIFY(part(QStyle::SC_ScrollBarAddLine).isEmpty());
    }
    bar.maximum = 0;
    bar.sliderPosition = bar.sliderValue = 0;
    QCOMPARE(part(QStyle::SC_ScrollBarSlider).height(), 200);
}

QTEST_MAIN(LookStyleTest)
#include "LookStyleTest.moc"
