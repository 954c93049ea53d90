#pragma once

#include <memory>

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtCore/qtestsupport_core.h>

#include <gtest/gtest.h>

#include "VeltoKit/providers/Preferences.h"
#include "support/MediaFixtures.h"

// What the app's tests share: a folder of generated videos and preferences in a throwaway INI
// store, set to the echo engine so jobs run for real without a network or a key.
namespace velto::AppTesting {

// Long enough for ffmpeg under a loaded machine; a hang still ends the test.
inline constexpr int patience = 60'000;

inline MediaFixtures::SubtitleRecipe track(const QString& language, const QString& title = {},
                                           bool forced = false, bool hearingImpaired = false) {
    MediaFixtures::SubtitleRecipe recipe;
    recipe.language = language;
    recipe.title = title;
    recipe.forced = forced;
    recipe.hearingImpaired = hearingImpaired;
    return recipe;
}

// The first `Widget` under `root` that shows `text`; a test failure when none does.
template <typename Widget>
Widget* withText(const QObject& root, const QString& text) {
    for (Widget* widget : root.findChildren<Widget*>()) {
        if (widget->text() == text)
            return widget;
    }
    ADD_FAILURE() << "nothing shows " << text.toStdString();
    return nullptr;
}

class Workspace {
public:
    Workspace() {
        // The translation cache goes to a test folder, not the user's.
        QStandardPaths::setTestModeEnabled(true);
        auto store = std::make_unique<QSettings>(
            m_settings.filePath(QStringLiteral("VeltoMKV.ini")), QSettings::IniFormat);
        preferences = std::make_unique<Preferences>(std::move(store),
                                                    [](const QString&) { return QString(); });
        preferences->setProviderIDStorage(QStringLiteral("echo"));
        preferences->setUseCache(false);
    }

    // A three-second video with `tracks`, written into the videos folder.
    QString video(const QString& name, const QList<MediaFixtures::SubtitleRecipe>& tracks) const {
        const QString path = m_videos.filePath(name);
        MediaFixtures::writeVideo(path, {.subtitles = tracks});
        return path;
    }

    // Every entry of the videos folder, hidden ones included: a half-written output would show.
    QStringList entries() const {
        return QDir(m_videos.path())
            .entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QString path(const QString& name) const { return m_videos.filePath(name); }

    std::unique_ptr<Preferences> preferences;

private:
    QTemporaryDir m_settings;
    QTemporaryDir m_videos;
};

} // namespace velto::AppTesting
