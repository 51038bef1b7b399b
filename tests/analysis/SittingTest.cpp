// Sitting: what hips and ankles carry of the legs' own loads and weights.
#include "Chance.h"
#include "ComputeSupport.h"
#include "NaiveAnalysis.h"
#include "NumberText.h"

#include <cmath>
#include <cstdio>

using ::testing::ElementsAre;

namespace {

class Sitting : public Compute {};

// The small body seated, the legs bent outwards; the left side mirrors the right one. Right side, cm:
//   hip (-10, 90, 0)    knee (-20, 90, 40)    ankle (-30, 50, 40)
//   upper leg 8 kgf at (-15, 90, 20)          lower leg 4 kgf at (-25, 70, 40)
// The hips' sites on the upper legs may have a second position.
//
//   a = ankle - hip = (-20, -40, 40), |b| = 60        c = hip - knee = (10, 0, -40)
//   MU: (-5, 0, 20) × (0, -8, 0) = (160, 0, 40) kgf·cm        FU = (0, -8, 0)
//   ML: (-5, -20, 0) × (0, -4, 0) = (0, 0, 20) kgf·cm         FL = (0, -4, 0)
//   extra = FL × c = (0, -4, 0) × (10, 0, -40) = (160, 0, 40)
//   T = (160, 0, 60) - (160, 0, 40) = (0, 0, 20)              r = 20 / 60 = 1/3
//   S = (0, -12, 0)        FH = (0, -1/3, 0)                  FA = S - FH = (0, -35/3, 0)
//   MH = (T · a/60) a/60 = 40/3 · (-1/3, -2/3, 2/3), kept times 0.01
// Mirrored, c = (-10, 0, -40), MU and ML turn the other way about z: T = (0, 0, -20); T · a/60 = -40/3 with
// a/60 = (1/3, -2/3, 2/3).
SmallFigure sittingBody()
{
    SmallFigure body = smallBody();
    using json = nlohmann::json;
    const auto move = [&](const char* list, const char* key, const std::string& name, double x, double y, double z) {
        for (json& part : body.document()[list])
            if (part[key] == name) {
                part["transform"][3] = json::array({x, y, z, 1});
                if (part.contains("second_transform"))
                    part["second_transform"][3] = json::array({x, y, z, 1});
            }
    };
    const auto center = [&](const std::string& name, double x, double y, double z) {
        for (json& part : body.document()["segments"])
            if (part["name"] == name)
                part["com"] = json::array({x, y, z});
    };
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        center(side + "upper_leg", -5 * sign, 0, 20);
        move("segments", "name", side + "lower_leg", -20 * sign, 90, 40);
        center(side + "lower_leg", -5 * sign, -20, 0);
        move("sites", "key", side + "upper_leg.distal", -20 * sign, 90, 40);
        move("sites", "key", side + "lower_leg.proximal", -20 * sign, 90, 40);
        move("sites", "key", side + "lower_leg.distal", -30 * sign, 50, 40);
    }
    return body;
}

// What rounding may leave in T: 8 roundings on magnitudes of 160 + 40 + 20 + 160 + 40 kgf·cm.
double roundingOfT()
{
    return roundingBound(8, 420);
}

TEST_F(Sitting, GivesEachLegHipAndAnkleByHand)
{
    load(sittingBody());
    compute(qmStaticStrength::Sitting);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    const double inForce = roundingOfT() / 60 + roundingBound(4, 12);
    const double inMoment = (roundingOfT() + roundingBound(6, 40)) * 0.01;
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        const Result hip = resultOf(side + "hip");
        EXPECT_EQ(hip.status, 1);
        expectNear(hip.force, {0, -1.0 / 3, 0}, inForce);
        const double along = 40.0 / 3 * sign * 0.01;
        expectNear(hip.moment, {-sign * along / 3, -2 * along / 3, 2 * along / 3}, inMoment);

        const Result ankle = resultOf(side + "ankle");
        EXPECT_EQ(ankle.status, 1);
        expectNear(ankle.force, {0, -35.0 / 3, 0}, inForce);
        EXPECT_THAT(components(ankle.moment), ElementsAre(0, 0, 0));
    }
}

