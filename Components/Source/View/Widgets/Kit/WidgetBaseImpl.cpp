#include "WidgetBaseImpl.h"

#include "BindingInfoBubble.h"
#include "DesktopImpl.h"
#include "EngineLostOverlay.h"
#include "GlobalImpl.h"
#include "LongPressWatch.h"
#include "QTZStatusBar.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

namespace {

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

} // namespace

WidgetBaseImpl::WidgetBaseImpl(QWidget* parent)
    : QWidget(parent)
    , m_feed(std::make_unique<AttributeFeed>())
    , m_lockOverlay(new QPushButton(this))
    , m_attributeName(QStringLiteral("AttributeName"))
    , m_engineLostOverlay(new EngineLostOverlay(this))
{
    m_feed->setAttributeName(m_attributeName);
    // A reading found by name takes the same (virtual) way as one a host gives.
    m_feed->setBinder([this](Orvanth::EngineReadingBase_ptr reading) { bindAttribute(reading); });
    setFocusPolicy(Qt::NoFocus);

    m_lockOverlay->setObjectName(QStringLiteral("LockOverlay"));
    m_lockOverlay->setFocusPolicy(Qt::NoFocus);
    m_lockOverlay->hide();
    m_lockOverlay->setStyleSheet(plainOverlaySheet());

    connect(this, &WidgetBaseImpl::SetLocked, this, qOverload<bool>(&WidgetBaseImpl::setWidgetLocked));
    connectToFeed();
    connectToStatusBar();
    auto* longPress = new LongPressWatch(this);
    connect(longPress, &LongPressWatch::longPressed, this, &WidgetBaseImpl::showBindingInfo);
}

WidgetBaseImpl::~WidgetBaseImpl()
{
    releaseLock();
    // The feed goes with its subscriptions before the widget's parts do.
    m_feed.reset();
}

void WidgetBaseImpl::connectToFeed()
{
    AttributeFeed* feed = m_feed.get();
    connect(feed, &AttributeFeed::bindingFinished, this, &WidgetBaseImpl::finishBinding);
    connect(feed, &AttributeFeed::attributeNotFound, this, &WidgetBaseImpl::attributeNotFound);
    connect(feed, &AttributeFeed::lockChanged, this, &WidgetBaseImpl::applyLockAnswer);
    connect(feed, &AttributeFeed::engineLost, this, &WidgetBaseImpl::engineLost);
    connect(feed, &AttributeFeed::lockTaken, this, &WidgetBaseImpl::lockTaken);
    connect(feed, &AttributeFeed::lockRefused, this, &WidgetBaseImpl::lockRefused);
    connect(feed, &AttributeFeed::exceptionMessage, this, &WidgetBaseImpl::exceptionMessage);
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
    m_feed->setAttributeName(name);
}

void WidgetBaseImpl::bindAttribute(Orvanth::EngineReadingBase_ptr reading)
{
    setDesktop(GlobalImpl::getInstance()->desktop());
    m_feed->bind(reading, m_updateDelay);
}

void WidgetBaseImpl::bindAttributeByName()
{
    m_feed->bindByName();
}

void WidgetBaseImpl::attributeNotFound()
{
    qDebug() << "UserInterface - No engine module has the attribute" << m_attributeName
             << "@" << GlobalImpl::getParentWindowName(this);
    emit bindingFinished(false);
}

bool WidgetBaseImpl::hasReading() const
{
    return m_feed->hasReading();
}

bool WidgetBaseImpl::isBound() const
{
    return m_feed->isBound();
}

Orvanth::EngineReadingBase_var WidgetBaseImpl::reading() const
{
    return m_feed->reading();
}

void WidgetBaseImpl::finishBinding(bool bound, bool locked)
{
    if (bound) {
        if (m_state == EngineLost)
            qDebug() << "UserInterface - Engine back for" << m_attributeName << "@"
                     << GlobalImpl::getParentWindowName(this);
        m_lastValue = QDateTime::currentDateTime();
        m_locked = locked;
        setAttributeState(locked ? Locked : Free);
        setWidgetLocked(locked);
    } else {
        setAttributeState(m_feed->isLost() ? EngineLost : Unbound);
    }
    emit bindingFinished(bound);
}

void WidgetBaseImpl::applyLockAnswer(bool locked)
{
    if (!m_suppressReceiveDebug)
        qDebug() << "UserInterface - Lock notice for" << m_attributeName << (locked ? "locked" : "free");
    m_lastValue = QDateTime::currentDateTime();
    m_locked = locked;
    setAttributeState(locked ? Locked : Free);
    emit SetLocked(locked);
}

