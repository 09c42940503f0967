// The application options: parsing a host's command line, and the typed readers every
// widget uses, for set, absent and malformed options.

#include "LogCapture.h"

#include "ApplicationOptions.h"

#include <QCoreApplication>
#include <QtTest>

using Values = QList<QPair<QString, QString>>;
Q_DECLARE_METATYPE(Values)

class TestApplicationOptions : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void parsesCommandLine_data();
    void parsesCommandLine();
    void readsTypedValues();
    void absentAndMalformedReadAsDefaults();
};

void TestApplicationOptions::cleanup()
{
    for (const auto& description : ApplicationOptions::table())
        qApp->setProperty(description.name, QVariant());
}

void TestApplicationOptions::parsesCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QStringList>("rest");
    QTest::addColumn<int>("problems");

    QTest::newRow("nothing") << QStringList{} << Values{} << QStringList{} << 0;
    QTest::newRow("every valued option")
        << QStringList{"-systype", "handheld", "-res", "480x800", "-size", "small_portrait", "-grid", "2x4",
                       "-menubarlocation", "left", "currentLanguage", "zh_tw", "-ORBInitRef",
                       "NameService=corbaname::127.0.0.1:2809", "state", "initializing"}
        << Values{{"-systype", "handheld"}, {"-res", "480x800"}, {"-size", "small_portrait"}, {"-grid", "2x4"},
                  {"-menubarlocation", "left"}, {"currentLanguage", "zh_tw"},
                  {"-ORBInitRef", "NameService=corbaname::127.0.0.1:2809"}, {"state", "initializing"}}
        << QStringList{} << 0;
    QTest::newRow("switches with and without value")
        << QStringList{"-fullscreen", "-animation", "false", "-notransparency", "true"}
        << Values{{"-fullscreen", "true"}, {"-animation", "false"}, {"-notransparency", "true"}} << QStringList{}
        << 0;
    QTest::newRow("other arguments are left to the host")
        << QStringList{"-debug", "-res", "800x480", "--res", "x"} << Values{{"-res", "800x480"}}
        << QStringList{"-debug", "--res", "x"} << 0;
    QTest::newRow("malformed resolution and grid")
        << QStringList{"-res", "800by480", "-grid", "2x", "-systype", "benchtop"} << Values{{"-systype", "benchtop"}}
        << QStringList{} << 2;
    QTest::newRow("value missing at the end")
        << QStringList{"-res", "800x480", "-systype"} << Values{{"-res", "800x480"}} << QStringList{} << 1;
    QTest::newRow("last repetition counts")
        << QStringList{"-res", "800x480", "-systype", "handheld", "-res", "1280x800", "-res", "bad"}
        << Values{{"-res", "1280x800"}, {"-systype", "handheld"}} << QStringList{} << 1;
}

void TestApplicationOptions::parsesCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(Values, values);
    QFETCH(QStringList, rest);
    QFETCH(int, problems);

    LogCapture log;
    arguments.prepend(QStringLiteral("host"));
    const ApplicationOptions::Parsed parsed = ApplicationOptions::parse(arguments);
    QCOMPARE(parsed.values, values);
    QCOMPARE(parsed.rest, rest);
    QCOMPARE(log.lines().size(), problems);
}

void TestApplicationOptions::readsTypedValues()
{
    ApplicationOptions::apply(
        ApplicationOptions::parse({"host", "-systype", "handheld", "-res", "480x800", "-grid", "2x4", "-size",
                                   "small_portrait", "-fullscreen", "-animation", "false", "-notransparency",
                                   "-menubarlocation", "top", "currentLanguage", "zh_cn", "state", "initializing"}),
        qApp);
    QVERIFY(ApplicationOptions::isHandheld());
    QVERIFY(!ApplicationOptions::isBenchtop());
    QCOMPARE(ApplicationOptions::resolution(), QSize(480, 800));
    QVERIFY(ApplicationOptions::isPortraitResolution());
    QCOMPARE(ApplicationOptions::grid(), QSize(4, 2));
    QCOMPARE(ApplicationOptions::screenSize(), ApplicationOptions::ScreenSize::SmallPortrait);
    QVERIFY(ApplicationOptions::fullScreen());
    QVERIFY(ApplicationOptions::animationSwitchedOff());
    QVERIFY(!ApplicationOptions::animationSwitchedOn());
    QVERIFY(ApplicationOptions::noTransparency());
    QCOMPARE(ApplicationOptions::menuBarLocation(), ApplicationOptions::MenuBarLocation::Top);
    QVERIFY(ApplicationOptions::isChineseLanguage());
    QVERIFY(ApplicationOptions::isInitializing());
}

void TestApplicationOptions::absentAndMalformedReadAsDefaults()
{
    QCOMPARE(ApplicationOptions::systemType(), ApplicationOptions::SystemType::Unspecified);
    QVERIFY(!ApplicationOptions::resolution().isValid());
    QCOMPARE(ApplicationOptions::resolutionOr(QSize(1280, 800)), QSize(1280, 800));
    QVERIFY(!ApplicationOptions::animationSwitchedOn());
    QVERIFY(!ApplicationOptions::animationSwitchedOff());

    // Set by a host that did not use the parser: compared as text, never guessed at.
    qApp->setProperty("-systype", QStringLiteral("Handheld"));
    qApp->setProperty("-res", QStringLiteral("800x"));
    qApp->setProperty("-fullscreen", QStringLiteral("yes"));
    QCOMPARE(ApplicationOptions::systemType(), ApplicationOptions::SystemType::Unspecified);
    QCOMPARE(ApplicationOptions::resolutionOr(QSize(1280, 800)), QSize(1280, 800));
    QVERIFY(!ApplicationOptions::fullScreen());
}

QTEST_GUILESS_MAIN(TestApplicationOptions)
#include "tst_applicationoptions.moc"
