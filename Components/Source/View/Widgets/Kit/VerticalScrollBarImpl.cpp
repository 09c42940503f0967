#include "VerticalScrollBarImpl.h"

namespace Lumaro {
namespace gui {

VerticalScrollBarImpl::VerticalScrollBarImpl(QWidget* parent)
    : ScrollBarImpl(Qt::Vertical, parent)
{
}

} // namespace gui
} // namespace Lumaro
