#include "VeltoMKV/MainWindow.h"

#include <utility>

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AnalyzingView.h"
#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/Confirm.h"
#include "VeltoMKV/DesktopSession.h"
#include "VeltoMKV/DropZone.h"
#include "VeltoMKV/EngineLine.h"
#include "VeltoMKV/FailureView.h"
#include "VeltoMKV/FileBrowser.h"
#include "VeltoMKV/JobAnnouncer.h"
#include "VeltoMKV/JobView.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/OpenFileRelay.h"
#include "VeltoMKV/ProgressView.h"
#include "VeltoMKV/ResultView.h"
#include "VeltoMKV/ScreenFit.h"
#include "VeltoMKV/SettingsDialog.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/CurrentPlan.h"

namespace velto {

MainWindow::MainWindow(AppState& state, Preferences& preferences, SettingsPresenter& settings,
                       OpenFileRelay& relay, QWidget* parent)
    : QMainWindow(parent)
    , m_state(state)
    , m_preferences(preferences)
    , m_settings(settings)
    , m_relay(relay) {
    setWindowTitle(QStringLiteral("VeltoMKV"));
    setWindowIcon(appIcon());
    setAcceptDrops(true);

    // One column, centred, never wider than a comfortable line.
    auto* central = new QWidget(this);
    auto* outer = new QHBoxLayout(central);
    outer->setContentsMargins(Look::margin, Look::margin, Look::margin, Look::margin);
    outer->addStretch(0);
    auto* column = new QWidget(central);
    column->setMaximumWidth(Look::maxColumnWidth);
    outer->addWidget(column, 1);
    outer->addStretch(0);
    auto* columnLayout = new QVBoxLayout(column);
    columnLayout->setContentsMargins(0, 0, 0, 0);
    columnLayout->setSpacing(Look::rowGap);

    m_pages = new QStackedWidget(column);
    m_dropZone = new DropZone(m_pages);
    m_analyzingView = new AnalyzingView(m_pages);
    m_jobView = new JobView(m_state, m_preferences, m_settings, m_pages);
    m_progressView = new ProgressView(m_state, m_pages);
    m_resultView = new ResultView(m_state, m_pages);
    m_failureView = new FailureView(m_state, m_pages);
    // In the order of Phase::Kind.
    for (QWidget* page :
         {static_cast<QWidget*>(m_dropZone), static_cast<QWidget*>(m_analyzingView),
          static_cast<QWidget*>(m_jobView), static_cast<QWidget*>(m_progressView),
          static_cast<QWidget*>(m_resultView), static_cast<QWidget*>(m_failureView)})
        m_pages->addWidget(page);
    columnLayout->addWidget(m_pages, 1);

    m_ffmpegRow = new QWidget(column);
    auto* ffmpegLayout = new QHBoxLayout(m_ffmpegRow);
    ffmpegLayout->setContentsMargins(0, 0, 0, 0);
    ffmpegLayout->setSpacing(Look::rowGap / 2 + 2);
    ffmpegLayout->addWidget(Look::iconLabel(Look::warningIcon(), 20, m_ffmpegRow), 0, Qt::AlignTop);
    m_ffmpegText = Look::paragraph(QString(), m_ffmpegRow);
    ffmpegLayout->addWidget(m_ffmpegText, 1);
    columnLayout->addWidget(m_ffmpegRow);
    // A first-time user learns on the start page, not after opening a video, what the engine
    // still lacks.
    m_startEngine = new EngineLine(m_preferences, m_settings, m_dropZone);
    m_dropZone->addBelow(m_startEngine);
    setCentralWidget(central);

    connect(m_dropZone, &DropZone::fileDropped, this, &MainWindow::openFile);
    connect(m_dropZone, &DropZone::chooseRequested, this, &MainWindow::chooseFile);
    connect(m_jobView, &JobView::startRequested, this, &MainWindow::startJob);
    connect(m_resultView, &ResultView::revealRequested, this, &FileBrowser::reveal);
    connect(m_resultView, &ResultView::anotherRequested, &m_state, &AppState::reset);
    connect(m_failureView, &FailureView::retryRequested, this, &MainWindow::retry);

    // The menus.
    QMenu* fileMenu = menuBar()->addMenu(QStringLiteral("&Archivo"));
    m_openAction = fileMenu->addAction(QStringLiteral("Abrir…"), this, &MainWindow::chooseFile);
    m_openAction->setShortcut(QKeySequence::Open);
    QAction* engine = fileMenu->addAction(QStringLiteral("Motor de traducción…"), &m_settings,
                                          &SettingsPresenter::present);
    engine->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    engine->setMenuRole(QAction::PreferencesRole);
    fileMenu->addSeparator();
    QAction* quit = fileMenu->addAction(QStringLiteral("Salir"), this, &QWidget::close);
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    QMenu* helpMenu = menuBar()->addMenu(QStringLiteral("Ay&uda"));
    helpMenu->addAction(QStringLiteral("Ayuda de VeltoMKV"), this, &MainWindow::showHelp);
    QAction* about =
        helpMenu->addAction(QStringLiteral("Acerca de VeltoMKV"), this, &MainWindow::showAbout);
    about->setMenuRole(QAction::AboutRole);

    // Return is the phase's main button, Escape stops a running job.
    for (auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(QKeySequence(key), this);
        connect(shortcut, &QShortcut::activated, this, &MainWindow::returnPressed);
    }
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, [this] {
        if (m_state.phase().kind() == Phase::Kind::working)
            m_state.cancel();
    });

