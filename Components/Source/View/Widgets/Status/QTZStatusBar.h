#ifndef QTZSTATUSBAR_H
#define QTZSTATUSBAR_H

#include "EventMessageFormat.h"
#include "QTZMsgLogger.h"
#include "SpeechBubbleImpl.h"
#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <QFrame>
#include <QPointer>
#include <QPropertyAnimation>
#include <QString>
#include <QStringList>

#include <memory>

class MsgLogger;
class StatusMessages;
class QHBoxLayout;
class QLabel;
class QMouseEvent;
class QPushButton;
class QTZBatteryStatus;

class EventFeed;
class EventHandOff;

/**
 * The status bar at the bottom of the desktop: shows the latest engine event message
 * with the alert, lock and maximise icons (and the battery on compact systems), files
 * every message in its message log, raises an alert state for warnings and alerts, pops
 * critical and status messages up in a speech bubble, and grows and shrinks between the
 * sizes "Small", "Max" and "Tiny".
 *
 * Engine event messages arrive over DDS on the topic "Lumaro/local/EVTMSG"; widgets post
 * their own with addMessage(). While the application option "state" reads "initializing"
 * alerts are held back until the host calls sendAllAlertMessages().
 *
 * The bar, its log and its bubble are placed in the coordinates of the parent (the
 * desktop); the log and the bubble are siblings of the bar.
 */
class TZUICOMPONENTS_EXPORT QTZStatusBar : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(bool TinySizeEnabled READ tinySizeEnabled WRITE setTinySizeEnabled)

public:
    /// The bar's height and the distance the message text slides.
    static constexpr int BarHeight = 40;
    static constexpr int MaximumWidth = 855;
    /// Duration of the size and text animations.
    static constexpr int AnimationMs = 250;

    explicit QTZStatusBar(QWidget* parent);
    /// Ends the event subscription first (waiting for a callback still running).
    ~QTZStatusBar() override;

    bool tinySizeEnabled() const { return m_tinySizeEnabled; }
    /// Stores \a enabled and moves the bar on from "Max": to "Tiny" when enabled,
    /// otherwise to "Small".
    void setTinySizeEnabled(bool enabled);

    void logToFile(bool on);
    void setOutputFile(const QString& fileName);

    /// Callback of the event subscription, on a DDS thread: logs the message and emits
    /// updateMessage(), which the bar receives in the GUI thread.
    void dds_callback(const char* topic, Orvanth::Event::Message message);

    /// "Small", "Max" or "Tiny".
    QString sizeState() const { return m_sizeState; }
    bool isAlert() const;
    /// An information message came since the log was last closed.
    bool hasNewMessage() const;
    bool isLogShown() const { return m_logShown; }
    /// The message text on show.
    QString lastText() const;
    int messageCount() const;
    /// Alerts held back while the application initialises, oldest first.
    QStringList pendingAlerts() const;
    int smallWidth() const { return m_smallWidth; }
    int iconsWidth() const { return m_iconsWidth; }
    QTZMsgLogger* messageLog() const { return m_log.data(); }
    SpeechBubbleImpl* speechBubble() const { return m_speechBubble.data(); }
    /// Null except on handheld, portrait and landscape systems.
    QTZBatteryStatus* batteryStatus() const { return m_battery; }

signals:
    void showMessageLog(bool showLog);
    void updateMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt);
    /// A warning or alert line for the host to show; \a wait is always false.
    void sendAlert(QString msg, bool wait);
    void maximized();
    void minimized();

public slots:
    /// Adds \a icon to the icon row, before the alert icon, and widens the bar for it.
    void addIcon(QWidget* icon);
    void addMessage(QString desc, QString dateTime, Orvanth::Event::EventClass evt);
    void addMessage(QString desc, QString dateTime);
    void addMessage(QString desc);
    /// Leaves the alert state.
    void disableAlertMessage();
    /// Emits sendAlert() for every alert held back, in order, and forgets them.
    void sendAllAlertMessages();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void animate();
    void animationFinished();
    void handleAlertIconClicked();
    void minimizeAll();
    void changeState();

private:
    void setCSS();
    /// Shows or hides the battery and every widget in the icon box.
    void setIconsVisible(bool visible);
    /// The width \a icon takes in the icon row, as styled.
    static int iconWidth(QWidget* icon);
    QPoint logAnchor() const;
    QSize parentSize() const;

    // A sibling on the parent, as is the bubble; both are deleted with the bar.
    QPointer<QTZMsgLogger> m_log;
    int m_smallWidth = 0;
    int m_iconsWidth = 0;
    bool m_logShown = false;
    bool m_resumeAnimation = false;
    QString m_sizeState = QStringLiteral("Small");
    StatusMessages* m_messages;
    int m_textWidth = 700;
    QTZBatteryStatus* m_battery = nullptr;
    QPropertyAnimation m_geometryAnimation;
    QPointer<SpeechBubbleImpl> m_speechBubble;
    bool m_tinySizeEnabled = false;
    bool m_compact = false;

    QFrame* m_messageFrame = nullptr;
    QLabel* m_iconBox = nullptr;
    QHBoxLayout* m_iconLayout = nullptr;
    QPushButton* m_minMaxIcon = nullptr;
    QLabel* m_lockIcon = nullptr;
    QPushButton* m_alertIcon = nullptr;
    QLabel* m_textField = nullptr;
    QLabel* m_textLabels[2] = {nullptr, nullptr};
    QPushButton* m_maxButton = nullptr;
    std::unique_ptr<EventFeed> m_events;
    EventHandOff* m_handOff = nullptr;
};

#endif
