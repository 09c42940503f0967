#include "SubMenuItem.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "ContainerBase.h"
#include "GlobalImpl.h"
#include "MenuEntryWiring.h"
#include "ScrollableMenuBarFrame.h"
#include "SubMenu.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <QScrollArea>
#include <QSignalBlocker>

namespace {

bool leftBar()
{
    return ApplicationOptions::menuBarLocation() == ApplicationOptions::MenuBarLocation::Left;
}

} // namespace

SubMenuItem::SubMenuItem(SubMenu* menu, const QString& label, QFrame* screen, int position, QObject* receiver,
                         const QString& slot, int instNum)
    : QPushButton(tr(label.toUtf8().constData()))
    , label(label)
    , position(position)
    , receiver(receiver)
    , slot(slot)
    , screen(screen)
    , contentFrame(menu ? menu->getContentFrame() : nullptr)
    , scrollArea(menu ? menu->getScrollArea() : nullptr)
    , instNum(instNum)
{
    setObjectName(QStringLiteral("SubMenuItem"));
    setFocusPolicy(Qt::NoFocus);
    setFixedHeight(50);
    // Made without a parent, so that the pop-up's sheet styles the entry when it shows.
    if (contentFrame)
        setParent(contentFrame);

    // Opening a screen in a window closes the sub-menu too.
    MenuEntryWiring::wirePopUpEntry(this, screen, menu, true);
    if (auto* container = qobject_cast<ContainerBase*>(screen))
        connect(container, &ContainerBase::WindowClosed, this, &SubMenuItem::setClosed);
    if (menu)
        connect(this, &SubMenuItem::opened, menu, &SubMenu::closeOtherSubSubMenus);
    connect(this, &QAbstractButton::toggled, this, &SubMenuItem::toggledOn);
}

void SubMenuItem::swap(QObject* other)
{
    emit swappingMenuItem(other);
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->swapMenuItems(this, qobject_cast<QWidget*>(other));
}

void SubMenuItem::setClosed()
{
    setChecked(false);
}

void SubMenuItem::setText(const QString& text)
{
    label = text;
    retranslate();
}

void SubMenuItem::retranslate()
{
    QPushButton::setText(MenuEntryWiring::entryText(staticMetaObject.className(), label, instNum));
}

void SubMenuItem::closeTopNav()
{
    MenuEntryWiring::closeNavigationBar();
}

void SubMenuItem::toggledOn(bool on)
{
    if (!on)
        return;
    if (contentFrame && scrollArea) {
        // The holder's pop-up opens beside it, so it has to be in view first.
        const QPoint inArea = mapTo(scrollArea, QPoint(0, 0));
        const int areaBottom = scrollArea->height();
        int shift = 0;
        if (inArea.y() < 0)
            shift = -inArea.y();
        else if (inArea.y() + height() > areaBottom)
            shift = areaBottom - (inArea.y() + height());
        if (shift != 0) {
            const QPoint before = contentFrame->pos();
            {
                const QSignalBlocker blocker(contentFrame.data());
                contentFrame->move(before + QPoint(0, shift));
            }
            if (contentFrame->pos() != before)
                emit reposition();
        }
    }
    emit opened();
}

void SubMenuItem::mousePressEvent(QMouseEvent* event)
{
    // The ordinary press waits for the release: until then the finger may scroll the list.
    // A drag whose release never came (the list closed under the finger) ends here.
    blockSignals(false);
    pressPoint = event->globalPos();
    dragOffset = contentFrame ? event->globalPos() - contentFrame->pos() : QPoint();
    dragged = false;
    if (leftBar())
        setDown(true);
}

void SubMenuItem::mouseMoveEvent(QMouseEvent* event)
{
    if (contentFrame)
        contentFrame->move(event->globalPos() - dragOffset);
    if (!dragged && (event->globalPos() - pressPoint).manhattanLength() > 40) {
        dragged = true;
        blockSignals(true);
    }
}

void SubMenuItem::mouseReleaseEvent(QMouseEvent* event)
{
    const bool wasChecked = isChecked();
    if (!dragged) {
        setDown(false);
        QMouseEvent press(QEvent::MouseButtonPress, event->localPos(), event->windowPos(), event->screenPos(),
                          event->button(), event->buttons() | event->button(), event->modifiers());
        QPushButton::mousePressEvent(&press);
        QPushButton::mouseReleaseEvent(event);
        return;
    }
    setDown(false);
    QPushButton::mouseReleaseEvent(event);
    blockSignals(false);
    dragged = false;
    {
        const QSignalBlocker blocker(this);
        setChecked(wasChecked);
    }
}

void SubMenuItem::paintEvent(QPaintEvent* event)
{
    const bool left = leftBar();
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), left ? QColor(Qt::black) : QColor(0, 0, 0, 128));

        painter.setPen(QPen(QColor(CSS::border()), 2));
        painter.fillRect(QRect(4, 0, 12, height()), CSS::accentQColor());
        painter.drawLine(1, 0, 1, height());
        painter.drawLine(width() - 1, 0, width() - 1, 7);
        painter.drawLine(width() - 1, 47, width() - 1, height());
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(15, 7, 200, 40), 12, 12);

        const bool closedHolder = isCheckable() && !isChecked();
        if (closedHolder) {
            painter.save();
            painter.translate(width() - 8, 25);
            painter.rotate(90);
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(255, 255, 255, 128));
            painter.drawPolygon(QPolygonF({QPointF(0, -4), QPointF(-3.4641, 2), QPointF(3.4641, 2)}));
            painter.restore();
        }
        if (isChecked() || (left && isDown())) {
            const qreal radius = closedHolder ? 0 : 7;
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(176, 176, 176));
            painter.drawRoundedRect(QRectF(20, 12, 200, 30), radius, radius);
            painter.setBrush(Qt::white);
            painter.drawRoundedRect(QRectF(20, 12, width() - 25, 30), radius, radius);
        }
    }
    QPushButton::paintEvent(event);
}

bool SubMenuItem::event(QEvent* event)
{
    return MenuEntryWiring::deliverEntryEvent(this, event, styleChangeOwed,
                                              [this](QEvent* delivered) { return QPushButton::event(delivered); });
}

void SubMenuItem::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QPushButton::changeEvent(event);
}
