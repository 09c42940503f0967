// The status bar: engine event messages of each class written on "Lumaro/local/EVTMSG" by a
// real DDS writer reach the bar and its log with their look; alerts held back while the
// application initialises; bad time stamps, empty texts and unknown classes; the log's
// ring of 1000 lines; the cycle of sizes.

#include "LogCapture.h"
#include "StreamCapture.h"

#include "DDS_BaseObj.h"
#include "OrvanthNames.h"
#include "QTZMsgLogger.h"
#include "QTZStatusBar.h"
#include "SpeechBubbleImpl.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QAbstractAnimation>
#include <QDateTime>
#include <QPlainTextEdit>
#include <QTimer>
#include <QPushButton>
#include <QtTest>

#include <memory>

using Orvanth::Event::EventClass;

class TestQTZStatusBar : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void cleanupTestCase();

    void showsEachClassWithItsLook_data();
    void showsEachClassWithItsLook();
    void holdsAlertsBackWhileInitializing();
    void logsBadMessagesAndKeepsThem_data();
    void logsBadMessagesAndKeepsThem();
    void dropsUnknownClassFromEngine();
    void restartsLogAtTopAfterThousandMessages();
    void keepsObjectsFlatUnderThousandsOfMessages();
    void cyclesThroughSizes_data();
    void cyclesThroughSizes();
};

namespace {

constexpr qint64 Stamp = 1700000000; // 2023-11-14

// A desktop with the bar on it, and a writer on the bar's topic that the bar's reader
// has matched.
struct Desktop
{
    Desktop()
    {
        window.resize(1000, 600);
        bar = new QTZStatusBar(&window);
        window.show();
    }

    bool connectWriter()
    {
        writer = std::make_unique<Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_EVENTPubSubType>>(
            Orvanth::Names::EventTopic);
        return writer->waitForSubscribers(1, std::chrono::seconds(10));
    }

    void publish(const QString& text, quint32 eventClass, qint64 stamp)
    {
        Orvanth::Event::Message message;
        message.source("engine 1");
        message.text(text.toStdString());
        message.classification(EventClass(eventClass));
        message.timestamp(stamp);
        Orvanth::TKWW_DDS::ATTR_EVENT sample;
        sample.value(message);
        writer->publish(sample);
    }

    QWidget window;
    QTZStatusBar* bar;
    std::unique_ptr<Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_EVENTPubSubType>> writer;
};

QString localTime(qint64 stamp)
{
    return QDateTime::fromSecsSinceEpoch(stamp).toString(QStringLiteral("MM-dd-yy, hh:mm:ss"));
}

} // namespace

void TestQTZStatusBar::cleanup()
{
    qApp->setProperty("state", QVariant());
}

void TestQTZStatusBar::cleanupTestCase()
{
    Orvanth::DDS_BaseObj::shutdownDds();
}

void TestQTZStatusBar::showsEachClassWithItsLook_data()
{
    QTest::addColumn<quint32>("eventClass");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("classText");
    QTest::addColumn<bool>("alert");
    QTest::addColumn<int>("bubbleScheme");
    QTest::newRow("0 info") << 0u << "Measurement started" << "INFO" << false << -1;
    QTest::newRow("1 critical") << 1u << "Synthesizer unlocked" << "CRITICAL" << false << int(SpeechBubbleImpl::csRed);
    QTest::newRow("2 failure") << 2u << "Calibration data missing" << "FAILURE" << false << -1;
    QTest::newRow("3 warning") << 3u << "Internal temperature 58 \u00b0C" << "WARNING" << true << -1;
    QTest::newRow("4 alert") << 4u << "Fan speed low" << "ALERT" << true << -1;
    QTest::newRow("5 status") << 5u << "GPS locked" << "INFO" << false << int(SpeechBubbleImpl::csGreen);
}

void TestQTZStatusBar::showsEachClassWithItsLook()
{
    QFETCH(quint32, eventClass);
    QFETCH(QString, text);
    QFETCH(QString, classText);
    QFETCH(bool, alert);
    QFETCH(int, bubbleScheme);
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    QSignalSpy alerts(&bar, &QTZStatusBar::sendAlert);
    QVERIFY(desktop.connectWriter());

    desktop.publish(QStringLiteral("  ") + text, eventClass, Stamp);
    QTRY_COMPARE_WITH_TIMEOUT(bar.messageCount(), 1, 10000);

    QCOMPARE(bar.lastText(), text);
    const QString line = localTime(Stamp) + QLatin1Char(' ') + classText + QStringLiteral(":   ") + text;
    QCOMPARE(bar.messageLog()->lines(), QStringList{line});
    QCOMPARE(bar.messageLog()->lineColour(0), alert ? QColor(Qt::red) : QColor(Qt::black));
    QCOMPARE(bar.isAlert(), alert);
    QCOMPARE(alerts.count(), alert ? 1 : 0);
    QCOMPARE(bar.styleSheet().contains(QLatin1String("error_alertIcon.png")), alert);
    QCOMPARE(bar.styleSheet().contains(QLatin1String("alertIcon_info.png")), !alert);
    SpeechBubbleImpl* bubble = bar.speechBubble();
    QCOMPARE(bubble->isVisible(), bubbleScheme >= 0);
    if (bubbleScheme >= 0) {
        QCOMPARE(int(bubble->colorScheme()), bubbleScheme);
        QCOMPARE(bubble->text().simplified(), text);
    }
}

