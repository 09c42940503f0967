// The standard container's frame: the named parts other code finds by search, its sizes,
// its look in "Min" and "Max" under the application options, and its properties.

#include "CSS.h"
#include "ContainerImpl.h"
#include "GlobalImpl.h"
#include "LogCapture.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QtTest>

Q_DECLARE_METATYPE(QMargins)

namespace {

// Puts the frame in the look of a size state without a state machine.
class StyledContainer : public ContainerImpl
{
public:
    using ContainerImpl::ContainerImpl;
    void styleAs(const QString& sizeName)
    {
        m_sizeName = sizeName;
        updateStyle();
    }
};

QImage rendered(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

} // namespace

class TestContainerImpl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void carriesNamedParts();
    void startsInMinAtItsMinimumSize();
    void windowLookupFindsContainerAndTitle();
    void titleFontFollowsScreen_data();
    void titleFontFollowsScreen();
    void longTitleShrinksInsteadOfWideningWindow();
    void minLookHasBorderAndRoundedCorners_data();
    void minLookHasBorderAndRoundedCorners();
    void maxLookMargins_data();
    void maxLookMargins();
    void takesMinimumSizeFromContainerFrame();
    void propertiesReachableByName();

private:
    QWidget* m_desktop = nullptr;
};

void TestContainerImpl::init()
{
    m_desktop = new QWidget;
    m_desktop->resize(1280, 800);
    m_desktop->show();
}

void TestContainerImpl::cleanup()
{
    delete m_desktop;
    for (const char* option : {"-res", "-size", "-systype", "-notransparency"})
        qApp->setProperty(option, QVariant());
}

void TestContainerImpl::carriesNamedParts()
{
    ContainerImpl container(m_desktop);
    QCOMPARE(container.objectName(), QStringLiteral("TopContainerObject"));
    auto* frame = container.findChild<QFrame*>(QStringLiteral("Container"));
    auto* border = container.findChild<QFrame*>(QStringLiteral("BorderFrame"));
    auto* inner = container.findChild<QFrame*>(QStringLiteral("BaseFrame"));
    auto* title = container.findChild<QLabel*>(QStringLiteral("ContainerTitle"));
    QVERIFY(frame && border && inner && title);
    QCOMPARE(inner->parentWidget(), frame);
    QCOMPARE(title->parentWidget(), frame);
    QCOMPARE(container.getContainerControl()->parentWidget(), frame);
    QCOMPARE(border->parentWidget(), &container);

    // Contents on top, title row below; the title takes the row's free width.
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();
    QVERIFY(inner->geometry().bottom() < title->geometry().top());
    QVERIFY(title->width() > container.width() / 2);
    // The border frame lies behind everything else and covers the whole container.
    QCOMPARE(border->geometry(), container.rect());
    QCOMPARE(container.childAt(container.width() / 2, container.height() / 2) == border, false);
    QCOMPARE(frame->geometry(), container.rect().adjusted(2, 2, -2, -2));
}

void TestContainerImpl::startsInMinAtItsMinimumSize()
{
    ContainerImpl container(m_desktop);
    QCOMPARE(container.size(), QSize(480, 400));
    QCOMPARE(container.sizeHint(), QSize(120, 120));
    QCOMPARE(container.mSize(), QStringLiteral("Min"));
    QCOMPARE(container.state(), QString());
    QCOMPARE(container.property("MinGeometry").toRect(), container.geometry());
}

void TestContainerImpl::windowLookupFindsContainerAndTitle()
{
    ContainerImpl container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"), 2);
    auto* contents = new QWidget(container.getContainerFrame());
    auto* button = new QWidget(contents);

    QCOMPARE(GlobalImpl::getParentWindow(button), &container);
    QCOMPARE(GlobalImpl::getParentWindowName(button), QStringLiteral("Scope"));
}

void TestContainerImpl::titleFontFollowsScreen_data()
{
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<int>("pixels");
    QTest::newRow("portrait") << QVariant("480x800") << QVariant() << 22;
    QTest::newRow("portrait, landscape size") << QVariant("480x800") << QVariant("landscape") << 22;
    QTest::newRow("landscape size") << QVariant("800x480") << QVariant("landscape") << 18;
    QTest::newRow("no options") << QVariant() << QVariant() << 26;
}

void TestContainerImpl::titleFontFollowsScreen()
{
    QFETCH(QVariant, res);
    QFETCH(QVariant, size);
    QFETCH(int, pixels);
    qApp->setProperty("-res", res);
    qApp->setProperty("-size", size);
    ContainerImpl container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();

    QCOMPARE(container.findChild<QLabel*>(QStringLiteral("ContainerTitle"))->font().pixelSize(), pixels);
}

void TestContainerImpl::longTitleShrinksInsteadOfWideningWindow()
{
    ContainerImpl container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();
    container.setWindowTitle(QStringLiteral("Spectrum Analyzer Measurement Settings for the Second Channel"));
    auto* title = container.findChild<QLabel*>(QStringLiteral("ContainerTitle"));

    QCOMPARE(container.size(), QSize(480, 400));
    QVERIFY(title->font().pixelSize() < 26);
    QVERIFY(title->fontMetrics().horizontalAdvance(title->text()) <= title->width());
}

