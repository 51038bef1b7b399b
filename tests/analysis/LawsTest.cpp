// Laws: what must hold of the default human's results in any posture under any loads.
//
// Postures, loads and seeds are fixed; every angle lies within its limits. Bounds are running error
// bounds: each step of a computation in single precision hands on the errors of what it takes and adds
// one rounding (2^-24 of its result, or of the sum of the magnitudes of a sum, in whatever order). They
// are derived in NaiveAnalysis. Each test records the worst residual as a part of its bound.
#include "AnalysisTest.h"
#include "Chance.h"
#include "NaiveAnalysis.h"
#include "NumberText.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <set>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kPostures = 200;

using Strategy = qmStaticStrength::Strategy;

qVector narrowed(const Exact& v)
{
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

Exact mirrored(const Exact& polar)
{
    return {-polar.x, polar.y, polar.z};
}

Exact mirroredMoment(const Exact& axial)
{
    return {axial.x, -axial.y, -axial.z};
}

std::string mirroredName(const std::string& name)
{
    if (name.rfind("right_", 0) == 0)
        return "left_" + name.substr(6);
    if (name.rfind("left_", 0) == 0)
        return "right_" + name.substr(5);
    return name;
}

std::string mirroredKey(const std::string& key)
{
    const std::size_t dot = key.find('.');
    return mirroredName(key.substr(0, dot)) + "." + mirroredName(key.substr(dot + 1));
}

// One thing that the analysis is told. Numbers are exact in single precision.
struct Told {
    enum Kind { kForce, kLocalForce, kWeight, kOffsetForce, kOffsetLocal, kOffsetWeight, kTorque, kHand };
    Kind kind;
    std::string part;   // a site's key, a joint's name; "right" or "left" of a hand
    Exact load;         // kgf; N·m of a torque
    Exact offset;       // cm
    double grams = 0;
    bool local = false;   // of a hand's load

    bool isWeight() const { return kind == kWeight || kind == kOffsetWeight; }
    bool isGlobal() const { return kind == kForce || kind == kOffsetForce; }
};

struct Posture {
    std::map<std::string, std::vector<double>> angles;   // rad, by joint
    double root[6];                                      // cm, degrees
};

class Laws : public AnalysisTest {
protected:
    void SetUp() override
    {
        loadDefaultHuman();
        ASSERT_NE(human, nullptr);
        forEachPart<qcJoint>(figure->getJoints(), [this](qcJoint* joint) { joints.push_back(joint); });
        forEachPart<qcSite>(figure->getSites(), [this](qcSite* site) { sites.push_back(site); });
        forEachPart<qcSegment>(figure->getSegments(), [this](qcSegment* segment) { segments.push_back(segment); });
        ASSERT_EQ(segments.size(), 41u);
        ASSERT_EQ(joints.size(), 40u);
    }
    void TearDown() override
    {
        RecordProperty("worst_residual_over_bound", std::to_string(worst));
        RecordProperty("compared", compared);
        RecordProperty("left_to_rounding", skipped);
        RecordProperty("widest_bound", std::to_string(widest));
        if (std::getenv("SSTR_TEST_MARGINS"))
            std::printf("    worst residual / bound %.4f, widest bound %.3g, compared %d, left to rounding %d\n", worst,
                        widest, compared, skipped);
        AnalysisTest::TearDown();
    }

    template <class Part> static void forEachPart(qList* list, const std::function<void(Part*)>& visit)
    {
        for (qList* node = list; node; node = qList::iterator(list, node))
            visit(static_cast<Part*>(node->getData()));
    }
    static std::string keyOf(const qcSite* site)
    {
        return std::string(site->getSegment()->getName()) + "." + site->getName();
    }

    // ---- Setting up

    Posture randomPosture(Chance& chance) const
    {
        Posture posture;
        for (const qcJoint* joint : joints) {
            std::vector<double>& angles = posture.angles[joint->getName()];
            for (int i = 1; i <= joint->getNumAngles(); ++i) {
                double lower = 0, upper = 0;
                EXPECT_EQ(joint->getAngleLimits(i, lower, upper), 1) << joint->getName();
                angles.push_back(chance.within(lower, upper));
            }
        }
        for (int i = 0; i < 6; ++i)
            posture.root[i] = i < 3 ? chance.within(-100, 100) : chance.within(-180, 180);
        return posture;
    }
    void take(const Posture& posture)
    {
        for (qcJoint* joint : joints) {
            const std::vector<double>& angles = posture.angles.at(joint->getName());
            for (std::size_t i = 0; i < angles.size(); ++i)
                ASSERT_EQ(joint->setAngle(static_cast<int>(i) + 1, angles[i]), 1);
        }
        const double* r = posture.root;
        ASSERT_EQ(figure->setRoot(r[0], r[1], r[2], r[3], r[4], r[5]), 1);
    }
    // Bend to the side and turn change their sign on the centre line; sides change places.
    Posture mirror(const Posture& posture) const
    {
        Posture image;
        for (const qcJoint* joint : joints) {
            const std::string other = mirroredName(joint->getName());
            std::vector<double> angles = posture.angles.at(other);
            if (other == joint->getName())
                for (std::size_t i = 0; i < angles.size(); ++i) {
                    const std::string angle = joint->getAngleName(static_cast<int>(i) + 1);
                    if (angle.find("bend") != std::string::npos || angle.find("turn") != std::string::npos)
                        angles[i] = -angles[i];
                }
            image.angles[joint->getName()] = angles;
        }
        const double* r = posture.root;
        const double root[6] = {-r[0], r[1], r[2], r[3], -r[4], -r[5]};
        std::copy(root, root + 6, image.root);
        return image;
    }

    std::vector<Told> randomLoads(Chance& chance, std::size_t count) const
    {
        std::vector<Told> told;
        std::set<std::string> taken;   // one load of its own a site, one torque a joint
        const auto vector = [&chance](double size) {
            return Exact{chance.roundWithin(-size, size), chance.roundWithin(-size, size),
                         chance.roundWithin(-size, size)};
        };
        for (std::size_t i = 0; i < count; ++i) {
            Told one;
            one.kind = static_cast<Told::Kind>(chance.below(8));
            if (one.kind == Told::kTorque)
                one.part = joints[chance.below(joints.size())]->getName();
            else if (one.kind == Told::kHand)
                one.part = chance.coin() ? "right" : "left";
            else
                one.part = keyOf(sites[chance.below(sites.size())]);
            const bool owned = one.kind <= Told::kWeight || one.kind >= Told::kTorque;
            if (owned && !taken.insert(one.part).second)
                continue;
            one.load = vector(20);
            one.offset = vector(30);
            one.grams = chance.roundWithin(100, 10000);
            one.local = chance.coin();
            told.push_back(one);
        }
        return told;
    }
    void tell(const std::vector<Told>& told)
    {
        analysis->clear();
        for (const char* key :
             {"RightZelHandLoads", "LeftZelHandLoads", "RightZelHandLoadsLocal", "LeftZelHandLoadsLocal"})
            figure->removeProperty(key);
        for (const Told& one : told) {
            const qVector load = narrowed(one.load), offset = narrowed(one.offset);
            const float grams = static_cast<float>(one.grams);
            switch (one.kind) {
            case Told::kForce:
            case Told::kLocalForce:
                EXPECT_EQ(analysis->setLoad(site(one.part), load, one.kind == Told::kLocalForce), 1);
                break;
            case Told::kWeight:
                EXPECT_EQ(analysis->setWeightLoad(site(one.part), grams), 1);
                break;
            case Told::kOffsetForce:
            case Told::kOffsetLocal:
                EXPECT_NE(analysis->setLoadWithOffset(site(one.part), offset, load, one.kind == Told::kOffsetLocal),
                          nullptr);
                break;
            case Told::kOffsetWeight:
                EXPECT_NE(analysis->setWeightLoadWithOffset(site(one.part), offset, grams), nullptr);
                break;
            case Told::kTorque: {
                qVector torque = load;
                EXPECT_EQ(analysis->setDefinedTorque(joint(one.part), torque), 1);
                break;
            }
            case Told::kHand: {
                const std::string key = one.part == "right" ? "RightZelHandLoads" : "LeftZelHandLoads";
                std::string text;
                for (const double component : {one.load.x, one.load.y, one.load.z})
                    text += numberText(component, 6, std::chars_format::fixed) + " ";
                figure->setProperty(key.c_str(), qcValue(text.c_str()));
                if (one.local)
                    figure->setProperty((key + "Local").c_str(), qcValue("1"));
                break;
            }
            }
        }
    }
    NaiveLoads naive(const std::vector<Told>& told) const
    {
        NaiveLoads loads;
        for (const Told& one : told) {
            const Exact force = one.isWeight() ? gravity() * (one.grams * 0.001 / 980.665) : one.load;
            switch (one.kind) {
            case Told::kForce:
            case Told::kLocalForce:
            case Told::kWeight:
                loads.sites[site(one.part)] = {force, one.kind == Told::kLocalForce};
                break;
            case Told::kOffsetForce:
            case Told::kOffsetLocal:
            case Told::kOffsetWeight:
                loads.displaced.push_back({site(one.part), one.offset, {force, one.kind == Told::kOffsetLocal}});
                break;
            case Told::kTorque:
                loads.torques[joint(one.part)] = one.load;
                break;
            case Told::kHand:
                loads.hands[one.part == "right" ? qcRight : qcLeft] = NaiveLoads::Force{one.load, one.local};
                break;
            }
        }
        return loads;
    }
    Exact gravity() const
    {
        qVector vector;
        analysis->getGravity(vector);
        return exactly(vector);
    }
    void compute(Strategy strategy)
    {
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->compute(), 1);
    }
    static void follow(NaiveWalk& walk, Strategy strategy)
    {
        if (strategy == qmStaticStrength::RightFoot || strategy == qmStaticStrength::LeftFoot)
            walk.standOn(strategy == qmStaticStrength::RightFoot ? qcRight : qcLeft);
        else
            walk.upperBody();
        if (strategy == qmStaticStrength::SittingNoFeet)
            walk.hangingLegs();
    }

    // ---- Comparing

    struct Stored {
        int status;
        Exact force, moment;
    };
    Stored storedOn(qcJoint* joint) const
    {
        qVector force, moment;
        const int status = analysis->getJointForces(joint, force, moment);
        return {status, exactly(force), exactly(moment)};
    }
    std::map<qcJoint*, Stored> allStored() const
    {
        std::map<qcJoint*, Stored> all;
        for (qcJoint* joint : joints)
            all[joint] = storedOn(joint);
        return all;
    }
    std::string allBits() const
    {
        std::string bits;
        for (qcJoint* joint : joints) {
            qVector force, moment;
            bits += static_cast<char>('0' + analysis->getJointForces(joint, force, moment));
            for (const qVector* v : {&force, &moment})
                bits.append(reinterpret_cast<const char*>(components(*v).data()), 3 * sizeof(float));
        }
        return bits;
    }

    // Every component within the bound.
    void expectNear(const Exact& got, const Exact& expected, double bound, const char* what)
    {
        const double residual =
            std::max({std::abs(got.x - expected.x), std::abs(got.y - expected.y), std::abs(got.z - expected.z)});
        EXPECT_LE(residual, roundingBound(1, bound / (2 * kRounding))) << what << ", bound " << bound;
        EXPECT_TRUE(std::isfinite(residual)) << what;
        widest = std::max(widest, bound);
        if (bound > 0)
            worst = std::max(worst, residual / bound);
        ++compared;
    }

    std::vector<qcJoint*> joints;
    std::vector<qcSite*> sites;
    std::vector<qcSegment*> segments;
    double worst = 0, widest = 0;
    int compared = 0, skipped = 0;
};

