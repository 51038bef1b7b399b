// Posture: where segments and sites are for angles, root placement, floor and mass.
#include "Figures.h"

#include <array>
#include <limits>
#include <random>

using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

// A root with one segment hung at (0, 10, 0) by the given turns, and a site "tip" on it.
struct Arm {
    Arm(const std::vector<Step>& steps, const Point& tipOffset)
    {
        FigureBuilder builder("f");
        root = addRoot(builder);
        arm = hang(builder, root, "arm", steps);
        tip = addPlacedSite(builder, arm.segment, "tip", {tipOffset, kNoRotation});
        figure = builder.finishMoving();
    }

    void turn(int angle, double radians) { EXPECT_EQ(arm.joint->setAngle(angle, radians), 1); }
    void expectTip(double x, double y, double z) { expectPosition(tip->getGlobalTransform(), x, y, z); }

    qcSegmentImp* root;
    Hung arm;
    qcSiteImp* tip;
    std::unique_ptr<qcFigure> figure;
};

Step stepAt(const Point& offset, int angle, const Point& axis, const Rotation& rotation = kNoRotation)
{
    return {{offset, rotation}, angle, axis};
}

}   // namespace

TEST(Posture, ZeroAnglesLeaveEveryPartWhereItWasPlaced)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1})}, {5, 0, 0});
    arm.expectTip(5, 10, 0);
    expectPosition(arm.arm.segment->getGlobalTransform(), 0, 10, 0);
    expectPosition(arm.root->getGlobalTransform(), 0, 0, 0);
    EXPECT_THAT(components(arm.tip->getGlobalTransform().getAxis(0)), ElementsAre(1, 0, 0));
}

// A right angle about x takes y to z, about y takes z to x, about z takes x to y; about the negative
// axis it is the other way round.
TEST(Posture, PositiveAnglesTurnRightHandedAboutEachAxis)
{
    const struct {
        Point axis, tip, turned;
    } cases[] = {
        {{1, 0, 0}, {0, 5, 0}, {0, 10, 5}},   {{0, 1, 0}, {0, 0, 5}, {5, 10, 0}},   {{0, 0, 1}, {5, 0, 0}, {0, 15, 0}},
        {{-1, 0, 0}, {0, 5, 0}, {0, 10, -5}}, {{0, -1, 0}, {0, 0, 5}, {-5, 10, 0}}, {{0, 0, -1}, {5, 0, 0}, {0, 5, 0}},
    };
    for (const auto& one : cases) {
        Arm arm({stepAt({0, 10, 0}, 1, one.axis)}, one.tip);
        arm.turn(1, kRightAngle);
        arm.expectTip(one.turned[0], one.turned[1], one.turned[2]);
    }
}

// 30° about z: (5, 0, 0) goes to 5 · (cos 30°, sin 30°, 0)
TEST(Posture, AnglesAreInRadians)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1})}, {5, 0, 0});
    arm.turn(1, kPi / 6);
    arm.expectTip(5 * std::sqrt(0.75), 10 + 2.5, 0);
}

// A third of a turn about the space diagonal takes x to y, y to z, z to x.
TEST(Posture, AGeneralAxisTurnsAboutItself)
{
    const double d = 1 / std::sqrt(3.0);
    Arm arm({stepAt({0, 10, 0}, 1, {d, d, d})}, {5, 6, 7});
    arm.turn(1, 2 * kPi / 3);
    arm.expectTip(7, 15, 6);
    Arm back({stepAt({0, 10, 0}, 1, {-d, -d, -d})}, {5, 6, 7});
    back.turn(1, 2 * kPi / 3);
    back.expectTip(6, 17, 5);
}

