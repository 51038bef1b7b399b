// Joint forces: what a walk sums up at a joint, and what it leaves on the joints.
#include "WalkFixture.h"

#include "DecimalComma.h"
#include "LargeFigures.h"
#include "NumberText.h"

#include <cmath>
#include <limits>

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

// ---- One force about one joint ------------------------------------------------------------------

class CalcForcesAt : public JointForces {
protected:
    void SetUp() override { load(onePart(0)); }
};

// 2 kgf straight down, 30 cm to the left of the joint:
//   (30, 0, 0) cm × (0, -2, 0) kgf = (0, 0, -60) kgf·cm = (0, 0, -5.88399) N·m
TEST_F(CalcForcesAt, LoadToTheLeftTurnsTheJointAboutTheForwardAxis)
{
    qVector joint(0, 100, 0), point(30, 100, 0), load(0, -2, 0), force, moment;
    analysis->calcForcesAt(joint, point, load, force, moment);
    EXPECT_THAT(components(force), ElementsAre(0, -2, 0));
    EXPECT_THAT(components(moment), ElementsAre(0, 0, FloatEq(-5.88399f)));   // two roundings: scale, product
}

// A lever of 10 cm along axis i and a force of 2 kgf along axis j turn about the third axis k, by
// +20 kgf·cm when i, j, k follow one another and by -20 kgf·cm the other way round; not at all for i = j.
TEST_F(CalcForcesAt, EveryLeverAndForceAlongTheAxesTurnsByTheRightHandRule)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            qVector joint(1, 2, 3), point = joint, load, force, moment;
            point[i] += 10;
            load[j] = 2;
            analysis->calcForcesAt(joint, point, load, force, moment);
            std::array<float, 3> expected{};
            if (i != j)
                expected[static_cast<std::size_t>(3 - i - j)] = ((j - i + 3) % 3 == 1 ? 20.0f : -20.0f) * 0.0980665f;
            EXPECT_EQ(components(force), components(load));
            EXPECT_THAT(components(moment),
                        ElementsAre(FloatEq(expected[0]), FloatEq(expected[1]), FloatEq(expected[2])))
                << "lever " << i << " force " << j;
        }
}

TEST_F(CalcForcesAt, AddsToTheSumsAndLeavesWhatItIsGiven)
{
    qVector joint(0, 0, 0), point(10, 0, 0), load(0, 1, 0), force(1, 2, 3), moment(4, 5, 6);
    analysis->calcForcesAt(joint, point, load, force, moment);
    EXPECT_THAT(components(force), ElementsAre(1, 3, 3));
    EXPECT_THAT(components(moment), ElementsAre(4, 5, FloatEq(6.980665f)));
    EXPECT_THAT(components(joint), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(point), ElementsAre(10, 0, 0));
    EXPECT_THAT(components(load), ElementsAre(0, 1, 0));
}

// Every step in single precision, the scale narrowed once from the product in double.
TEST_F(CalcForcesAt, EveryStepIsRoundedToSinglePrecision)
{
    const float scale = static_cast<float>(double(980.665f) * 0.0001);
    qVector joint(0.1f, 17.3f, -3.7f), point(33.3f, -0.7f, 12.9f), load(1.7f, -23.1f, 0.3f), force(0.1f, 0.2f, 0.3f),
        moment(0.7f, -0.9f, 1.1f);
    const float r[3] = {joint[0] - point[0], joint[1] - point[1], joint[2] - point[2]};
    qVector expected = moment;
    for (int k = 0; k < 3; ++k) {
        const int i = (k + 1) % 3, j = (k + 2) % 3;
        const float first = load[i] * r[j], second = load[j] * r[i];
        const float crossed = first - second;
        const float scaled = crossed * scale;
        expected[k] = expected[k] + scaled;
    }
    analysis->calcForcesAt(joint, point, load, force, moment);
    EXPECT_EQ(bits(moment), bits(expected));
    EXPECT_EQ(bits(force), bits(qVector(0.1f + 1.7f, 0.2f + -23.1f, 0.3f + 0.3f)));
}

// ---- A joint's result ---------------------------------------------------------------------------

class JointResult : public JointForces {
protected:
    void SetUp() override { load(onePart(0)); }

    void storeList(std::initializer_list<qcValue> elements)
    {
        qcValue* first = nullptr;
        qcValue** end = &first;
        for (const qcValue& element : elements) {
            *end = new qcValue(element);
            end = &(*end)->next;
        }
        qcValue list;
        list.setList(first);
        joint("j")->setProperty("SSTR_Force_Moment", list);
    }
    static qcValue vectorValue(float x, float y, float z)
    {
        const qVector vector(x, y, z);
        qcValue value;
        value.set(&vector);
        return value;
    }
    // Reads the result into sums that hold (7, 7, 7) and (8, 8, 8).
    Sums read(qcJoint* from) const
    {
        Sums sums{-1, {7, 7, 7}, {8, 8, 8}};
        sums.status = analysis->getJointForces(from, sums.force, sums.moment);
        return sums;
    }
    void expectUntouched() const
    {
        const Sums sums = read(joint("j"));
        EXPECT_EQ(sums.status, 0);
        EXPECT_THAT(components(sums.force), ElementsAre(7, 7, 7));
        EXPECT_THAT(components(sums.moment), ElementsAre(8, 8, 8));
    }
};

