// Saving in stages: whichever call to the system fails, the old scene stays whole and the message tells why.
//
// This program has functions of the system's names in front of the system's own, which the libraries then call too.
// They pass everything on, but for the one call that a test lets fail.
#include "Reason.h"
#include "SceneSupport.h"

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <ostream>
#include <sys/stat.h>
#include <unistd.h>

using ::testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

enum class Call { kNone, kOpen, kFlock, kFchmod, kFchown, kWrite, kSync, kSyncFolder, kClose, kRename };

// What is to fail, and how often it did.
struct Fault {
    Call call = Call::kNone;
    int problem = 0;     // errno; 0: the call does nothing and says nothing
    int after = 0;       // so many calls pass first
    bool half = false;   // writes pass on half of their bytes
    bool once = false;
    int failures = 0;
};
Fault fault;

bool isTemporary(const std::string& path)
{
    return path.find("/.sstr-") != std::string::npos;
}

// The path of an open file.
std::string pathOf(int file)
{
    char path[4096];
    const ssize_t size = readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof path);
    return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : "";
}

// Whether this call is the one to fail; errno is set then.
bool fails(Call call)
{
    if (fault.call != call || (fault.once && fault.failures > 0) || fault.after-- > 0)
        return false;
    ++fault.failures;
    errno = fault.problem;
    return true;
}

bool failsOn(int file, Call call)
{
    return fault.call == call && isTemporary(pathOf(file)) && fails(call);
}

template <class Function> Function* systems(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}   // namespace

#define IN_FRONT extern "C" __attribute__((visibility("default")))

IN_FRONT int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (fault.call == Call::kOpen && isTemporary(path) && fails(Call::kOpen))
        return -1;
    return systems<int(const char*, int, ...)>("open")(path, flags, mode);
}

IN_FRONT int flock(int file, int operation) noexcept
{
    return failsOn(file, Call::kFlock) ? -1 : systems<int(int, int)>("flock")(file, operation);
}

IN_FRONT int fchmod(int file, mode_t mode) noexcept
{
    return failsOn(file, Call::kFchmod) ? -1 : systems<int(int, mode_t)>("fchmod")(file, mode);
}

IN_FRONT int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return failsOn(file, Call::kFchown) ? -1 : systems<int(int, uid_t, gid_t)>("fchown")(file, owner, group);
}

IN_FRONT ssize_t write(int file, const void* bytes, size_t size)
{
    if (failsOn(file, Call::kWrite))
        return fault.problem == 0 ? 0 : -1;
    const bool half = fault.call == Call::kWrite && fault.half && size > 1 && isTemporary(pathOf(file));
    return systems<ssize_t(int, const void*, size_t)>("write")(file, bytes, half ? size / 2 : size);
}

IN_FRONT int fsync(int file)
{
    if (failsOn(file, Call::kSync) || (fault.call == Call::kSyncFolder && fails(Call::kSyncFolder)))
        return -1;
    return systems<int(int)>("fsync")(file);
}

IN_FRONT int close(int file)
{
    const bool failed = failsOn(file, Call::kClose);
    const int problem = errno;
    const int result = systems<int(int)>("close")(file);   // as the system does, which closes all the same
    if (failed)
        errno = problem;
    return failed ? -1 : result;
}

IN_FRONT int rename(const char* from, const char* to) noexcept
{
    if (fault.call == Call::kRename && isTemporary(from) && fails(Call::kRename))
        return -1;
    return systems<int(const char*, const char*)>("rename")(from, to);
}

namespace {

struct Stage {
    const char* name;   // of the test
    Fault fault;
    int reason;   // the errno whose text the message tells
};

void PrintTo(const Stage& stage, std::ostream* out)
{
    *out << stage.name;
}

class SceneSaveStages : public MessageTest, public ::testing::WithParamInterface<Stage> {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(scene.addPosedHuman(twoSegments().dump().c_str()));
        path = folder.file("a.json");
        ASSERT_EQ(scene.save(path.c_str()), 1);
        old = contentOf(path);
        scene.setGravity(qVector(0, -162, 0));   // what is to be saved differs
    }
    void TearDown() override
    {
        fault = Fault();
        MessageTest::TearDown();
    }

