#ifndef QTZLOWBATTERYALERT_H
#define QTZLOWBATTERYALERT_H

#include "LowBatteryAlert.h"

#include "tzuicomponents_export.h"

/**
 * The low-battery alert of QTZBatteryStatus: covers the whole main window with a
 * half-transparent layer; a reading outside 0 to 100 % shows as "C".
 */
class TZUICOMPONENTS_EXPORT QTZLowBatteryAlert : public LowBatteryAlert
{
    Q_OBJECT

public:
    /// Covers \a screen, by default the system screen "MainWindow"; without either it is
    /// a window of its own.
    explicit QTZLowBatteryAlert(QWidget* screen = nullptr);

protected:
    QString readingText(double value) const override;
    void present() override;

private:
    void fitScreen();
};

#endif
