// Walk, order: which of the terms of a joint's sums comes first, told by numbers that round away.
#include "WalkFixture.h"

using ::testing::ElementsAre;

namespace {

// Unreadable loads tell the order in which sites are visited: a site's joints come before its own load, a
// joint's whole subtree before the next joint.
TEST_F(Walk, VisitsSitesAndJointsInListOrderDepthFirst)
{
    SmallFigure tree;
    tree.segment("base", 0).site("base", "out", {0, 0, 0});
    tree.segment("trunk", 0).site("trunk", "z", {0, 0, 0}).site("trunk", "y", {0, 0, 0}).site("trunk", "x", {0, 0, 0});
    for (const char* name : {"p", "q", "q_end", "o"})
        tree.segment(name, 0).site(name, "in", {0, 0, 0}).site(name, "end", {0, 0, 0});
    tree.joint("root", "base.out", "trunk.y")
        .joint("jq", "trunk.y", "q.in")
        .joint("jp", "p.in", "trunk.y")
        .joint("jo", "trunk.x", "o.in")
        .joint("jq_end", "q.end", "q_end.in");
    load(tree);
    for (qList* node = nullptr; (node = qList::iterator(figure->getSites(), node));)
        static_cast<qcSite*>(node->getData())->setProperty("SSTR_Load", qcValue(1.0f));

    EXPECT_EQ(walk("root", "base.out").status, 1);
    std::vector<std::string> visited;
    const std::string start = "StaticStrength ERROR: illegal load at site man.";
    for (const std::string& text : log.takeTexts()) {
        ASSERT_EQ(text.substr(0, start.size()), start);
        visited.push_back(text.substr(start.size()));
    }
    EXPECT_THAT(visited, ElementsAre("trunk.z", "q.in", "q_end.in", "q_end.end", "q.end", "p.in", "p.end", "trunk.y",
                                     "o.in", "o.end", "trunk.x"));
}

// In single precision 2^24 takes in no 1, and nothing below 1: the spacing of numbers is 2 there. Below 2^24 it is 1.
constexpr float kHuge = 16777216.0f;   // 2^24

// "part" hangs on joint "j" at the origin, a massless "child" on joint "k" at the part's site "tip", (10, 0, 0).
class WalkOrder : public JointForces {
protected:
    void SetUp() override
    {
        SmallFigure figure = onePart(0);
        figure.segment("child", 0).site("child", "in", {10, 0, 0}).joint("k", "part.tip", "child.in");
        load(figure);
    }
    void torque(const char* at, float z)
    {
        qVector moment(0, 0, z);
        analysis->setDefinedTorque(joint(at), moment);
    }
    // 1 kgf up at the tip, twice: 10 kgf·cm, 0.980665 N·m each about j
    void pullTwiceAtTheTip()
    {
        for (int i = 0; i < 2; ++i)
            analysis->setLoadWithOffset(site("part.tip"), {}, {0, 1, 0});
    }
};

// ---- At one site

// The caller's 2^24, the child's -2^24, the tip's own load 1: (2^24 - 2^24) + 1 = 1. The load first would be lost:
// (2^24 + 1) - 2^24 = 0.
TEST_F(WalkOrder, JointsOfASiteComeBeforeItsLoad)
{
    analysis->setLoad(site("child.in"), {-kHuge, 0, 0});
    analysis->setLoad(site("part.tip"), {1, 0, 0});
    EXPECT_EQ(walk("j", "base.out", "", 1, {kHuge, 0, 0}).force[0], 1);
}

// (2^24 + 1) + 1 = 2^24; the offset loads first would make 2 + 2^24 = 16777218.
TEST_F(WalkOrder, LoadOfASiteComesBeforeItsOffsetLoads)
{
    analysis->setLoad(site("part.tip"), {kHuge, 0, 0});
    for (int i = 0; i < 2; ++i)
        analysis->setLoadWithOffset(site("part.tip"), {}, {1, 0, 0});
    EXPECT_EQ(walk("j", "base.out").force[0], kHuge);
}

// (2^24 + 1) - 2^24 = 0; in the opposite order (-2^24 + 1) + 2^24 = 1.
TEST_F(WalkOrder, OffsetLoadsComeInTheOrderSet)
{
    for (const float force : {kHuge, 1.0f, -kHuge})
        analysis->setLoadWithOffset(site("part.tip"), {}, {force, 0, 0});
    EXPECT_EQ(walk("j", "base.out").force[0], 0);
}

// Offset loads 2^24 and 1 on "in", then the load -2^24 on "tip": (2^24 + 1) - 2^24 = 0. "tip" first, or all loads
// before all offset loads: (-2^24 + 2^24) + 1 = 1.
TEST_F(WalkOrder, OffsetLoadsOfASiteComeBeforeTheNextSite)
{
    analysis->setLoadWithOffset(site("part.in"), {}, {kHuge, 0, 0});
    analysis->setLoadWithOffset(site("part.in"), {}, {1, 0, 0});
    analysis->setLoad(site("part.tip"), {-kHuge, 0, 0});
    EXPECT_EQ(walk("j", "base.out").force[0], 0);
}

// The weight comes after all sites: (2^24 + 1) - 1 = 2^24 - 1 when 2^24 + 1 is rounded to 2^24 first.
TEST_F(Walk, AddsTheWeightAfterAllSites)
{
    load(onePart(1000));
    analysis->setLoad(site("part.in"), qVector(0, kHuge, 0));
    analysis->setLoad(site("part.tip"), qVector(0, 1, 0));
    EXPECT_EQ(walk("j", "base.out").force[1], kHuge - 1);

    // after the offset loads too
    analysis->removeLoad(site("part.tip"));
    analysis->setLoadWithOffset(site("part.tip"), {}, {0, 1, 0});
    EXPECT_EQ(walk("j", "base.out").force[1], kHuge - 1);
}

// ---- Moments: the torque first, then force by force; of a joint's result the force's moment before its own

// About j: torque 2^24; k's force (0, 1, 0) at (10, 0, 0), 0.98 N·m, is lost in it; k's own -2^24 comes after: 0, for
// which the placeholder stands. k's moment first would leave the 0.98.
TEST_F(WalkOrder, ForceOfASubtreeTurnsBeforeItsMomentIsAdded)
{
    torque("j", kHuge);
    torque("k", -kHuge);
    analysis->setLoad(site("child.in"), {0, 1, 0});
    const Sums sums = walk("j", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 1, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(kPlaceholder, kPlaceholder, kPlaceholder));
}

// (2^24 + 0.98) + 0.98 = 2^24: each is lost alone. The torque last would take in both at once: 16777218.
TEST_F(WalkOrder, TorqueComesBeforeAllElse)
{
    torque("j", kHuge);
    pullTwiceAtTheTip();
    EXPECT_THAT(components(walk("j", "base.out").moment), ElementsAre(0, 0, kHuge));
}

// The caller's sums are there from the start: (2^24 + 1) + 1 kgf and (2^24 + 0.98) + 0.98 N·m are 2^24. Added last
// they would take in both at once: 16777218.
TEST_F(WalkOrder, SumsOfTheCallerComeFirst)
{
    pullTwiceAtTheTip();
    const Sums sums = walk("j", "base.out", "", 1, {0, kHuge, 0}, {0, 0, kHuge});
    EXPECT_THAT(components(sums.force), ElementsAre(0, kHuge, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, kHuge));
}

}   // namespace
