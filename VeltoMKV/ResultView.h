#pragma once

#include "VeltoMKV/Page.h"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace velto {

class AppState;

// The finished page: the new file, the proof about its timings, what stripping removed, the
// warnings of the run, and the ways on: see the file, or translate another.
class ResultView : public Page {
    Q_OBJECT

public:
    explicit ResultView(AppState& state, QWidget* parent = nullptr);

    // Whether the run that finished stripped SDH; only then the removals are counted.
    void setStripped(bool stripped);

    QLabel* outputName() const { return titleLabel(); }
    QLabel* removals() const { return m_removed; }
    // Shown only when cues stayed in the source language.
    QLabel* untranslated() const { return m_untranslated; }
    QWidget* warningsPanel() const { return m_warnings; }
    QPushButton* revealButton() const { return m_reveal; }
    // Names the subtitle file written beside the video, when both were written.
    QLabel* sidecarLine() const { return m_sidecar; }
    // Shown when that subtitle file lies in another folder than the video.
    QPushButton* revealSidecarButton() const { return m_revealSidecar; }
    QPushButton* anotherButton() const { return m_another; }

signals:
    void revealRequested(const QString& path);
    void anotherRequested();

private:
    void showResult();
    void showSidecar();

    AppState& m_state;
    bool m_stripped = false;
    QLabel* m_untranslated;
    QLabel* m_counts;
    // What the engine's requests took and cost.
    QLabel* m_usage;
    QLabel* m_removed;
    QLabel* m_sidecar;
    QPushButton* m_revealSidecar;
    QWidget* m_warnings;
    QLabel* m_warningsHeader;
    QVBoxLayout* m_warningLines;
    QPushButton* m_reveal;
    QPushButton* m_another;
};

} // namespace velto