constexpr Strategy kWalks[] = {qmStaticStrength::RightFoot, qmStaticStrength::LeftFoot, qmStaticStrength::SittingNoFeet,
                               qmStaticStrength::TwoFeet};

// ---- Sums ----------------------------------------------------------------------------------------

// On one foot the ankle carries every weight and load of the whole body, that foot's too: the walk comes
// from both sides. The law ends at the palms: a hand's load counts only without a load of the palm's own,
// the palm's loads with offsets only with one.
TEST_F(Laws, OnOneFootTheAnkleCarriesTheWholeBodyAndEveryLoad)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        take(randomPosture(chance));
        const std::vector<Told> told = randomLoads(chance, 10);
        tell(told);
        const Strategy strategy = chance.coin() ? qmStaticStrength::RightFoot : qmStaticStrength::LeftFoot;
        compute(strategy);

        std::set<std::string> loaded;
        for (const Told& one : told)
            if (one.kind <= Told::kWeight)
                loaded.insert(one.part);
        const auto isPalm = [](const std::string& key) { return key.find("palmcenter") != std::string::npos; };
        Exact total;
        for (const qcSegment* segment : segments)
            total = total + gravity() * (segment->getMass() * 0.001 / 980.665);
        for (const Told& one : told) {
            const std::string palm = one.part + "_hand." + one.part + "_palmcenter";
            if (one.kind == Told::kTorque || (one.kind == Told::kHand && loaded.count(palm))
                || (one.kind > Told::kWeight && isPalm(one.part) && !loaded.count(one.part)))
                continue;
            const bool local = one.kind == Told::kLocalForce || one.kind == Told::kOffsetLocal
                               || (one.kind == Told::kHand && one.local);
            qcSite* where = site(one.kind == Told::kHand ? palm : one.part);
            const qMatrix& frame = where->getGlobalTransform();
            total = total
                    + (one.isWeight() ? gravity() * (one.grams * 0.001 / 980.665)
                       : local        ? exactly(frame.getAxis(0)) * one.load.x + exactly(frame.getAxis(1)) * one.load.y
                                     + exactly(frame.getAxis(2)) * one.load.z
                               : one.load);
        }

        const NaiveLoads loads = naive(told);
        NaiveWalk walk(human, gravity(), loads);
        follow(walk, strategy);
        qcJoint* ankle = human->getAnkleJoint(strategy == qmStaticStrength::RightFoot ? qcRight : qcLeft);
        for (const auto& [joint, result] : walk.results())
            ASSERT_TRUE(result.stored) << joint->getName();   // nothing is dropped on the way
        expectNear(storedOn(ankle).force, total, walk.results().at(ankle).forceBound, "force");
    }
}

