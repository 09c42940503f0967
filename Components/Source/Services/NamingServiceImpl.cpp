#include "NamingServiceImpl.h"

#include "ApplicationOptions.h"
#include "ApplicationOrb.h"
#include "CorbaFailure.h"
#include "DDS_Subscriber.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <QDebug>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <stdexcept>

namespace {

const char namingServiceSource[] = "Components/Source/Services/NamingServiceImpl";

// A broadcast may carry anything; a log line shows at most this much of it.
constexpr std::size_t ShownBytes = 64;

QString shown(const std::string& text)
{
    if (text.size() <= ShownBytes)
        return QString::fromUtf8(text.data(), int(text.size()));
    return QString::fromUtf8(text.data(), int(ShownBytes)) + QStringLiteral("... (%1 bytes)").arg(text.size());
}

// A module index is written in decimal digits only; nine of them always fit an int.
bool parseModuleIndex(const std::string& text, int* index)
{
    if (text.empty() || text.size() > 9
        || !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    *index = std::stoi(text);
    return true;
}

// The index as the module list keys it ("04" and "4" are one module); false when
// \a idx is no module index.
bool moduleKey(const QString& idx, QString* key)
{
    int index = 0;
    if (!parseModuleIndex(idx.toStdString(), &index))
        return false;
    *key = QString::number(index);
    return true;
}

// What the naming service or an engine said when a call failed.
QString reasonOf(const CORBA::Exception& exception)
{
    if (CORBA::SystemException::_downcast(&exception))
        return CorbaFailure::describe(exception);
    return CorbaFailure::info(exception);
}

} // namespace

NamingServiceImpl::NamingServiceImpl(QObject* parent)
    : QObject(parent)
    , m_retryTimer(new QTimer(this))
    , m_pingTimer(new QTimer(this))
{
    m_retryTimer->setSingleShot(true);
    m_retryTimer->setInterval(RetryInterval);
    connect(m_retryTimer, &QTimer::timeout, this, &NamingServiceImpl::retryAfterOutage);
    connect(m_pingTimer, &QTimer::timeout, this, [this] {
        if (!m_pings.isRunning())
            m_pings = QtConcurrent::run([this] { pingModules(); });
    });

    qDebug() << "UserInterface - NamingService::NamingService -" << ApplicationOptions::orbInitRef().left(255);
    try {
        ApplicationOrb::start();
        m_orbWrapper = std::make_unique<ORB_wrapper_base>();
    } catch (const CORBA::Exception& exception) {
        qDebug().noquote() << "UserInterface - Failed to start the ORB:" << CorbaFailure::describe(exception);
        return;
    }
    qDebug() << "UserInterface - Narrowing Naming Context";
    try {
        withNamingClient([](ORB_wrapper_base& client) {
            CosNaming::NamingContext_var root = client.rootContext();
            return true;
        });
    } catch (const CORBA::Exception& exception) {
        // Looked up again on first use: the naming service may come up after the GUI.
        qDebug().noquote() << "UserInterface - Failed to resolve initial references" << reasonOf(exception);
    }
}

NamingServiceImpl::~NamingServiceImpl()
{
    // First, as its callbacks use this object; it waits for one still running.
    m_subscriber.reset();
    m_retryTimer->stop();
    m_pingTimer->stop();
    m_recovery.waitForFinished();
    m_pings.waitForFinished();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_moduleList.clear();
    }
    m_orbWrapper.reset();
}

template <class Call>
auto NamingServiceImpl::withNamingClient(Call call) -> decltype(call(std::declval<ORB_wrapper_base&>()))
{
    std::lock_guard<std::mutex> lock(m_namingMutex);
    if (!m_orbWrapper)
        throw Orvanth::Connection_errors::Not_Connected("the process ORB did not start");
    return call(*m_orbWrapper);
}

void NamingServiceImpl::initialize()
{
    qDebug() << "UserInterface - NamingService::initialize";
    try {
        QList<int> indices = fetchGUIableList().values();
        std::sort(indices.begin(), indices.end());
        for (int index : indices)
            fetchGUIAble(QString::number(index));
    } catch (const CORBA::Exception& exception) {
        qDebug().noquote() << "UserInterface - Failed to search Naming Service" << reasonOf(exception);
    } catch (const std::exception& exception) {
        qDebug().noquote() << "UserInterface - Failed to search Naming Service" << exception.what();
    }
    qDebug() << "UserInterface - End NamingService Search";
}

