// formAbout: "About Vexil" (UI strings 405 to 413).
#pragma once
#include <QDialog>

class QLabel;
class QPushButton;

namespace vexil {

class formAbout : public QDialog {
    Q_OBJECT
public:
    explicit formAbout(QWidget* parent = nullptr);
    void ApplyLanguage();
    QLabel *lblTitle = nullptr, *lblVersion = nullptr, *lblPowered = nullptr, *lblFeedback = nullptr,
           *lblWebSite = nullptr;
    QPushButton* cmdOk = nullptr;
};

} // namespace vexil
