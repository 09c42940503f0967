#include "AttributeFeed.h"

#include "CorbaFailure.h"
#include "DDS_Subscriber.h"
#include "DDS_Subscriber_Object.h"
#include "DDS_VoidMessage.h"
#include "GlobalImpl.h"
#include "LockerGateway.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QList>
#include <QPair>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrent>

#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace {

const char* const attributeFeedSource = "Components/Source/View/Widgets/WidgetBaseImpl";
const char* const actionSourceFile = "Components/Source/View/Widgets/PushButtonImpl";
// Where log readers have always found a failed narrowing of a pressed button.
constexpr int narrowFailureLine = 202;

// How long after binding the lock state is asked once more.
constexpr std::chrono::milliseconds LockSettleDelay{1000};
// The GUI thread's time given to lock states in one turn of its event loop, in ms: a
// quarter of a frame, so that the slice and the repaint of what it changed fit in one.
constexpr qint64 LockSliceMs = 4;

// QThreadPool hands a job to a pooled thread under a QMutex of its own, which the thread
// sanitizer does not see (Qt is not built with it): without these it takes the job, and
// everything done before it was queued, for a race with the thread that runs it.
#if defined(__SANITIZE_THREAD__)
char poolHandOff;
void beforePoolStart() { __tsan_release(&poolHandOff); }
void atPoolStart() { __tsan_acquire(&poolHandOff); }
#else
void beforePoolStart() {}
void atPoolStart() {}
#endif

Orvanth::LockerID currentLockerID()
{
    const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
    return gateway ? gateway->getLockerID() : Orvanth::LockerID{};
}

Orvanth::Lock_Authority currentLockAuthority()
{
    const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
    return gateway ? gateway->getLockAuthority() : Orvanth::Lock_Authority{};
}

/// The reason engineLost() names for a lost engine, or empty for other failures. An
/// object that no longer exists belongs to an engine that went, or came back anew.
QString connectionLoss(const CORBA::Exception& exception)
{
    if (CORBA::TRANSIENT::_downcast(&exception))
        return QStringLiteral("CORBA::TRANSIENT");
    if (CORBA::COMM_FAILURE::_downcast(&exception))
        return QStringLiteral("CORBA::COMM_FAILURE");
    if (CORBA::OBJECT_NOT_EXIST::_downcast(&exception))
        return QStringLiteral("CORBA::OBJECT_NOT_EXIST");
    return QString();
}

/// Whether the engine behind \a reading answers for it (one light remote call).
bool answers(Orvanth::EngineReadingBase_ptr reading)
{
    if (CORBA::is_nil(reading))
        return false;
    try {
        return !reading->_non_existent();
    } catch (const CORBA::Exception&) {
        return false;
    }
}

} // namespace

struct AttributeFeed::Subscriptions
{
    QList<Orvanth::DDS_Subscriber_Object> list;
};

/**
 * Applies the lock states that engine answers bring, in slices of the GUI thread's time:
 * when an engine changes the locks of hundreds of widgets at once, each slice applies
 * what fits in a few milliseconds and leaves the rest for the next turn of the event
 * loop, so timers and touches come in between. GUI thread only.
 */
class AttributeFeed::LockStateApplier : public QObject
{
public:
    static LockStateApplier* instance()
    {
        static QPointer<LockStateApplier> applier;
        if (!applier)
            applier = new LockStateApplier(QCoreApplication::instance());
        return applier;
    }

    void schedule(AttributeFeed* feed)
    {
        m_waiting.append(feed);
        if (!m_slice.isActive())
            m_slice.start();
    }

private:
    explicit LockStateApplier(QObject* parent) : QObject(parent)
    {
        // A zero interval: one slice per turn of the event loop.
        m_slice.setInterval(0);
        connect(&m_slice, &QTimer::timeout, this, &LockStateApplier::applySlice);
    }

