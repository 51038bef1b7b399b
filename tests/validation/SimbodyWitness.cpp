// Simbody as a witness: prescribed accelerations of zero, and the reactions of its mobilizers.
#include "Witness.h"

#include <Simbody.h>

#include <stdexcept>

namespace {

// What the library needs to be positive, kg·m². Nothing turns faster, so no result depends on it.
constexpr double kAnyInertia = 0.01;

constexpr double kRightAngle = 1e-9;   // how far the cosine of two axes may lie from 0

SimTK::Vec3 vector(const Vec& v)
{
    return {v.x, v.y, v.z};
}

Vec vector(const SimTK::Vec3& v)
{
    return {v[0], v[1], v[2]};
}

SimTK::Transform transform(const Pose& pose)
{
    const Turn& t = pose.turn;
    const SimTK::Mat33 columns(t.x.x, t.y.x, t.z.x, t.x.y, t.y.y, t.z.y, t.x.z, t.y.z, t.z.z);
    return {SimTK::Rotation(columns), vector(pose.origin)};
}

SimTK::MassProperties massOf(const Body& body)
{
    const SimTK::Vec3 center = vector(body.center);
    const SimTK::Inertia about(SimTK::Inertia(kAnyInertia) + SimTK::Inertia(center, body.mass));
    return {body.mass, center, about};
}

Vec anyAcross(const Vec& axis)
{
    const Vec across = cross(axis, std::abs(axis.x) < 0.6 ? Vec{1, 0, 0} : Vec{0, 1, 0});
    return across * (1 / length(across));
}

// Up to three hinges whose axes stand at right angles to the next are one mobilizer, which turns about the x, y
// and z axis of a frame of its own. Where the axes are left-handed, the last angle counts backwards.
struct Joint {
    explicit Joint(const std::vector<Hinge>& hinges)
    {
        if (hinges.size() > 3)
            throw std::runtime_error("hinge " + hinges[3].name + ": more than three in one joint");
        for (std::size_t i = 1; i < hinges.size(); ++i)
            for (std::size_t k = 0; k < i; ++k)
                if (std::abs(dot(hinges[i].axis, hinges[k].axis)) > kRightAngle)
                    throw std::runtime_error("hinge " + hinges[i].name + ": not at a right angle to the others");
        if (hinges.size() == 1) {   // a pin turns about z
            frame.z = hinges[0].axis;
            frame.x = anyAcross(frame.z);
            frame.y = cross(frame.z, frame.x);
        } else if (hinges.size() > 1) {
            frame.x = hinges[0].axis;
            frame.y = hinges[1].axis;
            frame.z = cross(frame.x, frame.y);
            if (hinges.size() == 3 && dot(frame.z, hinges[2].axis) < 0)
                lastSign = -1;
        }
    }

    Turn frame;   // in the body
    double lastSign = 1;
};

class SimbodyWitness : public Witness {
public:
    explicit SimbodyWitness(const Figure& figure)
        : matter(system), forces(system), gravity(forces, matter, SimTK::Vec3(0, 0, -1)), discrete(forces, matter),
          signs(static_cast<std::size_t>(figure.hinges), 1.0)
    {
        for (const Body& body : figure.bodies)
            add(body);
        state = system.realizeTopology();
        // velocities are zero and stay so; every acceleration is prescribed to be zero
        for (SimTK::MobilizedBody& body : bodies)
            body.lock(state, SimTK::Motion::Acceleration);
        system.realize(state, SimTK::Stage::Position);
        coordinates = state.getQ();
        if (coordinates.size() != kRootCoordinates + figure.hinges)
            throw std::runtime_error("Simbody understands the figure differently");
        onBodies.resize(matter.getNumBodies());
    }

    const char* name() const override { return "Simbody"; }

    void setGravity(const Vec& g) override { gravity.setGravityVector(state, vector(g)); }

    void setRoot(const Pose& root) override
    {
        bodies.front().setQToFitTransform(state, transform(root));
        coordinates = state.getQ();
        system.realize(state, SimTK::Stage::Position);
    }

    void setAngles(const std::vector<double>& angles) override
    {
        for (std::size_t i = 0; i < angles.size(); ++i)
            coordinates[kRootCoordinates + static_cast<int>(i)] = signs[i] * angles[i];
        state.updQ() = coordinates;
        system.realize(state, SimTK::Stage::Position);
    }

    Pose pose(int body) const override
    {
        const SimTK::Transform& t = bodies[static_cast<std::size_t>(body)].getBodyTransform(state);
        return {{vector(SimTK::Vec3(t.x())), vector(SimTK::Vec3(t.y())), vector(SimTK::Vec3(t.z()))}, vector(t.p())};
    }

    void setForces(const std::vector<Wrench>& wrenches) override
    {
        for (std::size_t i = 0; i < wrenches.size(); ++i)
            onBodies[id(static_cast<int>(i))] =
                SimTK::SpatialVec(vector(wrenches[i].moment), vector(wrenches[i].force));
        discrete.setAllBodyForces(state, onBodies);
    }

    void solve() override
    {
        system.realize(state, SimTK::Stage::Acceleration);
        matter.calcMobilizerReactionForces(state, reactions);
    }

    // About the origin of the mobilizer's frame on the body, which is the body's.
    Wrench reaction(int body) const override
    {
        const SimTK::SpatialVec& r = reactions[id(body)];
        return {vector(r[1]), vector(r[0])};
    }

private:
    static constexpr int kRootCoordinates = 7;     // a quaternion and a position
    static int id(int body) { return body + 1; }   // 0 is the world

    void add(const Body& body)
    {
        using SimTK::MobilizedBody;
        const SimTK::Body::Rigid rigid(massOf(body));
        if (body.parent < 0) {
            bodies.push_back(MobilizedBody::Free(matter.Ground(), rigid));
            return;
        }
        const Joint joint(body.hinges);
        const SimTK::Transform onBody = transform({joint.frame, {}});
        const SimTK::Transform onParent = transform(body.inParent * Pose{joint.frame, {}});
        MobilizedBody& parent = bodies[static_cast<std::size_t>(body.parent)];
        switch (body.hinges.size()) {
        case 0:
            bodies.push_back(MobilizedBody::Weld(parent, onParent, rigid, onBody));
            break;
        case 1:
            bodies.push_back(MobilizedBody::Pin(parent, onParent, rigid, onBody));
            break;
        case 2:
            bodies.push_back(MobilizedBody::Universal(parent, onParent, rigid, onBody));
            break;
        default:
            bodies.push_back(MobilizedBody::Gimbal(parent, onParent, rigid, onBody));
            signs[static_cast<std::size_t>(body.firstHinge) + 2] = joint.lastSign;
        }
    }

    SimTK::MultibodySystem system;
    SimTK::SimbodyMatterSubsystem matter;
    SimTK::GeneralForceSubsystem forces;
    SimTK::Force::Gravity gravity;
    SimTK::Force::DiscreteForces discrete;
    std::vector<SimTK::MobilizedBody> bodies;
    std::vector<double> signs;   // of the angles, by hinge
    SimTK::State state;
    SimTK::Vector coordinates;
    SimTK::Vector_<SimTK::SpatialVec> onBodies, reactions;
};

}   // namespace

std::unique_ptr<Witness> makeSimbodyWitness(const Figure& figure)
{
    return std::make_unique<SimbodyWitness>(figure);
}
