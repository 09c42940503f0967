#include "OpenDialogRecord.h"

void OpenDialogRecord::enter(const void* dialog, const QString& title)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_titles.insert(dialog, title);
}

void OpenDialogRecord::remove(const void* dialog)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_titles.remove(dialog);
}

bool OpenDialogRecord::isOpen(const QString& title) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_titles.cbegin(); it != m_titles.cend(); ++it) {
        if (it.value() == title)
            return true;
    }
    return false;
}
