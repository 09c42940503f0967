// The battery indicator and the low-battery alerts: level bands, mains power and the
// level peek, the alert, and readings over DDS from the engine simulator and from a
// writer of bad readings.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "LowBatteryAlert.h"
#include "OrvanthNames.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h"
#include "SystemModule.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QImage>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <thread>

class TestQTZBatteryStatus : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void showsLevelBandOnBattery_data();
    void showsLevelBandOnBattery();
    void followsMainsPowerAndPeeksAtLevel();
    void alertsWhileEmptyUntilClosedOrRecovered();
    void alertShowsReading_data();
    void alertShowsReading();
    void picturesAreInResources();
    void followsSimulatedBatteryCycle();
    void logsBadReadingsFromEngine();

private:
    static QPushButton* button(const QTZBatteryStatus& indicator) { return indicator.findChild<QPushButton*>(); }

    NamingServiceProcess m_naming;
    QWidget m_mainWindow;
};

void TestQTZBatteryStatus::initTestCase()
{
    QVERIFY(m_naming.start());
    m_mainWindow.resize(480, 800);
    GlobalImpl::getInstance()->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_mainWindow);
}

void TestQTZBatteryStatus::cleanupTestCase()
{
    delete GlobalImpl::existingInstance();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestQTZBatteryStatus::showsLevelBandOnBattery_data()
{
    QTest::addColumn<double>("reading");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("logged");
    QTest::newRow("100") << 100.0 << "FullBattery" << "100%" << false;
    QTest::newRow("95.0") << 95.0 << "FullBattery" << "95%" << false;
    QTest::newRow("94.9") << 94.9 << "MostlyFullBattery" << "94%" << false;
    QTest::newRow("64.9") << 64.9 << "HalfBattery" << "64%" << false;
    QTest::newRow("35.0") << 35.0 << "HalfBattery" << "35%" << false;
    QTest::newRow("16.0") << 16.0 << "QuarterBattery" << "16%" << false;
    QTest::newRow("15.9") << 15.9 << "LowBattery" << "15%" << false;
    QTest::newRow("6.0") << 6.0 << "LowBattery" << "6%" << false;
    QTest::newRow("5.9") << 5.9 << "EmptyBattery" << "5%" << false;
    QTest::newRow("0") << 0.0 << "EmptyBattery" << "0%" << false;
    QTest::newRow("100.5, level 100") << 100.5 << "FullBattery" << "100%" << true;
    QTest::newRow("over 100") << 101.0 << "Charging" << "" << true;
    QTest::newRow("negative") << -3.0 << "Charging" << "" << true;
    QTest::newRow("huge") << 1e300 << "Charging" << "" << true;
}

void TestQTZBatteryStatus::showsLevelBandOnBattery()
{
    QFETCH(double, reading);
    QFETCH(QString, state);
    QFETCH(QString, text);
    QFETCH(bool, logged);

    QTZBatteryStatus indicator;
    QCOMPARE(indicator.objectName(), QStringLiteral("BatteryFrame"));
    QCOMPARE(indicator.width(), 75);
    QCOMPARE(button(indicator)->objectName(), QStringLiteral("FullBattery"));
    QCOMPARE(button(indicator)->text(), QStringLiteral("100%"));

    LogCapture capture;
    indicator.setValue(reading);
    QCOMPARE(button(indicator)->objectName(), state);
    QCOMPARE(button(indicator)->text(), text);
    QCOMPARE(capture.linesContaining("UserInterface - Battery reading out of range:").size(), logged ? 1 : 0);

    // A reading that is no number at all leaves everything as it was.
    indicator.setValue(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(button(indicator)->objectName(), state);
    QCOMPARE(capture.linesContaining("UserInterface - Battery reading is not a finite number:").size(), 1);
}

void TestQTZBatteryStatus::followsMainsPowerAndPeeksAtLevel()
{
    QTZBatteryStatus indicator;
    QPushButton* shown = button(indicator);
    indicator.setACPower(true);
    QCOMPARE(shown->objectName(), QStringLiteral("FullyCharged"));
    QCOMPARE(shown->text(), QString());
    indicator.setValue(95.0);
    QCOMPARE(shown->objectName(), QStringLiteral("Charging"));

    QTest::mouseClick(shown, Qt::LeftButton);
    QCOMPARE(shown->objectName(), QStringLiteral("OnBatteryPower"));
    QCOMPARE(shown->text(), QStringLiteral("95%"));
    auto* peek = indicator.findChild<QTimer*>();
    QVERIFY(peek->isActive());
    QCOMPARE(peek->interval(), 3000);
    indicator.setValue(90.5);
    QCOMPARE(shown->text(), QStringLiteral("90%"));
    indicator.hideBattery();
    QCOMPARE(shown->objectName(), QStringLiteral("Charging"));
    QCOMPARE(shown->text(), QString());

    indicator.setValue(96.0);
    QCOMPARE(shown->objectName(), QStringLiteral("FullyCharged"));
    // Fully charged: nothing to peek at.
    QTest::mouseClick(shown, Qt::LeftButton);
    QCOMPARE(shown->objectName(), QStringLiteral("FullyCharged"));

    indicator.setACPower(false);
    QCOMPARE(shown->objectName(), QStringLiteral("FullBattery"));
    QCOMPARE(shown->text(), QStringLiteral("96%"));
}

void TestQTZBatteryStatus::alertsWhileEmptyUntilClosedOrRecovered()
{
    QTZBatteryStatus indicator;
    QTZLowBatteryAlert* alert = indicator.lowBatteryAlert();
    QCOMPARE(alert->parentWidget(), &m_mainWindow);
    QCOMPARE(alert->objectName(), QStringLiteral("QTZLowBatteryAlert"));
    QSignalSpy shows(&indicator, &QTZBatteryStatus::showBatteryAlert);
    QSignalSpy hides(&indicator, &QTZBatteryStatus::hideBatteryAlert);

    indicator.setValue(5.0);
    QCOMPARE(button(indicator)->objectName(), QStringLiteral("EmptyBattery"));
    QCOMPARE(shows.count(), 0);
    QVERIFY(!alert->isVisibleTo(&m_mainWindow));

    indicator.setValue(4.5);
    QCOMPARE(shows.count(), 1);
    QCOMPARE(shows.last().at(0).toDouble(), 4.0);
    QVERIFY(alert->isVisibleTo(&m_mainWindow));
    QVERIFY(alert->windowState() & Qt::WindowFullScreen);
    QCOMPARE(alert->text(), QStringLiteral("4%"));
    QCOMPARE(alert->minimumSize(), m_mainWindow.size());
    QCOMPARE(alert->maximumSize(), m_mainWindow.size());

    QTest::mouseClick(alert->findChild<QPushButton*>(), Qt::LeftButton);
    QVERIFY(!alert->isVisibleTo(&m_mainWindow));
    indicator.setValue(3.0);
    QCOMPARE(shows.count(), 2);
    QVERIFY(!alert->isVisibleTo(&m_mainWindow));

    // Recovered: the alert is withdrawn and may come back when the battery empties again.
    indicator.setValue(20.0);
    QCOMPARE(hides.count(), 1);
    QVERIFY(!alert->isClosedByUser());
    indicator.setValue(5.0);
    indicator.setValue(4.0);
    QVERIFY(alert->isVisibleTo(&m_mainWindow));

    indicator.setACPower(true);
    QCOMPARE(hides.count(), 2);
    QVERIFY(!alert->isVisibleTo(&m_mainWindow));
}

void TestQTZBatteryStatus::alertShowsReading_data()
{
    // The current alert covers the main window and shows "C" out of range; the older one does neither.
    QTest::addColumn<bool>("current");
    QTest::addColumn<double>("reading");
    QTest::addColumn<QString>("text");
    QTest::newRow("current 4.5") << true << 4.5 << "4.5%";
    QTest::newRow("current over 100") << true << 150.0 << "C";
    QTest::newRow("current negative") << true << -1.0 << "C";
    QTest::newRow("older 12") << false << 12.0 << "12%";
    QTest::newRow("older over 100") << false << 150.0 << "150%";
}

void TestQTZBatteryStatus::alertShowsReading()
{
    QFETCH(bool, current);
    QFETCH(double, reading);
    QFETCH(QString, text);

    std::unique_ptr<LowBatteryAlert> alert(current ? new QTZLowBatteryAlert : new LowBatteryAlert(&m_mainWindow));
    QCOMPARE(alert->objectName(), current ? QStringLiteral("QTZLowBatteryAlert") : QStringLiteral("LowBatteryAlert"));
    alert->updateReading(reading);
    QCOMPARE(alert->text(), text);
    QVERIFY(alert->isVisibleTo(&m_mainWindow));
    QCOMPARE(bool(alert->windowState() & Qt::WindowFullScreen), current);
    alert->disableBatteryAlert();
    QVERIFY(!alert->isVisibleTo(&m_mainWindow));
}

void TestQTZBatteryStatus::picturesAreInResources()
{
    QTZBatteryStatus indicator;
    const QString sheets = indicator.styleSheet() + indicator.lowBatteryAlert()->styleSheet();
    const QRegularExpression url(QStringLiteral("url\\((:/images/[^)]+)\\)"));
    int pictures = 0;
    for (QRegularExpressionMatchIterator it = url.globalMatch(sheets); it.hasNext(); ++pictures) {
        const QString path = it.next().captured(1);
        QVERIFY2(!QImage(path).isNull(), qPrintable(path));
    }
    QCOMPARE(pictures, 11);
}

void TestQTZBatteryStatus::followsSimulatedBatteryCycle()
{
    QTZBatteryStatus indicator;
    QStringList states;
    // Receives the queued recordings; what is still queued when the test ends goes with it.
    QObject recorder;
    const auto record = [&] {
        if (states.isEmpty() || states.last() != indicator.state())
            states << indicator.state();
    };
    // Queued after the indicator's own connections, so each runs after the indicator's slot.
    connect(&indicator, &QTZBatteryStatus::updateBatteryStatus, &recorder, record);
    connect(&indicator, &QTZBatteryStatus::updateACPowerStatus, &recorder, record);
    QSignalSpy shows(&indicator, &QTZBatteryStatus::showBatteryAlert);
    QSignalSpy hides(&indicator, &QTZBatteryStatus::hideBatteryAlert);

    // 1 % a reading, down to 2 % on battery and back up to 100 % on mains power.
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            {"--events-per-second", "0", "--battery-period-ms", "20", "--battery-start", "20",
                             "--battery-drain", "3000", "--battery-floor", "2"},
                            m_naming.childEnvironment()));

    const QStringList cycle{"QuarterBattery", "LowBattery", "EmptyBattery", "Charging", "FullyCharged", "FullBattery"};
    const auto passedCycle = [&] {
        int next = 0;
        for (const QString& state : states) {
            if (next < cycle.size() && state == cycle.at(next))
                ++next;
        }
        return next == cycle.size();
    };
    QTRY_VERIFY2_WITH_TIMEOUT(passedCycle(), qPrintable(states.join(' ')), 20000);
    QCOMPARE(simulator.stop(), 0);

    QVERIFY(!shows.isEmpty());
    for (const QList<QVariant>& shown : shows)
        QVERIFY(shown.at(0).toDouble() < 6.0);
    QVERIFY(!hides.isEmpty());
    QVERIFY(!indicator.lowBatteryAlert()->isVisibleTo(&m_mainWindow));
}

