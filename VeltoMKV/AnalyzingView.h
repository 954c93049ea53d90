#pragma once

#include <QWidget>

namespace velto {

// The short wait while ffprobe reads the file.
class AnalyzingView : public QWidget {
    Q_OBJECT

public:
    explicit AnalyzingView(QWidget* parent = nullptr);
};

} // namespace velto
