#ifndef STATUSMESSAGES_H
#define STATUSMESSAGES_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>

class MsgLogger;
class QLabel;
class SpeechBubbleImpl;

/**
 * What both status bars do with a message, apart from their looks and sizes: files it
 * in the message log (the 1000-line ring, alerts in red), slides its text in, pops
 * critical and status messages up in the speech bubble, raises the alert state for
 * warnings and alerts and hands their lines on, held back while the application
 * initialises if the bar asks for that. It also composes the sheet a bar shows for its
 * size and state.
 *
 * Not a widget: each bar owns one and gives it the log, the bubble and the two text
 * labels it has built. GUI thread only.
 */
class TZUICOMPONENTS_EXPORT StatusMessages : public QObject
{
    Q_OBJECT

public:
    /// Where the bubble shows, asked when a message pops up.
    using BubblePlace = std::function<QPoint()>;
    /// How long a new text takes to slide in.
    static constexpr int SlideMs = 250;

    StatusMessages(int textDistance, QObject* parent);

    void setMessageLog(MsgLogger* log);
    void setSpeechBubble(SpeechBubbleImpl* bubble, BubblePlace place);
    /// The two labels that take turns showing the latest text.
    void setTextLabels(QLabel* first, QLabel* second);
    /// Whether alerts wait for sendHeldBackAlerts() while the application initialises.
    void setHoldsBackAlerts(bool holds);

    /// Files, shows and classifies one message.
    void add(const QString& desc, const QString& dateTime, Orvanth::Event::EventClass evt);
    /// Enters the alert state (once) and hands \a line on, or holds it back.
    void raiseAlert(const QString& line);
    /// Emits sendAlert() for every alert held back, in order, and forgets them.
    void sendHeldBackAlerts();
    /// Leaves the alert state.
    void clearAlert();
    /// Forgets the pending information message; restyles if there was one.
    void clearNewMessage();

    bool isAlert() const { return m_alert; }
    bool hasNewMessage() const { return m_newMessage; }
    QString lastText() const { return m_lastText; }
    int messageCount() const { return m_messageCount; }
    QStringList heldBackAlerts() const { return m_heldBack; }

    /// The bar's sheet at \a size with the state's additions.
    QString styleSheet(const QString& size) const;

    /// Writes one message into \a log as the status bars do and returns its line.
    static QString fileMessage(MsgLogger* log, int messageCount, const QString& desc, const QString& dateTime,
                               Orvanth::Event::EventClass evt);
    /// The bar's sheet at the size \a size: "Small", "Max", any other "Tiny".
    static QString sizeStyleSheet(const QString& size);
    static QString infoIconStyleSheet();
    static QString alertStyleSheet();
    /// Slides the label \a out up by \a distance out of view and \a in up into view.
    static void slideText(QLabel* out, QLabel* in, int distance, int durationMs);

signals:
    /// A warning or alert line for the host to show; \a wait is always false.
    void sendAlert(QString msg, bool wait);
    /// The state behind the bar's sheet has changed.
    void restyle();

private:
    void popUp(const QString& text, int scheme);

    QPointer<MsgLogger> m_log;
    QPointer<SpeechBubbleImpl> m_bubble;
    BubblePlace m_bubblePlace;
    QLabel* m_textLabels[2] = {nullptr, nullptr};
    int m_textDistance;
    int m_messageCount = 0;
    bool m_labelToggle = false;
    bool m_newMessage = false;
    bool m_alert = false;
    bool m_holdsBackAlerts = false;
    QString m_lastText;
    QStringList m_heldBack;
};

#endif
