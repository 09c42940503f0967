// pthread_mutex_clocklock for test programs under ThreadSanitizer.
//
// libstdc++'s timed mutexes lock through pthread_mutex_clocklock, and Fast DDS takes most
// of its locks that way. Neither GCC 12's nor clang 14's ThreadSanitizer runtime intercepts
// it, so the sanitizer sees those unlocks but never the locks, loses the order they give
// and reports races between threads that in fact take turns. Preloaded, this definition
// comes before the C library's and hands the lock to pthread_mutex_timedlock, which the
// runtime does intercept. The deadline is converted from the caller's clock to the real
// time clock; a clock step during the wait can stretch or shorten it, which a test run
// does not notice.

#include <pthread.h>
#include <time.h>

namespace {

constexpr long long nanosecondsPerSecond = 1000000000LL;

long long nanoseconds(const timespec& time)
{
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

} // namespace

extern "C" int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const timespec* deadline)
{
    if (clock == CLOCK_REALTIME)
        return pthread_mutex_timedlock(mutex, deadline);
    timespec now{};
    timespec realNow{};
    clock_gettime(clock, &now);
    clock_gettime(CLOCK_REALTIME, &realNow);
    long long left = nanoseconds(*deadline) - nanoseconds(now);
    if (left < 0)
        left = 0;
    const long long realDeadline = nanoseconds(realNow) + left;
    const timespec converted{time_t(realDeadline / nanosecondsPerSecond), long(realDeadline % nanosecondsPerSecond)};
    return pthread_mutex_timedlock(mutex, &converted);
}
