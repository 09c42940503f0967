#include "ContainerControlImpl.h"

#include "ContainerImpl.h"
#include "GlobalImpl.h"
#include "MenuBar.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QPushButton>

namespace {

QString buttonRule(const char* objectName, const char* image)
{
    return QStringLiteral("    QPushButton#%1 {        background: transparent;        border: none;        image: url(%2);"
                          "        margin: 6px;        min-width: 36px;        max-width: 36px;        min-height: 36px;"
                          "        max-height: 36px;    }")
        .arg(QLatin1String(objectName), QLatin1String(image));
}

} // namespace

ContainerControlImpl::ContainerControlImpl(QWidget* containerWidget, QWidget* parent)
    : QFrame(parent)
    , container(qobject_cast<ContainerImpl*>(containerWidget))
{
    setObjectName(QStringLiteral("ContainerControl"));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
    // The sheet goes on before the buttons: set on a frame that has them already, it
    // polishes each of them there and then, and every image rule reads its SVG file twice
    // (a third of the cluster's start-up); buttons made under it are polished once, when
    // first shown.
    setStyleSheet(QStringLiteral("\t QFrame#ContainerControl {\t     background: transparent;\t }")
                  + buttonRule("ContainerClose", ":/images/svg/hideButton.svg")
                  + buttonRule("ContainerToBack", ":/images/svg/sendToBackIcon.png")
                  + buttonRule("ContainerHalt", ":/images/svg/closeButton.svg")
                  + buttonRule("ContainerMaxRestore", ":/images/svg/maximizeButton.svg")
                  + buttonRule("ContainerGrow", ":/images/svg/maximizeButton.svg")
                  + buttonRule("ContainerShrink", ":/images/svg/restoreButton.svg")
                  + QStringLiteral("    QPushButton:checked#ContainerMaxRestore {        image: url(:/images/svg/restoreButton.svg);     }"));

    const auto makeButton = [this](const char* objectName) {
        auto* button = new QPushButton(this);
        button->setObjectName(QLatin1String(objectName));
        button->setFocusPolicy(Qt::NoFocus);
        return button;
    };
    closeButton = makeButton("ContainerClose");
    toBackButton = makeButton("ContainerToBack");
    haltButton = makeButton("ContainerHalt");
    maxRestoreButton = makeButton("ContainerMaxRestore");
    maxRestoreButton->setCheckable(true);
    growButton = makeButton("ContainerGrow");
    shrinkButton = makeButton("ContainerShrink");
    toBackButton->hide();
    haltButton->hide();
    maxRestoreButton->hide();
    shrinkButton->hide();

    buttonRow = new QHBoxLayout(this);
    buttonRow->setSpacing(6);
    buttonRow->setContentsMargins(0, 0, 0, 0);
    for (QPushButton* button : {haltButton, closeButton, shrinkButton, growButton, maxRestoreButton, toBackButton})
        buttonRow->addWidget(button);

    // Close hides the container at its saved location before maximize/restore is reset.
    if (container)
        connect(closeButton, &QPushButton::clicked, container, &ContainerBase::close);
    else
        qDebug() << "UserInterface - ContainerControl: not on a standard container, the buttons act on nothing:"
                 << containerWidget;
    connect(closeButton, &QPushButton::clicked, this, &ContainerControlImpl::resetMaxRestore);
    connect(haltButton, &QPushButton::clicked, this, &ContainerControlImpl::resetMaxRestore);
    connect(maxRestoreButton, &QPushButton::toggled, this, &ContainerControlImpl::toggleMaxRestore);
    if (container) {
        connect(toBackButton, &QPushButton::clicked, container, &QWidget::lower);
        connect(container, &ContainerBase::WindowClosed, this, &ContainerControlImpl::resetMaxRestore);
        connect(container, &ContainerBase::changeSize, this, &ContainerControlImpl::windowState);
    }
}

void ContainerControlImpl::toggleMaxRestore(bool isMax)
{
    if (isMax) {
        buttonRow->setContentsMargins(0, 0, 0, 10);
        MenuBar* bar = GlobalImpl::getInstance()->topNavMenu();
        if (bar && bar->isOpen)
            bar->toggle();
        if (container)
            container->maximize();
    } else {
        buttonRow->setContentsMargins(0, 0, 0, 0);
        if (container)
            container->restore();
    }
}

void ContainerControlImpl::resetMaxRestore()
{
    maxRestoreButton->setChecked(false);
}

void ContainerControlImpl::windowState(QString)
{
}
