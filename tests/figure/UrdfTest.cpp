// Reading URDF: units and axes, segments, sites, joints and their order.
#include "DecimalComma.h"
#include "LargeFigures.h"
#include "UrdfTexts.h"

using testing::ElementsAre;
using testing::FloatEq;
using testing::HasSubstr;
using namespace urdf;

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

// A rotation by a right angle, worked out in double, leaves 6e-17 times a length where zero is meant.
testing::Matcher<float> rounded(float value)
{
    return value == 0 ? testing::FloatNear(0, 1e-5f) : FloatEq(value);
}

// 1 m forward, 2 m left, 3 m up; 4 kg. The host's axes are left, up, forward; it counts cm and g:
//   (1, 2, 3) m → (200, 300, 100) cm; 4 kg → 4000 g
TEST_F(UrdfTest, MetresKilogramsAndAxesBecomeTheHosts)
{
    const auto figure = read(robot(body("torso", "4", "1 2 3")));
    ASSERT_NE(figure, nullptr);
    EXPECT_STREQ(figure->getName(), "r");
    qcSegment* torso = figure->findSegment("torso");
    ASSERT_NE(torso, nullptr);
    EXPECT_STREQ(torso->getFullName(), "r.torso");
    EXPECT_EQ(torso->getMass(), 4000.0f);
    EXPECT_THAT(components(torso->getCenterOfMass()), ElementsAre(200, 300, 100));
    EXPECT_EQ(torso->getAttachmentSite(), nullptr);
    EXPECT_EQ(torso->getSites(), nullptr);
    EXPECT_FALSE(figure->isPosed());
}

// A joint at (1, 2, 3) m, which the host has at (200, 300, 100) cm. A point 1 m forward of it is at
// (200, 300, 200). Turned by 90° about
//   left     forward goes down    (200, 200, 100)
//   up       forward goes left    (300, 300, 100)
//   forward  it stays             (200, 300, 200)
TEST_F(UrdfTest, PositiveAnglesTurnRightHandedAboutTheAxis)
{
    const struct {
        const char* axis;
        std::array<float, 3> turned;
    } cases[] = {
        {"0 1 0", {200, 200, 100}},
        {"0 0 1", {300, 300, 100}},
        {"1 0 0", {200, 300, 200}},
        {"0 -2 0", {200, 400, 100}},   // an axis need not have length 1
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.axis);
        const auto figure = read(robot(body("a", "1") + body("b", "1") + hinge("j", "a", "b", "1 2 3", c.axis)
                                       + link("b.tip") + fixed("m", "b", "b.tip", "1 0 0")));
        ASSERT_NE(figure, nullptr);
        qcSite* tip = figure->findSiteByFullName("r.b.tip");
        ASSERT_NE(tip, nullptr);
        EXPECT_THAT(position(tip), ElementsAre(200, 300, 200));
        ASSERT_EQ(figure->findJoint("j")->setAngle(1, kHalfPi), 1);
        EXPECT_THAT(position(tip), ElementsAre(rounded(c.turned[0]), rounded(c.turned[1]), rounded(c.turned[2])));
        EXPECT_THAT(position(figure->findSegment("b")), ElementsAre(200, 300, 100));
    }
}

// An axis between forward and left, turned by 180°, exchanges the two: forward (0, 0, 1) → left (1, 0, 0).
TEST_F(UrdfTest, AxesMayLieAcross)
{
    const auto figure = read(robot(body("a", "1") + body("b", "1") + hinge("j", "a", "b", "0 0 0", "1 1 0")));
    ASSERT_NE(figure, nullptr);
    figure->findJoint("j")->setAngle(1, 2 * kHalfPi);
    EXPECT_THAT(axis(figure->findSegment("b"), 2), ElementsAre(rounded(1), rounded(0), rounded(0)));
    EXPECT_THAT(axis(figure->findSegment("b"), 1), ElementsAre(rounded(0), rounded(-1), rounded(0)));
}

