#ifndef OPENDIALOGRECORD_H
#define OPENDIALOGRECORD_H

#include "tzuicomponents_export.h"

#include <QHash>
#include <QString>

#include <mutex>

/**
 * The titles of the remote dialogs open on the desktop, readable from any thread: the
 * receiver enters and removes dialogs in the GUI thread, and the servant answers
 * IsDialogActive from it on an ORB thread without waiting for the GUI thread.
 * A dialog is a key only; the record never follows the pointer.
 */
class TZUICOMPONENTS_EXPORT OpenDialogRecord
{
public:
    void enter(const void* dialog, const QString& title);
    /// Removes \a dialog; a dialog not entered, or removed before, is no error.
    void remove(const void* dialog);
    /// Whether a dialog titled \a title is open.
    bool isOpen(const QString& title) const;

private:
    mutable std::mutex m_mutex;
    QHash<const void*, QString> m_titles;
};

#endif
