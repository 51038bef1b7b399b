// Objects: named things with named properties, that others may observe.
#pragma once

#include "qc/qcExport.h"
#include "qc/qcObserver.h"
#include "qc/qcValue.h"

#include <cstring>
#include <string>
#include <vector>

/// An observable. The order of the virtual operations is part of the interface.
class QC_API qcSubject {
public:
    qcSubject() = default;
    qcSubject(const qcSubject&) {}                             ///< a copy has no observers
    qcSubject& operator=(const qcSubject&) { return *this; }   ///< observers stay where they are
    virtual ~qcSubject();                                      ///< tells the observers: qcDestroyed

    virtual void attach(qcObserver* observer, updateProtocol protocol);
    virtual void detach(qcObserver* observer);
    virtual void notify(updateProtocol protocol);   ///< tells every observer attached; needs no memory
    virtual int invalid();                          ///< 1 while the subject is being destroyed

protected:
    /// Tells the observers that the subject goes, once. For destructors of derived classes, so that
    /// the observers hear of it while the whole subject still stands.
    void notifyDestroyed();

private:
    std::vector<qcObserver*> observers;
    bool beingDestroyed = false;
};

/// A named object with a full name and named properties.
///
/// Memory that runs out is told by std::bad_alloc; the object is then as it was. Removing, reading names and keys,
/// marking changes and storing a property in place of one of that key, by a value handed over, need no memory.
class QC_API qcObject : public qcSubject {
public:
    qcObject() = default;
    qcObject(const qcObject&) = default;          ///< copies names, properties and time stamp
    qcObject& operator=(const qcObject& other);   ///< takes names, properties and time stamp over
    ~qcObject() override;

    virtual int setName(const char* name);          ///< @return 1
    virtual int toText(char* buffer, int length);   ///< full name and properties, cut to fit; @return its uncut length
    virtual void setTimestamp(long stamp);          ///< marks the object changed at a given stamp
    virtual void setTimestamp();                    ///< marks the object changed now
    virtual int sprint(char** text);   ///< a new text form; the caller frees it with free(); @return its length
    virtual int searchProperty(const char* key, qcValue* out);   ///< like getProperty()

    /// The names belong to the object and are not to be freed.
    char* getName() const { return const_cast<char*>(name.c_str()); }
    char* getFullName() const { return const_cast<char*>(fullName.c_str()); }

    /// Makes the full name of a prefix and a name, joined by a full stop.
    void setFullName(const char* prefix, const char* ownName);

    /// Reads a property.
    /// @param out  receives a copy, which the caller destroys
    /// @return 1 when the object has the property; else 0, and `out` is left as it was
    int getProperty(const char* key, qcValue* out) const
    {
        return properties.empty() ? 0 : readProperty(key, std::strlen(key), out);
    }

    /// Stores a property, replacing any earlier one of that key. @return 1
    int setProperty(const char* key, qcValue value);

    /// Removes a property. @return 1 when there was one, else 0
    int removeProperty(const char* key);

    /// All properties, in the byte order of their keys; for whoever saves or shows an object.
    int getNumProperties() const { return static_cast<int>(properties.size()); }
    const char* getPropertyKey(int i) const { return properties[static_cast<std::size_t>(i)].key; }
    const qcValue& getPropertyValue(int i) const { return properties[static_cast<std::size_t>(i)].value; }

    /// Grows with every setTimestamp().
    long getTimestamp() const { return timestamp; }

protected:
    void setWholeFullName(const char* text) { fullName = text; }

private:
    struct Property {
        const char* key;      // interned: lives as long as the process
        std::size_t length;   // of the key
        qcValue value;
    };

    const Property* findProperty(const char* key, std::size_t length) const;
    int readProperty(const char* key, std::size_t length, qcValue* out) const;

    std::string name;
    std::string fullName;
    std::vector<Property> properties;   // sorted by key
    long timestamp = 0;
};
