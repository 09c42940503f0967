#ifndef ENGINELOSTOVERLAY_H
#define ENGINELOSTOVERLAY_H

#include <QWidget>

/**
 * The look of a bound widget whose engine is lost: covers the widget, dims what it shows
 * and draws a dashed outline around it, and takes every touch aimed at it so that
 * nothing under it reacts. The widget base keeps it over its other children.
 */
class EngineLostOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit EngineLostOverlay(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};

#endif
