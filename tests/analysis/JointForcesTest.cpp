// Joint forces: what a walk sums up at a joint, in which order, and what it leaves on the joints.
#include "AnalysisTest.h"
#include "PrivateMembers.h"

#include "Diagnostics.h"
#include "ForceMoment.h"
#include "Units.h"

#include <cmath>
#include <cstring>
#include <limits>

using ::testing::ElementsAre;
using ::testing::FloatEq;

struct WalkMember {
    using type = int (qmStaticStrength::*)(qcJointImp*, qcSiteImp*, qVector&, qVector&, qcSegmentImp*, int);
    friend type get(WalkMember);
};
template struct Expose<WalkMember, &qmStaticStrength::compute_joint_forces>;

struct SpecialMember {
    using type = void (qmStaticStrength::*)(qcJointImp*, qcJointImp*, qVector&, qVector&);
    friend type get(SpecialMember);
};
template struct Expose<SpecialMember, &qmStaticStrength::special_joint_forces>;

struct SharesMember {
    using type = float (qmStaticStrength::*)[4];
    friend type get(SharesMember);
};
template struct Expose<SharesMember, &qmStaticStrength::splitFactors>;

namespace {

constexpr double kNm = 0.0980665;          // N·m in a kgf·cm
constexpr float kPlaceholder = 0.00001f;   // N·m, each component of a stored moment that is next to nothing

constexpr int kLeftHip = 0, kRightHip = 1;   // split factors

void expectNear(const qVector& found, const std::array<double, 3>& expected, double bound)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(double(found[i]), expected[static_cast<std::size_t>(i)], bound) << "component " << i;
}

std::array<std::uint32_t, 3> bits(const qVector& vector)
{
    const std::array<float, 3> numbers = components(vector);
    std::array<std::uint32_t, 3> words;
    std::memcpy(words.data(), numbers.data(), sizeof words);
    return words;
}

class JointForces : public AnalysisTest {
protected:
    /// A figure in a scene of its own.
    void load(const SmallFigure& small)
    {
        analyses.clear();
        scene = std::make_unique<qcScene>();
        AnalysisTest::load(small);
    }

    struct Sums {
        int status;
        qVector force;    // kgf
        qVector moment;   // N·m
    };

    Sums walk(qcJoint* from, qcSite* through, qcSegment* stop = nullptr, int accumulate = 0, const qVector& force = {},
              const qVector& moment = {})
    {
        Sums sums{-1, force, moment};
        sums.status = callPrivate<WalkMember>(*analysis, from, through, sums.force, sums.moment, stop, accumulate);
        return sums;
    }
    Sums walk(const std::string& jointName, const std::string& siteKey, const std::string& stop = "",
              int accumulate = 0, const qVector& force = {}, const qVector& moment = {})
    {
        return walk(joint(jointName), site(siteKey), stop.empty() ? nullptr : segment(stop), accumulate, force, moment);
    }

    void TearDown() override
    {
        segmentOnly = 0;
        debugPrint = 0;
        AnalysisTest::TearDown();
    }

    bool hasResult(const std::string& jointName) const
    {
        qcValue value;
        return joint(jointName)->getProperty("SSTR_Force_Moment", &value) != 0;
    }

    void setBadLoad(const std::string& siteKey) { site(siteKey)->setProperty("SSTR_Load", qcValue(1.0f)); }

    float& share(int which) { return (analysis->*get(SharesMember()))[which]; }
};

// A joint "j" at the origin between "base" and "part"; the part has the given mass at the joint, so that
// its weight turns nothing, and a site "tip" 10 cm to the left of the joint.
SmallFigure onePart(double grams, const std::string& name = "man")
{
    SmallFigure figure(name);
    figure.segment("base", 1000)
        .site("base", "out", {0, 0, 0})
        .segment("part", grams)
        .site("part", "in", {0, 0, 0})
        .site("part", "tip", {10, 0, 0})
        .joint("j", "base.out", "part.in");
    return figure;
}

