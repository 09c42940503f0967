#ifndef QTZSCALABLELABEL_H
#define QTZSCALABLELABEL_H

#include "tzuicomponents_export.h"

#include <QLabel>
#include <QString>

class QEvent;
class QResizeEvent;

/**
 * A label that shrinks its font to the largest pixel size at which its translated text
 * fits its width; the title of every container, whose width is what the title-bar
 * buttons leave. Only a font given in pixels is fitted.
 */
class TZUICOMPONENTS_EXPORT QTZScalableLabel : public QLabel
{
    Q_OBJECT

public:
    explicit QTZScalableLabel(QWidget* parent = nullptr);
    QTZScalableLabel(const QString& text, QWidget* parent = nullptr);

public slots:
    /// Shows tr(\a text) at the largest pixel size, up to the font's own, that fits.
    void setText(QString text);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    // The pixel size the text is shown at: the largest, up to \a fullSize, that fits.
    int fittedPixelSize(int fullSize) const;
    // The width the text is drawn in with \a font: the contents less QLabel's indent.
    int textWidth(const QFont& font) const;

    QString m_shownText;
    // Untranslated, so that a resize can fit it again from the font's full size.
    QString m_text;
};

#endif
