#include "DemoStatus.h"

#include "ApplicationOptions.h"
#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h" // completes the alert type QTZBatteryStatus.h points to
#include "QTZStatusBar.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimer>

DemoStatus::DemoStatus(DesktopImpl* desktop)
    : QObject(desktop)
    , m_statusBar(new QTZStatusBar(desktop))
{
    GlobalImpl::getInstance()->setStatusBar(m_statusBar.data());
    // The bar carries a battery only on compact systems; the demo shows one everywhere.
    if (!m_statusBar->batteryStatus())
        m_statusBar->addIcon(new QTZBatteryStatus);
    m_statusBar->show();

    connect(m_statusBar.data(), &QTZStatusBar::sendAlert, this, [](const QString& alert) {
        qDebug().noquote() << "UserInterface - Demo host - alert:" << alert;
    });
    if (ApplicationOptions::isInitializing()) {
        QTimer::singleShot(InitializingMs, this, [this] {
            qApp->setProperty(ApplicationOptions::name(ApplicationOptions::StateOption), QStringLiteral("running"));
            qDebug() << "UserInterface - Demo host - initialised, sending held alerts";
            if (m_statusBar)
                m_statusBar->sendAllAlertMessages();
        });
    }
}
