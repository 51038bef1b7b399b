// Pointer strings.
#include "PointerStrings.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <vector>

namespace pointers {

namespace {

constexpr std::size_t kLongestName = 255;   // characters of a name in the cache; a candidate is cut there

struct Equivalent {
    std::string name;
    Conversion conversion;
};

struct Entry {
    std::string name;
    std::vector<Equivalent> equivalents;   // in the order of their registration
};

/// What was looked up: a found name that stands for an expected one.
struct Slot {
    bool valid = false;
    std::string expected;
    std::string found;
    Conversion conversion = nullptr;
};

// Every name begins with "_", so its second character is the first that tells names apart.
unsigned char secondCharacter(const std::string& name)
{
    return name.size() < 2 ? '\0' : static_cast<unsigned char>(name[1]);
}

/// All equivalences of the module, and the last ones asked for.
class TypeTable {
public:
    TypeTable() { entries.reserve(kFirstCapacity); }

    void add(const char* type, const char* equivalent, Conversion conversion)
    {
        auto entry = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == type; });
        if (entry == entries.end())
            entry = entries.insert(entries.end(), {type, {}});
        for (Equivalent& known : entry->equivalents) {
            if (known.name != equivalent)
                continue;
            if (conversion) {
                known.conversion = conversion;
                sorted = false;   // the cache may hold the one before
            }
            return;
        }
        entry->equivalents.push_back({equivalent, conversion});
        sorted = false;
    }

    /// Whether a name may stand for the expected one. @param address  converted if it has to be
    bool accepts(const char* found, const std::string& expected, void*& address)
    {
        if (!sorted)
            sort();
        if (const Slot* slot = lookUp(found, expected)) {
            convert(address, slot->conversion);
            return true;
        }
        for (std::size_t i = first[secondCharacter(expected)]; i < entries.size(); ++i) {
            const std::string& prefix = entries[i].name;
            if (expected.compare(0, prefix.size(), prefix) != 0)
                continue;
            for (const Equivalent& equivalent : entries[i].equivalents) {
                if (equivalent.name.size() >= kLongestName)
                    return false;
                const std::string candidate =
                    (equivalent.name + expected.substr(prefix.size())).substr(0, kLongestName);
                if (candidate != found)
                    continue;
                keep({true, expected.substr(0, kLongestName), candidate, equivalent.conversion});
                convert(address, equivalent.conversion);
                return true;
            }
        }
        return false;
    }

private:
    static constexpr std::size_t kFirstCapacity = 64;
    static constexpr std::size_t kSlots = 8;

    // By name, byte by byte: std::string compares unsigned bytes.
    void sort()
    {
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
        std::fill(std::begin(first), std::end(first), entries.size());
        for (std::size_t i = entries.size(); i > 0; --i)
            first[secondCharacter(entries[i - 1].name)] = i - 1;
        for (Slot& slot : cache)
            slot.valid = false;
        sorted = true;
    }

    const Slot* lookUp(const char* found, const std::string& expected)
    {
        for (std::size_t i = 0; i < kSlots; ++i) {
            const std::size_t at = (last + kSlots - i) % kSlots;
            const Slot& slot = cache[at];
            if (slot.valid && slot.expected == expected && slot.found == found) {
                last = at;
                return &slot;
            }
        }
        return nullptr;
    }

    void keep(Slot slot)
    {
        last = (last + 1) % kSlots;
        cache[last] = std::move(slot);
    }

    static void convert(void*& address, Conversion conversion)
    {
        if (conversion)
            address = conversion(address);
    }

    std::vector<Entry> entries;
    bool sorted = false;
    std::size_t first[256] = {};   // by second character: the first entry that has it
    Slot cache[kSlots];            // a ring
    std::size_t last = 0;          // the slot used last
};

TypeTable& theTable()
{
    static TypeTable table;
    return table;
}

int digitValue(char c)
{
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

// The address after the leading "_". @return where it ends: the type name
const char* readAddress(const char* text, std::uintptr_t& address)
{
    address = 0;
    int digit;
    for (++text; (digit = digitValue(*text)) >= 0; ++text)
        address = address << 4 | static_cast<std::uintptr_t>(digit);
    return text;
}

}   // namespace

std::string encodeTyped(std::uintptr_t address, const char* typeName)
{
    static const char digits[] = "0123456789abcdef";
    char text[1 + 2 * sizeof address + 1];
    char* begin = text + sizeof text - 1;
    *begin = '\0';
    do {
        *--begin = digits[address & 0xFu];
        address >>= 4;
    } while (address != 0);
    *--begin = '_';
    return std::string(begin).append(typeName);
}

std::string encode(const void* address, const char* typeName)
{
    return address ? encodeTyped(reinterpret_cast<std::uintptr_t>(address), typeName) : "NULL";
}

bool decode(const char* text, const char* expected, void*& address)
{
    address = nullptr;
    if (text[0] != '_')
        return std::strcmp(text, "NULL") == 0;
    std::uintptr_t number;
    const char* found = readAddress(text, number);
    address = reinterpret_cast<void*>(number);   // NOLINT(performance-no-int-to-ptr): it was written as a number
    return !expected || std::strcmp(found, expected) == 0 || theTable().accepts(found, expected, address);
}

const char* typeNameIn(const char* text)
{
    std::uintptr_t number;
    return text[0] == '_' ? readAddress(text, number) : "";
}

std::string typeNameOf(const char* declared)
{
    std::string name = "_";
    for (const char* c = declared; *c; ++c)
        name += std::isspace(static_cast<unsigned char>(*c)) ? '_' : *c == '*' || *c == '&' ? 'p' : *c;
    return name;
}

void registerType(const char* type, const char* equivalent, Conversion conversion)
{
    theTable().add(type, equivalent, conversion);
}

}   // namespace pointers
