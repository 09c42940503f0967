#include "WidgetBaseImpl.h"

#include "CorbaFailure.h"
#include "DDS_Subscriber.h"
#include "DDS_VoidMessage.h"
#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "LockerGateway.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "QTZStatusBar.h"


#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QLabel>
#include <QMouseEvent>
#include <QPair>
#include <QPushButton>
#include <QThreadPool>
#include <QTimer>

#include <deque>
#include <mutex>
#include <optional>

namespace {

const char* const sourceFile = "Components/Source/View/Widgets/WidgetBaseImpl";

// How long after binding the lock state is asked once more.
constexpr std::chrono::milliseconds LockSettleDelay{1000};
// The GUI thread's time given to lock states in one turn of its event loop, in ms: half
// a frame, so a burst never holds it much beyond one.
constexpr qint64 LockSliceMs = 8;

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

// The overlay's looks: with the padlock in its top right corner, and clear.
QString lockedOverlaySheet()
{
    return QStringLiteral("QPushButton#LockOverlay { background-color: rgba(0,0,0,0); background-image: "
                          "url(:/images/lock.png); background-position: top right; background-repeat: no-repeat; "
                          "border: none; font: bold 20px; color: #fff;}");
}

QString plainOverlaySheet()
{
    return QStringLiteral("QPushButton#LockOverlay { background-color: rgba(0,0,0,0); border: none; font: bold 20px; "
                          "color: #fff;}");
}

/// The reason disconnectCORBA() names for a lost connection, or empty for other failures.
QString connectionLoss(const CORBA::Exception& exception)
{
    if (CORBA::TRANSIENT::_downcast(&exception))
        return QStringLiteral("CORBA::TRANSIENT");
    if (CORBA::COMM_FAILURE::_downcast(&exception))
        return QStringLiteral("CORBA::COMM_FAILURE");
    return QString();
}

} // namespace

/**
 * Applies the lock states that engine answers bring, in slices of the GUI thread's time:
 * when an engine changes the locks of hundreds of widgets at once, each slice applies
 * what fits in a few milliseconds and leaves the rest for the next turn of the event
 * loop, so timers and touches come in between. GUI thread only.
 */
class WidgetBaseImpl::LockStateApplier : public QObject
{
public:
    static LockStateApplier* instance()
    {
        static QPointer<LockStateApplier> applier;
        if (!applier)
            applier = new LockStateApplier(QCoreApplication::instance());
        return applier;
    }

    void schedule(WidgetBaseImpl* widget)
    {
        m_waiting.append(widget);
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
            const QPointer<WidgetBaseImpl> widget = m_waiting.takeFirst();
            if (widget)
                widget->applyPendingLockAnswer();
        }
        if (m_waiting.isEmpty())
            m_slice.stop();
    }

    QTimer m_slice;
    QList<QPointer<WidgetBaseImpl>> m_waiting;
};

/**
 * The widget's engine state as the pool and DDS threads see it, and the queue that runs
 * the widget's engine calls one after the other on the global pool. Outlives the widget
 * for as long as work holds it; from then on it posts nothing.
 */
class WidgetBaseImpl::EngineLink : public std::enable_shared_from_this<EngineLink>
{
public:
    explicit EngineLink(WidgetBaseImpl* widget) : m_widget(widget) {}

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

    /// The attribute if the binding is still \a generation, else nil.
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

    /// A new binding epoch with \a reading and no attribute yet.
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

