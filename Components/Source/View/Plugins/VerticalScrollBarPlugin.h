#ifndef VERTICALSCROLLBARPLUGIN_H
#define VERTICALSCROLLBARPLUGIN_H

#include "KitWidgetPlugin.h"

namespace Lumaro {
namespace gui {

/// Offers the vertical touch scroll bar to Qt Designer.
class VerticalScrollBarPlugin : public KitWidgetPlugin
{
    Q_OBJECT

public:
    explicit VerticalScrollBarPlugin(QObject* parent = nullptr);
};

} // namespace gui
} // namespace Lumaro

#endif
