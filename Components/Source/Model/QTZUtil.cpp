#include "QTZUtil.h"

#include <QStringList>

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

bool QTZUtil::parseDimensions(const QString& text, int* first, int* second)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    if (parts.size() != 2)
        return false;
    bool firstOk = false;
    bool secondOk = false;
    const int a = parts.at(0).toInt(&firstOk);
    const int b = parts.at(1).toInt(&secondOk);
    if (!firstOk || !secondOk || a <= 0 || b <= 0)
        return false;
    *first = a;
    *second = b;
    return true;
}
