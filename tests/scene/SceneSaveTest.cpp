// Saving: the old file or the new one, whole, whatever happens.
#include "Reason.h"
#include "SceneSupport.h"
#include "SmallDisk.h"

#include <filesystem>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

namespace fs = std::filesystem;

class SceneSave : public MessageTest {
protected:
    void SetUp() override { ASSERT_TRUE(scene.addPosedHuman(twoSegments().dump().c_str())); }

    std::string failure(const std::string& path)
    {
        EXPECT_EQ(scene.save(path.c_str()), 0);
        const std::vector<std::string> messages = log.takeTexts();
        return messages.size() == 1 ? messages[0] : ::testing::PrintToString(messages);
    }

    std::vector<std::string> filesIn(const std::string& path)
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    qcScene scene;
    TemporaryFolder folder;
};

TEST_F(SceneSave, LeavesNothingButTheFile)
{
    EXPECT_EQ(scene.save(folder.file("a.json").c_str()), 1);
    EXPECT_EQ(scene.save(folder.file("a.json").c_str()), 1);
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a.json"));
    EXPECT_TRUE(openScene(folder.file("a.json")));
}

TEST_F(SceneSave, ADiskThatIsFullKeepsTheOldFile)
{
    const std::string path = folder.write("a.json", "old");
    {
        const SmallDisk disk(100);   // bytes; the scene takes more
        ASSERT_TRUE(disk.set);
        EXPECT_EQ(scene.save(path.c_str()), 0);
    }
    EXPECT_THAT(log.takeTexts(), ElementsAre(path + ": cannot be written: " + reason(EFBIG)));
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a.json"));
}

TEST_F(SceneSave, AFullDeviceIsSaid)
{
    if (!fs::is_character_file("/dev/full"))
        FAIL() << "there is no /dev/full here";
    EXPECT_EQ(failure("/dev/full"), "/dev/full: cannot be written: " + reason(ENOSPC));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));   // a device is never replaced
}

TEST_F(SceneSave, AMissingFolderIsSaid)
{
    EXPECT_EQ(failure(folder.file("no/a.json")), folder.file("no/a.json")
                                                     + ": cannot be written: no file can be made "
                                                       "in the folder \""
                                                     + folder.file("no") + "\": " + reason(ENOENT));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre());
}

TEST_F(SceneSave, AFolderIsNoFile)
{
    fs::create_directory(folder.file("a.json"));
    EXPECT_EQ(failure(folder.file("a.json")), folder.file("a.json") + ": cannot be written: it is a folder.");
    EXPECT_EQ(failure(""), "expected the name of a file to write, found an empty text.");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a.json"));
}

TEST_F(SceneSave, AFileInTheWayOfTheFolderIsSaid)
{
    folder.write("file", "x");
    EXPECT_THAT(failure(folder.file("file/a.json")), ::testing::HasSubstr(reason(ENOTDIR)));
    EXPECT_EQ(contentOf(folder.file("file")), "x");
}

// Permissions do not bind the superuser, so another user does it in a child process.
TEST_F(SceneSave, AFolderOrFileThatIsWriteProtectedIsSaid)
{
    const std::string guarded = folder.write("guarded.json", "old");
    ASSERT_EQ(chmod(guarded.c_str(), 0444), 0);
    fs::create_directory(folder.file("locked"));
    ASSERT_EQ(chmod(folder.file("locked").c_str(), 0555), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    const auto both = [&] {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && setuid(kNobody) != 0)
            _exit(9);
        const bool fileKept = failure(guarded) == guarded + ": cannot be written: " + reason(EACCES);
        const bool folderKept = failure(folder.file("locked/a.json"))
                                == folder.file("locked/a.json")
                                       + ": cannot be written: no file can be made in the "
                                         "folder \""
                                       + folder.file("locked") + "\": " + reason(EACCES);
        _exit((fileKept ? 0 : 1) + (folderKept ? 0 : 2));
    };
    EXPECT_EXIT(both(), ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(contentOf(guarded), "old");
}

TEST_F(SceneSave, KeepsPermissions)
{
    const std::string path = folder.write("a.json", "old");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(scene.save(path.c_str()), 1);
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);

    // a new file gets what the process gives new files
    const mode_t before = umask(027);
    EXPECT_EQ(scene.save(folder.file("new.json").c_str()), 1);
    umask(before);
    ASSERT_EQ(stat(folder.file("new.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(SceneSave, FollowsASymbolicLink)
{
    fs::create_directory(folder.file("there"));
    folder.write("there/real.json", "old");
    folder.write("figure.figure.json", twoSegments().dump());
    fs::create_symlink("there/real.json", folder.file("link.json"));
    fs::create_symlink("there/new.json", folder.file("dangling.json"));
    qcScene linked;
    ASSERT_TRUE(linked.addHuman(folder.file("figure.figure.json").c_str(), "x"));
    for (const char* name : {"link.json", "dangling.json"}) {
        ASSERT_EQ(linked.save(folder.file(name).c_str()), 1);
        EXPECT_TRUE(fs::is_symlink(folder.file(name)));
        EXPECT_TRUE(openScene(folder.file(name)));
    }
    EXPECT_TRUE(openScene(folder.file("there/real.json")));   // the figure's path fits the real file's folder
    EXPECT_TRUE(openScene(folder.file("there/new.json")));
    fs::create_symlink("loop.json", folder.file("loop.json"));
    EXPECT_THAT(failure(folder.file("loop.json")), ::testing::HasSubstr(reason(ELOOP)));
}

// What no file can hold is found before a file is touched.
TEST_F(SceneSave, WhatAFileCannotHoldKeepsTheOldFile)
{
    const std::string path = folder.write("a.json", "old");
    const std::string start = path + ": the scene cannot be saved: ";
    qcFigure* figure = scene.findHuman("pair")->figure;

    scene.setGravity(qVector(0, std::numeric_limits<float>::infinity(), 0));
    EXPECT_EQ(failure(path), start + "gravity: a number that is not finite cannot be written.");
    scene.setGravity(qVector(0, -980, 0));

    figure->findSegment("arm")->setMass(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(failure(path), start + "human \"pair\": a number that is not finite cannot be written.");
    figure->findSegment("arm")->setMass(1);

    figure->findSegment("arm")->setName("branch");
    EXPECT_THAT(failure(path), StartsWith(start + "human \"pair\": its part \"branch\" was loaded as \"arm\""));
    figure->findSegment("branch")->setName("arm");

    figure->setProperty("caf\xe9", qcValue(1.0f));
    EXPECT_THAT(failure(path), ::testing::HasSubstr("it is no UTF-8"));
    figure->removeProperty("caf\xe9");

    nlohmann::json json = twoSegments();
    json["name"] = "other";
    ASSERT_TRUE(scene.addPosedHuman(json.dump().c_str()));
    scene.findHuman("other")->setName("pair");
    EXPECT_THAT(failure(path), ::testing::HasSubstr("another human or its figure has the name \"pair\" too."));

    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a.json"));
}

}   // namespace
