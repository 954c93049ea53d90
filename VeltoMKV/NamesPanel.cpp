#include "VeltoMKV/NamesPanel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/state/NameList.h"

namespace velto {
namespace {

constexpr int termColumn = 0;
constexpr int renderingColumn = 1;
// The term a row showed, so an edit knows which entry it changes.
constexpr int termRole = Qt::UserRole;

} // namespace

NamesPanel::NamesPanel(AppState& state, QWidget* parent)
    : QWidget(parent)
    , m_list(new NameList(state, this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);

    auto* row = new QHBoxLayout();
    m_disclosure = Look::disclosure(QStringLiteral("Nombres y términos"), this);
    row->addWidget(m_disclosure, 0, Qt::AlignLeft);
    row->addSpacing(Look::rowGap);
    m_summary = new ElidingLabel(this, Qt::ElideRight);
    m_summary->setForegroundRole(QPalette::PlaceholderText);
    row->addWidget(m_summary, 1);
    layout->addLayout(row);

    m_body = new QWidget(this);
    auto* body = new QVBoxLayout(m_body);
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(Look::rowGap / 2);
    m_table = new QTableWidget(0, 2, m_body);
    m_table->setHorizontalHeaderLabels({QStringLiteral("Término"), QStringLiteral("En español")});
    m_table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->verticalHeader()->setVisible(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::AnyKeyPressed);
    // About six rows; the rest scroll.
    m_table->setFixedHeight(m_table->horizontalHeader()->sizeHint().height() +
                            6 * fontMetrics().height() * 3 / 2 + 2 * m_table->frameWidth());
    body->addWidget(m_table);
    auto* buttons = new QHBoxLayout();
    m_note = Look::secondary(QString(), m_body);
    m_note->setWordWrap(true);
    buttons->addWidget(m_note, 1);
    auto* add = Look::button(QStringLiteral("Agregar"), m_body);
    m_remove = Look::button(QStringLiteral("Quitar"), m_body);
    buttons->addWidget(add, 0, Qt::AlignTop);
    buttons->addWidget(m_remove, 0, Qt::AlignTop);
    body->addLayout(buttons);
    m_body->setVisible(false);
    layout->addWidget(m_body);

    connect(m_disclosure, &QToolButton::toggled, this, [this](bool open) {
        m_body->setVisible(open);
        // On a small screen the list opens below the fold; once laid out, bring it into view.
        if (open)
            QTimer::singleShot(0, this, &NamesPanel::bringIntoView);
    });
    connect(m_table, &QTableWidget::cellChanged, this, &NamesPanel::cellEdited);
    connect(m_table, &QTableWidget::itemSelectionChanged, this,
            [this] { m_remove->setEnabled(!m_table->selectedItems().isEmpty()); });
    connect(add, &QPushButton::clicked, this, &NamesPanel::addRow);
    connect(m_remove, &QPushButton::clicked, this, &NamesPanel::removeRow);
    connect(m_list, &NameList::changed, this, &NamesPanel::showList);
    showList();
}

QString NamesPanel::summaryText() const {
    const QList<Glossary::Entry>& entries = m_list->entries();
    const auto count = [](qsizetype n, const char* one, const char* many) -> QString {
        return QString::number(n) + u' ' + QString::fromUtf8(n == 1 ? one : many);
    };
    qsizetype translated = 0;
    for (const Glossary::Entry& entry : entries)
        translated += entry.keeps() ? 0 : 1;
    // Short enough for a narrow window: what stays as it is needs no words.
    QStringList parts;
    if (!entries.isEmpty())
        parts.append(count(entries.size(), "nombre", "nombres"));
    if (translated > 0)
        parts.append(count(translated, "se traduce", "se traducen"));
    if (m_list->isSearching())
        parts.append(QStringLiteral("buscando nombres…"));
    else if (entries.isEmpty())
        parts.append(QStringLiteral("ninguno todavía"));
    return parts.join(QStringLiteral(" · "));
}

void NamesPanel::bringIntoView() {
    for (QWidget* up = parentWidget(); up; up = up->parentWidget()) {
        if (auto* scroll = qobject_cast<QScrollArea*>(up)) {
            scroll->ensureWidgetVisible(m_body, 0, 0);
            return;
        }
    }
}

void NamesPanel::showList() {
    m_summary->setText(summaryText());
    const QSignalBlocker block(m_table);
    const QList<Glossary::Entry>& entries = m_list->entries();
    m_table->setRowCount(static_cast<int>(entries.size()));
    for (int row = 0; row < entries.size(); ++row) {
        auto* term = new QTableWidgetItem(entries[row].term);
        term->setData(termRole, entries[row].term);
        m_table->setItem(row, termColumn, term);
        m_table->setItem(row, renderingColumn, new QTableWidgetItem(entries[row].rendering));
    }
    m_remove->setEnabled(!m_table->selectedItems().isEmpty());
    const std::optional<QString>& file = m_list->filePath();
    m_note->setText(!m_list->problem().isEmpty()
                        ? m_list->problem()
                        : QStringLiteral("Vacío: se deja igual. Se guarda en «") +
                              (file ? QFileInfo(*file).fileName() : QString()) +
                              QStringLiteral("», junto al video, para todos los de esa carpeta."));
}

void NamesPanel::cellEdited(int row, int column) {
    QTableWidgetItem* term = m_table->item(row, termColumn);
    QTableWidgetItem* rendering = m_table->item(row, renderingColumn);
    const QString shown = term ? term->data(termRole).toString() : QString();
    const QString typed = term ? term->text().trimmed() : QString();
    const QString spanish = rendering ? rendering->text() : QString();
    if (shown.isEmpty()) {
        // A row «Agregar» opened: it becomes an entry once it has a term.
        if (!typed.isEmpty() && m_list->add(typed, spanish))
            return;
    } else if (column == termColumn && typed != shown) {
        if (typed.isEmpty() ? (m_list->remove(shown), true) : m_list->rename(shown, typed))
            return;
    } else if (column == renderingColumn) {
        m_list->setRendering(shown, spanish);
        return;
    }
    if (!shown.isEmpty())
        showList(); // a term the list already had, or none: back to what it holds
}

void NamesPanel::addRow() {
    const int row = m_table->rowCount();
    {
        const QSignalBlocker block(m_table);
        m_table->insertRow(row);
        m_table->setItem(row, termColumn, new QTableWidgetItem());
        m_table->setItem(row, renderingColumn, new QTableWidgetItem());
    }
    m_table->setCurrentCell(row, termColumn);
    m_table->editItem(m_table->item(row, termColumn));
}

void NamesPanel::removeRow() {
    const int row = m_table->currentRow();
    QTableWidgetItem* term = row < 0 ? nullptr : m_table->item(row, termColumn);
    if (!term)
        return;
    if (term->data(termRole).toString().isEmpty())
        m_table->removeRow(row);
    else
        m_list->remove(term->data(termRole).toString());
}

} // namespace velto