TEST_F(JointResult, IsAListOfTwoVectorsForceThenMoment)
{
    analysis->setFMonJoint(joint("j"), qVector(1, 2, 3), qVector(4, 5, 6));
    qcValue value;
    ASSERT_EQ(joint("j")->getProperty("SSTR_Force_Moment", &value), 1);
    ASSERT_EQ(value.kind, 9);
    const qcValue* force = value.firstElement();
    ASSERT_NE(force, nullptr);
    const qcValue* moment = force->next;
    ASSERT_NE(moment, nullptr);
    EXPECT_EQ(moment->next, nullptr);
    qVector vector, *out = &vector;
    ASSERT_EQ(force->get(out), 1);
    EXPECT_THAT(components(vector), ElementsAre(1, 2, 3));
    ASSERT_EQ(moment->get(out), 1);
    EXPECT_THAT(components(vector), ElementsAre(4, 5, 6));

    const Sums sums = read(joint("j"));
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(sums.moment), ElementsAre(4, 5, 6));
}

TEST_F(JointResult, IsStoredByHandWhateverItsSize)
{
    analysis->setFMonJoint(joint("j"), qVector(), qVector());
    const Sums sums = read(joint("j"));
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));

    analysis->setFMonJoint(joint("j"), qVector(0, 5, 0), qVector(0, 0.005f, 0));
    EXPECT_THAT(components(read(joint("j")).moment), ElementsAre(0, 0.005f, 0));
}

TEST_F(JointResult, IsStoredOnNoJointWithoutAWord)
{
    analysis->setFMonJoint(nullptr, qVector(1, 2, 3), qVector(4, 5, 6));
}

TEST_F(JointResult, OfNoJointIsZero)
{
    const Sums sums = read(nullptr);
    EXPECT_EQ(sums.status, 0);
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));
}

TEST_F(JointResult, ThatIsNotThereIsZero)
{
    const Sums sums = read(joint("j"));
    EXPECT_EQ(sums.status, 0);
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));
}

TEST_F(JointResult, OfAnotherShapeLeavesBothOutputsAsTheyWere)
{
    for (const qcValue& value : {qcValue(), qcValue(1.0f), qcValue("text"), vectorValue(1, 2, 3)}) {
        joint("j")->setProperty("SSTR_Force_Moment", value);
        expectUntouched();
    }
    storeList({});
    expectUntouched();
    storeList({vectorValue(1, 2, 3)});
    expectUntouched();
    storeList({vectorValue(1, 2, 3), qcValue("moment")});
    expectUntouched();
    storeList({qcValue(1.0f), vectorValue(1, 2, 3)});
    expectUntouched();
}

// Only the first two elements are the result.
TEST_F(JointResult, WithFurtherElementsReadsAllTheSame)
{
    storeList({vectorValue(1, 2, 3), vectorValue(4, 5, 6), qcValue("more")});
    const Sums sums = read(joint("j"));
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(sums.moment), ElementsAre(4, 5, 6));
}

// ---- The walk -----------------------------------------------------------------------------------