// The placed frame's x axis is the parent's y, its y the parent's -x: the tip (5, 0, 0) lies at (0, 5, 0)
// from the joint. A right angle about the frame's own x (the parent's y) leaves it; about its own y (the
// parent's -x) takes the parent's y to -z.
TEST(Posture, AFixedRotationComesBeforeTheTurnAndTurnsItsAxis)
{
    Arm unturned({stepAt({0, 10, 0}, 1, {1, 0, 0}, kQuarterAboutZ)}, {5, 0, 0});
    unturned.expectTip(0, 15, 0);
    unturned.turn(1, kRightAngle);
    unturned.expectTip(0, 15, 0);

    Arm turned({stepAt({0, 10, 0}, 1, {0, 1, 0}, kQuarterAboutZ)}, {5, 0, 0});
    turned.turn(1, kRightAngle);
    turned.expectTip(0, 10, -5);
}

// First about z, then about the x axis that this has turned: the tip (0, 5, 0) is taken to (0, 0, 5) by
// the turn about x, which lies on z and stays. In the other order it would end at (-5, 10, 0).
TEST(Posture, EachAngleTurnsInTheFrameThatTheOnesBeforeItTurned)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1}), stepAt({0, 0, 0}, 2, {1, 0, 0})}, {0, 5, 0});
    arm.turn(1, kRightAngle);
    arm.expectTip(-5, 10, 0);
    arm.turn(2, kRightAngle);
    arm.expectTip(0, 10, 5);
}

// The same chain of turns with the angles numbered the other way.
TEST(Posture, TheNumberOfAnAngleDoesNotDecideWhenItTurns)
{
    Arm arm({stepAt({0, 10, 0}, 2, {0, 0, 1}), stepAt({0, 0, 0}, 1, {1, 0, 0})}, {0, 5, 0});
    arm.turn(2, kRightAngle);
    arm.expectTip(-5, 10, 0);
    arm.turn(1, kRightAngle);
    arm.expectTip(0, 10, 5);
}

// 3 cm along x after a right angle about z is 3 cm along y.
TEST(Posture, AnOffsetBetweenTwoAnglesTurnsWithTheFirst)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1}), stepAt({3, 0, 0}, 2, {0, 0, 1})}, {5, 0, 0});
    arm.expectTip(8, 10, 0);
    arm.turn(1, kRightAngle);
    arm.expectTip(0, 18, 0);
    arm.turn(2, kRightAngle);
    arm.expectTip(-5, 13, 0);
}

// Upper arm and forearm, each 20 cm along x, both bent by a right angle about z:
//   elbow (0, 20, 0), wrist (0, 20, 0) + 20 cm along the upper arm's y, which is -x
TEST(Posture, ChildrenFollowTheirParents)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    const Hung upper = hang(builder, root, "upper", {stepAt({0, 0, 0}, 1, {0, 0, 1})});
    const Hung fore = hang(builder, upper.segment, "fore", {stepAt({20, 0, 0}, 1, {0, 0, 1})});
    qcSiteImp* wrist = addPlacedSite(builder, fore.segment, "wrist", {{20, 0, 0}, kQuarterAboutX});
    const auto figure = builder.finishMoving();
    upper.joint->setAngle(1, kRightAngle);
    fore.joint->setAngle(1, kRightAngle);
    expectPosition(fore.segment->getGlobalTransform(), 0, 20, 0);
    expectPosition(fore.proximal->getGlobalTransform(), 0, 20, 0);
    expectPosition(fore.socket->getGlobalTransform(), 0, 20, 0);   // the joint's sites coincide
    expectPosition(wrist->getGlobalTransform(), -20, 20, 0);

    // a half turn about z in all: x to -x, y to -y; the site's own quarter turn takes its y to z first
    EXPECT_NEAR(wrist->getGlobalTransform().m[0][0], -1, roundingBound(1, 1));
    EXPECT_NEAR(wrist->getGlobalTransform().m[1][2], 1, roundingBound(1, 1));
    EXPECT_NEAR(wrist->getGlobalTransform().m[2][1], 1, roundingBound(1, 1));
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(wrist->getGlobalTransform().m[row][3], row == 3 ? 1 : 0);
}