void TestContainerImpl::minLookHasBorderAndRoundedCorners_data()
{
    QTest::addColumn<QVariant>("noTransparency");
    QTest::addColumn<bool>("border");
    QTest::addColumn<int>("alpha");
    QTest::newRow("translucent, border") << QVariant() << true << 215;
    QTest::newRow("opaque, border") << QVariant("true") << true << 255;
    QTest::newRow("opaque, no border") << QVariant("true") << false << 255;
}

void TestContainerImpl::minLookHasBorderAndRoundedCorners()
{
    QFETCH(QVariant, noTransparency);
    QFETCH(bool, border);
    QFETCH(int, alpha);
    qApp->setProperty("-notransparency", noTransparency);
    StyledContainer container(m_desktop);
    container.setBorder(border);
    container.show();

    const QImage image = rendered(container);
    const QColor middle = image.pixelColor(container.width() / 2, container.height() / 2);
    QCOMPARE(middle.alpha(), alpha);
    QCOMPARE(middle.rgb() & 0xffffff, 0u);
    const QColor edge = image.pixelColor(0, container.height() / 2);
    if (border)
        QCOMPARE(edge.rgb(), QColor(CSS::border()).rgb());
    else
        QCOMPARE(edge.alpha(), alpha);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(container.findChild<QFrame*>(QStringLiteral("Container"))->contentsMargins(), QMargins());

    // Edge to edge when maximized: no border, square corners.
    container.styleAs(QStringLiteral("Max"));
    const QImage maximized = rendered(container);
    QCOMPARE(maximized.pixelColor(0, 0).alpha(), alpha);
    QCOMPARE(maximized.pixelColor(0, container.height() / 2).alpha(), alpha);
    QCOMPARE(maximized.pixelColor(0, container.height() / 2).rgb() & 0xffffff, 0u);
}

void TestContainerImpl::maxLookMargins_data()
{
    QTest::addColumn<QVariant>("systype");
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<QMargins>("margins");
    QTest::newRow("handheld") << QVariant("handheld") << QVariant("800x480") << QVariant() << QMargins(0, 0, 0, 0);
    QTest::newRow("benchtop") << QVariant("benchtop") << QVariant("1280x800") << QVariant() << QMargins(30, 40, 30, 0);
    QTest::newRow("no system type") << QVariant() << QVariant() << QVariant() << QMargins(30, 40, 30, 0);
    QTest::newRow("480x800 handheld") << QVariant("handheld") << QVariant("480x800") << QVariant() << QMargins(0, 40, 0, 40);
    QTest::newRow("480x800 benchtop") << QVariant("benchtop") << QVariant("480x800") << QVariant() << QMargins(0, 40, 0, 40);
    QTest::newRow("landscape handheld") << QVariant("handheld") << QVariant("800x480") << QVariant("landscape") << QMargins(0, 40, 0, 40);
}

void TestContainerImpl::maxLookMargins()
{
    QFETCH(QVariant, systype);
    QFETCH(QVariant, res);
    QFETCH(QVariant, size);
    QFETCH(QMargins, margins);
    qApp->setProperty("-systype", systype);
    qApp->setProperty("-res", res);
    qApp->setProperty("-size", size);
    StyledContainer container(m_desktop);
    auto* frame = container.findChild<QFrame*>(QStringLiteral("Container"));

    container.styleAs(QStringLiteral("Max"));
    QCOMPARE(frame->contentsMargins(), margins);
    container.styleAs(QStringLiteral("Min"));
    QCOMPARE(frame->contentsMargins(), QMargins());
}

void TestContainerImpl::takesMinimumSizeFromContainerFrame()
{
    ContainerImpl container(m_desktop);
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(300, 200);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    container.setLayout(layout);

    QCOMPARE(form->parentWidget(), container.findChild<QFrame*>(QStringLiteral("BaseFrame")));
    QCOMPARE(container.getContainerFrame(), form);
    QCOMPARE(container.minimumSize(), QSize(300, 200));
    QCOMPARE(form->minimumSize(), QSize(0, 0));

    ContainerImpl plain(m_desktop);
    LogCapture log;
    plain.setLayout(new QVBoxLayout);
    QVERIFY(log.lines().contains(QStringLiteral("Failed to find ContainerFrame")));
    QCOMPARE(plain.minimumSize(), QSize(0, 0));
}

void TestContainerImpl::propertiesReachableByName()
{
    ContainerImpl container(m_desktop);
    container.show();
    QVERIFY(container.setProperty("MinGeometry", QRect(40, 50, 480, 400)));
    container.hide();
    QCOMPARE(container.geometry(), QRect(40, 50, 480, 400));
    // Forms set these by name.
    QVERIFY(container.setProperty("Lockable", true));
    QVERIFY(container.setProperty("SnapsToGrid", true));
}

QTEST_MAIN(TestContainerImpl)
#include "tst_containerimpl.moc"
