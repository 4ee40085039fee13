// picBox, the workbench's own view: an engine render target of the widget's size shown through a
// back buffer, the rubber rectangle of point selection, and the paintable area that the model's
// diagnostic drawing and selected points are drawn on (SimplifyCanvas).
#pragma once
#include "simplify/SimplifyHost.h"

#include <QImage>
#include <QPoint>
#include <QWidget>
#include <functional>

class QPainter;

namespace vexil {

class SurfSimView : public QWidget, public simplify::SimplifyCanvas {
    Q_OBJECT
public:
    explicit SurfSimView(QWidget* parent = nullptr);
    ~SurfSimView() override;

    // The engine render target, made or resized to the widget's size; 0 for an empty widget.
    int Target();
    // The camera that projects (made current on the target before projecting).
    void SetCamera(int camera) { m_camera = camera; }
    // Copies the target's pixels into the back buffer, then lets `overlay` draw over it (the canvas
    // draws while it runs) and shows the result.
    void Compose(const std::function<void()>& overlay);
    QImage& BackBuffer() { return m_back; }

    // The rubber rectangle, in widget pixels; an empty one hides it.
    void SetRubberBand(const QPoint& a, const QPoint& b);
    void HideRubberBand();
    bool RubberBandShown() const { return m_band; }

    // ---- SimplifyCanvas ----
    bool project(const double xyz[3], double& x, double& y) override;
    void drawLine(simplify::SimpPen pen, double x1, double y1, double x2, double y2) override;
    void drawCircle(simplify::SimpPen pen, double x, double y, double radius) override;
    // Drawing calls made since the last Compose (tests look at the diagnostic drawing).
    int LinesDrawn() const { return m_lines; }
    int CirclesDrawn() const { return m_circles; }

    // Mouse and paint events are handed to the window (buttons 1 left, 2 right, 4 middle).
    std::function<void(int button, int x, int y)> onMouseDown, onMouseMove, onMouseUp;
    std::function<void()> onResized;

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    int m_target = 0;
    int m_camera = 0;
    QImage m_back;
    QPainter* m_painter = nullptr; // while Compose's overlay runs
    bool m_band = false;
    QPoint m_bandA, m_bandB;
    int m_lines = 0, m_circles = 0;
};

} // namespace vexil
