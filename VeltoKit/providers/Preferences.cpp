#include "VeltoKit/providers/Preferences.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

#include "VeltoKit/platform/Keychain.h"

namespace velto {

namespace {

const QString providerKey = QStringLiteral("providerID");
const QString cliModelKey = QStringLiteral("cliModel");
const QString cliBinaryPathKey = QStringLiteral("cliBinaryPath");
const QString effortKey = QStringLiteral("anthropicEffort");
const QString variantKey = QStringLiteral("variant");
const QString stripSDHKey = QStringLiteral("stripSDH");
const QString stripParensKey = QStringLiteral("stripParens");
const QString makeDefaultKey = QStringLiteral("makeDefault");
const QString trackTitleKey = QStringLiteral("trackTitle");
const QString batchSizeKey = QStringLiteral("batchSize");
const QString concurrencyKey = QStringLiteral("concurrency");
const QString useCacheKey = QStringLiteral("useCache");
const QString ffmpegDirectoryKey = QStringLiteral("ffmpegDirectory");

// Fixed by the program: enough for the model to follow a conversation, cheap to send.
constexpr qint64 contextLines = 4;

QString providerSettingKey(const Provider& provider, QStringView setting) {
    return QStringLiteral("provider.") + provider.id + u'.' + setting;
}

} // namespace

Preferences::Preferences(std::unique_ptr<QSettings> settings, KeyReader readKey, QObject* parent)
    : QObject(parent)
    , m_settings(std::move(settings))
    , m_readKey(readKey ? std::move(readKey) : KeyReader(&Keychain::get))
    , m_writeKey(&Keychain::set) {}

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
    QDir().mkpath(directory);
    return directory;
}

QVariant Preferences::value(const QString& key, const QVariant& fallback) const {
    return m_settings->value(key, fallback);
}

void Preferences::store(const QString& key, const QVariant& value) {
    if (m_settings->contains(key) && m_settings->value(key) == value)
        return;
    m_settings->setValue(key, value);
    emit changed(key);
}

QString Preferences::providerIDStorage() const {
    return value(providerKey, Provider::claude().id).toString();
}

void Preferences::setProviderIDStorage(const QString& id) {
    store(providerKey, id);
}

const Provider& Preferences::provider() const {
    return Provider::byID(providerIDStorage());
}

QString Preferences::cliModel() const {
    return value(cliModelKey, QStringLiteral("sonnet")).toString();
}

void Preferences::setCliModel(const QString& model) {
    store(cliModelKey, model);
}

QString Preferences::cliBinaryPath() const {
    return value(cliBinaryPathKey, QString()).toString();
}

void Preferences::setCliBinaryPath(const QString& path) {
    store(cliBinaryPathKey, path);
}

QString Preferences::anthropicEffortRaw() const {
    return value(effortKey, AnthropicBackend::rawValue(AnthropicBackend::Effort::low)).toString();
}

void Preferences::setAnthropicEffortRaw(const QString& raw) {
    store(effortKey, raw);
}

AnthropicBackend::Effort Preferences::anthropicEffort() const {
    return AnthropicBackend::effortFromRawValue(anthropicEffortRaw())
        .value_or(AnthropicBackend::Effort::low);
}

QString Preferences::variantRaw() const {
    return value(variantKey, rawValue(SpanishVariant::neutro)).toString();
}

void Preferences::setVariantRaw(const QString& raw) {
    store(variantKey, raw);
}

SpanishVariant Preferences::variant() const {
    return spanishVariantFromRawValue(variantRaw()).value_or(allSpanishVariants().front());
}

bool Preferences::stripSDH() const {
    return value(stripSDHKey, false).toBool();
}

void Preferences::setStripSDH(bool strip) {
    store(stripSDHKey, strip);
}

bool Preferences::stripParens() const {
    return value(stripParensKey, true).toBool();
}

void Preferences::setStripParens(bool strip) {
    store(stripParensKey, strip);
}

bool Preferences::makeDefault() const {
    return value(makeDefaultKey, true).toBool();
}

void Preferences::setMakeDefault(bool makeDefault) {
    store(makeDefaultKey, makeDefault);
}

QString Preferences::trackTitle() const {
    return value(trackTitleKey, QStringLiteral("Español (traducido)")).toString();
}

void Preferences::setTrackTitle(const QString& title) {
    store(trackTitleKey, title);
}

qint64 Preferences::batchSize() const {
    return value(batchSizeKey, 40).toLongLong();
}

void Preferences::setBatchSize(qint64 size) {
    store(batchSizeKey, size);
}

qint64 Preferences::concurrency() const {
    return value(concurrencyKey, 3).toLongLong();
}

void Preferences::setConcurrency(qint64 requests) {
    store(concurrencyKey, requests);
}

bool Preferences::useCache() const {
    return value(useCacheKey, true).toBool();
}

void Preferences::setUseCache(bool use) {
    store(useCacheKey, use);
}

QString Preferences::ffmpegDirectory() const {
    return value(ffmpegDirectoryKey, QString()).toString();
}

void Preferences::setFfmpegDirectory(const QString& directory) {
    store(ffmpegDirectoryKey, directory);
}

QString Preferences::model(const Provider& provider) const {
    return value(providerSettingKey(provider, u"model"), QString()).toString();
}

void Preferences::setModel(const QString& model, const Provider& provider) {
    store(providerSettingKey(provider, u"model"), model);
}

QString Preferences::baseURL(const Provider& provider) const {
    const QString stored = value(providerSettingKey(provider, u"baseURL"), QString()).toString();
    return stored.isEmpty() ? provider.defaultBaseURL : stored;
}

void Preferences::setBaseURL(const QString& address, const Provider& provider) {
    store(providerSettingKey(provider, u"baseURL"), address);
}

QString Preferences::apiKey(const Provider& provider) const {
    return m_readKey(provider.id);
}

void Preferences::setAPIKey(const QString& key, const Provider& provider) {
    m_writeKey(key, provider.id);
    emit changed(QStringLiteral("apiKey.") + provider.id);
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

JobOptions Preferences::makeJobOptions(std::optional<QString> output,
                                       std::optional<qint64> forcedTrack, bool force) const {
    JobOptions options;
    options.sourceLanguage = QStringLiteral("eng");
    options.variant = variant();
    options.stripSDH = stripSDH();
    options.stripParens = stripParens();
    options.makeDefault = makeDefault();
    options.trackTitle = trackTitle();
    options.batchSize = batchSize();
    options.concurrency = concurrency();
    options.contextLines = contextLines;
    options.useCache = useCache();
    options.outputURL = std::move(output);
    options.forcedTrackIndex = forcedTrack;
    options.force = force;
    return options;
}

} // namespace velto
