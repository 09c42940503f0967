#ifndef QTZUTIL_H
#define QTZUTIL_H

#include <QFontMetrics>
#include <QString>

/**
 * Texts that carry the unit ohm: written forms ("ohm", "Ohms", ...) become the ohm sign
 * in a Times font, and such texts are measured as they will be drawn.
 */
class QTZUtil
{
public:
    /// Rewrites \a text as rich text with the ohm sign; only widgets that interpret
    /// HTML show the result correctly.
    static void addOhmSymbol(QString& text);
    /// addOhmSymbol() for texts that name the unit at all.
    static void processString(QString& text);
    /// The width of \a text as shown after addOhmSymbol().
    static int calculateStringWidth(const QFontMetrics& metrics, const QString& text);

private:
    static void replaceOhm(QString& text, const QString& replacement);
};

#endif
