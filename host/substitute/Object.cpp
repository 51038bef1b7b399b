// Objects: observers, names, and the flat store of properties.
#include "qc/qcObject.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

namespace {

// One copy of every key that was ever stored; the copies live as long as the process.
const char* internedKey(const char* key)
{
    static auto* keys = new std::unordered_set<std::string>;   // never destroyed: objects may outlive it
    return keys->insert(key).first->c_str();
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
    const std::vector<qcObserver*> told = std::move(observers);
    observers.clear();
    for (qcObserver* observer : told)
        observer->update(qcDestroyed);
}

void qcSubject::attach(qcObserver* observer, updateProtocol)
{
    if (observer && std::find(observers.begin(), observers.end(), observer) == observers.end())
        observers.push_back(observer);
}

void qcSubject::detach(qcObserver* observer, updateProtocol)
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

// The store is small and sorted by key; most objects have no property or one.
const qcObject::Property* qcObject::findProperty(const char* key) const
{
    if (properties.empty())
        return nullptr;
    const std::size_t length = std::strlen(key);
    std::size_t first = 0;
    std::size_t count = properties.size();
    while (count > 0) {
        const Property& middle = properties[first + count / 2];
        int order = std::memcmp(middle.key, key, std::min(middle.length, length));
        if (order == 0 && middle.length == length)
            return &middle;
        if (order == 0)
            order = middle.length < length ? -1 : 1;
        if (order < 0) {
            first += count / 2 + 1;
            count -= count / 2 + 1;
        } else {
            count /= 2;
        }
    }
    return nullptr;
}

int qcObject::getProperty(const char* key, qcValue* out) const
{
    const Property* property = findProperty(key);
    if (!property)
        return 0;
    *out = property->value;
    return 1;
}

int qcObject::setProperty(const char* key, qcValue value)
{
    if (const Property* property = findProperty(key)) {
        const_cast<Property*>(property)->value = std::move(value);
        return 1;
    }
    const auto place = std::lower_bound(properties.begin(), properties.end(), key,
                                        [](const Property& p, const char* k) { return std::strcmp(p.key, k) < 0; });
    properties.insert(place, Property{internedKey(key), std::strlen(key), std::move(value)});
    return 1;
}

int qcObject::removeProperty(const char* key)
{
    const Property* property = findProperty(key);
    if (!property)
        return 0;
    properties.erase(properties.begin() + (property - properties.data()));
    return 1;
}
