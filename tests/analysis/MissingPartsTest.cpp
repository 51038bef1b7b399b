// Missing parts: every part that a strategy needs, missing one at a time and all at once. What needs it is refused with
// an error that tells what is missing and keeps its earlier results; what does not need it is computed.
#include "ComputeSupport.h"

#include <map>
#include <set>

using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

constexpr float kBefore = 77;   // kgf and N·m: what is stored before a computation

// What is taken away: ("role", "right.hip"), ("role", "waist"), ("segment", name), ("site", key) or ("joint", name).
using Part = std::pair<std::string, std::string>;

const std::vector<Part> kParts = [] {
    std::vector<Part> parts;
    for (const char* role : {"waist", "pelvis_site", "reference_site"})
        parts.emplace_back("role", role);
    for (const std::string side : {"right", "left"}) {
        for (const std::string role : {"foot_site", "hand_site", "knee", "ankle", "hip"})
            parts.emplace_back("role", side + "." + role);
        for (const std::string name : {"_upper_leg", "_lower_leg", "_foot", "_toes"})
            parts.emplace_back("segment", side + name);
    }
    for (const char* name : {"lower_torso", "t8", "upper_torso"})
        parts.emplace_back("segment", name);
    for (const char* key : {"lower_torso.h_point", "lower_torso.proximal", "lower_torso.center_of_mass"})
        parts.emplace_back("site", key);
    parts.emplace_back("joint", "solar_plexus");
    return parts;
}();

class MissingPart : public Compute {
protected:
    void loadWithout(const std::vector<Part>& parts)
    {
        SmallFigure body = smallBody();
        nlohmann::json& document = body.document();
        for (const auto& [kind, name] : parts) {
            const std::size_t dot = name.find('.');
            if (kind == "role" && dot == std::string::npos)
                document[name] = nullptr;
            else if (kind == "role")
                document[name.substr(0, dot)][name.substr(dot + 1)] = nullptr;
        }
        load(body);
        std::vector<qcObject*> renamed;   // found before the first one's name changes
        for (const auto& [kind, name] : parts) {
            if (kind == "segment")
                renamed.push_back(segment(name));
            if (kind == "site")
                renamed.push_back(site(name));
            if (kind == "joint")
                renamed.push_back(joint(name));
        }
        for (qcObject* part : renamed) {
            ASSERT_NE(part, nullptr);
            part->setName((std::string("other_") + part->getName()).c_str());
        }
    }

    // Every joint's result after a computation over stored ones, by full name; a missing one is empty.
    std::map<std::string, std::vector<float>> results(Strategy strategy)
    {
        storeEverywhere(qVector(kBefore, kBefore, kBefore));
        compute(strategy);
        EXPECT_EQ(analysis->getStrategy(), strategy);
        std::map<std::string, std::vector<float>> all;
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));) {
            qcJoint* each = static_cast<qcJoint*>(node->getData());
            std::vector<float>& result = all[each->getFullName()];
            qcValue stored;
            if (!each->getProperty("SSTR_Force_Moment", &stored))
                continue;
            qVector force, moment;
            EXPECT_EQ(analysis->getJointForces(each, force, moment), 1) << each->getName() << ": no whole result";
            for (const qVector& vector : {force, moment})
                for (int i = 0; i < 3; ++i)
                    result.push_back(vector[i]);
        }
        return all;
    }
};

bool isOld(const std::vector<float>& result)
{
    return result == std::vector<float>(6, kBefore);
}

std::set<Part> roles(std::initializer_list<const char*> names, std::initializer_list<const char*> ofBothSides)
{
    std::set<Part> parts;
    for (const char* name : names)
        parts.emplace("role", name);
    for (const std::string name : ofBothSides)
        for (const std::string side : {"right.", "left."})
            parts.emplace("role", side + name);
    return parts;
}

std::set<Part> segmentsOfBothSides(std::initializer_list<const char*> names)
{
    std::set<Part> parts;
    for (const std::string name : names)
        for (const std::string side : {"right_", "left_"})
            parts.emplace("segment", side + name);
    return parts;
}

