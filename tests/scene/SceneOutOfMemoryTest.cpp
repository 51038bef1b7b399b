// Out of memory with files: one clear message, nothing half added, nothing lost, the old file or the new one whole.
#include "CountedHeap.h"
#include "Reason.h"
#include "SceneSupport.h"

#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace {

// Each save flushes its file to the disk: thousands of times is only bearable where the disk is memory.
[[maybe_unused]] const int folderChosen =
    std::filesystem::is_directory("/dev/shm") ? setenv("TMPDIR", "/dev/shm", 0) : 0;

struct World {
    qcScene scene;
    TemporaryFolder folder;
    std::string posed = twoSegments().dump();
    std::string figurePath = folder.write("pair.figure.json", posed);
    std::string path = folder.file("a.json");
    std::string old;   // what the file held before the operation

    World()
    {
        qcHuman* human = scene.addHuman(figurePath.c_str(), "first");
        human->getFigure()->setProperty("SSTR_Strategy", qcValue("a text that is too long to be kept in a string"));
        scene.save(path.c_str());
        old = contentOf(path);
        human->getFigure()->setProperty("SSTR_Strategy", qcValue("Two Feet"));
    }
    int humans() const { return static_cast<int>(namesIn<qcHuman>(scene.getHumans()).size()); }
};

struct Case {
    const char* operation;
    bool (*run)(World&);
    int added;   // humans, by a run that comes through
};

std::ostream& operator<<(std::ostream& out, const Case& each)
{
    return out << each.operation;
}

const Case cases[] = {
    {"opening a scene", [](World& w) { return std::unique_ptr<qcScene>(qcScene::open(w.path.c_str())) != nullptr; }, 0},
    {"saving a scene", [](World& w) { return w.scene.save(w.path.c_str()) == 1; }, 0},
    {"adding a human from a file", [](World& w) { return w.scene.addHuman(w.figurePath.c_str(), "second") != nullptr; },
     1},
    {"adding a posed human", [](World& w) { return w.scene.addPosedHuman(w.posed.c_str()) != nullptr; }, 1},
    {"reading a posed figure",
     [](World& w) {
         return std::unique_ptr<qcFigure>(qcFigureFile::readPosedText(w.posed.c_str(), "pair")) != nullptr;
     },
     0},
    {"writing a posed figure",
     [](World& w) {
         qcHuman* human = static_cast<qcHuman*>(w.scene.getHumans()->getData());
         return qcFigureFile::writePosed(*human->getFigure(), w.figurePath.c_str()) == 1;
     },
     0},
};

class SceneOutOfMemory : public ::testing::TestWithParam<Case> {
protected:
    FixedMessageLog log;
};

// One message; where a figure's own reader says it, the scene's says which human that was.
void expectClear(const std::string& message)
{
    const std::size_t firstLine = message.find('\n');
    const std::string first = message.substr(0, firstLine), rest = message.substr(firstLine + 1);
    // the second is the system's own text, where opening a file takes memory
    EXPECT_TRUE(first.find("there is not enough memory.") != std::string::npos
                || first.find(reason(ENOMEM)) != std::string::npos)
        << message;
    EXPECT_TRUE(rest.empty() || rest.find("the message before this one says why.\n") != std::string::npos) << message;
}

// Fails the n-th allocation. @return whether the operation came to it
bool tryOnce(const Case& each, long n, FixedMessageLog& log)
{
    World world;
    CountedHeap::failAllocation(n);
    const bool done = each.run(world);
    const bool failed = CountedHeap::stopFailing();
    const std::string message = log.take();
    EXPECT_EQ(world.humans(), done ? 1 + each.added : 1);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(world.folder.path()))
        files += entry.exists() ? 1 : 0;
    EXPECT_EQ(files, 2) << "a temporary file is left";

    if (done) {
        EXPECT_EQ(message, "");
    } else {
        EXPECT_TRUE(failed);
        expectClear(message);
        EXPECT_TRUE(contentOf(world.path) == world.old || openScene(world.path))
            << "neither the old file nor a new one";
        EXPECT_TRUE(each.run(world)) << "the same again, with memory";
    }
    EXPECT_TRUE(openScene(world.path));
    EXPECT_EQ(log.take(), "");
    return failed;
}

TEST_P(SceneOutOfMemory, IsReportedOnceAndLeavesNothingHalf)
{
    tryOnce(GetParam(), 0, log);   // what is made once for the whole process
    reason(ENOMEM);                // and the system's texts in its language
    const long alive = CountedHeap::liveBlocks();
    long n = 1;
    while (tryOnce(GetParam(), n, log)) {
        EXPECT_EQ(CountedHeap::liveBlocks(), alive) << "after failure " << n;
        ASSERT_FALSE(HasFailure()) << "at failure " << n;
        ++n;
    }
    EXPECT_GT(n, 10);
    RecordProperty("failures", static_cast<int>(n - 1));
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, SceneOutOfMemory, ::testing::ValuesIn(cases));

}   // namespace
