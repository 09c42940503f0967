#include "MenuWidgetImpl.h"

#include "ApplicationOptions.h"
#include "CSS.h"

#include <QEvent>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QPolygonF>
#include <QSvgRenderer>

#include <algorithm>

namespace {

const char* const stateNames[] = {"Unloaded", "Loaded", "Active"};

QString benchtopStyle(const QString& border)
{
    return QStringLiteral("    QLabel#MenuWidget {"
                          "        background-color: qlineargradient(x1:0, y1:0, x2:0, y2:1,"
                          "                                     stop:0   ")
        + CSS::gradientLight()
        + QStringLiteral(",                                     stop:0.3 ") + CSS::gradientMiddle()
        + QStringLiteral(",                                     stop:1   ") + CSS::gradientDark()
        + QStringLiteral(");"
                         "        border: 3px solid ")
        + border
        + QStringLiteral(";"
                         "        border-radius: 14px;"
                         "        font-size: 5px;"
                         "        color: #fff;"
                         "        padding: 75px 0px 0px 2px;"
                         "    }");
}

bool isLandscape()
{
    return ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape;
}

// The category icons by menu name; the first match counts, names are compared exactly.
// The library's catalog translates these names, as a tile shows them.
QString iconFor(const QString& system)
{
    static const struct
    {
        const char* names[4];
        const char* icon;
    } table[] = {
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Meters")}, ":/images/icon_meter.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Oscilloscope"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Analyzers"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "VSWR"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Instruments")},
         ":/images/icon_analyzer.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Receivers"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Demod")},
         ":/images/icon_rcvr.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Generators")}, ":/images/icon_gen.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Utilities")}, ":/images/icon_utilities.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "System"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Config")},
         ":/images/icon_system.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Self Test")}, ":/images/icon_selftest.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Scripting"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Language")},
         ":/images/icon_scripting.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "RF Generators")}, ":/images/icon_rfgen.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Ext. Power Supplies")}, ":/images/icon_powersupply.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "DMM")}, ":/images/icon_dmm.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Digital Data Gen.")}, ":/images/icon_digitaldatagen.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Calibrations")}, ":/images/icon_calibration.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Audio Generators"),
          QT_TRANSLATE_NOOP("MenuWidgetImpl", "Audio")},
         ":/images/icon_audiogen.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Applications")}, ":/images/icon_apps.svg"},
        {{QT_TRANSLATE_NOOP("MenuWidgetImpl", "Help")}, ":/images/icon_help.svg"},
    };
    for (const auto& row : table) {
        for (const char* name : row.names) {
            if (name && system == QLatin1String(name))
                return QString::fromLatin1(row.icon);
        }
    }
    return QStringLiteral(":/images/icon_unknown.svg");
}

} // namespace

MenuWidgetImpl::MenuWidgetImpl(QString system, QString state, bool submenu, QWidget* parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("MenuWidget"));
    if (ApplicationOptions::isBenchtop()) {
        normalStyle = benchtopStyle(CSS::border());
        activeStyle = benchtopStyle(QStringLiteral("#fff"));
    } else {
        normalStyle = QStringLiteral("    QLabel#MenuWidget {"
                                     "        background-color: transparent;"
                                     "        border: 2px solid #fff;"
                                     "        border-radius: 8px;"
                                     "        font-size: 20px;"
                                     "        color: #ff0;"
                                     "    }");
    }
    if (ApplicationOptions::isPortraitResolution()) {
        normalStyle += QStringLiteral("QLabel#MenuWidget { padding: 42px 0px 0px 2px; }");
    } else if (isLandscape()) {
        const QString padding = QStringLiteral("QLabel#MenuWidget { padding: 45px 0px 0px 2px; }");
        normalStyle += padding;
        activeStyle += padding;
    }
    appliedStyle = normalStyle;
    setStyleSheet(normalStyle);
    QFont tileFont = font();
    tileFont.setStyleHint(QFont::AnyStyle, QFont::PreferAntialias);
    setFont(tileFont);

    setSubmenu(submenu);
    setState(state);
    setSystem(system);
}

QString MenuWidgetImpl::getState() const
{
    if (state < 0 || state > 2)
        return QStringLiteral("Error");
    return QString::fromLatin1(stateNames[state]);
}

void MenuWidgetImpl::setState(const QString& name)
{
    for (int value = 0; value < 3; ++value) {
        if (name == QLatin1String(stateNames[value])) {
            state = value;
            return;
        }
    }
}

void MenuWidgetImpl::setSubmenu(bool opensSubmenu)
{
    submenu = opensSubmenu;
    renderIcon();
}

