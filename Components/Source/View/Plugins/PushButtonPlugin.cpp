#include "PushButtonPlugin.h"

#include "PushButtonImpl.h"

namespace Lumaro {
namespace gui {

PushButtonPlugin::PushButtonPlugin(QObject* parent)
    : KitWidgetPlugin(
          {QStringLiteral("Lumaro::gui::PushButtonImpl"),
           uiDocument(QStringLiteral("Lumaro::gui::PushButtonImpl"),
                      QStringLiteral("PushButton")),
           QStringLiteral("PushButtonImpl.h"),
           QStringLiteral("A Push Button"),
           QStringLiteral("A Brivane Push Button"),
           [](QWidget* parent) -> QWidget* { return new PushButtonImpl(parent); }},
          parent)
{
}

} // namespace gui
} // namespace Lumaro