    connect(&m_state, &AppState::phaseChanged, this, &MainWindow::showPhase);
    connect(&m_state, &AppState::ffmpegReadyChanged, this, &MainWindow::showFfmpegStatus);
    connect(&m_state, &AppState::ffmpegStatusChanged, this, &MainWindow::showFfmpegStatus);
    connect(&m_relay, &OpenFileRelay::pendingChanged, this, &MainWindow::takePendingFile);
    connect(&m_settings, &SettingsPresenter::presentedChanged, this, &MainWindow::presentSettings);
    connect(&m_preferences, &Preferences::ffmpegDirectoryChanged, this,
            [this] { m_state.checkTools(m_preferences); });
    // The title, the computer's sleep and the notification follow the job from outside the page.
    new JobAnnouncer(m_state, *this, *new DesktopSession(this));

    const QSize remembered = m_preferences.windowSize();
    ScreenFit::apply(this, remembered.isValid() ? remembered : QSize(640, 560), QSize(520, 460));
    showPhase();
    showFfmpegStatus();
    takePendingFile();
}

QWidget* MainWindow::currentPage() const {
    return m_pages->currentWidget();
}

void MainWindow::openFile(const QString& path) {
    if (m_state.phase().kind() == Phase::Kind::working)
        return;
    m_state.load(QFileInfo(path).absoluteFilePath(), m_preferences);
}

void MainWindow::chooseFile() {
    if (!acceptsFiles())
        return;
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Elegí el archivo de video"), startFolder(),
        QStringLiteral("Videos (*.mkv *.mp4 *.mov *.m4v *.webm *.avi);;Todos los archivos (*)"));
    if (!path.isEmpty())
        openFile(path);
}

QString MainWindow::startFolder() const {
    const QString last = m_preferences.lastFolder();
    return !last.isEmpty() && QFileInfo(last).isDir() ? last : QDir::homePath();
}

void MainWindow::startJob() {
    const Phase::Kind kind = m_state.phase().kind();
    // After a failure the file, its chosen track, the output and the options are all still
    // there: the job runs again with them.
    const bool again = kind == Phase::Kind::failed && m_state.selectedTrack();
    if (!again && (kind != Phase::Kind::ready || !m_jobView->startButton()->isEnabled()))
        return;
    if (const std::optional<JobPlan> plan = currentPlan(m_state, m_preferences)) {
        for (const QString& file : plan->writes()) {
            if (QFileInfo::exists(file) && !Confirm::replaceOutput(this, file))
                return;
        }
    }
    m_resultView->setStripped(m_preferences.stripSDH());
    m_state.start(m_preferences);
}

void MainWindow::retry() {
    if (m_state.selectedTrack())
        startJob();
    else if (m_state.sourceURL())
        openFile(*m_state.sourceURL());
    else
        m_state.reset();
}

void MainWindow::showPhase() {
    const Phase::Kind kind = m_state.phase().kind();
    m_pages->setCurrentIndex(static_cast<int>(kind));
    m_openAction->setEnabled(acceptsFiles());
    if (m_state.sourceURL())
        m_preferences.setLastFolder(QFileInfo(*m_state.sourceURL()).absolutePath());
    if (kind == Phase::Kind::working)
        m_progressView->startClock();
    else
        m_progressView->stopClock();
    if (kind == Phase::Kind::ready)
        m_jobView->refreshEngine();
    // A file handed over during a job opens once the job is over, after its result was seen.
    const bool settled =
        kind == Phase::Kind::idle || kind == Phase::Kind::ready || kind == Phase::Kind::failed;
    if (settled && m_relay.pending()) {
        takePendingFile();
        return;
    }
    if (kind != Phase::Kind::inspecting && std::exchange(m_startWhenReady, false) &&
        kind == Phase::Kind::ready) {
        startJob();
        return;
    }
    // The page's main button takes the focus, so the keyboard starts where the eye does.
    QPushButton* focus = nullptr;
    switch (kind) {
    case Phase::Kind::idle:
        focus = m_dropZone->chooseButton();
        break;
    case Phase::Kind::ready:
        focus = m_jobView->startButton();
        break;
    case Phase::Kind::working:
        focus = m_progressView->cancelButton();
        break;
    case Phase::Kind::finished:
        focus = m_resultView->anotherButton();
        break;
    case Phase::Kind::failed:
        focus = m_failureView->retryButton();
        break;
    case Phase::Kind::inspecting:
        break;
    }
    if (focus && focus->isEnabled())
        focus->setFocus();
}