// Every joint of every walk without a stop segment has the sum of all weights and loads beyond it, about
// itself, and the torques beyond it.
TEST_F(Laws, WalksAgreeWithTheSumOfAllThatLiesBeyond)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(1000 + seed);
        take(randomPosture(chance));
        const std::vector<Told> told = randomLoads(chance, chance.below(16));
        tell(told);
        if (seed % 3 == 0)
            analysis->setGravity(
                narrowed({chance.within(-900, 900), chance.within(-900, 900), chance.within(-900, 900)}));
        else
            analysis->setGravity({0, -980.665f, 0});
        const NaiveLoads loads = naive(told);
        for (const Strategy strategy : kWalks) {
            SCOPED_TRACE(seed * 10 + static_cast<unsigned>(strategy));
            compute(strategy);
            NaiveWalk walk(human, gravity(), loads);
            follow(walk, strategy);
            EXPECT_EQ(walk.results().size(), strategy == qmStaticStrength::TwoFeet ? 32u : 40u);
            for (const auto& [joint, expected] : walk.results()) {
                if (expected.unsure) {
                    ++skipped;
                    continue;
                }
                SCOPED_TRACE(joint->getName());
                const Stored got = storedOn(joint);
                EXPECT_EQ(got.status, expected.stored ? 1 : 0);
                expectNear(got.force, expected.force, expected.forceBound, "force");
                expectNear(got.moment, expected.moment, expected.momentBound, "moment");
            }
        }
    }
    EXPECT_LT(skipped, compared / 100);
}

