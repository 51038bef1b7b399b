// Long and odd names: names of parts, keys of properties, strategies and scripts of any length and any characters go
// through unchanged; only a line of the report is cut.
#include "LifecycleSupport.h"
#include "OddNames.h"

#include <algorithm>

using ::testing::ElementsAre;

namespace {

// The figure, a segment, both sites and the joint bear the name; the other segment has an x before it.
SmallFigure named(const std::string& name)
{
    SmallFigure figure(name);
    figure.segment(name, 1000, {0, 0, 0}, {0, 100, 0})
        .site(name, name, {0, 100, 0})
        .segment("x" + name, 1000, {0, 0, 0}, {10, 100, 0})
        .site("x" + name, name, {10, 100, 0})
        .joint(name, name + "." + name, "x" + name + "." + name);
    return figure;
}

class OddName : public Callbacks, public ::testing::WithParamInterface<std::size_t> {
protected:
    void SetUp() override
    {
        Callbacks::SetUp();
        load(named(name));
        first = site(name + "." + name);
        second = site("x" + name + "." + name);
        ASSERT_NE(first, nullptr);
        ASSERT_NE(second, nullptr);
        ASSERT_NE(joint(name), nullptr);
    }

    // A line around a name; one longer than 2047 bytes is cut within it (none is cut within a character here).
    static std::string line(const std::string& before, const std::string& around, const std::string& after)
    {
        return before + around.substr(0, 2047 - before.size() - after.size()) + after;
    }

    const std::string name = oddNames()[GetParam()];
    qcSite* first = nullptr;    // "NAME.NAME"
    qcSite* second = nullptr;   // "xNAME.NAME"
};

TEST_P(OddName, IsTheNameOfEveryPart)
{
    EXPECT_EQ(figure->getName(), name);
    EXPECT_EQ(human->getName(), name);
    EXPECT_EQ(analysis->getFullName(), "static_strength." + name);
    EXPECT_EQ(segment(name), first->getSegment());
    EXPECT_EQ(first->getFullName(), name + "." + name + "." + name);
    EXPECT_EQ(joint(name)->getFullName(), name + "." + name);
    EXPECT_EQ(scene->findHuman(name.c_str()), human);
}

TEST_P(OddName, ALoadIsSetListedRestoredReportedAndRemoved)
{
    ASSERT_EQ(analysis->setLoad(second, {0, -2, 0}), 1);
    ASSERT_EQ(analysis->setWeightLoad(first, 1500), 1);
    for (int round = 0; round < 2; ++round) {   // as set, and as restored
        EXPECT_EQ(analysis->getNumLoads(), 2);
        EXPECT_EQ(analysis->getNthLoadSite(0), second);
        EXPECT_EQ(analysis->getNthLoadSite(1), first);
        EXPECT_STREQ(analysis->getLoadType(second), "global");
        EXPECT_EQ(analysis->getSiteWeight(first), 1500);
        EXPECT_EQ(analysis->reportLoads(1),
                  line("", "x" + name + "." + name, "\tGlobal Load: (0.00, -2.00, 0.00) Kg-F"));
        EXPECT_EQ(analysis->reportLoads(), line("", name + "." + name, "\tWeight: 1500.0 gr"));
        EXPECT_STREQ(analysis->reportLoads(), "Strategy: \"Two Feet\"");
        EXPECT_EQ(analysis->reset(), 1);
    }
    EXPECT_EQ(analysis->removeLoad(second), 1);
    EXPECT_EQ(analysis->removeLoad(second), 0);
    EXPECT_EQ(analysis->getNumLoads(), 1);
    EXPECT_EQ(analysis->getNthLoadSite(0), first);
}

TEST_P(OddName, ALoadWithOffsetIsSetListedRestoredAndRemoved)
{
    ASSERT_NE(analysis->setLoadWithOffset(second, {1, 2, 3}, {0, -2, 0}, 1), nullptr);
    ASSERT_NE(analysis->setWeightLoadWithOffset(first, {4, 5, 6}, 1500), nullptr);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2);
        EXPECT_EQ(analysis->getNthLoadWithOffset(0)->site, second);
        EXPECT_EQ(analysis->getNthLoadWithOffset(1)->site, first);
        EXPECT_EQ(analysis->getNthLoadWithOffset(1)->mass, 1500);
        EXPECT_EQ(analysis->reset(), 1);
    }
    EXPECT_EQ(analysis->removeLoadWithOffset(analysis->getNthLoadWithOffset(0)), 1);
    EXPECT_EQ(analysis->getNthLoadWithOffset(0)->site, first);
}

