#include "QTZBatteryStatus.h"

#include "CSS.h"
#include "PowerFeed.h"
#include "QTZLowBatteryAlert.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>

#include <climits>
#include <cmath>

namespace {

// Readings outside 0 to 100 % (an engine fault) still need a level the state rules can
// compare; beyond the range of int they keep to its ends.
int truncatedLevel(double value)
{
    if (value >= double(INT_MAX))
        return INT_MAX;
    if (value <= double(INT_MIN))
        return INT_MIN;
    return int(value);
}

bool inPercentRange(double value)
{
    return value >= 0.0 && value <= 100.0;
}

// A level outside 0 to 100 counts as above 100, a negative one included.
bool levelAbove100(int level)
{
    return unsigned(level) > 100u;
}

QString batteryStyleSheet()
{
    const QString levelRule = QStringLiteral("    padding: 2px 2px 0px 0px;    font: bold 15px;    text-align: center;");
    return QStringLiteral("QFrame#BatteryFrame {    background-color: rgb(58,57,58);    border: 2px solid ")
           + CSS::border()
           + QStringLiteral(";    border-radius: 18px;    min-width: 75px;    max-width: 75px;}"
                            "QPushButton {    background-position: center;    background-repeat: no-repeat;"
                            "    border: none;    min-height: 26px;    max-height: 26px;"
                            "    min-width: 65px;    max-width: 65px;}"
                            "QPushButton#Charging {    background-image: url(:/images/chargingIcon.png);"
                            "    padding: 0px 10px 0px 0px;}"
                            "QPushButton#FullyCharged {    background-image: url(:/images/fullyChargedIcon.png);"
                            "    padding: 0px 10px 0px 0px;}"
                            "QPushButton#OnBatteryPower {    background-image: url(:/images/batteryIcon.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#FullBattery {    background-image: url(:/images/BatteryIcon100.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#MostlyFullBattery {    background-image: url(:/images/BatteryIcon75.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#HalfBattery {    background-image: url(:/images/BatteryIcon50.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#QuarterBattery {"
                            "    background-image: url(:/images/BatteryIcon25yellow.png);")
           + levelRule
           + QStringLiteral("    color: white;}"
                            "QPushButton#LowBattery {    background-image: url(:/images/BatteryIcon25.png);"
                            "    padding: 0px 0px 0px 6px;    font: bold 15px;    text-align: center;"
                            "    color: rgb(237,29,36);}"
                            "QPushButton#EmptyBattery {    background-image: url(:/images/BatteryIcon0.png);")
           + levelRule + QStringLiteral("    color: white;}");
}

} // namespace

QTZLowBatteryAlert* QTZBatteryStatus::lowBatteryAlert() const
{
    return m_alert;
}

QTZBatteryStatus::QTZBatteryStatus(QWidget* parent)
    : QFrame(parent)
    , m_styleSheet(batteryStyleSheet())
    , m_button(new QPushButton(this))
    , m_peekTimer(new QTimer(this))
    , m_alert(new QTZLowBatteryAlert)
{
    setObjectName(QStringLiteral("BatteryFrame"));
    setFixedWidth(75);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(5);
    layout->addWidget(m_button);
    m_peekTimer->setInterval(3000);
    m_peekTimer->setSingleShot(true);

    connect(this, &QTZBatteryStatus::updateACPowerStatus, this, &QTZBatteryStatus::setACPower);
    connect(this, &QTZBatteryStatus::updateBatteryStatus, this, &QTZBatteryStatus::setValue);
    connect(m_peekTimer, &QTimer::timeout, this, &QTZBatteryStatus::hideBattery);
    connect(m_button, &QPushButton::clicked, this, &QTZBatteryStatus::showBattery);
    connect(this, &QTZBatteryStatus::showBatteryAlert, m_alert.data(), &QTZLowBatteryAlert::updateReading);
    connect(this, &QTZBatteryStatus::hideBatteryAlert, m_alert.data(), &QTZLowBatteryAlert::disableBatteryAlert);

    updateStyle();

    // Last: the callbacks may run on DDS threads as soon as the readers exist.
    m_power = std::make_unique<PowerFeed>(
        [this](const char* topic, bool present) { dds_callback_ac_power(topic, present); },
        [this](const char* topic, Orvanth::MeterReading::Reading reading) {
            getBatteryStatus(topic, std::move(reading));
        });
}