    void applySlice()
    {
        QElapsedTimer clock;
        clock.start();
        while (!m_waiting.isEmpty() && clock.elapsed() < LockSliceMs) {
            const QPointer<AttributeFeed> feed = m_waiting.takeFirst();
            if (feed)
                feed->applyPendingLockAnswer();
        }
        if (m_waiting.isEmpty())
            m_slice.stop();
    }

    QTimer m_slice;
    QList<QPointer<AttributeFeed>> m_waiting;
};

/**
 * The feed's engine state as the pool and DDS threads see it, and the queue that runs
 * the feed's engine calls one after the other on the global pool. Outlives the feed for
 * as long as work holds it; from then on it posts nothing.
 */
class AttributeFeed::Link : public std::enable_shared_from_this<Link>
{
public:
    explicit Link(AttributeFeed* feed) : m_feed(feed) {}

    Orvanth::EngineReadingBase_var reading() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_reading;
    }

    Orvanth::EngineAttribBase_var attribute() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_attribute;
    }

    /// The attribute and the epoch it belongs to.
    Orvanth::EngineAttribBase_var attribute(quint64* generation) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        *generation = m_generation;
        return m_attribute;
    }

    QString attributeName() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_attributeName;
    }

    void setAttributeName(const QString& name)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_attributeName = name;
    }

    /// A new epoch with \a reading and no attribute yet.
    void rebind(quint64 generation, Orvanth::EngineReadingBase_ptr reading)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_generation = generation;
        m_reading = Orvanth::EngineReadingBase::_duplicate(reading);
        m_attribute = Orvanth::EngineAttribBase::_nil();
    }

    /// Stores the narrowed attribute unless the binding has changed meanwhile.
    bool adoptAttribute(quint64 generation, Orvanth::EngineAttribBase_ptr attribute)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (generation != m_generation)
            return false;
        m_attribute = Orvanth::EngineAttribBase::_duplicate(attribute);
        return true;
    }

    void rememberLock(Orvanth::EngineAttribBase_ptr attribute, CORBA::Long handle)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lockedAttribute = Orvanth::EngineAttribBase::_duplicate(attribute);
        m_lockHandle = handle;
    }

    /// The attribute whose lock a touch took, and its handle; forgotten from now on.
    Orvanth::EngineAttribBase_var takeLock(CORBA::Long* handle)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        *handle = m_lockHandle;
        return m_lockedAttribute._retn();
    }

    /// Called by the feed as it goes: nothing is posted to it any more.
    void detach()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_feed = nullptr;
    }

    /// Runs \a call in the GUI thread with the feed, if the feed is still there then.
    template <class Call>
    void post(Call call) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_feed)
            return;
        AttributeFeed* feed = m_feed;
        // Held under the mutex, so the feed cannot be destroyed before the event is
        // posted; a feed destroyed after drops the event with it.
        QMetaObject::invokeMethod(feed, [feed, call] { call(feed); }, Qt::QueuedConnection);
    }

    /// Queues \a job behind the feed's other engine calls.
    void enqueue(std::function<void()> job)
    {
        bool start = false;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_work.push_back(std::move(job));
            start = !m_draining;
            m_draining = true;
        }
        if (!start)
            return;
        std::function<void()> run = [self = shared_from_this()] {
            atPoolStart();
            self->drain();
        };
        beforePoolStart();
        QThreadPool::globalInstance()->start(std::move(run));
    }

    /// A lock notice: asks MayAccess again, once for any number of notices that come
    /// before the question is asked. Called on DDS threads.
    void requestLockQuery()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_queryQueued)
                return;
            m_queryQueued = true;
        }
        enqueue([this] { queryLock(); });
    }

    /// Whether the feed reads \a topic already: a binding after a lost engine keeps the
    /// reader it has instead of adding one each time the engine comes back.
    bool follows(const std::string& topic) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_followedTopics.count(topic) != 0;
    }

    void noteFollowing(const std::string& topic)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_followedTopics.insert(topic);
    }

    /// The answer waiting for the feed, taken; false when there is none.
    bool takeLockAnswer(quint64* generation, bool* locked)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_pendingAnswer)
            return false;
        *generation = m_pendingAnswer->generation;
        *locked = m_pendingAnswer->locked;
        m_pendingAnswer.reset();
        return true;
    }

    // The lock state last posted to the feed; touched by queued work only, which runs
    // one job at a time. Forgotten when the feed's own lock calls change the state.
    std::optional<bool> shownLocked;