void NamingServiceImpl::postInit()
{
    if (m_subscriber)
        return;
    m_subscriber = std::make_unique<Orvanth::DDS_Subscriber<std::string>>(
        Orvanth::Names::GuiAbleTopic,
        [this](const char* topic, std::string payload) { dds_callback(topic, std::move(payload)); }, 0, 0,
        eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
}

bool NamingServiceImpl::isLoaded(const QString& idx) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_moduleList.contains(idx);
}

void NamingServiceImpl::processGUIAble(const QString& idx)
{
    QString key;
    if (!moduleKey(idx, &key)) {
        qDebug() << "UserInterface - Failed to load -" << idx << "(not a module index)";
        return;
    }
    if (isLoaded(key))
        return;
    bool added = false;
    try {
        added = loadModule(key);
    } catch (...) {
        qDebug() << "UserInterface: Fetch GUIAble Crashed";
    }
    // A broadcast and the host may load the same module at once: only the call that
    // stored it announces it.
    if (!added)
        return;
    qDebug() << "UserInterface - ModuleList contains" << key;
    try {
        emit NewGUIAble(key);
    } catch (...) {
        qDebug() << "UserInterface: emit new guiable crashed";
    }
}

void NamingServiceImpl::processNextGUIAble()
{
    int next = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        next = ++m_nextIndex;
    }
    processGUIAble(QString::number(next));
}

void NamingServiceImpl::processReadyGUIAble()
{
    QList<int> unloaded = fetchUnLoadedGUIableList();
    std::sort(unloaded.begin(), unloaded.end());
    if (!unloaded.isEmpty())
        qDebug() << "UserInterface - Loading new GUI_ABLE List:" << unloaded;
    for (int index : unloaded) {
        const QString idx = QString::number(index);
        fetchGUIAble(idx);
        emit NewGUIAble(idx);
    }
}

void NamingServiceImpl::fetchGUIAble(const QString& idx)
{
    QString key;
    if (!moduleKey(idx, &key)) {
        qDebug() << "UserInterface - Failed to load -" << idx << "(not a module index)";
        return;
    }
    loadModule(key);
}

bool NamingServiceImpl::loadModule(const QString& idx)
{
    if (isLoaded(idx))
        return false;
    const std::string path = std::string(Orvanth::Names::GuiAbleContext) + "/" + idx.toStdString();
    QString failure;
    try {
        CORBA::Object_var object =
            withNamingClient([&path](ORB_wrapper_base& client) { return client.ResolveName(path); });
        if (CORBA::is_nil(object)) {
            failure = QStringLiteral("nothing bound");
        } else {
            qDebug() << "UserInterface - Fetching GUI_ABLE:" << idx;
            // Narrowing may ask the object itself, and a hung engine must not hold the
            // caller (the GUI thread at start-up) for longer than a ping.
            ORB_base::setCallTimeout(object, PingTimeout);
            Orvanth::GUI_Able_var module = Orvanth::GUI_Able::_narrow(object);
            if (CORBA::is_nil(module)) {
                failure = QStringLiteral("not a GUI module");
            } else {
                ORB_base::setCallTimeout(module, PingTimeout);
                CORBA::String_var answer = module->Ping("PingTest");
                std::lock_guard<std::mutex> lock(m_mutex);
                if (m_moduleList.contains(idx))
                    return false;
                m_moduleList.insert(idx, module);
                return true;
            }
        }
    } catch (const Orvanth::Connection_errors::Not_Connected& exception) {
        noteNamingOutage(CorbaFailure::info(exception));
        failure = reasonOf(exception);
    } catch (const CORBA::Exception& exception) {
        failure = reasonOf(exception);
    }
    QDebug line = qDebug();
    line << "UserInterface - Failed to load -" << idx;
    line.noquote() << "(" + failure + ")";
    return false;
}

std::vector<std::string> NamingServiceImpl::listModuleNames()
{
    try {
        return withNamingClient(
            [](ORB_wrapper_base& client) { return client.FindChildContext(Orvanth::Names::GuiAbleContext); });
    } catch (const Orvanth::Connection_errors::Not_Connected& exception) {
        noteNamingOutage(CorbaFailure::info(exception));
        throw;
    }
}

QSet<int> NamingServiceImpl::fetchGUIableList()
{
    QSet<int> indices;
    for (const std::string& name : listModuleNames()) {
        int index = 0;
        if (!parseModuleIndex(name, &index))
            throw std::invalid_argument("not a module index under " + std::string(Orvanth::Names::GuiAbleContext)
                                        + ": \"" + shown(name).toStdString() + "\"");
        indices.insert(index);
    }
    return indices;
}

