// The status area: the message core both bars share (filing, the 1000-line ring, class
// colours, held-back alerts), the log panel, the speech bubble, the battery indicators,
// the bar's sizes, engine messages over DDS, and the reference oscillator and power
// topics of the engine simulator.

#include "LogCapture.h"
#include "QueuedSignalSpy.h"
#include "SimulatorSession.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "EventHandOff.h"
#include "EventMessageFormat.h"
#include "LowBatteryAlert.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h"
#include "QTZStatusBar.h"
#include "StatusBarImpl.h"
#include "StatusMessages.h"
#include "SystemModule.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <thread>

using Orvanth::Event::EventClass;

namespace {

// What a widget paints, over nothing.
QImage painted(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

bool paintedAt(const QImage& image, const QPoint& point)
{
    return qAlpha(image.pixel(point)) > 128;
}

// The pictures a style sheet names that are missing from the resources.
QStringList missingPictures(const QString& sheet)
{
    QStringList missing;
    for (auto it = QRegularExpression(QStringLiteral("url\\((:/[^)]+)\\)")).globalMatch(sheet); it.hasNext();) {
        const QString path = it.next().captured(1);
        if (!QFile::exists(path))
            missing << path;
    }
    return missing;
}

} // namespace

class TestStatus : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void filesEachClassWithItsLook_data();
    void filesEachClassWithItsLook();
    void onlyTheCurrentBarHoldsAlertsBack();
    void ringKeepsTheNewestThousandLines_data();
    void ringKeepsTheNewestThousandLines();
    void handOffKeepsEveryMessageInOrder();
    void logCopiesLinesToItsFile_data();
    void logCopiesLinesToItsFile();
    void logOpensAboveItsAnchorAndCloses();
    void keepsObjectsFlatUnderThousandsOfMessages();
    void barCyclesThroughItsSizes_data();
    void barCyclesThroughItsSizes();
    void showsEngineMessagesFromDds();
    void bubbleWrapsTextAndFadesOutOnATapInside();
    void batteryIndicatorsFollowPowerAndLevel_data();
    void batteryIndicatorsFollowPowerAndLevel();
    void followsTheEngineSimulator();

private:
    NamingServiceProcess m_naming;
    QWidget m_mainWindow;
};

void TestStatus::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
    m_mainWindow.resize(1000, 600);
    GlobalImpl::getInstance()->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_mainWindow);
}

void TestStatus::cleanup()
{
    for (const char* name : {"state", "-res", "-systype"})
        qApp->setProperty(name, QVariant());
}

