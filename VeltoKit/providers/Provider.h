#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace velto {

// One entry of the catalogue of translation services the user chooses from.
struct Provider {
    // Which wire protocol the service speaks, and so which engine is built for it.
    enum class Flavor { anthropic, openAICompatible, gemini, claudeCLI, echo };

    // A one-click address for the providers whose address the user may edit.
    struct Preset {
        QString id;
        QString name;
        QString baseURL;
        QString hint;

        friend bool operator==(const Preset&, const Preset&) = default;
    };

    QString id;
    QString name;
    Flavor flavor = Flavor::echo;
    // Used when the user leaves the address empty; empty for flavors without an address.
    QString defaultBaseURL;
    bool needsKey = false;
    // Where the user gets a key; may be empty.
    QString keySource;
    QString note;
    // A macOS system symbol name; other platforms map it to an icon of their own.
    QString symbol;
    bool editableBaseURL = false;

    // A key of such a provider lives in the credential store.
    bool usesKeychain() const { return needsKey; }
    // Whether a key is ever sent: a local server may want one although it needs none, while
    // the claude program and the echo engine never take one and never ask the store.
    bool acceptsKey() const { return flavor != Flavor::claudeCLI && flavor != Flavor::echo; }
    QList<Preset> presets() const;

    friend bool operator==(const Provider&, const Provider&) = default;

    // The catalogue, in the order of the settings picker.
    static const QList<Provider>& all();
    static const Provider& claude();
    static const Provider& openAI();
    static const Provider& gemini();
    static const Provider& metaLlama();
    static const Provider& local();
    static const Provider& custom();
    static const Provider& claudeCLI();
    static const Provider& echo();

    // The entry with exactly this id; anything else is the Anthropic entry.
    static const Provider& byID(QStringView id);
};

size_t qHash(const Provider::Preset& preset, size_t seed = 0);
size_t qHash(const Provider& provider, size_t seed = 0);

} // namespace velto