// About b, at (20, 0, 0):
//   weight (0, -2, 0) kgf at (20, 0, 5):    (0, 0, 5) × (0, -2, 0) = (10, 0, 0) kgf·cm
//   load (1, 2, 3) kgf at (20, 0, 10):      (0, 0, 10) × (1, 2, 3) = (-20, 10, 0) kgf·cm
//   torque                                  (1, 2, 4) N·m
//   force (1, 0, 3) kgf                     moment (-10, 10, 0) · 0.0980665 + (1, 2, 4) N·m
// About a, at the origin:
//   the force of b at (20, 0, 0):           (20, 0, 0) × (1, 0, 3) = (0, -60, 0) kgf·cm, and b's moment
//   weight (0, -5, 0) kgf at (10, 0, 0):    (0, 0, -50) kgf·cm
//   torque                                  (0.5, 0.25, 0.125) N·m
//   force (1, -5, 3) kgf                    moment (-10, -50, -50) · 0.0980665 + (1.5, 2.25, 4.125) N·m
TEST_F(Walk, TwoLinksByHandAboutEveryAxis)
{
    load(twoLinks());
    analysis->setLoad(site("link2.tip"), qVector(1, 2, 3));
    qVector torqueB(1, 2, 4), torqueA(0.5f, 0.25f, 0.125f);
    analysis->setDefinedTorque(joint("a"), torqueA);
    analysis->setDefinedTorque(joint("b"), torqueB);

    const Sums sums = walk("a", "base.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(FloatEq(1), FloatEq(-5), FloatEq(3)));
    // 7 terms; the largest components' magnitudes add up to 80 kgf·cm and 7 N·m
    const double bound = roundingBound(7, 80 * kNm + 7);
    expectNear(sums.moment, {-10 * kNm + 1.5, -50 * kNm + 2.25, -50 * kNm + 4.125}, bound);

    const Result b = resultOf("b");
    EXPECT_EQ(b.status, 1);
    EXPECT_THAT(components(b.force), ElementsAre(FloatEq(1), FloatEq(0), FloatEq(3)));
    expectNear(b.moment, {-10 * kNm + 1, 10 * kNm + 2, 4}, bound);

    const Result a = resultOf("a");
    EXPECT_EQ(a.status, 1);
    EXPECT_EQ(bits(a.force), bits(sums.force));
    EXPECT_EQ(bits(a.moment), bits(sums.moment));
}

// The whole case turned so that each axis moves on to the next: every number moves with it, to the bit,
// since each component is formed by the same products.
TEST_F(Walk, TurningEverythingTurnsTheResults)
{
    std::array<std::uint32_t, 3> force{}, moment{};
    for (int turn = 0; turn < 3; ++turn) {
        load(twoLinks(turn));
        const auto turned = [turn](qVector v) {
            for (int i = 0; i < turn; ++i)
                v.set(v[2], v[0], v[1]);
            return v;
        };
        const auto back = [turn](std::array<std::uint32_t, 3> v) {
            for (int i = 0; i < turn; ++i)
                v = {v[1], v[2], v[0]};
            return v;
        };
        analysis->setGravity(turned(qVector(0, -980.665f, 0)));
        analysis->setLoad(site("link2.tip"), turned(qVector(1.5f, 2.5f, 3.5f)));
        analysis->setLoad(site("link1.out"), qVector(-1.5f, 0.5f, 2.25f), 1);
        analysis->setLoadWithOffset(site("link2.in"), turned(qVector(3, 1, -2)), turned(qVector(0.3f, -4, 1)));
        const Sums sums = walk("a", "base.out");
        EXPECT_EQ(sums.status, 1);
        if (turn == 0) {
            force = bits(sums.force);
            moment = bits(sums.moment);
            continue;
        }
        EXPECT_EQ(back(bits(sums.force)), force) << "turn " << turn;
        EXPECT_EQ(back(bits(sums.moment)), moment) << "turn " << turn;
    }
}

// From the other end: through link2's site into link1 and the base.
//   about b, at (20, 0, 0): base 1 kgf at (0, 0, 0), link1 5 kgf at (10, 0, 0)
//   joint a, at the origin: base alone, no moment
//   moment: (-20, 0, 0) × (0, -1, 0) + (-10, 0, 0) × (0, -5, 0) = (0, 0, 20 + 50) kgf·cm
//   and a's placeholder moment comes along
TEST_F(Walk, GoesAwayFromTheSiteThatItIsGiven)
{
    load(twoLinks());
    const Sums sums = walk("b", "link2.in");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-6), 0));
    expectNear(sums.moment, {1e-5, 1e-5, 70 * kNm + 1e-5}, roundingBound(4, 70 * kNm));
    EXPECT_THAT(components(resultOf("a").force), ElementsAre(0, FloatEq(-1), 0));
}

// A limb of five segments of 1 kg, 2 kg, … 5 kg: the force at a joint is the weight of all beyond it.
TEST_F(Walk, LimbLeavesTheWeightBeyondAtEveryJoint)
{
    SmallFigure limb;
    limb.segment("s0", 100).site("s0", "out", {0, 0, 0});
    for (int i = 1; i <= 5; ++i) {
        const std::string name = "s" + std::to_string(i);
        limb.segment(name, 1000 * i, {0, -1, 0}, {0, -2.0 * i, 0})
            .site(name, "in", {0, -2.0 * i, 0})
            .site(name, "out", {0, -2.0 * i - 2, 0})
            .joint("j" + std::to_string(i), "s" + std::to_string(i - 1) + ".out", name + ".in");
    }
    load(limb);
    const Sums sums = walk("j1", "s0.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-15), 0));
    const float beyond[] = {-15, -14, -12, -9, -5};   // kgf: 5 + 4 + 3 + 2 + 1 less those before
    for (int i = 1; i <= 5; ++i) {
        const Result result = resultOf("j" + std::to_string(i));
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(components(result.force), ElementsAre(0, FloatEq(beyond[i - 1]), 0)) << "joint " << i;
    }
}

// ---- What the walk refuses

TEST_F(Walk, WithoutAJointOrASiteIsReportedAndTouchesNothing)
{
    load(twoLinks());
    joint("a")->setProperty("SSTR_Force_Moment", qcValue("as it was"));
    const auto expectRefused = [&](qcJoint* from, qcSite* through, const char* message) {
        const Sums sums = walk(from, through, nullptr, 0, qVector(1, 2, 3), qVector(4, 5, 6));
        EXPECT_EQ(sums.status, 0);
        EXPECT_THAT(components(sums.force), ElementsAre(1, 2, 3));
        EXPECT_THAT(components(sums.moment), ElementsAre(4, 5, 6));
        const std::vector<MessageLog::Message> messages = log.take();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].kind, qcError);
        EXPECT_EQ(messages[0].text, message);
    };
    expectRefused(nullptr, site("link1.in"), "StaticStrength ERROR: joint ??? site man.link1.in\n");
    expectRefused(joint("a"), nullptr, "StaticStrength ERROR: joint a site ???\n");
    expectRefused(nullptr, nullptr, "StaticStrength ERROR: joint ??? site ???\n");
    qcValue value;
    ASSERT_EQ(joint("a")->getProperty("SSTR_Force_Moment", &value), 1);
    EXPECT_EQ(value.kind, 7);
    EXPECT_FALSE(hasResult("b"));
}

