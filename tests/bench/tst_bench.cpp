#include "BenchReport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

// What scripts/bench builds its table from: the figures a benchmark writes with
// --report, judged against their goals by scripts/lib/benchreport.py.
class tst_Bench : public QObject
{
    Q_OBJECT

private slots:
    void tableJudgesEachFigureAgainstItsGoal_data();
    void tableJudgesEachFigureAgainstItsGoal();
};

enum class Kind { RatioAtMost, AtMost, AtLeast, Info };
Q_DECLARE_METATYPE(Kind)

void tst_Bench::tableJudgesEachFigureAgainstItsGoal_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("baseline");
    QTest::addColumn<double>("limit");
    QTest::addColumn<QString>("ratio");
    QTest::addColumn<QString>("verdict");

    QTest::newRow("ratio within") << Kind::RatioAtMost << 26.0 << 20.0 << 1.3 << "1.30" << "met";
    QTest::newRow("ratio beyond") << Kind::RatioAtMost << 27.0 << 20.0 << 1.3 << "1.35" << "short";
    QTest::newRow("ratio, baseline lost") << Kind::RatioAtMost << 27.0 << double(NAN) << 1.3 << "-" << "short";
    QTest::newRow("at most, above") << Kind::AtMost << 2.5 << double(NAN) << 2.0 << "-" << "short";
    QTest::newRow("at least, below") << Kind::AtLeast << 9000.0 << double(NAN) << 10000.0 << "-" << "short";
    QTest::newRow("not measured") << Kind::AtMost << double(NAN) << double(NAN) << 2.0 << "-" << "short";
    QTest::newRow("no goal") << Kind::Info << 3.0 << double(NAN) << 0.0 << "-" << "-";
}

void tst_Bench::tableJudgesEachFigureAgainstItsGoal()
{
    QFETCH(Kind, kind);
    QFETCH(double, value);
    QFETCH(double, baseline);
    QFETCH(double, limit);
    QFETCH(QString, ratio);
    QFETCH(QString, verdict);
    QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("report.jsonl"));
    {
        // The option is taken out of the arguments, wherever it stands.
        QByteArray program("bench"), runs("--runs"), option("--report"), name = file.toUtf8(), three("3");
        char* argv[] = {program.data(), runs.data(), option.data(), name.data(), three.data(), nullptr};
        int argc = 5;
        BenchReport report("b", argc, argv);
        QCOMPARE(argc, 3);
        QCOMPARE(argv[2], three.data());
        QCOMPARE(argv[3], nullptr);
        // A name that needs quoting in JSON.
        const std::string figure = "the \"figure\"";
        switch (kind) {
        case Kind::RatioAtMost:
            report.ratioAtMost(figure, value, "ms", "b", baseline, limit);
            break;
        case Kind::AtMost:
            report.atMost(figure, value, "ms", limit);
            break;
        case Kind::AtLeast:
            report.atLeast(figure, value, "1/s", limit);
            break;
        case Kind::Info:
            report.info(figure, value, "ms");
            break;
        }
        // A series is plotted, never a row of the table.
        report.samples("s", "ms", {1.5, 2.25});
    }

    QProcess table;
    table.start(QStringLiteral("/usr/bin/python3"), {TZ_BENCH_REPORT_SCRIPT, "table", file});
    QVERIFY(table.waitForFinished(20000));
    QCOMPARE(table.exitCode(), 0);
    const QStringList rows = QString::fromUtf8(table.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    // Header, rule, the one figure.
    QCOMPARE(rows.size(), 3);
    const QStringList cells = rows[2].split(QRegularExpression(QStringLiteral("\\s{2,}")));
    QCOMPARE(cells.value(1), QStringLiteral("the \"figure\""));
    QCOMPARE(cells.value(cells.size() - 3), ratio);
    QCOMPARE(cells.last(), verdict);
}

QTEST_MAIN(tst_Bench)
#include "tst_bench.moc"
