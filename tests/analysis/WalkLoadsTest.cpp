// Walk, loads: forces on sites, with and without offsets, and hand loads, as a walk takes them.
#include "WalkFixture.h"

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

// The site's axes: x points along world y, y along world -x. Its segment's axes differ: x along z.
//   local (3, 4, 5) = 3·(0, 1, 0) + 4·(-1, 0, 0) + 5·(0, 0, 1) = (-4, 3, 5) kgf
//   about the origin, at (10, 0, 0): (10, 0, 0) × (-4, 3, 5) = (0, -50, 30) kgf·cm
class LocalLoads : public JointForces {
protected:
    void SetUp() override { load(turnedTip()); }

    static SmallFigure turnedTip()
    {
        SmallFigure figure;
        figure.segment("base", 0)
            .site("base", "out", {0, 0, 0})
            .segment("part", 0, {0, 0, 0}, {4, 4, 4}, {{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}})
            .site("part", "in", {0, 0, 0})
            .site("part", "tip", {10, 0, 0}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}})
            .joint("j", "base.out", "part.in");
        return figure;
    }
};

TEST_F(LocalLoads, AreTurnedByTheSitesAxes)
{
    analysis->setLoad(site("part.tip"), qVector(3, 4, 5), 1);
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(-4, 3, 5));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, FloatEq(float(-50 * kNm)), FloatEq(float(30 * kNm))));
    // the stored load and the site's place are as before
    qVector load;
    EXPECT_EQ(analysis->getSiteLoad(site("part.tip"), load), 1);
    EXPECT_THAT(components(load), ElementsAre(3, 4, 5));
    EXPECT_THAT(components(site("part.tip")->getGlobalTransform().getTranslation()), ElementsAre(10, 0, 0));
}

TEST_F(LocalLoads, GlobalOnesAreNotTurned)
{
    analysis->setLoad(site("part.tip"), qVector(3, 4, 5), 0);
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(3, 4, 5));
    // (10, 0, 0) × (3, 4, 5) = (0, -50, 40) kgf·cm
    EXPECT_THAT(components(sums.moment), ElementsAre(0, FloatEq(float(-50 * kNm)), FloatEq(float(40 * kNm))));
}

// The force is turned, the offset is added as stored: (10, 0, 0) + (0, 2, 0) = (10, 2, 0).
//   (10, 2, 0) × (-4, 3, 5) = (10, -50, 38) kgf·cm; a turned offset would be (-2, 0, 0)
TEST_F(LocalLoads, WithAnOffsetKeepTheOffsetUnturned)
{
    loadWithOffset* record = analysis->setLoadWithOffset(site("part.tip"), qVector(0, 2, 0), qVector(3, 4, 5), 1);
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(-4, 3, 5));
    EXPECT_THAT(components(sums.moment),
                ElementsAre(FloatEq(float(10 * kNm)), FloatEq(float(-50 * kNm)), FloatEq(float(38 * kNm))));
    EXPECT_THAT(components(record->load), ElementsAre(3, 4, 5));   // a copy was turned
}

TEST_F(LocalLoads, WithAnOffsetAndGlobalAreNotTurned)
{
    analysis->setLoadWithOffset(site("part.tip"), qVector(0, 2, 0), qVector(3, 4, 5), 0);
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(3, 4, 5));
    // (10, 2, 0) × (3, 4, 5) = (10, -50, 34) kgf·cm
    EXPECT_THAT(components(sums.moment),
                ElementsAre(FloatEq(float(10 * kNm)), FloatEq(float(-50 * kNm)), FloatEq(float(34 * kNm))));
}

// The site's second transform, here with the world's axes at another place, neither turns nor moves a load.
//   on the site at (10, 0, 0): (-4, 3, 5) kgf, (0, -50, 30) kgf·cm; 2 cm above it: (10, -50, 38) kgf·cm, as before
TEST_F(LocalLoads, AreTurnedAndPlacedByTheSitesGlobalTransform)
{
    load(turnedTip().secondPosition("part.tip", {1, 2, 3}));
    analysis->setLoad(site("part.tip"), qVector(3, 4, 5), 1);
    Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(-4, 3, 5));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, FloatEq(float(-50 * kNm)), FloatEq(float(30 * kNm))));

    analysis->removeLoad(site("part.tip"));
    analysis->setLoadWithOffset(site("part.tip"), qVector(0, 2, 0), qVector(3, 4, 5), 1);
    sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(-4, 3, 5));
    EXPECT_THAT(components(sums.moment),
                ElementsAre(FloatEq(float(10 * kNm)), FloatEq(float(-50 * kNm)), FloatEq(float(38 * kNm))));
}