// Newton, joint by joint on what is stored: a joint's result is that of the next joints beyond, brought over
// to it, with the loads and the weight of the segment between. Only this one step's roundings are allowed.
// The law ends at the supporting ankle, which sums both its sides.
TEST_F(Laws, EachResultFollowsFromTheStoredOnesBeyondIt)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(2000 + seed);
        take(randomPosture(chance));
        const std::vector<Told> told = randomLoads(chance, 8);
        tell(told);
        const NaiveLoads loads = naive(told);
        for (const Strategy strategy : {qmStaticStrength::RightFoot, qmStaticStrength::SittingNoFeet}) {
            SCOPED_TRACE(seed * 10 + static_cast<unsigned>(strategy));
            compute(strategy);
            NaiveWalk walk(human, gravity(), loads);
            follow(walk, strategy);
            std::map<qcJoint*, std::pair<Exact, Exact>> stored;
            for (qcJoint* joint : joints)
                stored[joint] = {storedOn(joint).force, storedOn(joint).moment};
            for (const auto& [joint, reached] : walk.results()) {
                if (strategy == qmStaticStrength::RightFoot && joint == human->getAnkleJoint(qcRight))
                    continue;
                const NaiveResult step = walk.stepFromStored(joint, reached.from, stored);
                if (step.unsure) {
                    ++skipped;
                    continue;
                }
                SCOPED_TRACE(joint->getName());
                expectNear(stored[joint].first, step.force, step.forceBound, "force");
                expectNear(stored[joint].second, step.moment, step.momentBound, "moment");
            }
        }
    }
    EXPECT_LT(skipped, compared / 100);
}

// On a weightless body the results of two sets of loads add up. The law ends where a negligible result is
// dropped or replaced: such joints, and those they are beyond of, are left out.
TEST_F(Laws, LoadsAddUpOnAWeightlessBody)
{
    for (qcSegment* segment : segments)
        segment->setMass(0);
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(3000 + seed);
        take(randomPosture(chance));
        std::vector<Told> both = randomLoads(chance, 10);
        // a hand's load hides behind a load of its palm, and brings no loads with offsets out
        both.erase(std::remove_if(both.begin(), both.end(),
                                  [](const Told& one) {
                                      return one.kind == Told::kHand
                                             || one.part.find("palmcenter") != std::string::npos;
                                  }),
                   both.end());
        const auto middle = both.begin() + static_cast<std::ptrdiff_t>(both.size() / 2);
        const std::vector<Told> sets[3] = {{both.begin(), middle}, {middle, both.end()}, both};
        const Strategy strategy = kWalks[seed % 3];
        std::map<qcJoint*, Stored> stored[3];
        std::map<qcJoint*, NaiveResult> bounds[3];
        for (int i = 0; i < 3; ++i) {
            tell(sets[i]);
            compute(strategy);
            stored[i] = allStored();
            const NaiveLoads loads = naive(sets[i]);
            NaiveWalk walk(human, gravity(), loads);
            follow(walk, strategy);
            bounds[i] = walk.results();
        }
        SCOPED_TRACE(seed);
        for (const auto& [joint, result] : bounds[2]) {
            const NaiveResult &one = bounds[0].at(joint), &two = bounds[1].at(joint);
            if (one.replaced + two.replaced + result.replaced || one.unsure || two.unsure || result.unsure) {
                ++skipped;
                continue;
            }
            SCOPED_TRACE(joint->getName());
            expectNear(stored[2][joint].force, stored[0][joint].force + stored[1][joint].force,
                       one.forceBound + two.forceBound + result.forceBound, "force");
            expectNear(stored[2][joint].moment, stored[0][joint].moment + stored[1][joint].moment,
                       one.momentBound + two.momentBound + result.momentBound, "moment");
        }
    }
    EXPECT_GT(compared, kPostures * 40);
}

// ---- Symmetry ------------------------------------------------------------------------------------

std::vector<Told> mirroredLoads(std::vector<Told> told)
{
    for (Told& one : told) {
        if (one.kind == Told::kTorque) {
            one.part = mirroredName(one.part);
            one.load = mirroredMoment(one.load);
        } else {
            one.part = one.kind == Told::kHand ? (one.part == "right" ? "left" : "right") : mirroredKey(one.part);
            one.load = mirrored(one.load);   // in a site's own axes too: these are mirrored as well
            one.offset = mirrored(one.offset);
        }
    }
    return told;
}

// The law ends at the stored placeholder, which is no vector that turns or mirrors: it differs from its
// image by up to 2e-5 N·m a component, at its joint and at every joint it is beyond of.
constexpr double kPlaceholderImage = 2e-5;

TEST_F(Laws, AMirroredPostureGivesMirroredResults)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(4000 + seed);
        const Posture posture = randomPosture(chance);
        const std::vector<Told> told = randomLoads(chance, 8);
        const Strategy strategy = kWalks[seed % 4];
        const Strategy image = strategy == qmStaticStrength::RightFoot  ? qmStaticStrength::LeftFoot
                               : strategy == qmStaticStrength::LeftFoot ? qmStaticStrength::RightFoot
                                                                        : strategy;
        take(posture);
        tell(told);
        compute(strategy);
        const std::map<qcJoint*, Stored> original = allStored();
        const NaiveLoads loads = naive(told);
        NaiveWalk walk(human, gravity(), loads);
        follow(walk, strategy);
        std::map<qcSite*, Exact> places;
        for (qcSite* site : sites)
            places[site] = exactly(site->getGlobalTransform().getTranslation());

        take(mirror(posture));
        tell(mirroredLoads(told));
        compute(image);
        SCOPED_TRACE(seed);
        for (const auto& [place, where] : places) {
            const Exact there = exactly(site(mirroredKey(keyOf(place)))->getGlobalTransform().getTranslation());
            ASSERT_EQ(components(narrowed(there)), components(narrowed(mirrored(where)))) << keyOf(place);
        }
        for (const auto& [joint, result] : walk.results()) {
            if (result.unsure) {
                ++skipped;
                continue;
            }
            SCOPED_TRACE(joint->getName());
            const Stored got = storedOn(this->joint(mirroredName(joint->getName())));
            EXPECT_EQ(got.status, original.at(joint).status);
            expectNear(got.force, mirrored(original.at(joint).force), 2 * result.forceBound, "force");
            expectNear(got.moment, mirroredMoment(original.at(joint).moment),
                       2 * result.momentBound + kPlaceholderImage * result.replaced, "moment");
        }
    }
    EXPECT_LT(skipped, compared / 50);
}

