#include "BatteryModel.h"

#include <algorithm>

BatteryModel::BatteryModel(double startLevel, double percentPerMinute, double floorLevel, bool externalPower)
    : m_level(startLevel), m_percentPerMinute(percentPerMinute), m_floorLevel(floorLevel)
    , m_externalPower(externalPower)
{
}

bool BatteryModel::advance(int elapsedMs)
{
    if (m_percentPerMinute <= 0.0)
        return false;
    const double change = m_percentPerMinute * elapsedMs / 60000.0;
    if (m_externalPower) {
        m_level = std::min(100.0, m_level + change);
        if (m_level >= 100.0) {
            m_externalPower = false;
            return true;
        }
        return false;
    }
    m_level = std::max(0.0, m_level - change);
    if (m_level <= m_floorLevel) {
        m_externalPower = true;
        return true;
    }
    return false;
}
