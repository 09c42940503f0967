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

    QString domXml() const override;
    QString includeFile() const override;
    QString name() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QWidget* createWidget(QWidget* parent) override;
};

} // namespace gui
} // namespace Lumaro

#endif