using Bounded = NaiveLegs<BoundedNumber>;

// A vector that lies within a distance of the given one.
Triple<BoundedNumber> within(const Exact& v, double error)
{
    return {{v.x, error}, {v.y, error}, {v.z, error}};
}

Exact valueOf(const Triple<BoundedNumber>& v)
{
    return {v.x.value, v.y.value, v.z.value};
}

double errorOf(const Triple<BoundedNumber>& v)
{
    return std::max({v.x.error, v.y.error, v.z.error});
}

// Whether the legs are decided well enough to compare: rounding decides no branch, and no quotient of the
// method is so badly placed that its bound is wide, kgf and N·m.
bool decided(const Bounded& legs)
{
    constexpr double kWide = 0.5;
    return !legs.unsure && std::all_of(legs.stores.begin(), legs.stores.end(), [](const Bounded::Store& store) {
        return errorOf(store.force) < kWide && errorOf(store.moment) < kWide;
    });
}

// On two feet the legs agree with the same steps in double.
TEST_F(Laws, LegsOnTwoFeetAgreeWithTheSameStepsInDouble)
{
    int supports[3] = {};
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(5000 + seed);
        take(randomPosture(chance));
        std::vector<Told> told = randomLoads(chance, 6);
        if (chance.coin()) {
            Told hPoint{Told::kForce, "lower_torso.h_point", {3, -20, 5}, {}};
            told.erase(
                std::remove_if(told.begin(), told.end(), [&](const Told& one) { return one.part == hPoint.part; }),
                told.end());
            told.push_back(hPoint);
        }
        tell(told);
        compute(qmStaticStrength::TwoFeet);
        const Stored waist = storedOn(human->getWaistJoint());
        qVector load, g = narrowed(gravity());
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        const Bounded legs(human, g, within(waist.force, 0), within(waist.moment, 0), hasLoad ? &load : nullptr);
        if (!decided(legs)) {
            ++skipped;
            continue;
        }
        ++supports[legs.support];
        SCOPED_TRACE(seed);
        for (const Bounded::Store& store : legs.stores) {
            SCOPED_TRACE(store.joint->getName());
            const Stored got = storedOn(store.joint);
            expectNear(got.force, valueOf(store.force), errorOf(store.force), "force");
            expectNear(got.moment, valueOf(store.moment), errorOf(store.moment), "moment");
        }
    }
    EXPECT_GT(supports[Bounded::kRight], 10);
    EXPECT_GT(supports[Bounded::kLeft], 10);
    EXPECT_GT(supports[Bounded::kBoth], 10);
    EXPECT_LT(skipped, kPostures / 10);
}

// On two feet the legs are mirrored too. The law ends at ties, which go to the right foot, and where
// rounding decides a branch. The h-point's load counts as it is stored, so a local one is left out.
TEST_F(Laws, AMirroredPostureGivesMirroredLegsOnTwoFeet)
{
    int both = 0;
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(6000 + seed);
        const Posture posture = randomPosture(chance);
        const std::vector<Told> told = randomLoads(chance, 6);
        take(posture);
        tell(told);
        compute(qmStaticStrength::TwoFeet);
        const std::map<qcJoint*, Stored> original = allStored();

        const NaiveLoads loads = naive(told);
        NaiveWalk walk(human, gravity(), loads);
        walk.upperBody();
        const NaiveResult& waist = walk.results().at(human->getWaistJoint());
        qVector load, g = narrowed(gravity());
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        const Bounded legs(human, g, within(waist.force, waist.forceBound),
                           within(waist.moment, waist.momentBound + kPlaceholderImage * waist.replaced),
                           hasLoad ? &load : nullptr);
        take(mirror(posture));
        tell(mirroredLoads(told));
        compute(qmStaticStrength::TwoFeet);
        if (!decided(legs) || waist.unsure) {
            ++skipped;
            continue;
        }
        both += legs.support == Bounded::kBoth;
        SCOPED_TRACE(seed);
        for (const Bounded::Store& store : legs.stores) {
            SCOPED_TRACE(store.joint->getName());
            const Stored got = storedOn(joint(mirroredName(store.joint->getName())));
            expectNear(got.force, mirrored(original.at(store.joint).force), 2 * errorOf(store.force), "force");
            expectNear(got.moment, mirroredMoment(original.at(store.joint).moment), 2 * errorOf(store.moment),
                       "moment");
        }
    }
    EXPECT_GT(both, 10);
    EXPECT_LT(skipped, kPostures / 10);
}

