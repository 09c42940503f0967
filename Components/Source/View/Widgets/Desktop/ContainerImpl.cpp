#include "ContainerImpl.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "ContainerControlImpl.h"
#include "ContainerHandleImpl.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "QTZScalableLabel.h"
#include "SystemModule.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEasingCurve>
#include <QFrame>
#include <QHBoxLayout>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QResizeEvent>
#include <QScreen>
#include <QShowEvent>
#include <QSignalTransition>
#include <QState>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace {

// Drag steps closer together than this are dropped (about forty a second at most).
constexpr qint64 minimumDragStepMs = 25;
// How near (Manhattan distance, in pixels) a drop must come to a grid point to land on it.
constexpr int snapDistance = 30;
constexpr int stateAnimationMs = 50;

QString titleFontSize()
{
    if (ApplicationOptions::isPortraitResolution())
        return QStringLiteral("22");
    if (ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape)
        return QStringLiteral("18");
    return QStringLiteral("26");
}

// A transition's signal as the machine keeps it: with the code prefix of the SIGNAL()
// macro when it was given that way, without it when given as a member pointer.
QByteArray plainSignature(QByteArray signal)
{
    if (!signal.isEmpty() && signal.at(0) >= '0' && signal.at(0) <= '9')
        signal.remove(0, 1);
    return signal;
}

} // namespace

ContainerImpl::ContainerImpl(QWidget* parent)
    : ContainerBase(parent)
{
    setObjectName(QStringLiteral("TopContainerObject"));
    // Sheets first and nothing with a sheet moved afterwards: a widget given a sheet, or
    // moved under a new parent, has its whole subtree polished again at once, and each of
    // the cluster's image rules reads its SVG file twice.
    setStyleSheet(QStringLiteral("    QPushButton#ContainerHandle {        border-bottom-left-radius: 10px;        border: none;        background-image: url(:/images/vbar.png);        background-repeat: no-repeat;        background-position: center center;        min-width: 20px;        max-width: 20px;    }    QLabel#ContainerTitle {        margin-left: 1px;        color: #fff;        font: ")
                  + titleFontSize()
                  + QStringLiteral("px;    }    QPushButton#TopContainerObject {        border: none;         background-color: transparent;     }"));

    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("Container"));
    m_baseFrame->setParent(frame);
    m_titleLabel->setParent(frame);
    m_containerControl = new ContainerControlImpl(this, frame);
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setSpacing(0);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->addWidget(m_baseFrame);

    auto* titleRow = new QHBoxLayout;
    titleRow->setSpacing(0);
    titleRow->setContentsMargins(0, 0, 0, 0);
    titleRow->addWidget(m_titleLabel, 1);
    titleRow->addStretch();
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

    m_containerHandle = new ContainerHandleImpl(this);
    m_containerHandle->hide();
    // A drag by the handle ends like one by the container itself.
    connect(m_containerHandle, &ContainerHandleImpl::updatePosition, this, [this](QWidget*, QPoint start) {
        saveLocation();
        emit updatePosition(this, start);
    });

    m_stateMin = new QState(&m_stateMachine);
    m_stateMin->setObjectName(QStringLiteral("Min"));
    m_stateMax = new QState(&m_stateMachine);
    m_stateMax->setObjectName(QStringLiteral("Max"));
    m_stateThumb = new QState(&m_stateMachine);
    m_stateThumb->setObjectName(QStringLiteral("Thumb"));
    m_stateMachine.setInitialState(m_stateMin);

    m_transitions << addGrowTransition(m_stateMin, m_stateMax) << addGrowTransition(m_stateThumb, m_stateMin);
    m_transitions << m_stateMax->addTransition(shrinkButton(), &QAbstractButton::clicked, m_stateMin);
    m_transitions << addClosedTransition(m_stateMax, m_stateMin) << addClosedTransition(m_stateThumb, m_stateMin);
    m_stateMin->addTransition(this, &ContainerImpl::setStateMax, m_stateMax);
    m_stateMax->addTransition(this, &ContainerImpl::setStateMin, m_stateMin);

    connect(m_stateMin, &QState::entered, this, &ContainerImpl::initStateMin);
    connect(m_stateMax, &QState::entered, this, &ContainerImpl::initStateMax);
    connect(m_stateThumb, &QState::entered, this, &ContainerImpl::initStateThumb);

    resize(m_minSize);
    saveLocation();
    updateStyle();
}

