#ifndef STOPSIGNALNOTIFIER_H
#define STOPSIGNALNOTIFIER_H

#include <QObject>

class QSocketNotifier;

/**
 * SIGTERM, SIGINT and SIGHUP as a request to close the desktop, delivered in the GUI thread.
 *
 * The handler only writes the signal's number into a socket pair; a notifier on the other
 * end emits stopRequested(), so that the host closes as after its exit button: the remote
 * service withdraws its name while the naming service still runs. One per process.
 */
class StopSignalNotifier : public QObject
{
    Q_OBJECT
public:
    explicit StopSignalNotifier(QObject* parent = nullptr);
    ~StopSignalNotifier() override;

signals:
    void stopRequested(int signal);

private:
    void readSignal();

    QSocketNotifier* m_notifier = nullptr;
};

#endif
