// Hip, knee and ankle tests: the module's state by name, a body with round numbers, and the private members.
//
// The state is the module's, shared by all analyses, so the fixture puts it back to zero before each test.
#pragma once

#include "AnalysisTest.h"
#include "Diagnostics.h"
#include "HipKneeAnkle.h"
#include "PrivateMembers.h"
#include "SavedValues.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

struct CalcAll {
    using type = void (qmStaticStrength::*)();
    friend type get(CalcAll);
};
template struct Expose<CalcAll, &qmStaticStrength::calcHipKneeAnkleForcesMoments>;
struct SetUpWeights {
    using type = void (qmStaticStrength::*)();
    friend type get(SetUpWeights);
};
template struct Expose<SetUpWeights, &qmStaticStrength::createAndSetupWeights>;
struct Solve {
    using type = void (qmStaticStrength::*)();
    friend type get(Solve);
};
template struct Expose<Solve, &qmStaticStrength::solveReactionForces>;
struct AtKnee {
    using type = void (qmStaticStrength::*)();
    friend type get(AtKnee);
};
template struct Expose<AtKnee, &qmStaticStrength::computeForcesAtKnee>;
struct SetSiteLoads {
    using type = void (qmStaticStrength::*)();
    friend type get(SetSiteLoads);
};
template struct Expose<SetSiteLoads, &qmStaticStrength::setSiteLoads>;

using Places = std::vector<std::pair<std::string, SmallFigure::Vector>>;

inline constexpr float kBig = 16777216.0f;   // 2^24: in single precision kBig + 1 is kBig
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

inline const char* const kSevenLines = "hipCalf mag=50.000000\nhipThigh mag=20.000000\nupper body mag=40.000000\n"
                                       "hipAnk mag=80.000000\ncalfWt=4.000000\nthighWt=8.000000\nhumUBWt=14.500000\n";

struct State {
    const char* name;
    float* number;
    qVector* vector;
    bool reaction;
};
inline const State kState[] = {
    {"humWt", &humWt, nullptr, false},
    {"humUBWt", &humUBWt, nullptr, false},
    {"pelvisWt", &pelvisWt, nullptr, false},
    {"thighWt", &thighWt, nullptr, false},
    {"calfWt", &calfWt, nullptr, false},
    {"gravityDir", nullptr, &gravityDir, false},
    {"upperBodyWtVec", nullptr, &upperBodyWtVec, false},
    {"pelvisWtVec", nullptr, &pelvisWtVec, false},
    {"thighWtVec", nullptr, &thighWtVec, false},
    {"calfWtVec", nullptr, &calfWtVec, false},
    {"upperBodyWtPt", nullptr, &upperBodyWtPt, false},
    {"pelvisWtPt", nullptr, &pelvisWtPt, false},
    {"hipPt", nullptr, &hipPt, false},
    {"anklePt", nullptr, &anklePt, false},
    {"kneePt", nullptr, &kneePt, false},
    {"thighWtPt", nullptr, &thighWtPt, false},
    {"calfWtPt", nullptr, &calfWtPt, false},
    {"ankleReaction", nullptr, &ankleReaction, true},
    {"hipReaction", nullptr, &hipReaction, true},
    {"kneeReaction", nullptr, &kneeReaction, true},
};

inline void setState(float value)
{
    for (const State& state : kState) {
        if (state.number)
            *state.number = value;
        else
            *state.vector = {value, value, value};
    }
}

// Every bit of the state, by name. Which not-a-number it is, is not told.
using Bits = std::map<std::string, std::array<std::uint32_t, 3>>;
inline std::array<std::uint32_t, 3> bitsOf(std::array<float, 3> numbers)
{
    for (float& number : numbers)
        if (std::isnan(number))
            number = kNotANumber;
    std::array<std::uint32_t, 3> words;
    std::memcpy(words.data(), numbers.data(), sizeof words);
    return words;
}
inline Bits stateBits()
{
    Bits bits;
    for (const State& state : kState)
        bits[state.name] = bitsOf(state.number ? std::array<float, 3>{*state.number, 0, 0} : components(*state.vector));
    return bits;
}
// The names of what is not as it was.
inline std::vector<std::string> changedFrom(const Bits& before)
{
    std::vector<std::string> names;
    for (const auto& [name, bits] : stateBits())
        if (before.at(name) != bits)
            names.push_back(name);
    return names;
}

inline nlohmann::json& part(SmallFigure& body, const char* list, const char* nameKey, const std::string& name)
{
    for (nlohmann::json& found : body.document()[list])
        if (found[nameKey] == name)
            return found;
    throw std::logic_error("no " + name);
}