// Two links, turned as a whole so that each axis moves on to the next one `turn` times (x to y, y to z, z to x):
//
//   a  at (0, 0, 0)   base.out - link1.in     link1  5000 g at (10, 0, 0)
//   b  at (20, 0, 0)  link1.out - link2.in    link2  2000 g at (20, 0, 5), a site "tip" at (20, 0, 10)
SmallFigure twoLinks(int turn = 0)
{
    const auto turned = [turn](SmallFigure::Vector v) {
        for (int i = 0; i < turn; ++i)
            v = {v[2], v[0], v[1]};
        return v;
    };
    const SmallFigure::Rows axes = {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1})};
    SmallFigure figure;
    figure.segment("base", 1000, {0, 0, 0}, {0, 0, 0}, axes)
        .site("base", "out", {0, 0, 0}, axes)
        .segment("link1", 5000, {4, 0, 0}, turned({6, 0, 0}), axes)
        .site("link1", "in", {0, 0, 0}, axes)
        .site("link1", "out", turned({20, 0, 0}), axes)
        .segment("link2", 2000, {0, 0, 5}, turned({20, 0, 0}), axes)
        .site("link2", "in", turned({20, 0, 0}), axes)
        .site("link2", "tip", turned({20, 0, 10}), axes)
        .joint("a", "base.out", "link1.in")
        .joint("b", "link1.out", "link2.in");
    return figure;
}

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

class Walk : public JointForces {};

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
    const Sums sums = walk("r", "root.out");
    EXPECT_EQ(sums.status, 0);
    const std::vector<std::string> texts = log.takeTexts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "StaticStrength ERROR: joint stray site man.link1.branches\n");
    EXPECT_EQ(texts[1], "StaticStrength ERROR: failed on man.the stray");
    EXPECT_EQ(texts[2], "StaticStrength ERROR: failed on man.a");
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

// ---- Order

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

// Three forces at one site whose sum depends on the order in single precision: 2^24 kgf takes in no 1 kgf.
//   joint's subtree 1, then the site's load 2^24, then the offset load 1, then the weight -2^24:
//   ((1 + 2^24) + 1) - 2^24 = 0; any order that adds the ones first gives 2
TEST_F(Walk, AddsJointsThenLoadThenOffsetLoadsThenWeight)
{
    const float huge = 16777216.0f;
    SmallFigure figure;
    figure.segment("base", 0)
        .site("base", "out", {0, 0, 0})
        .segment("part", 0)
        .site("part", "in", {0, 0, 0})
        .segment("child", 0)
        .site("child", "in", {0, 0, 0})
        .joint("j", "base.out", "part.in")
        .joint("k", "part.in", "child.in");
    load(figure);
    analysis->setLoad(site("child.in"), qVector(1, 0, 0));
    analysis->setLoad(site("part.in"), qVector(huge, 0, 0));
    analysis->setLoadWithOffset(site("part.in"), qVector(), qVector(1, 0, 0));
    EXPECT_EQ(walk("j", "base.out").force[0], huge);

    // the offset loads come last: here they meet -2^24 that the load has already brought to 1 - 2^24 + 2^24
    analysis->setLoad(site("part.in"), qVector(-huge, 0, 0));
    analysis->setLoadWithOffset(site("part.in"), qVector(), qVector(huge, 0, 0));
    // ((1 - 2^24) + 1) + 2^24 = 2: -2^24 + 1 and + 2 are exact
    EXPECT_EQ(walk("j", "base.out").force[0], 2);
}