    /// Called by the widget as it goes: nothing is posted to it any more.
    void detach()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_widget = nullptr;
    }

    /// Runs \a call in the GUI thread with the widget, if the widget is still there then.
    template <class Call>
    void post(Call call) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_widget)
            return;
        WidgetBaseImpl* widget = m_widget;
        // Held under the mutex, so the widget cannot be destroyed before the event is
        // posted; a widget destroyed after drops the event with it.
        QMetaObject::invokeMethod(widget, [widget, call] { call(widget); }, Qt::QueuedConnection);
    }

    /// Queues \a job behind the widget's other engine calls.
    void enqueue(std::function<void()> job)
    {
        bool start = false;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_work.push_back(std::move(job));
            start = !m_draining;
            m_draining = true;
        }
        if (start)
            QThreadPool::globalInstance()->start([self = shared_from_this()] { self->drain(); });
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

    /// The answer waiting for the widget, taken; false when there is none.
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


    // The lock state last posted to the widget; touched by queued work only, which runs
    // one job at a time. Forgotten when the widget's own lock calls change its flag.
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
                CorbaFailure::logException(sourceFile, "engine call", __LINE__);
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
                shownLocked = true;
                post([generation, reason](WidgetBaseImpl* widget) { widget->engineLost(generation, reason, true); });
                return;
            }
            CorbaFailure::logException(sourceFile, "MayAccess", __LINE__);
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
        }
    }

    /// Hands the answer to the widget, at most one at a time: while one waits in the GUI
    /// thread, later answers replace its value instead of queueing more, so a busy GUI
    /// thread applies the latest state once instead of every state in between.
    void postLockAnswer(quint64 generation, bool locked)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const bool queued = m_pendingAnswer.has_value();
        m_pendingAnswer = PendingAnswer{generation, locked};
        if (queued || !m_widget)
            return;
        WidgetBaseImpl* widget = m_widget;
        QMetaObject::invokeMethod(
            widget, [widget] { LockStateApplier::instance()->schedule(widget); }, Qt::QueuedConnection);
    }

    struct PendingAnswer
    {
        quint64 generation;
        bool locked;
    };

    mutable std::mutex m_mutex;
    WidgetBaseImpl* m_widget;
    std::optional<PendingAnswer> m_pendingAnswer;
    quint64 m_generation = 0;
    Orvanth::EngineReadingBase_var m_reading;
    Orvanth::EngineAttribBase_var m_attribute;
    QString m_attributeName;
    Orvanth::EngineAttribBase_var m_lockedAttribute;
    CORBA::Long m_lockHandle = 0;
    std::deque<std::function<void()>> m_work;
    bool m_draining = false;
    bool m_queryQueued = false;
};

WidgetBaseImpl::EngineHandle::EngineHandle(std::shared_ptr<EngineLink> link, quint64 generation)
    : m_link(std::move(link)), m_generation(generation)
{
}

Orvanth::EngineReadingBase_var WidgetBaseImpl::EngineHandle::reading() const
{
    return m_link->reading();
}

QString WidgetBaseImpl::EngineHandle::attributeName() const
{
    return m_link->attributeName();
}

void WidgetBaseImpl::EngineHandle::reportDisconnect(const QString& reason) const
{
    const quint64 generation = m_generation;
    m_link->post([generation, reason](WidgetBaseImpl* widget) { widget->engineLost(generation, reason, false); });
}

void WidgetBaseImpl::EngineHandle::reportException(const QString& message) const
{
    m_link->post([message](WidgetBaseImpl* widget) { emit widget->exceptionMessage(message); });
}

WidgetBaseImpl::WidgetBaseImpl(QWidget* parent)
    : QWidget(parent)
    , m_link(std::make_shared<EngineLink>(this))
    , m_lockOverlay(new QPushButton(this))
    , m_attributeName(QStringLiteral("AttributeName"))
{
    m_link->setAttributeName(m_attributeName);
    setFocusPolicy(Qt::NoFocus);

    m_lockOverlay->setObjectName(QStringLiteral("LockOverlay"));
    m_lockOverlay->setFocusPolicy(Qt::NoFocus);
    m_lockOverlay->hide();
    m_lockOverlay->setStyleSheet(plainOverlaySheet());

    connect(this, &WidgetBaseImpl::SetLocked, this, qOverload<bool>(&WidgetBaseImpl::setWidgetLocked));
    connectToStatusBar();
}

WidgetBaseImpl::~WidgetBaseImpl()
{
    releaseLock();
    m_link->detach();
    // Each waits for its callback if one runs; the callbacks reach the link only.
    for (Orvanth::DDS_Subscriber_Object& subscription : m_subscriptions)
        subscription.destroy();
    m_subscriptions.clear();
}

void WidgetBaseImpl::connectToStatusBar()
{
    if (QTZStatusBar* statusBar = GlobalImpl::getInstance()->statusBar())
        connect(this, &WidgetBaseImpl::exceptionMessage, statusBar, QOverload<QString>::of(&QTZStatusBar::addMessage));
}

QString WidgetBaseImpl::getAttributeName() const
{
    return m_attributeName;
}

void WidgetBaseImpl::setAttributeName(const QString& name)
{
    m_attributeName = name;
    m_link->setAttributeName(name);
}

quint64 WidgetBaseImpl::renewGeneration()
{
    return ++m_generation;
}

