#include "WindowDrawer.h"

#include "CSS.h"
#include "ContainerImpl.h"
#include "RotatableLabel.h"

#include <QDebug>
#include <QEasingCurve>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLayout>
#include <QMouseEvent>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QVBoxLayout>

namespace {

constexpr int slideDuration = 550;

bool isDockPosition(int position)
{
    return position == WindowDrawer::Left || position == WindowDrawer::Right;
}

// The tab's outer edge is rounded; its edge towards the panel is open, so that tab and
// panel read as one shape.
QString drawerStyle(bool rightSide, bool atScreenEdge)
{
    const QString line = QStringLiteral("2px solid ") + CSS::border();
    const QString outer = rightSide ? QStringLiteral("right") : QStringLiteral("left");
    const QString open = rightSide ? QStringLiteral("left") : QStringLiteral("right");
    const QString corners = QStringLiteral("        border-top-") + outer + QStringLiteral("-radius: 10px;        border-bottom-")
        + outer + QStringLiteral("-radius: 10px;");

    QString tabBackground;
    QString caption;
    QString panelEdges;
    if (atScreenEdge) {
        tabBackground = QStringLiteral("rgba(0,0,0,215)");
        caption = QStringLiteral("        background-color: transparent;        border: none;        min-height: 250px;        padding-")
            + outer + QStringLiteral(": 3px;");
        panelEdges = QStringLiteral("        border-") + open + QStringLiteral("-width: 0px;");
    } else {
        tabBackground = QStringLiteral("qlineargradient(x1:") + (rightSide ? QStringLiteral("1") : QStringLiteral("0"))
            + QStringLiteral(", y1:0, x2:") + (rightSide ? QStringLiteral("0") : QStringLiteral("1"))
            + QStringLiteral(", y2:0, stop:0 ") + CSS::gradientDark() + QStringLiteral(", stop:0.7 ") + CSS::gradientMiddle()
            + QStringLiteral(", stop:1 ") + CSS::gradientLight() + QStringLiteral(")");
        caption = QStringLiteral("        background-color: rgba(0,0,0,255);        border: ") + line + QStringLiteral(";") + corners
            + QStringLiteral("        min-height: 150px;");
        panelEdges = QStringLiteral("        border-left-width: 0px;        border-right-width: 0px;");
    }

    return QStringLiteral("    QPushButton#handle_type {        background-color: ") + CSS::invisArea()
        + QStringLiteral(";        border: none;    }")
        + QStringLiteral("    QLabel#handle_type {        background: ") + tabBackground + QStringLiteral(";        border: ")
        + line + QStringLiteral(";") + corners + QStringLiteral("        border-") + open + QStringLiteral("-width: 0px;    }")
        + QStringLiteral("    QFrame#handle_label {") + caption + QStringLiteral("    }")
        + QStringLiteral("    QFrame#container_type {        background-color: rgba(0,0,0,215);        border: ") + line
        + QStringLiteral(";") + panelEdges + QStringLiteral("    }");
}

// Deletes what a replaced layout held, so that the old contents do not linger unmanaged.
void deleteLayoutAndContents(QLayout* layout)
{
    while (QLayoutItem* item = layout->takeAt(0)) {
        if (QLayout* inner = item->layout())
            deleteLayoutAndContents(inner);
        else
            delete item->widget();
        if (!item->layout())
            delete item;
    }
    delete layout;
}

} // namespace

QString WindowDrawer::windowCaption() const
{
    return m_caption ? m_caption->text() : QString();
}

