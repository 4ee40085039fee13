// frmPicWins: construction, layout, splitters, focus frame, caption labels and the tool band.
#include "frmPicWins.h"

#include "ViewCursors.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "picWindow.h"

#include <QAction>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QScreen>
#include <QToolBar>
#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// Label of a window that lets mouse-ups through to the viewport area.
class CaptionLabel : public QLabel {
  public:
    CaptionLabel(frmPicWins& owner, int index, QWidget* parent)
        : QLabel(parent), m_owner(owner), m_index(index) {
        setObjectName(QStringLiteral("lblPicView%1").arg(index));
        setContentsMargins(4, 0, 4, 0);
    }

  protected:
    void mouseReleaseEvent(QMouseEvent* e) override {
        const QPoint g = e->globalPosition().toPoint();
        handleEvent("Form1", "lblPicView_MouseUp",
                    [&] { m_owner.lblPicView_MouseUp(m_index, ButtonOf(e->button()), g); });
    }

  private:
    frmPicWins& m_owner;
    int m_index;
};

const char* const ToolKeys[10] = {"Select",  "Move",        "Rotate",      "Scale",       "Pan",
                                  "Revolve", "Zoom Camera", "Move Camera", "Roll Camera", "Align"};

} // namespace

frmPicWins::frmPicWins(ViewportHost& host, QWidget* parent)
    : QWidget(parent), m_host(host), m_alive(std::make_shared<bool>(true)) {
    setObjectName(QStringLiteral("frmPicWins"));
    setMinimumHeight(TwipsToPixels(MinimumFrameHeightTwips));

    m_focusFrame = new QWidget(this);
    m_focusFrame->setObjectName(QStringLiteral("shpFocus"));
    m_focusFrame->setAutoFillBackground(true);
    m_focusFrame->hide();

    for (int i = 0; i < 4; ++i) {
        m_wins[i] = new picWindow(*this, i, this);
        m_labels[i] = new CaptionLabel(*this, i, this);
        m_cams[i] = std::make_unique<camera>(*this);
        m_grids[i] = std::make_unique<Grid>(*this);
        m_grids[i]->Initialize(i);
        m_pointerKey[i] = QStringLiteral("Select");
    }
    m_splitVert = new SplitterHandle(*this, 0, this);
    m_splitHoriz = new SplitterHandle(*this, 1, this);
    m_splitHV = new SplitterHandle(*this, 2, this);
    for (QWidget** rubber : {&m_rubberVert, &m_rubberHoriz}) {
        *rubber = new QWidget(this);
        (*rubber)->setAutoFillBackground(true);
        QPalette pal = (*rubber)->palette();
        pal.setColor(QPalette::Window, QColor(64, 64, 64));
        (*rubber)->setPalette(pal);
        (*rubber)->hide();
    }
    m_rubberVert->setObjectName(QStringLiteral("picSplitterVert"));
    m_rubberHoriz->setObjectName(QStringLiteral("picSplitterHoriz"));

    const int labels[4] = {LblTop, LblFront, LblPerspective, LblRight};
    for (int i = 0; i < 4; ++i)
        SetViewLabel(i, labels[i]);
    buildToolBand();
    picWinSetMousePtr(QStringLiteral("Select"));
    layoutWindows();
}

frmPicWins::~frmPicWins() {
    *m_alive = false;
    for (auto& c : m_cams)
        if (c) c->AutoRevolving = 0;
}

// ---- units -------------------------------------------------------------------------------------------

int frmPicWins::TwipsToPixels(double twips) const {
    const double dpi = logicalDpiX() > 0 ? logicalDpiX() : 96;
    return static_cast<int>(std::lround(twips * dpi / 1440.0));
}

double frmPicWins::PixelsToTwips(int pixels) const {
    const double dpi = logicalDpiX() > 0 ? logicalDpiX() : 96;
    return pixels * 1440.0 / dpi;
}

QSize frmPicWins::ScreenSize() {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    return s ? s->geometry().size() : QSize(1024, 768);
}

int frmPicWins::ActiveWindowHeight() {
    return m_wins[ActiveWin]->height();
}

int frmPicWins::ActiveWindowWidth() {
    return m_wins[ActiveWin]->width();
}

void frmPicWins::SetViewportCamera(int index, int handle) {
    if (index < 0 || index > 3) return;
    m_cams[index]->CamHandle = handle;
}

QString frmPicWins::ViewLabel(int i) const {
    return m_labels[i]->text();
}

