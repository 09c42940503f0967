#include "ContainerBase.h"

#include "ApplicationOptions.h"
#include "QTZScalableLabel.h"

#include <QCoreApplication>
#include <QEasingCurve>
#include <QEvent>
#include <QHideEvent>
#include <QLayout>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QShowEvent>

ContainerBase::ContainerBase(QWidget* parent)
    : QFrame(parent)
    , m_baseFrame(new QFrame(this))
    , m_savedGeometry(geometry())
    , m_titleLabel(new QTZScalableLabel(QStringLiteral("ContainerTitle"), this))
{
    m_baseFrame->setObjectName(QStringLiteral("BaseFrame"));
    m_titleLabel->setObjectName(QStringLiteral("ContainerTitle"));
    m_titleLabel->hide();
    setFocusPolicy(Qt::NoFocus);

    connect(this, &ContainerBase::hideContainer, this, &QWidget::hide);
    connect(this, &ContainerBase::WindowClosed, this, &ContainerBase::restoreLocation);
}

ContainerBase::~ContainerBase()
{
    emit WindowClosed();
}

void ContainerBase::init()
{
}

QWidget* ContainerBase::getContainerFrame()
{
    if (auto* frame = m_baseFrame->findChild<QFrame*>(QStringLiteral("ContainerFrame")))
        return frame;
    return m_baseFrame;
}

void ContainerBase::setLayout(QLayout* layout)
{
    m_baseFrame->setLayout(layout);
}

void ContainerBase::setLayout(QLayout* layout, bool)
{
    QWidget::setLayout(layout);
}

void ContainerBase::setWindowTitle(const QString& title, int instNum)
{
    m_title = title;
    m_instanceNumber = instNum;
    retranslate();
    m_titleLabel->show();
}

void ContainerBase::setTitleTranslated(bool translated)
{
    m_titleTranslated = translated;
    retranslate();
}

void ContainerBase::retranslate()
{
    QString text = m_title;
    if (m_titleTranslated && QString::fromLatin1(m_title.toLatin1()) == m_title) {
        // Translation files hold their source texts as UTF-8, so the title is looked up
        // by those bytes; its Latin-1 bytes would not find a title such as "Größe".
        text = QCoreApplication::translate("QObject", m_title.toUtf8().constData());
    }
    if (m_instanceNumber > 1)
        text += QLatin1Char(' ') + QString::number(m_instanceNumber);
    m_titleLabel->setText(text);

    // The Qt title is what the window shows, so that setting the plain title through
    // QWidget (as Designer and scripts do) is a change even when the text is the same,
    // and resets the instance number.
    m_syncingWindowTitle = true;
    QWidget::setWindowTitle(text);
    m_syncingWindowTitle = false;
}

bool ContainerBase::isVisible() const
{
    return m_baseFrame->isVisible();
}

void ContainerBase::showEvent(QShowEvent* event)
{
    emit WindowOpened();
    QFrame::showEvent(event);

    if (ApplicationOptions::animationSwitchedOn()) {
        // The container opens from its middle outwards.
        const QRect target = geometry();
        auto* opening = new QParallelAnimationGroup(this);
        const auto addPart = [&](const QByteArray& property, const QVariant& from, const QVariant& to) {
            auto* part = new QPropertyAnimation(this, property, opening);
            part->setDuration(100);
            part->setEasingCurve(QEasingCurve::InQuad);
            part->setStartValue(from);
            part->setEndValue(to);
            opening->addAnimation(part);
        };
        addPart("minimumWidth", 2, target.width());
        addPart("maximumWidth", 2, target.width());
        addPart("geometry", target.translated(target.width() / 2, 0), target);
        opening->start(QAbstractAnimation::DeleteWhenStopped);
    }

    raise();
}

void ContainerBase::hideEvent(QHideEvent* event)
{
    QFrame::hideEvent(event);
    emit WindowClosed();
}

void ContainerBase::raise()
{
    QWidget::raise();
    emit raiseContainer();
}

bool ContainerBase::close()
{
    restoreLocation();
    hide();
    return true;
}

void ContainerBase::saveLocation()
{
    m_savedGeometry = geometry();
}

void ContainerBase::restoreLocation()
{
    setGeometry(m_savedGeometry);
}

void ContainerBase::setLocation(int x, int y)
{
    m_savedGeometry = QRect(QPoint(x, y), size());
}

void ContainerBase::setShown(bool visible)
{
    if (visible)
        show();
    else
        close();
}

void ContainerBase::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowTitleChange && !m_syncingWindowTitle)
        setWindowTitle(windowTitle(), 0);
    else if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}