// 2000 g at (10, 0, 0) + (0, 0, 3): (10, 0, 3) × (0, -2, 0) = (6, 0, -20) kgf·cm. On the site itself:
// (0, 0, -20) kgf·cm.
TEST_F(LocalLoads, WeightsAreNeverTurned)
{
    analysis->setWeightLoad(site("part.tip"), 2000);
    Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(-20 * kNm))));
    analysis->removeLoad(site("part.tip"));
    analysis->setWeightLoadWithOffset(site("part.tip"), qVector(0, 0, 3), 2000);
    sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(FloatEq(float(6 * kNm)), 0, FloatEq(float(-20 * kNm))));
}

// The local load of a stop segment is turned first and halved then: the half of LocalLoads' (-4, 3, 5).
TEST_F(LocalLoads, OnTheStopSegmentAreTurnedAndHalved)
{
    analysis->setLoad(site("part.tip"), qVector(3, 4, 5), 1);
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(-2, 1.5f, 2.5f));
    analysis->removeLoad(site("part.tip"));
    analysis->setLoadWithOffset(site("part.tip"), qVector(0, 2, 0), qVector(3, 4, 5), 1);
    const Sums sums = walk("j", "base.out", "part");
    EXPECT_THAT(components(sums.force), ElementsAre(-2, 1.5f, 2.5f));
    // half of (10, -50, 38) kgf·cm: the offset stays whole
    EXPECT_THAT(components(sums.moment),
                ElementsAre(FloatEq(float(5 * kNm)), FloatEq(float(-25 * kNm)), FloatEq(float(19 * kNm))));
}

// An unreadable load takes the site's offset loads with it; the next site counts.
TEST_F(Walk, LoadThatCannotBeReadSkipsItsSiteOnly)
{
    load(onePart(0));
    analysis->setLoad(site("part.in"), qVector(100, 0, 0), 5);   // no such kind: stored without a kind text
    analysis->setLoadWithOffset(site("part.in"), qVector(), qVector(10, 0, 0));
    analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(1, 0, 0));
    const Sums sums = walk("j", "base.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(1, 0, 0));
    expectErrors({"StaticStrength ERROR: illegal load at site man.part.in"});
}

TEST_F(Walk, LoadAndOffsetLoadsOfASiteAddUp)
{
    load(onePart(0));
    analysis->setLoad(site("part.tip"), qVector(0, 0, 1));
    analysis->setLoadWithOffset(site("part.tip"), qVector(1, 0, 0), qVector(0, 0, 2));
    analysis->setLoadWithOffset(site("part.tip"), qVector(-1, 0, 0), qVector(0, 0, 4));
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 7));
    // (10 · 1 + 11 · 2 + 9 · 4) kgf·cm = 68 kgf·cm, turning from z to x: about -y
    EXPECT_THAT(components(sums.moment), ElementsAre(0, FloatEq(float(-68 * kNm)), 0));
}

// Records of sites that the walk does not pass, and of the same-named site of another figure, do not count.
TEST_F(Walk, OffsetLoadsElsewhereDoNotCount)
{
    load(onePart(0));
    qcSite* otherTip = site("part.tip");
    AnalysisTest::load(onePart(0, "woman"));
    analysis->setLoadWithOffset(otherTip, qVector(), qVector(1, 0, 0));
    analysis->setLoadWithOffset(site("base.out"), qVector(), qVector(1, 0, 0));
    analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(0, 0, 2));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 2));
}