// The hip alone is taken from its second transform: 30 cm higher, at (-10, 120, 0). The walk of the upper leg still
// goes about its global position. Others' second positions are not looked at. Right side:
//   a = (-20, -70, 40), |b|² = 400 + 4900 + 1600 = 6900       c = (10, 30, -40)
//   extra = (0, -4, 0) × (10, 30, -40) = (160, 0, 40): the change is along FL
//   T = (0, 0, 20)      r = 20 / √6900        T · a = 800      MH = 800 / 6900 · a · 0.01
// and 40 cm forward, at (-10, 90, 40): a = (-20, -40, 0), |b|² = 2000, c = (10, 0, 0), extra = (0, 0, 40),
//   T = (160, 0, 20)    r = √26000 / √2000 = √13       T · a = -3200       MH = -3200 / 2000 · a · 0.01
TEST_F(Sitting, TakesTheHipFromItsSecondTransform)
{
    SmallFigure body = sittingBody();
    body.secondPosition("right_upper_leg.proximal", {-10, 120, 0});
    body.secondPosition("left_upper_leg.proximal", {10, 90, 40});
    for (const char* side : {"right_", "left_"}) {
        body.secondPosition(std::string("lower_torso.") + side + "hip", {1, 2, 3});
        body.secondPosition(side + std::string("upper_leg.distal"), {4, 5, 6});
        body.secondPosition(side + std::string("lower_leg.proximal"), {7, 8, 9});
        body.secondPosition(side + std::string("lower_leg.distal"), {-1, -2, -3});
    }
    load(body);
    compute(qmStaticStrength::Sitting);
    const double inMoment = (roundingOfT() + roundingBound(6, 200)) * 0.01;

    expectNear(resultOf("right_hip").force, {0, -20 / std::sqrt(6900.0), 0}, roundingOfT() / 80 + roundingBound(4, 12));
    const double right = 800.0 / 6900 * 0.01;
    expectNear(resultOf("right_hip").moment, {-20 * right, -70 * right, 40 * right}, inMoment);

    // the left side mirrors the derivation: a = (20, -40, 0), T = (160, 0, -20), T · a = 3200
    expectNear(resultOf("left_hip").force, {0, -std::sqrt(13.0), 0}, roundingOfT() / 40 + roundingBound(4, 12));
    const double left = 3200.0 / 2000 * 0.01;
    expectNear(resultOf("left_hip").moment, {20 * left, -40 * left, 0}, inMoment);
    expectNear(resultOf("left_ankle").force, {0, -12 + std::sqrt(13.0), 0}, roundingOfT() / 40 + roundingBound(6, 24));
}

TEST_F(Sitting, HipMomentLiesAlongTheLegsLine)
{
    load(sittingBody());
    analysis->setLoad(site("right_upper_leg.distal"), qVector(3, -2, 1));
    analysis->setLoad(site("left_lower_leg.distal"), qVector(-1, 4, 2));
    compute(qmStaticStrength::Sitting);
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        const qVector moment = resultOf(side + "hip").moment;
        const double length = double(moment.mag());
        ASSERT_GT(length, 0.01);
        // moment × a / (|moment| |a|) with a = (-20, -40, 40); a unit vector's rounding
        const double a[3] = {-sign / 3, -2.0 / 3, 2.0 / 3};
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3, k = (i + 2) % 3;
            EXPECT_NEAR((double(moment[j]) * a[k] - double(moment[k]) * a[j]) / length, 0, roundingBound(8, 1));
        }
    }
}

