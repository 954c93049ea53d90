#pragma once

#include <variant>

#include <QString>

namespace velto {

// Where the main window is. Only a failure carries data: the sentence to show.
class Phase {
public:
    enum class Kind { idle, inspecting, ready, working, finished, failed };

    struct Idle {
        bool operator==(const Idle&) const = default;
    };
    struct Inspecting {
        bool operator==(const Inspecting&) const = default;
    };
    struct Ready {
        bool operator==(const Ready&) const = default;
    };
    struct Working {
        bool operator==(const Working&) const = default;
    };
    struct Finished {
        bool operator==(const Finished&) const = default;
    };
    struct Failed {
        QString message;
        bool operator==(const Failed&) const = default;
    };
    using Value = std::variant<Idle, Inspecting, Ready, Working, Finished, Failed>;

    Phase() = default;
    explicit Phase(Value value)
        : m_value(std::move(value)) {}

    static Phase idle() { return Phase(Idle{}); }
    static Phase inspecting() { return Phase(Inspecting{}); }
    static Phase ready() { return Phase(Ready{}); }
    static Phase working() { return Phase(Working{}); }
    static Phase finished() { return Phase(Finished{}); }
    static Phase failed(QString message) { return Phase(Failed{std::move(message)}); }

    // The alternatives are declared in the order of Kind.
    Kind kind() const { return static_cast<Kind>(m_value.index()); }
    const Value& value() const { return m_value; }
    // The failure's sentence; empty in every other phase.
    QString message() const {
        const auto* failure = std::get_if<Failed>(&m_value);
        return failure ? failure->message : QString();
    }

    bool operator==(const Phase&) const = default;

private:
    Value m_value;
};

} // namespace velto
