// Atomic file: a file is replaced as a whole or stays as it was.
#pragma once

#include <string>

/// Gives a file new content: the content goes to a temporary file beside it, is flushed to the disk,
/// and takes the file's place. A crash leaves the old file or the new one. Permissions are kept; a
/// symbolic link stays, and what it points to is replaced. A device or a pipe is written to directly.
/// A process that is killed leaves its temporary file, ".sstr-PROCESS-NUMBER.new"; whoever next replaces
/// a file of that folder removes it. One that a living process writes is left alone.
///
/// @throws InputError, naming the file and the reason; the file is then untouched and nothing is left
///         beside it
void replaceFile(const std::string& path, const std::string& content);

/// The path that a path leads to when its last part is a symbolic link, followed as often as needed.
std::string linkTarget(const std::string& path);
