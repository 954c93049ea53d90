#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QSettings>
#include <QString>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/providers/EngineConfiguration.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoKit/translation/SpanishVariant.h"

namespace velto {

// Every setting of the user, kept in the platform's settings store, and what the logic builds
// from them: the engine configuration and the options of a job. Keys are not kept here but in
// the credential store. One instance is shared by every window and by the command line; every
// change is signalled. Used from the main thread only.
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
    QString ffmpegDirectory() const;
    void setFfmpegDirectory(const QString& directory);

    // Each provider keeps its own model and address, so switching back restores both.
    QString model(const Provider& provider) const;
    void setModel(const QString& model, const Provider& provider);
    // The stored address, or the provider's default while none (or an empty one) is stored.
    QString baseURL(const Provider& provider) const;
    void setBaseURL(const QString& address, const Provider& provider);

    // The key of a provider, from the credential store unless another reader was given.
    QString apiKey(const Provider& provider) const;
    // Stores the key (an empty one deletes it) and signals "apiKey." + the provider id, so the
    // windows that show readiness follow at once.
    void setAPIKey(const QString& key, const Provider& provider);
    // Where setAPIKey writes; the credential store unless set.
    void setKeyWriter(KeyWriter writeKey);

    // The chosen engine with its key, read now.
    EngineConfiguration engineConfiguration() const;
    // The same for another provider, with that provider's own key, model and address.
    EngineConfiguration engineConfiguration(const Provider& provider) const;
    JobOptions makeJobOptions(std::optional<QString> output, std::optional<qint64> forcedTrack,
                              bool force) const;

signals:
    // After any setting changed; `key` is the store key, e.g. "providerID" or
    // "provider.local.baseURL".
    void changed(const QString& key);

private:
    QVariant value(const QString& key, const QVariant& fallback) const;
    void store(const QString& key, const QVariant& value);

    std::unique_ptr<QSettings> m_settings;
    KeyReader m_readKey;
    KeyWriter m_writeKey;
};

} // namespace velto
