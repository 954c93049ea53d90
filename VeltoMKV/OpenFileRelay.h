#pragma once

#include <optional>

#include <QObject>
#include <QString>

namespace velto {

// Files the system hands to the application (Finder's "Open with", a path on the command line)
// wait here until the main window takes them. It watches the application for file-open
// events once installed as its event filter.
class OpenFileRelay : public QObject {
    Q_OBJECT

public:
    explicit OpenFileRelay(QObject* parent = nullptr);

    const std::optional<QString>& pending() const { return m_pending; }
    void setPending(const QString& path);
    // The pending file, now no longer pending.
    std::optional<QString> take();

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void pendingChanged();

private:
    std::optional<QString> m_pending;
};

} // namespace velto
