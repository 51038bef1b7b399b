// Memory folder: files for a reader that takes paths, in memory where the system has such a place.
#pragma once

#include <string>
#include <string_view>

/// A folder of this process, removed at its end.
class MemoryFolder {
public:
    MemoryFolder();
    ~MemoryFolder();
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;

    std::string file(const std::string& name) const { return folder + "/" + name; }
    /// Writes a file. @return its path
    std::string write(const std::string& name, std::string_view content) const;
    void remove(const std::string& name) const;
    std::string read(const std::string& name) const;

private:
    std::string folder;
};
