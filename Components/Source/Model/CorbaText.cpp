#include "CorbaText.h"

#include <cstring>

namespace {

// Whether the bytes are well-formed UTF-8: no stray or missing continuation bytes, no
// overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(const unsigned char* text, std::size_t length)
{
    std::size_t i = 0;
    while (i < length) {
        const unsigned char lead = text[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        int more = 0;
        unsigned char low = 0x80;
        unsigned char high = 0xbf;
        if (lead >= 0xc2 && lead <= 0xdf) {
            more = 1;
        } else if (lead >= 0xe0 && lead <= 0xef) {
            more = 2;
            if (lead == 0xe0)
                low = 0xa0;
            else if (lead == 0xed)
                high = 0x9f;
        } else if (lead >= 0xf0 && lead <= 0xf4) {
            more = 3;
            if (lead == 0xf0)
                low = 0x90;
            else if (lead == 0xf4)
                high = 0x8f;
        } else {
            return false;
        }
        if (length - i <= std::size_t(more))
            return false;
        if (text[i + 1] < low || text[i + 1] > high)
            return false;
        for (int k = 2; k <= more; ++k) {
            if ((text[i + k] & 0xc0) != 0x80)
                return false;
        }
        i += std::size_t(more) + 1;
    }
    return true;
}

} // namespace

char* CorbaText::toCorba(const QString& text)
{
    return CORBA::string_dup(text.toUtf8().constData());
}

QString CorbaText::fromCorba(const char* text)
{
    if (!text)
        return QString();
    const std::size_t length = std::strlen(text);
    // An engine that still sends Latin-1 keeps its degree signs and umlauts: such bytes
    // are hardly ever well-formed UTF-8 by chance.
    if (isUtf8(reinterpret_cast<const unsigned char*>(text), length))
        return QString::fromUtf8(text, int(length));
    return QString::fromLatin1(text, int(length));
}
