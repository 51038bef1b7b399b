// sstr: the analysis from the command line.
#include "Commands.h"
#include "Messages.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

namespace {

int run(const CommandLine& line)
{
    switch (line.command) {
    case CommandLine::kCompute:
        return runCompute(line.compute);
    case CommandLine::kExplain:
        return runExplain(line.explain);
    case CommandLine::kFigure:
        return runFigure(line.figure);
    case CommandLine::kLoads:
        return runLoads(line.loads);
    case CommandLine::kReport:
        return runReport(line.report);
    case CommandLine::kNewScene:
        return runNewScene(line.newScene);
    }
    return kWrongInput;
}

}   // namespace

int main(int argc, char** argv)
{
    std::signal(SIGXFSZ, SIG_IGN);   // a file that grows too large is an error of its writing, which is then reported
    try {
        forwardHostMessages();
        CommandLine line;
        if (const std::optional<int> status = readCommandLine(argc, argv, line))
            return *status;
        return run(line);
    } catch (const std::bad_alloc&) {
        std::fputs("sstr: error: there is not enough memory.\n", stderr);   // needs none itself
        return kNotComputed;
    } catch (const std::exception& problem) {
        reportError(problem.what());
        return kWrongInput;
    }
}
