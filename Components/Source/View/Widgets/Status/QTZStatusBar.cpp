#include "QTZStatusBar.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "EventFeed.h"
#include "EventHandOff.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h" // completes the alert type QTZBatteryStatus.h points to
#include "QTZMsgLogger.h"
#include "SpeechBubbleImpl.h"
#include "StatusBarParts.h"
#include "StatusMessages.h"

#include <QDebug>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

#include <algorithm>

namespace {

const QString Small = QStringLiteral("Small");
const QString Max = QStringLiteral("Max");
const QString Tiny = QStringLiteral("Tiny");

bool isWideScreen()
{
    const ApplicationOptions::ScreenSize size = ApplicationOptions::screenSize();
    return size == ApplicationOptions::ScreenSize::Landscape || size == ApplicationOptions::ScreenSize::SmallPortrait;
}

} // namespace

using StatusBarParts::iconButton;
using StatusBarParts::rowLayout;

QTZStatusBar::QTZStatusBar(QWidget* parent)
    : QFrame(parent)
    , m_messages(new StatusMessages(BarHeight, this))
    , m_geometryAnimation(this, "geometry")
{
    EventMessageFormat::registerMetaTypes();
    setObjectName(QStringLiteral("StatusBar"));

    auto* barLayout = rowLayout(this, 0);
    m_messageFrame = new QFrame(this);
    m_messageFrame->setObjectName(QStringLiteral("MessageFrame"));
    barLayout->addWidget(m_messageFrame);
    auto* messageLayout = rowLayout(m_messageFrame, 10);

    m_iconBox = new QLabel(m_messageFrame);
    m_iconBox->setObjectName(QStringLiteral("LabelBox"));
    m_iconLayout = rowLayout(m_iconBox, 2);
    m_minMaxIcon = iconButton(QStringLiteral("MinMaxIcon"), m_iconBox);
    m_lockIcon = new QLabel(m_iconBox);
    m_lockIcon->setObjectName(QStringLiteral("LockIcon"));
    m_lockIcon->setFixedWidth(30);
    m_alertIcon = iconButton(QStringLiteral("AlertIcon"), m_iconBox);
    for (QWidget* icon : {static_cast<QWidget*>(m_minMaxIcon), static_cast<QWidget*>(m_lockIcon),
                          static_cast<QWidget*>(m_alertIcon)})
        m_iconLayout->addWidget(icon);

    m_textField = new QLabel(m_messageFrame);
    m_textField->setObjectName(QStringLiteral("LblText"));
    for (QLabel*& label : m_textLabels) {
        label = new QLabel(m_textField);
        label->setObjectName(QStringLiteral("HiddenLabel"));
    }
    m_textField->installEventFilter(this);
    // Shown only at the "Max" size.
    m_textField->hide();
    messageLayout->addWidget(m_iconBox);
    messageLayout->addWidget(m_textField, 1);

    m_maxButton = new QPushButton(this);
    m_maxButton->setObjectName(QStringLiteral("MaxButton"));
    m_maxButton->setFocusPolicy(Qt::NoFocus);
    m_maxButton->hide();

    m_compact = ApplicationOptions::isHandheld() || ApplicationOptions::isPortraitResolution()
                || ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape;
    if (m_compact) {
        m_battery = new QTZBatteryStatus(m_iconBox);
        m_iconLayout->addWidget(m_battery);
        m_textWidth = 380;
    }
    if (ApplicationOptions::isPortraitResolution())
        m_textWidth = 225;
    m_textLabels[0]->setGeometry(0, 0, m_textWidth, BarHeight);
    m_textLabels[1]->setGeometry(0, BarHeight, m_textWidth, BarHeight);

    setStyleSheet(StatusMessages::sizeStyleSheet(Small));
    // Measured as styled: the sheet's margins widen the icons.
    for (int i = 0; i < m_iconLayout->count(); ++i)
        m_iconsWidth += iconWidth(m_iconLayout->itemAt(i)->widget()) + m_iconLayout->spacing();
    m_iconBox->setFixedWidth(m_iconsWidth);
    m_smallWidth = sizeHint().width();
    setMinimumSize(m_smallWidth, BarHeight);
    setMaximumWidth(MaximumWidth);
    int x = 300;
    if (ApplicationOptions::isHandheld())
        x = 200;
    else if (ApplicationOptions::isPortraitResolution())
        x = 5;
    setGeometry(x, parentSize().height() - 50, m_smallWidth, BarHeight);

    connect(m_minMaxIcon, &QPushButton::clicked, this, &QTZStatusBar::animate);
    connect(m_maxButton, &QPushButton::clicked, this, &QTZStatusBar::animate);
    connect(&m_geometryAnimation, &QPropertyAnimation::finished, this, &QTZStatusBar::animationFinished);
    connect(m_alertIcon, &QPushButton::clicked, this, &QTZStatusBar::handleAlertIconClicked);
    // Emitted on DDS threads by dds_callback: batched into the GUI thread, in order.
    m_handOff = EventHandOff::follow(this);

    m_log = new QTZMsgLogger(parentWidget(), logAnchor());
    connect(this, &QTZStatusBar::showMessageLog, m_log.data(), &MsgLogger::animate);
    connect(m_log.data(), &MsgLogger::finished, this, &QTZStatusBar::minimizeAll);

    m_speechBubble = new SpeechBubbleImpl(parentWidget());
    m_speechBubble->hide();

    m_messages->setMessageLog(m_log);
    m_messages->setTextLabels(m_textLabels[0], m_textLabels[1]);
    m_messages->setHoldsBackAlerts(true);
    m_messages->setSpeechBubble(m_speechBubble, [this] {
        QPoint point(this->x() + m_iconsWidth - 30, this->y() + 5);
        const QSize screen = ApplicationOptions::resolution();
        if (screen.isValid() && point.x() + m_speechBubble->width() > screen.width())
            point.setX(screen.width() / 2);
        return point;
    });
    connect(m_messages, &StatusMessages::sendAlert, this, &QTZStatusBar::sendAlert);
    connect(m_messages, &StatusMessages::restyle, this, &QTZStatusBar::setCSS);

    m_events = std::make_unique<EventFeed>(
        [this](const char* topic, Orvanth::Event::Message message) { dds_callback(topic, std::move(message)); });
}

