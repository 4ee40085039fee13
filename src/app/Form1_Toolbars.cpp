// Form1: the toolbar bands CoolBar1 with Toolbar1(0) to Toolbar1(7): their
// buttons, tool tips by band (base id + button index), and the saved state of the bands.
//
// A band's state is one value of "Interface"/"Coolbar1 Band<n>", six lines joined by LF:
//   the child's name ("Toolbar1<i>" or "Frame"), the child index (-1 for a frame), the visible flag
//   ("True"/"False"), then the break flag (-1/0), the width in twips and the band index as integers.
#include "Form1.h"

#include "frame/AppIcons.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"

#include <QActionGroup>
#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QToolBar>

namespace vexil {

namespace {

struct ButtonSpec {
    const char* key; // the button's key
    const char* glyph;
    bool checkable;
};
struct BandSpec {
    int baseId; // tool tip of button i: baseId + i
    std::vector<ButtonSpec> buttons;
};

// The eight bands of the form's design. Band 2 holds "Select" (the first activation presses it),
// band 7 holds "3D Card Toggle" (the eighth band of NewWorld).
const std::array<BandSpec, Form1::BandCount>& bandSpecs() {
    static const std::array<BandSpec, Form1::BandCount> specs{{
        {100, {{"New", "", false}, {"Open", "", false}, {"Save", "", false}}},
        {118, {{"Zoom Extents", "ZE", false}, {"Zoom Extents All", "ZA", false}, {"Min/Max Toggle", "\u25a3", false},
               {"Center Obj In View", "\u2295", false}}},
        {103, {{"Select", "\u2196", true}, {"Move", "\u2725", true}, {"Rotate", "\u21bb", true}, {"Scale", "\u2922", true}}},
        {107, {{"Pan", "\u21c4", true}, {"Revolve", "\u27f2", true}, {"Zoom Camera", "\u2315", true},
               {"Move Camera", "\u21f5", true}, {"Roll Camera", "\u21ba", true}}},
        {112, {{"Align", "\u2261", true}, {"Duplicate", "\u2750", false}, {"Mirror", "\u25e7", false},
               {"Atmosphere", "\u2601", false}, {"Displace", "\u224b", false}}},
        {117, {{"Selection List", "\u2630", false}}},
        {395, {{"Grid", "#", true}, {"Grid Snap", "\u229e", true}}},
        {122, {{"Wireframe", "\u25c7", true}, {"3D Card Toggle", "3D", true}}},
    }};
    return specs;
}

QIcon glyphIcon(const QString& glyph, const QColor& color) {
    QPixmap pm(40, 40);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(color.darker(140), 2));
    p.setBrush(color.lighter(170));
    p.drawRoundedRect(QRectF(2, 2, 36, 36), 7, 7);
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(glyph.size() > 1 ? 17 : 24);
    p.setFont(f);
    p.setPen(color.darker(220));
    p.drawText(QRect(0, 0, 40, 40), Qt::AlignCenter, glyph);
    return QIcon(pm);
}

const char* const kBandKey = "buttonKey";
const char* const kTipId = "tipId";

int toolModeOfKey(const QString& key) {
    static const char* const modes[] = {"Select", "Pan", "Move", "Rotate", "Scale", "Revolve", "Zoom Camera", "Move Camera", "Roll Camera"};
    static const int numbers[] = {0, 4, 1, 2, 3, 5, 6, 7, 8};
    for (int i = 0; i < 9; ++i)
        if (key == QLatin1String(modes[i])) return numbers[i];
    return -1;
}

} // namespace

