// Check: what must hold whatever the input is.
#pragma once

/// Stops the fuzzer, naming what was broken, unless it holds.
void check(bool holds, const char* whatMustHold);

/// Swallows the host's messages while it lives, and counts them.
class SilentMessages {
public:
    SilentMessages();
    ~SilentMessages();
    SilentMessages(const SilentMessages&) = delete;
    SilentMessages& operator=(const SilentMessages&) = delete;

    int errors() const { return errorCount; }
    int warnings() const { return warningCount; }

private:
    int errorCount = 0;
    int warningCount = 0;
};
