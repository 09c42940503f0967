#include "FSContainer.h"

#include "ApplicationOptions.h"
#include "QTZScalableLabel.h"

#include <QBoxLayout>
#include <QFrame>
#include <QLabel>
#include <QPushButton>

FSContainer::FSContainer(QWidget* parent)
    : ContainerBase(parent)
{
    setObjectName(QStringLiteral("TopContainerObject"));
    setContainerSize();

    auto* handle = new QLabel(this);
    handle->setObjectName(QStringLiteral("ContainerHandle"));

    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("Container"));
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setSpacing(0);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->addWidget(m_baseFrame);

    auto* closeButton = new QPushButton(frame);
    closeButton->setObjectName(QStringLiteral("ContainerClose"));
    closeButton->setFocusPolicy(Qt::NoFocus);
    connect(closeButton, &QPushButton::clicked, this, &FSContainer::close);

    auto* titleRow = new QHBoxLayout;
    titleRow->setSpacing(0);
    if (ApplicationOptions::isPortraitResolution())
        titleRow->setContentsMargins(0, 0, 0, 40);
    else if (ApplicationOptions::isBenchtop())
        titleRow->setContentsMargins(30, 0, 30, 10);
    else
        titleRow->setContentsMargins(0, 0, 0, 0);
    titleRow->addWidget(m_titleLabel, 1);
    titleRow->addStretch();
    titleRow->addWidget(closeButton, 0);
    frameLayout->addLayout(titleRow);

    // A handheld screen is wide and low: the strip goes beside the contents, not above.
    auto* outer = new QBoxLayout(ApplicationOptions::isHandheld() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    outer->setSpacing(0);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(handle);
    outer->addWidget(frame);
    ContainerBase::setLayout(outer, true);

    QString sheet = QStringLiteral(
        "    QPushButton#TopContainerObject {        border: none;         background-color: transparent;     }"
        "    QFrame#Container {        border: 0px;        background-color: black;"
        "/*        background-color: rgba(0,0,0,215);*/"
        "/*        background-color: #1a1a1a;*/"
        "/*        background-color: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #333, stop:1 #000);*/"
        "/*        background-color: transparent;*/"
        "        margin: 0px;    }"
        "    QLabel#ContainerHandle {        background-color: black;    }"
        "    QLabel#ContainerTitle {        margin-left: 6px;        color: #fff;        font: 26px;    }"
        "    QPushButton#ContainerClose {        background-color: transparent;        border: none;"
        "        image: url(:/images/svg/hideButton.svg);        background-repeat: no-repeat;"
        "        image-position: center;        margin: 6px;        min-width:  30px;        max-width:  30px;"
        "        min-height: 30px;        max-height: 30px;    }");
    if (!ApplicationOptions::isHandheld())
        sheet += QStringLiteral("    QPushButton#ContainerClose {        min-width:  36px;        max-width:  36px;        min-height: 36px;        max-height: 36px;    }");
    const ApplicationOptions::ScreenSize screen = ApplicationOptions::screenSize();
    if (screen != ApplicationOptions::ScreenSize::Landscape && screen != ApplicationOptions::ScreenSize::SmallPortrait)
        sheet += QStringLiteral("    QLabel#ContainerHandle {        background-color: black;        min-width: 35px;        max-width: 35px;        min-height: 35px;        max-height: 35px;    }");
    setStyleSheet(sheet);
}

void FSContainer::setContainerSize()
{
    QSize screen = ApplicationOptions::resolutionOr(QSize(1280, 800));
    if (ApplicationOptions::isHandheld() && ApplicationOptions::resolution().isValid())
        screen.rheight() -= 50;
    setGeometry(QRect(QPoint(0, 0), screen));
    saveLocation();
}

void FSContainer::show()
{
    raise();
    emit changeSize(QStringLiteral("Max"));
    setVisible(true);
}
