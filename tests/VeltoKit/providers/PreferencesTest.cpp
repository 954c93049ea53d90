#include "VeltoKit/providers/Preferences.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// Preferences in a throwaway file, with keys from a map instead of the credential store.
class PreferencesTest : public testing::Test {
protected:
    std::unique_ptr<Preferences> open() {
        return std::make_unique<Preferences>(
            std::make_unique<QSettings>(QDir(m_folder.path()).filePath(u"prefs.ini"_s),
                                        QSettings::IniFormat),
            [this](const QString& account) { return m_keys.value(account); });
    }

    QTemporaryDir m_folder;
    QHash<QString, QString> m_keys;
};

} // namespace

TEST_F(PreferencesTest, EachProviderKeepsItsOwnModelAndAddressAcrossRestarts) {
    {
        const auto preferences = open();
        preferences->setKeyWriter([](const QString&, const QString&) {});
        QSignalSpy engine(preferences.get(), &Preferences::engineChanged);
        QSignalSpy options(preferences.get(), &Preferences::jobOptionsChanged);
        QSignalSpy ffmpeg(preferences.get(), &Preferences::ffmpegDirectoryChanged);
        preferences->setProviderIDStorage(u"local"_s);
        preferences->setModel(u"qwen3:8b"_s, Provider::local());
        preferences->setBaseURL(u"http://127.0.0.1:9/v1"_s, Provider::local());
        preferences->setModel(u"gpt-x"_s, Provider::openAI());
        preferences->setModel(u"gpt-x"_s, Provider::openAI()); // no change, no signal
        preferences->setAPIKey(u"sk-x"_s, Provider::openAI());
        preferences->setBatchSize(5);
        preferences->setFfmpegDirectory(u"/opt/ffmpeg"_s);
        EXPECT_EQ(engine.size(), 5);
        EXPECT_EQ(options.size(), 1);
        EXPECT_EQ(ffmpeg.size(), 1);
    }
    m_keys.insert(u"local"_s, u"sk-local"_s);
    const auto preferences = open();
    const EngineConfiguration local = preferences->engineConfiguration();
    EXPECT_EQ(local.provider, Provider::local());
    EXPECT_EQ(local.model, u"qwen3:8b"_s);
    EXPECT_EQ(local.baseURL, u"http://127.0.0.1:9/v1"_s);
    EXPECT_EQ(local.apiKey, u"sk-local"_s);
    EXPECT_EQ(preferences->engineConfiguration(Provider::openAI()).model, u"gpt-x"_s);
    EXPECT_EQ(preferences->makeJobOptions(u"out.mkv"_s, 3, true).batchSize, 5);

    preferences->setBaseURL({}, Provider::local());
    EXPECT_EQ(preferences->baseURL(Provider::local()), Provider::local().defaultBaseURL);
}

TEST_F(PreferencesTest, UnknownStoredValuesFallBackToTheirDefaults) {
    const auto preferences = open();
    preferences->setProviderIDStorage(u"nonexistent"_s);
    preferences->setAnthropicEffortRaw(u"extreme"_s);
    preferences->setVariantRaw(u"klingon"_s);
    EXPECT_EQ(preferences->engineConfiguration().provider, Provider::claude());
    EXPECT_EQ(preferences->engineConfiguration().effort, AnthropicBackend::Effort::low);
    EXPECT_EQ(preferences->variant(), SpanishVariant::neutro);
    preferences->setAnthropicEffortRaw(u"high"_s);
    EXPECT_EQ(preferences->engineConfiguration().effort, AnthropicBackend::Effort::high);
}
