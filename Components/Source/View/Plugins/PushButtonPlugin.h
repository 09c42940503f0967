#ifndef PUSHBUTTONPLUGIN_H
#define PUSHBUTTONPLUGIN_H

#include "KitWidgetPlugin.h"

namespace Lumaro {
namespace gui {

/// Offers the engine push button to Qt Designer.
class PushButtonPlugin : public KitWidgetPlugin
{
    Q_OBJECT

public:
    explicit PushButtonPlugin(QObject* parent = nullptr);
};

} // namespace gui
} // namespace Lumaro

#endif
