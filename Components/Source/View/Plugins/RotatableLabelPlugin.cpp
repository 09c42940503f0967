#include "RotatableLabelPlugin.h"

#include "RotatableLabel.h"

RotatableLabelPlugin::RotatableLabelPlugin(QObject* parent)
    : Lumaro::gui::KitWidgetPlugin(
          {QStringLiteral("RotatableLabel"),
           // Designer takes a bare widget element as well as a ui document.
           QStringLiteral("<widget class=\"RotatableLabel\" name=\"RotatableLabel\">\n"
                          "</widget>\n"),
           QStringLiteral("RotatableLabel.h"),
           QStringLiteral("RotatableLabel"),
           QStringLiteral("Label that can be freely rotated"),
           [](QWidget* parent) -> QWidget* { return new RotatableLabel(parent); }},
          parent)
{
}
