// Hip, knee and ankle: figures of all kinds, sound, degenerate and incomplete, and the loads made of the results.
#include "HipKneeAnkleSupport.h"

#include "Chance.h"
#include "NaiveAnalysis.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

// ---- Degenerate figures

// 0 / 0 in every component; R is a number, and so is what is printed.
TEST_F(HipKneeAnkle, ZeroGravityGivesNoNumbersButWeighs)
{
    load(leaningBody());
    analysis->setGravity({0, 0, 0});
    EXPECT_EQ(printsOf<CalcAll>(), kSevenLines);
    EXPECT_EQ(humWt, 65);
    for (const qVector* vector :
         {&gravityDir, &upperBodyWtVec, &pelvisWtVec, &thighWtVec, &calfWtVec, &ankleReaction, &hipReaction})
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(std::isnan((*vector)[i]));
    EXPECT_TRUE(std::isnan(kneeReaction[1]));
    EXPECT_EQ(kneeReaction[0], 0);
    EXPECT_THAT(components(calfWtPt), ElementsAre(-10, 50, 30));
}

// R is 940 / 0: along gravity infinity, across it 0 · infinity. The knee has infinity up and down.
TEST_F(HipKneeAnkle, AnAnkleAtTheHPointGivesNoNumbers)
{
    SmallFigure body = leaningBody();
    moveSites(body, {{"right_lower_leg.distal", {-10, 90, 0}}});
    load(body);
    EXPECT_THAT(printsOf<CalcAll>(), HasSubstr("\nhipAnk mag=0.000000\n"));
    EXPECT_EQ(ankleReaction[1], kInfinity);
    EXPECT_EQ(hipReaction[1], -kInfinity);
    for (const int i : {0, 2}) {
        EXPECT_TRUE(std::isnan(ankleReaction[i]));
        EXPECT_TRUE(std::isnan(hipReaction[i]));
        EXPECT_EQ(kneeReaction[i], 0);
    }
    EXPECT_TRUE(std::isnan(kneeReaction[1]));
    setSiteLoads();   // as they are
    EXPECT_EQ(loadOn("right_lower_leg.proximal").find("inf"), loadOn("right_lower_leg.proximal").find(", ") + 2);
}

// ---- Missing parts

const char* const kSegmentsNeeded[] = {"right_toes", "right_foot", "right_lower_leg", "right_upper_leg", "lower_torso"};
const char* const kSitesNeeded[] = {"t8.proximal", "lower_torso.h_point", "right_lower_leg.distal",
                                    "right_lower_leg.proximal"};

TEST_F(HipKneeAnkle, AMissingPartIsNamedAndNothingIsWrittenOrPrinted)
{
    std::vector<std::string> parts(std::begin(kSegmentsNeeded), std::end(kSegmentsNeeded));
    parts.insert(parts.end(), std::begin(kSitesNeeded), std::end(kSitesNeeded));
    for (std::size_t i = 0; i < parts.size(); ++i) {
        SCOPED_TRACE(parts[i]);
        load(leaningBody("man" + std::to_string(i)));
        qcObject* missing = i < 5 ? static_cast<qcObject*>(segment(parts[i])) : site(parts[i]);
        missing->setName("other");
        setState(7777);
        const Bits before = stateBits();
        const std::string properties = everything();
        debugPrint = 1;
        for (const bool all : {true, false}) {
            EXPECT_EQ(all ? printsOf<CalcAll>() : printsOf<SetUpWeights>(), "");
            const std::vector<MessageLog::Message> messages = log.take();
            ASSERT_EQ(messages.size(), 1u);
            EXPECT_EQ(messages[0].kind, qcError);
            EXPECT_THAT(messages[0].text, StartsWith("StaticStrength ERROR: "));
            EXPECT_THAT(messages[0].text, HasSubstr(": missing "));
            EXPECT_THAT(messages[0].text, HasSubstr(parts[i]));
            EXPECT_THAT(changedFrom(before), ElementsAre());
            EXPECT_EQ(everything(), properties);
        }
    }
}

TEST_F(HipKneeAnkle, AllMissingPartsAreNamedAtOnceAndNoOthers)
{
    load(leaningBody());
    segment("right_toes")->setName("toes");
    segment("right_foot")->setName("foot");
    site("lower_torso.h_point")->setName("point");
    site("right_lower_leg.distal")->setName("end");
    EXPECT_EQ(printsOf<CalcAll>(), "");
    const std::vector<std::string> texts = log.takeTexts();
    ASSERT_EQ(texts.size(), 1u);
    for (const char* name : {"right_toes", "right_foot", "lower_torso.h_point", "right_lower_leg.distal"})
        EXPECT_THAT(texts[0], HasSubstr(name));
    for (const char* name : {"t8", "right_lower_leg.proximal", "right_upper_leg", "left"})
        EXPECT_THAT(texts[0], Not(HasSubstr(name)));
}

