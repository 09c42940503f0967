#include "GUIManagerImpl.h"

#include "ApplicationOptions.h"
#include "ContainerImpl.h"
#include "CorbaFailure.h"
#include "CorbaText.h"
#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "OpenDialogRecord.h"
#include "QTZStatusBar.h"
#include "SystemModule.h"

#include <QDebug>
#include <QMetaObject>
#include <QResizeEvent>
#include <QThread>
#include <QWidget>

#include <chrono>
#include <thread>

namespace Lumaro {
namespace gui {

namespace {

const char guiManagerSource[] = "Components/Source/Controller/GUIManagerImpl";

// Without a desktop to measure, positions beyond this are off any screen.
constexpr int maxCoordinate = 32767;

// A remote text as it goes into a log line: long texts are shortened, so that one bad
// request cannot flood the log.
QString forLog(const QString& text)
{
    constexpr int shown = 80;
    return text.size() <= shown ? text : text.left(shown) + QStringLiteral("...");
}

bool isSizeName(const QString& size)
{
    return size == QLatin1String("Min") || size == QLatin1String("Max") || size == QLatin1String("Thumb");
}

QObject* screenStateManager()
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    SystemModule* systemModule = registry ? registry->systemModule() : nullptr;
    return systemModule ? systemModule->getModule(QStringLiteral("ScreenStateManager")) : nullptr;
}

// The desktop's size in one word, so that an ORB thread reads width and height together.
qint64 packedSize(const QSize& size)
{
    return (qint64(qMax(0, size.width())) << 32) | qint64(qMax(0, size.height()));
}

} // namespace

GUIManagerImpl::GUIManagerImpl(QObject* parent)
    : QObject(parent)
{
    // Screens travel to the receiver through queued connections.
    qRegisterMetaType<QWidget*>("QWidget*");
    qRegisterMetaType<ContainerImpl*>("ContainerImpl*");
}

GUIManagerImpl::~GUIManagerImpl() = default;

void GUIManagerImpl::initialize()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    if (!registry)
        return;
    if (QTZStatusBar* statusBar = registry->statusBar())
        connect(statusBar, &QTZStatusBar::sendAlert, this, &GUIManagerImpl::showAlert);
    if (DesktopImpl* desktop = registry->desktop()) {
        desktop->installEventFilter(this);
        m_desktopSize.store(packedSize(desktop->size()), std::memory_order_release);
    }

    if (QWidget* dcs = registry->systemModule()->getSystemScreen(QStringLiteral("DCS")))
        connect(this, &GUIManagerImpl::showDCS, dcs, &QWidget::show);
    else if (ApplicationOptions::isBenchtop())
        qDebug() << "UserInterface - ERROR - DCS Module not found.";
}

QWidget* GUIManagerImpl::GetScreen(const QString& name)
{
    // From the registry's published table: a screen request never waits for the GUI
    // thread, which may itself be inside a call to the engine that is asking.
    return GlobalImpl::screenFromAnyThread(name);
}

void GUIManagerImpl::shutdown()
{
    if (m_shutDown.exchange(true, std::memory_order_acq_rel))
        return;
    qDebug() << "UserInterface - GUIManager - shutting down, closing every dialog";
    // A call waiting on a dialog returns once the receiver has closed it.
    emit closeDialog(QString());
}

bool GUIManagerImpl::eventFilter(QObject* watched, QEvent* event)
{
    // Installed on the desktop alone.
    if (event->type() == QEvent::Resize)
        m_desktopSize.store(packedSize(static_cast<QResizeEvent*>(event)->size()), std::memory_order_release);
    return QObject::eventFilter(watched, event);
}

QSize GUIManagerImpl::desktopArea() const
{
    const qint64 packed = m_desktopSize.load(std::memory_order_acquire);
    if (packed < 0)
        return QSize(maxCoordinate + 1, maxCoordinate + 1);
    return QSize(int(packed >> 32), int(packed & 0xffffffff));
}

