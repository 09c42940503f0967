#include "ScreenStateManager.h"

#include "ContainerBase.h"
#include "ContainerImpl.h"
#include "DesktopManagerImpl.h"
#include "FSContainer.h"
#include "GlobalImpl.h"
#include "SystemModule.h"

#include <QDebug>
#include <QDomDocument>
#include <QMap>
#include <QMetaMethod>
#include <QPointer>
#include <QThread>
#include <QWidget>
#include <QXmlStreamReader>

namespace {

const char rootName[] = "ui_screen_states";
const char saveProperty[] = "screen_manager_save";
// Names longer than this are no screen names; they are logged shortened.
constexpr int maxNameLength = 256;

QString forLog(const QString& text)
{
    constexpr int shown = 200;
    return text.size() <= shown ? text : text.left(shown) + QStringLiteral("...");
}

// The containers below the main window in child order: a later one is higher in the stack.
QList<ContainerBase*> stackingList()
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    QWidget* mainWindow =
        registry ? registry->systemModule()->getSystemScreen(QStringLiteral("MainWindow")) : nullptr;
    return mainWindow ? mainWindow->findChildren<ContainerBase*>() : QList<ContainerBase*>();
}

bool isClass(const QObject* object, const char* name)
{
    return qstrcmp(object->metaObject()->className(), name) == 0;
}

// Part \a index of \a parts as a number; 0 when it is missing or no number.
int numberAt(const QStringList& parts, int index)
{
    return index < parts.size() ? parts.at(index).trimmed().toInt() : 0;
}

bool isStateName(const QString& state)
{
    return state == QLatin1String("Min") || state == QLatin1String("Max") || state == QLatin1String("Thumb");
}

} // namespace

ScreenStateManager::ScreenStateManager(QObject* parent)
    : QObject(parent)
{
    setObjectName(QStringLiteral("ScreenStateManager"));
    qRegisterMetaType<QWidget*>("QWidget*");
    connect(this, &ScreenStateManager::updatePosition, this, &ScreenStateManager::move);
}

template <class Work>
void ScreenStateManager::inOwnThread(Work work)
{
    if (QThread::currentThread() == thread())
        work();
    else
        QMetaObject::invokeMethod(this, work, Qt::BlockingQueuedConnection);
}

QWidget* ScreenStateManager::registeredScreen(const QString& name)
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    return registry ? registry->findScreen(name) : nullptr;
}

QString ScreenStateManager::store()
{
    QString text;
    inOwnThread([&] {
        const QList<ContainerBase*> stack = stackingList();
        QDomDocument document;
        QDomElement root = document.createElement(QLatin1String(rootName));
        GlobalImpl* registry = GlobalImpl::existingInstance();
        const QList<QString> names = registry ? registry->getScreenList() : QList<QString>();
        for (const QString& name : names) {
            auto* container = qobject_cast<ContainerBase*>(registry->getScreen(name));
            if (!container)
                continue;
            const QVariant save = container->property(saveProperty);
            if ((save.isValid() && !save.toBool()) || !container->isVisible())
                continue;

            QString state;
            QRect minGeometry;
            if (isClass(container, "ContainerImpl")) {
                auto* standard = static_cast<ContainerImpl*>(container);
                state = standard->state();
                minGeometry = standard->minGeometry();
            } else if (isClass(container, "FSContainer")) {
                state = QStringLiteral("FullScreen");
            } else {
                state = QStringLiteral("UnregisteredClass: ") + QLatin1String(container->metaObject()->className());
            }
            QDomElement screen = document.createElement(QStringLiteral("screen"));
            screen.setAttribute(QStringLiteral("name"), name);
            screen.setAttribute(QStringLiteral("pos"), QStringLiteral("%1,%2").arg(container->x()).arg(container->y()));
            screen.setAttribute(QStringLiteral("state"), state);
            screen.setAttribute(QStringLiteral("min_geometry"), QStringLiteral("%1,%2,%3,%4")
                                                                    .arg(minGeometry.x())
                                                                    .arg(minGeometry.y())
                                                                    .arg(minGeometry.width())
                                                                    .arg(minGeometry.height()));
            screen.setAttribute(QStringLiteral("visible"), container->isVisible() ? 1 : 0);
            screen.setAttribute(QStringLiteral("z_index"), stack.indexOf(container));
            root.appendChild(screen);
        }
        document.appendChild(root);
        text = document.toString(1);
    });
    return text;
}