// A load of (3, 0, 0) kgf at the right knee's site on the upper leg and (0, 0, 6) at the ankle's on the lower leg:
//   FU = (3, -8, 0)        MU = (160, 0, 40) + (-10, 0, 40) × (3, 0, 0) = (160, 120, 40)
//   FL = (0, -4, 6)        ML = (0, 0, 20) + (-10, -40, 0) × (0, 0, 6) = (-240, 60, 20)
//   extra = (0, -4, 6) × (10, 0, -40) = (160, 60, 40)
//   T = (-80, 180, 60) - (160, 60, 40) = (-240, 120, 20)       |T| = √(57600 + 14400 + 400) = √72400
//   S = (3, -12, 6), |S| = √189       FH = S / √189 · √72400 / 60
//   T · a = 4800 - 4800 + 800 = 800   MH = 800 / 3600 · a · 0.01
TEST_F(Sitting, TakesTheLegsOwnLoads)
{
    load(sittingBody());
    analysis->setLoad(site("right_upper_leg.distal"), qVector(3, 0, 0));
    analysis->setLoad(site("right_lower_leg.distal"), qVector(0, 0, 6));
    // loads elsewhere enter no leg
    analysis->setLoad(site("right_foot.sole"), qVector(50, 50, 50));
    analysis->setLoad(site("right_hand.right_palmcenter"), qVector(50, 50, 50));
    analysis->setLoad(site("lower_torso.h_point"), qVector(50, 50, 50));
    compute(qmStaticStrength::Sitting);
    const double ratio = std::sqrt(72400.0 / 189) / 60;
    const double inForce = roundingBound(10, 1200) / 60 + roundingBound(6, 12);
    expectNear(resultOf("right_hip").force, {3 * ratio, -12 * ratio, 6 * ratio}, inForce);
    expectNear(resultOf("right_ankle").force, {3 * (1 - ratio), -12 * (1 - ratio), 6 * (1 - ratio)}, inForce);
    const double along = 800.0 / 3600 * 0.01;
    // T, and its product with a, whose terms of 4800 cancel over |a| = 60
    const double inMoment = (roundingBound(10, 1200) + roundingBound(6, 4800.0 * 2 / 60)) * 0.01;
    expectNear(resultOf("right_hip").moment, {-20 * along, -40 * along, 40 * along}, inMoment);
}

// The knee's place is its site on the upper leg. The one on the lower leg may lie elsewhere: 10 cm behind, it would
// turn the hip, c = (10, 0, -30), extra = (120, 0, 40), T = (40, 0, 20), FH = √2000 / 60 = 0.745.
TEST_F(Sitting, TakesTheKneeFromItsSiteOnTheUpperLeg)
{
    SmallFigure body = sittingBody();
    for (nlohmann::json& site : body.document()["sites"])
        if (site["key"] == "right_lower_leg.proximal" || site["key"] == "left_lower_leg.proximal")
            site["transform"][3][2] = 30;
    load(body);
    compute(qmStaticStrength::Sitting);
    for (const char* hip : {"right_hip", "left_hip"})
        expectNear(resultOf(hip).force, {0, -1.0 / 3, 0}, roundingOfT() / 60 + roundingBound(4, 12));
}

// Standing, the legs' weights act straight below their joints and c along them, so no moment is left but the walks'
// placeholders of 1e-5 N·m a component, one of each segment. They enter as they are, right side, lengths in cm:
//   T  = 2e-5 / 0.0980665 = 2.0394e-4 kgf·cm a component        |T| = √3 · 2.0394e-4        |b| = 80
//   FH = (0, -|T| / 80, 0) = (0, -4.4155e-6, 0)
//   MH = (T · (0, -1, 0)) (0, -1, 0) 0.01 = (0, 2.0394e-6, 0)
// Small as both are, they are stored: only walks drop results. FA = 12 kgf less the hip's.
TEST_F(Sitting, PlaceholdersOfTheWalksEnterTheHip)
{
    load(smallBody());
    compute(qmStaticStrength::Sitting);
    const double T = 2e-5 / kNm;
    for (const std::string side : {"right_", "left_"}) {
        const Result hip = resultOf(side + "hip");
        EXPECT_EQ(hip.status, 1);
        expectNear(hip.force, {0, -std::sqrt(3.0) * T / 80, 0}, roundingBound(8, 5e-6));
        expectNear(hip.moment, {0, T * 0.01, 0}, roundingBound(8, 3e-6));
        EXPECT_NE(resultOf(side + "ankle").force[1], -12);
        expectNear(resultOf(side + "ankle").force, {0, -12 + std::sqrt(3.0) * T / 80, 0}, roundingBound(1, 12));
    }
}

// What hangs on the legs and what stands on them does not count: feet, toes, torso and arms of any mass.
TEST_F(Sitting, LegsDependOnNeitherFeetNorUpperBody)
{
    const auto legs = [&](double factor) {
        SmallFigure body = sittingBody();
        for (nlohmann::json& segment : body.document()["segments"]) {
            const std::string name = segment["name"];
            if (name.find("_leg") == std::string::npos)
                segment["mass"] = segment["mass"].get<double>() * factor;
        }
        load(body);
        compute(qmStaticStrength::Sitting);
        std::vector<std::array<float, 3>> all;
        for (const char* name : {"right_hip", "right_ankle", "left_hip", "left_ankle"}) {
            all.push_back(components(resultOf(name).force));
            all.push_back(components(resultOf(name).moment));
        }
        return all;
    };
    EXPECT_EQ(legs(1), legs(3));
}

