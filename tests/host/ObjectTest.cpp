// Objects: names, properties by exact key, time stamps, text forms.
#include "qc/qcObject.h"

#include "Support.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

namespace {

std::string propertyOf(const qcObject& object, const std::string& key)
{
    qcValue value;
    char* text = nullptr;
    if (!object.getProperty(key.c_str(), &value))
        return "absent";
    return value.get(text) ? text : "no text";
}

void store(qcObject& object, const std::string& key, const std::string& text)
{
    ASSERT_EQ(object.setProperty(key.c_str(), qcValue(text.c_str())), 1);
}

}   // namespace

TEST(Object, HasNoNamesWhenNew)
{
    const qcObject object;
    EXPECT_STREQ(object.getName(), "");
    EXPECT_STREQ(object.getFullName(), "");
}

TEST(Object, KeepsACopyOfItsName)
{
    qcObject object;
    char buffer[] = "knee";
    EXPECT_EQ(object.setName(buffer), 1);
    buffer[0] = 'X';
    EXPECT_STREQ(object.getName(), "knee");
    object.setName(object.getName() + 1);
    EXPECT_STREQ(object.getName(), "nee");
}

TEST(Object, FullNameIsPrefixAndNameJoinedByAFullStop)
{
    qcObject object;
    object.setName("own");
    object.setFullName("static_strength", "worker");
    EXPECT_STREQ(object.getFullName(), "static_strength.worker");
    EXPECT_STREQ(object.getName(), "own");   // the name is another matter
    object.setFullName(object.getFullName(), object.getName());
    EXPECT_STREQ(object.getFullName(), "static_strength.worker.own");
}

TEST(Object, PropertyIsCopiedInAndOut)
{
    qcObject object;
    qcValue value("stored");
    object.setProperty("key", value);
    value.set("changed");
    EXPECT_EQ(propertyOf(object, "key"), "stored");

    qcValue read;
    ASSERT_EQ(object.getProperty("key", &read), 1);
    read.set("changed too");
    EXPECT_EQ(propertyOf(object, "key"), "stored");
}

TEST(Object, CopyOfAPropertyOutlivesTheObject)
{
    qcValue read;
    {
        qcObject object;
        qcValue list;
        list.setList(new qcValue("element"));
        object.setProperty("key", list);
        ASSERT_EQ(object.getProperty("key", &read), 1);
        list.clear();
    }
    EXPECT_STREQ(read.toText(), "(\"element\")");
}

TEST(Object, AMissingPropertyLeavesTheOutput)
{
    qcObject object;
    qcValue read("untouched");
    EXPECT_EQ(object.getProperty("key", &read), 0);
    store(object, "other", "a");
    EXPECT_EQ(object.getProperty("key", &read), 0);
    EXPECT_STREQ(read.toText(), "\"untouched\"");
}

TEST(Object, SearchPropertyReadsLikeGetProperty)
{
    qcObject object;
    store(object, "key", "a");
    qcValue read;
    EXPECT_EQ(object.searchProperty("key", &read), 1);
    EXPECT_STREQ(read.toText(), "\"a\"");
    EXPECT_EQ(object.searchProperty("kez", &read), 0);
}

TEST(Object, PropertyReplacesTheEarlierOneOfItsKey)
{
    qcObject object;
    store(object, "key", "old");
    object.setProperty("key", qcValue(1.5f));
    qcValue read;
    float number = 0;
    ASSERT_EQ(object.getProperty("key", &read), 1);
    EXPECT_EQ(read.get(number), 1);
    EXPECT_EQ(number, 1.5f);
    EXPECT_EQ(object.getNumProperties(), 1);
}

TEST(Object, StoresAnElementWithoutWhatItLinksTo)
{
    qcValue list;
    list.setList(new qcValue("first"));
    list.firstElement()->next = new qcValue("second");
    qcObject object;
    object.setProperty("key", *list.firstElement());
    qcValue read;
    object.getProperty("key", &read);
    EXPECT_EQ(read.next, nullptr);
    EXPECT_STREQ(read.toText(), "\"first\"");
}