QVector<QXmlStreamAttributes> ScreenStateManager::readLayout(const QString& data, QString* problem)
{
    QVector<QXmlStreamAttributes> screens;
    if (data.size() > MaxLayoutLength) {
        *problem = QStringLiteral("%1 characters, more than %2").arg(data.size()).arg(MaxLayoutLength);
        return screens;
    }
    // A stream reader keeps no tree, so the depth is bounded before it could hurt, and
    // document type declarations are refused, and with them every entity that could expand.
    QXmlStreamReader reader(data);
    int depth = 0;
    bool rootSeen = false;
    while (!reader.atEnd() && problem->isEmpty()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            *problem = QStringLiteral("a document type declaration");
            break;
        case QXmlStreamReader::EntityReference:
            *problem = QStringLiteral("an entity reference");
            break;
        case QXmlStreamReader::StartElement:
            if (depth == 0 && reader.name() != QLatin1String(rootName))
                *problem = QStringLiteral("the root element is \"%1\", not \"%2\"")
                               .arg(forLog(reader.name().toString()), QLatin1String(rootName));
            else if (++depth > MaxDepth)
                *problem = QStringLiteral("elements nested deeper than %1").arg(MaxDepth);
            else if (depth == 2 && reader.name() == QLatin1String("screen"))
                screens.append(reader.attributes());
            rootSeen = true;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    if (problem->isEmpty() && reader.hasError())
        *problem = QStringLiteral("line %1, column %2: %3")
                       .arg(reader.lineNumber())
                       .arg(reader.columnNumber())
                       .arg(reader.errorString());
    if (problem->isEmpty() && !rootSeen)
        *problem = QStringLiteral("no root element");
    if (!problem->isEmpty())
        screens.clear();
    return screens;
}

void ScreenStateManager::recall(QString data)
{
    QString problem;
    const QVector<QXmlStreamAttributes> screens = readLayout(data, &problem);
    if (!problem.isEmpty()) {
        qDebug() << "UserInterface - Error processing Recall data:";
        qDebug().noquote() << ('"' + forLog(data) + '"') << "-" << problem;
        return;
    }

    QList<ContainerBase*> open;
    inOwnThread([&] {
        for (ContainerBase* container : stackingList()) {
            if (container->isVisible() && !isClass(container, "ContainerDialog"))
                open.append(container);
        }
    });
    for (ContainerBase* container : qAsConst(open))
        call(container, "1hide()");

    QMap<int, QPointer<QWidget>> stacking;
    int applied = 0;
    for (const QXmlStreamAttributes& screen : screens) {
        if (++applied > MaxScreens) {
            qDebug() << "UserInterface - ScreenStateManager - more than" << MaxScreens << "screens, the rest is ignored";
            break;
        }
        const QString name = screen.value(QStringLiteral("name")).toString();
        if (name.startsWith(QLatin1String("SystemUpdate")))
            continue;

        QWidget* widget = nullptr;
        if (name.size() <= maxNameLength) {
            inOwnThread([&] { widget = registeredScreen(name); });
            if (widget && !isClass(widget, "ContainerImpl") && !isClass(widget, "FSContainer")) {
                // A launcher: its click opens the module, whose container takes the name.
                call(widget, "2clicked()");
                inOwnThread([&] { widget = registeredScreen(name); });
            }
        }
        if (!widget) {
            qDebug().noquote() << "UserInterface - Screen not available!" << ('"' + forLog(name) + '"');
            continue;
        }

        const QPointer<QWidget> guard(widget);
        if (screen.value(QStringLiteral("visible")) == QLatin1String("0")) {
            call(widget, "1hide()");
        } else {
            call(widget, "1show()");
            inOwnThread([&] {
                GlobalImpl* registry = GlobalImpl::existingInstance();
                auto* container = qobject_cast<ContainerBase*>(guard.data());
                if (container && registry && registry->desktopManager())
                    registry->desktopManager()->allocate(container);
            });
        }

        inOwnThread([&] {
            if (!guard || !isClass(guard, "ContainerImpl"))
                return;
            auto* container = static_cast<ContainerImpl*>(guard.data());
            // The place to return to first: entering "Min" goes back to it.
            if (screen.hasAttribute(QStringLiteral("min_geometry"))) {
                const QStringList parts = screen.value(QStringLiteral("min_geometry")).toString().split(QLatin1Char(','));
                container->setMinGeometry(
                    QRect(numberAt(parts, 0), numberAt(parts, 1), numberAt(parts, 2), numberAt(parts, 3)));
            }
            const QString state = screen.value(QStringLiteral("state")).toString();
            if (isStateName(state))
                container->setState(state);
            else
                qDebug().noquote() << "UserInterface - ScreenStateManager - unknown state" << ('"' + forLog(state) + '"')
                                   << "for" << ('"' + forLog(name) + '"');
        });

        const QStringList position = screen.value(QStringLiteral("pos")).toString().split(QLatin1Char(','));
        emit updatePosition(widget, numberAt(position, 0), numberAt(position, 1));
        stacking.insert(screen.value(QStringLiteral("z_index")).trimmed().toInt(), guard);
    }

    for (const QPointer<QWidget>& widget : qAsConst(stacking)) {
        if (widget)
            call(widget, "1raise()");
    }
}

void ScreenStateManager::move(QWidget* screen, int x, int y)
{
    // The screen may have gone since the position was sent.
    GlobalImpl* registry = GlobalImpl::existingInstance();
    if (!registry || !registry->isScreen(screen))
        return;

    // Kept where a touch can reach it.
    const QWidget* parent = screen->parentWidget();
    if (parent && (x < 0 || y < 0 || x >= parent->width() || y >= parent->height())) {
        qDebug() << "UserInterface - ScreenStateManager - position" << x << y << "outside the desktop for"
                 << screen->objectName();
        x = qBound(0, x, qMax(0, parent->width() - screen->width()));
        y = qBound(0, y, qMax(0, parent->height() - screen->height()));
    }

    if (!isClass(screen, "ContainerImpl")) {
        screen->move(x, y);
        return;
    }
    auto* container = static_cast<ContainerImpl*>(screen);
    if (container->state() == QLatin1String("Max"))
        return;
    const QPoint from = container->pos();
    container->move(x, y);
    container->saveLocation();
    if (registry->desktopManager())
        registry->desktopManager()->updatePosition(container, from);
}

bool ScreenStateManager::call(QObject* target, const char* member)
{
    if (!target || !member || !*member)
        return false;
    // Skip the code that SLOT() and SIGNAL() put in front.
    const QByteArray signature = QMetaObject::normalizedSignature(member + 1);
    const int index = target->metaObject()->indexOfMethod(signature.constData());
    if (index < 0)
        return false;
    const QMetaMethod method = target->metaObject()->method(index);
    const bool here = QThread::currentThread() == target->thread();
    return method.invoke(target, here ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
}