// A site that is none of the joint's has no other side.
TEST_F(Walk, FromASiteOfAnotherJointIsReportedAndTouchesNothing)
{
    load(twoLinks());
    const Sums sums = walk("a", "link2.in", "", 0, qVector(1, 2, 3), qVector(4, 5, 6));
    EXPECT_EQ(sums.status, 0);
    EXPECT_THAT(components(sums.force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(sums.moment), ElementsAre(4, 5, 6));
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint a site man.link2.in\n"));
    EXPECT_FALSE(hasResult("a"));
}

// The refusal tells a joint by its name, not its full name.
TEST_F(Walk, RefusalTellsTheJointByItsBareName)
{
    SmallFigure figure = onePart(0);
    figure.joint("other", "base.out", "part.tip", {}, "man.long.name.of.other");
    load(figure);
    EXPECT_EQ(walk("other", "").status, 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint other site ???\n"));
}

// link1 has a third site whose list holds, after a joint that belongs there, one that does not lie at it.
// The joint before it is done, the one after it is not; each level on the way back is told. The force
// gathered so far stays in the output: link2's 2 kgf and the first branch's 3 kgf.
class FailingSubtree : public Walk {
protected:
    void SetUp() override
    {
        SmallFigure figure = twoLinks();
        figure.segment("root", 1000)
            .site("root", "out", {0, 0, 0})
            .site("base", "in", {0, 0, 0})
            .joint("r", "root.out", "base.in", {}, "man.the root")
            .site("link1", "branches", {20, 0, 0});
        for (const char* name : {"before", "after"})
            figure.segment(name, 3000, {0, 0, 0}, {20, 0, 0}).site(name, "in", {20, 0, 0});
        figure.segment("far1", 7000).site("far1", "s", {0, 0, 0}).segment("far2", 7000).site("far2", "s", {0, 0, 0});
        figure.joint("j_before", "link1.branches", "before.in")
            .joint("stray", "far1.s", "far2.s", {}, "man.the stray")
            .joint("j_after", "link1.branches", "after.in");
        for (nlohmann::json& site : figure.document()["sites"])
            if (site["key"] == "link1.branches")
                site["joints"] = {"j_before", "man.the stray", "j_after"};
        load(figure);
        for (const char* name : {"r", "a", "b", "j_before", "stray", "j_after"})
            analysis->setFMonJoint(joint(name), qVector(9, 9, 9), qVector(9, 9, 9));
    }
};

TEST_F(FailingSubtree, IsToldAtEveryLevelFromTheInside)
{
    EXPECT_EQ(walk("r", "root.out").status, 0);
    expectErrors({"StaticStrength ERROR: joint stray site man.link1.branches\n",
                  "StaticStrength ERROR: failed on man.the stray", "StaticStrength ERROR: failed on man.a"});
}

TEST_F(FailingSubtree, LeavesFinishedResultsAndTheOthersAsTheyWere)
{
    walk("r", "root.out");
    log.take();
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(resultOf("j_before").force), ElementsAre(0, FloatEq(-3), 0));
    for (const char* name : {"r", "a", "stray", "j_after"})
        EXPECT_THAT(components(resultOf(name).force), ElementsAre(9, 9, 9)) << name;
}

// About a, at the origin, both at (20, 0, 0): (20, 0, 0) × (0, -5, 0) = (0, 0, -100) kgf·cm; b's own moment
// (0, 0, 5) × (0, -2, 0) = (10, 0, 0) kgf·cm; the placeholder of the first branch.
TEST_F(FailingSubtree, LeavesWhatWasGatheredInTheOutputs)
{
    const Sums sums = walk("a", "base.out", "", 1, qVector(1, 0, 0), qVector(0, 1, 0));
    EXPECT_EQ(sums.status, 0);
    EXPECT_EQ(log.takeTexts().size(), 2u);
    EXPECT_THAT(components(sums.force), ElementsAre(1, FloatEq(-5), 0));
    expectNear(sums.moment, {10 * kNm + 1e-5, 1 + 1e-5, -100 * kNm + 1e-5}, roundingBound(6, 110 * kNm + 1));
}

// The failing joint's parent never hands its own sums on: at the root only what it had before stays.
TEST_F(FailingSubtree, GivesNothingToTheLevelAbove)
{
    const Sums sums = walk("r", "root.out", "", 1, qVector(1, 2, 3), qVector(4, 5, 6));
    log.take();
    EXPECT_EQ(sums.status, 0);
    EXPECT_THAT(components(sums.force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(sums.moment), ElementsAre(4, 5, 6));
}

// Without accumulation the root's outputs were set to zero before the subtree failed.
TEST_F(FailingSubtree, LeavesZeroWhereNothingWasGathered)
{
    const Sums sums = walk("r", "root.out", "", 0, qVector(1, 2, 3), qVector(4, 5, 6));
    log.take();
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));
}