// The weight comes after all sites: (2^24 + 1) - 1 = 2^24 - 1 when 2^24 + 1 is rounded to 2^24 first.
TEST_F(Walk, AddsTheWeightAfterAllSites)
{
    SmallFigure figure = onePart(1000);
    load(figure);
    const float huge = 16777216.0f;
    analysis->setLoad(site("part.in"), qVector(0, huge, 0));
    analysis->setLoad(site("part.tip"), qVector(0, 1, 0));
    EXPECT_EQ(walk("j", "base.out").force[1], huge - 1);
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

// ---- Loads

// The site's axes: x points along world y, y along world -x. Its segment's axes differ: x along z.
//   local (3, 4, 5) = 3·(0, 1, 0) + 4·(-1, 0, 0) + 5·(0, 0, 1) = (-4, 3, 5) kgf
//   about the origin, at (10, 0, 0): (10, 0, 0) × (-4, 3, 5) = (0, -50, 30) kgf·cm
class LocalLoads : public JointForces {
protected:
    void SetUp() override
    {
        SmallFigure figure;
        figure.segment("base", 0)
            .site("base", "out", {0, 0, 0})
            .segment("part", 0, {0, 0, 0}, {4, 4, 4}, {{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}})
            .site("part", "in", {0, 0, 0})
            .site("part", "tip", {10, 0, 0}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}})
            .joint("j", "base.out", "part.in");
        load(figure);
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
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: illegal load at site man.part.in"));
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

TEST_F(PalmCentre, LoadThatCannotBeReadKeepsTheHandLoadOutToo)
{
    useSite("right_palmcenter");
    setBadLoad("part.right_palmcenter");
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, 0, 0));
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: illegal load at site man.part.right_palmcenter"));
}

TEST_F(PalmCentre, HandLoadIsHalvedOnTheStopSegment)
{
    useSite("right_palmcenter");
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0.5f, 1, 1.5f));
}

// ---- The stop segment

// A load of (0, -10, 0) on the stop segment's site counts (0, -5, 0); everything gathered is halved once more
// before a weight is added: (0, -2.5, 0) + (0, -2, 0).
TEST_F(Walk, StopSegmentHalvesItsLoadsAndAllSumsBeforeItsWeight)
{
    load(onePart(2000));
    analysis->setLoad(site("part.in"), qVector(0, -10, 0));
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0, FloatEq(-4.5f), 0));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, FloatEq(-12), 0));
}

TEST_F(Walk, StopSegmentWithoutWeightHalvesItsLoadsOnly)
{
    for (const double grams : {0.0, -1.0}) {
        load(onePart(grams));
        analysis->setLoad(site("part.in"), qVector(0, -10, 0));
        EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0, -5, 0)) << grams;
    }
}

// On the stop segment, about the origin: 8 kgf up at (10, 0, 0), halved 4 kgf: (0, 0, 40) kgf·cm; an offset load
// of 8 kgf up at (10, 0, 0) + (6, 0, 0), halved: (0, 0, 64) kgf·cm. Force (0, 8, 0).
TEST_F(Walk, StopSegmentHalvesOffsetLoadsToo)
{
    load(onePart(0));
    analysis->setLoad(site("part.tip"), qVector(0, 8, 0));
    analysis->setLoadWithOffset(site("part.tip"), qVector(6, 0, 0), qVector(0, 8, 0));
    const Sums sums = walk("j", "base.out", "part");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 8, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(104 * kNm))));
}

// The torque and what the caller brought are among the sums that a weight halves, the weight's own moment is not.
//   force: (20, 0, 0)/2 + (0, -2, 0);   moment: ((0, 6, 0) + (0, 0, 4))/2
TEST_F(Walk, StopSegmentHalvesTheTorqueAndTheIncomingSums)
{
    load(onePart(2000));
    qVector torque(0, 0, 4);
    analysis->setDefinedTorque(joint("j"), torque);
    Sums sums = walk("j", "base.out", "part", 1, qVector(20, 0, 0), qVector(0, 6, 0));
    EXPECT_THAT(components(sums.force), ElementsAre(10, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 3, 2));

    // a massless one leaves both whole
    load(onePart(0));
    analysis->setDefinedTorque(joint("j"), torque);
    sums = walk("j", "base.out", "part", 1, qVector(20, 0, 0), qVector(0, 6, 0));
    EXPECT_THAT(components(sums.force), ElementsAre(20, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 6, 4));
}

// The weight's moment is not halved: 2 kgf at (10, 0, 0) is (0, 0, -20) kgf·cm.
TEST_F(Walk, StopSegmentsWeightCountsInFull)
{
    SmallFigure figure = onePart(2000);
    figure.document()["segments"][1]["com"] = {10, 0, 0};
    load(figure);
    const Sums sums = walk("j", "base.out", "part");
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(-20 * kNm))));
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

