// Walk fixture: figures small enough to walk by hand, and the walk itself from any joint of them.
#pragma once

#include "AnalysisTest.h"
#include "PrivateMembers.h"

#include "Diagnostics.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

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

inline constexpr double kNm = 0.0980665;          // N·m in a kgf·cm
inline constexpr float kPlaceholder = 0.00001f;   // N·m, each component of a stored moment that is next to nothing

inline constexpr int kLeftHip = 0, kRightHip = 1;   // split factors

inline void expectNear(const qVector& found, const std::array<double, 3>& expected, double bound)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(double(found[i]), expected[static_cast<std::size_t>(i)], bound) << "component " << i;
}

inline std::array<std::uint32_t, 3> bits(const qVector& vector)
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

    /// What came since the last look are these errors and nothing else.
    void expectErrors(const std::vector<std::string>& texts)
    {
        std::vector<std::string> found;
        for (const MessageLog::Message& message : log.take()) {
            EXPECT_EQ(message.kind, qcError) << message.text;
            found.push_back(message.text);
        }
        EXPECT_EQ(found, texts);
    }

    float& share(int which) { return (analysis->*get(SharesMember()))[which]; }
};

class Walk : public JointForces {};

// A joint "j" at the origin between "base" and "part"; the part has the given mass at the joint, so that
// its weight turns nothing, and a site "tip" 10 cm to the left of the joint.
inline SmallFigure onePart(double grams, const std::string& name = "man")
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
inline SmallFigure twoLinks(int turn = 0)
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
