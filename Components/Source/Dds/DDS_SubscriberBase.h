#ifndef ORVANTH_DDS_SUBSCRIBERBASE_H
#define ORVANTH_DDS_SUBSCRIBERBASE_H

#include "DDS_DataReaderListener.h"
#include "DDS_ReaderQos.h"
#include "DDS_SubscriberTraits.h"
#include "SerializeSubscriberDestructionMutex.h"

#include "DDS_BaseObj.h"

// Tests build with a hook that can hold a setup between reader creation and its end.
#ifdef ORVANTH_DDS_SETUP_HOOK_HEADER
#include ORVANTH_DDS_SETUP_HOOK_HEADER
#endif

#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>

#include <boost/bind/bind.hpp>
#include <boost/core/noncopyable.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/function.hpp>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/thread.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>

namespace Orvanth {

/**
 * Subscribes to one DDS topic whose samples carry a payload \c T and calls a callback of
 * signature \c F with the topic name and each payload, on a DDS delivery thread.
 *
 * The DDS entities are created on a short-lived setup thread, so construction never
 * blocks; no sample reaches the callback before that setup is done: those that come
 * earlier are kept and handed on, in order, by the setup thread as it ends. A failed
 * setup is reported on standard error and the subscription then delivers nothing.
 *
 * With a minimum separation, at most one sample per separation reaches the callback:
 * the first at once, the latest of those that came within the separation when it ends,
 * on a thread of the subscriber's own. No callback starts once the destructor has
 * begun, and the destructor waits for those still running, so a callback must not
 * destroy its own subscriber.
 */
template <class T, class F>
class DDS_SubscriberBase : public DDS_BaseObj, private boost::noncopyable
{
public:
    using Traits = DDS_SubscriberTraits<T>;
    using Sample = typename Traits::TopicType;
    using Callback = boost::function<F>;

    static_assert(std::is_same<F, typename Traits::Callback>::value,
                  "the callback signature is the one the payload's traits give");

    /// The bits of every event class (1 << class, classes 0 to 5).
    static constexpr std::uint32_t AllEventClasses = 0x3F;

    /// Only does something when the subscriber's constructor failed after this one.
    ~DDS_SubscriberBase() override { stopDelivery(); }

protected:
    DDS_SubscriberBase(const std::string& topicName, const Callback& callback, std::int32_t seconds,
                       std::uint32_t nanoseconds)
        : m_record(new ReaderRecord)
        , m_topicName(topicName)
        , m_callback(callback)
        , m_separation(std::chrono::seconds(seconds) + std::chrono::nanoseconds(nanoseconds))
    {
    }

    /// Starts the detached setup thread; called by the fully constructed subscriber, as
    /// the setup thread and the delivery threads use it as a DDS_Subscriber.
    static void startSetup(DDS_Subscriber<T>* self, long seconds, unsigned long nanoseconds,
                           eprosima::fastdds::dds::DurabilityQosPolicyKind durability)
    {
        boost::thread setup(boost::bind(&DDS_SubscriberBase::runSetup, self, seconds, nanoseconds, durability));
        setup.detach();
    }

    /// Deletes the DDS entities once setup has ended; called by the subscriber's
    /// destructor, while it is still whole for threads that may be using it.
    void tearDown()
    {
        boost::lock_guard<boost::mutex> lock(SerializeSubscriberDestructionMutex);
        stopDelivery();
        waitForInitDone();
        // The setup thread sets the flag inside its finishing step, which holds the
        // delivery mutex to its end: once we have had the mutex, that thread is done with us.
        {
            const std::lock_guard<std::mutex> setupFinished(m_deliveryMutex);
        }
        eprosima::fastdds::dds::DomainParticipant* participant = DdsBase().participant;
        // A null participant here means DDS was shut down, which deleted our entities too.
        if (participant && m_subscriber)
            m_subscriber->delete_contained_entities();
        m_record->reader = nullptr;
        m_dataReader = nullptr;
        if (participant) {
            if (m_subscriber)
                participant->delete_subscriber(m_subscriber);
            // Our own proxy of the topic: others of this process keep theirs.
            if (m_topic)
                participant->delete_topic(m_topic);
        }
        m_subscriber = nullptr;
        m_topic = nullptr;
        m_record.reset();
    }

public:
    /**
     * The setup, run on the setup thread: creates the DDS subscriber, topic and data
     * reader. Throws Connection_errors::Not_Connected, after writing the same text to
     * standard error, when an entity cannot be created.
     */
    static void InitSubBase(DDS_Subscriber<T>* self, long seconds, unsigned long nanoseconds,
                            eprosima::fastdds::dds::DurabilityQosPolicyKind durability)
    {
        using namespace eprosima::fastdds::dds;
        using eprosima::fastrtps::types::ReturnCode_t;

        DomainParticipant* participant = DdsBase().participant;
        if (!participant)
            fail(" err: Participant NULL");

        self->m_subscriber = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, nullptr, StatusMask::all());
        if (!self->m_subscriber)
            fail(" err: create_subscriber");