WindowDrawer::WindowDrawer(QWidget* parent, ContainerImpl* container, DockPosition_t position, const QString& title)
    : QFrame(parent)
    , m_container(container)
{
    setObjectName(QStringLiteral("TopContainerObject"));
    if (!parent)
        setWindowFlags(Qt::FramelessWindowHint);
    if (!container)
        qDebug() << "UserInterface - Drawer created without a container:" << title;
    if (!isDockPosition(position)) {
        qDebug() << "UserInterface - Unknown drawer dock position:" << int(position) << "on drawer:" << title;
        position = Right;
    }
    m_position = m_homePosition = position;

    m_rightBesideStyle = drawerStyle(true, false);
    m_leftBesideStyle = drawerStyle(false, false);
    m_rightScreenStyle = drawerStyle(true, true);
    m_leftScreenStyle = drawerStyle(false, true);

    m_outerFrame = new QFrame(this);
    auto* outerLayout = new QVBoxLayout(m_outerFrame);
    outerLayout->setSpacing(0);
    outerLayout->setContentsMargins(0, 0, 0, 0);

    m_innerFrame = new QFrame(m_outerFrame);
    m_innerFrame->setMinimumHeight(100);
    m_innerFrame->setContentsMargins(0, 10, 0, 10);
    outerLayout->addWidget(m_innerFrame);
    m_innerLayout = new QHBoxLayout(m_innerFrame);
    m_innerLayout->setSpacing(0);
    m_innerLayout->setContentsMargins(0, 0, 0, 0);

    m_handleButton = new QPushButton(m_innerFrame);
    m_handleButton->setObjectName(QStringLiteral("handle_type"));
    m_handleButton->setCheckable(true);
    m_handleButton->setFocusPolicy(Qt::NoFocus);
    m_handleButton->setFixedWidth(m_handleWidth);
    m_handleButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    m_handleLayout = new QHBoxLayout(m_handleButton);
    m_handleLayout->setSpacing(0);
    m_handleLayout->setContentsMargins(0, 0, 0, 0);

    // The visible tab; the rest of the button's width is a transparent touch margin.
    auto* tab = new QLabel(m_handleButton);
    tab->setObjectName(QStringLiteral("handle_type"));
    tab->setFixedWidth(m_captionWidth);
    m_handleLayout->addWidget(tab);
    m_handleLayout->addStretch();
    auto* tabLayout = new QVBoxLayout(tab);
    tabLayout->setSpacing(0);
    tabLayout->setContentsMargins(0, 0, 0, 0);
    tabLayout->addStretch();
    auto* captionFrame = new QFrame(tab);
    captionFrame->setObjectName(QStringLiteral("handle_label"));
    captionFrame->setFixedWidth(m_captionWidth);
    // Touches on the caption belong to the tab.
    captionFrame->setAttribute(Qt::WA_TransparentForMouseEvents);
    tabLayout->addWidget(captionFrame);
    tabLayout->addSpacing(20);
    auto* captionLayout = new QVBoxLayout(captionFrame);
    captionLayout->setSpacing(0);
    captionLayout->setContentsMargins(0, 0, 0, 0);
    captionLayout->addStretch();
    m_caption = new RotatableLabel(captionFrame);
    m_caption->setMinimumWidth(26);
    m_caption->setFontColor(QStringLiteral("white"));
    m_caption->setText(title);
    captionLayout->addWidget(m_caption);

    m_contentsFrame = new QFrame(m_innerFrame);
    m_contentsFrame->setObjectName(QStringLiteral("container_type"));
    m_contentsFrame->setMinimumSize(380, 100);

    m_slideAnimation = new QPropertyAnimation(this, "geometry", this);
    m_slideAnimation->setDuration(slideDuration);
    m_slideAnimation->setEasingCurve(QEasingCurve::OutQuart);

    const QRect beside = containerRect();
    if (followedContainer())
        m_height = beside.height();
    updateDrawerPosition(m_position);
    m_outerFrame->setGeometry(0, 0, contentsWidth() + m_handleWidth, m_height);
    QFrame::setGeometry(beside.x() + beside.width(), beside.y(), m_handleWidth, m_height);
    m_innerFrame->setMinimumHeight(m_height);
    m_innerFrame->setMaximumHeight(m_height);
    updateGeometry(m_position, BesideContainer);

    connect(m_handleButton, &QPushButton::toggled, this, &WindowDrawer::animateContainer);
    connect(m_slideAnimation, &QAbstractAnimation::finished, this, &WindowDrawer::animationFinished);
    if (container) {
        connect(container, &QObject::destroyed, this, &QObject::deleteLater);
        container->installEventFilter(this);
    }
    hide();
}

QWidget* WindowDrawer::getContainerFrame()
{
    if (auto* frame = m_contentsFrame->findChild<QFrame*>(QStringLiteral("ContainerFrame")))
        return frame;
    return m_contentsFrame;
}