// A trunk that joint "right_hip" enters, with "waist" above it and another joint beside:
//   waist at (0, 10, 0), "left_hip" at (10, 0, 0), the right hip at the origin; the trunk is the stop segment
class StopSegmentJoints : public JointForces {
protected:
    void build(double trunkGrams, const std::string& entering = "right_hip", const std::string& above = "waist")
    {
        SmallFigure figure;
        figure.segment("leg", 5000)
            .site("leg", "top", {0, 0, 0})
            .segment("trunk", trunkGrams)
            .site("trunk", "hip", {0, 0, 0})
            .site("trunk", "top", {0, 10, 0})
            .site("trunk", "other_hip", {10, 0, 0})
            .segment("chest", 3000)
            .site("chest", "bottom", {0, 10, 0})
            .segment("other_leg", 3000)
            .site("other_leg", "top", {10, 0, 0})
            .joint(entering, "trunk.hip", "leg.top")
            .joint(above, "trunk.top", "chest.bottom")
            .joint("left_hip", "trunk.other_hip", "other_leg.top");
        load(figure);
        entry = entering;
        analysis->setFMonJoint(joint(above), qVector(4, -8, 2), qVector(1, 2, 3));
        analysis->setFMonJoint(joint("left_hip"), qVector(100, 100, 100), qVector(100, 100, 100));
        analysis->setStrategy(qmStaticStrength::TwoFeet);
        share(kLeftHip) = 0.75f;
        share(kRightHip) = 0.25f;
    }
    Sums walkToTrunk() { return walk(entry, "leg.top", "trunk"); }
    std::string entry;
};

// share 0.25 of the waist's (4, -8, 2) kgf and (1, 2, 3) N·m: (1, -2, 0.5) and (0.25, 0.5, 0.75), acting at the waist:
//   (0, 10, 0) × (1, -2, 0.5) = (5, 0, -10) kgf·cm; the other hip's result has the share 0
TEST_F(StopSegmentJoints, GiveTheShareOfTheirStoredResults)
{
    build(0);
    const Sums sums = walkToTrunk();
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(1, -2, 0.5f));
    expectNear(sums.moment, {5 * kNm + 0.25, 0.5, -10 * kNm + 0.75}, roundingBound(3, 10 * kNm + 0.75));
    // what was read is as it was, and no walk went there
    EXPECT_THAT(components(resultOf("waist").force), ElementsAre(4, -8, 2));
    EXPECT_THAT(components(resultOf("left_hip").force), ElementsAre(100, 100, 100));
}

// A weight of 2 kgf at the hip halves the shares that were gathered.
TEST_F(StopSegmentJoints, AreHalvedOnceMoreByAWeight)
{
    build(2000);
    const Sums sums = walkToTrunk();
    EXPECT_THAT(components(sums.force), ElementsAre(0.5f, FloatEq(-3), 0.25f));
    expectNear(sums.moment, {2.5 * kNm + 0.125, 0.25, -5 * kNm + 0.375}, roundingBound(3, 5 * kNm + 0.375));
}

TEST_F(StopSegmentJoints, GiveTheOtherShareToAJointOfTheOtherSide)
{
    build(0, "hip_on_the_left");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(3, -6, 1.5f));
}

TEST_F(StopSegmentJoints, WithoutAStoredResultGiveNothing)
{
    build(0);
    joint("waist")->removeProperty("SSTR_Force_Moment");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    joint("waist")->setProperty("SSTR_Force_Moment", qcValue("no result"));
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    EXPECT_FALSE(hasResult("right_hip"));
}

// With the share 0 the stored result is not even read: nothing of an infinite one comes through.
TEST_F(StopSegmentJoints, WithTheShareZeroGiveNothingWhateverIsStored)
{
    build(0);
    const float infinite = std::numeric_limits<float>::infinity();
    analysis->setFMonJoint(joint("waist"), qVector(infinite, infinite, infinite),
                           qVector(infinite, infinite, infinite));
    share(kRightHip) = 0;
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    qVector force(1, 2, 3), moment(4, 5, 6);
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(moment), ElementsAre(0, 0, 0));
}

