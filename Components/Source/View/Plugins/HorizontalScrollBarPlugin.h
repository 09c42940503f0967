#ifndef HORIZONTALSCROLLBARPLUGIN_H
#define HORIZONTALSCROLLBARPLUGIN_H

#include "KitWidgetPlugin.h"

namespace Lumaro {
namespace gui {

/// Offers the horizontal touch scroll bar to Qt Designer.
class HorizontalScrollBarPlugin : public KitWidgetPlugin
{
    Q_OBJECT

public:
    explicit HorizontalScrollBarPlugin(QObject* parent = nullptr);
};

} // namespace gui
} // namespace Lumaro

#endif
