#include "progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "output.h"

namespace torvi {
namespace {

constexpr qint64 kRedrawMs = 100;
constexpr int kFewestColumns = 40;

int terminalColumns() {
    winsize size = {};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return std::max<int>(size.ws_col, kFewestColumns);
}

QString clockText(qint64 seconds) {
    const QLatin1Char zero('0');
    if (seconds >= 3600) {
        return QStringLiteral("%1:%2:%3")
            .arg(seconds / 3600)
            .arg(seconds / 60 % 60, 2, 10, zero)
            .arg(seconds % 60, 2, 10, zero);
    }
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, zero);
}

}  // namespace

bool Progress::s_barShown = false;

Progress::Style Progress::styleFor(bool quiet) {
    if (quiet) return Style::None;
    return ::isatty(STDERR_FILENO) != 0 ? Style::Bar : Style::Lines;
}

Progress::Progress(const QString& label, int64_t total, int64_t already, bool quiet)
    : m_style(styleFor(quiet)),
      m_label(printable(label)),
      m_total(std::max<int64_t>(total, 0)),
      m_already(already),
      m_done(already),
      m_lastTenth(percent() / 10) {
    m_clock.start();
}

Progress::Progress(const QString& label, bool quiet) : Progress(label, 100, 0, quiet) {
    m_bytes = false;
}

Progress::~Progress() {
    endLine();
}

void Progress::endLine() {
    if (s_barShown) std::fputc('\n', stderr);
    s_barShown = false;
}

int Progress::percent() const {
    if (m_total == 0) return 100;
    return static_cast<int>(static_cast<long double>(m_done) * 100 / static_cast<long double>(m_total));
}

void Progress::update(int64_t done) {
    m_done = std::clamp<int64_t>(done, m_done, m_total);
    if (m_style == Style::Lines && percent() / 10 > m_lastTenth && percent() < 100) {
        m_lastTenth = percent() / 10;
        drawLine(m_lastTenth * 10);
    }
    if (m_style == Style::Bar && (!s_barShown || m_clock.elapsed() - m_lastDrawn >= kRedrawMs)) drawBar();
}

void Progress::finish() {
    m_done = m_total;
    if (m_style == Style::Lines) drawLine(100);
    if (m_style == Style::Bar) drawBar();
}

void Progress::drawLine(int percent) {
    if (!m_bytes) {
        std::fprintf(stderr, "%s: %d%%\n", utf8(m_label).c_str(), percent);
        return;
    }
    std::fprintf(stderr, "%s: %d%% (%s of %s)\n", utf8(m_label).c_str(), percent,
                 utf8(humanSize(m_done)).c_str(), utf8(humanSize(m_total)).c_str());
}

void Progress::drawBar() {
    m_lastDrawn = m_clock.elapsed();
    s_barShown = true;
    QString facts = QStringLiteral(" %1%").arg(percent(), 3);
    if (m_bytes) facts += QStringLiteral(" %1").arg(humanSize(m_done), 10);
    if (m_bytes && m_lastDrawn > 500 && m_done > m_already) {
        const double rate = static_cast<double>(m_done - m_already) * 1000 / static_cast<double>(m_lastDrawn);
        facts += QStringLiteral(" %1/s").arg(humanSize(static_cast<int64_t>(rate)), 10);
        const bool ended = m_done == m_total;
        const auto seconds =
            ended ? m_lastDrawn / 1000 : static_cast<qint64>(static_cast<double>(m_total - m_done) / rate);
        facts += QStringLiteral(" %1 %2").arg(ended ? QStringLiteral("in") : QStringLiteral("eta"),
                                              clockText(seconds));
    }
    // The last column stays free, or some terminals would wrap.
    const int columns = terminalColumns() - 1;
    const int labelColumns = std::min(m_label.size(), columns / 3);
    QString label = m_label;
    if (label.size() > labelColumns) label = label.left(labelColumns - 1) + QChar(0x2026);
    const int room = columns - labelColumns - facts.size() - 3;
    QString bar;
    if (room >= 5) {
        const int filled =
            m_total == 0 ? room : static_cast<int>(static_cast<long double>(m_done) * room / m_total);
        bar = QStringLiteral(" [") + QString(filled, QLatin1Char('#')) +
              QString(room - filled, QLatin1Char('.')) + QLatin1Char(']');
    }
    std::fprintf(stderr, "\r\033[K%s%s%s", utf8(label).c_str(), utf8(bar).c_str(), utf8(facts).c_str());
    std::fflush(stderr);
}

Activity::Activity(const QString& label, bool quiet)
    : m_style(Progress::styleFor(quiet)), m_label(printable(label)) {
    if (m_style == Progress::Style::Lines) std::fprintf(stderr, "%s ...\n", utf8(m_label).c_str());
    if (m_style != Progress::Style::Bar) return;
    m_clock.start();
    draw();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { draw(); });
    m_timer.start(kRedrawMs);
}

Activity::~Activity() {
    if (m_style != Progress::Style::Bar || !Progress::s_barShown) return;
    std::fputs("\r\033[K", stderr);
    Progress::s_barShown = false;
}

void Activity::draw() {
    static constexpr const char* kTurns = "|/-\\";
    const QString clock = clockText(m_clock.elapsed() / 1000);
    const int room = terminalColumns() - 1 - clock.size() - 4;
    QString label = m_label;
    if (label.size() > room) label = label.left(room - 1) + QChar(0x2026);
    std::fprintf(stderr, "\r\033[K%c %s  %s", kTurns[m_turn++ % 4], utf8(label).c_str(), utf8(clock).c_str());
    std::fflush(stderr);
    Progress::s_barShown = true;
}

}  // namespace torvi