        if (self->m_record->typeSupport.register_type(participant, "") != ReturnCode_t::RETCODE_OK)
            fail(" err: Osts->register_type");

        const std::string typeName = self->m_record->typeSupport.get_type_name();
        // Another subscriber or publisher of this process may have made the topic already.
        self->m_topic = findOrCreateTopic(participant, self->m_topicName, typeName);
        if (!self->m_topic)
            fail(" err: Participant->create_topic [" + typeName + "] [" + self->m_topicName + "]");

        DataReaderQos defaults;
        if (self->m_subscriber->get_default_datareader_qos(defaults) != ReturnCode_t::RETCODE_OK)
            std::cout << "DDS_Subscriber:: ERROR: create_datareader failed" << std::endl;
        const DataReaderQos qos = readerQos(defaults, std::int32_t(seconds), std::uint32_t(nanoseconds), durability);

        self->m_listener.setSubscriber(self);
        self->m_dataReader = self->m_subscriber->create_datareader(self->m_topic, qos, &self->m_listener,
                                                                   StatusMask::all());
        if (!self->m_dataReader)
            fail(" err: Subscriber->create_datareader");

#ifdef ORVANTH_DDS_SETUP_HOOK_HEADER
        DDS_SetupHook::run(self->m_topicName);
#endif
        boost::this_thread::at_thread_exit(boost::bind(&DDS_SubscriberBase::FinishedInitSubBase, self));
    }

    /**
     * Marks the setup as done and hands on, in arrival order, the samples that came
     * before; the setup thread's last action after a successful setup.
     *
     * A notification must not wait for the setup: Fast DDS calls the listener with the
     * reader's lock held, and the setup thread, still inside create_datareader, may need
     * that lock, which stalled both threads for good. So a sample that comes early is only
     * kept, and handed on here. Samples that come while this step runs a callback are
     * kept behind the others; only once none is left do notifications hand on directly.
     */
    void FinishedInitSubBase()
    {
        std::unique_lock<std::mutex> lock(m_deliveryMutex);
        m_initDone.store(true);
        while (!m_earlySamples.empty() && !m_stopping) {
            const Sample sample = std::move(m_earlySamples.front());
            m_earlySamples.pop_front();
            // No DDS layer to catch for us on this thread either.
            logCallbackFailure([&] { passOn(lock, sample); });
        }
        m_earlySamples.clear();
        m_passingOn = true;
    }

    /// Returns once the setup has ended: done, or failed (then nothing will be delivered).
    void waitForInitDone() const
    {
        while (!m_initDone.load() && !m_initFailed.load())
            sleepOneMillisecond();
    }

    bool isInitDone() const { return m_initDone.load(); }
    bool initFailed() const { return m_initFailed.load(); }

    const std::string& topicName() const { return m_topicName; }

    /// Event messages only: the classes (bit 1 << class) whose messages reach the callback.
    void setClassMask(std::uint32_t mask) { m_classMask.store(mask); }
    std::uint32_t classMask() const { return m_classMask.load(); }

    /// The embedded listener, which takes and hands on every sample.
    DDS_DataReaderListener<T>& listener() { return m_listener; }

