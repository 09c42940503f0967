#ifndef REFOSCILLATORFEED_H
#define REFOSCILLATORFEED_H

#include "tzuicomponents_export.h"

#include <Orvanth.hh>

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <string>

namespace Orvanth {
template <class T>
class DDS_Subscriber;
}

/**
 * The engines' reference oscillator, the enumeration attribute "REFOSCILLATOR1" of the
 * first module (in index order) that has it: found through module discovery, its value
 * followed over DDS, and switched by a remote call.
 *
 * Searching and switching run on pool threads; the GUI thread never waits for an
 * engine. The receiver runs on a DDS thread for every published value. Deleting the
 * feed waits for a search or switch still running and ends the subscription.
 */
class TZUICOMPONENTS_EXPORT RefOscillatorFeed : public QObject
{
    Q_OBJECT

public:
    using Receiver = std::function<void(const char* topic, CORBA::Long value)>;
    static constexpr const char* AttributeName = "REFOSCILLATOR1";

    explicit RefOscillatorFeed(Receiver receiver, QObject* parent = nullptr);
    ~RefOscillatorFeed() override;

    /// Starts a search unless one runs or the attribute is found; searched() tells the
    /// outcome. Without module discovery it logs so and reports false at once.
    void search();
    bool isFound() const { return !CORBA::is_nil(m_attribute.in()); }
    /// Sets the attribute to \a value under the current locker; a refusal or a failed
    /// call is logged. Does nothing before the attribute is found.
    void set(CORBA::Long value);

signals:
    void searched(bool found);

private:
    struct Lookup
    {
        Orvanth::EngineAttribEnum_var attribute;
        std::string dataTopic;
    };

    void searchFinished();

    Receiver m_receiver;
    Orvanth::EngineAttribEnum_var m_attribute;
    QFutureWatcher<Lookup> m_search;
    QThreadPool m_calls;
    std::unique_ptr<Orvanth::DDS_Subscriber<int>> m_subscriber;
};

#endif
