// Another module of the host: it knows the installed headers and libraries alone, and calls every public
// member of the analysis. Each result is one that follows from the header's words.
//
//   lengths cm    masses g    forces kgf    moments N·m    gravity cm/s²
#include <qc/qcPy.h>
#include <qc/qcScene.h>
#include <qc/qcSim.h>
#include <qmStaticStrength.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void check(bool good, const char* what, int line)
{
    if (good)
        return;
    ++failures;
    std::fprintf(stderr, "module.cpp:%d: not so: %s\n", line, what);
}
#define CHECK(condition) check(condition, #condition, __LINE__)

bool is(const qVector& v, float x, float y, float z)
{
    return v[0] == x && v[1] == y && v[2] == z;
}
bool isText(const char* found, const char* expected)
{
    return found && std::strcmp(found, expected) == 0;
}
// a few roundings of some kilograms in single precision
bool isNear(float found, float expected)
{
    return std::fabs(found - expected) <= 1e-5f;
}

void callLife(qcHuman* human)
{
    qmStaticStrength* handle = qmStaticStrength::getHandle(human);
    CHECK(handle && qmStaticStrength::getHandle(human) == handle);   // made once
    CHECK(!qmStaticStrength::getHandle(nullptr));
    CHECK(handle->getHuman() == human);

    qmStaticStrength own(human);
    own.setStrategy(qmStaticStrength::HandsAndKnees);
    qmStaticStrength copy(own);
    CHECK(copy.getStrategy() == qmStaticStrength::HandsAndKnees);
    own.setStrategy(qmStaticStrength::Sitting);
    copy = own;
    CHECK(copy.getStrategy() == qmStaticStrength::Sitting && copy.getHuman() == human);

    // another library's object is one of the host's here too
    qcObject* object = handle;
    CHECK(dynamic_cast<qmStaticStrength*>(object) == handle);
}

void callSettings(qmStaticStrength& analysis)
{
    CHECK(analysis.getStrategy() == qmStaticStrength::Sitting);   // the figure kept it
    analysis.setStrategy(qmStaticStrength::RightFoot);
    CHECK(analysis.getStrategy() == qmStaticStrength::RightFoot);
    CHECK(isText(qmStaticStrength::getStrategyName(qmStaticStrength::SittingNoFeet), "Sitting, No Feet"));
    CHECK(!qmStaticStrength::getStrategyName(qmStaticStrength::HandsAndKnees));

    // |(3, -4, 0)| = 5
    qVector gravity;
    analysis.setGravity(qVector(3, -4, 0));
    CHECK(analysis.getGravity(gravity) == 5 && is(gravity, 3, -4, 0));
    analysis.setGravity(qVector(0, -980.665f, 0));
}

int scripts = 0;

int runScript(const char* source, void*)
{
    if (std::strcmp(source, "count") == 0)
        ++scripts;
    return 1;
}

// once by itself and once in the only step while it is active
void callActivation(qmStaticStrength& analysis)
{
    qcPy::registerInterpreter(runScript, nullptr);
    CHECK(analysis.isActive() == 0);
    CHECK(analysis.activate("count") == 1 && analysis.isActive() == 1);
    CHECK(analysis.activate("another") == 0);
    analysis.run_script();
    qcSim::step(1);
    CHECK(analysis.deactivate() == 1 && analysis.isActive() == 0);
    qcSim::step(1);
    CHECK(scripts == 2);
    qcPy::registerInterpreter(nullptr, nullptr);
}

void callLoads(qmStaticStrength& analysis, qcSite* right, qcSite* left)
{
    CHECK(analysis.setLoad(right, qVector(1, -2, 3)) == 1 && isText(analysis.getLoadType(right), "global"));
    CHECK(analysis.getSiteWeight(right) == -1);
    // standard gravity: 1500 g are 1.5 kgf
    CHECK(analysis.setWeightLoad(left, 1500) == 1 && isText(analysis.getLoadType(left), "weight"));
    CHECK(analysis.getSiteWeight(left) == 1500);
    qVector load;
    CHECK(analysis.getSiteLoad(right, load) == 1 && is(load, 1, -2, 3));
    CHECK(analysis.getSiteLoad(left, load) == 1 && is(load, 0, -1.5f, 0));
    CHECK(analysis.getNumLoads() == 2);
    CHECK(analysis.getNthLoadSite(0) == right && analysis.getNthLoadSite(1) == left && !analysis.getNthLoadSite(2));
    CHECK(analysis.removeLoad(right) == 1 && analysis.removeLoad(right) == 0 && analysis.getNumLoads() == 1);

    const char* first = analysis.reportLoads(1);
    CHECK(first && std::strstr(first, "\tWeight: 1500.0 gr"));
    CHECK(isText(analysis.reportLoads(), "Strategy: \"Right Foot\""));
    CHECK(isText(analysis.reportLoads(), "Gravity: (0.00, -980.66, 0.00) cm/sec^2"));
    CHECK(!analysis.reportLoads());

    CHECK(analysis.reset() == 1 && analysis.getNumLoads() == 1);
    analysis.clear();
    CHECK(analysis.getNumLoads() == 0 && analysis.reset() == 0);
}

