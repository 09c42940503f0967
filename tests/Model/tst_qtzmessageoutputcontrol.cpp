// The diagnostic output switch: what reaches standard error while it is on and off.

#include "QTZMessageOutputControl.h"

#include <QTemporaryFile>
#include <QtTest>

#include <cstdio>
#include <unistd.h>

namespace {

// Sends the process's standard error to a file while it exists.
class StandardErrorCapture
{
public:
    StandardErrorCapture()
    {
        m_file.open();
        std::fflush(stderr);
        m_saved = dup(STDERR_FILENO);
        dup2(m_file.handle(), STDERR_FILENO);
    }
    ~StandardErrorCapture() { restore(); }

    QByteArray text()
    {
        restore();
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    void restore()
    {
        if (m_saved < 0)
            return;
        std::fflush(stderr);
        dup2(m_saved, STDERR_FILENO);
        close(m_saved);
        m_saved = -1;
    }

    QTemporaryFile m_file;
    int m_saved = -1;
};

} // namespace

class TestQTZMessageOutputControl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void writesEveryMessageAsOneLineWhileOn();
    void discardsEverythingWhileOff();
    void followsTheSwitchFromMessageToMessage();

private:
    QtMessageHandler m_testHandler = nullptr;
};

void TestQTZMessageOutputControl::init()
{
    m_testHandler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(m_testHandler);
}

void TestQTZMessageOutputControl::cleanup()
{
    QTZMessageOutputControl::m_output = false;
    qInstallMessageHandler(m_testHandler);
}

void TestQTZMessageOutputControl::writesEveryMessageAsOneLineWhileOn()
{
    QTZMessageOutputControl control(nullptr);
    QTZMessageOutputControl::m_output = true;
    StandardErrorCapture capture;
    qDebug() << "UserInterface - Global::Global";
    qWarning("UserInterface - warning with %d", 42);
    qInfo() << "UserInterface - value" << QStringLiteral("quoted");
    QCOMPARE(capture.text(), QByteArray("UserInterface - Global::Global\n"
                                        "UserInterface - warning with 42\n"
                                        "UserInterface - value \"quoted\"\n"));
}

void TestQTZMessageOutputControl::discardsEverythingWhileOff()
{
    QTZMessageOutputControl control(nullptr);
    QVERIFY(!QTZMessageOutputControl::m_output);
    StandardErrorCapture capture;
    qDebug() << "UserInterface - Global::Global";
    qWarning() << "UserInterface - a warning";
    qCritical() << "UserInterface - a critical line";
    QCOMPARE(capture.text(), QByteArray());
}

void TestQTZMessageOutputControl::followsTheSwitchFromMessageToMessage()
{
    QTZMessageOutputControl control(nullptr);
    StandardErrorCapture capture;
    qDebug() << "hidden 1";
    QTZMessageOutputControl::m_output = true;
    qDebug() << "shown";
    QTZMessageOutputControl::m_output = false;
    qDebug() << "hidden 2";
    QCOMPARE(capture.text(), QByteArray("shown\n"));
}

QTEST_MAIN(TestQTZMessageOutputControl)
#include "tst_qtzmessageoutputcontrol.moc"
