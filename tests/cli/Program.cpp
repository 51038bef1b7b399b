// Program.
#include "Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>

ProgramRun runProgram(const std::vector<std::string>& arguments, const std::string& outPath)
{
    const TemporaryFolder folder;
    const std::string program = SSTR_PROGRAM;
    const std::string out = outPath.empty() ? folder.write("out", "") : outPath;
    const std::string err = folder.write("err", "");
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY, 0);
    pid_t child = -1;
    const int problem = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) {
        ADD_FAILURE() << "cannot run " << program;
        return {-1, "", ""};
    }
    int state = 0;
    waitpid(child, &state, 0);
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, outPath.empty() ? contentOf(out) : "", contentOf(err)};
}

std::string ProgramTest::standingScene(const std::string& name) const
{
    const std::string scene = folder.file(name + ".json");
    const ProgramRun made = runProgram({"new-scene", SSTR_SOURCE_DIR "/figures/human.urdf", scene, "--name", name});
    EXPECT_EQ(made.status, 0) << made.err;
    return scene;
}

nlohmann::json ProgramTest::compute(const std::string& scene, std::vector<std::string> options)
{
    options.insert(options.begin(), {"compute", scene, "--format", "json"});
    const ProgramRun run = runProgram(options);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const nlohmann::json output = nlohmann::json::parse(run.out, nullptr, false);
    EXPECT_FALSE(output.is_discarded()) << run.out;
    return output;
}

nlohmann::json jointOf(const nlohmann::json& output, const std::string& name)
{
    for (const nlohmann::json& joint : output.at("joints"))
        if (joint.at("joint") == name)
            return joint;
    ADD_FAILURE() << "no joint " << name;
    return {};
}

std::array<double, 3> vectorOf(const nlohmann::json& joint, const std::string& quantity, const std::string& unit)
{
    const auto component = [&](const char* axis) { return joint.value(quantity + "_" + axis + "_" + unit, NAN); };
    return {component("x"), component("y"), component("z")};
}