void WindowDrawer::setDrawerLayout(QLayout* layout)
{
    if (!layout) {
        qDebug() << "WindowDrawer - No layout given for drawer:" << m_caption->labelText();
        return;
    }
    if (QLayout* previous = m_contentsFrame->layout())
        deleteLayoutAndContents(previous);
    m_contentsFrame->setLayout(layout);

    auto* form = m_contentsFrame->findChild<QFrame*>(QStringLiteral("ContainerFrame"));
    if (!form) {
        qDebug() << "WindowDrawer - Failed to find ContainerFrame";
        return;
    }
    const int formWidth = form->minimumWidth();
    // The panel's fixed width holds the form from now on.
    form->setMinimumSize(0, 0);
    setWidth(formWidth);
}

void WindowDrawer::setDrawerOpened(bool open)
{
    m_handleButton->setChecked(open);
}

void WindowDrawer::setWidth(int width)
{
    if (width <= m_handleWidth) {
        qDebug() << "WindowDrawer - Width leaves no room beside the handle:" << width;
        return;
    }
    stopSlides();
    m_width = width;
    m_innerFrame->setFixedWidth(width);
    m_contentsFrame->setFixedWidth(width - m_handleWidth);
    m_outerFrame->resize(width, m_height);
    updateGeometry(m_position, m_screenMode ? ScreenEdge : BesideContainer);
}

void WindowDrawer::setHeight(int height)
{
    m_height = qMax(0, m_screenMode ? height - m_screenHeightMargin : height);
    m_outerFrame->resize(m_outerFrame->width(), m_height);
    resize(this->width(), m_height);
    m_innerFrame->setMinimumHeight(m_height);
    m_innerFrame->setMaximumHeight(m_height);
    applyStyle();
}

void WindowDrawer::moveDrawer()
{
    if (!followedContainer())
        return;
    if (slideRunning()) {
        // The container moved under a running slide: finish it where it was going.
        stopSlides();
        updateGeometry(m_position, m_screenMode ? ScreenEdge : BesideContainer);
    }
    const int y = m_screenMode ? parentArea().y() + 22 : containerRect().y();
    move(drawerX(!m_contentsHidden, m_screenMode), y);
}

int WindowDrawer::getPositionOffset() const
{
    const int x = drawerX(!m_contentsHidden, m_screenMode);
    const int containerX = containerRect().x();
    return m_homePosition == Right ? x - containerX : containerX - x;
}

void WindowDrawer::updateDrawerPosition(const DockPosition_t& position)
{
    if (!isDockPosition(position)) {
        qDebug() << "UserInterface - Unknown drawer dock position:" << int(position) << "on drawer:" << m_caption->labelText();
        return;
    }
    m_position = position;
    m_innerLayout->removeWidget(m_handleButton);
    m_innerLayout->removeWidget(m_contentsFrame);
    // The tab is always the outer edge, with its caption reading towards the panel.
    if (position == Right) {
        m_innerLayout->addWidget(m_contentsFrame);
        m_innerLayout->addWidget(m_handleButton);
        m_handleLayout->setDirection(QBoxLayout::LeftToRight);
        m_caption->setDegrees(90);
    } else {
        m_innerLayout->addWidget(m_handleButton);
        m_innerLayout->addWidget(m_contentsFrame);
        m_handleLayout->setDirection(QBoxLayout::RightToLeft);
        m_caption->setDegrees(270);
    }

    const int fontSize = m_screenMode ? 18 : 12;
    m_caption->setFontSize(fontSize);
    // Rotated, the caption's length runs along the label's height.
    QFont font = m_caption->font();
    font.setPixelSize(fontSize);
    m_caption->setMinimumHeight(QFontMetrics(font).horizontalAdvance(m_caption->text()) + 8);
    m_caption->update();

    applyStyle();
}

void WindowDrawer::updateGeometry(const DockPosition_t& position, const UpdateMode_t& mode)
{
    if (!isDockPosition(position) || mode < BesideContainer || mode > SideChange) {
        qDebug() << "UserInterface - Unknown drawer layout:" << int(position) << int(mode) << "on drawer:"
                 << m_caption->labelText();
        return;
    }
    // A side change happens only while the drawer is closed.
    const bool open = mode == SideChange ? false : m_open;
    const int x = drawerX(open, mode == ScreenEdge);
    const int width = open ? contentsWidth() + m_handleWidth : m_handleWidth;
    QFrame::setGeometry(x, this->y(), width, this->height());
    placeOuterFrame(position, open);
}