TEST_F(Sitting, LeavesNoResultOnTheKnees)
{
    load(sittingBody());
    storeEverywhere(qVector(77, 77, 77));
    compute(qmStaticStrength::Sitting);
    EXPECT_FALSE(hasResult("right_knee"));
    EXPECT_FALSE(hasResult("left_knee"));
    // no walk comes to the toes
    EXPECT_THAT(components(resultOf("right_ball").force), ElementsAre(77, 77, 77));
    EXPECT_THAT(components(resultOf("left_ball").force), ElementsAre(77, 77, 77));
}

// A torque at the hip or the knee is in the walks of their segments. Along the leg's line it all comes into MH, kept
// times 0.01 after going from N·m to kgf·cm: a torque of a/60 · 0.0980665 N·m (1 kgf·cm) raises MH by a/60 · 0.01.
TEST_F(Sitting, TakesTheTorquesOfHipAndKnee)
{
    load(sittingBody());
    compute(qmStaticStrength::Sitting);
    const qVector before = resultOf("right_hip").moment;
    const float oneAlong = float(kNm / 3);
    qVector torque(-oneAlong, -2 * oneAlong, 2 * oneAlong);
    for (const char* name : {"right_hip", "right_knee"}) {
        analysis->setDefinedTorque(joint(name), torque);
        compute(qmStaticStrength::Sitting);
        qVector difference = resultOf("right_hip").moment;
        difference.sub(before);
        expectNear(difference, {-0.01 / 3, -0.02 / 3, 0.02 / 3}, (roundingOfT() * 2 + roundingBound(6, 40)) * 0.01);
        analysis->removeDefinedTorque(joint(name));
    }
}

// Legs without weight and load have no direction: not a number, stored as it comes out.
TEST_F(Sitting, MasslessLegsAreNotGuarded)
{
    SmallFigure body = sittingBody();
    for (nlohmann::json& segment : body.document()["segments"])
        if (segment["name"].get<std::string>().find("_leg") != std::string::npos)
            segment["mass"] = 0;
    load(body);
    compute(qmStaticStrength::Sitting);
    const Result hip = resultOf("right_hip"), ankle = resultOf("right_ankle");
    EXPECT_EQ(hip.status, 1);
    EXPECT_EQ(ankle.status, 1);
    EXPECT_TRUE(std::isnan(hip.force[1]));
    EXPECT_TRUE(std::isnan(ankle.force[1]));
    EXPECT_THAT(components(hip.moment), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(ankle.moment), ElementsAre(0, 0, 0));
}

// ---- Missing parts

// A body without one part of a leg, and how the refusal names it. A joint elsewhere is one that does not touch the
// segment on which its place is wanted.
struct MissingPart {
    std::string segment;       // renamed; or
    std::string role, joint;   // the role is played by this joint; by none when it is empty
    std::string named;
};

class SittingWithout : public Sitting {
protected:
    static std::vector<MissingPart> partsOf(const std::string& side)
    {
        const std::string upper = side + "_upper_leg", lower = side + "_lower_leg";
        const std::string hip = side + " hip on the upper leg", ankle = side + " ankle on the lower leg";
        const std::string kneeAbove = side + " knee on the upper leg", kneeBelow = side + " knee on the lower leg";
        return {
            {upper, "", "", "segment " + upper + ", " + hip + ", " + kneeAbove},
            {lower, "", "", "segment " + lower + ", " + kneeBelow + ", " + ankle},
            {"", "hip", "", hip},
            {"", "hip", "waist", hip},
            {"", "knee", "", kneeAbove + ", " + kneeBelow},
            {"", "knee", side + "_ankle", kneeAbove},
            {"", "knee", side + "_hip", kneeBelow},
            {"", "ankle", "", ankle},
            {"", "ankle", side + "_ball", ankle},
        };
    }
    // The body without the part: its upper body is computed, the legs keep what they had.
    void expectRefusal(const std::string& side, const MissingPart& part)
    {
        SmallFigure body = sittingBody();
        if (part.joint.empty() && !part.role.empty())
            body.document()[side][part.role] = nullptr;
        else if (!part.role.empty())
            body.role(side, part.role, part.joint);
        load(body);
        if (!part.segment.empty())
            segment(part.segment)->setName("other");
        storeEverywhere(qVector(77, 77, 77));
        compute(qmStaticStrength::Sitting);
        EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
        EXPECT_THAT(log.takeTexts(),
                    ElementsAre("StaticStrength ERROR: the sitting legs cannot be computed: missing " + part.named));
        EXPECT_THAT(changedFrom(qVector(77, 77, 77)), ::testing::UnorderedElementsAreArray(upperBodyJoints()));
    }
};