void TestQTZStatusBar::holdsAlertsBackWhileInitializing()
{
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    QSignalSpy alerts(&bar, &QTZStatusBar::sendAlert);
    qApp->setProperty("state", QStringLiteral("initializing"));
    bar.addMessage(QStringLiteral("Input level high"), QStringLiteral("01-02-25, 10:00:00"), Orvanth::Event::EVENT_WARNING);
    bar.addMessage(QStringLiteral("Sweep complete"), QStringLiteral("01-02-25, 10:00:01"), Orvanth::Event::EVENT_INFO);
    bar.addMessage(QStringLiteral("Fan speed low"), QStringLiteral("01-02-25, 10:00:02"), Orvanth::Event::EVENT_ALERT);
    QCOMPARE(alerts.count(), 0);
    QVERIFY(bar.isAlert());
    const QStringList held{QStringLiteral("01-02-25, 10:00:00 WARNING: Input level high"),
                           QStringLiteral("01-02-25, 10:00:02 ALERT: Fan speed low")};
    QCOMPARE(bar.pendingAlerts(), held);

    qApp->setProperty("state", QStringLiteral("running"));
    bar.sendAllAlertMessages();
    QCOMPARE(alerts.count(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(alerts.at(i).at(0).toString(), held.at(i));
        QCOMPARE(alerts.at(i).at(1).toBool(), false);
    }
    QVERIFY(bar.pendingAlerts().isEmpty());
    bar.addMessage(QStringLiteral("Reference signal lost"), QString(), Orvanth::Event::EVENT_ALERT);
    QCOMPARE(alerts.count(), 3);

    // The alert icon repeats the alert state's signal with no text.
    bar.findChild<QPushButton*>(QStringLiteral("AlertIcon"))->click();
    QCOMPARE(alerts.count(), 4);
    QCOMPARE(alerts.last().at(0).toString(), QString());
}

void TestQTZStatusBar::logsBadMessagesAndKeepsThem_data()
{
    QTest::addColumn<qint64>("stamp");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("logLine");
    QTest::addColumn<QString>("shownTime");
    QTest::newRow("stamp 0") << qint64(0) << "Trace saved" << "UserInterface - EventMessage TimeStamp out of range: 0"
                             << "0";
    QTest::newRow("negative stamp") << qint64(-3600) << "Trace saved"
                                    << "UserInterface - EventMessage TimeStamp out of range: -3600" << "-3600";
    QTest::newRow("far future stamp") << (qint64(1) << 62) << "Trace saved"
                                      << "UserInterface - EventMessage TimeStamp out of range: 4611686018427387904"
                                      << "4611686018427387904";
    QTest::newRow("empty text") << Stamp << "" << "UserInterface - StatusBar - message without text" << localTime(Stamp);
}

void TestQTZStatusBar::logsBadMessagesAndKeepsThem()
{
    QFETCH(qint64, stamp);
    QFETCH(QString, text);
    QFETCH(QString, logLine);
    QFETCH(QString, shownTime);
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    LogCapture log;
    QVERIFY(desktop.connectWriter());

    desktop.publish(text, 2, stamp);
    desktop.publish(QStringLiteral("Sweep complete"), 0, Stamp);
    QTRY_COMPARE_WITH_TIMEOUT(bar.messageCount(), 2, 10000);
    QVERIFY2(log.contains(logLine), qPrintable(log.lines().join('\n')));
    QCOMPARE(bar.messageLog()->lines().first(), shownTime + QStringLiteral(" FAILURE: ") + text);
    QCOMPARE(bar.lastText(), QStringLiteral("Sweep complete"));
}

void TestQTZStatusBar::dropsUnknownClassFromEngine()
{
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    StreamCapture errors(std::cerr);
    LogCapture log;
    QVERIFY(desktop.connectWriter());

    desktop.publish(QStringLiteral("Unclassified engine event"), 7, Stamp);
    desktop.publish(QStringLiteral("Sweep complete"), 0, Stamp);
    QTRY_COMPARE_WITH_TIMEOUT(bar.messageCount(), 1, 10000);
    QCOMPARE(bar.lastText(), QStringLiteral("Sweep complete"));
    QCOMPARE(errors.count(QStringLiteral("ERROR: unknown classification")), 1);

    // Posted directly, the unknown class is shown as information.
    bar.addMessage(QStringLiteral("Odd"), QString(), EventClass(7));
    QVERIFY(log.contains(QStringLiteral("UserInterface - StatusBar - unknown event class shown as INFO: 7")));
    QCOMPARE(bar.messageLog()->lines().last(), QStringLiteral(" INFO: Odd"));
}

void TestQTZStatusBar::restartsLogAtTopAfterThousandMessages()
{
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    for (int i = 0; i < 1001; ++i)
        bar.addMessage(QString::number(i), QStringLiteral("t"), i == 1000 ? Orvanth::Event::EVENT_ALERT
                                                                          : Orvanth::Event::EVENT_INFO);
    const QStringList lines = bar.messageLog()->lines();
    QCOMPARE(lines.size(), 1000);
    QCOMPARE(lines.first(), QStringLiteral("t ALERT: 1000"));
    QCOMPARE(lines.at(1), QStringLiteral("t INFO: 1"));
    QCOMPARE(bar.messageLog()->lineColour(0), QColor(Qt::red));
    QCOMPARE(bar.messageLog()->lineColour(1), QColor(Qt::black));
}

void TestQTZStatusBar::keepsObjectsFlatUnderThousandsOfMessages()
{
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    const auto counts = [&desktop, &bar] {
        const QTextDocument* document = bar.messageLog()->findChild<QPlainTextEdit*>()->document();
        return QVector<int>{desktop.window.findChildren<QObject*>().size(),
                            desktop.window.findChildren<QAbstractAnimation*>().size(),
                            desktop.window.findChildren<QTimer*>().size(), document->blockCount(),
                            document->availableUndoSteps()};
    };
    // Every class in turn, alerts held back and sent, the bubble and the slides included.
    const auto post = [&bar](int count) {
        for (int i = 0; i < count; ++i) {
            bar.addMessage(QStringLiteral("Message %1").arg(i), QStringLiteral("t"), EventClass(i % 6));
            if (i % 100 == 0)
                QCoreApplication::processEvents();
        }
        bar.sendAllAlertMessages();
        QTest::qWait(300);
    };
    // The first rounds fill the ring and let the log document build its root frame once.
    post(1000);
    post(1000);
    const QVector<int> settled = counts();
    post(3000);
    QCOMPARE(counts(), settled);
    QCOMPARE(settled.at(3), 1000);
    QCOMPARE(settled.at(4), 0);
}

void TestQTZStatusBar::cyclesThroughSizes_data()
{
    QTest::addColumn<bool>("tiny");
    QTest::newRow("small and max") << false;
    QTest::newRow("small, max and tiny") << true;
}

void TestQTZStatusBar::cyclesThroughSizes()
{
    QFETCH(bool, tiny);
    Desktop desktop;
    QTZStatusBar& bar = *desktop.bar;
    QSignalSpy maximized(&bar, &QTZStatusBar::maximized);
    QSignalSpy minimized(&bar, &QTZStatusBar::minimized);
    QCOMPARE(bar.geometry(), QRect(300, 550, bar.smallWidth(), QTZStatusBar::BarHeight));

    // From "Max", as the property always moves on from there.
    bar.setProperty("TinySizeEnabled", tiny);
    QVERIFY(minimized.wait());
    QCOMPARE(bar.sizeState(), tiny ? QStringLiteral("Tiny") : QStringLiteral("Small"));
    if (tiny) {
        QCOMPARE(bar.geometry(), QRect(475, 565, 50, 70));
        QPushButton* maxButton = bar.findChild<QPushButton*>(QStringLiteral("MaxButton"));
        QVERIFY(maxButton->isVisible());
        QVERIFY(!bar.findChild<QWidget*>(QStringLiteral("AlertIcon"))->isVisible());
        maxButton->click();
        QVERIFY(minimized.wait());
        QCOMPARE(bar.sizeState(), QStringLiteral("Small"));
        QVERIFY(!maxButton->isVisible());
    }

    // "Max" keeps the left edge and reaches to 5 pixels short of the right one.
    const int x = bar.x();
    QPushButton* minMax = bar.findChild<QPushButton*>(QStringLiteral("MinMaxIcon"));
    minMax->click();
    QVERIFY(maximized.wait());
    QCOMPARE(bar.sizeState(), QStringLiteral("Max"));
    QCOMPARE(bar.geometry(), QRect(x, 550, 1000 - 5 - x, QTZStatusBar::BarHeight));
    QVERIFY(bar.findChild<QWidget*>(QStringLiteral("LblText"))->isVisible());

    minMax->click();
    QVERIFY(minimized.wait());
    QCOMPARE(bar.sizeState(), tiny ? QStringLiteral("Tiny") : QStringLiteral("Small"));
    QVERIFY(!bar.findChild<QWidget*>(QStringLiteral("LblText"))->isVisible());
}

QTEST_MAIN(TestQTZStatusBar)
#include "tst_qtzstatusbar.moc"