// rpy: first about forward, then about left, then about up, all of them fixed axes of the parent.
// roll 90°:               left → up,    up → right,   forward stays
// roll 90°, then yaw 90°: forward → left; left → up stays up; up → right → forward
// In the host's words (rows x = left, y = up, z = forward):
//   x → (0, 1, 0)    y → (0, 0, 1)    z → (1, 0, 0)
// A hinge about the child's left axis turns about up then: 90° takes the child's forward, which points
// left, on to backward.
TEST_F(UrdfTest, OriginsMayBeTurned)
{
    const std::string turnedOrigin = "<joint name=\"j\" type=\"continuous\"><parent link=\"a\"/><child link=\"b\"/>"
                                     "<origin xyz=\"0 0 1\" rpy=\"1.57079632679489661923 0 1.57079632679489661923\"/>"
                                     "<axis xyz=\"0 1 0\"/></joint>\n";
    const auto figure = read(robot(body("a", "1") + body("b", "1", "0.5 0 0") + turnedOrigin));
    ASSERT_NE(figure, nullptr);
    qcSegment* b = figure->findSegment("b");
    EXPECT_THAT(axis(b, 0), ElementsAre(rounded(0), rounded(1), rounded(0)));
    EXPECT_THAT(axis(b, 1), ElementsAre(rounded(0), rounded(0), rounded(1)));
    EXPECT_THAT(axis(b, 2), ElementsAre(rounded(1), rounded(0), rounded(0)));
    EXPECT_THAT(position(b), ElementsAre(0, 100, 0));
    // half a metre forward in b: 50 cm left of its origin; with a at the world's origin the mean of both
    EXPECT_THAT(components(figure->getBodyCenterOfMass()), ElementsAre(rounded(25), rounded(50), rounded(0)));

    figure->findJoint("j")->setAngle(1, kHalfPi);
    EXPECT_THAT(axis(b, 2), ElementsAre(rounded(0), rounded(0), rounded(-1)));
    // the parent's side is in the joint's frame at angle zero
    EXPECT_THAT(axis(figure->findSiteByFullName("r.a.j"), 2), ElementsAre(rounded(1), rounded(0), rounded(0)));
}

// The turn of an inertial frame turns inertias, which statics does not use, and no position.
TEST_F(UrdfTest, TheTurnOfAnInertialFrameDoesNotMoveTheCenter)
{
    const auto figure = read(robot("<link name=\"a\"><inertial><origin xyz=\"1 2 3\" rpy=\"1 1 1\"/>"
                                   "<mass value=\"1\"/></inertial></link>"));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(components(figure->findSegment("a")->getCenterOfMass()), ElementsAre(200, 300, 100));
}

// Names that do not sort as they stand in the file, a child before its parent.
TEST_F(UrdfTest, EverythingIsInTheFilesOrder)
{
    const auto figure =
        read(robot(body("zeta", "1") + body("alpha", "1") + body("mid", "1")           //
                   + hinge("second", "mid", "alpha") + hinge("first", "zeta", "mid")   //
                   + link("zeta.z") + link("zeta.a") + fixed("mz", "zeta", "zeta.z") + fixed("ma", "zeta", "zeta.a")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("zeta", "alpha", "mid"));
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("second", "first"));
    EXPECT_THAT(names<qcSite>(figure->getSites()), ElementsAre("first", "z", "a", "proximal", "proximal", "second"));
}

// Proximal first, then as the joints that make the sites stand in the file.
TEST_F(UrdfTest, SitesFollowTheJointsThatMakeThem)
{
    const auto figure = read(robot(body("a", "1") + body("b", "1") + body("c", "1") + body("d", "1") + link("b.tip")
                                   + link("b.proximal") + link("plain") + hinge("to_d", "b.tip", "d")
                                   + fixed("m1", "b", "plain") + hinge("to_c", "b", "c") + hinge("to_b", "a", "b")
                                   + fixed("m2", "b", "b.tip", "0 0 1") + fixed("m3", "b", "b.proximal")));
    ASSERT_NE(figure, nullptr);
    qcSegment* b = figure->findSegment("b");
    EXPECT_THAT(names<qcSite>(b->getSites()), ElementsAre("proximal", "plain", "to_c", "tip"));
    EXPECT_EQ(b->getAttachmentSite(), figure->findSiteByFullName("r.b.proximal"));
}

