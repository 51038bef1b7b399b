// Objects: observers, names, and the flat store of properties.
#include "qc/qcObject.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_set>

namespace {

// One copy of every key that was ever stored; the copies live as long as the process.
const char* internedKey(const char* key)
{
    static auto* keys = new std::unordered_set<std::string_view>;   // never destroyed: objects may outlive it
    const std::string_view wanted(key);
    const auto known = keys->find(wanted);
    if (known != keys->end())
        return known->data();
    auto copy = std::make_unique<char[]>(wanted.size() + 1);   // ends with a zero
    wanted.copy(copy.get(), wanted.size());
    keys->emplace(copy.get(), wanted.size());
    return copy.release();
}

long newStamp()
{
    static long stamp = 0;
    return ++stamp;
}

// A subject telling its observers, which may come and go meanwhile. It needs no memory, so that it cannot fail.
struct Round {
    const qcSubject* subject;
    std::size_t next;   // whose turn it is next
    std::size_t end;    // behind the last who was attached when the round began
    Round* outer;       // an observer may begin another round
};

Round* rounds = nullptr;

// In progress while it lives.
class RoundInProgress : public Round {
public:
    RoundInProgress(const qcSubject* told, std::size_t count) : Round{told, 0, count, rounds} { rounds = this; }
    ~RoundInProgress() { rounds = outer; }
    RoundInProgress(const RoundInProgress&) = delete;
    RoundInProgress& operator=(const RoundInProgress&) = delete;
};

// An observer has left its place: those behind it have moved up.
void closeGap(const qcSubject* subject, std::size_t place)
{
    for (Round* round = rounds; round; round = round->outer) {
        if (round->subject != subject)
            continue;
        round->next -= place < round->next ? 1 : 0;
        round->end -= place < round->end ? 1 : 0;
    }
}

}   // namespace

qcSubject::~qcSubject()
{
    notifyDestroyed();
}

void qcSubject::notifyDestroyed()
{
    beingDestroyed = true;
    while (!observers.empty()) {   // an observer may detach or destroy others while it is told
        qcObserver* observer = observers.front();
        observers.erase(observers.begin());
        closeGap(this, 0);
        observer->update(qcDestroyed);
    }
}

void qcSubject::attach(qcObserver* observer, updateProtocol)
{
    if (observer && !beingDestroyed && std::find(observers.begin(), observers.end(), observer) == observers.end())
        observers.push_back(observer);
}

void qcSubject::detach(qcObserver* observer)
{
    const auto found = std::find(observers.begin(), observers.end(), observer);
    if (found == observers.end())
        return;
    const std::size_t place = static_cast<std::size_t>(found - observers.begin());
    observers.erase(found);
    closeGap(this, place);
}

void qcSubject::notify(updateProtocol protocol)
{
    RoundInProgress round(this, observers.size());
    while (round.next < round.end)
        observers[round.next++]->update(protocol);
}

int qcSubject::invalid()
{
    return beingDestroyed ? 1 : 0;
}

qcObject& qcObject::operator=(const qcObject& other)
{
    qcObject copy(other);   // first: what memory runs out for leaves this object as it was
    qcSubject::operator=(other);
    name.swap(copy.name);
    fullName.swap(copy.fullName);
    properties.swap(copy.properties);
    timestamp = copy.timestamp;
    return *this;
}

qcObject::~qcObject()
{
    notifyDestroyed();
}

int qcObject::setName(const char* newName)
{
    name = newName ? newName : "";
    return 1;
}

void qcObject::setFullName(const char* prefix, const char* ownName)
{
    fullName = std::string(prefix ? prefix : "") + "." + (ownName ? ownName : "");
}

int qcObject::toText(char* buffer, int length)
{
    std::string text = fullName.empty() ? name : fullName;
    for (const Property& property : properties)
        text.append("\n  ").append(property.key).append(" = ").append(property.value.toText());
    if (buffer && length > 0) {
        const std::size_t kept = std::min(text.size(), static_cast<std::size_t>(length) - 1);
        std::memcpy(buffer, text.data(), kept);
        buffer[kept] = '\0';
    }
    return static_cast<int>(text.size());
}

int qcObject::sprint(char** text)
{
    const int length = toText(nullptr, 0);
    *text = static_cast<char*>(std::malloc(static_cast<std::size_t>(length) + 1));
    return *text ? toText(*text, length + 1) : 0;
}

void qcObject::setTimestamp(long stamp)
{
    timestamp = stamp;
    notify(qcChanged);
}

void qcObject::setTimestamp()
{
    setTimestamp(std::max(newStamp(), timestamp + 1));
}

int qcObject::searchProperty(const char* key, qcValue* out)
{
    return getProperty(key, out);
}

// The store is sorted by key. Most objects have no property or one or two: those are looked through by
// length first, which tells nearly all keys apart.
const qcObject::Property* qcObject::findProperty(const char* key, std::size_t length) const
{
    constexpr std::size_t kFew = 8;
    if (properties.size() <= kFew) {
        for (const Property& property : properties)
            if (property.length == length && std::memcmp(property.key, key, length) == 0)
                return &property;
        return nullptr;
    }
    const std::string_view wanted(key, length);
    const auto place = std::lower_bound(properties.begin(), properties.end(), wanted,
                                        [](const Property& property, std::string_view k) {
                                            return std::string_view(property.key, property.length) < k;
                                        });
    const bool found = place != properties.end() && std::string_view(place->key, place->length) == wanted;
    return found ? &*place : nullptr;
}

int qcObject::readProperty(const char* key, std::size_t length, qcValue* out) const
{
    const Property* property = findProperty(key, length);
    if (!property)
        return 0;
    *out = property->value;
    return 1;
}

int qcObject::setProperty(const char* key, qcValue value)
{
    const std::size_t length = std::strlen(key);
    if (const Property* property = findProperty(key, length)) {
        const_cast<Property*>(property)->value = std::move(value);
        return 1;
    }
    const auto place = std::lower_bound(properties.begin(), properties.end(), key,
                                        [](const Property& p, const char* k) { return std::strcmp(p.key, k) < 0; });
    properties.insert(place, Property{internedKey(key), length, std::move(value)});
    return 1;
}

int qcObject::removeProperty(const char* key)
{
    if (properties.empty())
        return 0;
    const Property* property = findProperty(key, std::strlen(key));
    if (!property)
        return 0;
    properties.erase(properties.begin() + (property - properties.data()));
    return 1;
}