TEST_P(OddName, ATorqueIsSetListedRestoredAndRemoved)
{
    qVector torque(1, 2, 3), read;
    ASSERT_EQ(analysis->setDefinedTorque(joint(name), torque), 1);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(analysis->getNumDefinedTorques(), 1);
        EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), joint(name));
        EXPECT_EQ(analysis->getDefinedTorque(joint(name), read), 1);
        EXPECT_THAT(components(read), ElementsAre(1, 2, 3));
        EXPECT_EQ(analysis->reset(), 1);
    }
    EXPECT_EQ(analysis->removeDefinedTorque(joint(name)), 1);
    EXPECT_EQ(analysis->getNumDefinedTorques(), 0);
}

// What a message quotes is not a format of its own.
TEST_P(OddName, IsQuotedWholeInMessages)
{
    figure->setProperty("SSTR_LoadList", list({list({text(name.c_str())})}));
    EXPECT_EQ(analysis->reset(), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength WARNING: cannot parse (\"" + name + "\")\n"));
}

TEST_P(OddName, IsTheKeyOfAProperty)
{
    ASSERT_EQ(first->setProperty(name.c_str(), qcValue(2.5f)), 1);
    ASSERT_EQ(first->setProperty((name + "2").c_str(), qcValue(name.c_str())), 1);
    qcValue value;
    EXPECT_EQ(first->getProperty(name.c_str(), &value), 1);
    EXPECT_STREQ(value.toText(), "2.5");
    EXPECT_EQ(first->getProperty((name + "2").c_str(), &value), 1);
    EXPECT_EQ(value.toText(), '"' + name + '"');
    EXPECT_EQ(second->getProperty(name.c_str(), &value), 0);
    EXPECT_EQ(first->getNumProperties(), 2);
    EXPECT_EQ(first->removeProperty(name.c_str()), 1);
    EXPECT_EQ(first->removeProperty(name.c_str()), 0);
    EXPECT_EQ(first->getProperty((name + "2").c_str(), &value), 1);
}

// A text that names no strategy is told as it stands, cut within its quotes; after a reset it has gone.
TEST_P(OddName, AsAStrategyIsToldAndNotRestored)
{
    figure->setProperty("SSTR_Strategy", qcValue(name.c_str()));
    EXPECT_STREQ(analysis->reportLoads(1), "No loads.");
    analysis->setLoad(first, {0, -1, 0});
    analysis->reportLoads(1);
    EXPECT_EQ(analysis->reportLoads(), line("Strategy: \"", name, "\""));
    analysis->reset();
    EXPECT_EQ(stored(figure, "SSTR_Strategy"), "absent");
}

// It stands in a comment's place: a text without characters would be no script.
TEST_P(OddName, InAScriptReachesTheInterpreterWhole)
{
    ASSERT_EQ(activateQuietly(*analysis, ("#" + name).c_str()), 1);
    analysis->run_script();
    EXPECT_THAT(scripts, ElementsAre("#" + name));
    analysis->deactivate();
}

INSTANTIATE_TEST_SUITE_P(Every, OddName, ::testing::Range(std::size_t(0), oddNames().size()));

// ---- Names that together are one

// "a" with "b.c" and "a.b" with "c" have one full name: a figure of both is refused.
TEST_F(Lifecycle, TwoSitesOfOneFullNameAreRefused)
{
    SmallFigure figure;
    figure.segment("a", 1000).site("a", "b.c", {0, 0, 0}).segment("a.b", 1000).site("a.b", "c", {0, 0, 0});
    EXPECT_EQ(scene->addPosedHuman(figure.text().c_str()), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre("posed figure: /sites/1/key: another site has this key: \"a.b.c\"."));
}

// Without that, dots part nothing: each site is found by its own full name.
TEST_F(Lifecycle, DotsInNamesPartNothing)
{
    SmallFigure small("m.n");
    small.segment("a", 1000).site("a", "b.c", {0, 0, 0}).segment("a.b", 1000).site("a.b", "d", {0, 0, 0});
    load(small);
    ASSERT_EQ(analysis->setLoad(site("a.b.d"), {0, -1, 0}), 1);
    ASSERT_EQ(analysis->setLoad(site("a.b.c"), {0, -2, 0}), 1);
    ASSERT_EQ(analysis->reset(), 1);
    EXPECT_EQ(site("a.b.d")->getSegment(), segment("a.b"));
    EXPECT_EQ(site("a.b.c")->getSegment(), segment("a"));
    EXPECT_EQ(analysis->getNthLoadSite(0), site("a.b.d"));
    EXPECT_EQ(analysis->getNthLoadSite(1), site("a.b.c"));
}

