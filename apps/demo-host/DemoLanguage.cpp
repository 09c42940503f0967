#include "DemoLanguage.h"

#include "ApplicationOptions.h"
#include "GlobalImpl.h"
#include "LanguageSwitch.h"

#include <QCoreApplication>
#include <QIcon>
#include <QImageReader>
#include <QPushButton>
#include <QVariant>

namespace {

const char* const chinese = "zh_tw";
const char* const english = "en";

LanguageSwitch* languageSwitch()
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    return registry ? registry->languageSwitch() : nullptr;
}

} // namespace

DemoLanguage::DemoLanguage(QWidget* desktop)
    : QObject(desktop)
    , m_button(new QPushButton(desktop))
{
    m_button->setObjectName(QStringLiteral("LanguageButton"));
    m_button->setStyleSheet(QStringLiteral("QPushButton { color: white; background-color: rgb(60,60,60); "
                                           "border: 1px solid white; border-radius: 6px; padding: 6px; }"));
    connect(m_button, &QPushButton::clicked, this, &DemoLanguage::toggle);
    follow(m_button, [this, desktop] {
        // Each language offers the other, named in its own words. Chinese is a picture of
        // its two characters: as text, on an English desktop, it would have fontconfig
        // search for and load a fallback font for this one button as the host starts.
        const bool chinese = ApplicationOptions::isChineseLanguage();
        const QString picture = chinese ? QString() : QStringLiteral(":/demo/images/chinese.png");
        m_button->setText(chinese ? QStringLiteral("English") : QString());
        m_button->setIcon(QIcon(picture));
        m_button->setIconSize(QImageReader(picture).size());
        m_button->setAccessibleName(chinese ? QStringLiteral("English") : QStringLiteral("中文"));
        m_button->adjustSize();
        // Above the desktop's row of buttons at the lower right.
        const auto* row = desktop->findChild<QPushButton*>(QStringLiteral("FullScreenButton"));
        const int bottom = row ? row->y() - 8 : desktop->height() - 20;
        m_button->move(desktop->width() - m_button->width() - 10, bottom - m_button->height());
    });
    m_button->show();
}

void DemoLanguage::follow(QObject* context, const std::function<void()>& showTexts)
{
    showTexts();
    if (LanguageSwitch* language = languageSwitch())
        connect(language, &LanguageSwitch::languageChanged, context, showTexts);
}

void DemoLanguage::toggle()
{
    QCoreApplication::instance()->setProperty(ApplicationOptions::name(ApplicationOptions::CurrentLanguageOption),
                                              QString::fromLatin1(ApplicationOptions::isChineseLanguage() ? english : chinese));
}