TEST(Object, AnEmptyValueCountsAsPresent)
{
    qcObject object;
    object.setProperty("key", qcValue());
    qcValue read("old");
    EXPECT_EQ(object.getProperty("key", &read), 1);
    EXPECT_STREQ(read.toText(), "()");
}

TEST(Object, RemovingAPropertyTwiceIsHarmless)
{
    qcObject object;
    store(object, "a", "1");
    store(object, "b", "2");
    EXPECT_EQ(object.removeProperty("a"), 1);
    EXPECT_EQ(object.removeProperty("a"), 0);
    EXPECT_EQ(object.removeProperty("never there"), 0);
    EXPECT_EQ(propertyOf(object, "a"), "absent");
    EXPECT_EQ(propertyOf(object, "b"), "2");
    store(object, "a", "3");
    EXPECT_EQ(propertyOf(object, "a"), "3");
}

// Prefixes of each other, letters of either case, the empty key, bytes beyond ASCII: every order of
// insertion that a shuffle makes gives the same look-ups, for few properties and for many.
TEST(Object, KeysAreExactInWhateverOrderTheyCome)
{
    std::vector<std::string> keys = {"",          "S",        "SS",   "SSTR_Load", "SSTR_LoadList", "sstr_load",
                                     "SSTR_Loae", "\xc3\xa4", "\x01", "a",         "SSTR_Loac",     "SSTR_LoadLisu"};
    const std::vector<std::string> strangers = {"SST",           "SSTR_Loa", "SSTR_Load ", "SSTR_LoadLis",
                                                "sstr_loadlist", "\xc3",     "\xff"};
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        std::shuffle(keys.begin(), keys.end(), random);
        const std::size_t stored = random() % (keys.size() + 1);
        qcObject object;
        for (std::size_t i = 0; i < stored; ++i)
            store(object, keys[i], "of " + keys[i]);
        for (std::size_t i = 0; i < keys.size(); ++i)
            ASSERT_EQ(propertyOf(object, keys[i]), i < stored ? "of " + keys[i] : "absent") << keys[i];
        for (const std::string& key : strangers)
            ASSERT_EQ(propertyOf(object, key), "absent") << key;
    }
}

TEST(Object, KeyIsCopied)
{
    qcObject object;
    char key[] = "key";
    object.setProperty(key, qcValue("a"));
    key[0] = 'X';
    EXPECT_EQ(propertyOf(object, "key"), "a");
    EXPECT_EQ(propertyOf(object, "Xey"), "absent");
}

TEST(Object, KeysOfAHundredThousandCharactersDifferInTheirLastOne)
{
    const std::string longKey(100000, 'k');
    qcObject object;
    store(object, longKey + "a", "1");
    store(object, longKey + "b", "2");
    store(object, longKey, "3");
    EXPECT_EQ(propertyOf(object, longKey + "a"), "1");
    EXPECT_EQ(propertyOf(object, longKey + "b"), "2");
    EXPECT_EQ(propertyOf(object, longKey), "3");
    EXPECT_EQ(propertyOf(object, longKey + "c"), "absent");
    EXPECT_EQ(object.removeProperty((longKey + "a").c_str()), 1);
    EXPECT_EQ(propertyOf(object, longKey + "b"), "2");
}

// Against a map that gets the same operations, on up to a thousand keys.
TEST(Object, FollowsAMapThroughAnyOrderOfChanges)
{
    std::mt19937 random(7);
    std::map<std::string, std::string> model;
    qcObject object;
    for (int round = 0; round < 20000; ++round) {
        const std::string key = "key" + std::to_string(random() % 1000);
        if (random() % 3 == 0) {
            ASSERT_EQ(object.removeProperty(key.c_str()), static_cast<int>(model.erase(key)));
        } else {
            store(object, key, std::to_string(round));
            model[key] = std::to_string(round);
        }
    }
    ASSERT_EQ(object.getNumProperties(), static_cast<int>(model.size()));
    int i = 0;
    for (const auto& [key, text] : model) {   // both in byte order
        EXPECT_EQ(object.getPropertyKey(i), key);
        EXPECT_EQ(object.getPropertyValue(i++).toText(), "\"" + text + "\"");
        EXPECT_EQ(propertyOf(object, key), text);
    }
}