void TestQTZBatteryStatus::logsBadReadingsFromEngine()
{
    using Orvanth::MeterReading::Reading;
    using Orvanth::MeterReading::ReadingEntry;
    const auto sample = [](std::vector<double> values) {
        Reading reading;
        for (double value : values) {
            ReadingEntry entry;
            entry.name("BATTERYSTATUS1");
            entry.value(value);
            reading.readings().push_back(entry);
        }
        Orvanth::TKWW_DDS::ATTR_METER_READING topicSample;
        topicSample.value(reading);
        return topicSample;
    };

    QTZBatteryStatus indicator;
    LogCapture capture;
    // A local writer delivers on the writing thread, which must not be this one.
    std::thread engine([&] {
        Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_METER_READINGPubSubType> writer(
            Orvanth::Names::BatteryTopic);
        if (!writer.waitForSubscribers(1, std::chrono::seconds(10)))
            return;
        for (const auto& values : std::vector<std::vector<double>>{
                 {}, {std::nan("")}, {-std::numeric_limits<double>::infinity()}, {-5.0}, {250.0}, {50.0, 99.0}})
            writer.publish(sample(values));
        writer.waitForAcknowledgments(std::chrono::seconds(10));
    });
    QTRY_COMPARE_WITH_TIMEOUT(indicator.level(), 50, 15000);
    engine.join();

    QCOMPARE(indicator.state(), QStringLiteral("HalfBattery"));
    QCOMPARE(capture.linesContaining(">>>>> Error meter reading structure empty.").size(), 1);
    QCOMPARE(capture.linesContaining("UserInterface - Battery reading is not a finite number:").size(), 2);
    const QStringList outOfRange = capture.linesContaining("UserInterface - Battery reading out of range:");
    QCOMPARE(outOfRange.size(), 2);
    QVERIFY(outOfRange.at(0).endsWith(" -5"));
    QVERIFY(outOfRange.at(1).endsWith(" 250"));
}

QTEST_MAIN(TestQTZBatteryStatus)
#include "tst_qtzbatterystatus.moc"