void frmPicWins::SetViewLabel(int i, int stringId) {
    m_labelId[i] = stringId;
    m_labels[i]->setText(GetLocaleString(stringId));
}

void frmPicWins::ApplyLanguage() {
    for (int i = 0; i < 4; ++i)
        SetViewLabel(i, m_labelId[i]);
}

// ---- layout ------------------------------------------------------------------------------------------

void frmPicWins::resizeEvent(QResizeEvent* e) {
    picWinsResize(e->oldSize());
}

void frmPicWins::picWinsResize(QSize oldSize) {
    // The ratio of the cross handle's position to the old frame size, plus 0.0086 of its x and 0.0116 of its
    // y, is where the windows meet; the new layout puts the splitters at the same ratios. The ratio is kept
    // exactly: a position that differs from it by less than the pixel it was rounded to is that ratio, so
    // resizing never drifts the splitters.
    if (oldSize.width() > 0 && oldSize.height() > 0) {
        const QPoint p = m_splitHV->pos();
        const double fx = p.x() / double(oldSize.width()) + SplitterRatioX;
        const double fy = p.y() / double(oldSize.height()) + SplitterRatioY;
        if (std::abs(fx - m_fx) * oldSize.width() > 0.51) m_fx = std::clamp(fx, 0.0, 1.0);
        if (std::abs(fy - m_fy) * oldSize.height() > 0.51) m_fy = std::clamp(fy, 0.0, 1.0);
    }
    layoutWindows();
    if (m_host.WorldOpen() && isVisible()) UpdateCameras();
}

void frmPicWins::imgSplitterHV_ResetPos(double fx, double fy) {
    m_fx = std::clamp(fx, 0.0, 1.0);
    m_fy = std::clamp(fy, 0.0, 1.0);
    layoutWindows();
}

void frmPicWins::layoutWindows() {
    const int W = width(), H = height();
    const int gap = std::max(2, TwipsToPixels(80));
    const int labelH = fontMetrics().height() + 2;
    const int cx = static_cast<int>(std::lround(m_fx * W));
    const int cy = static_cast<int>(std::lround(m_fy * H));
    const int left[2] = {0, cx + gap / 2};
    const int right[2] = {cx - (gap - gap / 2), W};
    const int top[2] = {0, cy + gap / 2};
    const int bottom[2] = {cy - (gap - gap / 2), H};
    for (int i = 0; i < 4; ++i) {
        const int col = i % 2, row = i / 2;
        const int x = std::clamp(left[col], 0, W), y = std::clamp(top[row], 0, H);
        const int w = std::max(0, std::min(right[col], W) - x);
        const int h = std::max(0, std::min(bottom[row], H) - y);
        const int lh = std::min(labelH, h);
        m_labels[i]->setGeometry(x, y, w, lh);
        m_labels[i]->setVisible(w > 0 && lh > 0);
        m_wins[i]->setGeometry(x, y + lh, w, std::max(0, h - lh));
    }
    m_splitVert->setGeometry(cx - gap / 2, 0, gap, H);
    m_splitHoriz->setGeometry(0, cy - gap / 2, W, gap);
    // The cross handle's top left corner stands at the ratios less 0.0086 of the width and 0.0116 of the
    // height: those are its half sizes, so that position / size + 0.0086 (0.0116) is the ratio the windows
    // meet at, the rule picWinsResize keeps through every resize.
    const int hvLeft = static_cast<int>(std::lround((m_fx - SplitterRatioX) * W));
    const int hvTop = static_cast<int>(std::lround((m_fy - SplitterRatioY) * H));
    const int hvW = std::max(gap, static_cast<int>(std::lround(2 * SplitterRatioX * W)));
    const int hvH = std::max(gap, static_cast<int>(std::lround(2 * SplitterRatioY * H)));
    m_splitHV->setGeometry(hvLeft, hvTop, hvW, hvH);
    m_splitHV->raise();
    if (m_focusOn || m_focusFrame->isVisible()) SetWindowFocus();
}

void frmPicWins::Splitter_MouseDown(int kind, QPoint p) {
    Splitter_MouseMove(kind, p);
}

