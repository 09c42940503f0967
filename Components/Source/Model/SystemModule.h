#ifndef SYSTEMMODULE_H
#define SYSTEMMODULE_H

#include "tzuicomponents_export.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

/**
 * The host's system screens ("MainWindow", "DCS") and service objects ("ProcessManager",
 * "ScreenStateManager") by name, so that library parts reach them without linking to
 * the host. Entries are not owned; an entry whose object is destroyed reads as null.
 */
class TZUICOMPONENTS_EXPORT SystemModule : public QObject
{
    Q_OBJECT

public:
    explicit SystemModule(QObject* parent);

    void setSystemScreen(const QString& name, QWidget* screen);
    void setModule(const QString& name, QObject* module);

    /// The screen registered under \a screenName, or null. An unknown name is entered
    /// with a null screen.
    Q_INVOKABLE QWidget* getSystemScreen(QString screenName);
    /// The module registered under \a moduleName, or null. An unknown name is entered
    /// with a null module.
    Q_INVOKABLE QObject* getModule(QString moduleName);

private:
    QHash<QString, QPointer<QWidget>> m_systemScreens;
    QHash<QString, QPointer<QObject>> m_modules;
};

#endif