// A body without a left leg, and without the sites on which loads are set.
TEST_F(HipKneeAnkle, TheOtherLegIsNotNeeded)
{
    load(leaningBody());
    for (const char* name : {"left_upper_leg", "left_lower_leg", "left_foot", "left_toes", "upper_torso", "l5"})
        segment(name)->setName((std::string("other_") + name).c_str());
    for (const char* key : {"lower_torso.center_of_mass", "right_upper_leg.distal", "right_upper_leg.proximal"})
        site(key)->setName("other");
    calc();
    EXPECT_THAT(components(ankleReaction), ElementsAre(0, -0.25f, 0));
    EXPECT_THAT(components(hipReaction), ElementsAre(0, 19.75f, 0));
}

// ---- What counts and what does not

TEST_F(HipKneeAnkle, NothingIsStoredOnTheFigure)
{
    load(leaningBody());
    const std::string before = everything();
    const long stamp = figure->getTimestamp();
    calc();
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(figure->getTimestamp(), stamp);
}

TEST_F(HipKneeAnkle, LoadsTorquesResultsAndStrategyDoNotCount)
{
    load(leaningBody());
    calc();
    const Bits before = stateBits();
    qVector torque(10, 20, 30);
    for (const char* key : {"lower_torso.h_point", "right_upper_leg.distal", "right_lower_leg.distal", "t8.proximal"}) {
        analysis->setLoad(site(key), {1, -20, 3});
        analysis->setLoadWithOffset(site(key), {1, 2, 3}, {4, 5, 6});
    }
    for (const char* name : {"waist", "right_hip", "right_knee", "right_ankle"}) {
        analysis->setDefinedTorque(joint(name), torque);
        analysis->setFMonJoint(joint(name), {1, 2, 3}, {4, 5, 6});
    }
    analysis->setStrategy(qmStaticStrength::Sitting);
    calc();
    EXPECT_EQ(stateBits(), before);
}

// ---- Laws

// (0, -64, 48) and (48, 0, -64) are 80 cm, (0, 32, 24) and (-40, 0, 0) are 40: in which direction, does not matter.
TEST_F(HipKneeAnkle, LeversAreDistancesInWhateverDirection)
{
    load(leaningBody());
    calc();
    const Bits before = stateBits();
    SmallFigure body = leaningBody("other");
    moveSites(body, {{"right_lower_leg.distal", {38, 90, -64}}, {"t8.proximal", {-50, 90, 0}}});
    load(body);
    calc();
    EXPECT_THAT(changedFrom(before), ElementsAre("anklePt", "upperBodyWtPt"));
}

void scatter(nlohmann::json& transform, Chance& chance)
{
    const SmallFigure::Rows axes = chance.axes();
    for (std::size_t i = 0; i < 3; ++i) {
        transform[i] = {axes[i][0], axes[i][1], axes[i][2], 0};
        transform[3][i] = transform[3][i].get<double>() + chance.within(-30, 30);
    }
}

// Every frame and site anywhere, masses from 0.1 g to 10 t.
SmallFigure scatteredBody(const std::string& name, Chance& chance)
{
    SmallFigure body = smallBody(name);
    for (nlohmann::json& segment : body.document()["segments"]) {
        scatter(segment["transform"], chance);
        segment["mass"] = std::pow(10, chance.within(-1, 7));
        segment["com"] = chance.vector(20);
    }
    for (nlohmann::json& site : body.document()["sites"])
        scatter(site["transform"], chance);
    return body;
}

