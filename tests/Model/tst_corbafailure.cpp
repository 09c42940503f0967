// How failed engine and remote calls are described and logged, and how their texts are read.

#include "LogCapture.h"

#include "CorbaFailure.h"
#include "CorbaText.h"

#include <Orvanth.hh>
#include <omniORB4/Naming.hh>

#include <QtTest>

#include <functional>

using ExceptionFactory = std::function<void()>;
Q_DECLARE_METATYPE(ExceptionFactory)

class TestCorbaFailure : public QObject
{
    Q_OBJECT

private slots:
    void describesNameAndInfo_data();
    void describesNameAndInfo();
    void logsSourcePositions();
    void readsEngineText_data();
    void readsEngineText();
};

void TestCorbaFailure::describesNameAndInfo_data()
{
    QTest::addColumn<ExceptionFactory>("raise");
    QTest::addColumn<QString>("description");
    QTest::newRow("system exception with a known minor code")
        << ExceptionFactory([] { throw CORBA::TRANSIENT(omni::TRANSIENT_ConnectFailed, CORBA::COMPLETED_NO); })
        << QStringLiteral("TRANSIENT minor %1 (TRANSIENT_ConnectFailed)").arg(omni::TRANSIENT_ConnectFailed);
    QTest::newRow("system exception, minor code without a name")
        << ExceptionFactory([] { throw CORBA::OBJECT_NOT_EXIST(7, CORBA::COMPLETED_NO); })
        << QStringLiteral("OBJECT_NOT_EXIST minor 7");
    QTest::newRow("engine error, UTF-8 message")
        << ExceptionFactory([] { throw Orvanth::Runtime_errors::Generic("Pegel \xc3\xbc" "ber Grenze"); })
        << QStringLiteral("Generic Pegel \u00fcber Grenze");
    QTest::newRow("engine not connected")
        << ExceptionFactory([] { throw Orvanth::Connection_errors::Not_Connected("no lock manager"); })
        << QStringLiteral("Not_Connected no lock manager");
    QTest::newRow("other user exception")
        << ExceptionFactory([] { throw CosNaming::NamingContext::InvalidName(); })
        << QStringLiteral("InvalidName IDL:omg.org/CosNaming/NamingContext/InvalidName:1.0");
}

void TestCorbaFailure::describesNameAndInfo()
{
    QFETCH(ExceptionFactory, raise);
    QFETCH(QString, description);
    try {
        raise();
        QFAIL("nothing thrown");
    } catch (const CORBA::Exception& exception) {
        QCOMPARE(CorbaFailure::describe(exception), description);
    }
}

void TestCorbaFailure::logsSourcePositions()
{
    LogCapture log;
    CorbaFailure::logException("Components/Source/Controller/GUIManagerImpl", "DisplayDataEntry", 412);
    CorbaFailure::logException("Components/Source/View/Widgets/PushButtonImpl", nullptr, 202);
    CorbaFailure::logAtPosition(CORBA::COMM_FAILURE(0, CORBA::COMPLETED_MAYBE), "Components/Source/Model/GlobalImpl",
                                285);
    const QStringList expected{
        QStringLiteral("UserInterface - Exception Components/Source/Controller/GUIManagerImpl DisplayDataEntry 412"),
        QStringLiteral("UserInterface - Exception Components/Source/View/Widgets/PushButtonImpl 202"),
        QStringLiteral("UserInterface - Components/Source/Model/GlobalImpl:285"),
        QStringLiteral("               COMM_FAILURE minor 0")};
    QCOMPARE(log.lines(), expected);
}

void TestCorbaFailure::readsEngineText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("ASCII") << QByteArray("Level 3") << QStringLiteral("Level 3");
    QTest::newRow("UTF-8 degree sign") << QByteArray("20 \xc2\xb0" "C") << QStringLiteral("20 \u00b0C");
    QTest::newRow("UTF-8 four bytes") << QByteArray("\xf0\x9f\x94\x8b") << QStringLiteral("\U0001f50b");
    QTest::newRow("Latin-1 degree sign") << QByteArray("20 \xb0" "C") << QStringLiteral("20 \u00b0C");
    QTest::newRow("Latin-1 umlaut and sharp s") << QByteArray("Gr\xf6\xdf" "e") << QStringLiteral("Gr\u00f6\u00dfe");
    QTest::newRow("overlong slash") << QByteArray("\xc0\xaf") << QStringLiteral("\u00c0\u00af");
    QTest::newRow("encoded surrogate") << QByteArray("\xed\xa0\x80") << QStringLiteral("\u00ed\u00a0\u0080");
    QTest::newRow("cut sequence at the end") << QByteArray("x\xe2\x82") << QStringLiteral("x\u00e2\u0082");
}

void TestCorbaFailure::readsEngineText()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(CorbaText::fromCorba(bytes.constData()), text);
    QVERIFY(CorbaText::fromCorba(nullptr).isEmpty());
}

QTEST_MAIN(TestCorbaFailure)
#include "tst_corbafailure.moc"