TEST(Posture, SecondTransformIsTheGlobalOne)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1})}, {5, 0, 0});
    EXPECT_EQ(&arm.tip->getSecondTransform(), &arm.tip->getGlobalTransform());
    arm.turn(1, kRightAngle);
    expectPosition(arm.tip->getSecondTransform(), 0, 15, 0);   // asked first, up to date
}

// All about the world's axes, x first: (0, 1, 0) goes to z by the turn about x, z to x by that about y,
// x to y by that about z. In the opposite order it would end at (0, -1, 0).
TEST(Posture, TheRootTurnsAboutTheWorldsXThenYThenZ)
{
    Arm arm({stepAt({0, 1, 0}, 0, {})}, {0, 0, 0});
    EXPECT_EQ(arm.figure->setRoot(0, 0, 0, 90, 0, 0), 1);
    arm.expectTip(0, 0, 1);
    EXPECT_EQ(arm.figure->setRoot(0, 0, 0, 90, 90, 0), 1);
    arm.expectTip(1, 0, 0);
    EXPECT_EQ(arm.figure->setRoot(100, 200, 300, 90, 90, 90), 1);
    arm.expectTip(100, 201, 300);   // the turn is about the root's origin, the position comes last
    EXPECT_EQ(arm.figure->setRoot(0, 0, 0, 0, 0, 30), 1);
    arm.expectTip(-0.5, std::sqrt(0.75), 0);
}

TEST(Posture, TheRootComesBackAsItWasSet)
{
    Arm arm({stepAt({0, 1, 0}, 0, {})}, {0, 0, 0});
    double position[3], degrees[3];
    arm.figure->getRoot(position, degrees);
    EXPECT_THAT(position, ElementsAre(0, 0, 0));
    EXPECT_THAT(degrees, ElementsAre(0, 0, 0));
    arm.figure->setRoot(0.1, 2, 3, 4, -500, 6);
    arm.figure->getRoot(position, degrees);
    EXPECT_THAT(position, ElementsAre(0.1, 2, 3));
    EXPECT_THAT(degrees, ElementsAre(4, -500, 6));
}

TEST(Posture, ARootTooFarOrTurnedTooFarOrNotFiniteIsRefusedAndChangesNothing)
{
    Arm arm({stepAt({0, 1, 0}, 0, {})}, {0, 0, 0});
    arm.figure->setRoot(1, 2, 3, 0, 0, 0);
    arm.figure->standOnFloor();
    MessageLog log;
    for (int i = 0; i < 6; ++i)
        for (const double bad : {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, -HUGE_VAL, 1.1e5}) {
            double n[6] = {9, 9, 9, 9, 9, 9};
            n[i] = bad;
            EXPECT_EQ(arm.figure->setRoot(n[0], n[1], n[2], n[3], n[4], n[5]), 0);
            EXPECT_THAT(
                log.takeTexts(),
                ElementsAre(StartsWith(i < 3 ? "figure f: expected a root position within 100000 cm of the origin"
                                             : "figure f: expected a turn of the root of at most 10000 degrees")));
        }
    double position[3], degrees[3];
    arm.figure->getRoot(position, degrees);
    EXPECT_THAT(position, ElementsAre(1, 2, 3));
    EXPECT_TRUE(arm.figure->isOnFloor());
}

// The transforms are read through references, which show when they are written: not when an angle is
// set, but when any part is asked again.
TEST(Posture, TransformsAreWorkedOutWhenFirstAskedForAfterAChange)
{
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1})}, {5, 0, 0});
    const qMatrix& seen = arm.tip->getGlobalTransform();
    arm.turn(1, kRightAngle);
    arm.figure->setRoot(1, 0, 0, 0, 0, 0);
    expectPosition(seen, 5, 10, 0);
    arm.root->getGlobalTransform();   // another part of the same figure
    expectPosition(seen, 1, 15, 0);
    EXPECT_EQ(&seen, &arm.tip->getGlobalTransform());
}

