#ifndef BATTERYMODEL_H
#define BATTERYMODEL_H

/**
 * The simulated battery: drains on battery power; at the floor level mains power comes
 * back and charges it; full again, mains power goes. So a demo cycles slowly through
 * every battery state.
 */
class BatteryModel
{
public:
    BatteryModel(double startLevel, double percentPerMinute, double floorLevel, bool externalPower);

    /// Moves the model on by \a elapsedMs; true when mains power came or went.
    bool advance(int elapsedMs);

    /// Percent, 0 to 100.
    double level() const { return m_level; }
    bool externalPower() const { return m_externalPower; }

private:
    double m_level;
    const double m_percentPerMinute;
    const double m_floorLevel;
    bool m_externalPower;
};

#endif
