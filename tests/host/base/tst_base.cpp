#include "system/base/MxColor.h"
#include "system/base/Object.h"
#include "system/base/Registry.h"

#include <functional>
#include <limits>
#include <thread>

#include <QStringList>
#include <QTest>

using namespace Marlox;

namespace {

constexpr u32 intTag = 0x10050000;
constexpr u32 doubleTag = 0x20050000;
constexpr u32 textTag = 0x30050000;
constexpr u32 objectTag = 0x40050000;
constexpr u32 idTag = 0x60050000;
constexpr u32 inputTag = 0x80050000;

/// Writes down what it hears; `answer` is what it does then.
class Listener final : public Object {
public:
    explicit Listener(const char* name) : name_(name) {}
    bool HandleEvent(Object*, const MxID& event, TagList&) override
    {
        heard += name_ + ":" + event.ToString();
        if (answer)
            answer();
        return true;
    }
    std::function<void()> answer;
    static inline QStringList heard;

private:
    QString name_;
};

class Attributed final : public Object {
public:
    bool CopyAttr(u64 tag, void* out) override
    {
        const TagPair* pair = attributes.Find(u32(tag));
        if (pair)
            *static_cast<u64*>(out) = pair->Bits();
        return pair != nullptr;
    }
    TagList attributes;
};

bool refuse(Registry*)
{
    return false;
}

int cleanups = 0;
void countCleanup(Registry*)
{
    ++cleanups;
}

Object* create(const Registry*, const ScriptVal&, const TagList& attributes)
{
    auto* made = new Attributed;
    made->attributes = attributes;
    return made;
}

bool mapNothing(const MxID&, bool, ScriptVal&, TagList&)
{
    return true;
}

/// Runs it four times at once: `work(0)` to `work(3)`.
void inThreads(const std::function<void(std::size_t)>& work)
{
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 4; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

std::vector<std::string> idsOf(const ClassRegistry& list)
{
    std::vector<std::string> ids;
    for (const Registry* record : list.Records())
        ids.push_back(record->ClassID().c_str());
    return ids;
}

} // namespace

class TestBase : public QObject {
    Q_OBJECT

private slots:
    void init() { Listener::heard.clear(); }

    void tagsKeepOrderAndRepeats()
    {
        const TagPair pairs[] = {
            {intTag, 1}, {doubleTag, 2.5}, {intTag, 3}, {0, 0}, {textTag, "x"}};
        TagList tags(pairs);
        QCOMPARE(tags.Count(), std::size_t(3)); // the pair behind the end is not taken
        tags.Add(intTag, 4);
        std::vector<u64> order;
        for (const TagPair* pair = tags.First(); pair; pair = tags.Next(pair))
            order.push_back(pair->tag);
        QCOMPARE(order, (std::vector<u64>{intTag, doubleTag, intTag, intTag}));

        std::vector<int64> repeats;
        for (const TagPair* pair = tags.Find(intTag); pair; pair = tags.FindNext(pair))
            repeats.push_back(pair->AsLong());
        QCOMPARE(repeats, (std::vector<int64>{1, 3, 4}));
        tags.Set(intTag, 9); // the first one, in place
        QCOMPARE(tags.First()->AsLong(), int64(9));
        tags.Remove(intTag);
        QVERIFY(!tags.FindQuery(intTag) && tags.FindQuery(doubleTag));
        QVERIFY(TagList(static_cast<const TagPair*>(nullptr)).First() == nullptr);
    }

