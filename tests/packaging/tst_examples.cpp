// The examples as a developer builds them against an installed package, run as programs:
// the minimal host starts and ends on each system type and serves the remote GUI service,
// the Designer form comes up with the kit's widgets made by the installed plug-in and
// binds them to an engine, and the example engine serves its module and opens its
// dialog on the minimal host.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <QtTest>

#include <algorithm>

using namespace Orvanth;

namespace {

QString example(const QString& project, const QString& program)
{
    return QStringLiteral(TZ_EXAMPLES_DIR "/%1/%2").arg(project, program);
}

// The installed libraries are found through the library path: the library itself
// carries no run path to its own dependencies.
QProcessEnvironment installedEnvironment(QProcessEnvironment environment = QProcessEnvironment::systemEnvironment())
{
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(TZ_INSTALL_PREFIX "/lib"));
    return environment;
}

} // namespace

class TestExamples : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_naming.start());
        m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
    }

    void cleanupTestCase()
    {
        m_orb.reset();
        ORB_base::destroyProcessOrb();
    }

    void minimalHostStartsAndEnds_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("benchtop") << QStringList{"-res", "1280x800", "-systype", "benchtop"};
        QTest::newRow("handheld") << QStringList{"-res", "480x800", "-systype", "handheld"};
    }

    void minimalHostStartsAndEnds()
    {
        QFETCH(QStringList, arguments);
        QProcessEnvironment environment = installedEnvironment();
        environment.remove(QStringLiteral("ORBInitRef"));
        QString output;
        QCOMPARE(run(example("minimal-host", "tz-minimal-host"), arguments + QStringList{"-quit-after", "300"},
                     environment, &output),
                 0);
        QVERIFY2(output.contains("tz-minimal-host: desktop shown\n"), qPrintable(output));
        QVERIFY2(output.contains("tz-minimal-host: exit 0\n"), qPrintable(output));
    }

    void designerFormCreatesKitWidgets_data()
    {
        QTest::addColumn<QString>("widget");
        QTest::newRow("push button") << "Lumaro::gui::PushButtonImpl RunButton";
        QTest::newRow("horizontal scroll bar") << "Lumaro::gui::HorizontalScrollBarImpl LevelScrollBar";
        QTest::newRow("vertical scroll bar") << "Lumaro::gui::VerticalScrollBarImpl ListScrollBar";
        QTest::newRow("rotatable label") << "RotatableLabel AxisLabel";
    }

    void designerFormCreatesKitWidgets()
    {
        QFETCH(QString, widget);
        QProcessEnvironment environment = installedEnvironment();
        environment.remove(QStringLiteral("ORBInitRef"));
        // The plug-in comes from the prefix alone, not from Qt's own plug-in folders.
        environment.remove(QStringLiteral("QT_PLUGIN_PATH"));
        QString output;
        QCOMPARE(run(example("designer-form", "tz-designer-form"), {"-quit-after", "100"}, environment, &output), 0);
        QVERIFY2(output.contains("tz-designer-form: " + widget + "\n"), qPrintable(output));
    }

    void engineOpensDialogOnMinimalHost()
    {
        ChildProcess host;
        QVERIFY(host.start(example("minimal-host", "tz-minimal-host"), m_naming.orbArguments(), installedEnvironment(),
                           QStringLiteral("desktop shown")));
        const QStringList orb = m_naming.orbArguments();
        QString screens;
        QTRY_VERIFY_WITH_TIMEOUT((run(QStringLiteral(TZ_GUI_CLIENT), orb + QStringList{"--screens"},
                                      QProcessEnvironment::systemEnvironment(), &screens),
                                  screens.contains("Readings\n")),
                                 15000);

        ChildProcess engine;
        QVERIFY(engine.start(example("engine", "tz-example-engine"), orb + QStringList{"--index", "61", "--no-wait"},
                             installedEnvironment(), QStringLiteral("READY")));
        QVERIFY(moduleBound("61"));
        QTRY_COMPARE_WITH_TIMEOUT(run(QStringLiteral(TZ_GUI_CLIENT), orb + QStringList{"--active", "Example engine"}), 0,
                                  10000);

        // Stopped, it takes its module away.
        QCOMPARE(engine.stop(), 0);
        QVERIFY(!moduleBound("61"));
        QCOMPARE(run(QStringLiteral(TZ_GUI_CLIENT), orb + QStringList{"--close-dialog", "Example engine"}), 0);
    }

    void designerFormBindsToExampleEngine()
    {
        ChildProcess engine;
        QVERIFY(engine.start(example("engine", "tz-example-engine"), m_naming.orbArguments() + QStringList{"--index", "62"},
                             installedEnvironment(), QStringLiteral("READY")));
        ChildProcess form;
        QVERIFY(form.start(example("designer-form", "tz-designer-form"), m_naming.orbArguments(), installedEnvironment(),
                           QStringLiteral("RunButton bound to EXAMPLEACTION1"), 20000));
        QCOMPARE(engine.stop(), 0);
    }

private:
    bool moduleBound(const std::string& index)
    {
        const std::vector<std::string> names = m_orb->FindChildContext(Names::GuiAbleContext);
        return std::find(names.begin(), names.end(), index) != names.end();
    }

    static int run(const QString& program, const QStringList& arguments,
                   const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment(),
                   QString* output = nullptr)
    {
        ChildProcess process;
        process.setOutputIncludesErrors(true);
        const int code = process.start(program, arguments, environment, {}) ? process.wait(20000) : -1;
        if (output)
            *output = process.output();
        return code;
    }

    NamingServiceProcess m_naming;
    std::unique_ptr<ORB_wrapper_base> m_orb;
};

QTEST_MAIN(TestExamples)
#include "tst_examples.moc"