qVector narrowed(const SmallFigure::Vector& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

// All masses doubled: weights and reactions double to the bit, directions and places stay.
TEST_F(HipKneeAnkle, TwiceTheMassesAreTwiceTheReactions)
{
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        load(scatteredBody("man" + std::to_string(seed), chance));
        analysis->setGravity(narrowed(chance.vector(1500)));
        calc();
        Bits expected = stateBits();
        const auto doubled = [](qVector v) {
            v.scale(2);
            return bitsOf(components(v));
        };
        for (const char* name : {"humWt", "humUBWt", "pelvisWt", "thighWt", "calfWt", "upperBodyWtVec", "pelvisWtVec",
                                 "thighWtVec", "calfWtVec", "ankleReaction", "hipReaction", "kneeReaction"})
            for (const State& state : kState)
                if (std::string(state.name) == name)
                    expected[name] = doubled(state.number ? qVector(*state.number, 0, 0) : *state.vector);
        for (qList* node = nullptr; (node = qList::iterator(figure->getSegments(), node));) {
            auto* each = static_cast<qcSegment*>(node->getData());
            each->setMass(2 * each->getMass());
        }
        calc();
        EXPECT_THAT(changedFrom(expected), ElementsAre());
    }
}

// ---- Bits

// The same steps, written down apart from the analysis.
Bits transcribed(qcFigure* figure, const qVector& gravity)
{
    using Vector = Triple<float>;
    const auto asVector = [](const qVector& v) { return Vector{v[0], v[1], v[2]}; };
    const auto mass = [&](const char* name) { return double(figure->findSegment(name)->getMass()); };
    const auto place = [&](const char* key) {
        const std::string full = std::string(figure->getName()) + "." + key;
        return asVector(figure->findSiteByFullName(full.c_str())->getGlobalTransform().getTranslation());
    };
    const auto centre = [&](const char* name) {
        qcSegment* segment = figure->findSegment(name);
        const qMatrix& frame = segment->getGlobalTransform();
        const qVector& com = segment->getCenterOfMass();
        return asVector(frame.getAxis(0)) * com[0] + asVector(frame.getAxis(1)) * com[1]
               + asVector(frame.getAxis(2)) * com[2] + asVector(frame.getTranslation());
    };

    const Vector down = unit(asVector(gravity));
    float whole = 0;
    for (qList* node = nullptr; (node = qList::iterator(figure->getSegments(), node));)
        whole = float(double(whole) + double(static_cast<qcSegment*>(node->getData())->getMass()) / 1000.0);
    float above = whole;
    for (const char* name : {"right_toes", "right_foot", "right_lower_leg", "right_upper_leg"})
        above = float(double(above) - mass(name) / 1000.0 * 2.0);
    above = float(double(above) - mass("lower_torso") / 1000.0);
    above = float(double(above) / 2.0);
    const float pelvis = float(mass("lower_torso") / 1000.0), thigh = float(mass("right_upper_leg") / 1000.0),
                calf = float(mass("right_lower_leg") / 1000.0);
    const Vector aboveW = down * above, thighW = down * thigh, calfW = down * calf;
    const Vector pelvisW = {down.x * pelvis, float(double(down.y * pelvis) / 2.0), down.z * pelvis};

    const Vector hip = place("lower_torso.h_point"), aboveP = place("t8.proximal"),
                 ankle = place("right_lower_leg.distal"), thighP = centre("right_upper_leg"),
                 calfP = centre("right_lower_leg");
    const float R = ((length(calfP - hip) * calf + length(thighP - hip) * thigh) + above * length(aboveP - hip))
                    / length(ankle - hip);
    Vector atAnkle = down * -R;
    atAnkle.y = (atAnkle.y + thighW.y) + calfW.y;
    const Vector atHip = (Vector{0, 0, 0} + calfW + thighW + pelvisW + aboveW + Vector{0 * R, 1 * R, 0 * R}) * -1.0f;
    const float atKnee = ((pelvisW.y + aboveW.y) + atHip.y) + atAnkle.y;

    const auto bits = [](const Vector& v) { return bitsOf({v.x, v.y, v.z}); };
    const auto bit = [](float number) { return bitsOf({number, 0, 0}); };
    return {{"humWt", bit(whole)},
            {"humUBWt", bit(above)},
            {"pelvisWt", bit(pelvis)},
            {"thighWt", bit(thigh)},
            {"calfWt", bit(calf)},
            {"gravityDir", bits(down)},
            {"upperBodyWtVec", bits(aboveW)},
            {"pelvisWtVec", bits(pelvisW)},
            {"thighWtVec", bits(thighW)},
            {"calfWtVec", bits(calfW)},
            {"upperBodyWtPt", bits(aboveP)},
            {"pelvisWtPt", bits(hip)},
            {"hipPt", bits(hip)},
            {"anklePt", bits(ankle)},
            {"kneePt", bits(place("right_lower_leg.proximal"))},
            {"thighWtPt", bits(thighP)},
            {"calfWtPt", bits(calfP)},
            {"ankleReaction", bits(atAnkle)},
            {"hipReaction", bits(atHip)},
            {"kneeReaction", bits({0, atKnee, 0})}};
}

