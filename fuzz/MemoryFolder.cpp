// Memory folder.
#include "MemoryFolder.h"

#include "Check.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace fs = std::filesystem;

MemoryFolder::MemoryFolder()
{
    const fs::path inMemory = "/dev/shm";
    const fs::path parent = fs::is_directory(inMemory) ? inMemory : fs::temp_directory_path();
    folder = (parent / ("sstr-fuzz-" + std::to_string(getpid()))).string();
    fs::create_directories(folder);
}

MemoryFolder::~MemoryFolder()
{
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

std::string MemoryFolder::write(const std::string& name, std::string_view content) const
{
    std::string path = file(name);
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    check(bool(stream), "the fuzzer's own files can be written");
    return path;
}

void MemoryFolder::remove(const std::string& name) const
{
    std::error_code ignored;
    fs::remove(file(name), ignored);
}

std::string MemoryFolder::read(const std::string& name) const
{
    std::ifstream stream(file(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}
