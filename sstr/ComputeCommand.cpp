// compute: analyses a human of a scene and shows what its joints carry.
#include "Commands.h"
#include "Messages.h"
#include "Names.h"
#include "Report.h"
#include "Setup.h"
#include "Strategies.h"

namespace {

// Under zero or small gravity a weight hardly pulls, and the scene would open without the weight.
void checkWeightsCanBeKept(const ComputeOptions& options, const Inputs& inputs)
{
    if (options.save.empty())
        return;
    const std::string gravity = inputs.gravity.mag() > 0 ? "gravity this small" : "zero gravity";
    for (const LoadInput& load : inputs.loads)
        if (!load.hasOffset && load.type == "weight" && !isFoundAgain(load.force)) {
            reportError("--save: under " + gravity + " the weight at " + load.site
                        + " would not be found again in the saved scene. Save under a stronger gravity, or take the "
                          "loads off with --clear-loads.");
            return;
        }
}

void tellVerbosely(const Opened& opened, const Report& report)
{
    const qcFigure& figure = *opened.human->getFigure();
    reportNote("figure " + std::string(figure.getName()) + ": " + std::to_string(report.joints.size()) + " joints, "
               + (figure.isPosed()     ? "posed"
                  : figure.isOnFloor() ? "standing on the floor"
                                       : "placed by its root"));
    for (const std::string& note : figure.getNotes())
        reportNote(note);
    reportNote("computed with strategy " + strategyText(report.support.effective));
}

}   // namespace

int runCompute(const ComputeOptions& options)
{
    Opened opened;
    if (!openScene(options.scene, options.changes.human, opened))
        return kWrongInput;
    if (!options.save.empty())
        mayHoldScene("--save", options.save);
    applyChanges(options.changes, opened);
    const Inputs inputs = gatherInputs(*opened.analysis);
    checkWeightsCanBeKept(options, inputs);
    if (errorCount() > 0)
        return kWrongInput;
    warnAboutPalms(inputs);

    opened.analysis->compute();
    if (errorCount() > 0)
        return kNotComputed;
    const Report report = makeReport(*opened.analysis, inputs);
    if (options.verbose)
        tellVerbosely(opened, report);
    if (!print(textOf(report, options.format)))
        return kWrongInput;
    for (const std::string& joint : report.notFinite())
        reportError("the result at joint " + joint + " is not a finite number.");
    if (errorCount() > 0)
        return kNotComputed;

    if (options.save.empty())
        return kDone;
    if (!opened.scene->save(options.save.c_str()))
        return kWrongInput;
    if (options.verbose)
        reportNote("saved " + options.save);
    return kDone;
}
