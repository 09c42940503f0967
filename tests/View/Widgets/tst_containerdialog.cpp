// The dialog window: its button row from a "label,code" description, the answers of exec()
// on a press and on a cancel, where it opens (centred, or where the last one was left),
// its size on each screen, and its look.

#include "ContainerDialog.h"
#include "ContainerTestDesktop.h"
#include "GlobalImpl.h"
#include "PushButtonImpl.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

namespace {

QStringList buttonTexts(const QLayout* layout)
{
    QStringList texts;
    for (int i = 0; i < layout->count(); ++i) {
        if (auto* button = qobject_cast<Lumaro::gui::PushButtonImpl*>(layout->itemAt(i)->widget()))
            texts << button->buttonText() + QLatin1Char('=') + button->button()->objectName();
    }
    return texts;
}

Lumaro::gui::PushButtonImpl* buttonWithCode(const QWidget& dialog, const QString& code)
{
    for (auto* button : dialog.findChildren<Lumaro::gui::PushButtonImpl*>()) {
        if (button->button()->objectName() == code)
            return button;
    }
    return nullptr;
}

// Runs \a answer once exec() has started to wait.
void whenWaiting(ContainerDialog& dialog, std::function<void()> answer)
{
    auto* poll = new QTimer(&dialog);
    QObject::connect(poll, &QTimer::timeout, &dialog, [&dialog, poll, answer] {
        if (!dialog.isWaiting())
            return;
        poll->stop();
        answer();
    });
    poll->start(5);
}

// A dialog of the host's own class.
class DerivedDialog : public ContainerDialog
{
    Q_OBJECT

public:
    using ContainerDialog::ContainerDialog;
};

} // namespace

class TestContainerDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void buildsButtonRowFromDescription_data();
    void buildsButtonRowFromDescription();
    void buttonsOfOtherParentsAnswerNothing();
    void execAnswersPressedCodeOrCancel_data();
    void execAnswersPressedCodeOrCancel();
    void nestedWaitsEndOnTheirOwnAnswers();
    void deletedWhileWaitingEndsWait();
    void opensCentredThenWhereLastLeft();
    void sizeFollowsScreen_data();
    void sizeFollowsScreen();
    void hasNoCloseControlAndStylesItsParts();
};

void TestContainerDialog::initTestCase()
{
    QVERIFY(GlobalImpl::getInstance());
}

void TestContainerDialog::cleanup()
{
    GlobalImpl::getInstance()->setDialogLastPosition(QPoint());
}

void TestContainerDialog::buildsButtonRowFromDescription_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QStringList>("buttons");

    QTest::newRow("two") << "Yes,1|No,0" << QStringList{"Yes=1", "No=0"};
    QTest::newRow("entry without a comma skipped") << "Yes,1|No|Later,3" << QStringList{"Yes=1", "Later=3"};
    QTest::newRow("entry with two commas skipped") << "A,1,2|B,2" << QStringList{"B=2"};
    QTest::newRow("empty") << "" << QStringList();
    QTest::newRow("only separators") << "||" << QStringList();
    QTest::newRow("non-Latin labels") << "Да,1|Нет,0|好,2" << QStringList{"Да=1", "Нет=0", "好=2"};
}

void TestContainerDialog::buildsButtonRowFromDescription()
{
    QFETCH(QString, description);
    QFETCH(QStringList, buttons);

    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    ContainerDialog dialog(desktop.desktop);
    long count = -1;
    std::unique_ptr<QHBoxLayout> row(ContainerDialog::createButtonLayout(&dialog, description, count));
    QCOMPARE(count, long(buttons.size()));
    QCOMPARE(buttonTexts(row.get()), buttons);
    // The buttons sit at the right behind a stretch; an empty row has none.
    QCOMPARE(row->count(), buttons.isEmpty() ? 0 : buttons.size() + 1);
    if (!buttons.isEmpty()) {
        QVERIFY(row->itemAt(0)->spacerItem());
        auto* first = row->itemAt(1)->widget();
        QCOMPARE(first->minimumWidth(), buttons.first().section('=', 0, 0).size() * QFontInfo(first->font()).pixelSize());
    }
}

void TestContainerDialog::buttonsOfOtherParentsAnswerNothing()
{
    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    // Only a dialog of exactly this class is answered by its buttons.
    ContainerDialog dialog(desktop.desktop);
    DerivedDialog derived(desktop.desktop);
    for (ContainerDialog* parent : {&dialog, static_cast<ContainerDialog*>(&derived)}) {
        long count = 0;
        auto* layout = new QVBoxLayout;
        layout->addLayout(ContainerDialog::createButtonLayout(parent, QStringLiteral("Go,7"), count));
        parent->setLayout(layout);
        parent->show();
        buttonWithCode(*parent, QStringLiteral("7"))->emulateClick();
    }
    QCOMPARE(dialog.result(), 7);
    QCOMPARE(derived.result(), 0);
}

void TestContainerDialog::execAnswersPressedCodeOrCancel_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expected");

    QTest::newRow("press 3") << "3" << 3;
    QTest::newRow("press a negative code") << "-2" << -2;
    QTest::newRow("press a code that is no number") << "yes" << 0;
    QTest::newRow("cancel") << "cancel" << -999;
}

