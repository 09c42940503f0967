#include "CorbaText.h"
#include "DDS_BaseObj.h"
#include "ORB_wrapper_base.h"

#include <cstdio>

int main()
{
    CORBA::String_var text = CorbaText::toCorba(QStringLiteral("\u2126"));
    std::printf("%s\n", CorbaText::fromCorba(text.in()) == QStringLiteral("\u2126") ? "consumer ok" : "consumer broken");
    return 0;
}