ContainerImpl::~ContainerImpl()
{
    // ~ContainerBase emits WindowClosed() once this class is gone; the controls would
    // answer by restoring through this class.
    disconnect(this, nullptr, m_containerControl, nullptr);
    if (m_geometryAnimation)
        m_geometryAnimation->stop();
    delete m_configurationDrawer;
    delete m_secondDrawer;
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
    if (m_stateMachine.isRunning()) {
        qDebug() << "UserInterface - ContainerImpl::init called again, the size states run already on screen"
                 << m_title;
        return;
    }
    m_stateMachine.start();
    // The machine enters its initial state from the event loop; owners show and place
    // the container right after this call and expect it at the size of that state.
    QCoreApplication::sendPostedEvents(&m_stateMachine, QEvent::MetaCall);
}

QWidget* ContainerImpl::getContainerControl() const
{
    return m_containerControl;
}

void ContainerImpl::enableState(QString state)
{
    if (state != QLatin1String("Thumb")) {
        qDebug() << "UserInterface - Attempting to enable unknown state:" << state << "on screen" << m_title;
        recountOptionalStates();
        return;
    }
    m_thumbEnabled = true;
    if (QSignalTransition* maxToMin = findTransition(growButton(), m_stateMax, m_stateMin))
        removeTransition(maxToMin);
    if (m_maxEnabled && !findTransition(growButton(), m_stateMax, m_stateThumb))
        m_transitions << addGrowTransition(m_stateMax, m_stateThumb);
    // Without "Max", grow toggles between "Min" and "Thumb", whichever was changed first.
    if (!m_maxEnabled && !findTransition(growButton(), m_stateMin, m_stateThumb))
        m_transitions << addGrowTransition(m_stateMin, m_stateThumb);

    addRequestTransition(m_stateMin, &ContainerImpl::setStateThumb, m_stateThumb);
    if (m_maxEnabled)
        addRequestTransition(m_stateMax, &ContainerImpl::setStateThumb, m_stateThumb);
    addRequestTransition(m_stateThumb, &ContainerImpl::setStateMin, m_stateMin);
    if (m_maxEnabled)
        addRequestTransition(m_stateThumb, &ContainerImpl::setStateMax, m_stateMax);

    recountOptionalStates();
    if (m_optionalStateCount >= 1)
        growButton()->show();
}

void ContainerImpl::disableState(QString state)
{
    if (state == QLatin1String("Max")) {
        m_maxEnabled = false;
        for (const auto& fromTo : {qMakePair(m_stateMax, m_stateMin), qMakePair(m_stateMax, m_stateThumb),
                                   qMakePair(m_stateMin, m_stateMax)}) {
            if (QSignalTransition* transition = findTransition(growButton(), fromTo.first, fromTo.second))
                removeTransition(transition);
        }
        // Requests must not reach "Max" either.
        for (QState* from : {m_stateMin, m_stateThumb}) {
            const QList<QAbstractTransition*> transitions = from->transitions();
            for (QAbstractTransition* transition : transitions) {
                auto* signalTransition = qobject_cast<QSignalTransition*>(transition);
                if (signalTransition && signalTransition->targetState() == m_stateMax
                    && signalTransition->senderObject() == this)
                    removeTransition(signalTransition);
            }
        }
        if (m_thumbEnabled) {
            if (!findTransition(growButton(), m_stateMin, m_stateThumb))
                m_transitions << addGrowTransition(m_stateMin, m_stateThumb);
            if (!findTransition(growButton(), m_stateThumb, m_stateMin))
                m_transitions << addGrowTransition(m_stateThumb, m_stateMin);
        }
    } else {
        qDebug() << "UserInterface - Attempting to disable unknown/unallowed state:" << state << "on screen" << m_title;
    }

    recountOptionalStates();
    if (m_optionalStateCount == 0 && !m_thumbEnabled) {
        growButton()->hide();
        shrinkButton()->hide();
    }
}

