// Massless links in URDF: sites, joints of several angles, roots, and masses too small to mean anything.
#include "UrdfTexts.h"

using testing::ElementsAre;
using testing::FloatEq;
using testing::HasSubstr;
using namespace urdf;

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

// A thigh on a pelvis by a ball joint, three single turns through two fillers.
std::string ballJoint(const std::string& filler1, const std::string& filler2)
{
    return robot(body("pelvis", "10", "0 0 0.1") + body("thigh", "8", "0 0 -0.2") + filler1 + filler2
                 + hinge("right_hip.flexion", "pelvis", "f1", "0 -0.1 0", "0 -1 0")
                 + hinge("right_hip.abduction", "f1", "f2", "0 0 0", "1 0 0")
                 + hinge("right_hip.turn", "f2", "thigh", "0 0 0", "0 0 1"));
}

TEST_F(UrdfTest, AChainThroughMasslessLinksIsOneJoint)
{
    const auto figure = read(ballJoint(link("f1"), link("f2")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("pelvis", "thigh"));
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("right_hip"));
    EXPECT_THAT(names<qcSite>(figure->getSites()), ElementsAre("right_hip", "proximal"));
    qcJoint* hip = figure->findJoint("right_hip");
    ASSERT_EQ(hip->getNumAngles(), 3);
    EXPECT_STREQ(hip->getAngleName(1), "flexion");
    EXPECT_STREQ(hip->getAngleName(2), "abduction");
    EXPECT_STREQ(hip->getAngleName(3), "turn");
    EXPECT_THAT(notes(*figure), HasSubstr("joint \"right_hip\": made of right_hip.flexion, right_hip.abduction, "
                                          "right_hip.turn."));
}

// The angles turn in the chain's order: flexion by 90° about the right axis lifts the thigh, its down
// pointing forward; what was forward then points up. Then a turn of 90° about the thigh's own forward axis,
// now up, takes its left axis, still left, to backward: the turn about up takes left to backward.
TEST_F(UrdfTest, AnglesTurnInTheChainsOrder)
{
    const auto figure = read(ballJoint(link("f1"), link("f2")));
    ASSERT_NE(figure, nullptr);
    qcJoint* hip = figure->findJoint("right_hip");
    qcSegment* thigh = figure->findSegment("thigh");
    hip->setAngle(1, kHalfPi);
    EXPECT_THAT(axis(thigh, 1), ElementsAre(testing::FloatNear(0, 1e-6f), testing::FloatNear(0, 1e-6f), FloatEq(-1)));
    EXPECT_THAT(axis(thigh, 2), ElementsAre(testing::FloatNear(0, 1e-6f), FloatEq(1), testing::FloatNear(0, 1e-6f)));
    hip->setAngle(2, kHalfPi);
    EXPECT_THAT(axis(thigh, 0), ElementsAre(testing::FloatNear(0, 1e-6f), testing::FloatNear(0, 1e-6f), FloatEq(-1)));
    EXPECT_THAT(position(thigh), ElementsAre(-10, 0, 0));
}

