#ifndef FIRSTFRAMESTAMP_H
#define FIRSTFRAMESTAMP_H

#include <QObject>

class QWidget;

/**
 * Writes "FIRST FRAME" and the CLOCK_MONOTONIC time in nanoseconds on standard output
 * once the first frame of a window has been painted, for the start-up benchmark, which
 * takes the same clock before it starts the program. Shared by the demo host and the
 * benchmark's bare Qt program, so both are stamped alike.
 */
class FirstFrameStamp : public QObject
{
public:
    explicit FirstFrameStamp(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window;
    bool m_painted = false;
};

#endif
