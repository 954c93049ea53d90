#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// The Claude Code command-line program, run once per request in print mode with its tools,
// slash commands and MCP servers off. It uses the program's own login, so no key is involved.
class ClaudeCLIBackend : public TranslationBackend {
public:
    // `timeout` is the limit of one run, in seconds.
    ClaudeCLIBackend(QString binary, QString model, double timeout);

    // The executable `preferredPath` names (blank-trimmed, "~" expanded), or "claude" inside
    // the folder it names; otherwise the first "claude" that Shell::which finds.
    static std::optional<QString> locate(const QString& preferredPath);
    // The same, with the fallback searching only `searchDirectories`.
    static std::optional<QString> locate(const QString& preferredPath,
                                         const QStringList& searchDirectories);

    QString label() const override;
    QString cacheScope() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;

private:
    QStringList arguments(const QString& system) const;

    QString m_binary;
    QString m_model;
    double m_timeout;
};

} // namespace velto