QList<int> NamingServiceImpl::fetchUnLoadedGUIableList()
{
    QSet<int> loaded;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto it = m_moduleList.cbegin(); it != m_moduleList.cend(); ++it)
            loaded.insert(it.key().toInt());
    }
    QSet<int> listed;
    try {
        listed = fetchGUIableList();
    } catch (const Orvanth::Connection_errors::Not_Connected& exception) {
        qDebug().noquote() << "UserInterface - Failed to search Naming Service" << CorbaFailure::info(exception);
        return {};
    }
    const int listedCount = listed.size();
    listed.subtract(loaded);
    if (!listed.isEmpty())
        emit guiableListChanged(listedCount);
    return listed.values();
}

QStringList NamingServiceImpl::pingModules()
{
    QList<QPair<QString, Orvanth::GUI_Able_var>> modules;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto it = m_moduleList.cbegin(); it != m_moduleList.cend(); ++it)
            modules.append({it.key(), it.value()});
    }
    QStringList dead;
    for (const auto& module : modules) {
        try {
            CORBA::String_var answer = module.second->Ping("PingTest");
            continue;
        } catch (const CORBA::Exception& exception) {
            bool dropped = false;
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                // Only the reference pinged: the module may have been loaded anew meanwhile.
                const auto it = m_moduleList.find(module.first);
                if (it != m_moduleList.end() && it.value().in() == module.second.in()) {
                    m_moduleList.erase(it);
                    dropped = true;
                }
            }
            if (!dropped)
                continue;
            QDebug line = qDebug();
            line << "UserInterface - GUI_ABLE not answering, dropped:" << module.first;
            line.noquote() << CorbaFailure::describe(exception);
            dead.append(module.first);
            emit destroy(module.first);
        }
    }
    return dead;
}

void NamingServiceImpl::setPingInterval(int milliseconds)
{
    if (milliseconds > 0)
        m_pingTimer->start(milliseconds);
    else
        m_pingTimer->stop();
}

Orvanth::GUI_Able_var NamingServiceImpl::getModule(const QString& idx) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_moduleList.constFind(idx);
    // Copying the _var duplicates the reference.
    return it == m_moduleList.cend() ? Orvanth::GUI_Able_var() : it.value();
}

QList<QString> NamingServiceImpl::getModuleList() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_moduleList.keys();
}

int NamingServiceImpl::guiAbleLoaded() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_moduleList.size();
}

QList<Orvanth::EngineReadingBase_var> NamingServiceImpl::findAttribute(const QString& name)
{
    // The _vars own the references, unlike a list of plain pointers the caller would
    // have to release: a list that goes releases them.
    QList<Orvanth::EngineReadingBase_var> found;
    QList<QPair<QString, Orvanth::GUI_Able_var>> modules;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto it = m_moduleList.cbegin(); it != m_moduleList.cend(); ++it)
            modules.append({it.key(), it.value()});
    }
    const QByteArray attribute = name.toLatin1();
    for (const auto& module : modules) {
        try {
            Orvanth::EngineReadingBase_var reading = module.second->FindAttribute(attribute.constData());
            if (!CORBA::is_nil(reading))
                found.append(reading);
            continue;
        } catch (const CORBA::Exception& exception) {
            qDebug().noquote() << "UserInterface -" << CorbaFailure::describe(exception);
        } catch (const std::exception& exception) {
            qDebug().noquote() << "UserInterface -" << exception.what();
        } catch (...) {
            qDebug() << "UserInterface - need to separate catch-all:" << namingServiceSource << "findAttribute" << __LINE__;
        }
        qDebug() << "UserInterface - Exception finding attribute:" << name;
        qDebug() << "UserInterface - Offending engine #:" << module.first;
    }
    return found;
}

CORBA::Object_ptr NamingServiceImpl::resolve(const CosNaming::Name& name)
{
    try {
        return withNamingClient([&name](ORB_wrapper_base& client) {
            CosNaming::NamingContext_var root = client.rootContext();
            return root->resolve(name);
        });
    } catch (const CosNaming::NamingContext::NotFound&) {
    } catch (const CosNaming::NamingContext::InvalidName&) {
    } catch (const Orvanth::Connection_errors::Not_Connected& exception) {
        noteNamingOutage(CorbaFailure::info(exception));
    } catch (const CORBA::Exception& exception) {
        qDebug().noquote() << "UserInterface - Failed to resolve a name:" << CorbaFailure::describe(exception);
    }
    return CORBA::Object::_nil();
}

