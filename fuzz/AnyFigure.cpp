// Any figure.
#include "AnyFigure.h"

#include "Check.h"
#include "qmStaticStrength.h"

#include "qc/qcFigureFile.h"

#include <memory>

namespace {

void readEveryPart(qmStaticStrength& analysis, qcFigure& figure)
{
    qVector force, moment;
    for (qList* node = figure.getJoints(); node; node = qList::iterator(nullptr, node)) {
        qcJoint* joint = static_cast<qcJoint*>(node->getData());
        analysis.getJointForces(joint, force, moment);
        analysis.getDefinedTorque(joint, moment);
        for (int mode = 0; mode <= 4; ++mode)
            analysis.getSplitFactor(joint, mode, joint->getName());
    }
    for (qList* node = figure.getSites(); node; node = qList::iterator(nullptr, node)) {
        qcSite* site = static_cast<qcSite*>(node->getData());
        analysis.getLoadType(site);
        analysis.getSiteWeight(site);
        analysis.getSiteLoad(site, force);
    }
    for (int i = 0; i < analysis.getNumLoads(); ++i)
        analysis.getNthLoadSite(i);
    for (int i = 0; i < analysis.getNumDefinedTorques(); ++i)
        analysis.getNthDefinedTorqueJoint(i);
    for (int i = 0; i < analysis.getNumLoadsWithOffset(); ++i)
        check(analysis.getNthLoadWithOffset(i) && analysis.getNthLoadWithOffset(i)->site, "a record has its site");
}

}   // namespace

void analyseInEveryWay(qcHuman& human)
{
    qmStaticStrength analysis(&human);
    for (int strategy = qmStaticStrength::TwoFeet; strategy <= qmStaticStrength::HandsAndKnees; ++strategy) {
        analysis.setStrategy(static_cast<qmStaticStrength::Strategy>(strategy));
        check(analysis.compute() == 1, "compute() gives 1");
        readEveryPart(analysis, *human.getFigure());
    }
    for (const char* line = analysis.reportLoads(1); line; line = analysis.reportLoads(0))
        ;
    analysis.clear();
    check(analysis.getNumLoads() == 0 && analysis.getNumLoadsWithOffset() == 0 && analysis.getNumDefinedTorques() == 0,
          "clear() leaves no load and no torque");
}

void checkPosedRoundTrip(qcFigure& figure)
{
    const std::string text = qcFigureFile::posedText(figure);
    const std::unique_ptr<qcFigure> again(qcFigureFile::readPosedText(text.c_str(), "its own text"));
    check(again != nullptr, "a figure's own text is a figure");
    check(qcFigureFile::posedText(*again) == text, "a figure read back is written the same");
}
