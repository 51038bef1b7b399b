// Members fuzzer: arbitrary sequences of calls on up to six analyses of two humans, beside a plain model.
//
// The model keeps what each call has to leave; after every call the properties and all getters are compared with it. A
// second mode changes properties behind the analyses' backs, where checks that need the model are left out.
#include "MembersWorld.h"

#include "Check.h"
#include "SmallFigure.h"

#include <string>

namespace {

// Four segments in a row. Both humans have sites and joints of the same names, and each has some that the other lacks.
// Two joints of each share a name.
SmallFigure smallHuman(const std::string& name)
{
    SmallFigure figure(name);
    figure.segment("pelvis", 1000)
        .site("pelvis", "top", {0, 100, 0})
        .segment("torso", 2000)
        .site("torso", "bottom", {0, 100, 0})
        .site("torso", name + "_palmcenter", {20, 90, 5}, {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}})
        .segment("head", 500)
        .site("head", "neck", {0, 150, 0})
        .site("torso", "neck", {0, 150, 0})
        .joint("waist", "pelvis.top", "torso.bottom")
        .site("head", "top", {0, 170, 0})
        .segment("hat", 10)
        .site("hat", "bottom", {0, 170, 0})
        .joint(name + "_neck", "torso.neck", "head.neck", {}, name + ".neck")
        .joint(name + "_neck", "head.top", "hat.bottom", {}, name + ".hat")
        .pelvisSite("pelvis.top")
        .waist("waist")
        .referenceSite("pelvis.top");
    return figure;
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    static AnalysedHuman man(smallHuman("man").text()), child(smallHuman("child").text());
    FuzzedDataProvider data(bytes, size);
    const SilentMessages messages;
    MembersWorld world(data, {&man, &child});
    const bool behindTheirBacks = data.ConsumeIntegralInRange(0, 3) == 0;
    if (behindTheirBacks)
        world.forgetModel();
    for (int calls = 0; data.remaining_bytes() > 0 && calls < 100; ++calls) {
        world.callOne();
        if (behindTheirBacks)
            world.meddle();
        else
            world.compareAll();
    }
    return 0;
}
