// The process's own and instrument addresses from the two variables: loopback when unset,
// the route's source towards the instrument, the override, and bad values reported and
// left aside. Only addresses of 127.0.0.0/8 are routed to, and a route look-up sends nothing.

#include "HostAddress.h"

#include <QtTest>

class TestHostAddress : public QObject
{
    Q_OBJECT

private slots:
    void choosesAddresses_data();
    void choosesAddresses();
};

void TestHostAddress::choosesAddresses_data()
{
    QTest::addColumn<QString>("instrumentHost");
    QTest::addColumn<QString>("hostAddress");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<QString>("instrument");
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("problem");

    QTest::newRow("nothing set") << QString() << QString() << false << "127.0.0.1" << "127.0.0.1" << QString();
    QTest::newRow("empty values count as unset")
        << QStringLiteral("") << QStringLiteral("") << false << "127.0.0.1" << "127.0.0.1" << QString();
    // 127.0.0.0/8 is this host's: the route towards 127.0.0.9 leaves from 127.0.0.1.
    QTest::newRow("own address from the route")
        << "127.0.0.9" << QString() << true << "127.0.0.9" << "127.0.0.1" << QString();
    QTest::newRow("override taken") << "127.0.0.9" << "127.0.0.5" << true << "127.0.0.9" << "127.0.0.5" << QString();
    // 192.0.2.0/24 is a documentation range, never assigned: it cannot be bound.
    QTest::newRow("override not of this host")
        << "127.0.0.9" << "192.0.2.7" << true << "127.0.0.9" << "127.0.0.1"
        << "Orvanth network - ORVANTH_HOST_ADDRESS \"192.0.2.7\" is not an address of this host "
           "(Cannot assign requested address); using 127.0.0.1, the source address towards 127.0.0.9";
    QTest::newRow("override not an address")
        << "127.0.0.9" << "engine-pc" << true << "127.0.0.9" << "127.0.0.1"
        << "Orvanth network - ORVANTH_HOST_ADDRESS \"engine-pc\" is not an address of this host "
           "(not the IPv4 address of a host); using 127.0.0.1, the source address towards 127.0.0.9";
    QTest::newRow("override alone")
        << QString() << "127.0.0.5" << false << "127.0.0.1" << "127.0.0.1"
        << "Orvanth network - ORVANTH_HOST_ADDRESS \"127.0.0.5\" ignored without ORVANTH_INSTRUMENT_HOST; "
           "staying on 127.0.0.1";
    QTest::newRow("host name") << "instrument.local" << QString() << false << "127.0.0.1" << "127.0.0.1"
                               << "Orvanth network - ORVANTH_INSTRUMENT_HOST \"instrument.local\" is not the IPv4 "
                                  "address of a host; staying on 127.0.0.1";
    QTest::newRow("short address") << "10.251" << QString() << false << "127.0.0.1" << "127.0.0.1"
                                   << "Orvanth network - ORVANTH_INSTRUMENT_HOST \"10.251\" is not the IPv4 "
                                      "address of a host; staying on 127.0.0.1";
    QTest::newRow("multicast group") << "239.255.0.1" << QString() << false << "127.0.0.1" << "127.0.0.1"
                                     << "Orvanth network - ORVANTH_INSTRUMENT_HOST \"239.255.0.1\" is not the IPv4 "
                                        "address of a host; staying on 127.0.0.1";
    QTest::newRow("any address") << "0.0.0.0" << QString() << false << "127.0.0.1" << "127.0.0.1"
                                 << "Orvanth network - ORVANTH_INSTRUMENT_HOST \"0.0.0.0\" is not the IPv4 "
                                    "address of a host; staying on 127.0.0.1";
}

void TestHostAddress::choosesAddresses()
{
    QFETCH(QString, instrumentHost);
    QFETCH(QString, hostAddress);
    QFETCH(bool, remote);
    QFETCH(QString, instrument);
    QFETCH(QString, own);
    QFETCH(QString, problem);

    const QByteArray instrumentText = instrumentHost.toUtf8();
    const QByteArray hostText = hostAddress.toUtf8();
    std::vector<std::string> problems;
    const HostAddress address = HostAddress::fromValues(instrumentHost.isNull() ? nullptr : instrumentText.constData(),
                                                        hostAddress.isNull() ? nullptr : hostText.constData(),
                                                        &problems);
    QCOMPARE(address.isRemote(), remote);
    QCOMPARE(QString::fromStdString(address.instrument()), instrument);
    QCOMPARE(QString::fromStdString(address.own()), own);
    QCOMPARE(QString::fromStdString(address.namingService()), QStringLiteral("corbaname::%1:2809").arg(instrument));
    const std::vector<std::string> expected = problem.isEmpty() ? std::vector<std::string>{}
                                                                : std::vector<std::string>{problem.toStdString()};
    QCOMPARE(problems, expected);
}

QTEST_GUILESS_MAIN(TestHostAddress)
#include "tst_hostaddress.moc"
