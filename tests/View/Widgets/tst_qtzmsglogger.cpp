// The message log panel: its ring of lines, colours, file copy, opening and closing,
// and the event message lines and time stamps it shows.

#include "LogCapture.h"

#include "CSS.h"
#include "EventMessageFormat.h"
#include "MsgLogger.h"
#include "QTZMsgLogger.h"
#include "VerticalScrollBarImpl.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QPlainTextEdit>
#include <QtTest>

#include <memory>

using Orvanth::Event::EventClass;

class TestQTZMsgLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void ringKeepsNewestLines_data();
    void ringKeepsNewestLines();
    void lineKeepsItsOwnColour_data();
    void lineKeepsItsOwnColour();
    void breaksStayInsideOneLine();
    void selectionIsCancelledWithoutMovingTheRing();
    void fileHoldsEveryLineOnce();
    void fileFailuresAreLoggedAndLinesKept_data();
    void fileFailuresAreLoggedAndLinesKept();
    void opensAboveAnchorAndCloses_data();
    void opensAboveAnchorAndCloses();
    void alertStyleTurnsBordersRed();
    void formatsTimeStamps_data();
    void formatsTimeStamps();

private:
    std::unique_ptr<QWidget> m_screen;
};

namespace {

QString numbered(int i)
{
    return QStringLiteral("line %1").arg(i);
}

// Adds \a count lines the way the status bar does: appends the first 1000, then restarts
// at the top at every multiple of 1000 and overwrites.
void addLikeStatusBar(MsgLogger& log, int count)
{
    for (int i = 0; i < count; ++i) {
        if (i >= MsgLogger::MaximumLines && i % MsgLogger::MaximumLines == 0)
            log.setTextCursorStart();
        log.addMessage(numbered(i), i < MsgLogger::MaximumLines);
    }
}

} // namespace

void TestQTZMsgLogger::init()
{
    qApp->setProperty("-systype", QVariant());
    m_screen = std::make_unique<QWidget>();
    m_screen->resize(800, 600);
}

void TestQTZMsgLogger::ringKeepsNewestLines_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("likeStatusBar");
    for (int count : {999, 1000, 1001, 2500}) {
        QTest::addRow("%d as the status bar adds them", count) << count << true;
        QTest::addRow("%d always appended", count) << count << false;
    }
}

void TestQTZMsgLogger::ringKeepsNewestLines()
{
    QFETCH(int, count);
    QFETCH(bool, likeStatusBar);

    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    if (likeStatusBar) {
        addLikeStatusBar(log, count);
    } else {
        for (int i = 0; i < count; ++i)
            log.addMessage(numbered(i), true);
    }

    // Line p holds the newest message whose number leaves p modulo 1000.
    const int kept = qMin(count, MsgLogger::MaximumLines);
    QStringList expected;
    for (int p = 0; p < kept; ++p) {
        int newest = p;
        while (newest + MsgLogger::MaximumLines < count)
            newest += MsgLogger::MaximumLines;
        expected << numbered(newest);
    }
    QCOMPARE(log.lines(), expected);
}

void TestQTZMsgLogger::lineKeepsItsOwnColour_data()
{
    QTest::addColumn<quint32>("eventClass");
    QTest::addColumn<QString>("classText");
    QTest::addColumn<bool>("red");
    QTest::newRow("0") << 0u << "INFO" << false;
    QTest::newRow("1") << 1u << "CRITICAL" << false;
    QTest::newRow("2") << 2u << "FAILURE" << false;
    QTest::newRow("3") << 3u << "WARNING" << true;
    QTest::newRow("4") << 4u << "ALERT" << true;
    QTest::newRow("5") << 5u << "INFO" << false;
    QTest::newRow("7 unknown") << 7u << "INFO" << false;
}

