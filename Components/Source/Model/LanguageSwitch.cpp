#include "LanguageSwitch.h"

#include "ApplicationOptions.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDynamicPropertyChangeEvent>
#include <QEvent>
#include <QRegularExpression>
#include <QTranslator>

struct LanguageSwitch::Catalog
{
    QString name;
    QString folder;
    // Installed while it holds the current language's texts.
    std::unique_ptr<QTranslator> translator;
};

LanguageSwitch::LanguageSwitch(QObject* parent)
    : QObject(parent)
{
    setObjectName(QStringLiteral("LanguageSwitch"));
    // The options are properties of the application object; a filter on it is the one
    // place that hears of a change. It sees every event of the GUI thread, so it looks
    // at the event's type before anything else.
    if (QCoreApplication* application = QCoreApplication::instance())
        application->installEventFilter(this);
    m_language = fileLanguage(ApplicationOptions::text(ApplicationOptions::CurrentLanguageOption));
    addCatalog(QLatin1String(LibraryCatalog), QStringLiteral(":/translations"));
}

LanguageSwitch::~LanguageSwitch() = default;

void LanguageSwitch::addCatalog(const QString& name, const QString& folder)
{
    for (const auto& catalog : m_catalogs) {
        if (catalog->name == name && catalog->folder == folder)
            return;
    }
    m_catalogs.push_back(std::make_unique<Catalog>(Catalog{name, folder, nullptr}));
    load(*m_catalogs.back());
}

QStringList LanguageSwitch::loadedCatalogs() const
{
    QStringList loaded;
    for (const auto& catalog : m_catalogs) {
        if (catalog->translator)
            loaded.append(catalog->name);
    }
    return loaded;
}

QString LanguageSwitch::fileLanguage(const QString& option)
{
    static const QRegularExpression form(QStringLiteral("^([A-Za-z]{2,3})(?:[_-]([A-Za-z]{2}|[0-9]{3}))?$"));
    const QString text = option.trimmed();
    if (text.isEmpty())
        return QString();
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        qDebug() << "UserInterface - LanguageSwitch - not a language, the source texts are shown:" << text.left(40);
        return QString();
    }
    QString language = match.captured(1).toLower();
    if (!match.captured(2).isEmpty())
        language += QLatin1Char('_') + match.captured(2).toUpper();
    return language;
}

bool LanguageSwitch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange && watched == QCoreApplication::instance()) {
        const QByteArray property = static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName();
        if (property == ApplicationOptions::name(ApplicationOptions::CurrentLanguageOption))
            apply();
    }
    return QObject::eventFilter(watched, event);
}

void LanguageSwitch::apply()
{
    const QString option = ApplicationOptions::text(ApplicationOptions::CurrentLanguageOption);
    m_language = fileLanguage(option);
    for (const auto& catalog : m_catalogs)
        load(*catalog);
    // Installing and removing translations tell the widgets already; a change between
    // two languages without translations still changes what depends on the language
    // itself, such as the push buttons' looks. Qt merges the notices a widget has not
    // yet handled into one.
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &change);
    qDebug() << "UserInterface - LanguageSwitch - language" << option << "translations:" << loadedCatalogs();
    emit languageChanged(m_language);
}

bool LanguageSwitch::load(Catalog& catalog)
{
    // The old translator goes first, so that no text is looked up in two languages.
    catalog.translator.reset();
    if (m_language.isEmpty())
        return false;
    auto translator = std::make_unique<QTranslator>();
    // QTranslator falls back from NAME_zh_TW.qm to NAME_zh.qm by itself.
    if (!translator->load(catalog.name + QLatin1Char('_') + m_language, catalog.folder)) {
        qDebug() << "UserInterface - LanguageSwitch - no translations for" << m_language << "in" << catalog.name;
        return false;
    }
    QCoreApplication::installTranslator(translator.get());
    catalog.translator = std::move(translator);
    return true;
}