void Form1::buildToolbars() {
    static const QColor bandColors[BandCount] = {QColor(90, 130, 200), QColor(80, 160, 160), QColor(200, 140, 60),
                                                 QColor(120, 100, 190), QColor(90, 160, 90), QColor(160, 110, 150),
                                                 QColor(130, 130, 130), QColor(190, 90, 90)};
    auto* toolGroup = new QActionGroup(this);
    toolGroup->setExclusive(true);
    QStyle* style = QApplication::style();
    for (int b = 0; b < BandCount; ++b) {
        auto* tb = new QToolBar(this);
        tb->setObjectName(QStringLiteral("Toolbar1%1").arg(b));
        tb->setIconSize(QSize(20, 20));
        tb->setMovable(true);
        tb->setFloatable(false);
        tb->setAllowedAreas(Qt::TopToolBarArea);
        const BandSpec& spec = bandSpecs()[size_t(b)];
        for (size_t i = 0; i < spec.buttons.size(); ++i) {
            const ButtonSpec& bs = spec.buttons[i];
            const QString key = QString::fromUtf8(bs.key);
            // The icon set shipped beside the program; a drawn tile if its file is missing.
            QIcon icon = ButtonIcon(key);
            if (icon.isNull()) {
                if (key == QLatin1String("New")) icon = style->standardIcon(QStyle::SP_FileIcon);
                else if (key == QLatin1String("Open")) icon = style->standardIcon(QStyle::SP_DialogOpenButton);
                else if (key == QLatin1String("Save")) icon = style->standardIcon(QStyle::SP_DialogSaveButton);
                else icon = glyphIcon(QString::fromUtf8(bs.glyph), bandColors[b]);
            }
            QAction* a = tb->addAction(icon, key);
            a->setObjectName(QStringLiteral("Toolbar1%1_%2").arg(b).arg(key));
            a->setProperty(kBandKey, key);
            a->setProperty(kTipId, spec.baseId + int(i));
            a->setCheckable(bs.checkable);
            m_toolbarButtons.push_back(a);
            const int mode = toolModeOfKey(key);
            if (mode >= 0) {
                toolGroup->addAction(a);
                connect(a, &QAction::triggered, this, [this, mode] {
                    handleEvent("Form1", "Toolbar1_ButtonClick", [&] { SetToolMode(mode); });
                });
            }
        }
        Toolbar1[size_t(b)] = tb;
    }
    // Buttons with commands of their own.
    auto on = [this](const char* key, std::function<void()> f) {
        if (QAction* a = ToolbarButton(QString::fromUtf8(key)))
            connect(a, &QAction::triggered, this, [f] { handleEvent("Form1", "Toolbar1_ButtonClick", f); });
    };
    on("New", [this] { mnuNew_Click(); });
    on("Open", [this] { mnuOpenFile_Click(); });
    on("Save", [this] { mnuSave_Click(); });
    on("Zoom Extents", [this] { ZoomExtentSingle(ActiveWin); });
    on("Zoom Extents All", [this] { ZoomExtentAll(); });
    on("Min/Max Toggle", [this] { ToggleWindowMinMax(); });
    on("Center Obj In View", [this] { CenterObjInView(); });
    on("Duplicate", [this] { DuplicatGrp(); });
    on("Mirror", [this] { MirrorObjects(); });
    on("Atmosphere", [this] { ShowAtmosphereForm(); });
    on("Displace", [this] { DisplaceGrp(); });
    on("Selection List", [this] { ShowSelectionWindow(); });
    on("Grid", [this] { ToggleGridVisibility(ActiveWin); });
    on("Wireframe", [this] { ToggleWireframe(); });
    on("3D Card Toggle", [this] { Toggle3DCard(); });

    // The form-time arrangement: all bands in order, a new row from band 4.
    m_bandOrder.clear();
    m_bandBreak.clear();
    std::vector<bool> visible;
    for (int b = 0; b < BandCount; ++b) {
        m_bandOrder.push_back(b);
        m_bandBreak.push_back(b == 4);
        visible.push_back(true);
    }
    layoutBands(m_bandOrder, m_bandBreak, visible);
}

void Form1::applyToolbarLanguage() {
    for (QAction* a : m_toolbarButtons) {
        const QString tip = GetLocaleString(a->property(kTipId).toInt());
        a->setToolTip(tip);
        a->setText(tip);
    }
    for (int b = 0; b < BandCount; ++b)
        Toolbar1[size_t(b)]->setWindowTitle(mnuToolbarBand[size_t(b)] ? mnuToolbarBand[size_t(b)]->text() : QString());
}

QAction* Form1::ToolbarButton(const QString& key) const {
    for (QAction* a : m_toolbarButtons)
        if (a->property(kBandKey).toString() == key) return a;
    return nullptr;
}

void Form1::layoutBands(const std::vector<int>& order, const std::vector<bool>& breaks, const std::vector<bool>& visible) {
    for (QToolBar* tb : Toolbar1) {
        removeToolBarBreak(tb);
        removeToolBar(tb);
    }
    for (size_t i = 0; i < order.size(); ++i) {
        QToolBar* tb = Toolbar1[size_t(order[i])];
        if (i > 0 && breaks[i]) addToolBarBreak(Qt::TopToolBarArea);
        addToolBar(Qt::TopToolBarArea, tb);
        tb->setVisible(visible[i] && CoolBar1Visible);
    }
    // Bands that are not listed stay out of the bar.
    for (int b = 0; b < BandCount; ++b) {
        const bool listed = std::find(order.begin(), order.end(), b) != order.end();
        if (!listed) Toolbar1[size_t(b)]->hide();
        size_t pos = 0;
        for (; pos < order.size() && order[pos] != b; ++pos) {}
        if (mnuToolbarBand[size_t(b)]) mnuToolbarBand[size_t(b)]->setChecked(listed && visible[pos]);
    }
    m_bandOrder = order;
    m_bandBreak = breaks;
}

