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

TEST_F(PreferencesTest, AFreshStoreHoldsEveryDefault) {
    const auto preferences = open();
    const JobOptions options = preferences->makeJobOptions(std::nullopt, std::nullopt, false);
    EXPECT_EQ(preferences->provider(), Provider::claude());
    EXPECT_EQ(preferences->cliModel(), u"sonnet"_s);
    EXPECT_EQ(preferences->anthropicEffort(), AnthropicBackend::Effort::low);
    EXPECT_EQ(options.variant, SpanishVariant::neutro);
    EXPECT_EQ(options.sourceLanguage, u"eng"_s);
    EXPECT_FALSE(options.stripSDH);
    EXPECT_TRUE(options.stripParens);
    EXPECT_TRUE(options.makeDefault);
    EXPECT_EQ(options.trackTitle, u"Español (traducido)"_s);
    EXPECT_EQ(options.batchSize, 40);
    EXPECT_EQ(options.concurrency, 3);
    EXPECT_EQ(options.contextLines, 4);
    EXPECT_TRUE(options.useCache);
    EXPECT_EQ(preferences->ffmpegDirectory(), QString());
    EXPECT_EQ(preferences->baseURL(Provider::local()), Provider::local().defaultBaseURL);
}

TEST_F(PreferencesTest, EachProviderKeepsItsOwnModelAndAddressAcrossRestarts) {
    {
        const auto preferences = open();
        QSignalSpy changes(preferences.get(), &Preferences::changed);
        preferences->setProviderIDStorage(u"local"_s);
        preferences->setModel(u"qwen3:8b"_s, Provider::local());
        preferences->setBaseURL(u"http://127.0.0.1:9/v1"_s, Provider::local());
        preferences->setModel(u"gpt-x"_s, Provider::openAI());
        preferences->setModel(u"gpt-x"_s, Provider::openAI()); // no change, no signal
        preferences->setBatchSize(5);
        EXPECT_EQ(changes.size(), 5);
        EXPECT_EQ(changes.at(1).at(0).toString(), u"provider.local.model"_s);
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