TEST_F(SittingWithout, AnyPartOfALegIsRefusedInOneMessage)
{
    for (const std::string side : {"right", "left"})
        for (const MissingPart& part : partsOf(side)) {
            SCOPED_TRACE(side + " " + part.segment + part.role + " " + part.joint);
            expectRefusal(side, part);
        }
}

TEST_F(SittingWithout, PartsOfBothLegsNamesTheRightOnesFirst)
{
    SmallFigure body = sittingBody();
    body.document()["left"]["hip"] = nullptr;
    body.document()["right"]["ankle"] = nullptr;
    load(body);
    compute(qmStaticStrength::Sitting);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: the sitting legs cannot be computed: missing "
                                             "right ankle on the lower leg, left hip on the upper leg"));
}

// ---- Order

TEST_F(Sitting, MeetsTheUpperBodyThenEachUpperAndLowerLeg)
{
    load(sittingBody());
    EXPECT_EQ(order(qmStaticStrength::Sitting, kOneSitePerSegment),
              joined({kUpperBody,
                      {"right_upper_leg.proximal", "right_lower_leg.proximal", "left_upper_leg.proximal",
                       "left_lower_leg.proximal"}}));
}

// ---- Bits

// A leg once more in single precision, from what the host and the analysis's readers tell. The same steps in the same
// order give the same bits.
class LegTranscription {
public:
    using Vector = Triple<float>;

    //   T  = (ML + MU) in kgf·cm - FL × c
    //   FH = unit(S) |T| / |b|        MH = (T · unit(a)) unit(a) 0.01        FA = S - FH
    LegTranscription(qmStaticStrength& ofThis, qcSide side) : analysis(ofThis)
    {
        qcHuman& human = *analysis.getHuman();
        const std::string prefix = side == qcRight ? "right_" : "left_";
        const qcSegment* U = human.getFigure()->findSegment((prefix + "upper_leg").c_str());
        const qcSegment* L = human.getFigure()->findSegment((prefix + "lower_leg").c_str());
        qcJoint *H = human.getHipJoint(side), *K = human.getKneeJoint(side), *A = human.getAnkleJoint(side);

        const Vector PH = of(H->siteOnSegment(U)->getSecondTransform().getTranslation());
        const Vector PA = at(A->siteOnSegment(L)), PK = at(K->siteOnSegment(U));
        const Vector a = PA - PH, b = PH - PA, c = PH - PK;

        const Sums upper = alone(H, H->otherSite(H->siteOnSegment(U)), U);
        const Sums lower = alone(K, K->otherSite(K->siteOnSegment(L)), L);

        const Vector extra = cross(lower.force, c);
        const Vector T =
            (lower.moment + upper.moment) * static_cast<float>(1 / (double(980.665f) * 0.0001)) - extra;   // kgf·cm
        const float r = length(T) / length(b);
        const Vector S = upper.force + lower.force;
        hipForce = unit(S) * r;
        hipMoment = unit(a) * dot(T, unit(a)) * 0.01f;
        ankleForce = S - hipForce;
    }

    Vector hipForce, hipMoment, ankleForce;

private:
    struct Sums {
        Vector force, moment;   // kgf, N·m
    };
    static Vector of(const qVector& v) { return {v[0], v[1], v[2]}; }
    static Vector at(qcSite* site) { return of(site->getGlobalTransform().getTranslation()); }

    //   v · M + translation
    static Vector through(const Vector& v, const qMatrix& frame, const Vector& translation)
    {
        return of(frame.getAxis(0)) * v.x + of(frame.getAxis(1)) * v.y + of(frame.getAxis(2)) * v.z + translation;
    }

    //   F += f        M += f × (J - P) 0.0980665
    static void add(Sums& sums, const Vector& J, const Vector& P, const Vector& f)
    {
        sums.force = sums.force + f;
        sums.moment = sums.moment + cross(f, J - P) * static_cast<float>(double(980.665f) * 0.0001);
    }

