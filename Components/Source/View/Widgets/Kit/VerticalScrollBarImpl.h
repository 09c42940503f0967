#ifndef VERTICALSCROLLBARIMPL_H
#define VERTICALSCROLLBARIMPL_H

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

/// The kit's vertical touch scroll bar, as the message logs use it beside their text.
class TZUICOMPONENTS_EXPORT VerticalScrollBarImpl : public ScrollBarImpl
{
    Q_OBJECT

public:
    explicit VerticalScrollBarImpl(QWidget* parent = nullptr);
};

} // namespace gui
} // namespace Lumaro

#endif
