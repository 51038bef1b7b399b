// Walk sums.
#include "WalkSums.h"

#include <algorithm>

namespace {

constexpr double kDouble = 1.0 / (1ull << 40);

// Terms of a sum: how many, how long together, what errors they bring.
struct Terms {
    int count = 0;
    double lengths = 0, errors = 0;

    void add(double length, double error)
    {
        ++count;
        lengths += length;
        errors += error;
    }
    double error() const { return errors + count * rounding() * lengths; }
};

void addForce(double arm, double force, double error, Terms& forces, Terms& moments)
{
    forces.add(force, error);
    moments.add(arm * force, arm * (error + 7 * rounding() * force));
}

}   // namespace

WalkSums::WalkSums(const std::vector<WalkStep>& walked, const Testimony& told, const Loading& acting)
    : steps(walked), testimony(told), loading(acting), joints(walked.size())
{
    findDoubleErrors();
}

void WalkSums::findDoubleErrors()
{
    double forces = 0, couples = 0, reach = 0;   // all forces, all torques, the farthest point from the origin
    const auto count = [&](const AppliedForce& applied) {
        forces += length(applied.force);
        reach = std::max(reach, length(applied.point));
    };
    for (const std::vector<AppliedForce>& loads : loading.loads)
        std::for_each(loads.begin(), loads.end(), count);
    std::for_each(loading.weights.begin(), loading.weights.end(), count);
    for (const Vec& point : testimony.points)
        reach = std::max(reach, length(point));
    for (const auto& torque : loading.torques)
        couples += length(torque.second);
    forceInDouble = kDouble * forces;
    momentInDouble = kDouble * (2 * reach * forces + couples);
}

const WalkSums::Sum& WalkSums::sum(std::size_t index)
{
    const WalkStep& step = steps[index];
    const Vec& here = testimony.points[index];
    Joint& joint = joints[index];
    Terms forces, moments;
    Vec earlier;
    if (step.before >= 0) {   // the same joint's other site: a narrowed position of its own
        const Joint& before = joints[static_cast<std::size_t>(step.before)];
        earlier = before.kept.force;
        forces.add(length(earlier), before.forceError);
        moments.add(length(before.kept.moment), before.momentError);
        joint.pointError = before.pointError + rounding() * length(here) * length(earlier);
        joint.dropped = before.dropped;
    }
    const auto torque = loading.torques.find(step.joint);
    if (torque != loading.torques.end())
        moments.add(length(torque->second), 0);
    for (const int next : step.next) {
        const Joint& other = joints[static_cast<std::size_t>(next)];
        const Vec& there = testimony.points[static_cast<std::size_t>(next)];
        addForce(length(there - here), length(other.kept.force), other.forceError, forces, moments);
        moments.add(length(other.kept.moment), other.momentError);
        joint.pointError += other.pointError;
        joint.dropped = joint.dropped + moved(other.dropped, there, here);
    }
    const auto addOwn = [&](const AppliedForce& own) {
        addForce(length(own.point - here), length(own.force), own.forceError, forces, moments);
        joint.pointError += own.pointError * length(own.force);
    };
    const auto body = static_cast<std::size_t>(step.beyond);
    std::for_each(loading.loads[body].begin(), loading.loads[body].end(), addOwn);
    addOwn(loading.weights[body]);

    joint.forceError = forces.error();
    joint.momentError = moments.error();
    const Wrench exact = testimony.beyond[index] - joint.dropped;
    const double hereError = rounding() * length(here) * length(exact.force - earlier);
    joint.sum = {exact, joint.forceError + forceInDouble,
                 joint.momentError + joint.pointError + hereError + momentInDouble};
    return joint.sum;
}

void WalkSums::keepWhole(std::size_t index)
{
    joints[index].kept = joints[index].sum.exact;
}

void WalkSums::drop(std::size_t index)
{
    Joint& joint = joints[index];
    joint.dropped = joint.dropped + joint.sum.exact;
    joint.kept = {};
    joint.forceError = joint.momentError = joint.pointError = 0;
}

// From here on the force acts at the joint itself.
void WalkSums::replaceMoment(std::size_t index, const Vec& moment)
{
    Joint& joint = joints[index];
    joint.kept = {joint.sum.exact.force, moment};
    joint.dropped = joint.dropped + (joint.sum.exact - joint.kept);
    joint.momentError = 0;
    joint.pointError = rounding() * length(testimony.points[index]) * length(joint.kept.force);
}