// ---- Torques

// A torque is a moment at its own joint and comes along unchanged to the joints before it.
TEST_F(Walk, TorqueIsAddedAsItStandsAndCarriedOn)
{
    SmallFigure figure = twoLinks();
    for (nlohmann::json& segment : figure.document()["segments"])
        segment["mass"] = 0;
    load(figure);
    qVector torque(1, -2, 3);
    analysis->setDefinedTorque(joint("b"), torque);
    const Sums sums = walk("a", "base.out");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(1, -2, 3));
    EXPECT_THAT(components(resultOf("b").moment), ElementsAre(1, -2, 3));
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(0, 0, 0));
}

TEST_F(Walk, TorqueThatCannotBeReadIsPassedOverInSilence)
{
    load(onePart(2000));
    joint("j")->setProperty("SSTR_Torque", qcValue("strong"));
    const Sums sums = walk("j", "base.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(kPlaceholder, kPlaceholder, kPlaceholder));
}

TEST_F(Walk, TorqueOfTheFirstJointIsAddedWhenAccumulatingToo)
{
    load(onePart(0));
    qVector torque(1, 2, 3);
    analysis->setDefinedTorque(joint("j"), torque);
    const Sums sums = walk("j", "base.out", "", 1, qVector(), qVector(10, 10, 10));
    EXPECT_THAT(components(sums.moment), ElementsAre(11, 12, 13));
}

// ---- Accumulation

TEST_F(Walk, WithoutAccumulationStartsFromZero)
{
    load(onePart(2000));
    const Sums sums = walk("j", "base.out", "", 0, qVector(100, 100, 100), qVector(100, 100, 100));
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(kPlaceholder, kPlaceholder, kPlaceholder));
}

TEST_F(Walk, WithAccumulationAddsToWhatItIsGivenAndStoresTheSum)
{
    load(onePart(2000));
    const Sums sums = walk("j", "base.out", "", 5, qVector(100, 100, 100), qVector(200, 300, 400));
    EXPECT_THAT(components(sums.force), ElementsAre(100, FloatEq(98), 100));
    EXPECT_THAT(components(sums.moment), ElementsAre(200, 300, 400));
    EXPECT_EQ(bits(resultOf("j").force), bits(sums.force));
    EXPECT_EQ(bits(resultOf("j").moment), bits(sums.moment));
}

// Joints further on start from zero whatever the first one does.
TEST_F(Walk, AccumulatesAtTheFirstJointOnly)
{
    load(twoLinks());
    walk("a", "base.out", "", 1, qVector(100, 0, 0), qVector(0, 100, 0));
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(resultOf("b").moment), ElementsAre(FloatEq(float(10 * kNm)), 0, 0));
    EXPECT_THAT(components(resultOf("a").force), ElementsAre(100, FloatEq(-7), 0));
}

// ---- Weights

TEST_F(Walk, MassOfZeroOrLessHasNoWeight)
{
    for (const double grams : {0.0, -5000.0}) {
        load(onePart(grams));
        const Sums sums = walk("j", "base.out");
        EXPECT_EQ(sums.status, 1);
        EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
        EXPECT_FALSE(hasResult("j"));
    }
}

// With the default gravity 5000 g weigh (0, -5, 0) kgf.
TEST_F(Walk, WeightPointsAlongGravity)
{
    load(onePart(5000));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, FloatEq(-5), 0));
    analysis->setGravity(qVector(980.665f, 0, 0));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(FloatEq(5), 0, 0));
    analysis->setGravity(qVector(0, 0, -490.3325f));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, FloatEq(-2.5f)));
    analysis->setGravity(qVector());
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
}

// The factor is formed in double from the single-precision mass and constant, and narrowed once.
TEST_F(Walk, WeightIsRoundedOnceInItsFactor)
{
    for (const float grams : {3333.3f, 0.7f * 1000, 12345.678f, 77.7f}) {
        load(onePart(double(grams)));
        analysis->setGravity(qVector(1.1f, -980.665f, 33.3f));
        const float factor = static_cast<float>(double(grams) * 0.001 / double(980.665f));
        const qVector expected(1.1f * factor, -980.665f * factor, 33.3f * factor);
        EXPECT_EQ(bits(walk("j", "base.out").force), bits(expected)) << grams;
    }
}