template <class Work>
bool GUIManagerImpl::inGuiThread(Work work)
{
    if (QThread::currentThread() == thread()) {
        work();
        return true;
    }
    // Once the service ends the GUI thread may stop taking events for good.
    if (isShutDown())
        return false;
    return QMetaObject::invokeMethod(this, work, Qt::BlockingQueuedConnection);
}

QString GUIManagerImpl::incoming(const char* text, const char* operation)
{
    QString converted = CorbaText::fromCorba(text);
    if (converted.size() > MaxTextLength) {
        int length = MaxTextLength;
        // Never keep half of a surrogate pair.
        if (converted.at(length - 1).isHighSurrogate())
            --length;
        qDebug().noquote() << "UserInterface - GUIManager -" << operation << "- text of" << converted.size()
                           << "characters cut to" << length;
        converted.truncate(length);
    }
    return converted;
}

bool GUIManagerImpl::serving(const char* operation) const
{
    if (!isShutDown())
        return true;
    qDebug().noquote() << "UserInterface - GUIManager - shutting down, not serving" << operation;
    return false;
}

QWidget* GUIManagerImpl::screenFor(const QString& name, const char* operation)
{
    QWidget* screen = GetScreen(name);
    if (!screen)
        qDebug().noquote() << "UserInterface - GUIManager -" << operation << "- no screen" << ('"' + forLog(name) + '"');
    return screen;
}

QString GUIManagerImpl::responseData() const
{
    std::lock_guard<std::mutex> lock(m_responseMutex);
    return m_responseData;
}

QString GUIManagerImpl::responsePath() const
{
    std::lock_guard<std::mutex> lock(m_responseMutex);
    return m_responsePath;
}

QString GUIManagerImpl::responseFilename() const
{
    std::lock_guard<std::mutex> lock(m_responseMutex);
    return m_responseFilename;
}

void GUIManagerImpl::getResponse(const long& code)
{
    m_responseCode.store(CORBA::Long(code), std::memory_order_release);
    // After the answer: a waiting thread that sees the flag reads the new answer.
    m_responseReceived.store(true, std::memory_order_release);
}

void GUIManagerImpl::getResponse(const long& code, const QString& data)
{
    {
        std::lock_guard<std::mutex> lock(m_responseMutex);
        m_responseData = data;
    }
    getResponse(code);
}

void GUIManagerImpl::getResponse(const long& code, const QString& path, const QString& filename)
{
    {
        std::lock_guard<std::mutex> lock(m_responseMutex);
        m_responsePath = path;
        m_responseFilename = filename;
    }
    getResponse(code);
}

void GUIManagerImpl::waitForResponse()
{
    try {
        while (!m_responseReceived.load(std::memory_order_acquire) && !isShutDown())
            std::this_thread::sleep_until(std::chrono::steady_clock::now() + std::chrono::milliseconds(100));
    } catch (...) {
        qDebug().noquote() << "UserInterface -" << guiManagerSource << "waitForResponse" << __LINE__;
    }
}

