#include "QTZUtil.h"

namespace {

const QChar ohmSign(0x2126);
const QString ohms = QStringLiteral("ohms");
const QString ohm = QStringLiteral("ohm");

} // namespace

void QTZUtil::replaceOhm(QString& text, const QString& replacement)
{
    // Only the first form that occurs is replaced: "ohms" must not leave a stray "s".
    if (text.contains(ohms, Qt::CaseInsensitive))
        text.replace(ohms, replacement, Qt::CaseInsensitive);
    else if (text.contains(ohm, Qt::CaseInsensitive))
        text.replace(ohm, replacement, Qt::CaseInsensitive);
    else if (text.contains(ohmSign))
        text.replace(ohmSign, replacement);
}

void QTZUtil::addOhmSymbol(QString& text)
{
    replaceOhm(text, QStringLiteral("<font face='Times'>") + ohmSign + QStringLiteral("</font>"));
}

void QTZUtil::processString(QString& text)
{
    if (text.contains(ohm, Qt::CaseInsensitive) || text.contains(ohmSign))
        addOhmSymbol(text);
}

int QTZUtil::calculateStringWidth(const QFontMetrics& metrics, const QString& text)
{
    // A capital O stands in for the ohm sign, which is about as wide.
    QString shown = text;
    replaceOhm(shown, QStringLiteral("O"));
    return metrics.horizontalAdvance(shown);
}