void TestStatus::cleanupTestCase()
{
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestStatus::filesEachClassWithItsLook_data()
{
    QTest::addColumn<quint32>("eventClass");
    QTest::addColumn<QString>("classText");
    QTest::addColumn<bool>("alert");
    QTest::addColumn<int>("bubbleScheme");
    QTest::newRow("0 info") << 0u << "INFO" << false << -1;
    QTest::newRow("1 critical") << 1u << "CRITICAL" << false << int(SpeechBubbleImpl::csRed);
    QTest::newRow("2 failure") << 2u << "FAILURE" << false << -1;
    QTest::newRow("3 warning") << 3u << "WARNING" << true << -1;
    QTest::newRow("4 alert") << 4u << "ALERT" << true << -1;
    QTest::newRow("5 status") << 5u << "INFO" << false << int(SpeechBubbleImpl::csGreen);
    QTest::newRow("7 unknown") << 7u << "INFO" << false << -1;
}

void TestStatus::filesEachClassWithItsLook()
{
    QFETCH(quint32, eventClass);
    QFETCH(QString, classText);
    QFETCH(bool, alert);
    QFETCH(int, bubbleScheme);
    QTZStatusBar bar(&m_mainWindow);
    QSignalSpy alerts(&bar, &QTZStatusBar::sendAlert);
    // Breaks stay inside the message's one line of the log.
    bar.addMessage(QStringLiteral("  Fan\nspeed\r\nlow") + QChar(QChar::ParagraphSeparator) + "!", "t",
                   EventClass(eventClass));
    QCOMPARE(bar.lastText(), QStringLiteral("Fan speed low !"));
    const QString breaks = QStringList({"Fan", "speed", "low", "!"}).join(QChar::LineSeparator);
    QCOMPARE(bar.messageLog()->lines(), QStringList("t " + classText + ":   " + breaks));
    QCOMPARE(bar.messageLog()->lineColour(0), alert ? QColor(Qt::red) : QColor(Qt::black));
    QCOMPARE(alerts.count(), alert ? 1 : 0);
    QCOMPARE(bar.isAlert(), alert);
    QCOMPARE(bar.styleSheet().contains(QLatin1String("error_alertIcon.png")), alert);
    QCOMPARE(bar.styleSheet().contains(QLatin1String("alertIcon_info.png")), !alert);
    QCOMPARE(bar.messageLog()->styleSheet().contains(QLatin1String("#f00")), alert);
    QCOMPARE(missingPictures(bar.styleSheet()), QStringList());
    QCOMPARE(bar.speechBubble()->isVisibleTo(&m_mainWindow), bubbleScheme >= 0);
    if (bubbleScheme >= 0)
        QCOMPARE(int(bar.speechBubble()->colorScheme()), bubbleScheme);
    bar.disableAlertMessage();
    QVERIFY(!bar.isAlert());
}

void TestStatus::onlyTheCurrentBarHoldsAlertsBack()
{
    QTZStatusBar bar(&m_mainWindow);
    StatusBarImpl older(&m_mainWindow);
    QSignalSpy alerts(&bar, &QTZStatusBar::sendAlert);
    QSignalSpy olderAlerts(&older, &StatusBarImpl::sendAlert);
    qApp->setProperty("state", QStringLiteral("initializing"));
    for (EventClass evt : {Orvanth::Event::EVENT_WARNING, Orvanth::Event::EVENT_INFO, Orvanth::Event::EVENT_ALERT}) {
        bar.addMessage(QStringLiteral("Fan"), QStringLiteral("t"), evt);
        older.addMessage(QStringLiteral("Fan"), QStringLiteral("t"), evt);
    }
    const QStringList held{QStringLiteral("t WARNING: Fan"), QStringLiteral("t ALERT: Fan")};
    QVERIFY(alerts.isEmpty());
    QCOMPARE(bar.pendingAlerts(), held);
    QCOMPARE(olderAlerts.count(), 2);
    qApp->setProperty("state", QStringLiteral("running"));
    bar.sendAllAlertMessages();
    QVERIFY(bar.pendingAlerts().isEmpty());
    const QList<QList<QVariant>> sent{{held.at(0), false}, {held.at(1), false}};
    QCOMPARE(QList<QList<QVariant>>(alerts), sent);
    QCOMPARE(QList<QList<QVariant>>(olderAlerts), sent);
    // The alert icon repeats the alert state's signal with no text.
    bar.findChild<QPushButton*>(QStringLiteral("AlertIcon"))->click();
    QCOMPARE(alerts.last().at(0).toString(), QString());

    // Without an oscillator found, the older bar's switch does nothing.
    QSignalSpy searched(&older, &StatusBarImpl::referenceOscillatorSearched);
    older.initialize();
    QCOMPARE(searched.count(), 1);
    QVERIFY(!searched.first().at(0).toBool());
    older.findChild<QPushButton*>(QStringLiteral("RefOscIcon"))->click();
    QCOMPARE(older.messageCount(), 3);
}

void TestStatus::ringKeepsTheNewestThousandLines_data()
{
    QTest::addColumn<int>("count");
    for (int count : {1000, 1001, 2001, 2500})
        QTest::addRow("%d", count) << count;
}

void TestStatus::ringKeepsTheNewestThousandLines()
{
    QFETCH(int, count);
    MsgLogger log(&m_mainWindow, QPoint(10, 550));
    StatusMessages messages(QTZStatusBar::BarHeight, nullptr);
    messages.setMessageLog(&log);
    const auto line = [](int i) {
        return EventMessageFormat::line("t", i % 3 ? Orvanth::Event::EVENT_INFO : Orvanth::Event::EVENT_ALERT,
                                        QString::number(i));
    };
    for (int i = 0; i < count; ++i)
        messages.add(QString::number(i), "t", i % 3 ? Orvanth::Event::EVENT_INFO : Orvanth::Event::EVENT_ALERT);
    // Line p holds the newest message whose number leaves p modulo 1000, alerts in red.
    QStringList shown = log.lines();
    QCOMPARE(shown.size(), qMin(count, MsgLogger::MaximumLines));
    QStringList expected;
    for (int p = 0; p < shown.size(); ++p) {
        const int newest = p + (count - 1 - p) / MsgLogger::MaximumLines * MsgLogger::MaximumLines;
        expected << line(newest) + (newest % 3 ? "" : " (red)");
        shown[p] += log.lineColour(p) == Qt::red ? " (red)" : "";
    }
    QCOMPARE(shown, expected);
}

void TestStatus::logCopiesLinesToItsFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("reports");
    QTest::newRow("writable") << "events.log" << 0;
    QTest::newRow("missing folder") << "/nonexistent-folder/events.log" << 3;
    // A full disk: every write fails, reported once.
    QTest::newRow("full disk") << "/dev/full" << 1;
}

