// Engine event messages into the message log at rising rates, with a GUI-thread timer
// beside them: the highest rate the log takes in while the timer still runs within 50 ms.
//
//   tz-bench-eventingest [--rates R1,R2,...] [--seconds S] [--file] [--report FILE]
//
// For each rate (default 1000,2000,5000,10000,20000,40000 messages a second) the program
// starts a copy of itself as the engine, which publishes event messages of all six
// classes on a topic for S seconds (default 2) over loopback DDS. Here, as the status
// bar does, the typed subscriber's callback writes the diagnostic lines (discarded, as
// on a desktop without -debug), formats the time stamp and queues the message to the
// GUI thread, which adds it to an open QTZMsgLogger: appended, then overwriting in the
// 1000-line ring, warnings and alerts in red. With --file every line is copied to a file
// as well. A 10 ms timer runs in the GUI thread throughout; its longest gap is the GUI's
// responsiveness. A rate is sustained when the log took in at least 98 % of it during the
// publishing, nothing was left queued after it, and no timer gap exceeded 50 ms.
// DDS domain from ORVANTH_DDS_DOMAIN (default 197 here, away from the tests' domains).

#include "DDS_BaseObj.h"
#include "DDS_Subscriber.h"
#include "EventHandOff.h"
#include "EventMessageFormat.h"
#include "MsgLogger.h"
#include "QTZMsgLogger.h"
#include "TopicPublisher.h"

#include "BenchReport.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QApplication>
#include <QColor>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

namespace {

constexpr const char* Topic = "Bench/EventIngest";
constexpr int TimerPeriodMs = 10;
constexpr qint64 GapLimitMs = 50;

void discardMessages(QtMsgType, const QMessageLogContext&, const QString&) {}

// Resident memory of this process, in megabytes.
double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return 0;
}

