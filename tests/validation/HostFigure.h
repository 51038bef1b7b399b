// Host figure: the same figure as the host holds it, part by part, and the way between its units and axes and
// those of the witnesses.
//
//   host      x to the left, y up, z forward      cm      kgf
//   witness   x forward, y to the left, z up      m       N
#pragma once

#include "Figure.h"

#include "qc/qcHuman.h"
#include "qc/qcScene.h"

#include <memory>
#include <string>
#include <vector>

constexpr double kNewtonsPerKgf = 9.80665;   // standard gravity (CGPM, 1901)
constexpr double kMetresPerCm = 0.01;

/// A vector of the host in the witnesses' axes, each component times a factor.
inline Vec fromHost(const qVector& v, double factor)
{
    return Vec{double(v[2]), double(v[0]), double(v[1])} * factor;
}

/// One component of a witness's vector by the host's count: 0 left, 1 up, 2 forward.
inline double hostComponent(const Vec& v, int i)
{
    return i == 0 ? v.y : i == 1 ? v.z : v.x;
}

struct HostSite {
    qcSite* site;
    Place place;
    bool isPalm;           // its loads with offsets count only beside a load of its own
    bool isBalancePoint;   // the host keeps it at the body's centre of mass
};

/// The host's figure, matched with the witnesses' by the names of segments, sites and angles.
class HostFigure {
public:
    /// @throws std::runtime_error when the two do not match
    HostFigure(const Figure& figure, const std::string& urdfPath, const std::string& rolesPath);

    qcHuman& human() { return *owned; }
    qcFigure& host() { return *owned->getFigure(); }

    /// Angles by hinge, rad; the root's position, cm, and its turn about the host's x, then y, then z axis, degrees.
    void setAngles(const std::vector<double>& angles);
    void setRoot(const Vec& cm, const Vec& degrees)
    {
        host().setRoot(cm.x, cm.y, cm.z, degrees.x, degrees.y, degrees.z);
    }

    /// The joint by which a body hangs on its parent; null for the root.
    qcJoint* joint(int body) const { return joints[static_cast<std::size_t>(body)]; }
    int bodyOf(const qcSegment* segment) const;
    int bodyOf(const qcJoint* joint) const;

    const std::vector<HostSite>& sites() const { return placed; }

private:
    void matchBodies(const Figure& figure);
    void matchAngles(const Figure& figure);
    void matchSites(const Figure& figure);

    qcScene scene;
    qcHuman* owned;
    std::vector<qcSegment*> segments;   // by body, as the next
    std::vector<qcJoint*> joints;
    struct Angle {
        qcJoint* joint;
        int number;   // from 1
    };
    std::vector<Angle> angles;   // by hinge
    std::vector<HostSite> placed;
};

/// The root's pose for what setRoot() was told.
Pose rootPose(const Vec& cm, const Vec& degrees);