TEST_F(Walk, RemovedOffsetLoadNoLongerCounts)
{
    load(onePart(0));
    loadWithOffset* first = analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(1, 0, 0));
    loadWithOffset* second = analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(2, 0, 0));
    analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(4, 0, 0));
    EXPECT_EQ(walk("j", "base.out").force[0], 7);
    analysis->removeLoadWithOffset(second);
    EXPECT_EQ(walk("j", "base.out").force[0], 5);
    analysis->removeLoadWithOffset(first);
    EXPECT_EQ(walk("j", "base.out").force[0], 4);
}

// The records are read by the walk, not their saved copies: a caller may change one in place.
TEST_F(Walk, OffsetLoadsAreReadFromTheRecords)
{
    load(onePart(0));
    loadWithOffset* record = analysis->setLoadWithOffset(site("part.tip"), qVector(), qVector(1, 0, 0));
    record->load.set(0, 0, 3);
    record->offset.set(10, 0, 0);
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 3));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, FloatEq(float(-60 * kNm)), 0));   // 20 cm · 3 kgf
    record->site = site("base.out");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
}

// ---- Many offset loads: the same bits as the plain double loop over sites and records.

class ManyOffsetLoads : public JointForces, public ::testing::WithParamInterface<int> {};

TEST_P(ManyOffsetLoads, AddUpLikeTheNaiveSumToTheBit)
{
    const int numSites = GetParam();
    SmallFigure figure;
    figure.segment("base", 0).site("base", "out", {1, 2, 3}).segment("part", 0).site("part", "in", {1, 2, 3});
    for (int i = 0; i < numSites; ++i)
        figure.site("part", "s" + std::to_string(i), {0.37 * i, 1.1 * i - 20, 7.7 - 0.13 * i},
                    {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}});
    figure.joint("j", "base.out", "part.in");

    // numbers that round everywhere, from a fixed sequence; the loads are restored from the figure's list, so
    // that the list is not written out anew after each of them
    std::uint32_t state = 12345;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return double(static_cast<float>(state >> 8) / 16777216.0f * 20.0f - 10.0f);
    };
    const auto nextVector = [&next] {
        const double x = next(), y = next(), z = next();
        return nlohmann::json{"v", {x, y, z}};
    };
    nlohmann::json entries = nlohmann::json::array();
    for (std::uint32_t i = 0; i < 2000; ++i) {
        const std::uint32_t where = (i * 2654435761u >> 7) % std::uint32_t(numSites);
        const nlohmann::json offset = nextVector(), force = nextVector();
        const nlohmann::json key = {"s", "part.s" + std::to_string(where)};
        const nlohmann::json type = {"s", i % 3 == 0 ? "local" : "global"};
        entries.push_back({"l", nlohmann::json::array({key, offset, force, type})});
    }
    figure.property(nlohmann::json::array({"figure"}), "SSTR_LoadWithOffsetList",
                    nlohmann::json::array({"l", entries}));
    load(figure);
    ASSERT_EQ(analysis->getNumLoadsWithOffset(), 2000);
    std::vector<loadWithOffset*> records;
    for (int i = 0; i < 2000; ++i)
        records.push_back(analysis->getNthLoadWithOffset(i));
    std::vector<qcSite*> sites;
    for (int i = 0; i < numSites; ++i)
        sites.push_back(site("part.s" + std::to_string(i)));

    qVector jointPosition(1, 2, 3), force, moment;
    for (qcSite* s : sites)
        for (loadWithOffset* record : records)
            if (record->site == s) {
                qVector load = record->load;
                if (record->local)   // x to y, y to -x, z stays: exact
                    load.set(-record->load[1], record->load[0], record->load[2]);
                const qVector place = s->getGlobalTransform().getTranslation();
                qVector point(place[0] + record->offset[0], place[1] + record->offset[1], place[2] + record->offset[2]);
                analysis->calcForcesAt(jointPosition, point, load, force, moment);
            }
    const Sums sums = walk("j", "base.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_EQ(bits(sums.force), bits(force));
    EXPECT_EQ(bits(sums.moment), bits(moment));
}

INSTANTIATE_TEST_SUITE_P(Sites, ManyOffsetLoads, ::testing::Values(1, 2, 7, 64, 500));

// ---- Palm centres: what counts at a site by its name