TEST(Posture, RefusedAnglesMoveNothing)
{
    MessageLog log;
    Arm arm({stepAt({0, 10, 0}, 1, {0, 0, 1})}, {5, 0, 0});
    arm.turn(1, kRightAngle);
    EXPECT_EQ(arm.arm.joint->setAngle(1, std::nan("")), 0);
    EXPECT_EQ(arm.arm.joint->setAngle(2, 1), 0);
    EXPECT_EQ(log.take().size(), 2u);
    arm.expectTip(0, 15, 0);
}

namespace {

// A pelvis with two legs, 40 + 40 cm, and feet with heels 8 cm below the ankles; positive hip and knee
// angles turn about x, which takes y to z: a leg that hangs down goes backward. An arm hangs lower than
// the feet.
class Standing : public ::testing::Test {
protected:
    Standing()
    {
        FigureBuilder builder("f");
        pelvis = addRoot(builder, "pelvis");
        for (int side = 0; side < 2; ++side) {
            const std::string name = side == qcRight ? "right_" : "left_";
            const double x = side == qcRight ? -10 : 10;
            thigh[side] = hang(builder, pelvis, name + "thigh", {stepAt({x, 0, 0}, 1, {1, 0, 0})});
            shank[side] = hang(builder, thigh[side].segment, name + "shank", {stepAt({0, -40, 0}, 1, {1, 0, 0})});
            foot[side] = hang(builder, shank[side].segment, name + "foot", {stepAt({0, -40, 0}, 1, {1, 0, 0})});
            heel[side] = addPlacedSite(builder, foot[side].segment, "heel", {{0, -8, 0}, kNoRotation});
            toes[side] = hang(builder, foot[side].segment, name + "toes", {stepAt({0, -6, 15}, 1, {1, 0, 0})});
            tip[side] = addPlacedSite(builder, toes[side].segment, "tip", {{0, -2, 5}, kNoRotation});
            builder.roles().foot[side] = heel[side];
        }
        const Hung arm = hang(builder, pelvis, "arm", {stepAt({30, 0, 0}, 1, {1, 0, 0})});
        addPlacedSite(builder, arm.segment, "fingers", {{0, -200, 0}, kNoRotation});
        figure = builder.finishMoving();
        figure->setRoot(5, 1000, 7, 0, 0, 0);
        figure->standOnFloor();
    }

    void bend(const Hung& part, double degrees) { ASSERT_EQ(part.joint->setAngle(1, degrees * kPi / 180), 1); }

    qcSegmentImp* pelvis;
    Hung thigh[2], shank[2], foot[2], toes[2];
    qcSiteImp *heel[2], *tip[2];
    std::unique_ptr<qcFigure> figure;
};

}   // namespace

// 40 + 40 + 8 cm from hip to heel
TEST_F(Standing, StraightLegsCarryThePelvisAtLegLength)
{
    expectPosition(pelvis->getGlobalTransform(), 5, 88, 7);
    expectPosition(heel[qcLeft]->getGlobalTransform(), 15, 0, 7);
    expectPosition(heel[qcRight]->getGlobalTransform(), -5, 0, 7);
    EXPECT_TRUE(figure->isOnFloor());
}

// Thighs forward by a right angle, shanks down again: 40 + 8 cm are left, the feet 40 cm in front.
TEST_F(Standing, BentLegsLowerThePelvis)
{
    for (int side = 0; side < 2; ++side) {
        bend(thigh[side], -90);
        bend(shank[side], 90);
    }
    expectPosition(pelvis->getGlobalTransform(), 5, 48, 7);
    expectPosition(heel[qcLeft]->getGlobalTransform(), 15, 0, 47);
}

TEST_F(Standing, TheLowerFootStandsWhenOneLegIsBent)
{
    bend(thigh[qcRight], -90);
    bend(shank[qcRight], 90);
    expectPosition(pelvis->getGlobalTransform(), 5, 88, 7);
    expectPosition(heel[qcLeft]->getGlobalTransform(), 15, 0, 7);
    expectPosition(heel[qcRight]->getGlobalTransform(), -5, 40, 47);
}

