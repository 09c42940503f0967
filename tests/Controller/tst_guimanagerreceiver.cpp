// The library's receiver of the remote GUI service: alerts, from the status bar or from an
// engine, share one box that counts them, and the box's one answer goes to every alert it
// holds, a remote DisplayAlert waiting meanwhile included. Screen requests from an engine
// never wait for the GUI thread.

#include "ContainerDialog.h"
#include "ContainerImpl.h"
#include "GUIManagerImpl.h"
#include "GUIManagerReceiver.h"
#include "GlobalImpl.h"
#include "PushButtonImpl.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <future>

class TestGUIManagerReceiver : public QObject
{
    Q_OBJECT

private slots:
    void alertsShareOneBoxUntilAnswered();
    void remoteAlertIsAnsweredByOpenBox();
    void closingAllDialogsCancelsAlertBox();
    void screenRequestsDoNotWaitForGuiThread();
};

namespace {

QPushButton* buttonWithCode(QWidget* dialog, const QString& code)
{
    for (auto* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>()) {
        if (button->button()->objectName() == code)
            return button->button();
    }
    return nullptr;
}

QString labelText(QWidget* dialog, const char* name)
{
    auto* label = dialog->findChild<QLabel*>(QLatin1String(name));
    return label && !label->isHidden() ? label->text() : QString();
}

struct Desktop
{
    Desktop()
    {
        GlobalImpl::getInstance();
        window.resize(1000, 600);
        window.show();
    }
    ~Desktop()
    {
        receiver.closeDialog(QString());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QWidget window;
    GUIManagerReceiver receiver{&window};
};

} // namespace

void TestGUIManagerReceiver::alertsShareOneBoxUntilAnswered()
{
    Desktop desktop;
    QSignalSpy answers(&desktop.receiver, QOverload<const long&>::of(&GUIManagerReceiver::retResponse));
    desktop.receiver.showAlert(QStringLiteral("Alert 1"), false);
    QCOMPARE(desktop.receiver.alertCount(), 1);
    QCOMPARE(labelText(desktop.receiver.alertBox(), "alertCount"), QString());
    const int objectsWithOneAlert = desktop.window.findChildren<QObject*>().size();

    for (int i = 2; i <= 3000; ++i)
        desktop.receiver.showAlert(QStringLiteral("Alert %1").arg(i), false);
    QCoreApplication::processEvents();
    QCOMPARE(desktop.receiver.dialogs().size(), 1);
    QCOMPARE(desktop.receiver.alertCount(), 3000);
    ContainerDialog* box = desktop.receiver.alertBox();
    QCOMPARE(labelText(box, "dialogMessage"), QStringLiteral("Alert 3000"));
    QVERIFY(labelText(box, "alertCount").contains(QLatin1String("3000")));
    QCOMPARE(desktop.window.findChildren<QObject*>().size(), objectsWithOneAlert);
    QVERIFY(answers.isEmpty());

    QTest::mouseClick(buttonWithCode(box, QStringLiteral("1")), Qt::LeftButton);
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().value<long>(), 1L);
    QVERIFY(!desktop.receiver.alertBox());

    // The next alert opens a box of its own.
    desktop.receiver.showAlert(QStringLiteral("Later"), false);
    QVERIFY(desktop.receiver.alertBox());
    QVERIFY(desktop.receiver.alertBox() != box);
    QCOMPARE(desktop.receiver.alertCount(), 1);
    QCOMPARE(labelText(desktop.receiver.alertBox(), "dialogMessage"), QStringLiteral("Later"));
}

void TestGUIManagerReceiver::remoteAlertIsAnsweredByOpenBox()
{
    Desktop desktop;
    auto* servant = new Lumaro::gui::GUIManagerImpl(nullptr);
    desktop.receiver.connectTo(servant);
    QVERIFY(connect(&desktop.receiver, SIGNAL(retResponse(const long&)), servant, SLOT(getResponse(const long&))));

    // A status-bar alert opens the box; an engine's alert then joins it and waits.
    desktop.receiver.showAlert(QStringLiteral("Battery low"), false);
    std::future<CORBA::Long> remote = std::async(std::launch::async, [servant] {
        return servant->DisplayAlert("Door open");
    });
    QTRY_COMPARE(desktop.receiver.alertCount(), 2);
    QCOMPARE(desktop.receiver.dialogs().size(), 1);
    QCOMPARE(labelText(desktop.receiver.alertBox(), "dialogMessage"), QStringLiteral("Door open"));
    QCOMPARE(remote.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);

    QTest::mouseClick(buttonWithCode(desktop.receiver.alertBox(), QStringLiteral("1")), Qt::LeftButton);
    QCOMPARE(remote.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    QCOMPARE(remote.get(), CORBA::Long(1));
    servant->_remove_ref();
}

void TestGUIManagerReceiver::closingAllDialogsCancelsAlertBox()
{
    Desktop desktop;
    QSignalSpy answers(&desktop.receiver, QOverload<const long&>::of(&GUIManagerReceiver::retResponse));
    desktop.receiver.showAlert(QStringLiteral("One"), false);
    desktop.receiver.showAlert(QStringLiteral("Two"), false);
    desktop.receiver.closeDialog(QString());
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().value<long>(), long(ContainerDialog::CancelCode));
    QVERIFY(desktop.receiver.dialogs().isEmpty());
    QCOMPARE(desktop.receiver.alertCount(), 0);
}

void TestGUIManagerReceiver::screenRequestsDoNotWaitForGuiThread()
{
    Desktop desktop;
    GlobalImpl* registry = GlobalImpl::getInstance();
    auto* container = new ContainerImpl(&desktop.window);
    container->init();
    registry->addScreen(QStringLiteral("Busy"), container);
    auto* plain = new QWidget(&desktop.window);
    registry->addScreen(QStringLiteral("Plain"), plain);
    auto* servant = new Lumaro::gui::GUIManagerImpl(nullptr);
    using Manager = Lumaro::gui::GUIManagerImpl;
    QSignalSpy shown(servant, &Manager::showScreen);
    QSignalSpy moved(servant, &Manager::moveScreen);
    QSignalSpy sized(servant, &Manager::setScreenState);
    QSignalSpy hidden(servant, &Manager::hideScreen);

    // The GUI thread is busy here, as it is inside a call to the engine that asks.
    std::future<void> calls = std::async(std::launch::async, [servant] {
        servant->ShowScreen("Busy");
        servant->MoveScreen("Busy", 10, 20);
        servant->ChangeSize("Busy", "Max");
        servant->ChangeSize("Plain", "Max");
        servant->HideScreen("Busy");
    });
    QCOMPARE(calls.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().first().value<QWidget*>(), container);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(sized.size(), 1);
    QCOMPARE(sized.first().first().value<ContainerImpl*>(), container);
    QCOMPARE(hidden.size(), 1);

    // A deleted screen is gone for remote callers at once.
    delete plain;
    QVERIFY(!servant->GetScreen(QStringLiteral("Plain")));
    QCOMPARE(servant->GetScreen(QStringLiteral("Busy")), container);
    registry->removeScreen(QStringLiteral("Busy"));
    registry->removeScreen(QStringLiteral("Plain"));
    servant->_remove_ref();
}

QTEST_MAIN(TestGUIManagerReceiver)
#include "tst_guimanagerreceiver.moc"
