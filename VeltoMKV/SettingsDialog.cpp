#include "VeltoMKV/SettingsDialog.h"

#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AddressField.h"
#include "VeltoMKV/CostSettings.h"
#include "VeltoMKV/KeyField.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/ModelField.h"
#include "VeltoMKV/ProviderIcon.h"
#include "VeltoMKV/ScreenFit.h"
#include "VeltoMKV/Spinner.h"
#include "VeltoMKV/WheelGuard.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/EngineQueries.h"

namespace velto {

namespace {

using Flavor = Provider::Flavor;

constexpr int pathPauseMs = 400;

struct CliModel {
    const char16_t* label;
    const char16_t* stored;
};
constexpr CliModel cliModels[] = {{u"Opus", u"opus"}, {u"Sonnet", u"sonnet"}, {u"Haiku", u"haiku"}};

QVBoxLayout* column(QWidget* widget, int spacing = Look::rowGap / 2) {
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

// An icon at text height beside a wrapped, selectable text.
QWidget* iconRow(QLabel*& icon, QLabel*& text, QWidget* parent) {
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const int side = row->fontMetrics().height();
    icon = new QLabel(row);
    icon->setFixedSize(side, side);
    text = Look::paragraph(QString(), row);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(text, 1);
    return row;
}

void setIcon(QLabel* label, const QIcon& icon) {
    label->setPixmap(icon.pixmap(label->size(), label->devicePixelRatioF()));
}

// Wrapped text that changes height inside nested layouts needs the news passed up to the
// window, or the rows above squeeze it.
void relayout(QWidget* row) {
    for (QWidget* widget = row; widget; widget = widget->parentWidget())
        widget->updateGeometry();
}

} // namespace

SettingsDialog::SettingsDialog(Preferences& preferences, AppState& state, QWidget* parent)
    : QDialog(parent)
    , m_preferences(preferences)
    , m_state(state)
    , m_queries(new EngineQueries(HttpClient::shared(), this)) {
    setWindowTitle(QStringLiteral("Motor de traducción"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Look::margin, Look::margin, Look::margin, Look::margin);
    layout->setSpacing(Look::groupGap);
    layout->addWidget(Look::title(QStringLiteral("Motor de traducción"), this));
    auto* body = new QHBoxLayout;
    body->setSpacing(Look::groupGap);
    body->addWidget(buildProviders());
    // The details scroll when the screen is short, rather than pushing the footer off it.
    auto* details = new QScrollArea(this);
    details->setFrameShape(QFrame::NoFrame);
    details->setWidgetResizable(true);
    details->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    details->setWidget(buildDetails());
    details->viewport()->setBackgroundRole(QPalette::Window);
    body->addWidget(details, 1);
    layout->addLayout(body, 1);
    layout->addWidget(buildFooter());

    connect(&m_preferences, &Preferences::engineChanged, this, &SettingsDialog::showReadiness);
    connect(&m_state, &AppState::ffmpegStatusChanged, this, &SettingsDialog::showFfmpeg);
    connect(&m_state, &AppState::ffmpegReadyChanged, this, &SettingsDialog::showFfmpeg);
    connect(m_queries, &EngineQueries::testingChanged, this, [this](bool testing) {
        m_test->setEnabled(!testing);
        m_test->setText(testing ? QStringLiteral("Probando") : QStringLiteral("Probar conexión"));
        m_testSpinner->setVisible(testing);
    });
    connect(m_queries, &EngineQueries::connectionTested, this, &SettingsDialog::showTestResult);
    connect(m_queries, &EngineQueries::claudeLocated, this, [this](bool found) {
        m_cliMissing->setVisible(!found);
        // Without the program nothing is ready to translate: its warning is the one notice.
        m_notice->parentWidget()->setVisible(found);
        relayout(m_cliMissing);
    });
    showProvider();
    showFfmpeg();
    ScreenFit::apply(this, QSize(780, 600), QSize(560, 420));
}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::present() {
#if defined(Q_OS_MACOS)
    setWindowFlag(Qt::Sheet);
#endif
    open();
}

void SettingsDialog::done(int result) {
    m_key->commit();
    m_queries->abandon();
    QDialog::done(result);
}

QWidget* SettingsDialog::buildProviders() {
    m_providers = new QListWidget(this);
    m_providers->setAccessibleName(QStringLiteral("Proveedor"));
    m_providers->setIconSize(QSize(1, 1) * fontMetrics().height() * 3 / 2);
    m_providers->setSpacing(2);
    // A sidebar on the window's own background, not a white box.
    m_providers->setFrameShape(QFrame::NoFrame);
    m_providers->viewport()->setAutoFillBackground(false);
    for (const Provider& provider : Provider::all()) {
        auto* item = new QListWidgetItem(providerIcon(provider.symbol, palette()), provider.name,
                                         m_providers);
        item->setData(Qt::UserRole, provider.id);
    }
    m_providers->setFixedWidth(m_providers->sizeHintForColumn(0) + 3 * Look::rowGap);
    connect(m_providers, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0 || row >= Provider::all().size())
            return;
        m_preferences.setProviderIDStorage(Provider::all().at(row).id);
        showProvider();
    });
    return m_providers;
}

QWidget* SettingsDialog::buildDetails() {
    auto* content = new QWidget(this);
    auto* layout = column(content, Look::groupGap);
    m_note = Look::paragraph(QString(), content);
    layout->addWidget(m_note);

    m_service = new QWidget(content);
    auto* service = column(m_service, Look::groupGap);
    m_key = new KeyField(m_preferences, Keychain::unavailableReason(), m_service);
    m_address = new AddressField(m_preferences, m_service);
    m_model = new ModelField(m_preferences, *m_queries, m_service);
    service->addWidget(m_key);
    service->addWidget(m_address);
    service->addWidget(m_model);
    service->addWidget(buildEffort());
    layout->addWidget(m_service);
    layout->addWidget(buildClaudeCLI());
    layout->addWidget(new CostSettings(m_preferences, content));
    layout->addWidget(buildNotice());
    layout->addWidget(buildTools());
    layout->addStretch(1);
    return content;
}

QWidget* SettingsDialog::buildEffort() {
    m_effort = new QWidget(this);
    auto* layout = column(m_effort);
    layout->addWidget(Look::heading(QStringLiteral("Esfuerzo"), m_effort));
    m_effortChoice = new QComboBox(m_effort);
    m_effortChoice->setAccessibleName(QStringLiteral("Esfuerzo"));
    for (AnthropicBackend::Effort effort : AnthropicBackend::efforts())
        m_effortChoice->addItem(AnthropicBackend::effortLabel(effort),
                                AnthropicBackend::rawValue(effort));
    guardWheel(m_effortChoice);
    layout->addWidget(m_effortChoice, 0, Qt::AlignLeft);
    layout->addWidget(Look::secondary(
        QStringLiteral("Para subtítulos, «bajo» suele alcanzar y sale mucho más barato."),
        m_effort));
    connect(m_effortChoice, &QComboBox::activated, this, [this](int index) {
        m_preferences.setAnthropicEffortRaw(m_effortChoice->itemData(index).toString());
    });
    return m_effort;
}

QWidget* SettingsDialog::buildClaudeCLI() {
    m_cli = new QWidget(this);
    auto* layout = column(m_cli, Look::rowGap);
    layout->addWidget(Look::heading(QStringLiteral("Modelo"), m_cli));
    m_cliModel = new QComboBox(m_cli);
    m_cliModel->setAccessibleName(QStringLiteral("Modelo del CLI"));
    for (const CliModel& model : cliModels)
        m_cliModel->addItem(QString::fromUtf16(model.label), QString::fromUtf16(model.stored));
    guardWheel(m_cliModel);
    layout->addWidget(m_cliModel, 0, Qt::AlignLeft);
    connect(m_cliModel, &QComboBox::activated, this, [this](int index) {
        m_preferences.setCliModel(m_cliModel->itemData(index).toString());
    });

    layout->addWidget(Look::heading(QStringLiteral("Ruta de «claude» (opcional)"), m_cli));
    auto* row = new QHBoxLayout;
    m_cliPath = new QLineEdit(m_cli);
    m_cliPath->setAccessibleName(QStringLiteral("Ruta de «claude» (opcional)"));
    auto* choose = new QPushButton(QStringLiteral("Elegir…"), m_cli);
    row->addWidget(m_cliPath, 1);
    row->addWidget(choose);
    layout->addLayout(row);
    QLabel* icon = nullptr;
    QLabel* text = nullptr;
    m_cliMissing = iconRow(icon, text, m_cli);
    setIcon(icon, Look::warningIcon());
    text->setText(QStringLiteral("No encuentro el binario «claude». Indicá su ruta abajo."));
    m_cliMissing->hide();
    layout->addWidget(m_cliMissing);
    // «/login» is a command: it never breaks across lines.
    QLabel* session = Look::secondary(
        QStringLiteral("El CLI necesita su propia sesión, distinta de la app de escritorio. Si "
                       "nunca hiciste <span style=\"white-space:nowrap\">«/login»</span> en la "
                       "Terminal, el chequeo de abajo te lo va a decir con el comando exacto."),
        m_cli);
    session->setTextFormat(Qt::RichText);
    layout->addWidget(session);

    m_claudePathPause.setSingleShot(true);
    m_claudePathPause.setInterval(pathPauseMs);
    connect(&m_claudePathPause, &QTimer::timeout, this,
            [this] { m_queries->locateClaude(m_preferences.cliBinaryPath()); });
    connect(m_cliPath, &QLineEdit::textEdited, this, [this](const QString& path) {
        m_preferences.setCliBinaryPath(path);
        m_claudePathPause.start();
    });
    connect(choose, &QPushButton::clicked, this, &SettingsDialog::chooseClaude);
    return m_cli;
}

QWidget* SettingsDialog::buildNotice() {
    return iconRow(m_noticeIcon, m_notice, this);
}

QWidget* SettingsDialog::buildTools() {
    auto* tools = new QWidget(this);
    auto* layout = column(tools);
    layout->addWidget(Look::heading(QStringLiteral("Carpeta de ffmpeg (opcional)"), tools));
    auto* row = new QHBoxLayout;
    m_ffmpegFolder = new QLineEdit(m_preferences.ffmpegDirectory(), tools);
    m_ffmpegFolder->setAccessibleName(QStringLiteral("Carpeta de ffmpeg (opcional)"));
    auto* choose = new QPushButton(QStringLiteral("Elegir…"), tools);
    row->addWidget(m_ffmpegFolder, 1);
    row->addWidget(choose);
    layout->addLayout(row);
    layout->addWidget(iconRow(m_ffmpegIcon, m_ffmpegStatus, tools));
    connect(m_ffmpegFolder, &QLineEdit::editingFinished, this, [this] {
        if (m_ffmpegFolder->text() == m_preferences.ffmpegDirectory())
            return;
        m_preferences.setFfmpegDirectory(m_ffmpegFolder->text());
    });
    connect(choose, &QPushButton::clicked, this, &SettingsDialog::chooseFfmpegFolder);
    return tools;
}

QWidget* SettingsDialog::buildFooter() {
    auto* footer = new QWidget(this);
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    m_test = new QPushButton(QStringLiteral("Probar conexión"), footer);
    m_test->setAutoDefault(false);
    m_testSpinner = new Spinner(footer);
    m_testSpinner->setFixedSize(m_test->sizeHint().height() * 2 / 3,
                                m_test->sizeHint().height() * 2 / 3);
    m_testSpinner->hide();
    auto* result = iconRow(m_testIcon, m_testResult, footer);
    m_testIcon->hide();
    auto* close = Look::primaryButton(QStringLiteral("Listo"), footer);
    layout->addWidget(m_test, 0, Qt::AlignTop);
    layout->addWidget(m_testSpinner, 0, Qt::AlignTop);
    layout->addWidget(result, 1);
    layout->addWidget(close, 0, Qt::AlignBottom);
    connect(m_test, &QPushButton::clicked, this, &SettingsDialog::testConnection);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    return footer;
}

void SettingsDialog::showProvider() {
    const Provider& provider = m_preferences.provider();
    m_queries->abandon();
    {
        const QSignalBlocker blocker(m_providers);
        m_providers->setCurrentRow(int(Provider::all().indexOf(provider)));
    }
    m_note->setText(provider.note);
    const bool service = provider.flavor == Flavor::anthropic ||
                         provider.flavor == Flavor::openAICompatible ||
                         provider.flavor == Flavor::gemini;
    m_service->setVisible(service);
    // A local server may sit behind a key too; the field shows for every service.
    m_key->setVisible(service);
    m_key->show(provider);
    m_address->setVisible(provider.editableBaseURL);
    m_address->show(provider);
    m_model->show(provider);
    m_effort->setVisible(provider.flavor == Flavor::anthropic);
    m_effortChoice->setCurrentIndex(
        m_effortChoice->findData(AnthropicBackend::rawValue(m_preferences.anthropicEffort())));
    m_cli->setVisible(provider.flavor == Flavor::claudeCLI);
    m_cliModel->setCurrentIndex(std::max(0, m_cliModel->findData(m_preferences.cliModel())));
    m_cliPath->setText(m_preferences.cliBinaryPath());
    m_notice->parentWidget()->setVisible(true);
    if (provider.flavor == Flavor::claudeCLI)
        m_queries->locateClaude(m_preferences.cliBinaryPath());
    m_testIcon->hide();
    m_testResult->clear();
    showReadiness();
}

void SettingsDialog::showReadiness() {
    const std::optional<QString> missing =
        m_preferences.engineConfigurationOrTrouble().missingRequirement();
    setIcon(m_noticeIcon, missing ? Look::warningIcon() : Look::doneMark(palette()));
    m_notice->setText(missing.value_or(QStringLiteral("Listo para traducir")));
    relayout(m_notice);
}

void SettingsDialog::showFfmpeg() {
    const bool missing = !m_state.ffmpegReady();
    m_ffmpegIcon->setVisible(missing);
    if (missing)
        setIcon(m_ffmpegIcon, Look::warningIcon());
    m_ffmpegStatus->setText(missing ? QStringLiteral("Falta ffmpeg. Instalalo con «") +
                                          PlatformText::installFfmpeg() + QStringLiteral("».")
                                    : m_state.ffmpegStatus().value_or(QString()));
    relayout(m_ffmpegStatus);
}

void SettingsDialog::chooseClaude() {
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Elegí el binario «claude»"));
    if (path.isEmpty())
        return;
    m_cliPath->setText(path);
    m_preferences.setCliBinaryPath(path);
    m_queries->locateClaude(path);
}

void SettingsDialog::chooseFfmpegFolder() {
    const QString folder = QFileDialog::getExistingDirectory(
        this, QStringLiteral("Carpeta de ffmpeg (opcional)"), m_ffmpegFolder->text());
    if (folder.isEmpty())
        return;
    m_ffmpegFolder->setText(folder);
    m_preferences.setFfmpegDirectory(folder);
}

void SettingsDialog::testConnection() {
    m_key->commit();
    m_testIcon->hide();
    m_testResult->clear();
    m_queries->testConnection(m_preferences.engineConfigurationOrTrouble());
}

void SettingsDialog::showTestResult(bool succeeded, const QString& message) {
    setIcon(m_testIcon, succeeded ? Look::doneMark(palette()) : Look::warningIcon());
    m_testIcon->show();
    m_testResult->setText(message);
    relayout(m_testResult);
}

} // namespace velto
