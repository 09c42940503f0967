#ifndef SCREENSTATEMANAGER_H
#define SCREENSTATEMANAGER_H

#include "tzuicomponents_export.h"

#include <QObject>
#include <QString>
#include <QVector>
#include <QXmlStreamAttributes>

class QWidget;

/**
 * Stores the arrangement of the module windows as a short XML text (root
 * "ui_screen_states": which screens are open, where, in which size state, with which
 * geometry to return to, and in which stacking order) and recalls it. The host registers
 * it in the system module as "ScreenStateManager", where the remote SaveState and
 * RestoreState find it.
 *
 * Both may be called from any thread: store() reads the widgets in its own thread, and
 * every widget change of recall() is made there while the caller waits.
 */
class TZUICOMPONENTS_EXPORT ScreenStateManager : public QObject
{
    Q_OBJECT

public:
    /// Layout texts longer than this (in characters) are refused: a layout holds a line
    /// or two per screen.
    static constexpr int MaxLayoutLength = 1024 * 1024;
    /// Elements nested deeper than this are refused before the text is parsed (a stored
    /// layout is two deep); a hostile depth would overflow the parser's stack.
    static constexpr int MaxDepth = 16;
    /// At most this many screens are applied from one layout.
    static constexpr int MaxScreens = 1024;

    explicit ScreenStateManager(QObject* parent = nullptr);

    /// The visible screens that do not opt out (the property "screen_manager_save" set
    /// to false), as layout text.
    Q_INVOKABLE QString store();
    /// Hides the open containers (dialogs aside) and opens, places, sizes and stacks the
    /// screens of \a data. Text that is not a layout is logged and changes nothing.
    Q_INVOKABLE void recall(QString data);

    /// Invokes \a member of \a target (a slot "1name()" or a signal "2name()", as the
    /// SLOT() and SIGNAL() macros write them) in \a target's thread and waits for it;
    /// false when \a target has no such member or could not be reached.
    bool call(QObject* target, const char* member);

signals:
    void updatePosition(QWidget* screen, int x, int y);

private slots:
    void move(QWidget* screen, int x, int y);

private:
    // The attributes of each "screen" element of the layout \a data, in document order;
    // none, and the reason in \a problem, when \a data is no layout.
    static QVector<QXmlStreamAttributes> readLayout(const QString& data, QString* problem);
    // The registered screen \a name, or null; an unknown name is not entered.
    static QWidget* registeredScreen(const QString& name);
    // Runs \a work in this object's thread and waits for it.
    template <class Work>
    void inOwnThread(Work work);
};

#endif
