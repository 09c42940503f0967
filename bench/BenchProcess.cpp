#include "BenchProcess.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

quint16 BenchProcess::freeLoopbackPort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost, 0) ? probe.serverPort() : 0;
}

bool BenchProcess::waitForPort(quint16 port, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < timeoutMs) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        if (socket.waitForConnected(200))
            return true;
        QThread::msleep(50);
    }
    return false;
}

bool BenchProcess::waitForLine(QProcess& process, const QByteArray& text, int timeoutMs, QByteArray* output)
{
    if (process.state() == QProcess::Starting && !process.waitForStarted(timeoutMs))
        return false;
    QByteArray written;
    QByteArray& collected = output ? *output : written;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < timeoutMs && process.state() == QProcess::Running) {
        process.waitForReadyRead(100);
        collected += process.readAllStandardOutput() + process.readAllStandardError();
        if (collected.contains(text))
            return true;
    }
    return false;
}

void BenchProcess::stop(QProcess& process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished(5000);
    }
}
