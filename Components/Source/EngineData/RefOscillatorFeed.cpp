#include "RefOscillatorFeed.h"

#include "CorbaFailure.h"
#include "DDS_Subscriber.h"
#include "GlobalImpl.h"
#include "LockerGateway.h"
#include "NamingServiceImpl.h"

#include <QDebug>
#include <QtConcurrent>

#include <algorithm>
#include <utility>

namespace {

const char* const refOscillatorSource = "Components/Source/View/Widgets/StatusBarImpl";

} // namespace

RefOscillatorFeed::RefOscillatorFeed(Receiver receiver, QObject* parent)
    : QObject(parent)
    , m_receiver(std::move(receiver))
{
    m_calls.setMaxThreadCount(1);
    connect(&m_search, &QFutureWatcherBase::finished, this, &RefOscillatorFeed::searchFinished);
}

RefOscillatorFeed::~RefOscillatorFeed()
{
    m_subscriber.reset();
    m_search.waitForFinished();
    m_calls.waitForDone();
}

void RefOscillatorFeed::search()
{
    if (m_search.isRunning() || isFound())
        return;
    GlobalImpl* registry = GlobalImpl::existingInstance();
    NamingServiceImpl* discovery = registry ? registry->namingService() : nullptr;
    if (!discovery) {
        qDebug() << "UserInterface - StatusBar - no module discovery to find" << AttributeName << "with";
        emit searched(false);
        return;
    }
    // Module discovery guards its module list for callers on any thread; the host keeps
    // it for as long as the desktop lives. The remote calls may take their time-out.
    m_search.setFuture(QtConcurrent::run([discovery]() -> Lookup {
        QStringList modules = discovery->getModuleList();
        std::sort(modules.begin(), modules.end(),
                  [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
        for (const QString& index : modules) {
            const Orvanth::GUI_Able_var module = discovery->getModule(index);
            if (CORBA::is_nil(module.in()))
                continue;
            try {
                const Orvanth::EngineReadingBase_var reading = module->FindAttribute(AttributeName);
                if (CORBA::is_nil(reading.in()))
                    continue;
                Lookup found;
                found.attribute = Orvanth::EngineAttribEnum::_narrow(reading.in());
                if (CORBA::is_nil(found.attribute.in())) {
                    qDebug() << "UserInterface - StatusBar -" << AttributeName << "of module" << index
                             << "is no enumeration";
                    continue;
                }
                const CORBA::String_var topic = reading->DataTopic();
                found.dataTopic = topic.in();
                return found;
            } catch (const CORBA::Exception& exception) {
                CorbaFailure::logAtPosition(exception, refOscillatorSource, __LINE__);
            } catch (...) {
                CorbaFailure::logException(refOscillatorSource, "initialize", __LINE__);
            }
        }
        return Lookup();
    }));
}

void RefOscillatorFeed::searchFinished()
{
    const Lookup found = m_search.result();
    if (CORBA::is_nil(found.attribute.in())) {
        qDebug() << "UserInterface - StatusBar - no engine has" << AttributeName;
        emit searched(false);
        return;
    }
    m_attribute = found.attribute;
    const Receiver receiver = m_receiver;
    m_subscriber = std::make_unique<Orvanth::DDS_Subscriber<int>>(
        found.dataTopic, [receiver](const char* topic, CORBA::Long value) { receiver(topic, value); }, 0, 0,
        eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
    emit searched(true);
}

void RefOscillatorFeed::set(CORBA::Long value)
{
    if (!isFound())
        return;
    const Orvanth::EngineAttribEnum_var attribute = m_attribute;
    QtConcurrent::run(&m_calls, [attribute, value] {
        const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
        try {
            attribute->Set(gateway ? gateway->getLockerID() : Orvanth::LockerID{}, value);
        } catch (const Orvanth::Runtime_errors::Generic& refused) {
            qDebug().noquote() << "UserInterface - StatusBar - the engine refused" << AttributeName << value << ":"
                               << CorbaFailure::info(refused);
        } catch (const CORBA::Exception& exception) {
            CorbaFailure::logAtPosition(exception, refOscillatorSource, __LINE__);
        } catch (...) {
            CorbaFailure::logException(refOscillatorSource, "setReferenceOscillator", __LINE__);
        }
    });
}
