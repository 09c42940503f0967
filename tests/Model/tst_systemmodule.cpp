// The table of system screens and modules, as the host fills it and as scripts and
// library parts read it.

#include "SystemModule.h"

#include <QtTest>

#include <memory>

class TestSystemModule : public QObject
{
    Q_OBJECT

private slots:
    void laterRegistrationReplacesEarlier();
    void unknownNamesReadNull();
    void destroyedEntriesReadNull();
    void lookupsAreReachableByName();
};

void TestSystemModule::laterRegistrationReplacesEarlier()
{
    SystemModule table(nullptr);
    QWidget first;
    QWidget second;
    table.setSystemScreen(QStringLiteral("MainWindow"), &first);
    table.setSystemScreen(QStringLiteral("MainWindow"), &second);
    QCOMPARE(table.getSystemScreen(QStringLiteral("MainWindow")), &second);

    QObject firstModule;
    QObject secondModule;
    table.setModule(QStringLiteral("ScreenStateManager"), &firstModule);
    table.setModule(QStringLiteral("ScreenStateManager"), &secondModule);
    QCOMPARE(table.getModule(QStringLiteral("ScreenStateManager")), &secondModule);
}

void TestSystemModule::unknownNamesReadNull()
{
    SystemModule table(nullptr);
    QWidget screen;
    QObject module;
    table.setSystemScreen(QStringLiteral("DCS"), &screen);
    table.setModule(QStringLiteral("ProcessManager"), &module);
    // Screens and modules are separate tables, and names are case-sensitive.
    QVERIFY(!table.getSystemScreen(QStringLiteral("ProcessManager")));
    QVERIFY(!table.getModule(QStringLiteral("DCS")));
    QVERIFY(!table.getSystemScreen(QStringLiteral("dcs")));
    QVERIFY(!table.getSystemScreen(QString()));
}

void TestSystemModule::destroyedEntriesReadNull()
{
    SystemModule table(nullptr);
    auto screen = std::make_unique<QWidget>();
    auto module = std::make_unique<QObject>();
    table.setSystemScreen(QStringLiteral("MainWindow"), screen.get());
    table.setModule(QStringLiteral("ScreenStateManager"), module.get());
    screen.reset();
    module.reset();
    QVERIFY(!table.getSystemScreen(QStringLiteral("MainWindow")));
    QVERIFY(!table.getModule(QStringLiteral("ScreenStateManager")));
}

void TestSystemModule::lookupsAreReachableByName()
{
    SystemModule table(nullptr);
    QWidget screen;
    QObject module;
    table.setSystemScreen(QStringLiteral("MainWindow"), &screen);
    table.setModule(QStringLiteral("ProcessManager"), &module);

    QWidget* foundScreen = nullptr;
    QVERIFY(QMetaObject::invokeMethod(&table, "getSystemScreen", Q_RETURN_ARG(QWidget*, foundScreen),
                                      Q_ARG(QString, QStringLiteral("MainWindow"))));
    QCOMPARE(foundScreen, &screen);
    QObject* foundModule = nullptr;
    QVERIFY(QMetaObject::invokeMethod(&table, "getModule", Q_RETURN_ARG(QObject*, foundModule),
                                      Q_ARG(QString, QStringLiteral("ProcessManager"))));
    QCOMPARE(foundModule, &module);
}

QTEST_MAIN(TestSystemModule)
#include "tst_systemmodule.moc"