TEST_F(UrdfTest, AJointLiesBetweenASiteOfItsOwnAndTheChildsProximal)
{
    const auto figure = read(robot(body("a", "1") + body("b", "1") + hinge("elbow", "a", "b", "0 0 -1")));
    ASSERT_NE(figure, nullptr);
    qcJoint* elbow = figure->findJoint("elbow");
    qcSite* inboard = figure->findSiteByFullName("r.a.elbow");
    qcSite* outboard = figure->findSiteByFullName("r.b.proximal");
    ASSERT_TRUE(elbow && inboard && outboard);
    EXPECT_STREQ(elbow->getFullName(), "r.elbow");
    EXPECT_EQ(elbow->getSite(0), inboard);
    EXPECT_EQ(elbow->getSite(1), outboard);
    EXPECT_EQ(elbow->getInboardSite(), inboard);
    EXPECT_EQ(inboard->getJoint(), elbow);
    EXPECT_EQ(outboard->getJoint(), elbow);
    EXPECT_EQ(figure->findSegment("b")->getAttachmentSite(), outboard);
    EXPECT_EQ(elbow->getNumAngles(), 1);
    EXPECT_STREQ(elbow->getAngleName(1), "");
    double lower, upper;
    EXPECT_EQ(elbow->getAngleLimits(1, lower, upper), 0);
    EXPECT_THAT(position(inboard), ElementsAre(0, -100, 0));
    EXPECT_THAT(position(outboard), ElementsAre(0, -100, 0));
}

TEST_F(UrdfTest, AJointOnASiteAttachesThere)
{
    const auto figure =
        read(robot(body("a", "1") + link("a.end") + body("b", "1") + body("c", "1")
                   + fixed("mount", "a", "a.end", "0 0 1") + hinge("one", "a.end", "b") + hinge("two", "a.end", "c")));
    ASSERT_NE(figure, nullptr);
    qcSite* end = figure->findSiteByFullName("r.a.end");
    ASSERT_NE(end, nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("a")->getSites()), ElementsAre("end"));
    EXPECT_THAT(names<qcJoint>(end->getJoints()), ElementsAre("one", "two"));
    EXPECT_THAT(position(figure->findSegment("c")), ElementsAre(0, 100, 0));
}

// The joint is 50 cm above the site that its parent link is. Moments are taken about the joint's site, so
// that must not be the link's.
TEST_F(UrdfTest, AJointAwayFromASiteGetsItsOwn)
{
    const auto figure = read(robot(body("a", "1") + link("a.end") + body("b", "1")
                                   + fixed("mount", "a", "a.end", "0 0 1") + hinge("one", "a.end", "b", "0 0 0.5")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("a")->getSites()), ElementsAre("end", "one"));
    EXPECT_THAT(position(figure->findJoint("one")->getInboardSite()), ElementsAre(0, 150, 0));
    EXPECT_THAT(position(figure->findSegment("b")), ElementsAre(0, 150, 0));
}

TEST_F(UrdfTest, SitesMayHangOnSites)
{
    const auto figure =
        read(robot(body("a", "1") + link("a.one") + link("two") + joint("m1", "fixed", "a", "a.one", "0 0 1")
                   + joint("m2", "fixed", "a.one", "two", "1 0 0")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("a")->getSites()), ElementsAre("one", "two"));
    EXPECT_THAT(position(figure->findSiteByFullName("r.a.two")), ElementsAre(0, 100, 100));
}

TEST_F(UrdfTest, ASiteOfTheJointsNameMakesTheJointsSiteGiveWay)
{
    const auto figure = read(robot(body("a", "1") + link("neck") + body("b", "1") + fixed("m", "a", "neck")
                                   + hinge("neck", "a", "b", "0 0 1")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("a")->getSites()), ElementsAre("neck", "neck_joint"));
    EXPECT_THAT(notes(*figure), HasSubstr("is called \"neck_joint\""));
}

TEST_F(UrdfTest, AFixedLinkWithMassIsASegmentOnAJointWithoutAngles)
{
    const auto figure = read(robot(body("a", "1") + body("b", "2") + fixed("glue", "a", "b", "0 0 1")));
    ASSERT_NE(figure, nullptr);
    qcJoint* glue = figure->findJoint("glue");
    ASSERT_NE(glue, nullptr);
    EXPECT_EQ(glue->getNumAngles(), 0);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("a", "b"));
    EXPECT_THAT(position(figure->findSegment("b")), ElementsAre(0, 100, 0));
    EXPECT_EQ(figure->findSegment("b")->getMass(), 2000.0f);
}

