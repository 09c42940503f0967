#include "StatusBarParts.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace StatusBarParts {

QHBoxLayout* rowLayout(QWidget* owner, int spacing)
{
    auto* layout = new QHBoxLayout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QPushButton* iconButton(const QString& objectName, QWidget* parent)
{
    auto* button = new QPushButton(parent);
    button->setObjectName(objectName);
    button->setFixedWidth(30);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace StatusBarParts