    // The segment beyond a joint, without what hangs on it: the joint's torque, the sites' loads, the weight.
    Sums alone(qcJoint* joint, qcSite* from, const qcSegment* segment) const
    {
        Sums sums;
        qVector read;
        if (analysis.getDefinedTorque(joint, read))
            sums.moment = sums.moment + of(read);
        const Vector J = at(from);
        for (qList* node = nullptr; (node = qList::iterator(segment->getSites(), node));) {
            auto* site = static_cast<qcSite*>(node->getData());
            if (!analysis.getSiteLoad(site, read))
                continue;
            const bool local = std::string(analysis.getLoadType(site)) == "local";
            add(sums, J, at(site), local ? through(of(read), site->getGlobalTransform(), {}) : of(read));
        }
        qMatrix frame = const_cast<qcSegment*>(segment)->getGlobalTransform();
        const Vector center = through(of(segment->getCenterOfMass()), frame, of(frame.getTranslation()));
        analysis.getGravity(read);
        add(sums, J, center, of(read) * static_cast<float>(double(segment->getMass()) * 0.001 / double(980.665f)));
        // what a walk keeps: neither of these legs is light enough to lose its force
        EXPECT_GT(length(sums.force), 0.01f);
        if (double(length(sums.moment)) <= 0.01)
            sums.moment = {0.00001f, 0.00001f, 0.00001f};
        return sums;
    }

    qmStaticStrength& analysis;
};

std::array<float, 3> numbersOf(const Triple<float>& v)
{
    return {v.x, v.y, v.z};
}

void scatter(nlohmann::json& transform, Chance& chance)
{
    const SmallFigure::Rows axes = chance.axes();
    for (std::size_t i = 0; i < 3; ++i) {
        transform[i] = {axes[i][0], axes[i][1], axes[i][2], 0};
        transform[3][i] = transform[3][i].get<double>() + chance.within(-15, 15);
    }
}

