// report: prints the report that the analysis itself gives, line by line.
#include "Commands.h"
#include "Messages.h"
#include "Setup.h"

namespace {

// A line as it is but for control characters that come from names; the tab behind a site is the report's own.
std::string withoutControls(const std::string& line)
{
    const std::size_t tab = line.rfind('\t');
    return tab == std::string::npos ? escaped(line)
                                    : escaped(line.substr(0, tab)) + "\t" + escaped(line.substr(tab + 1));
}

}   // namespace

int runReport(const ReportOptions& options)
{
    Opened opened;
    if (!openScene(options.scene, options.human, opened))
        return kWrongInput;
    makeAnalysis(opened);
    if (errorCount() > 0)
        return kWrongInput;
    if (opened.analysis->getStrategy() == qmStaticStrength::HandsAndKnees && opened.analysis->getNumLoads() > 0)
        reportWarning(
            "the scene's strategy is hands-and-knees, which the report cannot tell: it tells the stored one.");
    std::string text;
    for (const char* line = opened.analysis->reportLoads(1); line; line = opened.analysis->reportLoads(0)) {
        text += withoutControls(line) + "\n";
    }
    return print(text) ? kDone : kWrongInput;
}