// Three ways to write a massless link: nothing, mass 0, and at most 1e-5 kg. The last adds its 0.01 g to
// the segment further in; the fillers are at the hip, (-10, 0, 0) cm in the pelvis, whose own 10 kg are
// at (0, 10, 0):
//   mass    10000 + 0.01 + 0.01 = 10000.02 g
//   center  x: 0.02 · (-10) / 10000.02 = -2e-5 cm     y: 10000 · 10 / 10000.02 = 9.99998 cm
TEST_F(UrdfTest, AllWaysToWriteAMasslessLinkMeanTheSame)
{
    const auto plain = read(ballJoint(link("f1"), link("f2")));
    const auto zero = read(ballJoint(body("f1", "0"), body("f2", "0.0")));
    const auto tiny = read(ballJoint(body("f1", "1e-5"), body("f2", "0.00001")));
    ASSERT_TRUE(plain && zero && tiny);
    EXPECT_EQ(plain->getBodyMass(), 18000);
    EXPECT_EQ(zero->getBodyMass(), 18000);
    EXPECT_NEAR(tiny->getBodyMass(), 18000.02, roundingBound(1, 10000));
    EXPECT_NEAR(tiny->findSegment("pelvis")->getMass(), 10000.02, roundingBound(1, 10000));
    EXPECT_EQ(tiny->findSegment("thigh")->getMass(), 8000.0f);
    const auto center = components(tiny->findSegment("pelvis")->getCenterOfMass());
    EXPECT_FLOAT_EQ(center[0], -0.2f / 10000.02f);
    EXPECT_FLOAT_EQ(center[1], 9.99998f);
    EXPECT_THAT(components(plain->findSegment("pelvis")->getCenterOfMass()), ElementsAre(0, 10, 0));
    EXPECT_THAT(notes(*tiny), HasSubstr("link \"f2\": its mass of 1e-05 kg was merged into the segment \"pelvis\"."));

    for (qcFigure* figure : {plain.get(), zero.get(), tiny.get()}) {
        qcJoint* hip = figure->findJoint("right_hip");
        ASSERT_NE(hip, nullptr);
        hip->setAngle(1, 0.5);
        hip->setAngle(2, -0.25);
        hip->setAngle(3, 1.25);
        EXPECT_THAT(names<qcSite>(figure->getSites()), ElementsAre("right_hip", "proximal"));
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(axis(figure->findSegment("thigh"), i), axis(plain->findSegment("thigh"), i));
        EXPECT_EQ(position(figure->findSegment("thigh")), position(plain->findSegment("thigh")));
    }
}

// Just above the limit it is a segment: two joints of which the first has the one angle.
TEST_F(UrdfTest, ALittleMoreThanNothingIsASegment)
{
    const auto figure = read(ballJoint(body("f1", "1.1e-5"), link("f2")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("pelvis", "thigh", "f1"));
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("right_hip.flexion", "right_hip"));
    EXPECT_FLOAT_EQ(figure->findSegment("f1")->getMass(), 0.011f);
}

struct Naming {
    const char *first, *second;   // of a chain of two
    const char *joint, *angle1, *angle2;
};

class ChainName : public UrdfTest, public testing::WithParamInterface<Naming> {};

