#include "VerticalScrollBarPlugin.h"

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

VerticalScrollBarPlugin::VerticalScrollBarPlugin(QObject* parent)
    : KitWidgetPlugin(
          {QStringLiteral("Lumaro::gui::VerticalScrollBarImpl"),
           uiDocument(QStringLiteral("Lumaro::gui::VerticalScrollBarImpl"),
                      QStringLiteral("Vertical Scroll Bar")),
           QStringLiteral("ScrollBarImpl.h"),
           QStringLiteral("A Vertical Scroll Bar"),
           QStringLiteral("A Brivane Vertical Scroll Bar"),
           [](QWidget* parent) -> QWidget* { return new VerticalScrollBarImpl(parent); }},
          parent)
{
}

} // namespace gui
} // namespace Lumaro