void NamingServiceImpl::dds_callback(const char* topic, std::string payload)
{
    try {
        qDebug() << "UserInterface - >>>>> DDS Broadcast @" << (topic ? topic : "") << "-" << shown(payload);
        if (payload.empty()) {
            qDebug() << "UserInterface - Ignoring an empty GUI_ABLE broadcast";
            return;
        }
        const std::size_t comma = payload.find(',');
        if (comma == std::string::npos) {
            qDebug() << "UserInterface - Ignoring a GUI_ABLE broadcast without a comma";
            return;
        }
        const std::string operation = payload.substr(0, comma);
        const std::size_t end = payload.find(',', comma + 1);
        const std::string indexText =
            payload.substr(comma + 1, end == std::string::npos ? std::string::npos : end - comma - 1);
        if (operation != "create" && operation != "destroy") {
            qDebug() << "UserInterface - Ignoring a GUI_ABLE broadcast with an unknown operation:" << shown(operation);
            return;
        }
        int index = 0;
        if (!parseModuleIndex(indexText, &index)) {
            qDebug() << "UserInterface - Ignoring a GUI_ABLE broadcast with a bad module index:" << shown(indexText);
            return;
        }
        const QString idx = QString::number(index);
        if (operation == "create") {
            dropIfBoundAnew(idx);
            processGUIAble(idx);
            return;
        }
        qDebug() << "UserInterface - Destroying GUI_Able" << idx;
        {
            // Dropped before the announcement, so that a receiver no longer finds it.
            std::lock_guard<std::mutex> lock(m_mutex);
            m_moduleList.remove(idx);
        }
        emit destroy(idx);
    } catch (...) {
        // Nothing may escape into the DDS layer's thread.
        CorbaFailure::logException(namingServiceSource, "dds_callback", __LINE__);
    }
}

void NamingServiceImpl::noteNamingOutage(const QString& reason)
{
    if (!m_namingOutage.exchange(true))
        qDebug().noquote() << "UserInterface - Naming service unreachable, retrying every"
                           << RetryInterval.count() << "ms:" << reason;
    // The timer belongs to this object's thread; from another thread this is queued.
    QMetaObject::invokeMethod(this, [this] {
        if (!m_retryTimer->isActive())
            m_retryTimer->start();
    });
}

void NamingServiceImpl::retryAfterOutage()
{
    if (m_recovery.isRunning())
        m_retryTimer->start();
    else
        m_recovery = QtConcurrent::run([this] { recoverModules(); });
}

void NamingServiceImpl::recoverModules()
{
    std::vector<std::string> names;
    try {
        names = listModuleNames();
    } catch (const CORBA::Exception&) {
        // Still unreachable: listModuleNames() has armed the next attempt.
        return;
    }
    if (m_namingOutage.exchange(false))
        qDebug() << "UserInterface - Naming service answers again";
    QList<int> indices;
    for (const std::string& name : names) {
        int index = 0;
        if (parseModuleIndex(name, &index))
            indices.append(index);
        else
            qDebug() << "UserInterface - Not a module index under Lumaro/local/GUI_ABLE:" << shown(name);
    }
    std::sort(indices.begin(), indices.end());
    for (int index : indices) {
        dropIfBoundAnew(QString::number(index));
        processGUIAble(QString::number(index));
    }
}

void NamingServiceImpl::dropIfBoundAnew(const QString& idx)
{
    const Orvanth::GUI_Able_var held = getModule(idx);
    if (CORBA::is_nil(held))
        return;
    const std::string path = std::string(Orvanth::Names::GuiAbleContext) + "/" + idx.toStdString();
    try {
        CORBA::Object_var bound =
            withNamingClient([&path](ORB_wrapper_base& client) { return client.ResolveName(path); });
        // Compares the references here, without asking either object.
        if (CORBA::is_nil(bound) || bound->_is_equivalent(held.in()))
            return;
    } catch (const CORBA::Exception&) {
        // Loading the module again meets the same failure and tells it.
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto it = m_moduleList.find(idx);
        if (it == m_moduleList.end() || it.value().in() != held.in())
            return;
        m_moduleList.erase(it);
    }
    qDebug() << "UserInterface - GUI_ABLE bound anew, reloading:" << idx;
    emit destroy(idx);
}
