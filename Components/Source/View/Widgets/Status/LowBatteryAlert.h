#ifndef LOWBATTERYALERT_H
#define LOWBATTERYALERT_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QString>

class QLabel;
class QPushButton;

/**
 * The low-battery alert of the older status bar: a panel with the battery level over a
 * low-battery picture and a hide button. Once the user hides it, later readings leave it
 * hidden until disableBatteryAlert() (the battery is no longer low).
 */
class TZUICOMPONENTS_EXPORT LowBatteryAlert : public QFrame
{
    Q_OBJECT

public:
    explicit LowBatteryAlert(QWidget* parent);

    bool isClosedByUser() const { return m_closedByUser; }
    /// The level text shown over the picture.
    QString text() const;

public slots:
    /// Shows \a value (percent); shows the alert unless the user has hidden it.
    void updateReading(double value);
    /// Hides the alert and lets the next reading show it again.
    void disableBatteryAlert();

protected:
    /// For alerts of another object name (which selects their style sheet).
    LowBatteryAlert(QWidget* parent, const QString& objectName);

    /// The text for \a value.
    virtual QString readingText(double value) const;
    /// Shows the hidden alert.
    virtual void present();

private slots:
    /// The hide button: hides the alert for good.
    void close();

private:
    QLabel* m_label;
    QPushButton* m_hideButton;
    bool m_closedByUser = false;
};

#endif