QTZStatusBar::~QTZStatusBar()
{
    // No callback may emit into a bar being destroyed.
    m_events.reset();
    m_geometryAnimation.stop();
    delete m_speechBubble.data();
    delete m_log.data();
}

bool QTZStatusBar::isAlert() const
{
    return m_messages->isAlert();
}

bool QTZStatusBar::hasNewMessage() const
{
    return m_messages->hasNewMessage();
}

QString QTZStatusBar::lastText() const
{
    return m_messages->lastText();
}

int QTZStatusBar::messageCount() const
{
    return m_messages->messageCount();
}

QStringList QTZStatusBar::pendingAlerts() const
{
    return m_messages->heldBackAlerts();
}

void QTZStatusBar::setCSS()
{
    const QString sheet = m_messages->styleSheet(m_sizeState);
    // Re-polishing every child is not free, and messages may come many a second.
    if (sheet != styleSheet())
        setStyleSheet(sheet);
    if (m_battery)
        m_battery->setStyle(QStringLiteral("Min"));
}

void QTZStatusBar::setTinySizeEnabled(bool enabled)
{
    m_tinySizeEnabled = enabled;
    m_sizeState = Max;
    animate();
}

void QTZStatusBar::logToFile(bool on)
{
    if (m_log)
        m_log->logToFile(on);
}

void QTZStatusBar::setOutputFile(const QString& fileName)
{
    if (m_log)
        m_log->setOutputFile(fileName);
}

void QTZStatusBar::dds_callback(const char*, Orvanth::Event::Message message)
{
    EventMessageFormat::logReceived(message);
    emit updateMessage(QString::fromStdString(message.text()), EventMessageFormat::formatTimeStamp(message.timestamp()),
                       message.classification());
}

void QTZStatusBar::addMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt)
{
    m_messages->add(desc, dateTime, evt);
}

void QTZStatusBar::addMessage(QString desc, QString dateTime)
{
    addMessage(desc, dateTime, Orvanth::Event::EVENT_INFO);
}

void QTZStatusBar::addMessage(QString desc)
{
    addMessage(desc, QString(), Orvanth::Event::EVENT_INFO);
}

void QTZStatusBar::sendAllAlertMessages()
{
    m_messages->sendHeldBackAlerts();
}

void QTZStatusBar::disableAlertMessage()
{
    m_messages->clearAlert();
}

void QTZStatusBar::handleAlertIconClicked()
{
    if (m_messages->isAlert()) {
        m_messages->raiseAlert(QString());
    } else if (m_messages->hasNewMessage()) {
        if (m_sizeState == Small)
            animate();
        m_logShown = true;
        emit showMessageLog(true);
    }
}

void QTZStatusBar::mouseReleaseEvent(QMouseEvent* event)
{
    const QWidget* child = childAt(event->pos());
    if (child && child->objectName() == QLatin1String("HiddenLabel")) {
        raise();
        m_logShown = !m_logShown;
        emit showMessageLog(m_logShown);
    }
    QFrame::mouseReleaseEvent(event);
}