// What a strategy cannot do without.
std::set<Part> neededBy(Strategy strategy)
{
    std::set<Part> parts;
    switch (strategy) {
    case qmStaticStrength::TwoFeet:
    case qmStaticStrength::Walking:   // with equal knees
        parts = roles({"waist", "pelvis_site"}, {"hip", "knee", "ankle"});
        parts.merge(segmentsOfBothSides({"upper_leg", "lower_leg", "foot"}));
        parts.insert({{"segment", "lower_torso"}, {"site", "lower_torso.h_point"}, {"site", "lower_torso.proximal"}});
        return parts;
    case qmStaticStrength::RightFoot:
        return roles({"right.foot_site", "right.ankle"}, {});
    case qmStaticStrength::LeftFoot:
        return roles({"left.foot_site", "left.ankle"}, {});
    case qmStaticStrength::Sitting:
        parts = roles({"waist", "pelvis_site"}, {"hip", "knee", "ankle"});
        parts.merge(segmentsOfBothSides({"upper_leg", "lower_leg"}));
        return parts;
    case qmStaticStrength::SittingNoFeet:
        return roles({"waist", "pelvis_site"}, {"hip"});
    case qmStaticStrength::HandsAndKnees:
        parts = roles({"waist", "pelvis_site", "reference_site"}, {"knee", "hand_site"});
        parts.insert({{"segment", "upper_torso"}, {"joint", "solar_plexus"}});
        return parts;
    default:
        return parts;
    }
}

using Names = std::set<std::string>;   // of joints

Names leg(const std::string& side)
{
    return {side + "_hip", side + "_knee", side + "_ankle", side + "_ball"};
}

Names together(Names names, const Names& more)
{
    names.insert(more.begin(), more.end());
    return names;
}

// Of the 17 joints, those that a refusal leaves as they were. A leg method that lacks a part computes neither leg.
//
// On hands and knees the walks follow each other, whatever became of the one before: the waist up to l5; each knee down
// its leg, then up to the pelvis; the solar plexus down to l5; each hand up to the upper torso. One that does not begin
// leaves its own joints alone. One whose stop segment is not there goes on through the whole body: nothing is kept.
Names keptWithout(Strategy strategy, const Part& part)
{
    const std::vector<std::string> upper = upperBodyJoints();
    const Names upperBody(upper.begin(), upper.end());
    const Names legs = together(leg("right"), leg("left"));
    const Names toes = {"right_ball", "left_ball"};   // only walks that pass the feet meet them
    const Names all = together(upperBody, legs);
    const std::string& name = part.second;
    const std::string side = name.substr(0, name.find('.'));
    switch (strategy) {
    case qmStaticStrength::TwoFeet:
    case qmStaticStrength::Walking:   // the legs need no pelvis site: they take the waist's earlier result
        return name == "waist" ? all : name == "pelvis_site" ? together(upperBody, toes) : legs;
    case qmStaticStrength::Sitting:   // the legs take nothing from the waist
        return name == "waist" || name == "pelvis_site" ? together(upperBody, toes) : legs;
    case qmStaticStrength::RightFoot:
    case qmStaticStrength::LeftFoot:   // both walks begin at the ankle
        return all;
    case qmStaticStrength::SittingNoFeet:   // all walks begin at the pelvis, each by itself
        return name == "pelvis_site" ? all : name == "waist" ? upperBody : leg(side);
    case qmStaticStrength::HandsAndKnees:
        if (name == "waist")
            return {"waist"};
        if (name == side + ".knee")
            return leg(side);
        if (name == side + ".hand_site")
            return {side + "_wrist", side + "_shoulder", side + "_clavicle_joint"};
        if (name == "solar_plexus")
            return {"other_solar_plexus", "t8_l5"};
        return {};   // pelvis and upper torso are stop segments; the balance point is on no walk
    default:
        return all;
    }
}

bool hasLegMethod(Strategy strategy)
{
    return strategy == qmStaticStrength::TwoFeet || strategy == qmStaticStrength::Walking
           || strategy == qmStaticStrength::Sitting;
}

// What a message says of a missing part. The leg methods name it; a walk tells the joint and the site that it was to
// begin with, as far as they are there.
std::string messageOn(Strategy strategy, const Part& part)
{
    const auto& [kind, name] = part;
    const std::size_t dot = name.find('.');
    const bool ofSide = kind == "role" && dot != std::string::npos;
    if (name == "reference_site")
        return "missing the reference site";
    if (name == "pelvis_site")
        return "joint waist site ???";
    if (name == "waist" && hasLegMethod(strategy) && strategy != qmStaticStrength::Sitting)
        return "waist on lower_torso";
    if (hasLegMethod(strategy) && ofSide)
        return name.substr(0, dot) + " " + name.substr(dot + 1) + " on ";
    if (hasLegMethod(strategy) && kind != "role")
        return kind + " " + name;
    if (ofSide && name.substr(dot) == ".foot_site")
        return "joint " + name.substr(0, dot) + "_ankle site ???";
    if (name == "upper_torso")
        return "joint solar_plexus site ???";
    return "joint ??? site ???";
}

