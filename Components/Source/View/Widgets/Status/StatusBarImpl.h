#ifndef STATUSBARIMPL_H
#define STATUSBARIMPL_H

#include "EventMessageFormat.h"
#include "MsgLogger.h"
#include "SpeechBubbleImpl.h"
#include "tzuicomponents_export.h"

#include <Orvanth.hh>
#include <OrvanthTopics.h>

#include <QFrame>
#include <QPointer>
#include <QPropertyAnimation>
#include <QString>

#include <memory>

class EventFeed;
class EventHandOff;
class LowBatteryAlert;
class PowerFeed;
class RefOscillatorFeed;
class StatusMessages;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QTimer;

/**
 * The older status bar: the message logic of QTZStatusBar (without held-back alerts)
 * in a bar that is either collapsed or expanded, with a simpler battery indicator of its
 * own on portrait systems and the switch of the engines' reference oscillator.
 *
 * The host calls initialize() once module discovery is registered: the attribute
 * "REFOSCILLATOR1" is looked up off the GUI thread, and from then on the oscillator
 * button follows the engine and switches it. Every engine call runs on a worker thread;
 * DDS callbacks only emit.
 */
class TZUICOMPONENTS_EXPORT StatusBarImpl : public QFrame
{
    Q_OBJECT

public:
    static constexpr int BarHeight = 40;
    /// Duration of the size animation.
    static constexpr int AnimationMs = 250;
    /// The attribute value of an external reference oscillator (1 is internal).
    static constexpr CORBA::Long ExternalReference = 2;
    static constexpr CORBA::Long InternalReference = 1;
    /// How long a touch on mains power shows the battery level.
    static constexpr int BatteryShowMs = 3000;

    explicit StatusBarImpl(QWidget* parent);
    /// Ends the subscriptions and waits for engine calls still running.
    ~StatusBarImpl() override;

    /// Looks for the reference oscillator among the modules that module discovery has
    /// loaded, in ascending index order, off the GUI thread; referenceOscillatorSearched()
    /// tells the outcome. A second call while one runs or after one succeeded does nothing.
    void initialize();

    // DDS callbacks, on DDS threads: they only log and emit.
    void dds_callback(const char* topic, Orvanth::Event::Message message);
    void dds_callback_ac_power(const char* topic, bool present);
    void getBatteryStatus(const char* topic, Orvanth::MeterReading::Reading reading);
    void dds_callback_ref_oscillator(const char* topic, CORBA::Long value);
    /// No subscription feeds it; for a host that subscribes to a PLL status itself.
    void dds_callback_pll_status(const char* topic, CORBA::Long status);

    bool isExpanded() const { return m_expanded; }
    bool isAlert() const;
    bool hasNewMessage() const;
    QString lastText() const;
    int messageCount() const;
    MsgLogger* messageLog() const { return m_log.data(); }
    SpeechBubbleImpl* speechBubble() const { return m_speechBubble.data(); }
    /// The battery button's state ("Charging", "FullyCharged", "OnBatteryPower",
    /// "LowBattery"), empty without a battery indicator.
    QString batteryState() const;
    QString batteryText() const;
    LowBatteryAlert* lowBatteryAlert() const;
    /// The oscillator button shows an external reference.
    bool isExternalReference() const;
    bool hasReferenceOscillator() const;

signals:
    void showMessageLog(bool showLog);
    void updateMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt);
    void sendAlert(QString msg, bool wait);
    void maximized();
    void minimized();
    void updateACPowerStatus(bool present);
    void updateBatteryStatus(double value);
    void showBatteryAlert(double level);
    void hideBatteryAlert();
    void updateRefOscillatorStatus(bool external);
    void updatePLLStatus(int status);
    /// initialize() has ended its search; \a found tells whether the button is bound.
    void referenceOscillatorSearched(bool found);

public slots:
    /// Appends \a icon to the icon row.
    void addIcon(QWidget* icon);
    void addMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt);
    void addMessage(QString desc, QString dateTime);
    void addMessage(QString desc);
    void disableAlertMessage();
    /// Expands or collapses the bar (closing an open log first).
    void animate();

private slots:
    void animationFinished();
    void handleAlertIconClicked();
    void minimizeAll();
    void setACPowerStatus(bool present);
    void setBatteryStatus(double value);
    void showBatteryStatus();
    void hideBatteryStatus();
    void setReferenceOscillator(bool extRef);

private:
    void buildBattery(QHBoxLayout* row);
    void setCSS();
    void updateBatteryStyle();
    void fixIconBoxWidth();
    QSize parentSize() const;

    QPointer<MsgLogger> m_log;
    int m_smallWidth = 0;
    bool m_logShown = false;
    bool m_resumeAnimation = false;
    bool m_expanded = false;
    StatusMessages* m_messages;
    int m_textWidth = 700;
    QPropertyAnimation m_geometryAnimation;
    QPointer<SpeechBubbleImpl> m_speechBubble;

    QFrame* m_messageFrame = nullptr;
    QLabel* m_iconBox = nullptr;
    QHBoxLayout* m_iconLayout = nullptr;
    QPushButton* m_minMaxIcon = nullptr;
    QLabel* m_lockIcon = nullptr;
    QPushButton* m_alertIcon = nullptr;
    QPushButton* m_refOscIcon = nullptr;
    QLabel* m_textField = nullptr;
    QLabel* m_textLabels[2] = {nullptr, nullptr};
    std::unique_ptr<EventFeed> m_events;
    EventHandOff* m_handOff = nullptr;

    // The battery indicator, on portrait systems only.
    QFrame* m_batteryFrame = nullptr;
    QPushButton* m_batteryButton = nullptr;
    QTimer* m_batteryHideTimer = nullptr;
    QPointer<LowBatteryAlert> m_batteryAlert;
    bool m_acPower = false;
    bool m_showingLevel = false;
    int m_level = 100;
    QString m_batteryState;
    QString m_previousBatteryState;
    std::unique_ptr<PowerFeed> m_power;

    // The reference oscillator: found by initialize(), switched on a pool of one thread
    // so that the engine gets the switches in the order the user made them.
    std::unique_ptr<RefOscillatorFeed> m_refOscillator;
};

#endif