void TestQTZMsgLogger::lineKeepsItsOwnColour()
{
    QFETCH(quint32, eventClass);
    QFETCH(QString, classText);
    QFETCH(bool, red);

    const EventClass evt = EventClass(eventClass);
    QCOMPARE(EventMessageFormat::isAlertClass(evt), red);
    const QString line = EventMessageFormat::line(QStringLiteral("03-04-25, 10:11:12"), evt, QStringLiteral("Fan"));
    QCOMPARE(line, QStringLiteral("03-04-25, 10:11:12 ") + classText + QStringLiteral(": Fan"));

    // The colour the status bar picks holds for that line only, appended or overwritten.
    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    const QColor colour = red ? QColor(Qt::red) : QColor(Qt::black);
    for (bool append : {true, false}) {
        log.setTextCursorStart();
        log.setTextColor(colour);
        log.addMessage(line, append);
        log.setTextColor(Qt::black);
        log.addMessage(QStringLiteral("next"), append);
        QCOMPARE(log.lines().mid(0, 2), (QStringList{line, QStringLiteral("next")}));
        QCOMPARE(log.lineColour(0), colour);
        QCOMPARE(log.lineColour(1), QColor(Qt::black));
    }
}

void TestQTZMsgLogger::breaksStayInsideOneLine()
{
    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    log.addMessage(QStringLiteral("first\nsecond\r\nthird") + QChar(QChar::ParagraphSeparator) + "fourth", true);
    log.addMessage(QString(), true);
    log.addMessage(QStringLiteral("after"), true);
    const QString lineBreak(QChar::LineSeparator);
    QCOMPARE(log.lines(), (QStringList{QStringList{"first", "second", "third", "fourth"}.join(lineBreak), QString(),
                                       QStringLiteral("after")}));
}

void TestQTZMsgLogger::selectionIsCancelledWithoutMovingTheRing()
{
    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    addLikeStatusBar(log, 1500);

    auto* text = log.findChild<QPlainTextEdit*>();
    QTextCursor selection(text->document());
    selection.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 3);
    text->setTextCursor(selection);
    QVERIFY(!text->textCursor().hasSelection());

    log.addMessage(numbered(1500), false);
    QCOMPARE(log.lines().at(500), numbered(1500));
    QCOMPARE(log.lines().at(0), numbered(1000));
}

void TestQTZMsgLogger::fileHoldsEveryLineOnce()
{
    QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("events.log"));
    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    log.setOutputFile(fileName);
    log.addMessage(QStringLiteral("before logging"), true);
    log.logToFile(true);
    const QString unicode = QStringLiteral("Temperatur 58 \u00b0C \u6e2c\u8a66");
    log.addMessage(unicode, true);
    addLikeStatusBar(log, 1500);

    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString expected = unicode;
    for (int i = 0; i < 1500; ++i)
        expected += numbered(i);
    QCOMPARE(QString::fromUtf8(file.readAll()), expected);
    QCOMPARE(log.lines().size(), MsgLogger::MaximumLines);
}

void TestQTZMsgLogger::fileFailuresAreLoggedAndLinesKept_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("logged");
    QTest::addColumn<int>("timesLogged");
    QTest::newRow("missing folder") << "/nonexistent-folder/events.log"
                                    << "Unable to open file \"/nonexistent-folder/events.log\":\n" << 3;
    QTest::newRow("no file name") << "" << "Unable to open file \"\":\n" << 3;
    // A full disk: every write fails, reported once.
    QTest::newRow("full disk") << "/dev/full" << "UserInterface - Unable to write to file \"/dev/full\": " << 1;
}

void TestQTZMsgLogger::fileFailuresAreLoggedAndLinesKept()
{
    QFETCH(QString, fileName);
    QFETCH(QString, logged);
    QFETCH(int, timesLogged);
    if (fileName == QLatin1String("/dev/full") && !QFile::exists(fileName))
        QSKIP("no /dev/full here");

    QTZMsgLogger log(m_screen.get(), QPoint(10, 550));
    log.setOutputFile(fileName);
    log.logToFile(true);
    LogCapture capture;
    for (int i = 0; i < 3; ++i)
        log.addMessage(numbered(i), true);
    QCOMPARE(capture.linesContaining(logged).size(), timesLogged);
    QCOMPARE(log.lines(), (QStringList{numbered(0), numbered(1), numbered(2)}));
}

void TestQTZMsgLogger::opensAboveAnchorAndCloses_data()
{
    QTest::addColumn<QString>("systemType");
    QTest::addColumn<bool>("animated");
    QTest::newRow("benchtop") << "benchtop" << true;
    QTest::newRow("handheld") << "handheld" << false;
}

