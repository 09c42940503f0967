// A widget's subscription record deletes exactly the subscriber of its own kind.

#include "DDS_Subscriber_Object.h"

#include <QtTest>

using Orvanth::DDS_Subscriber_Object;

namespace {

// Stands in for a subscriber: counts its deletion.
class CountedSubscriber : public Orvanth::DDS_BaseObj
{
public:
    explicit CountedSubscriber(int* deletions) : m_deletions(deletions) {}
    ~CountedSubscriber() override { ++*m_deletions; }

private:
    int* m_deletions;
};

} // namespace

class TestDdsSubscriberObject : public QObject
{
    Q_OBJECT

private slots:
    void destroysOnlyItsOwnKind_data();
    void destroysOnlyItsOwnKind();
};

void TestDdsSubscriberObject::destroysOnlyItsOwnKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("deletions");

    QTest::newRow("void record") << int(DDS_Subscriber_Object::VoidKind) << 8 << 1;
    QTest::newRow("first kind") << 0 << 0 << 1;
    QTest::newRow("last kind") << 12 << 12 << 1;
    QTest::newRow("pointer in another slot") << int(DDS_Subscriber_Object::EventKind) << 8 << 0;
    QTest::newRow("kind above 12") << 13 << 12 << 0;
    QTest::newRow("negative kind") << -1 << 0 << 0;
}

void TestDdsSubscriberObject::destroysOnlyItsOwnKind()
{
    QFETCH(int, kind);
    QFETCH(int, slot);
    QFETCH(int, deletions);

    int deleted = 0;
    auto* subscriber = new CountedSubscriber(&deleted);
    DDS_Subscriber_Object record;
    record.kind = kind;
    record.subscribers[std::size_t(slot)] = subscriber;

    record.destroy();
    QCOMPARE(deleted, deletions);
    record.destroy(); // a second teardown must not delete twice
    QCOMPARE(deleted, deletions);
    if (deletions == 0)
        delete subscriber;
    QCOMPARE(record.subscriber(), static_cast<Orvanth::DDS_BaseObj*>(nullptr));
}

QTEST_GUILESS_MAIN(TestDdsSubscriberObject)
#include "tst_ddssubscriberobject.moc"