void ContainerImpl::configureState(QString state, QString params)
{
    const bool thumb = state == QLatin1String("Thumb");
    if (!thumb && state != QLatin1String("Min")) {
        qDebug() << "UserInterface - Attempting to configure unknown state:" << state << "with params:" << params
                 << "on screen" << m_title;
        return;
    }
    const QStringList parts = params.split(QLatin1Char('|'));
    bool widthRead = false;
    bool heightRead = false;
    const int width = parts.size() >= 2 ? parts.at(0).trimmed().toInt(&widthRead) : 0;
    const int height = parts.size() >= 2 ? parts.at(1).trimmed().toInt(&heightRead) : 0;
    // A size that is not two positive numbers would leave nothing of the window to touch.
    if (!widthRead || !heightRead || width <= 0 || height <= 0) {
        qDebug() << "UserInterface - Improper params passed in, should be \"width|height\"" << state << params << m_title;
        return;
    }
    (thumb ? m_thumbSize : m_minSize) = QSize(width, height);
}

void ContainerImpl::setDefaultState(QString state)
{
    QState* target = stateNamed(state);
    if (!target || (target == m_stateMax && !m_maxEnabled))
        return;

    const QList<QState*> states{m_stateMin, m_stateMax, m_stateThumb};
    for (QState* other : states) {
        if (other != target && !findTransition(this, other, target))
            m_transitions << addClosedTransition(other, target);
    }
    auto* previous = qobject_cast<QState*>(m_stateMachine.initialState());
    if (previous && previous != target) {
        for (QState* from : states) {
            if (from == previous)
                continue;
            while (QSignalTransition* closing = findTransition(this, from, previous))
                removeTransition(closing);
        }
    }
    m_stateMachine.setInitialState(target);

    if (target == m_stateMin)
        emit setStateMin();
    else if (target == m_stateMax)
        emit setStateMax();
    else
        emit setStateThumb();
}

void ContainerImpl::showSendToBackButton(bool show)
{
    if (auto* button = findChild<QPushButton*>(QStringLiteral("ContainerToBack")))
        button->setVisible(show);
}

void ContainerImpl::setState(QString state)
{
    if (state == QLatin1String("Min"))
        emit setStateMin();
    else if (state == QLatin1String("Max"))
        emit setStateMax();
    else if (state == QLatin1String("Thumb"))
        emit setStateThumb();
    else
        qDebug() << "UserInterface - Invalid state specified for ContainerImpl:" << state;
}

void ContainerImpl::move(const QPoint& position)
{
    move(position.x(), position.y());
}

void ContainerImpl::move(int x, int y)
{
    // A size change still on its way would carry the container back to where it was
    // heading; it ends first, and the move wins.
    finishGeometryChange();
    QWidget::move(x, y);
    emit newPos(QPoint(x, y));
    moveDrawers(x, y);
}

void ContainerImpl::resizeDrawers()
{
    for (WindowDrawer* drawer : {m_configurationDrawer.data(), m_secondDrawer.data()}) {
        if (drawer) {
            drawer->setHeight(height());
            drawer->moveDrawer();
        }
    }
}

WindowDrawer* ContainerImpl::getDrawer(WindowDrawer::DockPosition_t position) const
{
    return position != WindowDrawer::Left ? m_configurationDrawer.data() : m_secondDrawer.data();
}

WindowDrawer* ContainerImpl::addDrawer(WindowDrawer::DockPosition_t position, const QString& title)
{
    if (position != WindowDrawer::Left && position != WindowDrawer::Right) {
        qDebug() << "UserInterface - Undefined drawer position:" << int(position) << "for drawer:" << title
                 << "on window:" << m_title;
        return nullptr;
    }
    QPointer<WindowDrawer>& drawer = position == WindowDrawer::Right ? m_configurationDrawer : m_secondDrawer;
    if (drawer) {
        qDebug() << "UserInterface - Drawer already present, not adding:" << title << "on window:" << m_title;
        return drawer;
    }
    drawer = new WindowDrawer(parentWidget(), this, position, title);
    connect(this, &ContainerBase::changeSize, drawer.data(), &WindowDrawer::changeSize);
    // A drawer added to a maximized container starts at the screen edge.
    if (!m_stateName.isEmpty() && m_stateName != QLatin1String("Min"))
        drawer->changeSize(m_stateName);
    drawer->setHeight(height());
    if (isVisible())
        drawer->show();
    drawer->moveDrawer();
    return drawer;
}

