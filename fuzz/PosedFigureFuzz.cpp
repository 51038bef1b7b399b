// Posed-figure fuzzer: arbitrary text as a posed figure, its properties included.
#include "AnyFigure.h"
#include "Check.h"

#include "qc/qcScene.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const SilentMessages messages;
    qcScene scene;
    qcHuman* human = scene.addPosedHuman(text.c_str());
    check(human || messages.errors() > 0, "a text that is refused is refused with an error");
    if (!human)
        return 0;
    checkPosedRoundTrip(*human->getFigure());
    analyseInEveryWay(*human);
    return 0;
}
