#include "GuiAbleServant.h"

#include <chrono>
#include <thread>

namespace Orvanth {

void GuiAbleServant::addAttribute(const std::string& name, EngineReadingBase_ptr attribute)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_attributes[name] = EngineReadingBase::_duplicate(attribute);
}

void GuiAbleServant::removeAttribute(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_attributes.erase(name);
}

char* GuiAbleServant::Ping(const char* text)
{
    if (const int delay = m_pingDelayMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
    return CORBA::string_dup((std::string("Pong ") + text).c_str());
}

EngineReadingBase_ptr GuiAbleServant::FindAttribute(const char* name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_attributes.find(name);
    if (found == m_attributes.end())
        return EngineReadingBase::_nil();
    return EngineReadingBase::_duplicate(found->second);
}

} // namespace Orvanth
