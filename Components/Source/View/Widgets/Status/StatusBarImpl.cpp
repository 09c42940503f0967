#include "StatusBarImpl.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "EventFeed.h"
#include "EventHandOff.h"
#include "PowerFeed.h"
#include "RefOscillatorFeed.h"
#include "GlobalImpl.h"
#include "LowBatteryAlert.h"
#include "StatusBarParts.h"
#include "StatusMessages.h"
#include "SystemModule.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Each icon of the row takes this much of the icon box.
constexpr int IconSlot = 35;

const QString Charging = QStringLiteral("Charging");
const QString FullyCharged = QStringLiteral("FullyCharged");
const QString OnBatteryPower = QStringLiteral("OnBatteryPower");
const QString LowBattery = QStringLiteral("LowBattery");
// Levels in percent: at most FullLevel is not full on mains power; at most LowLevel is low.
constexpr int FullLevel = 95;
constexpr int LowLevel = 15;

QString refOscillatorSheet()
{
    return QStringLiteral("QPushButton#RefOscIcon {    image: url(:/images/svg/refOscInternal.svg);    border: none;"
                          "    min-width: 30px;    max-width: 30px;    min-height: 30px;    max-height: 30px;"
                          "    margin-right: 2px;}"
                          "QPushButton#RefOscIcon:checked {    image: url(:/images/svg/refOscExternal.svg);}");
}

QString batterySheet()
{
    const QString levelRule = QStringLiteral("    padding: 2px 2px 0px 0px;    font: bold 15px;    text-align: center;");
    return QStringLiteral("QFrame#BatteryFrame {    background-color: rgb(58,57,58);    border: 2px solid ")
           + CSS::border()
           + QStringLiteral(";    border-radius: 18px;    min-width: 75px;    max-width: 75px;}"
                            "QFrame#BatteryFrame QPushButton {    background-position: center;"
                            "    background-repeat: no-repeat;    border: none;    min-height: 26px;"
                            "    max-height: 26px;    min-width: 65px;    max-width: 65px;}"
                            "QPushButton#Charging {    background-image: url(:/images/chargingIcon.png);"
                            "    padding: 0px 10px 0px 0px;}"
                            "QPushButton#FullyCharged {    background-image: url(:/images/fullyChargedIcon.png);"
                            "    padding: 0px 10px 0px 0px;}"
                            "QPushButton#OnBatteryPower {    background-image: url(:/images/batteryIcon.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#LowBattery {    background-image: url(:/images/BatteryIcon25.png);"
                            "    padding: 0px 0px 0px 6px;    font: bold 15px;    text-align: center;"
                            "    color: rgb(237,29,36);}");
}

// A reading outside the range of int (an engine fault) keeps to its ends.
int truncatedLevel(double value)
{
    if (value >= double(INT_MAX))
        return INT_MAX;
    if (value <= double(INT_MIN))
        return INT_MIN;
    return int(value);
}

QString levelText(int level)
{
    return QString::number(level) + QLatin1Char('%');
}

} // namespace

using StatusBarParts::iconButton;
using StatusBarParts::rowLayout;