void TestContainerDialog::execAnswersPressedCodeOrCancel()
{
    QFETCH(QString, action);
    QFETCH(int, expected);

    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    ContainerDialog dialog(desktop.desktop);
    long count = 0;
    auto* layout = new QVBoxLayout;
    layout->addLayout(ContainerDialog::createButtonLayout(&dialog, QStringLiteral("A,3|B,-2|C,yes"), count));
    dialog.setLayout(layout);
    QVERIFY(dialog.isHidden());

    whenWaiting(dialog, [&] {
        QVERIFY(dialog.isVisible());
        if (action == QLatin1String("cancel"))
            dialog.cancelDialog();
        else
            QTest::mouseClick(buttonWithCode(dialog, action)->button(), Qt::LeftButton);
    });
    QCOMPARE(dialog.exec(true), expected);
    QVERIFY(dialog.isHidden());
    QVERIFY(!dialog.isWaiting());
}

void TestContainerDialog::nestedWaitsEndOnTheirOwnAnswers()
{
    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    ContainerDialog outer(desktop.desktop);
    ContainerDialog inner(desktop.desktop);
    int innerAnswer = 0;
    // The outer dialog is answered first, while the inner one still waits inside it.
    whenWaiting(outer, [&] {
        whenWaiting(inner, [&] {
            outer.done(1);
            QTimer::singleShot(20, &inner, [&] { inner.done(2); });
        });
        innerAnswer = inner.exec(true);
    });
    QCOMPARE(outer.exec(true), 1);
    QCOMPARE(innerAnswer, 2);
}

void TestContainerDialog::deletedWhileWaitingEndsWait()
{
    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    auto* dialog = new ContainerDialog(desktop.desktop);
    whenWaiting(*dialog, [dialog] { dialog->deleteLater(); });
    QCOMPARE(dialog->exec(true), int(ContainerDialog::CancelCode));
}

void TestContainerDialog::opensCentredThenWhereLastLeft()
{
    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    auto* first = new ContainerDialog(desktop.desktop);
    QCOMPARE(first->position(), QPoint(1280 / 2 - 660 / 2, 800 / 2 - 400 / 2));
    first->show();
    QCOMPARE(first->pos(), first->position());

    // Dragged by its free area and let go: the next dialog opens there.
    const QPoint grip = first->mapToGlobal(QPoint(first->width() / 2, 10));
    sendMouse(first, QEvent::MouseButtonPress, grip);
    QTest::qWait(30);
    sendMouse(first, QEvent::MouseMove, grip + QPoint(-100, -60));
    sendMouse(first, QEvent::MouseButtonRelease, grip + QPoint(-100, -60));
    const QPoint left = first->pos();
    QVERIFY(left != QPoint(310, 200));
    QCOMPARE(GlobalImpl::getInstance()->dialogLastPosition(), left);
    delete first;

    ContainerDialog second(desktop.desktop);
    second.show();
    QCOMPARE(second.pos(), left);
}

void TestContainerDialog::sizeFollowsScreen_data()
{
    QTest::addColumn<QVariant>("resolution");
    QTest::addColumn<QSize>("size");
    QTest::newRow("handheld portrait") << QVariant("480x800") << QSize(400, 400);
    QTest::newRow("landscape") << QVariant("800x480") << QSize(660, 400);
    QTest::newRow("no resolution") << QVariant() << QSize(660, 400);
}

void TestContainerDialog::sizeFollowsScreen()
{
    QFETCH(QVariant, resolution);
    QFETCH(QSize, size);

    ContainerTestDesktop desktop("benchtop", resolution, false);
    ContainerDialog dialog(desktop.desktop);
    dialog.show();
    QCOMPARE(dialog.size(), size);
    QCOMPARE(dialog.minimumSize(), size);
    QCOMPARE(dialog.mSize(), QStringLiteral("Min"));
}

void TestContainerDialog::hasNoCloseControlAndStylesItsParts()
{
    ContainerTestDesktop desktop("benchtop", QVariant(), false);
    ContainerDialog dialog(desktop.desktop);
    dialog.show();
    QCOMPARE(dialog.objectName(), QStringLiteral("ContainerDialog"));
    auto* close = dialog.findChild<QWidget*>(QStringLiteral("ContainerClose"));
    QVERIFY(close && !close->isVisible());

    auto* text = new QLabel(QStringLiteral("Start the sweep?"));
    text->setObjectName(QStringLiteral("dialog_text"));
    auto* layout = new QVBoxLayout;
    layout->addWidget(text);
    dialog.setLayout(layout);
    text->ensurePolished();
    QCOMPARE(text->palette().color(QPalette::WindowText), QColor(Qt::black));
    QCOMPARE(text->font().pixelSize(), 20);
    // Styling again (a size change does) adds nothing to the sheet.
    const QString sheet = dialog.styleSheet();
    dialog.updateStyle();
    QCOMPARE(dialog.styleSheet(), sheet);
}

QTEST_MAIN(TestContainerDialog)

#include "tst_containerdialog.moc"