void frmPicWins::Splitter_MouseMove(int kind, QPoint p) {
    // The splitter is shown as a rubber line; the windows are resized at mouse-up.
    const int thick = std::max(2, TwipsToPixels(40));
    if (kind == 0 || kind == 2) {
        m_rubberVert->setGeometry(std::clamp(p.x(), 0, width()) - thick / 2, 0, thick, height());
        m_rubberVert->show();
        m_rubberVert->raise();
    }
    if (kind == 1 || kind == 2) {
        m_rubberHoriz->setGeometry(0, std::clamp(p.y(), 0, height()) - thick / 2, width(), thick);
        m_rubberHoriz->show();
        m_rubberHoriz->raise();
    }
}

void frmPicWins::Splitter_MouseUp(int kind, QPoint p) {
    m_rubberVert->hide();
    m_rubberHoriz->hide();
    if (width() < 1 || height() < 1) return;
    const double fx = (kind == 0 || kind == 2) ? double(p.x()) / width() : m_fx;
    const double fy = (kind == 1 || kind == 2) ? double(p.y()) / height() : m_fy;
    imgSplitterHV_ResetPos(fx, fy);
    if (m_host.WorldOpen()) UpdateCameras();
}

void frmPicWins::ToggleWindowMinMax() {
    if (!m_maximised) {
        m_savedFx = m_fx;
        m_savedFy = m_fy;
        // The cross goes to the far corner of the active window so that it fills the frame.
        const double fx = (ActiveWin % 2 == 0) ? 1.0 : 0.0;
        const double fy = (ActiveWin / 2 == 0) ? 1.0 : 0.0;
        m_maximised = true;
        imgSplitterHV_ResetPos(fx, fy);
    } else {
        m_maximised = false;
        imgSplitterHV_ResetPos(m_savedFx + 0.007, m_savedFy + 0.007);
    }
    if (m_host.WorldOpen()) UpdateCameras();
}

QRect frmPicWins::FocusFrameGeometry() const {
    const QRect r = m_wins[ActiveWin]->geometry();
    const int out = std::max(1, TwipsToPixels(10)), grow = std::max(2, TwipsToPixels(20));
    return QRect(r.x() - out, r.y() - out, r.width() + grow, r.height() + grow);
}

QColor frmPicWins::FocusFrameColor() const {
    return m_focusOn ? QColor(255, 255, 0) : QColor(0, 0, 225);
}

void frmPicWins::SetWindowFocus() {
    m_focusFrame->hide();
    m_focusFrame->setGeometry(FocusFrameGeometry());
    QPalette pal = m_focusFrame->palette();
    pal.setColor(QPalette::Window, FocusFrameColor());
    m_focusFrame->setPalette(pal);
    m_focusFrame->show();
    m_focusFrame->lower();
}

void frmPicWins::picWindow_GotFocus(int index) {
    ActiveWin = index;
    ViewHasFocus = true;
    m_focusOn = true;
    SetWindowFocus();
}

void frmPicWins::picWindow_LostFocus(int) {
    ViewHasFocus = false;
    m_focusOn = false;
    SetWindowFocus();
}

// ---- captions ----------------------------------------------------------------------------------------

bool frmPicWins::WorldHasCamera() const {
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c)) {
        bool viewCam = false;
        for (const auto& v : m_cams)
            viewCam = viewCam || v->CamHandle == c;
        if (!viewCam) return true;
    }
    return false;
}

QMenu* frmPicWins::WinViewMenu(int index) {
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mnuWinView"));
    const std::pair<int, int> items[] = {{LblTop, ViewTop},
                                         {LblBottom, ViewBottom},
                                         {LblLeft, ViewLeft},
                                         {LblRight, ViewRight},
                                         {LblFront, ViewFront},
                                         {LblBack, ViewBack},
                                         {LblPerspective, ViewPerspective}};
    for (const auto& [id, view] : items) {
        QAction* a = menu->addAction(GetLocaleString(id));
        a->setData(view);
    }
    QAction* cam = menu->addAction(GetLocaleString(LblCamera));
    cam->setObjectName(QStringLiteral("mnuWinViewCam"));
    cam->setData(int(ViewCamera));
    cam->setEnabled(WorldHasCamera());
    menu->addSeparator();
    QAction* mm = menu->addAction(QStringLiteral("Max/Min"));
    mm->setObjectName(QStringLiteral("mnuWinWiewMaxMin"));
    mm->setData(int(ViewMaxMin));
    Q_UNUSED(index);
    return menu;
}