StatusBarImpl::StatusBarImpl(QWidget* parent)
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

    if (ApplicationOptions::isPortraitResolution())
        buildBattery(messageLayout);

    m_iconBox = new QLabel(m_messageFrame);
    m_iconBox->setObjectName(QStringLiteral("LabelBox"));
    m_iconLayout = rowLayout(m_iconBox, 2);
    m_minMaxIcon = iconButton(QStringLiteral("MinMaxIcon"), m_iconBox);
    m_lockIcon = new QLabel(m_iconBox);
    m_lockIcon->setObjectName(QStringLiteral("LockIcon"));
    m_lockIcon->setFixedWidth(30);
    m_alertIcon = iconButton(QStringLiteral("AlertIcon"), m_iconBox);
    m_refOscIcon = iconButton(QStringLiteral("RefOscIcon"), m_iconBox);
    m_refOscIcon->setCheckable(true);
    for (QWidget* icon : {static_cast<QWidget*>(m_minMaxIcon), static_cast<QWidget*>(m_lockIcon),
                          static_cast<QWidget*>(m_alertIcon), static_cast<QWidget*>(m_refOscIcon)})
        m_iconLayout->addWidget(icon);
    fixIconBoxWidth();

    if (ApplicationOptions::isPortraitResolution())
        m_textWidth = 225;
    m_textField = new QLabel(m_messageFrame);
    m_textField->setObjectName(QStringLiteral("LblText"));
    for (QLabel*& label : m_textLabels) {
        label = new QLabel(m_textField);
        label->setObjectName(QStringLiteral("HiddenLabel"));
    }
    m_textLabels[0]->setGeometry(0, 0, m_textWidth, BarHeight);
    m_textLabels[1]->setGeometry(0, BarHeight, m_textWidth, BarHeight);
    // Shown only while expanded.
    m_textField->hide();
    messageLayout->addWidget(m_iconBox);
    messageLayout->addWidget(m_textField, 1);

    setCSS();
    m_smallWidth = sizeHint().width();
    setMinimumSize(m_smallWidth, BarHeight);
    int x = 300;
    if (ApplicationOptions::isHandheld())
        x = 200;
    else if (ApplicationOptions::isPortraitResolution())
        x = 5;
    setGeometry(x, parentSize().height() - 50, m_smallWidth, BarHeight);

    connect(m_minMaxIcon, &QPushButton::clicked, this, &StatusBarImpl::animate);
    connect(&m_geometryAnimation, &QPropertyAnimation::finished, this, &StatusBarImpl::animationFinished);
    connect(m_alertIcon, &QPushButton::clicked, this, &StatusBarImpl::handleAlertIconClicked);
    connect(m_refOscIcon, &QPushButton::toggled, this, &StatusBarImpl::setReferenceOscillator);
    // Emitted on DDS threads by dds_callback: batched into the GUI thread, in order.
    m_handOff = EventHandOff::follow(this);

    const int batteryWidth = m_batteryFrame ? m_batteryFrame->maximumWidth() + messageLayout->spacing() : 0;
    m_log = new MsgLogger(parentWidget(), QPoint(x + batteryWidth + m_iconBox->maximumWidth() + 18,
                                                 parentSize().height() - 43));
    connect(this, &StatusBarImpl::showMessageLog, m_log.data(), &MsgLogger::animate);
    connect(m_log.data(), &MsgLogger::finished, this, &StatusBarImpl::minimizeAll);

    m_speechBubble = new SpeechBubbleImpl(parentWidget());
    m_speechBubble->hide();

    m_messages->setMessageLog(m_log);
    m_messages->setTextLabels(m_textLabels[0], m_textLabels[1]);
    m_messages->setSpeechBubble(m_speechBubble, [this] { return QPoint(this->x() + (m_expanded ? 85 : 75), this->y() + 5); });
    connect(m_messages, &StatusMessages::sendAlert, this, &StatusBarImpl::sendAlert);
    connect(m_messages, &StatusMessages::restyle, this, &StatusBarImpl::setCSS);

    m_refOscillator = std::make_unique<RefOscillatorFeed>(
        [this](const char* topic, CORBA::Long value) { dds_callback_ref_oscillator(topic, value); });
    connect(m_refOscillator.get(), &RefOscillatorFeed::searched, this, &StatusBarImpl::referenceOscillatorSearched);
    connect(this, &StatusBarImpl::updateRefOscillatorStatus, this, [this](bool external) {
        // The engine reports what it has: showing it must not switch it again.
        const QSignalBlocker blocker(m_refOscIcon);
        m_refOscIcon->setChecked(external);
    });

    m_events = std::make_unique<EventFeed>(
        [this](const char* topic, Orvanth::Event::Message message) { dds_callback(topic, std::move(message)); });
    if (m_batteryFrame) {
        m_power = std::make_unique<PowerFeed>(
            [this](const char* topic, bool present) { dds_callback_ac_power(topic, present); },
            [this](const char* topic, Orvanth::MeterReading::Reading reading) {
                getBatteryStatus(topic, std::move(reading));
            });
    }
}

StatusBarImpl::~StatusBarImpl()
{
    // No callback may emit into a bar being destroyed, and no engine call may outlive it.
    m_events.reset();
    m_power.reset();
    m_refOscillator.reset();
    m_geometryAnimation.stop();
    delete m_speechBubble.data();
    delete m_log.data();
    delete m_batteryAlert.data();
}