// The tie: a symmetric posture is its own mirror image, but only the right foot carries it.
TEST_F(Laws, TheMirrorLawEndsAtTies)
{
    compute(qmStaticStrength::TwoFeet);
    EXPECT_GT(length(storedOn(joint("right_ankle")).force), 60);
    EXPECT_EQ(length(storedOn(joint("left_ankle")).force), 0);
}

// And the placeholder: a thumb alone has less than 0.01 N·m, on either side the same vector is stored.
TEST_F(Laws, TheMirrorLawEndsAtThePlaceholder)
{
    compute(qmStaticStrength::RightFoot);
    for (const char* name : {"right_thumb_joint", "left_thumb_joint"}) {
        const Result result = resultOf(name);
        EXPECT_THAT(components(result.moment), testing::ElementsAre(0.00001f, 0.00001f, 0.00001f)) << name;
    }
}

// Turning the body with its global loads, offsets, torques and gravity about the vertical axis turns every
// result. The walks know no direction of their own; the legs on two feet know only the vertical.
// Positions are narrowed once before and after the turn: 2^-24 of each.
TEST_F(Laws, TurningTheBodyAndGravityAboutTheVerticalTurnsTheResults)
{
    int both = 0;
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(7000 + seed);
        Posture posture = randomPosture(chance);
        // upright root, so that the turn is one of its angles; gravity leans in every other case
        posture.root[3] = posture.root[5] = 0;
        const std::vector<Told> told = randomLoads(chance, 6);
        const Exact pull =
            seed % 2 ? Exact{0, -980.665, 0} : Exact{chance.within(-500, 500), -900, chance.within(-500, 500)};
        const double degrees = chance.within(-180, 180);
        const double c = std::cos(degrees * kPi / 180), s = std::sin(degrees * kPi / 180);
        const auto turned = [&](const Exact& v) { return Exact{c * v.x + s * v.z, v.y, c * v.z - s * v.x}; };
        const Strategy strategy = kWalks[seed % 4];

        take(posture);
        tell(told);
        analysis->setGravity(narrowed(pull));
        compute(strategy);
        const std::map<qcJoint*, Stored> original = allStored();
        const NaiveLoads loads = naive(told);
        // loads, offsets and gravity are narrowed after the turn, too: they count as a relative error of
        // every force, which a relative error of every lever covers once more
        NaiveWalk walk(human, gravity(), loads, 4 * kRounding);
        follow(walk, strategy);
        double loadSize = 0;   // kgf or N·m, of what is narrowed anew
        for (const Told& one : told)
            loadSize += length(one.load) + one.grams * 0.001 * length(pull) / 980.665;
        for (const qcSegment* segment : segments)
            loadSize += segment->getMass() * 0.001 * length(pull) / 980.665;
        const double forceNarrowing = 2 * kRounding * loadSize;
        // no point lies farther than this from any joint, cm, an offset's rounding included
        const double momentNarrowing = 2 * forceNarrowing * 0.0980665 * 400 + forceNarrowing;
        const NaiveResult& waist = walk.results().at(human->getWaistJoint());
        qVector load, g = narrowed(gravity());
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        const Bounded legs(
            human, g, within(waist.force, waist.forceBound + forceNarrowing),
            within(waist.moment, waist.momentBound + momentNarrowing + kPlaceholderImage * waist.replaced),
            hasLoad ? &load : nullptr, 4 * kRounding);

        Posture image = posture;
        const Exact root = turned({posture.root[0], posture.root[1], posture.root[2]});
        image.root[0] = root.x;
        image.root[2] = root.z;
        image.root[4] += degrees;
        std::vector<Told> turnedTold = told;
        for (Told& one : turnedTold) {
            const bool global = one.isGlobal() || one.kind == Told::kTorque;
            if (global)
                one.load = turned(one.load);
            one.offset = turned(one.offset);
            if (one.kind == Told::kHand && !one.local)
                one.load = turned(one.load);
        }
        take(image);
        tell(turnedTold);
        analysis->setGravity(narrowed(turned(exactly(narrowed(pull)))));
        compute(strategy);

        SCOPED_TRACE(seed);
        for (const auto& [joint, result] : walk.results()) {
            if (result.unsure) {
                ++skipped;
                continue;
            }
            SCOPED_TRACE(joint->getName());
            const Stored got = storedOn(joint);
            expectNear(got.force, turned(original.at(joint).force), 2 * result.forceBound + forceNarrowing, "force");
            expectNear(got.moment, turned(original.at(joint).moment),
                       2 * result.momentBound + momentNarrowing + kPlaceholderImage * result.replaced, "moment");
        }
        if (strategy != qmStaticStrength::TwoFeet || seed % 2 == 0 || hasLoad)
            continue;   // gravity that leans is checked by the walks
        if (!decided(legs) || waist.unsure) {
            ++skipped;
            continue;
        }
        both += legs.support == Bounded::kBoth;
        for (const Bounded::Store& store : legs.stores) {
            SCOPED_TRACE(store.joint->getName());
            const Stored got = storedOn(store.joint);
            // a component after the turn is made of two
            expectNear(got.force, turned(original.at(store.joint).force), 3 * errorOf(store.force), "force");
            expectNear(got.moment, turned(original.at(store.joint).moment), 3 * errorOf(store.moment), "moment");
        }
    }
    EXPECT_GT(both, 3);
    EXPECT_LT(skipped, compared / 20);
}