void TestStatus::logCopiesLinesToItsFile()
{
    QFETCH(QString, fileName);
    QFETCH(int, reports);
    QTemporaryDir directory;
    QFile file(QDir(directory.path()).filePath(fileName));
    QTZStatusBar bar(&m_mainWindow);
    bar.setOutputFile(file.fileName());
    bar.addMessage(QStringLiteral("before logging"));
    bar.logToFile(true);
    LogCapture capture;
    for (const QString& text : {QStringLiteral("Temperatur 58 \u00b0C"), QStringLiteral("b"), QStringLiteral("c")})
        bar.addMessage(text, QStringLiteral("t"));
    QCOMPARE(capture.linesContaining(QStringLiteral("Unable to")).size(), reports);
    QCOMPARE(bar.messageLog()->lines().size(), 4);
    if (reports == 0) {
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), QStringLiteral("t INFO: Temperatur 58 \u00b0Ct INFO: bt INFO: c"));
    }
}

void TestStatus::logOpensAboveItsAnchorAndCloses()
{
    // Animated on a benchtop, at once on a handheld.
    for (const char* systemType : {"benchtop", "handheld"}) {
        qApp->setProperty("-systype", systemType);
        QWidget screen;
        screen.resize(800, 600);
        QTZMsgLogger log(&screen, QPoint(40, 550));
        log.setMinimumWidth(300);
        log.resize(300, 0);
        screen.show();
        for (int i = 0; i < 200; ++i)
            log.addMessage(QString::number(i), true);
        QSignalSpy finished(&log, &MsgLogger::finished);
        log.animate(true);
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 2000);
        QCOMPARE(log.geometry(), QRect(40, 42, 300, 500));
        // Open, the log shows its end.
        auto* text = log.findChild<QPlainTextEdit*>();
        QVERIFY(text->verticalScrollBar()->maximum() > 0);
        QCOMPARE(text->verticalScrollBar()->value(), text->verticalScrollBar()->maximum());
        // Its lines cannot be selected.
        QTextCursor selection(text->document());
        selection.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 3);
        text->setTextCursor(selection);
        QVERIFY(!text->textCursor().hasSelection());
        log.animate(false);
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 2, 2000);
        QCOMPARE(log.geometry(), QRect(40, 542, 300, 0));
        log.setPoint(QPoint(70, 500));
        QCOMPARE(log.geometry(), QRect(70, 492, 300, 0));
    }
}

void TestStatus::keepsObjectsFlatUnderThousandsOfMessages()
{
    QWidget desktop;
    QTZStatusBar bar(&desktop);
    const QTextDocument* document = bar.messageLog()->findChild<QPlainTextEdit*>()->document();
    const auto counts = [&] {
        return QVector<int>{desktop.findChildren<QObject*>().size(), desktop.findChildren<QAbstractAnimation*>().size(),
                            document->blockCount(), document->availableUndoSteps()};
    };
    // Every class in turn, alerts held back and sent, the bubble and the slides included.
    // The first two rounds fill the ring and let the document build its root frame once.
    QVector<int> settled;
    for (int round = 0; round < 4; ++round) {
        for (int i = 0; i < 1000; ++i)
            bar.addMessage(QStringLiteral("Message %1").arg(i), QStringLiteral("t"), EventClass(i % 6));
        bar.sendAllAlertMessages();
        QTest::qWait(300);
        if (round == 1)
            settled = counts();
    }
    QCOMPARE(counts(), settled);
    QCOMPARE(settled.mid(2), (QVector<int>{1000, 0}));
}

void TestStatus::barCyclesThroughItsSizes_data()
{
    QTest::addColumn<bool>("tiny");
    QTest::newRow("small and max") << false;
    QTest::newRow("small, max and tiny") << true;
}

