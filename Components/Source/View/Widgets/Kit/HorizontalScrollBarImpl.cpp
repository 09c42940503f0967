#include "HorizontalScrollBarImpl.h"

namespace Lumaro {
namespace gui {

HorizontalScrollBarImpl::HorizontalScrollBarImpl(QWidget* parent)
    : ScrollBarImpl(Qt::Horizontal, parent)
{
}

} // namespace gui
} // namespace Lumaro
