#include "StatusMessages.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "EventMessageFormat.h"
#include "MsgLogger.h"
#include "SpeechBubbleImpl.h"

#include <QDebug>
#include <QLabel>
#include <QPropertyAnimation>

namespace {

// The sheet shared by the three sizes; each size changes a few of its rules.
QString barSheet(const QString& labelBoxRule, const QString& minMaxImage, const QString& iconMargin,
                 const QString& textRules)
{
    const QString iconSize =
        QStringLiteral("    min-width: 30px;    max-width: 30px;    min-height: 30px;    max-height: 30px;");
    return QStringLiteral("QFrame#StatusBar {    background-color: transparent;}"
                          "QFrame#MessageFrame {    background-color: rgb(63,63,63);    border: 2px solid ")
           + CSS::border()
           + QStringLiteral(";    border-radius: 18px;    padding-left: 2px;}") + labelBoxRule
           + QStringLiteral("QPushButton#MinMaxIcon {") + minMaxImage + QStringLiteral("    border: none;")
           + iconSize + iconMargin + QStringLiteral("}QLabel#LockIcon {    background-image: url(:/images/lockIcon.png);"
                                                    "    background-position: center;    background-repeat: no-repeat;")
           + iconSize + iconMargin
           + QStringLiteral("}QPushButton#AlertIcon {    border-image: url(:/images/alertIcon.png);") + iconSize
           + iconMargin + QStringLiteral("}QLabel#TestIcon {    border: 2px solid green;") + iconSize
           + QStringLiteral("}QPushButton#MaxButton {    border: none;    background-color: transparent;"
                            "    color: transparent;}")
           + textRules;
}

} // namespace

StatusMessages::StatusMessages(int textDistance, QObject* parent)
    : QObject(parent), m_textDistance(textDistance)
{
}

void StatusMessages::setMessageLog(MsgLogger* log)
{
    m_log = log;
}

void StatusMessages::setSpeechBubble(SpeechBubbleImpl* bubble, BubblePlace place)
{
    m_bubble = bubble;
    m_bubblePlace = std::move(place);
}

void StatusMessages::setTextLabels(QLabel* first, QLabel* second)
{
    m_textLabels[0] = first;
    m_textLabels[1] = second;
}

void StatusMessages::setHoldsBackAlerts(bool holds)
{
    m_holdsBackAlerts = holds;
}

QString StatusMessages::fileMessage(MsgLogger* log, int messageCount, const QString& desc, const QString& dateTime,
                                    Orvanth::Event::EventClass evt)
{
    if (desc.trimmed().isEmpty())
        qDebug() << "UserInterface - StatusBar - message without text, class" << quint32(evt);
    if (quint32(evt) > quint32(Orvanth::Event::EVENT_STATUS))
        qDebug() << "UserInterface - StatusBar - unknown event class shown as INFO:" << quint32(evt);
    const QString line = EventMessageFormat::line(dateTime, evt, desc);
    if (!log)
        return line;

    const bool red = EventMessageFormat::isAlertClass(evt);
    log->setTextColor(red ? Qt::red : Qt::black);
    if (messageCount < MsgLogger::MaximumLines) {
        log->addMessage(line, true);
    } else {
        if (messageCount % MsgLogger::MaximumLines == 0)
            log->setTextCursorStart();
        log->addMessage(line, false);
    }
    if (red)
        log->setTextColor(Qt::black);
    return line;
}

void StatusMessages::add(const QString& desc, const QString& dateTime, Orvanth::Event::EventClass evt)
{
    const QString line = fileMessage(m_log, m_messageCount, desc, dateTime, evt);
    if (EventMessageFormat::isAlertClass(evt)) {
        raiseAlert(line);
    } else {
        m_newMessage = true;
        if (evt == Orvanth::Event::EVENT_CRITICAL)
            popUp(desc, SpeechBubbleImpl::csRed);
        else if (evt == Orvanth::Event::EVENT_STATUS)
            popUp(desc, SpeechBubbleImpl::csGreen);
        else
            emit restyle();
    }

    m_labelToggle = !m_labelToggle;
    QLabel* in = m_textLabels[m_labelToggle ? 1 : 0];
    QLabel* out = m_textLabels[m_labelToggle ? 0 : 1];
    const QString text = desc.simplified();
    if (in && out) {
        in->setText(text);
        out->setText(m_lastText);
        slideText(out, in, m_textDistance, SlideMs);
    }
    m_lastText = text;
    ++m_messageCount;
}

