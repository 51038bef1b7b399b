// Program: runs sstr as a process and keeps what it left.
#pragma once

#include "Support.h"

#include <nlohmann/json.hpp>

#include <array>
#include <string>
#include <vector>

/// What one run left.
struct ProgramRun {
    int status;        // exit status; -1 when the process did not exit by itself
    std::string out;   // standard output
    std::string err;   // standard error
};

/// Runs the program with these arguments and an empty standard input.
/// @param outPath  where standard output goes, instead of into ProgramRun::out
ProgramRun runProgram(const std::vector<std::string>& arguments, const std::string& outPath = "");

/// A test with a folder of its own that the runs may write to.
class ProgramTest : public ::testing::Test {
protected:
    static std::string example(const std::string& name) { return SSTR_SOURCE_DIR "/examples/" + name + ".json"; }

    /// A scene of the default human in its zero posture, standing on the floor, in the test's folder.
    std::string standingScene(const std::string& name = "standing") const;

    /// Runs `compute` with JSON output; a failure of the test unless it exits with 0 and says nothing
    /// on standard error.
    static nlohmann::json compute(const std::string& scene, std::vector<std::string> options = {});

    TemporaryFolder folder;
};

/// The entry of a joint in the JSON output of `compute`; a failure of the test when there is none.
nlohmann::json jointOf(const nlohmann::json& output, const std::string& name);

/// x, y, z of a quantity of a joint: ("force", "kgf") or ("moment", "nm").
std::array<double, 3> vectorOf(const nlohmann::json& joint, const std::string& quantity, const std::string& unit);
