// The demo host's command line: which application options it sets, and how it treats
// malformed, incomplete and unknown arguments.

#include "LogCapture.h"

#include "ApplicationOptions.h"

#include <QCoreApplication>
#include <QtTest>

using Properties = QList<QPair<QString, QString>>;
Q_DECLARE_METATYPE(Properties)

class TestApplicationOptions : public QObject
{
    Q_OBJECT

private slots:
    void parsesCommandLine_data();
    void parsesCommandLine();
    void setsApplicationProperties();
};

void TestApplicationOptions::parsesCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Properties>("properties");
    QTest::addColumn<QSize>("resolution");
    QTest::addColumn<bool>("debug");
    QTest::addColumn<int>("quitAfterMs");
    QTest::addColumn<int>("problems");

    const QSize fallback(800, 480);
    QTest::newRow("nothing") << QStringList{} << Properties{} << fallback << false << -1 << 0;
    QTest::newRow("every valued option")
        << QStringList{"-systype", "handheld", "-res", "480x800", "-size", "small_portrait", "-grid", "2x4",
                       "-menubarlocation", "left", "currentLanguage", "zh_tw", "-ORBInitRef",
                       "NameService=corbaname::127.0.0.1:2809", "state", "initializing"}
        << Properties{{"-systype", "handheld"}, {"-res", "480x800"}, {"-size", "small_portrait"}, {"-grid", "2x4"},
                      {"-menubarlocation", "left"}, {"currentLanguage", "zh_tw"},
                      {"-ORBInitRef", "NameService=corbaname::127.0.0.1:2809"}, {"state", "initializing"}}
        << QSize(480, 800) << false << -1 << 0;
    QTest::newRow("switches with and without value")
        << QStringList{"-fullscreen", "-animation", "false", "-notransparency", "true"}
        << Properties{{"-fullscreen", "true"}, {"-animation", "false"}, {"-notransparency", "true"}} << fallback
        << false << -1 << 0;
    QTest::newRow("host options") << QStringList{"-debug", "-quit-after", "250"} << Properties{} << fallback << true
                                  << 250 << 0;
    QTest::newRow("malformed resolution and grid")
        << QStringList{"-res", "800by480", "-grid", "2x", "-systype", "benchtop"}
        << Properties{{"-systype", "benchtop"}} << fallback << false << -1 << 2;
    QTest::newRow("value missing at the end") << QStringList{"-res", "800x480", "-systype"}
                                              << Properties{{"-res", "800x480"}} << fallback << false << -1 << 1;
    QTest::newRow("unknown arguments") << QStringList{"--res", "800x480", "-res"} << Properties{} << fallback << false
                                       << -1 << 3;
    QTest::newRow("malformed quit delay") << QStringList{"-quit-after", "soon"} << Properties{} << fallback << false
                                          << -1 << 2;
    QTest::newRow("last repetition counts")
        << QStringList{"-res", "800x480", "-systype", "handheld", "-res", "1280x800", "-res", "bad"}
        << Properties{{"-res", "1280x800"}, {"-systype", "handheld"}} << QSize(1280, 800) << false << -1 << 1;
}

void TestApplicationOptions::parsesCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(Properties, properties);
    QFETCH(QSize, resolution);
    QFETCH(bool, debug);
    QFETCH(int, quitAfterMs);
    QFETCH(int, problems);

    LogCapture log;
    arguments.prepend(QStringLiteral("tz-demo-host"));
    const ApplicationOptions options(arguments);
    QCOMPARE(options.properties(), properties);
    QCOMPARE(options.resolution(), resolution);
    QCOMPARE(options.debugOutput(), debug);
    QCOMPARE(options.quitAfterMs(), quitAfterMs);
    QCOMPARE(log.lines().size(), problems);
    for (const QString& line : log.lines())
        QVERIFY2(line.startsWith(QStringLiteral("UserInterface - Demo host - ")), qPrintable(line));
}

void TestApplicationOptions::setsApplicationProperties()
{
    const ApplicationOptions options(
        {"tz-demo-host", "-res", "800x480", "-grid", "two", "-fullscreen", "currentLanguage", "zh_cn"});
    QCoreApplication* application = QCoreApplication::instance();
    options.apply(application);
    QCOMPARE(application->property("-res"), QVariant(QStringLiteral("800x480")));
    QCOMPARE(application->property("-fullscreen"), QVariant(QStringLiteral("true")));
    QCOMPARE(application->property("currentLanguage"), QVariant(QStringLiteral("zh_cn")));
    // A malformed option is not set at all, so it reads as absent.
    QVERIFY(!application->property("-grid").isValid());
}

QTEST_GUILESS_MAIN(TestApplicationOptions)
#include "tst_applicationoptions.moc"
