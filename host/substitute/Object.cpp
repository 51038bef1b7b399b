// Objects: observers, names, and the flat store of properties.
#include "qc/qcObject.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string_view>
#include <unordered_set>

namespace {

// One copy of every key that was ever stored; the copies live as long as the process.
const char* internedKey(const char* key)
{
    static auto* texts = new std::deque<std::string>;   // never destroyed: objects may outlive them
    static auto* keys = new std::unordered_set<std::string_view>;
    const auto known = keys->find(key);
    if (known != keys->end())
        return known->data();
    texts->emplace_back(key);
    keys->insert(texts->back());
    return texts->back().c_str();
}

long newStamp()
{
    static long stamp = 0;
    return ++stamp;
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
    observers.erase(std::remove(observers.begin(), observers.end(), observer), observers.end());
}

void qcSubject::notify(updateProtocol protocol)
{
    const std::vector<qcObserver*> told = observers;   // an observer may leave while it is told
    for (qcObserver* observer : told)
        if (std::find(observers.begin(), observers.end(), observer) != observers.end())
            observer->update(protocol);
}

int qcSubject::invalid()
{
    return beingDestroyed ? 1 : 0;
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
