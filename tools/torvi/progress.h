#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <cstdint>

namespace torvi {

/// How far something has come, on stderr: a bar that redraws itself on a terminal, a line for each tenth
/// elsewhere, nothing when asked to be quiet.
class Progress {
public:
    /// Of a transfer, in bytes.
    Progress(const QString& label, int64_t total, int64_t already, bool quiet);
    /// Of a job, of which the server tells percents alone.
    Progress(const QString& label, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void update(int64_t done);
    /// The transfer has ended well.
    void finish();

    /// Ends the line of a bar that stands on the terminal, so that other text begins on a line of its own.
    static void endLine();

private:
    friend class Activity;
    enum class Style { None, Lines, Bar };
    static Style styleFor(bool quiet);
    void drawBar();
    void drawLine(int percent);
    int percent() const;

    Style m_style;
    bool m_bytes = true;
    QString m_label;
    int64_t m_total;
    int64_t m_already;
    int64_t m_done;
    int m_lastTenth;
    static bool s_barShown;
    qint64 m_lastDrawn = 0;
    QElapsedTimer m_clock;
};

/// That something goes on of which nobody tells how far it is: the time that it takes, on a terminal; a line
/// at the start elsewhere.
class Activity {
public:
    Activity(const QString& label, bool quiet);
    ~Activity();
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

private:
    void draw();

    Progress::Style m_style;
    QString m_label;
    unsigned m_turn = 0;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

}  // namespace torvi
