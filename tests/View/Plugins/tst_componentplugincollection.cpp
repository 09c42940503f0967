// The Designer plug-in as Designer and form loaders see it: the built module, its four
// widget descriptions, and a form that uses all four.

#include <QBuffer>
#include <QPluginLoader>
#include <QPointer>
#include <QtTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <QUiLoader>
#include <QWidget>

#include <memory>

class TestComponentPluginCollection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void offersFourWidgetsInOrder();
    void describesEachWidget_data();
    void describesEachWidget();
    void initializesOnce();
    void formWithTheKitLoads();

private:
    QList<QDesignerCustomWidgetInterface*> m_widgets;
};

void TestComponentPluginCollection::initTestCase()
{
    QPluginLoader loader(QStringLiteral(TZ_DESIGNER_PLUGIN));
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    QVERIFY2(collection, qPrintable(loader.errorString()));
    QCOMPARE(loader.metaData().value(QStringLiteral("IID")).toString(),
             QStringLiteral(QDesignerCustomWidgetCollectionInterface_iid));
    m_widgets = collection->customWidgets();
}

void TestComponentPluginCollection::offersFourWidgetsInOrder()
{
    QStringList names;
    for (auto* widget : qAsConst(m_widgets))
        names << widget->name();
    QCOMPARE(names, (QStringList{"Lumaro::gui::PushButtonImpl", "RotatableLabel",
                                 "Lumaro::gui::HorizontalScrollBarImpl",
                                 "Lumaro::gui::VerticalScrollBarImpl"}));

    // Designer asks again and again; the descriptions stay the same objects.
    QPluginLoader loader(QStringLiteral(TZ_DESIGNER_PLUGIN));
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    QCOMPARE(collection->customWidgets(), m_widgets);
}

void TestComponentPluginCollection::describesEachWidget_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QString>("whatsThis");
    QTest::addColumn<QString>("includeFile");
    QTest::addColumn<QString>("domXml");
    QTest::addColumn<QString>("widgetClass");

    QTest::newRow("push button") << 0 << "A Push Button" << "A Brivane Push Button"
        << "PushButtonImpl.h"
        << "<ui language=\"c++\">\n <widget class=\"Lumaro::gui::PushButtonImpl\" name=\"PushButton\">\n"
           " </widget>\n</ui>\n"
        << "Lumaro::gui::PushButtonImpl";
    QTest::newRow("rotatable label") << 1 << "RotatableLabel" << "Label that can be freely rotated"
        << "RotatableLabel.h"
        << "<widget class=\"RotatableLabel\" name=\"RotatableLabel\">\n</widget>\n"
        << "RotatableLabel";
    QTest::newRow("horizontal scroll bar") << 2 << "A Horizontal Scroll Bar"
        << "A Brivane Horizontal Scroll Bar" << "ScrollBarImpl.h"
        << "<ui language=\"c++\">\n"
           " <widget class=\"Lumaro::gui::HorizontalScrollBarImpl\" name=\"Horizontal Scroll Bar\">\n"
           " </widget>\n</ui>\n"
        << "Lumaro::gui::HorizontalScrollBarImpl";
    QTest::newRow("vertical scroll bar") << 3 << "A Vertical Scroll Bar"
        << "A Brivane Vertical Scroll Bar" << "ScrollBarImpl.h"
        << "<ui language=\"c++\">\n"
           " <widget class=\"Lumaro::gui::VerticalScrollBarImpl\" name=\"Vertical Scroll Bar\">\n"
           " </widget>\n</ui>\n"
        << "Lumaro::gui::VerticalScrollBarImpl";
}