void WidgetBaseImpl::bindAttribute(Orvanth::EngineReadingBase_ptr reading)
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    setDesktop(registry->desktop());
    const quint64 generation = renewGeneration();
    m_link->rebind(generation, reading);
    if (CORBA::is_nil(reading)) {
        emit bindingFinished(false);
        return;
    }

    const std::int32_t seconds = m_updateDelay / 1000;
    const std::uint32_t nanoseconds = std::uint32_t(m_updateDelay % 1000) * 1000000u;
    Orvanth::EngineReadingBase_var held = Orvanth::EngineReadingBase::_duplicate(reading);
    const std::shared_ptr<EngineLink> link = m_link;
    const std::weak_ptr<EngineLink> notices = m_link;
    m_link->enqueue([link, notices, held, generation, seconds, nanoseconds] {
        try {
            Orvanth::EngineAttribBase_var attribute = Orvanth::EngineAttribBase::_narrow(held.in());
            if (CORBA::is_nil(attribute)) {
                qDebug() << "UserInterface - Not a lockable engine attribute:" << link->attributeName();
                link->post([generation](WidgetBaseImpl* widget) { widget->finishBinding(generation, false, false); });
                return;
            }
            ORB_base::setCallTimeout(attribute, EngineCallTimeout);
            const CORBA::String_var topic = attribute->LockTopic();
            if (!link->adoptAttribute(generation, attribute))
                return;

            // The callback holds no widget and no strong link: a notice after the widget
            // has gone does nothing, and the widget's destructor can end the subscription.
            using LockNotices = Orvanth::DDS_Subscriber<Orvanth::DDS_VoidMessage>;
            auto subscriber = std::make_unique<LockNotices>(
                std::string(topic.in()),
                [notices](const char*) {
                    if (const std::shared_ptr<EngineLink> target = notices.lock())
                        target->requestLockQuery();
                },
                seconds, nanoseconds, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
            // The reader exists before the question below, so no change after it is missed.
            subscriber->waitForInitDone();
            // Deleted with the lambda when the widget is gone before it adopts it.
            auto adopted = std::make_shared<std::unique_ptr<Orvanth::DDS_BaseObj>>(std::move(subscriber));
            link->post([adopted](WidgetBaseImpl* widget) { widget->adoptSubscription(adopted->release()); });

            const bool locked = !attribute->MayAccess(currentLockerID());
            link->shownLocked = locked;
            link->post([generation, locked](WidgetBaseImpl* widget) { widget->finishBinding(generation, true, locked); });
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                link->post([generation, reason](WidgetBaseImpl* widget) {
                    widget->finishBinding(generation, false, false);
                    widget->engineLost(generation, reason, false);
                });
                return;
            }
            CorbaFailure::logException(sourceFile, "bindAttribute", __LINE__);
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
            link->post([generation](WidgetBaseImpl* widget) { widget->finishBinding(generation, false, false); });
        }
    });
}

