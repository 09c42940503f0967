#include "VerticalScrollBarPlugin.h"

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

VerticalScrollBarPlugin::VerticalScrollBarPlugin(QObject* parent)
    : KitWidgetPlugin(parent)
{
}

QString VerticalScrollBarPlugin::domXml() const
{
    return uiDocument(QStringLiteral("Lumaro::gui::VerticalScrollBarImpl"),
                      QStringLiteral("Vertical Scroll Bar"));
}

QString VerticalScrollBarPlugin::includeFile() const
{
    return QStringLiteral("ScrollBarImpl.h");
}

QString VerticalScrollBarPlugin::name() const
{
    return QStringLiteral("Lumaro::gui::VerticalScrollBarImpl");
}

QString VerticalScrollBarPlugin::toolTip() const
{
    return QStringLiteral("A Vertical Scroll Bar");
}

QString VerticalScrollBarPlugin::whatsThis() const
{
    return QStringLiteral("A Brivane Vertical Scroll Bar");
}

QWidget* VerticalScrollBarPlugin::createWidget(QWidget* parent)
{
    return new VerticalScrollBarImpl(parent);
}

} // namespace gui
} // namespace Lumaro