    int saveWith(const Fault& wanted)
    {
        fault = wanted;
        const int saved = scene.save(path.c_str());
        failures = fault.failures;
        fault = Fault();
        return saved;
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    TemporaryFolder folder;
    std::string path, old;
    qcScene scene;
    int failures = 0;
};

TEST_P(SceneSaveStages, KeepsTheOldSceneAndSaysWhy)
{
    EXPECT_EQ(saveWith(GetParam().fault), 0);
    ASSERT_EQ(failures, 1);   // the fault was met
    EXPECT_THAT(log.takeTexts(), ElementsAre(path + ": cannot be written: " + reason(GetParam().reason)));
    EXPECT_EQ(contentOf(path), old);
    EXPECT_THAT(files(), ElementsAre("a.json"));

    // nothing of the failure is kept
    EXPECT_EQ(scene.save(path.c_str()), 1);
    EXPECT_NE(contentOf(path), old);
    EXPECT_TRUE(openScene(path));
    EXPECT_THAT(files(), ElementsAre("a.json"));
}

const Stage stages[] = {
    {"FullAtThePermissions", {Call::kFchmod, ENOSPC}, ENOSPC},
    {"FullAtTheFirstByte", {Call::kWrite, ENOSPC}, ENOSPC},
    {"FullHalfWay", {Call::kWrite, ENOSPC, 1, true}, ENOSPC},
    {"FullAtTheLastByte", {Call::kWrite, ENOSPC, 8, true}, ENOSPC},
    {"QuotaHalfWay", {Call::kWrite, EDQUOT, 1, true}, EDQUOT},
    {"NoProgress", {Call::kWrite, 0, 1, true}, EIO},
    {"FullAtTheFlush", {Call::kSync, ENOSPC}, ENOSPC},
    {"BrokenAtTheFlush", {Call::kSync, EIO}, EIO},
    {"QuotaAtTheClose", {Call::kClose, EDQUOT, 0, false, true}, EDQUOT},
    {"FullAtTheRenaming", {Call::kRename, ENOSPC}, ENOSPC},
    {"ReadOnlyAtTheRenaming", {Call::kRename, EROFS}, EROFS},
};
INSTANTIATE_TEST_SUITE_P(Failing, SceneSaveStages, ::testing::ValuesIn(stages),
                         [](const auto& tested) { return tested.param.name; });

using SceneSaving = SceneSaveStages;

TEST_F(SceneSaving, ADiskWithoutRoomForAnotherFileIsSaid)
{
    EXPECT_EQ(saveWith({Call::kOpen, ENOSPC}), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre(path + ": cannot be written: no file can be made in the folder \""
                                             + folder.path() + "\": " + reason(ENOSPC)));
    EXPECT_EQ(contentOf(path), old);
    EXPECT_THAT(files(), ElementsAre("a.json"));
}

// The new scene has taken its place by then; whether it outlives a power cut cannot be told.
TEST_F(SceneSaving, AFolderThatCannotBeFlushedHasTheNewSceneWhole)
{
    EXPECT_EQ(saveWith({Call::kSyncFolder, EIO, 1}), 0);   // after the file's own flush
    EXPECT_EQ(failures, 1);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre(path + ": is written, but its folder cannot be flushed to the disk: " + reason(EIO)));
    EXPECT_NE(contentOf(path), old);
    EXPECT_TRUE(openScene(path));
    EXPECT_THAT(files(), ElementsAre("a.json"));
}

// What the system asks to be tried again, cannot do or need not do stops no save.
TEST_F(SceneSaving, GoesOnWhereItCan)
{
    for (const Fault& harmless : {Fault{Call::kWrite, EINTR, 1, true, true},   // a signal came half way
                                  Fault{Call::kSync, EINVAL},                  // nothing to flush here
                                  Fault{Call::kFlock, EOPNOTSUPP},             // no locks here
                                  Fault{Call::kFchown, EPERM}}) {              // another's file stays one's own
        SCOPED_TRACE(static_cast<int>(harmless.call));
        const bool ofAnother = geteuid() == 0 && chown(path.c_str(), 65534, 65534) == 0;
        EXPECT_EQ(saveWith(harmless), 1);
        EXPECT_EQ(failures, harmless.call == Call::kFchown && !ofAnother ? 0 : 1);   // only the superuser meets it
        EXPECT_NE(contentOf(path), old);
        EXPECT_TRUE(openScene(path));
        EXPECT_THAT(files(), ElementsAre("a.json"));
        old = contentOf(path);
        scene.setGravity(qVector(0, scene.getGravity()[1] - 1, 0));
    }
}

// Another process may find the new file before it is locked, take it for abandoned and remove it.
TEST_F(SceneSaving, BeginsAnewWhenItsFileIsTakenForAbandoned)
{
    EXPECT_EQ(saveWith({Call::kFlock, EWOULDBLOCK, 0, false, true}), 1);
    EXPECT_EQ(failures, 1);
    EXPECT_NE(contentOf(path), old);
    // the other process would remove the first one; here nobody does until the next save
    EXPECT_EQ(scene.save(path.c_str()), 1);
    EXPECT_THAT(files(), ElementsAre("a.json"));
}

}   // namespace