void StatusMessages::popUp(const QString& text, int scheme)
{
    if (m_bubble) {
        m_bubble->setColorScheme(SpeechBubbleImpl::ColorScheme(scheme));
        m_bubble->setText(text);
        m_bubble->show(m_bubblePlace ? m_bubblePlace() : QPoint());
    }
    emit restyle();
}

void StatusMessages::raiseAlert(const QString& line)
{
    if (!m_alert) {
        m_alert = true;
        if (m_log)
            m_log->setAlertStyle(true);
        emit restyle();
    }
    if (m_holdsBackAlerts && ApplicationOptions::isInitializing())
        m_heldBack.append(line);
    else
        emit sendAlert(line, false);
}

void StatusMessages::sendHeldBackAlerts()
{
    // Taken first: a receiver may post further messages while we emit.
    const QStringList pending = m_heldBack;
    m_heldBack.clear();
    for (const QString& alert : pending)
        emit sendAlert(alert, false);
}

void StatusMessages::clearAlert()
{
    m_alert = false;
    if (m_log) {
        m_log->raise();
        m_log->setAlertStyle(false);
    }
    emit restyle();
}

void StatusMessages::clearNewMessage()
{
    if (!m_newMessage)
        return;
    m_newMessage = false;
    emit restyle();
}

QString StatusMessages::styleSheet(const QString& size) const
{
    QString sheet = sizeStyleSheet(size);
    if (m_alert)
        sheet += alertStyleSheet();
    else if (m_newMessage)
        sheet += infoIconStyleSheet();
    return sheet;
}

QString StatusMessages::sizeStyleSheet(const QString& size)
{
    if (size == QLatin1String("Small")) {
        return barSheet(QStringLiteral("QLabel#LabelBox {    background-color: transparent;    border: none;"
                                       "    min-height: 32px;    max-height: 32px;}"),
                        QStringLiteral("    image: url(:/images/svg/maximizeButton.svg);"),
                        QStringLiteral("    margin-right: 2px;"), QString());
    }
    if (size == QLatin1String("Max")) {
        return barSheet(
            QStringLiteral("QLabel#LabelBox {    background-color: transparent;    border: none;    padding: 0px;"
                           "    min-height: 32px;    max-height: 32px;}"),
            QStringLiteral("    image: url(:/images/svg/restoreButton.svg);"), QStringLiteral("    margin-right: 4px;"),
            QStringLiteral("QLabel#LblText {    background-color: rgb(153,153,153);    border: 2px solid ")
                + CSS::border()
                + QStringLiteral(";    border-radius: 14px;    font-size: 18px;    color: black;"
                                 "    margin: 0px 2px 0px 0px;    padding-right: 4px;    padding-top: 4px;"
                                 "    min-height: 26px;    max-height: 26px;}"
                                 "QLabel#HiddenLabel {    background-color: transparent;    font-size: 18px;"
                                 "    color: black;    padding: 7px 0px 0px 4px;    margin: 0px 2px 0px 0px;"
                                 "    min-height: 26px;    max-height: 26px;    border: none;}"));
    }
    return barSheet(QStringLiteral("QLabel#LabelBox {    background-color: transparent;    border: none;"
                                   "    min-height: 34px;    max-height: 34px;}"),
                    QStringLiteral("    image: none;"), QStringLiteral("    margin: 0px;"), QString());
}

QString StatusMessages::infoIconStyleSheet()
{
    return QStringLiteral("QPushButton#AlertIcon {    border-image: url(:/images/alertIcon_info.png);}");
}

QString StatusMessages::alertStyleSheet()
{
    return QStringLiteral("QFrame#MessageFrame {    border: 2px solid #f00;}"
                          "QPushButton#AlertIcon {    border-image: url(:/images/error_alertIcon.png);}"
                          "QLabel#LblText {    border: 2px solid #f00;}");
}

void StatusMessages::slideText(QLabel* out, QLabel* in, int distance, int durationMs)
{
    const auto slide = [durationMs](QLabel* label, const QPoint& from, const QPoint& to) {
        // A slide still running from the previous message would fight this one.
        for (QPropertyAnimation* running : label->findChildren<QPropertyAnimation*>())
            running->stop();
        auto* animation = new QPropertyAnimation(label, "pos", label);
        animation->setDuration(durationMs);
        animation->setStartValue(from);
        animation->setEndValue(to);
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    };
    slide(out, QPoint(0, 0), QPoint(0, -distance));
    slide(in, QPoint(0, distance), QPoint(0, -4));
}