private:
    void drain()
    {
        for (;;) {
            std::function<void()> job;
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                if (m_work.empty()) {
                    m_draining = false;
                    return;
                }
                job = std::move(m_work.front());
                m_work.pop_front();
            }
            // Each job catches what it expects; nothing may end a pool thread.
            try {
                job();
            } catch (...) {
                CorbaFailure::logException(attributeFeedSource, "engine call", __LINE__);
            }
        }
    }

    void queryLock()
    {
        quint64 generation = 0;
        Orvanth::EngineAttribBase_var attribute;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_queryQueued = false;
            generation = m_generation;
            attribute = m_attribute;
        }
        if (CORBA::is_nil(attribute))
            return;
        try {
            const bool locked = !attribute->MayAccess(currentLockerID());
            if (shownLocked == locked)
                return;
            shownLocked = locked;
            postLockAnswer(generation, locked);
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                // Whatever the engine says when it is back is news.
                shownLocked.reset();
                post([generation, reason](AttributeFeed* feed) { feed->lose(generation, reason); });
                return;
            }
            CorbaFailure::logException(attributeFeedSource, "MayAccess", __LINE__);
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
        }
    }

    /// Hands the answer to the feed, at most one at a time: while one waits in the GUI
    /// thread, later answers replace its value instead of queueing more, so a busy GUI
    /// thread applies the latest state once instead of every state in between.
    void postLockAnswer(quint64 generation, bool locked)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const bool queued = m_pendingAnswer.has_value();
        m_pendingAnswer = PendingAnswer{generation, locked};
        if (queued || !m_feed)
            return;
        AttributeFeed* feed = m_feed;
        QMetaObject::invokeMethod(
            feed, [feed] { LockStateApplier::instance()->schedule(feed); }, Qt::QueuedConnection);
    }

    struct PendingAnswer
    {
        quint64 generation;
        bool locked;
    };

    mutable std::mutex m_mutex;
    AttributeFeed* m_feed;
    std::optional<PendingAnswer> m_pendingAnswer;
    quint64 m_generation = 0;
    Orvanth::EngineReadingBase_var m_reading;
    Orvanth::EngineAttribBase_var m_attribute;
    QString m_attributeName;
    Orvanth::EngineAttribBase_var m_lockedAttribute;
    CORBA::Long m_lockHandle = 0;
    std::deque<std::function<void()>> m_work;
    std::set<std::string> m_followedTopics;
    bool m_draining = false;
    bool m_queryQueued = false;
};

AttributeFeed::CallHandle::CallHandle(std::shared_ptr<Link> link, quint64 generation)
    : m_link(std::move(link)), m_generation(generation)
{
}

Orvanth::EngineReadingBase_var AttributeFeed::CallHandle::reading() const
{
    return m_link->reading();
}

QString AttributeFeed::CallHandle::attributeName() const
{
    return m_link->attributeName();
}

void AttributeFeed::CallHandle::reportDisconnect(const QString& reason) const
{
    const quint64 generation = m_generation;
    m_link->post([generation, reason](AttributeFeed* feed) { feed->lose(generation, reason); });
}

void AttributeFeed::CallHandle::reportException(const QString& message) const
{
    m_link->post([message](AttributeFeed* feed) { emit feed->exceptionMessage(message); });
}

AttributeFeed::AttributeFeed(QObject* parent)
    : QObject(parent)
    , m_link(std::make_shared<Link>(this))
    , m_subscriptions(std::make_unique<Subscriptions>())
    , m_binder([this](Orvanth::EngineReadingBase_ptr reading) { bind(reading, m_updateDelayMs); })
{
}