// Turned about another axis, with gravity and all, the walks' results turn but the legs' on two feet do not:
// their vertical is the world's.
TEST_F(Laws, TurningAboutAnotherAxisTurnsTheWalksButNotTheLegsOnTwoFeet)
{
    // one foot before the other: both feet carry
    ASSERT_EQ(joint("right_hip")->setAngle(1, 0.4), 1);
    ASSERT_EQ(joint("left_hip")->setAngle(1, -0.3), 1);
    figure->setRoot(0, 100, 0, 0, 0, 0);
    compute(qmStaticStrength::TwoFeet);
    const std::map<qcJoint*, Stored> upright = allStored();
    ASSERT_GT(length(upright.at(joint("left_ankle")).force), 1);
    ASSERT_GT(length(upright.at(joint("right_ankle")).force), 1);

    // 90 degrees about z: y goes to -x, and x to y
    figure->setRoot(-100, 0, 0, 0, 0, 90);
    analysis->setGravity({980.665f, 0, 0});
    compute(qmStaticStrength::TwoFeet);
    const auto turned = [](const Exact& v) { return Exact{-v.y, v.x, v.z}; };
    const NaiveLoads none;
    NaiveWalk walk(human, gravity(), none, 4 * kRounding);
    walk.upperBody();
    for (const auto& [joint, result] : walk.results())
        expectNear(storedOn(joint).force, turned(upright.at(joint).force), 2 * result.forceBound, joint->getName());
    EXPECT_GT(length(storedOn(joint("left_ankle")).force - turned(upright.at(joint("left_ankle")).force)), 1);
}

// ---- Gravity -------------------------------------------------------------------------------------

// Twice the gravity, twice the weights, to the bit: a factor of two rounds nothing. Without other loads so
// do the results, wherever 0.01 decides nothing: above, in 1 g already, and not a placeholder.
TEST_F(Laws, TwiceTheGravityIsTwiceTheWeightAndLeavesGivenForces)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(8000 + seed);
        take(randomPosture(chance));
        std::vector<Told> told = randomLoads(chance, 12);
        const auto read = [&](std::vector<std::array<float, 3>>& weights, std::vector<std::array<float, 3>>& forces) {
            for (const Told& one : told)
                if (one.kind <= Told::kWeight) {
                    qVector load;
                    EXPECT_EQ(analysis->getSiteLoad(site(one.part), load), 1);
                    (one.isWeight() ? weights : forces).push_back(components(load));
                }
            for (int i = 0; i < analysis->getNumLoadsWithOffset(); ++i) {
                const loadWithOffset* record = analysis->getNthLoadWithOffset(i);
                (std::strcmp(record->type, "weight") == 0 ? weights : forces).push_back(components(record->load));
            }
        };
        std::vector<std::array<float, 3>> weights[2], forces[2];
        analysis->setGravity({100, -980.665f, 30});
        tell(told);
        read(weights[0], forces[0]);
        analysis->setGravity({200, -2 * 980.665f, 60});
        read(weights[1], forces[1]);
        EXPECT_EQ(forces[1], forces[0]);
        ASSERT_EQ(weights[1].size(), weights[0].size());
        for (std::size_t i = 0; i < weights[0].size(); ++i)
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(weights[1][i][k], 2 * weights[0][i][k]);

        told.erase(std::remove_if(told.begin(), told.end(), [](const Told& one) { return !one.isWeight(); }),
                   told.end());
        const Strategy strategy = kWalks[seed % 3];
        std::map<qcJoint*, Stored> stored[2];
        std::map<qcJoint*, NaiveResult> naiveResults[2];
        for (int i : {0, 1}) {
            analysis->setGravity(i ? qVector(200, -2 * 980.665f, 60) : qVector(100, -980.665f, 30));
            tell(told);
            compute(strategy);
            stored[i] = allStored();
            const NaiveLoads loads = naive(told);
            NaiveWalk walk(human, gravity(), loads);
            follow(walk, strategy);
            naiveResults[i] = walk.results();
        }
        for (const auto& [joint, result] : naiveResults[0]) {
            const NaiveResult& heavy = naiveResults[1].at(joint);
            if (result.replaced + heavy.replaced || result.unsure || heavy.unsure)
                continue;
            ++compared;
            EXPECT_EQ(components(narrowed(stored[1][joint].force)), components(narrowed(stored[0][joint].force * 2.0)));
            EXPECT_EQ(components(narrowed(stored[1][joint].moment)),
                      components(narrowed(stored[0][joint].moment * 2.0)));
        }
    }
    EXPECT_GT(compared, kPostures * 10);
}

// ---- Again ---------------------------------------------------------------------------------------

constexpr Strategy kAll[] = {qmStaticStrength::TwoFeet, qmStaticStrength::RightFoot, qmStaticStrength::LeftFoot,
                             qmStaticStrength::Walking, qmStaticStrength::Sitting,   qmStaticStrength::SittingNoFeet};

// The same bits from a second computation, from one after a reset, and from a new analysis object.
TEST_F(Laws, ComputingAgainAfterAResetOrInANewObjectGivesTheSameBits)
{
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(9000 + seed);
        take(randomPosture(chance));
        tell(randomLoads(chance, 12));
        compute(kAll[seed % 6]);
        const std::string bits = allBits();
        analysis->compute();
        EXPECT_EQ(allBits(), bits) << "computed twice";

        analysis->reset();
        for (qcJoint* joint : joints)
            EXPECT_EQ(storedOn(joint).status, 0);
        analysis->compute();
        EXPECT_EQ(allBits(), bits) << "after a reset";

        dropAnalysis();
        makeAnalysis();
        EXPECT_EQ(analysis->getStrategy(), kAll[seed % 6]);
        analysis->compute();
        EXPECT_EQ(allBits(), bits) << "in a new object";
    }
}

