// explain: computes, and shows what makes up the result of one joint.
#include "Commands.h"
#include "Explanation.h"
#include "Inputs.h"
#include "Messages.h"
#include "Names.h"
#include "Setup.h"

int runExplain(const ExplainOptions& options)
{
    Opened opened;
    if (!openScene(options.scene, options.changes.human, opened))
        return kWrongInput;
    applyChanges(options.changes, opened);
    qcJoint* joint = findJoint(opened.human->getFigure(), options.joint, "JOINT");
    if (errorCount() > 0)
        return kWrongInput;
    warnAboutPalms(gatherInputs(*opened.analysis));

    opened.analysis->compute();
    if (errorCount() > 0)
        return kNotComputed;
    const Explanation explanation =
        explain(*opened.analysis, joint, options.sort == "force" ? Explanation::kByForce : Explanation::kByMoment);
    if (!print(options.format == "json" ? jsonOf(explanation) : tableOf(explanation)))
        return kWrongInput;
    if (explanation.isFinite())
        return kDone;
    reportError("the result at joint " + explanation.joint + " is not a finite number.");
    return kNotComputed;
}