void StatusBarImpl::buildBattery(QHBoxLayout* row)
{
    m_batteryFrame = new QFrame(m_messageFrame);
    m_batteryFrame->setObjectName(QStringLiteral("BatteryFrame"));
    m_batteryFrame->setFixedWidth(75);
    auto* batteryLayout = rowLayout(m_batteryFrame, 5);
    m_batteryButton = new QPushButton(m_batteryFrame);
    m_batteryButton->setFocusPolicy(Qt::NoFocus);
    batteryLayout->addWidget(m_batteryButton);
    row->addWidget(m_batteryFrame);

    m_batteryHideTimer = new QTimer(this);
    m_batteryHideTimer->setInterval(BatteryShowMs);
    m_batteryHideTimer->setSingleShot(true);

    QWidget* screen = nullptr;
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        screen = registry->systemModule()->getSystemScreen(QStringLiteral("MainWindow"));
    m_batteryAlert = new LowBatteryAlert(screen ? screen : parentWidget());

    connect(this, &StatusBarImpl::updateACPowerStatus, this, &StatusBarImpl::setACPowerStatus);
    connect(this, &StatusBarImpl::updateBatteryStatus, this, &StatusBarImpl::setBatteryStatus);
    connect(m_batteryButton, &QPushButton::clicked, this, &StatusBarImpl::showBatteryStatus);
    connect(m_batteryHideTimer, &QTimer::timeout, this, &StatusBarImpl::hideBatteryStatus);
    connect(this, &StatusBarImpl::showBatteryAlert, m_batteryAlert.data(), &LowBatteryAlert::updateReading);
    connect(this, &StatusBarImpl::hideBatteryAlert, m_batteryAlert.data(), &LowBatteryAlert::disableBatteryAlert);
    updateBatteryStyle();
}

void StatusBarImpl::setCSS()
{
    QString sheet = m_messages->styleSheet(m_expanded ? QStringLiteral("Max") : QStringLiteral("Small"));
    sheet += refOscillatorSheet();
    if (m_batteryFrame)
        sheet += batterySheet();
    if (sheet != styleSheet())
        setStyleSheet(sheet);
}

void StatusBarImpl::fixIconBoxWidth()
{
    const int width = IconSlot * m_iconLayout->count();
    m_iconBox->setMinimumWidth(width);
    m_iconBox->setMaximumWidth(width);
}

QSize StatusBarImpl::parentSize() const
{
    return parentWidget() ? parentWidget()->size() : size();
}

void StatusBarImpl::dds_callback(const char*, Orvanth::Event::Message message)
{
    EventMessageFormat::logReceived(message);
    emit updateMessage(QString::fromStdString(message.text()), EventMessageFormat::formatTimeStamp(message.timestamp()),
                       message.classification());
}

void StatusBarImpl::addMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt)
{
    m_messages->add(desc, dateTime, evt);
}

void StatusBarImpl::addMessage(QString desc, QString dateTime)
{
    addMessage(desc, dateTime, Orvanth::Event::EVENT_INFO);
}

void StatusBarImpl::addMessage(QString desc)
{
    addMessage(desc, QString(), Orvanth::Event::EVENT_INFO);
}

bool StatusBarImpl::isAlert() const
{
    return m_messages->isAlert();
}

bool StatusBarImpl::hasNewMessage() const
{
    return m_messages->hasNewMessage();
}

QString StatusBarImpl::lastText() const
{
    return m_messages->lastText();
}

int StatusBarImpl::messageCount() const
{
    return m_messages->messageCount();
}

void StatusBarImpl::disableAlertMessage()
{
    m_messages->clearAlert();
}

void StatusBarImpl::handleAlertIconClicked()
{
    if (m_messages->isAlert()) {
        m_messages->raiseAlert(QString());
    } else if (m_messages->hasNewMessage()) {
        if (!m_expanded)
            animate();
        m_logShown = true;
        emit showMessageLog(true);
    }
}