// Toes turned down by a right angle about x: their tip, (0, -2, 5) from their joint, goes to (0, -5, -2);
// the joint is 6 cm below the ankle, so the tip is 11 cm below it and the heel, at 8, in the air.
TEST_F(Standing, WhatHangsOnTheFootMayTouchTheFloorFirst)
{
    for (int side = 0; side < 2; ++side)
        bend(toes[side], 90);
    expectPosition(pelvis->getGlobalTransform(), 5, 80 + 11, 7);
    expectPosition(tip[qcLeft]->getGlobalTransform(), 15, 0, 7 + 15 - 2);
    expectPosition(heel[qcLeft]->getGlobalTransform(), 15, 3, 7);
}

TEST_F(Standing, KeepsTheHeightThatWasSetAndGivesItBack)
{
    double position[3], degrees[3];
    figure->getRoot(position, degrees);
    EXPECT_THAT(position, ElementsAre(5, 1000, 7));
    figure->setRoot(5, 1000, 7, 0, 0, 0);
    EXPECT_FALSE(figure->isOnFloor());
    expectPosition(pelvis->getGlobalTransform(), 5, 1000, 7);
}

// Head down: the legs point up and the pelvis is below the floor. The lowest sites on the
// feet are then the ankles' (the feet's proximal sites), 80 cm above the pelvis.
TEST_F(Standing, FollowsTheRootsTurn)
{
    figure->setRoot(5, 0, 7, 0, 0, 180);
    figure->standOnFloor();
    expectPosition(pelvis->getGlobalTransform(), 5, -80, 7);
    expectPosition(foot[qcLeft].proximal->getGlobalTransform(), -5, 0, 7);
}

// Without feet every site counts but the reference site, which lies inside the body.
TEST(StandingWithoutFeet, TheLowestSiteStands)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder, "root", 1000, {0, -100, 0});
    qcSiteImp* high = addPlacedSite(builder, root, "high", {{0, 3, 0}, kNoRotation});
    addPlacedSite(builder, root, "low", {{0, -4, 0}, kNoRotation});
    builder.setReferenceSite(addPlacedSite(builder, root, "balance_point", {{0, -50, 0}, kNoRotation}));
    const auto figure = builder.finishMoving();
    figure->standOnFloor();
    expectPosition(high->getGlobalTransform(), 0, 7, 0);
}

TEST(StandingWithoutFeet, AFigureWithoutSitesStaysWhereItIs)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    const auto figure = builder.finishMoving();
    figure->setRoot(1, 2, 3, 0, 0, 0);
    figure->standOnFloor();
    expectPosition(root->getGlobalTransform(), 1, 2, 3);
}

namespace {

// A trunk of 3 kg at the root and a weight of 1 kg whose centre is 8 cm along x from its joint.
class Balance : public ::testing::Test {
protected:
    Balance()
    {
        FigureBuilder builder("f");
        trunk = addRoot(builder, "trunk", 3000, {0, 4, 0});
        weight = hang(builder, trunk, "weight", {stepAt({0, 20, 0}, 1, {0, 0, 1})}, 1000, {8, 0, 0});
        light = hang(builder, trunk, "light", {stepAt({50, 50, 50}, 1, {0, 0, 1})}, -1000, {8, 0, 0});
        point = addPlacedSite(builder, trunk, "balance_point", {{9, 9, 9}, kQuarterAboutZ});
        builder.setReferenceSite(point);
        figure = builder.finishMoving();
    }

    void expectPoint(double x, double y, double z)
    {
        expectPosition(point->getGlobalTransform(), x, y, z);
        EXPECT_EQ(components(figure->getBodyCenterOfMass()), components(point->getGlobalTransform().getTranslation()));
    }

    qcSegmentImp* trunk;
    Hung weight, light;
    qcSiteImp* point;
    std::unique_ptr<qcFigure> figure;
};

}   // namespace

// (3·(0, 4, 0) + 1·(8, 20, 0)) / 4 = (2, 8, 0); the segment of negative mass counts nothing
TEST_F(Balance, TheReferenceSiteIsAtTheBodysCenterOfMass)
{
    expectPoint(2, 8, 0);
    EXPECT_NEAR(point->getGlobalTransform().m[0][1], 1, roundingBound(1, 1));   // its axes are as placed
}

