#ifndef ORVANTH_GUIABLESERVANT_H
#define ORVANTH_GUIABLESERVANT_H

#include <Orvanth.hh>

#include <atomic>
#include <map>
#include <mutex>
#include <string>

namespace Orvanth {

/// One engine's GUI module: answers pings and hands out its attributes by name.
class GuiAbleServant : public virtual POA_Orvanth::GUI_Able
{
public:
    GuiAbleServant() = default;

    /// Makes \a attribute findable under \a name (the reference is duplicated).
    void addAttribute(const std::string& name, EngineReadingBase_ptr attribute);
    void removeAttribute(const std::string& name);

    /// Makes every Ping take \a milliseconds before it answers: a hung engine.
    void setPingDelay(int milliseconds) { m_pingDelayMs = milliseconds; }

    char* Ping(const char* text) override;
    EngineReadingBase_ptr FindAttribute(const char* name) override;

private:
    std::mutex m_mutex;
    std::map<std::string, EngineReadingBase_var> m_attributes;
    std::atomic<int> m_pingDelayMs{0};
};

} // namespace Orvanth

#endif
