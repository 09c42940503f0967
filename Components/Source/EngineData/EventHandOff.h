#ifndef EVENTHANDOFF_H
#define EVENTHANDOFF_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <QMutex>
#include <QObject>
#include <QString>

class QTimer;

#include <deque>
#include <functional>

/**
 * Carries event messages from the DDS threads into the GUI thread in batches, in the
 * order they came. A message pushed on another thread is queued under a lock, and the
 * GUI thread is woken once for as many as arrive before it runs; there it hands them to
 * the sink a slice at a time (a few milliseconds' worth), leaving room for timers and
 * painting between slices, so that a burst of thousands never stalls the desktop.
 * A message pushed on the GUI thread itself reaches the sink at once, after any still
 * queued. Lives in the GUI thread.
 */
class TZUICOMPONENTS_EXPORT EventHandOff : public QObject
{
    Q_OBJECT

public:
    struct Message
    {
        QString text;
        QString dateTime;
        Orvanth::Event::EventClass eventClass = Orvanth::Event::EVENT_INFO;
    };
    using Sink = std::function<void(const Message& message)>;

    /// The GUI thread's time for one slice, in milliseconds.
    static constexpr int SliceMs = 5;

    explicit EventHandOff(Sink sink, QObject* parent = nullptr);

    /// A hand-off owned by \a bar that takes what its updateMessage() signal carries,
    /// emitted on DDS threads, to its addMessage() in the GUI thread.
    template <class Bar>
    static EventHandOff* follow(Bar* bar)
    {
        auto* handOff = new EventHandOff(
            [bar](const Message& message) { bar->addMessage(message.text, message.dateTime, message.eventClass); }, bar);
        connect(
            bar, &Bar::updateMessage, handOff,
            [handOff](QString text, QString dateTime, Orvanth::Event::EventClass eventClass) {
                handOff->push({std::move(text), std::move(dateTime), eventClass});
            },
            Qt::DirectConnection);
        return handOff;
    }

    /// From any thread.
    void push(Message message);
    /// Messages queued and not yet handed to the sink.
    int pending() const;

private:
    void drain();
    /// Hands every queued message to the sink now.
    void drainAll();

    Sink m_sink;
    mutable QMutex m_mutex;
    std::deque<Message> m_queue;
    // Set while a drain is queued or running: further pushes do not wake the GUI again.
    bool m_woken = false;
    QTimer* m_nextSlice;
};

#endif