TEST_F(HipKneeAnkle, RandomBodiesAgreeWithTheTranscriptionInAllBits)
{
    for (unsigned seed = 1; seed <= 200 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        load(scatteredBody("man" + std::to_string(seed), chance));
        if (chance.coin())
            analysis->setGravity(narrowed(chance.vector(1500)));
        qVector gravity;
        analysis->getGravity(gravity);
        calc();
        EXPECT_THAT(changedFrom(transcribed(figure, gravity)), ElementsAre());
    }
}

// ---- Loads made of the results

TEST_F(HipKneeAnkle, SiteLoadsAreTheReactionsAndTheThigh)
{
    load(leaningBody());
    calc();
    setSiteLoads();
    EXPECT_EQ(stored(figure, "SSTR_LoadList"), "[[\"lower_torso.center_of_mass\", (-0, 19.75, -0), \"global\"], "
                                               "[\"right_upper_leg.distal\", (0, -8, 0), \"global\"], "
                                               "[\"right_lower_leg.proximal\", (-0, -0.25, -0), \"global\"]]");
    EXPECT_EQ(loadOn("lower_torso.center_of_mass"), "[(-0, 19.75, -0), \"global\"]");
    EXPECT_EQ(loadOn("right_upper_leg.distal"), "[(0, -8, 0), \"global\"]");
    EXPECT_EQ(loadOn("right_lower_leg.proximal"), "[(-0, -0.25, -0), \"global\"]");
    EXPECT_EQ(analysis->getNumLoads(), 3);
}

TEST_F(HipKneeAnkle, SiteLoadsBeforeAnyRunAreZero)
{
    load(leaningBody());
    const Bits before = stateBits();
    setSiteLoads();
    EXPECT_THAT(changedFrom(before), ElementsAre());   // it runs nothing
    for (const char* key : {"lower_torso.center_of_mass", "right_upper_leg.distal", "right_lower_leg.proximal"})
        EXPECT_EQ(loadOn(key), "[(0, 0, 0), \"global\"]") << key;
    EXPECT_EQ(analysis->getNumLoads(), 3);
}

// Whatever the state holds is set, in place of loads of any kind, which keep their places in the list.
TEST_F(HipKneeAnkle, SiteLoadsReplaceWhatIsThere)
{
    load(leaningBody());
    analysis->setWeightLoad(site("right_lower_leg.proximal"), 500);
    analysis->setLoad(site("l5.distal"), {0, -1, 0});
    analysis->setLoad(site("lower_torso.center_of_mass"), {0, -2, 0}, 1);
    hipReaction = {1, 2, 3};
    thighWtVec = {4, 5, 6};
    ankleReaction = {7, 8, 9};
    setSiteLoads();
    EXPECT_EQ(stored(figure, "SSTR_LoadList"), "[[\"right_lower_leg.proximal\", (7, 8, 9), \"global\"], "
                                               "[\"l5.distal\", (0, -1, 0), \"global\"], "
                                               "[\"lower_torso.center_of_mass\", (1, 2, 3), \"global\"], "
                                               "[\"right_upper_leg.distal\", (4, 5, 6), \"global\"]]");
    EXPECT_EQ(loadOn("right_lower_leg.proximal"), "[(7, 8, 9), \"global\"]");
}

// A site that is missing takes no load; the others do, and nobody complains.
TEST_F(HipKneeAnkle, SiteLoadsSkipAMissingSite)
{
    const std::vector<std::string> keys = {"lower_torso.center_of_mass", "right_upper_leg.distal",
                                           "right_lower_leg.proximal"};
    for (std::size_t missing = 0; missing <= keys.size(); ++missing) {
        load(leaningBody("man" + std::to_string(missing)));
        hipReaction = thighWtVec = ankleReaction = {1, 2, 3};
        for (std::size_t i = 0; i < keys.size(); ++i)
            if (i == missing || missing == keys.size())   // and, last, all three
                site(keys[i])->setName("other");
        setSiteLoads();
        for (std::size_t i = 0; i < keys.size() && missing < keys.size(); ++i)
            if (i != missing) {
                EXPECT_EQ(loadOn(keys[i].c_str()), "[(1, 2, 3), \"global\"]") << keys[i];
            }
        EXPECT_EQ(analysis->getNumLoads(), missing < keys.size() ? 2 : 0);
    }
}

}   // namespace