void TestQTZMsgLogger::opensAboveAnchorAndCloses()
{
    QFETCH(QString, systemType);
    QFETCH(bool, animated);
    qApp->setProperty("-systype", systemType);

    QTZMsgLogger log(m_screen.get(), QPoint(40, 550));
    log.setMinimumWidth(300);
    log.resize(300, 0);
    QCOMPARE(log.geometry(), QRect(40, 542, 300, 0));
    m_screen->show();
    addLikeStatusBar(log, 200);
    auto* scrollBar = qobject_cast<Lumaro::gui::VerticalScrollBarImpl*>(
        log.findChild<QPlainTextEdit*>()->verticalScrollBar());
    QVERIFY(scrollBar);

    QSignalSpy finished(&log, &MsgLogger::finished);
    log.animate(true);
    if (animated) {
        QCOMPARE(finished.count(), 0);
        QVERIFY(finished.wait(2000));
    }
    QCOMPARE(finished.count(), 1);
    QCOMPARE(log.geometry(), QRect(40, 42, 300, 500));
    // Open, the log shows its end.
    QVERIFY(scrollBar->maximum() > 0);
    QCOMPARE(scrollBar->value(), scrollBar->maximum());

    log.animate(false);
    if (animated)
        QVERIFY(finished.wait(2000));
    QCOMPARE(finished.count(), 2);
    QCOMPARE(log.geometry(), QRect(40, 542, 300, 0));

    log.setPoint(QPoint(70, 500));
    QCOMPARE(log.geometry(), QRect(70, 492, 300, 0));
    QCOMPARE(log.anchor(), QPoint(70, 500));
}

void TestQTZMsgLogger::alertStyleTurnsBordersRed()
{
    QTZMsgLogger current(m_screen.get(), QPoint(10, 550));
    MsgLogger older(m_screen.get(), QPoint(10, 550));
    QCOMPARE(current.objectName(), QStringLiteral("QTZMsgLogger"));
    QCOMPARE(older.objectName(), QStringLiteral("MsgLogger"));
    QVERIFY(current.styleSheet().startsWith("QFrame#QTZMsgLogger {"));
    QVERIFY(older.styleSheet().startsWith("QFrame#MsgLogger {"));

    QCOMPARE(current.styleSheet().count(QStringLiteral("border: 2px solid ") + CSS::border()), 2);
    QVERIFY(current.styleSheet().contains("padding: 0px 0px -2px 0px"));
    current.setAlertStyle(true);
    QCOMPARE(current.styleSheet(),
             QStringLiteral("QFrame#QTZMsgLogger {    background-color: rgb(63,63,63);    border: 2px solid #f00;"
                            "    border-radius: 18px;}QPlainTextEdit {    background-color: rgb(153,153,153);"
                            "    border: 2px solid #f00;    border-radius: 14px;}"));
}

void TestQTZMsgLogger::formatsTimeStamps_data()
{
    QTest::addColumn<qint64>("timeStamp");
    QTest::addColumn<bool>("outOfRange");
    QTest::newRow("now") << QDateTime::currentSecsSinceEpoch() << false;
    QTest::newRow("2100") << Q_INT64_C(4102444800) << false;
    QTest::newRow("last of 9999") << EventMessageFormat::LatestTimeStamp << false;
    QTest::newRow("zero") << Q_INT64_C(0) << true;
    QTest::newRow("negative") << Q_INT64_C(-5) << true;
    QTest::newRow("year 10000") << EventMessageFormat::LatestTimeStamp + 1 << true;
    QTest::newRow("largest") << std::numeric_limits<qint64>::max() << true;
    QTest::newRow("smallest") << std::numeric_limits<qint64>::min() << true;
}

void TestQTZMsgLogger::formatsTimeStamps()
{
    QFETCH(qint64, timeStamp);
    QFETCH(bool, outOfRange);

    LogCapture capture;
    const QString text = EventMessageFormat::formatTimeStamp(timeStamp);
    if (outOfRange) {
        QCOMPARE(text, QString::number(timeStamp));
        QCOMPARE(capture.linesContaining("UserInterface - EventMessage TimeStamp out of range: "
                                         + QString::number(timeStamp))
                     .size(),
                 1);
    } else {
        QCOMPARE(text, QDateTime::fromSecsSinceEpoch(timeStamp).toString("MM-dd-yy, hh:mm:ss"));
        QVERIFY(capture.lines().isEmpty());
    }
}

QTEST_MAIN(TestQTZMsgLogger)
#include "tst_qtzmsglogger.moc"