void WindowDrawer::animateLeftDrawer(bool open)
{
    stopSlides();
    const QRect previous = geometry();
    const QRect target(drawerX(open, m_screenMode), y(), open ? contentsWidth() + m_handleWidth : m_handleWidth, height());
    placeOuterFrame(Left, open);
    QFrame::setGeometry(target);
    m_slideAnimation->setStartValue(previous);
    m_slideAnimation->setEndValue(target);
    m_slideAnimation->start();
}

void WindowDrawer::animateRightDrawer(bool open)
{
    stopSlides();
    const int contents = contentsWidth();
    auto* slide = new QParallelAnimationGroup(this);
    const auto addPart = [&](QWidget* target, const QRect& to) {
        auto* part = new QPropertyAnimation(target, "geometry", slide);
        part->setDuration(slideDuration);
        part->setEasingCurve(QEasingCurve::OutQuart);
        part->setStartValue(target->geometry());
        part->setEndValue(to);
        slide->addAnimation(part);
    };
    // The panel slides out from behind the tab while the drawer widens to show it.
    addPart(m_outerFrame, QRect(QPoint(open ? 0 : -contents, 0), m_outerFrame->size()));
    addPart(this, QRect(pos(), QSize(open ? contents + m_handleWidth : m_handleWidth, height())));
    connect(slide, &QAbstractAnimation::finished, this, &WindowDrawer::animationFinished);
    m_rightSlide = slide;
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

ContainerImpl* WindowDrawer::parentWindow() const
{
    return followedContainer();
}

QSize WindowDrawer::sizeHint() const
{
    return QSize(m_width, m_height);
}

void WindowDrawer::changeSize(QString size)
{
    const bool toMin = size == QLatin1String("Min");
    if (!toMin && size != QLatin1String("Max") && size != QLatin1String("Thumb")) {
        qDebug() << "UserInterface - Unknown size for drawer:" << size << "on drawer:" << m_caption->labelText();
        return;
    }
    stopSlides();
    m_sideSwapped = false;
    if (toMin) {
        if (m_screenMode) {
            m_screenMode = false;
            setHeight(m_height + m_screenHeightMargin);
        }
        updateDrawerPosition(m_homePosition);
        updateGeometry(m_homePosition, BesideContainer);
    } else {
        if (!m_screenMode) {
            m_screenMode = true;
            setHeight(m_height);
        }
        // The tab faces the middle of the screen.
        const DockPosition_t side = m_homePosition == Right ? Left : Right;
        updateDrawerPosition(side);
        updateGeometry(side, ScreenEdge);
    }
    moveDrawer();
}

void WindowDrawer::animateContainer(bool enable)
{
    m_open = enable;
    m_contentsHidden = !enable;
    const QRect area = parentArea();
    const int contents = contentsWidth();

    if (!enable) {
        // Back on the side it opened on; a swapped side is undone when the slide ends.
        if (m_position == Right)
            animateRightDrawer(false);
        else
            animateLeftDrawer(false);
    } else if (m_position == Right) {
        if (!m_screenMode && x() + m_handleWidth + contents > area.x() + area.width()) {
            m_sideSwapped = true;
            updateDrawerPosition(Left);
            updateGeometry(Left, SideChange);
            animateLeftDrawer(true);
        } else {
            animateRightDrawer(true);
        }
    } else {
        if (!m_screenMode && containerRect().x() - m_handleWidth - contents < area.x()) {
            m_sideSwapped = true;
            updateDrawerPosition(Right);
            updateGeometry(Right, SideChange);
            animateRightDrawer(true);
        } else {
            animateLeftDrawer(true);
        }
    }

    if (ContainerImpl* container = followedContainer())
        container->raise();
    QFrame::raise();
    if (!enable)
        emit WindowClosed();
}

void WindowDrawer::move(int x, int y)
{
    QFrame::move(x, y);
    emit newPos(QPoint(x, y));
}

bool WindowDrawer::eventFilter(QObject* watched, QEvent* event)
{
    // Animated state changes move the container by its geometry, not through move();
    // at the screen edge the drawer does not depend on where the container is.
    if (watched == m_container && event->type() == QEvent::Move && !m_screenMode)
        moveDrawer();
    return QFrame::eventFilter(watched, event);
}

void WindowDrawer::mousePressEvent(QMouseEvent* event)
{
    QFrame::mousePressEvent(event);
    if (ContainerImpl* container = followedContainer())
        container->raise();
}

void WindowDrawer::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    moveDrawer();
}