void TestComponentPluginCollection::describesEachWidget()
{
    QFETCH(int, index);
    QFETCH(QString, toolTip);
    QFETCH(QString, whatsThis);
    QFETCH(QString, includeFile);
    QFETCH(QString, domXml);
    QFETCH(QString, widgetClass);
    QDesignerCustomWidgetInterface* description = m_widgets.value(index);
    QVERIFY(description);

    QCOMPARE(description->group(), QStringLiteral("Brivane"));
    QCOMPARE(description->toolTip(), toolTip);
    QCOMPARE(description->whatsThis(), whatsThis);
    QCOMPARE(description->includeFile(), includeFile);
    QCOMPARE(description->domXml(), domXml);
    QVERIFY(!description->isContainer());
    QVERIFY(description->icon().isNull());

    std::unique_ptr<QWidget> parentless(description->createWidget(nullptr));
    QVERIFY(parentless);
    QCOMPARE(QByteArray(parentless->metaObject()->className()), widgetClass.toLatin1());
    QVERIFY(!parentless->parent());

    QWidget form;
    QPointer<QWidget> child = description->createWidget(&form);
    QVERIFY(child);
    QCOMPARE(QByteArray(child->metaObject()->className()), widgetClass.toLatin1());
    QCOMPARE(child->parentWidget(), &form);
}

void TestComponentPluginCollection::initializesOnce()
{
    for (auto* description : qAsConst(m_widgets)) {
        QVERIFY(!description->isInitialized());
        description->initialize(nullptr);
        description->initialize(nullptr);
        QVERIFY(description->isInitialized());
    }
}

void TestComponentPluginCollection::formWithTheKitLoads()
{
    QByteArray form = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="Lumaro::gui::PushButtonImpl" name="button"/>
   </item>
   <item>
    <widget class="RotatableLabel" name="label">
     <property name="LabelText">
      <string>Power</string>
     </property>
    </widget>
   </item>
   <item>
    <widget class="Lumaro::gui::HorizontalScrollBarImpl" name="across"/>
   </item>
   <item>
    <widget class="Lumaro::gui::VerticalScrollBarImpl" name="down">
     <property name="Style">
      <enum>Lumaro::gui::ScrollBarImpl::WITH_SCROLL_ARROWS</enum>
     </property>
    </widget>
   </item>
  </layout>
 </widget>
 <customwidgets>
  <customwidget>
   <class>Lumaro::gui::PushButtonImpl</class>
   <extends>QWidget</extends>
   <header>PushButtonImpl.h</header>
  </customwidget>
  <customwidget>
   <class>RotatableLabel</class>
   <extends>QLabel</extends>
   <header>RotatableLabel.h</header>
  </customwidget>
  <customwidget>
   <class>Lumaro::gui::HorizontalScrollBarImpl</class>
   <extends>QScrollBar</extends>
   <header>ScrollBarImpl.h</header>
  </customwidget>
  <customwidget>
   <class>Lumaro::gui::VerticalScrollBarImpl</class>
   <extends>QScrollBar</extends>
   <header>ScrollBarImpl.h</header>
  </customwidget>
 </customwidgets>
</ui>
)";
    QBuffer buffer(&form);
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QStringLiteral(TZ_DESIGNER_PLUGIN_DIR));
    for (const char* name : {"Lumaro::gui::PushButtonImpl", "RotatableLabel",
                             "Lumaro::gui::HorizontalScrollBarImpl",
                             "Lumaro::gui::VerticalScrollBarImpl"})
        QVERIFY2(loader.availableWidgets().contains(QLatin1String(name)), name);

    std::unique_ptr<QWidget> loaded(loader.load(&buffer));
    QVERIFY2(loaded, qPrintable(loader.errorString()));

    const QList<QPair<QString, QByteArray>> expected{
        {"button", "Lumaro::gui::PushButtonImpl"},
        {"label", "RotatableLabel"},
        {"across", "Lumaro::gui::HorizontalScrollBarImpl"},
        {"down", "Lumaro::gui::VerticalScrollBarImpl"}};
    for (const auto& [name, widgetClass] : expected) {
        auto* widget = loaded->findChild<QWidget*>(name);
        QVERIFY2(widget, qPrintable(name));
        QCOMPARE(QByteArray(widget->metaObject()->className()), widgetClass);
    }
    // The form's properties reach the widgets, an enumeration of the kit's included.
    QCOMPARE(loaded->findChild<QWidget*>("label")->property("LabelText").toString(),
             QStringLiteral("Power"));
    QCOMPARE(loaded->findChild<QWidget*>("down")->property("Style").toInt(), 1);
}

QTEST_MAIN(TestComponentPluginCollection)
#include "tst_componentplugincollection.moc"