void MenuWidgetImpl::setSystem(const QString& system)
{
    setText(system);
    iconPath = iconFor(system);
    renderIcon();
}

void MenuWidgetImpl::setText(const QString& label)
{
    shownText = text = label;
    if (!testAttribute(Qt::WA_Resized)) {
        // Not sized yet: there is nothing to fit to, and the first size fits it.
        QLabel::setText(tr(shownText.toUtf8().constData()));
        return;
    }

    QFont fitted(font().family());
    int size = 21;
    if (ApplicationOptions::isPortraitResolution() || isLandscape())
        size = 16;
    else if (ApplicationOptions::isHandheld())
        size = 20;
    auto textWidth = [&fitted, this](int pixelSize) {
        fitted.setPixelSize(pixelSize);
        return QFontMetrics(fitted).boundingRect(QRect(), Qt::AlignCenter, shownText).width();
    };
    int width = textWidth(size);

    const bool systemTypeSet = !ApplicationOptions::text(ApplicationOptions::SystemTypeOption).isEmpty();
    if (systemTypeSet && !ApplicationOptions::isHandheld()) {
        const int available = this->width() - 2 * margin - (submenu ? 22 : 0);
        if (available < width && width > 0) {
            // Text widths grow about in proportion to the font size: start near the
            // answer, then go down pixel by pixel as far as needed.
            size = std::max(0, std::min(size - 1, size * std::max(0, available) / width + 1));
            width = textWidth(size);
            while (available < width && size > 0)
                width = textWidth(--size);
            while (size < 20 && textWidth(size + 1) <= available)
                width = textWidth(++size);
        }
        // One fitting rule after the tile's look; the sheet is set again only when the
        // size changes, so a tile resized a thousand times keeps a short sheet.
        const QString sheet = appliedStyle + QStringLiteral("QLabel#MenuWidget {    font-size: ")
            + QString::number(size) + QStringLiteral("px;}");
        if (styleSheet() != sheet)
            setStyleSheet(sheet);
    }
    if (ApplicationOptions::isHandheld() && width > this->width() + 2 * margin)
        shownText.replace(QLatin1Char(' '), QLatin1Char('\n'));

    QLabel::setText(tr(shownText.toUtf8().constData()));
    update();
}

void MenuWidgetImpl::renderIcon()
{
    iconStale = false;
    const int side = int(0.65 * height());
    if (side <= 0 || iconPath.isEmpty() || !testAttribute(Qt::WA_Resized)) {
        icon = QPixmap();
        return;
    }
    // Every tile of a category at a size draws the same picture.
    const QString key = QStringLiteral("MenuWidgetImpl:%1:%2").arg(iconPath).arg(side);
    if (QPixmapCache::find(key, &icon))
        return;
    icon = QPixmap(side, side);
    icon.fill(Qt::transparent);
    QSvgRenderer renderer(iconPath);
    if (renderer.isValid()) {
        QPainter painter(&icon);
        renderer.render(&painter, QRectF(0, 0, side, side));
    }
    QPixmapCache::insert(key, icon);
}

void MenuWidgetImpl::retranslate()
{
    QLabel::setText(tr(shownText.toUtf8().constData()));
}

void MenuWidgetImpl::active(bool contentsActive)
{
    appliedStyle = contentsActive ? activeStyle : normalStyle;
    setStyleSheet(appliedStyle);
    setText(text);
}

void MenuWidgetImpl::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    iconStale = true;
    setText(text);
}

void MenuWidgetImpl::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (ApplicationOptions::isHandheld())
        return;

    const double h = height();
    const double w = width();
    const double m = 0.07 * h;
    const double s = 0.65 * h;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    QLinearGradient plateFill(0, 0, 0, s);
    plateFill.setColorAt(0, QColor(CSS::gradientDark()));
    plateFill.setColorAt(1, QColor(CSS::gradientLight()));
    painter.setPen(QPen(Qt::green, 3));
    painter.setBrush(plateFill);
    painter.drawRoundedRect(QRectF(m, m + 1, w - 3 * m, s - 2 * m), 14, 14);

    if (iconStale)
        renderIcon();
    painter.drawPixmap(int(w - m - s), int(m), icon);

    if (submenu) {
        painter.save();
        painter.translate(w - 2 * m, h - 2 * m);
        painter.rotate(180);
        painter.setPen(QPen(QColor(255, 255, 255, 128), 0));
        painter.setBrush(QColor(255, 255, 255, 128));
        painter.drawPolygon(QPolygonF({QPointF(0, -5), QPointF(-4.3301, 2.5), QPointF(4.3301, 2.5)}));
        painter.restore();
    }
}

void MenuWidgetImpl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QLabel::changeEvent(event);
}
