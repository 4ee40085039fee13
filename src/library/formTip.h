// formTip: "Tip of the Day", one line of TIPOFDAY.TXT, shown without blocking at start-up.
#pragma once
#include <QDialog>
#include <QString>
#include <QStringList>

class QLabel;
class QPushButton;
class QCheckBox;

namespace vexil {

class formTip : public QDialog {
    Q_OBJECT
public:
    static constexpr const char* TipsFileName = "TIPOFDAY.TXT";
    static constexpr const char* SettingSection = "Prefrences";
    static constexpr const char* SettingKey = "Show Tips at Startup";

    // Loads application folder + "/TIPOFDAY.TXT" (tipsFile overrides) and shows the current tip.
    explicit formTip(QWidget* parent = nullptr, const QString& tipsFile = QString());

    // Reads each line into Tips; a random start index from 1 to the count. False if the file is missing.
    bool LoadTips(const QString& file);
    void DisplayCurrentTip();
    void cmdNextTip_Click();
    void cmdOk_Click();
    void chkLoadTipsAtStartup_Click();
    void ApplyLanguage();

    // True if the setting is not 0 and the tips file holds tips: then the start-up shows the form.
    static bool ShouldShowAtStartup(const QString& tipsFile = QString());
    static QString DefaultTipsFile();

    QStringList Tips;       // 1-based in the design: CurrentTip 1..Tips.size()
    int CurrentTip = 0;
    QLabel* lblTipText = nullptr;
    QPushButton* cmdNextTip = nullptr;
    QPushButton* cmdOk = nullptr;
    QCheckBox* chkLoadTipsAtStartup = nullptr;

private:
    QString m_file;
    QLabel* m_heading = nullptr;
};

} // namespace vexil
