// Messages: the host's, kept for Python until it takes them.
//
// At most 10 000 are kept. Of more, the oldest go to standard error, as the host shows messages that
// nobody collects; so do those that nobody has taken when the interpreter ends. None is lost.
#pragma once

namespace messages {

/// Keeps the host's messages from now on.
void keep();

/// Shows the messages kept and leaves further ones to the host.
void release();

}   // namespace messages