void StatusBarImpl::animate()
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

    m_expanded = !m_expanded;
    const QRect start = geometry();
    const QSize area = parentSize();
    QRect target;
    QEasingCurve easing(QEasingCurve::OutBack);
    if (m_expanded) {
        target = QRect(start.x(), area.height() - 50, area.width() - 5 - start.x(), BarHeight);
        m_textField->show();
        setCSS();
        if (m_log)
            m_log->setMinimumWidth(m_smallWidth + m_textWidth - 14 - m_iconBox->maximumWidth());
    } else {
        easing = QEasingCurve(QEasingCurve::InBack);
        target = QRect(start.x(), area.height() - 50, m_smallWidth, BarHeight);
    }

    m_geometryAnimation.stop();
    if (ApplicationOptions::isHandheld()) {
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

void StatusBarImpl::animationFinished()
{
    if (m_expanded) {
        emit maximized();
        return;
    }
    m_textField->hide();
    setCSS();
    emit minimized();
}

void StatusBarImpl::minimizeAll()
{
    m_messages->clearNewMessage();
    if (m_resumeAnimation) {
        m_resumeAnimation = false;
        animate();
    }
}

void StatusBarImpl::addIcon(QWidget* icon)
{
    if (!icon) {
        qDebug() << "UserInterface - StatusBar - no icon to add";
        return;
    }
    m_iconLayout->addWidget(icon);
    fixIconBoxWidth();
    m_smallWidth += IconSlot;
    if (!m_expanded) {
        setMinimumWidth(m_smallWidth);
        resize(m_smallWidth, height());
    }
}

// The battery indicator.

LowBatteryAlert* StatusBarImpl::lowBatteryAlert() const
{
    return m_batteryAlert.data();
}

QString StatusBarImpl::batteryState() const
{
    return m_batteryState;
}

QString StatusBarImpl::batteryText() const
{
    return m_batteryButton ? m_batteryButton->text() : QString();
}

void StatusBarImpl::dds_callback_ac_power(const char*, bool present)
{
    emit updateACPowerStatus(present);
}

void StatusBarImpl::getBatteryStatus(const char*, Orvanth::MeterReading::Reading reading)
{
    if (reading.readings().empty()) {
        qDebug() << ">>>>> Error meter reading structure empty.";
        return;
    }
    emit updateBatteryStatus(reading.readings().front().value());
}

void StatusBarImpl::updateBatteryStyle()
{
    if (!m_batteryButton)
        return;
    QString text;
    if (m_acPower && m_showingLevel) {
        m_batteryState = OnBatteryPower;
        text = levelText(m_level);
    } else if (m_acPower) {
        m_previousBatteryState = m_batteryState;
        m_batteryState = m_level <= FullLevel ? Charging : FullyCharged;
    } else {
        m_previousBatteryState = m_batteryState;
        m_batteryState = m_level <= LowLevel ? LowBattery : OnBatteryPower;
        text = levelText(m_level);
    }
    m_batteryButton->setText(text);
    if (m_batteryButton->objectName() != m_batteryState) {
        // The object name selects the button's rule in the sheet.
        m_batteryButton->setObjectName(m_batteryState);
        m_batteryButton->style()->unpolish(m_batteryButton);
        m_batteryButton->style()->polish(m_batteryButton);
    }
}

void StatusBarImpl::setACPowerStatus(bool present)
{
    m_acPower = present;
    updateBatteryStyle();
}

void StatusBarImpl::setBatteryStatus(double value)
{
    if (!m_batteryButton)
        return;
    if (std::isnan(value)) {
        qDebug() << "UserInterface - StatusBar - battery reading is not a number, ignored";
        return;
    }
    m_level = truncatedLevel(value);
    if (m_showingLevel) {
        m_batteryButton->setText(levelText(m_level));
        return;
    }
    if (m_acPower) {
        if ((m_batteryState == FullyCharged && m_level <= FullLevel) || (m_batteryState == Charging && m_level > FullLevel))
            updateBatteryStyle();
        return;
    }
    if (m_batteryState == OnBatteryPower && m_level > LowLevel) {
        m_batteryButton->setText(levelText(m_level));
        if (m_previousBatteryState == LowBattery)
            emit hideBatteryAlert();
        return;
    }
    if (m_batteryState == LowBattery && m_level <= LowLevel) {
        m_batteryButton->setText(levelText(m_level));
        emit showBatteryAlert(m_level);
        return;
    }
    updateBatteryStyle();
}

void StatusBarImpl::showBatteryStatus()
{
    if (m_showingLevel || !m_acPower)
        return;
    m_showingLevel = true;
    m_batteryHideTimer->start();
    updateBatteryStyle();
}

void StatusBarImpl::hideBatteryStatus()
{
    if (m_batteryHideTimer)
        m_batteryHideTimer->stop();
    m_showingLevel = false;
    updateBatteryStyle();
}

// The reference oscillator.

bool StatusBarImpl::isExternalReference() const
{
    return m_refOscIcon->isChecked();
}

void StatusBarImpl::initialize()
{
    m_refOscillator->search();
}

bool StatusBarImpl::hasReferenceOscillator() const
{
    return m_refOscillator && m_refOscillator->isFound();
}

void StatusBarImpl::dds_callback_ref_oscillator(const char*, CORBA::Long value)
{
    emit updateRefOscillatorStatus(value == ExternalReference);
}

void StatusBarImpl::dds_callback_pll_status(const char*, CORBA::Long status)
{
    emit updatePLLStatus(int(status));
}

void StatusBarImpl::setReferenceOscillator(bool extRef)
{
    if (!hasReferenceOscillator()) {
        qDebug() << "UserInterface - StatusBar - no" << RefOscillatorFeed::AttributeName << "to switch";
        return;
    }
    addMessage(extRef ? tr("Reference Oscillator is set to 'External'") : tr("Reference Oscillator is set to 'Internal'"),
               QString(), Orvanth::Event::EVENT_INFO);
    m_refOscillator->set(extRef ? ExternalReference : InternalReference);
}
