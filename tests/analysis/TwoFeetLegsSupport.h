// Two-feet legs tests: the fixture, and the body from which the tests derive their numbers.
//
// The small body stands with straight legs:
//
//   weights, kgf, straight down    lower torso 10 at (0, 95, 0), upper leg 8 at (-/+10, 70, 0),
//                                  lower leg 4 at (-/+10, 30, 0)
//   places, cm                     waist (0, 100, 0), hips (-/+10, 90, 0), knees (-/+10, 50, 0)
//   waist force, kgf               (0, -32, 0), unless a test says otherwise
//   shares                         left 0.25, right 0.75, unless a test says otherwise
//   S = 0.0980665                  kgf·cm to N·m
//
// A weight w at (x, z) from a point has the moment (z w, 0, -x w) S about it.
#pragma once

#include "AnalysisTest.h"
#include "PrivateMembers.h"
#include "SavedValues.h"

#include <array>
#include <string>

struct CalcLegs {
    using type = void (qmStaticStrength::*)();
    friend type get(CalcLegs);
};
template struct Expose<CalcLegs, &qmStaticStrength::calcHipKneeAnkFMfor2FeetStgy>;

struct LegJoint {
    using type = void (qmStaticStrength::*)(qcJoint*, qcSegment*, qVector&, qVector&, qVector&, qVector&, qVector&);
    friend type get(LegJoint);
};
template struct Expose<LegJoint, &qmStaticStrength::computeFMforLegJoint>;

struct SplitFactors {
    using type = float (qmStaticStrength::*)[4];
    friend type get(SplitFactors);
};
template struct Expose<SplitFactors, &qmStaticStrength::splitFactors>;

using Vector = SmallFigure::Vector;

inline constexpr double S = 0.0980665;
inline constexpr float kBig = 16777216.0f;   // 2^24: in single precision kBig + 1 is kBig
inline constexpr const char* kSix[] = {"left_hip", "right_hip", "left_knee", "left_ankle", "right_knee", "right_ankle"};

// About twenty roundings of numbers of at most 100 kgf or N·m.
inline double bound()
{
    return roundingBound(20, 100);
}

inline nlohmann::json& part(SmallFigure& body, const char* list, const char* nameKey, const std::string& name)
{
    for (nlohmann::json& found : body.document()[list])
        if (found[nameKey] == name)
            return found;
    throw std::logic_error("no " + name);
}

inline void moveSite(SmallFigure& body, const std::string& key, const Vector& to)
{
    part(body, "sites", "key", key)["transform"][3] = {to[0], to[1], to[2], 1};
}

class TwoFeetLegs : public AnalysisTest {
protected:
    void load(const SmallFigure& body)
    {
        AnalysisTest::load(body);
        share(0.25f, 0.75f);
    }
    void share(float left, float right)
    {
        qmStaticStrength& own = *analysis;   // g++ 12's sanitizer takes `analysis->*` for a wrong access
        (own.*get(SplitFactors()))[0] = left;
        (own.*get(SplitFactors()))[1] = right;
    }
    void legs() { callPrivate<CalcLegs>(*analysis); }
    void legs(const qVector& waistForce, const qVector& waistMoment = {})
    {
        analysis->setFMonJoint(human->getWaistJoint(), waistForce, waistMoment);
        legs();
    }
    void makeWeightless()
    {
        for (qList* node = nullptr; (node = qList::iterator(figure->getSegments(), node));)
            static_cast<qcSegment*>(node->getData())->setMass(0);
    }

    void expectResult(const char* name, const Vector& force, const Vector& moment, double within = bound())
    {
        SCOPED_TRACE(name);
        const Result result = resultOf(name);
        EXPECT_EQ(result.status, 1);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(components(result.force)[i], force[i], within) << "force " << i;
            EXPECT_NEAR(components(result.moment)[i], moment[i], within) << "moment " << i;
        }
    }
    float up(const char* name) const { return resultOf(name).force[1]; }
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
    // All six results, each number told apart.
    std::string six() const
    {
        std::string all;
        for (const char* name : kSix)
            all += stored(joint(name), "SSTR_Force_Moment") + "\n";
        return all;
    }
};