inline void moveSites(SmallFigure& body, const Places& places)
{
    for (const auto& [key, place] : places)
        part(body, "sites", "key", key)["transform"][3] = {place[0], place[1], place[2], 1};
}

// The small body with these places, cm; its right leg and t8 lie in the plane x = -10 and each at a whole
// distance from the h_point (-10, 90, 0):
//
//   upper leg's centre  (-10, 74, 12)   20      lower leg's centre  (-10, 50, 30)   50
//   t8.proximal         (-10, 122, 24)  40      lower leg's distal  (-10, 26, 48)   80
//
// Weights, kgf: lower torso 10, upper leg 8, lower leg 4, foot 0.75, toes 0.25, 65 in all. Above the pelvis
// there are 65 - 2 · (0.25 + 0.75 + 4 + 8) - 10 = 29, half of them 14.5.
//
//   R = (50 · 4 + 20 · 8 + 14.5 · 40) / 80 = 940 / 80 = 11.75        all of it exact in binary
//
// The frames of the right leg are turned (x to z, y to x; x to y, y to z), so that a centre of mass taken in
// the world's axes would lie elsewhere.
inline SmallFigure leaningBody(const std::string& name = "man")
{
    SmallFigure body = smallBody(name);
    moveSites(body, {{"t8.proximal", {-10, 122, 24}},
                     {"lower_torso.h_point", {-10, 90, 0}},
                     {"right_lower_leg.proximal", {-10, 58, 24}},
                     {"right_lower_leg.distal", {-10, 26, 48}}});
    nlohmann::json& upper = part(body, "segments", "name", "right_upper_leg");
    upper["transform"] = {{0, 0, 1, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {-10, 90, 0, 1}};
    upper["com"] = {12, 0, -16};
    nlohmann::json& lower = part(body, "segments", "name", "right_lower_leg");
    lower["transform"] = {{0, 1, 0, 0}, {0, 0, 1, 0}, {1, 0, 0, 0}, {-10, 50, 0, 1}};
    lower["com"] = {0, 30, 0};
    for (const std::string side : {"right", "left"}) {
        part(body, "segments", "name", side + "_foot")["mass"] = 750;
        part(body, "segments", "name", side + "_toes")["mass"] = 250;
    }
    return body;
}

class HipKneeAnkle : public AnalysisTest {
protected:
    static void SetUpTestSuite() { initialState = stateBits(); }   // before any test
    void SetUp() override
    {
        setState(0);
        debugPrint = 0;
    }
    void TearDown() override
    {
        setState(0);
        debugPrint = 0;
        AnalysisTest::TearDown();
    }

    template <class Member> std::string printsOf()
    {
        ::testing::internal::CaptureStdout();
        callPrivate<Member>(*analysis);
        return ::testing::internal::GetCapturedStdout();
    }
    // All of it; what it prints is told elsewhere.
    void calc() { printsOf<CalcAll>(); }
    void setUpWeights() { callPrivate<SetUpWeights>(*analysis); }
    void solve() { printsOf<Solve>(); }
    void atKnee() { callPrivate<AtKnee>(*analysis); }
    void setSiteLoads() { callPrivate<SetSiteLoads>(*analysis); }

    void makeWeightless()
    {
        for (qList* node = nullptr; (node = qList::iterator(figure->getSegments(), node));)
            static_cast<qcSegment*>(node->getData())->setMass(0);
    }
    // The kg above the pelvis, halved, of a body that weighs only these kg.
    float upperBodyOf(const std::vector<std::pair<std::string, float>>& kilograms)
    {
        makeWeightless();
        for (const auto& [name, mass] : kilograms)
            segment(name)->setMass(1000 * mass);
        setUpWeights();
        return humUBWt;
    }
    // Everything that the figure and its parts hold.
    std::string everything() const
    {
        std::string all;
        const auto add = [&all](const qcObject* object) {
            for (int i = 0; i < object->getNumProperties(); ++i)
                all += std::string(object->getFullName()) + " " + object->getPropertyKey(i) + " "
                       + describe(object->getPropertyValue(i)) + "\n";
        };
        add(figure);
        for (qList* node = nullptr; (node = qList::iterator(figure->getSites(), node));)
            add(static_cast<qcSite*>(node->getData()));
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));)
            add(static_cast<qcJoint*>(node->getData()));
        return all;
    }
    std::string loadOn(const char* key) const { return stored(site(key), "SSTR_Load"); }

    static inline Bits initialState;
};
