#include "system/resources/Resources.h"
#include "host/resources/ResourceNames.h"
#include "plugin/PluginLibrary.h"
#include "script/ScriptSystem.h"

#include <map>
#include <set>

#include <QTemporaryDir>
#include <QtTest>

using namespace Marlox;

namespace {

using Names = std::set<QByteArray>;

/// Bitmaps of the look pack that no control draws with yet: the workbench's own, and those of
/// controls that have no behaviour of their own.
bool isUndeclared(const QByteArray& name)
{
    return name.startsWith("Icons.Workbench.") || name.startsWith("Controls.Histogram.");
}

Names declared(Resource::Kind kind)
{
    Names names;
    for (const Resource* resource : Resource::Declared()) {
        if (resource->GetKind() == kind)
            names.insert(resource->Name());
    }
    return names;
}

std::string difference(const Names& declaredNames, const Names& expected)
{
    std::string text;
    for (const QByteArray& name : declaredNames) {
        if (!expected.count(name))
            text += " +" + name.toStdString();
    }
    for (const QByteArray& name : expected) {
        if (!declaredNames.count(name))
            text += " -" + name.toStdString();
    }
    return text;
}

} // namespace

/// The named resources that the controls declare while their library loads.
class ResourcesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void Bitmaps();
    void LayoutsAndData();
    void Colors();
    void LookPackHasThemAll();
    void DefaultsWithoutLookPack();

private:
    PluginLibrary plugin_;
};

void ResourcesTest::initTestCase()
{
    InstallScripting();
    QVERIFY2(plugin_.IsLoaded(), plugin_.Error().constData());
}

void ResourcesTest::Bitmaps()
{
    Names expected;
    for (const QByteArray& name : ResourceNames::BitmapNames()) {
        if (!isUndeclared(name))
            expected.insert(name);
    }
    const std::string wrong = difference(declared(Resource::Kind::Bitmap), expected);
    QVERIFY2(wrong.empty(), wrong.c_str());
}

void ResourcesTest::LayoutsAndData()
{
    Names expected(std::begin(ResourceNames::dataBlocks), std::end(ResourceNames::dataBlocks));
    for (const ResourceNames::Layout& layout : ResourceNames::layouts)
        expected.insert(layout.name);
    const std::string wrong = difference(declared(Resource::Kind::Data), expected);
    QVERIFY2(wrong.empty(), wrong.c_str());
}

void ResourcesTest::Colors()
{
    std::map<QByteArray, ResourceNames::Color> expected;
    for (const ResourceNames::Color& color : ResourceNames::colors)
        expected.emplace(color.name, color);
    QCOMPARE(declared(Resource::Kind::Color).size(), expected.size());
    for (const Resource* resource : Resource::Declared()) {
        if (resource->GetKind() != Resource::Kind::Color)
            continue;
        const auto* color = static_cast<const ResColor*>(resource);
        const auto found = expected.find(color->Name());
        QVERIFY2(found != expected.end(), color->Name());
        QVERIFY2(color->Default() == found->second.color, color->Name());
        QVERIFY2(color->SecondDefault() == found->second.second, color->Name());
    }
}

void ResourcesTest::LookPackHasThemAll()
{
    for (const Resource* resource : Resource::Declared())
        QVERIFY2(LookPack::Global().Has(resource->GetKind(), resource->Name()), resource->Name());
}

void ResourcesTest::DefaultsWithoutLookPack()
{
    QTemporaryDir folder;
    QFile colours(folder.filePath("colours.lua"));
    QVERIFY(colours.open(QIODevice::WriteOnly));
    colours.write("{[\"Controls.InRangeColour\"] = {1, 2, 3}}");
    colours.close();
    QString error;
    QVERIFY2(LookPack::Global().Use(folder.path(), &error), qPrintable(error));
    for (const Resource* resource : Resource::Declared()) {
        if (resource->GetKind() != Resource::Kind::Color)
            continue;
        const auto* color = static_cast<const ResColor*>(resource);
        const bool given = QByteArray(color->Name()) == "Controls.InRangeColour";
        QVERIFY2(color->Color() == (given ? MxColor(1, 2, 3) : color->Default()), color->Name());
        if (!given)
            QVERIFY2(color->Second() == color->SecondDefault(), color->Name());
    }
}

QTEST_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
