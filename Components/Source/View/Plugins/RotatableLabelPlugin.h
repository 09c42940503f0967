#ifndef ROTATABLELABELPLUGIN_H
#define ROTATABLELABELPLUGIN_H

#include "KitWidgetPlugin.h"

/// Offers the rotatable label to Qt Designer.
class RotatableLabelPlugin : public Lumaro::gui::KitWidgetPlugin
{
    Q_OBJECT

public:
    explicit RotatableLabelPlugin(QObject* parent = nullptr);

    QString domXml() const override;
    QString includeFile() const override;
    QString name() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QWidget* createWidget(QWidget* parent) override;
};

#endif