CORBA::Long GUIManagerImpl::DisplayAlert(const char* msg)
{
    try {
        if (serving("DisplayAlert")) {
            const QString text = incoming(msg, "DisplayAlert");
            // Cleared before the alert goes out, so that a quick answer is not missed.
            m_responseReceived.store(false, std::memory_order_release);
            emit showAlert(text, false);
            waitForResponse();
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayAlert", __LINE__);
    }
    return responseCode();
}

CORBA::Long GUIManagerImpl::DisplayDialog(const char* title, const char* msg, const char* button,
                                          CORBA::Boolean wait)
{
    try {
        if (serving("DisplayDialog")) {
            const QString titleText = incoming(title, "DisplayDialog");
            const QString message = incoming(msg, "DisplayDialog");
            const QString buttons = incoming(button, "DisplayDialog");
            if (wait) {
                emit showSimpleDialogBlocking(titleText, message, buttons, false);
            } else {
                emit showSimpleDialog(titleText, message, buttons, false, false);
                noteQueuedRequest();
            }
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayDialog", __LINE__);
    }
    return responseCode();
}

CORBA::Long GUIManagerImpl::DisplayDialogWithParams(const char* title, const char* msg, const StringSeq& params,
                                                    const char* button, CORBA::Boolean wait)
{
    try {
        if (serving("DisplayDialogWithParams")) {
            const QString titleText = incoming(title, "DisplayDialogWithParams");
            const QString message = incoming(msg, "DisplayDialogWithParams");
            const QString buttons = incoming(button, "DisplayDialogWithParams");
            CORBA::ULong count = params.length();
            if (count > CORBA::ULong(MaxParameters)) {
                qDebug() << "UserInterface - GUIManager - DisplayDialogWithParams -" << count
                         << "parameters cut to" << MaxParameters;
                count = MaxParameters;
            }
            QStringList parameters;
            for (CORBA::ULong i = 0; i < count; ++i)
                parameters.append(incoming(params[i], "DisplayDialogWithParams"));
            if (wait) {
                emit showDialogWithParamsBlocking(titleText, message, parameters, buttons, false);
            } else {
                emit showDialogWithParams(titleText, message, parameters, buttons, false, false);
                noteQueuedRequest();
            }
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayDialogWithParams", __LINE__);
    }
    return responseCode();
}

CORBA::Long GUIManagerImpl::DisplayImage(const char* title, const char* msg, const char* imageFile,
                                         const char* button, CORBA::Boolean wait)
{
    try {
        if (serving("DisplayImage")) {
            const QString titleText = incoming(title, "DisplayImage");
            const QString message = incoming(msg, "DisplayImage");
            const QString image = incoming(imageFile, "DisplayImage");
            const QString buttons = incoming(button, "DisplayImage");
            if (wait) {
                emit showImageDialogBlocking(titleText, message, image, buttons, false);
            } else {
                emit showImageDialog(titleText, message, image, buttons, false, false);
                noteQueuedRequest();
            }
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayImage", __LINE__);
    }
    return responseCode();
}

CORBA::Long GUIManagerImpl::DisplayDataEntry(const char* title, const char* msg, const char* button,
                                             CORBA::Boolean wait, CORBA::String_out data)
{
    CORBA::String_var answer = CORBA::string_dup("");
    try {
        if (serving("DisplayDataEntry")) {
            const QString titleText = incoming(title, "DisplayDataEntry");
            const QString message = incoming(msg, "DisplayDataEntry");
            const QString buttons = incoming(button, "DisplayDataEntry");
            // The entry field offers the previous answer.
            const QString offered = responseData();
            if (wait) {
                emit showDataEntryDialogBlocking(titleText, message, buttons, offered, false);
            } else {
                emit showDataEntryDialog(titleText, message, buttons, offered, false, false);
                noteQueuedRequest();
            }
        }
        answer = CorbaText::toCorba(responseData());
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayDataEntry", __LINE__);
    }
    data = answer._retn();
    return responseCode();
}

void GUIManagerImpl::CloseDialog(const char* dialog)
{
    try {
        if (serving("CloseDialog")) {
            emit closeDialog(incoming(dialog, "CloseDialog"));
            noteQueuedRequest();
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "CloseDialog", __LINE__);
    }
}

void GUIManagerImpl::CloseAllDialogs()
{
    try {
        if (serving("CloseAllDialogs")) {
            emit closeDialog(QString());
            noteQueuedRequest();
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "CloseAllDialogs", __LINE__);
    }
}

void GUIManagerImpl::setDialogRecord(std::shared_ptr<const OpenDialogRecord> record)
{
    std::lock_guard<std::mutex> lock(m_recordMutex);
    m_dialogRecord = std::move(record);
}

void GUIManagerImpl::noteQueuedRequest()
{
    // Posted to the GUI thread behind the request itself, so it runs once the receiver
    // has handled the request.
    m_queuedRequests.fetch_add(1, std::memory_order_acq_rel);
    QMetaObject::invokeMethod(
        this, [this] { m_queuedRequests.fetch_sub(1, std::memory_order_acq_rel); }, Qt::QueuedConnection);
}

CORBA::Boolean GUIManagerImpl::IsDialogActive(const char* dialog)
{
    try {
        if (!serving("IsDialogActive"))
            return false;
        std::shared_ptr<const OpenDialogRecord> record;
        {
            std::lock_guard<std::mutex> lock(m_recordMutex);
            record = m_dialogRecord;
        }
        // The record is current only once the receiver has taken every dialog request
        // sent before; until then the question queues behind them.
        if (record && m_queuedRequests.load(std::memory_order_acquire) == 0)
            return record->isOpen(incoming(dialog, "IsDialogActive"));
        emit isDialogActive(incoming(dialog, "IsDialogActive"));
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "IsDialogActive", __LINE__);
    }
    return responseCode() != 0;
}

void GUIManagerImpl::OpenDCS()
{
    try {
        if (serving("OpenDCS"))
            emit showDCS();
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "OpenDCS", __LINE__);
    }
}

CORBA::Long GUIManagerImpl::DisplayFileSelectDialog(const char* title, const char* rootpath, CORBA::String_out path,
                                                    CORBA::String_out filename)
{
    CORBA::String_var pathAnswer = CORBA::string_dup("");
    CORBA::String_var filenameAnswer = CORBA::string_dup("");
    try {
        if (serving("DisplayFileSelectDialog")) {
            const QString titleText = incoming(title, "DisplayFileSelectDialog");
            const QString root = incoming(rootpath, "DisplayFileSelectDialog");
            // The previous selection is offered.
            emit showFileSelectDialog(titleText, root, responsePath(), responseFilename());
        }
        pathAnswer = CorbaText::toCorba(responsePath());
        filenameAnswer = CorbaText::toCorba(responseFilename());
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "DisplayFileSelectDialog", __LINE__);
    }
    path = pathAnswer._retn();
    filename = filenameAnswer._retn();
    return responseCode();
}

StringSeq* GUIManagerImpl::GetScreenList()
{
    StringSeq_var list = new StringSeq;
    try {
        if (serving("GetScreenList")) {
            // Read beside the registry: the list is answered even while the GUI is busy.
            const QList<QString> names = GlobalImpl::screenNamesFromAnyThread();
            list->length(CORBA::ULong(names.size()));
            for (int i = 0; i < names.size(); ++i)
                list[CORBA::ULong(i)] = CorbaText::toCorba(names.at(i));
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "GetScreenList", __LINE__);
    }
    return list._retn();
}

void GUIManagerImpl::ShowScreen(const char* screen)
{
    try {
        if (!serving("ShowScreen"))
            return;
        const QStringList parts = incoming(screen, "ShowScreen").split(QLatin1Char(','));
        if (parts.isEmpty())
            return;
        QWidget* widget = screenFor(parts.first(), "ShowScreen");
        if (widget)
            emit showScreen(widget);
        if (parts.size() >= 2)
            emit showScreenExtra(widget, parts.at(1));
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "ShowScreen", __LINE__);
    }
}