void callLoadsWithOffset(qmStaticStrength& analysis, qcSite* site)
{
    const loadWithOffset* force = analysis.setLoadWithOffset(site, qVector(1, 2, 3), qVector(0, -4, 0), 1);
    CHECK(force && force->site == site && is(force->offset, 1, 2, 3) && is(force->load, 0, -4, 0));
    CHECK(isText(force->type, "local") && force->local && force->mass == -1);
    loadWithOffset* weight = analysis.setWeightLoadWithOffset(site, qVector(0, 0, 9), 2000);
    CHECK(weight && isText(weight->type, "weight") && !weight->local && weight->mass == 2000);
    CHECK(is(weight->load, 0, -2, 0));   // 2000 g under standard gravity
    CHECK(analysis.getNumLoadsWithOffset() == 2);
    CHECK(analysis.getNthLoadWithOffset(0) == force && analysis.getNthLoadWithOffset(1) == weight);
    CHECK(analysis.removeLoadWithOffset(weight) == 1 && analysis.removeLoadWithOffset(nullptr) == 0);
    CHECK(analysis.getNumLoadsWithOffset() == 1);
    analysis.clear();
}

void callTorques(qmStaticStrength& analysis, qcJoint* joint)
{
    qVector torque(1, 2, 3), found;
    CHECK(analysis.setDefinedTorque(joint, torque) == 1 && analysis.getNumDefinedTorques() == 1);
    CHECK(analysis.getNthDefinedTorqueJoint(0) == joint && !analysis.getNthDefinedTorqueJoint(1));
    CHECK(analysis.getDefinedTorque(joint, found) == 1 && is(found, 1, 2, 3));
    CHECK(analysis.removeDefinedTorque(joint) == 1 && analysis.getDefinedTorque(joint, found) == 0);
}

void callComputation(qmStaticStrength& analysis, qcHuman* human)
{
    // The right elbow carries what hangs on it, its grams · 0.001, and 2 kgf in the hand.
    qcFigure* figure = human->getFigure();
    qcJoint* elbow = figure->findJoint("right_elbow");
    float grams = 0;
    for (const char* name : {"right_lower_arm", "right_hand", "right_fingers", "right_thumb"})
        grams += figure->findSegment(name)->getMass();
    analysis.setStrategy(qmStaticStrength::RightFoot);
    analysis.setLoad(human->getHandSite(qcRight), qVector(0, -2, 0));
    qVector force, moment;
    CHECK(analysis.compute() == 1 && analysis.getJointForces(elbow, force, moment) == 1);
    CHECK(isNear(-force[1], grams * 0.001f + 2) && force[0] == 0 && force[2] == 0);

    analysis.setFMonJoint(elbow, qVector(1, 2, 3), qVector(4, 5, 6));
    CHECK(analysis.getJointForces(elbow, force, moment) == 1 && is(force, 1, 2, 3) && is(moment, 4, 5, 6));

    // (30, 0, 0) cm × (0, -2, 0) kgf = (0, 0, -60) kgf·cm = (0, 0, -5.88399) N·m
    qVector joint(0, 100, 0), point(30, 100, 0), load(0, -2, 0), sumForce(1, 0, 0), sumMoment(0, 1, 0);
    analysis.calcForcesAt(joint, point, load, sumForce, sumMoment);
    CHECK(is(sumForce, 1, -2, 0) && sumMoment[0] == 0 && sumMoment[1] == 1 && isNear(sumMoment[2], -5.88399f));

    // on two feet the hips share what comes from the waist
    analysis.setStrategy(qmStaticStrength::TwoFeet);
    CHECK(analysis.compute() == 1);
    const float right = analysis.getSplitFactor(human->getHipJoint(qcRight), 1, "waist");
    const float left = analysis.getSplitFactor(human->getHipJoint(qcLeft), 1, "waist");
    CHECK(right > 0 && left > 0 && isNear(right + left, 1));
}

}   // namespace

// @return how many checks failed; -1 when there is no human to analyse
extern "C" __attribute__((visibility("default"))) int callEveryMember(const char* urdf)
{
    qcScene scene;
    qcHuman* human = scene.addHuman(urdf, "worker");
    if (!human)
        return -1;   // the reason is on standard error
    qcSite *right = human->getHandSite(qcRight), *left = human->getHandSite(qcLeft);
    callLife(human);
    {
        qmStaticStrength analysis(human);
        callSettings(analysis);
        callActivation(analysis);
        callLoads(analysis, right, left);
        callLoadsWithOffset(analysis, right);
        callTorques(analysis, human->getKneeJoint(qcLeft));
        callComputation(analysis, human);
    }
    delete qmStaticStrength::getHandle(human);   // it borrows the human, which the scene frees
    return failures;
}
