// Finding the window that holds a widget, and its title: a standard container's own
// title, nothing outside every window (a drawer's caption: tst_windowdrawer).

#include "ContainerImpl.h"
#include "GlobalImpl.h"

#include <QFrame>
#include <QLabel>
#include <QTranslator>
#include <QVBoxLayout>
#include <QtTest>

namespace {

class Translator : public QTranslator
{
public:
    QString translate(const char*, const char* sourceText, const char*, int) const override
    {
        return QString::fromUtf8(sourceText) == QLatin1String("Scope") ? QStringLiteral("Oszilloskop") : QString();
    }
};

// A widget \a depth frames below \a top.
QWidget* nestedIn(QWidget* top, int depth)
{
    QWidget* widget = top;
    for (int i = 0; i < depth; ++i)
        widget = new QFrame(widget);
    return widget;
}

} // namespace

class TestWindowLookup : public QObject
{
    Q_OBJECT

private slots:
    void findsContainerFromDeeplyNestedWidget();
    void windowItselfYieldsOwnTitleButOuterWindow();
    void widgetOutsideEveryWindowYieldsNothing();
};

void TestWindowLookup::findsContainerFromDeeplyNestedWidget()
{
    Translator translator;
    QCoreApplication::installTranslator(&translator);
    QWidget desktop;
    ContainerImpl container(&desktop);
    container.setWindowTitle(QStringLiteral("Scope"), 3);
    auto* layout = new QVBoxLayout;
    auto* form = new QFrame;
    layout->addWidget(form);
    container.setLayout(layout);
    QWidget* deep = nestedIn(form, 12);

    QCOMPARE(GlobalImpl::getParentWindow(deep), &container);
    // The untranslated title, without the instance number the title label shows.
    QCOMPARE(container.findChild<QLabel*>(QStringLiteral("ContainerTitle"))->text(), QStringLiteral("Oszilloskop 3"));
    QCOMPARE(GlobalImpl::getParentWindowName(deep), QStringLiteral("Scope"));
    // The title-bar buttons belong to the window as well.
    QCOMPARE(GlobalImpl::getParentWindowName(container.getContainerControl()->findChild<QWidget*>()),
             QStringLiteral("Scope"));
    QCoreApplication::removeTranslator(&translator);
}

void TestWindowLookup::windowItselfYieldsOwnTitleButOuterWindow()
{
    QWidget desktop;
    ContainerImpl outer(&desktop);
    outer.setWindowTitle(QStringLiteral("Outer"));
    auto* inner = new ContainerImpl(nestedIn(outer.getContainerFrame(), 2));
    inner->setWindowTitle(QStringLiteral("Inner"));

    QCOMPARE(GlobalImpl::getParentWindow(inner), &outer);
    QCOMPARE(GlobalImpl::getParentWindowName(inner), QStringLiteral("Inner"));
    QVERIFY(!GlobalImpl::getParentWindow(&outer));
    QCOMPARE(GlobalImpl::getParentWindowName(&outer), QStringLiteral("Outer"));
}

void TestWindowLookup::widgetOutsideEveryWindowYieldsNothing()
{
    QWidget desktop;
    auto* named = new QFrame(&desktop);
    named->setObjectName(QStringLiteral("ContainerFrame"));
    QWidget* deep = nestedIn(named, 8);
    ContainerImpl beside(&desktop);
    beside.setWindowTitle(QStringLiteral("Beside"));

    QVERIFY(!GlobalImpl::getParentWindow(deep));
    QVERIFY(GlobalImpl::getParentWindowName(deep).isEmpty());
    QVERIFY(!GlobalImpl::getParentWindow(nullptr));
    QVERIFY(GlobalImpl::getParentWindowName(nullptr).isEmpty());
}

QTEST_MAIN(TestWindowLookup)
#include "tst_windowlookup.moc"
