#include "GlobalImpl.h"

#include "ApplicationOptions.h"
#include "LanguageSwitch.h"
#include "LockerGateway.h"
#include "ProcessManager.h"
#include "QTZMessageOutputControl.h"
#include "SystemModule.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDeadlineTimer>
#include <QScriptEngine>
#include <QThreadPool>

#include <mutex>

std::atomic<GlobalImpl*> GlobalImpl::single{nullptr};

namespace {

const char* const windowMarker = "TopContainerObject";

// How long the registry's destruction waits, in all, for the subscriber threads it was
// handed; a thread that ignores both requests to stop must not hang the shutdown.
constexpr int subscriberStopTimeoutMs = 3000;

// Guards publishing and withdrawing the instance, so that currentLockerGateway() never
// reads a registry whose destruction has gone past its first step.
std::mutex instanceMutex;
// Serialises the search for a registry and the building of one.
std::mutex creationMutex;

} // namespace

GlobalImpl* GlobalImpl::getInstance()
{
    if (GlobalImpl* instance = single.load(std::memory_order_acquire))
        return instance;
    return findOrBuild(true);
}

GlobalImpl* GlobalImpl::existingInstance()
{
    if (GlobalImpl* instance = single.load(std::memory_order_acquire))
        return instance;
    return findOrBuild(false);
}

std::shared_ptr<LockerGateway> GlobalImpl::currentLockerGateway()
{
    std::lock_guard<std::mutex> guard(instanceMutex);
    GlobalImpl* instance = single.load(std::memory_order_relaxed);
    return instance ? instance->m_lockerGateway : nullptr;
}

GlobalImpl* GlobalImpl::findOrBuild(bool build)
{
    QCoreApplication* application = QCoreApplication::instance();
    // The application object's children belong to the GUI thread, and a registry built
    // in another thread would have its parent there.
    if (application && QThread::currentThread() != application->thread()) {
        if (build)
            qDebug() << "UserInterface - GlobalImpl::getInstance called outside the GUI thread while no registry exists; none is built";
        return nullptr;
    }

    std::lock_guard<std::mutex> creation(creationMutex);
    if (GlobalImpl* instance = single.load(std::memory_order_acquire))
        return instance;
    GlobalImpl* found = nullptr;
    if (application) {
        // Matched by class name, not by cast: a plug-in with its own copy of this
        // library's static data has its own meta-object for the same class.
        QObject* named = application->findChild<QObject*>(QStringLiteral("GlobalImpl"));
        if (named && named->inherits("GlobalImpl"))
            found = static_cast<GlobalImpl*>(named);
    } else if (build) {
        qDebug() << "UserInterface - GlobalImpl::getInstance called before the application object exists";
    }
    if (!found && build)
        found = new GlobalImpl(application);
    return found ? publish(found) : nullptr;
}

GlobalImpl* GlobalImpl::publish(GlobalImpl* registry)
{
    std::lock_guard<std::mutex> guard(instanceMutex);
    GlobalImpl* current = single.load(std::memory_order_relaxed);
    if (!current) {
        single.store(registry, std::memory_order_release);
        current = registry;
    }
    return current;
}

GlobalImpl::GlobalImpl(QObject* parent)
    : QObject(parent)
    , m_lockerGateway(std::make_shared<LockerGateway>())
{
    auto* systemModule = new SystemModule(this);
    m_systemModule.set(systemModule);
    m_messageOutputControl = new QTZMessageOutputControl(this);

    qDebug() << "UserInterface - Global::Global";
    setObjectName(QStringLiteral("GlobalImpl"));

    QThreadPool* pool = QThreadPool::globalInstance();
    qDebug() << "UserInterface - ThreadPool count before setting:" << pool->maxThreadCount();
    pool->setMaxThreadCount(8);
    qDebug() << "UserInterface - ThreadPool count after setting:" << pool->maxThreadCount();

    systemModule->setModule(QStringLiteral("ProcessManager"), new ProcessManager(this));
    m_languageSwitch = new LanguageSwitch(this);

    computeGridPoints();

    // Built by the host under the application object, it is the instance from now on,
    // also for threads that cannot search for it.
    if (parent && parent == QCoreApplication::instance())
        publish(this);
}

