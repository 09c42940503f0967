#include "PushButtonImpl.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "AttributeFeed.h"
#include "GlobalImpl.h"

#include <QBoxLayout>
#include <QDebug>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace Lumaro {
namespace gui {

namespace {

QString standardSheet()
{
    return QStringLiteral(
               "QPushButton { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 %1, stop:0.8 %2, stop:1 %3); "
               "color: white; border-style: solid; border-width: 2px; border-color: %4; border-radius: 15px; "
               "padding: 3px 0px 0px 8px; margin: 0px; min-height: 40px; max-height: 40px; text-align: top left; "
               "font-size: 18px; }"
               "QPushButton:pressed { color: white; background-color: %1; }"
               "QLabel { color: white; background-color: %5; border-radius: 7px; padding: 0px; min-height: 14px; "
               "max-height: 14px; margin: 17px 0px 0px 0px; font: bold 16px; }"
               "QLabel#Locked { border: 1px solid %4; background-color: #666666; }")
        .arg(CSS::gradientDark(), CSS::gradientMiddle(), CSS::gradientLight(), CSS::border(), CSS::highlight());
}

QString tallSheet()
{
    return QStringLiteral(
               "QPushButton { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 %1, stop:0.8 %2, stop:1 %3); "
               "color: white; border-style: solid; border-width: 2px; border-color: %4; border-radius: 15px; "
               "padding: 2px 0px 0px 0px; margin: 0px; min-height: 40px; max-height: 120px; text-align: top left; "
               "font-size: 16px; font-weight: bold; }"
               "QPushButton:pressed { color: white; background-color: %1; }"
               "QLabel { color: white; background-color: %5; border-radius: 7px; padding: 0px; min-height: 14px; "
               "max-height: 14px; margin: 17px 0px 0px 0px; font: bold 14px; }"
               "QLabel#Locked { border: 1px solid %4; background-color: #666666; }")
        .arg(CSS::gradientDark(), CSS::gradientMiddle(), CSS::gradientLight(), CSS::border(), CSS::highlight());
}

} // namespace

PushButtonImpl::PushButtonImpl(QWidget* parent)
    : WidgetBaseImpl(parent)
    , m_styleSheet(standardSheet())
    , m_tallStyleSheet(tallSheet())
    , m_button(new QPushButton(this))
    , m_layout(new QBoxLayout(QBoxLayout::LeftToRight))
    , m_lockBadge(new QLabel(m_button))
{
    connect(m_button, &QPushButton::clicked, this, &PushButtonImpl::buttonClicked);
    // The lock a touch takes for an entry goes back as soon as the entry is granted.
    connect(this, &WidgetBaseImpl::DisplayEntryMechanism, this, &WidgetBaseImpl::releaseLock);

    m_button->setFocusPolicy(Qt::NoFocus);
    auto* buttonColumn = new QVBoxLayout;
    buttonColumn->setContentsMargins(0, 0, 0, 0);
    buttonColumn->addWidget(m_button);
    m_layout->addLayout(buttonColumn, 1);
    m_layout->setContentsMargins(0, 0, 0, 0);
    setLayout(m_layout);

    m_lockBadge->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* badgeRow = new QHBoxLayout(m_button);
    badgeRow->addWidget(m_lockBadge);

    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Maximum);
    setObjectName(QStringLiteral("PushButton"));
    setMinimumSize(100, 60);
    changeSize(QStringLiteral("Max"));
    // Built while the desktop speaks Chinese: the look follows the language from the start.
    if (ApplicationOptions::isChineseLanguage())
        retranslate();
}

PushButtonImpl::~PushButtonImpl() = default;

QSize PushButtonImpl::sizeHint() const
{
    return QSize(100, 60);
}

QSize PushButtonImpl::minimumSizeHint() const
{
    return QSize(100, 60);
}

