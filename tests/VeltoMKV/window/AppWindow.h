#pragma once

#include <memory>

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHash>
#include <QMimeData>
#include <QSettings>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include "VeltoMKV/AppShell.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/state/AppState.h"

namespace velto::AppTesting {

// The whole application as the program builds it, with throwaway preferences on the echo
// engine and its window shown on the offscreen platform. Keys live in `keys` unless the test
// brings a reader of its own.
class AppWindowTest : public ::testing::Test {
protected:
    using Kind = Phase::Kind;

    explicit AppWindowTest(Preferences::KeyReader readKey = {},
                           AppState::ToolLocator locateTools = {}) {
        start(std::move(readKey), std::move(locateTools));
    }

    // Builds the application afresh over the same settings file, as a second launch does.
    void start(Preferences::KeyReader readKey = {}, AppState::ToolLocator locateTools = {}) {
        if (!readKey)
            readKey = [this](const QString& account) { return keys.value(account); };
        shell = std::make_unique<AppShell>(
            std::make_unique<QSettings>(settingsFolder.filePath(QStringLiteral("VeltoMKV.ini")),
                                        QSettings::IniFormat),
            std::move(readKey), std::move(locateTools));
        QStandardPaths::setTestModeEnabled(true);
        shell->preferences().setKeyWriter(
            [this](const QString& key, const QString& account) { keys[account] = key; });
        shell->preferences().setProviderIDStorage(QStringLiteral("echo"));
        shell->preferences().setUseCache(false);
        shell->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window()));
    }

    MainWindow& window() { return shell->window(); }
    AppState& state() { return shell->state(); }
    Preferences& preferences() { return shell->preferences(); }

    bool reaches(Kind kind) {
        return QTest::qWaitFor([&] { return state().phase().kind() == kind; }, patience);
    }
    // Waits for the state's background tasks to end, the cancelled ones included.
    bool settles() {
        return QTest::qWaitFor([&] { return state().backgroundTasks() == 0; }, patience);
    }

    // What a file manager does when a file is let go over `target`.
    static bool drop(QWidget* target, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        const QPoint centre = target->rect().center();
        QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent release(QPointF(centre), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &release);
        return release.isAccepted();
    }

    void openReady(const QString& video) {
        window().openFile(video);
        ASSERT_TRUE(reaches(Kind::ready)) << state().phase().message().toStdString();
    }

    QTemporaryDir settingsFolder;
    Workspace work;
    // The credential store, as the shell's preferences see it.
    QHash<QString, QString> keys;
    std::unique_ptr<AppShell> shell;
};

} // namespace velto::AppTesting