void TestStatus::barCyclesThroughItsSizes()
{
    QFETCH(bool, tiny);
    QWidget desktop;
    desktop.resize(1000, 600);
    auto* bar = new QTZStatusBar(&desktop);
    desktop.show();
    QSignalSpy maximized(bar, &QTZStatusBar::maximized);
    QSignalSpy minimized(bar, &QTZStatusBar::minimized);
    const QRect small(300, 550, bar->smallWidth(), QTZStatusBar::BarHeight);
    QCOMPARE(bar->geometry(), small);
    // From "Max", as the property always moves on from there. The tiny bar sits half
    // below the bottom edge without its icons, one button to grow again.
    bar->setProperty("TinySizeEnabled", tiny);
    QVERIFY(minimized.wait());
    QCOMPARE(bar->geometry(), tiny ? QRect(475, 565, 50, 70) : small);
    QCOMPARE(bar->findChild<QWidget*>(QStringLiteral("AlertIcon"))->isVisible(), !tiny);
    if (tiny) {
        bar->findChild<QPushButton*>(QStringLiteral("MaxButton"))->click();
        QVERIFY(minimized.wait());
        QCOMPARE(bar->sizeState(), QStringLiteral("Small"));
    }
    // "Max" keeps the left edge, reaches to 5 pixels short of the right one, shows the text.
    auto* minMax = bar->findChild<QPushButton*>(QStringLiteral("MinMaxIcon"));
    minMax->click();
    QVERIFY(maximized.wait());
    QCOMPARE(bar->geometry(), QRect(bar->x(), 550, 995 - bar->x(), QTZStatusBar::BarHeight));
    QVERIFY(bar->findChild<QWidget*>(QStringLiteral("LblText"))->isVisible());
    minMax->click();
    QVERIFY(minimized.wait());
    QCOMPARE(bar->sizeState(), tiny ? QStringLiteral("Tiny") : QStringLiteral("Small"));
}

void TestStatus::showsEngineMessagesFromDds()
{
    QTZStatusBar bar(&m_mainWindow);
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_EVENTPubSubType> writer(Orvanth::Names::EventTopic);
    QVERIFY(writer.waitForSubscribers(1, std::chrono::seconds(10)));
    // A class the engine does not know is dropped on the way; a time stamp out of range
    // (before 1970 or after 9999) is shown as it came.
    const qint64 stamp = 1700000000;
    const qint64 late = EventMessageFormat::LatestTimeStamp;
    for (qint64 time : {Q_INT64_C(-1), stamp, Q_INT64_C(0), late, late + 1}) {
        Orvanth::Event::Message message;
        message.text("Fan speed low");
        message.classification(EventClass(time == -1 ? 7 : 3));
        message.timestamp(time);
        Orvanth::TKWW_DDS::ATTR_EVENT sample;
        sample.value(message);
        writer.publish(sample);
    }
    QTRY_COMPARE_WITH_TIMEOUT(bar.messageCount(), 4, 10000);
    const auto local = [](qint64 time) { return QDateTime::fromSecsSinceEpoch(time).toString("MM-dd-yy, hh:mm:ss"); };
    QStringList expected{local(stamp), "0", local(late), QString::number(late + 1)};
    for (QString& line : expected)
        line += QStringLiteral(" WARNING: Fan speed low");
    QCOMPARE(bar.messageLog()->lines(), expected);
}

