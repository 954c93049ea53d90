#include "VeltoKit/providers/Preferences.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QStandardPaths>

#include "VeltoKit/core/OwnerOnly.h"
#include "VeltoKit/platform/Keychain.h"

namespace velto {

namespace {

// Fixed by the program: enough for the model to follow a conversation, cheap to send.
constexpr qint64 contextLines = 4;

} // namespace

Preferences::Preferences(std::unique_ptr<QSettings> settings, KeyReader readKey, QObject* parent)
    : QObject(parent)
    , m_settings(std::move(settings))
    , m_readKey(readKey ? std::move(readKey) : KeyReader(&Keychain::get))
    , m_writeKey(&Keychain::set)
    , m_providerID(*m_settings, QStringLiteral("providerID"), Provider::claude().id)
    , m_cliModel(*m_settings, QStringLiteral("cliModel"), QStringLiteral("sonnet"))
    , m_cliBinaryPath(*m_settings, QStringLiteral("cliBinaryPath"), QString())
    , m_anthropicEffort(*m_settings, QStringLiteral("anthropicEffort"),
                        AnthropicBackend::rawValue(AnthropicBackend::Effort::low))
    , m_variant(*m_settings, QStringLiteral("variant"), rawValue(SpanishVariant::neutro))
    , m_stripSDH(*m_settings, QStringLiteral("stripSDH"), false)
    , m_stripParens(*m_settings, QStringLiteral("stripParens"), true)
    , m_makeDefault(*m_settings, QStringLiteral("makeDefault"), true)
    , m_trackTitle(*m_settings, QStringLiteral("trackTitle"), JobOptions().trackTitle)
    , m_batchSize(*m_settings, QStringLiteral("batchSize"), JobOptions().batchSize)
    , m_concurrency(*m_settings, QStringLiteral("concurrency"), JobOptions().concurrency)
    , m_useCache(*m_settings, QStringLiteral("useCache"), JobOptions().useCache)
    , m_outputs(*m_settings, QStringLiteral("outputs"), rawValue(JobOptions().outputs))
    , m_ffmpegDirectory(*m_settings, QStringLiteral("ffmpegDirectory"), QString())
    , m_lastFolder(*m_settings, QStringLiteral("lastFolder"), QString())
    , m_windowSize(*m_settings, QStringLiteral("windowSize"), QSize())
    , m_userPrices(*m_settings, QStringLiteral("modelPrices"), QString())
    , m_maxCost(*m_settings, QStringLiteral("maxCost"), 0.0) {}

Preferences::~Preferences() = default;

std::unique_ptr<QSettings> Preferences::platformStore() {
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QStringLiteral("VeltoMKV"), QStringLiteral("VeltoMKV"));
}

QString Preferences::cacheDirectory() {
    // Application Support on macOS, ~/.local/share on Linux, AppData on Windows.
    const QString directory =
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
            .filePath(QStringLiteral("VeltoMKV/Cache"));
    OwnerOnly::makeFolder(directory);
    return directory;
}

template <typename T>
void Preferences::store(SettingValue<T>& setting, const T& value, void (Preferences::*announce)()) {
    if (setting.set(value))
        emit(this->*announce)();
}

SettingValue<QString> Preferences::providerSetting(const Provider& provider,
                                                   QStringView name) const {
    return SettingValue<QString>(
        *m_settings, QStringLiteral("provider.") + provider.id + u'.' + name, QString());
}

QString Preferences::providerIDStorage() const {
    return m_providerID.get();
}

void Preferences::setProviderIDStorage(const QString& id) {
    store(m_providerID, id, &Preferences::engineChanged);
}

const Provider& Preferences::provider() const {
    return Provider::byID(providerIDStorage());
}

QString Preferences::cliModel() const {
    return m_cliModel.get();
}

void Preferences::setCliModel(const QString& model) {
    store(m_cliModel, model, &Preferences::engineChanged);
}

QString Preferences::cliBinaryPath() const {
    return m_cliBinaryPath.get();
}

