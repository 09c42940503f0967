// The dialog window: its button row from a "label,code" description, the answers of exec()
// on a press, a cancel, a deletion and in nested waits, its size, and where it opens.

#include "../desktop/ContainerTestDesktop.h"
#include "ContainerDialog.h"
#include "PushButtonImpl.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

// A dialog of the host's own class.
class DerivedDialog : public ContainerDialog
{
    Q_OBJECT

public:
    using ContainerDialog::ContainerDialog;
};

class TestDialogs : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { GlobalImpl::getInstance()->setDialogLastPosition(QPoint()); }

    void answersPressedCodeOrCancel_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("answer");
        QTest::newRow("press 3") << "Yes,1|No,3" << QStringList{"Yes=1", "No=3"} << "3" << 3;
        QTest::newRow("entry without a comma skipped") << "Yes,1|No|Later,-2" << QStringList{"Yes=1", "Later=-2"}
                                                       << "-2" << -2;
        QTest::newRow("entry with two commas skipped") << "A,1,2|B,yes" << QStringList{"B=yes"} << "yes" << 0;
        QTest::newRow("only separators, cancelled") << "||" << QStringList() << "cancel" << -999;
        QTest::newRow("non-Latin, deleted") << "Да,1|好,2" << QStringList{"Да=1", "好=2"} << "delete" << -999;
    }

    void answersPressedCodeOrCancel()
    {
        QFETCH(QString, description);
        QFETCH(QStringList, buttons);
        QFETCH(QString, action);
        ContainerTestDesktop desk("benchtop", QVariant(), false);
        QPointer<ContainerDialog> dialog = new ContainerDialog(desk.desktop);
        long count = -1;
        QHBoxLayout* row = ContainerDialog::createButtonLayout(dialog, description, count);
        QCOMPARE(count, long(buttons.size()));
        QStringList texts;
        for (auto* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>())
            texts << button->buttonText() + QLatin1Char('=') + button->button()->objectName();
        QCOMPARE(texts, buttons);
        // In a row of their own, at the right behind a stretch.
        QVERIFY(buttons.isEmpty() ? row->count() == 0 : row->itemAt(0)->spacerItem() && row->count() == count + 1);
        auto* layout = new QVBoxLayout;
        layout->addLayout(row);
        dialog->setLayout(layout);
        // Answered from the event loop that exec() runs while it waits.
        QTimer::singleShot(0, dialog, [&] {
            QVERIFY(dialog->isVisible() && dialog->isWaiting());
            if (action == QLatin1String("cancel"))
                dialog->cancelDialog();
            else if (action == QLatin1String("delete"))
                dialog->deleteLater();
            else
                QTest::mouseClick(dialog->findChild<QPushButton*>(action), Qt::LeftButton);
        });
        QTEST(dialog->exec(true), "answer");
        QVERIFY(!dialog || (dialog->isHidden() && !dialog->isWaiting()));
    }

    void buttonsOfDerivedDialogsAnswerNothing()
    {
        ContainerTestDesktop desk("benchtop", QVariant(), false);
        DerivedDialog derived(desk.desktop);
        long count = 0;
        delete ContainerDialog::createButtonLayout(&derived, QStringLiteral("Go,7"), count);
        derived.findChild<QPushButton*>(QStringLiteral("7"))->click();
        QCOMPARE(derived.result(), 0);
    }

    void nestedWaitsEndOnTheirOwnAnswers()
    {
        ContainerTestDesktop desk("benchtop", QVariant(), false);
        ContainerDialog outer(desk.desktop);
        ContainerDialog inner(desk.desktop);
        int innerAnswer = 0;
        // The outer dialog is answered first, while the inner one still waits inside it.
        QTimer::singleShot(0, &outer, [&] {
            QTimer::singleShot(0, &inner, [&] {
                outer.done(1);
                QTimer::singleShot(20, &inner, [&] { inner.done(2); });
            });
            innerAnswer = inner.exec(true);
        });
        QCOMPARE(outer.exec(true), 1);
        QCOMPARE(innerAnswer, 2);
    }

    void opensCentredThenWhereLastLeft_data()
    {
        QTest::addColumn<QVariant>("resolution");
        QTest::addColumn<QSize>("size");
        QTest::newRow("no resolution") << QVariant() << QSize(660, 400);
        QTest::newRow("480x800") << QVariant("480x800") << QSize(400, 400);
    }

    void opensCentredThenWhereLastLeft()
    {
        QFETCH(QVariant, resolution);
        QFETCH(QSize, size);
        ContainerTestDesktop desk("benchtop", resolution, false);
        auto* first = new ContainerDialog(desk.desktop);
        first->show();
        const QPoint centre((desk.desktop->width() - size.width()) / 2, (desk.desktop->height() - size.height()) / 2);
        QCOMPARE(first->geometry(), QRect(centre, size));
        QVERIFY(!first->findChild<QWidget*>(QStringLiteral("ContainerClose"))->isVisible());
        // Styling again, as a size change does, adds nothing to the sheet.
        const QString sheet = first->styleSheet();
        first->updateStyle();
        QCOMPARE(first->styleSheet(), sheet);
        // Dragged by its free area and let go: the next dialog opens there.
        const QPoint grip = first->mapToGlobal(QPoint(first->width() / 2, 10));
        sendMouse(first, QEvent::MouseButtonPress, grip);
        sendMouse(first, QEvent::MouseButtonRelease, grip + QPoint(-100, -60));
        const QPoint left = first->pos();
        QCOMPARE(GlobalImpl::getInstance()->dialogLastPosition(), left);
        delete first;
        ContainerDialog second(desk.desktop);
        second.show();
        QCOMPARE(second.pos(), left);
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
