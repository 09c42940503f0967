#include "KitWidgetPlugin.h"

#include <utility>

namespace Lumaro {
namespace gui {

KitWidgetPlugin::KitWidgetPlugin(Description description, QObject* parent)
    : QObject(parent)
    , m_description(std::move(description))
{
}

bool KitWidgetPlugin::isContainer() const
{
    return false;
}

bool KitWidgetPlugin::isInitialized() const
{
    return m_initialized;
}

QIcon KitWidgetPlugin::icon() const
{
    return QIcon();
}

QString KitWidgetPlugin::group() const
{
    return QStringLiteral("Brivane");
}

void KitWidgetPlugin::initialize(QDesignerFormEditorInterface*)
{
    m_initialized = true;
}

QString KitWidgetPlugin::domXml() const
{
    return m_description.domXml;
}

QString KitWidgetPlugin::includeFile() const
{
    return m_description.includeFile;
}

QString KitWidgetPlugin::name() const
{
    return m_description.name;
}

QString KitWidgetPlugin::toolTip() const
{
    return m_description.toolTip;
}

QString KitWidgetPlugin::whatsThis() const
{
    return m_description.whatsThis;
}

QWidget* KitWidgetPlugin::createWidget(QWidget* parent)
{
    return m_description.create(parent);
}

QString KitWidgetPlugin::uiDocument(const QString& widgetClass, const QString& objectName)
{
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"%1\" name=\"%2\">\n"
                          " </widget>\n"
                          "</ui>\n")
        .arg(widgetClass, objectName);
}

} // namespace gui
} // namespace Lumaro