class PalmCentre : public JointForces {
protected:
    void useSite(const std::string& name, const std::string& figureName = "man", const std::string& segment = "part")
    {
        SmallFigure small(figureName);
        small.segment("base", 0)
            .site("base", "out", {0, 0, 0})
            .segment(segment, 0)
            .site(segment, "in", {0, 0, 0})
            .site(segment, name, {10, 0, 0}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}})
            .joint("j", "base.out", segment + ".in");
        load(small);
        palm = site(segment + "." + name);
        figure->setProperty("RightZelHandLoads", qcValue("1 2 3"));
        figure->setProperty("LeftZelHandLoads", qcValue("4 5 6"));
    }
    qcSite* palm = nullptr;
};

TEST_F(PalmCentre, TakesTheLoadOfItsSide)
{
    useSite("right_palmcenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(1, 2, 3));
    useSite("palmcenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(4, 5, 6));
    useSite("Right_palmcenter");   // letters count
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(4, 5, 6));
    useSite("right_PalmCenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
}

// The full name counts: what stands in the segment's or the figure's name counts as well.
TEST_F(PalmCentre, IsFoundInTheFullName)
{
    useSite("xpalmcenter2", "man", "right_part");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(1, 2, 3));
    useSite("left_palmcenter", "bright");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(1, 2, 3));
    // every site of such a figure is one: "in" at the joint and "tip"
    useSite("tip", "palmcenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(8, 10, 12));
}

TEST_F(PalmCentre, OneNumberIsAVerticalLoadAtTheSite)
{
    useSite("right_palmcenter");
    figure->setProperty("RightZelHandLoads", qcValue("12"));
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 12, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(120 * kNm))));   // 10 cm to the left
}

// As with local loads: (1, 2, 3) in the site's axes is 1·(0, 1, 0) + 2·(-1, 0, 0) + 3·(0, 0, 1) = (-2, 1, 3) kgf.
TEST_F(PalmCentre, LocalFlagTurnsTheLoadIntoTheSitesAxes)
{
    useSite("right_palmcenter");
    figure->setProperty("LeftZelHandLoadsLocal", qcValue("1"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(1, 2, 3));   // the other hand's
    figure->setProperty("RightZelHandLoadsLocal", qcValue("1"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(-2, 1, 3));
    useSite("left_palmcenter");
    figure->setProperty("LeftZelHandLoadsLocal", qcValue("-3"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(-5, 4, 6));
}

TEST_F(PalmCentre, OffsetLoadsCountOnlyBesideALoadOfTheSite)
{
    useSite("right_palmcenter");
    analysis->setLoadWithOffset(palm, qVector(), qVector(100, 0, 0));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(1, 2, 3));
    // the site's load takes the hand load's place, and the offset loads count
    analysis->setLoad(palm, qVector(0, 0, 7));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(100, 0, 7));
}

TEST_F(PalmCentre, WithoutAHandLoadHasNoOffsetLoadsEither)
{
    useSite("right_palmcenter");
    analysis->setLoadWithOffset(palm, qVector(), qVector(100, 0, 0));
    for (const char* text : {"", "none", "7777 5 5"}) {   // an x of 7777 stands for "no hand load"
        figure->setProperty("RightZelHandLoads", qcValue(text));
        EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0)) << text;
    }
    figure->removeProperty("RightZelHandLoads");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
}

// Only an x of exactly 7777 is "no hand load"; one number alone is a y.
TEST_F(PalmCentre, NumbersBesideTheOneForNoHandLoadCount)
{
    useSite("right_palmcenter");
    figure->setProperty("RightZelHandLoads", qcValue("7777"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 7777, 0));
    figure->setProperty("RightZelHandLoads", qcValue("7777.001 1 2"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(7777.001f, 1, 2));
    figure->setProperty("RightZelHandLoads", qcValue("-7777 1 2"));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(-7777, 1, 2));
}

TEST_F(PalmCentre, LoadThatCannotBeReadKeepsTheHandLoadOutToo)
{
    useSite("right_palmcenter");
    setBadLoad("part.right_palmcenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
    expectErrors({"StaticStrength ERROR: illegal load at site man.part.right_palmcenter"});
}

TEST_F(PalmCentre, HandLoadIsHalvedOnTheStopSegment)
{
    useSite("right_palmcenter");
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0.5f, 1, 1.5f));
}

}   // namespace
