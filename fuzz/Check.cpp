// Check.
#include "Check.h"

#include "qc/qcMessages.h"

#include <cstdio>
#include <cstdlib>

void check(bool holds, const char* whatMustHold)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", whatMustHold);
    std::abort();
}

SilentMessages::SilentMessages()
{
    qcMessages::setSink(
        [](qcMessageKind kind, const char*, void* data) {
            SilentMessages* self = static_cast<SilentMessages*>(data);
            ++(kind == qcError ? self->errorCount : self->warningCount);
        },
        this);
}

SilentMessages::~SilentMessages()
{
    qcMessages::setSink(nullptr, nullptr);
}