AttributeFeed::~AttributeFeed()
{
    m_link->detach();
    // Each waits for its callback if one runs; the callbacks reach the link only.
    for (Orvanth::DDS_Subscriber_Object& subscription : m_subscriptions->list)
        subscription.destroy();
}

QString AttributeFeed::attributeName() const
{
    return m_link->attributeName();
}

void AttributeFeed::setAttributeName(const QString& name)
{
    m_link->setAttributeName(name);
}

void AttributeFeed::setBinder(Binder binder)
{
    m_binder = std::move(binder);
}

quint64 AttributeFeed::renewGeneration()
{
    return ++m_generation;
}

void AttributeFeed::unbind()
{
    m_link->rebind(renewGeneration(), Orvanth::EngineReadingBase::_nil());
}

void AttributeFeed::bind(Orvanth::EngineReadingBase_ptr reading, int updateDelayMs)
{
    m_updateDelayMs = qMax(0, updateDelayMs);
    const quint64 generation = renewGeneration();
    m_link->rebind(generation, reading);
    if (CORBA::is_nil(reading)) {
        m_lost = false;
        m_lostReading = Orvanth::EngineReadingBase::_nil();
        emit bindingFinished(false, false);
        return;
    }
    if (NamingServiceImpl* discovery = GlobalImpl::getInstance()->namingService())
        followDiscovery(discovery);

    const std::int32_t seconds = m_updateDelayMs / 1000;
    const std::uint32_t nanoseconds = std::uint32_t(m_updateDelayMs % 1000) * 1000000u;
    Orvanth::EngineReadingBase_var held = Orvanth::EngineReadingBase::_duplicate(reading);
    const std::shared_ptr<Link> link = m_link;
    const std::weak_ptr<Link> notices = m_link;
    m_link->enqueue([link, notices, held, generation, seconds, nanoseconds] {
        try {
            Orvanth::EngineAttribBase_var attribute = Orvanth::EngineAttribBase::_narrow(held.in());
            if (CORBA::is_nil(attribute)) {
                qDebug() << "UserInterface - Not a lockable engine attribute:" << link->attributeName();
                link->post([generation](AttributeFeed* feed) { feed->finishBinding(generation, false, false); });
                return;
            }
            ORB_base::setCallTimeout(attribute, CallTimeout);
            const CORBA::String_var topic = attribute->LockTopic();
            if (!link->adoptAttribute(generation, attribute))
                return;
            const std::string followed = std::string(topic.in()) + '@' + std::to_string(seconds) + '.'
                                         + std::to_string(nanoseconds);
            if (link->follows(followed)) {
                const bool locked = !attribute->MayAccess(currentLockerID());
                link->shownLocked = locked;
                link->post([generation, locked](AttributeFeed* feed) { feed->finishBinding(generation, true, locked); });
                return;
            }

            // The callback holds no feed and no strong link: a notice after the feed has
            // gone does nothing, and the feed's destructor can end the subscription.
            using LockNotices = Orvanth::DDS_Subscriber<Orvanth::DDS_VoidMessage>;
            auto subscriber = std::make_unique<LockNotices>(
                std::string(topic.in()),
                [notices](const char*) {
                    if (const std::shared_ptr<Link> target = notices.lock())
                        target->requestLockQuery();
                },
                seconds, nanoseconds, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
            // The reader exists before the question below, so no change after it is missed.
            subscriber->waitForInitDone();
            link->noteFollowing(followed);
            // Deleted with the lambda when the feed is gone before it adopts it.
            auto adopted = std::make_shared<std::unique_ptr<Orvanth::DDS_BaseObj>>(std::move(subscriber));
            link->post([adopted](AttributeFeed* feed) { feed->adoptSubscription(adopted->release()); });

            const bool locked = !attribute->MayAccess(currentLockerID());
            link->shownLocked = locked;
            link->post([generation, locked](AttributeFeed* feed) { feed->finishBinding(generation, true, locked); });
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                link->post([generation, reason](AttributeFeed* feed) {
                    feed->finishBinding(generation, false, false);
                    feed->lose(generation, reason);
                });
                return;
            }
            CorbaFailure::logException(attributeFeedSource, "bindAttribute", __LINE__);
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
            link->post([generation](AttributeFeed* feed) { feed->finishBinding(generation, false, false); });
        }
    });
}

