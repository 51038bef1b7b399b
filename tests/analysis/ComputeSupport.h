// Compute tests: the fixture, and what the small body consists of.
#pragma once

#include "AnalysisTest.h"

#include "Diagnostics.h"

#include <array>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

using Strategy = qmStaticStrength::Strategy;

inline constexpr double kNm = 0.0980665;   // N·m in a kgf·cm
inline void expectNear(const qVector& found, const std::array<double, 3>& expected, double bound)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(double(found[i]), expected[static_cast<std::size_t>(i)], bound) << "component " << i;
}

inline const std::vector<Strategy> kAllStrategies = {qmStaticStrength::TwoFeet,  qmStaticStrength::RightFoot,
                                                     qmStaticStrength::LeftFoot, qmStaticStrength::Walking,
                                                     qmStaticStrength::Sitting,  qmStaticStrength::SittingNoFeet,
                                                     qmStaticStrength::N_STRS,   qmStaticStrength::HandsAndKnees};

// The small body weighs, kgf: beyond the waist 29 (l5 2, t8 10, upper torso 8, each arm 4.5), lower torso 10, each leg
// 13 (upper leg 8, lower leg 4, foot 0.8, toes 0.2); 65 in all.
class Compute : public AnalysisTest {
protected:
    void load(const SmallFigure& small)
    {
        analyses.clear();
        scene = std::make_unique<qcScene>();
        AnalysisTest::load(small);
    }
    void compute(Strategy strategy)
    {
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->compute(), 1);
    }
    std::string printsOf(Strategy strategy)
    {
        debugPrint = 1;
        ::testing::internal::CaptureStdout();
        compute(strategy);
        debugPrint = 0;
        return ::testing::internal::GetCapturedStdout();
    }
    std::vector<std::string> labelsOf(const std::string& output)
    {
        std::vector<std::string> labels;
        for (std::size_t at = 0; at < output.size();) {
            const std::size_t end = output.find('\n', at);
            const std::string line = output.substr(at, end - at);
            labels.push_back(line.substr(0, line.find('[')));
            at = end + 1;
        }
        return labels;
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
    float down(const std::string& jointName) const { return -resultOf(jointName).force[1]; }

    void storeEverywhere(const qVector& vector)
    {
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));)
            analysis->setFMonJoint(static_cast<qcJoint*>(node->getData()), vector, vector);
    }
    // The joints whose stored result is not that vector any more.
    std::vector<std::string> changedFrom(const qVector& vector) const
    {
        std::vector<std::string> changed;
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));) {
            const Result result = resultOf(static_cast<qcJoint*>(node->getData())->getName());
            if (components(result.force) != components(vector) || components(result.moment) != components(vector))
                changed.push_back(static_cast<qcJoint*>(node->getData())->getName());
        }
        return changed;
    }

    // Computes with unreadable loads on these sites. @return the sites' keys in the order in which they were met
    std::vector<std::string> order(Strategy strategy, const std::vector<std::string>& keys)
    {
        for (const std::string& key : keys)
            site(key)->setProperty("SSTR_Load", qcValue(1.0f));
        compute(strategy);
        std::vector<std::string> met;
        const std::string start = "StaticStrength ERROR: illegal load at site man.";
        for (const std::string& text : log.takeTexts()) {
            EXPECT_EQ(text.substr(0, start.size()), start);
            met.push_back(text.substr(start.size()));
        }
        return met;
    }
};

inline const std::vector<std::string> kOneSitePerSegment = {"lower_torso.center_of_mass",
                                                            "l5.proximal",
                                                            "t8.proximal",
                                                            "upper_torso.proximal",
                                                            "right_clavicle.proximal",
                                                            "left_clavicle.proximal",
                                                            "right_arm.proximal",
                                                            "left_arm.proximal",
                                                            "right_hand.proximal",
                                                            "left_hand.proximal",
                                                            "right_upper_leg.proximal",
                                                            "left_upper_leg.proximal",
                                                            "right_lower_leg.proximal",
                                                            "left_lower_leg.proximal",
                                                            "right_foot.proximal",
                                                            "left_foot.proximal",
                                                            "right_toes.proximal",
                                                            "left_toes.proximal"};

// The order in which the waist walk meets those of the upper body: a segment's sites in order, at each the joints
// first, so that its own proximal site comes before what hangs further on.
inline const std::vector<std::string> kUpperBody = {
    "l5.proximal",        "t8.proximal",         "upper_torso.proximal",   "right_clavicle.proximal",
    "right_arm.proximal", "right_hand.proximal", "left_clavicle.proximal", "left_arm.proximal",
    "left_hand.proximal"};

inline std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists)
{
    std::vector<std::string> all;
    for (const std::vector<std::string>& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

inline std::vector<std::string> upperBodyJoints()
{
    return {"waist",          "t8_l5",       "solar_plexus",        "right_clavicle_joint",
            "right_shoulder", "right_wrist", "left_clavicle_joint", "left_shoulder",
            "left_wrist"};
}
