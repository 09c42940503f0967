// Latency from a DDS write in another process to the subscriber's callback, for the typed
// subscriber and, in the same run, for a plain Fast DDS listener on an identical reader.
//
//   tz-bench-ddslatency [--samples N] [--interval-us US] [--report FILE]
//
// The program starts a copy of itself as the publisher, which writes event messages
// alternately on two topics, each stamped with CLOCK_MONOTONIC (shared by the processes
// of one host). It prints the median and 99th percentile of both and their ratio; the
// goal is a typed-subscriber figure of at most 1.5 times the plain one. DDS domain from
// ORVANTH_DDS_DOMAIN (default 199 here, away from the tests' domains).

#include "DDS_BaseObj.h"
#include "DDS_ReaderQos.h"
#include "DDS_Subscriber.h"
#include "TopicPublisher.h"

#include "BenchReport.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <mutex>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <time.h>
#include <vector>

extern char** environ;

using namespace eprosima::fastdds::dds;
using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

constexpr const char* RawTopic = "Bench/Latency/Plain";
constexpr const char* TypedTopic = "Bench/Latency/Typed";

std::int64_t monotonicNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t(now.tv_sec) * 1000000000 + now.tv_nsec;
}

// Latencies in nanoseconds, from any delivery thread.
class LatencyLog
{
public:
    void add(std::int64_t sentNs)
    {
        const std::int64_t latency = monotonicNs() - sentNs;
        std::lock_guard<std::mutex> lock(m_mutex);
        m_latencies.push_back(latency);
    }

    std::size_t size()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_latencies.size();
    }

    std::vector<std::int64_t> sorted()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<std::int64_t> copy = m_latencies;
        std::sort(copy.begin(), copy.end());
        return copy;
    }

private:
    std::mutex m_mutex;
    std::vector<std::int64_t> m_latencies;
};

// The plain reader: the typed subscriber's reader QoS, one sample per notification.
class PlainReader : public DataReaderListener
{
public:
    PlainReader(DomainParticipant* participant, LatencyLog* log) : m_participant(participant), m_log(log)
    {
        m_type.register_type(participant);
        m_topic = participant->create_topic(RawTopic, m_type.get_type_name(), TOPIC_QOS_DEFAULT);
        m_subscriber = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT);
        const DataReaderQos qos =
            readerQos(m_subscriber->get_default_datareader_qos(), 0, 0, VOLATILE_DURABILITY_QOS);
        m_reader = m_subscriber->create_datareader(m_topic, qos, this, StatusMask::all());
    }

    ~PlainReader() override
    {
        m_subscriber->delete_datareader(m_reader);
        m_participant->delete_subscriber(m_subscriber);
        m_participant->delete_topic(m_topic);
    }

    void on_data_available(DataReader* reader) override
    {
        ATTR_EVENT sample;
        SampleInfo info;
        if (reader->take_next_sample(&sample, &info) == ReturnCode_t::RETCODE_OK && info.valid_data)
            m_log->add(sample.value().timestamp());
    }

private:
    DomainParticipant* m_participant;
    LatencyLog* m_log;
    TypeSupport m_type{new ATTR_EVENTPubSubType()};
    Topic* m_topic = nullptr;
    Subscriber* m_subscriber = nullptr;
    DataReader* m_reader = nullptr;
};

int runPublisher(int samples, int intervalUs)
{
    TopicPublisher<ATTR_EVENTPubSubType> plain(RawTopic);
    TopicPublisher<ATTR_EVENTPubSubType> typed(TypedTopic);
    if (!plain.waitForSubscribers(1, std::chrono::seconds(20)) || !typed.waitForSubscribers(1, std::chrono::seconds(20))) {
        std::cerr << "publisher: no readers" << std::endl;
        return 1;
    }
    // Give the reader side's matching a moment to settle before timing starts.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    Event::Message message;
    message.source("Engine 1");
    message.text("Input level high on channel 2; attenuation raised to 20 dB");
    message.classification(Event::EVENT_WARNING);
    ATTR_EVENT sample;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < samples; ++i) {
        std::this_thread::sleep_until(start + std::chrono::microseconds(std::int64_t(i) * intervalUs));
        message.code(i);
        // Alternate the order, so neither topic always goes first.
        TopicPublisher<ATTR_EVENTPubSubType>& first = (i % 2) ? plain : typed;
        TopicPublisher<ATTR_EVENTPubSubType>& second = (i % 2) ? typed : plain;
        message.timestamp(monotonicNs());
        sample.value(message);
        first.publish(sample);
        message.timestamp(monotonicNs());
        sample.value(message);
        second.publish(sample);
    }
    // The readers are best effort and acknowledge nothing; a reader that learns of a
    // writer's end before its last sample drops that sample, so let them arrive first.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    return 0;
}

