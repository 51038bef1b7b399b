// Messages: what the program says on standard error, one line a problem.
#pragma once

#include <string>

/// Exit statuses of the program.
enum ExitStatus {
    kDone = 0,
    kNotComputed = 1,   // the analysis could not be done, or a result is no finite number
    kWrongInput = 2     // wrong usage, a file that cannot be read or written
};

/// Each writes one message on one line, escaped: "sstr: error: …", "sstr: warning: …", "sstr: note: …".
void reportError(const std::string& text);
void reportWarning(const std::string& text);
void reportNote(const std::string& text);

/// How many errors were reported so far, the host's and the analysis's included.
int errorCount();

/// From now on the host's messages are reported in the same way.
void forwardHostMessages();

/// A text with its control characters as \xNN, so that none reaches a terminal.
std::string escaped(const std::string& text);

/// A text in quotes for a message: control characters as \xNN, cut after 80 bytes.
std::string quoted(const std::string& text);