void WidgetBaseImpl::engineLost(const QString& reason)
{
    // Every call that meets the lost engine says so; the user hears of the loss once.
    if (m_state == EngineLost) {
        m_feed->loseEngine();
        return;
    }
    disconnectCORBA(reason);
}

void WidgetBaseImpl::disconnectCORBA(const QString& reason)
{
    m_feed->loseEngine();
    const QString window = GlobalImpl::getParentWindowName(this);
    qDebug() << "UserInterface -" << metaObject()->className() << reason << "error, disconnecting" << m_attributeName
             << "from engine:" << window;
    //: %1 is why (such as CORBA::TRANSIENT), %2 the attribute, %3 the window
    emit exceptionMessage(tr("%1 %2, disconnecting from engine: %3").arg(reason, m_attributeName, window));
    m_locked = false;
    setAttributeState(EngineLost);
}

void WidgetBaseImpl::setAttributeState(AttributeState state)
{
    if (state == m_state)
        return;
    m_state = state;
    if (state == EngineLost)
        setWidgetLocked(false);
    showEngineLostLook();
    emit attributeStateChanged(state);
}

void WidgetBaseImpl::showEngineLostLook()
{
    if (m_state == EngineLost || m_engineLostPreview) {
        m_engineLostOverlay->setGeometry(rect());
        m_engineLostOverlay->show();
        m_engineLostOverlay->raise();
    } else {
        m_engineLostOverlay->hide();
    }
}

QWidget* WidgetBaseImpl::engineLostOverlay() const
{
    return m_engineLostOverlay;
}

void WidgetBaseImpl::setEngineLostPreview(bool preview)
{
    m_engineLostPreview = preview;
    showEngineLostLook();
}

void WidgetBaseImpl::noteValueReceived()
{
    m_lastValue = QDateTime::currentDateTime();
}

QString WidgetBaseImpl::bindingDescription() const
{
    const QString module = m_feed->moduleIndex();
    QStringList lines{tr("Engine module: %1").arg(module.isEmpty() ? tr("unknown") : module),
                      tr("Attribute: %1").arg(m_attributeName)};
    if (m_state == Locked)
        lines << tr("Locked by: %1").arg(tr("another user interface"));
    else if (m_locked && m_state == Free)
        lines << tr("Locked by: %1").arg(tr("this display"));
    lines << tr("Last value: %1").arg(m_lastValue.isValid() ? m_lastValue.toString(QStringLiteral("HH:mm:ss"))
                                                             : tr("none"));
    QString state;
    switch (m_state) {
    case Unbound:
        state = tr("not bound");
        break;
    case Free:
        state = tr("live");
        break;
    case Locked:
        state = tr("locked");
        break;
    case EngineLost:
        state = tr("engine lost");
        break;
    }
    lines << tr("State: %1").arg(state);
    // The bubble breaks its lines here and wraps each one on its own.
    return lines.join(QChar::LineSeparator);
}

void WidgetBaseImpl::showBindingInfo(const QPoint& globalPosition)
{
    QWidget* host = window();
    if (!m_bubble || m_bubble->parentWidget() != host) {
        delete m_bubble.data();
        m_bubble = new BindingInfoBubble(host);
    }
    const SpeechBubbleImpl::ColorScheme scheme = m_state == Free     ? SpeechBubbleImpl::csGreen
                                                 : m_state == Locked ? SpeechBubbleImpl::csAmber
                                                                     : SpeechBubbleImpl::csRed;
    m_bubble->showAt(bindingDescription(), scheme, globalPosition);
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
    if (m_state == EngineLost)
        return;
    if (!isBound()) {
        offerEntry();
        return;
    }
    m_feed->acquireLock();
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
    m_feed->releaseLock();
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->releaseEntryMechanism(this);
}

WidgetBaseImpl::EngineHandle WidgetBaseImpl::engineHandle() const
{
    return m_feed->callHandle();
}

void WidgetBaseImpl::runEngineCall(std::function<void(const EngineHandle&)> call)
{
    m_feed->runCall(std::move(call));
}

void WidgetBaseImpl::resizeEvent(QResizeEvent* event)
{
    m_lockOverlay->setMinimumSize(event->size());
    m_lockOverlay->resize(event->size());
    m_engineLostOverlay->resize(event->size());
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
    if (!m_label)
        return;
    m_labelSource = label;
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

void WidgetBaseImpl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) {
        if (m_label && !m_labelSource.isNull())
            m_label->setText(QCoreApplication::translate("WidgetBaseImpl", m_labelSource.toUtf8().constData()));
        retranslate();
    }
    QWidget::changeEvent(event);
}
