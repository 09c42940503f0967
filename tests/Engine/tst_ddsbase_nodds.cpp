// A process whose DDS cannot start gets a null participant, not a crash.

#include "DDS_BaseObj.h"

#include <QtTest>

class TestDdsBaseWithoutDds : public QObject
{
    Q_OBJECT

private slots:
    void reportsNullParticipant()
    {
        QCOMPARE(qgetenv("ORVANTH_DDS_DOMAIN"), QByteArray("999"));
        QVERIFY(!Orvanth::DDS_BaseObj::DdsBase().participant);
        // Asking again neither retries nor crashes.
        QVERIFY(!Orvanth::DDS_BaseObj::DdsBase().participant);
        Orvanth::DDS_BaseObj::shutdownDds();
    }
};

QTEST_GUILESS_MAIN(TestDdsBaseWithoutDds)
#include "tst_ddsbase_nodds.moc"
