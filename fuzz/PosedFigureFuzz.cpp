// Posed-figure fuzzer: arbitrary text as a posed figure, its properties included.
//
// A text with a null byte comes as a file, whose reader sees all of it.
#include "AnyFigure.h"
#include "Check.h"
#include "MemoryFolder.h"

#include "qc/qcScene.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFolder folder;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const bool hasNull = text.find('\0') != std::string::npos;
    const SilentMessages messages;
    qcScene scene;
    qcHuman* human = hasNull ? scene.addHuman(folder.write("any.figure.json", text).c_str(), nullptr)
                             : scene.addPosedHuman(text.c_str());
    check(human || messages.errors() > 0, "a text that is refused is refused with an error");
    check(!human || !hasNull, "a text with a null byte is refused");
    if (!human)
        return 0;
    checkPosedRoundTrip(*human->getFigure());
    analyseInEveryWay(*human);
    return 0;
}