// All joints are looked at: those that do not keep their result have to have another one, or none. Nothing that was
// computed reads the missing part, so it is as on the whole body; but the legs on a waist that was not walked take its
// earlier result, and on hands and knees the shares, and the way of a walk without its stop segment, are others.
TEST_F(MissingPart, ThatAStrategyNeedsIsRefusedAndWhatNeedsItKeepsItsResults)
{
    for (const Strategy strategy : kAllStrategies) {
        loadWithout({});
        const auto whole = results(strategy);
        ASSERT_EQ(whole.size(), 17u);
        for (const Part& part : neededBy(strategy)) {
            SCOPED_TRACE(std::to_string(strategy) + " without " + part.first + " " + part.second);
            loadWithout({part});
            const auto found = results(strategy);
            const std::vector<std::string> texts = log.takeTexts();
            EXPECT_THAT(texts, Each(StartsWith("StaticStrength ERROR: ")));
            EXPECT_THAT(texts, Contains(HasSubstr(messageOn(strategy, part))));

            const bool onOldWaist = part.second == "pelvis_site" && strategy != qmStaticStrength::Sitting;
            const bool asOnWholeBody = strategy != qmStaticStrength::HandsAndKnees && !onOldWaist;
            Names kept;
            for (const auto& [fullName, result] : found) {
                if (isOld(result)) {
                    kept.insert(fullName.substr(fullName.find('.') + 1));
                } else if (asOnWholeBody) {
                    EXPECT_EQ(result, whole.at(fullName)) << fullName;
                }
            }
            EXPECT_EQ(kept, keptWithout(strategy, part));
        }
    }
}

TEST_F(MissingPart, ThatAStrategyDoesNotNeedChangesNothing)
{
    for (const Strategy strategy : kAllStrategies) {
        loadWithout({});
        const auto whole = results(strategy);
        EXPECT_THAT(log.takeTexts(), IsEmpty());
        const std::set<Part> needed = neededBy(strategy);
        int compared = 0;
        for (const Part& part : kParts) {
            if (needed.count(part) || (part.first == "joint" && strategy == qmStaticStrength::HandsAndKnees))
                continue;
            SCOPED_TRACE(std::to_string(strategy) + " without " + part.first + " " + part.second);
            loadWithout({part});
            auto found = results(strategy);
            EXPECT_THAT(log.takeTexts(), IsEmpty());
            if (part.first == "joint") {   // under its new name
                found["man.solar_plexus"] = found["man.other_solar_plexus"];
                found.erase("man.other_solar_plexus");
            }
            EXPECT_EQ(found, whole);
            ++compared;
        }
        EXPECT_GT(compared, 10);
    }
}

TEST_F(MissingPart, AllMissingAtOnceAreRefused)
{
    for (const Strategy strategy : kAllStrategies) {
        SCOPED_TRACE(strategy);
        const std::set<Part> needed = neededBy(strategy);
        loadWithout(std::vector<Part>(needed.begin(), needed.end()));
        const auto found = results(strategy);
        const std::vector<std::string> texts = log.takeTexts();
        EXPECT_EQ(texts.empty(), needed.empty());
        EXPECT_THAT(texts, Each(StartsWith("StaticStrength ERROR: ")));
        for (const Part& part : needed) {   // in one message, but for those of the walks and a missing segment's sites
            const bool ofTrunk = part.first == "role" && part.second.find('.') == std::string::npos;
            if (hasLegMethod(strategy) && !ofTrunk && part.first != "site") {
                EXPECT_THAT(texts.back(), HasSubstr(messageOn(strategy, part)));
            }
        }
        for (const auto& [name, result] : found)
            EXPECT_TRUE(isOld(result)) << name;
    }
    for (const Strategy strategy : kAllStrategies) {
        SCOPED_TRACE(strategy);
        loadWithout(kParts);
        for (const auto& [name, result] : results(strategy))
            EXPECT_TRUE(isOld(result)) << name;
        EXPECT_EQ(log.takeTexts().empty(), strategy == qmStaticStrength::N_STRS);
    }
}

// The balance point is not on any walk.
TEST_F(MissingPart, OfTheBalanceOfHandsAndKneesIsNamed)
{
    loadWithout({{"role", "reference_site"}});
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ::testing::ElementsAre("StaticStrength ERROR: the shares of hands and knees are no "
                                                        "numbers: missing the reference site"));
}

// A refusal ends a sitting computation as its completion does.
TEST_F(MissingPart, OfASittingLegLeavesTheWalksAtSingleSegments)
{
    loadWithout({{"role", "right.hip"}});
    compute(qmStaticStrength::Sitting);
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(segmentOnly, 1);
    loadWithout({});
    compute(qmStaticStrength::Sitting);
    EXPECT_EQ(segmentOnly, 1);
    compute(qmStaticStrength::TwoFeet);
    EXPECT_EQ(segmentOnly, 0);
}

}   // namespace
