// Observers: attached while both sides live.
#include "qc/qcObserver.h"

#include "qc/qcObject.h"

qcObserver::~qcObserver() = default;

// A subject that is already going takes no observer any more.
qcRefObserver::qcRefObserver(qcSubject* observed, qcObject* forWhom)
    : subject(observed && !observed->invalid() ? observed : nullptr), object(forWhom)
{
    if (subject)
        subject->attach(this, qcChanged);
}

qcRefObserver::~qcRefObserver()
{
    if (subject)
        subject->detach(this);
}

void qcRefObserver::update(updateProtocol protocol)
{
    if (protocol == qcDestroyed)
        subject = nullptr;
}

void qcRefObserver::destroy()
{
    delete this;
}