// A scene saved and opened again computes to the same bits.
TEST_F(Laws, ASceneSavedAndOpenedAgainGivesTheSameBits)
{
    const TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(9500 + seed);
        take(randomPosture(chance));
        tell(randomLoads(chance, 12));
        compute(kAll[seed % 6]);
        const std::string bits = allBits();
        const std::string path = folder.file("scene" + std::to_string(seed) + ".json");
        ASSERT_EQ(scene->save(path.c_str()), 1);

        const std::unique_ptr<qcScene> opened(qcScene::open(path.c_str()));
        ASSERT_NE(opened, nullptr);
        auto* again = static_cast<qcHuman*>(opened->getHumans()->getData());
        {
            qmStaticStrength other(again);
            EXPECT_EQ(other.compute(), 1);
            std::string otherBits;
            for (const qcJoint* joint : joints) {
                qVector force, moment;
                qcJoint* twin = again->getFigure()->findJoint(joint->getName());
                otherBits += static_cast<char>('0' + other.getJointForces(twin, force, moment));
                for (const qVector* v : {&force, &moment})
                    otherBits.append(reinterpret_cast<const char*>(components(*v).data()), 3 * sizeof(float));
            }
            EXPECT_EQ(otherBits, bits);
        }
    }
}

// Where that law ends: hands and knees and gravity are not kept on the figure, a load below 1e-5 kgf goes.
TEST_F(Laws, AResetForgetsHandsAndKneesAndVanishingLoads)
{
    compute(qmStaticStrength::HandsAndKnees);
    const std::string kneeling = allBits();
    analysis->compute();
    EXPECT_EQ(allBits(), kneeling);   // computed twice is the same, here too
    analysis->reset();
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::TwoFeet);

    analysis->setLoad(site("head.eye_level"), {0, -0.000001f, 0});
    EXPECT_EQ(analysis->getNumLoads(), 1);
    analysis->reset();
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(analysis->getNumLoads(), 0);

    analysis->setGravity({0, -1, 0});
    dropAnalysis();
    makeAnalysis();
    EXPECT_EQ(gravity().y, -980.665f);
}

// ---- Both feet together --------------------------------------------------------------------------

// On both feet, with T the force above the ankles, d from the right to the left ankle, n = d × down:
//
//   MR - ML = d × T · S         the moments about the two ankles differ by the move of T
//   AR + AL = 2 T - (F1 + F2) - (F3 + F4)
//           = 2 T - S K ( ((d × T) · n / |d|) down - ((d × T) · down / |d|) n )
//
// So the shares make up the load above to 2 - S K = 0.99932 of it, for a vertical T on level ankles, and
// differ from it otherwise: that much of the law holds. The hips share the waist's moment exactly, r + q = 1;
// forces at hips and knees are scaled to their ankle and add up to nothing in particular.
TEST_F(Laws, OnBothFeetTheAnklesShareTheLoadAbove)
{
    const double SK = 0.0980665 / 0.098;
    int both = 0;
    for (unsigned seed = 1; seed <= kPostures; ++seed) {
        Chance chance(5000 + seed);
        take(randomPosture(chance));
        const std::vector<Told> told = randomLoads(chance, 6);
        tell(told);
        compute(qmStaticStrength::TwoFeet);
        const Stored waist = storedOn(human->getWaistJoint());
        qVector load, g = narrowed(gravity());
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        const Bounded legs(human, g, within(waist.force, 0), within(waist.moment, 0), hasLoad ? &load : nullptr);
        if (!decided(legs)) {
            ++skipped;
            continue;
        }
        if (legs.support != Bounded::kBoth)
            continue;
        ++both;
        SCOPED_TRACE(seed);
        std::map<std::string, Bounded::Store> bounds;
        for (const Bounded::Store& store : legs.stores)
            bounds[store.joint->getName()] = store;

        Exact T = waist.force + (hasLoad ? exactly(load) : Exact());
        for (const char* name :
             {"lower_torso", "right_upper_leg", "right_lower_leg", "left_upper_leg", "left_lower_leg"})
            T = T + gravity() * (segment(name)->getMass() * 0.001 / 980.665);
        const auto ankleAt = [&](const char* joint, const char* shank) {
            return exactly(this->joint(joint)->siteOnSegment(segment(shank))->getGlobalTransform().getTranslation());
        };
        const Exact d = ankleAt("left_ankle", "left_lower_leg") - ankleAt("right_ankle", "right_lower_leg");
        const Exact down{0, -1, 0}, n = unit(cross(d, down)), turn = cross(d, T);
        const Exact expected =
            T * 2.0 - down * (SK * dot(turn, n) / length(d)) + n * (SK * dot(turn, down) / length(d));
        expectNear(storedOn(joint("right_ankle")).force + storedOn(joint("left_ankle")).force, expected,
                   errorOf(bounds["right_ankle"].force) + errorOf(bounds["left_ankle"].force), "ankles");
        expectNear(storedOn(joint("right_hip")).moment + storedOn(joint("left_hip")).moment, waist.moment,
                   errorOf(bounds["right_hip"].moment) + errorOf(bounds["left_hip"].moment), "hips");
    }
    EXPECT_GT(both, 10);
}

}   // namespace