TEST_P(ChainName, IsWhatTheNamesBeginWith)
{
    const Naming& n = GetParam();
    const auto figure =
        read(robot(body("a", "1") + link("f") + body("b", "1") + hinge(n.first, "a", "f") + hinge(n.second, "f", "b")));
    ASSERT_NE(figure, nullptr);
    qcJoint* joint = figure->findJoint(n.joint);
    ASSERT_NE(joint, nullptr) << notes(*figure);
    EXPECT_STREQ(joint->getAngleName(1), n.angle1);
    EXPECT_STREQ(joint->getAngleName(2), n.angle2);
    EXPECT_NE(figure->findSiteByFullName(("r.a." + std::string(n.joint)).c_str()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(UrdfTest, ChainName,
                         testing::Values(Naming{"jHip_rotx", "jHip_roty", "jHip", "rotx", "roty"},
                                         Naming{"hip.flexion", "hip.turn", "hip", "flexion", "turn"},
                                         Naming{"hip.turn_in", "hip.turn_out", "hip.turn", "in", "out"},
                                         Naming{"left_hip_1", "left_hip_2", "left_hip", "1", "2"},
                                         Naming{"a_b", "a_b_c", "a", "b", "b_c"},
                                         Naming{"hipA", "hipB", "hipB", "hipA", "hipB"},
                                         Naming{"x", "y", "y", "x", "y"}, Naming{"_x", "_y", "_y", "_x", "_y"}));

// The common beginning of both chains is "joint"; the second takes the name of its last joint.
TEST_F(UrdfTest, TwoChainsNeverGetOneName)
{
    const auto figure =
        read(robot(body("a", "1") + link("f") + body("b", "1") + link("g") + body("c", "1") + hinge("joint_1", "a", "f")
                   + hinge("joint_2", "f", "b") + hinge("joint_3", "b", "g") + hinge("joint_4", "g", "c")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("joint", "joint_4"));
    EXPECT_STREQ(figure->findJoint("joint_4")->getAngleName(1), "3");
    EXPECT_THAT(notes(*figure), HasSubstr("named after the last because their common name is taken"));
}

TEST_F(UrdfTest, AChainDoesNotTakeTheNameOfAnotherJoint)
{
    const auto figure = read(robot(body("a", "1") + link("f") + body("b", "1") + body("c", "1")
                                   + hinge("hip_x", "a", "f") + hinge("hip_y", "f", "b") + hinge("hip", "b", "c")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("hip_y", "hip"));
}

TEST_F(UrdfTest, AxesThatDoNotMeetAreNoted)
{
    const auto figure = read(robot(body("a", "1") + link("f") + body("b", "1") + hinge("j.x", "a", "f", "0 0 1")
                                   + hinge("j.y", "f", "b", "0 0 1")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(position(figure->findJoint("j")->getSite(0)), ElementsAre(0, 100, 0));
    EXPECT_THAT(position(figure->findJoint("j")->getSite(1)), ElementsAre(0, 200, 0));
    EXPECT_THAT(notes(*figure), HasSubstr("joint \"j\": its axes do not meet in one point"));
}

TEST_F(UrdfTest, AMasslessEndOfAMovingChainIsASegment)
{
    const auto figure = read(robot(body("a", "1") + link("f") + body("b", "1e-6", "0 0 1")
                                   + hinge("j.x", "a", "f", "0 0 2") + hinge("j.y", "f", "b")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("a", "b"));
    EXPECT_EQ(figure->findSegment("b")->getMass(), 0.0f);
    EXPECT_EQ(figure->findJoint("j")->getNumAngles(), 2);
    EXPECT_THAT(notes(*figure), HasSubstr("link \"b\": it has no mass and ends a chain of moving joints: a segment of "
                                          "mass 0."));
    // its 0.001 g, 3 m above a's origin, are a's now: 0.001 · 300 / 1000.001 = 0.0003 cm
    EXPECT_FLOAT_EQ(figure->findSegment("a")->getMass(), 1000.001f);
    EXPECT_FLOAT_EQ(figure->findSegment("a")->getCenterOfMass()[1], 0.3f / 1000.001f);
}

TEST_F(UrdfTest, WhereMasslessLinksBranchOneIsASegment)
{
    const auto figure =
        read(robot(body("a", "1") + link("f") + link("fork") + body("b", "1") + body("c", "1") + hinge("j.x", "a", "f")
                   + hinge("j.y", "f", "fork") + hinge("to_b", "fork", "b") + hinge("to_c", "fork", "c")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("a", "fork", "b", "c"));
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("j", "to_b", "to_c"));
    EXPECT_EQ(figure->findSegment("fork")->getMass(), 0.0f);
}

// A site on a link inside a chain: the link is a segment then, or the site would have none.
TEST_F(UrdfTest, ALinkWithASiteIsNoInsideOfAJoint)
{
    const auto figure = read(robot(body("a", "1") + link("f") + link("f.mark") + body("b", "1") + hinge("j.x", "a", "f")
                                   + hinge("j.y", "f", "b") + fixed("m", "f", "f.mark", "1 0 0")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("a", "f", "b"));
    EXPECT_THAT(names<qcSite>(figure->findSegment("f")->getSites()), ElementsAre("proximal", "j.y", "mark"));
}

// base, 1 m below the pelvis and turned by 90° about up: its place in the pelvis is 1 m down, its forward
// (file x) is the pelvis's right, because the pelvis's forward is base's left.
TEST_F(UrdfTest, AMasslessRootBecomesASiteOfTheBodyFixedToIt)
{
    const auto figure = read(
        robot(link("base_link") + link("footprint") + body("pelvis", "10") + body("leg", "5")
              + "<joint name=\"up\" type=\"fixed\"><parent link=\"base_link\"/><child link=\"pelvis\"/>"
                "<origin xyz=\"0 0 1\" rpy=\"0 0 1.57079632679489661923\"/></joint>"
              + fixed("down", "base_link", "footprint", "0 0 -0.5") + hinge("hip", "base_link", "leg", "0 0 0.5")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("pelvis", "leg"));
    EXPECT_EQ(figure->findSegment("pelvis")->getAttachmentSite(), nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("pelvis")->getSites()), ElementsAre("base_link", "footprint", "hip"));
    EXPECT_THAT(position(figure->findSegment("pelvis")), ElementsAre(0, 0, 0));
    qcSite* base = figure->findSiteByFullName("r.pelvis.base_link");
    const auto near = [](float value) { return testing::FloatNear(value, 1e-5f); };
    EXPECT_THAT(position(base), ElementsAre(near(0), near(-100), near(0)));
    EXPECT_THAT(axis(base, 2), ElementsAre(near(-1), near(0), near(0)));
    EXPECT_THAT(position(figure->findSiteByFullName("r.pelvis.footprint")), ElementsAre(near(0), near(-150), near(0)));
    EXPECT_THAT(position(figure->findSegment("leg")), ElementsAre(near(0), near(-50), near(0)));
    EXPECT_THAT(notes(*figure), HasSubstr("link \"base_link\": a root without mass; it is now a site of the segment "
                                          "\"pelvis\", which became the root."));
}

TEST_F(UrdfTest, AChainOfMasslessRootsBecomesSitesToo)
{
    const auto figure = read(robot(link("world") + link("base") + body("pelvis", "10")
                                   + fixed("one", "world", "base", "1 0 0") + fixed("two", "base", "pelvis", "0 0 1")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("pelvis"));
    EXPECT_THAT(position(figure->findSiteByFullName("r.pelvis.world")), ElementsAre(0, -100, -100));
    EXPECT_THAT(position(figure->findSiteByFullName("r.pelvis.base")), ElementsAre(0, -100, 0));
}

TEST_F(UrdfTest, AMasslessRootWithMovingJointsStaysASegment)
{
    const auto figure =
        read(robot(link("base") + link("base.mark") + body("a", "1") + body("b", "1") + hinge("to_a", "base", "a")
                   + hinge("to_b", "base", "b") + fixed("m", "base", "base.mark", "1 0 0")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("base", "a", "b"));
    EXPECT_EQ(figure->findSegment("base")->getMass(), 0.0f);
    EXPECT_THAT(position(figure->findSiteByFullName("r.base.mark")), ElementsAre(0, 0, 100));
}

// Which of the two would be the root is not told, so neither is.
TEST_F(UrdfTest, AMasslessRootBetweenTwoBodiesStaysASegment)
{
    const auto figure = read(robot(link("base") + body("a", "1") + body("b", "1") + fixed("fa", "base", "a", "0 0 1")
                                   + fixed("fb", "base", "b", "0 0 2")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("base", "a", "b"));
    EXPECT_THAT(position(figure->findSegment("a")), ElementsAre(0, 100, 0));
    EXPECT_THAT(position(figure->findSegment("b")), ElementsAre(0, 200, 0));
}

TEST_F(UrdfTest, ATinyMassOnASiteIsMergedWhereItIs)
{
    // 0.01 g, 1 m forward of a's origin, where a's own 100 g are: 0.01 · 100 / 100.01 = 0.0099990 cm
    const auto figure = read(robot(body("a", "0.1") + body("a.tip", "0.00001") + fixed("m", "a", "a.tip", "1 0 0")));
    ASSERT_NE(figure, nullptr);
    EXPECT_FLOAT_EQ(figure->findSegment("a")->getMass(), 100.01f);
    EXPECT_FLOAT_EQ(figure->findSegment("a")->getCenterOfMass()[2], 1.0f / 100.01f);
}

TEST_F(UrdfTest, ASingleMasslessLinkIsAFigureToo)
{
    const auto figure = read(robot(link("a")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("a"));
    EXPECT_EQ(figure->getBodyMass(), 0);
}

}   // namespace
