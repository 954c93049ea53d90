#pragma once

#include <optional>

#include <QList>
#include <QString>

#include "VeltoKit/job/TokenPrice.h"
#include "VeltoKit/providers/Provider.h"

namespace velto {

// What the known models cost, per million tokens, as their services published it on `asOf`.
// A model the user priced in the settings goes by the user's price; engines that run on this
// machine or under the user's own subscription cost nothing here.
class ModelPrices {
public:
    struct Entry {
        QString providerID;
        QString model;
        TokenPrice price;
    };

    // Where a price came from.
    enum class Source { free, user, table, unknown };

    struct Lookup {
        Source source = Source::unknown;
        // Absent when unknown.
        std::optional<TokenPrice> price;
    };

    // "2025-11": the month the table was last checked against the services' price pages.
    static QString asOf();
    static const QList<Entry>& table();

    // The table's price of `model` at `provider`: the entry of the same id, or of the longest id
    // that `model` extends with a dated or tagged suffix ("claude-haiku-4-5-20251001").
    static std::optional<TokenPrice> known(const Provider& provider, const QString& model);
    // The model a job runs: the one given, or Claude's default when none is.
    static QString billedModel(const Provider& provider, const QString& model);
    // The echo engine, the claude program and servers on this machine: nothing to pay.
    static bool isFree(const Provider& provider, const QString& baseURL);
    // The price a job goes by: nothing for the echo engine and the claude program, else the
    // user's, else nothing for a server on this machine, else the table's, else unknown.
    static Lookup resolve(const Provider& provider, const QString& model, const QString& baseURL,
                          const std::optional<TokenPrice>& userPrice);
};

} // namespace velto