    void tagsConvertByType()
    {
        Attributed object;
        const MxID id("SomeClass");
        const TagList tags{{intTag, -7}, {doubleTag, 2.9},    {textTag, "Gain"},
                           {idTag, &id}, {inputTag, "Blend"}, {objectTag, &object}};
        QCOMPARE(tags.GetLong(intTag), int64(-7));
        QCOMPARE(tags.GetDouble(intTag), -7.0);
        QCOMPARE(tags.GetLong(doubleTag), int64(2));
        QCOMPARE(tags.GetID(idTag), id);
        QCOMPARE(tags.GetID(inputTag), MxID("Blend"));
        QCOMPARE(tags.GetID(textTag), MxID("Gain"));
        QCOMPARE(tags.GetObject(objectTag), static_cast<Object*>(&object));
        QCOMPARE(tags.GetDouble(0x20050009, 1.25), 1.25);
        // Of another sort than the tag's type says: never an address made of a number.
        QCOMPARE(tags.GetString(intTag, "none"), "none");
        QVERIFY(!tags.GetPtr(doubleTag) && !tags.GetObject(idTag) && !tags.GetObject(textTag));
        QCOMPARE(tags.GetID(intTag, id), id);
        QCOMPARE(tags.GetID(objectTag, id), id);
        QVERIFY(tags.GetLong(textTag, 8) == 8 && tags.GetDouble(objectTag, 8.0) == 8.0);
        QVERIFY(!tags.GetBool(inputTag));
        const char* const noText = nullptr;
        QCOMPARE((TagList{{textTag, noText}}.GetString(textTag, "none")), "none");
        u64 untouched = 42;
        QVERIFY(!tags.Get(0x10050009, untouched) && untouched == 42);

        constexpr double inf = std::numeric_limits<double>::infinity();
        QCOMPARE((TagPair{doubleTag, inf}.AsLong()), std::numeric_limits<int64>::max());
        QCOMPARE((TagPair{doubleTag, -1e300}.AsLong()), std::numeric_limits<int64>::min());
        QCOMPARE((TagPair{doubleTag, inf - inf}.AsLong()), int64(0));
        QVERIFY(!(TagPair{doubleTag, -0.0}.AsBool()));
    }

    void tagsOwnCopiedTexts()
    {
        TagList copy;
        {
            std::string text = "a text that is longer than what fits into the object itself";
            TagList tags;
            tags.AddCopy(textTag, text);
            tags.Add(textTag + 1, "constant");
            text.assign(text.size(), '#');
            copy = tags;
            TagList again(tags);
            tags.SetCopy(textTag, "other");
            QCOMPARE(again.GetString(textTag), copy.GetString(textTag));
        }
        QVERIFY(std::string(copy.GetString(textTag)).starts_with("a text that"));
        const TagList moved = std::move(copy);
        QVERIFY(std::string(moved.GetString(textTag)).ends_with("itself"));
        QCOMPARE(moved.GetString(textTag + 1), "constant");
    }

    void tagsMerge()
    {
        std::string text = "one";
        TagList tags{{intTag, 1}, {textTag, "old"}, {doubleTag, 2.5}, {intTag, 2}};
        TagList other{{textTag, text.c_str()}, {intTag, 3}, {textTag, "two"}, {inputTag, "Blend"}};
        other.Add(0, 5); // no tag at all
        tags.Merge(other);
        tags.Merge(tags);
        text = "###";
        std::vector<std::string> texts; // repeated tags stay so
        for (const TagPair* pair = tags.Find(textTag); pair; pair = tags.FindNext(pair))
            texts.push_back(pair->value.text);
        QCOMPARE(texts, (std::vector<std::string>{"one", "two"}));
        QCOMPARE(tags.Count(), std::size_t(5));
        QCOMPARE(tags.GetLong(intTag), int64(3));
        QCOMPARE(tags.GetDouble(doubleTag), 2.5);
    }

    void tagLocksExclude()
    {
        TagList tags;
        tags.Set(intTag, 0);
        inThreads([&tags](std::size_t) {
            for (int round = 0; round < 500; ++round) {
                tags.ObtainLock();
                tags.ObtainLock(); // recursive
                tags.Set(intTag, tags.GetLong(intTag) + 1);
                tags.ReleaseLock();
                tags.ReleaseLock();
            }
        });
        QCOMPARE(tags.GetLong(intTag), int64(2000));
    }

    void idsAreOneAcrossThreads()
    {
        std::vector<std::vector<MxID>> made(4);
        inThreads([&made](std::size_t thread) {
            for (int i = 0; i < 2000; ++i)
                made[thread].emplace_back("Thread.Id." + QString::number(i));
        });
        for (std::size_t i = 0; i < 2000; ++i) {
            QCOMPARE(made[0][i].View(), std::string_view("Thread.Id." + std::to_string(i)));
            for (const auto& ids : made)
                QVERIFY(static_cast<const void*>(ids[i].c_str()) == made[0][i].c_str());
        }
        QVERIFY(MxID(nullptr) == MxID("") && MxID().IsEmpty());
        QVERIFY(MxID("Alpha") < MxID("Beta") && MxID("alpha") != MxID("Alpha"));
    }

