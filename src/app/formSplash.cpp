#include "formSplash.h"

#include "frame/Locale.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLabel>
#include <QMouseEvent>
#include <QUrl>
#include <QVBoxLayout>
#include <chrono>
#include <thread>

namespace vexil {

int& formSplash::MinimumTimeMs() {
    static int ms = 3000;
    return ms;
}
int& formSplash::LingerMs() {
    static int ms = 500;
    return ms;
}

namespace {
class ClickLabel : public QLabel {
public:
    using QLabel::QLabel;
    std::function<void()> clicked;
protected:
    void mouseReleaseEvent(QMouseEvent* e) override {
        QLabel::mouseReleaseEvent(e);
        if (clicked) clicked();
    }
};
} // namespace

formSplash::formSplash(std::function<void()> showMainWindow, QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint), m_showMain(std::move(showMainWindow)) {
    setObjectName(QStringLiteral("formSplash"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    setStyleSheet(QStringLiteral("QWidget#formSplash { background: qlineargradient(x1:0, y1:0, x2:1, y2:1, "
                                 "stop:0 #1d2b4a, stop:1 #44679e); } QLabel { color: white; }"));
    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(30, 24, 30, 20);
    auto* title = new QLabel(GetLocaleString(406), this);
    QFont f = title->font();
    f.setPointSizeF(f.pointSizeF() * 3.2);
    f.setBold(true);
    title->setFont(f);
    auto* version = new QLabel(GetLocaleString(407), this);
    auto* powered = new QLabel(GetLocaleString(408), this);
    auto* web = new ClickLabel(GetLocaleString(410), this);
    web->setCursor(Qt::PointingHandCursor);
    web->clicked = [this] { lblWebSite_Click(); };
    lblWebSite = web;
    v->addWidget(title);
    v->addWidget(version);
    v->addStretch(1);
    v->addWidget(powered);
    v->addWidget(web);
    resize(420, 240);
    connect(&Timer1, &QTimer::timeout, this, [this] { Timer1_Timer(); });
}

void formSplash::Form_Load() {
    setWindowFlag(Qt::WindowStaysOnTopHint, true);
    Timer1.setInterval(MinimumTimeMs());
    Timer1.start();
}

void formSplash::Form_Activate() {
    using namespace std::chrono_literals;
    while (!SplashTimeUp) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(100, std::max(1, MinimumTimeMs()))));
    }
    if (m_showMain) m_showMain();
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(std::chrono::milliseconds(LingerMs()));
    Timer1.stop();
    close();
}

void formSplash::Timer1_Timer() {
    Timer1.stop();
    SplashTimeUp = true;
    Timer1.setInterval(100);
    Timer1.start();
}

void formSplash::lblWebSite_Click() { QDesktopServices::openUrl(QUrl(QStringLiteral("https://example.org/vexil"))); }

} // namespace vexil
