// Failed save: on a full disk or in a folder that takes no files, the program says so and keeps the old scene.
#include "Program.h"
#include "Reason.h"
#include "SmallDisk.h"

#include <filesystem>

using ::testing::StartsWith;

namespace {

namespace fs = std::filesystem;

constexpr rlim_t kSmall = 200;   // bytes: more than a message takes, less than a scene

class FailedSave : public ProgramTest {
protected:
    void SetUp() override
    {
        scene = standingScene();
        before = contentOf(scene);
        ASSERT_GT(before.size(), kSmall);
    }
    static ProgramRun runOnSmallDisk(const std::vector<std::string>& arguments, const std::string& outPath)
    {
        const SmallDisk disk(kSmall);
        EXPECT_TRUE(disk.set);
        return runProgram(arguments, outPath);
    }
    int filesInFolder() const
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            count += !entry.path().empty();
        return count;
    }
    std::string scene, before;
};

TEST_F(FailedSave, OnAFullDiskNewSceneKeepsTheOldOne)
{
    const ProgramRun run =
        runOnSmallDisk({"new-scene", SSTR_SOURCE_DIR "/figures/human.urdf", scene, "--name", "other", "--force"}, "");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "sstr: error: " + scene + ": cannot be written: " + reason(EFBIG) + "\n");
    EXPECT_EQ(contentOf(scene), before);
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(FailedSave, OnAFullDiskNewSceneLeavesNoBeginning)
{
    const std::string target = folder.file("new.json");
    const ProgramRun run = runOnSmallDisk({"new-scene", SSTR_SOURCE_DIR "/figures/human.urdf", target}, "");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "sstr: error: " + target + ": cannot be written: " + reason(EFBIG) + "\n");
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(FailedSave, OnAFullDiskComputeKeepsTheSceneThatItRead)
{
    const ProgramRun run = runOnSmallDisk(
        {"compute", scene, "--weight", "right_hand.right_palmcenter=5000", "--save", scene}, "/dev/null");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "sstr: error: " + scene + ": cannot be written: " + reason(EFBIG) + "\n");
    EXPECT_EQ(contentOf(scene), before);
    EXPECT_EQ(filesInFolder(), 1);
}

// The system sends a signal with the error, of which a process dies that does not know it.
TEST_F(FailedSave, OnAFullDiskTheSystemSSignalDoesNotEndTheProgramUntold)
{
    const SmallDisk disk(kSmall);
    ASSERT_TRUE(disk.set);
    ASSERT_NE(std::signal(SIGXFSZ, SIG_DFL), SIG_ERR);   // what the program then starts with; the disk puts it back
    const ProgramRun run = runProgram({"compute", scene, "--save", scene}, "/dev/null");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "sstr: error: " + scene + ": cannot be written: " + reason(EFBIG) + "\n");
    EXPECT_EQ(contentOf(scene), before);
    EXPECT_EQ(filesInFolder(), 1);
}

// A folder of the system in which not even the superuser makes files.
TEST_F(FailedSave, AFolderThatTakesNoFilesIsSaid)
{
    ASSERT_TRUE(fs::is_directory("/proc"));
    const std::string start = "sstr: error: /proc/a.json: cannot be written: no file can be made in the folder "
                              "\"/proc\": ";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"new-scene", SSTR_SOURCE_DIR "/figures/human.urdf", "/proc/a.json"},
          {"compute", scene, "--save", "/proc/a.json"}}) {
        const ProgramRun run = runProgram(arguments, "/dev/null");
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.err, StartsWith(start));
        EXPECT_GT(run.err.size(), start.size() + 1);   // and the reason
    }
    EXPECT_EQ(contentOf(scene), before);
}

}   // namespace
