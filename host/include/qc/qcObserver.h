// Observers: who wants to hear that a subject changed or is gone.
#pragma once

#include "qc/qcExport.h"

class qcObject;
class qcSubject;

/// What an observer is told.
enum updateProtocol {
    qcChanged = 0,    ///< the subject changed
    qcDestroyed = 1   ///< the subject is being destroyed: do not touch it any more
};

/// Somebody who wants to hear about a subject.
class QC_API qcObserver {
public:
    /// Called by the subject.
    virtual void update(updateProtocol protocol) = 0;

    virtual ~qcObserver();
};

/// An observer of one subject on behalf of one object.
///
/// Attached to the subject on construction, detached by destroy(). A subject that is destroyed
/// first tells it, and from then on it refers to no subject.
class QC_API qcRefObserver : public qcObserver {
public:
    /// @param observed  borrowed; null observes nothing
    /// @param forWhom   whom the observer stands for, borrowed
    qcRefObserver(qcSubject* observed, qcObject* forWhom);
    qcRefObserver(const qcRefObserver&) = delete;
    qcRefObserver& operator=(const qcRefObserver&) = delete;

    void update(updateProtocol protocol) override;
    ~qcRefObserver() override;

    /// Detaches the observer and frees it.
    void destroy();

    qcSubject* getSubject() const { return subject; }   ///< null once the subject is gone
    qcObject* getObject() const { return object; }

private:
    qcSubject* subject;
    qcObject* object;
};