    /// The text that prefixes the setup's failure messages.
    static std::string signature()
    {
        return std::string("void Orvanth::DDS_SubscriberBase<T, U>::InitSubBase(Orvanth::DDS_Subscriber<T>*, long "
                           "int, long unsigned int, DDS::DurabilityQosPolicyKind) [with T = ")
               + Traits::payloadName + ", F = " + Traits::callbackName + "]";
    }

protected:
    friend class DDS_DataReaderListener<T>;

    /// What the data reader needs besides the DDS entities: its type support and the
    /// reader the notifications come from.
    struct ReaderRecord
    {
        eprosima::fastdds::dds::TypeSupport typeSupport{new typename Traits::PubSubType()};
        std::atomic<eprosima::fastdds::dds::DataReader*> reader{nullptr};
    };

    /// Keeps \a reader when it reads this subscriber's topic type; false otherwise.
    bool adoptReader(eprosima::fastdds::dds::DataReader* reader)
    {
        if (!reader || reader->type().get_type_name() != m_record->typeSupport.get_type_name())
            return false;
        m_record->reader.store(reader);
        return true;
    }

    /// Hands one valid sample's value to the callback, keeps it for the end of the setup
    /// when that is still running, or holds it back when it comes within the minimum
    /// separation after the last delivery. Never waits for the setup.
    void deliverValue(const Sample& sample)
    {
        std::unique_lock<std::mutex> lock(m_deliveryMutex);
        if (m_stopping)
            return;
        if (!m_passingOn) {
            keepEarly(sample);
            return;
        }
        passOn(lock, sample);
    }

private:
    /// At most this many samples are kept for the end of the setup; the reader exists
    /// only a moment before it ends, so more means a setup that stalls.
    static constexpr std::size_t MaxEarlySamples = 10000;

    /// Keeps \a sample for the end of the setup; called with the delivery mutex held.
    void keepEarly(const Sample& sample)
    {
        if (m_earlySamples.size() == MaxEarlySamples) {
            if (!m_earlySamplesDropped)
                std::cerr << DDS_DataReaderListener<T>::signature() << " more than " << MaxEarlySamples
                          << " samples on topic \"" << m_topicName
                          << "\" before the setup ended: the oldest are dropped" << std::endl;
            m_earlySamplesDropped = true;
            m_earlySamples.pop_front();
        }
        m_earlySamples.push_back(sample);
    }

    /// Calls back with \a sample, or holds it back within the minimum separation;
    /// called with the delivery mutex held by \a lock, once setup is done.
    void passOn(std::unique_lock<std::mutex>& lock, const Sample& sample)
    {
        if (m_separation.count() > 0) {
            const auto now = std::chrono::steady_clock::now();
            if (m_delivered && now - m_lastDelivery < m_separation) {
                holdBack(sample);
                return;
            }
            // A sample still held back is older than this one.
            m_heldBack.reset();
            m_delivered = true;
            m_lastDelivery = now;
        }
        callBack(lock, sample);
    }

    static void runSetup(DDS_Subscriber<T>* self, long seconds, unsigned long nanoseconds,
                         eprosima::fastdds::dds::DurabilityQosPolicyKind durability)
    {
        // An exception leaving a detached thread's function ends the process. The failure
        // has been written to standard error already; the flag lets teardown go on.
        try {
            InitSubBase(self, seconds, nanoseconds, durability);
        } catch (const Connection_errors::Not_Connected&) {
            self->m_initFailed.store(true);
        } catch (const std::exception& e) {
            std::cerr << signature() << " " << e.what() << std::endl;
            self->m_initFailed.store(true);
        }
    }

    [[noreturn]] static void fail(const std::string& message)
    {
        const std::string text = signature() + message;
        std::cerr << text << std::endl;
        throw Connection_errors::Not_Connected(text.c_str());
    }

    static void sleepOneMillisecond()
    {
        boost::this_thread::sleep(boost::posix_time::microsec_clock::universal_time()
                                  + boost::posix_time::milliseconds(1));
    }