TEST_F(UrdfTest, LimitsAreTheFilesAndAnAngleStartsInsideThem)
{
    const auto limit = [](const char* text) {
        return std::string("<limit ") + text + " effort=\"1\" velocity=\"1\"/>";
    };
    const auto figure =
        read(robot(body("a", "1") + body("b", "1") + body("c", "1") + body("d", "1")
                   + joint("round", "revolute", "a", "b", "0 0 0", limit("lower=\"-0.5\" upper=\"0.25\""))
                   + joint("above", "revolute", "b", "c", "0 0 0", limit("lower=\"0.5\" upper=\"1\""))
                   + joint("below", "revolute", "c", "d", "0 0 0", limit("lower=\"-1\" upper=\"-0.125\""))));
    ASSERT_NE(figure, nullptr);
    double lower = 0, upper = 0;
    EXPECT_EQ(figure->findJoint("round")->getAngleLimits(1, lower, upper), 1);
    EXPECT_EQ(lower, -0.5);
    EXPECT_EQ(upper, 0.25);
    EXPECT_EQ(figure->findJoint("round")->getAngle(1), 0.0f);
    EXPECT_EQ(figure->findJoint("above")->getAngle(1), 0.5f);
    EXPECT_EQ(figure->findJoint("below")->getAngle(1), -0.125f);
    EXPECT_THAT(notes(*figure), HasSubstr("joint \"above\": zero is outside the limits of its angle; it starts at its "
                                          "limit, 28.6479 degrees."));
    EXPECT_THAT(notes(*figure), HasSubstr("joint \"below\""));
    EXPECT_THAT(notes(*figure), Not(HasSubstr("joint \"round\"")));
}

// Without an axis a joint turns about the file's x, forward; left then goes up.
TEST_F(UrdfTest, WhatIsNotToldIsTheFormatsDefault)
{
    const auto figure =
        read(robot("<link name=\"a\"><inertial><mass value=\"1\"/></inertial></link>" + body("b", "1")
                   + "<joint name=\"j\" type=\"continuous\"><parent link=\"a\"/><child link=\"b\"/></joint>"));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(components(figure->findSegment("a")->getCenterOfMass()), ElementsAre(0, 0, 0));
    EXPECT_THAT(position(figure->findSegment("b")), ElementsAre(0, 0, 0));
    figure->findJoint("j")->setAngle(1, kHalfPi);
    EXPECT_THAT(axis(figure->findSegment("b"), 0), ElementsAre(rounded(0), rounded(1), rounded(0)));
}

TEST_F(UrdfTest, WhatStaticsDoesNotNeedMayBeWrong)
{
    const auto figure = read("<?xml version=\"1.0\"?><!-- c --><robot name=\"r\" version=\"7.q\">"
                             "<material name=\"m\"/><gazebo><anything/></gazebo><transmission/>"
                             "<link name=\"a\"><inertial><mass value=\" +1.5\n\"/><inertia ixx=\"none\"/></inertial>"
                             "<visual><geometry><mesh/></geometry><material name=\"unknown\"/></visual>"
                             "<collision/></link></robot>");
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->findSegment("a")->getMass(), 1500.0f);
    EXPECT_EQ(notes(*figure), "");
}

TEST_F(UrdfTest, AnElementThatNobodyKnowsIsNotedAndWarnedAboutWhenItsNameIsNearAKnownOne)
{
    const auto figure =
        read("<robot name=\"r\"><link name=\"a\">\n<inertail><mass value=\"1\"/></inertail></link></robot>");
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(notes(*figure),
                HasSubstr("link \"a\": the element <inertail> (line 2) is not known and was passed over. "
                          "Close names: \"inertial\"."));
    EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("model.urdf: link \"a\": the element <inertail> (line 2)")));
}