void ContainerImpl::setDrawerLayout(QLayout* layout)
{
    // The drawer's caption translates itself, in the caption's context.
    static const char* const caption = QT_TRANSLATE_NOOP("RotatableLabel", "Configuration");
    WindowDrawer* drawer = m_configurationDrawer ? m_configurationDrawer.data()
                                                 : addDrawer(WindowDrawer::Right, QLatin1String(caption));
    drawer->setDrawerLayout(layout);
}

void ContainerImpl::setDrawerOpened(WindowDrawer::DockPosition_t position, bool open)
{
    if (position != WindowDrawer::Left && position != WindowDrawer::Right) {
        qDebug() << "UserInterface - Undefined drawer requested to be opened on window:" << m_title;
        return;
    }
    if (WindowDrawer* drawer = getDrawer(position))
        drawer->setDrawerOpened(open);
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

QSignalTransition* ContainerImpl::findTransition(QObject* sender, QState* from, QState* to)
{
    for (auto it = m_transitions.crbegin(); it != m_transitions.crend(); ++it) {
        QSignalTransition* transition = *it;
        if (transition->senderObject() == sender && transition->sourceState() == from
            && transition->targetState() == to)
            return transition;
    }
    return nullptr;
}

void ContainerImpl::maximize()
{
    const QRect target = maximizedGeometry();
    finishGeometryChange();
    saveLocation();
    m_dragging = false;
    setMaximizedView(QStringLiteral("Max"));
    m_sizeName = QStringLiteral("Max");
    // An opening animation leaves the maximum width at the normal width.
    setMaximumWidth(std::max(target.width(), minimumWidth()));
    changeGeometry(target);
    raise();
}

void ContainerImpl::restore()
{
    restoreTo(m_savedGeometry);
}

bool ContainerImpl::dragLocked() const
{
    if (m_maximizedView)
        return true;
    const GlobalImpl* registry = GlobalImpl::getInstance();
    return m_lockable && registry && registry->layoutLocked;
}

QPoint ContainerImpl::dropPosition(const QPoint& requested) const
{
    const QSize area = parentArea();
    const auto fits = [&](const QPoint& p) {
        return p.x() >= 0 && p.y() >= 0 && p.x() + width() <= area.width() && p.y() + height() <= area.height();
    };
    const QPoint inside(std::max(0, std::min(requested.x(), area.width() - width())),
                        std::max(0, std::min(requested.y(), area.height() - height())));
    const GlobalImpl* registry = GlobalImpl::getInstance();
    if (!m_snapsToGrid || !registry)
        return inside;

    QPoint nearest = inside;
    int nearestDistance = std::numeric_limits<int>::max();
    for (const QPoint& point : registry->gridPoints) {
        const int distance = (point - inside).manhattanLength();
        if (distance <= snapDistance && distance < nearestDistance && fits(point)) {
            nearest = point;
            nearestDistance = distance;
        }
    }
    return nearest;
}

void ContainerImpl::showEvent(QShowEvent* event)
{
    ContainerBase::showEvent(event);
    showDrawers();
    if (m_stateMachine.initialState() == m_stateThumb)
        initStateThumb();
    else
        resizeBorderFrame(size());
}

void ContainerImpl::hideEvent(QHideEvent* event)
{
    hideDrawers();
    ContainerBase::hideEvent(event);
}

void ContainerImpl::raise()
{
    ContainerBase::raise();
    raiseDrawers();
}

void ContainerImpl::resizeEvent(QResizeEvent* event)
{
    ContainerBase::resizeEvent(event);
    // Animated and opening geometries pass through sizes no state names.
    resizeBorderFrame(event->size());
    resizeDrawers();
}

void ContainerImpl::mousePressEvent(QMouseEvent* event)
{
    ContainerBase::mousePressEvent(event);
    // Taken here, so that the moves and the release come here and not to the desktop.
    event->accept();
    raise();
    if (dragLocked())
        return;
    m_dragOffsetX = event->globalPos().x() - x();
    m_dragOffsetY = event->globalPos().y() - y();
    m_moveTimer.start();
    m_dragStartPos = pos();
    m_dragging = true;
}

void ContainerImpl::mouseMoveEvent(QMouseEvent* event)
{
    ContainerBase::mouseMoveEvent(event);
    event->accept();
    if (!m_dragging || m_moveTimer.elapsed() <= minimumDragStepMs)
        return;
    const QPoint position = followingPosition(event->globalPos());
    move(position.x(), position.y());
    m_moveTimer.restart();
}

void ContainerImpl::mouseReleaseEvent(QMouseEvent* event)
{
    ContainerBase::mouseReleaseEvent(event);
    event->accept();
    if (!m_dragging)
        return;
    const QPoint position = dropPosition(followingPosition(event->globalPos()));
    move(position.x(), position.y());
    saveLocation();
    emit updatePosition(this, m_dragStartPos);
    m_dragging = false;
}

void ContainerImpl::showDrawers()
{
    for (WindowDrawer* drawer : {m_configurationDrawer.data(), m_secondDrawer.data()}) {
        if (drawer)
            drawer->show();
    }
}

void ContainerImpl::hideDrawers()
{
    for (WindowDrawer* drawer : {m_configurationDrawer.data(), m_secondDrawer.data()}) {
        if (drawer)
            drawer->hide();
    }
}

void ContainerImpl::raiseDrawers()
{
    for (WindowDrawer* drawer : {m_configurationDrawer.data(), m_secondDrawer.data()}) {
        if (drawer)
            drawer->raise();
    }
}

void ContainerImpl::moveDrawers(int x, int y)
{
    if (m_configurationDrawer)
        m_configurationDrawer->move(x + m_configurationDrawer->getPositionOffset(), y);
    if (m_secondDrawer)
        m_secondDrawer->move(x - m_secondDrawer->getPositionOffset(), y);
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

void ContainerImpl::setMaximizedView(QString state)
{
    m_maximizedView = state == QLatin1String("Max");
}

void ContainerImpl::initStateMin()
{
    finishGeometryChange();
    growButton()->setVisible(m_optionalStateCount >= 1);
    shrinkButton()->hide();
    setControlMargins(0);
    setMinimumSize(m_minSize);
    resize(m_minSize);
    m_stateName = m_sizeName = QStringLiteral("Min");
    // The place is kept; the size is the one "Min" has now, which may have been changed.
    m_savedGeometry.setSize(m_minSize);
    restore();
    resizeBorderFrame(m_minSize);
    updateStyle();
    emit changeSize(QStringLiteral("Min"));
    resizeDrawers();
}

void ContainerImpl::initStateMax()
{
    growButton()->setVisible(m_thumbEnabled);
    shrinkButton()->setVisible(!m_thumbEnabled);
    setControlMargins(10);
    closeNavigationBar();
    maximize();
    m_stateName = QStringLiteral("Max");
    resizeBorderFrame(size());
    updateStyle();
    emit changeSize(QStringLiteral("Max"));
    resizeDrawers();
}

void ContainerImpl::initStateThumb()
{
    finishGeometryChange();
    setMinimumSize(m_thumbSize);
    m_sizeName = QStringLiteral("Min");
    m_stateName = QStringLiteral("Thumb");
    restoreTo(QRect(m_savedGeometry.topLeft(), m_thumbSize));
    resizeBorderFrame(m_thumbSize);
    updateStyle();
    emit changeSize(QStringLiteral("Thumb"));
}

QState* ContainerImpl::stateNamed(const QString& name) const
{
    for (QState* state : {m_stateMin, m_stateMax, m_stateThumb}) {
        if (state->objectName() == name)
            return state;
    }
    return nullptr;
}

QSignalTransition* ContainerImpl::addGrowTransition(QState* from, QState* to)
{
    return from->addTransition(growButton(), &QAbstractButton::clicked, to);
}

QSignalTransition* ContainerImpl::addClosedTransition(QState* from, QState* to)
{
    return from->addTransition(this, &ContainerBase::WindowClosed, to);
}

template <class Request>
void ContainerImpl::addRequestTransition(QState* from, Request request, QState* to)
{
    const QByteArray signature = QMetaMethod::fromSignal(request).methodSignature();
    const QList<QAbstractTransition*> transitions = from->transitions();
    for (QAbstractTransition* transition : transitions) {
        auto* signalTransition = qobject_cast<QSignalTransition*>(transition);
        if (signalTransition && signalTransition->senderObject() == this && signalTransition->targetState() == to
            && plainSignature(signalTransition->signal()) == signature)
            return;
    }
    from->addTransition(this, request, to);
}

void ContainerImpl::removeTransition(QSignalTransition* transition)
{
    if (QState* source = transition->sourceState())
        source->removeTransition(transition);
    m_transitions.removeAll(transition);
    delete transition;
}

void ContainerImpl::recountOptionalStates()
{
    m_optionalStateCount = (m_maxEnabled ? 1 : 0) + (m_thumbEnabled ? 1 : 0);
}

QPushButton* ContainerImpl::growButton() const
{
    return m_containerControl->findChild<QPushButton*>(QStringLiteral("ContainerGrow"));
}

QPushButton* ContainerImpl::shrinkButton() const
{
    return m_containerControl->findChild<QPushButton*>(QStringLiteral("ContainerShrink"));
}

void ContainerImpl::setControlMargins(int bottom)
{
    if (QLayout* layout = m_containerControl->layout())
        layout->setContentsMargins(0, 0, 0, bottom);
}

void ContainerImpl::closeNavigationBar()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    MenuBar* bar = registry ? registry->topNavMenu() : nullptr;
    if (bar && bar->isOpen)
        bar->toggle();
}

QRect ContainerImpl::maximizedGeometry() const
{
    if (ApplicationOptions::isPortraitResolution())
        return QRect(0, 0, 480, 800);
    if (ApplicationOptions::isHandheld())
        return QRect(35, 0, 765, 550);
    // Benchtop, and any system that names no type: the whole desktop.
    return QRect(QPoint(0, 0), parentArea());
}

QSize ContainerImpl::parentArea() const
{
    if (QWidget* parent = parentWidget())
        return parent->size();
    if (QScreen* own = screen())
        return own->geometry().size();
    return QSize();
}

void ContainerImpl::changeGeometry(const QRect& target)
{
    finishGeometryChange();
    // A hidden container has nothing to show on the way, and the desktop manager may
    // place it as soon as it is shown.
    if (ApplicationOptions::animationSwitchedOff() || !QWidget::isVisible()) {
        setGeometry(target);
        geometrySettled();
        return;
    }
    auto* animation = new QPropertyAnimation(this, "geometry", this);
    animation->setDuration(stateAnimationMs);
    animation->setEasingCurve(QEasingCurve::InExpo);
    animation->setStartValue(geometry());
    animation->setEndValue(target);
    connect(animation, &QPropertyAnimation::finished, this, &ContainerImpl::geometrySettled);
    m_geometryAnimation = animation;
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void ContainerImpl::finishGeometryChange()
{
    QPropertyAnimation* running = m_geometryAnimation;
    m_geometryAnimation = nullptr;
    if (!running || running->state() != QAbstractAnimation::Running)
        return;
    const QRect end = running->endValue().toRect();
    running->stop();
    setGeometry(end);
}

void ContainerImpl::restoreTo(QRect target)
{
    setMaximizedView(QStringLiteral("Min"));
    // Kept above the bottom of the host's main window, which covers the desktop's foot.
    GlobalImpl* registry = GlobalImpl::getInstance();
    SystemModule* systemModule = registry ? registry->systemModule() : nullptr;
    if (QWidget* mainWindow = systemModule ? systemModule->getSystemScreen(QStringLiteral("MainWindow")) : nullptr) {
        if (target.y() + target.height() > mainWindow->height())
            target.moveTop(mainWindow->height() - target.height());
    }
    changeGeometry(target);
    raise();
}

void ContainerImpl::geometrySettled()
{
    // In "Min" and "Thumb" the container's place on the desktop is what it covers now;
    // in "Max" it keeps the place it returns to.
    if (m_sizeName == QLatin1String("Max") || !QWidget::isVisible())
        return;
    emit updatePosition(this, pos());
}

QPoint ContainerImpl::followingPosition(const QPoint& globalPos) const
{
    const QSize area = parentArea();
    const int x = std::max(0, std::min(globalPos.x() - m_dragOffsetX, area.width() - width()));
    const int y = std::max(0, std::min(globalPos.y() - m_dragOffsetY, area.height() - height()));
    return QPoint(x, y);
}
