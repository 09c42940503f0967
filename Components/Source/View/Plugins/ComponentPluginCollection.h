#ifndef COMPONENTPLUGINCOLLECTION_H
#define COMPONENTPLUGINCOLLECTION_H

#include <QList>
#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

namespace Lumaro {
namespace gui {

/**
 * The Designer plug-in of the widget kit: hands Qt Designer (and QUiLoader) the
 * descriptions of the push button, the rotatable label and the two scroll bars.
 */
class ComponentPluginCollection : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QDesignerCustomWidgetCollectionInterface_iid)
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit ComponentPluginCollection(QObject* parent = nullptr);

    /// The same four descriptions on every call, owned by the collection.
    QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    QList<QDesignerCustomWidgetInterface*> m_widgets;
};

} // namespace gui
} // namespace Lumaro

#endif
