#include "VeltoMKV/KeyField.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QVBoxLayout>

#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"

namespace velto {

namespace {

// Typing pauses this long before a key is written, so the store is not asked at every letter.
constexpr int typingPauseMs = 600;

QWidget* unavailableRow(const QString& reason, QWidget* parent) {
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Look::iconLabel(Look::warningIcon(), row->fontMetrics().height(), row), 0,
                      Qt::AlignTop);
    layout->addWidget(Look::paragraph(reason, row), 1);
    return row;
}

// An open eye while the key can be shown, a crossed one while it shows: the icon says what a
// click does.
QIcon eye(bool crossed, const QPalette& palette) {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette.color(QPalette::Text), 5));
    QPainterPath lids;
    lids.moveTo(6, 32);
    lids.quadTo(32, 4, 58, 32);
    lids.quadTo(32, 60, 6, 32);
    painter.drawPath(lids);
    painter.setBrush(palette.color(QPalette::Text));
    painter.drawEllipse(QPointF(32, 32), 8, 8);
    if (crossed)
        painter.drawLine(12, 54, 52, 10);
    return QIcon(pixmap);
}

} // namespace

KeyField::KeyField(Preferences& preferences, std::optional<QString> unavailable, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);
    layout->addWidget(Look::heading(QStringLiteral("API key"), this));
    m_field = new QLineEdit(this);
    m_field->setEchoMode(QLineEdit::Password);
    m_field->setPlaceholderText(QStringLiteral("Pegá tu clave acá"));
    m_field->setAccessibleName(QStringLiteral("API key"));
    m_reveal = m_field->addAction(QIcon(), QLineEdit::TrailingPosition);
    connect(m_reveal, &QAction::triggered, this,
            [this] { setShown(m_field->echoMode() == QLineEdit::Password); });
    setShown(false);
    layout->addWidget(m_field);
    if (unavailable) {
        m_field->setEnabled(false);
        m_field->setPlaceholderText(QString());
        layout->addWidget(unavailableRow(*unavailable, this));
    } else {
        layout->addWidget(Look::secondary(QStringLiteral("Se guarda en ") +
                                              PlatformText::keychainName() +
                                              QStringLiteral(", no en un archivo de preferencias."),
                                          this));
    }
    m_source = Look::secondary(QString(), this);
    m_source->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_source);

    m_pause.setSingleShot(true);
    m_pause.setInterval(typingPauseMs);
    connect(&m_pause, &QTimer::timeout, this, &KeyField::commit);
    connect(m_field, &QLineEdit::textEdited, this, [this] {
        m_dirty = true;
        m_pause.start();
    });
    connect(m_field, &QLineEdit::editingFinished, this, &KeyField::commit);
}

void KeyField::show(const Provider& provider) {
    commit();
    m_provider = provider;
    m_field->setText(m_field->isEnabled()
                         ? m_preferences.engineConfigurationOrTrouble(provider).apiKey
                         : QString());
    setShown(false);
    m_source->setText(QStringLiteral("La sacás de ") + provider.keySource + u'.');
    m_source->setVisible(!provider.keySource.isEmpty());
    updateGeometry();
}

void KeyField::setShown(bool shown) {
    m_field->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    m_reveal->setIcon(eye(shown, palette()));
    m_reveal->setToolTip(shown ? QStringLiteral("Ocultar la clave")
                               : QStringLiteral("Mostrar la clave"));
}

void KeyField::commit() {
    m_pause.stop();
    if (!m_dirty || !m_provider)
        return;
    m_dirty = false;
    m_preferences.setAPIKey(m_field->text(), *m_provider);
}

} // namespace velto