void WidgetBaseImpl::bindAttributeByName()
{
    m_bindByName = true;
    const quint64 generation = renewGeneration();
    NamingServiceImpl* discovery = GlobalImpl::getInstance()->namingService();
    if (!discovery) {
        qDebug() << "UserInterface - No module discovery to find the engine attribute" << m_attributeName;
        emit bindingFinished(false);
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
    const QByteArray name = m_attributeName.toUtf8();
    const std::shared_ptr<EngineLink> link = m_link;
    m_link->enqueue([link, modules, name, generation] {
        for (const auto& module : modules) {
            try {
                Orvanth::EngineReadingBase_var reading = module.second->FindAttribute(name.constData());
                if (CORBA::is_nil(reading))
                    continue;
                link->post([generation, reading](WidgetBaseImpl* widget) {
                    if (generation == widget->m_generation)
                        widget->bindAttribute(reading.in());
                });
                return;
            } catch (const CORBA::Exception& exception) {
                qDebug().noquote() << "UserInterface - Exception finding attribute:" << QString::fromUtf8(name)
                                   << "in engine module" << module.first << "-" << CorbaFailure::describe(exception);
            }
        }
        link->post([generation](WidgetBaseImpl* widget) { widget->attributeNotFound(generation); });
    });
}

void WidgetBaseImpl::followDiscovery(NamingServiceImpl* discovery)
{
    if (m_followedDiscovery == discovery)
        return;
    if (m_followedDiscovery)
        disconnect(m_followedDiscovery, nullptr, this, nullptr);
    m_followedDiscovery = discovery;
    // Announced from DDS and pool threads: queued into this widget's thread.
    connect(discovery, &NamingServiceImpl::NewGUIAble, this, [this] {
        if (m_bindByName && !hasReading())
            bindAttributeByName();
    }, Qt::QueuedConnection);
}

void WidgetBaseImpl::attributeNotFound(quint64 generation)
{
    if (generation != m_generation)
        return;
    qDebug() << "UserInterface - No engine module has the attribute" << m_attributeName
             << "@" << GlobalImpl::getParentWindowName(this);
    emit bindingFinished(false);
}

bool WidgetBaseImpl::hasReading() const
{
    return !CORBA::is_nil(m_link->reading());
}

bool WidgetBaseImpl::isBound() const
{
    return !CORBA::is_nil(m_link->attribute());
}

Orvanth::EngineReadingBase_var WidgetBaseImpl::reading() const
{
    return m_link->reading();
}

void WidgetBaseImpl::adoptSubscription(Orvanth::DDS_BaseObj* subscriber)
{
    m_subscriptions.append(Orvanth::DDS_Subscriber_Object::make(Orvanth::DDS_Subscriber_Object::VoidKind, subscriber));
}

void WidgetBaseImpl::finishBinding(quint64 generation, bool bound, bool locked)
{
    if (generation != m_generation)
        return;
    if (bound) {
        setWidgetLocked(locked);
        // A new reader is matched with the engine's writer a little after it exists, and
        // a lock change in between sends a notice nobody reads: ask once more then.
        QTimer::singleShot(LockSettleDelay, this, [this, generation] {
            if (generation == m_generation)
                m_link->requestLockQuery();
        });
    }
    emit bindingFinished(bound);
}

void WidgetBaseImpl::applyPendingLockAnswer()
{
    quint64 generation = 0;
    bool locked = false;
    if (m_link->takeLockAnswer(&generation, &locked))
        applyLockAnswer(generation, locked);
}

void WidgetBaseImpl::applyLockAnswer(quint64 generation, bool locked)
{
    if (generation != m_generation)
        return;
    if (!m_suppressReceiveDebug)
        qDebug() << "UserInterface - Lock notice for" << m_attributeName << (locked ? "locked" : "free");
    m_locked = locked;
    emit SetLocked(locked);
}

void WidgetBaseImpl::engineLost(quint64 generation, const QString& reason, bool showLocked)
{
    if (generation != m_generation)
        return;
    disconnectCORBA(reason);
    if (showLocked) {
        m_locked = true;
        emit SetLocked(true);
    }
}

void WidgetBaseImpl::disconnectCORBA(const QString& reason)
{
    m_link->rebind(renewGeneration(), Orvanth::EngineReadingBase::_nil());
    const QString window = GlobalImpl::getParentWindowName(this);
    qDebug() << "UserInterface -" << metaObject()->className() << reason << "error, disconnecting" << m_attributeName
             << "from engine:" << window;
    emit exceptionMessage(reason + QLatin1Char(' ') + m_attributeName + QStringLiteral(", disconnecting from engine: ")
                          + window);
}

void WidgetBaseImpl::setWidgetLocked(bool isLocked)
{
    if (isLocked) {
        m_lockOverlay->setMinimumSize(size());
        m_lockOverlay->resize(size());
        m_lockOverlay->show();
        setLockImageVisible(true);
        m_lockOverlay->raise();
    } else {
        m_lockOverlay->hide();
        setLockImageVisible(false);
    }
}

void WidgetBaseImpl::setLockImageVisible(const bool& visible)
{
    // Each new sheet is parsed and polished again, the padlock image loaded with it, which
    // costs more than everything else a lock change does. A hidden overlay shows nothing,
    // so it keeps the sheet it has until it is shown again, often with the same one.
    if (!visible && m_lockOverlay->isHidden())
        return;
    const QString sheet = visible ? lockedOverlaySheet() : plainOverlaySheet();
    if (m_lockOverlay->styleSheet() != sheet)
        m_lockOverlay->setStyleSheet(sheet);
}

void WidgetBaseImpl::mouseReleaseEvent(QMouseEvent* event)
{
    if (rect().contains(event->pos())) {
        if (event->modifiers() & Qt::ControlModifier) {
            setSuppressDebug(!m_suppressReceiveDebug);
            emit suppressDebug(m_suppressReceiveDebug);
            qDebug() << (m_suppressReceiveDebug ? "UserInterface - Debug is now OFF for:"
                                                : "UserInterface - Debug is now ON for:")
                     << m_attributeName << "@" << GlobalImpl::getParentWindowName(this);
        } else {
            acquireLock();
        }
    }
    QWidget::mouseReleaseEvent(event);
}

void WidgetBaseImpl::acquireLock()
{
    if (!isBound()) {
        offerEntry();
        return;
    }
    const std::shared_ptr<EngineLink> link = m_link;
    m_link->enqueue([link] {
        quint64 generation = 0;
        Orvanth::EngineAttribBase_var attribute = link->attribute(&generation);
        if (CORBA::is_nil(attribute)) {
            // Unbound meanwhile: the entry is offered as for an unbound widget.
            link->post([](WidgetBaseImpl* widget) { widget->lockTaken(false, 0); });
            return;
        }
        try {
            const Orvanth::Lock_Authority authority = currentLockAuthority();
            const CORBA::Long handle = attribute->Lock(authority);
            link->rememberLock(attribute, handle);
            link->shownLocked.reset();
            link->post([handle](WidgetBaseImpl* widget) { widget->lockTaken(true, handle); });
        } catch (const CORBA::Exception& exception) {
            const QString reason = connectionLoss(exception);
            if (!reason.isEmpty()) {
                link->post([generation, reason](WidgetBaseImpl* widget) { widget->engineLost(generation, reason, false); });
                return;
            }
            const QString description = CorbaFailure::describe(exception);
            link->post([description](WidgetBaseImpl* widget) { widget->lockRefused(description); });
        }
    });
}

void WidgetBaseImpl::lockTaken(bool taken, CORBA::Long handle)
{
    if (taken) {
        m_lockHandle = handle;
        m_locked = true;
    }
    offerEntry();
}

void WidgetBaseImpl::lockRefused(const QString& reason)
{
    qDebug() << "UserInterface - Unable to obtain Lock for" << m_attributeName;
    qDebug().noquote() << "UserInterface -" << reason;
    m_locked = false;
}

void WidgetBaseImpl::offerEntry()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->setEntryMechanism(this);
    if (registry->entryMechanism() == this)
        emit DisplayEntryMechanism();
    else
        releaseLock();
}

