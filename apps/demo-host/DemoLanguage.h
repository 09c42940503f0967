#ifndef DEMOLANGUAGE_H
#define DEMOLANGUAGE_H

#include <QObject>

#include <functional>

class QPushButton;
class QWidget;

/**
 * The demo's language button: it switches the desktop between English and Traditional
 * Chinese while it runs, by setting the application option "currentLanguage" as a host
 * does. The demo's own texts follow the language through follow().
 */
class DemoLanguage : public QObject
{
    Q_OBJECT

public:
    /// Adds the button to \a desktop, at its lower right corner above the row of
    /// buttons there.
    explicit DemoLanguage(QWidget* desktop);

    /// Calls \a showTexts now and after every change of language, for as long as
    /// \a context lives.
    static void follow(QObject* context, const std::function<void()>& showTexts);

private:
    void toggle();

    QPushButton* m_button;
};

#endif