// The centre of mass stands in the segment's frame: axes turned a quarter about y (x points to -z), origin
// (1, 2, 3), centre (10, 0, 0) there: world (1, 2, -7). Weight 1 kgf down about the origin:
//   (1, 2, -7) × (0, -1, 0) = (-7, 0, -1) kgf·cm
TEST_F(Walk, CentreOfMassIsInTheSegmentsOwnFrame)
{
    SmallFigure figure;
    figure.segment("base", 0)
        .site("base", "out", {0, 0, 0})
        .segment("part", 1000, {10, 0, 0}, {1, 2, 3}, {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}})
        .site("part", "in", {50, 50, 50})
        .joint("j", "base.out", "part.in");
    load(figure);
    expectNear(walk("j", "base.out").moment, {-7 * kNm, 0, -1 * kNm}, roundingBound(4, 7 * kNm));
}

// The joint lies where the given site lies, also when its other site lies elsewhere:
//   1 kgf at (10, 0, 0) about (2, 0, 0): (8, 0, 0) × (0, -1, 0) = (0, 0, -8) kgf·cm
TEST_F(Walk, JointLiesAtTheGivenSite)
{
    SmallFigure figure;
    figure.segment("base", 0)
        .site("base", "out", {2, 0, 0})
        .segment("part", 1000, {0, 0, 0}, {10, 0, 0})
        .site("part", "in", {5, 0, 0})
        .joint("j", "base.out", "part.in");
    load(figure);
    EXPECT_THAT(components(walk("j", "base.out").moment), ElementsAre(0, 0, FloatEq(float(-8 * kNm))));
}

// A child's force acts where the site on the current segment lies, not where the child's own site lies.
//   2 kgf at (30, 0, 0), the child's site at (99, 0, 0): (0, 0, -60) kgf·cm about the origin; the weight
//   lies at (30, 0, 0) too, so that the child has no moment of its own but the placeholder, which is added
TEST_F(Walk, SubtreeActsAtTheSiteOnTheCurrentSegment)
{
    SmallFigure figure;
    figure.segment("base", 0)
        .site("base", "out", {0, 0, 0})
        .segment("part", 0)
        .site("part", "in", {0, 0, 0})
        .site("part", "out", {30, 0, 0})
        .segment("child", 2000, {0, 0, 0}, {30, 0, 0})
        .site("child", "in", {99, 0, 0})
        .joint("j", "base.out", "part.in")
        .joint("k", "part.out", "child.in");
    load(figure);
    expectNear(walk("j", "base.out").moment, {1e-5, 1e-5, -60 * kNm + 1e-5}, roundingBound(3, 60 * kNm));
}

// ---- Thresholds

TEST_F(Walk, ResultNextToNothingIsRemoved)
{
    load(onePart(0));
    for (const auto& [force, torque] :
         {std::pair<float, float>{0, 0}, {0.01f, 0}, {0, 0.01f}, {0.01f, 0.01f}, {-0.01f, -0.01f}}) {
        analysis->setFMonJoint(joint("j"), qVector(1, 1, 1), qVector(1, 1, 1));
        analysis->setLoad(site("part.in"), qVector(0, force, 0));
        qVector moment(0, 0, torque);
        analysis->setDefinedTorque(joint("j"), moment);
        const Sums sums = walk("j", "base.out");
        EXPECT_EQ(sums.status, 1);
        EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
        EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));
        EXPECT_FALSE(hasResult("j"));
        const Result result = resultOf("j");
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(components(result.force), ElementsAre(0, 0, 0));
        EXPECT_THAT(components(result.moment), ElementsAre(0, 0, 0));
    }
}

// The magnitude counts, not a component: sqrt(3) · 0.0055 = 0.00953, sqrt(3) · 0.006 = 0.0104.
TEST_F(Walk, ThresholdIsOnTheMagnitude)
{
    load(onePart(0));
    analysis->setLoad(site("part.in"), qVector(0.0055f, 0.0055f, 0.0055f));
    walk("j", "base.out");
    EXPECT_FALSE(hasResult("j"));
    analysis->setLoad(site("part.in"), qVector(0.006f, 0.006f, 0.006f));
    walk("j", "base.out");
    EXPECT_TRUE(hasResult("j"));
}

TEST_F(Walk, ForceJustAboveTheThresholdIsStoredWithThePlaceholder)
{
    load(onePart(0));
    const float above = std::nextafter(0.01f, 1.0f);
    ASSERT_GT(qVector(0, above, 0).mag(), 0.01f);
    for (const float torque : {0.0f, 0.01f}) {
        analysis->setLoad(site("part.in"), qVector(0, above, 0));
        qVector moment(0, 0, torque);
        analysis->setDefinedTorque(joint("j"), moment);
        const Sums sums = walk("j", "base.out");
        for (const auto& [force, turn] :
             {std::pair<qVector, qVector>{sums.force, sums.moment}, {resultOf("j").force, resultOf("j").moment}}) {
            EXPECT_THAT(components(force), ElementsAre(0, above, 0));
            EXPECT_THAT(components(turn), ElementsAre(kPlaceholder, kPlaceholder, kPlaceholder));
        }
    }
}