std::int64_t percentile(const std::vector<std::int64_t>& sorted, double fraction)
{
    if (sorted.empty())
        return 0;
    const std::size_t index = std::min(sorted.size() - 1, std::size_t(fraction * double(sorted.size())));
    return sorted[index];
}

} // namespace

int main(int argc, char* argv[])
{
    BenchReport report("ddslatency", argc, argv);
    int samples = 5000;
    int intervalUs = 1000;
    bool publisher = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--samples" && i + 1 < argc)
            samples = std::max(10, std::atoi(argv[++i]));
        else if (argument == "--interval-us" && i + 1 < argc)
            intervalUs = std::max(0, std::atoi(argv[++i]));
        else if (argument == "--publisher")
            publisher = true;
        else {
            std::cerr << "usage: tz-bench-ddslatency [--samples N] [--interval-us US] [--report FILE]" << std::endl;
            return 2;
        }
    }
    setenv("ORVANTH_DDS_DOMAIN", "199", 0);

    if (publisher) {
        const int status = runPublisher(samples, intervalUs);
        DDS_BaseObj::shutdownDds();
        return status;
    }

    DomainParticipant* participant = DDS_BaseObj::DdsBase().participant;
    if (!participant) {
        std::cerr << "DDS is not running" << std::endl;
        return 1;
    }
    LatencyLog plainLog;
    LatencyLog typedLog;
    int status = 0;
    {
        PlainReader plain(participant, &plainLog);
        DDS_Subscriber<Event::Message> typed(
            TypedTopic, [&](const char*, Event::Message message) { typedLog.add(message.timestamp()); }, 0, 0,
            VOLATILE_DURABILITY_QOS);
        typed.waitForInitDone();

        const std::string samplesText = std::to_string(samples);
        const std::string intervalText = std::to_string(intervalUs);
        char* childArguments[] = {argv[0], const_cast<char*>("--publisher"), const_cast<char*>("--samples"),
                                  const_cast<char*>(samplesText.c_str()), const_cast<char*>("--interval-us"),
                                  const_cast<char*>(intervalText.c_str()), nullptr};
        pid_t child = 0;
        if (posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, childArguments, environ) != 0) {
            std::perror("posix_spawn");
            return 1;
        }
        int childStatus = 0;
        waitpid(child, &childStatus, 0);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while ((plainLog.size() < std::size_t(samples) || typedLog.size() < std::size_t(samples))
               && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (!WIFEXITED(childStatus) || WEXITSTATUS(childStatus) != 0)
            status = 1;
    }

    const std::vector<std::int64_t> plain = plainLog.sorted();
    const std::vector<std::int64_t> typed = typedLog.sorted();
    const auto microseconds = [](std::int64_t ns) { return double(ns) / 1000.0; };
    std::printf("samples received     plain %zu, typed %zu of %d\n", plain.size(), typed.size(), samples);
    std::printf("plain listener       median %8.1f us   p99 %8.1f us\n", microseconds(percentile(plain, 0.5)),
                microseconds(percentile(plain, 0.99)));
    std::printf("typed subscriber     median %8.1f us   p99 %8.1f us\n", microseconds(percentile(typed, 0.5)),
                microseconds(percentile(typed, 0.99)));
    const double medianRatio = double(percentile(typed, 0.5)) / double(std::max<std::int64_t>(1, percentile(plain, 0.5)));
    const double p99Ratio = double(percentile(typed, 0.99)) / double(std::max<std::int64_t>(1, percentile(plain, 0.99)));
    std::printf("ratio typed/plain    median %.2f   p99 %.2f   (goal: at most 1.50) %s\n", medianRatio, p99Ratio,
                medianRatio <= 1.5 && p99Ratio <= 1.5 ? "met" : "MISSED");
    report.ratioAtMost("publish to typed callback, median", microseconds(percentile(typed, 0.5)), "us",
                       "plain listener", microseconds(percentile(plain, 0.5)), 1.5);
    report.ratioAtMost("publish to typed callback, p99", microseconds(percentile(typed, 0.99)), "us",
                       "plain listener", microseconds(percentile(plain, 0.99)), 1.5);
    report.info("samples received by the typed subscriber", double(typed.size()), "of " + std::to_string(samples));
    std::vector<double> plainUs, typedUs;
    for (const std::int64_t ns : plain)
        plainUs.push_back(microseconds(ns));
    for (const std::int64_t ns : typed)
        typedUs.push_back(microseconds(ns));
    report.samples("plain listener", "us", plainUs);
    report.samples("typed subscriber", "us", typedUs);
    DDS_BaseObj::shutdownDds();
    return status;
}
