// Files: whole files in, near names out.
#include "Files.h"

#include "InputError.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr std::size_t kMostNames = 3;           // offered in a message
constexpr std::size_t kLongestName = 128;       // bytes; longer ones are not compared
constexpr std::size_t kLongestQuote = 80;       // bytes
constexpr std::size_t kShortestContained = 3;   // bytes: "l5" is contained in too much

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string lowerCase(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// How many letters must be put in, left out, exchanged, or swapped with their neighbour to make one
// text of the other.
std::size_t editDistance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast = last;
        last = row;
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t exchanged = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, exchanged});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

bool contains(const std::string& whole, const std::string& part)
{
    return part.size() >= kShortestContained && whole.find(part) != std::string::npos;
}

// The length of the UTF-8 character at i; 0 when there is none, or a control character.
std::size_t characterLength(const std::string& text, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return k < text.size() ? static_cast<unsigned char>(text[k]) : 0u; };
    const unsigned first = byte(i);
    if (first < 0x80)
        return first < 0x20 || first == 0x7f ? 0 : 1;
    const std::size_t length = first >= 0xc2 && first < 0xe0   ? 2
                               : first >= 0xe0 && first < 0xf0 ? 3
                               : first >= 0xf0 && first < 0xf5 ? 4
                                                               : 0;
    for (std::size_t k = 1; k < length; ++k)
        if ((byte(i + k) & 0xc0) != 0x80)
            return 0;
    return length;
}

}   // namespace

std::string readWholeFile(const std::string& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        throw InputError(path + ": cannot be read: " + std::strerror(errno) + ".");
    if (S_ISDIR(status.st_mode))
        throw InputError(path + ": expected a file, found a directory.");
    if (!S_ISREG(status.st_mode))
        throw InputError(path + ": expected a file, found something else (a device or a pipe).");

    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file)
        throw InputError(path + ": cannot be read: " + std::strerror(errno) + ".");
    std::string content;
    char block[65536];
    for (std::size_t n; (n = std::fread(block, 1, sizeof block, file.get())) > 0;) {
        if (content.size() + n > kLargestFile)
            throw InputError(path + ": expected at most " + std::to_string(kLargestFile >> 20)
                             + " MiB, found a larger file.");
        content.append(block, n);
    }
    if (std::ferror(file.get()))
        throw InputError(path + ": cannot be read: " + std::strerror(errno) + ".");
    return content;
}

bool fileExists(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::string closeNames(const std::string& wrong, const std::vector<std::string>& names)
{
    if (wrong.empty() || wrong.size() > kLongestName)
        return "";
    const std::string sought = lowerCase(wrong);
    std::vector<std::pair<std::size_t, const std::string*>> near;
    for (const std::string& name : names) {
        if (name.empty() || name.size() > kLongestName)
            continue;
        const std::string other = lowerCase(name);
        const std::size_t shorter = std::min(sought.size(), other.size());
        const std::size_t longer = std::max(sought.size(), other.size());
        const bool contained = contains(other, sought) || contains(sought, other);
        if (!contained && longer - shorter > longer / 3)
            continue;
        const std::size_t distance = editDistance(sought, other);
        if (contained || distance <= longer / 3)
            near.emplace_back(distance, &name);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    std::string text;
    for (std::size_t i = 0; i < std::min(kMostNames, near.size()); ++i)
        text += (i ? ", " : " Close names: ") + inQuotes(*near[i].second);
    return text.empty() ? text : text + ".";
}

bool isPlainText(const std::string& text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterLength(text, i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

std::string inQuotes(const std::string& text)
{
    std::string result = "\"";
    for (std::size_t i = 0; i < text.size();) {
        if (result.size() > kLongestQuote)
            return result + "…\"";
        const std::size_t length = characterLength(text, i);
        if (length > 0) {
            result.append(text, i, length);
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02x", unsigned(static_cast<unsigned char>(text[i])));
            result += escaped;
        }
        i += std::max<std::size_t>(length, 1);
    }
    return result + "\"";
}