// The engine: publishes \a rate messages a second for \a seconds once a reader is matched.
int publish(double rate, double seconds)
{
    using Clock = std::chrono::steady_clock;
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_EVENTPubSubType> writer(Topic);
    if (!writer.waitForSubscribers(1, std::chrono::seconds(20))) {
        std::fprintf(stderr, "publisher: no reader\n");
        return 1;
    }
    std::printf("START\n");
    std::fflush(stdout);

    const long total = long(rate * seconds);
    const Clock::time_point begin = Clock::now();
    Orvanth::TKWW_DDS::ATTR_EVENT sample;
    Orvanth::Event::Message& message = sample.value();
    message.source("Engine 1");
    long sent = 0;
    while (sent < total) {
        // Everything due by now, then a short sleep: the pace holds at any rate.
        const double elapsed = std::chrono::duration<double>(Clock::now() - begin).count();
        const long due = std::min(total, long(elapsed * rate) + 1);
        for (; sent < due; ++sent) {
            message.code(std::int32_t(sent));
            message.classification(Orvanth::Event::EventClass(sent % 6));
            message.text("Bench message " + std::to_string(sent));
            message.timestamp(std::int64_t(std::time(nullptr)));
            writer.publish(sample);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    const double duration = std::chrono::duration<double>(Clock::now() - begin).count();
    std::printf("DONE %ld %.3f\n", sent, duration);
    std::fflush(stdout);
    writer.waitForAcknowledgments(std::chrono::seconds(5));
    return 0;
}

/// Adds queued messages to the log the way the status bar does.
class Ingest : public QObject
{
    Q_OBJECT

public:
    explicit Ingest(MsgLogger* log) : m_log(log) {}

    long logged() const { return m_logged; }

public slots:
    void addMessage(const QString& desc, const QString& dateTime, Orvanth::Event::EventClass evt)
    {
        const QString line = EventMessageFormat::line(dateTime, evt, desc);
        if (m_logged >= MsgLogger::MaximumLines && m_logged % MsgLogger::MaximumLines == 0)
            m_log->setTextCursorStart();
        const bool red = EventMessageFormat::isAlertClass(evt);
        if (red)
            m_log->setTextColor(Qt::red);
        m_log->addMessage(line, m_logged < MsgLogger::MaximumLines);
        if (red)
            m_log->setTextColor(Qt::black);
        ++m_logged;
    }

private:
    MsgLogger* m_log;
    long m_logged = 0;
};

/// The DDS side: on a DDS thread, logs, formats and hands each message to the GUI
/// thread through the status bar's batching hand-off.
class Receiver : public QObject
{
    Q_OBJECT

public:
    std::atomic<long> received{0};

    explicit Receiver(Ingest& ingest)
        : handOff([&ingest](const EventHandOff::Message& message) {
            ingest.addMessage(message.text, message.dateTime, message.eventClass);
        })
    {
    }

    void onMessage(const Orvanth::Event::Message& message)
    {
        EventMessageFormat::logReceived(message);
        ++received;
        handOff.push({QString::fromStdString(message.text()), EventMessageFormat::formatTimeStamp(message.timestamp()),
                      message.classification()});
    }

    EventHandOff handOff;
};

struct StepResult
{
    double rate = 0;
    long sent = 0;
    long received = 0;
    long logged = 0;
    double publishSeconds = 0;
    long loggedWhilePublishing = 0;
    qint64 maxGapMs = 0;
    qint64 drainMs = 0;
    bool sustained = false;
};

StepResult runStep(double rate, double seconds, Receiver& receiver, Ingest& ingest, const QString& program)
{
    StepResult result;
    result.rate = rate;
    const long receivedBefore = receiver.received.load();
    const long loggedBefore = ingest.logged();

    // The timer's gaps count from the first message published until the log has taken
    // in the last one.
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = -1;
    bool measuring = false;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(TimerPeriodMs);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        if (measuring && lastTick >= 0)
            result.maxGapMs = std::max(result.maxGapMs, now - lastTick);
        lastTick = now;
    });
    ticker.start();

    QProcess engine;
    engine.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QByteArray output;
    bool done = false;
    qint64 doneAt = 0;
    QEventLoop loop;
    QObject::connect(&engine, &QProcess::readyReadStandardOutput, [&] {
        output += engine.readAllStandardOutput();
        if (!measuring && !done && output.contains("START\n")) {
            measuring = true;
            lastTick = -1;
        }
        const int doneAtIndex = output.indexOf("DONE ");
        if (!done && doneAtIndex >= 0 && output.indexOf('\n', doneAtIndex) > 0) {
            done = true;
            doneAt = clock.elapsed();
            result.loggedWhilePublishing = ingest.logged() - loggedBefore;
            const QList<QByteArray> fields = output.mid(doneAtIndex + 5).trimmed().split(' ');
            result.sent = fields.value(0).toLong();
            result.publishSeconds = fields.value(1).toDouble();
        }
    });
    QObject::connect(&engine, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    engine.start(program, {"--publish", QString::number(rate), QString::number(seconds)});
    QTimer::singleShot(int(seconds * 1000) + 30000, &loop, &QEventLoop::quit);
    loop.exec();
    if (!done) {
        std::fprintf(stderr, "engine at %.0f/s did not finish\n", rate);
        engine.kill();
        engine.waitForFinished(2000);
        return result;
    }

    // What is still queued for the GUI thread, or still on its way; done when the log has
    // everything received and nothing more came for 300 ms.
    QElapsedTimer quiet;
    quiet.start();
    long lastReceived = receiver.received.load();
    long lastLogged = ingest.logged();
    qint64 lastLoggedAt = doneAt;
    while (quiet.elapsed() < 300 && clock.elapsed() - doneAt < 30000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        if (ingest.logged() != lastLogged) {
            lastLogged = ingest.logged();
            lastLoggedAt = clock.elapsed();
            quiet.restart();
        }
        if (receiver.received.load() != lastReceived) {
            lastReceived = receiver.received.load();
            quiet.restart();
        }
    }
    measuring = false;
    result.received = receiver.received.load() - receivedBefore;
    result.logged = ingest.logged() - loggedBefore;
    result.drainMs = result.logged > result.loggedWhilePublishing ? lastLoggedAt - doneAt : 0;
    result.sustained = result.sent > 0 && result.received >= long(0.98 * double(result.sent))
                       && result.logged == result.received && result.drainMs <= GapLimitMs * 5
                       && result.maxGapMs <= GapLimitMs;
    return result;
}

std::vector<double> parseRates(const char* text)
{
    std::vector<double> rates;
    for (const QString& part : QString::fromLatin1(text).split(',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const double rate = part.toDouble(&ok);
        if (ok && rate > 0)
            rates.push_back(rate);
    }
    return rates;
}

} // namespace

int main(int argc, char** argv)
{
    BenchReport report("eventingest", argc, argv);
    if (!qEnvironmentVariableIsSet("ORVANTH_DDS_DOMAIN"))
        qputenv("ORVANTH_DDS_DOMAIN", "197");
    if (argc == 4 && std::string(argv[1]) == "--publish") {
        const int status = publish(std::atof(argv[2]), std::atof(argv[3]));
        Orvanth::DDS_BaseObj::shutdownDds();
        return status;
    }

    std::vector<double> rates{1000, 2000, 5000, 10000, 20000, 40000};
    double seconds = 2.0;
    bool toFile = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--rates" && i + 1 < argc)
            rates = parseRates(argv[++i]);
        else if (argument == "--seconds" && i + 1 < argc)
            seconds = std::max(0.2, std::atof(argv[++i]));
        else if (argument == "--file")
            toFile = true;
        else {
            std::fprintf(stderr, "usage: %s [--rates R1,R2,...] [--seconds S] [--file] [--report FILE]\n", argv[0]);
            return 2;
        }
    }

    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    qInstallMessageHandler(discardMessages);
    EventMessageFormat::registerMetaTypes();

    // An open log on a benchtop-sized screen, so every line is laid out and painted.
    QWidget screen;
    screen.resize(1280, 800);
    QTZMsgLogger log(&screen, QPoint(300, 750));
    log.setMinimumWidth(855);
    screen.show();
    log.animate(true);
    QTemporaryDir directory;
    if (toFile) {
        log.setOutputFile(directory.filePath(QStringLiteral("events.log")));
        log.logToFile(true);
    }

    Ingest ingest(&log);
    Receiver receiver(ingest);
    auto subscriber = std::make_unique<Orvanth::DDS_Subscriber<Orvanth::Event::Message>>(
        Topic, [&](const char*, Orvanth::Event::Message message) { receiver.onMessage(message); }, 0, 0,
        eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
    subscriber->setClassMask(0x3F);
    subscriber->waitForInitDone();

    std::printf("Event ingest into the message log (%s), %.1f s a rate, timer every %d ms\n",
                toFile ? "with file copy" : "no file copy", seconds, TimerPeriodMs);
    std::printf("%10s %9s %9s %9s %13s %11s %9s  %s\n", "offered/s", "sent", "received", "logged",
                "logged/s pub.", "max gap ms", "drain ms", "sustained");
    double best = 0;
    // Resident memory once the log's ring is full, against the end.
    double ringFullMb = 0;
    long eventsAfterRingFull = 0;
    for (double rate : rates) {
        const StepResult r = runStep(rate, seconds, receiver, ingest, QCoreApplication::applicationFilePath());
        if (ringFullMb == 0 && ingest.logged() >= MsgLogger::MaximumLines)
            ringFullMb = residentMegabytes();
        else if (ringFullMb > 0)
            eventsAfterRingFull += r.logged;
        const std::string at = " at " + std::to_string(long(rate)) + "/s";
        report.info("messages lost before the reader took them" + at, double(r.sent - r.received),
                    "of " + std::to_string(r.sent));
        report.atMost("messages lost after the reader took them" + at, double(r.received - r.logged), "", 0);
        report.atMost("longest GUI-timer gap" + at, double(r.maxGapMs), "ms", GapLimitMs, "timer period",
                      TimerPeriodMs);
        const double loggedRate = r.publishSeconds > 0 ? double(r.loggedWhilePublishing) / r.publishSeconds : 0.0;
        std::printf("%10.0f %9ld %9ld %9ld %13.0f %11lld %9lld  %s\n", r.rate, r.sent, r.received, r.logged,
                    loggedRate, static_cast<long long>(r.maxGapMs), static_cast<long long>(r.drainMs),
                    r.sustained ? "yes" : "no");
        std::fflush(stdout);
        if (r.sustained)
            best = std::max(best, r.rate);
    }
    std::printf("sustained: %.0f messages/s with the GUI timer within %lld ms (goal 10000)\n", best,
                static_cast<long long>(GapLimitMs));
    const double endMb = residentMegabytes();
    std::printf("resident memory: %.1f MB with the ring full, %.1f MB after %ld more events\n", ringFullMb, endMb,
                eventsAfterRingFull);
    report.atLeast("sustained rate, GUI timer within 50 ms", best, "1/s", 10000);
    report.atMost("resident memory growth over " + std::to_string(eventsAfterRingFull) + " events", endMb - ringFullMb,
                  "MB", 2, "resident memory with the ring full", ringFullMb);

    subscriber.reset();
    Orvanth::DDS_BaseObj::shutdownDds();
    return 0;
}

#include "bench_eventingest.moc"