// The weight's centre goes to (0, 28, 0): (3·4 + 28) / 4 = 10
TEST_F(Balance, FollowsThePosture)
{
    weight.joint->setAngle(1, kRightAngle);
    expectPoint(0, 10, 0);
    weight.joint->setAngle(1, 0);
    trunk->getGlobalTransform();   // another part, asked first, does not use the change up
    expectPoint(2, 8, 0);
    figure->setRoot(100, 0, 0, 0, 0, 0);
    expectPoint(102, 8, 0);
}

// (3·(0, 4, 0) + 3·(8, 20, 0)) / 6 = (4, 12, 0)
TEST_F(Balance, FollowsTheMasses)
{
    expectPoint(2, 8, 0);
    weight.segment->setMass(3000);
    expectPoint(4, 12, 0);
    weight.segment->setMass(0);
    expectPoint(0, 4, 0);
    EXPECT_EQ(figure->getBodyMass(), 3000);
}

TEST_F(Balance, WithoutAnyWeightIsAtTheRootsOrigin)
{
    trunk->setMass(0);
    weight.segment->setMass(-1);
    figure->setRoot(1, 2, 3, 0, 0, 90);
    expectPoint(1, 2, 3);
    EXPECT_EQ(figure->getBodyMass(), 0);
}

// Parts are listed in the order in which they are added, the root is the part without a parent.
TEST(BalanceOfOtherOrders, TheRootNeedNotBeTheFirstSegmentOfTheList)
{
    FigureBuilder builder("f");
    qcSegmentImp* child = builder.addSegment("child", 0, {});
    qcSegmentImp* root = builder.addSegment("root", 0, {});
    builder.place(root, nullptr, nullptr, {});
    builder.place(child, root, nullptr, {stepAt({0, 10, 0}, 0, {})});
    const auto figure = builder.finishMoving();
    figure->setRoot(1, 2, 3, 0, 0, 0);
    EXPECT_THAT(components(figure->getBodyCenterOfMass()), ElementsAre(1, 2, 3));
}

TEST(PosedFigure, KeepsItsTransformsWhateverIsSet)
{
    FigureBuilder builder("f");
    qcSegmentImp* body = builder.addSegment("body", 1000, {1, 0, 0});
    qcSiteImp* site = builder.addSite(body, "site");
    qcJointImp* joint = builder.addJoint("joint", "", site, site, site);
    FigureBuilder::addAngle(joint, "", 0.5);
    qMatrix transform, siteTransform, second;
    transform.setTranslation({1, 2, 3});
    siteTransform.setTranslation({4, 5, 6});
    second.setTranslation({7, 8, 9});
    FigureBuilder::setTransform(body, transform);
    FigureBuilder::setTransforms(site, siteTransform, second);
    builder.setReferenceSite(site);
    const auto figure = builder.finishPosed();

    EXPECT_TRUE(figure->isPosed());
    EXPECT_EQ(joint->setAngle(1, 1.5), 1);
    EXPECT_EQ(figure->setRoot(10, 20, 30, 40, 50, 60), 1);
    figure->standOnFloor();
    EXPECT_EQ(joint->getAngle(1), 1.5f);
    EXPECT_THAT(components(body->getGlobalTransform().getTranslation()), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(site->getGlobalTransform().getTranslation()), ElementsAre(4, 5, 6));
    EXPECT_THAT(components(site->getSecondTransform().getTranslation()), ElementsAre(7, 8, 9));
    EXPECT_THAT(components(figure->getBodyCenterOfMass()), ElementsAre(2, 2, 3));
}