void Preferences::setCliBinaryPath(const QString& path) {
    store(m_cliBinaryPath, path, &Preferences::engineChanged);
}

QString Preferences::anthropicEffortRaw() const {
    return m_anthropicEffort.get();
}

void Preferences::setAnthropicEffortRaw(const QString& raw) {
    store(m_anthropicEffort, raw, &Preferences::engineChanged);
}

AnthropicBackend::Effort Preferences::anthropicEffort() const {
    return AnthropicBackend::effortFromRawValue(anthropicEffortRaw())
        .value_or(AnthropicBackend::Effort::low);
}

QString Preferences::variantRaw() const {
    return m_variant.get();
}

void Preferences::setVariantRaw(const QString& raw) {
    store(m_variant, raw, &Preferences::jobOptionsChanged);
}

SpanishVariant Preferences::variant() const {
    return spanishVariantFromRawValue(variantRaw()).value_or(allSpanishVariants().front());
}

bool Preferences::stripSDH() const {
    return m_stripSDH.get();
}

void Preferences::setStripSDH(bool strip) {
    store(m_stripSDH, strip, &Preferences::jobOptionsChanged);
}

bool Preferences::stripParens() const {
    return m_stripParens.get();
}

void Preferences::setStripParens(bool strip) {
    store(m_stripParens, strip, &Preferences::jobOptionsChanged);
}

bool Preferences::makeDefault() const {
    return m_makeDefault.get();
}

void Preferences::setMakeDefault(bool makeDefault) {
    store(m_makeDefault, makeDefault, &Preferences::jobOptionsChanged);
}

QString Preferences::trackTitle() const {
    return m_trackTitle.get();
}

void Preferences::setTrackTitle(const QString& title) {
    store(m_trackTitle, title, &Preferences::jobOptionsChanged);
}

qint64 Preferences::batchSize() const {
    return m_batchSize.get();
}

void Preferences::setBatchSize(qint64 size) {
    store(m_batchSize, size, &Preferences::jobOptionsChanged);
}

qint64 Preferences::concurrency() const {
    return m_concurrency.get();
}

void Preferences::setConcurrency(qint64 requests) {
    store(m_concurrency, requests, &Preferences::jobOptionsChanged);
}

bool Preferences::useCache() const {
    return m_useCache.get();
}

void Preferences::setUseCache(bool use) {
    store(m_useCache, use, &Preferences::jobOptionsChanged);
}

JobOutputs Preferences::outputs() const {
    return jobOutputsFromRawValue(m_outputs.get()).value_or(JobOptions().outputs);
}

void Preferences::setOutputs(JobOutputs outputs) {
    store(m_outputs, rawValue(outputs), &Preferences::jobOptionsChanged);
}

QString Preferences::ffmpegDirectory() const {
    return m_ffmpegDirectory.get();
}

void Preferences::setFfmpegDirectory(const QString& directory) {
    store(m_ffmpegDirectory, directory, &Preferences::ffmpegDirectoryChanged);
}

QString Preferences::lastFolder() const {
    return m_lastFolder.get();
}

void Preferences::setLastFolder(const QString& folder) {
    m_lastFolder.set(folder);
}

QSize Preferences::windowSize() const {
    return m_windowSize.get();
}

void Preferences::setWindowSize(const QSize& size) {
    m_windowSize.set(size);
}

QString Preferences::model(const Provider& provider) const {
    return providerSetting(provider, u"model").get();
}

void Preferences::setModel(const QString& model, const Provider& provider) {
    SettingValue<QString> setting = providerSetting(provider, u"model");
    store(setting, model, &Preferences::engineChanged);
}

QString Preferences::baseURL(const Provider& provider) const {
    const QString stored = providerSetting(provider, u"baseURL").get();
    return stored.isEmpty() ? provider.defaultBaseURL : stored;
}

