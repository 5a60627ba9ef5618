#pragma once

#include <QElapsedTimer>
#include <QString>
#include <cstdint>

namespace torvi {

/// How far a transfer has come, on stderr: a bar that redraws itself on a terminal, a line for each tenth
/// elsewhere, nothing when asked to be quiet.
class Progress {
public:
    Progress(const QString& label, int64_t total, int64_t already, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void update(int64_t done);
    /// The transfer has ended well.
    void finish();

    /// Ends the line of a bar that stands on the terminal, so that other text begins on a line of its own.
    static void endLine();

private:
    enum class Style { None, Lines, Bar };
    void drawBar();
    void drawLine(int percent);
    int percent() const;

    Style m_style;
    QString m_label;
    int64_t m_total;
    int64_t m_already;
    int64_t m_done;
    int m_lastTenth;
    static bool s_barShown;
    qint64 m_lastDrawn = 0;
    QElapsedTimer m_clock;
};

}  // namespace torvi
