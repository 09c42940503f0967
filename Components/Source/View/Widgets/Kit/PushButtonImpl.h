#ifndef PUSHBUTTONIMPL_H
#define PUSHBUTTONIMPL_H

#include "tzuicomponents_export.h"

#include "WidgetBaseImpl.h"

#include <QString>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace Lumaro {
namespace gui {

/**
 * A touch push button bound to a void engine attribute (an action): a press sends the
 * attribute's Set on the global thread pool, so a slow or dead engine never stalls the
 * GUI, and announces the press at once through clicked() and buttonPressed(). While the
 * attribute is locked the button shows a grey "Locked" badge.
 */
class TZUICOMPONENTS_EXPORT PushButtonImpl : public WidgetBaseImpl
{
    Q_OBJECT
    Q_PROPERTY(QString LabelText READ buttonText WRITE setButtonText)

public:
    explicit PushButtonImpl(QWidget* parent = nullptr);
    ~PushButtonImpl() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// The base's binding, then a check (on the pool) that the attribute is a void one;
    /// a mismatch is only logged.
    void bindAttribute(Orvanth::EngineReadingBase_ptr reading) override;

    Q_INVOKABLE QString buttonText() const { return m_buttonText; }
    Q_INVOKABLE void setButtonText(const QString& theText);
    /// Whether the text is shown translated (the default); a label that came from an
    /// engine is shown as it came.
    void setTextTranslated(bool translated);
    bool isTextTranslated() const { return m_textTranslated; }

    /// The black and orange look of a button whose action cannot be undone.
    void setCriticalStyle();
    /// Names the inner button, whose name buttonPressed() carries.
    void setButtonObjectName(const QString& name);
    /// The inner button the user presses.
    QPushButton* button() const { return m_button; }
    /// The grey badge that reads "Locked" while the attribute is locked.
    QLabel* lockBadge() const { return m_lockBadge; }

    /// Sends the attribute's Set with this user interface's locker id and waits for it,
    /// on the calling thread; a press runs it on the pool instead.
    virtual void sendSetCall();

public slots:
    void changeSize(const QString& size) override;
    void retranslate() override;
    void setLockImageVisible(const bool& visible) override;
    virtual void buttonClicked();
    /// Clicks the inner button, as a touch would.
    void emulateClick();

signals:
    void clicked();
    void buttonPressed(QString objName);

private:
    QString shownText() const;
    QString lockBadgeText() const;

    QString m_styleSheet;
    QString m_tallStyleSheet;
    QPushButton* m_button;
    QBoxLayout* m_layout;
    QString m_buttonText;
    QLabel* m_lockBadge;
    bool m_textTranslated = true;
};

} // namespace gui
} // namespace Lumaro

#endif