void AttributeFeed::bindByName()
{
    m_bindByName = true;
    const quint64 generation = renewGeneration();
    NamingServiceImpl* discovery = GlobalImpl::getInstance()->namingService();
    if (!discovery) {
        qDebug() << "UserInterface - No module discovery to find the engine attribute" << attributeName();
        emit bindingFinished(false, false);
        return;
    }
    followDiscovery(discovery);

    // The module references are copied here, under discovery's own short lock; the
    // questions to the engines go out from the pool.
    QList<QPair<QString, Orvanth::GUI_Able_var>> modules;
    for (const QString& index : discovery->getModuleList()) {
        Orvanth::GUI_Able_var module = discovery->getModule(index);
        if (!CORBA::is_nil(module))
            modules.append({index, module});
    }
    const QByteArray name = attributeName().toUtf8();
    const std::shared_ptr<Link> link = m_link;
    m_link->enqueue([link, modules, name, generation] {
        for (const auto& module : modules) {
            try {
                Orvanth::EngineReadingBase_var reading = module.second->FindAttribute(name.constData());
                if (CORBA::is_nil(reading))
                    continue;
                const QString index = module.first;
                link->post([generation, reading, index](AttributeFeed* feed) {
                    if (generation != feed->m_generation)
                        return;
                    feed->m_moduleIndex = index;
                    feed->m_binder(reading.in());
                });
                return;
            } catch (const CORBA::Exception& exception) {
                qDebug().noquote() << "UserInterface - Exception finding attribute:" << QString::fromUtf8(name)
                                   << "in engine module" << module.first << "-" << CorbaFailure::describe(exception);
            }
        }
        link->post([generation](AttributeFeed* feed) { feed->notFound(generation); });
    });
}

void AttributeFeed::followDiscovery(NamingServiceImpl* discovery)
{
    if (m_followedDiscovery == discovery)
        return;
    if (m_followedDiscovery)
        disconnect(m_followedDiscovery, nullptr, this, nullptr);
    m_followedDiscovery = discovery;
    // Announced from DDS and pool threads: queued into this feed's thread.
    connect(discovery, &NamingServiceImpl::NewGUIAble, this, &AttributeFeed::moduleAnnounced, Qt::QueuedConnection);
    connect(discovery, &NamingServiceImpl::destroy, this, &AttributeFeed::moduleGone, Qt::QueuedConnection);
}

void AttributeFeed::moduleAnnounced()
{
    if (m_lost)
        recover();
    else if (m_bindByName && !hasReading())
        bindByName();
}

void AttributeFeed::moduleGone()
{
    // The attribute may have gone with the module: a failing question finds out.
    if (isBound())
        m_link->requestLockQuery();
}

void AttributeFeed::notFound(quint64 generation)
{
    // While the engine is lost the search goes on at each announcement, silently.
    if (generation == m_generation && !m_lost)
        emit attributeNotFound();
}

void AttributeFeed::loseEngine()
{
    if (!m_lost) {
        m_lost = true;
        m_lostReading = m_link->reading();
    }
    m_link->rebind(renewGeneration(), Orvanth::EngineReadingBase::_nil());
    if (!m_followedDiscovery) {
        if (NamingServiceImpl* discovery = GlobalImpl::getInstance()->namingService())
            followDiscovery(discovery);
    }
}

