#include "PushButtonPlugin.h"

#include "PushButtonImpl.h"

namespace Lumaro {
namespace gui {

PushButtonPlugin::PushButtonPlugin(QObject* parent)
    : KitWidgetPlugin(parent)
{
}

QString PushButtonPlugin::domXml() const
{
    return uiDocument(QStringLiteral("Lumaro::gui::PushButtonImpl"),
                      QStringLiteral("PushButton"));
}

QString PushButtonPlugin::includeFile() const
{
    return QStringLiteral("PushButtonImpl.h");
}

QString PushButtonPlugin::name() const
{
    return QStringLiteral("Lumaro::gui::PushButtonImpl");
}

QString PushButtonPlugin::toolTip() const
{
    return QStringLiteral("A Push Button");
}

QString PushButtonPlugin::whatsThis() const
{
    return QStringLiteral("A Brivane Push Button");
}

QWidget* PushButtonPlugin::createWidget(QWidget* parent)
{
    return new PushButtonImpl(parent);
}

} // namespace gui
} // namespace Lumaro