// A second way to the same positions: every step a whole 4×4 matrix in double precision, multiplied out
// from the tip to the world; turns about an axis by the two-reflections rule instead of Rodrigues' formula.
namespace naive {

using Matrix = std::array<std::array<double, 4>, 4>;

Matrix identity()
{
    Matrix m{};
    for (std::size_t i = 0; i < 4; ++i)
        m[i][i] = 1;
    return m;
}

Matrix times(const Matrix& a, const Matrix& b)
{
    Matrix product{};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t k = 0; k < 4; ++k)
                product[i][j] += a[i][k] * b[k][j];
    return product;
}

Matrix placement(const Placement& at)
{
    Matrix m = identity();
    for (std::size_t i = 0; i < 3; ++i) {
        m[3][i] = at.offset[i];
        for (std::size_t j = 0; j < 3; ++j)
            m[i][j] = at.rotation[3 * i + j];
    }
    return m;
}

// Reflection in the plane through the origin across `n`: I - 2 n nᵀ
Matrix reflection(const Point& n)
{
    Matrix m = identity();
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            m[i][j] -= 2 * n[i] * n[j];
    return m;
}

// A turn by an angle about a unit axis is a reflection across a, then across b, both square to the axis,
// where b is a turned by half the angle: b = cos · a + sin · (axis × a)
Matrix turn(const Point& axis, double angle)
{
    const std::size_t smallest = std::fabs(axis[0]) < 0.6 ? 0 : 1;   // not near the axis
    Point a{0, 0, 0};
    a[smallest] = 1;
    double length = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        a[i] -= axis[smallest] * axis[i];
        length += a[i] * a[i];
    }
    for (double& component : a)
        component /= std::sqrt(length);
    Point b;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        b[i] = std::cos(angle / 2) * a[i] + std::sin(angle / 2) * (axis[j] * a[k] - axis[k] * a[j]);
    }
    return times(reflection(a), reflection(b));
}

Matrix root(const double (&numbers)[6])
{
    Matrix m = identity();
    for (std::size_t k = 0; k < 3; ++k) {
        Point axis{0, 0, 0};
        axis[k] = 1;
        m = times(m, turn(axis, numbers[3 + k] * kPi / 180));
    }
    for (std::size_t i = 0; i < 3; ++i)
        m[3][i] = numbers[i];
    return m;
}

}   // namespace naive

