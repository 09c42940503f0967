#include "HorizontalScrollBarPlugin.h"

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

HorizontalScrollBarPlugin::HorizontalScrollBarPlugin(QObject* parent)
    : KitWidgetPlugin(parent)
{
}

QString HorizontalScrollBarPlugin::domXml() const
{
    return uiDocument(QStringLiteral("Lumaro::gui::HorizontalScrollBarImpl"),
                      QStringLiteral("Horizontal Scroll Bar"));
}

QString HorizontalScrollBarPlugin::includeFile() const
{
    return QStringLiteral("ScrollBarImpl.h");
}

QString HorizontalScrollBarPlugin::name() const
{
    return QStringLiteral("Lumaro::gui::HorizontalScrollBarImpl");
}

QString HorizontalScrollBarPlugin::toolTip() const
{
    return QStringLiteral("A Horizontal Scroll Bar");
}

QString HorizontalScrollBarPlugin::whatsThis() const
{
    return QStringLiteral("A Brivane Horizontal Scroll Bar");
}

QWidget* HorizontalScrollBarPlugin::createWidget(QWidget* parent)
{
    return new HorizontalScrollBarImpl(parent);
}

} // namespace gui
} // namespace Lumaro