TEST_F(UrdfTest, AJointThatFollowsAnotherTurnsByItselfAndThatIsNoted)
{
    const auto figure = read(
        robot(body("a", "1") + body("b", "1") + joint("j", "continuous", "a", "b", "0 0 0", "<mimic joint=\"k\"/>")));
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(notes(*figure), HasSubstr("joint \"j\": it follows another joint"));
}

TEST_F(UrdfTest, ARobotWithoutANameIsNamedAfterItsFile)
{
    const auto figure = read("<robot>" + body("a", "1") + "</robot>");
    ASSERT_NE(figure, nullptr);
    EXPECT_STREQ(figure->getName(), "model");
    EXPECT_STREQ(figure->findSegment("a")->getFullName(), "model.a");
}

TEST_F(UrdfTest, NamesMayHoldAnyCharacter)
{
    const auto figure = read(robot(body("Bein &amp; Fuß &lt;1&gt;", "1") + body("%s%n", "1")
                                   + hinge("a \t&quot;b&quot;'c'", "Bein &amp; Fuß &lt;1&gt;", "%s%n")));
    // a tab is a control character, in which no name can be told
    EXPECT_EQ(figure, nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("without control characters")));
    const auto other = read(robot(body("Bein &amp; Fuß &lt;1&gt;", "1") + body("%s%n", "1")
                                  + hinge("&quot;b&quot;'c'", "Bein &amp; Fuß &lt;1&gt;", "%s%n")));
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other->findSegment("Bein & Fuß <1>"), nullptr);
    EXPECT_NE(other->findSegment("%s%n"), nullptr);
    EXPECT_NE(other->findJoint("\"b\"'c'"), nullptr);
}

TEST_F(UrdfTest, NumbersAreReadAlikeWhateverTheLocale)
{
    const DecimalComma comma;
    const auto figure = read(robot(body("a", "1.5", "0.25 1e-1 .5")));
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->findSegment("a")->getMass(), 1500.0f);
    EXPECT_THAT(components(figure->findSegment("a")->getCenterOfMass()), ElementsAre(10, 50, 25));
}

// Links, each 1 m above the one before it: the last of 100 000 is 99 999 m up. Nothing recurses by depth.
TEST_F(UrdfTest, ALongChainIsRead)
{
    const int links = deepLinks();
    std::string text;
    for (int i = 0; i < links; ++i)
        text += body("l" + std::to_string(i), "1");
    for (int i = 1; i < links; ++i)
        text += hinge("j" + std::to_string(i), "l" + std::to_string(i - 1), "l" + std::to_string(i), "0 0 1");
    const auto figure = read(robot(text));
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->getBodyMass(), 1000.0 * links);
    const int last = links - 1;
    EXPECT_THAT(position(figure->findSegment(("l" + std::to_string(last)).c_str())),
                ElementsAre(0, 100.0f * static_cast<float>(last), 0));
}

// The same through massless links: one joint with 19 999 angles.
TEST_F(UrdfTest, AJointOfManyAnglesIsRead)
{
    constexpr int kLinks = 20000;
    std::string text = body("first", "1") + body("last", "1");
    for (int i = 1; i < kLinks - 1; ++i)
        text += link("l" + std::to_string(i));
    for (int i = 1; i < kLinks; ++i)
        text += hinge("j." + std::to_string(i), i == 1 ? "first" : "l" + std::to_string(i - 1),
                      i == kLinks - 1 ? "last" : "l" + std::to_string(i));
    const auto figure = read(robot(text));
    ASSERT_NE(figure, nullptr);
    ASSERT_NE(figure->findJoint("j"), nullptr);
    EXPECT_EQ(figure->findJoint("j")->getNumAngles(), kLinks - 1);
    EXPECT_STREQ(figure->findJoint("j")->getAngleName(kLinks - 1), "19999");
}

// One root with 20 000 children: also what is wide is read in time.
TEST_F(UrdfTest, AWideTreeIsRead)
{
    constexpr int kLinks = 20000;
    std::string text = body("root", "1");
    for (int i = 0; i < kLinks; ++i)
        text += body("l" + std::to_string(i), "1") + hinge("j" + std::to_string(i), "root", "l" + std::to_string(i));
    const auto figure = read(robot(text));
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(names<qcSite>(figure->findSegment("root")->getSites()).size(), std::size_t(kLinks));
}

}   // namespace
