#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QSettings>
#include <QSize>
#include <QString>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/providers/EngineConfiguration.h"
#include "VeltoKit/providers/ModelPrices.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoKit/providers/SettingValue.h"
#include "VeltoKit/translation/SpanishVariant.h"

namespace velto {

// Every setting of the user, kept in the platform's settings store, and what the logic builds
// from them: the engine configuration and the options of a job. Keys are not kept here but in
// the credential store. One instance is shared by every window and by the command line. A change
// is announced by what it affects (the engine, the job's options, the ffmpeg folder), so a view
// follows what it shows and never a key's spelling. Used from the main thread only.
class Preferences : public QObject {
    Q_OBJECT

public:
    // Reads and writes the API key of a provider id.
    using KeyReader = std::function<QString(const QString& account)>;
    using KeyWriter = std::function<void(const QString& key, const QString& account)>;

    // `settings` is the store (the platform's own in the programs, a throwaway one in tests).
    explicit Preferences(std::unique_ptr<QSettings> settings, KeyReader readKey = {},
                         QObject* parent = nullptr);
    ~Preferences() override;

    // The platform's native store of VeltoMKV: ~/.config/VeltoMKV/VeltoMKV.conf on Linux, the
    // app's plist on macOS, the registry on Windows.
    static std::unique_ptr<QSettings> platformStore();

    // Where translations are cached, shared by the app and the command line. Created on every
    // call; a failure to create it is left to whoever writes there.
    static QString cacheDirectory();

    QString providerIDStorage() const;
    void setProviderIDStorage(const QString& id);
    // The stored provider; an unknown id is the Anthropic entry.
    const Provider& provider() const;

    QString cliModel() const;
    void setCliModel(const QString& model);
    QString cliBinaryPath() const;
    void setCliBinaryPath(const QString& path);
    QString anthropicEffortRaw() const;
    void setAnthropicEffortRaw(const QString& raw);
    // The stored effort; unknown text is low.
    AnthropicBackend::Effort anthropicEffort() const;
    QString variantRaw() const;
    void setVariantRaw(const QString& raw);
    // The stored dialect; unknown text is the first one.
    SpanishVariant variant() const;
    bool stripSDH() const;
    void setStripSDH(bool strip);
    bool stripParens() const;
    void setStripParens(bool strip);
    bool makeDefault() const;
    void setMakeDefault(bool makeDefault);
    QString trackTitle() const;
    void setTrackTitle(const QString& title);
    qint64 batchSize() const;
    void setBatchSize(qint64 size);
    qint64 concurrency() const;
    void setConcurrency(qint64 requests);
    bool useCache() const;
    void setUseCache(bool use);
    // What a job writes; unknown stored text is the video alone.
    JobOutputs outputs() const;
    void setOutputs(JobOutputs outputs);
    QString ffmpegDirectory() const;
    void setFfmpegDirectory(const QString& directory);
    // Where the window was left: the folder of the last video opened and the window's size
    // (empty while never stored). Nothing follows their changes.
    QString lastFolder() const;
    void setLastFolder(const QString& folder);
    QSize windowSize() const;
    void setWindowSize(const QSize& size);

    // Each provider keeps its own model and address, so switching back restores both.
    QString model(const Provider& provider) const;
    void setModel(const QString& model, const Provider& provider);
    // The stored address, or the provider's default while none (or an empty one) is stored.
    QString baseURL(const Provider& provider) const;
    void setBaseURL(const QString& address, const Provider& provider);

    // The price the user gave for a model of a provider; absent while none.
    std::optional<TokenPrice> userPrice(const Provider& provider, const QString& model) const;
    // Absent forgets it, so the table's price (or none) applies again.
    void setUserPrice(const Provider& provider, const QString& model,
                      const std::optional<TokenPrice>& price);
    // The price the chosen engine's jobs go by, and where it came from.
    ModelPrices::Lookup price() const;
    // US dollars one job may spend; absent: no cap.
    std::optional<double> maxCost() const;
    void setMaxCost(std::optional<double> dollars);

    // The key of a provider, from the credential store unless another reader was given.
    QString apiKey(const Provider& provider) const;
    // Stores the key (an empty one deletes it); the engine's readiness follows at once.
    void setAPIKey(const QString& key, const Provider& provider);
    // Where setAPIKey writes; the credential store unless set.
    void setKeyWriter(KeyWriter writeKey);

    // The chosen engine with its key, read now.
    EngineConfiguration engineConfiguration() const;
    // The same for another provider, with that provider's own key, model and address.
    EngineConfiguration engineConfiguration(const Provider& provider) const;
    // The same for a window, which must not stop: a credential store that did not answer leaves
    // no key and its sentence in `keyTrouble` instead of throwing.
    EngineConfiguration engineConfigurationOrTrouble() const;
    EngineConfiguration engineConfigurationOrTrouble(const Provider& provider) const;
    JobOptions makeJobOptions(std::optional<QString> output, std::optional<qint64> forcedTrack,
                              bool force) const;

signals:
    // Something engineConfiguration() reads changed: provider, key, model, address, effort,
    // the claude program's model or path. Its readiness and summary may be new.
    void engineChanged();
    // Something makeJobOptions() reads changed.
    void jobOptionsChanged();
    void ffmpegDirectoryChanged();

private:
    template <typename T>
    void store(SettingValue<T>& setting, const T& value, void (Preferences::*announce)());
    SettingValue<QString> providerSetting(const Provider& provider, QStringView name) const;

    std::unique_ptr<QSettings> m_settings;
    KeyReader m_readKey;
    KeyWriter m_writeKey;
    SettingValue<QString> m_providerID;
    SettingValue<QString> m_cliModel;
    SettingValue<QString> m_cliBinaryPath;
    SettingValue<QString> m_anthropicEffort;
    SettingValue<QString> m_variant;
    SettingValue<bool> m_stripSDH;
    SettingValue<bool> m_stripParens;
    SettingValue<bool> m_makeDefault;
    SettingValue<QString> m_trackTitle;
    SettingValue<qint64> m_batchSize;
    SettingValue<qint64> m_concurrency;
    SettingValue<bool> m_useCache;
    SettingValue<QString> m_outputs;
    SettingValue<QString> m_ffmpegDirectory;
    SettingValue<QString> m_lastFolder;
    SettingValue<QSize> m_windowSize;
    // A JSON object: "<provider id>|<model>" to [input, output] dollars per million tokens.
    SettingValue<QString> m_userPrices;
    // 0 stands for no cap.
    SettingValue<double> m_maxCost;
};

} // namespace velto