// A part may be renamed so that two sites share a full name: it then is the first one's, in the figure's order. The
// list knows one load by it, and a reset gives that to the first.
TEST_F(Lifecycle, ASharedFullNameIsTheFirstSites)
{
    SmallFigure small;
    small.segment("a", 1000).site("a", "b.c", {0, 0, 0}).segment("z", 1000).site("z", "c", {0, 0, 0});
    load(small);
    qcSite *first = site("a.b.c"), *second = site("z.c");
    segment("z")->setName("a.b");
    EXPECT_STREQ(second->getFullName(), "man.a.b.c");
    EXPECT_EQ(site("a.b.c"), first);
    ASSERT_EQ(analysis->setLoad(second, {0, -2, 0}), 1);
    EXPECT_EQ(analysis->getNthLoadSite(0), first);
    ASSERT_EQ(analysis->reset(), 1);
    EXPECT_EQ(stored(second, "SSTR_Load"), "absent");
    EXPECT_EQ(stored(first, "SSTR_Load"), "[(0, -2, 0), \"global\"]");
}

// Names that begin with each other, all with loads of their own: what is set or removed at one leaves the others.
TEST_F(Lifecycle, NamesThatBeginWithEachOtherAreApart)
{
    SmallFigure small;
    small.segment("a", 1000).segment("aa", 1000);
    const std::vector<std::string> keys = {"a.a", "a.aa", "a.aaa", "aa.a", "aa.aa", "a.", "aa."};
    for (const std::string& key : keys)
        small.site(key.substr(0, key.find('.')), key.substr(key.find('.') + 1), {0, 0, 0});
    load(small);
    for (std::size_t i = 0; i < keys.size(); ++i)
        ASSERT_EQ(analysis->setLoad(site(keys[i]), {0, -1.0f - static_cast<float>(i), 0}), 1);
    ASSERT_EQ(analysis->removeLoad(site("a.aa")), 1);
    ASSERT_EQ(analysis->reset(), 1);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        qVector load;
        ASSERT_EQ(analysis->getSiteLoad(site(keys[i]), load), keys[i] == "a.aa" ? 0 : 1) << keys[i];
        if (keys[i] == "a.aa")
            continue;
        EXPECT_EQ(load[1], -1.0f - static_cast<float>(i)) << keys[i];
    }
}

// ---- The report's buffer

// A key of 2047 bytes and more would fill the line by itself: its load stands there whole, and the line of the site
// behind it is as if there were no long one.
TEST_F(Lifecycle, ALineThatIsCutLeavesTheNextOneWhole)
{
    const std::string tail = "\tGlobal Load: (0.00, -2.00, 0.00) Kg-F";
    for (const std::size_t length : {2047 - tail.size() - 5, 2047 - tail.size() - 4, std::size_t(2046),
                                     std::size_t(2047), std::size_t(2048), std::size_t(100000)}) {
        SmallFigure small("man" + std::to_string(length));
        const std::string longName(length, 'n');
        small.segment("hand", 500).site("hand", longName, {0, 0, 0}).site("hand", "grip", {0, 0, 0});
        load(small);
        ASSERT_EQ(analysis->setLoad(site("hand." + longName), {0, -2, 0}), 1);
        ASSERT_EQ(analysis->setLoad(site("hand.grip"), {0, -2, 0}), 1);
        const std::string cut = analysis->reportLoads(1);
        EXPECT_EQ(cut, ("hand." + longName).substr(0, 2047 - tail.size()) + tail) << length;
        EXPECT_EQ(cut.size(), std::min<std::size_t>(2047, 5 + length + tail.size()));
        EXPECT_EQ(analysis->reportLoads(), "hand.grip" + tail);
    }
}

// The cut falls at the end of a character, wherever it would fall: of 4 bytes at 4 places.
TEST_F(Lifecycle, ALineIsCutBetweenCharacters)
{
    const std::string tail = "\tGlobal Load: (0.00, -2.00, 0.00) Kg-F", smile = "\xF0\x9F\x98\x80";
    const std::size_t room = 2047 - tail.size() - 5;   // after "hand."
    for (std::size_t before = room - 4; before <= room; ++before) {
        SmallFigure small("man" + std::to_string(before));
        small.segment("hand", 500).site("hand", std::string(before, 'n') + smile, {0, 0, 0});
        load(small);
        ASSERT_EQ(analysis->setLoad(site("hand." + std::string(before, 'n') + smile), {0, -2, 0}), 1);
        EXPECT_EQ(analysis->reportLoads(1),
                  "hand." + std::string(before, 'n') + (before + 4 <= room ? smile : "") + tail);
    }
}

}   // namespace
