#include "ui/theme/theme.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace Theme {
namespace {

// Fusion with room to breathe: buttons, fields and list rows a little taller and wider than its
// compact defaults, which read as a tool for developers rather than a finished application.
class Roomy : public QProxyStyle {
public:
    Roomy() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) { setObjectName(QStringLiteral("fusion")); }
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        QSize s = QProxyStyle::sizeFromContents(type, option, size, widget);
        switch (type) {
        case CT_PushButton: return {s.width() + 18, std::max(s.height() + 4, 30)};
        case CT_ComboBox: return {s.width() + 8, std::max(s.height() + 4, 30)};
        case CT_ItemViewItem: return {s.width(), s.height() + 10};
        case CT_HeaderSection: return {s.width() + 8, s.height() + 10};
        default: return s;
        }
    }
};

// Column headings as quiet labels over a hairline rather than raised buttons.
const char* sheet = "QHeaderView { background: palette(base); border: none; }"
                    "QHeaderView::section { background: palette(base); color: palette(window-text);"
                    " border: none; border-bottom: 1px solid palette(mid); padding: 2px 3px; font-weight: 600; }"
                    // Buttons of one choice joined into a segmented control.
                    "QToolButton[segment=\"first\"], QToolButton[segment=\"middle\"], QToolButton[segment=\"last\"] {"
                    " border: 1px solid palette(mid); border-left: none; background: palette(button); padding: 3px 12px; }"
                    "QToolButton[segment=\"first\"]:checked, QToolButton[segment=\"middle\"]:checked,"
                    " QToolButton[segment=\"last\"]:checked { background: palette(highlight); color: palette(highlighted-text); }"
                    "QToolButton[segment=\"first\"] { border-left: 1px solid palette(mid);"
                    " border-top-left-radius: 6px; border-bottom-left-radius: 6px; }"
                    "QToolButton[segment=\"last\"] { border-top-right-radius: 6px; border-bottom-right-radius: 6px; }";

QPalette systemPalette;
bool remembered = false;
Scheme scheme = Scheme::paper;

QPalette build(Scheme s) {
    const bool night = s == Scheme::night;
    const QColor window = night ? QColor(0x1f, 0x22, 0x28) : QColor(0xf6, 0xf4, 0xef);
    const QColor base = night ? QColor(0x25, 0x29, 0x30) : QColor(0xff, 0xfe, 0xfb);
    const QColor alt = night ? QColor(0x2a, 0x2e, 0x36) : QColor(0xf1, 0xee, 0xe7);
    const QColor text = night ? QColor(0xe6, 0xe4, 0xdf) : QColor(0x2b, 0x2a, 0x27);
    const QColor dim = night ? QColor(0x8d, 0x91, 0x99) : QColor(0x86, 0x82, 0x7a);
    const QColor button = night ? QColor(0x32, 0x37, 0x40) : QColor(0xec, 0xe8, 0xdf);
    const QColor highlight = night ? QColor(0x6f, 0x9f, 0xd8) : QColor(0x3d, 0x6f, 0xb0);
    QPalette p;
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, alt);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, button);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, night ? QColor(0xff, 0xff, 0xff) : QColor(0, 0, 0));
    p.setColor(QPalette::Highlight, highlight);
    p.setColor(QPalette::HighlightedText, QColor(0xff, 0xff, 0xff));
    p.setColor(QPalette::ToolTipBase, base);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, dim);
    p.setColor(QPalette::Link, highlight);
    p.setColor(QPalette::Mid, night ? QColor(0x3a, 0x3f, 0x48) : QColor(0xd9, 0xd4, 0xca));
    p.setColor(QPalette::Midlight, alt);
    p.setColor(QPalette::Dark, night ? QColor(0x16, 0x18, 0x1c) : QColor(0xc4, 0xbf, 0xb4));
    p.setColor(QPalette::Shadow, QColor(0, 0, 0, night ? 160 : 60));
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, dim);
    p.setColor(QPalette::Disabled, QPalette::Button, window);
    return p;
}

}  // namespace

void rememberSystem() {
    if (remembered) return;
    systemPalette = QGuiApplication::palette();
    remembered = true;
}

Scheme systemScheme() {
    // Qt 6.4 has no colour-scheme hint: a dark window colour in the desktop's palette means night.
    rememberSystem();
    return systemPalette.color(QPalette::Window).lightness() < 128 ? Scheme::night : Scheme::paper;
}

void apply(Appearance appearance) {
    rememberSystem();
    static bool styled = false;
    if (!styled) QApplication::setStyle(new Roomy);
    styled = true;
    scheme = appearance == Appearance::night   ? Scheme::night
             : appearance == Appearance::paper ? Scheme::paper
                                               : systemScheme();
    QApplication::setPalette(build(scheme));
    // The sheet names palette colours, which it resolves when set: set again after every palette.
    qApp->setStyleSheet(QString());
    qApp->setStyleSheet(QLatin1String(sheet));
}

Scheme current() { return scheme; }

QColor paint(Paint paint, Scheme s) {
    // Soft tones, told apart by lightness as well as hue for common colour blindness; night's are
    // a step deeper so that they do not glare on the dark window.
    static const QColor paper[] = {
        {0x8f, 0xd1, 0xb0}, {0xb8, 0xa6, 0xe0}, {0x8c, 0xbd, 0xea}, {0xf2, 0xb3, 0x8a}, {0xee, 0xa3, 0xbd},
        {0xee, 0xd4, 0x7c}, {0x7f, 0xcc, 0xcf}, {0xd2, 0xbc, 0x96}, {0xa9, 0xa9, 0xa6}};
    static const QColor night[] = {
        {0x5f, 0xb8, 0x90}, {0x97, 0x85, 0xcf}, {0x5f, 0x9c, 0xd6}, {0xdb, 0x91, 0x63}, {0xd4, 0x7f, 0x9e},
        {0xd1, 0xb4, 0x55}, {0x52, 0xaf, 0xb3}, {0xb0, 0x9a, 0x74}, {0x82, 0x84, 0x88}};
    const int i = static_cast<int>(paint);
    return s == Scheme::night ? night[i] : paper[i];
}

QColor bucket(Bucket b) {
    return paint(b == Bucket::now ? Paint::mint : b == Bucket::call ? Paint::butter : Paint::stone);
}

QColor confidence(Confidence c) {
    return paint(c == Confidence::sure ? Paint::mint : c == Confidence::likely ? Paint::butter : Paint::lavender);
}

QColor muted() { return QApplication::palette().color(QPalette::PlaceholderText); }
QColor accent() { return QApplication::palette().color(QPalette::Highlight); }
QColor panel() { return QApplication::palette().color(QPalette::AlternateBase); }
QColor track() { return QApplication::palette().color(QPalette::Mid); }

QFont titleFont() {
    QFont f = QApplication::font();
    f.setPointSizeF(f.pointSizeF() * 1.7);
    f.setWeight(QFont::DemiBold);
    return f;
}

QFont figureFont() {
    QFont f = QApplication::font();
    f.setPointSizeF(f.pointSizeF() * 1.3);
    f.setWeight(QFont::DemiBold);
    return f;
}

QFont smallFont() {
    QFont f = QApplication::font();
    f.setPointSizeF(f.pointSizeF() * 0.9);
    return f;
}

}  // namespace Theme