qVector narrowed(const SmallFigure::Vector& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

// 40 seated bodies whose every frame, site and mass is drawn at random, the hips' second positions too; each is
// computed 5 times with other loads and torques on the legs and another gravity.
TEST_F(Sitting, RandomBodiesAgreeWithTheTranscriptionInAllBits)
{
    for (unsigned seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        SmallFigure body = sittingBody();
        for (nlohmann::json& segment : body.document()["segments"]) {
            scatter(segment["transform"], chance);
            segment["mass"] = chance.within(100, 15000);
            segment["com"] = chance.vector(20);
        }
        for (nlohmann::json& site : body.document()["sites"]) {
            scatter(site["transform"], chance);
            scatter(site["second_transform"], chance);
        }
        load(body);
        for (int run = 0; run < 5; ++run) {
            if (run > 0)
                analysis->setGravity(narrowed(chance.vector(1500)));
            for (const std::string side : {"right_", "left_"}) {
                for (const char* key :
                     {"upper_leg.proximal", "upper_leg.distal", "lower_leg.proximal", "lower_leg.distal"})
                    if (chance.coin())
                        analysis->setLoad(site(side + key), narrowed(chance.vector(60)), chance.coin());
                    else if (chance.coin())
                        analysis->setWeightLoad(site(side + key), static_cast<float>(chance.within(0, 20000)));
                for (const char* name : {"hip", "knee"}) {
                    qVector torque = narrowed(chance.vector(50));
                    if (chance.coin())
                        analysis->setDefinedTorque(joint(side + name), torque);
                }
            }
            compute(qmStaticStrength::Sitting);
            for (const qcSide side : {qcRight, qcLeft}) {
                const LegTranscription leg(*analysis, side);
                const Result hip = resultOf(human->getHipJoint(side)->getName());
                const Result ankle = resultOf(human->getAnkleJoint(side)->getName());
                EXPECT_EQ(hip.status + ankle.status, 2);
                EXPECT_EQ(components(hip.force), numbersOf(leg.hipForce));
                EXPECT_EQ(components(hip.moment), numbersOf(leg.hipMoment));
                EXPECT_EQ(components(ankle.force), numbersOf(leg.ankleForce));
                EXPECT_THAT(components(ankle.moment), ElementsAre(0, 0, 0));
            }
        }
    }
}

// ---- Printing

// The right side prints every step, the left one only what both sides print. A walked segment's weight comes first.
TEST_F(Sitting, PrintsItsStepsInOrder)
{
    load(sittingBody());
    const std::string output = printsOf(qmStaticStrength::Sitting);
    EXPECT_EQ(labelsOf(output), joined({{"Sitting Mode"},
                                        std::vector<std::string>(9, "wvec"),
                                        {"upperbodyforce"},
                                        {"wvec", "Upper Leg Moments", "Upper leg Forces"},
                                        {"wvec", "Lower Leg Moments", "Lower leg Forces"},
                                        {"preTotal Moment", "extra Moment", "Total Moment", "totalSegmentLoads",
                                         "Hip Force", "Hip Moment ", "Ankle Force", "Ankle Moment "},
                                        {"wvec", "wvec", "totalSegmentLoads", "Hip Force", "Hip Moment ", "Ankle Force",
                                         "Ankle Moment "}}));
    // exact in six decimals
    for (const char* line :
         {"Sitting Mode\n", "\nupperbodyforce[0.000000][-14.500000][0.000000]\n",
          "\nUpper leg Forces[0.000000][-8.000000][0.000000]\n", "\nLower leg Forces[0.000000][-4.000000][0.000000]\n",
          "\nextra Moment[160.000000][0.000000][40.000000]\n", "\ntotalSegmentLoads[0.000000][-12.000000][0.000000]\n",
          "\nAnkle Moment [0.000000][0.000000][0.000000]\n"})
        EXPECT_NE(output.find(line), std::string::npos) << line << "in\n" << output;
}

// The numbers behind the labels: moments of the legs in N·m, the totals in kgf·cm, and the hip's moment before it is
// kept times 0.01.
TEST_F(Sitting, PrintsTheDerivedNumbers)
{
    load(sittingBody());
    const std::string output = printsOf(qmStaticStrength::Sitting);
    const auto expectPrinted = [&](const char* label, const std::array<double, 3>& expected, double bound) {
        const std::size_t at = output.find(std::string("\n") + label + "[");
        ASSERT_NE(at, std::string::npos) << label;
        float x, y, z;
        const StandardLocale standard;
        ASSERT_EQ(std::sscanf(output.c_str() + at + 1 + std::string(label).size(), "[%f][%f][%f]", &x, &y, &z), 3);
        SCOPED_TRACE(label);
        expectNear(qVector(x, y, z), expected, bound + 1e-6);   // six decimals are printed
    };
    expectPrinted("Upper Leg Moments", {160 * kNm, 0, 40 * kNm}, roundingBound(4, 160 * kNm));
    expectPrinted("Lower Leg Moments", {0, 0, 20 * kNm}, roundingBound(4, 20 * kNm));
    expectPrinted("preTotal Moment", {160, 0, 60}, roundingOfT());
    expectPrinted("Total Moment", {0, 0, 20}, roundingOfT());
    expectPrinted("Hip Force", {0, -1.0 / 3, 0}, roundingOfT() / 60 + roundingBound(4, 1));
    expectPrinted("Hip Moment ", {-40.0 / 9, -80.0 / 9, 80.0 / 9}, roundingOfT() + roundingBound(6, 40));
    expectPrinted("Ankle Force", {0, -35.0 / 3, 0}, roundingOfT() / 60 + roundingBound(4, 12));
}

// The way back to kgf·cm is formed in double and narrowed once: a torque of 10 000 N·m about y at the hip, where
// nothing else turns about y, shows the factor's last bit in the printed total.
TEST_F(Sitting, TurnsMomentsBackByAFactorNarrowedOnce)
{
    load(sittingBody());
    qVector torque(0, 10000, 0);
    analysis->setDefinedTorque(joint("right_hip"), torque);
    const std::string output = printsOf(qmStaticStrength::Sitting);
    const std::size_t at = output.find("\npreTotal Moment[");
    ASSERT_NE(at, std::string::npos);
    float x, y, z;
    const StandardLocale standard;
    ASSERT_EQ(std::sscanf(output.c_str() + at, "\npreTotal Moment[%f][%f][%f]", &x, &y, &z), 3);
    const float factor = static_cast<float>(1.0 / (double(980.665f) * 0.0001));
    EXPECT_EQ(y, 10000.0f * factor);
}

}   // namespace