namespace {

// The screen table as remote callers read it, on ORB threads that must not wait for the
// GUI thread: each name with its widget and the widget's class, so that a caller can tell
// a container without touching a widget that may be going. Static, so that a reader never
// holds on to a registry being deleted.
struct PublishedScreen
{
    QWidget* widget = nullptr;
    const QMetaObject* type = nullptr;
};
std::mutex screenNamesMutex;
QHash<QString, PublishedScreen> screenNames;

} // namespace

GlobalImpl::~GlobalImpl()
{
    {
        std::lock_guard<std::mutex> guard(screenNamesMutex);
        screenNames.clear();
    }
    {
        std::lock_guard<std::mutex> guard(instanceMutex);
        GlobalImpl* expected = this;
        single.compare_exchange_strong(expected, nullptr, std::memory_order_acq_rel);
    }
    stopSubscriberThreads();
    m_scriptEngine.reset();
    m_lockerGateway->close();
}

QScriptEngine* GlobalImpl::scriptEngine() const
{
    // Made when first asked for: most hosts never script, and an engine is over 2 MB of a
    // host's start. Whichever thread asks first, the engine lives in the registry's.
    std::call_once(m_scriptEngineMade, [this] {
        m_scriptEngine = std::make_unique<QScriptEngine>();
        m_scriptEngine->moveToThread(thread());
    });
    return m_scriptEngine.get();
}

void GlobalImpl::stopSubscriberThreads()
{
    // All are asked first, so that they wind down side by side.
    QList<QPointer<QThread>> asked;
    while (!m_subscriberThreads.isEmpty()) {
        const QPointer<QThread> thread = m_subscriberThreads.takeFirst();
        if (!thread)
            continue;
        thread->requestInterruption();
        thread->exit(0);
        asked.append(thread);
    }
    const QDeadlineTimer deadline(subscriberStopTimeoutMs);
    for (const QPointer<QThread>& thread : asked) {
        if (!thread || thread == QThread::currentThread())
            continue;
        if (!thread->wait(deadline))
            qDebug() << "UserInterface - GlobalImpl - subscriber thread did not stop in time:" << thread->objectName();
    }
}

void GlobalImpl::computeGridPoints()
{
    const QString resolutionText = ApplicationOptions::text(ApplicationOptions::ResolutionOption);
    const QString gridText = ApplicationOptions::text(ApplicationOptions::GridOption);
    if (resolutionText.isEmpty() || gridText.isEmpty())
        return;
    const QSize resolution = ApplicationOptions::resolution();
    const QSize grid = ApplicationOptions::grid();
    if (!resolution.isValid() || !grid.isValid()) {
        qDebug() << "UserInterface - GlobalImpl - no snap points, malformed option -res or -grid" << resolutionText
                 << gridText;
        return;
    }
    const int rows = grid.height();
    const int columns = grid.width();
    // A cell must stay big enough to drop a container on; a grid of thousands of rows
    // would also take seconds and gigabytes to lay out.
    if (rows > MaxGridSide || columns > MaxGridSide) {
        qDebug() << "UserInterface - GlobalImpl - no snap points, option -grid has more than" << MaxGridSide
                 << "rows or columns:" << gridText;
        return;
    }
    // In 64 bits: a wide resolution times a column index leaves the range of int.
    for (qint64 row = 0; row < rows; ++row) {
        for (qint64 column = 0; column < columns; ++column)
            gridPoints.append(QPoint(int(column * resolution.width() / columns), int(row * resolution.height() / rows)));
    }
}

void GlobalImpl::setEntryMechanism(QWidget* widget)
{
    if (!m_entryMechanism)
        m_entryMechanism = widget;
}

void GlobalImpl::releaseEntryMechanism(QWidget* widget)
{
    if (m_entryMechanism == widget)
        m_entryMechanism = nullptr;
}

void GlobalImpl::publishScreenNames(const QObject* going)
{
    QHash<QString, PublishedScreen> published;
    published.reserve(m_screens.size());
    for (auto entry = m_screens.cbegin(); entry != m_screens.cend(); ++entry) {
        QWidget* widget = entry.value().data();
        if (widget == going)
            widget = nullptr;
        published.insert(entry.key(), {widget, widget ? widget->metaObject() : nullptr});
    }
    std::lock_guard<std::mutex> guard(screenNamesMutex);
    screenNames.swap(published);
}

