#include "ContainerImpl.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "QTZScalableLabel.h"

#include <QDebug>
#include <QFrame>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

namespace {

QString titleFontSize()
{
    if (ApplicationOptions::isPortraitResolution())
        return QStringLiteral("22");
    if (ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape)
        return QStringLiteral("18");
    return QStringLiteral("26");
}

} // namespace

ContainerImpl::ContainerImpl(QWidget* parent)
    : ContainerBase(parent)
{
    setObjectName(QStringLiteral("TopContainerObject"));

    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("Container"));
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setSpacing(0);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->addWidget(m_baseFrame);

    auto* titleRow = new QHBoxLayout;
    titleRow->setSpacing(0);
    titleRow->setContentsMargins(0, 0, 0, 0);
    titleRow->addWidget(m_titleLabel, 1);
    titleRow->addStretch();
    // The slot of the title-bar buttons.
    m_containerControl = new QWidget;
    titleRow->addWidget(m_containerControl, 0);
    frameLayout->addLayout(titleRow);

    auto* outer = new QHBoxLayout;
    outer->setSpacing(0);
    outer->setContentsMargins(2, 2, 2, 2);
    outer->addWidget(frame);
    ContainerBase::setLayout(outer, true);

    // Outside the layout, so that it can cover the whole container behind the frame.
    auto* border = new QFrame(this);
    border->setObjectName(QStringLiteral("BorderFrame"));
    border->show();
    border->lower();

    setStyleSheet(QStringLiteral("    QPushButton#ContainerHandle {        border-bottom-left-radius: 10px;        border: none;        background-image: url(:/images/vbar.png);        background-repeat: no-repeat;        background-position: center center;        min-width: 20px;        max-width: 20px;    }    QLabel#ContainerTitle {        margin-left: 1px;        color: #fff;        font: ")
                  + titleFontSize()
                  + QStringLiteral("px;    }    QPushButton#TopContainerObject {        border: none;         background-color: transparent;     }"));

    resize(m_minSize);
    saveLocation();
    updateStyle();
}

QSize ContainerImpl::sizeHint() const
{
    return QSize(120, 120);
}

void ContainerImpl::setLayout(QLayout* layout)
{
    ContainerBase::setLayout(layout);
    auto* contents = m_baseFrame->findChild<QFrame*>(QStringLiteral("ContainerFrame"));
    if (!contents) {
        qDebug() << "Failed to find ContainerFrame";
        return;
    }
    // The form's minimum becomes the window's, so that the contents can still shrink
    // inside the frame's margins.
    m_minSize = contents->minimumSize();
    setMinimumSize(m_minSize);
    contents->setMinimumSize(0, 0);
}

void ContainerImpl::init()
{
    setMinimumSize(m_minSize);
    resize(m_minSize);
    m_stateName = m_sizeName = QStringLiteral("Min");
    resizeBorderFrame(m_minSize);
    updateStyle();
    emit changeSize(QStringLiteral("Min"));
}

void ContainerImpl::showEvent(QShowEvent* event)
{
    ContainerBase::showEvent(event);
    resizeBorderFrame(size());
}

void ContainerImpl::updateStyle()
{
    QFrame* frame = containerFrame();
    QFrame* border = borderFrame();
    if (!frame || !border)
        return;

    const QString background = ApplicationOptions::noTransparency() ? QStringLiteral("black")
                                                                    : QStringLiteral("rgba(0,0,0,215)");
    if (m_sizeName == QLatin1String("Max")) {
        border->setStyleSheet(QStringLiteral("    QFrame#BorderFrame {        border: none;        border-radius: 0px;\t     background-color: ")
                              + background + QStringLiteral(";        margin: 0px;    }"));
        if (ApplicationOptions::isPortraitResolution()
            || ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape)
            frame->setContentsMargins(0, 40, 0, 40);
        else if (ApplicationOptions::isHandheld())
            frame->setContentsMargins(0, 0, 0, 0);
        else
            frame->setContentsMargins(30, 40, 30, 0);
    } else {
        const QString line = m_border ? QStringLiteral("2px solid ") + CSS::border() : QStringLiteral("none");
        border->setStyleSheet(QStringLiteral("    QFrame#BorderFrame {        border: ") + line
                              + QStringLiteral(";        border-radius: 10px;\t     background-color: ") + background
                              + QStringLiteral(";        margin: 0px;    }"));
        frame->setContentsMargins(0, 0, 0, 0);
    }
}

void ContainerImpl::setBorder(bool border)
{
    m_border = border;
    updateStyle();
}

QFrame* ContainerImpl::containerFrame() const
{
    return findChild<QFrame*>(QStringLiteral("Container"), Qt::FindDirectChildrenOnly);
}

QFrame* ContainerImpl::borderFrame() const
{
    return findChild<QFrame*>(QStringLiteral("BorderFrame"), Qt::FindDirectChildrenOnly);
}

void ContainerImpl::resizeBorderFrame(const QSize& size)
{
    if (QFrame* border = borderFrame())
        border->resize(size);
}
