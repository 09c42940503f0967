// The preloaded pthread_mutex_clocklock must still lock and time out as the C library's
// does, or Fast DDS under the sanitizer would wait wrongly.

#include <QtTest>

#include <cerrno>
#include <chrono>
#include <pthread.h>
#include <thread>
#include <time.h>

namespace {

timespec fromNow(clockid_t clock, std::chrono::milliseconds ahead)
{
    timespec now{};
    clock_gettime(clock, &now);
    const long long nanoseconds = now.tv_nsec + std::chrono::nanoseconds(ahead).count();
    return timespec{now.tv_sec + time_t(nanoseconds / 1000000000LL), long(nanoseconds % 1000000000LL)};
}

} // namespace

class TestClockLock : public QObject
{
    Q_OBJECT

private slots:
    void locksFreeMutexAndTimesOutOnHeldOne_data()
    {
        QTest::addColumn<int>("clock");
        QTest::newRow("monotonic") << int(CLOCK_MONOTONIC);
        QTest::newRow("realtime") << int(CLOCK_REALTIME);
    }

    void locksFreeMutexAndTimesOutOnHeldOne()
    {
        QFETCH(int, clock);
        pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
        timespec deadline = fromNow(clock, std::chrono::milliseconds(200));
        QCOMPARE(pthread_mutex_clocklock(&mutex, clock, &deadline), 0);

        // Held by this thread: another one waits out the deadline, no more, no less.
        int result = -1;
        QElapsedTimer waited;
        std::thread other([&] {
            deadline = fromNow(clock, std::chrono::milliseconds(300));
            waited.start();
            result = pthread_mutex_clocklock(&mutex, clock, &deadline);
        });
        other.join();
        QCOMPARE(result, ETIMEDOUT);
        QVERIFY2(waited.elapsed() >= 250, qPrintable(QString::number(waited.elapsed())));

        // A deadline already past on a free mutex still locks it.
        pthread_mutex_unlock(&mutex);
        deadline = fromNow(clock, std::chrono::milliseconds(0));
        deadline.tv_sec -= 5;
        QCOMPARE(pthread_mutex_clocklock(&mutex, clock, &deadline), 0);
        pthread_mutex_unlock(&mutex);
    }
};

QTEST_GUILESS_MAIN(TestClockLock)
#include "tst_clocklock.moc"