TEST_F(StopSegmentJoints, GiveTheirShareOfForceAndMoment)
{
    build(0);
    qVector force, moment;
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(1, -2, 0.5f));
    EXPECT_THAT(components(moment), ElementsAre(0.25f, 0.5f, 0.75f));
}

// Only "waist" is shared between the hips.
TEST_F(StopSegmentJoints, OfOtherNamesGiveNothing)
{
    build(0, "right_hip", "waist2");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
}

// Under one foot no stored result counts, but loads and sums are halved all the same:
//   (0, -10, 0)/2, halved once more, and 2 kgf of weight
TEST_F(StopSegmentJoints, GiveNothingUnderOneFootWhileHalvingStays)
{
    build(2000);
    analysis->setStrategy(qmStaticStrength::RightFoot);
    analysis->setLoad(site("trunk.hip"), qVector(0, -10, 0));
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, FloatEq(-4.5f), 0));
}

// The stop segment may lie further along: the walk goes on normally until it comes there.
TEST_F(Walk, StopsFurtherAlongTheTree)
{
    SmallFigure figure = twoLinks();
    figure.segment("link3", 9000).site("link3", "in", {20, 0, 10}).joint("c", "link2.tip", "link3.in");
    load(figure);
    analysis->setLoad(site("link2.tip"), qVector(0, 0, 8));
    const Sums sums = walk("a", "base.out", "link2");
    EXPECT_EQ(sums.status, 1);
    // link2: 8 · 0.5 · 0.5 and its 2 kgf; link3 is not reached; link1 in full
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-7), 2));
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(0, FloatEq(-2), 2));
    EXPECT_FALSE(hasResult("c"));
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

TEST_F(Walk, SegmentOnlyTakesNoOtherJointIntoAccount)
{
    load(twoLinks());
    analysis->setFMonJoint(joint("b"), qVector(7, 7, 7), qVector(8, 8, 8));
    analysis->setLoad(site("link1.out"), qVector(0, 0, 1));
    analysis->setLoadWithOffset(site("link1.in"), qVector(), qVector(2, 0, 0));
    analysis->setLoad(site("link2.tip"), qVector(100, 0, 0));
    qVector torque(0, 3, 0);
    analysis->setDefinedTorque(joint("a"), torque);
    segmentOnly = 1;
    const Sums sums = walk("a", "base.out");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(2, FloatEq(-5), 1));
    // (20, 0, 0) × (0, 0, 1) = (0, -20, 0) kgf·cm; the weight at (10, 0, 0): (0, 0, -50) kgf·cm
    expectNear(sums.moment, {0, 3 - 20 * kNm, -50 * kNm}, roundingBound(3, 3 + 20 * kNm + 50 * kNm));
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(7, 7, 7));
    EXPECT_EQ(bits(resultOf("a").force), bits(sums.force));
}

TEST_F(StopSegmentJoints, AreNotReadWhileOneSegmentIsTakenAlone)
{
    build(0);
    segmentOnly = 1;
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
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

// ---- A very long chain

// Every link has one site, at which it hangs on the link before and the next one hangs on it. Written as text
// at once: the figure is large.
std::string chainText(int links, const char* mass, double dx, double dy)
{
    std::string segments, sites, joints;
    const auto matrix = [&](int i) {
        return "[[1,0,0,0],[0,1,0,0],[0,0,1,0],[" + std::to_string(dx * i) + "," + std::to_string(dy * i) + ",0,1]]";
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
TEST_F(JointForces, WalkAHundredThousandLinksDeep)
{
    const int n = 100000;
    human = scene->addPosedHuman(chainText(n, "1000", 0.25, -1).c_str());
    ASSERT_NE(human, nullptr);
    figure = human->getFigure();
    makeAnalysis();
    const Sums sums = walk("j1", "s0.a");
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, -100000, 0));
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
