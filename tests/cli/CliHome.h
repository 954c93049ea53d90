#pragma once

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/MediaFixtures.h"

namespace velto::test {

struct CliOutcome {
    int status = -1;
    QString out;
    QString err;
};

// veltomkv-cli as a user runs it: its own process and a home of its own (temporary files,
// cache, settings), without the keys of whoever runs the tests.
class CliHome : public testing::Test {
protected:
    // Reads this process's environment: a derived set-up changes it first.
    void SetUp() override {
        for (const char* folder : {"tmp", "data", "config/VeltoMKV"})
            QDir(m_root.path()).mkpath(QString::fromLatin1(folder));
        m_environment = QProcessEnvironment::systemEnvironment();
        for (const char* key : {"VELTOMKV_API_KEY", "OPENAI_API_KEY", "ANTHROPIC_API_KEY"})
            m_environment.remove(QString::fromLatin1(key));
        m_environment.insert(QStringLiteral("TMPDIR"), path(QStringLiteral("tmp")));
        m_environment.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data")));
        m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
    }

    QString path(const QString& name) const { return QDir(m_root.path()).filePath(name); }

    // A video beside the others with one English track of `lines`.
    QString englishVideo(const QString& name,
                         const QStringList& lines = MediaFixtures::SubtitleRecipe().lines) const {
        MediaFixtures::writeVideo(
            path(name), {.subtitles = {{.language = QStringLiteral("eng"), .lines = lines}}});
        return path(name);
    }

    void start(const QStringList& arguments, const QByteArray& input = {}) {
        m_process.setProcessEnvironment(m_environment);
        m_process.start(QStringLiteral(VELTO_CLI_PATH), arguments);
        ASSERT_TRUE(m_process.waitForStarted());
        m_process.write(input);
        m_process.closeWriteChannel();
    }

    CliOutcome finish() {
        m_process.waitForFinished(-1);
        return {m_process.exitCode(), QString::fromUtf8(m_process.readAllStandardOutput()),
                QString::fromUtf8(m_process.readAllStandardError())};
    }

    CliOutcome run(const QStringList& arguments, const QByteArray& input = {}) {
        start(arguments, input);
        return finish();
    }

    // The JSON lines of an output, one object each; with a type, only the events of that type.
    static QList<QJsonObject> events(const QString& out, const QString& type = {}) {
        QList<QJsonObject> objects;
        for (const QString& line : out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QJsonObject event = QJsonDocument::fromJson(line.toUtf8()).object();
            if (type.isEmpty() || event[QLatin1String("type")] == type)
                objects.append(event);
        }
        return objects;
    }

    QTemporaryDir m_root;
    QProcessEnvironment m_environment;
    QProcess m_process;
};

} // namespace velto::test
