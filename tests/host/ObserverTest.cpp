// Observers: told of changes and of the end, once, whoever goes first.
#include "qc/qcObserver.h"

#include "qc/qcObject.h"

#include "Support.h"

#include <functional>
#include <memory>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// Remembers what it was told and does as it is bid meanwhile.
class Recorder : public qcObserver {
public:
    void update(updateProtocol protocol) override
    {
        told.push_back(protocol);
        if (whenTold)
            whenTold();
    }
    std::vector<updateProtocol> told;
    std::function<void()> whenTold;
};

}   // namespace

TEST(Observer, IsToldOfEveryMark)
{
    qcObject object;
    Recorder recorder;
    object.attach(&recorder, qcChanged);
    object.setTimestamp();
    object.setTimestamp(77);
    EXPECT_THAT(recorder.told, ElementsAre(qcChanged, qcChanged));
    object.detach(&recorder);
}

TEST(Observer, NotifyPassesTheProtocolToAll)
{
    qcSubject subject;
    Recorder first, second;
    subject.attach(&first, qcChanged);
    subject.attach(&second, qcChanged);
    subject.notify(qcDestroyed);
    subject.notify(qcChanged);
    EXPECT_THAT(first.told, ElementsAre(qcDestroyed, qcChanged));
    EXPECT_THAT(second.told, ElementsAre(qcDestroyed, qcChanged));
    subject.detach(&first);
    subject.detach(&second);
}

TEST(Observer, AttachedTwiceIsToldOnce)
{
    qcObject object;
    Recorder recorder;
    object.attach(&recorder, qcChanged);
    object.attach(&recorder, qcChanged);
    object.setTimestamp();
    EXPECT_THAT(recorder.told, ElementsAre(qcChanged));
    object.detach(&recorder);
    object.setTimestamp();
    EXPECT_THAT(recorder.told, ElementsAre(qcChanged));
}

TEST(Observer, NullAndStrangersAreHarmless)
{
    qcObject object;
    Recorder stranger;
    object.attach(nullptr, qcChanged);
    object.detach(nullptr);
    object.detach(&stranger);
    object.setTimestamp();
    EXPECT_THAT(stranger.told, IsEmpty());
}

TEST(Observer, IsToldOfTheEndOnce)
{
    Recorder recorder;
    {
        qcObject object;
        object.attach(&recorder, qcChanged);
    }
    EXPECT_THAT(recorder.told, ElementsAre(qcDestroyed));
}

TEST(Observer, ThatLeftIsNotToldOfTheEnd)
{
    Recorder recorder;
    {
        qcObject object;
        object.attach(&recorder, qcChanged);
        object.detach(&recorder);
    }
    EXPECT_THAT(recorder.told, IsEmpty());
}

TEST(Observer, SubjectIsInvalidOnlyWhileItGoes)
{
    Recorder recorder;
    auto object = std::make_unique<qcObject>();
    object->setName("still there");
    qcObject* raw = object.get();
    int invalid = -1;
    std::string name;
    recorder.whenTold = [&] {
        invalid = raw->invalid();
        name = raw->getName();
    };
    object->attach(&recorder, qcChanged);
    EXPECT_EQ(object->invalid(), 0);
    object.reset();
    EXPECT_EQ(invalid, 1);
    EXPECT_EQ(name, "still there");
}

TEST(Observer, MayLeaveWhileAllAreTold)
{
    qcObject object;
    Recorder leaver, leftByOther, last;
    object.attach(&leaver, qcChanged);
    object.attach(&leftByOther, qcChanged);
    object.attach(&last, qcChanged);
    leaver.whenTold = [&] {
        object.detach(&leaver);
        object.detach(&leftByOther);
    };
    object.setTimestamp();
    object.setTimestamp();
    EXPECT_THAT(leaver.told, ElementsAre(qcChanged));
    EXPECT_THAT(leftByOther.told, IsEmpty());
    EXPECT_THAT(last.told, ElementsAre(qcChanged, qcChanged));
    object.detach(&last);
}