void MainWindow::showFfmpegStatus() {
    const bool missing = !m_state.ffmpegReady() && m_state.ffmpegStatus().has_value();
    m_ffmpegText->setText(m_state.ffmpegStatus().value_or(QString()));
    m_ffmpegRow->setVisible(missing);
}

void MainWindow::takePendingFile() {
    if (!acceptsFiles() || !m_relay.pending())
        return;
    if (const std::optional<QString> path = m_relay.take())
        openFile(*path);
}

void MainWindow::presentSettings(bool presented) {
    if (!presented) {
        if (m_settingsDialog)
            m_settingsDialog->close();
        return;
    }
    if (!m_settingsDialog) {
        m_settingsDialog = new SettingsDialog(m_preferences, m_state, this);
        connect(m_settingsDialog, &QDialog::finished, &m_settings,
                [this] { m_settings.setPresented(false); });
    }
    m_settingsDialog->present();
}

void MainWindow::showHelp() {
    QMessageBox help(this);
    help.setWindowTitle(QStringLiteral("Ayuda de VeltoMKV"));
    help.setIconPixmap(appIcon().pixmap(64, 64));
    help.setTextFormat(Qt::RichText);
    help.setText(
        QStringLiteral(
            "<p><b>Ayuda de VeltoMKV</b></p>"
            "<p>Arrastrá un video a la ventana o elegilo con «Elegir archivo…». VeltoMKV busca la "
            "pista de subtítulos, la traduce al español con el motor que elijas y guarda una copia "
            "del video con la pista nueva al lado del original, que nunca se toca.</p>"
            "<p>Necesitás ffmpeg: instalalo con «") +
        PlatformText::installFfmpeg() +
        QStringLiteral("» o bajalo de <a href=\"https://ffmpeg.org/download.html\">"
                       "ffmpeg.org</a>.</p>"));
    help.setTextInteractionFlags(Qt::TextBrowserInteraction);
    help.exec();
}

void MainWindow::showAbout() {
    QMessageBox::about(
        this, QStringLiteral("Acerca de VeltoMKV"),
        QStringLiteral("<p><b>VeltoMKV</b></p><p>Versión ") +
            QCoreApplication::applicationVersion() +
            QStringLiteral("</p><p>Agrega a tus videos una pista de subtítulos en español, "
                           "traducida con el motor que elijas.</p>"));
}

void MainWindow::returnPressed() {
    switch (m_state.phase().kind()) {
    case Phase::Kind::idle:
        chooseFile();
        break;
    case Phase::Kind::ready:
        startJob();
        break;
    case Phase::Kind::finished:
        m_resultView->anotherButton()->click();
        break;
    case Phase::Kind::failed:
        m_failureView->retryButton()->click();
        break;
    case Phase::Kind::inspecting:
        m_startWhenReady = true;
        break;
    case Phase::Kind::working:
        break;
    }
}

bool MainWindow::acceptsFiles() const {
    return m_state.phase().kind() != Phase::Kind::working;
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // Style sheets resolve palette colours once; a switch to dark mode must resolve them again.
    if (event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange) {
        for (QWidget* child : findChildren<QWidget*>()) {
            if (!child->styleSheet().isEmpty())
                child->setStyleSheet(child->styleSheet());
        }
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (m_state.hasTask() && !Confirm::quitDuringJob(this)) {
        event->ignore();
        return;
    }
    // The job stops at its next suspension point and removes its unfinished output as it leaves.
    if (m_state.hasTask())
        m_state.cancel();
    m_preferences.setWindowSize(size());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (acceptsFiles() && DropZone::droppedFile(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const std::optional<QString> file = DropZone::droppedFile(event->mimeData());
    if (!acceptsFiles() || !file) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    openFile(*file);
}

} // namespace velto
