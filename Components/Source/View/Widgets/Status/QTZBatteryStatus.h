#ifndef QTZBATTERYSTATUS_H
#define QTZBATTERYSTATUS_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <QFrame>
#include <QPointer>
#include <QString>

#include <memory>

class QPushButton;
class QTimer;
class QTZLowBatteryAlert;

class PowerFeed;

/**
 * The battery indicator of the status bar: a button whose picture and text show mains
 * power or the battery level in six bands, fed by the engines' mains-power and battery
 * topics. On mains power a touch shows the level for three seconds. When the battery is
 * empty it shows a full-screen low-battery alert over the main window.
 *
 * The DDS callbacks run on DDS threads and only emit; every change happens in the GUI
 * thread through the queued connections to the slots.
 */
class TZUICOMPONENTS_EXPORT QTZBatteryStatus : public QFrame
{
    Q_OBJECT

public:
    explicit QTZBatteryStatus(QWidget* parent = nullptr);
    /// Ends both subscriptions (waiting for a callback still running) and deletes the alert.
    ~QTZBatteryStatus() override;

    /// Callback of the mains-power topic.
    void dds_callback_ac_power(const char* topic, bool present);
    /// Callback of the battery topic: hands on the first entry's value.
    void getBatteryStatus(const char* topic, Orvanth::MeterReading::Reading reading);

    /// The button's state: "Charging", "FullyCharged", "OnBatteryPower", "FullBattery",
    /// "MostlyFullBattery", "HalfBattery", "QuarterBattery", "LowBattery" or "EmptyBattery".
    QString state() const { return m_currentState; }
    /// The last level in percent (the reading truncated toward zero).
    int level() const { return m_level; }
    bool hasACPower() const { return m_acPower; }
    QTZLowBatteryAlert* lowBatteryAlert() const;

signals:
    void updateACPowerStatus(bool present);
    void updateBatteryStatus(double value);
    void showBatteryAlert(double level);
    void hideBatteryAlert();

public slots:
    void setACPower(bool present);
    /// One battery reading in percent.
    void setValue(double value);
    /// On mains power: shows the level for three seconds.
    void showBattery();
    void hideBattery();
    /// Restyles; the size name the status bar passes is not used.
    void setStyle(const QString& size);
    /// Chooses the state and text from the power, the level and whether it is shown.
    void updateStyle();

private:
    void setState(const QString& state);
    void setLevelText();

    bool m_acPower = false;
    bool m_showingLevel = false;
    const int m_fullThreshold = 95;
    const int m_mostlyFullThreshold = 65;
    const int m_halfThreshold = 35;
    const int m_quarterThreshold = 16;
    const int m_emptyThreshold = 6;
    int m_level = 100;
    QString m_styleSheet;
    QString m_currentState;
    QString m_previousState;
    QPushButton* m_button;
    QTimer* m_peekTimer;
    QPointer<QTZLowBatteryAlert> m_alert;
    std::unique_ptr<PowerFeed> m_power;
};

#endif
