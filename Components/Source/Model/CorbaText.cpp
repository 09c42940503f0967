#include "CorbaText.h"

char* CorbaText::toCorba(const QString& text)
{
    return CORBA::string_dup(text.toUtf8().constData());
}

QString CorbaText::fromCorba(const char* text)
{
    return text ? QString::fromUtf8(text) : QString();
}
