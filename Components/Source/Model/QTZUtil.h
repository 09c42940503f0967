#ifndef QTZUTIL_H
#define QTZUTIL_H

#include "tzuicomponents_export.h"

#include <QFontMetrics>
#include <QString>

/**
 * Text helpers. Texts that carry the unit ohm: written forms ("ohm", "Ohms", ...) become
 * the ohm sign in a Times font, and such texts are measured as they will be drawn.
 * Application options of the form "AxB" ("-res", "-grid") are read here too.
 */
class TZUICOMPONENTS_EXPORT QTZUtil
{
public:
    /// Rewrites \a text as rich text with the ohm sign; only widgets that interpret
    /// HTML show the result correctly.
    static void addOhmSymbol(QString& text);
    /// addOhmSymbol() for texts that name the unit at all.
    static void processString(QString& text);
    /// The width of \a text as shown after addOhmSymbol().
    static int calculateStringWidth(const QFontMetrics& metrics, const QString& text);

    /// Reads "AxB" (two positive decimal numbers, as in "-res 800x480" or "-grid 2x4")
    /// into \a first and \a second; false, leaving both untouched, for any other text.
    static bool parseDimensions(const QString& text, int* first, int* second);

private:
    static void replaceOhm(QString& text, const QString& replacement);
};

#endif
