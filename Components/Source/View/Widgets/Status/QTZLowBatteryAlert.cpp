#include "QTZLowBatteryAlert.h"

#include "GlobalImpl.h"
#include "SystemModule.h"

namespace {

QWidget* mainWindowOr(QWidget* screen)
{
    if (screen)
        return screen;
    // Never builds a registry: the host builds it, with the main window, before the status bar.
    GlobalImpl* registry = GlobalImpl::existingInstance();
    SystemModule* systemModule = registry ? registry->systemModule() : nullptr;
    return systemModule ? systemModule->getSystemScreen(QStringLiteral("MainWindow")) : nullptr;
}

} // namespace

QTZLowBatteryAlert::QTZLowBatteryAlert(QWidget* screen)
    : LowBatteryAlert(mainWindowOr(screen), QStringLiteral("QTZLowBatteryAlert"))
{
    fitScreen();
}

QString QTZLowBatteryAlert::readingText(double value) const
{
    if (value >= 0.0 && value <= 100.0)
        return LowBatteryAlert::readingText(value);
    return QStringLiteral("C");
}

void QTZLowBatteryAlert::present()
{
    // The main window may have been resized since the alert was made.
    fitScreen();
    showFullScreen();
    raise();
}

void QTZLowBatteryAlert::fitScreen()
{
    if (QWidget* screen = parentWidget()) {
        setMinimumSize(screen->size());
        setMaximumSize(screen->size());
        move(0, 0);
    }
}
