// The diagnostic output switch: what reaches standard error while it is on and off.

#include "QTZMessageOutputControl.h"

#include <QTemporaryFile>
#include <QtTest>

#include <cstdio>
#include <unistd.h>

class TestQTZMessageOutputControl : public QObject
{
    Q_OBJECT

private slots:
    void writesMessagesOnlyWhileOn();
};

void TestQTZMessageOutputControl::writesMessagesOnlyWhileOn()
{
    const QtMessageHandler testHandler = qInstallMessageHandler(nullptr);
    QTemporaryFile file;
    QVERIFY(file.open());
    std::fflush(stderr);
    const int savedError = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);

    {
        QTZMessageOutputControl control(nullptr);
        qDebug() << "hidden debug";
        qCritical() << "hidden critical";
        QTZMessageOutputControl::m_output = true;
        qDebug() << "UserInterface - Global::Global";
        qWarning("UserInterface - warning with %d", 42);
        qInfo() << "UserInterface - value" << QStringLiteral("quoted \u2126");
        QTZMessageOutputControl::m_output = false;
        qDebug() << "hidden again";
    }

    std::fflush(stderr);
    dup2(savedError, STDERR_FILENO);
    close(savedError);
    qInstallMessageHandler(testHandler);
    file.seek(0);
    QCOMPARE(QString::fromLocal8Bit(file.readAll()),
             QStringLiteral("UserInterface - Global::Global\n"
                            "UserInterface - warning with 42\n"
                            "UserInterface - value \"quoted \u2126\"\n"));
}

QTEST_MAIN(TestQTZMessageOutputControl)
#include "tst_qtzmessageoutputcontrol.moc"
