#ifndef LANGUAGESCOPE_H
#define LANGUAGESCOPE_H

#include <QCoreApplication>
#include <QVariant>

// Sets the application option "currentLanguage" as a host does, and takes it away again
// when the scope ends, so that the next test starts from the source texts. The widgets
// retranslate on events that Qt posts: a test waits for them with
// QCoreApplication::processEvents() or QTRY_*.
class LanguageScope
{
public:
    explicit LanguageScope(const char* language = "") { set(language); }
    ~LanguageScope() { QCoreApplication::instance()->setProperty("currentLanguage", QVariant()); }
    LanguageScope(const LanguageScope&) = delete;
    LanguageScope& operator=(const LanguageScope&) = delete;

    void set(const char* language) { QCoreApplication::instance()->setProperty("currentLanguage", QString(language)); }
    // Changes the language and lets the widgets handle the change.
    void switchTo(const char* language)
    {
        set(language);
        QCoreApplication::processEvents();
    }
};

#endif
