#include "BenchReport.h"

#include "ChildProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>
#include <vector>

namespace {

// Runs BenchReport's option handling over \a arguments; what is left, as text.
QStringList leftAfter(const QStringList& arguments, bool* enabled, QString* reportFile = nullptr)
{
    std::vector<QByteArray> storage;
    for (const QString& argument : arguments)
        storage.push_back(argument.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& argument : storage)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    int argc = int(argv.size()) - 1;
    const int reportAt = arguments.indexOf(QStringLiteral("--report"));
    if (reportFile && reportAt >= 0 && reportAt + 1 < arguments.size())
        *reportFile = arguments.at(reportAt + 1);
    QStringList left;
    {
        BenchReport report("test", argc, argv.data());
        *enabled = report.enabled();
        for (int i = 0; i < argc; ++i)
            left << QString::fromUtf8(argv[i]);
        if (argv[argc] != nullptr)
            left << QStringLiteral("<argv not ended>");
    }
    return left;
}

QList<QJsonObject> readLines(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QJsonObject> lines;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.isEmpty())
            continue;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        if (error.error != QJsonParseError::NoError)
            lines << QJsonObject{{"unparsed", QString::fromUtf8(line)}};
        else
            lines << document.object();
    }
    return lines;
}

} // namespace

class tst_Bench : public QObject
{
    Q_OBJECT

private slots:
    void takesReportOptionOutOfTheArguments_data();
    void takesReportOptionOutOfTheArguments();
    void writesEachFigureAsOneJsonLine();
    void tableJudgesEachGoal_data();
    void tableJudgesEachGoal();
    void demoHostStampsItsFirstFrame();
};

void tst_Bench::takesReportOptionOutOfTheArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("none") << QStringList{"bench", "--runs", "3"} << QStringList{"bench", "--runs", "3"} << false;
    QTest::newRow("first") << QStringList{"bench", "--report", "@", "--runs", "3"}
                           << QStringList{"bench", "--runs", "3"} << true;
    QTest::newRow("between") << QStringList{"bench", "--runs", "--report", "@", "3"}
                             << QStringList{"bench", "--runs", "3"} << true;
    QTest::newRow("last") << QStringList{"bench", "500", "--report", "@"} << QStringList{"bench", "500"} << true;
    // Without a file name the option is the benchmark's to reject.
    QTest::newRow("no file") << QStringList{"bench", "--report"} << QStringList{"bench", "--report"} << false;
}

void tst_Bench::takesReportOptionOutOfTheArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, left);
    QFETCH(bool, enabled);
    QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("report.jsonl"));
    arguments.replaceInStrings(QStringLiteral("@"), file);

    bool wasEnabled = false;
    QCOMPARE(leftAfter(arguments, &wasEnabled), left);
    QCOMPARE(wasEnabled, enabled);
    QCOMPARE(QFile::exists(file), enabled);
}

void tst_Bench::writesEachFigureAsOneJsonLine()
{
    QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("report.jsonl"));
    {
        QByteArray program("bench"), option("--report"), name = file.toUtf8();
        char* argv[] = {program.data(), option.data(), name.data(), nullptr};
        int argc = 3;
        BenchReport report("guimanager", argc, argv);
        report.ratioAtMost("IsDialogActive, median", 30.5, "us", "null call \"raw\"", 28.0, 1.3);
        report.atMost("p99", 1500, "us", 2000);
        report.atLeast("sustained", 10000, "1/s", 10000, "timer", 10);
        report.info("lost", NAN, "");
        report.samples("null call", "us", {1.5, 2.25});
    }
    const QList<QJsonObject> lines = readLines(file);
    QCOMPARE(lines.size(), 5);

    const QJsonObject ratio = lines[0];
    QCOMPARE(ratio.value("bench").toString(), QStringLiteral("guimanager"));
    QCOMPARE(ratio.value("figure").toString(), QStringLiteral("IsDialogActive, median"));
    QCOMPARE(ratio.value("value").toDouble(), 30.5);
    QCOMPARE(ratio.value("unit").toString(), QStringLiteral("us"));
    QCOMPARE(ratio.value("baseline_name").toString(), QStringLiteral("null call \"raw\""));
    QCOMPARE(ratio.value("baseline").toDouble(), 28.0);
    QCOMPARE(ratio.value("goal").toString(), QStringLiteral("ratio_at_most"));
    QCOMPARE(ratio.value("limit").toDouble(), 1.3);

    QCOMPARE(lines[1].value("goal").toString(), QStringLiteral("at_most"));
    QVERIFY(!lines[1].contains("baseline"));
    QCOMPARE(lines[2].value("goal").toString(), QStringLiteral("at_least"));
    QCOMPARE(lines[2].value("baseline").toDouble(), 10.0);
    // A figure that could not be measured stays valid JSON.
    QVERIFY(lines[3].value("value").isNull());
    QVERIFY(!lines[3].contains("goal"));
    QCOMPARE(lines[4].value("series").toString(), QStringLiteral("null call"));
    QCOMPARE(lines[4].value("samples").toArray(), (QJsonArray{1.5, 2.25}));
}

