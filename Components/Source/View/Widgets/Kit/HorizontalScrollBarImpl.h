#ifndef HORIZONTALSCROLLBARIMPL_H
#define HORIZONTALSCROLLBARIMPL_H

#include "ScrollBarImpl.h"

namespace Lumaro {
namespace gui {

/// The kit's horizontal touch scroll bar.
class TZUICOMPONENTS_EXPORT HorizontalScrollBarImpl : public ScrollBarImpl
{
    Q_OBJECT

public:
    explicit HorizontalScrollBarImpl(QWidget* parent = nullptr);
};

} // namespace gui
} // namespace Lumaro

#endif
