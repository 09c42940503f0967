#ifndef ROTATABLELABEL_H
#define ROTATABLELABEL_H

#include "tzuicomponents_export.h"

#include <QLabel>
#include <QString>

class QEvent;
class QPaintEvent;

/**
 * A label that draws its translated text rotated about its centre, such as the vertical
 * caption on a drawer's handle.
 */
class TZUICOMPONENTS_EXPORT RotatableLabel : public QLabel
{
    Q_OBJECT
    Q_PROPERTY(QString LabelText READ labelText WRITE setText)
    Q_PROPERTY(QString FontColor READ fontColor WRITE setFontColor)
    Q_PROPERTY(int FontSize READ fontSize WRITE setFontSize)
    Q_PROPERTY(double Degrees READ degrees WRITE setDegrees)

public:
    explicit RotatableLabel(QWidget* parent = nullptr);

    Q_INVOKABLE virtual void retranslate();

    QString labelText() const { return m_labelText; }
    QString fontColor() const { return m_fontColor; }
    /// A colour name as QColor reads it ("blue", "#ffffff").
    void setFontColor(const QString& color) { m_fontColor = color; }
    /// In pixels.
    int fontSize() const { return m_fontSize; }
    void setFontSize(int pixels) { m_fontSize = pixels; }
    double degrees() const { return m_degrees; }
    /// Clockwise; kept in whole degrees, the fraction cut off.
    void setDegrees(double degrees);

public slots:
    virtual void setText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QString m_labelText = QStringLiteral("Rotatable Label");
    QString m_fontColor = QStringLiteral("blue");
    int m_fontSize = 12;
    double m_degrees = -90;
};

#endif
