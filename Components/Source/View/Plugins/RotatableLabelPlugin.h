#ifndef ROTATABLELABELPLUGIN_H
#define ROTATABLELABELPLUGIN_H

#include "KitWidgetPlugin.h"

/// Offers the rotatable label to Qt Designer.
class RotatableLabelPlugin : public Lumaro::gui::KitWidgetPlugin
{
    Q_OBJECT

public:
    explicit RotatableLabelPlugin(QObject* parent = nullptr);
};

#endif
