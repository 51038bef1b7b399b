// Walk, bits: random bodies, loads, torques and stop segments against the plain walk, every joint in every bit.
#include "WalkFixture.h"

#include "Chance.h"
#include "NumberText.h"
#include "PlainWalk.h"

#include <algorithm>
#include <utility>

namespace {

qVector narrowed(const SmallFigure::Vector& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

PlainWalk::Vector plain(const qVector& v)
{
    return {v[0], v[1], v[2]};
}

qVector hosts(const PlainWalk::Vector& v)
{
    return {v.x, v.y, v.z};
}

void shuffle(nlohmann::json& list, Chance& chance)
{
    for (std::size_t i = list.size(); i > 1; --i)
        std::swap(list[i - 1], list[chance.below(i)]);
}

class WalkBits : public Walk {
protected:
    // A tree of random frames and masses; segments have one to four sites, sites any number of joints, all in random
    // order. On one segment with several joints, "trunk", two are named so that the one takes a share of the other's
    // stored result: "taker" and "giver". One body in three is of a few millimetres and grams, with few loads: what it
    // puts on its joints is next to nothing, or its moment is.
    void makeBody(Chance& chance, unsigned seed)
    {
        SmallFigure body("man" + std::to_string(seed));
        tiny = chance.below(3) == 0;
        const double size = tiny ? 0.3 : 60;   // cm
        const std::size_t count = 6 + chance.below(10);
        std::vector<std::vector<std::string>> sites(count), joints(count);
        for (std::size_t i = 0; i < count; ++i) {
            const std::string segment = "s" + std::to_string(i);
            body.segment(segment, mass(chance), chance.vector(size / 6), chance.vector(size), chance.axes());
            for (std::size_t n = 1 + chance.below(4); n > 0; --n) {
                const char* const names[] = {"site", "site", "site", "palmcenter", "right_palmcenter"};
                const std::string site = names[chance.below(5)] + std::to_string(n);
                body.site(segment, site, chance.vector(size), chance.axes());
                body.secondPosition(segment + "." + site, chance.vector(size));
                sites[i].push_back(segment + "." + site);
            }
        }
        const auto anySite = [&](std::size_t i) { return sites[i][chance.below(sites[i].size())]; };

        // a tree: each segment hangs on an earlier one; the trunk is the segment with the most joints
        std::vector<std::size_t> parent(count);
        std::vector<std::size_t> degree(count);
        for (std::size_t i = 1; i < count; ++i) {
            parent[i] = chance.below(std::min<std::size_t>(i, 4));
            ++degree[i], ++degree[parent[i]];
        }
        const std::size_t trunk =
            static_cast<std::size_t>(std::max_element(degree.begin(), degree.end()) - degree.begin());
        std::vector<std::size_t> onTrunk;   // joints by the segment that hangs
        for (std::size_t i = 1; i < count; ++i)
            if (i == trunk || parent[i] == trunk)
                onTrunk.push_back(i);
        const std::size_t first = chance.below(onTrunk.size());
        const std::size_t second = (first + 1 + chance.below(onTrunk.size() - 1)) % onTrunk.size();

        const char* const sharing[][2] = {{"right_hip", "waist"},
                                          {"left_hip", "waist"},
                                          {"right_clavicle_joint", "solar_plexus"},
                                          {"left_clavicle_joint", "solar_plexus"}};
        const std::size_t pair = chance.below(4);
        taker = sharing[pair][0];
        giver = sharing[pair][1];
        for (std::size_t i = 1; i < count; ++i) {
            const std::string name = i == onTrunk[first]    ? taker
                                     : i == onTrunk[second] ? giver
                                                            : "j" + std::to_string(i);
            const std::string inner = anySite(parent[i]), outer = anySite(i);
            const bool turned = chance.coin();
            body.joint(name, turned ? outer : inner, turned ? inner : outer);
        }
        for (nlohmann::json& segment : body.document()["segments"])
            shuffle(segment["sites"], chance);
        for (nlohmann::json& site : body.document()["sites"])
            shuffle(site["joints"], chance);
        load(body);
        stop = segment("s" + std::to_string(trunk));
        all();
    }

    // g; nothing, less than nothing, next to nothing, and up to 8 kg
    double mass(Chance& chance) const
    {
        const double masses[] = {0, -2000, chance.within(0, 8), chance.within(0, tiny ? 30 : 8000),
                                 chance.within(0, tiny ? 30 : 8000)};
        return masses[chance.below(5)];
    }

    void all()
    {
        allSites.clear();
        allJoints.clear();
        for (qList* node = nullptr; (node = qList::iterator(figure->getSites(), node));)
            allSites.push_back(static_cast<qcSite*>(node->getData()));
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));)
            allJoints.push_back(static_cast<qcJoint*>(node->getData()));
    }

    // Tells the analysis and the plain walk the same.
    PlainWalk settings(Chance& chance)
    {
        PlainWalk told;
        if (chance.coin()) {
            const qVector gravity = narrowed(chance.vector(1500));
            analysis->setGravity(gravity);
            told.gravity = plain(gravity);
        }
        const bool clavicles = giver == "solar_plexus" || chance.coin();
        analysis->setStrategy(clavicles ? qmStaticStrength::HandsAndKnees : qmStaticStrength::TwoFeet);
        told.sharing = clavicles ? PlainWalk::kHipsAndClavicles : PlainWalk::kHips;
        float* const shares[] = {&told.leftHip, &told.rightHip, &told.leftClavicle, &told.rightClavicle};
        for (int i = 0; i < 4; ++i)
            *shares[i] = share(i) = chance.below(8) ? static_cast<float>(chance.within(0, 1)) : 0.0f;

        const std::size_t fewer = tiny ? 8 : 1;
        for (qcSite* at : allSites)
            if (chance.below(fewer) == 0)
                setSiteLoad(at, chance, told);
        for (std::size_t n = chance.below(30) / fewer; n > 0; --n)
            setOffsetLoad(allSites[chance.below(allSites.size())], chance, told);
        for (qcJoint* at : allJoints)
            if (chance.below(4 * fewer) == 0) {
                qVector torque = narrowed(chance.vector(20));
                analysis->setDefinedTorque(at, torque);
                told.torques[at] = plain(torque);
            }
        if (!tiny) {
            setHandLoad(qcRight, "Right", chance, told);
            setHandLoad(qcLeft, "Left", chance, told);
        }
        for (qcJoint* at : allJoints)
            if (at == joint(giver) || chance.below(4) == 0) {
                const qVector force = narrowed(chance.vector(40)), moment = narrowed(chance.vector(20));
                analysis->setFMonJoint(at, force, moment);
                told.results[at] = {plain(force), plain(moment)};
            }
        return told;
    }

    void setSiteLoad(qcSite* at, Chance& chance, PlainWalk& told)
    {
        const qVector force = narrowed(chance.vector(30));
        const auto grams = static_cast<float>(chance.within(0, 3000));
        switch (chance.below(12)) {
        case 0:
        case 1:
            analysis->setLoad(at, force, 0);
            told.loads[at] = PlainWalk::Force{plain(force), false};
            break;
        case 2:
        case 3:
            analysis->setLoad(at, force, 1);
            told.loads[at] = PlainWalk::Force{plain(force), true};
            break;
        case 4:
            analysis->setWeightLoad(at, grams);
            told.loads[at] = PlainWalk::Force{PlainWalk::weight(told.gravity, grams), false};
            break;
        case 5:
            analysis->setLoad(at, force, 9);   // no such kind: something that cannot be read
            told.loads[at] = std::nullopt;
            break;
        default:
            break;
        }
    }
    void setOffsetLoad(qcSite* at, Chance& chance, PlainWalk& told)
    {
        const qVector offset = narrowed(chance.vector(20)), force = narrowed(chance.vector(30));
        const auto grams = static_cast<float>(chance.within(0, 3000));
        if (chance.below(3) == 0) {
            analysis->setWeightLoadWithOffset(at, offset, grams);
            told.displaced.push_back({at, plain(offset), {PlainWalk::weight(told.gravity, grams), false}});
        } else {
            const bool local = chance.coin();
            analysis->setLoadWithOffset(at, offset, force, local);
            told.displaced.push_back({at, plain(offset), {plain(force), local}});
        }
    }
    // One, two or three numbers; nine digits tell every float.
    void setHandLoad(qcSide side, const std::string& name, Chance& chance, PlainWalk& told)
    {
        const std::size_t count = chance.below(4);
        if (count == 0)
            return;
        const qVector v = narrowed(chance.vector(30));
        const bool local = chance.coin();
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text += numberText(double(v[static_cast<int>(i)])) + " ";
        figure->setProperty((name + "ZelHandLoads").c_str(), qcValue(text.c_str()));
        figure->setProperty((name + "ZelHandLoadsLocal").c_str(), qcValue(local ? "1" : "0"));
        const PlainWalk::Vector load =
            count == 1 ? PlainWalk::Vector{0, v[0], 0} : PlainWalk::Vector{v[0], v[1], count == 2 ? 0 : v[2]};
        told.hands[side] = PlainWalk::Force{load, local};
    }

    // From a random joint to a random side, or from the taker into the trunk.
    void walkBoth(Chance& chance, PlainWalk& told)
    {
        const bool intoTrunk = chance.below(3) == 0;
        qcJoint* const from = intoTrunk ? joint(taker) : allJoints[chance.below(allJoints.size())];
        qcSite* const through =
            intoTrunk ? from->otherSite(from->siteOnSegment(stop)) : from->getSite(static_cast<int>(chance.below(2)));
        qcSegment* const end = intoTrunk || chance.coin() ? stop : nullptr;
        const int accumulate = chance.coin();
        const qVector force = narrowed(chance.vector(50)), moment = narrowed(chance.vector(50));
        segmentOnly = told.alone = chance.below(10) == 0;

        const Sums found = walk(from, through, end, accumulate, force, moment);
        const PlainSums before{plain(force), plain(moment)};
        const PlainSums expected = told.walk(from, through, end, accumulate ? &before : nullptr);

        EXPECT_EQ(found.status, 1);
        EXPECT_EQ(bits(found.force), bits(hosts(expected.force)));
        EXPECT_EQ(bits(found.moment), bits(hosts(expected.moment)));
        for (qcJoint* at : allJoints) {
            SCOPED_TRACE(at->getName());
            qVector storedForce, storedMoment;
            const auto stored = told.results.find(at);
            ASSERT_EQ(analysis->getJointForces(at, storedForce, storedMoment), stored != told.results.end());
            if (stored != told.results.end()) {
                EXPECT_EQ(bits(storedForce), bits(hosts(stored->second.force)));
                EXPECT_EQ(bits(storedMoment), bits(hosts(stored->second.moment)));
            }
        }
        std::vector<std::string> messages;
        for (const std::string& fullName : told.unreadable)
            messages.push_back("StaticStrength ERROR: illegal load at site " + fullName);
        expectErrors(messages);
        told.unreadable.clear();
    }

    bool tiny = false;
    std::string taker, giver;
    qcSegment* stop = nullptr;
    std::vector<qcSite*> allSites;
    std::vector<qcJoint*> allJoints;
};

// 90 random bodies, ten walks over each, every one upon what the earlier ones left. Each thing that a walk treats apart
// is met often enough that a wrong bit of it would show.
TEST_F(WalkBits, RandomBodiesAgreeWithThePlainWalkInAllBits)
{
    PlainWalk::Met met;
    for (unsigned seed = 1; seed <= 90 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        makeBody(chance, seed);
        PlainWalk told = settings(chance);
        for (int i = 0; i < 10 && !HasFailure(); ++i)
            walkBoth(chance, told);
        met += told.met;
    }
    EXPECT_GT(met.torques, 100);
    EXPECT_GT(met.shares, 100);
    EXPECT_GT(met.localLoads, 100);
    EXPECT_GT(met.displaced, 100);
    EXPECT_GT(met.handLoads, 100);
    EXPECT_GT(met.handsWithout, 100);
    EXPECT_GT(met.halvedLoads, 100);
    EXPECT_GT(met.halvedSums, 100);
    EXPECT_GT(met.placeholders, 50);
    EXPECT_GT(met.dropped, 100);
}

}   // namespace
