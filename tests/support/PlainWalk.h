// Plain walk: what a walk leaves on every joint, written down once more in single precision, by recursion and
// without properties. The same steps in the same order give the same bits.
#pragma once

#include "NaiveAnalysis.h"

#include "qc/qcFigure.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

/// A force and a moment at a joint, kgf and N·m, global axes.
struct PlainSums {
    Triple<float> force, moment;
};

class PlainWalk {
public:
    using Vector = Triple<float>;
    struct Force {
        Vector load;   // kgf
        bool local;    // in the site's axes
    };
    struct Displaced {
        const qcSite* site;
        Vector offset;   // cm, global axes, also for a local force
        Force force;
    };
    enum Sharing { kNobody, kHips, kHipsAndClavicles };

    // ---- What it is told, as a test knows it; weights as the forces that they are

    Vector gravity{0, -980.665f, 0};                       ///< cm/s²
    std::map<const qcSite*, std::optional<Force>> loads;   ///< nullopt: something that cannot be read
    std::vector<Displaced> displaced;                      ///< in the order set
    std::map<const qcJoint*, Vector> torques;              ///< N·m
    std::optional<Force> hands[2];                         ///< by qcSide
    Sharing sharing = kNobody;                             ///< whose share of a stored result counts
    float leftHip = 0, rightHip = 0;                       ///< shares
    float leftClavicle = 0, rightClavicle = 0;
    bool alone = false;   ///< one segment without what hangs on it

    /// A weight in grams as a force, kgf.
    static Vector weight(const Vector& gravity, float grams);

    // ---- What it finds

    std::map<const qcJoint*, PlainSums> results;   ///< on the joints; may hold earlier ones; absent: none
    std::vector<std::string> unreadable;           ///< full names of sites, in the order in which they were met

    /// How often something was met that a walk treats apart.
    struct Met {
        int torques = 0, shares = 0, localLoads = 0, displaced = 0, handLoads = 0, handsWithout = 0;
        int halvedLoads = 0, halvedSums = 0, placeholders = 0, dropped = 0;
        Met& operator+=(const Met& other);
    } met;

    /// Walks away from a joint's site, into the segment on the joint's other side.
    /// @param stop    where to take stored results instead of walking on; null: nowhere
    /// @param before  sums to add to; null: zero
    PlainSums walk(const qcJoint* joint, qcSite* from, const qcSegment* stop = nullptr,
                   const PlainSums* before = nullptr);

private:
    float shareOf(const std::string& joint, const std::string& other) const;
    PlainSums sharedResult(const qcJoint* other, const qcJoint* joint);
    void addLoads(qcSite* site, const Vector& jointPosition, bool halved, PlainSums& sums);
    void addForce(const Force& force, qcSite* site, const Vector& point, const Vector& jointPosition, bool halved,
                  PlainSums& sums);
    PlainSums keep(const qcJoint* joint, PlainSums sums);
};
