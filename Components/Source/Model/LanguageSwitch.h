#ifndef LANGUAGESWITCH_H
#define LANGUAGESWITCH_H

#include "tzuicomponents_export.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QTranslator;

/**
 * The language the desktop speaks: it installs the translations of the language that the
 * application option "currentLanguage" names ("zh_tw" reads the files for zh_TW), the
 * library's own and those of the catalogs a host adds, and follows the option while the
 * application runs. A change sends QEvent::LanguageChange, on which the widgets show
 * their texts anew; a language without translations shows the source texts.
 *
 * The registry owns the one switch (GlobalImpl::languageSwitch()). GUI thread only.
 */
class TZUICOMPONENTS_EXPORT LanguageSwitch : public QObject
{
    Q_OBJECT

public:
    /// The library's catalog, compiled in under ":/translations".
    static constexpr const char* LibraryCatalog = "tzuicomponents";

    explicit LanguageSwitch(QObject* parent = nullptr);
    ~LanguageSwitch() override;

    /// Adds the catalog \a name: files NAME_LANGUAGE.qm in \a folder (":/translations"
    /// for one compiled in), loaded for the current language at once and at every change.
    void addCatalog(const QString& name, const QString& folder);

    /// The language as the translation files name it ("zh_TW"), empty for the source texts.
    QString language() const { return m_language; }
    /// The catalogs loaded for the current language.
    QStringList loadedCatalogs() const;

    /// The file suffix for the option's text: "zh_tw" gives "zh_TW", "de" gives "de".
    static QString fileLanguage(const QString& option);

signals:
    /// The option has changed; the translations of \a language are installed.
    void languageChanged(const QString& language);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Catalog;
    void apply();
    bool load(Catalog& catalog);

    std::vector<std::unique_ptr<Catalog>> m_catalogs;
    QString m_language;
};

#endif