QString Form1::BandState(int band) const {
    const int tb = m_bandOrder.at(size_t(band));
    QToolBar* t = Toolbar1[size_t(tb)];
    const bool visible = mnuToolbarBand[size_t(tb)] ? mnuToolbarBand[size_t(tb)]->isChecked() : t->isVisible();
    const int width = int(std::lround(PixelsToTwipsX(t->sizeHint().width())));
    return QStringLiteral("Toolbar1%1\n%2\n%3\n%4\n%5\n%6")
        .arg(tb)
        .arg(tb)
        .arg(BoolText(visible))
        .arg(m_bandBreak.at(size_t(band)) ? -1 : 0)
        .arg(width)
        .arg(band);
}

void Form1::SaveOriginalStateOfAllFormTlbrs() {
    m_originalBandState.clear();
    for (int b = 0; b < int(m_bandOrder.size()); ++b) m_originalBandState.push_back(BandState(b));
}

void Form1::SaveToolbars() {
    const int n = int(m_bandOrder.size());
    for (int b = 0; b < n; ++b)
        SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band%1").arg(b), BandState(b));
    // The empty string for numbers beyond the last.
    for (int b = n; b < BandCount + 8; ++b)
        if (!GetSetting(SecInterface, QStringLiteral("Coolbar1 Band%1").arg(b)).isEmpty() || b == n)
            SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band%1").arg(b), QString());
}

namespace {
struct ParsedBand {
    int toolbar = -1; // -1: a frame
    bool visible = true;
    bool brk = false;
    int width = 0;
    int index = 0;
};

bool parseInt(const QString& s, int& v) {
    bool ok = false;
    v = s.trimmed().toInt(&ok);
    return ok;
}

bool parseBand(const QString& value, ParsedBand& out) {
    const QStringList lines = value.split(QLatin1Char('\n'));
    if (lines.size() < 6) return false;
    const QString name = lines[0].trimmed();
    int childIndex = 0;
    if (!parseInt(lines[1], childIndex)) return false;
    if (name == QLatin1String("Frame")) {
        out.toolbar = -1;
    } else if (name.startsWith(QLatin1String("Toolbar1"))) {
        int n = 0;
        if (!parseInt(name.mid(8), n) || n < 0 || n >= Form1::BandCount) return false;
        out.toolbar = n;
    } else {
        return false;
    }
    const QString vis = lines[2].trimmed();
    if (vis.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) out.visible = true;
    else if (vis.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) out.visible = false;
    else {
        int v = 0;
        if (!parseInt(vis, v)) return false;
        out.visible = v != 0;
    }
    int brk = 0;
    if (!parseInt(lines[3], brk) || !parseInt(lines[4], out.width) || !parseInt(lines[5], out.index)) return false;
    out.brk = brk != 0;
    return true;
}
} // namespace

void Form1::RestoreToolbars() {
    propagate("Form1", "RestoreToolbars", [&] {
        std::vector<ParsedBand> bands;
        for (int b = 0; b < 64; ++b) {
            const QString value = GetSetting(SecInterface, QStringLiteral("Coolbar1 Band%1").arg(b));
            if (value.isEmpty()) break;
            ParsedBand pb;
            bool ok = parseBand(value, pb);
            if (ok && pb.toolbar >= 0)
                for (const ParsedBand& other : bands) ok = ok && other.toolbar != pb.toolbar;
            if (!ok) {
                dialogs().msgBox(GetLocaleString(636), MsgOKOnly, MsgExclamation);
                ResetToolbar();
                return;
            }
            bands.push_back(pb);
        }
        if (bands.empty()) return; // nothing saved: the form's arrangement stays
        std::vector<int> order;
        std::vector<bool> breaks, visible;
        for (const ParsedBand& pb : bands) {
            if (pb.toolbar < 0) continue; // frames belong to plug-ins, which add their bands when loaded
            order.push_back(pb.toolbar);
            breaks.push_back(pb.brk);
            visible.push_back(pb.visible);
        }
        layoutBands(order, breaks, visible);
    });
}

void Form1::ResetToolbar() {
    std::vector<int> order;
    std::vector<bool> breaks, visible;
    // The form-time arrangement, as stored at the first activation (or the design if not yet stored).
    for (int b = 0; b < BandCount; ++b) {
        order.push_back(b);
        visible.push_back(true);
        bool brk = b == 4;
        if (size_t(b) < m_originalBandState.size()) {
            ParsedBand pb;
            if (parseBand(m_originalBandState[size_t(b)], pb)) brk = pb.brk;
        }
        breaks.push_back(brk);
    }
    layoutBands(order, breaks, visible);
    for (QAction* a : mnuToolbarBand) a->setChecked(true);
}

int Form1::GetIndxOfNewToolbarPlugin() const {
    int n = 0;
    while (!GetSetting(SecInterface, QStringLiteral("Coolbar1 Band%1").arg(n)).isEmpty()) ++n;
    return std::max(n, int(m_bandOrder.size()));
}

} // namespace vexil
