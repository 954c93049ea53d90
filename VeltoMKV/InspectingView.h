#pragma once

#include <QWidget>

namespace velto {

// The short wait while ffprobe reads the file.
class InspectingView : public QWidget {
    Q_OBJECT

public:
    explicit InspectingView(QWidget* parent = nullptr);
};

} // namespace velto
