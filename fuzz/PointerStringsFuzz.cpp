// Pointer string fuzzer: arbitrary texts, decoded under arbitrary equivalences of type names.
//
// What is decoded is compared with a plain search of all that was registered.
#include "Check.h"

// The table of types is the process's: here it is emptied for every input, which only its own source can do.
#include "wrapping/PointerStrings.cpp"

#include <fuzzer/FuzzedDataProvider.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

void* convertOnce(void* address)
{
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(address) + 8);
}
void* convertTwice(void* address)
{
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(address) ^ 0xFF00);
}

constexpr pointers::Conversion kConversions[] = {nullptr, convertOnce, convertTwice};
constexpr std::size_t kLongest = 255;   // characters of a name

/// What may stand for what, by type name in byte order: equivalents in the order of their registration.
class Registrations {
public:
    void add(const std::string& type, const std::string& equivalent, pointers::Conversion conversion)
    {
        for (auto& [name, known] : entries[type])
            if (name == equivalent) {
                known = conversion ? conversion : known;
                return;
            }
        entries[type].push_back({equivalent, conversion});
    }

    bool accept(const std::string& found, const std::string& expected, void*& address) const
    {
        if (found == expected)
            return true;
        bool reached = false;   // the first name with the same second character
        for (const auto& [type, equivalents] : entries) {
            reached |= second(type) == second(expected);
            if (!reached || expected.compare(0, type.size(), type) != 0)
                continue;
            for (const auto& [name, conversion] : equivalents) {
                if (name.size() >= kLongest)
                    return false;
                if ((name + expected.substr(type.size())).substr(0, kLongest) != found)
                    continue;
                address = conversion ? conversion(address) : address;
                return true;
            }
        }
        return false;
    }

private:
    static char second(const std::string& name) { return name.size() < 2 ? '\0' : name[1]; }

    std::map<std::string, std::vector<std::pair<std::string, pointers::Conversion>>> entries;
};

/// The names of an input, each used again and again.
class Names {
public:
    explicit Names(FuzzedDataProvider& source) : data(source)
    {
        for (int i = data.ConsumeIntegralInRange(1, 5); i > 0; --i)
            all.push_back(newName());
    }

    /// One of them, or two in a row, so that some begin with others.
    std::string pick()
    {
        const std::string name = pickOne();
        return data.ConsumeIntegralInRange(0, 3) == 0 ? name + pickOne() : name;
    }

private:
    std::string newName()
    {
        std::string name = data.ConsumeRandomLengthString(12);
        name = name.c_str();   // up to a NUL
        const std::size_t more = data.ConsumeIntegralInRange<std::size_t>(0, 7);
        if (more == 7)   // about as long as a name may be
            name.append(250 + data.ConsumeIntegralInRange<std::size_t>(0, 10) - name.size(), 'l');
        return data.ConsumeBool() ? "_" + name : name;
    }
    const std::string& pickOne() { return all[data.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1)]; }

    FuzzedDataProvider& data;
    std::vector<std::string> all;
};

// The address and the type name of a text that begins with "_".
std::pair<std::uintptr_t, std::string> split(const std::string& text)
{
    std::size_t end = text.find_first_not_of("0123456789abcdefABCDEF", 1);
    end = end == std::string::npos ? text.size() : end;
    const std::size_t significant = end > 17 ? end - 16 : 1;   // of an address the last 16 digits count
    const std::string digits = text.substr(significant, end - significant);
    return {digits.empty() ? 0 : std::stoull(digits, nullptr, 16), text.substr(end)};
}

void decodeOne(const std::string& text, const std::string* expected, const Registrations& registered, bool knowable)
{
    void* address = &address;   // something else than any right answer
    const bool accepted = pointers::decode(text.c_str(), expected ? expected->c_str() : nullptr, address);
    if (text.empty() || text[0] != '_') {
        check(accepted == (text == "NULL"), "only \"NULL\" does without an underscore");
        check(address == nullptr, "a text that is no pointer string gives the null pointer");
        check(std::string(pointers::typeNameIn(text.c_str())).empty(), "a text that is no pointer string has no type");
        return;
    }
    const auto [number, found] = split(text);
    check(pointers::typeNameIn(text.c_str()) == found, "the type name is what follows the address");
    void* meant = reinterpret_cast<void*>(number);
    if (!expected) {
        check(accepted && address == meant, "without a type every pointer string is taken as it is");
    } else if (knowable) {
        check(accepted == registered.accept(found, *expected, meant), "a type name is taken by what was registered");
        check(address == meant, "the address is the one written, converted when it was taken for another type");
    }
}

void roundTrip(std::uintptr_t number, const std::string& type)
{
    void* const original = reinterpret_cast<void*>(number);
    const std::string text = pointers::encode(original, type.c_str());
    check((text == "NULL") == (number == 0), "\"NULL\" is the null pointer and no other");
    if (!type.empty() && type[0] != '_')
        return;   // such a name may begin like digits
    void* read = &read;
    check(pointers::decode(text.c_str(), type.c_str(), read) && read == original, "what was encoded is decoded");
    check(pointers::decode(pointers::encodeTyped(number, type.c_str()).c_str(), type.c_str(), read) && read == original,
          "what was encoded with its type is decoded");
}

void nameOfDeclared(const std::string& declared)
{
    const std::string name = pointers::typeNameOf(declared.c_str());
    check(name.size() == declared.size() + 1 && name[0] == '_', "a type name is an underscore and the declared type");
    check(name.find_first_of("*& \t\n\v\f\r") == std::string::npos, "a type name has no blanks, stars or ampersands");
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);
    pointers::theTable() = pointers::TypeTable();
    Registrations registered;
    bool knowable = true;   // the cache cuts an expected name that is longer, and then finds it under the cut one
    Names names(data);
    for (int calls = 0; data.remaining_bytes() > 0 && calls < 200; ++calls) {
        switch (data.ConsumeIntegralInRange(0, 7)) {
        case 0:
        case 1:
        case 2: {
            const std::string type = names.pick(), equivalent = names.pick();
            const pointers::Conversion conversion = data.PickValueInArray(kConversions);
            pointers::registerType(type.c_str(), equivalent.c_str(), conversion);
            registered.add(type, equivalent, conversion);
            break;
        }
        case 3:
        case 4:
        case 5: {
            const std::string text =
                pointers::encodeTyped(data.ConsumeIntegral<std::uintptr_t>(), names.pick().c_str());
            const std::string expected = names.pick();
            knowable = knowable && expected.size() <= kLongest;
            decodeOne(text, &expected, registered, knowable);
            break;
        }
        case 6: {
            const std::string whole = data.ConsumeRandomLengthString(400);
            const std::string text = whole.c_str();
            const std::string expected = names.pick();
            knowable = knowable && expected.size() <= kLongest;
            decodeOne(text, data.ConsumeBool() ? &expected : nullptr, registered, knowable);
            nameOfDeclared(text);
            break;
        }
        default:
            roundTrip(data.ConsumeIntegral<std::uintptr_t>(), names.pick());
        }
    }
    return 0;
}