    void scriptValuesShareTables()
    {
        ScriptVal table = ScriptVal::MakeTable();
        table.Set("Name", "Gain");
        table.Append(1);
        ScriptVal inner;
        inner.Append(0.1 + 0.2);
        table.Set("Inner", inner);
        const ScriptVal same = table;
        const ScriptVal clone = table.Clone();
        QVERIFY(clone == table);

        inner.Append(2); // through the shared inner table
        QCOMPARE(same.Get("Inner").Length(), std::size_t(2));
        QVERIFY(same == table && !(clone == table));
        table.Set("Name", ScriptVal());
        QVERIFY(same.Get("Name").IsNil() && clone.Get("Name").ToString() == "Gain");
        QVERIFY(table.At(0).IsNil() && table.At(1).ToNumber() == 1.0 && table.At(2).IsNil());
    }

    void scriptValuesCompareByContent()
    {
        ScriptVal a = ScriptVal::MakeTable();
        ScriptVal b = ScriptVal::MakeTable();
        a.Set("x", 1);
        a.Set("y", "1");
        b.Set("y", "1");
        b.Set("x", 1);
        QVERIFY(a == b); // the order of fields is none of the content
        b.Set("x", true);
        QVERIFY(!(a == b)); // a type is
        QVERIFY(!(ScriptVal(0) == ScriptVal()) && !(ScriptVal("") == ScriptVal()));
        QVERIFY(ScriptVal(static_cast<const char*>(nullptr)).IsNil());
        QCOMPARE(ScriptVal(true).ToNumber(), 1.0);
        QCOMPARE(ScriptVal("5").ToNumber(-1.0), -1.0); // texts don't convert
        QCOMPARE(ScriptVal("text").Get("field").ToString("missing"), std::string("missing"));
    }

    void coloursConvert()
    {
        for (int byte = 0; byte <= 255; ++byte) {
            const MxColor color(byte, 0, 255 - byte);
            QVERIFY(MxColor::FromDoubles(color.Red(), 0.0, color.Blue()) == color);
        }
        QVERIFY(MxColor::FromDoubles(-1.0, 7.0, std::nan(""), 0.5) == MxColor(-3, 300, 0, 128));
    }

    void recordsEnterAndLeave()
    {
        ClassRegistry& list = ClassRegistry::Global();
        const auto before = idsOf(list);
        cleanups = 0;
        {
            static const MxID parentID("Test.Parent");
            static const MxID childID("Test.Child");
            const TagPair parentTags[] = {{REG_RegCleanup, &countCleanup},
                                          {REG_Kind, 0x1a0000},
                                          {REG_Create, &create},
                                          {REG_TagMapper, &mapNothing},
                                          {0, 0}};
            const TagPair childTags[] = {{REG_Parent, &parentID}, {REG_Kind, 0x1a0000}, {0, 0}};
            const Registry child(childID, childTags); // its parent comes later
            QVERIFY(!child.TagMapper());
            const Registry parent(parentID, parentTags);
            QVERIFY(child.TagMapper() == &mapNothing);
            QVERIFY(list.IsKindOf(childID, parentID) && !list.IsKindOf(parentID, childID));
            QCOMPARE(parent.Kind(), ClassKind::InputControl);
            QCOMPARE(int(idsOf(list).size()), int(before.size()) + 2);
            QCOMPARE(idsOf(list).back(), std::string("Test.Parent"));

            const Ref<Object> made(list.Create(parentID, {}, {{intTag, 5}}));
            QVERIFY(made && made->GetAttr(intTag) == 5);
            QVERIFY(!list.Create(childID)); // no creation function of its own
            QVERIFY(!list.Create("Test.Nobody"));
        }
        QCOMPARE(cleanups, 1);
        QCOMPARE(idsOf(list), before);
    }

    void recordsAreRefused()
    {
        ClassRegistry& list = ClassRegistry::Global();
        list.TakeProblems();
        const auto before = idsOf(list);
        const TagPair refusing[] = {
            {REG_RegInit, &refuse}, {REG_RegCleanup, &countCleanup}, {0, 0}};
        cleanups = 0;
        {
            const Registry refused("Test.Refused", refusing);
            QVERIFY(!refused.IsRegistered());
            const Registry first("Test.Twice", nullptr);
            const Registry second("Test.Twice", nullptr);
            QVERIFY(first.IsRegistered() && !second.IsRegistered());
            QCOMPARE(list.Find("Test.Twice"), &first);
        }
        QCOMPARE(cleanups, 0); // what was never registered is not cleaned up
        QCOMPARE(idsOf(list), before);
        const auto problems = list.TakeProblems();
        QCOMPARE(int(problems.size()), 2);
        QVERIFY(problems[0].find("Test.Refused") != std::string::npos);
        QVERIFY(problems[1].find("Test.Twice") != std::string::npos);
        QVERIFY(list.TakeProblems().empty());
    }

