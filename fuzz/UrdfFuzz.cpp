// URDF fuzzer: arbitrary text as a figure file and, behind a line "%%", as its roles file.
#include "AnyFigure.h"
#include "Check.h"
#include "MemoryFolder.h"

#include "qc/qcScene.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFolder folder;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    constexpr std::string_view separator = "\n%%\n";
    const std::size_t end = input.find(separator);
    const std::string urdf = folder.write("any.urdf", input.substr(0, end));
    if (end == std::string_view::npos)
        folder.remove("any.roles.json");
    else
        folder.write("any.roles.json", input.substr(end + separator.size()));

    const SilentMessages messages;
    qcScene scene;
    qcHuman* human = scene.addHuman(urdf.c_str(), nullptr);
    check(human || messages.errors() > 0, "a file that is refused is refused with an error");
    if (!human)
        return 0;
    check(human->getFigure()->getSegments() != nullptr, "a figure has a segment");
    human->getFigure()->standOnFloor();
    analyseInEveryWay(*human);
    checkPosedRoundTrip(*human->getFigure());
    return 0;
}
