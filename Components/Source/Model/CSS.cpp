#include "CSS.h"

const QString CSS::m_border = QStringLiteral("#06B7FC");
const QString CSS::m_highlight = QStringLiteral("#06B7FC");
const QString CSS::m_gradientLight = QStringLiteral("#06B7FC");
const QString CSS::m_gradientMiddle = QStringLiteral("#038BD9");
const QString CSS::m_gradientDark = QStringLiteral("#01437A");
const QString CSS::m_accentRGBA = QStringLiteral("rgba(1,67,122,215)");
const QColor CSS::m_accentQColor = QColor(1, 67, 122, 215);
const QString CSS::m_invisArea = QStringLiteral("rgba(255,255,255,0)");

CSS::CSS() = default;

QString CSS::border()
{
    return m_border;
}

QString CSS::highlight()
{
    return m_highlight;
}

QString CSS::gradientLight()
{
    return m_gradientLight;
}

QString CSS::gradientMiddle()
{
    return m_gradientMiddle;
}

QString CSS::gradientDark()
{
    return m_gradientDark;
}

QString CSS::accentRGBA()
{
    return m_accentRGBA;
}

QColor CSS::accentQColor()
{
    return m_accentQColor;
}

QString CSS::invisArea()
{
    return m_invisArea;
}
