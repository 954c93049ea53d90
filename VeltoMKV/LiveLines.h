#pragma once

#include <QList>
#include <QWidget>

#include "VeltoKit/translation/TranslationProgress.h"

class QLabel;

namespace velto {

// The latest translated cues in two quiet columns, the source in the secondary colour and the
// Spanish beside it, one line each, the newest at the bottom. Its height is that of all its
// rows from the start, so lines coming in never move what sits above it.
class LiveLines : public QWidget {
    Q_OBJECT

public:
    LiveLines(qsizetype rows, QWidget* parent);

    void setLines(const QList<TranslatedLine>& lines);
    // What each row shows, whole, top to bottom: source and translation.
    QList<TranslatedLine> shown() const { return m_lines; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Row {
        QLabel* source;
        QLabel* arrow;
        QLabel* translation;
    };

    void fit();

    QList<Row> m_rows;
    QList<TranslatedLine> m_lines;
};

} // namespace velto