void WidgetBaseImpl::releaseLock()
{
    if (isBound())
        m_locked = false;
    const std::shared_ptr<EngineLink> link = m_link;
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
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->releaseEntryMechanism(this);
}

WidgetBaseImpl::EngineHandle WidgetBaseImpl::engineHandle() const
{
    return EngineHandle(m_link, m_generation);
}

void WidgetBaseImpl::runEngineCall(std::function<void(const EngineHandle&)> call)
{
    const EngineHandle handle = engineHandle();
    m_link->enqueue([handle, call] { call(handle); });
}

void WidgetBaseImpl::resizeEvent(QResizeEvent* event)
{
    m_lockOverlay->setMinimumSize(event->size());
    m_lockOverlay->resize(event->size());
    QWidget::resizeEvent(event);
}

void WidgetBaseImpl::setLabelWidget(QLabel* label)
{
    m_label = label;
    if (m_label)
        m_label->setObjectName(QStringLiteral("Label"));
}

void WidgetBaseImpl::setLabel(const QString& label)
{
    if (m_label)
        m_label->setText(QCoreApplication::translate("WidgetBaseImpl", label.toUtf8().constData()));
}

QString WidgetBaseImpl::getLabel() const
{
    return m_label ? m_label->text() : QString();
}

void WidgetBaseImpl::setUpdateDelay(int milliseconds)
{
    m_updateDelay = qMax(0, milliseconds);
}

int WidgetBaseImpl::getUpdateDelay() const
{
    return m_updateDelay;
}

void WidgetBaseImpl::setDesktop(QWidget* desktop)
{
    m_desktop = desktop;
}

void WidgetBaseImpl::setSuppressDebug(bool suppress)
{
    m_suppressReceiveDebug = suppress;
}

void WidgetBaseImpl::raise()
{
}

void WidgetBaseImpl::changeSize(const QString& /*size*/)
{
}

void WidgetBaseImpl::retranslate()
{
}
