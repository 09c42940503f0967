#include "MenuBarTimeoutSource.h"

#include "CorbaFailure.h"
#include "GlobalImpl.h"
#include "NamingServiceImpl.h"

namespace {

const char* const menuBarTimeoutSource = "Components/Source/View/Widgets/MenuBar";

} // namespace

MenuBarTimeoutSource::Read MenuBarTimeoutSource::fromEngines()
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    NamingServiceImpl* discovery = registry ? registry->namingService() : nullptr;
    if (!discovery)
        return {};
    // Module discovery guards its module list for callers on any thread; the host keeps
    // it for as long as the desktop lives.
    return [discovery]() -> std::optional<int> {
        try {
            const QList<Orvanth::EngineReadingBase_var> found =
                discovery->findAttribute(QStringLiteral("MenuBarTimeout1"));
            if (found.isEmpty())
                return std::nullopt;
            const Orvanth::EngineAttribLong_var timeout = Orvanth::EngineAttribLong::_narrow(found.first().in());
            if (CORBA::is_nil(timeout))
                return std::nullopt;
            return int(timeout->Get());
        } catch (const CORBA::Exception& exception) {
            CorbaFailure::logAtPosition(exception, menuBarTimeoutSource, __LINE__);
        }
        return std::nullopt;
    };
}