void WindowDrawer::hideEvent(QHideEvent* event)
{
    QFrame::hideEvent(event);
    emit WindowClosed();
}

void WindowDrawer::animationFinished()
{
    if (m_open || m_screenMode || !m_sideSwapped)
        return;
    m_sideSwapped = false;
    updateDrawerPosition(m_homePosition);
    updateGeometry(m_homePosition, SideChange);
}

int WindowDrawer::contentsWidth() const
{
    return m_contentsFrame->minimumWidth();
}

ContainerImpl* WindowDrawer::followedContainer() const
{
    // A container's base class moves it back to its saved place while it is destroyed;
    // by then it is no ContainerImpl any more, which qobject_cast knows and a cast of
    // the pointer would not.
    return qobject_cast<ContainerImpl*>(m_container.data());
}

QRect WindowDrawer::containerRect() const
{
    const ContainerImpl* container = followedContainer();
    if (!container)
        return QRect();
    if (container->parentWidget() == parentWidget())
        return container->geometry();
    QPoint topLeft = container->mapToGlobal(QPoint(0, 0));
    if (parentWidget())
        topLeft = parentWidget()->mapFromGlobal(topLeft);
    return QRect(topLeft, container->size());
}

QRect WindowDrawer::parentArea() const
{
    if (parentWidget())
        return parentWidget()->rect();
    if (QScreen* screen = QGuiApplication::primaryScreen())
        return screen->geometry();
    return QRect();
}

int WindowDrawer::drawerX(bool open, bool atScreenEdge) const
{
    const int contents = open ? contentsWidth() : 0;
    if (atScreenEdge) {
        const QRect area = parentArea();
        return m_position == Right ? area.x() : area.x() + area.width() - m_handleWidth - contents;
    }
    const QRect beside = containerRect();
    const int rightEdge = beside.x() + beside.width();
    if (m_homePosition == Right) {
        // Without room on the right it opens over the container's right edge, inside
        // the container's 2-pixel margin.
        if (m_sideSwapped)
            return rightEdge - m_handleWidth - (open ? contents + 2 : 0);
        return rightEdge;
    }
    if (m_sideSwapped)
        return beside.x() + 2;
    return beside.x() - m_handleWidth - contents;
}

void WindowDrawer::placeOuterFrame(const DockPosition_t& position, bool open)
{
    // With the tab at the right end, a closed drawer shows the tab by pushing the panel
    // out of its window to the left.
    const int x = position == Right && !open ? -contentsWidth() : 0;
    m_outerFrame->setGeometry(x, 0, contentsWidth() + m_handleWidth, m_height);
}

void WindowDrawer::applyStyle()
{
    QString sheet;
    if (m_position == Right)
        sheet = m_screenMode ? m_rightScreenStyle : m_rightBesideStyle;
    else
        sheet = m_screenMode ? m_leftScreenStyle : m_leftBesideStyle;

    // On a low container the caption frame's minimum would push the caption out of the
    // tab: the tab loses the frame's margins, the spacing under the caption and the
    // caption frame's border.
    const int captionRoom = qMax(0, m_height - 44);
    const QString captionMinimum = m_screenMode ? QStringLiteral("min-height: 250px;") : QStringLiteral("min-height: 150px;");
    const int styledMinimum = m_screenMode ? 250 : 150;
    if (captionRoom < styledMinimum)
        sheet.replace(captionMinimum, QStringLiteral("min-height: %1px;").arg(captionRoom));
    if (sheet != styleSheet())
        setStyleSheet(sheet);
}

bool WindowDrawer::slideRunning() const
{
    return m_slideAnimation->state() != QAbstractAnimation::Stopped
        || (m_rightSlide && m_rightSlide->state() != QAbstractAnimation::Stopped);
}

void WindowDrawer::stopSlides()
{
    m_slideAnimation->stop();
    if (m_rightSlide)
        m_rightSlide->stop();
}
