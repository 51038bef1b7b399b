// Bench human.
#include "BenchHuman.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

BenchHuman::BenchHuman() : scene(new qcScene), human(scene->addHuman(SSTR_SOURCE_DIR "/figures/human.urdf", "human"))
{
    if (!human)
        std::abort();   // the message has been printed
    for (qList* node = figure().getJoints(); node; node = qList::iterator(nullptr, node))
        joints.push_back(static_cast<qcJoint*>(node->getData()));

    std::mt19937 random(20261121);
    for (int i = 0; i < kPostures; ++i) {
        postures.emplace_back();
        for (const qcJoint* joint : joints)
            for (int angle = 1; angle <= joint->getNumAngles(); ++angle) {
                double lower = -0.1, upper = 0.1;
                joint->getAngleLimits(angle, lower, upper);
                postures.back().push_back(std::uniform_real_distribution<>(0.9 * lower, 0.9 * upper)(random));
            }
    }
    figure().standOnFloor();
    setPosture(0);
    owned = std::make_unique<qmStaticStrength>(human);
}

void BenchHuman::addLoads(int count)
{
    const qVector load(0.5f, -1.0f, 0.25f), offset(1.0f, 2.0f, 3.0f);
    qList* sites = figure().getSites();
    qList* node = nullptr;
    bool withOffset = false;
    for (int i = 0; i < count; ++i) {
        node = qList::iterator(sites, node);
        if (!node) {
            withOffset = true;
            node = sites;
        }
        qcSite* site = static_cast<qcSite*>(node->getData());
        if (withOffset)
            owned->setLoadWithOffset(site, offset, load, i % 2);
        else
            owned->setLoad(site, load, i % 2);
    }
}

void BenchHuman::setPosture(int variant)
{
    const double* angle = postures[static_cast<std::size_t>(variant % kPostures)].data();
    for (qcJoint* joint : joints)
        for (int i = 1; i <= joint->getNumAngles(); ++i)
            joint->setAngle(i, *angle++);
}

bool BenchHuman::hasResult(const std::string& joint)
{
    qVector force, moment;
    return owned->getJointForces(figure().findJoint(joint.c_str()), force, moment) == 1;
}
