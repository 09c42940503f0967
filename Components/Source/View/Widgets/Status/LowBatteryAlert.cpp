#include "LowBatteryAlert.h"

#include <QFont>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

LowBatteryAlert::LowBatteryAlert(QWidget* parent)
    : LowBatteryAlert(parent, QStringLiteral("LowBatteryAlert"))
{
}

LowBatteryAlert::LowBatteryAlert(QWidget* parent, const QString& objectName)
    : QFrame(parent)
    , m_label(new QLabel(this))
    , m_hideButton(new QPushButton(this))
{
    setObjectName(objectName);
    m_label->setFont(QFont(QStringLiteral("Arial"), 80));
    m_label->setAlignment(Qt::AlignCenter);
    m_hideButton->setFocusPolicy(Qt::NoFocus);

    auto* topRow = new QHBoxLayout;
    topRow->addStretch();
    topRow->addWidget(m_hideButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(topRow);
    layout->addStretch();
    layout->addWidget(m_label, 0, Qt::AlignCenter);
    layout->addStretch();

    // The selector is the alert's object name: "QFrame#QTZLowBatteryAlert" or "QFrame#LowBatteryAlert".
    setStyleSheet(QStringLiteral("QFrame#") + objectName
                  + QStringLiteral(" {    background-color: rgba(0,0,0,128);    border: none;}"
                                   "QLabel {    image: url(:/images/lowBatteryAlert.svg);"
                                   "    background-color: transparent;    border: none;"
                                   "    min-width: 400px;    max-width: 400px;"
                                   "    min-height: 200px;    max-height: 200px;    color: red;}"
                                   "QPushButton {    image: url(:/images/svg/hideButtonAlert.svg);"
                                   "    background-color: transparent;    border: none;    margin: 6px;"
                                   "    min-width: 40px;    max-width: 40px;"
                                   "    min-height: 40px;    max-height: 40px;}"));

    connect(m_hideButton, &QPushButton::clicked, this, &LowBatteryAlert::close);
    hide();
}

QString LowBatteryAlert::text() const
{
    return m_label->text();
}

void LowBatteryAlert::updateReading(double value)
{
    if (isVisible()) {
        m_label->setText(readingText(value));
        return;
    }
    if (m_closedByUser)
        return;
    m_label->setText(readingText(value));
    present();
}

void LowBatteryAlert::disableBatteryAlert()
{
    m_closedByUser = false;
    hide();
}

QString LowBatteryAlert::readingText(double value) const
{
    return QString::number(value, 'g', 6) + QLatin1Char('%');
}

void LowBatteryAlert::present()
{
    show();
    raise();
}

void LowBatteryAlert::close()
{
    m_closedByUser = true;
    hide();
}
