#include "VeltoMKV/LiveLines.h"

#include <QGridLayout>
#include <QLabel>

#include "VeltoKit/subtitles/CueText.h"
#include "VeltoMKV/Look.h"

namespace velto {

namespace {

// A cue on one line, as a viewer reads it: no style marks, its lines joined by spaces.
QString oneLine(const QString& text) {
    return CueText::visible(text).replace(u'\n', u' ');
}

QLabel* cell(QLabel* label) {
    label->setWordWrap(false);
    label->setTextFormat(Qt::PlainText);
    // The column decides the width and the text is cut to it, never the other way round.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    // Empty rows keep their height, so the first lines to come in move nothing.
    label->setMinimumHeight(label->fontMetrics().height());
    return label;
}

// Cuts `text` to the label's width with an ellipsis; the whole text is then its tooltip.
void showCut(QLabel* label, const QString& text) {
    const QString cut = label->fontMetrics().elidedText(text, Qt::ElideRight, label->width());
    label->setText(cut);
    label->setToolTip(cut == text ? QString() : text);
}

} // namespace

LiveLines::LiveLines(qsizetype rows, QWidget* parent)
    : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Look::rowGap);
    grid->setVerticalSpacing(Look::rowGap / 2);
    for (int row = 0; row < rows; ++row) {
        Row cells{cell(Look::secondary(QString(), this)), cell(Look::secondary(QString(), this)),
                  cell(new QLabel(this))};
        cells.arrow->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        cells.arrow->setFixedWidth(cells.arrow->fontMetrics().horizontalAdvance(u'→'));
        grid->addWidget(cells.source, row, 0);
        grid->addWidget(cells.arrow, row, 1);
        grid->addWidget(cells.translation, row, 2);
        m_rows.append(cells);
    }
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(2, 1);
}

void LiveLines::setLines(const QList<TranslatedLine>& lines) {
    m_lines.clear();
    for (const TranslatedLine& line : lines.last(std::min(lines.size(), m_rows.size())))
        m_lines.append({oneLine(line.source), oneLine(line.translation)});
    fit();
}

void LiveLines::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

void LiveLines::fit() {
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        const Row& cells = m_rows[row];
        const bool filled = row < m_lines.size();
        showCut(cells.source, filled ? m_lines[row].source : QString());
        showCut(cells.translation, filled ? m_lines[row].translation : QString());
        cells.arrow->setText(filled ? QStringLiteral("→") : QString());
    }
}

} // namespace velto
