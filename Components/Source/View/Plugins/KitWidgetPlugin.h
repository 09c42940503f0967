#ifndef KITWIDGETPLUGIN_H
#define KITWIDGETPLUGIN_H

#include <QIcon>
#include <QObject>
#include <QString>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace Lumaro {
namespace gui {

/**
 * What the Designer descriptions of the kit's widgets have in common: plain widgets
 * without an icon, listed together in one group of the widget box.
 */
class KitWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    explicit KitWidgetPlugin(QObject* parent = nullptr);

    bool isContainer() const override;
    bool isInitialized() const override;
    QIcon icon() const override;
    QString group() const override;
    void initialize(QDesignerFormEditorInterface* core) override;

protected:
    /// The ui document Designer places for a new widget of widgetClass named objectName.
    static QString uiDocument(const QString& widgetClass, const QString& objectName);

private:
    bool m_initialized = false;
};

} // namespace gui
} // namespace Lumaro

#endif
