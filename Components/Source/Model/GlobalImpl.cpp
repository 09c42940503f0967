#include "GlobalImpl.h"

#include "ApplicationOptions.h"
#include "ApplicationOrb.h"
#include "Locker.h"
#include "ProcessManager.h"
#include "QTZMessageOutputControl.h"
#include "SystemModule.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLabel>
#include <QScriptEngine>
#include <QThreadPool>

GlobalImpl* GlobalImpl::single = nullptr;
bool GlobalImpl::instanceFlag = false;

namespace {

const char* const windowMarker = "TopContainerObject";

// What an exception says beyond its name: the minor code of a system exception, the
// message of the engine libraries' exceptions.
QString exceptionInfo(const CORBA::Exception& exception)
{
    if (const auto* system = CORBA::SystemException::_downcast(&exception)) {
        const char* minorName = system->NP_minorString();
        const QString minor = QStringLiteral("minor %1").arg(system->minor());
        return minorName ? minor + QStringLiteral(" (%1)").arg(QLatin1String(minorName)) : minor;
    }
    if (const auto* generic = Orvanth::Runtime_errors::Generic::_downcast(&exception))
        return QString::fromUtf8(generic->message);
    if (const auto* notConnected = Orvanth::Connection_errors::Not_Connected::_downcast(&exception))
        return QString::fromUtf8(notConnected->message);
    return QString::fromLatin1(exception._rep_id());
}

} // namespace

GlobalImpl* GlobalImpl::getInstance()
{
    if (instanceFlag)
        return single;

    QCoreApplication* application = QCoreApplication::instance();
    GlobalImpl* found = nullptr;
    if (application) {
        // Matched by class name, not by cast: a plug-in with its own copy of this
        // library's static data has its own meta-object for the same class.
        QObject* named = application->findChild<QObject*>(QStringLiteral("GlobalImpl"));
        if (named && named->inherits("GlobalImpl"))
            found = static_cast<GlobalImpl*>(named);
    } else {
        qDebug() << "UserInterface - GlobalImpl::getInstance called before the application object exists";
    }
    single = found ? found : new GlobalImpl(application);
    instanceFlag = true;
    return single;
}

GlobalImpl::GlobalImpl(QObject* parent)
    : QObject(parent)
{
    m_systemModule = new SystemModule(this);
    m_messageOutputControl = new QTZMessageOutputControl(this);
    m_scriptEngine = std::make_unique<QScriptEngine>();

    qDebug() << "UserInterface - Global::Global";
    setObjectName(QStringLiteral("GlobalImpl"));

    QThreadPool* pool = QThreadPool::globalInstance();
    qDebug() << "UserInterface - ThreadPool count before setting:" << pool->maxThreadCount();
    pool->setMaxThreadCount(8);
    qDebug() << "UserInterface - ThreadPool count after setting:" << pool->maxThreadCount();

    m_systemModule->setModule(QStringLiteral("ProcessManager"), new ProcessManager(this));

    computeGridPoints();
}

GlobalImpl::~GlobalImpl()
{
    if (single == this) {
        instanceFlag = false;
        single = nullptr;
    }
    while (!m_subscriberThreads.isEmpty()) {
        const QPointer<QThread> thread = m_subscriberThreads.takeFirst();
        if (thread)
            thread->exit(0);
    }
    m_scriptEngine.reset();
    m_locker.reset();
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
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            gridPoints.append(QPoint(column * resolution.width() / columns, row * resolution.height() / rows));
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

void GlobalImpl::addScreen(const QString& name, QWidget* widget)
{
    m_screens.insert(name, widget);
}

QWidget* GlobalImpl::getScreen(const QString& name)
{
    return m_screens[name];
}

bool GlobalImpl::removeScreen(const QString& name)
{
    return m_screens.remove(name) > 0;
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

    try {
        if (window->inherits("WindowDrawer")) {
            // A drawer shows its title as the rotated caption on its handle.
            const QList<QLabel*> labels = window->findChildren<QLabel*>();
            for (QLabel* label : labels) {
                if (label->inherits("RotatableLabel")) {
                    name = label->text();
                    break;
                }
            }
        } else {
            name = window->windowTitle();
        }
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
    std::lock_guard<std::mutex> guard(m_lockerMutex);
    if (m_locker)
        return;
    try {
        ApplicationOrb::start();
        m_locker = std::make_unique<Orvanth::Locker>();
    } catch (...) {
        qDebug() << "Failed to instantiate UI Locker";
    }
}

Orvanth::Locker* GlobalImpl::getLocker()
{
    verifyLockerCreated();
    return m_locker.get();
}

void GlobalImpl::setLocker(Orvanth::Locker* locker)
{
    // The previous locker stays with whoever handed it in.
    (void)m_locker.release();
    m_locker.reset(locker);
}

Orvanth::Lock_Authority GlobalImpl::getLockAuthority()
{
    verifyLockerCreated();
    Orvanth::Lock_Authority authority;
    if (!m_locker)
        return authority;
    try {
        Orvanth::Lock_Authority_var current = m_locker->LockAuthority();
        authority = current.in();
    } catch (const CORBA::TRANSIENT&) {
        qDebug() << "UserInterface - Failed to get locking authority";
    }
    return authority;
}

Orvanth::LockerID GlobalImpl::getLockerID()
{
    verifyLockerCreated();
    Orvanth::LockerID id{};
    if (!m_locker)
        return id;
    try {
        id = m_locker->MyLockerID();
    } catch (const CORBA::TRANSIENT&) {
        qDebug() << "UserInterface - Failed to acquire lock id, CORBA::TRANSIENT when requesting Orvanth::Locker::MyLockerID";
    } catch (const CORBA::Exception& exception) {
        // The position is part of the line's fixed text, which log readers search for.
        qDebug().noquote() << "UserInterface -" << "Components/Source/Model/GlobalImpl:285";
        const QString name = QString::fromLatin1(exception._name());
        qDebug().noquote() << QStringLiteral("               ") + name + QLatin1Char(' ') + exceptionInfo(exception);
    }
    return id;
}