void GUIManagerImpl::HideScreen(const char* screen)
{
    try {
        if (!serving("HideScreen"))
            return;
        const QStringList parts = incoming(screen, "HideScreen").split(QLatin1Char(','));
        if (parts.isEmpty())
            return;
        QWidget* widget = screenFor(parts.first(), "HideScreen");
        if (!widget)
            return;
        if (parts.size() == 1)
            emit hideScreen(widget);
        else
            emit hideScreenExtra(widget, parts.at(1));
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "HideScreen", __LINE__);
    }
}

void GUIManagerImpl::MoveScreen(const char* screen, CORBA::Long x, CORBA::Long y)
{
    try {
        if (!serving("MoveScreen"))
            return;
        const QString name = incoming(screen, "MoveScreen");
        QWidget* widget = GetScreen(name);
        const QSize area = desktopArea();
        if (!widget) {
            qDebug().noquote() << "UserInterface - GUIManager - MoveScreen - no screen" << ('"' + forLog(name) + '"');
            return;
        }
        // A window placed off the desktop could not be reached by touch any more.
        if (x < 0 || y < 0 || x >= area.width() || y >= area.height()) {
            qDebug().noquote() << "UserInterface - GUIManager - MoveScreen - position outside the desktop"
                               << ('"' + forLog(name) + '"') << x << y;
            return;
        }
        emit moveScreen(widget, int(x), int(y));
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "MoveScreen", __LINE__);
    }
}

