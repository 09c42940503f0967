#include "ComponentPluginCollection.h"

#include "HorizontalScrollBarPlugin.h"
#include "PushButtonPlugin.h"
#include "RotatableLabelPlugin.h"
#include "VerticalScrollBarPlugin.h"

namespace Lumaro {
namespace gui {

ComponentPluginCollection::ComponentPluginCollection(QObject* parent)
    : QObject(parent)
{
    m_widgets << new PushButtonPlugin(this)
              << new RotatableLabelPlugin(this)
              << new HorizontalScrollBarPlugin(this)
              << new VerticalScrollBarPlugin(this);
}

QList<QDesignerCustomWidgetInterface*> ComponentPluginCollection::customWidgets() const
{
    return m_widgets;
}

} // namespace gui
} // namespace Lumaro
