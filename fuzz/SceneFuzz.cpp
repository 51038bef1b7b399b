// Scene fuzzer: arbitrary text as a scene file beside two figures, "tiny.urdf" and "tiny.figure.json".
#include "AnyFigure.h"
#include "Check.h"
#include "MemoryFolder.h"

#include "qc/qcScene.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace {

std::string seed(const std::string& name)
{
    std::ifstream stream(SSTR_SOURCE_DIR "/fuzz/figures/" + name, std::ios::binary);
    check(bool(stream), "the fuzzer's figures stand in fuzz/figures of the source folder");
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class Folder : public MemoryFolder {
public:
    Folder()
    {
        for (const char* name : {"tiny.urdf", "tiny.roles.json", "tiny.figure.json"})
            write(name, seed(name));
    }
};

std::unique_ptr<qcScene> openScene(const std::string& path)
{
    return std::unique_ptr<qcScene>(qcScene::open(path.c_str()));
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string path = folder.write("any.json", text);
    const SilentMessages messages;
    const std::unique_ptr<qcScene> scene = openScene(path);
    check(scene || messages.errors() > 0, "a file that is refused is refused with an error");
    check(!scene || text.find('\0') == std::string_view::npos, "a file with a null byte is refused");
    if (!scene)
        return 0;

    // what was read can be saved, and what was saved says the same when it is saved again
    check(scene->save(folder.file("first.json").c_str()) == 1, "a scene that was opened can be saved");
    const std::unique_ptr<qcScene> again = openScene(folder.file("first.json"));
    check(again != nullptr, "a scene that was saved can be opened");
    check(again->save(folder.file("second.json").c_str()) == 1, "and saved again");
    check(folder.read("first.json") == folder.read("second.json"), "with the same text");

    for (qList* node = scene->getHumans(); node; node = qList::iterator(nullptr, node))
        analyseInEveryWay(*static_cast<qcHuman*>(node->getData()));
    return 0;
}
