// A user's program: the default human lets its arms hang; what does the right elbow carry?
#include <qc/qcScene.h>
#include <qmStaticStrength.h>

#include <cmath>
#include <cstdio>
#include <memory>

int main()
{
    qcScene scene;
    qcHuman* human = scene.addHuman(FIGURES_DIR "/human.urdf", "worker");
    if (!human)
        return 1;   // the reason is on standard error

    // On one foot every joint of the body gets a result.
    std::unique_ptr<qmStaticStrength> analysis(new qmStaticStrength(human));
    analysis->setStrategy(qmStaticStrength::RightFoot);
    analysis->compute();

    qVector force, moment;
    qcJoint* elbow = human->getFigure()->findJoint("right_elbow");
    if (!analysis->getJointForces(elbow, force, moment)) {
        std::fprintf(stderr, "no result at the right elbow\n");
        return 1;
    }

    // What hangs on it: its weight in kgf is its mass in kg.
    float grams = 0;
    for (const char* name : {"right_lower_arm", "right_hand", "right_fingers", "right_thumb"}) {
        qcSegment* segment = human->getFigure()->findSegment(name);
        if (!segment) {
            std::fprintf(stderr, "no segment %s\n", name);
            return 1;
        }
        grams += segment->getMass();
    }
    std::printf("right elbow: %g kgf down for %g g\n", double(-force[1]), double(grams));
    // a few roundings of some kilograms in single precision
    return std::fabs(-force[1] - grams * 0.001f) <= 1e-5f ? 0 : 1;
}