void AttributeFeed::recover()
{
    if (m_recovering) {
        m_recoverAgain = true;
        return;
    }
    m_recovering = true;
    const quint64 generation = m_generation;
    QList<QPair<QString, Orvanth::GUI_Able_var>> modules;
    if (m_followedDiscovery) {
        for (const QString& index : m_followedDiscovery->getModuleList()) {
            Orvanth::GUI_Able_var module = m_followedDiscovery->getModule(index);
            if (!CORBA::is_nil(module))
                modules.append({index, module});
        }
    }
    const Orvanth::EngineReadingBase_var lostReading = m_lostReading;
    const bool byName = m_bindByName;
    const QByteArray name = attributeName().toUtf8();
    const std::shared_ptr<Link> link = m_link;
    m_link->enqueue([link, modules, lostReading, byName, name, generation] {
        const auto bindTo = [&link, generation](Orvanth::EngineReadingBase_ptr found, const QString& index) {
            Orvanth::EngineReadingBase_var reading = Orvanth::EngineReadingBase::_duplicate(found);
            link->post([generation, reading, index](AttributeFeed* feed) {
                feed->recoveryEnded();
                if (generation != feed->m_generation || !feed->m_lost)
                    return;
                if (!index.isEmpty())
                    feed->m_moduleIndex = index;
                feed->m_binder(reading.in());
            });
        };
        const auto lostAnswers = [&lostReading] {
            ORB_base::setCallTimeout(lostReading.in(), CallTimeout);
            return answers(lostReading.in());
        };
        // A reference given by the host is its first choice; a name looks the name up.
        if (!byName && lostAnswers())
            return bindTo(lostReading.in(), QString());
        for (const auto& module : modules) {
            try {
                Orvanth::EngineReadingBase_var found = module.second->FindAttribute(name.constData());
                ORB_base::setCallTimeout(found.in(), CallTimeout);
                if (answers(found.in()))
                    return bindTo(found.in(), module.first);
            } catch (const CORBA::Exception&) {
                // A module that is still gone; the next one may have the attribute.
            }
        }
        if (byName && lostAnswers())
            return bindTo(lostReading.in(), QString());
        link->post([](AttributeFeed* feed) { feed->recoveryEnded(); });
    });
}

void AttributeFeed::recoveryEnded()
{
    m_recovering = false;
    if (std::exchange(m_recoverAgain, false) && m_lost)
        recover();
}

bool AttributeFeed::hasReading() const
{
    return !CORBA::is_nil(m_link->reading());
}

bool AttributeFeed::isBound() const
{
    return !CORBA::is_nil(m_link->attribute());
}

Orvanth::EngineReadingBase_var AttributeFeed::reading() const
{
    return m_link->reading();
}

void AttributeFeed::adoptSubscription(Orvanth::DDS_BaseObj* subscriber)
{
    m_subscriptions->list.append(
        Orvanth::DDS_Subscriber_Object::make(Orvanth::DDS_Subscriber_Object::VoidKind, subscriber));
}

void AttributeFeed::finishBinding(quint64 generation, bool bound, bool locked)
{
    if (generation != m_generation)
        return;
    if (bound) {
        m_lost = false;
        m_lostReading = Orvanth::EngineReadingBase::_nil();
        // A new reader is matched with the engine's writer a little after it exists, and
        // a lock change in between sends a notice nobody reads: ask once more then.
        QTimer::singleShot(LockSettleDelay, this, [this, generation] {
            if (generation == m_generation)
                m_link->requestLockQuery();
        });
    }
    emit bindingFinished(bound, locked);
}

void AttributeFeed::requestLockQuery()
{
    m_link->requestLockQuery();
}

void AttributeFeed::applyPendingLockAnswer()
{
    quint64 generation = 0;
    bool locked = false;
    if (m_link->takeLockAnswer(&generation, &locked) && generation == m_generation)
        emit lockChanged(locked);
}

void AttributeFeed::lose(quint64 generation, const QString& reason)
{
    if (generation == m_generation)
        emit engineLost(reason);
}

