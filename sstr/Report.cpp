// Report.
#include "Report.h"

#include <cmath>

namespace {

bool isFinite(const qVector& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) && std::isfinite(v.mag());
}

JointResult resultOf(const qmStaticStrength& analysis, const qcFigure* figure, qcJoint* joint)
{
    JointResult result{jointName(figure, joint), sidedName(joint->getName()), false, true, {}, {}};
    if (result.sides.twin.empty() || !figure->findJoint(result.sides.twin.c_str()))
        result.sides.twin.clear();
    result.has = analysis.getJointForces(joint, result.force, result.moment) != 0;
    result.finite = isFinite(result.force) && isFinite(result.moment);
    return result;
}

}   // namespace

float JointResult::forceN() const
{
    return static_cast<float>(double(forceKgf()) * kNewtonPerKgf);
}

std::vector<std::string> Report::notFinite() const
{
    std::vector<std::string> names;
    for (const JointResult& joint : joints)
        if (!joint.finite)
            names.push_back(joint.joint);
    return names;
}

Report makeReport(qmStaticStrength& analysis, const Inputs& inputs)
{
    Report report;
    qcHuman* human = analysis.getHuman();
    qcFigure* figure = human->getFigure();
    report.inputs = inputs;
    report.support = readSupport(analysis);
    if (const qcAnthroScale* scale = human->getAnthroscale()) {
        if (scale->hasSex() || scale->getStature() > 0)
            report.sex = scale->getSex() == qcFemale ? "female" : "male";
        if (scale->getStature() > 0)
            report.statureCm = scale->getStature();
    }
    report.bodyMassKg = static_cast<float>(figure->getBodyMass() * 0.001);
    report.centerOfMass = figure->getBodyCenterOfMass();
    forEach<qcJoint>(figure->getJoints(),
                     [&](qcJoint* joint) { report.joints.push_back(resultOf(analysis, figure, joint)); });
    for (const qcSide side : {qcRight, qcLeft}) {
        qVector force, moment;
        if (analysis.getJointForces(human->getAnkleJoint(side), force, moment))
            report.ankleKgf[side] = force.mag();
    }
    return report;
}