TEST_F(Walk, MomentJustAboveTheThresholdIsStoredAsItIs)
{
    load(onePart(0));
    const float above = std::nextafter(0.01f, 1.0f);
    ASSERT_GT(qVector(0, 0, above).mag(), 0.01f);
    qVector moment(0, 0, above);
    analysis->setDefinedTorque(joint("j"), moment);
    for (const float force : {0.0f, 0.005f}) {   // a force next to nothing stays as it is too
        analysis->setLoad(site("part.in"), qVector(0, force, 0));
        const Sums sums = walk("j", "base.out");
        EXPECT_THAT(components(sums.force), ElementsAre(0, force, 0));
        EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, above));
        EXPECT_EQ(resultOf("j").status, 1);
        EXPECT_THAT(components(resultOf("j").force), ElementsAre(0, force, 0));
        EXPECT_THAT(components(resultOf("j").moment), ElementsAre(0, 0, above));
    }
}

// What is no number is not next to nothing: it is stored and shows.
TEST_F(Walk, NotANumberIsStored)
{
    load(onePart(0));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    analysis->setLoad(site("part.tip"), qVector(nan, 0, 0));
    EXPECT_EQ(walk("j", "base.out").status, 1);
    const Result result = resultOf("j");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(std::isnan(result.force[0]));
    EXPECT_TRUE(std::isnan(result.moment[1]));
}

// A subtree next to nothing is dropped there and then: ten fingers of 5 g weigh 0.005 kgf each and reach the
// hand with nothing.
TEST_F(Walk, SubtreesNextToNothingAddUpToNothing)
{
    SmallFigure figure = onePart(0);
    for (int i = 0; i < 10; ++i) {
        const std::string finger = "finger" + std::to_string(i);
        figure.segment(finger, 5)
            .site(finger, "in", {10, 0, 0})
            .joint("f" + std::to_string(i), "part.tip", finger + ".in");
    }
    load(figure);
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
    EXPECT_FALSE(hasResult("j"));
}

// ---- One segment alone

// The flag is on for any number but zero.
TEST_F(Walk, SegmentOnlyTakesNoOtherJointIntoAccount)
{
    load(twoLinks());
    analysis->setFMonJoint(joint("b"), qVector(7, 7, 7), qVector(8, 8, 8));
    analysis->setLoad(site("link1.out"), qVector(0, 0, 1));
    analysis->setLoadWithOffset(site("link1.in"), qVector(), qVector(2, 0, 0));
    analysis->setLoad(site("link2.tip"), qVector(100, 0, 0));
    qVector torque(0, 3, 0);
    analysis->setDefinedTorque(joint("a"), torque);
    for (const int flag : {1, 2, -1}) {
        SCOPED_TRACE(flag);
        segmentOnly = flag;
        const Sums sums = walk("a", "base.out");
        EXPECT_EQ(sums.status, 1);
        EXPECT_THAT(components(sums.force), ElementsAre(2, FloatEq(-5), 1));
        // (20, 0, 0) × (0, 0, 1) = (0, -20, 0) kgf·cm; the weight at (10, 0, 0): (0, 0, -50) kgf·cm
        expectNear(sums.moment, {0, 3 - 20 * kNm, -50 * kNm}, roundingBound(3, 3 + 20 * kNm + 50 * kNm));
        EXPECT_THAT(components(resultOf("b").force), ElementsAre(7, 7, 7));
        EXPECT_EQ(bits(resultOf("a").force), bits(sums.force));
    }
}

// A stop segment halves its loads and sums also when it is taken alone: (0, -10, 0) · 0.5 · 0.5 - 2.
TEST_F(Walk, SegmentOnlyDoesNotChangeTheHalving)
{
    load(onePart(2000));
    segmentOnly = 1;
    analysis->setLoad(site("part.in"), qVector(0, -10, 0));
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0, FloatEq(-4.5f), 0));
}

// A joint list that would fail is not looked at.
TEST_F(FailingSubtree, IsNotMetWhileOneSegmentIsTakenAlone)
{
    segmentOnly = 1;
    EXPECT_EQ(walk("a", "base.out").status, 1);
}

// ---- Printing

TEST_F(Walk, PrintsEveryWeightInTheOrderOfTheWalkWhenAsked)
{
    load(twoLinks());
    ::testing::internal::CaptureStdout();
    walk("a", "base.out");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    debugPrint = 1;
    ::testing::internal::CaptureStdout();
    walk("a", "base.out");
    debugPrint = 0;
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "wvec[0.000000][-2.000000][0.000000]\n"
                                                        "wvec[0.000000][-5.000000][0.000000]\n");
}