TEST(Object, HoldsAThousandProperties)
{
    qcObject object;
    for (int i = 0; i < 1000; ++i)
        store(object, std::to_string(i * 37 % 1000), std::to_string(i));
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(propertyOf(object, std::to_string(i * 37 % 1000)), std::to_string(i));
}

TEST(Object, CopyHasItsOwnNamesAndProperties)
{
    qcObject object;
    object.setName("name");
    object.setFullName("figure", "name");
    store(object, "a", "1");
    object.setTimestamp(5);

    qcObject constructed(object), assigned;
    store(assigned, "gone", "with the assignment");
    assigned = object;
    object.setName("changed");
    store(object, "a", "changed");
    store(object, "b", "new");
    for (qcObject* copy : {&constructed, &assigned}) {
        EXPECT_STREQ(copy->getName(), "name");
        EXPECT_STREQ(copy->getFullName(), "figure.name");
        EXPECT_EQ(copy->getTimestamp(), 5);
        EXPECT_EQ(copy->getNumProperties(), 1);
        EXPECT_EQ(propertyOf(*copy, "a"), "1");
        store(*copy, "a", "2");
    }
    EXPECT_EQ(propertyOf(object, "a"), "changed");
}

TEST(Object, AssignedToItselfKeepsWhatItHas)
{
    qcObject object;
    object.setName("name");
    store(object, "a", "1");
    const qcObject& same = object;
    object = same;
    EXPECT_STREQ(object.getName(), "name");
    EXPECT_EQ(propertyOf(object, "a"), "1");
}

TEST(Object, TimestampGrowsWithEveryMark)
{
    qcObject object, other;
    long before = object.getTimestamp();
    for (int i = 0; i < 10; ++i) {
        object.setTimestamp();
        other.setTimestamp();
        EXPECT_GT(object.getTimestamp(), before);
        before = object.getTimestamp();
    }
    object.setTimestamp(before + 1000000);
    EXPECT_EQ(object.getTimestamp(), before + 1000000);
    object.setTimestamp();
    EXPECT_GT(object.getTimestamp(), before + 1000000);
}

TEST(Object, PropertiesAloneDoNotMarkIt)
{
    qcObject object;
    object.setTimestamp(3);
    store(object, "a", "1");
    object.removeProperty("a");
    object.setName("name");
    EXPECT_EQ(object.getTimestamp(), 3);
}

TEST(Object, TextFormTellsFullNameAndProperties)
{
    qcObject object;
    object.setFullName("figure", "knee");
    store(object, "a", "1");
    const std::string expected = "figure.knee\n  a = \"1\"";

    char buffer[100];
    EXPECT_EQ(object.toText(buffer, sizeof buffer), static_cast<int>(expected.size()));
    EXPECT_EQ(buffer, expected);

    char* text = nullptr;
    EXPECT_EQ(object.sprint(&text), static_cast<int>(expected.size()));
    EXPECT_EQ(text, expected);
    std::free(text);
}

TEST(Object, TextFormIsCutToTheBufferAndEndsInZero)
{
    qcObject object;
    object.setFullName("figure", "knee");   // 11 characters
    char buffer[] = "################";
    EXPECT_EQ(object.toText(buffer, 5), 11);
    EXPECT_STREQ(buffer, "figu");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(object.toText(buffer, 0), 11);
    EXPECT_STREQ(buffer, "figu");
    EXPECT_EQ(object.toText(nullptr, 100), 11);
    EXPECT_EQ(object.toText(buffer, 12), 11);
    EXPECT_STREQ(buffer, "figure.knee");
    EXPECT_EQ(object.toText(buffer, 11), 11);
    EXPECT_STREQ(buffer, "figure.kne");
}
