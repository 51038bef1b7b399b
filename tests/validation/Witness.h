// Witness: a multibody library that answers what every joint of a figure carries, by its own kinematics.
#pragma once

#include "Figure.h"

#include <memory>
#include <vector>

/// A figure inside a multibody library: hinges with their angles as coordinates, every acceleration zero, the root
/// held by the world. Units and axes are those of Geometry.h.
class Witness {
public:
    virtual ~Witness() = default;
    virtual const char* name() const = 0;

    virtual void setGravity(const Vec& gravity) = 0;   ///< m/s²
    virtual void setRoot(const Pose& root) = 0;

    /// Takes new angles, rad, by hinge, and moves the bodies.
    virtual void setAngles(const std::vector<double>& angles) = 0;

    /// Where a body is.
    virtual Pose pose(int body) const = 0;

    /// What acts on each body beside gravity, about its origin.
    virtual void setForces(const std::vector<Wrench>& onBodies) = 0;

    /// Works out what every joint carries.
    virtual void solve() = 0;

    /// What a body's parent, for the root the world, puts on it, about the body's origin.
    virtual Wrench reaction(int body) const = 0;
};

std::unique_ptr<Witness> makeSimbodyWitness(const Figure& figure);
std::unique_ptr<Witness> makeMujocoWitness(const Figure& figure);

/// Those whose libraries this program was built with.
std::vector<std::unique_ptr<Witness>> makeWitnesses(const Figure& figure);