void AttributeFeed::acquireLock()
{
    m_lockAsked = true;
    const std::shared_ptr<Link> link = m_link;
    m_link->enqueue([link] {
        quint64 generation = 0;
        Orvanth::EngineAttribBase_var attribute = link->attribute(&generation);
        if (CORBA::is_nil(attribute)) {
            link->post([](AttributeFeed* feed) { emit feed->lockTaken(false, 0); });
            return;
        }
        try {
            const Orvanth::Lock_Authority authority = currentLockAuthority();
            const CORBA::Long handle = attribute->Lock(authority);
            link->rememberLock(attribute, handle);
            link->shownLocked.reset();
            link->post([handle](AttributeFeed* feed) { emit feed->lockTaken(true, handle); });
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                link->post([generation, reason](AttributeFeed* feed) { feed->lose(generation, reason); });
                return;
            }
            const QString description = CorbaFailure::describe(exception);
            link->post([description](AttributeFeed* feed) { emit feed->lockRefused(description); });
        }
    });
}

void AttributeFeed::releaseLock()
{
    if (!std::exchange(m_lockAsked, false))
        return;
    const std::shared_ptr<Link> link = m_link;
    m_link->enqueue([link] {
        CORBA::Long handle = 0;
        Orvanth::EngineAttribBase_var attribute = link->takeLock(&handle);
        if (CORBA::is_nil(attribute))
            return;
        link->shownLocked.reset();
        try {
            attribute->Unlock(currentLockerID(), handle);
        } catch (...) {
            // A lock the engine no longer knows is given back all the same.
        }
    });
}

void AttributeFeed::checkActionType()
{
    runCall([](const CallHandle& engine) {
        Orvanth::EngineReadingBase_var reading = engine.reading();
        if (CORBA::is_nil(reading))
            return;
        try {
            const Orvanth::TypeInfo_var info = reading->GetTypeInfo();
            if (std::strcmp(info->name.in(), "EngineAttribVoid") == 0) {
                Orvanth::EngineAttribVoid_var action = Orvanth::EngineAttribVoid::_narrow(reading.in());
                if (CORBA::is_nil(action))
                    qDebug() << "Failed to narrow ::Orvanth::EngineAttribVoid";
            } else {
                qDebug().noquote() << QString::asprintf(">>>>>Expected Void type but received: %s (%s)",
                                                        info->name.in(), engine.attributeName().toUtf8().constData());
            }
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                engine.reportDisconnect(reason);
                return;
            }
            CorbaFailure::logException(actionSourceFile, "bindAttribute", __LINE__);
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
        }
    });
}

void AttributeFeed::sendAction()
{
    const CallHandle engine = callHandle();
    QtConcurrent::run(QThreadPool::globalInstance(), [engine] { sendAction(engine); });
}

void AttributeFeed::sendAction(const CallHandle& engine)
{
    const QString name = engine.attributeName();
    Orvanth::EngineAttribVoid_var action;
    try {
        Orvanth::EngineReadingBase_var reading = engine.reading();
        action = Orvanth::EngineAttribVoid::_narrow(reading.in());
    } catch (...) {
        CorbaFailure::logException(actionSourceFile, nullptr, narrowFailureLine);
        return;
    }
    if (CORBA::is_nil(action))
        return;
    ORB_base::setCallTimeout(action, CallTimeout);
    try {
        qDebug() << "UserInterface - PushButton:" << name << "- Sending VOID.";
        action->Set(currentLockerID());
        qDebug() << "UserInterface - PushButton Set returned.";
    } catch (const CORBA::Exception& exception) {
        const QString reason = connectionLoss(exception);
        if (!reason.isEmpty()) {
            engine.reportDisconnect(reason);
            return;
        }
        qDebug() << "UserInterface - VOID:" << name << "threw an exception while sending notify event";
        qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
        engine.reportException(name + QStringLiteral(" threw an exception while sending notify event"));
    } catch (...) {
        qDebug() << "UserInterface - VOID:" << name << "threw an exception while sending notify event";
        engine.reportException(name + QStringLiteral(" threw an exception while sending notify event"));
    }
}

AttributeFeed::CallHandle AttributeFeed::callHandle() const
{
    return CallHandle(m_link, m_generation);
}

void AttributeFeed::runCall(std::function<void(const CallHandle&)> call)
{
    const CallHandle handle = callHandle();
    m_link->enqueue([handle, call] { call(handle); });
}
