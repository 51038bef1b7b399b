// sstr: the analysis from the command line.
#include "Commands.h"
#include "Messages.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>

int print(const std::string& text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) == 0 && written)
        return 1;
    reportError(std::string("cannot write to standard output: ") + std::strerror(errno) + ".");
    return 0;
}

namespace {

int run(const CommandLine& line)
{
    switch (line.command) {
    case CommandLine::kCompute:
        return runCompute(line.compute);
    case CommandLine::kFigure:
        return runFigure(line.figure);
    case CommandLine::kLoads:
        return runLoads(line.loads);
    case CommandLine::kNewScene:
        return runNewScene(line.newScene);
    }
    return kWrongInput;
}

}   // namespace

int main(int argc, char** argv)
{
    try {
        forwardHostMessages();
        CommandLine line;
        if (const std::optional<int> status = readCommandLine(argc, argv, line))
            return *status;
        return run(line);
    } catch (const std::exception& problem) {   // such as memory that runs out
        reportError(problem.what());
        return kWrongInput;
    }
}
