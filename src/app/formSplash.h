// formSplash: shown for at least 3 seconds at start; then it shows Form1, lingers
// 500 milliseconds and unloads itself.
#pragma once
#include <QTimer>
#include <QWidget>
#include <functional>

class QLabel;

namespace vexil {

class formSplash : public QWidget {
    Q_OBJECT
public:
    // showMainWindow: shows Form1 (Form_Load runs inside it).
    explicit formSplash(std::function<void()> showMainWindow, QWidget* parent = nullptr);

    // Times, in milliseconds (3000, 100 when IsDevelopmentRun; the linger 500). Tests may shorten them.
    static int& MinimumTimeMs();
    static int& LingerMs();

    // Form_Load of the splash: topmost, Timer1 to the minimum, restart.
    void Form_Load();
    // The activate handler: lets events run, sleeping 100 ms, until SplashTimeUp; then shows Form1,
    // lets events run, sleeps the linger and unloads itself.
    void Form_Activate();
    void Timer1_Timer();
    void lblWebSite_Click();

    bool SplashTimeUp = false;
    QTimer Timer1;
    QLabel* lblWebSite = nullptr;

private:
    std::function<void()> m_showMain;
};

} // namespace vexil