void GlobalImpl::screenDestroyed(QObject* screen)
{
    // A widget says so before its guards are cleared.
    publishScreenNames(screen);
}

QList<QString> GlobalImpl::screenNamesFromAnyThread()
{
    std::lock_guard<std::mutex> guard(screenNamesMutex);
    return screenNames.keys();
}

QWidget* GlobalImpl::screenFromAnyThread(const QString& name, const QMetaObject& type)
{
    std::lock_guard<std::mutex> guard(screenNamesMutex);
    const PublishedScreen screen = screenNames.value(name);
    return screen.type && screen.type->inherits(&type) ? screen.widget : nullptr;
}

void GlobalImpl::addScreen(const QString& name, QWidget* widget)
{
    m_screens.insert(name, widget);
    // A deleted screen leaves the published table before its memory is freed.
    if (widget)
        connect(widget, &QObject::destroyed, this, &GlobalImpl::screenDestroyed, Qt::UniqueConnection);
    publishScreenNames();
}

QWidget* GlobalImpl::getScreen(const QString& name)
{
    const auto found = m_screens.constFind(name);
    if (found != m_screens.constEnd())
        return *found;
    m_screens.insert(name, nullptr);
    publishScreenNames();
    return nullptr;
}

QWidget* GlobalImpl::findScreen(const QString& name) const
{
    return m_screens.value(name);
}

bool GlobalImpl::isScreen(const QWidget* widget) const
{
    if (!widget)
        return false;
    for (const QPointer<QWidget>& screen : m_screens) {
        if (screen == widget)
            return true;
    }
    return false;
}

bool GlobalImpl::removeScreen(const QString& name)
{
    const bool removed = m_screens.remove(name) > 0;
    publishScreenNames();
    return removed;
}

QList<QString> GlobalImpl::getScreenList() const
{
    return m_screens.keys();
}

void GlobalImpl::swapMenuItems(QWidget* registered, QWidget* replacement)
{
    for (auto entry = m_screens.begin(); entry != m_screens.end(); ++entry) {
        if (entry.value() == registered && registered) {
            entry.value() = replacement;
            if (replacement)
                connect(replacement, &QObject::destroyed, this, &GlobalImpl::screenDestroyed, Qt::UniqueConnection);
            publishScreenNames();
            return;
        }
    }
}

QWidget* GlobalImpl::getParentWindow(QWidget* widget)
{
    for (QWidget* ancestor = widget ? widget->parentWidget() : nullptr; ancestor; ancestor = ancestor->parentWidget()) {
        if (ancestor->objectName() == QLatin1String(windowMarker))
            return ancestor;
    }
    return nullptr;
}

QString GlobalImpl::getParentWindowName(QWidget* widget)
{
    QString name;
    QWidget* window = widget;
    while (window && window->objectName() != QLatin1String(windowMarker))
        window = window->parentWidget();
    if (!window)
        return name;

    // A window that shows a caption of its own (a container's title without its instance
    // number, a drawer's rotated caption) says so by the property; read by name, as a
    // plug-in may carry its own copy of the windows' meta-objects.
    try {
        const QVariant caption = window->property("windowCaption");
        name = caption.isValid() ? caption.toString() : window->windowTitle();
    } catch (...) {
        qDebug() << "UserInterface -ERROR-" << "Components/Source/Model/GlobalImpl" << "getParentWindowName" << 385;
    }
    return name;
}

void GlobalImpl::storeSubscriberThread(QThread* thread)
{
    m_subscriberThreads.append(thread);
}

void GlobalImpl::verifyLockerCreated()
{
    m_lockerGateway->verifyLockerCreated();
}

Orvanth::Locker* GlobalImpl::getLocker()
{
    return m_lockerGateway->getLocker();
}

void GlobalImpl::setLocker(Orvanth::Locker* locker)
{
    m_lockerGateway->setLocker(locker);
}

Orvanth::Lock_Authority GlobalImpl::getLockAuthority()
{
    return m_lockerGateway->getLockAuthority();
}

Orvanth::LockerID GlobalImpl::getLockerID()
{
    return m_lockerGateway->getLockerID();
}