void PushButtonImpl::bindAttribute(Orvanth::EngineReadingBase_ptr reading)
{
    WidgetBaseImpl::bindAttribute(reading);
    if (!CORBA::is_nil(reading))
        attributeFeed()->checkActionType();
}

void PushButtonImpl::setButtonText(const QString& theText)
{
    m_buttonText = theText;
    m_button->setText(shownText());
}

void PushButtonImpl::setTextTranslated(bool translated)
{
    m_textTranslated = translated;
    m_button->setText(shownText());
}

QString PushButtonImpl::shownText() const
{
    return m_textTranslated ? tr(m_buttonText.toUtf8().constData()) : m_buttonText;
}

QString PushButtonImpl::lockBadgeText() const
{
    // The blanks keep the badge's text clear of its rounded right end.
    return tr("Locked") + QStringLiteral("  ");
}

void PushButtonImpl::setCriticalStyle()
{
    m_styleSheet = QStringLiteral(
        "QPushButton { background-color: black; color: white; border: 2px solid rgb(255,142,63); "
        "border-radius: 15px; padding: 3px 0px 0px 8px; margin: 0px; min-height: 40px; max-height: 40px; "
        "text-align: top left; font: 18px; }"
        "QPushButton:pressed { color: white; background-color: rgb(100,0,0); }"
        "QLabel { color: white; background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 rgb(159,1,15), "
        "stop:0.5 rgb(167,1,15), stop:1 rgb(212,2,26)); border: 1px solid rgb(255,142,63); border-radius: 7px; "
        "padding: 0px; min-height: 14px; max-height: 14px; margin: 17px 0px 0px 0px; font: bold 16px; }"
        "QLabel#Locked { border: 1px solid rgb(255,142,63); background-color: #666666; }");
    changeSize(QStringLiteral("Max"));
}

void PushButtonImpl::setButtonObjectName(const QString& name)
{
    m_button->setObjectName(name);
}

void PushButtonImpl::changeSize(const QString& /*size*/)
{
    // One look for every size: the tall sheet is kept for forms that want to apply it.
    setStyleSheet(m_styleSheet);
}

void PushButtonImpl::retranslate()
{
    QString sheet = m_styleSheet;
    if (ApplicationOptions::isChineseLanguage())
        sheet += QStringLiteral("QPushButton { padding-top: 6px; font-size: 16px; } QLabel { font-size: 12px; }");
    setStyleSheet(sheet);
    m_button->setText(shownText());
    if (!m_lockBadge->objectName().isEmpty())
        m_lockBadge->setText(lockBadgeText());
}

void PushButtonImpl::setLockImageVisible(const bool& visible)
{
    // The base's overlay keeps its transparent sheet: the badge shows the lock instead.
    const QString name = visible ? QStringLiteral("Locked") : QString();
    if (m_lockBadge->objectName() == name)
        return;
    m_lockBadge->setObjectName(name);
    m_lockBadge->setText(visible ? lockBadgeText() : QString());
    // The object name selects the badge's rule only when the sheet is applied again.
    m_lockBadge->style()->unpolish(m_lockBadge);
    m_lockBadge->style()->polish(m_lockBadge);
}

void PushButtonImpl::buttonClicked()
{
    // A lost engine takes no presses, nor announces them.
    if (attributeState() == EngineLost)
        return;
    GlobalImpl* registry = GlobalImpl::getInstance();
    const bool hasReading = this->hasReading();
    QWidget* entry = registry->entryMechanism();
    if (entry && entry != this && hasReading)
        return;
    if (hasReading)
        attributeFeed()->sendAction();
    emit clicked();
    auto* sendingButton = qobject_cast<QPushButton*>(sender());
    emit buttonPressed(sendingButton ? sendingButton->objectName() : QString());
    releaseLock();
}

void PushButtonImpl::emulateClick()
{
    m_button->click();
}

void PushButtonImpl::sendSetCall()
{
    AttributeFeed::sendAction(engineHandle());
}

} // namespace gui
} // namespace Lumaro