void Preferences::setBaseURL(const QString& address, const Provider& provider) {
    SettingValue<QString> setting = providerSetting(provider, u"baseURL");
    store(setting, address, &Preferences::engineChanged);
}

QString Preferences::apiKey(const Provider& provider) const {
    return provider.acceptsKey() ? m_readKey(provider.id) : QString();
}

void Preferences::setAPIKey(const QString& key, const Provider& provider) {
    m_writeKey(key, provider.id);
    emit engineChanged();
}

void Preferences::setKeyWriter(KeyWriter writeKey) {
    m_writeKey = std::move(writeKey);
}

EngineConfiguration Preferences::engineConfiguration() const {
    return engineConfiguration(provider());
}

EngineConfiguration Preferences::engineConfiguration(const Provider& provider) const {
    return EngineConfiguration(provider, apiKey(provider), baseURL(provider), model(provider),
                               anthropicEffort(), cliModel(), cliBinaryPath());
}

EngineConfiguration Preferences::engineConfigurationOrTrouble() const {
    return engineConfigurationOrTrouble(provider());
}

EngineConfiguration Preferences::engineConfigurationOrTrouble(const Provider& provider) const {
    try {
        return engineConfiguration(provider);
    } catch (const KeychainError& error) {
        EngineConfiguration engine(provider, QString(), baseURL(provider), model(provider),
                                   anthropicEffort(), cliModel(), cliBinaryPath());
        engine.keyTrouble = error.description();
        return engine;
    }
}

JobOptions Preferences::makeJobOptions(std::optional<QString> output,
                                       std::optional<qint64> forcedTrack, bool force) const {
    JobOptions options;
    options.variant = variant();
    options.stripSDH = stripSDH();
    options.stripParens = stripParens();
    options.makeDefault = makeDefault();
    options.trackTitle = trackTitle();
    options.batchSize = batchSize();
    options.concurrency = concurrency();
    options.contextLines = contextLines;
    options.useCache = useCache();
    options.outputs = outputs();
    options.outputURL = std::move(output);
    options.forcedTrackIndex = forcedTrack;
    options.force = force;
    options.price = price().price;
    options.maxCost = maxCost();
    return options;
}

} // namespace velto

namespace velto {
namespace {

QString priceKey(const Provider& provider, const QString& model) {
    return provider.id + u'|' + model;
}

} // namespace

std::optional<TokenPrice> Preferences::userPrice(const Provider& provider,
                                                 const QString& model) const {
    const QJsonArray pair = QJsonDocument::fromJson(m_userPrices.get().toUtf8())
                                .object()
                                .value(priceKey(provider, model))
                                .toArray();
    if (pair.size() != 2 || !pair[0].isDouble() || !pair[1].isDouble())
        return std::nullopt;
    return TokenPrice{pair[0].toDouble(), pair[1].toDouble()};
}

void Preferences::setUserPrice(const Provider& provider, const QString& model,
                               const std::optional<TokenPrice>& price) {
    QJsonObject prices = QJsonDocument::fromJson(m_userPrices.get().toUtf8()).object();
    if (price)
        prices.insert(priceKey(provider, model),
                      QJsonArray{price->inputPerMillion, price->outputPerMillion});
    else
        prices.remove(priceKey(provider, model));
    store(m_userPrices, QString::fromUtf8(QJsonDocument(prices).toJson(QJsonDocument::Compact)),
          &Preferences::jobOptionsChanged);
}

ModelPrices::Lookup Preferences::price() const {
    const Provider& chosen = provider();
    return ModelPrices::resolve(chosen, model(chosen), baseURL(chosen),
                                userPrice(chosen, ModelPrices::billedModel(chosen, model(chosen))));
}

std::optional<double> Preferences::maxCost() const {
    const double dollars = m_maxCost.get();
    return dollars > 0 ? std::optional(dollars) : std::nullopt;
}

void Preferences::setMaxCost(std::optional<double> dollars) {
    store(m_maxCost, dollars.value_or(0.0), &Preferences::jobOptionsChanged);
}

} // namespace velto