    /// Keeps \a sample for the end of the separation; called with the delivery mutex held.
    void holdBack(const Sample& sample)
    {
        m_heldBack = sample;
        // Started on the first sample held back: most lock topics never need it.
        if (!m_separationThread.joinable())
            m_separationThread = std::thread(&DDS_SubscriberBase::deliverHeldBack, this);
        else
            m_wake.notify_all();
    }

    /// The separation thread: hands on the sample held back once the separation after
    /// the last delivery has passed, until teardown.
    void deliverHeldBack()
    {
        std::unique_lock<std::mutex> lock(m_deliveryMutex);
        while (!m_stopping) {
            if (!m_heldBack) {
                m_wake.wait(lock);
                continue;
            }
            const auto windowEnd = m_lastDelivery + m_separation;
            if (std::chrono::steady_clock::now() < windowEnd) {
                m_wake.wait_until(lock, windowEnd);
                continue;
            }
            const Sample sample = std::move(*m_heldBack);
            m_heldBack.reset();
            m_lastDelivery = std::chrono::steady_clock::now();
            // No DDS layer to catch for us here.
            logCallbackFailure([&] { callBack(lock, sample); });
        }
    }

    /// Runs \a step, which calls back; what the callback throws ends here, logged.
    template <class Step>
    static void logCallbackFailure(const Step& step)
    {
        try {
            step();
        } catch (const std::exception& e) {
            std::cerr << DDS_DataReaderListener<T>::signature() << " " << e.what() << std::endl;
        } catch (...) {
            std::cerr << DDS_DataReaderListener<T>::signature() << " unknown exception from the callback"
                      << std::endl;
        }
    }

    /// Runs the callback without the delivery mutex, which \a lock holds again after,
    /// counted so that teardown can wait for it.
    void callBack(std::unique_lock<std::mutex>& lock, const Sample& sample)
    {
        struct RunningCallback
        {
            DDS_SubscriberBase* self;
            std::unique_lock<std::mutex>& lock;
            ~RunningCallback()
            {
                lock.lock();
                if (--self->m_callbacksRunning == 0)
                    self->m_wake.notify_all();
            }
        };
        ++m_callbacksRunning;
        lock.unlock();
        const RunningCallback running{this, lock};
        Traits::deliver(m_callback, m_topicName.c_str(), sample, m_classMask.load());
    }

    /// Lets no callback start any more, drops a held-back sample, waits for the callbacks
    /// still running and ends the separation thread.
    void stopDelivery()
    {
        std::unique_lock<std::mutex> lock(m_deliveryMutex);
        m_stopping = true;
        m_heldBack.reset();
        m_wake.notify_all();
        m_wake.wait(lock, [this] { return m_callbacksRunning == 0; });
        lock.unlock();
        // Started only under the mutex and before m_stopping: nobody starts it now.
        if (m_separationThread.joinable())
            m_separationThread.join();
    }

    std::unique_ptr<ReaderRecord> m_record;
    eprosima::fastdds::dds::Topic* m_topic = nullptr;
    eprosima::fastdds::dds::DataReader* m_dataReader = nullptr;
    eprosima::fastdds::dds::Subscriber* m_subscriber = nullptr;
    const std::string m_topicName;
    DDS_DataReaderListener<T> m_listener;
    const Callback m_callback;
    std::atomic<bool> m_initDone{false};
    std::atomic<bool> m_initFailed{false};
    std::atomic<std::uint32_t> m_classMask{AllEventClasses};

    // Fast DDS accepts a time-based filter in the reader QoS but does not apply it, so
    // the minimum separation is kept here. The mutex guards the members below it.
    const std::chrono::nanoseconds m_separation;
    std::mutex m_deliveryMutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    int m_callbacksRunning = 0;
    // Until the setup's finishing step has handed on the samples that came before it.
    bool m_passingOn = false;
    std::deque<Sample> m_earlySamples;
    bool m_earlySamplesDropped = false;
    bool m_delivered = false;
    std::chrono::steady_clock::time_point m_lastDelivery;
    std::optional<Sample> m_heldBack;
    std::thread m_separationThread;
};

} // namespace Orvanth

#endif