void TestStatus::bubbleWrapsTextAndFadesOutOnATapInside()
{
    m_mainWindow.show();
    SpeechBubbleImpl bubble(&m_mainWindow);
    QSignalSpy finished(&bubble, &SpeechBubbleImpl::finished);
    bubble.setText(QStringLiteral("Synthesizer unlocked"));
    const QRectF oneLine = bubble.shape().boundingRect();
    QFont font = bubble.font();
    font.setPointSize(10);
    // The bottom-pointer box runs 15 pixels either side of a short text, on one line.
    QCOMPARE(int(oneLine.width()) - 30, qCeil(QFontMetricsF(font).horizontalAdvance(bubble.text())));
    bubble.setText(QStringLiteral("Input overload: RF attenuator set to 30 dB while the sweep was running on "
                                  "all four channels of the second module"));
    const QRectF wrapped = bubble.shape().boundingRect();
    QVERIFY(wrapped.width() - 30 <= SpeechBubbleImpl::MaxLineWidth);
    QVERIFY(wrapped.width() - 30 > SpeechBubbleImpl::MaxLineWidth - 60);
    QVERIFY(wrapped.height() > oneLine.height() + QFontMetrics(font).height());

    bubble.show(QPoint(50, 300));
    QCOMPARE(bubble.geometry().bottomLeft(), QPoint(50, 299));
    const QPoint inside = bubble.shape().boundingRect().center().toPoint();
    // At the start of the fade nothing is painted.
    QVERIFY(!paintedAt(painted(bubble), inside));
    QTRY_VERIFY_WITH_TIMEOUT(!bubble.isAnimating(), SpeechBubbleImpl::FadeTimeMs + 2000);
    QVERIFY(bubble.remainingShowTime() > SpeechBubbleImpl::ShowTimeMs - 3000);
    // The widget's transparent corner is no part of the bubble.
    QTest::mouseClick(&bubble, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    QVERIFY(!bubble.isAnimating());
    QTest::mouseClick(&bubble, Qt::LeftButton, Qt::NoModifier, inside);
    QVERIFY(bubble.isAnimating());
    QVERIFY(finished.wait(SpeechBubbleImpl::FadeTimeMs + 2000));
    // A pointer on a side edge is not drawn: no outline at all.
    bubble.setPointDirection(SpeechBubbleImpl::PointDirection_t(1));
    QVERIFY(bubble.shape().boundingRect().isEmpty());
}

void TestStatus::batteryIndicatorsFollowPowerAndLevel_data()
{
    // Steps: a reading, "nan", "empty" (a reading without entries), "mains" and "battery"
    // power, a "tap" on the indicator, the end of its level "peek", "close" of the alert.
    QTest::addColumn<bool>("older");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, bool older, const char* steps, const char* shown) {
        QTest::newRow(name) << older << QString(steps) << QString(shown);
    };
    row("level bands", false, "95 94.9 64.9 35 16 15.9 6 5.9",
        "FullBattery 95%|MostlyFullBattery 94%|HalfBattery 64%|HalfBattery 35%|QuarterBattery 16%|LowBattery 15%|"
        "LowBattery 6%|EmptyBattery 5%");
    row("bad readings", false, "100.5 nan empty 150 -3 1e300",
        "FullBattery 100%|FullBattery 100%|FullBattery 100%|Charging |Charging |Charging ");
    row("mains power and a peek", false, "mains 95 tap 90.5 peek 96 tap battery",
        "FullyCharged |Charging |OnBatteryPower 95%|OnBatteryPower 90%|Charging |FullyCharged |FullyCharged |"
        "FullBattery 96%");
    row("empty battery alert", false, "5 4.5 close 3 20 5 4 mains",
        "EmptyBattery 5%|EmptyBattery 4% alert 4% full|EmptyBattery 4%|EmptyBattery 3%|QuarterBattery 20%|"
        "EmptyBattery 5%|EmptyBattery 4% alert 4% full|Charging ");
    row("older bar on a portrait screen", true, "20 10 9 40 41 empty mains tap peek 96",
        "OnBatteryPower 20%|LowBattery 10%|LowBattery 9% alert 9%|OnBatteryPower 40% alert 9%|OnBatteryPower 41%|"
        "OnBatteryPower 41%|Charging |OnBatteryPower 41%|Charging |FullyCharged ");
}