TEST(Observer, MayJoinWhileAllAreTold)
{
    qcObject object;
    Recorder first;
    std::vector<std::unique_ptr<Recorder>> joined;
    first.whenTold = [&] {
        joined.push_back(std::make_unique<Recorder>());
        object.attach(joined.back().get(), qcChanged);
    };
    object.attach(&first, qcChanged);
    object.setTimestamp();
    ASSERT_EQ(joined.size(), 1u);
    first.whenTold = nullptr;
    object.setTimestamp();
    EXPECT_EQ(joined[0]->told.back(), qcChanged);
    object.detach(&first);
    object.detach(joined[0].get());
}

TEST(Observer, MayBeDestroyedByAnotherWhileTheSubjectGoes)
{
    Recorder first;
    auto object = std::make_unique<qcObject>();
    object->attach(&first, qcChanged);
    auto* second = new qcRefObserver(object.get(), nullptr);
    first.whenTold = [&] { second->destroy(); };
    object.reset();
    EXPECT_THAT(first.told, ElementsAre(qcDestroyed));
}

TEST(Observer, CannotJoinASubjectThatGoes)
{
    Recorder first, late;
    qcRefObserver* lateReference = nullptr;
    {
        qcObject object;
        object.attach(&first, qcChanged);
        first.whenTold = [&] {
            object.attach(&first, qcChanged);
            object.attach(&late, qcChanged);
            lateReference = new qcRefObserver(&object, nullptr);
        };
    }
    EXPECT_THAT(first.told, ElementsAre(qcDestroyed));
    EXPECT_THAT(late.told, IsEmpty());
    ASSERT_NE(lateReference, nullptr);
    EXPECT_EQ(lateReference->getSubject(), nullptr);
    lateReference->destroy();
}

TEST(Observer, CopyOfASubjectHasNone)
{
    Recorder recorder;
    qcObject object;
    object.attach(&recorder, qcChanged);
    {
        qcObject copy(object);
        copy.setTimestamp();
    }
    EXPECT_THAT(recorder.told, IsEmpty());
    object.detach(&recorder);
}

TEST(Observer, StaysWhereItIsWhenItsSubjectIsAssigned)
{
    Recorder ofTarget, ofSource;
    qcObject target, source;
    target.attach(&ofTarget, qcChanged);
    source.attach(&ofSource, qcChanged);
    target = source;
    target.setTimestamp();
    EXPECT_THAT(ofTarget.told, ElementsAre(qcChanged));
    EXPECT_THAT(ofSource.told, IsEmpty());
    target.detach(&ofTarget);
    source.detach(&ofSource);
}

TEST(RefObserver, KnowsItsSubjectAndItsObject)
{
    qcObject subject, object;
    auto* observer = new qcRefObserver(&subject, &object);
    EXPECT_EQ(observer->getSubject(), &subject);
    EXPECT_EQ(observer->getObject(), &object);
    subject.setTimestamp();   // a change is no end
    EXPECT_EQ(observer->getSubject(), &subject);
    observer->destroy();
}

// The sanitizers and valgrind tell when the subject then still calls it.
TEST(RefObserver, DestroyedFirstIsHeardOfNoMore)
{
    qcObject subject, object;
    (new qcRefObserver(&subject, &object))->destroy();
    subject.setTimestamp();
}

TEST(RefObserver, OutlivesItsSubject)
{
    qcObject object;
    auto subject = std::make_unique<qcObject>();
    auto* observer = new qcRefObserver(subject.get(), &object);
    subject.reset();
    EXPECT_EQ(observer->getSubject(), nullptr);
    EXPECT_EQ(observer->getObject(), &object);
    observer->destroy();
}

TEST(RefObserver, OfNothingIsAllowed)
{
    auto* observer = new qcRefObserver(nullptr, nullptr);
    EXPECT_EQ(observer->getSubject(), nullptr);
    observer->destroy();
}

TEST(RefObserver, IsAttachedOnConstruction)
{
    struct Subject : qcObject {
        void attach(qcObserver* observer, updateProtocol protocol) override
        {
            attached.push_back(observer);
            qcObject::attach(observer, protocol);
        }
        void detach(qcObserver* observer) override
        {
            detached.push_back(observer);
            qcObject::detach(observer);
        }
        std::vector<qcObserver*> attached, detached;
    } subject;
    auto* observer = new qcRefObserver(&subject, nullptr);
    EXPECT_THAT(subject.attached, ElementsAre(observer));
    EXPECT_THAT(subject.detached, IsEmpty());
    qcObserver* const address = observer;
    observer->destroy();
    EXPECT_THAT(subject.detached, ElementsAre(address));
}