bool QTZStatusBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_textField && event->type() == QEvent::Resize) {
        for (QLabel* label : m_textLabels)
            label->resize(m_textWidth, m_textField->height());
    }
    return QFrame::eventFilter(watched, event);
}

void QTZStatusBar::changeState()
{
    if (m_sizeState == Small)
        m_sizeState = Max;
    else if (m_sizeState == Max)
        m_sizeState = m_tinySizeEnabled ? Tiny : Small;
    else
        m_sizeState = Small;
}

void QTZStatusBar::setIconsVisible(bool visible)
{
    if (m_battery)
        m_battery->setVisible(visible);
    for (QWidget* icon : m_iconBox->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        icon->setVisible(visible);
}

void QTZStatusBar::animate()
{
    raise();
    if (m_logShown) {
        // Closing the log first; its finished() brings us back here through minimizeAll().
        if (m_log)
            m_log->raise();
        m_resumeAnimation = true;
        m_logShown = false;
        emit showMessageLog(false);
        return;
    }

    changeState();
    const QRect start = geometry();
    const QSize area = parentSize();
    QRect target;
    QEasingCurve easing(QEasingCurve::OutBack);
    if (m_sizeState == Max) {
        const int x = isWideScreen() ? 5 : start.x();
        target = QRect(x, area.height() - 50, area.width() - 5 - x, BarHeight);
        m_textField->show();
        setCSS();
        if (m_log) {
            m_log->setPoint(QPoint(m_iconsWidth + x + 10, start.y()));
            m_log->setMinimumWidth(area.width() - 9 - x - m_iconsWidth);
        }
    } else if (m_sizeState == Tiny) {
        setMinimumWidth(50);
        setIconsVisible(false);
        m_maxButton->show();
        m_maxButton->raise();
        easing = QEasingCurve(QEasingCurve::InBack);
        const int width = minimumWidth();
        // Half of it lies below the parent's bottom edge.
        target = QRect((area.width() - width) / 2, area.height() - 35, width, 70);
        m_maxButton->setGeometry(0, 0, width, 70);
    } else {
        setMinimumWidth(m_smallWidth);
        setIconsVisible(true);
        m_maxButton->hide();
        const int x = isWideScreen() ? area.width() / 2 - m_smallWidth / 2 : start.x();
        target = QRect(x, area.height() - 50, m_smallWidth, BarHeight);
        setCSS();
    }

    m_geometryAnimation.stop();
    if (ApplicationOptions::isHandheld()
        || ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape) {
        setGeometry(target);
        animationFinished();
        return;
    }
    m_geometryAnimation.setEasingCurve(easing);
    m_geometryAnimation.setDuration(AnimationMs);
    m_geometryAnimation.setStartValue(start);
    m_geometryAnimation.setEndValue(target);
    m_geometryAnimation.start();
}

void QTZStatusBar::animationFinished()
{
    if (m_sizeState == Max) {
        emit maximized();
        return;
    }
    m_textField->hide();
    setCSS();
    emit minimized();
}

void QTZStatusBar::minimizeAll()
{
    m_messages->clearNewMessage();
    if (m_resumeAnimation) {
        m_resumeAnimation = false;
        animate();
    }
}

void QTZStatusBar::addIcon(QWidget* icon)
{
    if (!icon) {
        qDebug() << "UserInterface - StatusBar - no icon to add";
        return;
    }
    m_iconLayout->insertWidget(std::max(0, m_iconLayout->count() - 2), icon);
    icon->setVisible(m_sizeState != Tiny);
    const int width = iconWidth(icon) + m_iconLayout->spacing();
    m_iconsWidth += width;
    m_iconBox->setFixedWidth(m_iconsWidth);
    m_smallWidth += width;
    if (m_sizeState == Small) {
        setMinimumWidth(m_smallWidth);
        resize(m_smallWidth, height());
    }
    if (m_log)
        m_log->setPoint(logAnchor());
}

int QTZStatusBar::iconWidth(QWidget* icon)
{
    icon->ensurePolished();
    int width = icon->maximumWidth();
    if (width >= QWIDGETSIZE_MAX) {
        // Its width would make the icon box as wide as the screen.
        width = icon->sizeHint().width();
        icon->setMaximumWidth(width);
        qDebug() << "UserInterface - StatusBar - icon without a maximum width, given its preferred width" << width;
    }
    return width;
}

QPoint QTZStatusBar::logAnchor() const
{
    return QPoint(m_iconsWidth + 18 + x() - (m_compact ? 30 : 0), parentSize().height() - 43);
}

QSize QTZStatusBar::parentSize() const
{
    return parentWidget() ? parentWidget()->size() : size();
}
