// frmBackground: the current background's name, bitmap and fade numbers. A typed value is stored only by
// Enter; leaving a box without Enter brings the engine's value back. The bitmap button loads a new bitmap
// for the background (the old one stays loaded).
#pragma once
#include <QWidget>
#include <array>
#include <functional>

class QLineEdit;
class QPushButton;

namespace vexil {

class TracksHost;

class BackgroundPanel : public QWidget {
    Q_OBJECT
  public:
    enum Field { Name = 0, Bottom, BottomInt, Dist, IntStp, FieldCount };

    BackgroundPanel(TracksHost& host, QWidget* parent = nullptr);

    void SetBackGndFrame(int background);
    int Background() const { return m_background; }
    void cmbBkgMap_Click();
    // The trio of every box: a change marks it, Enter commits, leaving without Enter restores.
    void txtBkg_Change(int field);
    void txtBkg_Enter(int field);
    void txtBkg_LostFocus(int field);
    bool Marked(int field) const;

    std::array<QLineEdit*, FieldCount> txt{};
    QLineEdit* txtBkgMap = nullptr;
    QPushButton* cmbBkgMap = nullptr;
    // After a committed value: the panels of the selection are refreshed.
    std::function<void()> Committed;

  protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

  private:
    QString engineText(int field) const;
    void mark(int field, bool on);

    TracksHost& m_host;
    int m_background = 0;
    bool m_guard = false;
};

// "" when cancelled; the path of a bitmap file chosen in the open dialog otherwise.
QString GetOpenedBitmapFile();

} // namespace vexil