void tst_Bench::tableJudgesEachGoal_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("ratio");
    QTest::addColumn<QString>("verdict");

    QTest::newRow("ratio within") << QByteArray(R"("value": 26, "baseline_name": "b", "baseline": 20, "goal": "ratio_at_most", "limit": 1.3)")
                                  << "1.30" << "met";
    QTest::newRow("ratio beyond") << QByteArray(R"("value": 27, "baseline_name": "b", "baseline": 20, "goal": "ratio_at_most", "limit": 1.3)")
                                  << "1.35" << "short";
    QTest::newRow("ratio, no baseline") << QByteArray(R"("value": 27, "baseline_name": "b", "baseline": null, "goal": "ratio_at_most", "limit": 1.3)")
                                        << "-" << "short";
    QTest::newRow("at most, above") << QByteArray(R"("value": 2.5, "goal": "at_most", "limit": 2)") << "-" << "short";
    QTest::newRow("at most, equal") << QByteArray(R"("value": 2, "goal": "at_most", "limit": 2)") << "-" << "met";
    QTest::newRow("at least, below") << QByteArray(R"("value": 9000, "goal": "at_least", "limit": 10000)") << "-" << "short";
    QTest::newRow("at least, above") << QByteArray(R"("value": 20000, "goal": "at_least", "limit": 10000)") << "-" << "met";
    QTest::newRow("not measured") << QByteArray(R"("value": null, "goal": "at_most", "limit": 2)") << "-" << "short";
    QTest::newRow("no goal") << QByteArray(R"("value": 3, "baseline_name": "b", "baseline": 2)") << "1.50" << "-";
}

void tst_Bench::tableJudgesEachGoal()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, ratio);
    QFETCH(QString, verdict);
    QTemporaryDir directory;
    QFile report(directory.filePath(QStringLiteral("report.jsonl")));
    QVERIFY(report.open(QIODevice::WriteOnly));
    report.write(R"({"bench": "b", "figure": "the figure", "unit": "ms", )" + line + "}\n");
    report.write(R"({"bench": "b", "series": "s", "unit": "ms", "samples": [1, 2]})" "\n");
    report.close();

    QProcess table;
    table.start(QStringLiteral("/usr/bin/python3"), {TZ_BENCH_REPORT_SCRIPT, "table", report.fileName()});
    QVERIFY(table.waitForFinished(20000));
    QCOMPARE(table.exitCode(), 0);
    const QStringList rows = QString::fromUtf8(table.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    // Header, rule, the one figure; the series is no row.
    QCOMPARE(rows.size(), 3);
    const QStringList cells = rows[2].split(QRegularExpression(QStringLiteral("\\s{2,}")));
    QCOMPARE(cells.value(1), QStringLiteral("the figure"));
    QCOMPARE(cells.value(cells.size() - 3), ratio);
    QCOMPARE(cells.last(), verdict);
}

void tst_Bench::demoHostStampsItsFirstFrame()
{
    timespec before{};
    clock_gettime(CLOCK_MONOTONIC, &before);
    const qint64 startedNs = qint64(before.tv_sec) * 1000000000 + before.tv_nsec;

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ORBInitRef"));
    ChildProcess host;
    QVERIFY(host.start(QStringLiteral(TZ_DEMO_HOST), {"-res", "800x480", "-first-frame", "-quit-after", "100"},
                       environment, QStringLiteral("FIRST FRAME"), 60000));
    const QRegularExpressionMatch stamp =
        QRegularExpression(QStringLiteral("FIRST FRAME (\\d+)\\n")).match(host.output());
    QVERIFY2(stamp.hasMatch(), qPrintable(host.output()));
    const qint64 frameNs = stamp.captured(1).toLongLong();
    QVERIFY(frameNs > startedNs);
    QVERIFY(frameNs - startedNs < qint64(60) * 1000000000);
    QCOMPARE(host.wait(30000), 0);
    QCOMPARE(host.output().count(QStringLiteral("FIRST FRAME")), 1);
}

QTEST_MAIN(tst_Bench)
#include "tst_bench.moc"