    void loopsOfParentsEnd()
    {
        static const MxID a("Test.LoopA");
        static const MxID b("Test.LoopB");
        const TagPair tagsA[] = {{REG_Parent, &b}, {0, 0}};
        const TagPair tagsB[] = {{REG_Parent, &a}, {0, 0}};
        const Registry recordA(a, tagsA);
        const Registry recordB(b, tagsB);
        QVERIFY(!recordA.TagMapper());
        QVERIFY(ClassRegistry::Global().IsKindOf(a, b));
        QVERIFY(!ClassRegistry::Global().IsKindOf(a, "Test.Other"));
    }

    void listenersHearTheirEvents()
    {
        Listener sender("sender");
        Listener one("one");
        Listener all("all");
        sender.AddNotify(&one, "Changed");
        sender.AddNotify(&one, "Closed");
        sender.AddNotify(&all, MxID());
        TagList tags;
        sender.Notify("Changed", tags);
        sender.RemoveNotify(&one, "Changed");
        sender.Notify("Changed", tags);
        sender.Notify("Closed", tags);
        QCOMPARE(Listener::heard, (QStringList{"one:Changed", "all:Changed", "all:Changed",
                                               "one:Closed", "all:Closed"}));
    }

    void listenersMayDieWhileTold()
    {
        Listener sender("sender");
        auto first = std::make_unique<Listener>("first");
        auto second = std::make_unique<Listener>("second");
        Listener third("third");
        for (Listener* listener : {first.get(), second.get(), &third})
            sender.AddNotify(listener, "Changed");
        first->answer = [&] {
            second.reset();
            sender.RemoveNotify(first.get());
        };
        TagList tags;
        sender.Notify("Changed", tags);
        first.reset();
        sender.Notify("Changed", tags);
        QCOMPARE(Listener::heard, (QStringList{"first:Changed", "third:Changed", "third:Changed"}));
    }

    void sendersMayDieWhileTelling()
    {
        auto* sender = new Listener("sender");
        Listener first("first");
        Listener second("second");
        sender->AddNotify(&first, "Changed");
        sender->AddNotify(&second, "Changed");
        TagList tags;
        int depth = 0;
        first.answer = [&] {
            if (++depth == 1)
                sender->Notify("Changed", tags); // dies in the inner call
            else
                sender->DecRef();
        };
        sender->Notify("Changed", tags);
        QCOMPARE(Listener::heard, (QStringList{"first:Changed", "first:Changed"}));
    }

    void attributesConvert()
    {
        Attributed object;
        object.attributes = {{intTag, 3}, {doubleTag, 0.5}, {textTag, "Gain"}};
        QCOMPARE(object.GetAttr(doubleTag, 8), int64(0));
        QCOMPARE(object.GetAttrD(intTag), 3.0);
        QCOMPARE(object.GetAttrS(textTag), "Gain");
        QCOMPARE(object.GetAttrID(textTag), MxID("Gain"));
        QVERIFY(object.GetAttrB(doubleTag) && object.GetAttrB(0x10050009, true));
        QCOMPARE(object.GetAttrD(0x20050009, 7.5), 7.5);
        QCOMPARE(object.GetAttrS(intTag, "none"), "none");
        QVERIFY(!object.GetAttrPtr(doubleTag) && object.GetAttrID(intTag).IsEmpty());
        QCOMPARE(object.GetAttr(textTag, 8), int64(8));
    }

    void referencesCountAcrossThreads()
    {
        auto held = MakeRef<Listener>("shared");
        inThreads([&held](std::size_t) {
            Ref<Object> copy(held);
            for (int round = 0; round < 5000; ++round) {
                Ref<Object> another = copy;
                copy = std::move(another);
            }
        });
        QCOMPARE(held->RefCount(), 1);
    }
};

QTEST_GUILESS_MAIN(TestBase)
#include "tst_base.moc"
