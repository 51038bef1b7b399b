// loads: shows what a scene asks of the analysis.
#include "Commands.h"
#include "Messages.h"
#include "Report.h"
#include "Setup.h"

int runLoads(const LoadsOptions& options)
{
    Opened opened;
    if (!openScene(options.scene, options.human, opened))
        return kWrongInput;
    makeAnalysis(opened);
    if (errorCount() > 0)
        return kWrongInput;
    return print(textOf(gatherInputs(*opened.analysis), options.format)) ? kDone : kWrongInput;
}
