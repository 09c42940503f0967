// Finding the window that holds a widget, and its title: a standard container's own
// title, a drawer's caption, nothing outside every window.

#include "ContainerImpl.h"
#include "GlobalImpl.h"
#include "RotatableLabel.h"

#include <QFrame>
#include <QTranslator>
#include <QVBoxLayout>
#include <QtTest>

namespace {

// Stands in for the slide-out drawer, which the lookup knows by its class name only: a
// window with its title as a rotated caption on its handle.
class WindowDrawer : public QFrame
{
    Q_OBJECT

public:
    WindowDrawer(QWidget* parent, const QString& caption)
        : QFrame(parent)
    {
        setObjectName(QStringLiteral("TopContainerObject"));
        auto* handle = new QFrame(this);
        new QLabel(QStringLiteral("not the caption"), handle);
        auto* label = new RotatableLabel(new QFrame(handle));
        label->setText(caption);
        contents = new QFrame(this);
    }

    QFrame* contents;
};

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
    void drawerYieldsItsCaption();
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

void TestWindowLookup::drawerYieldsItsCaption()
{
    QWidget desktop;
    ContainerImpl container(&desktop);
    container.setWindowTitle(QStringLiteral("Scope"));
    // A drawer inside the container's tree still names itself, not the container.
    auto* drawer = new WindowDrawer(container.getContainerFrame(), QStringLiteral("Configuration"));
    QWidget* control = nestedIn(drawer->contents, 4);

    QCOMPARE(GlobalImpl::getParentWindow(control), drawer);
    QCOMPARE(GlobalImpl::getParentWindowName(control), QStringLiteral("Configuration"));
    QCOMPARE(GlobalImpl::getParentWindow(drawer), &container);
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