void frmPicWins::lblPicView_MouseUp(int index, int button, QPoint globalPos) {
    if (index < 0 || index > 3) return;
    if (button != BtnRight) {
        ActiveWin = index;
        SetWindowFocus();
        if (m_host.WorldOpen()) {
            const int cam = m_shownCam[index] ? m_shownCam[index] : m_cams[index]->CamHandle;
            ZELMAR_camera_set_current(cam, m_wins[index]->Target());
        }
        return;
    }
    ActiveWin = index;
    SetWindowFocus();
    QMenu* menu = WinViewMenu(index);
    ViewSelected = ViewNone;
    const std::shared_ptr<bool> alive = m_alive;
    QAction* chosen = menu->exec(globalPos);
    if (!*alive) return;
    if (chosen) ViewSelected = chosen->data().toInt();
    menu->deleteLater();
    ApplyViewCommand(index, ViewSelected);
}

// ---- tools -------------------------------------------------------------------------------------------

void frmPicWins::buildToolBand() {
    m_toolBand = new QToolBar(QStringLiteral("Tools"));
    m_toolBand->setObjectName(QStringLiteral("Toolbar1Band2"));
    for (int m = 0; m < 10; ++m) {
        const QString key = QString::fromLatin1(ToolKeys[m]);
        QAction* a = m_toolBand->addAction(ToolIcon(key), key);
        a->setObjectName(key);
        a->setData(key);
        a->setCheckable(true);
        connect(a, &QAction::triggered, this, [this, key] {
            handleEvent("Form1", "Toolbar1_ButtonClick", [&] { Toolbar1_ButtonClick(key); });
        });
        m_toolActions[m] = a;
    }
    m_toolActions[0]->setChecked(true);
}

void frmPicWins::UseToolButtons(const std::array<QAction*, 10>& buttons) {
    for (int m = 0; m < 10; ++m) {
        QAction* a = buttons[m];
        if (!a) continue;
        const QString key = QString::fromLatin1(ToolKeys[m]);
        a->setCheckable(true);
        a->setChecked(m == m_toolMode);
        connect(a, &QAction::triggered, this, [this, key] {
            handleEvent("Form1", "Toolbar1_ButtonClick", [&] { Toolbar1_ButtonClick(key); });
        });
        m_toolActions[m] = a;
    }
}

void frmPicWins::SetToolMode(int mode) {
    if (mode < 0 || mode > 9) return;
    for (int m = 0; m < 10; ++m)
        m_toolActions[m]->setChecked(m == mode);
    m_toolMode = mode;
}

bool frmPicWins::AlignPressed() const {
    return m_toolActions[ToolAlign]->isChecked();
}

void frmPicWins::Toolbar1_ButtonClick(const QString& key) {
    m_host.ReleaseCutButton();
    const QString k = key.toLower();
    struct Row {
        const char* key;
        int mode;
        const char* pointer;
    };
    static const Row rows[] = {{"select", 0, "Select"},
                               {"move", 1, "Pointer"},
                               {"rotate", 2, "Pointer"},
                               {"scale", 3, "Pointer"},
                               {"pan", 4, "Pan"},
                               {"revolve", 5, "Revolve"},
                               {"zoom camera", 6, "Zoom"},
                               {"move camera", 7, "Move Camera"},
                               {"roll camera", 8, "Roll Camera"}};
    for (const Row& r : rows) {
        if (k != QLatin1String(r.key)) continue;
        SetToolMode(r.mode);
        QString pointer = QString::fromLatin1(r.pointer);
        if (r.mode == 0 && m_host.CreateTrackUp()) pointer = QStringLiteral("Cross hair");
        picWinSetMousePtr(pointer);
        return;
    }
    if (k == QLatin1String("align")) {
        if (AlignPressed()) {
            SetToolMode(ToolAlign);
            m_host.AlignObjects();
        } else {
            SetToolMode(ToolSelect);
            picWinSetMousePtr(QStringLiteral("Select"));
        }
    }
}

void frmPicWins::picWinSetMousePtr(const QString& name) {
    for (int i = 0; i < 4; ++i) {
        m_pointerKey[i] = name;
        m_wins[i]->setCursor(ViewCursor(name));
    }
}

void frmPicWins::SetMousePointer(const QString& key) {
    m_pointerKey[ActiveWin] = key;
    m_wins[ActiveWin]->setCursor(ViewCursor(key));
}

void frmPicWins::ResetMousePointer() {
    SetMousePointer(QStringLiteral("Pointer"));
}

void frmPicWins::Grid_ToggleSnap(bool allViews) {
    if (allViews) {
        for (auto& g : m_grids)
            g->ToggleSnap();
    } else {
        m_grids[ActiveWin]->ToggleSnap();
    }
}

} // namespace vexil
