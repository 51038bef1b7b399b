// sstr-validate: the analysis beside independent multibody libraries, in numbers and in time.
#include "Benchmark.h"
#include "Comparing.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace {

constexpr const char* kAbout =
    "Puts the same figures, postures, gravity, loads and torques into the analysis and into independent multibody\n"
    "libraries, and compares every joint's force and moment; or times both.\n"
    "Exit status: 0 all agree, 1 something disagrees or cannot be compared, 2 wrong usage, or output that\n"
    "cannot be written.";

// Whether all that was printed has reached standard output.
bool outputIsWhole()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return true;
    std::fprintf(stderr, "error: cannot write to standard output.\n");
    return false;
}

int run(int argc, char** argv)
{
    CLI::App app(kAbout, "sstr-validate");
    int cases = 200, rounds = 1000;
    bool timing = false;
    app.add_option("--cases", cases,
                   "Random cases for each figure; with few of them not every kind of result comes up, which fails")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    app.add_flag("--benchmark", timing, "Time the analysis and the libraries in turns, after comparing them");
    app.add_option("--rounds", rounds, "Rounds of the benchmark")->check(CLI::Range(1, 1000000))->capture_default_str();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& problem) {
        return app.exit(problem) == 0 ? 0 : 2;
    }
    const int status = timing ? runBenchmark(rounds) : compareFigures(cases);
    return outputIsWhole() ? status : 2;
}

}   // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "error: %s\n", problem.what());
        return 1;
    }
}
