#include "KitWidgetPlugin.h"

namespace Lumaro {
namespace gui {

KitWidgetPlugin::KitWidgetPlugin(QObject* parent)
    : QObject(parent)
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
