#include "RotatableLabelPlugin.h"

#include "RotatableLabel.h"

RotatableLabelPlugin::RotatableLabelPlugin(QObject* parent)
    : Lumaro::gui::KitWidgetPlugin(parent)
{
}

QString RotatableLabelPlugin::domXml() const
{
    // Designer takes a bare widget element as well as a ui document.
    return QStringLiteral("<widget class=\"RotatableLabel\" name=\"RotatableLabel\">\n"
                          "</widget>\n");
}

QString RotatableLabelPlugin::includeFile() const
{
    return QStringLiteral("RotatableLabel.h");
}

QString RotatableLabelPlugin::name() const
{
    return QStringLiteral("RotatableLabel");
}

QString RotatableLabelPlugin::toolTip() const
{
    return QStringLiteral("RotatableLabel");
}

QString RotatableLabelPlugin::whatsThis() const
{
    return QStringLiteral("Label that can be freely rotated");
}

QWidget* RotatableLabelPlugin::createWidget(QWidget* parent)
{
    return new RotatableLabel(parent);
}
