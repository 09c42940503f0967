#ifndef KITWIDGETPLUGIN_H
#define KITWIDGETPLUGIN_H

#include <QIcon>
#include <QObject>
#include <QString>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>

namespace Lumaro {
namespace gui {

/**
 * The Designer description of one of the kit's widgets: plain widgets without an icon,
 * listed together in one group of the widget box. The widgets differ only in the data
 * of their Description; each named plug-in class passes its own.
 */
class KitWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    struct Description
    {
        QString name;
        QString domXml;
        QString includeFile;
        QString toolTip;
        QString whatsThis;
        std::function<QWidget*(QWidget*)> create;
    };

    KitWidgetPlugin(Description description, QObject* parent = nullptr);

    bool isContainer() const override;
    bool isInitialized() const override;
    QIcon icon() const override;
    QString group() const override;
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;
    QString includeFile() const override;
    QString name() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QWidget* createWidget(QWidget* parent) override;

protected:
    /// The ui document Designer places for a new widget of widgetClass named objectName.
    static QString uiDocument(const QString& widgetClass, const QString& objectName);

private:
    Description m_description;
    bool m_initialized = false;
};

} // namespace gui
} // namespace Lumaro

#endif
