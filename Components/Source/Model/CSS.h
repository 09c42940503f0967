#ifndef CSS_H
#define CSS_H

#include "tzuicomponents_export.h"

#include <QColor>
#include <QString>

/**
 * The interface's colour palette as style-sheet fragments, so that every widget draws
 * its borders, highlights and gradients in the same accent blue.
 */
class TZUICOMPONENTS_EXPORT CSS
{
public:
    CSS();

    static QString border();
    static QString highlight();
    /// The three stops of the light-to-dark vertical gradients.
    static QString gradientLight();
    static QString gradientMiddle();
    static QString gradientDark();
    static QString accentRGBA();
    /// The same colour as accentRGBA(), for painting code.
    static QColor accentQColor();
    /// Fully transparent white, for areas that must take touches but draw nothing.
    static QString invisArea();

private:
    static const QString m_border;
    static const QString m_highlight;
    static const QString m_gradientLight;
    static const QString m_gradientMiddle;
    static const QString m_gradientDark;
    static const QString m_accentRGBA;
    static const QColor m_accentQColor;
    static const QString m_invisArea;
};

#endif