// Each number is computed in double precision in both ways, whose difference is below 1e-12 of the sizes
// here, and narrowed once: it errs by at most 2^-24 of the number, and that by at most 2^-24 of the sum of
// all lengths of the chain (1, for the axes). The bound is 2^-23 of these.
TEST(PostureLaw, RandomChainsAgreeWithMatricesMultipliedOut)
{
    std::mt19937 random(20240612);
    std::uniform_real_distribution<double> length(-50, 50), angle(-7, 7), unit(-1, 1), mass(-100, 1000);
    const auto point = [&] { return Point{length(random), length(random), length(random)}; };
    const auto axis = [&] {
        Point a{0, 0, 0};
        if (random() % 2) {   // half of them along a coordinate axis
            a[random() % 3] = random() % 2 ? 1 : -1;
            return a;
        }
        a = {unit(random), unit(random), unit(random) + 2};
        const double size = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
        return Point{a[0] / size, a[1] / size, a[2] / size};
    };
    const auto rotation = [&] {
        if (random() % 2)
            return kNoRotation;
        const naive::Matrix m = naive::turn(axis(), angle(random));
        return Rotation{m[0][0], m[0][1], m[0][2], m[1][0], m[1][1], m[1][2], m[2][0], m[2][1], m[2][2]};
    };

    for (int round = 0; round < 300; ++round) {
        FigureBuilder builder("f");
        std::vector<qcSegmentImp*> segments{addRoot(builder, "root", 500, {1, 2, 3})};
        std::vector<qcSiteImp*> tips;
        std::vector<Placement> tipPlacements;
        std::vector<std::size_t> parents{0};
        std::vector<std::vector<Step>> steps{{}};
        std::vector<qcJointImp*> joints{nullptr};
        const auto addTip = [&](qcSegmentImp* segment) {
            tipPlacements.push_back({point(), rotation()});
            tips.push_back(addPlacedSite(builder, segment, "tip", tipPlacements.back()));
        };
        addTip(segments[0]);
        for (int n = 1; n < 8; ++n) {
            parents.push_back(random() % segments.size());
            std::vector<Step> chain(random() % 4);
            int number = 0;
            for (Step& step : chain)
                step = {{point(), rotation()}, random() % 4 ? ++number : 0, axis()};
            const qVector center(static_cast<float>(length(random)), static_cast<float>(length(random)),
                                 static_cast<float>(length(random)));
            const Hung hung = hang(builder, segments[parents.back()], std::to_string(n), chain,
                                   static_cast<float>(mass(random)), center);
            segments.push_back(hung.segment);
            joints.push_back(hung.joint);
            steps.push_back(chain);
            addTip(hung.segment);
        }
        qcSiteImp* balance = addPlacedSite(builder, segments[0], "balance_point", {});
        builder.setReferenceSite(balance);
        const auto figure = builder.finishMoving();

        for (int posture = 0; posture < 3; ++posture) {
            const double root[6] = {length(random),     length(random),     length(random),
                                    30 * angle(random), 30 * angle(random), 30 * angle(random)};
            ASSERT_EQ(figure->setRoot(root[0], root[1], root[2], root[3], root[4], root[5]), 1);
            std::vector<naive::Matrix> expected{naive::root(root)};
            std::vector<double> reach{std::fabs(root[0]) + std::fabs(root[1]) + std::fabs(root[2])};
            const auto sizeOf = [](const Point& p) { return std::fabs(p[0]) + std::fabs(p[1]) + std::fabs(p[2]); };
            for (std::size_t i = 1; i < segments.size(); ++i) {
                naive::Matrix m = expected[parents[i]];
                double size = reach[parents[i]];
                for (const Step& step : steps[i]) {
                    m = naive::times(naive::placement(step.placement), m);
                    size += sizeOf(step.placement.offset);
                    if (step.angle == 0)
                        continue;
                    const double value = angle(random);
                    ASSERT_EQ(joints[i]->setAngle(step.angle, value), 1);
                    m = naive::times(naive::turn(step.axis, value), m);
                }
                expected.push_back(m);
                reach.push_back(size);
            }

            double bodyMass = 0, largestReach = 0;
            Point center{0, 0, 0};
            for (std::size_t i = 0; i < segments.size(); ++i) {
                const naive::Matrix tip = naive::times(naive::placement(tipPlacements[i]), expected[i]);
                const double tipReach = reach[i] + sizeOf(tipPlacements[i].offset);
                const qVector c = segments[i]->getCenterOfMass();
                const double weight = std::max(0.0, double(segments[i]->getMass()));
                bodyMass += weight;
                largestReach = std::max(largestReach, reach[i] + std::fabs(double(c[0])) + std::fabs(double(c[1]))
                                                          + std::fabs(double(c[2])));
                for (std::size_t j = 0; j < 3; ++j) {
                    center[j] += weight
                                 * (double(c[0]) * expected[i][0][j] + double(c[1]) * expected[i][1][j]
                                    + double(c[2]) * expected[i][2][j] + expected[i][3][j]);
                    for (std::size_t row = 0; row < 4; ++row) {
                        EXPECT_NEAR(double(segments[i]->getGlobalTransform().m[row][j]), expected[i][row][j],
                                    roundingBound(1, row == 3 ? reach[i] : 1));
                        EXPECT_NEAR(double(tips[i]->getGlobalTransform().m[row][j]), tip[row][j],
                                    roundingBound(1, row == 3 ? tipReach : 1));
                    }
                }
            }
            // the centre is formed from the narrowed transforms and narrowed itself: twice 2^-24 of the reach
            for (std::size_t j = 0; j < 3; ++j)
                EXPECT_NEAR(double(balance->getGlobalTransform().m[3][j]), center[j] / bodyMass,
                            roundingBound(1, largestReach));
            ASSERT_FALSE(HasFailure()) << "round " << round << ", posture " << posture;
        }
    }
}
