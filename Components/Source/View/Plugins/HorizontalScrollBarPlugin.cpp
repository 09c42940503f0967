#include "HorizontalScrollBarPlugin.h"

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

HorizontalScrollBarPlugin::HorizontalScrollBarPlugin(QObject* parent)
    : KitWidgetPlugin(
          {QStringLiteral("Lumaro::gui::HorizontalScrollBarImpl"),
           uiDocument(QStringLiteral("Lumaro::gui::HorizontalScrollBarImpl"),
                      QStringLiteral("Horizontal Scroll Bar")),
           QStringLiteral("ScrollBarImpl.h"),
           QStringLiteral("A Horizontal Scroll Bar"),
           QStringLiteral("A Brivane Horizontal Scroll Bar"),
           [](QWidget* parent) -> QWidget* { return new HorizontalScrollBarImpl(parent); }},
          parent)
{
}

} // namespace gui
} // namespace Lumaro
