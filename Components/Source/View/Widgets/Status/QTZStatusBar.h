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
class QHBoxLayout;
class QLabel;
class QMouseEvent;
class QPushButton;
class QTZBatteryStatus;

class EventFeed;

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
    bool isAlert() const { return m_alert; }
    /// An information message came since the log was last closed.
    bool hasNewMessage() const { return m_newMessage; }
    bool isLogShown() const { return m_logShown; }
    /// The message text on show.
    QString lastText() const { return m_lastText; }
    int messageCount() const { return m_messageCount; }
    /// Alerts held back while the application initialises, oldest first.
    QStringList pendingAlerts() const { return m_pendingAlerts; }
    int smallWidth() const { return m_smallWidth; }
    int iconsWidth() const { return m_iconsWidth; }
    QTZMsgLogger* messageLog() const { return m_log.data(); }
    SpeechBubbleImpl* speechBubble() const { return m_speechBubble.data(); }
    /// Null except on handheld, portrait and landscape systems.
    QTZBatteryStatus* batteryStatus() const { return m_battery; }

    /**
     * Writes one message into \a log as the status bars do and returns its line: the
     * \a messageCount-th message (counting from 0) is appended while the log has room,
     * later ones overwrite the oldest line; warnings and alerts in red, the rest in
     * black. A message without text or of an unknown class is logged and filed all the
     * same (an unknown class as "INFO").
     */
    static QString fileMessage(MsgLogger* log, int messageCount, const QString& desc, const QString& dateTime,
                               Orvanth::Event::EventClass evt);

    /// The bar's style sheet at the size \a size: "Small", "Max", any other "Tiny".
    static QString sizeStyleSheet(const QString& size);
    /// Added to the size's sheet while an information message is pending.
    static QString infoIconStyleSheet();
    /// Added to the size's sheet in the alert state: red borders and alert icon.
    static QString alertStyleSheet();
    /// Slides the label \a out up by \a distance out of view and \a in up into view.
    static void slideText(QLabel* out, QLabel* in, int distance);

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
    void buildStyleSheets();
    void setCSS();
    void showInfoMessage(const QString& text, int scheme);
    void showAlertMessage(const QString& line);
    /// Shows or hides the battery and every widget in the icon box.
    void setIconsVisible(bool visible);
    /// The width \a icon takes in the icon row, as styled.
    static int iconWidth(QWidget* icon);
    QPoint logAnchor() const;
    QSize parentSize() const;

    // A sibling on the parent, as is the bubble; both are deleted with the bar.
    QPointer<QTZMsgLogger> m_log;
    int m_smallWidth = 0;
    int m_barHeight = BarHeight;
    int m_messageCount = 0;
    int m_iconsWidth = 0;
    bool m_logShown = false;
    bool m_labelToggle = false;
    bool m_resumeAnimation = false;
    bool m_newMessage = false;
    bool m_alert = false;
    QString m_sizeState = QStringLiteral("Small");
    QString m_lastText;
    QString m_smallSheet;
    QString m_maxSheet;
    QString m_tinySheet;
    QString m_infoIconSheet;
    QString m_alertSheet;
    QStringList m_pendingAlerts;
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
};

#endif
