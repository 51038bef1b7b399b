// report: prints the report that the analysis itself gives, as it is.
#include "Commands.h"
#include "Messages.h"
#include "Setup.h"

int runReport(const ReportOptions& options)
{
    Opened opened;
    if (!openScene(options.scene, options.human, opened))
        return kWrongInput;
    makeAnalysis(opened);
    if (errorCount() > 0)
        return kWrongInput;
    std::string text;
    for (const char* line = opened.analysis->reportLoads(1); line; line = opened.analysis->reportLoads(0)) {
        text += line;
        text += '\n';
    }
    return print(text) ? kDone : kWrongInput;
}