void GUIManagerImpl::ChangeSize(const char* screen, const char* size)
{
    try {
        if (!serving("ChangeSize"))
            return;
        const QString name = incoming(screen, "ChangeSize");
        const QString sizeName = incoming(size, "ChangeSize");
        if (!isSizeName(sizeName)) {
            qDebug().noquote() << "UserInterface - GUIManager - ChangeSize - unknown size"
                               << ('"' + forLog(sizeName) + '"') << "for" << ('"' + forLog(name) + '"');
            return;
        }
        // Told apart by the class the registry recorded: the widget is not touched here.
        auto* container = static_cast<ContainerImpl*>(GlobalImpl::screenFromAnyThread(name, ContainerImpl::staticMetaObject));
        QWidget* widget = container ? container : GetScreen(name);
        if (!container) {
            qDebug().noquote() << "UserInterface - GUIManager - ChangeSize -" << (widget ? "not a container" : "no screen")
                               << ('"' + forLog(name) + '"');
            return;
        }
        emit setScreenState(container, sizeName);
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "ChangeSize", __LINE__);
    }
}

void GUIManagerImpl::RestoreState(const char* data)
{
    try {
        if (!serving("RestoreState"))
            return;
        // The store judges the text: it is the one place that reads layouts.
        const QString layout = CorbaText::fromCorba(data);
        bool found = false;
        bool called = false;
        // The layout is applied in the GUI thread, where the widgets it moves live.
        inGuiThread([&] {
            if (QObject* manager = screenStateManager()) {
                found = true;
                called = QMetaObject::invokeMethod(manager, "recall", Qt::DirectConnection, Q_ARG(QString, layout));
            }
        });
        if (!found)
            qDebug() << "UserInterface - GUIManager - RestoreState - no \"ScreenStateManager\" module, nothing restored";
        else if (!called)
            qDebug() << "UserInterface - GUIManager - RestoreState - the \"ScreenStateManager\" module has no recall(QString)";
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "RestoreState", __LINE__);
    }
}

char* GUIManagerImpl::SaveState()
{
    QString layout;
    try {
        if (serving("SaveState")) {
            bool found = false;
            bool called = false;
            inGuiThread([&] {
                if (QObject* manager = screenStateManager()) {
                    found = true;
                    called = QMetaObject::invokeMethod(manager, "store", Qt::DirectConnection,
                                                       Q_RETURN_ARG(QString, layout));
                }
            });
            if (!found)
                qDebug() << "UserInterface - GUIManager - SaveState - no \"ScreenStateManager\" module, the layout is empty";
            else if (!called)
                qDebug() << "UserInterface - GUIManager - SaveState - the \"ScreenStateManager\" module has no store()";
        }
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "SaveState", __LINE__);
    }
    return CorbaText::toCorba(layout);
}

void GUIManagerImpl::SetMenuBarVisible(CORBA::Boolean visible)
{
    try {
        if (serving("SetMenuBarVisible"))
            emit showMenuBar(visible);
    } catch (...) {
        CorbaFailure::logException(guiManagerSource, "SetMenuBarVisible", __LINE__);
    }
}

void GUIManagerImpl::_add_ref()
{
    m_references.fetch_add(1, std::memory_order_relaxed);
}

void GUIManagerImpl::_remove_ref()
{
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    // The last reference may go on an ORB thread, when the last call ends after the
    // servant was deactivated; a QObject is deleted in its own thread.
    if (QThread::currentThread() == thread())
        delete this;
    else
        deleteLater();
}

CORBA::ULong GUIManagerImpl::_refcount_value()
{
    return m_references.load(std::memory_order_relaxed);
}

} // namespace gui
} // namespace Lumaro