void TestStatus::batteryIndicatorsFollowPowerAndLevel()
{
    QFETCH(bool, older);
    QFETCH(QString, steps);
    QFETCH(QString, shown);
    QVERIFY(!StatusBarImpl(&m_mainWindow).findChild<QFrame*>(QStringLiteral("BatteryFrame")));
    if (older)
        qApp->setProperty("-res", QStringLiteral("480x800"));
    std::unique_ptr<StatusBarImpl> bar(older ? new StatusBarImpl(&m_mainWindow) : nullptr);
    std::unique_ptr<QTZBatteryStatus> current(older ? nullptr : new QTZBatteryStatus);
    QWidget* indicator = older ? bar->findChild<QFrame*>(QStringLiteral("BatteryFrame")) : current.get();
    QObject* feed = older ? static_cast<QObject*>(bar.get()) : current.get();
    LowBatteryAlert* alert = older ? bar->lowBatteryAlert() : current->lowBatteryAlert();
    auto* button = indicator->findChild<QPushButton*>();
    QCOMPARE(alert->parentWidget(), &m_mainWindow);
    QCOMPARE(missingPictures((older ? bar->styleSheet() : current->styleSheet()) + alert->styleSheet()), QStringList());
    LogCapture log;
    QStringList seen;
    // The signals the DDS callbacks emit drive the indicators.
    for (const QString& step : steps.split(QLatin1Char(' '))) {
        if (step == QLatin1String("mains") || step == QLatin1String("battery"))
            QMetaObject::invokeMethod(feed, "updateACPowerStatus", Q_ARG(bool, step == QLatin1String("mains")));
        else if (step == QLatin1String("tap"))
            QTest::mouseClick(button, Qt::LeftButton);
        else if (step == QLatin1String("peek"))
            QMetaObject::invokeMethod(feed, older ? "hideBatteryStatus" : "hideBattery");
        else if (step == QLatin1String("close"))
            QTest::mouseClick(alert->findChild<QPushButton*>(), Qt::LeftButton);
        else if (step == QLatin1String("empty"))
            older ? bar->getBatteryStatus("", {}) : current->getBatteryStatus("", {});
        else
            QMetaObject::invokeMethod(feed, "updateBatteryStatus",
                                      Q_ARG(double, step == QLatin1String("nan") ? std::nan("") : step.toDouble()));
        seen << button->objectName() + ' ' + button->text();
        if (alert->isVisibleTo(&m_mainWindow))
            seen.last() += " alert " + alert->text() + (alert->isFullScreen() ? " full" : "");
    }
    QCOMPARE(seen.join(QLatin1Char('|')), shown);
    QCOMPARE(log.contains(QStringLiteral(">>>>> Error meter reading structure empty.")), steps.contains("empty"));
    // The current alert shows "C" for a level out of range.
    alert->updateReading(150.0);
    QCOMPARE(alert->text(), older ? QStringLiteral("150%") : QStringLiteral("C"));
}

void TestStatus::followsTheEngineSimulator()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming, {"--ref-oscillator", "2", "--value-period-ms", "100", "--external-power", "on",
                                    "--battery-start", "50", "--battery-drain", "0"}));
    QTZBatteryStatus battery;
    StatusBarImpl bar(&m_mainWindow);
    bar.initialize();
    QTRY_VERIFY_WITH_TIMEOUT(bar.hasReferenceOscillator() && bar.isExternalReference(), 10000);
    // Showing what the engine reports neither posts a message nor sets the engine again.
    QCOMPARE(bar.messageCount(), 0);
    bar.findChild<QPushButton*>(QStringLiteral("RefOscIcon"))->click();
    QCOMPARE(bar.lastText(), QStringLiteral("Reference Oscillator is set to 'Internal'"));
    QVERIFY(engine.waitForLine(QStringLiteral("SET REFOSCILLATOR1 1"), 1, 10000));
    QCOMPARE(engine.count(QStringLiteral("SET REFOSCILLATOR1 2")), 0);
    // Once the engine reports the new value, the switch stays where the user put it.
    // Emitted on the DDS thread.
    QueuedSignalSpy reports(&bar, &StatusBarImpl::updateRefOscillatorStatus);
    QTRY_VERIFY_WITH_TIMEOUT(!reports.isEmpty() && !reports.last().at(0).toBool(), 10000);
    QVERIFY(!bar.isExternalReference());
    QCOMPARE(bar.messageCount(), 1);
    // Mains power and the battery level reach the indicator.
    QTRY_COMPARE_WITH_TIMEOUT(battery.state(), QStringLiteral("Charging"), 10000);
    QCOMPARE(battery.level(), 50);
}

// Bursts from a DDS thread, larger than a slice, around one message from the GUI thread:
// every message reaches the sink once, in the order it was pushed.
void TestStatus::handOffKeepsEveryMessageInOrder()
{
    QStringList received;
    EventHandOff handOff([&](const EventHandOff::Message& message) { received << message.text; });
    QStringList sent;
    const auto burst = [&](int from) {
        QStringList texts;
        for (int i = from; i < from + 3000; ++i)
            texts << QString::number(i);
        sent << texts;
        std::thread engine([&] {
            for (const QString& text : qAsConst(texts))
                handOff.push({text, QString(), Orvanth::Event::EVENT_INFO});
        });
        engine.join();
    };
    burst(0);
    sent << QStringLiteral("from the GUI thread");
    handOff.push({sent.last(), QString(), Orvanth::Event::EVENT_INFO});
    burst(3000);
    QTRY_COMPARE(received.size(), sent.size());
    QCOMPARE(received, sent);
    QCOMPARE(handOff.pending(), 0);
}

QTEST_MAIN(TestStatus)
#include "tst_status.moc"