// No weight, no line; on a stop segment the line shows the whole weight.
TEST_F(Walk, PrintsNoLineForAMasslessSegment)
{
    debugPrint = 1;
    ::testing::internal::CaptureStdout();
    load(onePart(0));
    walk("j", "base.out");
    load(onePart(2000));
    walk("j", "base.out", "part");
    debugPrint = 0;
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "wvec[0.000000][-2.000000][0.000000]\n");
}

TEST(PrintVector, WritesItsLabelAsItIsAndSixDecimals)
{
    debugPrint = 2;
    ::testing::internal::CaptureStdout();
    printVector("Hip %s Moment ", qVector(1.5f, -0.25f, 1e-7f));
    debugPrint = 0;
    printVector("silent", qVector(1, 2, 3));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Hip %s Moment [1.500000][-0.250000][0.000000]\n");
}

// The lines are for programs that read them too: a point in every locale.
TEST(PrintVector, WritesADecimalPointInEveryLocale)
{
    const DecimalComma comma;
    debugPrint = 1;
    ::testing::internal::CaptureStdout();
    printVector("wvec", qVector(0, -2, 0));
    debugPrint = 0;
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "wvec[0.000000][-2.000000][0.000000]\n");
    EXPECT_TRUE(DecimalComma::inForce());   // the process keeps its locale
}

// ---- A very long chain

// Every link has one site, at which it hangs on the link before and the next one hangs on it. Written as text
// at once: the figure is large.
std::string chainText(int links, const char* mass, double dx, double dy)
{
    std::string segments, sites, joints;
    const auto matrix = [&](int i) {
        return "[[1,0,0,0],[0,1,0,0],[0,0,1,0],[" + numberText(dx * i) + "," + numberText(dy * i) + ",0,1]]";
    };
    for (int i = 0; i <= links; ++i) {
        const std::string name = "s" + std::to_string(i), place = matrix(i), comma = i ? "," : "";
        segments += comma + R"({"name":")" + name + R"(","mass":)" + mass + R"(,"com":[0,0,0],"transform":)" + place
                    + R"(,"sites":[")" + name + R"(.a"]})";
        std::string list;
        if (i > 0)
            list += "\"j" + std::to_string(i) + "\"";
        if (i < links)
            list += (i ? ",\"j" : "\"j") + std::to_string(i + 1) + "\"";
        sites += comma + R"({"key":")" + name + R"(.a","segment":")" + name + R"(","name":"a","transform":)" + place
                 + R"(,"joints":[)" + list + "]}";
        if (i > 0)
            joints += (i > 1 ? "," : "") + std::string(R"({"name":"j)") + std::to_string(i) + R"(","full_name":"c.j)"
                      + std::to_string(i) + R"(","sites":["s)" + std::to_string(i - 1) + R"(.a",")" + name
                      + R"(.a"],"inboard":"s)" + std::to_string(i - 1) + R"(.a","angles":[]})";
    }
    return R"({"name":"c","segments":[)" + segments + R"(],"sites":[)" + sites + R"(],"joints":[)" + joints + "]}";
}

// n links of 1 kgf each, every one 0.25 cm to the left of and 1 cm below the one before it, its mass at its site.
//   force   whole numbers below 2^24: exact at every joint
//   moment  about the first joint the k-th link's lever is 0.25·k cm:
//           Mz = -0.0980665 · 0.25 · (1 + 2 + … + n) = -0.0980665 · 0.125 · n · (n + 1) N·m
// Each joint adds two terms of one sign, 2n in all, and each term has seen at most 3 roundings of its own.
TEST_F(JointForces, AWalkIsAsDeepAsTheFigure)
{
    const int n = deepLinks();
    human = scene->addPosedHuman(chainText(n, "1000", 0.25, -1).c_str());
    ASSERT_NE(human, nullptr);
    figure = human->getFigure();
    makeAnalysis();
    const Sums sums = walk("j1", "s0.a");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, -float(n), 0));
    const double expected = -kNm * 0.125 * n * (n + 1.0);
    EXPECT_NEAR(double(sums.moment[2]), expected, roundingBound(2 * n + 3, -expected));

    // every joint on the way, by a plain loop from the end, to the bit: the part beyond it at its site, then the
    // weight; the last one has no lever but its own
    const float scale = static_cast<float>(double(980.665f) * 0.0001);
    float moment = 0, force = 0;
    for (int i = n; i >= 1; --i) {
        float here = 0;
        if (i < n) {
            here += 0.25f * force * scale;
            here += moment;
        }
        here += 0.25f * -1.0f * scale;
        moment = here;
        force += -1.0f;
        const Result result = resultOf("j" + std::to_string(i));
        ASSERT_EQ(result.status, 1) << i;
        ASSERT_EQ(result.force[1], force) << i;
        ASSERT_EQ(result.moment[2], moment) << i;
    }
}

}   // namespace