QTZBatteryStatus::~QTZBatteryStatus()
{
    // Before anything else goes: a callback still running emits on this object.
    m_power.reset();
    // Its parent is the main window, which may outlive the indicator.
    delete m_alert.data();
}

void QTZBatteryStatus::dds_callback_ac_power(const char*, bool present)
{
    emit updateACPowerStatus(present);
}

void QTZBatteryStatus::getBatteryStatus(const char*, Orvanth::MeterReading::Reading reading)
{
    if (reading.readings().empty()) {
        qDebug() << ">>>>> Error meter reading structure empty.";
        return;
    }
    const double value = reading.readings().front().value();
    if (!std::isfinite(value)) {
        qDebug() << "UserInterface - Battery reading is not a finite number:" << value;
        return;
    }
    emit updateBatteryStatus(value);
}

void QTZBatteryStatus::setACPower(bool present)
{
    m_acPower = present;
    updateStyle();
}

void QTZBatteryStatus::setValue(double value)
{
    if (!std::isfinite(value)) {
        qDebug() << "UserInterface - Battery reading is not a finite number:" << value;
        return;
    }
    if (!inPercentRange(value))
        qDebug() << "UserInterface - Battery reading out of range:" << value;

    m_level = truncatedLevel(value);
    if (m_showingLevel) {
        if (inPercentRange(value))
            setLevelText();
        return;
    }
    if (m_acPower) {
        const bool full = m_level > m_fullThreshold;
        if ((m_currentState == QLatin1String("FullyCharged") && !full)
            || (m_currentState == QLatin1String("Charging") && full))
            updateStyle();
        return;
    }
    if (m_currentState != QLatin1String("EmptyBattery") || m_level >= m_emptyThreshold || !inPercentRange(value)) {
        updateStyle();
        return;
    }
    // Still empty: the alert comes back with every reading until the level recovers.
    setLevelText();
    emit showBatteryAlert(m_level);
}

void QTZBatteryStatus::showBattery()
{
    if (m_showingLevel || m_currentState != QLatin1String("Charging"))
        return;
    m_showingLevel = true;
    m_peekTimer->start();
    updateStyle();
}

void QTZBatteryStatus::hideBattery()
{
    m_peekTimer->stop();
    m_showingLevel = false;
    updateStyle();
}

void QTZBatteryStatus::setStyle(const QString&)
{
    updateStyle();
}

void QTZBatteryStatus::updateStyle()
{
    if (m_acPower && m_showingLevel) {
        if (levelAbove100(m_level)) {
            m_button->setText(QString());
            setState(QStringLiteral("Charging"));
        } else {
            setLevelText();
            setState(QStringLiteral("OnBatteryPower"));
        }
        return;
    }

    m_previousState = m_currentState;
    if (m_acPower) {
        m_button->setText(QString());
        setState(m_level > m_fullThreshold ? QStringLiteral("FullyCharged") : QStringLiteral("Charging"));
        return;
    }

    if (levelAbove100(m_level)) {
        m_button->setText(QString());
        setState(QStringLiteral("Charging"));
        return;
    }
    setLevelText();
    if (m_level >= m_fullThreshold)
        setState(QStringLiteral("FullBattery"));
    else if (m_level >= m_mostlyFullThreshold)
        setState(QStringLiteral("MostlyFullBattery"));
    else if (m_level >= m_halfThreshold)
        setState(QStringLiteral("HalfBattery"));
    else if (m_level >= m_quarterThreshold)
        setState(QStringLiteral("QuarterBattery"));
    else if (m_level < m_emptyThreshold)
        setState(QStringLiteral("EmptyBattery"));
    else
        setState(QStringLiteral("LowBattery"));
}

void QTZBatteryStatus::setState(const QString& state)
{
    const bool leavesEmpty = m_currentState == QLatin1String("EmptyBattery") && state != m_currentState;
    m_currentState = state;
    m_button->setObjectName(state);
    // Applied again so that the new object name picks its rule.
    setStyleSheet(m_styleSheet);
    // Mains power or a recovered level: the alert has nothing more to say.
    if (leavesEmpty)
        emit hideBatteryAlert();
}

void QTZBatteryStatus::setLevelText()
{
    m_button->setText(QString::number(m_level) + QLatin1Char('%'));
}
