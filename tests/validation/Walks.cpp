// Walks.
#include "Walks.h"

#include <utility>

namespace {

class Walking {
public:
    explicit Walking(const Figure& walked) : figure(walked), carried(walked.bodies.size())
    {
        for (std::size_t i = 1; i < figure.bodies.size(); ++i)
            carried[static_cast<std::size_t>(figure.bodies[i].parent)].push_back(static_cast<int>(i));
    }

    // Through a joint, away from one of its two bodies.
    int walk(int joint, int from, int before = -1)
    {
        const int parent = figure.bodies[static_cast<std::size_t>(joint)].parent;
        WalkStep step;
        step.joint = joint;
        step.upward = from == joint;
        step.beyond = step.upward ? parent : joint;
        step.before = before;
        if (step.beyond > 0 && step.beyond != joint)
            step.next.push_back(walk(step.beyond, step.beyond));
        for (const int other : carried[static_cast<std::size_t>(step.beyond)])
            if (other != joint)
                step.next.push_back(walk(other, step.beyond));
        steps.push_back(std::move(step));
        return static_cast<int>(steps.size()) - 1;
    }

    std::vector<WalkStep> steps;

private:
    const Figure& figure;
    std::vector<std::vector<int>> carried;   // by body
};

qcSide sideOf(Support support)
{
    return support == Support::kRightFoot ? qcRight : qcLeft;
}

}   // namespace

const char* nameOf(Support support)
{
    switch (support) {
    case Support::kRightFoot:
        return "right foot";
    case Support::kLeftFoot:
        return "left foot";
    case Support::kSittingNoFeet:
        return "sitting, no feet";
    default:
        return "two feet, waist up";
    }
}

qmStaticStrength::Strategy strategyOf(Support support)
{
    switch (support) {
    case Support::kRightFoot:
        return qmStaticStrength::RightFoot;
    case Support::kLeftFoot:
        return qmStaticStrength::LeftFoot;
    case Support::kSittingNoFeet:
        return qmStaticStrength::SittingNoFeet;
    default:
        return qmStaticStrength::TwoFeet;
    }
}

int footOf(Support support, HostFigure& host)
{
    if (support != Support::kRightFoot && support != Support::kLeftFoot)
        return -1;
    return host.bodyOf(host.human().getFootSite(sideOf(support))->getSegment());
}

std::vector<WalkStep> stepsOf(Support support, const Figure& figure, HostFigure& host)
{
    Walking walking(figure);
    qcHuman& human = host.human();
    const int foot = footOf(support, host);
    if (foot >= 0) {
        const int ankle = host.bodyOf(human.getAnkleJoint(sideOf(support)));
        const int above = walking.walk(ankle, foot);
        walking.walk(ankle, walking.steps[static_cast<std::size_t>(above)].beyond, above);
        return std::move(walking.steps);
    }
    const int pelvis = host.bodyOf(human.getPelvisSite()->getSegment());
    walking.walk(host.bodyOf(human.getWaistJoint()), pelvis);
    if (support == Support::kSittingNoFeet)
        for (const qcSide side : {qcRight, qcLeft})
            walking.walk(host.bodyOf(human.getHipJoint(side)), pelvis);
    return std::move(walking.steps);
}
